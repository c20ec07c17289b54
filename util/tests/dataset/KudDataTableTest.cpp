#include <QtPrinters.h>

#include <util/dataset/KudMemoryDataTable.h>
#include <util/dataset/KudSelector.h>
#include <util/dataset/KudTableModel.h>
#include <util/dataset/KudTableUtils.h>
#include <util/observable/KuoIObserver.h>

#include <basic/data/HbdVariableEnum.h>
#include <basic/data/HbdVariableInteger.h>
#include <basic/data/HbdVariableReal.h>
#include <basic/error/HbeUserError.h>
#include <basic/unit/HbuUnitService.h>

#include <QtCore/QAbstractItemModel>
#include <QtCore/QItemSelectionModel>
#include <QtCore/QLocale>
#include <QtTest/QAbstractItemModelTester>
#include <QtTest/QSignalSpy>

namespace
{
using Ranks = HbiIntervalIntSmallDisjoint;
using Range = HbiIntervalIntSmall;

class Recorder : public KuoIObserver<KudDataTableModif>
{
public:
    void update(const KudDataTableModif& notice) override { notices.push_back(notice.data()); }
    std::vector<KudTableModif> notices;

    std::vector<int> reasons() const
    {
        std::vector<int> all;
        for (const KudTableModif& notice : notices)
            all.push_back(static_cast<int>(notice.reasons()));
        return all;
    }
};

class KudDataTable : public testing::Test
{
protected:
    KudDataTable()
    {
        x = table.createVariable(
            HbdVariableDetails("x", HbdEVarType::REAL, HbdEVarRole::X_COORDINATE));
        n = table.createVariable(HbdVariableDetails("n", HbdEVarType::INTEGER));
        t = table.createVariable(HbdVariableDetails("t", HbdEVarType::TEXT));
        table.createSamples({{1.0, 10, "a"}, {2.0, 20, "b"}, {3.0, 30, "c"}, {4.0, 40, "d"}});
        table.addObserver(&recorder);
    }

    QVariant cell(const KudDatasetVariable& variable, int rank) const
    {
        return table.readValues(variable)->getVariant(rank);
    }

    Recorder recorder; // outlives what it observes
    KudMemoryDataTable table{"Points"};
    KudDatasetVariable x, n, t;
};

constexpr int VALUES_AND_SAMPLES = KudTableModif::ValuesChanged | KudTableModif::SamplesAdded;
} // namespace

