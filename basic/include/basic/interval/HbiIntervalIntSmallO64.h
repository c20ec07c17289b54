#pragma once

#include <basic/base/HbbExport.h>
#include <basic/interval/HbiInterval.h>

/// A closed range of 64-bit ranks, [first, last]; a value. Empty by default and when first > last.
class KELVANE_BASIC_EXPORT HbiIntervalIntSmallO64
    : public HbiInterval<HbiIntervalIntSmallO64, qint64>
{
public:
    constexpr HbiIntervalIntSmallO64() = default;
    explicit constexpr HbiIntervalIntSmallO64(qint64 first, qint64 last)
        : HbiInterval(first, last)
    {
    }
};

Q_DECLARE_TYPEINFO(HbiIntervalIntSmallO64, Q_PRIMITIVE_TYPE);
