#include "HbiIntervalStore.h"

#include <basic/interval/HbiIntervalIntSmall.h>
#include <basic/interval/HbiIntervalIntSmallO64.h>

#include <algorithm>
#include <iterator>

namespace
{
template <class Interval>
quint64 lengthOf(const Interval& interval)
{
    return quint64(interval.getMax()) - quint64(interval.getMin()) + 1;
}

/// The first piece that ends at or after `rank`.
template <class Pieces, typename Rank>
auto lowerPiece(Pieces& pieces, Rank rank)
{
    return std::partition_point(pieces.begin(), pieces.end(),
                                [rank](const auto& piece) { return piece.getMax() < rank; });
}

/// The first piece that begins after `rank`.
template <class Pieces, typename Rank>
auto upperPiece(Pieces& pieces, Rank rank)
{
    return std::partition_point(pieces.begin(), pieces.end(),
                                [rank](const auto& piece) { return piece.getMin() <= rank; });
}

/// The pieces of `pieces` within `range`, cut at its ends.
template <class Interval>
std::vector<Interval> piecesIn(const std::vector<Interval>& pieces, const Interval& range)
{
    std::vector<Interval> result;
    for (auto it = lowerPiece(pieces, range.getMin());
         it != pieces.end() && it->getMin() <= range.getMax(); ++it)
        result.push_back(it->intersected(range));
    return result;
}
} // namespace

template <class Interval>
HbiIntervalStore<Interval>::HbiIntervalStore()
    : m_lower{std::numeric_limits<Rank>::min()}
    , m_blocks(1)
{
}

template <class Interval>
HbiIntervalStore<Interval>::HbiIntervalStore(std::vector<Interval> pieces)
    : HbiIntervalStore()
{
    m_blocks[0].pieces = std::move(pieces);
    m_count = _countOf(0);
}

template <class Interval>
HbiIntervalStore<Interval>::HbiIntervalStore(const HbiIntervalStore& other)
    : m_lower(other.m_lower)
    , m_count(other.m_count)
{
    m_blocks.reserve(other.m_blocks.size());
    for (const Block& block : other.m_blocks) {
        auto bitmap = block.bitmap ? std::make_unique<HbiRankBitmap>(*block.bitmap) : nullptr;
        m_blocks.push_back({block.pieces, std::move(bitmap)});
    }
}

template <class Interval>
bool HbiIntervalStore<Interval>::contains(Rank rank) const
{
    const std::size_t k = _find(rank);
    const Block& block = m_blocks[k];
    if (block.bitmap)
        return block.bitmap->test(_offset(k, rank));
    const auto piece = lowerPiece(block.pieces, rank);
    return piece != block.pieces.end() && piece->getMin() <= rank;
}

template <class Interval>
void HbiIntervalStore<Interval>::remove(const Interval& range)
{
    _assign(range, false);
    const std::size_t first = _find(range.getMin());
    for (std::size_t k = std::min(first + 2, m_blocks.size() - 1) + 1; k-- > first;)
        _dropIfEmpty(k);
}

template <class Interval>
void HbiIntervalStore<Interval>::_combine(const HbiIntervalStore& other, bool present)
{
    for (std::size_t block = 0; block < other.m_blocks.size(); ++block) {
        const HbiRankBitmap* theirs = other.m_blocks[block].bitmap.get();
        const std::size_t k = _find(other.m_lower[block]);
        HbiRankBitmap* ours = m_blocks[k].bitmap.get();
        if (theirs && ours) {
            m_count -= ours->getCount();
            present ? ours->unite(*theirs) : ours->subtract(*theirs);
            m_count += ours->getCount();
            _settle(k);
            _dropIfEmpty(k);
            continue;
        }
        std::size_t at = block;
        std::size_t index = 0;
        Interval piece = other.takePiece(at, index);
        for (; at == block && !piece.isEmpty(); piece = other.takePiece(at, index))
            present ? add(piece) : remove(piece);
    }
}

template <class Interval>
Interval HbiIntervalStore<Interval>::takePiece(std::size_t& block, std::size_t& index) const
{
    for (; block < m_blocks.size(); ++block, index = 0) {
        const Block& current = m_blocks[block];
        if (!current.bitmap) {
            if (index < current.pieces.size())
                return current.pieces[index++];
            continue;
        }
        const quint32 first = current.bitmap->findSet(quint32(index));
        if (first == HbiRankBitmap::SIZE)
            continue;
        const quint32 end = current.bitmap->findClear(first);
        index = end;
        return Interval(Rank(m_lower[block] + Rank(first)), Rank(m_lower[block] + Rank(end - 1)));
    }
    return Interval();
}

