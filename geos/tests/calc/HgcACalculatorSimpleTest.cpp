#include <geos/calc/HgcACalculatorSimple.h>

#include <basic/calc/HbcCancelled.h>
#include <basic/error/HbeProgrammingError.h>
#include <basic/error/HbeUserError.h>

namespace
{
class Calculator : public HgcACalculatorSimple
{
public:
    QMap<QString, int> counts; // variables by role
    int computed = 0;

    Calculator()
    {
        addInputRule({"V", 1, HgcInputRule::NO_LIMIT, {}});
        addInputRule({"W", 0, 1, {}});
    }
    using HgcACalculatorSimple::addInputRule;

protected:
    int _countInputs(const HgcInputRule& rule) const override { return counts.value(rule.role); }
    void _compute() override { ++computed; }
};
} // namespace

TEST(HgcACalculatorSimple, inputsAreCheckedBeforeAnythingIsComputed)
{
    const struct {
        int v;
        int w;
        const char* error;
    } rows[] = {
        {1, 0, ""},
        {1000, 1, ""},
        {0, 1, "Too few variables of role 'V': 0 given, at least 1 expected."},
        {1, 2, "Too many variables of role 'W': 2 given, at most 1 expected."},
    };
    for (const auto& row : rows) {
        Calculator calculator;
        calculator.counts = {{"V", row.v}, {"W", row.w}};
        const bool valid = QString(row.error).isEmpty();
        EXPECT_EQ(calculator.getInputError(), row.error);
        calculator.start();
        calculator.wait();
        EXPECT_EQ(calculator.computed, valid ? 1 : 0);
        EXPECT_EQ(calculator.getErrorText(), row.error);
        if (!valid) {
            EXPECT_THROW(calculator.rethrowError(), HbeUserError);
        }
    }
}

TEST(HgcACalculatorSimple, aCancelBeforeTheRunComputesNothing)
{
    Calculator calculator;
    calculator.counts["V"] = 1;
    calculator.requestCancel();
    EXPECT_FALSE(calculator.runInCurrentThread());
    EXPECT_EQ(calculator.computed, 0);
    EXPECT_THROW(calculator.rethrowError(), HbcCancelled);
}

TEST(HgcACalculatorSimple, limitsThatCannotBeMetAreRefused)
{
    Calculator calculator;
    EXPECT_THROW(calculator.addInputRule({"X", 2, 1, {}}), HbeProgrammingError);
    EXPECT_THROW(calculator.addInputRule({"X", -1, 1, {}}), HbeProgrammingError);
    EXPECT_EQ(calculator.getInputRules().size(), 2u);
}
