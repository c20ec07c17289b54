#include "KudDataTableFixture.h"

#include <util/dataset/KudSelector.h>
#include <util/dataset/KudTableModel.h>
#include <util/dataset/KudTableSortFilterModel.h>

#include <QtCore/QBitArray>
#include <QtCore/QItemSelectionModel>
#include <QtCore/QPersistentModelIndex>
#include <QtCore/QSortFilterProxyModel>
#include <QtTest/QAbstractItemModelTester>
#include <QtTest/QSignalSpy>
#include <QtWidgets/QTableView>

#include <algorithm>
#include <map>
#include <set>

namespace
{
enum Column { Key, Value };
using Keys = std::vector<int>;

/// What Qt's own model shows of the table: samples of some keys, sorted by a column, undefined
/// values last. Equal values stay in the order of the keys given.
class Peer : public QSortFilterProxyModel
{
public:
    Peer(QAbstractItemModel* model, const Keys& keys, int column, Qt::SortOrder order)
        : m_order(order)
    {
        for (std::size_t place = 0; place < keys.size(); ++place)
            m_places[keys[place]] = int(place);
        setSourceModel(model);
        sort(column, order);
    }

    Keys keys() const { return keysOf(*this); }
    Keys allKeys() const { return keysOf(*sourceModel()); }

private:
    static int keyOf(const QAbstractItemModel& model, int row)
    {
        return model.index(row, Key).data(Qt::EditRole).toInt();
    }
    static Keys keysOf(const QAbstractItemModel& model)
    {
        Keys all;
        for (int row = 0; row < model.rowCount(); ++row)
            all.push_back(keyOf(model, row));
        return all;
    }
    int placeOf(const QModelIndex& index) const
    {
        return m_places.at(keyOf(*sourceModel(), index.row()));
    }
    bool filterAcceptsRow(int row, const QModelIndex&) const override
    {
        return m_places.count(keyOf(*sourceModel(), row)) > 0;
    }
    bool lessThan(const QModelIndex& left, const QModelIndex& right) const override
    {
        const QVariant a = left.data(Qt::EditRole);
        const QVariant b = right.data(Qt::EditRole);
        const bool isAscending = m_order == Qt::AscendingOrder;
        if (a.isValid() != b.isValid())
            return a.isValid() == isAscending;
        if (a.isValid() && a != b)
            return a.toDouble() < b.toDouble();
        return (placeOf(left) < placeOf(right)) == isAscending;
    }

    Qt::SortOrder m_order;
    std::map<int, int> m_places;
};

/// A table, its model, and the keys that the rows should show. Keys ascend with the ranks.
class KudSortedTable : public testing::Test
{
protected:
    KudSortedTable()
    {
        for (const char* name : {"key", "value"})
            table.createVariable(HbdVariableDetails(name, HbdEVarType::INTEGER));
        append(20);
    }

    int below(int end) { return static_cast<int>(random() % static_cast<unsigned>(end)); }
    Keys allKeys() const { return Peer(table.getModel(), {}, -1, Qt::AscendingOrder).allKeys(); }
    bool isExpected(int key) const
    {
        return std::find(expected.begin(), expected.end(), key) != expected.end();
    }
    Keys sorted(const Keys& keys) const
    {
        return Peer(table.getModel(), keys, sortColumn, sortOrder).keys();
    }
    void append(int count)
    {
        QList<QVector<QVariant>> rows;
        for (int i = 0; i < count; ++i) {
            rows.append({next, below(4) == 0 ? QVariant() : QVariant(below(60))});
            expected.push_back(next++);
        }
        table.createSamples(rows);
    }
    void remove(const Ranks& ranks)
    {
        table.deleteSamples(ranks);
        const Keys left = allKeys();
        const auto isGone = [&](int key) {
            return !std::binary_search(left.begin(), left.end(), key);
        };
        expected.erase(std::remove_if(expected.begin(), expected.end(), isGone), expected.end());
    }
    void filter(const QBitArray& kept)
    {
        const Keys all = allKeys();
        Keys coming;
        for (std::size_t rank = 0; rank < all.size(); ++rank) {
            if (kept.testBit(int(rank)) && !isExpected(all[rank]))
                coming.push_back(all[rank]);
        }
        const auto goes = [&](int key) {
            return !kept.testBit(int(std::lower_bound(all.begin(), all.end(), key) - all.begin()));
        };
        expected.erase(std::remove_if(expected.begin(), expected.end(), goes), expected.end());
        if (coming.empty())
            return; // what stays is not sorted again
        expected.insert(expected.end(), coming.begin(), coming.end());
        expected = sorted(expected);
    }
    void edit(int step);
    void check() const;

