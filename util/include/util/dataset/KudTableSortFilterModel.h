#pragma once

#include <util/KuExport.h>

#include <QtCore/QAbstractProxyModel>

class KudADataTable;
class KudSelector;
class QBitArray;
class QItemSelectionModel;

/// A table in another order, or only some of its samples, for a view. The model permutes ranks and
/// never touches the data: what is edited through it is written into the table.
///
/// An edited or added sample stays where it is (added ones at the end) until the rows are sorted or
/// filtered again: a row must not jump away under the hand that edits it.
class KELVANE_UTIL_EXPORT KudTableSortFilterModel : public QAbstractProxyModel
{
public:
    /// Shows all samples in the order of their ranks. The table is borrowed and outlives the model.
    explicit KudTableSortFilterModel(const KudADataTable& table, QObject* parent = nullptr);
    ~KudTableSortFilterModel() override;

    int getRank(int row) const; ///< of the sample that a row shows; -1 outside of the rows
    int getRow(int rank) const; ///< that shows a sample; -1 when it is not shown

    /// Shows only the samples whose bit is set, in the present order; missing bits are not set.
    void setFilter(const QBitArray& kept);
    void removeFilter();
    bool isFiltered() const;

    /// By the values of a column (see KudSampleOrder); -1 returns to the order of the ranks.
    void sort(int column, Qt::SortOrder order = Qt::AscendingOrder) override;

    /// A selection of the table as the rows of this model show it, for views; made on first use and
    /// owned by this model. The selector is of the same table.
    QItemSelectionModel* getSelectionModel(KudSelector& selector) const;
};
