#include <basic/base/HbbGlobal.h>
#include <basic/data/HbdDataTable.h>
#include <basic/data/HbdVariableEnum.h>
#include <basic/data/HbdVariableInteger.h>
#include <basic/data/HbdVariableReal.h>
#include <basic/data/HbdVariableUpdater.h>

#include <QtCore/QDateTime>
#include <QtGui/QColor>

#include <cmath>

namespace
{
std::unique_ptr<HbdAVariable> makeColumn(const HbdEVarType& type, const QString& name = "v")
{
    auto column = HbdAVariable::create(HbdVariableDetails(name, type));
    if (auto* categories = dynamic_cast<HbdVariableEnum*>(column.get())) {
        HbdEnumCatalog catalog;
        catalog.addCategory(7, "clay");
        catalog.addCategory(2, "sand");
        categories->setCatalog(catalog);
    }
    return column;
}

/// What a cell reads as after `value` was stored.
QVariant stored(const HbdEVarType& type, const QVariant& value)
{
    const auto column = makeColumn(type);
    column->resize(3);
    HbdVariableUpdater updater(*column);
    updater.setRank(1);
    updater.setValue(value);
    return column->getVariant(1);
}
} // namespace

TEST(HbdVariable, StoresWhatItsKindCanHoldAndElseItsUndefinedValue)
{
    const QVariant none;
    const struct {
        HbdEVarType type;
        QVariant value;
        QVariant expected;
    } cases[] = {
        {HbdEVarType::REAL, 1.5, 1.5},
        {HbdEVarType::REAL, "2.25", 2.25},
        {HbdEVarType::REAL, "2,25", none},
        {HbdEVarType::REAL, none, none},
        {HbdEVarType::REAL, std::nan(""), none},
        {HbdEVarType::REAL, HbbGlobal::D_FFFF, none},
        {HbdEVarType::REAL_32, 0.5, 0.5},
        {HbdEVarType::REAL_32, 1e200, none},
        {HbdEVarType::INTEGER, 42, 42},
        {HbdEVarType::INTEGER, 3.7, none},
        {HbdEVarType::INTEGER, 4.0, 4},
        {HbdEVarType::INTEGER, 1e30, none},
        {HbdEVarType::INTEGER, "9007199254740993", qint64(9007199254740993)},
        {HbdEVarType::TEXT, "", ""},
        {HbdEVarType::TEXT, none, none},
        {HbdEVarType::CATEGORY, "sand", "sand"},
        {HbdEVarType::CATEGORY, 7, "clay"},
        {HbdEVarType::CATEGORY, "gravel", none},
        {HbdEVarType::CATEGORY, 9, 9}, // a code without a category is kept
        {HbdEVarType::CATEGORY, 65535, none},
        {HbdEVarType::COLOR, "#102030", QColor(16, 32, 48)},
        {HbdEVarType::COLOR, "no colour", none},
        {HbdEVarType::ALPHA_CHANNEL, 256, 255},
        {HbdEVarType::SELECTION, true, 1},
        {HbdEVarType::SELECTION, none, 0},
        {HbdEVarType::DATE, "1970-01-01T00:00:01", QDateTime::fromSecsSinceEpoch(1, Qt::UTC)},
        {HbdEVarType::DATE, "yesterday", none},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.type.getKey().toStdString() + " " + c.value.toString().toStdString());
        EXPECT_EQ(stored(c.type, c.value), c.expected);
    }
}

TEST(HbdVariable, DeletesScatteredRanksAsRemovingThemOneByOne)
{
    std::mt19937 random(11);
    for (int round = 0; round < 200; ++round) {
        HbdVariableInteger column{HbdVariableDetails("v", HbdEVarType::INTEGER)};
        std::vector<qint64> expected;
        HbiIntervalIntSmallDisjoint ranks;
        const int count = static_cast<int>(random() % 40);
        for (int i = 0; i < count; ++i) {
            column.append(qint64(i));
            if (random() % 3 == 0)
                ranks.add(i);
            else
                expected.push_back(i);
        }
        ranks.add(count + 5); // beyond the end: ignored
        column.removeRanks(ranks);
        const auto left = column.getValues();
        EXPECT_EQ(std::vector<qint64>(left.begin(), left.end()), expected);
    }
}

