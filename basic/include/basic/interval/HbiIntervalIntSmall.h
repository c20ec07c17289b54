#pragma once

#include <basic/base/HbbExport.h>
#include <basic/interval/HbiInterval.h>

/// A closed range of 32-bit ranks, [first, last]; a value. Empty by default and when first > last.
class KELVANE_BASIC_EXPORT HbiIntervalIntSmall : public HbiInterval<HbiIntervalIntSmall, qint32>
{
public:
    constexpr HbiIntervalIntSmall() = default;
    explicit constexpr HbiIntervalIntSmall(int first, int last)
        : HbiInterval(first, last)
    {
    }
};

Q_DECLARE_TYPEINFO(HbiIntervalIntSmall, Q_PRIMITIVE_TYPE);
