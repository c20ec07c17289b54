#include <basic/geometry/HbgGeomPolyline.h>

#include "HbgCoordinate.h"

#include "HbgSegment.h"

#include <basic/base/HbbGlobal.h>
#include <basic/error/HbeProgrammingError.h>
#include <basic/geometry/HbgGeomPolygon.h>

#include <algorithm>
#include <cmath>

static const char* const SOURCE = "geometry/HbgGeomPolyline";

static bool isAcceptable(const HbgVector3D& point)
{
    return HbgCoordinate::isVertex(point.toVector2D()) && std::isfinite(point.z);
}

using HbgCoordinate::withoutElevation;

static QVector<HbgVector3D> withoutElevations(const QVector<HbgVector3D>& points)
{
    QVector<HbgVector3D> flat;
    flat.reserve(points.size());
    for (const HbgVector3D& point : points)
        flat.append(withoutElevation(point.toVector2D()));
    return flat;
}

static QVector<HbgVector3D> withoutElevations(const QVector<HbgVector2D>& points)
{
    QVector<HbgVector3D> flat;
    flat.reserve(points.size());
    for (const HbgVector2D& point : points)
        flat.append(withoutElevation(point));
    return flat;
}

static double segmentLength(const HbgVector3D& a, const HbgVector3D& b)
{
    if (HbbGlobal::isUndefined(a.z) || HbbGlobal::isUndefined(b.z))
        return (b.toVector2D() - a.toVector2D()).length();
    return (b - a).length();
}

HbgGeomPolyline::HbgGeomPolyline(const HbgEDimension& dimension, const HbgEPolylineType& type)
    : m_is3D(dimension == HbgEDimension::DIM_3D)
    , m_isClosedType(type == HbgEPolylineType::CLOSED)
{
}

HbgGeomPolyline::HbgGeomPolyline(const QVector<HbgVector2D>& points, const HbgEPolylineType& type)
    : HbgGeomPolyline(HbgEDimension::DIM_2D, type)
{
    if (!setPoints(withoutElevations(points)))
        HBE_PROGRAMMING_ERROR(SOURCE, QStringLiteral("A point of a polyline is no place."));
}

HbgGeomPolyline::HbgGeomPolyline(const QVector<HbgVector3D>& points, const HbgEPolylineType& type)
    : HbgGeomPolyline(HbgEDimension::DIM_3D, type)
{
    if (!setPoints(points))
        HBE_PROGRAMMING_ERROR(SOURCE, QStringLiteral("A point of a polyline is no place."));
}

HbgEDimension HbgGeomPolyline::getDimension() const
{
    return m_is3D ? HbgEDimension::DIM_3D : HbgEDimension::DIM_2D;
}

void HbgGeomPolyline::setDimension(const HbgEDimension& dimension)
{
    const bool is3D = dimension == HbgEDimension::DIM_3D;
    if (m_is3D && !is3D)
        m_points = withoutElevations(m_points);
    m_is3D = is3D;
}

HbgEPolylineType HbgGeomPolyline::getType() const
{
    return m_isClosedType ? HbgEPolylineType::CLOSED : HbgEPolylineType::OPEN;
}

void HbgGeomPolyline::setType(const HbgEPolylineType& type)
{
    m_isClosedType = type == HbgEPolylineType::CLOSED;
}

bool HbgGeomPolyline::append(const HbgVector2D& point)
{
    return insert(m_points.size(), withoutElevation(point));
}

bool HbgGeomPolyline::append(const HbgVector3D& point)
{
    return insert(m_points.size(), point);
}

bool HbgGeomPolyline::insert(int rank, const HbgVector3D& point)
{
    if (rank < 0 || rank > m_points.size() || !isAcceptable(point))
        return false;
    m_points.insert(rank, m_is3D ? point : withoutElevation(point.toVector2D()));
    return true;
}

bool HbgGeomPolyline::update(int rank, const HbgVector3D& point)
{
    if (rank < 0 || rank >= m_points.size() || !isAcceptable(point))
        return false;
    m_points[rank] = m_is3D ? point : withoutElevation(point.toVector2D());
    return true;
}

bool HbgGeomPolyline::remove(int rank)
{
    if (rank < 0 || rank >= m_points.size())
        return false;
    m_points.remove(rank);
    return true;
}

bool HbgGeomPolyline::setPoints(const QVector<HbgVector3D>& points)
{
    if (!std::all_of(points.begin(), points.end(), isAcceptable))
        return false;
    m_points = m_is3D ? points : withoutElevations(points);
    return true;
}

void HbgGeomPolyline::clear()
{
    m_points.clear();
}

bool HbgGeomPolyline::isClosed() const
{
    return m_isClosedType ||
           (m_points.size() >= 2 && m_points.first().toVector2D() == m_points.last().toVector2D());
}

double HbgGeomPolyline::getLength() const
{
    double length = 0.;
    for (int i = 1; i < m_points.size(); ++i)
        length += segmentLength(m_points[i - 1], m_points[i]);
    if (m_isClosedType && !m_points.isEmpty())
        length += segmentLength(m_points.last(), m_points.first());
    return length;
}

HbgBox HbgGeomPolyline::getBoundingBox() const
{
    HbgBox box;
    for (const HbgVector3D& point : m_points)
        box.unite(point);
    return box;
}

double HbgGeomPolyline::getDistance(const QPointF& place) const
{
    if (m_points.isEmpty() || !std::isfinite(place.x()) || !std::isfinite(place.y()))
        return HbbGlobal::D_FFFF;
    const HbgVector2D at(place.x(), place.y());
    HbgVector2D from = (m_isClosedType ? m_points.last() : m_points.first()).toVector2D();
    long double nearest = std::numeric_limits<long double>::infinity();
    for (const HbgVector3D& point : m_points) {
        const HbgVector2D to = point.toVector2D();
        nearest = std::min(nearest, HbgSegment{from, to}.squaredDistance(at));
        from = to;
    }
    return static_cast<double>(std::sqrt(nearest));
}

HbgGeomPolygon HbgGeomPolyline::toPolygon() const
{
    HbgGeomPolygon polygon;
    if (!isClosed())
        return polygon;
    HbgGeomPolygon::Ring ring;
    ring.reserve(m_points.size());
    for (const HbgVector3D& point : m_points)
        ring.append(point.toVector2D());
    polygon.addContour(ring); // refused when it has no three distinct points: empty then
    return polygon;
}

bool HbgGeomPolyline::operator==(const HbgGeomPolyline& other) const
{
    return m_is3D == other.m_is3D && m_isClosedType == other.m_isClosedType &&
           m_points == other.m_points;
}
