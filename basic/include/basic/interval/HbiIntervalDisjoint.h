#pragma once

#include <basic/base/HbbExport.h>
#include <basic/interval/HbiIntervalIterator.h>

#include <QtCore/QVector>

#include <initializer_list>
#include <utility>

/// What the sets of ranks share, whatever the width of a rank: a set of intervals, sorted, disjoint
/// and merged (no two of them touch). `Set` is the class that derives from it.
///
/// A value that is cheap to pass around: none or one interval is held in place without allocation;
/// more are implicitly shared, so a copy costs O(1) and the first change of a shared set copies its
/// store. Adding a rank or an interval costs O(1) at the upper end and O(log n) anywhere else;
/// uniting, subtracting and intersecting are linear in the intervals of both sets. Dense parts are
/// kept as bitmaps, sparse ones as intervals, so that a million ranks in whatever order stay cheap.
///
/// Every rank of the type is legal, negative ones included. Nothing here raises an error. One set
/// may be read by several threads; copies that share their store may be changed in different
/// threads.
template <class Set, class IntervalT>
class KELVANE_BASIC_EXPORT HbiIntervalDisjoint
{
public:
    using Interval = IntervalT;
    using Rank = typename Interval::RankType;

    bool isEmpty() const { return m_hull.isEmpty(); }

    /// The lowest and the highest rank; 0 and -1 when empty.
    Rank getMin() const { return m_hull.getMin(); }
    Rank getMax() const { return m_hull.getMax(); }

    /// The number of ranks, O(1); saturates at 63 bits.
    qint64 getCount() const;
    int getIntervalCount() const;
    QVector<Interval> getIntervals() const;

    bool contains(Rank rank) const
    {
        return m_hull.contains(rank) && (!m_store || _containsStored(rank));
    }
    /// Whether every rank of `interval` is in the set; true for an empty one.
    bool contains(const Interval& interval) const;
    bool intersects(const Interval& interval) const;
    bool intersects(const Set& other) const;

    void clear();
    void add(Rank rank)
    {
        if (m_store || !_extendSingle(Interval(rank, rank)))
            _addStored(rank);
    }
    void add(const Interval& interval)
    {
        if (m_store || !_extendSingle(interval))
            _addStored(interval);
    }
    /// Adds ranks in ascending order, repeated ones perhaps; for many at once.
    void addSorted(const Rank* ranks, std::size_t count);
    void subtract(const Interval& interval);

    Set& unite(const Set& other)
    {
        if (m_store || other.m_store || !_extendSingle(other.m_hull))
            _uniteStored(other);
        return static_cast<Set&>(*this);
    }
    Set& subtract(const Set& other);
    Set& intersect(const Set& other);

    Set intersected(const Set& other) const;
    /// The ranks of `range` that are not in the set.
    Set complement(const Interval& range) const;

    /// Follows `n` samples inserted before rank `at`: ranks at and above `at` move up by `n`, so
    /// that an interval around `at` is cut in two. Ranks that leave the type's range are lost; n <=
    /// 0 does nothing.
    void insertGap(Rank at, Rank n);

    /// Follows the deletion of samples: `removed` leave the set, and every rank above moves down by
    /// the number of removed ranks below it.
    void removeRanks(const Set& removed);

    /// For range-for. The range holds its own copy of the set: it may outlive a temporary, and
    /// changing the set while it is walked does not disturb the walk.
    class Intervals
    {
    public:
        explicit Intervals(const HbiIntervalDisjoint& set)
            : m_set(set)
        {
        }
        HbiIntervalIterator<Interval> begin() const { return m_set._begin(); }
        HbiIntervalIterator<Interval> end() const { return {}; }

    private:
        HbiIntervalDisjoint m_set;
    };
    class Ranks
    {
    public:
        explicit Ranks(const HbiIntervalDisjoint& set)
            : m_set(set)
        {
        }
        HbiRankIterator<Interval> begin() const
        {
            return HbiRankIterator<Interval>(m_set._begin());
        }
        HbiRankIterator<Interval> end() const { return {}; }

    private:
        HbiIntervalDisjoint m_set;
    };
    Intervals intervals() const { return Intervals(*this); }
    Ranks ranks() const { return Ranks(*this); }

    /// Calls `function(rank)` for every rank in ascending order.
    template <class Function>
    void forEachRank(Function&& function) const
    {
        for (const Interval& interval : intervals()) {
            for (Rank rank = interval.getMin(); rank != interval.getMax(); ++rank)
                function(rank);
            function(interval.getMax());
        }
    }

    friend bool operator==(const Set& a, const Set& b) { return a._equals(b); }
    friend bool operator!=(const Set& a, const Set& b) { return !a._equals(b); }

protected:
    HbiIntervalDisjoint() noexcept = default;
    explicit HbiIntervalDisjoint(const Interval& interval) noexcept
        : m_hull(interval)
    {
    }
    HbiIntervalDisjoint(std::initializer_list<Interval> intervals)
    {
        for (const Interval& interval : intervals)
            add(interval);
    }
    HbiIntervalDisjoint(const HbiIntervalDisjoint& other) noexcept
        : m_hull(other.m_hull)
        , m_store(other.m_store)
    {
        if (m_store)
            _share();
    }
    HbiIntervalDisjoint(HbiIntervalDisjoint&& other) noexcept
        : m_hull(std::exchange(other.m_hull, Interval()))
        , m_store(std::exchange(other.m_store, nullptr))
    {
    }
    HbiIntervalDisjoint& operator=(const HbiIntervalDisjoint& other) noexcept
    {
        return *this = HbiIntervalDisjoint(other);
    }
    HbiIntervalDisjoint& operator=(HbiIntervalDisjoint&& other) noexcept
    {
        std::swap(m_hull, other.m_hull);
        std::swap(m_store, other.m_store);
        return *this;
    }
    ~HbiIntervalDisjoint()
    {
        if (m_store)
            _release();
    }

private:
    using Store = HbiIntervalStore<Interval>;

    HbiIntervalIterator<Interval> _begin() const { return {m_store, m_hull}; }

    /// Adds the interval in place when the set stays one interval; there must be no store.
    bool _extendSingle(const Interval& added)
    {
        const Interval hull = m_hull;
        if (added.isEmpty())
            return true;
        if (hull.isEmpty()) {
            m_hull = added;
            return true;
        }
        // A neighbour is computed only where it exists: the ends may be those of the type.
        if (added.getMin() > hull.getMax() && added.getMin() - 1 != hull.getMax())
            return false;
        if (added.getMax() < hull.getMin() && added.getMax() + 1 != hull.getMin())
            return false;
        m_hull = Interval(added.getMin() < hull.getMin() ? added.getMin() : hull.getMin(),
                          added.getMax() > hull.getMax() ? added.getMax() : hull.getMax());
        return true;
    }
    void _share() const noexcept;
    void _release() noexcept;
    void _detach();
    void _addStored(Rank rank);
    void _addStored(const Interval& interval);
    void _uniteStored(const Set& other);
    void _extendHull(const Interval& interval);
    void _shrinkHull();
    bool _containsStored(Rank rank) const;
    bool _equals(const HbiIntervalDisjoint& other) const;

    Interval m_hull;          // from the lowest to the highest rank; the whole set without a store
    Store* m_store = nullptr; // two intervals or more, shared between copies
};
