#include "HbgRankSorter.h"

#include <QtCore/QtGlobal>

#include <algorithm>

/// By way of a bitmap, which takes two steps a rank and one for 64 ranks between the ends.
static void sortByBits(std::vector<int>& ranks, int min, int max)
{
    std::vector<quint64> bits(static_cast<size_t>(max - min) / 64 + 1);
    for (const int rank : ranks)
        bits[static_cast<size_t>(rank - min) / 64] |= quint64(1) << ((rank - min) % 64);
    size_t count = 0;
    for (size_t i = 0; i < bits.size(); ++i) {
        for (quint64 word = bits[i]; word != 0; word &= word - 1)
            ranks[count++] = min + static_cast<int>(64 * i) + __builtin_ctzll(word);
    }
}

/// Merges two runs that follow one another.
static void mergeRuns(const int* a, const int* middle, const int* end, int* merged)
{
    const int* b = middle;
    while (a != middle && b != end) {
        // Without a branch: which run is next cannot be foreseen.
        const bool isSecond = *b < *a;
        *merged++ = isSecond ? *b : *a;
        a += isSecond ? 0 : 1;
        b += isSecond ? 1 : 0;
    }
    std::copy(b, end, std::copy(a, middle, merged));
}

static void sortByRuns(std::vector<int>& ranks)
{
    std::vector<size_t> ends; // of the runs
    ends.reserve(32);
    for (size_t i = 1; i < ranks.size(); ++i) {
        if (ranks[i] < ranks[i - 1])
            ends.push_back(i);
    }
    ends.push_back(ranks.size());
    std::vector<int> merged(ranks.size());
    while (ends.size() > 1) {
        size_t runs = 0;
        size_t begin = 0;
        for (size_t i = 0; i < ends.size(); i += 2) {
            const size_t middle = ends[i];
            const size_t end = i + 1 < ends.size() ? ends[i + 1] : middle;
            mergeRuns(ranks.data() + begin, ranks.data() + middle, ranks.data() + end,
                      merged.data() + begin);
            ends[runs++] = end;
            begin = end;
        }
        ends.resize(runs);
        ranks.swap(merged);
    }
}

void HbgRankSorter::sort(std::vector<int>& ranks)
{
    if (ranks.empty())
        return;
    const auto ends = std::minmax_element(ranks.begin(), ranks.end());
    const int min = *ends.first;
    const int max = *ends.second;
    if (static_cast<size_t>(max - min) / 64 < 4 * ranks.size())
        sortByBits(ranks, min, max);
    else
        sortByRuns(ranks);
}
