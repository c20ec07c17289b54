#pragma once

#include <basic/base/HbbExport.h>

#include <QtCore/QtGlobal>

#include <cstddef>
#include <iterator>

template <class Interval>
class HbiIntervalStore;

/// Walks the intervals of a disjoint set upwards; it allocates nothing. It stays valid as long as
/// the set that made it is neither changed nor destroyed. A default-constructed one is the end.
template <class Interval>
class HbiIntervalIterator
{
public:
    using iterator_category = std::input_iterator_tag;
    using value_type = Interval;
    using difference_type = std::ptrdiff_t;
    using pointer = const Interval*;
    using reference = const Interval&;

    HbiIntervalIterator() = default;

    /// The intervals of `store`, or `single` alone when there is no store.
    HbiIntervalIterator(const HbiIntervalStore<Interval>* store, const Interval& single)
        : m_store(store)
        , m_current(single)
    {
        if (m_store)
            _begin();
    }

    const Interval& operator*() const { return m_current; }
    const Interval* operator->() const { return &m_current; }
    HbiIntervalIterator& operator++()
    {
        if (m_store)
            _advance();
        else
            m_current = Interval();
        return *this;
    }
    bool isEnd() const { return m_current.isEmpty(); }

    friend bool operator==(const HbiIntervalIterator& a, const HbiIntervalIterator& b)
    {
        return a.m_current == b.m_current;
    }
    friend bool operator!=(const HbiIntervalIterator& a, const HbiIntervalIterator& b)
    {
        return !(a == b);
    }

    /// Goes on to the first interval that ends at or after `rank`; never back.
    KELVANE_BASIC_EXPORT void seek(typename Interval::RankType rank);

private:
    KELVANE_BASIC_EXPORT void _begin();
    KELVANE_BASIC_EXPORT void _advance();

    const HbiIntervalStore<Interval>* m_store = nullptr;
    std::size_t m_block = 0;
    std::size_t m_position = 0;
    Interval m_current;
    Interval m_next; // read ahead, as an interval may be stored in several adjacent pieces
};

/// Walks the ranks of a disjoint set upwards.
template <class Interval>
class HbiRankIterator
{
public:
    using Rank = typename Interval::RankType;
    using iterator_category = std::input_iterator_tag;
    using value_type = Rank;
    using difference_type = std::ptrdiff_t;
    using pointer = const Rank*;
    using reference = Rank;

    HbiRankIterator() = default;
    explicit HbiRankIterator(const HbiIntervalIterator<Interval>& interval)
        : m_interval(interval)
        , m_rank(interval->getMin())
    {
    }

    Rank operator*() const { return m_rank; }
    HbiRankIterator& operator++()
    {
        if (m_rank == m_interval->getMax())
            m_rank = (++m_interval)->getMin();
        else
            ++m_rank;
        return *this;
    }

    friend bool operator==(const HbiRankIterator& a, const HbiRankIterator& b)
    {
        return a.m_interval == b.m_interval && a.m_rank == b.m_rank;
    }
    friend bool operator!=(const HbiRankIterator& a, const HbiRankIterator& b) { return !(a == b); }

private:
    HbiIntervalIterator<Interval> m_interval;
    Rank m_rank = 0;
};
