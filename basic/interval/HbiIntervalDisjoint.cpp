#include <basic/interval/HbiIntervalDisjoint.h>

#include "HbiIntervalStore.h"

#include <basic/interval/HbiIntervalIntSmallDisjoint.h>
#include <basic/interval/HbiIntervalIntSmallO64Disjoint.h>

#include <algorithm>
#include <limits>
#include <memory>

namespace
{
/// Whether `count` ranks fill `hull`; both are taken modulo 2^64, as the widest hull has 2^64
/// ranks.
template <class Interval>
bool fills(quint64 count, const Interval& hull)
{
    return count == quint64(hull.getMax()) - quint64(hull.getMin()) + 1;
}
} // namespace

template <class Set, class Interval>
qint64 HbiIntervalDisjoint<Set, Interval>::getCount() const
{
    const quint64 limit = quint64(std::numeric_limits<qint64>::max());
    return m_store ? qint64(std::min(m_store->getCount(), limit)) : m_hull.getLength();
}

template <class Set, class Interval>
int HbiIntervalDisjoint<Set, Interval>::getIntervalCount() const
{
    int count = 0;
    for (auto it = _begin(); !it.isEnd(); ++it)
        ++count;
    return count;
}

template <class Set, class Interval>
QVector<Interval> HbiIntervalDisjoint<Set, Interval>::getIntervals() const
{
    QVector<Interval> result;
    for (auto it = _begin(); !it.isEnd(); ++it)
        result.append(*it);
    return result;
}

template <class Set, class Interval>
bool HbiIntervalDisjoint<Set, Interval>::contains(const Interval& interval) const
{
    if (!m_store || interval.isEmpty() || !m_hull.contains(interval))
        return m_hull.contains(interval);
    auto it = _begin();
    it.seek(interval.getMin());
    return it->contains(interval);
}

template <class Set, class Interval>
bool HbiIntervalDisjoint<Set, Interval>::intersects(const Interval& interval) const
{
    const Interval part = m_hull.intersected(interval);
    if (!m_store || part.isEmpty())
        return !part.isEmpty();
    std::size_t block = 0;
    std::size_t index = 0;
    m_store->seek(part.getMin(), block, index);
    return m_store->takePiece(block, index).getMin() <= part.getMax();
}

template <class Set, class Interval>
bool HbiIntervalDisjoint<Set, Interval>::intersects(const Set& other) const
{
    auto a = _begin();
    auto b = other._begin();
    while (!a.isEnd() && !b.isEnd()) {
        if (a->intersects(*b))
            return true;
        if (a->getMax() < b->getMin())
            a.seek(b->getMin());
        else
            b.seek(a->getMin());
    }
    return false;
}

template <class Set, class Interval>
void HbiIntervalDisjoint<Set, Interval>::clear()
{
    _release();
    m_hull = Interval();
}

template <class Set, class Interval>
void HbiIntervalDisjoint<Set, Interval>::addSorted(const Rank* ranks, std::size_t count)
{
    std::size_t done = 0;
    if (isEmpty()) {
        // A small set is made at once.
        std::vector<Interval> pieces;
        pieces.reserve(std::min(count, Store::MAX_PIECES));
        while (done < count && pieces.size() < Store::MAX_PIECES) {
            const Rank first = ranks[done];
            Rank last = first;
            while (++done < count && (ranks[done] == last || ranks[done] - 1 == last))
                last = ranks[done];
            pieces.push_back(Interval(first, last));
        }
        if (!pieces.empty())
            m_hull = Interval(pieces.front().getMin(), pieces.back().getMax());
        if (pieces.size() > 1)
            m_store = std::make_unique<Store>(std::move(pieces)).release();
    }
    for (; done < count; ++done)
        add(ranks[done]);
}

template <class Set, class Interval>
void HbiIntervalDisjoint<Set, Interval>::subtract(const Interval& interval)
{
    const Interval removed = m_hull.intersected(interval);
    if (removed.isEmpty())
        return;
    if (removed == m_hull) {
        clear();
        return;
    }
    const bool inside = removed.getMin() != m_hull.getMin() && removed.getMax() != m_hull.getMax();
    if (!m_store && !inside) {
        m_hull = removed.getMin() == m_hull.getMin()
                     ? Interval(removed.getMax() + 1, m_hull.getMax())
                     : Interval(m_hull.getMin(), removed.getMin() - 1);
        return;
    }
    if (m_store && !intersects(removed))
        return; // a shared store stays shared
    _detach();
    m_store->remove(removed);
    _shrinkHull();
}

