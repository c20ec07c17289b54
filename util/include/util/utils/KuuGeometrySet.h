#pragma once

#include <util/KuExport.h>
#include <util/utils/KuuGeometrySample.h>

#include <basic/geometry/HbgEGeometrySet.h>
#include <basic/geometry/HbgGeomGrid.h>
#include <basic/geometry/HbgGeomPointSet.h>
#include <basic/geometry/HbgGeomPolygonSet.h>
#include <basic/geometry/HbgGeomPolylineSet.h>
#include <basic/geometry/HbgMeshSet.h>
#include <basic/geometry/HbgSparseGrid.h>

#include <QtCore/QVariantMap>

#include <utility>
#include <variant>

/// Where the objects of a dataset lie: one container of geometries of one kind, addressed by rank.
/// A copyable value; copies share the contents until one of them is edited. Const operations may
/// run in several threads at once.
class KELVANE_UTIL_EXPORT KuuGeometrySet
{
public:
    KuuGeometrySet() = default;
    /// An empty container of the kind; none for the kind NONE. Polygons are 2D and meshes 3D
    /// whatever the dimension.
    KuuGeometrySet(const HbgEGeometrySet& kind, const HbgEDimension& dimension);
    explicit KuuGeometrySet(const HbgGeomPointSet& points);
    /// LINES or POLYLINES.
    KuuGeometrySet(const HbgGeomPolylineSet& polylines, bool isLineSet);
    explicit KuuGeometrySet(const HbgGeomGrid& grid);
    explicit KuuGeometrySet(const HbgSparseGrid& grid);
    explicit KuuGeometrySet(const HbgGeomPolygonSet& polygons);
    /// MESH_SURFACE or MESH_VOLUME, after the type of the meshes.
    explicit KuuGeometrySet(const HbgMeshSet& meshes);

    HbgEGeometrySet getGeometry() const { return m_kind; }
    HbgGeometrySetFlags getFlags() const { return m_kind.getFlags(); }
    /// A geometry is present.
    bool isValid() const { return !std::holds_alternative<std::monostate>(m_geometry); }
    bool isPointSet() const { return m_kind == HbgEGeometrySet::POINTS; }
    bool isLineSet() const { return m_kind == HbgEGeometrySet::LINES; }
    bool isPolylineSet() const { return m_kind == HbgEGeometrySet::POLYLINES; }
    bool isPolygonSet() const { return m_kind == HbgEGeometrySet::POLYGONS; }
    bool isSparseGrid() const { return m_kind == HbgEGeometrySet::GRID_SPARSE; }
    /// By flag: true for full and sparse grids.
    bool isGrid() const { return getFlags().testFlag(HbgGeometrySetFlags::GRID); }
    bool isMeshSet() const { return getFlags().testFlag(HbgGeometrySetFlags::MESHES); }

    /// Polygons are 2D, meshes 3D; a set without geometry is 2D.
    HbgEDimension getDimension() const;
    /// Elements, nodes of a grid (HbbGlobal::I_FFFF beyond 64 bits), or cells of a sparse grid; 0
    /// without geometry.
    qint64 getSampleCount() const;
    /// There is no element. A set without geometry is always empty, a grid never; a sparse grid
    /// answers whether it has cells, so that one with cells is empty here. Ask `getSampleCount`
    /// where that matters.
    bool isEmpty() const;
    HbgBox getBoundingBox() const;

    /// Edits of single elements; false, and no change, for what the kind does not take (a grid
    /// takes nothing), for what its container refuses (a NaN coordinate, a mesh of the other type)
    /// and for a rank outside. Points and polylines take on the dimension of the set; polygons go
    /// into a set of polylines, and polylines into one of polygons, where
    /// KuuGeometrySample::convertGeometry can convert them.
    bool addGeometrySample(const KuuGeometrySample& sample);
    bool updateGeometrySample(qint64 rank, const KuuGeometrySample& sample);
    bool removeGeometrySample(qint64 rank);
    /// The element; an empty sample for a rank outside, and always for grids.
    KuuGeometrySample getGeometrySample(qint64 rank) const;

    /// Picking in the plane; -1 or no ranks for grids and meshes. The containers say what is found;
    /// polygons pay no heed to the tolerance.
    int pointToRank(const QPointF& place, double tolerance) const;
    HbiIntervalIntSmallDisjoint pointToRanks(const QPointF& place, double tolerance) const;
    HbiIntervalIntSmallDisjoint rectangleToRanks(const QRectF& rectangle) const;
    HbiIntervalIntSmallDisjoint polygonToRanks(const QVector<QPointF>& polygon) const;

    /// The container, borrowed from a const set, a copy otherwise. A programming error for a set
    /// that holds no such container. Lines and polylines are in the same one: either name will do.
    const HbgGeomPointSet& toPointSet() const;
    const HbgGeomPolylineSet& toLineSet() const { return toPolylineSet(); }
    const HbgGeomPolylineSet& toPolylineSet() const;
    const HbgGeomPolygonSet& toPolygonSet() const;
    const HbgGeomGrid& toGrid() const;
    const HbgSparseGrid& toSparseGrid() const;
    const HbgMeshSet& toMeshSet() const;
    HbgGeomPointSet toPointSet() { return std::as_const(*this).toPointSet(); }
    HbgGeomPolylineSet toLineSet() { return std::as_const(*this).toLineSet(); }
    HbgGeomPolylineSet toPolylineSet() { return std::as_const(*this).toPolylineSet(); }
    HbgGeomPolygonSet toPolygonSet() { return std::as_const(*this).toPolygonSet(); }
    HbgGeomGrid toGrid() { return std::as_const(*this).toGrid(); }
    HbgSparseGrid toSparseGrid() { return std::as_const(*this).toSparseGrid(); }
    HbgMeshSet toMeshSet() { return std::as_const(*this).toMeshSet(); }

    /// The set as texts for a memento (docs/formats/dataset-memento.md); doubles come back bit for
    /// bit. A grid that is not valid is saved as one without nodes. HbeUserError for a set too
    /// large for a text. Reading answers a set that is not valid, and `*ok` = false (may be null),
    /// for a map that does not describe a whole set.
    QVariantMap toVariantMap() const;
    static KuuGeometrySet fromVariantMap(const QVariantMap& map, bool* ok = nullptr);

    bool operator==(const KuuGeometrySet& other) const;
    bool operator!=(const KuuGeometrySet& other) const { return !(*this == other); }

private:
    HbgEGeometrySet m_kind = HbgEGeometrySet::NONE;
    std::variant<std::monostate, HbgGeomPointSet, HbgGeomPolylineSet, HbgGeomPolygonSet,
                 HbgGeomGrid, HbgSparseGrid, HbgMeshSet>
        m_geometry;
};
