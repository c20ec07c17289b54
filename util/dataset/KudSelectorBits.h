#pragma once

#include <basic/interval/HbiIntervalIntSmallDisjoint.h>

#include <QtCore/QBitArray>
#include <QtCore/QtAlgorithms>

#include <vector>

/// Which samples are selected: a bit a sample, in words, with their number. A value.
///
/// Intervals are cut to the samples; a single rank is one of them, and other bits are of the same
/// size.
class KudSelectorBits
{
public:
    explicit KudSelectorBits(int size = 0, bool isSelected = false);
    /// Missing bits are not selected, bits beyond the samples are left out.
    KudSelectorBits(const QBitArray& bits, int size);

    int getSize() const { return m_size; }
    int getCount() const { return m_count; }
    bool contains(int rank) const { return rank >= 0 && rank < m_size; }
    bool isSelected(int rank) const
    {
        return (m_words[static_cast<std::size_t>(rank) / 64] >> (rank % 64) & 1) != 0;
    }

    void select(int rank)
    {
        quint64& word = m_words[static_cast<std::size_t>(rank) / 64];
        const quint64 bit = quint64(1) << (rank % 64);
        m_count += (word & bit) == 0;
        word |= bit;
    }
    void select(HbiIntervalIntSmall ranks);
    void deselect(HbiIntervalIntSmall ranks);
    void toggle(HbiIntervalIntSmall ranks);
    void select(const KudSelectorBits& other);
    void deselect(const KudSelectorBits& other);
    void toggle(const KudSelectorBits& other);

    /// New samples, at the end, are not selected.
    void resize(int size);
    /// Follows samples that were inserted before rank `at`; they are not selected.
    void insertGap(int at, int count);
    /// Follows the deletion of samples, in one pass.
    void removeRanks(const HbiIntervalIntSmallDisjoint& ranks);

    /// The first rank at or after `from` that is selected, or not selected; the size for none.
    int findSelected(int from) const { return find(from, 0); }
    int findDeselected(int from) const { return find(from, ~quint64(0)); }

    QBitArray toBitArray() const;
    HbiIntervalIntSmallDisjoint toRanks() const;

    friend bool operator==(const KudSelectorBits& a, const KudSelectorBits& b)
    {
        return a.m_size == b.m_size && a.m_count == b.m_count && a.m_words == b.m_words;
    }
    friend bool operator!=(const KudSelectorBits& a, const KudSelectorBits& b) { return !(a == b); }

private:
    HbiIntervalIntSmall samplesOf(HbiIntervalIntSmall ranks) const;
    template <class Change>
    int change(HbiIntervalIntSmall samples, Change change);
    template <class Change>
    void combine(const KudSelectorBits& other, Change change);
    int find(int from, quint64 flip) const;
    void append(const KudSelectorBits& from, int first, int last);
    void closeTail();

    std::vector<quint64> m_words; // bits beyond the size are 0
    int m_size = 0;
    int m_count = 0;
};
