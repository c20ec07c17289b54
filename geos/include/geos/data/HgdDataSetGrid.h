#pragma once

#include <geos/data/HgdADataSet.h>

#include <basic/geometry/HbgGeomGrid.h>

/// The nodes of a regular grid: columns have one value a node, in the node order of the geometry.
class KELVANE_GEOS_EXPORT HgdDataSetGrid final : public HgdADataSet
{
public:
    /// A grid that is not valid, or has more nodes than a column can hold, is a programming error.
    explicit HgdDataSetGrid(const HbgGeomGrid& geometry);
    ~HgdDataSetGrid() override;

    const HbgGeomGrid& getGeometry() const { return m_geometry; }

    /// Nodes along an axis: 0 is X, 1 is Y, 2 is Z (1 in 2D). Another axis is a programming error.
    int getAxisLength(int axis) const;
    /// 2 or 3.
    int getAxisCount() const { return m_geometry.is3D() ? 3 : 2; }

    std::unique_ptr<HgdADataSet> clone() const override;

private:
    HbgGeomGrid m_geometry;
};
