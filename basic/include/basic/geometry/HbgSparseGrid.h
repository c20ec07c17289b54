#pragma once

#include <basic/geometry/HbgGeomGrid.h>
#include <basic/geometry/HbgSharedCache.h>
#include <basic/interval/HbiIntervalIntSmallO64Disjoint.h>

#include <vector>

/// Some of the nodes of a regular grid, its cells, addressed by rank in node order. A value; any
/// thread may read it.
///
/// A node is a rank in the whole grid (see HbgGeomGrid), a cell a rank among those that are here.
///
/// The cells are kept as intervals of nodes. Going from a cell to its node or back costs O(log n);
/// the first time after an edit it also counts the cells below, linear in the intervals.
class KELVANE_BASIC_EXPORT HbgSparseGrid
{
public:
    explicit HbgSparseGrid(const HbgEDimension& dimension = HbgEDimension::DIM_2D);
    /// Nodes outside of the grid are left out.
    HbgSparseGrid(const HbgGeomGrid& grid, const HbiIntervalIntSmallO64Disjoint& nodes);

    /// The whole grid is valid.
    bool isValid() const { return m_grid.isValid(); }
    HbgEDimension getDimension() const { return m_grid.getDimension(); }
    const HbgGeomGrid& getGrid() const { return m_grid; }
    const HbiIntervalIntSmallO64Disjoint& getNodes() const { return m_nodes; }

    qint64 getCellCount() const;
    bool hasCells() const;

    bool containsNode(qint64 node) const;
    /// The cell at a node; -1 where there is none.
    qint64 getCell(qint64 node) const;
    /// A cell outside is a programming error.
    qint64 getNode(qint64 cell) const;
    HbgVector3D getPosition(qint64 cell) const;
    /// The coordinates of `count` cells from `first` on; `z` may be null.
    void getPositions(qint64 first, qint64 count, double* x, double* y, double* z) const;

    /// False, and no change, for a node outside of the grid, or one that is (is not) a cell.
    bool addCell(qint64 node);
    bool removeCell(qint64 node);

    /// Of the cells; empty without any.
    HbgBox getBoundingBox() const;

    bool operator==(const HbgSparseGrid& other) const;
    bool operator!=(const HbgSparseGrid& other) const { return !(*this == other); }

private:
    /// An interval of nodes, and the cell at its lower end.
    struct Anchor {
        qint64 node;
        qint64 cell;
    };

    std::shared_ptr<const std::vector<Anchor>> anchors() const;
    /// Calls `visit(first node, last node)` for the intervals from a cell on, the first of them cut
    /// to begin there, until that answers false. There must be such a cell.
    template <class Visitor>
    void visitIntervals(qint64 cell, const Visitor& visit) const;

    HbgGeomGrid m_grid;
    HbiIntervalIntSmallO64Disjoint m_nodes;
    HbgSharedCache<std::vector<Anchor>> m_anchors; // every so many intervals, upwards
};