template <class Set, class Interval>
Set& HbiIntervalDisjoint<Set, Interval>::subtract(const Set& other)
{
    if (!m_hull.intersects(other.m_hull))
        return static_cast<Set&>(*this);
    if (!other.m_store) {
        subtract(other.m_hull);
    } else if (!m_store) {
        *this = other.complement(m_hull);
    } else if (m_store == other.m_store) {
        clear();
    } else {
        _detach();
        m_store->subtract(*other.m_store);
        if (m_store->getCount() == 0)
            clear();
        else
            _shrinkHull();
    }
    return static_cast<Set&>(*this);
}

template <class Set, class Interval>
Set& HbiIntervalDisjoint<Set, Interval>::intersect(const Set& other)
{
    if (m_store != other.m_store || m_hull != other.m_hull)
        *this = intersected(other);
    return static_cast<Set&>(*this);
}

template <class Set, class Interval>
Set HbiIntervalDisjoint<Set, Interval>::intersected(const Set& other) const
{
    const bool alike = getCount() / 16 <= other.getCount() && other.getCount() / 16 <= getCount();
    if (m_store && other.m_store && alike) {
        // What is outside the other goes: block by block, as whole sets are subtracted.
        Set outside(static_cast<const Set&>(*this));
        Set inside(outside);
        return inside.subtract(outside.subtract(other));
    }
    // Of two sets of unlike sizes, the small one seeks its way through the large one.
    Set result;
    auto a = _begin();
    auto b = other._begin();
    while (!a.isEnd() && !b.isEnd()) {
        result.add(a->intersected(*b));
        if (a->getMax() < b->getMax()) {
            ++a;
            if (!a.isEnd())
                b.seek(a->getMin());
        } else {
            ++b;
            if (!b.isEnd())
                a.seek(b->getMin());
        }
    }
    return result;
}

template <class Set, class Interval>
Set HbiIntervalDisjoint<Set, Interval>::complement(const Interval& range) const
{
    Set result;
    if (range.isEmpty())
        return result;
    Rank from = range.getMin();
    auto it = _begin();
    for (it.seek(from); !it.isEnd() && it->getMin() <= range.getMax(); ++it) {
        if (it->getMin() > from)
            result.add(Interval(from, it->getMin() - 1));
        if (it->getMax() >= range.getMax())
            return result;
        from = it->getMax() + 1;
    }
    result.add(Interval(from, range.getMax()));
    return result;
}

template <class Set, class Interval>
void HbiIntervalDisjoint<Set, Interval>::insertGap(Rank at, Rank n)
{
    if (n <= 0 || at > m_hull.getMax())
        return;
    const Rank limit = std::numeric_limits<Rank>::max() - n;
    Set result(static_cast<const Set&>(*this)); // what is below stays as it is
    result.subtract(Interval(at, m_hull.getMax()));
    auto it = _begin();
    for (it.seek(at); !it.isEnd() && it->getMin() <= limit; ++it)
        result.add(Interval(it->getMin() + n, std::min(it->getMax(), limit) + n));
    *this = std::move(result);
}

template <class Set, class Interval>
void HbiIntervalDisjoint<Set, Interval>::removeRanks(const Set& removed)
{
    if (removed.isEmpty() || removed.getMin() > m_hull.getMax())
        return;
    Set result(static_cast<const Set&>(*this)); // what is below stays as it is
    result.subtract(Interval(removed.getMin(), m_hull.getMax()));
    quint64 below = 0; // the number of removed ranks below those in hand, modulo 2^64
    const auto place = [&](Rank first, Rank last) {
        result.add(Interval(Rank(quint64(first) - below), Rank(quint64(last) - below)));
    };
    auto gap = removed._begin();
    auto it = _begin();
    for (it.seek(removed.getMin()); !it.isEnd(); ++it) {
        Rank from = it->getMin();
        bool open = true; // ranks from `from` to the interval's end are still to be placed
        while (open && !gap.isEnd() && gap->getMin() <= it->getMax()) {
            if (gap->getMin() > from)
                place(from, gap->getMin() - 1);
            open = gap->getMax() < it->getMax();
            if (!open)
                break; // the gap may reach into the next interval
            below += quint64(gap->getMax()) - quint64(gap->getMin()) + 1;
            from = std::max<Rank>(from, gap->getMax() + 1);
            ++gap;
        }
        if (open)
            place(from, it->getMax());
    }
    *this = std::move(result);
}

