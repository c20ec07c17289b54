#include <util/utils/KuuGeometrySample.h>

#include <util/utils/KuuGeometrySet.h>

#include <basic/base/HbbGlobal.h>
#include <basic/error/HbeProgrammingError.h>

static const char* const SOURCE = "utils/KuuGeometrySample";

KuuGeometrySample::KuuGeometrySample(const HbgVector2D& point)
    : m_geometry(point)
{
}

KuuGeometrySample::KuuGeometrySample(const HbgVector3D& point)
    : m_geometry(point)
{
}

HbgEPrimitive KuuGeometrySample::getPrimitive() const
{
    if (std::holds_alternative<HbgVector2D>(m_geometry))
        return HbgEPrimitive::POINT_2D;
    if (std::holds_alternative<HbgVector3D>(m_geometry))
        return HbgEPrimitive::POINT_3D;
    return HbgEPrimitive::NONE;
}

HbgEDimension KuuGeometrySample::getDimension() const
{
    return isPoint3D() ? HbgEDimension::DIM_3D : HbgEDimension::DIM_2D;
}

const HbgVector2D& KuuGeometrySample::toPoint2D() const
{
    if (!isPoint2D())
        HBE_PROGRAMMING_ERROR(SOURCE, QStringLiteral("The sample is not a 2D point."));
    return std::get<HbgVector2D>(m_geometry);
}

const HbgVector3D& KuuGeometrySample::toPoint3D() const
{
    if (!isPoint3D())
        HBE_PROGRAMMING_ERROR(SOURCE, QStringLiteral("The sample is not a 3D point."));
    return std::get<HbgVector3D>(m_geometry);
}

bool KuuGeometrySample::convertGeometry(const HbgEPrimitive& primitive)
{
    if (primitive == getPrimitive())
        return !isEmpty();
    if (!isPoint())
        return false;
    if (primitive == HbgEPrimitive::POINT_2D)
        convertDimension(HbgEDimension::DIM_2D);
    else if (primitive == HbgEPrimitive::POINT_3D)
        convertDimension(HbgEDimension::DIM_3D);
    else
        return false;
    return true;
}

KuuGeometrySet KuuGeometrySample::getConvertedGeometry(const HbgEPrimitive& primitive) const
{
    KuuGeometrySample converted = *this;
    if (!converted.convertGeometry(primitive))
        return {};
    KuuGeometrySet set(HbgEGeometrySet::POINTS, converted.getDimension());
    return set.addGeometrySample(converted) ? set : KuuGeometrySet();
}

void KuuGeometrySample::convertDimension(const HbgEDimension& dimension)
{
    if (isPoint2D() && dimension == HbgEDimension::DIM_3D) {
        const HbgVector2D point = toPoint2D();
        m_geometry = HbgVector3D(point.x, point.y, HbbGlobal::D_FFFF);
    } else if (isPoint3D() && dimension == HbgEDimension::DIM_2D) {
        m_geometry = toPoint3D().toVector2D();
    }
}

void KuuGeometrySample::rescale(const HbuUnitTransfo& transfo)
{
    if (auto* flat = std::get_if<HbgVector2D>(&m_geometry)) {
        *flat = {transfo.apply(flat->x), transfo.apply(flat->y)};
    } else if (auto* point = std::get_if<HbgVector3D>(&m_geometry)) {
        *point = {transfo.apply(point->x), transfo.apply(point->y), transfo.apply(point->z)};
    }
}

HbgBox KuuGeometrySample::getBoundingBox() const
{
    HbgBox box;
    if (isPoint2D())
        box.unite(toPoint2D());
    else if (isPoint3D())
        box.unite(toPoint3D());
    return box;
}
