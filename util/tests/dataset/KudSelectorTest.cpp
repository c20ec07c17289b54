#include "KudDataTableFixture.h"

#include <util/dataset/KudEmptyDataTable.h>
#include <util/dataset/KudSelector.h>
#include <util/dataset/KudTableModel.h>
#include <util/dataset/KudTableSortFilterModel.h>
#include <util/dataset/KudTableUtils.h>

#include <QtCore/QItemSelectionModel>
#include <QtTest/QAbstractItemModelTester>
#include <QtWidgets/QScrollBar>
#include <QtWidgets/QTableView>

namespace
{
QBitArray randomBits(int size, std::mt19937& random)
{
    QBitArray bits(size);
    for (int i = 0; i < size; ++i)
        bits.setBit(i, random() % 2 == 0);
    return bits;
}

int randomBelow(int limit, std::mt19937& random)
{
    return static_cast<int>(random() % static_cast<unsigned>(limit));
}

/// Whether a view paints these rows as the bits say.
void expectShown(const QItemSelectionModel& shown, const QBitArray& bits, int first, int last)
{
    for (int row = first; row <= last; ++row) {
        for (const int column : {0, shown.model()->columnCount() - 1})
            ASSERT_EQ(shown.isSelected(shown.model()->index(row, column)), bits.testBit(row))
                << row;
    }
}
} // namespace

/// The model keeps Qt's rules through any edits, and the selections stay on their samples.
TEST_F(KudDataTable, ModelAndSelectionsFollowRandomEdits)
{
    QAbstractItemModelTester tester(table.getModel(),
                                    QAbstractItemModelTester::FailureReportingMode::Fatal);
    const KudDatasetVariable key =
        table.createVariable(HbdVariableDetails("key", HbdEVarType::INTEGER));
    std::mt19937 random(3);
    std::set<qint64> masked;
    const QItemSelectionModel* shown = table.getMask()->getSelectionModel();
    qint64 next = 0;
    for (int rank = 0; rank < 4; ++rank)
        table.updateValue(key, rank, next++);

    for (int step = 0; step < 400; ++step) {
        const int count = table.getSampleCount();
        switch (random() % 6) {
        case 0:
            table.createSample({{key, next++}});
            break;
        case 1:
            table.createSamples({{1.0, 1, "q", next}, {2.0, 2, "r", next + 1}});
            next += 2;
            break;
        case 2:
        case 3: {
            Ranks ranks;
            for (int i = 0; i < count; ++i) {
                if (random() % 5 == 0)
                    ranks.add(i);
            }
            for (const int rank : ranks.ranks())
                masked.erase(cell(key, rank).toLongLong());
            table.deleteSamples(ranks);
            break;
        }
        case 4:
            if (count > 0) {
                const int rank = static_cast<int>(random() % static_cast<unsigned>(count));
                table.getMask()->select(rank, Ku::Select);
                masked.insert(cell(key, rank).toLongLong());
            }
            break;
        default:
            table.createVariable(HbdVariableDetails(QString("v%1").arg(step)));
            if (table.getVariableCount() > 8)
                table.deleteVariable(table.getVariableAt(7));
        }
        std::set<qint64> found;
        const QBitArray bits = table.getMask()->getBitArray();
        ASSERT_EQ(bits.size(), table.getSampleCount());
        for (int rank = 0; rank < bits.size(); ++rank) {
            if (bits.testBit(rank))
                found.insert(cell(key, rank).toLongLong());
        }
        ASSERT_EQ(found, masked) << "step " << step;
        ASSERT_EQ(table.getMask()->getNSelected(), static_cast<int>(masked.size()));
        expectShown(*shown, bits, 0, bits.size() - 1);
    }
}

TEST_F(KudDataTable, DeletingManyScatteredRangesKeepsTheSelections)
{
    std::mt19937 random(11);
    table.setSampleCount(5000);
    const QBitArray before = randomBits(5000, random);
    table.getHighlight()->setBitArray(before);
    Ranks removed;
    QBitArray after;
    for (int rank = 0; rank < 5000; ++rank) {
        if (random() % 3 == 0) {
            removed.add(rank);
            continue;
        }
        after.resize(after.size() + 1);
        after.setBit(after.size() - 1, before.testBit(rank));
    }
    recorder.notices.clear();

    EXPECT_TRUE(table.deleteSamples(removed));
    EXPECT_EQ(table.getHighlight()->getBitArray(), after);
    EXPECT_EQ(table.getHighlight()->getNSelected(), after.count(true));
    EXPECT_EQ(recorder.notices.size(), 1U);
    EXPECT_TRUE(recorder.notices[0].testReason(KudTableModif::HighlightChanged));
}

