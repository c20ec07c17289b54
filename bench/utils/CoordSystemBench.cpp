// Coordinates from one system to another, beside PROJ's own call for a whole array in one thread.
// Two threads are judged by the clock, and need two idle cores to be.

#include <util/utils/KuuCoordSystemConverter.h>

#include <RatioLimits.h>

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <proj.h>
#include <vector>

namespace
{
long g_allocations = 0; // read while one thread runs
}

// Counts for every library of the program.
extern "C" void* __libc_malloc(std::size_t size);
extern "C" void* malloc(std::size_t size) noexcept
{
    __atomic_add_fetch(&g_allocations, 1, __ATOMIC_RELAXED);
    return __libc_malloc(size);
}

namespace
{
constexpr qint64 COUNT = 5000000;

KuuCoordSystem read(const char* text)
{
    return KuuCoordSystem::unserialize(QString::fromLatin1(text));
}

/// Places all over France; filled anew outside of the measured time.
struct Points {
    std::vector<double> x = std::vector<double>(COUNT);
    std::vector<double> y = std::vector<double>(COUNT);

    void fill()
    {
        for (std::size_t i = 0; i < x.size(); ++i) {
            x[i] = -4. + 11. * double(i % 1009) / 1009.;
            y[i] = 42. + 9. * double(i % 4001) / 4001.;
        }
    }
};

Points& points()
{
    static Points shared;
    return shared;
}

void projBulk(benchmark::State& state)
{
    PJ* plain = proj_create_crs_to_crs(nullptr, "EPSG:4326", "EPSG:2154", nullptr);
    PJ* operation = proj_normalize_for_visualization(nullptr, plain);
    for (auto _ : state) {
        state.PauseTiming();
        points().fill();
        state.ResumeTiming();
        benchmark::DoNotOptimize(proj_trans_generic(
            operation, PJ_FWD, points().x.data(), sizeof(double), COUNT, points().y.data(),
            sizeof(double), COUNT, nullptr, 0, 0, nullptr, 0, 0));
    }
    proj_destroy(operation);
    proj_destroy(plain);
}

void projBulkByClock(benchmark::State& state)
{
    projBulk(state);
}

void convert(benchmark::State& state, int threads)
{
    const KuuCoordSystemConverter converter(read("EPSG:4326"), read("EPSG:2154"));
    for (auto _ : state) {
        state.PauseTiming();
        points().fill();
        state.ResumeTiming();
        benchmark::DoNotOptimize(
            converter.convert(points().x.data(), points().y.data(), nullptr, COUNT, 1, threads));
    }
}

void oneThread(benchmark::State& state)
{
    convert(state, 1);
}

void twoThreads(benchmark::State& state)
{
    convert(state, 2);
}

/// The search that the first converter of a pair pays for, as PROJ makes it.
void searchOfDatabase(benchmark::State& state)
{
    for (auto _ : state) {
        PJ_CONTEXT* context = proj_context_create();
        PJ* operation = proj_create_crs_to_crs(context, "EPSG:4230", "EPSG:25831", nullptr);
        benchmark::DoNotOptimize(operation);
        proj_destroy(operation);
        proj_context_destroy(context);
    }
}

void secondConverter(benchmark::State& state)
{
    const KuuCoordSystem from = read("EPSG:4230");
    const KuuCoordSystem to = read("EPSG:25831");
    const KuuCoordSystemConverter first(from, to);
    for (auto _ : state)
        benchmark::DoNotOptimize(KuuCoordSystemConverter(from, to).isReprojection());
}

void onePoint(benchmark::State& state)
{
    const KuuCoordSystemConverter converter(read("EPSG:4326"), read("EPSG:2154"));
    HbgVector2D warm(3., 46.5);
    converter.convert(warm);
    const long before = g_allocations;
    for (auto _ : state) {
        HbgVector2D point(3., 46.5);
        benchmark::DoNotOptimize(converter.convert(point));
    }
    if (g_allocations > before + 10)
        state.SkipWithError("a point allocates memory");
}

void projOnePoint(benchmark::State& state)
{
    PJ* plain = proj_create_crs_to_crs(nullptr, "EPSG:4326", "EPSG:2154", nullptr);
    PJ* operation = proj_normalize_for_visualization(nullptr, plain);
    for (auto _ : state)
        benchmark::DoNotOptimize(proj_trans(operation, PJ_FWD, proj_coord(3., 46.5, 0., HUGE_VAL)));
    proj_destroy(operation);
    proj_destroy(plain);
}
} // namespace

BENCHMARK(projBulk)->Unit(benchmark::kMillisecond);
BENCHMARK(oneThread)->Unit(benchmark::kMillisecond);
BENCHMARK(projBulkByClock)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(twoThreads)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(searchOfDatabase)->Unit(benchmark::kMicrosecond);
BENCHMARK(secondConverter)->Unit(benchmark::kMicrosecond);
BENCHMARK(projOnePoint);
BENCHMARK(onePoint);

int main(int argc, char** argv)
{
    return runWithLimits(argc, argv,
                         {{"oneThread", "projBulk", 1.05},
                          {"twoThreads", "projBulkByClock", 0.6},
                          {"secondConverter", "searchOfDatabase", 0.01},
                          {"onePoint", "projOnePoint", 3}});
}
