// One row of an export (a name, three reals, a rank) as delimited text. The limit is the same bytes
// without any rule: numbers formatted, text copied.
#include <util/extern/KueCsvWriter.h>

#include "RatioLimits.h"

#include <basic/base/HbbStringFormat.h>

#include <benchmark/benchmark.h>

#include <cstring>

namespace
{
constexpr int ROWS = 1000;
const QString NAME = QStringLiteral("Borehole north 12");

double valueAt(int row, int column)
{
    return 1234.567 * (row + 1) + 0.321 * column;
}

void report(benchmark::State& state, qint64 bytes)
{
    state.SetItemsProcessed(state.iterations() * ROWS);
    state.SetBytesProcessed(state.iterations() * bytes);
}

void writeBlock(benchmark::State& state)
{
    KueCsvWriter writer(KueCsv(';', false, '"', ','));
    qint64 bytes = 0;
    for ([[maybe_unused]] auto _ : state) {
        writer.clear();
        for (int row = 0; row < ROWS; ++row) {
            writer.appendText(NAME);
            for (int column = 0; column < 3; ++column)
                writer.appendReal(valueAt(row, column), HbbEFormat::E_DECIMAL, 3);
            writer.appendInteger(row);
            writer.endLine();
        }
        bytes = writer.size();
        benchmark::DoNotOptimize(writer.data());
    }
    report(state, bytes);
}

void encodeRows(benchmark::State& state)
{
    const KueCsv codec(';', false, '"', ',');
    QByteArray block;
    for ([[maybe_unused]] auto _ : state) {
        block.clear();
        for (int row = 0; row < ROWS; ++row) {
            QList<KueFormatedVariant> cells{{NAME}};
            for (int column = 0; column < 3; ++column)
                cells.append({valueAt(row, column), HbbEFormat::DECIMAL, 3});
            cells.append({row});
            block += codec.encodeValues(cells) + '\n';
        }
        benchmark::DoNotOptimize(block.data());
    }
    report(state, block.size());
}

void formatOnly(benchmark::State& state)
{
    std::vector<char> block(ROWS * 1000);
    const QByteArray name = NAME.toUtf8();
    qint64 bytes = 0;
    for ([[maybe_unused]] auto _ : state) {
        char* out = block.data();
        for (int row = 0; row < ROWS; ++row) {
            std::memcpy(out, name.constData(), static_cast<std::size_t>(name.size()));
            out += name.size();
            for (int column = 0; column < 3; ++column) {
                *out++ = ';';
                out = HbbStringFormat::write(out, valueAt(row, column), HbbEFormat::E_DECIMAL, 3);
            }
            *out++ = ';';
            out = HbbStringFormat::write(out, row);
            *out++ = '\n';
        }
        bytes = out - block.data();
        benchmark::DoNotOptimize(block.data());
    }
    report(state, bytes);
}

BENCHMARK(writeBlock);
BENCHMARK(encodeRows);
BENCHMARK(formatOnly);
} // namespace

int main(int argc, char** argv)
{
    return runWithLimits(argc, argv,
                         {{"writeBlock", "formatOnly", 3}, {"writeBlock", "encodeRows", 0.3}});
}
