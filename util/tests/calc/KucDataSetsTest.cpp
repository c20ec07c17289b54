#include <util/calc/KucDataSets.h>

#include <util/dataset/KudMemoryDatasetGrid.h>
#include <util/dataset/KudMemoryDatasetPoint.h>
#include <util/dataset/KudSelector.h>

#include <basic/data/HbdANumericVariable.h>
#include <basic/error/HbeProgrammingError.h>
#include <basic/error/HbeUserError.h>

#include "ErrorText.h"

namespace
{
using Range = HbiIntervalIntSmall;
using Range64 = HbiIntervalIntSmallO64;

HbdVariableDetails details(const char* name, const HbdEVarRole& role = HbdEVarRole::NONE,
                           const HbbTags& tags = {})
{
    HbdVariableDetails result(name, HbdEVarType::REAL, role);
    result.tags = tags;
    return result;
}

/// Ten points with x, y, Zn and a variable that is not exported.
void fill(KudMemoryDatasetPoint& dataset)
{
    HbdDataTable table;
    table.setSampleCount(10);
    table.createVariable(details("x", HbdEVarRole::X_COORDINATE));
    table.createVariable(details("y", HbdEVarRole::Y_COORDINATE));
    table.createVariable(details("work", HbdEVarRole::NONE, HbbTags("internal")));
    table.createVariable(details("Zn"));
    dataset.setDataTable(std::move(table));
    dataset.setTagFlags("internal", KudADataset::NotExportedVariable);
}
} // namespace

TEST(KucDataSetsTest, PointsBorrowTheColumnsOfTheDataset)
{
    KudMemoryDatasetPoint dataset("points");
    fill(dataset);
    const KudADataTable& table = *dataset.getPointTable();
    const HgdDataSetPoints points = Kuc::createPoints(dataset, Kuc::getExportedVariables(dataset));
    EXPECT_EQ(points.getSampleCount(), 10);
    EXPECT_EQ(points.getX(), table.readXCoordinate());
    EXPECT_EQ(points.getY(), table.readYCoordinate());
    EXPECT_EQ(points.getZ(), nullptr);
    EXPECT_EQ(points.getVariables("V"), (std::vector<const HbdAVariable*>{
                                            table.readXCoordinate(), table.readYCoordinate(),
                                            table.readValues(table.getVariableFromName("Zn"))}));
    // A variable that is named is exported whatever its tags.
    const KudDatasetVariable work = table.getVariableFromName("work");
    EXPECT_EQ(Kuc::createPoints(dataset, work).getVariables("V").front(), table.readValues(work));
    EXPECT_THROW(
        Kuc::createPoints(dataset, KudDatasetVariable::createVariable(work.support(), "Cu")),
        HbeProgrammingError);
}

TEST(KucDataSetsTest, ActiveSamplesAreInTheIntervalsAndNotMasked)
{
    KudMemoryDatasetPoint dataset("points");
    EXPECT_TRUE(Kuc::getActiveSamples(dataset).isEmpty());
    fill(dataset);
    EXPECT_EQ(Kuc::getActiveSamples(dataset), (HbiIntervalIntSmallDisjoint{Range(0, 9)}));
    dataset.mask(HbiIntervalIntSmallDisjoint{Range(4, 5)}, Ku::Select);
    EXPECT_EQ(Kuc::getActiveSamples(dataset),
              (HbiIntervalIntSmallDisjoint{Range(0, 3), Range(6, 9)}));
    dataset.setInterval({Range64(2, 7), Range64(9, 1000)});
    dataset.getPointTable()->setInterval({Range64(-7, 9000000000)});
    EXPECT_EQ(Kuc::getActiveSamples(dataset),
              (HbiIntervalIntSmallDisjoint{Range(2, 3), Range(6, 7), Range(9, 9)}));
    dataset.getPointTable()->setInterval({Range64(3, 3)});
    EXPECT_EQ(Kuc::getActiveSamples(dataset), HbiIntervalIntSmallDisjoint(3));
}

TEST(KucDataSetsTest, GridsBringTheirGeometry)
{
    KudMemoryDatasetGrid dataset("grid");
    EXPECT_THROW(Kuc::createGrid(dataset, {}), HbeProgrammingError);
    const HbgGeomGrid geometry(4, 3, 2, {0, 0, 0}, 1, 1, 1);
    dataset.setGeometrySet(KuuGeometrySet(geometry));
    const KudDatasetVariable zn = dataset.getGridTable()->createVariable(details("Zn"));
    const HgdDataSetGrid grid = Kuc::createGrid(dataset, Kuc::getExportedVariables(dataset));
    EXPECT_EQ(grid.getGeometry(), geometry);
    EXPECT_EQ(grid.getVariables("V"),
              (std::vector<const HbdAVariable*>{dataset.getGridTable()->readValues(zn)}));

    dataset.setGeometrySet(KuuGeometrySet(HbgSparseGrid(geometry, Range64(1, 3))));
    EXPECT_EQ(errorOf<HbeUserError>([&] { Kuc::createGrid(dataset, {}); }),
              "The grid 'grid' is sparse: a full grid is needed.");
}