    std::mt19937 random{17};
    KudMemoryDataTable table{"Points"};
    Keys expected;
    int next = 0;
    int sortColumn = -1;
    Qt::SortOrder sortOrder = Qt::AscendingOrder;
    KudTableSortFilterModel model{table};
};

void KudSortedTable::edit(int step)
{
    const int count = table.getSampleCount();
    QBitArray bits(count, true);
    Ranks some;
    for (int rank = 0, oneIn = 2 + below(10); rank < count; ++rank) {
        if (below(oneIn) == 0)
            some.add(rank);
    }
    switch (count == 0 ? 0 : below(8)) {
    case 0:
        return append(1 + below(3) * 100);
    case 1:
        return remove(some);
    case 2: {
        const int first = below(count);
        return remove(Range(first, std::min(count - 1, first + below(40))));
    }
    case 3:
        sortColumn = below(3) - 1;
        sortOrder = below(2) == 0 ? Qt::AscendingOrder : Qt::DescendingOrder;
        expected = sorted(expected);
        return model.sort(sortColumn, sortOrder);
    case 4:
        for (const int rank : some.ranks())
            bits.clearBit(rank);
        filter(bits);
        return model.setFilter(bits);
    case 5:
        if (model.isFiltered())
            filter(bits);
        return model.removeFilter();
    case 6: {
        QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
        const int rank = below(count);
        const QModelIndex cell = model.index(model.getRow(rank), Value);
        table.updateValue(table.getVariableAt(Value), rank, below(60));
        ASSERT_EQ(changed.count(), cell.isValid() ? 1 : 0);
        ASSERT_EQ(changed.value(0).value(0, cell).toModelIndex(), cell);
        return;
    }
    default:
        if (table.getVariableCount() > 2)
            table.deleteVariable(table.getVariableAt(2));
        else
            table.createVariable(HbdVariableDetails("v"));
        if (step % 3 == 0) // a reset through which the samples stay
            table.addTagToFilter(QString("tag%1").arg(step));
    }
}

void KudSortedTable::check() const
{
    ASSERT_EQ(model.rowCount(), static_cast<int>(expected.size()));
    ASSERT_EQ(model.columnCount(), table.getVariableCount());
    for (int row = 0; row < model.rowCount(); ++row) {
        const QModelIndex index = model.index(row, Key);
        ASSERT_EQ(index.data(Qt::EditRole), expected[static_cast<std::size_t>(row)]);
        ASSERT_EQ(model.getRow(model.getRank(row)), row);
        ASSERT_EQ(model.headerData(row, Qt::Vertical), model.getRank(row) + 1);
        ASSERT_EQ(model.mapFromSource(model.mapToSource(index)), index);
    }
}
} // namespace

TEST_F(KudSortedTable, ShowsWhatQtsOwnModelShowsThroughRandomEdits)
{
    QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
    QSignalSpy reset(&model, &QAbstractItemModel::modelReset);
    for (int step = 0; step < 300; ++step) {
        std::map<int, QPersistentModelIndex> held; // by key
        for (int row = 0; row < model.rowCount(); row += 1 + model.rowCount() / 5)
            held[expected[static_cast<std::size_t>(row)]] = model.index(row, Key);
        reset.clear();
        edit(step);
        check();
        if (HasFatalFailure())
            FAIL() << "step " << step;
        for (const auto& [key, index] : held) {
            const bool isHeld = reset.isEmpty() && isExpected(key);
            ASSERT_EQ(index.data(Qt::EditRole), isHeld ? QVariant(key) : QVariant())
                << "step " << step;
        }
    }
}

