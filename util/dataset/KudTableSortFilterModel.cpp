#include <util/dataset/KudADataTable.h>
#include <util/dataset/KudSampleOrder.h>
#include <util/dataset/KudTableModel.h>
#include <util/dataset/KudTableSortFilterModel.h>

#include "KudSampleOrderRows.h"
#include "KudSelectionModel.h"

#include <basic/error/HbeProgrammingError.h>

#include <QtCore/QBitArray>

#include <algorithm>
#include <functional>
#include <map>
#include <utility>

namespace
{
/// More runs of rows than this go together, from the end: views pay for each removal.
constexpr std::size_t MANY_RUNS = 16;

using Range = HbiIntervalIntSmall;

constexpr const char* SOURCE = "dataset/KudTableSortFilterModel";
} // namespace

struct KudTableSortFilterModel::Data {
    const KudADataTable& table;
    KudSampleOrderRows rows;
    bool isFiltered = false;
    KudDatasetVariable sortedBy; // not valid: by rank
    Qt::SortOrder order = Qt::AscendingOrder;
    std::function<void()> pending; // what ends a change of the table that was announced to views
    quint64 changes = 0;           // begun: tells that one came in between, from a slot of a view
    std::map<const KudSelector*, std::unique_ptr<KudSelectionModel>> selectionModels;
};

KudTableSortFilterModel::KudTableSortFilterModel(const KudADataTable& table, QObject* parent)
    : QAbstractProxyModel(parent)
    , m_data(new Data{table, KudSampleOrderRows(table.getSampleCount()), false, {}, {}, {}, 0, {}})
{
    table.getModel()->endInsertSamples(); // we may be made while cells are being inserted
    QAbstractProxyModel::setSourceModel(table.getModel());
    listenToRows();
    listenToColumns();
    listenToReset();
}

KudTableSortFilterModel::~KudTableSortFilterModel() = default;

void KudTableSortFilterModel::setSourceModel(QAbstractItemModel*)
{
    HBE_PROGRAMMING_ERROR(SOURCE, tr("The model shows the table that it was made for."));
}

KudTableModel& KudTableSortFilterModel::tableModel() const
{
    return *m_data->table.getModel();
}

void KudTableSortFilterModel::listenToRows()
{
    const KudTableModel* model = &tableModel();
    KudSampleOrderRows& rows = m_data->rows;
    connect(model, &QAbstractItemModel::rowsAboutToBeInserted, this,
            [this, &rows](const QModelIndex&, int first, int last) {
                endChange();
                const Range inserted = rows.getNewRows(Range(first, last));
                beginInsertRows(QModelIndex(), inserted.getMin(), inserted.getMax());
                m_data->pending = [this, &rows, first, last] {
                    rows.insertSamples(Range(first, last));
                    endInsertRows();
                };
            });
    connect(model, &QAbstractItemModel::rowsInserted, this, &KudTableSortFilterModel::endChange);
    connect(model, &QAbstractItemModel::rowsAboutToBeRemoved, this,
            [this](const QModelIndex&, int first, int last) {
                endChange();
                samplesWillGo(Range(first, last));
            });
    connect(model, &QAbstractItemModel::rowsRemoved, this, &KudTableSortFilterModel::endChange);
    connect(model, &QAbstractItemModel::dataChanged, this, &KudTableSortFilterModel::cellsChanged);
}

void KudTableSortFilterModel::listenToColumns()
{
    const KudTableModel* model = &tableModel();
    connect(model, &QAbstractItemModel::columnsAboutToBeInserted, this,
            [this](const QModelIndex&, int first, int last) {
                endChange();
                beginInsertColumns(QModelIndex(), first, last);
                m_data->pending = [this] { endInsertColumns(); };
            });
    connect(model, &QAbstractItemModel::columnsInserted, this, &KudTableSortFilterModel::endChange);
    connect(model, &QAbstractItemModel::columnsAboutToBeRemoved, this,
            [this](const QModelIndex&, int first, int last) {
                endChange();
                beginRemoveColumns(QModelIndex(), first, last);
                m_data->pending = [this] { endRemoveColumns(); };
            });
    connect(model, &QAbstractItemModel::columnsRemoved, this, &KudTableSortFilterModel::endChange);
    connect(model, &QAbstractItemModel::headerDataChanged, this,
            &QAbstractItemModel::headerDataChanged);
}

