#pragma once

#include <basic/base/HbbExport.h>
#include <basic/geometry/HbgBox.h>
#include <basic/geometry/HbgEMeshType.h>

#include <QtCore/QVector>

/// A mesh in space: vertices, and cells that join them, all triangles or all tetrahedra. A value
/// with shared contents; any thread.
///
/// All coordinates of a vertex are finite and defined. The corners of a cell are ranks of vertices;
/// cells may be degenerate (repeated corners, no area). Vertices that no cell uses are kept.
class KELVANE_BASIC_EXPORT HbgMesh
{
public:
    explicit HbgMesh(const HbgEMeshType& type = HbgEMeshType::SURFACE);

    HbgEMeshType getType() const;
    /// 3 of a surface, 4 of a volume.
    int getCornerCount() const { return m_isVolume ? 4 : 3; }

    int getVertexCount() const { return m_vertices.size(); }
    int getCellCount() const { return m_corners.size() / getCornerCount(); }
    /// There is no cell.
    bool isEmpty() const { return m_corners.isEmpty(); }
    const QVector<HbgVector3D>& getVertices() const { return m_vertices; }
    /// Ranks of vertices, `getCornerCount()` of them a cell, cell after cell.
    const QVector<int>& getCorners() const { return m_corners; }

    /// Replaces everything. False, and no change, for a coordinate that is refused, a corner that
    /// is no vertex, or a number of corners that makes no whole cells.
    bool setCells(const QVector<HbgVector3D>& vertices, const QVector<int>& corners);
    /// Replaces the coordinates; the same number of vertices (false, and no change, otherwise).
    bool setVertices(const QVector<HbgVector3D>& vertices);
    void clear();

    /// Of the triangles of a surface; 0 of a volume.
    double getArea() const;
    /// Of the tetrahedra of a volume, whichever way round their corners are; 0 of a surface.
    double getVolume() const;
    /// Of the vertices.
    HbgBox getBoundingBox() const;

    bool operator==(const HbgMesh& other) const;
    bool operator!=(const HbgMesh& other) const { return !(*this == other); }

private:
    QVector<HbgVector3D> m_vertices;
    QVector<int> m_corners;
    bool m_isVolume;
};

// A set moves all that follow when it removes one: as bytes, not one by one.
Q_DECLARE_TYPEINFO(HbgMesh, Q_MOVABLE_TYPE);
