// A column of 10,000,000 reals converted from one unit into another, against a plain loop that
// multiplies each value by a factor: both wait for memory. One value in 64 is undefined.
#include <RatioLimits.h>

#include <basic/base/HbbGlobal.h>
#include <basic/unit/HbuUnitService.h>

#include <benchmark/benchmark.h>

#include <vector>

namespace
{
constexpr std::size_t COUNT = 10000000;

std::vector<double> createColumn()
{
    std::vector<double> values(COUNT);
    for (std::size_t i = 0; i < COUNT; ++i)
        values[i] = i % 64 == 0 ? HbbGlobal::D_FFFF : 0.37 * double(i % 1009);
    return values;
}

HbuUnitTransfo conversion(const HbuEUnitClass& unitClass, const char* from, const char* to)
{
    const HbuUnitService& units = HbuUnitService::getInstance();
    return units.getConversion(units.getUnit(unitClass, QLatin1String(from)),
                               units.getUnit(unitClass, QLatin1String(to)));
}

/// There and back again, so that the values stay numbers of ordinary size.
void convert(benchmark::State& state, const HbuUnitTransfo& there)
{
    std::vector<double> values = createColumn();
    const HbuUnitTransfo back = there.inverted();
    bool isBack = true;
    for (auto _ : state) {
        isBack = !isBack;
        (isBack ? back : there).apply(values.data(), qint64(values.size()));
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * qint64(sizeof(double) * COUNT));
}

void plainMultiply(benchmark::State& state)
{
    std::vector<double> values = createColumn();
    double factor = 0.5;
    for (auto _ : state) {
        benchmark::DoNotOptimize(factor);
        for (double& value : values)
            value *= factor;
        benchmark::ClobberMemory();
        factor = 1. / factor;
    }
    state.SetBytesProcessed(state.iterations() * qint64(sizeof(double) * COUNT));
}

void multiplication(benchmark::State& state)
{
    convert(state, HbuUnitTransfo::linear(0.5));
}

void division(benchmark::State& state)
{
    convert(state, conversion(HbuEUnitClass::LENGTH, "ft", "m"));
}

void affine(benchmark::State& state)
{
    convert(state, conversion(HbuEUnitClass::TEMPERATURE, "degF", "degC"));
}

BENCHMARK(plainMultiply);
BENCHMARK(multiplication);
BENCHMARK(division);
BENCHMARK(affine);
} // namespace

int main(int argc, char** argv)
{
    return runWithLimits(argc, argv,
                         {{"multiplication", "plainMultiply", 1.3},
                          {"division", "plainMultiply", 1.3},
                          {"affine", "plainMultiply", 1.3}});
}