void KudTableSortFilterModel::listenToReset()
{
    const KudTableModel* model = &tableModel();
    connect(model, &QAbstractItemModel::modelAboutToBeReset, this, [this, model] {
        endChange();
        const HbiIntervalIntSmallDisjoint* removed = model->getRemovedByReset();
        beginResetModel();
        m_data->pending = [this, isKept = removed != nullptr,
                           gone = removed != nullptr ? *removed : HbiIntervalIntSmallDisjoint()] {
            if (isKept)
                samplesWereReplaced(gone);
            else
                tableWasReset();
            endResetModel();
        };
    });
    connect(model, &QAbstractItemModel::modelReset, this, &KudTableSortFilterModel::endChange);
}

/// Ends what the table has announced, before the next change begins: should somebody ahead of us
/// change the table again when he hears of the first change, we hear of the second one first.
void KudTableSortFilterModel::endChange()
{
    ++m_data->changes;
    if (const auto end = std::exchange(m_data->pending, nullptr))
        end();
}

/// Before the rows change by themselves.
void KudTableSortFilterModel::catchUp()
{
    tableModel().endInsertSamples();
    if (m_data->table.getSampleCount() != m_data->rows.getSampleCount())
        endChange();
    ++m_data->changes;
}

int KudTableSortFilterModel::getRank(int row) const
{
    return m_data->rows.getRank(row);
}

int KudTableSortFilterModel::getRow(int rank) const
{
    return m_data->rows.getRow(rank);
}

bool KudTableSortFilterModel::isFiltered() const
{
    return m_data->isFiltered;
}

QItemSelectionModel* KudTableSortFilterModel::getSelectionModel(KudSelector& selector) const
{
    std::unique_ptr<KudSelectionModel>& found = m_data->selectionModels[&selector];
    if (found == nullptr) {
        auto* self = const_cast<KudTableSortFilterModel*>(this);
        found = std::make_unique<KudSelectionModel>(selector, *self, this);
    }
    return found.get();
}

void KudTableSortFilterModel::setFilter(const QBitArray& kept)
{
    m_data->isFiltered = true;
    show(kept);
}

void KudTableSortFilterModel::removeFilter()
{
    if (!std::exchange(m_data->isFiltered, false))
        return;
    show(QBitArray(m_data->table.getSampleCount(), true));
    forgetRankOrder();
}

void KudTableSortFilterModel::sort(int column, Qt::SortOrder order)
{
    catchUp();
    const quint64 change = m_data->changes;
    m_data->sortedBy = m_data->table.getVariableAt(column);
    m_data->order = order;
    if (m_data->rows.areRanks() && !m_data->sortedBy.isValid())
        return;
    arrange(sorted(m_data->rows.getRanks()));
    if (m_data->changes == change)
        forgetRankOrder();
}

/// All samples by their rank need no ranks.
void KudTableSortFilterModel::forgetRankOrder()
{
    if (m_data->isFiltered || m_data->sortedBy.isValid())
        return;
    const quint64 change = m_data->changes;
    arrange(sorted(m_data->rows.getRanks()));
    if (m_data->changes == change)
        m_data->rows = KudSampleOrderRows(m_data->rows.getSampleCount());
}

std::vector<int> KudTableSortFilterModel::sorted(std::vector<int> ranks) const
{
    if (const HbdAVariable* column = m_data->table.readValues(m_data->sortedBy)) {
        KudSampleOrder::sort(ranks, *column, m_data->order);
        return ranks;
    }
    std::vector<bool> isPresent(static_cast<std::size_t>(m_data->rows.getSampleCount()));
    for (const int rank : ranks)
        isPresent[static_cast<std::size_t>(rank)] = true;
    auto next = ranks.begin();
    for (int rank = 0; next != ranks.end(); ++rank) {
        if (isPresent[static_cast<std::size_t>(rank)])
            *next++ = rank;
    }
    return ranks;
}

