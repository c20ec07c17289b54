#pragma once

#include "HbiRankBitmap.h"

#include <QtCore/QAtomicInt>

#include <limits>
#include <memory>
#include <vector>

/// What the copies of a disjoint set share: the ranks of a set of two intervals or more.
///
/// The whole range of ranks is cut into consecutive blocks, found by binary search over their lower
/// ends. A block is either a short sorted array of pieces, whatever their spread, or a bitmap of
/// exactly 65536 ranks. An array that grows too long is cut in two, or, where its pieces crowd,
/// turned into a bitmap; a bitmap that fills up or thins out becomes an array again. All cuts are
/// at multiples of 65536. Pieces of different blocks may touch: who reads the store joins them.
template <class Interval>
class HbiIntervalStore
{
public:
    using Rank = typename Interval::RankType;

    static constexpr std::size_t MAX_PIECES = 512; // an array of them takes about half a bitmap

    HbiIntervalStore();
    /// Of pieces that neither meet nor touch, in ascending order, MAX_PIECES at most.
    explicit HbiIntervalStore(std::vector<Interval> pieces);
    HbiIntervalStore(const HbiIntervalStore& other); // a deep copy, with one reference

    /// The number of ranks modulo 2^64.
    quint64 getCount() const { return m_count; }
    bool contains(Rank rank) const;

    void add(Rank rank)
    {
        const std::size_t k = _findNear(rank);
        if (HbiRankBitmap* bitmap = m_blocks[k].bitmap.get()) {
            m_count += bitmap->set(_offset(k, rank));
            if (bitmap->getCount() != HbiRankBitmap::SIZE)
                return;
        } else {
            _addToPieces(k, Interval(rank, rank));
        }
        _settle(k);
    }
    void add(const Interval& range) { _assign(range, true); }
    void remove(const Interval& range);
    /// Adds or removes all ranks of `other`, bitmap by bitmap where both have one.
    void unite(const HbiIntervalStore& other) { _combine(other, true); }
    void subtract(const HbiIntervalStore& other) { _combine(other, false); }

    /// The piece at (block, index), which then moves on; empty at the end. (0, 0) is the start.
    Interval takePiece(std::size_t& block, std::size_t& index) const;
    /// Moves (block, index) to the piece that holds `rank`, or else to the next one. The first
    /// piece taken in a bitmap begins at `rank` or above.
    void seek(Rank rank, std::size_t& block, std::size_t& index) const;
    /// The highest rank of the set at or below `rank`; there must be one.
    Rank lastAtOrBelow(Rank rank) const;

    /// Held by the sets that share the store.
    QAtomicInt references{1};

private:
    struct Block {
        std::vector<Interval> pieces;
        std::unique_ptr<HbiRankBitmap> bitmap;
    };

    static constexpr std::size_t CROWD = 256; // pieces within 65536 ranks that make a bitmap
    static constexpr quint32 THIN = 64;       // a bitmap with fewer ranks becomes an array

    Rank _upper(std::size_t k) const
    {
        return k + 1 < m_lower.size() ? m_lower[k + 1] - 1 : std::numeric_limits<Rank>::max();
    }
    quint32 _offset(std::size_t k, Rank rank) const
    {
        return quint32(quint64(rank) - quint64(m_lower[k]));
    }
    std::size_t _find(Rank rank) const
    {
        const Rank* base = m_lower.data();
        for (std::size_t n = m_lower.size(); n > 1;) {
            const std::size_t half = n / 2;
            base += base[half] <= rank ? half : 0;
            n -= half;
        }
        return std::size_t(base - m_lower.data());
    }
    bool _isIn(std::size_t k, Rank rank) const
    {
        return k < m_lower.size() && m_lower[k] <= rank && rank <= _upper(k);
    }
    /// Bitmaps that follow one another are reached by their distance from the block found last.
    std::size_t _findNear(Rank rank)
    {
        const qint64 distance = (qint64(rank) >> 16) - (qint64(m_lower[m_found]) >> 16);
        const std::size_t guess = m_found + std::size_t(distance);
        if (_isIn(guess, rank))
            return guess;
        if (!_isIn(m_found, rank))
            m_found = _find(rank);
        return m_found;
    }
    quint64 _countOf(std::size_t k) const;
    void _combine(const HbiIntervalStore& other, bool present);
    void _assign(const Interval& range, bool present);
    void _assignInBlock(std::size_t k, const Interval& range, bool present);
    void _addToPieces(std::size_t k, const Interval& range);
    void _removeFromPieces(std::size_t k, const Interval& range);
    void _replaceBlocks(std::size_t first, std::size_t end, bool present);
    void _settle(std::size_t k);
    void _split(std::size_t k);
    void _insertBlock(std::size_t k, Rank lower, std::vector<Interval> pieces);
    void _dropIfEmpty(std::size_t k);

    std::vector<Rank> m_lower; // the lower end of each block; the first is the lowest rank of all
    std::vector<Block> m_blocks;
    quint64 m_count = 0;
    std::size_t m_found = 0; // the block that took a search last; always a valid index
};
