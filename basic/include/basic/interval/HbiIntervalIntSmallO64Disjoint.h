#pragma once

#include <basic/interval/HbiIntervalDisjoint.h>
#include <basic/interval/HbiIntervalIntSmallO64.h>

// Exported before its base is named, so that the base is too.
class KELVANE_BASIC_EXPORT HbiIntervalIntSmallO64Disjoint;

/// A set of 64-bit ranks, such as the part of a large store that a table shows.
/// See HbiIntervalDisjoint for what it can do and what it costs.
class HbiIntervalIntSmallO64Disjoint
    : public HbiIntervalDisjoint<HbiIntervalIntSmallO64Disjoint, HbiIntervalIntSmallO64>
{
public:
    HbiIntervalIntSmallO64Disjoint() noexcept = default;
    explicit HbiIntervalIntSmallO64Disjoint(qint64 rank) noexcept
        : HbiIntervalDisjoint(HbiIntervalIntSmallO64(rank, rank))
    {
    }
    /// One interval is a set of one: a range goes wherever a set is asked for.
    HbiIntervalIntSmallO64Disjoint(const HbiIntervalIntSmallO64& interval) noexcept
        : HbiIntervalDisjoint(interval)
    {
    }
    HbiIntervalIntSmallO64Disjoint(std::initializer_list<HbiIntervalIntSmallO64> intervals)
        : HbiIntervalDisjoint(intervals)
    {
    }
};

extern template class HbiIntervalDisjoint<HbiIntervalIntSmallO64Disjoint, HbiIntervalIntSmallO64>;

Q_DECLARE_TYPEINFO(HbiIntervalIntSmallO64Disjoint, Q_MOVABLE_TYPE);