/// Puts the rows into another order.
void KudTableSortFilterModel::arrange(std::vector<int> ranks)
{
    if (m_data->rows.haveRanks(ranks))
        return;
    emit layoutAboutToBeChanged({}, QAbstractItemModel::VerticalSortHint);
    const QModelIndexList before = persistentIndexList();
    std::vector<int> rankOf;
    for (const QModelIndex& index : before)
        rankOf.push_back(getRank(index.row()));
    m_data->rows.setRanks(std::move(ranks));
    QModelIndexList after;
    for (int i = 0; i < before.size(); ++i)
        after.append(index(getRow(rankOf[static_cast<std::size_t>(i)]), before.at(i).column()));
    changePersistentIndexList(before, after);
    emit layoutChanged({}, QAbstractItemModel::VerticalSortHint);
}

/// Whatever goes or comes does so at the end, as one range of rows, however scattered it was or
/// will be. Should who hears of that change the rows again, his change holds.
void KudTableSortFilterModel::show(const QBitArray& kept)
{
    catchUp();
    const quint64 change = m_data->changes;
    KudSampleOrderRows& rows = m_data->rows;
    QBitArray isComing = kept;
    isComing.resize(rows.getSampleCount());
    std::vector<int> arranged;
    std::vector<int> going;
    const int rowCount = rows.getCount();
    for (int row = 0; row < rowCount; ++row) {
        const int rank = rows.getRank(row);
        (isComing.testBit(rank) ? arranged : going).push_back(rank);
        isComing.clearBit(rank);
    }
    const int staying = static_cast<int>(arranged.size());
    if (!going.empty()) {
        arranged.insert(arranged.end(), going.begin(), going.end());
        arrange(std::move(arranged));
        if (m_data->changes == change)
            hideRows(Range(staying, rowCount - 1));
    }
    const int coming = isComing.count(true);
    if (coming == 0 || m_data->changes != change)
        return;
    beginInsertRows(QModelIndex(), staying, staying + coming - 1);
    rows.showLast(isComing);
    endInsertRows();
    if (m_data->changes == change)
        arrange(sorted(rows.getRanks()));
}

void KudTableSortFilterModel::hideRows(const HbiIntervalIntSmall& rows)
{
    beginRemoveRows(QModelIndex(), rows.getMin(), rows.getMax());
    m_data->rows.hideRows(rows);
    endRemoveRows();
}

void KudTableSortFilterModel::samplesWillGo(const HbiIntervalIntSmall& ranks)
{
    KudSampleOrderRows& rows = m_data->rows;
    if (rows.areRanks()) {
        beginRemoveRows(QModelIndex(), ranks.getMin(), ranks.getMax());
        m_data->pending = [this, &rows, ranks] {
            rows.removeSamples(ranks);
            endRemoveRows();
        };
        return;
    }
    hideSamples(ranks);
    m_data->pending = [this, &rows, ranks] {
        rows.removeSamples(ranks);
        if (rowCount() > 0)
            emit headerDataChanged(Qt::Vertical, 0, rowCount() - 1); // others have new ranks
    };
}

void KudTableSortFilterModel::hideSamples(const HbiIntervalIntSmall& ranks)
{
    const KudSampleOrderRows& rows = m_data->rows;
    std::vector<Range> runs = rows.getRows(ranks);
    if (runs.size() > MANY_RUNS) {
        std::vector<int> arranged = rows.getRanks();
        std::stable_partition(arranged.begin(), arranged.end(),
                              [&](int rank) { return !ranks.contains(rank); });
        arrange(std::move(arranged));
        runs = rows.getRows(ranks);
    }
    const quint64 change = m_data->changes;
    for (auto run = runs.rbegin(); run != runs.rend(); ++run) {
        if (m_data->changes != change)
            return hideSamples(ranks); // somebody sorted
        hideRows(*run);
    }
}

