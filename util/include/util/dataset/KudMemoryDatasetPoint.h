#pragma once

#include <util/dataset/KudAMemoryDataset.h>

/// Points in memory: one table, one object a sample, rank for rank. Where an object lies is told by
/// the coordinate variables of the table.
class KELVANE_UTIL_EXPORT KudMemoryDatasetPoint : public KudAMemoryDataset
{
public:
    explicit KudMemoryDatasetPoint(const QString& name);
    ~KudMemoryDatasetPoint() override;

    static QByteArray getClassType();
    static KudMemoryDatasetPoint* convert(KudADataset* dataset); ///< null for another kind
    static const KudMemoryDatasetPoint* convert(const KudADataset* dataset);

    KudMemoryDataTable* getPointTable() const { return &_table(); }

    /// Replace all variables and samples; the dataset is reset.
    void setTable(const KudMemoryDataTable& table);
    void setDataTable(HbdDataTable table);
    void initHeaderFrom(const KudADataTable& other);

    /// Appends the samples of another dataset, and the variables that only it has.
    void mergePoints(const KudMemoryDatasetPoint& other);

    QByteArray getType() const override;
    KudEDatasetType getDatasetType() const override;
    bool is3D() const override; ///< there is a Z coordinate
    HbgBox getBoundingBox() const override;

    /// Appends a sample at a point; -1 for another geometry, or without coordinate variables.
    int createObject(const KuuGeometrySample& geometry) override;
    KuuGeometrySample getObject(int rank) const override;
    void updateObject(int rank, const KuuGeometrySample& geometry) override;
    void deleteObject(int rank) override;
    void deleteObjects(const HbiIntervalIntSmallDisjoint& ranks) override;
    void deleteAllObjects() override;

    HbgEGeometrySet getGeometry() const override;

    /// A copy of the coordinates; not valid without coordinate variables.
    KuuGeometrySet readGeometrySet() const override;

private:
    KudADataTable::SampleValues coordinatesOf(const KuuGeometrySample& geometry) const;
};
