#pragma once

#include <util/KuExport.h>

#include <basic/interval/HbiIntervalIntSmallDisjoint.h>

#include <QtCore/QAbstractTableModel>

#include <optional>

class KudADataTable;

/// The Qt model of a table: rows are samples, columns its variables in the order of its header. The
/// table owns it and tells it of every change; views only read and edit through it. Cells show what
/// KudTableUtils makes of them; those of masked samples are grey.
class KELVANE_UTIL_EXPORT KudTableModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    explicit KudTableModel(KudADataTable& table);
    ~KudTableModel() override;

    const KudADataTable& getTable() const { return m_table; }

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

    /// Writes through the table and its permissions; Qt::EditRole only. False, and the cell stays
    /// as it is, for what the column cannot hold (see KudTableUtils::editRoleToValue): no number
    /// where one is needed, a label that is no category's. An empty text or N/A clears the cell.
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;

    /// Right and centred by default.
    void setCellAlignment(Qt::Alignment alignment);

    // What the table calls around its own changes. Observers hear of new cells while they are being
    // inserted; should one of them edit the table, the insertion, whose samples are in place by
    // then, ends before the next change begins. Ending it again does nothing. The selections follow
    // what is told here.
    void beginInsertSamples(int first, int count);
    void endInsertSamples();
    void beginRemoveSamples(int first, int count);
    void endRemoveSamples();
    void beginInsertVariables(int first, int count);
    void endInsertVariables();
    void beginRemoveVariables(int first, int count);
    void endRemoveVariables();
    void beginResetTable();
    /// A reset that only removes samples, these by their ranks before it, and appends some.
    void beginResetTable(const HbiIntervalIntSmallDisjoint& removed);
    void endResetTable();
    void headerChanged(int first, int last);
    void sampleChanged(int row);
    void valueChanged(int row, int column);
    void valuesChanged(const HbiIntervalIntSmall& rows, int column);
    void variableChanged(int column);
    void maskChanged();

    /// For who keeps ranks, while the model is about to be reset: the samples that will go. Null
    /// when it is not known which samples there will be.
    const HbiIntervalIntSmallDisjoint* getRemovedByReset() const;

private:
    QString columnToolTip(int column) const;
    bool isMasked(int row) const;
    void allChanged(int role);
    void selectionsKeepUp();

    KudADataTable& m_table;
    bool m_isInserting = false;
    HbiIntervalIntSmall m_removedRows;
    std::optional<HbiIntervalIntSmallDisjoint> m_removedByReset;
    Qt::Alignment m_alignment = Qt::AlignRight | Qt::AlignVCenter;
};