template <class Interval>
void HbiIntervalStore<Interval>::seek(Rank rank, std::size_t& block, std::size_t& index) const
{
    block = _find(rank);
    const std::vector<Interval>& pieces = m_blocks[block].pieces;
    index = m_blocks[block].bitmap ? _offset(block, rank)
                                   : std::size_t(lowerPiece(pieces, rank) - pieces.begin());
}

template <class Interval>
typename HbiIntervalStore<Interval>::Rank HbiIntervalStore<Interval>::lastAtOrBelow(Rank rank) const
{
    for (std::size_t k = _find(rank) + 1; k-- > 0;) {
        const Rank top = std::min(rank, _upper(k));
        if (const HbiRankBitmap* bitmap = m_blocks[k].bitmap.get()) {
            const quint32 last = bitmap->findSetBackwards(_offset(k, top));
            if (last != HbiRankBitmap::SIZE)
                return Rank(m_lower[k] + Rank(last));
        } else {
            const std::vector<Interval>& pieces = m_blocks[k].pieces;
            const auto next = upperPiece(pieces, top);
            if (next != pieces.begin())
                return std::min(top, std::prev(next)->getMax());
        }
    }
    return rank;
}

template <class Interval>
quint64 HbiIntervalStore<Interval>::_countOf(std::size_t k) const
{
    if (m_blocks[k].bitmap)
        return m_blocks[k].bitmap->getCount();
    quint64 count = 0;
    for (const Interval& piece : m_blocks[k].pieces)
        count += lengthOf(piece);
    return count;
}

template <class Interval>
void HbiIntervalStore<Interval>::_assign(const Interval& range, bool present)
{
    const std::size_t first = _findNear(range.getMin());
    const Rank firstMax = std::min(range.getMax(), _upper(first));
    if (firstMax != range.getMax()) {
        // From the upper end down, as a block that is cut shifts the blocks above it.
        const std::size_t last = _find(range.getMax());
        _assignInBlock(last, Interval(m_lower[last], range.getMax()), present);
        if (first + 1 < last)
            _replaceBlocks(first + 1, last, present);
    }
    _assignInBlock(first, Interval(range.getMin(), firstMax), present);
}

template <class Interval>
void HbiIntervalStore<Interval>::_assignInBlock(std::size_t k, const Interval& range, bool present)
{
    if (HbiRankBitmap* bitmap = m_blocks[k].bitmap.get()) {
        const quint32 first = _offset(k, range.getMin());
        const quint32 last = _offset(k, range.getMax());
        m_count -= bitmap->getCount();
        present ? bitmap->setRange(first, last) : bitmap->clearRange(first, last);
        m_count += bitmap->getCount();
    } else {
        present ? _addToPieces(k, range) : _removeFromPieces(k, range);
    }
    _settle(k);
}

template <class Interval>
void HbiIntervalStore<Interval>::_addToPieces(std::size_t k, const Interval& range)
{
    std::vector<Interval>& pieces = m_blocks[k].pieces;
    const Rank min = range.getMin();
    const Rank max = range.getMax();
    if (pieces.empty() || (pieces.back().getMax() < min && pieces.back().getMax() < min - 1)) {
        pieces.push_back(range);
        m_count += lengthOf(range);
        return;
    }
    // The pieces that the range meets or touches become one with it.
    const bool lowest = min == std::numeric_limits<Rank>::min();
    const bool highest = max == std::numeric_limits<Rank>::max();
    const auto first = lowerPiece(pieces, lowest ? min : Rank(min - 1));
    auto end = first;
    Interval merged = range;
    for (; end != pieces.end() && end->getMin() <= (highest ? max : Rank(max + 1)); ++end) {
        m_count -= lengthOf(*end);
        merged = Interval(std::min(merged.getMin(), end->getMin()),
                          std::max(merged.getMax(), end->getMax()));
    }
    m_count += lengthOf(merged);
    if (first == end) {
        pieces.insert(first, merged);
    } else {
        *first = merged;
        pieces.erase(std::next(first), end);
    }
}

template <class Interval>
void HbiIntervalStore<Interval>::_removeFromPieces(std::size_t k, const Interval& range)
{
    std::vector<Interval>& pieces = m_blocks[k].pieces;
    auto first = lowerPiece(pieces, range.getMin());
    auto end = first;
    for (; end != pieces.end() && end->getMin() <= range.getMax(); ++end)
        m_count -= lengthOf(end->intersected(range));
    if (first == end)
        return;
    const Interval lowest = *first;
    const Interval highest = *std::prev(end);
    first = pieces.erase(first, end);
    if (highest.getMax() > range.getMax())
        first = pieces.insert(first, Interval(range.getMax() + 1, highest.getMax()));
    if (lowest.getMin() < range.getMin())
        pieces.insert(first, Interval(lowest.getMin(), range.getMin() - 1));
}

