#include "KudDataTableFixture.h"

#include <util/dataset/KudSelector.h>
#include <util/dataset/KudTableModel.h>

#include <basic/data/HbdVariableReal.h>
#include <basic/unit/HbuUnitService.h>

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

TEST(KudTableModel, ShowsTheDisplayUnitAndWhatMayBeEdited)
{
    HbuUnitService& units = HbuUnitService::getInstance();
    HbdVariableDetails details("depth");
    details.unit = units.getUnit(HbuEUnitClass::LENGTH, "m");
    details.displayUnit = units.getUnit(HbuEUnitClass::LENGTH, "km");
    details.format = HbbEFormat::DECIMAL;
    details.precision = 3;
    ASSERT_TRUE(details.unit.isValid() && details.displayUnit.isValid());
    KudMemoryDataTable table("Points");
    table.createVariable(details);
    table.createSamples({{1250.0}, {QVariant()}});
    KudTableModel& model = *table.getModel();

    EXPECT_EQ(model.data(model.index(0, 0)), "1.250");
    EXPECT_EQ(model.data(model.index(1, 0)), "N/A");
    EXPECT_EQ(model.headerData(0, Qt::Horizontal), "depth");
    EXPECT_EQ(model.headerData(1, Qt::Vertical), 2);

    EXPECT_TRUE(model.flags(model.index(0, 0)) & Qt::ItemIsEditable);
    EXPECT_FALSE(model.flags(model.index(0, 0)) & Qt::ItemIsDragEnabled);
    table.setFlag(Ku::ReadOnlyValues);
    EXPECT_FALSE(model.flags(model.index(0, 0)) & Qt::ItemIsEditable);
    EXPECT_FALSE(model.setData(model.index(0, 0), "1"));
}
