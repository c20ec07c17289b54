// Picks of shapes against what Boost.Geometry offers as it is: an R-tree over the boxes of whole
// shapes, and its own tests for those whose box is not enough.
#include <RatioLimits.h>

#include <basic/geometry/HbgGeomPolygonSet.h>
#include <basic/geometry/HbgGeomPolylineSet.h>
#include <basic/interval/HbiIntervalIntSmallDisjoint.h>

#include <benchmark/benchmark.h>

#define BOOST_ALLOW_DEPRECATED_HEADERS // Boost 1.74 reads one of its own
#include <boost/geometry.hpp>
#include <boost/geometry/geometries/point_xy.hpp>
#include <boost/geometry/index/rtree.hpp>
#include <boost/iterator/function_output_iterator.hpp>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

namespace bg = boost::geometry;
namespace bgi = bg::index;

namespace
{

constexpr int COUNT = 100000;
constexpr int CORNERS = 20;
constexpr int PICKS = 10000;
constexpr double EXTENT = 10000.; // about one shape on 1000 square metres

using Point = bg::model::d2::point_xy<double>;
using Box = bg::model::box<Point>;
using Tree = bgi::rtree<std::pair<Box, int>, bgi::rstar<16>>;

/// Lines that wander about, or rings that are dented: some thirty metres large.
std::vector<QVector<HbgVector2D>> shapes(bool areRings)
{
    std::mt19937 random(7);
    std::uniform_real_distribution<double> place(0., EXTENT);
    std::uniform_real_distribution<double> step(-5., 5.);
    std::vector<QVector<HbgVector2D>> result;
    for (int i = 0; i < COUNT; ++i) {
        QVector<HbgVector2D> points;
        HbgVector2D at(place(random), place(random));
        for (int corner = 0; corner < CORNERS; ++corner) {
            const double angle = 6.283185307 * corner / CORNERS;
            const double radius = 15. + step(random);
            if (areRings) {
                points.append(at + radius * HbgVector2D(std::cos(angle), std::sin(angle)));
            } else {
                points.append(at);
                at = at + HbgVector2D(step(random), step(random));
            }
        }
        result.push_back(points);
    }
    return result;
}

std::vector<QRectF> rectangles(double size)
{
    std::mt19937 random(8);
    std::uniform_real_distribution<double> place(0., EXTENT - size);
    std::vector<QRectF> result;
    for (int i = 0; i < PICKS; ++i)
        result.emplace_back(place(random), place(random), size, size);
    return result;
}

template <class Shape>
struct Peer {
    explicit Peer(const std::vector<QVector<HbgVector2D>>& all)
    {
        for (const QVector<HbgVector2D>& points : all) {
            Shape shape;
            for (const HbgVector2D& point : points)
                bg::append(shape, Point(point.x, point.y));
            bg::correct(shape);
            shapes.push_back(shape);
        }
        buildTree();
    }
    void buildTree()
    {
        std::vector<std::pair<Box, int>> boxes;
        for (const Shape& shape : shapes)
            boxes.emplace_back(bg::return_envelope<Box>(shape), static_cast<int>(boxes.size()));
        tree = Tree(boxes);
    }
    template <class Area, class Test>
    std::vector<int> pick(const Area& area, const Test& test) const
    {
        std::vector<int> ranks;
        tree.query(bgi::intersects(area), boost::make_function_output_iterator([&](const auto& at) {
                       if (test(at.first, shapes[static_cast<size_t>(at.second)]))
                           ranks.push_back(at.second);
                   }));
        std::sort(ranks.begin(), ranks.end());
        return ranks;
    }

    std::vector<Shape> shapes;
    Tree tree;
};
using PeerLines = Peer<bg::model::linestring<Point>>;
using PeerPolygons = Peer<bg::model::polygon<Point>>;

HbgGeomPolylineSet polylineSet()
{
    HbgGeomPolylineSet set;
    for (const QVector<HbgVector2D>& points : shapes(false))
        set.append(HbgGeomPolyline(points));
    return set;
}

void rectangleToRanks(benchmark::State& state, double size)
{
    const HbgGeomPolylineSet set = polylineSet();
    const std::vector<QRectF> areas = rectangles(size);
    benchmark::DoNotOptimize(set.rectangleToRanks({}).getCount()); // builds the index
    qint64 count = 0;
    for (auto _ : state) {
        count = 0;
        for (const QRectF& area : areas)
            count += set.rectangleToRanks(area).getCount();
    }
    state.counters["found"] = static_cast<double>(count);
}
void rectangleInBoost(benchmark::State& state, double size)
{
    const PeerLines peer(shapes(false));
    const std::vector<QRectF> areas = rectangles(size);
    size_t count = 0;
    for (auto _ : state) {
        count = 0;
        for (const QRectF& area : areas) {
            const Box box(Point(area.left(), area.top()), Point(area.right(), area.bottom()));
            count += peer.pick(box,
                               [&box](const Box& around, const auto& line) {
                                   return bg::covered_by(around, box) || bg::intersects(line, box);
                               })
                         .size();
        }
    }
    state.counters["found"] = static_cast<double>(count);
}

void placeToRanks(benchmark::State& state)
{
    HbgGeomPolygonSet set;
    for (const QVector<HbgVector2D>& points : shapes(true))
        set.append(HbgGeomPolygon(points));
    const std::vector<QRectF> places = rectangles(0.);
    benchmark::DoNotOptimize(set.pointToRank({}));
    qint64 count = 0;
    for (auto _ : state) {
        count = 0;
        for (const QRectF& place : places)
            count += set.pointToRanks(place.topLeft()).getCount();
    }
    state.counters["found"] = static_cast<double>(count);
}
void placeInBoost(benchmark::State& state)
{
    const PeerPolygons peer(shapes(true));
    const std::vector<QRectF> places = rectangles(0.);
    size_t count = 0;
    for (auto _ : state) {
        count = 0;
        for (const QRectF& place : places) {
            const Point at(place.left(), place.top());
            count +=
                peer.pick(at, [&at](const Box&,
                                    const auto& polygon) { return bg::covered_by(at, polygon); })
                    .size();
        }
    }
    state.counters["found"] = static_cast<double>(count);
}

void buildIndex(benchmark::State& state)
{
    HbgGeomPolylineSet set = polylineSet();
    for (auto _ : state) {
        set.update(0, HbgGeomPolyline(set.getPolyline(0))); // drops it
        benchmark::DoNotOptimize(set.rectangleToRanks({}).getCount());
    }
}
void buildInBoost(benchmark::State& state)
{
    PeerLines peer(shapes(false));
    for (auto _ : state)
        peer.buildTree();
}

} // namespace

BENCHMARK_CAPTURE(rectangleToRanks, small, 10.)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(rectangleInBoost, small, 10.)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(rectangleToRanks, large, 300.)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(rectangleInBoost, large, 300.)->Unit(benchmark::kMillisecond);
BENCHMARK(placeToRanks)->Unit(benchmark::kMillisecond);
BENCHMARK(placeInBoost)->Unit(benchmark::kMillisecond);
BENCHMARK(buildIndex)->Unit(benchmark::kMillisecond);
BENCHMARK(buildInBoost)->Unit(benchmark::kMillisecond);

int main(int argc, char** argv)
{
    return runWithLimits(argc, argv,
                         {{"rectangleToRanks/small", "rectangleInBoost/small", 1},
                          {"rectangleToRanks/large", "rectangleInBoost/large", 1},
                          {"placeToRanks", "placeInBoost", 1.2},
                          {"buildIndex", "buildInBoost", 3}});
}
