#include <basic/base/HbbAEnum.h>

#include "CapturedLog.h"
#include "ErrorText.h"

#include <basic/error/HbeProgrammingError.h>

#include <set>

// Declared out of value order on purpose.
#define SAMPLE_COLOR(ROW, Class)                                                                   \
    ROW(Class, BLUE, 9, QT_TRANSLATE_NOOP("SampleColor", "Blue one"))                              \
    ROW(Class, RED, -2, QT_TRANSLATE_NOOP("SampleColor", "Red one"))                               \
    ROW(Class, GREEN, 4, QT_TRANSLATE_NOOP("SampleColor", "Green one"))

class SampleColor : public HbbAEnum
{
    HBB_ENUM(SampleColor, SAMPLE_COLOR)
};

#define SAMPLE_TWIN(ROW, Class) ROW(Class, FIRST, 1, QT_TRANSLATE_NOOP("SampleTwin", "First one"))

class SampleTwin : public HbbAEnum
{
    HBB_ENUM(SampleTwin, SAMPLE_TWIN)
};

// Initialised before the definition of the items below, as a static of any other source file may
// be.
const SampleColor colorOfEarlyStatic = SampleColor::BLUE;
const SampleColor defaultOfEarlyStatic;
const QString keyOfEarlyStatic = SampleColor::fromValue(9).getKey();

HBB_ENUM_DEFINE(SampleColor, SAMPLE_COLOR, GREEN, "tests\\SampleColor")
HBB_ENUM_DEFINE(SampleTwin, SAMPLE_TWIN, FIRST, "tests/SampleTwin")

namespace
{
std::vector<QString> keys()
{
    std::vector<QString> found;
    for (const SampleColor& item : SampleColor::createIterator())
        found.push_back(item.getKey());
    return found;
}
} // namespace

TEST(HbbAEnum, iteratesInValueOrder)
{
    EXPECT_THAT(keys(), testing::ElementsAre("RED", "GREEN", "BLUE"));
    EXPECT_EQ(SampleColor::count(), 3);
    HbbEnumIterator<SampleColor> it = SampleColor::createIterator();
    EXPECT_EQ(it.next(), SampleColor::RED);
    EXPECT_TRUE(it.hasNext());
}

TEST(HbbAEnum, theDefaultIsTheDeclaredOne)
{
    EXPECT_EQ(SampleColor(), SampleColor::GREEN);
    EXPECT_EQ(SampleColor().toEnum(), SampleColor::E_GREEN);
}

TEST(HbbAEnum, anItemIsFoundByKeyLabelAndValue)
{
    for (const SampleColor& item : SampleColor::createIterator()) {
        EXPECT_EQ(SampleColor::fromKey(item.getKey()), item);
        EXPECT_EQ(SampleColor::fromLabel(item.getLabel()), item);
        EXPECT_EQ(SampleColor::fromValue(item.getValue()), item);
        EXPECT_TRUE(SampleColor::existsKey(item.getKey()));
        EXPECT_TRUE(SampleColor::existsLabel(item.getLabel()));
        EXPECT_TRUE(SampleColor::existsValue(item.getValue()));
    }
    EXPECT_FALSE(SampleColor::existsKey("red"));
    EXPECT_FALSE(SampleColor::existsLabel("RED"));
    EXPECT_FALSE(SampleColor::existsValue(0));
}

TEST(HbbAEnum, anUnknownItemIsAnErrorOrTheGivenOne)
{
    EXPECT_EQ(errorOf<HbeProgrammingError>([] { SampleColor::fromKey("PINK"); }),
              "'SampleColor::fromKey(const QString&)' in file 'tests\\SampleColor' failed:\n\n"
              "PINK is not valid");
    EXPECT_EQ(errorOf<HbeProgrammingError>([] { SampleColor::fromLabel("Pink"); }),
              "'SampleColor::fromLabel(const QString&)' in file 'tests\\SampleColor' failed:\n\n"
              "Pink is not valid");
    EXPECT_EQ(errorOf<HbeProgrammingError>([] { SampleColor::fromValue(-9); }),
              "'SampleColor::fromValue(int)' in file 'tests\\SampleColor' failed:\n\n"
              "-9 is not valid");
    EXPECT_EQ(SampleColor::fromKey("PINK", SampleColor::BLUE), SampleColor::BLUE);
    EXPECT_EQ(SampleColor::fromLabel("Pink", SampleColor::BLUE), SampleColor::BLUE);
    EXPECT_EQ(SampleColor::fromValue(-9, SampleColor::BLUE), SampleColor::BLUE);
    EXPECT_EQ(SampleColor::fromKey("RED", SampleColor::BLUE), SampleColor::RED);
}

TEST(HbbAEnum, comparesByValue)
{
    EXPECT_LT(SampleColor::RED, SampleColor::GREEN);
    EXPECT_GT(SampleColor::BLUE, SampleColor::GREEN);
    EXPECT_LE(SampleColor::RED, SampleColor::RED);
    EXPECT_GE(SampleColor::RED, SampleColor::RED);
    EXPECT_NE(SampleColor::RED, SampleColor::BLUE);
    EXPECT_EQ(
        std::set<SampleColor>({SampleColor::BLUE, SampleColor::RED, SampleColor::BLUE}).size(), 2u);
}

TEST(HbbAEnum, ofTwoItemsWithOneValueTheLaterWinsAndTheSinkIsTold)
{
    const CapturedLog printed;
    SampleTwin::registerItem(1, "LATER", "Later one");
    SampleTwin::registerItem(7, "OTHER", "Other one");
    EXPECT_EQ(printed.texts, QStringList("SampleTwin: duplicated item Later one [1=LATER]!\n"));
    EXPECT_EQ(SampleTwin::count(), 2);
    EXPECT_EQ(SampleTwin::fromValue(1).getKey(), "LATER");
    EXPECT_FALSE(SampleTwin::existsKey("FIRST"));
    EXPECT_EQ(SampleTwin::FIRST, SampleTwin::fromValue(1));
}

TEST(HbbAEnum, itemsMayBeUsedBeforeTheirOwnDefinitionIsReached)
{
    EXPECT_EQ(colorOfEarlyStatic, SampleColor::BLUE);
    EXPECT_EQ(defaultOfEarlyStatic, SampleColor::GREEN);
    EXPECT_EQ(keyOfEarlyStatic, "BLUE");
}
