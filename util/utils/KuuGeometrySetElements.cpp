// Elements of a geometry set one by one: taken out, put in, replaced, removed and picked.

#include <util/utils/KuuGeometrySet.h>

#include "KuuGeometryOverloads.h"

#include <basic/interval/HbiIntervalIntSmallDisjoint.h>

#include <optional>

using Ranks = HbiIntervalIntSmallDisjoint;

namespace
{
KuuGeometrySample elementAt(const HbgGeomPointSet& points, int rank)
{
    const HbgVector3D point = points.getPoint(rank);
    return points.getDimension() == HbgEDimension::DIM_3D ? KuuGeometrySample(point)
                                                          : KuuGeometrySample(point.toVector2D());
}

KuuGeometrySample elementAt(const HbgGeomPolylineSet& polylines, int rank)
{
    return polylines.getPolyline(rank);
}

KuuGeometrySample elementAt(const HbgGeomPolygonSet& polygons, int rank)
{
    return polygons.getPolygon(rank);
}

KuuGeometrySample elementAt(const HbgMeshSet& meshes, int rank)
{
    return meshes.getMesh(rank);
}

/// A sample as what the container holds; nothing where the kind does not take it. The sample is the
/// function's own copy, to be converted.
std::optional<HbgVector3D> elementFor(const HbgGeomPointSet&, KuuGeometrySample sample)
{
    if (!sample.convertGeometry(HbgEPrimitive::POINT_3D))
        return std::nullopt;
    return sample.toPoint3D();
}

std::optional<HbgGeomPolyline> elementFor(const HbgGeomPolylineSet&, KuuGeometrySample sample)
{
    if (!sample.convertGeometry(HbgEPrimitive::POLYLINE))
        return std::nullopt;
    return sample.toPolyline();
}

std::optional<HbgGeomPolygon> elementFor(const HbgGeomPolygonSet&, KuuGeometrySample sample)
{
    if (!sample.convertGeometry(HbgEPrimitive::POLYGON))
        return std::nullopt;
    return sample.toPolygon();
}

std::optional<HbgMesh> elementFor(const HbgMeshSet&, KuuGeometrySample sample)
{
    if (!sample.isMesh())
        return std::nullopt;
    return sample.toMesh();
}

bool append(HbgGeomPolylineSet& polylines, const HbgGeomPolyline& polyline)
{
    polylines.append(polyline);
    return true;
}

bool append(HbgGeomPolygonSet& polygons, const HbgGeomPolygon& polygon)
{
    return polygons.insert(polygons.getCount(), polygon);
}

template <class Container, class Element>
bool append(Container& container, const Element& element)
{
    return container.append(element);
}

/// Kinds without single elements.
template <class Container>
constexpr bool IS_WHOLE =
    std::is_same_v<Container, std::monostate> || std::is_same_v<Container, HbgGeomGrid> ||
    std::is_same_v<Container, HbgSparseGrid>;

/// What `operation` makes of the container of elements, `otherwise` for a kind without elements or
/// a rank outside.
template <class Geometry, class Result, class Operation>
Result withElement(Geometry& geometry, qint64 rank, const Result& otherwise,
                   const Operation& operation)
{
    return std::visit(
        [&](auto& container) -> Result {
            if constexpr (!IS_WHOLE<std::decay_t<decltype(container)>>) {
                if (rank >= 0 && rank < container.getCount())
                    return operation(container, static_cast<int>(rank));
            }
            return otherwise;
        },
        geometry);
}

/// What `operation` picks from points, polylines or polygons; of other kinds `nothing`.
template <class Geometry, class Result, class Operation>
Result pick(const Geometry& geometry, const Result& nothing, const Operation& operation)
{
    return std::visit(
        [&](const auto& container) -> Result {
            using Container = std::decay_t<decltype(container)>;
            if constexpr (IS_WHOLE<Container> || std::is_same_v<Container, HbgMeshSet>)
                return nothing;
            else
                return operation(container);
        },
        geometry);
}
} // namespace

bool KuuGeometrySet::addGeometrySample(const KuuGeometrySample& sample)
{
    return std::visit(
        [&sample](auto& container) {
            if constexpr (IS_WHOLE<std::decay_t<decltype(container)>>) {
                return false;
            } else {
                const auto element = elementFor(container, sample);
                return element && append(container, *element);
            }
        },
        m_geometry);
}

bool KuuGeometrySet::updateGeometrySample(qint64 rank, const KuuGeometrySample& sample)
{
    return withElement(m_geometry, rank, false, [&sample](auto& container, int at) {
        const auto element = elementFor(container, sample);
        return element && container.update(at, *element);
    });
}

bool KuuGeometrySet::removeGeometrySample(qint64 rank)
{
    return withElement(m_geometry, rank, false,
                       [](auto& container, int at) { return container.remove(at); });
}

KuuGeometrySample KuuGeometrySet::getGeometrySample(qint64 rank) const
{
    return withElement(m_geometry, rank, KuuGeometrySample(),
                       [](const auto& container, int at) { return elementAt(container, at); });
}

int KuuGeometrySet::pointToRank(const QPointF& place, double tolerance) const
{
    return pick(m_geometry, -1,
                KuuGeometryOverloads{
                    [&](const HbgGeomPolygonSet& polygons) { return polygons.pointToRank(place); },
                    [&](const auto& elements) { return elements.pointToRank(place, tolerance); },
                });
}

Ranks KuuGeometrySet::pointToRanks(const QPointF& place, double tolerance) const
{
    return pick(m_geometry, Ranks(),
                KuuGeometryOverloads{
                    [&](const HbgGeomPolygonSet& polygons) { return polygons.pointToRanks(place); },
                    [&](const auto& elements) { return elements.pointToRanks(place, tolerance); },
                });
}

Ranks KuuGeometrySet::rectangleToRanks(const QRectF& rectangle) const
{
    return pick(m_geometry, Ranks(),
                [&](const auto& elements) { return elements.rectangleToRanks(rectangle); });
}

Ranks KuuGeometrySet::polygonToRanks(const QVector<QPointF>& polygon) const
{
    return pick(m_geometry, Ranks(),
                [&](const auto& elements) { return elements.polygonToRanks(polygon); });
}