/// Of a table that takes samples in between, as memory tables do not.
TEST(KudSelector, FollowsSamplesThatComeInBetween)
{
    struct : KudEmptyDataTable {
        int count = 4;
        int getSampleCount() const override { return count; }
    } table;
    table.getMask()->select({Range(1, 2)}, Ku::Select);
    for (const int first : {2, 0, 9}) {
        table.getModel()->beginInsertSamples(first, 3);
        table.count += 3;
        table.getModel()->endInsertSamples();
    }
    EXPECT_EQ(table.getMask()->selectedRows(), Ranks({Range(4, 4), Range(8, 8)}));
    EXPECT_EQ(table.getMask()->getBitArray().size(), 13);
}

TEST(KudSelector, MapsItsFlagsAndReportsChanges)
{
    KudSelector unbound(KudTableModif::MaskChanged);
    EXPECT_FALSE(unbound.select(0, Ku::Select));

    Recorder recorder;
    KudMemoryDataTable table("Points");
    table.createVariable(HbdVariableDetails("v"));
    table.setSampleCount(5);
    table.addObserver(&recorder);
    KudSelector& mask = *table.getMask();
    const auto select = [&mask](int rank, int flag) {
        return mask.select(rank, static_cast<Ku::SelectionFlag>(flag));
    };
    EXPECT_TRUE(select(1, 2));
    EXPECT_FALSE(select(1, 2)); // is selected already
    EXPECT_TRUE(select(2, 8));
    EXPECT_EQ(mask.selectedRows(), Ranks(Range(1, 2)));
    EXPECT_FALSE(select(4, 16)); // no update
    EXPECT_FALSE(select(4, 0));
    EXPECT_TRUE(select(3, 3));
    EXPECT_EQ(mask.selectedRows(), Ranks(3));
    EXPECT_TRUE(select(3, 4));
    EXPECT_FALSE(mask.hasSelection());
    EXPECT_FALSE(mask.deselectAll());
    for (const int reason : recorder.reasons())
        EXPECT_EQ(reason, KudTableModif::MaskChanged);

    QBitArray bits(5);
    bits.setBit(0);
    bits.setBit(4);
    EXPECT_TRUE(mask.setBitArray(bits));
    EXPECT_FALSE(mask.setBitArray(bits));
    EXPECT_EQ(mask.getBitArray(), bits);
    EXPECT_EQ(KudTableUtils::getSelectedRows(mask.getSelectionModel()), mask.selectedRows());
}

/// Rows stay selected as wholes, whatever happens to the columns, and without any.
TEST_F(KudDataTable, SelectsRowsWhateverHappensToTheColumns)
{
    KudSelector& mask = *table.getMask();
    mask.select({Range(1, 2)}, Ku::Select);
    const QItemSelectionModel* shown = mask.getSelectionModel();
    const KudDatasetVariable added = table.createVariable(HbdVariableDetails("new"));
    EXPECT_TRUE(mask.select(1, Ku::ToggleSelection));
    expectShown(*shown, mask.getBitArray(), 0, 3);

    recorder.notices.clear();
    for (const KudDatasetVariable& variable : {x, added, n, t})
        table.deleteVariable(variable);
    EXPECT_EQ(recorder.reasons(), std::vector<int>(4, KudTableModif::VariableRemoved));
    EXPECT_TRUE(mask.select(0, Ku::Select));
    EXPECT_EQ(mask.selectedRows(), Ranks({Range(0, 0), Range(2, 2)}));
    table.createVariable(HbdVariableDetails("again"));
    expectShown(*shown, mask.getBitArray(), 0, 3);
}

TEST_F(KudDataTable, KeepsSamplesSelectedThatAFilterHides)
{
    KudTableSortFilterModel order(table);
    const QItemSelectionModel* shown = order.getSelectionModel(*table.getMask());
    table.getMask()->selectAll();
    order.setFilter(QBitArray(1, true));
    EXPECT_EQ(table.getMask()->getNSelected(), 4);
    order.removeFilter();
    expectShown(*shown, QBitArray(4, true), 0, 3);
}

/// Qt's own selection model, on a table of the same samples, is the judge of each command that a
/// view may give, between changes by others, of the samples and of their order.
class ViewCommands : public testing::TestWithParam<std::pair<int, bool>>
{
protected:
    using Model = QItemSelectionModel;

