#pragma once

#include <util/KuExport.h>
#include <util/dataset/KudFlags.h>
#include <util/dataset/KudTableModif.h>

#include <QtCore/QBitArray>
#include <QtCore/QObject>

#include <memory>

class KudADataTable;
class KudSelectionModel;
class KudSelectorBits;
class QItemSelectionModel;
class QTableView;

/// A selection of a table's samples: its mask or its highlight. It is a bit for each sample, which
/// added and deleted samples move along; views show and change it through selection models, of
/// which there may be several. A table owns its selectors.
///
/// Each operation costs a pass over words of 64 samples at most, however scattered the selection
/// is. Each change sends one notice of the table.
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

    /// \name Changes: true when they changed anything. False without a table.
    /// @{
    bool select(int rank, Ku::SelectionFlag flag);
    /// Ranks beyond the samples are ignored.
    bool select(const HbiIntervalIntSmallDisjoint& ranks, Ku::SelectionFlag flag);
    bool selectAll();
    bool deselectAll();
    bool invert();

    /// Replaces the selection; missing bits are not selected, bits beyond the samples are ignored.
    bool setBitArray(const QBitArray& bits);
    /// @}

    bool hasSelection() const { return getNSelected() > 0; }
    int getNSelected() const;

    /// The ranks of the selected samples.
    HbiIntervalIntSmallDisjoint selectedRows() const;

    /// One bit a sample, shared: made once after a change.
    QBitArray getBitArray() const;

    /// For views of the table's model; made on first use, owned by the selector. Null without a
    /// table. What is done in a view selects whole samples.
    ///
    /// Qt paints and compares range by range and row by row. So the selection model itself tells
    /// all of a selection up to 10,000 samples in 256 ranges; of a larger one it tells the rows
    /// that are shown, and it is the selector to ask for the rest.
    QItemSelectionModel* getSelectionModel() const;

    /// Tells a selection model, this one or that of a KudTableSortFilterModel, which rows a view
    /// shows, now and whenever it scrolls. Call it once the view has its selection model.
    static void follow(QTableView* view);

signals:
    /// For selection models, ahead of the notice, which is for everybody else.
    void bitsChanged();

private:
    friend class KudSelectionModel;
    friend class KudTableModel;

    // For selection models.
    const KudSelectorBits& bits() const;
    quint64 revision() const { return m_revision; }
    bool prepareChange();
    bool replace(KudSelectorBits bits);

    // For the table's model, around changes of the samples.
    void keepUp() const;
    void samplesWillBeInserted(int first, int count);
    void samplesRemoved(const HbiIntervalIntSmallDisjoint& ranks);
    void samplesReplaced();

    bool _selectionChanged();
    void fitToTable() const;
    void touchBits() const;

    KudTableModif::Reason m_reason;
    const KudADataTable* m_table = nullptr;
    mutable std::unique_ptr<KudSelectionModel> m_selectionModel;
    mutable std::unique_ptr<KudSelectorBits> m_bits; // of the samples when they were last asked for
    mutable QBitArray m_bitArray;
    mutable bool m_isBitArrayStale = false;
    bool m_changed = false;
    mutable quint64 m_revision = 0; // of the bits
    int m_gapFirst = 0;             // samples that are being inserted
    int m_gapCount = 0;
};
