// Picks in a million points against Boost's packed R-tree, called directly, which answers sorted
// vectors of ranks.
#include <RatioLimits.h>

#include <basic/geometry/HbgGeomPointSet.h>
#include <basic/interval/HbiIntervalIntSmallDisjoint.h>

#include <benchmark/benchmark.h>

#define BOOST_ALLOW_DEPRECATED_HEADERS // Boost 1.74 reads one of its own
#include <boost/geometry.hpp>
#include <boost/geometry/geometries/point_xy.hpp>
#include <boost/geometry/index/rtree.hpp>
#include <boost/iterator/function_output_iterator.hpp>

#include <algorithm>
#include <random>
#include <vector>

namespace
{
namespace bgi = boost::geometry::index;
using Point = boost::geometry::model::d2::point_xy<double>;
using Box = boost::geometry::model::box<Point>;
using Entry = std::pair<Point, int>;
using Tree = bgi::rtree<Entry, bgi::linear<16>>;

constexpr int COUNT = 1000000;
constexpr int PICKS = 100000;

struct Rectangle {
    double x, y, width, height;
};

struct Scene {
    QVector<double> x, y;
    std::vector<Rectangle> rectangles; // about 10 to 100 points each
    double tolerance;                  // a few points within it
};

/// Rectangles around points of the set, as a hand that selects finds them.
void placeRectangles(Scene& scene, double side, std::mt19937& random)
{
    std::uniform_real_distribution<double> part(0.5, 1.5);
    scene.tolerance = side / 4.;
    for (int i = 0; i < PICKS; ++i) {
        const auto at = static_cast<int>(random() % COUNT);
        const double width = side * part(random);
        const double height = side * part(random);
        scene.rectangles.push_back(
            {scene.x[at] - width / 3., scene.y[at] - height / 3., width, height});
    }
}

const Scene& uniformScene()
{
    static const Scene SCENE = [] {
        Scene scene;
        std::mt19937 random(1);
        std::uniform_real_distribution<double> place(0., 1000.);
        for (int i = 0; i < COUNT; ++i) {
            scene.x.append(1e7 + place(random));
            scene.y.append(5e6 + place(random));
        }
        placeRectangles(scene, 6.5, random);
        return scene;
    }();
    return SCENE;
}

/// A thousand clusters far apart, and one point far from them all.
const Scene& clusteredScene()
{
    static const Scene SCENE = [] {
        Scene scene;
        std::mt19937 random(2);
        std::uniform_real_distribution<double> place(0., 1e5);
        std::normal_distribution<double> spread(0., 1.);
        std::vector<double> centres(2000);
        std::generate(centres.begin(), centres.end(), [&] { return place(random); });
        for (int i = 0; i < COUNT; ++i) {
            const std::size_t cluster = random() % 1000;
            scene.x.append(1e6 + centres[2 * cluster] + spread(random));
            scene.y.append(1e6 + centres[2 * cluster + 1] + spread(random));
        }
        scene.x[0] = 1e12;
        placeRectangles(scene, 0.7, random);
        return scene;
    }();
    return SCENE;
}

HbgGeomPointSet pointsOf(const Scene& scene)
{
    HbgGeomPointSet points;
    points.setCoordinates(scene.x, scene.y);
    return points;
}

Tree treeOf(const Scene& scene)
{
    std::vector<Entry> entries;
    entries.reserve(COUNT);
    for (int rank = 0; rank < COUNT; ++rank)
        entries.emplace_back(Point(scene.x[rank], scene.y[rank]), rank);
    return Tree(entries.begin(), entries.end());
}

using Scenes = const Scene& (*)();

/// The index is built by the first pick.
void build(benchmark::State& state, Scenes scenes)
{
    const Scene& scene = scenes();
    for (auto _ : state)
        benchmark::DoNotOptimize(pointsOf(scene).pointToRank({0., 0.}, 1.));
}
void buildTree(benchmark::State& state, Scenes scenes)
{
    const Scene& scene = scenes();
    for (auto _ : state)
        benchmark::DoNotOptimize(treeOf(scene).size());
}

void pickRectangles(benchmark::State& state, Scenes scenes)
{
    const Scene& scene = scenes();
    const HbgGeomPointSet points = pointsOf(scene);
    points.pointToRank({0., 0.}, 1.);
    qint64 found = 0;
    for (auto _ : state) {
        for (const Rectangle& r : scene.rectangles)
            found += points.rectangleToRanks({r.x, r.y, r.width, r.height}).getCount();
    }
    state.counters["found"] = double(found) / double(state.iterations()) / PICKS;
}
void pickRectanglesInTree(benchmark::State& state, Scenes scenes)
{
    const Scene& scene = scenes();
    const Tree tree = treeOf(scene);
    std::size_t found = 0;
    for (auto _ : state) {
        for (const Rectangle& r : scene.rectangles) {
            std::vector<int> ranks;
            const Box box(Point(r.x, r.y), Point(r.x + r.width, r.y + r.height));
            tree.query(bgi::covered_by(box),
                       boost::make_function_output_iterator(
                           [&ranks](const Entry& entry) { ranks.push_back(entry.second); }));
            std::sort(ranks.begin(), ranks.end());
            found += ranks.size();
        }
    }
    state.counters["found"] = double(found) / double(state.iterations()) / PICKS;
}

void pickNearest(benchmark::State& state, Scenes scenes)
{
    const Scene& scene = scenes();
    const HbgGeomPointSet points = pointsOf(scene);
    points.pointToRank({0., 0.}, 1.);
    for (auto _ : state) {
        for (const Rectangle& r : scene.rectangles)
            benchmark::DoNotOptimize(points.pointToRank({r.x, r.y}, scene.tolerance));
    }
}
void pickNearestInTree(benchmark::State& state, Scenes scenes)
{
    const Scene& scene = scenes();
    const Tree tree = treeOf(scene);
    for (auto _ : state) {
        for (const Rectangle& r : scene.rectangles) {
            Entry nearest;
            tree.query(bgi::nearest(Point(r.x, r.y), 1), &nearest);
            const double dx = nearest.first.x() - r.x;
            const double dy = nearest.first.y() - r.y;
            const bool isNear = dx * dx + dy * dy <= scene.tolerance * scene.tolerance;
            benchmark::DoNotOptimize(isNear ? nearest.second : -1);
        }
    }
}
} // namespace

BENCHMARK_CAPTURE(build, uniform, uniformScene)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(buildTree, uniform, uniformScene)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(build, clustered, clusteredScene)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(buildTree, clustered, clusteredScene)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(pickRectangles, uniform, uniformScene)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(pickRectanglesInTree, uniform, uniformScene)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(pickRectangles, clustered, clusteredScene)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(pickRectanglesInTree, clustered, clusteredScene)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(pickNearest, uniform, uniformScene)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(pickNearestInTree, uniform, uniformScene)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(pickNearest, clustered, clusteredScene)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(pickNearestInTree, clustered, clusteredScene)->Unit(benchmark::kMillisecond);

int main(int argc, char** argv)
{
    return runWithLimits(argc, argv,
                         {{"build/uniform", "buildTree/uniform", 1},
                          {"build/clustered", "buildTree/clustered", 1},
                          {"pickRectangles/uniform", "pickRectanglesInTree/uniform", 1},
                          {"pickRectangles/clustered", "pickRectanglesInTree/clustered", 1},
                          {"pickNearest/uniform", "pickNearestInTree/uniform", 1},
                          {"pickNearest/clustered", "pickNearestInTree/clustered", 1}});
}
