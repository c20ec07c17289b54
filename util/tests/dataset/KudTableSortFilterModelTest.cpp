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
#include <random>

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

    Keys keys() const
    {
        Keys all;
        for (int row = 0; row < rowCount(); ++row)
            all.push_back(index(row, Key).data(Qt::EditRole).toInt());
        return all;
    }

private:
    int keyOf(int row) const { return sourceModel()->index(row, Key).data(Qt::EditRole).toInt(); }

    bool filterAcceptsRow(int row, const QModelIndex&) const override
    {
        return m_places.count(keyOf(row)) > 0;
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
        return (m_places.at(keyOf(left.row())) < m_places.at(keyOf(right.row()))) == isAscending;
    }

    Qt::SortOrder m_order;
    std::map<int, int> m_places;
};

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
    int keyAt(int rank) const
    {
        return table.getModel()->index(rank, Key).data(Qt::EditRole).toInt();
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
        for (const int rank : ranks.ranks())
            expected.erase(std::remove(expected.begin(), expected.end(), keyAt(rank)),
                           expected.end());
        table.deleteSamples(ranks);
    }
    void sort(int column, Qt::SortOrder order)
    {
        expected = Peer(table.getModel(), expected, column, order).keys();
        sortColumn = column;
        sortOrder = order;
        model.sort(column, order);
    }
    void filter(const QBitArray& kept)
    {
        Keys staying, coming;
        for (const int key : expected) {
            if (kept.testBit(rankOf(key)))
                staying.push_back(key);
        }
        for (int rank = 0; rank < kept.size(); ++rank) {
            const int key = keyAt(rank);
            const bool isShown = std::find(expected.begin(), expected.end(), key) != expected.end();
            if (kept.testBit(rank) && !isShown)
                coming.push_back(key);
        }
        expected = staying;
        if (coming.empty())
            return;
        expected.insert(expected.end(), coming.begin(), coming.end());
        expected = Peer(table.getModel(), expected, sortColumn, sortOrder).keys();
    }
    int rankOf(int key) const
    {
        int rank = 0;
        while (keyAt(rank) != key)
            ++rank;
        return rank;
    }
    Ranks someRanks(int oneIn)
    {
        Ranks ranks;
        for (int rank = 0; rank < table.getSampleCount(); ++rank) {
            if (below(oneIn) == 0)
                ranks.add(rank);
        }
        return ranks;
    }
    void edit(int step);
    void check() const;

    std::mt19937 random{17};
    KudMemoryDataTable table{"Points"};
    Keys expected; // of the rows
    int next = 0;
    int sortColumn = -1;
    Qt::SortOrder sortOrder = Qt::AscendingOrder;
    KudTableSortFilterModel model{table};
};

void KudSortedTable::edit(int step)
{
    const int count = table.getSampleCount();
    QBitArray bits(count, true);
    switch (count == 0 ? 0 : below(9)) {
    case 0:
        return append(1 + below(3) * 100);
    case 1:
        return remove(someRanks(2 + below(10)));
    case 2: {
        const int first = below(count);
        return remove(Range(first, std::min(count - 1, first + below(40))));
    }
    case 3:
        return sort(Value, below(2) == 0 ? Qt::AscendingOrder : Qt::DescendingOrder);
    case 4:
        return sort(below(2) - 1, Qt::AscendingOrder);
    case 5:
        for (const int rank : someRanks(3).ranks())
            bits.clearBit(rank);
        filter(bits);
        return model.setFilter(bits);
    case 6:
        if (model.isFiltered())
            filter(bits);
        return model.removeFilter();
    case 7: {
        QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
        const int rank = below(count);
        table.updateValue(table.getVariableAt(Value), rank, below(60));
        const int row = model.getRow(rank);
        ASSERT_EQ(changed.count(), row < 0 ? 0 : 1);
        if (row >= 0) {
            ASSERT_EQ(changed.at(0).at(0).toModelIndex(), model.index(row, Value));
        }
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
    std::map<int, QPersistentModelIndex> held; // by key
    for (int step = 0; step < 300; ++step) {
        edit(step);
        check();
        if (HasFatalFailure())
            FAIL() << "step " << step;
        for (const auto& [key, index] : held) {
            const bool isShown =
                reset.isEmpty() && std::count(expected.begin(), expected.end(), key) > 0;
            ASSERT_EQ(index.isValid() ? index.data(Qt::EditRole) : QVariant(),
                      isShown ? QVariant(key) : QVariant())
                << "step " << step;
        }
        held.clear();
        reset.clear();
        for (int i = 0; i < 5 && !expected.empty(); ++i) {
            const int row = below(model.rowCount());
            held[expected[static_cast<std::size_t>(row)]] = model.index(row, Key);
        }
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
    const auto sorted = [](QModelIndexList indexes) {
        std::sort(indexes.begin(), indexes.end());
        return indexes;
    };
    EXPECT_EQ(sorted(ranks.indexes()),
              sorted(model.QAbstractProxyModel::mapSelectionToSource(rows).indexes()));
    EXPECT_EQ(sorted(model.mapSelectionFromSource(ranks).indexes()), sorted(rows.indexes()));
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
