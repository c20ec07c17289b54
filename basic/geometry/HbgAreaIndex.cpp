#include "HbgAreaIndex.h"

#include "HbgBoostGeometry.h"
#include "HbgRingLocator.h"

#include <boost/geometry/index/rtree.hpp>
#include <boost/iterator/function_output_iterator.hpp>

#include <algorithm>

namespace bgi = boost::geometry::index;

namespace
{

/// Below this many corners a ring is walked as it is.
constexpr int LARGE_RING = 64;

class Ring
{
public:
    explicit Ring(const HbgGeomPolygon::Ring& corners)
        : m_corners(corners)
        , m_first(m_corners.constData())
        , m_count(m_corners.size())
    {
        if (corners.size() >= LARGE_RING)
            m_locator = std::make_unique<const HbgRingLocator>(corners);
    }

    HbgWinding locate(const HbgVector2D& place) const
    {
        if (m_locator)
            return m_locator->locate(place);
        HbgWinding winding(place);
        winding.addRing(m_first, m_count);
        return winding;
    }

private:
    HbgGeomPolygon::Ring m_corners; // shared with the polygon
    const HbgVector2D* m_first;
    int m_count;
    std::unique_ptr<const HbgRingLocator> m_locator;
};

/// A contour with its holes.
struct Area {
    bool holds(const HbgVector2D& place) const
    {
        return contour.locate(place).isIn() &&
               std::none_of(holes.begin(), holes.end(), [&place](const Ring& hole) {
                   return hole.locate(place).isStrictlyIn();
               });
    }

    int rank; // of its polygon
    Ring contour;
    std::vector<Ring> holes;
};

using Entry = std::pair<HbgRectangle, size_t>; // the box of a contour, and the area's place

std::vector<Area> areasOf(const QVector<HbgGeomPolygon>& polygons)
{
    std::vector<Area> areas;
    areas.reserve(static_cast<size_t>(polygons.size()));
    for (int rank = 0; rank < polygons.size(); ++rank) {
        const HbgGeomPolygon& polygon = polygons[rank];
        for (int contour = 0; contour < polygon.getContourCount(); ++contour) {
            areas.push_back({rank, Ring(polygon.getContour(contour)), {}});
            for (int hole = 0; hole < polygon.getHoleCount(contour); ++hole)
                areas.back().holes.emplace_back(polygon.getHole(contour, hole));
        }
    }
    return areas;
}

std::vector<Entry> boxesOf(const QVector<HbgGeomPolygon>& polygons)
{
    std::vector<Entry> entries;
    entries.reserve(static_cast<size_t>(polygons.size()));
    for (const HbgGeomPolygon& polygon : polygons) {
        for (int contour = 0; contour < polygon.getContourCount(); ++contour) {
            const HbgGeomPolygon::Ring& corners = polygon.getContour(contour);
            HbgRectangle box = HbgRectangle::of(corners.first(), corners.last());
            for (const HbgVector2D& corner : corners)
                box.unite(corner);
            entries.emplace_back(box, entries.size());
        }
    }
    return entries;
}

} // namespace

struct HbgAreaIndex::Private {
    explicit Private(const QVector<HbgGeomPolygon>& polygons)
        : areas(areasOf(polygons))
        , tree(boxesOf(polygons)) // a range is packed
    {
    }

    /// The areas whose box holds the place.
    template <class Visitor>
    void visit(const HbgVector2D& place, const Visitor& visitor) const
    {
        tree.query(bgi::intersects(place),
                   boost::make_function_output_iterator(
                       [&](const Entry& entry) { visitor(areas[entry.second]); }));
    }

    std::vector<Area> areas;
    bgi::rtree<Entry, bgi::linear<16>> tree;
};

HbgAreaIndex::HbgAreaIndex(const QVector<HbgGeomPolygon>& polygons)
    : d(std::make_unique<Private>(polygons))
{
}

HbgAreaIndex::~HbgAreaIndex() = default;

int HbgAreaIndex::findFirst(const HbgVector2D& place) const
{
    int first = -1;
    d->visit(place, [&](const Area& area) {
        if ((first < 0 || area.rank < first) && area.holds(place))
            first = area.rank;
    });
    return first;
}

void HbgAreaIndex::findAll(const HbgVector2D& place, std::vector<int>& ranks) const
{
    d->visit(place, [&](const Area& area) {
        if (area.holds(place))
            ranks.push_back(area.rank);
    });
}
