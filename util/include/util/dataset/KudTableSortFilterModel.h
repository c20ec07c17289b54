#pragma once

#include <util/KuExport.h>

#include <QtCore/QAbstractProxyModel>

#include <memory>
#include <vector>

class HbiIntervalIntSmall;
class HbiIntervalIntSmallDisjoint;
class KudADataTable;
class KudSelector;
class KudTableModel;
class QBitArray;
class QItemSelectionModel;

/// A table in another order, or only some of its samples, for a view. The model permutes ranks and
/// never touches the data: what is edited through it is written into the table. Neither sorted nor
/// filtered it keeps nothing for a sample.
///
/// An edited or added sample stays where it is (added ones at the end) until the rows are sorted
/// again, or a filter shows more of them: a row must not jump away under the hand that edits it.
/// Samples that stay in the table stay in the order and in the filter, whatever happens to columns
/// and other samples. A table whose samples are replaced as a whole is shown whole, and sorted as
/// before where it has the variable.
///
/// Columns are those of the table. Main thread only.
class KELVANE_UTIL_EXPORT KudTableSortFilterModel : public QAbstractProxyModel
{
    Q_OBJECT

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

    /// By the values of a column (see KudSampleOrder); rows of equal values keep their order, so
    /// that one sorts by several columns one after the other, the most important one last. -1
    /// returns to the order of the ranks.
    void sort(int column, Qt::SortOrder order = Qt::AscendingOrder) override;

    /// A selection of the table as the rows of this model show it, for views; made on first use and
    /// owned by this model. The selector is of the same table.
    QItemSelectionModel* getSelectionModel(KudSelector& selector) const;

    QModelIndex index(int row, int column,
                      const QModelIndex& parent = QModelIndex()) const override;
    QModelIndex parent(const QModelIndex& child) const override;
    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;
    QModelIndex mapToSource(const QModelIndex& proxyIndex) const override;
    QModelIndex mapFromSource(const QModelIndex& sourceIndex) const override;
    QItemSelection mapSelectionToSource(const QItemSelection& selection) const override;
    QItemSelection mapSelectionFromSource(const QItemSelection& selection) const override;

private:
    void setSourceModel(QAbstractItemModel* model) override;
    KudTableModel& tableModel() const;
    void listenToRows();
    void listenToColumns();
    void listenToReset();
    void endChange();
    void catchUp();

    std::vector<int> sorted(std::vector<int> ranks) const;
    void arrange(std::vector<int> ranks);
    void show(const QBitArray& kept);
    void forgetRankOrder();
    void samplesWillGo(const HbiIntervalIntSmall& ranks);
    void hideSamples(const HbiIntervalIntSmall& ranks);
    void hideRows(const HbiIntervalIntSmall& rows);
    void cellsChanged(const QModelIndex& first, const QModelIndex& last, const QVector<int>& roles);
    void samplesWereReplaced(const HbiIntervalIntSmallDisjoint& removed);
    void tableWasReset();

    struct Data;
    std::unique_ptr<Data> m_data;
};