template <class Set, class Interval>
void HbiIntervalDisjoint<Set, Interval>::_share() const noexcept
{
    m_store->references.ref();
}

template <class Set, class Interval>
void HbiIntervalDisjoint<Set, Interval>::_release() noexcept
{
    if (m_store && !m_store->references.deref())
        delete m_store;
    m_store = nullptr;
}

/// Makes sure that there is a store and that no other set shares it.
template <class Set, class Interval>
void HbiIntervalDisjoint<Set, Interval>::_detach()
{
    if (m_store && m_store->references.loadAcquire() == 1)
        return;
    auto own = m_store ? std::make_unique<Store>(*m_store) : std::make_unique<Store>();
    if (!m_store)
        own->add(m_hull);
    _release();
    m_store = own.release();
}

template <class Set, class Interval>
void HbiIntervalDisjoint<Set, Interval>::_addStored(Rank rank)
{
    if (!m_store || m_store->references.loadAcquire() != 1) {
        if (contains(rank))
            return; // a shared store stays shared
        _detach();
    }
    m_store->add(rank);
    _extendHull(Interval(rank, rank));
}

template <class Set, class Interval>
void HbiIntervalDisjoint<Set, Interval>::_addStored(const Interval& interval)
{
    if (contains(interval))
        return; // a shared store stays shared
    _detach();
    m_store->add(interval);
    _extendHull(interval);
}

template <class Set, class Interval>
void HbiIntervalDisjoint<Set, Interval>::_uniteStored(const Set& other)
{
    if (!other.m_store) {
        add(other.m_hull);
    } else if (!m_store) {
        const Interval single = m_hull;
        *this = other;
        add(single);
    } else if (m_store != other.m_store) {
        _detach();
        m_store->unite(*other.m_store);
        _extendHull(other.m_hull);
    }
}

/// After adding `interval`; a set that has become one interval needs no store.
template <class Set, class Interval>
void HbiIntervalDisjoint<Set, Interval>::_extendHull(const Interval& interval)
{
    m_hull = Interval(std::min(m_hull.getMin(), interval.getMin()),
                      std::max(m_hull.getMax(), interval.getMax()));
    if (m_store && fills(m_store->getCount(), m_hull))
        _release();
}

/// After removing ranks, but not all.
template <class Set, class Interval>
void HbiIntervalDisjoint<Set, Interval>::_shrinkHull()
{
    std::size_t block = 0;
    std::size_t index = 0;
    m_store->seek(m_hull.getMin(), block, index);
    const Rank min = m_store->takePiece(block, index).getMin();
    m_hull = Interval(min, m_store->lastAtOrBelow(m_hull.getMax()));
    if (fills(m_store->getCount(), m_hull))
        _release();
}

template <class Set, class Interval>
bool HbiIntervalDisjoint<Set, Interval>::_containsStored(Rank rank) const
{
    return m_store->contains(rank);
}

template <class Set, class Interval>
bool HbiIntervalDisjoint<Set, Interval>::_equals(const HbiIntervalDisjoint& other) const
{
    if (m_hull != other.m_hull || m_store == other.m_store)
        return m_hull == other.m_hull;
    if (!m_store || !other.m_store || m_store->getCount() != other.m_store->getCount())
        return false; // a set of one interval never has a store
    auto b = other._begin();
    for (auto a = _begin(); !a.isEnd(); ++a, ++b) {
        if (*a != *b)
            return false;
    }
    return true;
}

template class HbiIntervalDisjoint<HbiIntervalIntSmallDisjoint, HbiIntervalIntSmall>;
template class HbiIntervalDisjoint<HbiIntervalIntSmallO64Disjoint, HbiIntervalIntSmallO64>;
