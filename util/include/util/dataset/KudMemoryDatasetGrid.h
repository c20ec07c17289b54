#pragma once

#include <util/dataset/KudAMemoryDataset.h>
#include <util/utils/KuuGeometrySet.h>

/// A grid in memory: a geometry set that describes it, and one table with exactly one sample a
/// node, in the node order of the geometry set; for a sparse grid, one sample a cell, in the order
/// of cells. Its objects, the nodes or cells, cannot be edited.
class KELVANE_UTIL_EXPORT KudMemoryDatasetGrid : public KudAMemoryDataset
{
public:
    explicit KudMemoryDatasetGrid(const QString& name);
    ~KudMemoryDatasetGrid() override;

    static QByteArray getClassType();
    static KudMemoryDatasetGrid* convert(KudADataset* dataset); ///< null for another kind
    static const KudMemoryDatasetGrid* convert(const KudADataset* dataset);

    KudMemoryDataTable* getGridTable() const { return &_table(); }

    /// Replaces the grid and drops the columns of the table; the dataset is reset. A programming
    /// error, without a change, for a geometry that is no grid, for a grid with nodes that is not
    /// valid (HbgGeomGrid::isValid), and for one with too many nodes or cells.
    void setGeometrySet(const KuuGeometrySet& geometrySet);

    QByteArray getType() const override;
    KudEDatasetType getDatasetType() const override;
    bool is3D() const override;
    HbgBox getBoundingBox() const override;

    int createObject(const KuuGeometrySample& geometry) override; ///< -1
    KuuGeometrySample getObject(int rank) const override;         ///< a programming error
    void updateObject(int rank, const KuuGeometrySample& geometry) override; ///< nothing, as below
    void deleteObject(int rank) override;
    void deleteObjects(const HbiIntervalIntSmallDisjoint& ranks) override;
    void deleteAllObjects() override;

    HbgEGeometrySet getGeometry() const override; ///< GRID, or GRID_SPARSE where it is one
    KuuGeometrySet readGeometrySet() const override;
    void clearAll() override;

private:
    void _saveGeometry(KuuMemento& memento) const override;
    void _restoreGeometry(const KuuMemento& memento, const HbdDataTable& table) override;

    KuuGeometrySet m_geometrySet;
};
