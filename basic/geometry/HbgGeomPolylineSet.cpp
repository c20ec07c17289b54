#include <basic/geometry/HbgGeomPolylineSet.h>

#include "HbgShapeIndex.h"

#include <basic/error/HbeProgrammingError.h>

static const char* const SOURCE = "geometry/HbgGeomPolylineSet";

static HbgGeomPolyline converted(const HbgGeomPolyline& polyline, const HbgEDimension& dimension)
{
    HbgGeomPolyline result = polyline;
    result.setDimension(dimension);
    return result;
}

HbgGeomPolylineSet::HbgGeomPolylineSet(const HbgEDimension& dimension)
    : m_is3D(dimension == HbgEDimension::DIM_3D)
{
}

HbgEDimension HbgGeomPolylineSet::getDimension() const
{
    return m_is3D ? HbgEDimension::DIM_3D : HbgEDimension::DIM_2D;
}

HbgBox HbgGeomPolylineSet::getBoundingBox() const
{
    HbgBox box;
    for (const HbgGeomPolyline& polyline : m_polylines)
        box.unite(polyline.getBoundingBox());
    return box;
}

const HbgGeomPolyline& HbgGeomPolylineSet::getPolyline(int rank) const
{
    if (rank < 0 || rank >= getCount())
        HBE_PROGRAMMING_ERROR(SOURCE, QStringLiteral("Polyline rank out of the set."));
    return m_polylines[rank];
}

void HbgGeomPolylineSet::reserve(int count)
{
    m_polylines.reserve(count);
}

void HbgGeomPolylineSet::append(const HbgGeomPolyline& polyline)
{
    m_index.drop();
    m_polylines.append(converted(polyline, getDimension()));
}

bool HbgGeomPolylineSet::update(int rank, const HbgGeomPolyline& polyline)
{
    if (rank < 0 || rank >= getCount())
        return false;
    m_index.drop();
    m_polylines[rank] = converted(polyline, getDimension());
    return true;
}

bool HbgGeomPolylineSet::remove(int rank)
{
    if (rank < 0 || rank >= getCount())
        return false;
    m_index.drop();
    m_polylines.remove(rank);
    return true;
}

void HbgGeomPolylineSet::clear()
{
    m_index.drop();
    m_polylines.clear();
}

std::shared_ptr<const HbgShapeIndex> HbgGeomPolylineSet::index() const
{
    return m_index.get([this] { return std::make_shared<const HbgShapeIndex>(m_polylines); });
}

int HbgGeomPolylineSet::pointToRank(const QPointF& place, double tolerance) const
{
    return index()->findNearest(place, tolerance);
}

HbiIntervalIntSmallDisjoint HbgGeomPolylineSet::pointToRanks(const QPointF& place,
                                                             double tolerance) const
{
    return index()->findNear(place, tolerance);
}

HbiIntervalIntSmallDisjoint HbgGeomPolylineSet::rectangleToRanks(const QRectF& rectangle) const
{
    return index()->findMeeting(rectangle);
}

HbiIntervalIntSmallDisjoint
HbgGeomPolylineSet::polygonToRanks(const QVector<QPointF>& polygon) const
{
    return index()->findMeeting(polygon);
}

bool HbgGeomPolylineSet::operator==(const HbgGeomPolylineSet& other) const
{
    return m_is3D == other.m_is3D && m_polylines == other.m_polylines;
}
