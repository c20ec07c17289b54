#include "KudSelectorBits.h"

#include <algorithm>
#include <cstring>

static_assert(Q_BYTE_ORDER == Q_LITTLE_ENDIAN, "words and the bytes of a QBitArray are copied");

namespace
{
constexpr quint64 ALL = ~quint64(0);

std::size_t wordsFor(int size)
{
    return (static_cast<std::size_t>(size) + 63) / 64;
}

int countOf(const std::vector<quint64>& words)
{
    int count = 0;
    for (const quint64 word : words)
        count += static_cast<int>(qPopulationCount(word));
    return count;
}
} // namespace

KudSelectorBits::KudSelectorBits(int size, bool isSelected)
    : m_words(wordsFor(size), isSelected ? ALL : 0)
    , m_size(size)
    , m_count(isSelected ? size : 0)
{
    closeTail();
}

KudSelectorBits::KudSelectorBits(const QBitArray& bits, int size)
    : m_words(wordsFor(size))
    , m_size(std::min(bits.size(), size))
{
    if (m_size > 0)
        std::memcpy(m_words.data(), bits.bits(), (static_cast<std::size_t>(m_size) + 7) / 8);
    closeTail();
    m_size = size;
    m_count = countOf(m_words);
}

/// Bits beyond the size, in the word that has the last of the size, are not selected.
void KudSelectorBits::closeTail()
{
    if (m_size % 64 != 0)
        m_words[static_cast<std::size_t>(m_size) / 64] &= ALL >> (64 - m_size % 64);
}

/// Changes the words that hold the samples; how many of these were selected.
template <class Change>
int KudSelectorBits::change(HbiIntervalIntSmall samples, Change change)
{
    if (samples.isEmpty())
        return 0;
    const int first = samples.getMin();
    const int last = samples.getMax();
    const std::size_t firstWord = static_cast<std::size_t>(first) / 64;
    const std::size_t lastWord = static_cast<std::size_t>(last) / 64;
    int count = 0;
    for (std::size_t i = firstWord; i <= lastWord; ++i) {
        const quint64 from = i == firstWord ? ALL << (first % 64) : ALL;
        const quint64 to = i == lastWord ? ALL >> (63 - last % 64) : ALL;
        count += static_cast<int>(qPopulationCount(m_words[i] & from & to));
        m_words[i] = change(m_words[i], from & to);
    }
    return count;
}

HbiIntervalIntSmall KudSelectorBits::samplesOf(HbiIntervalIntSmall ranks) const
{
    return ranks.intersected(HbiIntervalIntSmall(0, m_size - 1));
}

void KudSelectorBits::select(HbiIntervalIntSmall ranks)
{
    const HbiIntervalIntSmall samples = samplesOf(ranks);
    const int before = change(samples, [](quint64 word, quint64 mask) { return word | mask; });
    m_count += static_cast<int>(samples.getLength()) - before;
}

void KudSelectorBits::deselect(HbiIntervalIntSmall ranks)
{
    m_count -= change(samplesOf(ranks), [](quint64 word, quint64 mask) { return word & ~mask; });
}

void KudSelectorBits::toggle(HbiIntervalIntSmall ranks)
{
    const HbiIntervalIntSmall samples = samplesOf(ranks);
    const int before = change(samples, [](quint64 word, quint64 mask) { return word ^ mask; });
    m_count += static_cast<int>(samples.getLength()) - 2 * before;
}

template <class Change>
void KudSelectorBits::combine(const KudSelectorBits& other, Change change)
{
    std::transform(m_words.begin(), m_words.end(), other.m_words.begin(), m_words.begin(), change);
    m_count = countOf(m_words);
}

void KudSelectorBits::select(const KudSelectorBits& other)
{
    if (m_count == 0)
        *this = other;
    else
        combine(other, [](quint64 a, quint64 b) { return a | b; });
}

void KudSelectorBits::deselect(const KudSelectorBits& other)
{
    combine(other, [](quint64 a, quint64 b) { return a & ~b; });
}

void KudSelectorBits::toggle(const KudSelectorBits& other)
{
    if (m_count == 0)
        *this = other;
    else
        combine(other, [](quint64 a, quint64 b) { return a ^ b; });
}

void KudSelectorBits::resize(int size)
{
    const bool loses = size < m_size;
    m_words.resize(wordsFor(size));
    m_size = size;
    if (!loses)
        return;
    closeTail();
    m_count = countOf(m_words);
}

void KudSelectorBits::insertGap(int at, int count)
{
    KudSelectorBits moved;
    moved.m_words.resize(wordsFor(m_size + count));
    moved.append(*this, 0, at - 1);
    moved.m_size += count;
    moved.append(*this, at, m_size - 1);
    moved.m_count = m_count;
    *this = std::move(moved);
}

void KudSelectorBits::removeRanks(const HbiIntervalIntSmallDisjoint& ranks)
{
    KudSelectorBits kept;
    kept.m_words.resize(m_words.size());
    int next = 0;
    for (const HbiIntervalIntSmall& interval : ranks.intervals()) {
        if (interval.getMin() >= m_size)
            break;
        kept.append(*this, next, interval.getMin() - 1);
        next = std::min(interval.getMax(), m_size - 1) + 1;
    }
    kept.append(*this, next, m_size - 1);
    kept.m_words.resize(wordsFor(kept.m_size));
    kept.m_count = countOf(kept.m_words);
    *this = std::move(kept);
}

/// The words reach as far as needed already.
void KudSelectorBits::append(const KudSelectorBits& from, int first, int last)
{
    for (qint64 at = first; at <= last; at += 64) {
        const auto source = static_cast<std::size_t>(at) / 64;
        const int shift = static_cast<int>(at % 64);
        const int count = static_cast<int>(std::min<qint64>(64, last - at + 1));
        quint64 bits = from.m_words[source] >> shift;
        if (shift > 0 && source + 1 < from.m_words.size())
            bits |= from.m_words[source + 1] << (64 - shift);
        bits &= ALL >> (64 - count);

        const auto target = static_cast<std::size_t>(m_size) / 64;
        const int offset = m_size % 64;
        m_words[target] |= bits << offset;
        if (offset + count > 64)
            m_words[target + 1] |= bits >> (64 - offset);
        m_size += count;
    }
}

int KudSelectorBits::find(int from, quint64 flip) const
{
    if (from >= m_size)
        return m_size;
    std::size_t i = static_cast<std::size_t>(from) / 64;
    quint64 word = (m_words[i] ^ flip) & ALL << (from % 64);
    while (word == 0) {
        if (++i == m_words.size())
            return m_size;
        word = m_words[i] ^ flip;
    }
    const std::size_t found = 64 * i + qCountTrailingZeroBits(word);
    return static_cast<int>(std::min(found, static_cast<std::size_t>(m_size)));
}

QBitArray KudSelectorBits::toBitArray() const
{
    return QBitArray::fromBits(reinterpret_cast<const char*>(m_words.data()), m_size);
}

HbiIntervalIntSmallDisjoint KudSelectorBits::toRanks() const
{
    HbiIntervalIntSmallDisjoint ranks;
    for (int first = findSelected(0); first < m_size;) {
        const int end = findDeselected(first);
        ranks.add(HbiIntervalIntSmall(first, end - 1));
        first = findSelected(end);
    }
    return ranks;
}
