#include <basic/geometry/HbgGeomPolygonSet.h>

#include "HbgShapeIndex.h"

#include <basic/error/HbeProgrammingError.h>

static const char* const SOURCE = "geometry/HbgGeomPolygonSet";

HbgBox HbgGeomPolygonSet::getBoundingBox() const
{
    HbgBox box;
    for (const HbgGeomPolygon& polygon : m_polygons)
        box.unite(polygon.getBoundingBox());
    return box;
}

const HbgGeomPolygon& HbgGeomPolygonSet::getPolygon(int rank) const
{
    if (rank < 0 || rank >= getCount())
        HBE_PROGRAMMING_ERROR(SOURCE, QStringLiteral("Polygon rank out of the set."));
    return m_polygons[rank];
}

void HbgGeomPolygonSet::reserve(int count)
{
    m_polygons.reserve(count);
}

void HbgGeomPolygonSet::append(const HbgGeomPolygon& polygon)
{
    insert(getCount(), polygon);
}

bool HbgGeomPolygonSet::insert(int rank, const HbgGeomPolygon& polygon)
{
    if (rank < 0 || rank > getCount())
        return false;
    m_index.drop();
    m_polygons.insert(rank, polygon);
    return true;
}

bool HbgGeomPolygonSet::update(int rank, const HbgGeomPolygon& polygon)
{
    if (rank < 0 || rank >= getCount())
        return false;
    m_index.drop();
    // Copied first: it may be one of ours, which a detach would take away.
    HbgGeomPolygon copy = polygon;
    m_polygons[rank] = std::move(copy);
    return true;
}

bool HbgGeomPolygonSet::remove(int rank)
{
    if (rank < 0 || rank >= getCount())
        return false;
    m_index.drop();
    m_polygons.remove(rank);
    return true;
}

void HbgGeomPolygonSet::clear()
{
    m_index.drop();
    m_polygons.clear();
}

std::shared_ptr<const HbgShapeIndex> HbgGeomPolygonSet::index() const
{
    return m_index.get([this] { return std::make_shared<const HbgShapeIndex>(m_polygons); });
}

int HbgGeomPolygonSet::pointToRank(const QPointF& place) const
{
    return index()->findFirstHolding(place);
}

HbiIntervalIntSmallDisjoint HbgGeomPolygonSet::pointToRanks(const QPointF& place) const
{
    return index()->findHolding(place);
}

HbiIntervalIntSmallDisjoint HbgGeomPolygonSet::rectangleToRanks(const QRectF& rectangle) const
{
    return index()->findMeeting(rectangle);
}

HbiIntervalIntSmallDisjoint HbgGeomPolygonSet::polygonToRanks(const QVector<QPointF>& lasso) const
{
    return index()->findMeeting(lasso);
}

bool HbgGeomPolygonSet::operator==(const HbgGeomPolygonSet& other) const
{
    return m_polygons == other.m_polygons;
}
