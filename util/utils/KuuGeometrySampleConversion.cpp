// Conversions of a geometry sample: into other primitives, dimensions, coordinate systems and
// units.

#include <util/utils/KuuCoordSystemConverter.h>
#include <util/utils/KuuGeometrySample.h>
#include <util/utils/KuuGeometrySet.h>

#include "KuuGeometryOverloads.h"

#include <basic/base/HbbGlobal.h>

namespace
{
static_assert(sizeof(HbgVector2D) == 2 * sizeof(double) &&
                  sizeof(HbgVector3D) == 3 * sizeof(double),
              "an array of points is an array of coordinates");

// changeVertices hands the vertices of a geometry to `change` for a change in place, some at a
// time: x, y, z (null in 2D), how many, and the distance in doubles from one to the next. False,
// and no change, when `change` says so, or the geometry refuses what came out.

template <class Change>
bool changeVertices(std::monostate&, const Change&)
{
    return false;
}

template <class Change>
bool changeVertices(HbgVector2D& point, const Change& change)
{
    HbgVector2D changed = point;
    if (!change(&changed.x, &changed.y, nullptr, 1, 2) || std::isinf(changed.x) ||
        std::isinf(changed.y))
        return false;
    point = changed;
    return true;
}

template <class Change>
bool changeVertices(HbgVector3D& point, const Change& change)
{
    HbgVector3D changed = point;
    if (!change(&changed.x, &changed.y, &changed.z, 1, 3) || std::isinf(changed.x) ||
        std::isinf(changed.y) || std::isinf(changed.z))
        return false;
    point = changed;
    return true;
}

template <class Change>
bool changeVertices(HbgGeomPolyline& line, const Change& change)
{
    if (line.isEmpty())
        return true;
    QVector<HbgVector3D> points = line.getPoints();
    const bool is3D = line.getDimension() == HbgEDimension::DIM_3D;
    HbgVector3D& first = points.first();
    return change(&first.x, &first.y, is3D ? &first.z : nullptr, points.size(), 3) &&
           line.setPoints(points);
}

template <class Change>
bool changeRing(HbgGeomPolygon::Ring& ring, const Change& change)
{
    HbgVector2D& first = ring.first();
    return change(&first.x, &first.y, nullptr, ring.size(), 2);
}

template <class Change>
bool changeVertices(HbgGeomPolygon& polygon, const Change& change)
{
    HbgGeomPolygon changed;
    for (int contour = 0; contour < polygon.getContourCount(); ++contour) {
        HbgGeomPolygon::Ring ring = polygon.getContour(contour);
        if (!changeRing(ring, change) || !changed.addContour(ring))
            return false;
        for (int hole = 0; hole < polygon.getHoleCount(contour); ++hole) {
            ring = polygon.getHole(contour, hole);
            if (!changeRing(ring, change) || !changed.addHole(contour, ring))
                return false;
        }
    }
    polygon = changed;
    return true;
}

template <class Change>
bool changeVertices(HbgMesh& mesh, const Change& change)
{
    QVector<HbgVector3D> vertices = mesh.getVertices();
    if (vertices.isEmpty())
        return true;
    HbgVector3D& first = vertices.first();
    return change(&first.x, &first.y, &first.z, vertices.size(), 3) && mesh.setVertices(vertices);
}

/// An empty set of the kind that a sample goes into.
KuuGeometrySet emptySetFor(const KuuGeometrySample& sample)
{
    const HbgEDimension dimension = sample.getDimension();
    if (sample.isPoint())
        return {HbgEGeometrySet::POINTS, dimension};
    if (sample.isPolyline())
        return {HbgEGeometrySet::POLYLINES, dimension};
    if (sample.isPolygon())
        return {HbgEGeometrySet::POLYGONS, dimension};
    return KuuGeometrySet(HbgMeshSet(sample.toMesh().getType()));
}
} // namespace

bool KuuGeometrySample::convertGeometry(const HbgEPrimitive& primitive)
{
    if (primitive == getPrimitive())
        return !isEmpty();
    if (isPoint() &&
        (primitive == HbgEPrimitive::POINT_2D || primitive == HbgEPrimitive::POINT_3D)) {
        convertDimension(primitive == HbgEPrimitive::POINT_2D ? HbgEDimension::DIM_2D
                                                              : HbgEDimension::DIM_3D);
        return true;
    }
    if (isPolyline() && primitive == HbgEPrimitive::POLYGON) {
        const HbgGeomPolygon polygon = toPolyline().toPolygon();
        if (!polygon.isEmpty())
            m_geometry = polygon;
        return !polygon.isEmpty();
    }
    if (isPolygon() && primitive == HbgEPrimitive::POLYLINE) {
        const HbgGeomPolyline polyline = toPolygon().toPolyline();
        if (!polyline.isEmpty())
            m_geometry = polyline;
        return !polyline.isEmpty();
    }
    return false;
}

KuuGeometrySet KuuGeometrySample::getConvertedGeometry(const HbgEPrimitive& primitive) const
{
    KuuGeometrySample converted = *this;
    if (!converted.convertGeometry(primitive))
        return {};
    KuuGeometrySet set = emptySetFor(converted);
    return set.addGeometrySample(converted) ? set : KuuGeometrySet();
}

void KuuGeometrySample::convertDimension(const HbgEDimension& dimension)
{
    if (isPoint2D() && dimension == HbgEDimension::DIM_3D) {
        const HbgVector2D point = toPoint2D();
        m_geometry = HbgVector3D(point.x, point.y, HbbGlobal::D_FFFF);
    } else if (isPoint3D() && dimension == HbgEDimension::DIM_2D) {
        m_geometry = toPoint3D().toVector2D();
    } else if (auto* polyline = std::get_if<HbgGeomPolyline>(&m_geometry)) {
        polyline->setDimension(dimension);
    }
}

bool KuuGeometrySample::convertCoord(const KuuCoordSystem& from, const HbuUnit& fromUnit,
                                     const KuuCoordSystem& to, const HbuUnit& toUnit)
{
    try {
        const KuuCoordSystemConverter converter(from, fromUnit, to, toUnit);
        const auto convert = [&converter](double* x, double* y, double* z, int count, int stride) {
            return converter.convert(x, y, z, count, stride).converted == count;
        };
        return std::visit([&convert](auto& shape) { return changeVertices(shape, convert); },
                          m_geometry);
    } catch (const std::exception&) { // no conversion between the two, or no memory for it
        return false;
    }
}

void KuuGeometrySample::rescale(const HbuUnitTransfo& transfo)
{
    const auto apply = [&transfo](double* x, double* y, double* z, int count, int stride) {
        for (int i = 0; i < count * stride; i += stride) {
            x[i] = transfo.apply(x[i]);
            y[i] = transfo.apply(y[i]);
            if (z)
                z[i] = transfo.apply(z[i]);
        }
        return true;
    };
    std::visit([&apply](auto& shape) { changeVertices(shape, apply); }, m_geometry);
}
