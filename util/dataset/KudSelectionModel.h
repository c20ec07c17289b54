#pragma once

#include "KudSelectorBits.h"

#include <QtCore/QItemSelectionModel>
#include <QtCore/QPointer>

#include <optional>
#include <vector>

class KudSelector;
class KudTableSortFilterModel;

/// What a view takes for the selection of its model, in front of a selector that holds the truth, a
/// bit a sample. What a person does in the view is applied to the bits, with Qt's meaning of each
/// command, rows always as wholes; the bits are mirrored as ranges of rows for the view to paint.
///
/// Qt visits ranges one by one when it paints, and the rows of a range when it asks whether a
/// column is selected as a whole. So a selection of many ranges or rows is mirrored for the rows
/// that are shown only (see setShownRows), and for one row at least where any row shows a selected
/// sample, so that `hasSelection` and `clearSelection` speak of the rows there are; ask the
/// selector which samples are selected. A Clear command clears all samples, those that a filter
/// hides too.
///
/// Any number of them may stand before one selector. The selector and the model outlive it.
class KudSelectionModel : public QItemSelectionModel
{
    Q_OBJECT

public:
    /// Rows of `model` are ranks; or, with an order (of the same table), those that it says.
    ///
    /// Nobody needs to tell of rows that are sorted, filtered, added or removed: the selection
    /// model listens to `model` (layoutChanged, modelReset, rows and columns inserted or removed),
    /// and asks `order` from within these signals, so that the order is to be in place by then. An
    /// order that changes without any such signal calls rowsReordered().
    explicit KudSelectionModel(KudSelector& selector, QAbstractItemModel& model,
                               const KudTableSortFilterModel* order = nullptr);
    ~KudSelectionModel() override;

    using QItemSelectionModel::select;
    void select(const QItemSelection& selection, SelectionFlags command) override;

    /// Forgets the current index, as the base class does, but keeps the selection, which is that of
    /// the samples: views call this whenever their model is reset.
    void reset() override;

    /// All rows that are selected, mirrored or not.
    HbiIntervalIntSmallDisjoint getSelectedRows() const;

    /// The rows that a view shows. Until this is called, those around the current index, or the
    /// first ones.
    void setShownRows(int first, int last);
    void rowsReordered();

private:
    void listenTo(QAbstractItemModel& model);
    void release();
    void mirror();
    void mirrorQuietly();
    void currentHasChanged();
    KudSelectorBits samplesOf(const QItemSelection& selection, SelectionFlags command) const;
    KudSelectorBits selectedRows() const;
    bool isSelectedRow(int row, const KudSelectorBits& bits) const;
    int findSelectedRow(const KudSelectorBits& bits) const;
    HbiIntervalIntSmall windowToMirror() const;
    std::vector<HbiIntervalIntSmall> rangesToMirror();
    std::vector<HbiIntervalIntSmall> allRanges() const;
    std::vector<HbiIntervalIntSmall> rangesInWindow() const;

    QPointer<KudSelector> m_selector;
    const KudTableSortFilterModel* m_order;
    std::optional<KudSelectorBits> m_settled; // the selection without what was selected last
    quint64 m_settledRevision = 0;            // of the selector, at which it holds
    std::optional<HbiIntervalIntSmall> m_shownRows;
    HbiIntervalIntSmall m_window;   // the rows that are mirrored
    int m_toldCount = 0;            // of selected samples, when the rows were mirrored
    bool m_isReleased = false;      // rows or columns are changing: nothing is mirrored
    bool m_areColumnsGoing = false; // which the base class deselects, but rows stay selected
};
