#include "KufFilterFixture.h"

#include <util/dataset/KudMemoryDatasetGrid.h>
#include <util/filter/KufSampleFilterQBitArrayVisitor.h>
#include <util/filter/KufSampleFilterRuleText.h>

#include <basic/geometry/HbgGeomGrid.h>

#include <cstring>

namespace
{
bool isSameRule(const KufISampleFilterRule& a, const KufISampleFilterRule& b)
{
    const auto* numericA = dynamic_cast<const Numeric*>(&a);
    const auto* numericB = dynamic_cast<const Numeric*>(&b);
    if (numericA != nullptr && numericB != nullptr)
        return numericA->isSameCondition(*numericB);
    return a.isEqual(b);
}
} // namespace

TEST_F(KufFilterData, ruleTextsAreReadAndPrinted)
{
    const KufSampleFilterRuleText text(*points.getPointTable());
    const double inf = std::numeric_limits<double>::infinity();
    const Bound open = Bound::ITV_LESS_THAN;
    const Bound closed = Bound::ITV_LESS_OR_EQUAL_TO;
    const struct {
        QString read, printed, variable;
        QSharedPointer<KufISampleFilterRule> rule;
    } rows[] = {
        {"zinc > 300", "zinc > 300", "zinc", Numeric(Operator::GREATER_THAN, 300).duplicate()},
        {" zinc<-1.5e-3 ", "zinc < -0.0015", "zinc",
         Numeric(Operator::LESS_THAN, -0.0015).duplicate()},
        {"zinc≥+2", "zinc >= 2", "zinc", Numeric(Operator::GREATER_OR_EQUAL_TO, 2).duplicate()},
        {"zinc ≤ inf", "zinc <= inf", "zinc", Numeric(Operator::LESS_OR_EQUAL_TO, inf).duplicate()},
        {"zinc = 2+-0.5", "zinc = 2 +- 0.5", "zinc", Numeric(Operator::EQUAL, 2, 0.5).duplicate()},
        {"zinc ≠ 1e5 ± 1e-5", "zinc != 1e+05 +- 1e-05", "zinc",
         Numeric(Operator::NOT_EQUAL, 1e5, 1e-5).duplicate()},
        {"zinc = 2", "zinc = 2", "zinc", Numeric(Operator::EQUAL, 2).duplicate()},
        {"zinc IS Defined", "zinc is defined", "zinc", Numeric().duplicate()},
        {"name is defined", "name is defined", "name", Numeric().duplicate()},
        {"zinc in [0, 0.2)", "zinc in [0, 0.2)", "zinc", Numeric(0, closed, 0.2, open).duplicate()},
        {"zinc in(-inf,-1]", "zinc in (-inf, -1]", "zinc",
         Numeric(-inf, open, -1, closed).duplicate()},
        {"\"Pb[1].x\" = 0", "\"Pb[1].x\" = 0", "Pb[1].x", Numeric(Operator::EQUAL, 0).duplicate()},
        {"\"land use\" in {Ag,\"a b\" , -1}", "\"land use\" in {Ag, \"a b\", -1}", "land use",
         Categories({"Ag", "a b", "-1"}).duplicate()},
        {"\"land use\" = \"Ag\"", "\"land use\" in {Ag}", "land use",
         Categories({"Ag"}).duplicate()},
        {"\"land use\" in { }", "\"land use\" in {}", "land use", Categories().duplicate()},
        {"name contains \"Bore\"", "name contains \"Bore\"", "name",
         Alpha(Alpha::Mode::CONTAINS, "Bore").duplicate()},
        {"name=\"a\\\"\\\\\\n\\u00e9\\ud834\"", "name = \"a\\\"\\\\\\né\\ud834\"", "name",
         Alpha(Alpha::Mode::EQUAL_TO, QString("a\"\\\né") + QChar(0xd834)).duplicate()},
        {"name != \"\"", "name != \"\"", "name", Alpha(Alpha::Mode::NOT_EQUAL_TO, "").duplicate()},
        {"selected", "selected", "selected", Selection().duplicate()},
        {"NOT selected", "not selected", "selected", Selection(true).duplicate()},
        {"\"selected\" not selected", "not selected", "selected", Selection(true).duplicate()},
        {"\"selected\" > 0", "\"selected\" > 0", "selected",
         Numeric(Operator::GREATER_THAN, 0).duplicate()},
    };
    for (const auto& row : rows) {
        const auto parsed = text.parse(row.read);
        EXPECT_EQ(parsed.variable, onPoints(row.variable)) << row.read.toStdString();
        EXPECT_TRUE(parsed.rule->isEqual(*row.rule)) << row.read.toStdString();
        EXPECT_EQ(text.print(parsed.variable, *parsed.rule), row.printed);
    }
}

