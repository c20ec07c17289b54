#include "HbgPointIndex.h"
#include "HbgRingLocator.h"

#include <basic/base/HbbGlobal.h>

#define BOOST_ALLOW_DEPRECATED_HEADERS // Boost 1.74 reads one of its own
#include <boost/geometry.hpp>
#include <boost/geometry/geometries/point_xy.hpp>
#include <boost/geometry/index/rtree.hpp>
#include <boost/iterator/function_output_iterator.hpp>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace bg = boost::geometry;
namespace bgi = bg::index;

using Point = bg::model::d2::point_xy<double>;
using Box = bg::model::box<Point>;
using Entry = std::pair<Point, int>; // with its rank

struct HbgPointIndex::Private {
    using Tree = bgi::rtree<Entry, bgi::linear<16>>;

    explicit Private(const std::vector<Entry>& entries)
        : tree(entries.begin(), entries.end()) // a range is packed
    {
    }

    template <class Visitor>
    void visit(const Box& box, const Visitor& visitor) const
    {
        tree.query(bgi::covered_by(box), boost::make_function_output_iterator(visitor));
    }
    /// The ranks in the box that pass the test.
    template <class Test>
    HbiIntervalIntSmallDisjoint collect(const Box& box, const Test& test) const;

    Tree tree;
};

namespace
{

std::vector<Entry> definedPoints(const QVector<double>& x, const QVector<double>& y)
{
    std::vector<Entry> entries;
    entries.reserve(static_cast<size_t>(x.size()));
    for (int rank = 0; rank < x.size(); ++rank) {
        if (!HbbGlobal::isUndefined(x[rank]) && !HbbGlobal::isUndefined(y[rank]))
            entries.emplace_back(Point(x[rank], y[rank]), rank);
    }
    return entries;
}

bool isPlace(const QPointF& place)
{
    return std::isfinite(place.x()) && std::isfinite(place.y());
}

double squaredDistance(const Point& a, const QPointF& b)
{
    const double dx = a.x() - b.x();
    const double dy = a.y() - b.y();
    return dx * dx + dy * dy;
}

/// A box that surely holds every point at the distance: rounding may only widen it.
Box boxAround(const QPointF& place, double distance)
{
    const double reach = distance * (1. + 1e-15);
    const double infinity = std::numeric_limits<double>::infinity();
    return {Point(std::nextafter(place.x() - reach, -infinity),
                  std::nextafter(place.y() - reach, -infinity)),
            Point(std::nextafter(place.x() + reach, infinity),
                  std::nextafter(place.y() + reach, infinity))};
}

} // namespace

template <class Test>
HbiIntervalIntSmallDisjoint HbgPointIndex::Private::collect(const Box& box, const Test& test) const
{
    std::vector<int> ranks;
    visit(box, [&](const Entry& entry) {
        if (test(entry.first))
            ranks.push_back(entry.second);
    });
    std::sort(ranks.begin(), ranks.end());
    HbiIntervalIntSmallDisjoint set;
    for (const int rank : ranks)
        set.add(rank);
    return set;
}

HbgPointIndex::HbgPointIndex(const QVector<double>& x, const QVector<double>& y)
    : d(std::make_unique<Private>(definedPoints(x, y)))
{
}

HbgPointIndex::~HbgPointIndex() = default;

int HbgPointIndex::findNearest(const QPointF& place, double tolerance) const
{
    if (!isPlace(place) || !(tolerance >= 0.))
        return -1;
    Entry nearest;
    if (d->tree.query(bgi::nearest(Point(place.x(), place.y()), 1), &nearest) == 0)
        return -1;
    const double distance = squaredDistance(nearest.first, place);
    if (distance > tolerance * tolerance)
        return -1;
    // The tree answers any one of several nearest points; we want the first of them.
    int rank = nearest.second;
    d->visit(boxAround(place, std::sqrt(distance)), [&](const Entry& entry) {
        if (squaredDistance(entry.first, place) <= distance)
            rank = std::min(rank, entry.second);
    });
    return rank;
}

HbiIntervalIntSmallDisjoint HbgPointIndex::findWithin(const QPointF& place, double tolerance) const
{
    if (!isPlace(place) || !(tolerance >= 0.))
        return {};
    return d->collect(boxAround(place, tolerance), [&place, tolerance](const Point& point) {
        return squaredDistance(point, place) <= tolerance * tolerance;
    });
}

HbiIntervalIntSmallDisjoint HbgPointIndex::findWithin(const QRectF& rectangle) const
{
    const QRectF area = rectangle.normalized();
    if (!isPlace(area.topLeft()) || !isPlace(area.bottomRight()))
        return {};
    return d->collect(Box(Point(area.left(), area.top()), Point(area.right(), area.bottom())),
                      [](const Point&) { return true; });
}

HbiIntervalIntSmallDisjoint HbgPointIndex::findWithin(const QVector<QPointF>& polygon) const
{
    if (polygon.size() < 3 || !std::all_of(polygon.begin(), polygon.end(), isPlace))
        return {};
    const HbgRingLocator ring(polygon);
    const HbgBox& box = ring.getBoundingBox();
    return d->collect(Box(Point(box.getXMin(), box.getYMin()), Point(box.getXMax(), box.getYMax())),
                      [&ring](const Point& point) { return ring.contains(point.x(), point.y()); });
}