/// Slots that hear of a change, before or after the model does, may make the next one.
TEST_F(KudSortedTable, StandsEditsFromSlots)
{
    int depth = 0;
    const auto editAgain = [&] {
        if (++depth < 3 && below(3) == 0)
            edit(1);
        --depth;
    };
    QObject::connect(table.getModel(), &QAbstractItemModel::rowsRemoved, editAgain);
    QObject::connect(table.getModel(), &QAbstractItemModel::rowsInserted, editAgain);
    KudTableSortFilterModel later(table);
    const QItemSelectionModel* shown = later.getSelectionModel(*table.getMask());
    QObject::connect(&later, &QAbstractItemModel::layoutChanged, editAgain);
    QObject::connect(shown, &QItemSelectionModel::selectionChanged, editAgain);
    for (int step = 0; step < 300; ++step) {
        edit(step);
        const int count = table.getSampleCount();
        QBitArray bits(count);
        for (int rank = 0; rank < count; ++rank)
            bits.setBit(rank, below(2) == 0);
        step % 3 == 0 ? later.removeFilter() : later.setFilter(bits);
        later.sort(below(table.getVariableCount() + 1) - 1);
        table.getMask()->setBitArray(bits);
        const QBitArray masked = table.getMask()->getBitArray();
        std::set<int> ranks;
        for (int row = 0; row < later.rowCount(); ++row) {
            const int rank = later.getRank(row);
            ranks.insert(rank);
            ASSERT_EQ(later.getRow(rank), row) << "step " << step;
            const bool isMasked = shown->isSelected(later.index(row, 0));
            ASSERT_TRUE(row >= 500 || isMasked == masked.testBit(rank)) << "step " << step;
        }
        ASSERT_EQ(int(ranks.size()), later.rowCount());
        ASSERT_TRUE(later.isFiltered() || later.rowCount() == table.getSampleCount());
    }
}

/// Selections of rows are mapped as Qt maps them cell by cell.
TEST_F(KudSortedTable, MapsRangesAsQtMapsTheirCells)
{
    model.sort(Value);
    QBitArray kept(table.getSampleCount(), true);
    kept.clearBit(3);
    model.setFilter(kept);
    const QItemSelection rows(model.index(2, Key), model.index(11, Value));
    const QItemSelection ranks = model.mapSelectionToSource(rows);
    const auto cells = [](const QItemSelection& selection) {
        const QModelIndexList all = selection.indexes();
        return std::set<QModelIndex>(all.begin(), all.end());
    };
    EXPECT_EQ(cells(ranks), cells(model.QAbstractProxyModel::mapSelectionToSource(rows)));
    EXPECT_EQ(cells(model.mapSelectionFromSource(ranks)), cells(rows));
}

/// A million samples in a view: sorted, filtered, selected and edited, the ranks are right.
TEST(KudTableSortFilterModel, ServesAViewOfAMillionSamples)
{
    constexpr int COUNT = 1000000;
    KudMemoryDataTable table("Points");
    const KudDatasetVariable x = table.createVariable(HbdVariableDetails("x"));
    table.setSampleCount(COUNT);
    std::vector<double> values(COUNT);
    for (int rank = 0; rank < COUNT; ++rank)
        values[std::size_t(rank)] = double(qint64(rank) * 7919 % COUNT); // a permutation
    table.updateColumn(x, 0, HbdSpan<const double>(values.data(), COUNT));

    KudTableSortFilterModel model(table);
    QTableView view;
    view.setSelectionMode(QAbstractItemView::ExtendedSelection);
    view.setModel(&model);
    view.setSelectionModel(model.getSelectionModel(*table.getHighlight()));
    view.setSortingEnabled(true);
    view.show();
    view.sortByColumn(0, Qt::DescendingOrder);
    QBitArray isEven(COUNT);
    for (int rank = 0; rank < COUNT; ++rank)
        isEven.setBit(rank, qint64(values[std::size_t(rank)]) % 2 == 0);
    model.setFilter(isEven);
    ASSERT_EQ(model.rowCount(), COUNT / 2);
    view.scrollToBottom();
    QCoreApplication::processEvents();
    EXPECT_EQ(model.index(COUNT / 2 - 1, 0).data(Qt::EditRole), "0");

    view.selectAll();
    EXPECT_EQ(table.getHighlight()->getBitArray(), isEven);
    view.selectRow(3);
    const int rank = table.getHighlight()->selectedRows().getMin();
    EXPECT_EQ(table.getHighlight()->getNSelected(), 1);
    EXPECT_EQ(values[std::size_t(rank)], COUNT - 8.0);

    // What is edited stays in its row, and selected, until the rows are sorted again.
    EXPECT_TRUE(model.setData(model.index(3, 0), "-1"));
    EXPECT_EQ(model.getRow(rank), 3);
    EXPECT_EQ(table.readValues(x)->getVariant(rank), -1.0);
    view.sortByColumn(0, Qt::AscendingOrder);
    EXPECT_EQ(model.getRow(rank), 0);
    EXPECT_TRUE(view.selectionModel()->isRowSelected(0, QModelIndex()));
    EXPECT_EQ(table.getHighlight()->selectedRows(), Ranks(rank));
}
