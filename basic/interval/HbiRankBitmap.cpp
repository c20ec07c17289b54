#include "HbiRankBitmap.h"

#include <QtCore/QtAlgorithms>

namespace
{
constexpr quint64 ALL = ~quint64(0);

/// The bits of word `index` that lie in [first, last]; the word must meet the range.
quint64 maskOf(quint32 index, quint32 first, quint32 last)
{
    const quint64 from = index == first / 64 ? ALL << (first % 64) : ALL;
    const quint64 to = index == last / 64 ? ALL >> (63 - last % 64) : ALL;
    return from & to;
}
} // namespace

void HbiRankBitmap::setRange(quint32 first, quint32 last)
{
    for (quint32 i = first / 64; i <= last / 64; ++i) {
        const quint64 mask = maskOf(i, first, last);
        m_count += qPopulationCount(mask & ~m_words[i]);
        m_words[i] |= mask;
    }
}

void HbiRankBitmap::clearRange(quint32 first, quint32 last)
{
    for (quint32 i = first / 64; i <= last / 64; ++i) {
        const quint64 mask = maskOf(i, first, last);
        m_count -= qPopulationCount(mask & m_words[i]);
        m_words[i] &= ~mask;
    }
}

void HbiRankBitmap::unite(const HbiRankBitmap& other)
{
    m_count = 0;
    for (quint32 i = 0; i < WORDS; ++i) {
        m_words[i] |= other.m_words[i];
        m_count += qPopulationCount(m_words[i]);
    }
}

void HbiRankBitmap::subtract(const HbiRankBitmap& other)
{
    m_count = 0;
    for (quint32 i = 0; i < WORDS; ++i) {
        m_words[i] &= ~other.m_words[i];
        m_count += qPopulationCount(m_words[i]);
    }
}

quint32 HbiRankBitmap::findSet(quint32 from) const
{
    if (from >= SIZE)
        return SIZE;
    quint32 i = from / 64;
    quint64 word = m_words[i] & ALL << (from % 64);
    while (word == 0) {
        if (++i == WORDS)
            return SIZE;
        word = m_words[i];
    }
    return i * 64 + qCountTrailingZeroBits(word);
}

quint32 HbiRankBitmap::findClear(quint32 from) const
{
    if (from >= SIZE)
        return SIZE;
    quint32 i = from / 64;
    quint64 word = ~m_words[i] & ALL << (from % 64);
    while (word == 0) {
        if (++i == WORDS)
            return SIZE;
        word = ~m_words[i];
    }
    return i * 64 + qCountTrailingZeroBits(word);
}

quint32 HbiRankBitmap::findSetBackwards(quint32 from) const
{
    quint32 i = from / 64;
    quint64 word = m_words[i] & ALL >> (63 - from % 64);
    while (word == 0) {
        if (i-- == 0)
            return SIZE;
        word = m_words[i];
    }
    return i * 64 + 63 - qCountLeadingZeroBits(word);
}
