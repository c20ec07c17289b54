// Selecting among ten million samples that a view shows, against the 100 ms after which a person
// waits, and against a plain loop over as many bits in words.
#include "RatioLimits.h"

#include <util/dataset/KudMemoryDataTable.h>
#include <util/dataset/KudSelector.h>
#include <util/dataset/KudTableModel.h>

#include <benchmark/benchmark.h>

#include <QtCore/QtAlgorithms>
#include <QtWidgets/QApplication>
#include <QtWidgets/QTableView>

#include <algorithm>
#include <cstring>
#include <random>

namespace
{
constexpr int COUNT = 10000000;
using Words = std::vector<quint64>;

/// A table with a mask and a view of it.
struct Survey {
    Survey()
        : table(QStringLiteral("survey"))
    {
        table.setSampleCount(COUNT);
        table.createVariable(HbdVariableDetails(QStringLiteral("v"), HbdEVarType::SELECTION));
        view.setModel(table.getModel());
        view.setSelectionModel(table.getMask()->getSelectionModel());
        KudSelector::follow(&view);
        view.show();
    }

    KudMemoryDataTable table;
    QTableView view;
};

void selectAllInView(benchmark::State& state)
{
    Survey survey;
    for (auto _ : state) {
        survey.view.selectAll();
        state.PauseTiming();
        survey.table.getMask()->deselectAll();
        state.ResumeTiming();
    }
}
BENCHMARK(selectAllInView)->Unit(benchmark::kMillisecond);

void selectAllAndPaint(benchmark::State& state)
{
    Survey survey;
    for (auto _ : state) {
        survey.view.selectAll();
        benchmark::DoNotOptimize(survey.view.grab());
        state.PauseTiming();
        survey.table.getMask()->deselectAll();
        state.ResumeTiming();
    }
}
BENCHMARK(selectAllAndPaint)->Unit(benchmark::kMillisecond);

void fillWords(benchmark::State& state)
{
    Words words(COUNT / 64);
    for (auto _ : state) {
        std::memset(words.data(), 0xFF, words.size() * 8);
        benchmark::DoNotOptimize(words.data());
        benchmark::ClobberMemory();
    }
}
BENCHMARK(fillWords)->Unit(benchmark::kMillisecond);

void invert(benchmark::State& state)
{
    Survey survey;
    survey.table.getMask()->select({HbiIntervalIntSmall(1000, COUNT / 2)}, Ku::Select);
    for (auto _ : state)
        survey.table.getMask()->invert();
}
BENCHMARK(invert)->Unit(benchmark::kMillisecond);

void invertWords(benchmark::State& state)
{
    Words words(COUNT / 64);
    for (auto _ : state) {
        quint64 count = 0;
        for (quint64& word : words) {
            word = ~word;
            count += qPopulationCount(word);
        }
        benchmark::DoNotOptimize(words.data());
        benchmark::DoNotOptimize(count);
    }
}
BENCHMARK(invertWords)->Unit(benchmark::kMillisecond);

QBitArray everySecond()
{
    QBitArray bits(COUNT);
    for (int rank = 0; rank < COUNT; rank += 2)
        bits.setBit(rank);
    return bits;
}

QBitArray randomHalf()
{
    std::mt19937_64 random(1);
    Words words(COUNT / 64 + 1);
    std::generate(words.begin(), words.end(), std::ref(random));
    return QBitArray::fromBits(reinterpret_cast<const char*>(words.data()), COUNT);
}

void setBits(benchmark::State& state, const QBitArray& bits)
{
    Survey survey;
    const QBitArray others = ~bits;
    bool isFirst = false;
    for (auto _ : state)
        survey.table.getMask()->setBitArray((isFirst = !isFirst) ? bits : others);
}

void maskEverySecond(benchmark::State& state)
{
    setBits(state, everySecond());
}
BENCHMARK(maskEverySecond)->Unit(benchmark::kMillisecond);

void selectRandomHalf(benchmark::State& state)
{
    setBits(state, randomHalf());
}
BENCHMARK(selectRandomHalf)->Unit(benchmark::kMillisecond);

void copyWords(benchmark::State& state)
{
    const QBitArray bits = randomHalf();
    Words words(COUNT / 64);
    for (auto _ : state) {
        std::memcpy(words.data(), bits.bits(), words.size() * 8);
        quint64 count = 0;
        for (const quint64 word : words)
            count += qPopulationCount(word);
        benchmark::DoNotOptimize(count);
    }
}
BENCHMARK(copyWords)->Unit(benchmark::kMillisecond);

/// What a person does not notice.
void hundredMilliseconds(benchmark::State& state)
{
    for (auto _ : state)
        state.SetIterationTime(0.1);
}
BENCHMARK(hundredMilliseconds)->UseManualTime()->Unit(benchmark::kMillisecond);
} // namespace

int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    return runWithLimits(argc, argv,
                         {{"selectAllInView", "hundredMilliseconds", 0.1},
                          {"selectAllAndPaint", "hundredMilliseconds", 0.1},
                          {"invert", "hundredMilliseconds", 0.1},
                          {"maskEverySecond", "hundredMilliseconds", 0.1},
                          {"selectRandomHalf", "hundredMilliseconds", 0.1},
                          {"selectAllInView", "fillWords", 50.0},
                          {"invert", "invertWords", 4.0},
                          {"maskEverySecond", "copyWords", 10.0},
                          {"selectRandomHalf", "copyWords", 5.0}});
}
