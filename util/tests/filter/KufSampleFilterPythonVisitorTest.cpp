#include "KufFilterFixture.h"

#include <util/filter/KufSampleFilterPythonVisitor.h>
#include <util/filter/KufSampleFilterQBitArrayVisitor.h>

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QProcess>
#include <QtCore/QStandardPaths>

namespace
{
struct Python {
    explicit Python(const KufSampleFilter& filter, const QString& mapping = "d")
        : visitor(&filter, nullptr, filter.getVariables(), mapping)
    {
    }
    KufSampleFilterPythonVisitor visitor;
};

/// A Python with NumPy, or an empty text.
QString pythonWithNumPy()
{
    for (const QString& name :
         {QStandardPaths::findExecutable("python3"), QString("/usr/bin/python3")}) {
        QProcess process;
        process.start(name, {"-c", "import numpy"});
        if (process.waitForFinished() && process.exitCode() == 0)
            return name;
    }
    return QString();
}
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

TEST(KufSampleFilterPythonVisitor, combinationsNest)
{
    KufSampleFilter filter;
    EXPECT_EQ(Python(filter).visitor.getPythonString(), "");
    for (int i = 1; i <= 10; ++i)
        filter.addRule(KudDatasetVariable::createRealization("Points", "v", QString::number(i)),
                       Selection());
    filter.setCombination("not(R1 or R10) and R2");
    EXPECT_EQ(Python(filter, "").visitor.getPythonString(),
              "(~ ((data['v[1]'] == 1) | (data['v[10]'] == 1))) & (data['v[2]'] == 1)");
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

// NumPy evaluates the escaped form on the same data: it selects what the bit array selects.
TEST_F(KufFilterData, numPyAgreesWithTheBitArray)
{
    const QString program = pythonWithNumPy();
    if (program.isEmpty())
        GTEST_SKIP() << "python3 with NumPy is not installed";
    QJsonObject columns;
    for (const char* name : {"zinc", "Pb[1].x", "opacity", "selected", "name", "land use"}) {
        const HbdAVariable& column = *points.readValues(onPoints(name));
        const auto* categories = dynamic_cast<const HbdVariableEnum*>(&column);
        const bool isText = categories != nullptr || column.getType() == HbdEVarType::TEXT;
        QJsonArray cells;
        for (int i = 0; i < COUNT; ++i) {
            QVariant cell = categories ? QVariant(categories->getLabel(i)) : column.getVariant(i);
            if (isText) { // as numbers: JSON would lose what is no Unicode
                QJsonArray units;
                for (const QChar c : cell.toString())
                    units.append(int(c.unicode()));
                cells.append(cell.toString().isNull() ? QJsonValue() : QJsonValue(units));
            } else {
                cells.append(cell.isValid() ? QString::number(cell.toDouble(), 'g', 17) : "nan");
            }
        }
        columns[name] = cells;
    }
    QJsonArray expressions;
    QVector<QBitArray> expected;
    while (expected.size() < 300) {
        const KufSampleFilter filter = randomFilter();
        const QList<KudDatasetVariable> variables = filter.getVariables();
        bool isKnown = true; // integers beyond 2^53 are no doubles; texts have no isnan
        for (int i = 0; i < variables.size(); ++i) {
            const auto* numeric = dynamic_cast<const Numeric*>(filter.getRule(i));
            const bool isText = points.readNumericValues(variables.at(i)) == nullptr &&
                                variables.at(i) != onPoints("selected") &&
                                variables.at(i) != onPoints("opacity");
            isKnown &= columns.contains(variables.at(i).getFullVariableName()) &&
                       !(numeric != nullptr && isText);
        }
        if (!isKnown)
            continue;
        expressions.append(KufSampleFilterPythonVisitor(&filter, &points, variables, "data")
                               .getEscapedPythonString());
        expected << KufSampleFilterQBitArrayVisitor(&filter, &points, variables).getSelection();
    }
    const char* script = R"(
import json, sys
import numpy as np
class Texts:
    def __init__(self, cells): self.cells = cells
    def test(self, f): return np.array([c is not None and f(c) for c in self.cells], dtype=bool)
    def __eq__(self, other): return self.test(lambda c: c == other)
    def __ne__(self, other): return self.test(lambda c: c != other)
def qm_find(texts, part):
    return np.array([-1 if c is None else c.find(part) for c in texts.cells])
def column(cells):
    if any(isinstance(c, list) for c in cells):
        pack = lambda units: b''.join(u.to_bytes(2, 'little') for u in units)
        return Texts([None if c is None else pack(c).decode('utf-16-le', 'surrogatepass') for c in cells])
    return np.array([float(c) for c in cells])
task = json.load(sys.stdin)
data = {name: column(cells) for name, cells in task['columns'].items()}
for text in task['expressions']:
    print(''.join('1' if b else '0' for b in eval(text)))
)";
    QProcess python;
    python.start(program, {"-W", "error", "-c", script});
    python.write(
        QJsonDocument(QJsonObject{{"columns", columns}, {"expressions", expressions}}).toJson());
    python.closeWriteChannel();
    ASSERT_TRUE(python.waitForFinished(120000));
    EXPECT_EQ(QString::fromUtf8(python.readAllStandardError()), "");
    const QList<QByteArray> lines = python.readAllStandardOutput().split('\n');
    ASSERT_EQ(lines.size(), expected.size() + 1);
    for (int i = 0; i < expected.size(); ++i) {
        QByteArray bits;
        for (int rank = 0; rank < COUNT; ++rank)
            bits += expected.at(i).testBit(rank) ? '1' : '0';
        ASSERT_EQ(lines.at(i), bits) << expressions.at(i).toString().toStdString();
    }
}
