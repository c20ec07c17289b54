#pragma once

#include <QtCore/QtGlobal>

#include <array>

/// The dense part of a set of ranks: 65536 consecutive ranks, one bit each, addressed by their
/// offset 0..65535. Ranges are closed. It knows how many bits are set.
class HbiRankBitmap
{
public:
    static constexpr quint32 SIZE = 65536;

    quint32 getCount() const { return m_count; }

    bool test(quint32 offset) const { return m_words[offset / 64] >> (offset % 64) & 1; }
    /// Answers the number of bits that were clear before, 0 or 1.
    quint32 set(quint32 offset)
    {
        quint64& word = m_words[offset / 64];
        const quint32 added = quint32(~word >> (offset % 64) & 1);
        word |= quint64(1) << (offset % 64);
        m_count += added;
        return added;
    }
    void setRange(quint32 first, quint32 last);
    void clearRange(quint32 first, quint32 last);
    void unite(const HbiRankBitmap& other);
    void subtract(const HbiRankBitmap& other);

    /// The first set or clear bit at or after `from`, the last set bit at or before `from`; SIZE
    /// when there is none. `from` may be SIZE in the first two.
    quint32 findSet(quint32 from) const;
    quint32 findClear(quint32 from) const;
    quint32 findSetBackwards(quint32 from) const;

private:
    static constexpr quint32 WORDS = SIZE / 64;

    std::array<quint64, WORDS> m_words{};
    quint32 m_count = 0;
};
