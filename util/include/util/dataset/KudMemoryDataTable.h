#pragma once

#include <util/dataset/KudADataTable.h>

#include <basic/data/HbdDataTable.h>

#include <QtCore/QObject>

#include <vector>

/// A table that keeps its columns in memory, in an HbdDataTable. The support of its variables is
/// its name.
class KELVANE_UTIL_EXPORT KudMemoryDataTable : public KudADataTable, public QObject
{
public:
    /// A new table permits everything; `support` is what its samples stand for.
    explicit KudMemoryDataTable(const QString& name,
                                const HbdESupport& support = HbdESupport::POINT);
    ~KudMemoryDataTable() override;

    static QByteArray getClassType();

    /// The table itself when it is a memory table, else null.
    static KudMemoryDataTable* convert(KudADataTable* table);
    static const KudMemoryDataTable* convert(const KudADataTable* table);

    bool isValid() const override;
    QByteArray getType() const override;
    QString getName() const override;
    bool hasSample() const override;
    int getSampleCount() const override;
    /// Says what the coordinates are in; converts nothing. A system that differs is a reset: the
    /// samples lie elsewhere now.
    void setCoordSystem(const KuuCoordSystem& coordSystem) override;
    KuuCoordSystem getCoordSystem() const override;

    /// The unit of the X coordinate, else (not valid, or none) that of the coordinate system.
    HbuUnit getCoordinateUnit() const override;

    /// The unit of the Z coordinate, else the coordinate unit where that is a length.
    HbuUnit getElevationUnit() const override;

    /// \name The whole store at once; each change of it is a reset
    /// @{
    const HbdDataTable& getDataTable() const { return m_table; }
    void setDataTable(HbdDataTable table);

    /// Appends the samples of another store, matched by full name; `addMissing` creates the columns
    /// that only the other has.
    void appendTable(const HbdDataTable& table, bool addMissing);
    void clearDataTable();

    /// Takes over the variables of another table, without samples; or with them.
    void initHeaderFrom(const KudADataTable& other);
    void initTableFrom(const KudADataTable& other);
    /// @}

    /// Appends undefined samples or truncates. Tells the model only.
    void setSampleCount(int count);

    /// \name Columns left out of the header; what is left out changes with a reset
    /// @{
    void addStructuralRoleToFilter(const HbdEVarRole& role);
    void addTagToFilter(const QString& tag);
    /// @}

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

    int _createSampleRow(const SampleRow& row) override;
    int _createSampleRows(const QList<SampleRow>& rows, const SampleValues& defaults) override;
    int _appendSamples(const HbdDataTable& samples) override;
    bool _deleteSampleSet(const HbiIntervalIntSmallDisjoint& ranks) override;
    bool _updateColumn(const KudDatasetVariable& variable, int firstRank,
                       const HbdAVariable& values) override;
    bool _updateColumn(const KudDatasetVariable& variable, int firstRank,
                       HbdSpan<const double> numbers) override;

    class NewSample;

    KudDatasetVariable nameOf(const HbdAVariable& variable) const;
    bool isFiltered(const HbdAVariable& variable) const;
    void appendToHeader(KudDataTableHeader& header, const HbdAVariable& column) const;
    const KudTableModif::Row& variableRow() const;
    bool renameColumns(const KudDatasetVariable& variable, const QString& name);
    void shownColumnsChanged();
    KudTableModif writeCells(int rank, const SampleValues& values);
    KudTableModif modifOfCells(const SampleRow& row, int count,
                               const HbiIntervalIntSmallDisjoint& ranks) const;
    void fillRows(const QList<SampleRow>& rows, const SampleValues& defaults, int first);
    void columnChanged(const KudDatasetVariable& variable, int firstRank, int count);

    QString m_name;
    HbdESupport m_support;
    HbdDataTable m_table;
    std::unique_ptr<KuuCoordSystem> m_coordSystem;
    HbdVarRoleFlags m_filteredRoles;
    QStringList m_filteredTags;
    mutable std::vector<HbdAVariable*> m_columns; // of m_table, in the order of the header
    mutable KudTableModif::Row m_row; // the header's variables, for the notices; made when needed
};
