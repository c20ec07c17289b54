#include "HbgShapeIndex.h"

#include "HbgCoordinate.h"

#include "HbgAreaIndex.h"
#include "HbgBoostGeometry.h"
#include "HbgRingLocator.h"
#include "HbgShapeRuns.h"

#include <boost/geometry/index/rtree.hpp>
#include <boost/iterator/function_output_iterator.hpp>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace bg = boost::geometry;
namespace bgi = bg::index;

using Ranks = HbiIntervalIntSmallDisjoint;
using Run = HbgShapeRuns::Run;

namespace
{

struct BoxOfRun {
    using result_type = const HbgRectangle&;
    result_type operator()(const Run& run) const { return run.box; }
};
struct SameRun {
    bool operator()(const Run& a, const Run& b) const { return a.first == b.first; }
};

using HbgCoordinate::isPlace;

HbgVector2D placeOf(const QPointF& place)
{
    return {place.x(), place.y()};
}

/// The ranks in any order, some of them more than once.
Ranks ranksOf(std::vector<int>& ranks)
{
    std::sort(ranks.begin(), ranks.end());
    Ranks set;
    set.addSorted(ranks.data(), ranks.size());
    return set;
}

} // namespace

struct HbgShapeIndex::Private {
    using Tree = bgi::rtree<Run, bgi::linear<16>, BoxOfRun, SameRun>;

    template <class Shapes>
    explicit Private(const Shapes& shapes)
        : runs(shapes)
        , tree(runs.getRuns()) // a range is packed
    {
        runs.dropRuns();
    }

    /// Adds the shapes of the runs that reach into the area and pass the test.
    template <class Test>
    void collect(const HbgRectangle& area, std::vector<int>& ranks, const Test& test) const
    {
        const auto visit = [&](const Run& run) {
            // The runs of a shape often come in a row.
            if ((ranks.empty() || ranks.back() != run.shape) && test(run))
                ranks.push_back(run.shape);
        };
        tree.query(bgi::intersects(area), boost::make_function_output_iterator(visit));
    }

    bool isWithin(const Run& run, const HbgVector2D& place, long double squaredTolerance) const
    {
        return runs.hasSegment(run, [&](const HbgSegment& segment) {
            return segment.squaredDistance(place) <= squaredTolerance;
        });
    }
    bool meets(const Run& run, const HbgRectangle& area) const
    {
        return area.contains(run.box) || runs.hasSegment(run, [&area](const HbgSegment& segment) {
            return segment.intersects(area);
        });
    }
    /// A run that meets no edge of the ring is wholly in or wholly out.
    bool meets(const Run& run, const HbgRingLocator& ring) const
    {
        const HbgVector2D& first = runs.getFirstPoint(run);
        return ring.contains(first.x, first.y) ||
               ring.hasEdge(run.box, [this, &run](const HbgSegment& edge) {
                   return edge.intersects(run.box) &&
                          runs.hasSegment(run, [&edge](const HbgSegment& segment) {
                              return edge.intersects(segment);
                          });
               });
    }

    HbgShapeRuns runs;
    Tree tree;
    std::unique_ptr<const HbgAreaIndex> areas; // of polygons
};

HbgShapeIndex::HbgShapeIndex(const QVector<HbgGeomPolyline>& polylines)
    : d(std::make_unique<Private>(polylines))
{
}

HbgShapeIndex::HbgShapeIndex(const QVector<HbgGeomPolygon>& polygons)
    : d(std::make_unique<Private>(polygons))
{
    d->areas = std::make_unique<HbgAreaIndex>(polygons);
}

HbgShapeIndex::~HbgShapeIndex() = default;

int HbgShapeIndex::findNearest(const QPointF& place, double tolerance) const
{
    if (!isPlace(place) || !(tolerance >= 0.))
        return -1;
    const HbgVector2D at = placeOf(place);
    int nearest = -1;
    long double best = static_cast<long double>(tolerance) * tolerance;
    double farthest = 0.; // of the boxes looked at, as the tree measures it
    const auto visit = [&](const Run& run) {
        farthest = std::max(farthest, bg::comparable_distance(at, run.box));
        if (run.box.squaredDistance(at) > best)
            return;
        d->runs.hasSegment(run, [&](const HbgSegment& segment) {
            const long double distance = segment.squaredDistance(at);
            if (distance < best || (distance == best && (nearest < 0 || run.shape < nearest))) {
                best = distance;
                nearest = run.shape;
            }
            return false;
        });
    };
    // The nearest boxes, more and more of them, until the next one is too far. The tree's own
    // measure is rounded, and says nothing where it overflows.
    for (size_t count = 8;; count *= 4) {
        const size_t found = d->tree.query(bgi::nearest(at, static_cast<unsigned>(count)),
                                           boost::make_function_output_iterator(visit));
        if (found < count || (std::isfinite(farthest) && farthest * (1. - 1e-14) > best))
            return nearest;
    }
}

Ranks HbgShapeIndex::findNear(const QPointF& place, double tolerance) const
{
    if (!isPlace(place) || !(tolerance >= 0.))
        return {};
    const HbgVector2D at = placeOf(place);
    const long double limit = static_cast<long double>(tolerance) * tolerance;
    std::vector<int> ranks;
    d->collect(HbgRectangle::around(at, tolerance), ranks,
               [&](const Run& run) { return d->isWithin(run, at, limit); });
    return ranksOf(ranks);
}

int HbgShapeIndex::findFirstHolding(const QPointF& place) const
{
    return d->areas && isPlace(place) ? d->areas->findFirst(placeOf(place)) : -1;
}

Ranks HbgShapeIndex::findHolding(const QPointF& place) const
{
    std::vector<int> ranks;
    if (d->areas && isPlace(place))
        d->areas->findAll(placeOf(place), ranks);
    return ranksOf(ranks);
}

Ranks HbgShapeIndex::findMeeting(const QRectF& rectangle) const
{
    const HbgVector2D corner(rectangle.left(), rectangle.top());
    const HbgVector2D opposite(rectangle.right(), rectangle.bottom());
    if (!isPlace(rectangle.topLeft()) || !isPlace(rectangle.bottomRight()))
        return {};
    const HbgRectangle area = HbgRectangle::of(corner, opposite);
    std::vector<int> ranks;
    d->collect(area, ranks, [&](const Run& run) { return d->meets(run, area); });
    if (d->areas) // where no border is met, the rectangle is wholly in or wholly out
        d->areas->findAll(corner, ranks);
    return ranksOf(ranks);
}

Ranks HbgShapeIndex::findMeeting(const QVector<QPointF>& lasso) const
{
    if (lasso.size() < 3 || !std::all_of(lasso.begin(), lasso.end(), isPlace))
        return {};
    const HbgRingLocator ring(lasso);
    std::vector<int> ranks;
    d->collect(ring.getBox(), ranks, [&](const Run& run) { return d->meets(run, ring); });
    if (d->areas) // as for a rectangle: its border is in one piece
        d->areas->findAll(placeOf(lasso.first()), ranks);
    return ranksOf(ranks);
}