TEST(HbdVariable, NumbersOfEveryKindReadAndWriteUndefinedAlike)
{
    const double numbers[] = {1.0, HbbGlobal::D_FFFF, -2.0, std::nan("")};
    for (const HbdEVarType& type :
         {HbdEVarType::REAL, HbdEVarType::REAL_32, HbdEVarType::INTEGER}) {
        SCOPED_TRACE(type.getKey().toStdString());
        const auto column = makeColumn(type);
        column->resize(4);
        auto& numeric = static_cast<HbdANumericVariable&>(*column);
        numeric.writeNumbers(0, 4, numbers);
        double read[4];
        numeric.readNumbers(0, 4, read);
        EXPECT_THAT(read, testing::ElementsAre(1.0, HbbGlobal::D_FFFF, -2.0, HbbGlobal::D_FFFF));
        EXPECT_EQ(column->getUndefinedCount(), 2);
    }
}

TEST(HbdVariable, EqualMeansBitForBit)
{
    HbdVariableReal a{HbdVariableDetails("v")};
    HbdVariableReal b{HbdVariableDetails("v")};
    a.append(0.0);
    b.append(-0.0);
    EXPECT_FALSE(a.isEqual(b));
    b.set(0, 0.0);
    EXPECT_TRUE(a.isEqual(b));
}

TEST(HbdDataTable, RefusesColumnsThatDoNotFitAndLeavesThemWithTheCaller)
{
    HbdDataTable table;
    auto first = makeColumn(HbdEVarType::REAL, "a");
    first->resize(3);
    EXPECT_NE(table.addVariable(std::move(first)), nullptr);
    EXPECT_EQ(table.getSampleCount(), 3);

    for (const auto& [name, count] : {std::pair{"a", 3}, {"b", 2}, {"", 3}}) {
        auto column = makeColumn(HbdEVarType::REAL, name);
        column->resize(count);
        EXPECT_EQ(table.addVariable(std::move(column)), nullptr) << name;
        EXPECT_NE(column, nullptr) << name;
    }
    EXPECT_NE(table.createVariable(HbdVariableDetails("b")), nullptr);
    EXPECT_FALSE(table.renameVariable(1, "a"));
    EXPECT_TRUE(table.renameVariable(1, "c"));
    EXPECT_EQ(table.indexOf("c"), 1);
    EXPECT_EQ(table.indexOf("b"), -1);
}

TEST(HbdDataTable, AppendsByNameAndMatchesCategoriesByLabel)
{
    HbdDataTable ours;
    auto rock = makeColumn(HbdEVarType::CATEGORY, "rock");
    rock->resize(1);
    rock->setVariant(0, "sand");
    ours.addVariable(std::move(rock));

    HbdDataTable theirs;
    auto other = HbdAVariable::create(HbdVariableDetails("rock", HbdEVarType::CATEGORY));
    HbdEnumCatalog catalog;
    catalog.addCategory(2, "gravel"); // our code of sand
    catalog.addCategory(3, "clay");
    static_cast<HbdVariableEnum&>(*other).setCatalog(catalog);
    other->resize(3);
    other->setVariant(0, "gravel");
    other->setVariant(1, "clay");
    theirs.addVariable(std::move(other));
    theirs.createVariable(HbdVariableDetails("note", HbdEVarType::TEXT))->setVariant(1, "x");

    ours.appendTable(theirs, true);
    const HbdAVariable& joined = *ours.findVariable("rock");
    EXPECT_EQ(joined.getVariant(0), "sand");
    EXPECT_EQ(joined.getVariant(1), "gravel");
    EXPECT_EQ(joined.getVariant(2), "clay");
    EXPECT_TRUE(joined.isUndefined(3));
    EXPECT_TRUE(ours.findVariable("note")->isUndefined(0));
    EXPECT_EQ(ours.findVariable("note")->getVariant(2), "x");
    EXPECT_EQ(ours.getSampleCount(), 4);
}

TEST(HbdEnumCatalog, TakesAGapWhenTheHighestCodeIsTaken)
{
    HbdEnumCatalog catalog;
    catalog.addCategory(0, "clay");
    catalog.addCategory(65534, "sand");
    EXPECT_EQ(catalog.findOrAdd("gravel"), 1);
    EXPECT_EQ(catalog.getLabel(1), "gravel");
}