void KudTableSortFilterModel::cellsChanged(const QModelIndex& first, const QModelIndex& last,
                                           const QVector<int>& roles)
{
    const Range rows = m_data->rows.getRowsAround(Range(first.row(), last.row()));
    if (!rows.isEmpty()) {
        emit dataChanged(index(rows.getMin(), first.column()), index(rows.getMax(), last.column()),
                         roles);
    }
}

/// By a reset through which samples stay.
void KudTableSortFilterModel::samplesWereReplaced(const HbiIntervalIntSmallDisjoint& removed)
{
    KudSampleOrderRows& rows = m_data->rows;
    rows.removeSamples(removed);
    const Range added(rows.getSampleCount(), m_data->table.getSampleCount() - 1);
    if (!added.isEmpty())
        rows.insertSamples(added);
}

void KudTableSortFilterModel::tableWasReset()
{
    KudSampleOrderRows& rows = m_data->rows;
    m_data->isFiltered = false;
    rows = KudSampleOrderRows(m_data->table.getSampleCount());
    if (m_data->table.readValues(m_data->sortedBy) == nullptr) {
        m_data->sortedBy = KudDatasetVariable();
        return;
    }
    rows.setRanks(sorted(rows.getRanks()));
}

QModelIndex KudTableSortFilterModel::index(int row, int column, const QModelIndex& parent) const
{
    return hasIndex(row, column, parent) ? createIndex(row, column) : QModelIndex();
}

QModelIndex KudTableSortFilterModel::parent(const QModelIndex&) const
{
    return QModelIndex();
}

int KudTableSortFilterModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : m_data->rows.getCount();
}

int KudTableSortFilterModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : tableModel().columnCount();
}

QVariant KudTableSortFilterModel::headerData(int section, Qt::Orientation orientation,
                                             int role) const
{
    const int shown = orientation == Qt::Vertical ? getRank(section) : section;
    return shown < 0 ? QVariant() : tableModel().headerData(shown, orientation, role);
}

QModelIndex KudTableSortFilterModel::mapToSource(const QModelIndex& proxyIndex) const
{
    const int rank = proxyIndex.isValid() ? getRank(proxyIndex.row()) : -1;
    return rank < 0 ? QModelIndex() : tableModel().index(rank, proxyIndex.column());
}

QModelIndex KudTableSortFilterModel::mapFromSource(const QModelIndex& sourceIndex) const
{
    const int row = sourceIndex.isValid() ? getRow(sourceIndex.row()) : -1;
    return row < 0 ? QModelIndex() : index(row, sourceIndex.column());
}

namespace
{
/// Ranges of cells of one model as those of another, whose row for each is `toOther(row)` or -1:
/// in ranges again.
template <class ToOther>
QItemSelection mapped(const QItemSelection& selection, const QAbstractItemModel& other, bool isSame,
                      ToOther toOther)
{
    QItemSelection result;
    for (const QItemSelectionRange& range : selection) {
        if (isSame) {
            result.append(QItemSelectionRange(other.index(range.top(), range.left()),
                                              other.index(range.bottom(), range.right())));
            continue;
        }
        std::vector<int> rows;
        for (int row = range.top(); row <= range.bottom(); ++row) {
            const int mappedRow = toOther(row);
            if (mappedRow >= 0)
                rows.push_back(mappedRow);
        }
        std::sort(rows.begin(), rows.end());
        HbiIntervalIntSmallDisjoint runs;
        runs.addSorted(rows.data(), rows.size());
        for (const Range& run : runs.intervals()) {
            result.append(QItemSelectionRange(other.index(run.getMin(), range.left()),
                                              other.index(run.getMax(), range.right())));
        }
    }
    return result;
}
} // namespace

QItemSelection KudTableSortFilterModel::mapSelectionToSource(const QItemSelection& selection) const
{
    return mapped(selection, tableModel(), m_data->rows.areRanks(),
                  [this](int row) { return getRank(row); });
}

QItemSelection
KudTableSortFilterModel::mapSelectionFromSource(const QItemSelection& selection) const
{
    return mapped(selection, *this, m_data->rows.areRanks(),
                  [this](int rank) { return getRow(rank); });
}
