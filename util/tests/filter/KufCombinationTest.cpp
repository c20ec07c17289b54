#include "KufFilterFixture.h"

#include <util/filter/KufSampleFilterCombinationValidator.h>
#include <util/filter/KufSampleFilterDefaultCombination.h>
#include <util/filter/KufSampleFilterPythonVisitor.h>

namespace
{
KufSampleFilter filterOf(int ruleCount, const QString& combination)
{
    KufSampleFilter filter;
    for (int i = 0; i < ruleCount; ++i)
        filter.addRule(onPoints("v" + QString::number(i + 1)), Selection());
    filter.setCombination(combination);
    return filter;
}

/// The tree as text, from the Python form: (R1) & (R2).
QString treeOf(const KufSampleFilter& filter)
{
    QString text = KufSampleFilterPythonVisitor(&filter, nullptr, filter.getVariables(), "d")
                       .getPythonString();
    return text.remove("d['v").remove("'] == 1");
}

QString repeated(const QString& text, int count)
{
    return text.repeated(count);
}
} // namespace

TEST(KufCombination, theDefaultIsAllRules)
{
    EXPECT_EQ(treeOf(filterOf(0, "")), "");
    EXPECT_EQ(KufSampleFilterDefaultCombination(nullptr)._checkCombination(), "");
    for (const auto& [count, text] :
         {std::pair{0, ""}, std::pair{1, "R1"}, std::pair{3, "R1 and R2 and R3"}}) {
        for (const char* combination : {"", " \n"}) {
            const KufSampleFilter filter = filterOf(count, combination);
            EXPECT_EQ(KufSampleFilterDefaultCombination(&filter)._checkCombination(), text);
            EXPECT_EQ(KufSampleFilterCombinationValidator(&filter)._checkCombination(), text);
        }
    }
}

TEST(KufCombination, wellFormedTexts)
{
    const struct {
        QString text, normal, tree; // of 12 rules
    } rows[] = {
        {"not(R1 or R2)", "not ( R1 or R2 )", "~ ((1) | (2))"},
        {" R1\tAND\nr02 ", "R1 and R2", "(1) & (2)"},
        {"R1 or R2 and not R3", "R1 or R2 and not R3", "(1) | ((2) & (~ (3)))"},
        {"not R1 and R2 or R3", "not R1 and R2 or R3", "((~ (1)) & (2)) | (3)"},
        {"R1 or R2 or R3", "R1 or R2 or R3", "((1) | (2)) | (3)"},
        {"R1 and R2 and R3", "R1 and R2 and R3", "((1) & (2)) & (3)"},
        {"(R1 or R2)and(R12)", "( R1 or R2 ) and ( R12 )", "((1) | (2)) & (12)"},
        {"Not NOT((R1))", "not not ( ( R1 ) )", "~ (~ (1))"},
        {"not(R1)or not R1", "not ( R1 ) or not R1", "(~ (1)) | (~ (1))"},
    };
    for (const auto& row : rows) {
        const KufSampleFilter filter = filterOf(12, row.text);
        const KufSampleFilterCombinationValidator validator(&filter);
        EXPECT_EQ(validator.getError(), "");
        EXPECT_EQ(validator.getErrorPosition(), -1);
        EXPECT_EQ(validator._checkCombination(), row.normal);
        EXPECT_EQ(treeOf(filter), row.tree);
    }
}

TEST(KufCombination, malformedTexts)
{
    const struct {
        QString text;
        int position;
        QString accepted, reason; // of 2 rules
    } rows[] = {
        {"R3", 0, "", "there is no rule 'R3', the last one is 'R2'."},
        {"R1 or R0", 6, "R1 or", "there is no rule 'R0', the last one is 'R2'."},
        {"R99999999999", 0, "", "there is no rule 'R99999999999', the last one is 'R2'."},
        {"R1and R2", 0, "", "'R1and' is neither a rule nor 'and', 'or', 'not', '(' or ')'."},
        {"R1 & R2", 3, "R1", "'&' is neither a rule nor 'and', 'or', 'not', '(' or ')'."},
        {"R1 R2", 3, "R1", "'and', 'or' or ')' is expected before 'R2'."},
        {"R1 not R2", 3, "R1", "'and', 'or' or ')' is expected before 'not'."},
        {"R1 (R2)", 3, "R1", "'and', 'or' or ')' is expected before '('."},
        {"and R1", 0, "", "a rule, 'not' or '(' is expected instead of 'and'."},
        {"R1 or or R2", 6, "R1 or", "a rule, 'not' or '(' is expected instead of 'or'."},
        {"(R1 and)", 7, "( R1 and", "a rule, 'not' or '(' is expected instead of ')'."},
        {"R1 and", 6, "R1 and", "a rule, 'not' or '(' is expected at the end."},
        {"not ", 4, "not", "a rule, 'not' or '(' is expected at the end."},
        {"R1 or ( )", 8, "R1 or (", "there is nothing between the parentheses."},
        {"((R1)", 0, "( ( R1 )", "there is no ')' for this '('."},
        {"R1)", 2, "R1", "there is no '(' for this ')'."},
        {"\u00e9", 0, "", "'\u00e9' is neither a rule nor 'and', 'or', 'not', '(' or ')'."},
    };
    for (const auto& row : rows) {
        const KufSampleFilter filter = filterOf(2, row.text);
        const KufSampleFilterCombinationValidator validator(&filter);
        const QString error = QString("At character %1 of the combination: ").arg(row.position + 1);
        EXPECT_EQ(validator.getError(), error + row.reason);
        EXPECT_EQ(validator.getErrorPosition(), row.position);
        EXPECT_EQ(validator._checkCombination(), row.accepted);
        EXPECT_EQ(errorOf<HbeUserError>([&] { treeOf(filter); }), validator.getError());
    }
    const KufSampleFilter empty = filterOf(0, "R1");
    EXPECT_TRUE(KufSampleFilterCombinationValidator(&empty).getError().endsWith(
        "there is no rule 'R1': the filter has none."));
}

TEST(KufCombination, depthAndLengthAreBounded)
{
    const auto errorAt = [](const QString& text) {
        const KufSampleFilter filter = filterOf(1, text);
        return KufSampleFilterCombinationValidator(&filter).getErrorPosition();
    };
    EXPECT_EQ(errorAt(repeated("(", 100) + "R1" + repeated(")", 100)), -1);
    EXPECT_EQ(errorAt(repeated("(", 101) + "R1" + repeated(")", 101)), 100);
    EXPECT_EQ(errorAt(repeated("not ", 100) + "R1"), -1);
    EXPECT_EQ(errorAt(repeated("not(", 500000)), 200);
    // Only what is open counts.
    EXPECT_EQ(errorAt(repeated("not(R1) or ", 1000) + "R1"), -1);
    EXPECT_EQ(errorAt("R1" + repeated(" or R1", 4999)), -1);
    EXPECT_EQ(errorAt("R1" + repeated(" or R1", 5000)), 2 + 6 * 4999 + 4);
}