    struct Side {
        Side()
        {
            const auto [count, isOrdered] = GetParam();
            std::mt19937 random(2);
            table.setSampleCount(count);
            for (const char* name : {"a", "b", "c"}) {
                const KudDatasetVariable v = table.createVariable(HbdVariableDetails(name));
                for (int rank = 0; rank < count; ++rank)
                    table.updateValue(v, rank, randomBelow(count, random));
            }
            order = std::make_unique<KudTableSortFilterModel>(table);
            if (isOrdered)
                order->setFilter(randomBits(count, random));
        }
        QAbstractItemModel* model() const
        {
            return GetParam().second ? static_cast<QAbstractItemModel*>(order.get())
                                     : table.getModel();
        }
        QItemSelection cells(int top, int bottom, int left) const
        {
            return QItemSelection(model()->index(top, left), model()->index(bottom, 2));
        }

        KudMemoryDataTable table{"Points"};
        std::unique_ptr<KudTableSortFilterModel> order;
    };

    int below(int limit) { return randomBelow(limit, random); }
    void settle() { judge.select(QItemSelection(), Model::Select); }

    Ranks ranksOf(const Ranks& rows) const
    {
        Ranks ranks;
        for (const int row : rows.ranks())
            ranks.add(GetParam().second ? our.order->getRank(row) : row);
        return ranks;
    }
    void changeSamples(int rows)
    {
        const bool isShrinking = our.table.getSampleCount() > GetParam().first;
        const Ranks removed = ranksOf({Range(0, 0), Range(below(rows), rows / 2)});
        const int column = below(3);
        for (Side* side : {&our, &judges}) {
            if (column == 0)
                side->table.createSample(QVector<QVariant>{1.0});
            else if (column == 1 && isShrinking)
                side->table.deleteSamples(removed);
            else
                side->order->sort(column, rows % 2 == 0 ? Qt::AscendingOrder : Qt::DescendingOrder);
        }
    }
    void selectBehindTheView(int rows)
    {
        const Range some(below(rows), std::min(below(rows) + 5, rows - 1));
        if (some.isEmpty() || !mask.select(ranksOf(some), Ku::Select))
            return;
        judge.select(judges.cells(some.getMin(), some.getMax(), 0), Model::Select);
        settle();
    }
    void command(int rows)
    {
        const Model::SelectionFlags operations[] = {
            Model::NoUpdate, Model::Clear,    Model::Select,
            Model::Deselect, Model::Toggle,   Model::ClearAndSelect,
            Model::Select,   Model::Deselect, Model::Clear | Model::Toggle};
        Model::SelectionFlags flags = operations[below(std::size(operations))] | Model::Rows;
        flags.setFlag(Model::Current, random() % 2 == 0);
        QItemSelection cells;
        QItemSelection judgesCells;
        for (int i = below(4); i > 0; --i) {
            const int top = below(rows);
            const int bottom = std::min(top + below(i * rows / 4 + 1), rows - 1);
            const int left = below(3);
            cells.append(our.cells(top, bottom, left));
            judgesCells.append(judges.cells(top, bottom, left));
        }
        const QBitArray before = mask.getBitArray();
        recorder.notices.clear();
        ours.select(cells, flags);
        judge.select(judgesCells, flags);
        EXPECT_EQ(recorder.notices.size(), mask.getBitArray() == before ? 0U : 1U);
    }

    std::mt19937 random{7};
    Recorder recorder;
    Side our;
    Side judges;
    KudSelector& mask = *our.table.getMask();
    Model& ours =
        *(GetParam().second ? our.order->getSelectionModel(mask) : mask.getSelectionModel());
    Model judge{judges.model()};
};

TEST_P(ViewCommands, SelectWhatTheySelectInQt)
{
    const bool hasManyRanges = GetParam().first >= 1000; // more than are mirrored
    our.table.addObserver(&recorder);
    for (int row = 0; hasManyRanges && row < our.model()->rowCount(); row += 2)
        judge.select(judges.cells(row, row, 0), Model::Select);
    mask.select(ranksOf(KudTableUtils::getSelectedRows(&judge)), Ku::Select);
    settle();

    for (int step = 0; step < (hasManyRanges ? 100 : 2000); ++step) {
        const int rows = our.model()->rowCount();
        ASSERT_EQ(judges.model()->rowCount(), rows);
        const int kind = below(12);
        if (kind < 2)
            changeSamples(rows);
        else if (kind == 2)
            selectBehindTheView(rows);
        else
            command(rows);

        const Ranks selected = KudTableUtils::getSelectedRows(&judge);
        ASSERT_EQ(KudTableUtils::getSelectedRows(&ours), selected) << step;
        ASSERT_EQ(mask.selectedRows(), ranksOf(selected));
        ASSERT_EQ(mask.getNSelected(), static_cast<int>(selected.getCount()));
        ASSERT_EQ(ours.hasSelection(), judge.hasSelection());
        for (int row = 0; row < std::min(our.model()->rowCount(), 200); ++row) {
            ASSERT_EQ(ours.isSelected(our.model()->index(row, 1)), selected.contains(row))
                << step << " row " << row;
        }
    }
}
INSTANTIATE_TEST_SUITE_P(OfRowsInAnyOrder, ViewCommands,
                         testing::Values(std::pair(40, false), std::pair(1200, false),
                                         std::pair(80, true), std::pair(2400, true)));

