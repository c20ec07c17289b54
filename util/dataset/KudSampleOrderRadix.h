#pragma once

#include <QtCore/QtGlobal>

#include <algorithm>
#include <array>
#include <limits>
#include <vector>

/// A sample and what it is sorted by; the smallest key comes first.
template <class Key>
struct KudSortedSample {
    Key key;
    int rank;

    bool operator<(const KudSortedSample& other) const { return key < other.key; }
};

/// Sorts samples by unsigned keys, by digits of the keys from the last to the first: equal keys
/// keep their order. Of long keys only the leading digits are sorted so, which tells nearly all of
/// them apart; what they leave together is sorted again by what follows.
template <class Key>
class KudSampleOrderRadix
{
public:
    using Sample = KudSortedSample<Key>;

    static void sort(std::vector<Sample>& samples)
    {
        if (std::is_sorted(samples.begin(), samples.end()))
            return;
        if (samples.size() <= FEW) {
            std::stable_sort(samples.begin(), samples.end());
            return;
        }
        std::vector<Sample> other(samples.size());
        if (sortRange(samples.data(), other.data(), samples.size()) != samples.data())
            samples.swap(other);
    }

private:
    static constexpr std::size_t FEW = 2048;
    static constexpr int DIGIT_BITS = 11;
    static constexpr int MAX_DIGITS = 3;
    static constexpr std::size_t DIGIT_COUNT = std::size_t(1) << DIGIT_BITS;

    static int bitsOf(Key range)
    {
        int bits = 0;
        for (; range != 0; range = Key(range >> 1))
            ++bits;
        return bits;
    }

    /// Sorts the samples, with another array of the same length to write to; whichever of the two
    /// holds them afterwards.
    static Sample* sortRange(Sample* samples, Sample* other, std::size_t count)
    {
        Key min = std::numeric_limits<Key>::max();
        Key max = 0;
        for (std::size_t i = 0; i < count; ++i) {
            min = std::min(min, samples[i].key);
            max = std::max(max, samples[i].key);
        }
        const int bits = bitsOf(Key(max - min));
        const int shift = std::max(0, bits - MAX_DIGITS * DIGIT_BITS);
        const int digits = (bits - shift + DIGIT_BITS - 1) / DIGIT_BITS;
        const auto leading = [min, shift](const Sample& sample) {
            return quint64(Key(sample.key - min)) >> shift;
        };
        Sample* sorted = sortByDigits(samples, other, count, digits, leading);
        if (shift > 0)
            sortEqualRuns(sorted, sorted == samples ? other : samples, count, leading);
        return sorted;
    }

    template <class Leading>
    static Sample* sortByDigits(Sample* from, Sample* to, std::size_t count, int digits,
                                Leading leading)
    {
        std::array<std::array<quint32, DIGIT_COUNT>, MAX_DIGITS> places{};
        for (std::size_t i = 0; i < count; ++i) {
            quint64 rest = leading(from[i]);
            for (int digit = 0; digit < digits; ++digit, rest >>= DIGIT_BITS)
                ++places[std::size_t(digit)][rest % DIGIT_COUNT];
        }
        for (int digit = 0; digit < digits; ++digit) {
            std::array<quint32, DIGIT_COUNT>& place = places[std::size_t(digit)];
            quint32 next = 0;
            for (quint32& first : place)
                next += std::exchange(first, next);
            const int down = digit * DIGIT_BITS;
            for (std::size_t i = 0; i < count; ++i)
                to[place[(leading(from[i]) >> down) % DIGIT_COUNT]++] = from[i];
            std::swap(from, to);
        }
        return from;
    }

    template <class Leading>
    static void sortEqualRuns(Sample* samples, Sample* other, std::size_t count, Leading leading)
    {
        std::size_t end = 0;
        for (std::size_t first = 0; first < count; first = end) {
            const quint64 digits = leading(samples[first]);
            for (end = first + 1; end < count && leading(samples[end]) == digits;)
                ++end;
            if (std::is_sorted(samples + first, samples + end))
                continue;
            if (end - first <= FEW)
                std::stable_sort(samples + first, samples + end);
            else if (sortRange(samples + first, other + first, end - first) != samples + first)
                std::copy(other + first, other + end, samples + first);
        }
    }
};
