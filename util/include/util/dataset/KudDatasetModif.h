#pragma once

#include <util/dataset/KudInlineMap.h>
#include <util/dataset/KudTableModif.h>
#include <util/observable/KuoAObservableModif.h>

#include <QtCore/QStringList>

class KudADataset;
class KudADataTable;
class KudDatasetModif;

template <>
struct ObservableTraits<KudDatasetModif> {
    using Observable = KudADataset;
};

/// What a dataset tells its observers: tables added and removed, by name, and the change set of
/// each modified table. Tables are borrowed and serve as keys only. A notice whose reasons are
/// exactly Reset says that anything may have changed; nothing can be added to that.
class KELVANE_UTIL_EXPORT KudDatasetModif
    : public KuoAObservableModif<KudDatasetModif, ObservableTraits<KudDatasetModif>>
{
public:
    enum Reason { Reset = 0x1, TableAdded = 0x4, TableRemoved = 0x8, TableModified = 0x10 };
    Q_DECLARE_FLAGS(Reasons, Reason)

    KudDatasetModif() = default;
    explicit KudDatasetModif(Reason reason);
    KudDatasetModif(Reason reason, const QString& tableName);
    KudDatasetModif(const KudADataTable* table, KudTableModif modif);
    KudDatasetModif(const KudADataTable* table, KudTableModif::Reason reason,
                    const KudDatasetVariable& variable = KudDatasetVariable(),
                    const HbiIntervalIntSmallDisjoint& ranks = HbiIntervalIntSmallDisjoint());

    /// Folds a later notice in. A reset on either side gives a reset. The names of added or removed
    /// tables are appended as a whole list as soon as one of them is new, so names may repeat.
    void merge(const KudDatasetModif& other);

    /// The sender, borrowed; null in a notice that was not sent. Defined beside KudADataset.
    const KudADataset* dataset() const;

    Reasons reasons() const { return m_reasons; }
    bool testReason(Reason reason) const { return m_reasons.testFlag(reason); }
    bool isEmpty() const override { return !m_reasons; }
    /// 1 for a reset, else the number of modified tables and of reasons that name tables.
    int getNumberOfModif() const override;

    bool hasModifForTable(const KudADataTable* table) const { return m_tables.find(table); }
    /// Empty for a table that is not modified.
    KudTableModif modifForTable(const KudADataTable* table) const;
    QStringList tablesAdded() const { return m_names.value(TableAdded); }
    QStringList tablesRemoved() const { return m_names.value(TableRemoved); }
    bool tableAdded(const QString& name) const { return tablesAdded().contains(name); }
    bool tableRemoved(const QString& name) const { return tablesRemoved().contains(name); }

private:
    void _merge(const KudDatasetModif& other) override { merge(other); }
    void _reset();
    void _mergeNames(const KudDatasetModif& other);

    Reasons m_reasons;
    KudInlineMap<const KudADataTable*, KudTableModif> m_tables;
    QMap<Reason, QStringList> m_names;
};
Q_DECLARE_OPERATORS_FOR_FLAGS(KudDatasetModif::Reasons)