TEST(KudSelector, ShowsTenMillionSamplesWithoutAListOfThem)
{
    constexpr int COUNT = 10000000;
    KudMemoryDataTable table("Points");
    table.setSampleCount(COUNT);
    table.createVariable(HbdVariableDetails("v", HbdEVarType::SELECTION));
    KudSelector& mask = *table.getMask();
    QTableView view;
    view.setModel(table.getModel());
    view.setSelectionModel(mask.getSelectionModel());
    KudSelector::follow(&view);
    view.resize(300, 300);
    const auto expectView = [&](int selected) {
        view.grab(); // with its headers, which ask the selection model too
        EXPECT_EQ(mask.getNSelected(), selected);
        int mirrored = 0;
        for (const QItemSelectionRange& range : view.selectionModel()->selection())
            mirrored += range.height();
        EXPECT_LE(mirrored, 10000); // of each of which a header asks the flags
        EXPECT_LE(view.selectionModel()->selection().size(), 256);
        const int first = view.rowAt(0);
        const int last = std::min(first + 9, COUNT - 1);
        expectShown(*view.selectionModel(), mask.getBitArray(), first, last);
    };

    expectView(0);
    view.selectAll();
    expectView(COUNT);
    view.verticalScrollBar()->setValue(7000001);
    expectView(COUNT);
    mask.invert();
    expectView(0);
    QBitArray half(COUNT);
    for (int rank = 0; rank < COUNT; rank += 2)
        half.setBit(rank);
    mask.setBitArray(half);
    expectView(COUNT / 2);
    for (const int row : {0, 600, COUNT / 3, COUNT}) {
        view.verticalScrollBar()->setValue(row);
        expectView(COUNT / 2);
    }
    view.selectionModel()->select(table.getModel()->index(COUNT - 5, 0),
                                  QItemSelectionModel::Toggle);
    expectView(COUNT / 2 + 1);
    mask.select({Range(0, 50000)}, Ku::ClearAndSelect); // far from the rows shown
    expectView(50001);
    view.clearSelection();
    expectView(0);
}

TEST(KudSelector, SelectsScatteredRanksAsItWouldOneByOne)
{
    constexpr int COUNT = 100000;
    KudMemoryDataTable table("Points");
    table.createVariable(HbdVariableDetails("v"));
    table.setSampleCount(COUNT);
    KudSelector& mask = *table.getMask();
    std::mt19937 random(5);
    QBitArray expected(COUNT);
    for (const auto flag : {Ku::Select, Ku::ToggleSelection, Ku::Deselect, Ku::Select,
                            Ku::ClearAndSelect, Ku::ClearSelection}) {
        QBitArray bits(COUNT);
        Ranks ranks;
        for (int rank = 0; rank < COUNT; ++rank) {
            if (random() % 2 == 0) {
                ranks.add(rank);
                bits.setBit(rank);
            }
        }
        EXPECT_TRUE(mask.select(ranks, flag));
        expected = flag == Ku::Select            ? expected | bits
                   : flag == Ku::ToggleSelection ? expected ^ bits
                   : flag == Ku::Deselect        ? expected & ~bits
                   : flag == Ku::ClearAndSelect  ? bits
                                                 : QBitArray(COUNT);
        EXPECT_EQ(mask.getBitArray(), expected) << flag;
        EXPECT_EQ(mask.getNSelected(), expected.count(true));
        EXPECT_TRUE(mask.invert());
        EXPECT_EQ(mask.getBitArray(), ~expected);
        EXPECT_TRUE(mask.invert());
    }
    EXPECT_TRUE(mask.selectAll());
    EXPECT_FALSE(mask.selectAll());
    EXPECT_EQ(mask.getBitArray(), QBitArray(COUNT, true));
}
