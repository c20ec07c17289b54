#include "KudDataTableFixture.h"

#include <util/dataset/KudSelector.h>
#include <util/dataset/KudTableModel.h>

#include <basic/data/HbdVariableEnum.h>
#include <basic/data/HbdVariableInteger.h>
#include <basic/data/HbdVariableReal.h>
#include <basic/error/HbeUserError.h>

#include <QtTest/QAbstractItemModelTester>
#include <QtTest/QSignalSpy>

/// One row a permission: without its flag the operation answers its refusal, tells nothing and
/// changes nothing; with it, it tells exactly these notices.
TEST_F(KudDataTable, GuardsEveryOperationByItsFlag)
{
    HbdVariableReal wanted{HbdVariableDetails("adopted")};
    wanted.resize(4);
    const double values[] = {7, 8};
    const HbdSpan<const double> numbers(values, 2);
    const Ranks some{Range(0, 0), Range(2, 3)};
    const std::vector<int> changed{KudTableModif::ValuesChanged};
    const std::vector<int> changedThenAdded{KudTableModif::ValuesChanged,
                                            KudTableModif::SamplesAdded};
    const std::vector<int> changedAndAdded{KudTableModif::ValuesChanged |
                                           KudTableModif::SamplesAdded};
    const std::vector<int> removed{KudTableModif::SamplesRemoved};
    const std::vector<int> variableAdded{KudTableModif::VariableAdded};
    const std::vector<int> variableRemoved{KudTableModif::VariableRemoved};
    using Table = KudMemoryDataTable;
    const struct {
        const char* name;
        Ku::DatasetFlag flag; // forbids where it is set, the others allow
        std::vector<int> notices;
        std::function<bool(Table&)> run; // whether it was accepted
    } rows[] = {
        {"updateValue", Ku::ReadOnlyValues, changed,
         [this](Table& d) { return d.updateValue(x, 1, 9.0); }},
        {"updateColumn", Ku::ReadOnlyValues, changed,
         [this, &numbers](Table& d) { return d.updateColumn(x, 2, numbers); }},
        {"createSample by name", Ku::CanCreateSamples, changedThenAdded,
         [this](Table& d) {
             return d.createSample({{x, 5.0}, {t, "e"}}) == 4;
         }},
        {"createSample by position", Ku::CanCreateSamples, changedThenAdded,
         [](Table& d) {
             return d.createSample(QVector<QVariant>{5.0, 50}) == 4;
         }},
        {"createSamples", Ku::CanCreateSamples, changedAndAdded,
         [](Table& d) {
             return d.createSamples({{5.0, 50, "e"}, {6.0}}) == 4;
         }},
        {"deleteSample", Ku::CanDeleteSamples, removed, [](Table& d) { return d.deleteSample(3); }},
        {"deleteSamples", Ku::CanDeleteSamples, removed,
         [&some](Table& d) { return d.deleteSamples(some); }},
        {"deleteAllSamples", Ku::CanDeleteSamples, removed,
         [](Table& d) { return d.deleteAllSamples(); }},
        {"createVariable", Ku::CanCreateVariables, variableAdded,
         [](Table& d) { return d.createVariable(HbdVariableDetails("new")).isValid(); }},
        {"addVariable", Ku::CanCreateVariables, variableAdded,
         [&](Table& d) { return d.addVariable(wanted.clone()).isValid(); }},
        {"deleteVariable", Ku::CanDeleteVariables, variableRemoved,
         [this](Table& d) { return d.deleteVariable(n); }},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Recorder heard;
        KudMemoryDataTable edited("Points");
        edited.setDataTable(table.getDataTable());
        edited.addObserver(&heard);

        const bool allows = row.flag != Ku::ReadOnlyValues;
        edited.setFlag(row.flag, !allows);
        EXPECT_FALSE(row.run(edited));
        EXPECT_TRUE(heard.notices.empty());
        EXPECT_TRUE(edited.getDataTable().isEqual(table.getDataTable()));

        edited.setFlag(row.flag, allows);
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
