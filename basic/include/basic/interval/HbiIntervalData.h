#pragma once

#include <basic/base/HbbGlobal.h>

/// A closed interval of reals, [min, max]; a value. Empty by default, then both bounds are
/// undefined. Undefined values (HbbGlobal::isUndefined) are ignored: they unite to nothing and are
/// in no interval; an interval made with an undefined bound, or with min > max, is empty.
class HbiIntervalData
{
public:
    constexpr HbiIntervalData() = default;
    explicit constexpr HbiIntervalData(double min, double max)
    {
        if (HbbGlobal::isUndefined(min) || HbbGlobal::isUndefined(max) || min > max)
            return;
        m_min = min;
        m_max = max;
    }

    constexpr double getMin() const { return m_min; }
    constexpr double getMax() const { return m_max; }

    constexpr bool isEmpty() const { return HbbGlobal::isUndefined(m_min); }
    constexpr bool isValid() const { return !isEmpty(); }

    /// max - min; 0 when empty.
    constexpr double getLength() const { return isEmpty() ? 0.0 : m_max - m_min; }

    constexpr bool contains(double value) const
    {
        return !isEmpty() && !HbbGlobal::isUndefined(value) && m_min <= value && value <= m_max;
    }
    /// An empty interval is inside every interval.
    constexpr bool contains(const HbiIntervalData& other) const
    {
        return other.isEmpty() || (contains(other.m_min) && contains(other.m_max));
    }
    constexpr bool intersects(const HbiIntervalData& other) const
    {
        return !isEmpty() && !other.isEmpty() && m_min <= other.m_max && other.m_min <= m_max;
    }

    constexpr void unite(double value)
    {
        if (HbbGlobal::isUndefined(value))
            return;
        if (isEmpty())
            m_min = m_max = value;
        m_min = value < m_min ? value : m_min;
        m_max = value > m_max ? value : m_max;
    }
    constexpr void unite(const HbiIntervalData& other)
    {
        unite(other.m_min);
        unite(other.m_max);
    }
    constexpr void clear() { *this = HbiIntervalData(); }

    friend constexpr bool operator==(const HbiIntervalData& a, const HbiIntervalData& b)
    {
        return a.m_min == b.m_min && a.m_max == b.m_max;
    }
    friend constexpr bool operator!=(const HbiIntervalData& a, const HbiIntervalData& b)
    {
        return !(a == b);
    }

private:
    double m_min = HbbGlobal::D_FFFF;
    double m_max = HbbGlobal::D_FFFF;
};
