#include <geos/data/HgdDataSetGrid.h>
#include <geos/data/HgdDataSetPoints.h>

#include <basic/data/HbdVariableEnum.h>
#include <basic/data/HbdVariableReal.h>
#include <basic/error/HbeProgrammingError.h>

namespace
{
using Range = HbiIntervalIntSmall;

template <class Variable>
Variable makeColumn(const char* name, int count)
{
    Variable column{HbdVariableDetails(name)};
    column.resize(count);
    return column;
}
} // namespace

TEST(HgdDataSetTest, BorrowsColumnsByRoleAndInOrder)
{
    const auto zn = makeColumn<HbdVariableReal>("Zn", 5);
    const auto rock = makeColumn<HbdVariableEnum>("Rock", 5);
    const auto weight = makeColumn<HbdVariableReal>("Weight", 5);
    HgdDataSetPoints points(5);
    points.addVariable(rock);
    points.addVariable(weight, "W");
    points.addVariable(zn);
    const std::unique_ptr<HgdADataSet> copy = points.clone();
    EXPECT_EQ(copy->getVariables("V"), (std::vector<const HbdAVariable*>{&rock, &zn}));
    EXPECT_EQ(copy->getVariables("W"), (std::vector<const HbdAVariable*>{&weight}));
    EXPECT_TRUE(copy->getVariables("X").empty());
    EXPECT_EQ(copy->getSampleSize(), 2 + 8 + 8);
}

TEST(HgdDataSetTest, WhatDoesNotFitIsRefused)
{
    const auto four = makeColumn<HbdVariableReal>("Four", 4);
    HgdDataSetPoints points(5);
    EXPECT_THROW(points.addVariable(four), HbeProgrammingError);
    EXPECT_THROW(points.setCoordinates(nullptr, &four), HbeProgrammingError);
    EXPECT_EQ(points.getY(), nullptr);
    EXPECT_THROW(HgdDataSetPoints(-1), HbeProgrammingError);
    EXPECT_THROW(HgdDataSetGrid{HbgGeomGrid()}, HbeProgrammingError);
    EXPECT_THROW(HgdDataSetGrid(HbgGeomGrid(50000, 50000, {0, 0}, 1, 1)), HbeProgrammingError);
}

TEST(HgdDataSetTest, SelectionStaysWithinTheSamples)
{
    HgdDataSetPoints points(10);
    points.setSelection({Range(-5, 2), Range(8, 20)});
    EXPECT_EQ(points.getSelection(), (HbiIntervalIntSmallDisjoint{Range(0, 2), Range(8, 9)}));
    points.setSelection({});
    EXPECT_TRUE(points.hasSelection()); // of nothing
    points.removeSelection();
    EXPECT_FALSE(points.hasSelection());
}

TEST(HgdDataSetTest, GridKnowsItsAxes)
{
    const HgdDataSetGrid flat(HbgGeomGrid(4, 3, {0, 0}, 1, 1));
    EXPECT_EQ(flat.getAxisCount(), 2);
    EXPECT_EQ(flat.getAxisLength(2), 1);
    const HgdDataSetGrid solid(HbgGeomGrid(4, 3, 2, {0, 0, 0}, 1, 1, 1));
    EXPECT_EQ(solid.getAxisCount(), 3);
    EXPECT_EQ(solid.getSampleCount(), 24);
    EXPECT_EQ(solid.getAxisLength(0), 4);
    EXPECT_EQ(solid.getAxisLength(1), 3);
    EXPECT_EQ(solid.getAxisLength(2), 2);
    EXPECT_THROW(solid.getAxisLength(3), HbeProgrammingError);
}
