#pragma once

#include <QtCore/QtGlobal>

#include <limits>

/// What the closed ranges of ranks share, whatever the width of a rank: [min, max], both included.
/// `Self` is the class that derives from it. All empty ranges are equal, with min 0 and max -1.
/// The whole range of `Rank` is legal; lengths beyond 63 bits saturate.
template <class Self, typename Rank>
class HbiInterval
{
public:
    using RankType = Rank;

    constexpr Rank getMin() const { return m_min; }
    constexpr Rank getMax() const { return m_max; }
    constexpr bool isEmpty() const { return m_min > m_max; }

    /// Number of ranks.
    constexpr qint64 getLength() const
    {
        const quint64 last = quint64(m_max) - quint64(m_min);
        const quint64 limit = quint64(std::numeric_limits<qint64>::max());
        return last < limit || isEmpty() ? qint64(last + 1) : qint64(limit);
    }

    constexpr bool contains(Rank rank) const { return m_min <= rank && rank <= m_max; }

    /// An empty range is inside every range.
    constexpr bool contains(const Self& other) const
    {
        return other.isEmpty() || (m_min <= other.m_min && other.m_max <= m_max);
    }

    constexpr bool intersects(const Self& other) const { return !intersected(other).isEmpty(); }

    constexpr Self intersected(const Self& other) const
    {
        if (isEmpty() || other.isEmpty())
            return Self();
        return Self(m_min > other.m_min ? m_min : other.m_min,
                    m_max < other.m_max ? m_max : other.m_max);
    }

    friend constexpr bool operator==(const Self& a, const Self& b)
    {
        return a.m_min == b.m_min && a.m_max == b.m_max;
    }
    friend constexpr bool operator!=(const Self& a, const Self& b) { return !(a == b); }

protected:
    constexpr HbiInterval() = default;
    constexpr HbiInterval(Rank min, Rank max)
        : m_min(min <= max ? min : Rank(0))
        , m_max(min <= max ? max : Rank(-1))
    {
    }

private:
    Rank m_min = 0;
    Rank m_max = -1;
};
