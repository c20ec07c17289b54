// Sets of ranks against a plain bitset that is sized once.
#include <RatioLimits.h>

#include <basic/interval/HbiIntervalIntSmallDisjoint.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <numeric>
#include <random>
#include <set>
#include <vector>

namespace
{
constexpr int COUNT = 1000000;

std::vector<int> ascending()
{
    std::vector<int> ranks(COUNT);
    std::iota(ranks.begin(), ranks.end(), 0);
    return ranks;
}
std::vector<int> shuffled()
{
    std::vector<int> ranks = ascending();
    std::shuffle(ranks.begin(), ranks.end(), std::mt19937(3));
    return ranks;
}
std::vector<int> evenThenOdd()
{
    std::vector<int> ranks = ascending();
    std::stable_partition(ranks.begin(), ranks.end(), [](int rank) { return rank % 2 == 0; });
    return ranks;
}
/// Distinct ranks over the whole type, in no order.
std::vector<int> scattered()
{
    std::vector<int> ranks(COUNT);
    std::mt19937 random(5);
    std::generate(ranks.begin(), ranks.end(), [&] { return int(random()); });
    return ranks;
}

HbiIntervalIntSmallDisjoint setOf(const std::vector<int>& ranks)
{
    HbiIntervalIntSmallDisjoint set;
    for (int rank : ranks)
        set.add(rank);
    return set;
}
std::vector<quint64> bitsOf(const std::vector<int>& ranks)
{
    std::vector<quint64> bits((COUNT + 63) / 64);
    for (int rank : ranks)
        bits[std::size_t(rank) / 64] |= quint64(1) << (rank % 64);
    return bits;
}
/// Every second rank or so below a million, as a mask has them.
std::vector<int> half(unsigned seed)
{
    std::vector<int> ranks;
    std::mt19937 random(seed);
    for (int rank = 0; rank < COUNT; ++rank) {
        if (random() % 2)
            ranks.push_back(rank);
    }
    return ranks;
}

void addToSet(benchmark::State& state, std::vector<int> (*order)())
{
    const std::vector<int> ranks = order();
    for (auto _ : state)
        benchmark::DoNotOptimize(setOf(ranks).getCount());
}
void addToBitset(benchmark::State& state, std::vector<int> (*order)())
{
    const std::vector<int> ranks = order();
    for (auto _ : state)
        benchmark::DoNotOptimize(bitsOf(ranks).data());
}
void addToStdSet(benchmark::State& state, std::vector<int> (*order)())
{
    const std::vector<int> ranks = order();
    for (auto _ : state) {
        std::set<int> set;
        for (int rank : ranks)
            set.insert(rank);
        benchmark::DoNotOptimize(set.size());
    }
}

template <class Operation>
void combine(benchmark::State& state, Operation operation)
{
    const HbiIntervalIntSmallDisjoint a = setOf(half(1));
    const HbiIntervalIntSmallDisjoint b = setOf(half(2));
    for (auto _ : state) {
        HbiIntervalIntSmallDisjoint c = a;
        operation(c, b);
        benchmark::DoNotOptimize(c.getCount());
    }
}
void combineBits(benchmark::State& state)
{
    const std::vector<quint64> a = bitsOf(half(1));
    const std::vector<quint64> b = bitsOf(half(2));
    for (auto _ : state) {
        std::vector<quint64> c = a;
        quint64 count = 0;
        for (std::size_t i = 0; i < c.size(); ++i) {
            c[i] |= b[i];
            count += quint64(__builtin_popcountll(c[i]));
        }
        benchmark::DoNotOptimize(count);
    }
}

/// The set of a value-change notice: one edited cell, copied into the notice, united with the next.
void buildNotice(benchmark::State& state)
{
    int rank = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(rank);
        HbiIntervalIntSmallDisjoint set(rank);
        HbiIntervalIntSmallDisjoint copy(set);
        copy.unite(HbiIntervalIntSmallDisjoint(rank + 1));
        benchmark::DoNotOptimize(copy);
    }
}
} // namespace

BENCHMARK_CAPTURE(addToSet, ascending, ascending)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(addToBitset, ascending, ascending)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(addToSet, shuffled, shuffled)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(addToBitset, shuffled, shuffled)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(addToSet, evenThenOdd, evenThenOdd)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(addToBitset, evenThenOdd, evenThenOdd)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(addToSet, scattered, scattered)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(addToStdSet, scattered, scattered)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(combine, unite, [](auto& a, const auto& b) { a.unite(b); });
BENCHMARK_CAPTURE(combine, intersect, [](auto& a, const auto& b) { a.intersect(b); });
BENCHMARK_CAPTURE(combine, subtract, [](auto& a, const auto& b) { a.subtract(b); });
BENCHMARK_CAPTURE(combine, removeRanks, [](auto& a, const auto& b) { a.removeRanks(b); });
BENCHMARK(combineBits);
BENCHMARK(buildNotice);

int main(int argc, char** argv)
{
    return runWithLimits(argc, argv,
                         {{"addToSet/ascending", "addToBitset/ascending", 3},
                          {"addToSet/shuffled", "addToBitset/shuffled", 25},
                          {"addToSet/evenThenOdd", "addToBitset/evenThenOdd", 8},
                          {"addToSet/scattered", "addToStdSet/scattered", 1},
                          {"combine/unite", "combineBits", 8}});
}
