// 100,000 polylines of 20 points as the fields of a memento and back, beside compressing the same
// coordinates and writing them in base64.
#include <RatioLimits.h>

#include <util/utils/KuuGeometrySet.h>

#include <benchmark/benchmark.h>
#include <zstd.h>

#include <cmath>
#include <cstdio>
#include <random>
#include <vector>

namespace
{
constexpr int POLYLINES = 100000;
constexpr int POINTS = 20;

/// Contour lines as they are digitised: steps of some metres, to the centimetre.
const KuuGeometrySet& contours()
{
    static const KuuGeometrySet made = [] {
        std::mt19937_64 random(7);
        std::normal_distribution<double> step(0., 5.);
        const auto rounded = [](double metres) { return std::round(metres * 100.) / 100.; };
        HbgGeomPolylineSet lines;
        for (int i = 0; i < POLYLINES; ++i) {
            double x = 652000. + double(i % 300) * 100.;
            double y = 6862000. + double(i / 300) * 100.;
            HbgGeomPolyline line;
            for (int n = 0; n < POINTS; ++n) {
                x += step(random);
                y += step(random);
                line.append(HbgVector2D(rounded(x), rounded(y)));
            }
            lines.append(line);
        }
        return KuuGeometrySet(lines, false);
    }();
    return made;
}

const std::vector<double>& coordinates()
{
    static const std::vector<double> made = [] {
        std::vector<double> values;
        for (const HbgGeomPolyline& line : contours().toPolylineSet().getPolylines()) {
            for (const HbgVector3D& point : line.getPoints())
                values.push_back(point.x);
        }
        for (const HbgGeomPolyline& line : contours().toPolylineSet().getPolylines()) {
            for (const HbgVector3D& point : line.getPoints())
                values.push_back(point.y);
        }
        return values;
    }();
    return made;
}

QByteArray packed()
{
    const std::size_t size = coordinates().size() * sizeof(double);
    QByteArray frame(static_cast<int>(ZSTD_compressBound(size)), Qt::Uninitialized);
    frame.truncate(static_cast<int>(ZSTD_compress(
        frame.data(), std::size_t(frame.size()), coordinates().data(), size, ZSTD_CLEVEL_DEFAULT)));
    return frame;
}

void save(benchmark::State& state)
{
    contours();
    for (auto _ : state)
        benchmark::DoNotOptimize(contours().toVariantMap().size());
}
BENCHMARK(save)->Unit(benchmark::kMillisecond);

void load(benchmark::State& state)
{
    const QVariantMap map = contours().toVariantMap();
    for (auto _ : state)
        benchmark::DoNotOptimize(KuuGeometrySet::fromVariantMap(map).getSampleCount());
}
BENCHMARK(load)->Unit(benchmark::kMillisecond);

void compressAndEncode(benchmark::State& state)
{
    coordinates();
    for (auto _ : state)
        benchmark::DoNotOptimize(packed().toBase64().size());
}
BENCHMARK(compressAndEncode)->Unit(benchmark::kMillisecond);
} // namespace

int main(int argc, char** argv)
{
    const int verdict = runWithLimits(
        argc, argv, {{"save", "compressAndEncode", 2.0}, {"load", "compressAndEncode", 2.0}});

    qint64 textSize = 0;
    for (const QVariant& field : contours().toVariantMap())
        textSize += field.toByteArray().size();
    const double ratio = double(textSize) / double(packed().size());
    std::printf("size of the texts / compressed size: %.2f (limit 1.4)\n", ratio);
    return ratio > 1.4 ? 1 : verdict;
}
