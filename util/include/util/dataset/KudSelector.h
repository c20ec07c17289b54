#pragma once

#include <util/KuExport.h>
#include <util/dataset/KudFlags.h>
#include <util/dataset/KudTableModif.h>

#include <QtCore/QBitArray>
#include <QtCore/QObject>

#include <memory>

class KudADataTable;
class QItemSelectionModel;

/// A selection of a table's samples: its mask or its highlight. It is at once a bit for each
/// sample and a Qt selection model for views; added and deleted samples move it along. A table owns
/// its selectors. A table without variables shows no cells, so nothing of it can be selected.
class KELVANE_UTIL_EXPORT KudSelector : public QObject
{
    Q_OBJECT

public:
    /// `reason` is what the table reports when the selection changes: MaskChanged or
    /// HighlightChanged.
    explicit KudSelector(KudTableModif::Reason reason);
    ~KudSelector() override;

    /// Binds the selector to a table, which outlives it (or calls setTable(nullptr) first).
    void setTable(const KudADataTable* table);

    /// Changes the selection of these samples; true when that changed anything. False without a
    /// table.
    bool select(int rank, Ku::SelectionFlag flag);
    bool select(const HbiIntervalIntSmallDisjoint& ranks, Ku::SelectionFlag flag);

    /// True when something was selected.
    bool deselectAll();

    bool hasSelection() const { return getNSelected() > 0; }
    int getNSelected() const;

    /// The ranks of the selected samples.
    HbiIntervalIntSmallDisjoint selectedRows() const;

    /// One bit a sample.
    QBitArray getBitArray() const;

    /// Replaces the selection; missing bits are not selected, bits beyond the samples are ignored.
    /// True when that changed anything.
    bool setBitArray(const QBitArray& bits);

    /// For views; made on first use, owned by the selector. Null without a table.
    QItemSelectionModel* getSelectionModel() const;

private:
    void _selectionChanged();
    void replaceRows(const HbiIntervalIntSmallDisjoint& rows);
    void columnsWillGo();
    void columnsHaveGone();
    void coverNewColumns();
    void refreshBits() const;

    KudTableModif::Reason m_reason;
    const KudADataTable* m_table = nullptr;
    mutable std::unique_ptr<QItemSelectionModel> m_selectionModel;
    mutable QBitArray m_bits;
    mutable int m_selectedCount = 0;
    mutable bool m_bitsAreStale = false; // samples came or went since the bits were filled
    bool m_changed = false;
    bool m_isQuiet = false; // the selection model changes on our own behalf
    int m_countBeforeColumnsWent = 0;
};
