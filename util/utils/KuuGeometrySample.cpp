#include <util/utils/KuuGeometrySample.h>

#include "KuuGeometryOverloads.h"

#include <basic/error/HbeProgrammingError.h>

static const char* const SOURCE = "utils/KuuGeometrySample";

namespace
{
/// The geometry as a program asks for it.
template <class Primitive, class Geometry>
const Primitive& primitiveOf(const Geometry& geometry, const QString& complaint)
{
    const auto* primitive = std::get_if<Primitive>(&geometry);
    if (!primitive)
        HBE_PROGRAMMING_ERROR(SOURCE, complaint);
    return *primitive;
}

template <class Point>
HbgBox boxOfPoint(const Point& point)
{
    HbgBox box;
    box.unite(point);
    return box;
}
} // namespace

KuuGeometrySample::KuuGeometrySample(const HbgVector2D& point)
    : m_geometry(point)
{
}

KuuGeometrySample::KuuGeometrySample(const HbgVector3D& point)
    : m_geometry(point)
{
}

KuuGeometrySample::KuuGeometrySample(const HbgGeomPolyline& polyline)
    : m_geometry(polyline)
{
}

KuuGeometrySample::KuuGeometrySample(const HbgGeomPolygon& polygon)
    : m_geometry(polygon)
{
}

KuuGeometrySample::KuuGeometrySample(const HbgMesh& mesh)
    : m_geometry(mesh)
{
}

HbgEPrimitive KuuGeometrySample::getPrimitive() const
{
    return std::visit(KuuGeometryOverloads{
                          [](const std::monostate&) { return HbgEPrimitive::NONE; },
                          [](const HbgVector2D&) { return HbgEPrimitive::POINT_2D; },
                          [](const HbgVector3D&) { return HbgEPrimitive::POINT_3D; },
                          [](const HbgGeomPolyline&) { return HbgEPrimitive::POLYLINE; },
                          [](const HbgGeomPolygon&) { return HbgEPrimitive::POLYGON; },
                          [](const HbgMesh&) { return HbgEPrimitive::MESH; },
                      },
                      m_geometry);
}

HbgEDimension KuuGeometrySample::getDimension() const
{
    if (isPolyline())
        return toPolyline().getDimension();
    return isPoint3D() || isMesh() ? HbgEDimension::DIM_3D : HbgEDimension::DIM_2D;
}

const HbgVector2D& KuuGeometrySample::toPoint2D() const
{
    return primitiveOf<HbgVector2D>(m_geometry, QStringLiteral("The sample is not a 2D point."));
}

const HbgVector3D& KuuGeometrySample::toPoint3D() const
{
    return primitiveOf<HbgVector3D>(m_geometry, QStringLiteral("The sample is not a 3D point."));
}

const HbgGeomPolyline& KuuGeometrySample::toPolyline() const
{
    return primitiveOf<HbgGeomPolyline>(m_geometry,
                                        QStringLiteral("The sample is not a polyline."));
}

const HbgGeomPolygon& KuuGeometrySample::toPolygon() const
{
    return primitiveOf<HbgGeomPolygon>(m_geometry, QStringLiteral("The sample is not a polygon."));
}

const HbgMesh& KuuGeometrySample::toMesh() const
{
    return primitiveOf<HbgMesh>(m_geometry, QStringLiteral("The sample is not a mesh."));
}

HbgBox KuuGeometrySample::getBoundingBox() const
{
    return std::visit(KuuGeometryOverloads{
                          [](const std::monostate&) { return HbgBox(); },
                          [](const HbgVector2D& point) { return boxOfPoint(point); },
                          [](const HbgVector3D& point) { return boxOfPoint(point); },
                          [](const auto& shape) { return shape.getBoundingBox(); },
                      },
                      m_geometry);
}