TEST_F(KufFilterData, aSelectionBesideTheFirstIsNamed)
{
    const KudDatasetVariable marked = points.getPointTable()->createVariable(
        HbdVariableDetails("marked", HbdEVarType::SELECTION));
    const KufSampleFilterRuleText text(*points.getPointTable());
    for (const bool isInverted : {false, true}) {
        const auto parsed = text.parse(text.print(marked, Selection(isInverted)));
        EXPECT_EQ(parsed.variable, marked);
        EXPECT_TRUE(parsed.rule->isEqual(Selection(isInverted)));
    }
    EXPECT_EQ(text.getSelectionVariable(), onPoints("selected"));
}

TEST(KufSampleFilterRuleText, columnsOfAGridAreNamedInFullAndFiltered)
{
    KudMemoryDatasetGrid grid("g");
    grid.setGeometrySet(KuuGeometrySet(HbgGeomGrid(13, 5, HbgVector2D{0, 0}, 1, 1)));
    const struct {
        const char *name, *index, *component;
    } columns[] = {{"Zn", "1", ""}, {"Zn", "10", ""}, {"Zn x", "3", "é"}, {"not", "", "\u2028"}};
    for (int shift = 0; shift < 4; ++shift) {
        auto column = HbdAVariable::create(HbdVariableDetails(columns[shift].name));
        column->setRealization(columns[shift].index);
        column->setComponent(columns[shift].component);
        column->resize(65);
        for (int i = 0; i < 65; ++i)
            column->setVariant(i, (i + shift) % 5);
        ASSERT_TRUE(grid.getGridTable()->addVariable(std::move(column)).isValid());
    }
    const KufSampleFilterRuleText text(*grid.getGridTable());
    KufSampleFilter filter;
    for (const char* rule :
         {"\"Zn[1]\" > 1", "\"Zn[10]\" > 1", "\"Zn x[3].é\" > 1", "\"not.\\u2028\" > 1"}) {
        const auto parsed = text.parse(rule);
        EXPECT_EQ(text.print(parsed.variable, *parsed.rule), rule);
        filter.addRule(parsed.variable, *parsed.rule);
    }
    filter.setCombination("R1 and not R2 or R3 and R4");
    const QBitArray bits =
        KufSampleFilterQBitArrayVisitor(&filter, &grid, filter.getVariables()).getSelection();
    for (int i = 0; i < 65; ++i)
        EXPECT_EQ(bits.testBit(i), i % 5 == 4 || i % 5 < 2) << i;
    EXPECT_TRUE(errorOf<HbeUserError>([&] {
                    text.parse("Zn > 1");
                }).endsWith("'Zn' has several columns: name one in full, as in \"Zn[1]\"."));
}

