#include <basic/geometry/HbgGeomPointSet.h>

#include "HbgCoordinate.h"

#include "HbgPointIndex.h"

#include <basic/base/HbbGlobal.h>
#include <basic/error/HbeProgrammingError.h>

#include <algorithm>
#include <cmath>

static const char* const SOURCE = "geometry/HbgGeomPointSet";

static bool isAcceptable(const HbgVector3D& point)
{
    return std::isfinite(point.x) && std::isfinite(point.y) && std::isfinite(point.z);
}

HbgGeomPointSet::HbgGeomPointSet(const HbgEDimension& dimension)
    : m_is3D(dimension == HbgEDimension::DIM_3D)
{
}

HbgEDimension HbgGeomPointSet::getDimension() const
{
    return m_is3D ? HbgEDimension::DIM_3D : HbgEDimension::DIM_2D;
}

HbgBox HbgGeomPointSet::getBoundingBox() const
{
    HbgBox box;
    for (int rank = 0; rank < m_x.size(); ++rank) {
        if (HbbGlobal::isUndefined(m_x[rank]) || HbbGlobal::isUndefined(m_y[rank]))
            continue;
        box.unite(HbgVector3D(m_x[rank], m_y[rank], m_is3D ? m_z[rank] : HbbGlobal::D_FFFF));
    }
    return box;
}

HbgVector3D HbgGeomPointSet::getPoint(int rank) const
{
    if (rank < 0 || rank >= getCount())
        HBE_PROGRAMMING_ERROR(SOURCE, QStringLiteral("Point rank out of the set."));
    return {m_x[rank], m_y[rank], m_is3D ? m_z[rank] : HbbGlobal::D_FFFF};
}

void HbgGeomPointSet::reserve(int count)
{
    m_x.reserve(count);
    m_y.reserve(count);
    if (m_is3D)
        m_z.reserve(count);
}

bool HbgGeomPointSet::append(const HbgVector2D& point)
{
    return append(HbgCoordinate::withoutElevation(point));
}

bool HbgGeomPointSet::append(const HbgVector3D& point)
{
    if (!isAcceptable(point))
        return false;
    m_x.append(point.x);
    m_y.append(point.y);
    if (m_is3D)
        m_z.append(point.z);
    m_index.drop();
    return true;
}

bool HbgGeomPointSet::update(int rank, const HbgVector2D& point)
{
    return update(rank, HbgCoordinate::withoutElevation(point));
}

bool HbgGeomPointSet::update(int rank, const HbgVector3D& point)
{
    if (rank < 0 || rank >= getCount() || !isAcceptable(point))
        return false;
    m_x[rank] = point.x;
    m_y[rank] = point.y;
    if (m_is3D)
        m_z[rank] = point.z;
    m_index.drop();
    return true;
}

bool HbgGeomPointSet::remove(int rank)
{
    if (rank < 0 || rank >= getCount())
        return false;
    m_x.remove(rank);
    m_y.remove(rank);
    if (m_is3D)
        m_z.remove(rank);
    m_index.drop();
    return true;
}

void HbgGeomPointSet::clear()
{
    m_x.clear();
    m_y.clear();
    m_z.clear();
    m_index.drop();
}

void HbgGeomPointSet::setCoordinates(QVector<double> x, QVector<double> y, QVector<double> z)
{
    if (x.size() != y.size() || (!z.isEmpty() && z.size() != x.size()))
        HBE_PROGRAMMING_ERROR(SOURCE, QStringLiteral("Coordinates of different lengths."));
    const auto normalize = [](QVector<double>& column) {
        const auto isNoNumber = [](double value) { return !std::isfinite(value); };
        // Looked for first, so that a clean column stays shared with its owner.
        if (std::any_of(column.constBegin(), column.constEnd(), isNoNumber))
            std::replace_if(column.begin(), column.end(), isNoNumber, HbbGlobal::D_FFFF);
    };
    normalize(x);
    normalize(y);
    normalize(z);
    m_is3D = z.isEmpty() ? m_is3D && x.isEmpty() : true;
    m_x = std::move(x);
    m_y = std::move(y);
    m_z = std::move(z);
    m_index.drop();
}

std::shared_ptr<const HbgPointIndex> HbgGeomPointSet::index() const
{
    return m_index.get([this] { return std::make_shared<const HbgPointIndex>(m_x, m_y); });
}

int HbgGeomPointSet::pointToRank(const QPointF& place, double tolerance) const
{
    return index()->findNearest(place, tolerance);
}

HbiIntervalIntSmallDisjoint HbgGeomPointSet::pointToRanks(const QPointF& place,
                                                          double tolerance) const
{
    return index()->findWithin(place, tolerance);
}

HbiIntervalIntSmallDisjoint HbgGeomPointSet::rectangleToRanks(const QRectF& rectangle) const
{
    return index()->findWithin(rectangle);
}

HbiIntervalIntSmallDisjoint HbgGeomPointSet::polygonToRanks(const QVector<QPointF>& polygon) const
{
    return index()->findWithin(polygon);
}

bool HbgGeomPointSet::operator==(const HbgGeomPointSet& other) const
{
    return m_is3D == other.m_is3D && m_x == other.m_x && m_y == other.m_y && m_z == other.m_z;
}
