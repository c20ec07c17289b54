#pragma once

#include <util/dataset/KudADataset.h>
#include <util/dataset/KudMemoryDataTable.h>
#include <util/utils/KuuCoordSystem.h>

/// A dataset that keeps a name, a coordinate system and one table in memory.
class KELVANE_UTIL_EXPORT KudAMemoryDataset : public KudADataset
{
public:
    ~KudAMemoryDataset() override;

    QString getName() const override;
    void setName(const QString& name);
    QIcon getIcon() const override;
    QString getSourcePath() const override; ///< "Memory"
    bool isValid() const override;
    QString getSourceId() const override; ///< the dataset's own identifier

    bool is2D() const override;
    bool hasObject() const override;
    int getObjectCount() const override;

    KuuCoordSystem getCoordSystem() const override;
    void setCoordSystem(const KuuCoordSystem& coordSystem) override; ///< that of the table
    HbuUnit getCoordinateUnit() const override;
    HbuUnit getElevationUnit() const override;

    KudDatasetVariable getNameVariable() const override;
    void setObjectName(int rank, const QString& name) override;

    int getTableCount() const override;
    KudADataTable* getTableAt(int i) const override;
    KudADataTable* getObjectTable() const override;
    HbdESupport getTableRole(const KudADataTable* table) const override;
    KudADataTable* getTable(const QString& name) const override;
    KudADataTable* getTable(const HbdESupport& support) const override;
    QString getTableName(const KudADataTable* table) const override;
    QMap<qint64, QString> readObjectIdsAndNames() const override;

    void clearAll() override;

protected:
    /// `support` is what the samples of the table stand for; it names the table, too.
    KudAMemoryDataset(const QString& name, const QString& tableName, const HbdESupport& support);

    KudMemoryDataTable& _table() const { return *m_table; }

private:
    void _updateMemento(KuuMemento& memento) const override;
    void _setFromMemento(const KuuMemento& memento) override;
    QStringList _getTableList() const override;

    /// What a concrete dataset saves beside its table. Restoring comes before the table is taken
    /// over, and raises an error without a change when the memento does not fit the table.
    virtual void _saveGeometry(KuuMemento& memento) const;
    virtual void _restoreGeometry(const KuuMemento& memento, const HbdDataTable& table);

    QString m_name;
    HbdESupport m_support;
    std::unique_ptr<KudMemoryDataTable> m_table;
};
