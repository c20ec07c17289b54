#pragma once

#include <basic/interval/HbiIntervalDisjoint.h>
#include <basic/interval/HbiIntervalIntSmall.h>

// Exported before its base is named, so that the base is too.
class KELVANE_BASIC_EXPORT HbiIntervalIntSmallDisjoint;

/// A set of 32-bit ranks; every change notice carries its ranks in one.
/// See HbiIntervalDisjoint for what it can do and what it costs.
class HbiIntervalIntSmallDisjoint
    : public HbiIntervalDisjoint<HbiIntervalIntSmallDisjoint, HbiIntervalIntSmall>
{
public:
    HbiIntervalIntSmallDisjoint() noexcept = default;
    explicit HbiIntervalIntSmallDisjoint(int rank) noexcept
        : HbiIntervalDisjoint(HbiIntervalIntSmall(rank, rank))
    {
    }
    /// One interval is a set of one: a range goes wherever a set is asked for.
    HbiIntervalIntSmallDisjoint(const HbiIntervalIntSmall& interval) noexcept
        : HbiIntervalDisjoint(interval)
    {
    }
    HbiIntervalIntSmallDisjoint(std::initializer_list<HbiIntervalIntSmall> intervals)
        : HbiIntervalDisjoint(intervals)
    {
    }
};

extern template class HbiIntervalDisjoint<HbiIntervalIntSmallDisjoint, HbiIntervalIntSmall>;

Q_DECLARE_TYPEINFO(HbiIntervalIntSmallDisjoint, Q_MOVABLE_TYPE);