/// Blocks [first, end) become one that is wholly in the set or wholly outside.
template <class Interval>
void HbiIntervalStore<Interval>::_replaceBlocks(std::size_t first, std::size_t end, bool present)
{
    const Interval domain(m_lower[first], _upper(end - 1));
    for (std::size_t k = first; k < end; ++k)
        m_count -= _countOf(k);
    m_lower.erase(m_lower.begin() + first + 1, m_lower.begin() + end);
    m_blocks.erase(m_blocks.begin() + first + 1, m_blocks.begin() + end);
    m_blocks[first] = Block();
    m_found = 0;
    if (!present)
        return;
    m_blocks[first].pieces.push_back(domain);
    m_count += lengthOf(domain);
}

/// Gives block `k` the form that suits its density after a change.
template <class Interval>
void HbiIntervalStore<Interval>::_settle(std::size_t k)
{
    Block& block = m_blocks[k];
    if (!block.bitmap) {
        if (block.pieces.size() > MAX_PIECES)
            _split(k);
        return;
    }
    if (block.bitmap->getCount() >= THIN && block.bitmap->getCount() < HbiRankBitmap::SIZE)
        return;
    std::vector<Interval> pieces;
    for (std::size_t at = k, index = 0; at == k;) {
        const Interval piece = takePiece(at, index);
        if (at == k && !piece.isEmpty())
            pieces.push_back(piece);
    }
    block.bitmap.reset();
    block.pieces = std::move(pieces);
}

/// Cuts an array that has grown too long where its middle piece begins: into what is below, the
/// 65536 ranks around as a bitmap, and what is above when the pieces crowd there; else in two.
template <class Interval>
void HbiIntervalStore<Interval>::_split(std::size_t k)
{
    const std::vector<Interval> pieces = std::move(m_blocks[k].pieces);
    const qint64 low = qint64(HbiRankBitmap::SIZE) - 1;
    const Rank middle = pieces[pieces.size() / 2].getMin();
    const Interval chunk(Rank(middle & ~low), Rank(middle | low));
    const Interval domain(m_lower[k], _upper(k));

    std::vector<Interval> crowd = piecesIn(pieces, chunk);
    std::vector<Interval> below;
    if (domain.getMin() < chunk.getMin())
        below = piecesIn(pieces, Interval(domain.getMin(), chunk.getMin() - 1));
    m_blocks[k].pieces = std::move(below);
    if (crowd.size() <= CROWD) {
        _insertBlock(k + 1, chunk.getMin(),
                     piecesIn(pieces, Interval(chunk.getMin(), domain.getMax())));
        return;
    }
    if (chunk.getMax() < domain.getMax())
        _insertBlock(k + 1, chunk.getMax() + 1,
                     piecesIn(pieces, Interval(chunk.getMax() + 1, domain.getMax())));
    if (domain.getMin() < chunk.getMin())
        _insertBlock(++k, chunk.getMin(), {});
    m_blocks[k].bitmap = std::make_unique<HbiRankBitmap>();
    for (const Interval& piece : crowd)
        m_blocks[k].bitmap->setRange(_offset(k, piece.getMin()), _offset(k, piece.getMax()));
}

template <class Interval>
void HbiIntervalStore<Interval>::_insertBlock(std::size_t k, Rank lower,
                                              std::vector<Interval> pieces)
{
    m_lower.insert(m_lower.begin() + k, lower);
    m_blocks.insert(m_blocks.begin() + k, Block{std::move(pieces), nullptr});
}

/// An empty array leaves its ranks to a neighbour, so that emptied stretches cost nothing to walk.
template <class Interval>
void HbiIntervalStore<Interval>::_dropIfEmpty(std::size_t k)
{
    if (m_blocks[k].bitmap || !m_blocks[k].pieces.empty())
        return;
    if (k > 0 && !m_blocks[k - 1].bitmap)
        m_lower.erase(m_lower.begin() + k);
    else if (k + 1 < m_blocks.size() && !m_blocks[k + 1].bitmap)
        m_lower.erase(m_lower.begin() + k + 1);
    else
        return;
    m_blocks.erase(m_blocks.begin() + k);
    m_found = 0;
}

template class HbiIntervalStore<HbiIntervalIntSmall>;
template class HbiIntervalStore<HbiIntervalIntSmallO64>;
