// Saving and loading a dataset of a million samples of ten columns, beside compressing the same
// bytes and writing them in base64.
#include <RatioLimits.h>

#include <util/dataset/KudGenericDatasetFactory.h>
#include <util/dataset/KudMemoryDatasetPoint.h>
#include <util/utils/KuuMemento.h>
#include <util/xml/KuxXmlMementoFile.h>

#include <basic/data/HbdVariableReal.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QFileInfo>
#include <QtCore/QTemporaryDir>

#include <benchmark/benchmark.h>
#include <zstd.h>

#include <cmath>
#include <cstdio>
#include <random>

namespace
{
constexpr int SAMPLES = 1000000;
constexpr int COLUMNS = 10;

/// Grades as they are measured: two decimals, skewed.
const KudMemoryDatasetPoint& dataset()
{
    static const std::unique_ptr<KudMemoryDatasetPoint> made = [] {
        auto points = std::make_unique<KudMemoryDatasetPoint>(QStringLiteral("Bench"));
        std::mt19937_64 random(7);
        std::lognormal_distribution<double> grade(1.0, 1.0);
        HbdDataTable table;
        for (int c = 0; c < COLUMNS; ++c) {
            auto column =
                std::make_unique<HbdVariableReal>(HbdVariableDetails(QStringLiteral("v%1").arg(c)));
            for (int i = 0; i < SAMPLES; ++i)
                column->append(std::round(grade(random) * 100) / 100);
            table.addVariable(std::move(column));
        }
        points->setDataTable(std::move(table));
        return points;
    }();
    return *made;
}

QByteArray bytesOf(int column)
{
    const auto* values = static_cast<const HbdVariableReal*>(
        dataset().getPointTable()->getDataTable().getVariableAt(column));
    return QByteArray::fromRawData(reinterpret_cast<const char*>(values->getValues().data()),
                                   SAMPLES * static_cast<int>(sizeof(double)));
}

QByteArray packed(const QByteArray& bytes)
{
    QByteArray frame(static_cast<int>(ZSTD_compressBound(std::size_t(bytes.size()))),
                     Qt::Uninitialized);
    frame.truncate(
        static_cast<int>(ZSTD_compress(frame.data(), std::size_t(frame.size()), bytes.constData(),
                                       std::size_t(bytes.size()), ZSTD_CLEVEL_DEFAULT)));
    return frame;
}

const QTemporaryDir& directory()
{
    static const QTemporaryDir made;
    return made;
}

QString path()
{
    return directory().filePath(QStringLiteral("dataset.xml"));
}

void save(benchmark::State& state)
{
    dataset();
    for (auto _ : state)
        KuxXmlMementoFile::save(path(), dataset().getMemento());
}
BENCHMARK(save)->Unit(benchmark::kMillisecond);

void compressAndEncode(benchmark::State& state)
{
    dataset();
    for (auto _ : state) {
        for (int c = 0; c < COLUMNS; ++c)
            benchmark::DoNotOptimize(packed(bytesOf(c)).toBase64().size());
    }
}
BENCHMARK(compressAndEncode)->Unit(benchmark::kMillisecond);

void load(benchmark::State& state)
{
    KuxXmlMementoFile::save(path(), dataset().getMemento());
    for (auto _ : state) {
        const auto loaded =
            KudGenericDatasetFactory().create(KuxXmlMementoFile::read(path()), true);
        benchmark::DoNotOptimize(loaded->getObjectCount());
    }
}
BENCHMARK(load)->Unit(benchmark::kMillisecond);
} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const int verdict = runWithLimits(
        argc, argv, {{"save", "compressAndEncode", 4.0}, {"load", "compressAndEncode", 4.0}});

    KuxXmlMementoFile::save(path(), dataset().getMemento());
    qint64 compressedSize = 0;
    for (int c = 0; c < COLUMNS; ++c)
        compressedSize += packed(bytesOf(c)).size();
    const double ratio = double(QFileInfo(path()).size()) / double(compressedSize);
    std::printf("file size / compressed size: %.2f (limit 1.5)\n", ratio);
    return ratio > 1.5 ? 1 : verdict;
}