TEST_F(KufFilterData, errorsOfRuleTextsNameThePlace)
{
    const KufSampleFilterRuleText text(*points.getPointTable());
    const struct {
        QString text;
        int character;
        QString reason;
    } rows[] = {
        {"", 1, "the name of a variable is expected, with odd characters in double quotes."},
        {"5 > zinc", 1,
         "the name of a variable is expected, with odd characters in double quotes."},
        {"zink > 1", 1, "there is no variable 'zink'."},
        {"zinc", 5,
         "one of < <= > >= = != 'in', 'is defined', 'contains' and 'selected' is expected."},
        {"zinc >> 3", 7, "a number is expected."},
        {"zinc > 3 4", 10, "the end is expected instead of '4'."},
        {"zinc > 1,5", 9, "the end is expected instead of ',5'."},
        {"zinc > 1e999", 8, "'1e999' is no number, or none that can be held."},
        {"zinc > nan", 8, "'nan' is no number, or none that can be held."},
        {"zinc > 2 +- 1", 10, "only '=' and '!=' have a tolerance."},
        {"zinc in 3", 9, "'[', '(' or '{' is expected."},
        {"zinc in [1 2]", 12, "',' and the upper bound are expected."},
        {"zinc in [1, 2", 14, "']' or ')' is expected."},
        {"zinc is undefined", 9,
         "there is only 'is defined': negate it in the combination, as in 'not R1'."},
        {"zinc is small", 9, "'defined' is expected."},
        {"zinc = \"a\"", 6, "the variable 'zinc' is not a text."},
        {"name > 3", 6, "the variable 'name' is not a number."},
        {"name < \"a\"", 8, "a number is expected; texts have '=', '!=' and 'contains'."},
        {"name contains Bore", 15, "a text in double quotes is expected."},
        {"name = \"Bore", 8, "there is no end to this quoted text."},
        {"name = \"\\x\"", 9,
         "after '\\' one of \" \\ n r t, or u with four hexadecimal digits is expected."},
        {"name = \"\\u00", 9,
         "after '\\' one of \" \\ n r t, or u with four hexadecimal digits is expected."},
        {"\"land use\" in {Ag, Xx}", 12,
         "the variable 'land use' has no category 'Xx'; it has 'Ag', 'W', 'Ah', 'a b', '-1'."},
        {"\"land use\" in {Ag Ah}", 19, "',' or '}' is expected."},
        {"\"land use\" in {,}", 16, "the name of a category is expected."},
        {"\"land use\" != \"Ag\"", 15, "a category is selected by '=' or by 'in {…}'."},
        {"not zinc > 3", 5, "'selected' is expected; other rules are negated in the combination."},
        {"count selected", 7, "the variable 'count' is not a selection."},
        {"\"selected\" not", 15, "'selected' is expected."},
        {"selected 1", 10, "the end is expected instead of '1'."},
    };
    for (const auto& row : rows) {
        const QString error = errorOf<HbeUserError>([&] { text.parse(row.text); });
        EXPECT_EQ(error, QString("At character %1 of the rule '%2': %3")
                             .arg(QString::number(row.character), row.text, row.reason));
    }
}

TEST_F(KufFilterData, aPrintedRuleParsesToTheSameRule)
{
    const KufSampleFilterRuleText text(*points.getPointTable());
    const auto check = [&](const KudDatasetVariable& variable, const KufISampleFilterRule& rule) {
        const QString printed = text.print(variable, rule);
        const auto parsed = text.parse(printed);
        ASSERT_EQ(parsed.variable, variable) << printed.toStdString();
        ASSERT_TRUE(isSameRule(*parsed.rule, rule)) << printed.toStdString();
        ASSERT_FALSE(printed.contains('\n'));
    };
    for (int round = 0; round < 3000; ++round) {
        KufSampleFilter filter;
        random.addRule(filter);
        check(filter.getVariable(0), *filter.getRule(0));

        const quint64 bits = (quint64(random.engine()) << 32) | random.engine();
        double any = 0.0;
        std::memcpy(&any, &bits, sizeof any);
        if (!HbbGlobal::isUndefined(any))
            check(onPoints("zinc"), Numeric(Operator::EQUAL, any, any / 3));
        QString odd;
        for (int i = random.below(4); i >= 0; --i)
            odd += QChar(static_cast<ushort>(random.below(0x10000)));
        check(onPoints("name"), Alpha(Alpha::Mode::CONTAINS, odd));
    }
}