/// One row a permission: without its flag the operation answers its refusal, tells nothing and
/// changes nothing; with it, it tells exactly these notices.
TEST_F(KudDataTable, GuardsEveryOperationByItsFlag)
{
    HbdVariableReal wanted{HbdVariableDetails("adopted")};
    wanted.resize(4);
    const struct {
        const char* name;
        Ku::DatasetFlag flag;
        bool allowedWhenSet;
        std::function<bool(KudMemoryDataTable&)> run; // whether it was accepted
        std::vector<int> notices;
    } rows[] = {
        {"updateValue",
         Ku::ReadOnlyValues,
         false,
         [this](auto& d) { return d.updateValue(x, 1, 9.0); },
         {KudTableModif::ValuesChanged}},
        {"updateColumn",
         Ku::ReadOnlyValues,
         false,
         [this](auto& d) {
             const double numbers[] = {7, 8};
             return d.updateColumn(x, 2, HbdSpan<const double>(numbers, 2));
         },
         {KudTableModif::ValuesChanged}},
        {"createSample by name",
         Ku::CanCreateSamples,
         true,
         [this](auto& d) {
             return d.createSample({{x, 5.0}, {t, "e"}}) == 4;
         },
         {KudTableModif::ValuesChanged, KudTableModif::SamplesAdded}},
        {"createSample by position",
         Ku::CanCreateSamples,
         true,
         [](auto& d) {
             return d.createSample(QVector<QVariant>{5.0, 50}) == 4;
         },
         {KudTableModif::ValuesChanged, KudTableModif::SamplesAdded}},
        {"createSamples",
         Ku::CanCreateSamples,
         true,
         [](auto& d) {
             return d.createSamples({{5.0, 50, "e"}, {6.0}}) == 4;
         },
         {VALUES_AND_SAMPLES}},
        {"deleteSample",
         Ku::CanDeleteSamples,
         true,
         [](auto& d) { return d.deleteSample(3); },
         {KudTableModif::SamplesRemoved}},
        {"deleteSamples",
         Ku::CanDeleteSamples,
         true,
         [](auto& d) {
             return d.deleteSamples({Range(0, 0), Range(2, 3)});
         },
         {KudTableModif::SamplesRemoved}},
        {"deleteAllSamples",
         Ku::CanDeleteSamples,
         true,
         [](auto& d) { return d.deleteAllSamples(); },
         {KudTableModif::SamplesRemoved}},
        {"createVariable",
         Ku::CanCreateVariables,
         true,
         [](auto& d) { return d.createVariable(HbdVariableDetails("new")).isValid(); },
         {KudTableModif::VariableAdded}},
        {"addVariable",
         Ku::CanCreateVariables,
         true,
         [&](auto& d) { return d.addVariable(wanted.clone()).isValid(); },
         {KudTableModif::VariableAdded}},
        {"deleteVariable",
         Ku::CanDeleteVariables,
         true,
         [this](auto& d) { return d.deleteVariable(n); },
         {KudTableModif::VariableRemoved}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Recorder heard;
        KudMemoryDataTable edited("Points");
        edited.setDataTable(table.getDataTable());
        edited.addObserver(&heard);

        edited.setFlag(row.flag, !row.allowedWhenSet);
        EXPECT_FALSE(row.run(edited));
        EXPECT_TRUE(heard.notices.empty());
        EXPECT_TRUE(edited.getDataTable().isEqual(table.getDataTable()));

        edited.setFlag(row.flag, row.allowedWhenSet);
        EXPECT_TRUE(row.run(edited));
        EXPECT_EQ(heard.reasons(), row.notices);
        EXPECT_FALSE(edited.getDataTable().isEqual(table.getDataTable()));
    }
}

TEST_F(KudDataTable, DeletesAllOrNothingAndSpeaksOfOldRanks)
{
    EXPECT_FALSE(table.deleteSamples({Range(0, 0), Range(3, 4)}));
    EXPECT_FALSE(table.deleteSamples(Ranks(-1)));
    EXPECT_FALSE(table.deleteSamples(Ranks()));
    EXPECT_EQ(table.getSampleCount(), 4);

    const Ranks ranks{Range(0, 0), Range(2, 3)};
    EXPECT_TRUE(table.deleteSamples(ranks));
    EXPECT_EQ(table.getSampleCount(), 1);
    EXPECT_EQ(cell(t, 0), "b");
    ASSERT_EQ(recorder.notices.size(), 1U);
    EXPECT_EQ(recorder.notices[0].removedSamples(), ranks);

    table.deleteAllSamples();
    EXPECT_FALSE(table.deleteAllSamples());
}

TEST_F(KudDataTable, ReportsPermissionRatherThanSuccessOfDeletingAVariable)
{
    EXPECT_TRUE(table.deleteVariable(KudDatasetVariable::createVariable("Points", "none")));
    EXPECT_EQ(table.getVariableCount(), 3);
}

TEST_F(KudDataTable, RefusesRanksOutsideAndUnknownVariables)
{
    EXPECT_FALSE(table.updateValue(x, -1, 1.0));
    EXPECT_FALSE(table.updateValue(x, 4, 1.0));
    EXPECT_FALSE(table.updateValue(KudDatasetVariable::createVariable("Other", "x"), 0, 1.0));
    EXPECT_FALSE(table.updateColumn(x, 3, *table.readValues(x)));
    EXPECT_FALSE(table.updateColumn(x, 0, *table.readValues(t)));
    EXPECT_TRUE(recorder.notices.empty());
}

TEST_F(KudDataTable, AddsAColumnOnlyIfItFits)
{
    auto tooShort = std::make_unique<HbdVariableReal>(HbdVariableDetails("short"));
    EXPECT_FALSE(table.addVariable(tooShort.get()).isValid()); // and stays with us
    auto taken = std::make_unique<HbdVariableReal>(HbdVariableDetails("x"));
    taken->resize(4);
    EXPECT_FALSE(table.addVariable(taken.get()).isValid());
    EXPECT_TRUE(recorder.notices.empty());

    KudMemoryDataTable empty("Points");
    auto first = std::make_unique<HbdVariableReal>(HbdVariableDetails("first"));
    first->resize(2);
    EXPECT_TRUE(empty.addVariable(std::move(first)).isValid());
    EXPECT_EQ(empty.getSampleCount(), 2);

    const struct {
        const char* what;
        QString table;
        QString variable;
        int sampleCount;
        bool mayCreateSamples;
    } refused[] = {
        {"a first column without a name", "Points", "", 0, true},
        {"a first column of another length", "Points", "v", 7, true},
        {"a first column that would make samples", "Points", "v", 0, false},
        {"a table without a name", "", "v", 2, true},
    };
    for (const auto& c : refused) {
        SCOPED_TRACE(c.what);
        KudMemoryDataTable other(c.table);
        other.setSampleCount(c.sampleCount);
        other.setFlag(Ku::CanCreateSamples, c.mayCreateSamples);
        auto column = std::make_unique<HbdVariableReal>(HbdVariableDetails(c.variable));
        column->resize(2);
        EXPECT_FALSE(other.addVariable(column.get()).isValid());
        EXPECT_EQ(other.getSampleCount(), c.sampleCount);
        EXPECT_EQ(other.getDataTable().getVariableCount(), 0);
        EXPECT_EQ(column->getCount(), 2); // still ours
    }
}

/// An observer that throws, or that ends the table, finds and leaves everything in its place.
TEST(KudMemoryDataTable, SurvivesObserversThatThrowOrEndIt)
{
    class Hostile : public KuoIObserver<KudDataTableModif>
    {
    public:
        void update(const KudDataTableModif&) override
        {
            if (throws)
                throw std::runtime_error("hostile");
            table.reset();
        }
        bool throws = false;
        std::unique_ptr<KudMemoryDataTable> table;
    };
    const KudDatasetVariable v = KudDatasetVariable::createVariable("Points", "v");
    const std::function<void(KudMemoryDataTable&)> edits[] = {
        [&](auto& t) {
            t.createSample({{v, 2.0}});
        },
        [](auto& t) { t.createSample(QVector<QVariant>{2.0}); },
        [](auto& t) {
            t.createSamples({{2.0}, {3.0}});
        },
        [](auto& t) { t.deleteSample(0); },
        [&](auto& t) { t.updateValue(v, 0, 5.0); },
        [&](auto& t) { t.deleteVariable(v); },
        [&](auto& t) { t.renameVariable(v, "w"); },
        [](auto& t) { t.createVariable(HbdVariableDetails("new")); },
        [](auto& t) { t.addVariable(HbdVariableReal(HbdVariableDetails("w")).clone()); },
        [](auto& t) {
            auto column = std::make_unique<HbdVariableReal>(HbdVariableDetails("w"));
            column->resize(1);
            t.addVariable(std::move(column));
        },
        [](auto& t) { t.getMask()->select(0, Ku::Select); },
        [](auto& t) { t.setDataTable(HbdDataTable()); },
    };
    for (const bool throws : {false, true}) {
        for (const auto& edit : edits) {
            SCOPED_TRACE(&edit - edits);
            Hostile hostile;
            hostile.throws = throws;
            hostile.table = std::make_unique<KudMemoryDataTable>("Points");
            hostile.table->createVariable(HbdVariableDetails("v"));
            hostile.table->createSample(QVector<QVariant>{1.0});
            QAbstractItemModelTester tester(hostile.table->getModel(),
                                            QAbstractItemModelTester::FailureReportingMode::Fatal);
            hostile.table->addObserver(&hostile);
            try {
                edit(*hostile.table);
            } catch (const std::runtime_error&) {
                hostile.table->removeObserver(&hostile);
                hostile.table->createSample(QVector<QVariant>{4.0});
                EXPECT_FALSE(hostile.table->isLocked());
            }
        }
    }
}

TEST_F(KudDataTable, RenamesWithOneNoticeThatCarriesTheNewDetails)
{
    EXPECT_FALSE(table.renameVariable(x, "n"));
    EXPECT_FALSE(table.renameVariable(x, "x"));
    EXPECT_TRUE(table.renameVariable(x, "east"));
    EXPECT_EQ(table.getVariableAt(0).variable(), "east");
    ASSERT_EQ(recorder.reasons(), std::vector<int>{KudTableModif::VariableRenamed});
    EXPECT_EQ(recorder.notices[0].getDetailsName(x), "east");

    HbdVariableDetails details = table.getDetails(n);
    EXPECT_TRUE(table.setDetails(n, details)); // nothing differs: nothing is told
    EXPECT_EQ(recorder.notices.size(), 1U);
    details.precision = 3;
    details.catalogId = "rocks";
    EXPECT_TRUE(table.setDetails(n, details));
    EXPECT_EQ(recorder.notices.back().reasons(),
              KudTableModif::Reasons(KudTableModif::DetailsFacet5 |
                                     KudTableModif::VariableCatalogChanged));
    EXPECT_EQ(table.getDetails(n).precision, 3);
}

TEST_F(KudDataTable, SetsTheSampleCountBehindTheModelOnly)
{
    QSignalSpy inserted(table.getModel(), &QAbstractItemModel::rowsInserted);
    QSignalSpy reset(table.getModel(), &QAbstractItemModel::modelReset);
    table.getMask()->select({Range(1, 3)}, Ku::Select);
    recorder.notices.clear();

    table.setSampleCount(4);
    EXPECT_EQ(inserted.count() + reset.count(), 0);
    table.setSampleCount(6);
    EXPECT_EQ(inserted.count(), 1);
    table.setSampleCount(3);
    EXPECT_EQ(reset.count(), 1);
    EXPECT_EQ(table.getMask()->selectedRows(), Ranks(Range(1, 2)));
    EXPECT_TRUE(recorder.notices.empty());
}

TEST_F(KudDataTable, KeepsIdentifiersReadOnlyForViewsButNotForCode)
{
    const KudDatasetVariable id = table.createVariable(
        HbdVariableDetails("id", HbdEVarType::INTEGER, HbdEVarRole::SAMPLE_ID));
    const KudDatasetVariable line = table.createVariable(
        HbdVariableDetails("line", HbdEVarType::INTEGER, HbdEVarRole::FILE_LINE_NUMBER));
    for (const KudDatasetVariable& variable : {id, line}) {
        EXPECT_TRUE(table.isVariableReadonly(variable));
        EXPECT_TRUE(table.updateValue(variable, 0, 5));
    }
    EXPECT_FALSE(table.isVariableReadonly(x));
    table.setFlag(Ku::ReadOnlyValues);
    EXPECT_TRUE(table.isVariableReadonly(x));
}

TEST_F(KudDataTable, FindsCoordinatesByRoleUnlessTheRoleIsHidden)
{
    EXPECT_FALSE(table.checkCoordinates());
    table.createVariable(HbdVariableDetails("y", HbdEVarType::REAL, HbdEVarRole::Y_COORDINATE));
    EXPECT_FALSE(table.checkCoordinates()); // undefined values
    const double ys[] = {1, 1, 1, 1};
    table.updateColumn(table.getVariableFromName("y"), 0, HbdSpan<const double>(ys, 4));
    EXPECT_TRUE(table.checkCoordinates());
    EXPECT_TRUE(table.isSortedByXCoordinate(true));
    table.updateValue(x, 1, 1.0);
    EXPECT_FALSE(table.isSortedByXCoordinate(true));
    EXPECT_TRUE(table.isSortedByXCoordinate(false));

    table.hideStructuralRoles(HbdVarRoleFlags::COORDINATES);
    EXPECT_EQ(table.readXCoordinate(), nullptr);
    EXPECT_EQ(table.getStructuralRole(x), HbdEVarRole::NONE);
}

TEST_F(KudDataTable, LeavesFilteredColumnsOutOfTheHeader)
{
    table.addStructuralRoleToFilter(HbdEVarRole::X_COORDINATE);
    EXPECT_EQ(table.getVariableCount(), 2);
    EXPECT_EQ(table.getVariableAt(0), n);
    EXPECT_EQ(table.createSample(QVector<QVariant>{50, "e"}), 4);
    EXPECT_EQ(cell(n, 4), 50);
    EXPECT_TRUE(table.getDataTable().findVariable("x")->isUndefined(4));
}

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

TEST(KudMemoryDataTable, RefusesMoreSamplesThanRanks)
{
    KudMemoryDataTable table("Points");
    table.setSampleCount(std::numeric_limits<int>::max()); // without variables they take no memory
    EXPECT_EQ(table.createSample(QVector<QVariant>{}), -1);
    EXPECT_EQ(table.createSample(KudADataTable::SampleValues{}), -1);
    EXPECT_EQ(table.createSamples({QVector<QVariant>{}}), -1);
    EXPECT_EQ(table.appendSamples(table.getDataTable()), -1);
    EXPECT_THROW(table.appendTable(table.getDataTable(), true), HbeUserError);
    EXPECT_EQ(table.getSampleCount(), std::numeric_limits<int>::max());
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
