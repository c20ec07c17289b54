#include <util/utils/KuuGeometrySet.h>

#include <basic/error/HbeProgrammingError.h>
#include <basic/interval/HbiIntervalIntSmallDisjoint.h>

static const char* const SOURCE = "utils/KuuGeometrySet";

KuuGeometrySet::KuuGeometrySet(const HbgEGeometrySet& kind, const HbgEDimension& dimension)
    : m_kind(kind)
{
    if (kind == HbgEGeometrySet::POINTS)
        m_geometry = HbgGeomPointSet(dimension);
    else if (kind == HbgEGeometrySet::GRID)
        m_geometry = HbgGeomGrid(dimension);
}

KuuGeometrySet::KuuGeometrySet(const HbgGeomPointSet& points)
    : m_kind(HbgEGeometrySet::POINTS)
    , m_geometry(points)
{
}

KuuGeometrySet::KuuGeometrySet(const HbgGeomGrid& grid)
    : m_kind(HbgEGeometrySet::GRID)
    , m_geometry(grid)
{
}

bool KuuGeometrySet::isValid() const
{
    return !std::holds_alternative<std::monostate>(m_geometry);
}

HbgEDimension KuuGeometrySet::getDimension() const
{
    if (const auto* points = std::get_if<HbgGeomPointSet>(&m_geometry))
        return points->getDimension();
    if (const auto* grid = std::get_if<HbgGeomGrid>(&m_geometry))
        return grid->getDimension();
    return isMeshSet() ? HbgEDimension::DIM_3D : HbgEDimension::DIM_2D;
}

qint64 KuuGeometrySet::getSampleCount() const
{
    if (const auto* points = std::get_if<HbgGeomPointSet>(&m_geometry))
        return points->getCount();
    if (const auto* grid = std::get_if<HbgGeomGrid>(&m_geometry))
        return grid->getNodeCount();
    return 0;
}

bool KuuGeometrySet::isEmpty() const
{
    if (const auto* points = std::get_if<HbgGeomPointSet>(&m_geometry))
        return points->isEmpty();
    return !isValid();
}

HbgBox KuuGeometrySet::getBoundingBox() const
{
    if (const auto* points = std::get_if<HbgGeomPointSet>(&m_geometry))
        return points->getBoundingBox();
    if (const auto* grid = std::get_if<HbgGeomGrid>(&m_geometry))
        return grid->getBoundingBox();
    return {};
}

bool KuuGeometrySet::addGeometrySample(const KuuGeometrySample& sample)
{
    auto* points = std::get_if<HbgGeomPointSet>(&m_geometry);
    if (!points || !sample.isPoint())
        return false;
    return sample.isPoint2D() ? points->append(sample.toPoint2D())
                              : points->append(sample.toPoint3D());
}

bool KuuGeometrySet::updateGeometrySample(qint64 rank, const KuuGeometrySample& sample)
{
    auto* points = std::get_if<HbgGeomPointSet>(&m_geometry);
    if (!points || !sample.isPoint() || rank < 0 || rank >= points->getCount())
        return false;
    const int at = static_cast<int>(rank);
    return sample.isPoint2D() ? points->update(at, sample.toPoint2D())
                              : points->update(at, sample.toPoint3D());
}

bool KuuGeometrySet::removeGeometrySample(qint64 rank)
{
    auto* points = std::get_if<HbgGeomPointSet>(&m_geometry);
    return points && rank >= 0 && rank < points->getCount() &&
           points->remove(static_cast<int>(rank));
}

KuuGeometrySample KuuGeometrySet::getGeometrySample(qint64 rank) const
{
    const auto* points = std::get_if<HbgGeomPointSet>(&m_geometry);
    if (!points || rank < 0 || rank >= points->getCount())
        return {};
    const HbgVector3D point = points->getPoint(static_cast<int>(rank));
    return points->getDimension() == HbgEDimension::DIM_3D ? KuuGeometrySample(point)
                                                           : KuuGeometrySample(point.toVector2D());
}

int KuuGeometrySet::pointToRank(const QPointF& place, double tolerance) const
{
    const auto* points = std::get_if<HbgGeomPointSet>(&m_geometry);
    return points ? points->pointToRank(place, tolerance) : -1;
}

HbiIntervalIntSmallDisjoint KuuGeometrySet::pointToRanks(const QPointF& place,
                                                         double tolerance) const
{
    const auto* points = std::get_if<HbgGeomPointSet>(&m_geometry);
    return points ? points->pointToRanks(place, tolerance) : HbiIntervalIntSmallDisjoint();
}

HbiIntervalIntSmallDisjoint KuuGeometrySet::rectangleToRanks(const QRectF& rectangle) const
{
    const auto* points = std::get_if<HbgGeomPointSet>(&m_geometry);
    return points ? points->rectangleToRanks(rectangle) : HbiIntervalIntSmallDisjoint();
}

HbiIntervalIntSmallDisjoint KuuGeometrySet::polygonToRanks(const QVector<QPointF>& polygon) const
{
    const auto* points = std::get_if<HbgGeomPointSet>(&m_geometry);
    return points ? points->polygonToRanks(polygon) : HbiIntervalIntSmallDisjoint();
}

const HbgGeomPointSet& KuuGeometrySet::toPointSet() const
{
    const auto* points = std::get_if<HbgGeomPointSet>(&m_geometry);
    if (!points)
        HBE_PROGRAMMING_ERROR(SOURCE, QStringLiteral("The geometry set holds no points."));
    return *points;
}

HbgGeomPointSet KuuGeometrySet::toPointSet()
{
    return std::as_const(*this).toPointSet();
}

const HbgGeomGrid& KuuGeometrySet::toGrid() const
{
    const auto* grid = std::get_if<HbgGeomGrid>(&m_geometry);
    if (!grid)
        HBE_PROGRAMMING_ERROR(SOURCE, QStringLiteral("The geometry set holds no grid."));
    return *grid;
}

HbgGeomGrid KuuGeometrySet::toGrid()
{
    return std::as_const(*this).toGrid();
}

bool KuuGeometrySet::operator==(const KuuGeometrySet& other) const
{
    return m_kind == other.m_kind && m_geometry == other.m_geometry;
}
