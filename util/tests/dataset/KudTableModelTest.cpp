#include "KudDataTableFixture.h"

#include <util/dataset/KudSelector.h>
#include <util/dataset/KudTableModel.h>
#include <util/dataset/KudTableUtils.h>

#include <basic/data/HbdVariableReal.h>
#include <basic/unit/HbuUnitService.h>

#include <QtCore/QItemSelectionModel>
#include <QtCore/QLocale>
#include <QtTest/QAbstractItemModelTester>
#include <QtTest/QSignalSpy>

/// What shows other columns, or more samples, is seen by the model and leaves the selections alone.
TEST_F(KudDataTable, ShowsAndHidesColumnsBehindTheModelAndTheSelections)
{
    QAbstractItemModelTester tester(table.getModel(),
                                    QAbstractItemModelTester::FailureReportingMode::Fatal);
    QSignalSpy reset(table.getModel(), &QAbstractItemModel::modelReset);
    QSignalSpy header(table.getModel(), &QAbstractItemModel::headerDataChanged);
    table.getMask()->select({Range(1, 2)}, Ku::Select);
    recorder.notices.clear();

    table.addTagToFilter("secret");
    EXPECT_EQ(recorder.reasons(), std::vector<int>{KudTableModif::Reset});
    HbdVariableDetails details = table.getDetails(n);
    details.tags.add("secret");
    table.setDetails(n, details);
    EXPECT_EQ(table.getVariableCount(), 2);
    EXPECT_EQ(table.createVariable(details), KudDatasetVariable()); // taken, if hidden
    details.name = "hidden";
    EXPECT_TRUE(table.createVariable(details).isValid());
    EXPECT_EQ(table.getVariableCount(), 2);
    table.appendTable(HbdDataTable(table.getDataTable()), false);
    EXPECT_EQ(reset.count(), 3);
    EXPECT_EQ(table.getSampleCount(), 8);
    EXPECT_EQ(table.getMask()->selectedRows(), Ranks(Range(1, 2)));

    auto realization = std::make_unique<HbdVariableReal>(HbdVariableDetails("x"));
    realization->setRealization("3");
    realization->resize(8);
    table.addVariable(std::move(realization));
    header.clear();
    EXPECT_TRUE(table.renameVariable(x, "east"));
    EXPECT_EQ(header.count(), 2); // the realization went along
}

/// The model keeps Qt's rules through any edits, and the selections stay on their samples.
TEST_F(KudDataTable, ModelAndSelectionsFollowRandomEdits)
{
    QAbstractItemModelTester tester(table.getModel(),
                                    QAbstractItemModelTester::FailureReportingMode::Fatal);
    const KudDatasetVariable key =
        table.createVariable(HbdVariableDetails("key", HbdEVarType::INTEGER));
    std::mt19937 random(3);
    std::set<qint64> masked;
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
    }
}

TEST_F(KudDataTable, DeletingManyScatteredRangesKeepsTheSelections)
{
    QList<QVector<QVariant>> rows;
    for (int i = 0; i < 1000; ++i)
        rows.append({double(i), i});
    table.createSamples(rows);
    Ranks removed;
    for (int rank = 4; rank < 1004; rank += 3)
        removed.add(rank);
    table.getHighlight()->select({Range(2, 5)}, Ku::Select);
    recorder.notices.clear();

    EXPECT_TRUE(table.deleteSamples(removed));
    EXPECT_EQ(table.getSampleCount(), 1004 - static_cast<int>(removed.getCount()));
    EXPECT_EQ(table.getHighlight()->selectedRows(), Ranks(Range(2, 4)));
    EXPECT_EQ(recorder.notices.size(), 1U);
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

/// Rows stay selected as wholes, whatever happens to the columns.
TEST_F(KudDataTable, SelectsRowsWhateverHappensToTheColumns)
{
    KudSelector& mask = *table.getMask();
    mask.select({Range(1, 2)}, Ku::Select);
    recorder.notices.clear();
    const KudDatasetVariable added = table.createVariable(HbdVariableDetails("new"));
    EXPECT_FALSE(mask.select(1, Ku::Select));
    EXPECT_TRUE(mask.select(1, Ku::ToggleSelection));
    EXPECT_EQ(mask.selectedRows(), Ranks(2));

    recorder.notices.clear();
    for (const KudDatasetVariable& variable : {x, added, n})
        table.deleteVariable(variable);
    EXPECT_EQ(recorder.reasons(), std::vector<int>(3, KudTableModif::VariableRemoved));
    EXPECT_EQ(mask.selectedRows(), Ranks(2));
    table.deleteVariable(t);
    EXPECT_FALSE(mask.hasSelection());
    EXPECT_TRUE(recorder.notices.back().testReason(KudTableModif::MaskChanged));
    EXPECT_FALSE(mask.select(0, Ku::Select));
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
    }
}

TEST(KudTableModel, ShowsAndEditsInTheDisplayUnitAndTheUsersDecimalSign)
{
    HbuUnitService& units = HbuUnitService::getInstance();
    HbdVariableDetails details("depth");
    details.unit = units.getUnit(HbuEUnitClass::LENGTH, "m");
    details.displayUnit = units.getUnit(HbuEUnitClass::LENGTH, "km");
    details.format = HbbEFormat::DECIMAL;
    details.precision = 3;
    ASSERT_TRUE(details.unit.isValid() && details.displayUnit.isValid());
    KudMemoryDataTable table("Points");
    const KudDatasetVariable depth = table.createVariable(details);
    table.createSamples({{1250.0}, {QVariant()}});
    KudTableModel& model = *table.getModel();

    EXPECT_EQ(model.data(model.index(0, 0)), "1.250");
    EXPECT_EQ(model.data(model.index(1, 0)), "N/A");
    EXPECT_EQ(model.headerData(0, Qt::Horizontal), "depth");
    EXPECT_EQ(model.headerData(1, Qt::Vertical), 2);

    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::German));
    const struct {
        const char* typed;
        bool accepted;
        QVariant stored;
    } cases[] = {{"2.5", true, 2500.0},
                 {"2,5", true, 2500.0},
                 {"deep", false, 2500.0}, // no number: the cell stays as it is
                 {"", true, QVariant()}};
    for (const auto& c : cases) {
        EXPECT_EQ(model.setData(model.index(1, 0), c.typed), c.accepted) << c.typed;
        EXPECT_EQ(table.readValues(depth)->getVariant(1), c.stored) << c.typed;
    }
    QLocale::setDefault(before);

    EXPECT_TRUE(model.flags(model.index(0, 0)) & Qt::ItemIsEditable);
    EXPECT_FALSE(model.flags(model.index(0, 0)) & Qt::ItemIsDragEnabled);
    table.setFlag(Ku::ReadOnlyValues);
    EXPECT_FALSE(model.flags(model.index(0, 0)) & Qt::ItemIsEditable);
    EXPECT_FALSE(model.setData(model.index(0, 0), "1"));
}
