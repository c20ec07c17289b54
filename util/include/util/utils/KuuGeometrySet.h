#pragma once

#include <util/KuExport.h>
#include <util/utils/KuuGeometrySample.h>

#include <basic/geometry/HbgEGeometrySet.h>
#include <basic/geometry/HbgGeomGrid.h>
#include <basic/geometry/HbgGeomPointSet.h>

#include <QtCore/QVariantMap>

#include <variant>

/// Where the objects of a dataset lie: one container of geometries of one kind, addressed by rank.
/// A copyable value; copies share the points until one of them is edited. Const operations may run
/// in several threads at once.
///
/// This version holds points and full grids. A set of another kind remembers its kind but holds no
/// geometry: it is not valid, counts 0 samples, refuses additions, and picks find nothing.
class KELVANE_UTIL_EXPORT KuuGeometrySet
{
public:
    KuuGeometrySet() = default;
    /// An empty container of the kind.
    KuuGeometrySet(const HbgEGeometrySet& kind, const HbgEDimension& dimension);
    explicit KuuGeometrySet(const HbgGeomPointSet& points);
    explicit KuuGeometrySet(const HbgGeomGrid& grid);

    HbgEGeometrySet getGeometry() const { return m_kind; }
    HbgGeometrySetFlags getFlags() const { return m_kind.getFlags(); }
    /// A geometry is present.
    bool isValid() const;
    bool isPointSet() const { return m_kind == HbgEGeometrySet::POINTS; }
    bool isLineSet() const { return m_kind == HbgEGeometrySet::LINES; }
    bool isPolylineSet() const { return m_kind == HbgEGeometrySet::POLYLINES; }
    bool isPolygonSet() const { return m_kind == HbgEGeometrySet::POLYGONS; }
    bool isSparseGrid() const { return m_kind == HbgEGeometrySet::GRID_SPARSE; }
    /// By flag: true for full and sparse grids.
    bool isGrid() const { return getFlags().testFlag(HbgGeometrySetFlags::GRID); }
    bool isMeshSet() const { return getFlags().testFlag(HbgGeometrySetFlags::MESHES); }

    HbgEDimension getDimension() const;
    /// Points, or nodes of a grid (HbbGlobal::I_FFFF beyond 64 bits); 0 without geometry.
    qint64 getSampleCount() const;
    /// A grid is never empty; a set without geometry always is.
    bool isEmpty() const;
    HbgBox getBoundingBox() const;

    /// Edits of single elements; false, and no change, for what the kind does not take (a grid
    /// takes nothing), for a NaN or infinite coordinate and for a rank outside. A point takes on
    /// the dimension of the set.
    bool addGeometrySample(const KuuGeometrySample& sample);
    bool updateGeometrySample(qint64 rank, const KuuGeometrySample& sample);
    bool removeGeometrySample(qint64 rank);
    /// The element; an empty sample for a rank outside, and always for grids.
    KuuGeometrySample getGeometrySample(qint64 rank) const;

    /// Picking; -1 or no ranks for kinds other than points. See HbgGeomPointSet.
    int pointToRank(const QPointF& place, double tolerance) const;
    HbiIntervalIntSmallDisjoint pointToRanks(const QPointF& place, double tolerance) const;
    HbiIntervalIntSmallDisjoint rectangleToRanks(const QRectF& rectangle) const;
    HbiIntervalIntSmallDisjoint polygonToRanks(const QVector<QPointF>& polygon) const;

    /// The container, borrowed from a const set, a copy otherwise. A programming error for a set
    /// that holds no such container.
    const HbgGeomPointSet& toPointSet() const;
    HbgGeomPointSet toPointSet();
    const HbgGeomGrid& toGrid() const;
    HbgGeomGrid toGrid();

    /// The set as texts and nested lists for a memento; doubles come back bit for bit. Reading
    /// answers a set that is not valid, and `*ok` = false (may be null), for a map that does not
    /// describe a whole set.
    QVariantMap toVariantMap() const;
    static KuuGeometrySet fromVariantMap(const QVariantMap& map, bool* ok = nullptr);

    bool operator==(const KuuGeometrySet& other) const;
    bool operator!=(const KuuGeometrySet& other) const { return !(*this == other); }

private:
    HbgEGeometrySet m_kind = HbgEGeometrySet::NONE;
    std::variant<std::monostate, HbgGeomPointSet, HbgGeomGrid> m_geometry;
};
