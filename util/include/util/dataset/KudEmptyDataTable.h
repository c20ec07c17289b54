#pragma once

#include <util/dataset/KudADataTable.h>

/// The table with nothing in it; it refuses everything. See KudADataTable::staticEmptyDataTable.
class KELVANE_UTIL_EXPORT KudEmptyDataTable : public KudADataTable
{
public:
    KudEmptyDataTable();
    ~KudEmptyDataTable() override;

    bool isValid() const override;
    QByteArray getType() const override;
    QString getName() const override;
    bool hasSample() const override;
    int getSampleCount() const override;
    void setCoordSystem(const KuuCoordSystem& coordSystem) override;
    KuuCoordSystem getCoordSystem() const override;
    HbuUnit getCoordinateUnit() const override;
    HbuUnit getElevationUnit() const override;

private:
    KudDatasetVariable _addVariable(HbdAVariable* variable) override;
    KudDatasetVariable _createVariable(const HbdVariableDetails& details) override;
    HbdAVariable* _readVariable(const KudDatasetVariable& variable) const override;
    bool _renameVariable(const KudDatasetVariable& variable, const QString& name) override;
    bool _deleteVariable(const KudDatasetVariable& variable) override;
    bool _setDetails(const KudDatasetVariable& variable,
                     const HbdVariableDetails& details) override;
    int _createSample(const SampleValues& values) override;
    int _createSamples(const QList<SampleValues>& samples) override;
    bool _deleteSamples(const HbiIntervalIntSmall& ranks) override;
    bool _updateValues(int rank, const SampleValues& values) override;
    KudDataTableHeader _rebuildHeader() const override;
    void _cacheClear() const override;
};
