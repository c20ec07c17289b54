// DECIMAL with six decimals against std::to_chars(fixed, 6), over the kinds of numbers that an
// export writes; the other formats stand on std::to_chars itself.
#include "RatioLimits.h"

#include <basic/base/HbbStringFormat.h>

#include <benchmark/benchmark.h>

#include <charconv>
#include <random>
#include <vector>

namespace
{
enum Kind { COORDINATES, GRADES, INTEGERS };

std::vector<double> makeValues(Kind kind)
{
    std::mt19937_64 random(7);
    std::uniform_real_distribution<double> coordinate(300000, 700000);
    std::lognormal_distribution<double> grade(0, 1);
    std::vector<double> values(100000);
    for (double& value : values) {
        value = kind == COORDINATES ? coordinate(random)
                : kind == GRADES    ? grade(random)
                                    : static_cast<double>(random() % 1000000);
    }
    return values;
}

template <class Write>
void run(benchmark::State& state, Kind kind, Write write)
{
    const std::vector<double> values = makeValues(kind);
    char buffer[HbbStringFormat::CAPACITY];
    for (auto _ : state) {
        for (const double value : values)
            benchmark::DoNotOptimize(write(buffer, value));
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * static_cast<qint64>(values.size()));
}

void decimal(benchmark::State& state, Kind kind)
{
    run(state, kind, [](char* out, double value) {
        return HbbStringFormat::write(out, value, HbbEFormat::E_DECIMAL, 6);
    });
}

void toChars(benchmark::State& state, Kind kind)
{
    run(state, kind, [](char* out, double value) {
        return std::to_chars(out, out + HbbStringFormat::CAPACITY, value, std::chars_format::fixed,
                             6)
            .ptr;
    });
}
} // namespace

BENCHMARK_CAPTURE(decimal, coordinates, COORDINATES);
BENCHMARK_CAPTURE(toChars, coordinates, COORDINATES);
BENCHMARK_CAPTURE(decimal, grades, GRADES);
BENCHMARK_CAPTURE(toChars, grades, GRADES);
BENCHMARK_CAPTURE(decimal, integers, INTEGERS);
BENCHMARK_CAPTURE(toChars, integers, INTEGERS);

int main(int argc, char** argv)
{
    return runWithLimits(argc, argv,
                         {{"decimal/coordinates", "toChars/coordinates", 0.5},
                          {"decimal/grades", "toChars/grades", 0.5},
                          {"decimal/integers", "toChars/integers", 0.6}});
}
