#pragma once

#include <basic/base/HbbExport.h>
#include <basic/geometry/HbgBox.h>
#include <basic/geometry/HbgEDimension.h>

#include <QtCore/QtGlobal>

/// A regular grid of nodes, turned about the vertical through its origin; a value, any thread.
///
/// The origin is the position of node (0, 0, 0). Node order, everywhere: X fastest, then Y, then Z,
/// so that rank = i + nx * (j + ny * k). The rotation is in degrees, counter-clockwise seen from
/// above, and turns the grid's X and Y axes. A 2D grid has one layer, and its elevations are
/// undefined. A default grid has no nodes and is not valid.
class KELVANE_BASIC_EXPORT HbgGeomGrid
{
public:
    struct Indices {
        int x = 0;
        int y = 0;
        int z = 0;
        bool operator==(const Indices& o) const { return x == o.x && y == o.y && z == o.z; }
        bool operator!=(const Indices& o) const { return !(*this == o); }
    };

    explicit HbgGeomGrid(const HbgEDimension& dimension = HbgEDimension::DIM_2D);
    /// A 2D grid.
    HbgGeomGrid(int nx, int ny, const HbgVector2D& origin, double dx, double dy,
                double rotation = 0.);
    /// A 3D grid.
    HbgGeomGrid(int nx, int ny, int nz, const HbgVector3D& origin, double dx, double dy, double dz,
                double rotation = 0.);

    /// Every node count is at least 1 and every number finite and defined; the step of an axis with
    /// several nodes is not zero (it may be negative).
    bool isValid() const;
    HbgEDimension getDimension() const;
    bool is3D() const { return m_is3D; }

    int getNx() const { return m_nx; }
    int getNy() const { return m_ny; }
    int getNz() const { return m_nz; }                 ///< 1 in 2D
    HbgVector3D getOrigin() const { return m_origin; } ///< Z is undefined in 2D
    double getDx() const { return m_step.x; }
    double getDy() const { return m_step.y; }
    double getDz() const { return m_step.z; } ///< 1 in 2D
    double getRotation() const { return m_rotation; }

    /// nx * ny * nz; HbbGlobal::I_FFFF where that exceeds 64 bits, 0 where a count is below 1.
    qint64 getNodeCount() const;

    bool containsRank(qint64 rank) const { return rank >= 0 && rank < getNodeCount(); }
    bool containsIndices(const Indices& at) const;
    /// Ranks and indices outside are a programming error.
    qint64 getRank(const Indices& at) const;
    Indices getIndices(qint64 rank) const;
    HbgVector3D getPosition(qint64 rank) const;
    HbgVector3D getPosition(const Indices& at) const;
    /// The coordinates of `count` nodes from rank `first` on; `z` may be null.
    void getPositions(qint64 first, qint64 count, double* x, double* y, double* z) const;

    /// Of the nodes; empty for a grid that is not valid.
    HbgBox getBoundingBox() const;

    /// All parameters are equal.
    bool operator==(const HbgGeomGrid& other) const;
    bool operator!=(const HbgGeomGrid& other) const { return !(*this == other); }

private:
    void setRotation(double degrees);
    HbgVector3D position(const Indices& at) const;

    bool m_is3D = false;
    int m_nx = 0;
    int m_ny = 0;
    int m_nz = 0;
    HbgVector3D m_origin;
    HbgVector3D m_step{1., 1., 1.};
    double m_rotation = 0.;
    double m_cos = 1.;
    double m_sin = 0.;
};
