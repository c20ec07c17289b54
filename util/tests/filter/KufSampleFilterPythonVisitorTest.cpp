#include "KufFilterFixture.h"

#include <util/filter/KufSampleFilterPythonVisitor.h>

namespace
{
struct Python {
    explicit Python(const KufSampleFilter& filter, const QString& mapping = "d")
        : visitor(&filter, nullptr, filter.getVariables(), mapping)
    {
    }
    KufSampleFilterPythonVisitor visitor;
};
} // namespace

TEST(KufSampleFilterPythonVisitor, eachRuleHasItsTemplate)
{
    const Bound open = Bound::ITV_LESS_THAN;
    const Bound closed = Bound::ITV_LESS_OR_EQUAL_TO;
    const struct {
        QSharedPointer<KufISampleFilterRule> rule;
        QString expected; // "V" is the variable
    } rows[] = {
        {Selection().duplicate(), "V == 1"},
        {Selection(true).duplicate(), "V == 0"},
        {Numeric().duplicate(), "~ np.isnan(V)"},
        {Numeric(Operator::LESS_THAN, 2).duplicate(), "V < 2.000000000000"},
        {Numeric(Operator::LESS_OR_EQUAL_TO, 2).duplicate(), "V <= 2.000000000000"},
        {Numeric(Operator::GREATER_THAN, 1e-20).duplicate(), "V > 0.000000000000"},
        {Numeric(Operator::GREATER_OR_EQUAL_TO, -2).duplicate(), "V >= -2.000000000000"},
        {Numeric(Operator::EQUAL, 2, 0.5).duplicate(),
         "(V >= 1.500000000000) & (V <= 2.500000000000)"},
        {Numeric(Operator::NOT_EQUAL, 2, 0.5).duplicate(),
         "(V < 1.500000000000) | (V > 2.500000000000)"},
        {Numeric(0, open, 10, closed).duplicate(), "(0.000000000000 < V) & (V <= 10.000000000000)"},
        {Numeric(0, closed, std::numeric_limits<double>::infinity(), open).duplicate(),
         "(0.000000000000 <= V) & (V < np.inf)"},
        {Alpha(Alpha::Mode::CONTAINS, "%1%99").duplicate(), "qm_find(V,'%1%99') >= 0"},
        {Alpha(Alpha::Mode::EQUAL_TO, "O'Hara").duplicate(), "V == 'O'Hara'"},
        {Alpha(Alpha::Mode::NOT_EQUAL_TO, "").duplicate(), "V != ''"},
        {Categories().duplicate(), "(V == 'BogusString')"},
        {Categories({"%2"}).duplicate(), "(V == '%2')"},
        {Categories({"a", "%99"}).duplicate(), "(V == 'a') | (V == '%99')"},
    };
    for (const auto& row : rows) {
        for (const auto& [variable, shown] :
             {std::pair{"v", "d['v']"}, std::pair{"%99'\\%1", "d['%99\\'\\\\%1']"}}) {
            KufSampleFilter filter;
            filter.addRule(onPoints(variable), *row.rule);
            EXPECT_EQ(Python(filter).visitor.getPythonString(),
                      QString(row.expected).replace("V", shown));
        }
    }
}

TEST(KufSampleFilterPythonVisitor, textsThatBreakOutAreNamedAndEscaped)
{
    KufSampleFilter filter;
    filter.addRule(onPoints("v"), Alpha(Alpha::Mode::EQUAL_TO, "' or exit() #"));
    filter.addRule(onPoints("v"), Categories({"plain é \"𝄞\"", "a\\", "x\n"}));
    filter.addRule(onPoints("v"), Alpha(Alpha::Mode::CONTAINS, QString(QChar(0)) + QChar(0xdd1e)));
    filter.setCombination("R1 and R2 and R3 or R1");
    const Python python(filter);
    EXPECT_EQ(python.visitor.findQuotingFaults(),
              QStringList({"R1: the text '' or exit() #' holds the character ' (U+0027) at 1.",
                           "R2: the text 'a\\' holds the character \\ (U+005C) at 2.",
                           "R2: the text 'x\n' holds the character U+000A at 2.",
                           QString("R3: the text '%1%2' holds the character U+0000 at 1.")
                               .arg(QChar(0), QChar(0xdd1e))}));
    EXPECT_EQ(python.visitor.getEscapedPythonString(),
              "(((d['v'] == '\\' or exit() #') & ((d['v'] == 'plain é \"𝄞\"') | "
              "(d['v'] == 'a\\\\') | (d['v'] == 'x\\u000a'))) & "
              "(qm_find(d['v'],'\\u0000\\udd1e') >= 0)) | (d['v'] == '\\' or exit() #')");
}
