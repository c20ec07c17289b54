// A filter has two evaluators: the bit array, and its Python text on the columns that the package
// `kelvane` reads from the project's files. They select the same samples.
#include "KufFilterFixture.h"

#include <util/dataset/KudDatasetDirectory.h>
#include <util/filter/KufSampleFilterPythonVisitor.h>
#include <util/filter/KufSampleFilterQBitArrayVisitor.h>
#include <util/xml/KuxXmlMementoFile.h>

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QProcess>

namespace
{
const QStringList LABELS = {"Ag",         "it's",   "back\\slash", "%1", "%99", "line\nend",
                            "\"Zürich\"", "𝄞 clef", " ",           "a",  "",    "BogusString "};

/// Columns whose names and values try what may go wrong on the way.
class KufPythonProject : public KufFilterData
{
protected:
    KufPythonProject()
    {
        const struct {
            HbdEVarType type;
            const char* name;
            const char* index;
            const char* component;
        } columns[] = {
            {HbdEVarType::REAL, "zinc", "", ""},
            {HbdEVarType::REAL, "it's \\ %1", "", ""},
            {HbdEVarType::REAL_32, "Pb", "1", ""},
            {HbdEVarType::REAL_32, "Pb", "10", "mean"},
            {HbdEVarType::INTEGER, "count", "", "%99"},
            {HbdEVarType::INTEGER, "whole\nnumber", "", ""},
            {HbdEVarType::DATE, "Tag der Prüfung", "", ""},
            {HbdEVarType::ALPHA_CHANNEL, "opacity", "", ""},
            {HbdEVarType::SELECTION, "selected", "", ""},
            {HbdEVarType::TEXT, "name", "", ""},
            {HbdEVarType::TEXT, "']#", "", ""},
            {HbdEVarType::CATEGORY, "land use", "2", ""},
            {HbdEVarType::COLOR, "tint", "", ""},
        };
        HbdDataTable table;
        for (const auto& column : columns) {
            auto variable = HbdAVariable::create(HbdVariableDetails(column.name, column.type));
            variable->setRealization(column.index);
            variable->setComponent(column.component);
            variable->resize(COUNT);
            const bool isWhole = QString(column.name).startsWith("whole");
            for (int i = 0; i < COUNT; ++i) {
                if (isWhole || random.below(8) > 0)
                    variable->setVariant(i, smallCell(column.type));
            }
            if (auto* categories = dynamic_cast<HbdVariableEnum*>(variable.get()))
                fillCategories(*categories);
            names << KudDatasetVariable::createComponent("Points", column.name, column.index,
                                                         column.component);
            types << column.type;
            table.addVariable(std::move(variable));
        }
        points.setDataTable(std::move(table));
        KudDatasetDirectory(project.path()).save(points);
    }

    /// NumPy compares integers as reals, so beyond 2^53 they would be others.
    QVariant smallCell(const HbdEVarType& type)
    {
        const bool isInteger = type == HbdEVarType::INTEGER || type == HbdEVarType::DATE;
        return isInteger ? random.oneOf<qint64>({-3, -1, 0, 1, 2, 255, Q_INT64_C(1) << 53})
                         : cell(type);
    }

    void fillCategories(HbdVariableEnum& column)
    {
        HbdEnumCatalog catalog;
        for (int i = 0; i < LABELS.size(); ++i)
            catalog.addCategory(static_cast<quint16>(i * i), LABELS.at(i));
        column.setCatalog(catalog);
        for (int i = 0; i < COUNT; ++i) { // half of the codes have no category
            const int rank = random.below(LABELS.size());
            const int code = rank * rank + random.below(2);
            column.set(i, random.below(20) == 0 ? HbdEnumCatalog::UNDEFINED_CODE
                                                : static_cast<quint16>(code));
        }
    }

    QSharedPointer<KufISampleFilterRule> ruleOn(const HbdEVarType& type)
    {
        const bool isDefined = random.below(8) == 0;
        switch (type.toEnum()) {
        case HbdEVarType::E_TEXT:
            return isDefined ? Numeric().duplicate() : random.alpha().duplicate();
        case HbdEVarType::E_CATEGORY: {
            QStringList labels;
            for (const QString& label : LABELS) {
                if (random.below(4) == 0)
                    labels << label;
            }
            return isDefined ? Numeric().duplicate() : Categories(labels).duplicate();
        }
        case HbdEVarType::E_COLOR:
            return Numeric().duplicate();
        case HbdEVarType::E_SELECTION:
            if (random.below(2) == 0)
                return Selection(random.below(2) == 0).duplicate();
            return random.numeric().duplicate();
        default:
            return random.numeric().duplicate();
        }
    }

    KufSampleFilter anyFilter(const QString& name)
    {
        KufSampleFilter filter(name);
        const int count = 1 + random.below(4) + (random.below(6) == 0 ? 10 : 0); // R1 beside R10
        for (int i = 0; i < count; ++i) {
            const int column = random.below(names.size());
            filter.addRule(names.at(column), *ruleOn(types.at(column)));
        }
        filter.setCombination(random.combination(count));
        return filter;
    }

    /// Its path. No file of XML holds the character 0.
    QString save(const KufSampleFilter& filter)
    {
        for (int i = 0; i < filter.getRuleCount(); ++i) {
            const auto* alpha = dynamic_cast<const Alpha*>(filter.getRule(i));
            if (alpha != nullptr && alpha->getText().contains(QChar(0)))
                return QString();
        }
        KuxXmlMementoFile::save(QDir(project.path()), filter.getMemento());
        return QDir(project.path()).filePath(KuxXmlMementoFile::getFileName(filter.getId()));
    }

    QTemporaryDir project;
    QList<KudDatasetVariable> names;
    QList<HbdEVarType> types;
};

/// A Python with these modules, or an empty text.
QString pythonWith(const QString& modules)
{
    const QString program = qEnvironmentVariable("KELVANE_PYTHON", "/usr/bin/python3");
    QProcess process;
    process.start(program, {"-c", "import " + modules});
    return process.waitForFinished() && process.exitCode() == 0 ? program : QString();
}

/// What a Python program with our package prints; a failure of the test unless it ends well.
QByteArray outputOf(const QString& program, const QStringList& arguments, const QByteArray& input)
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("PYTHONPATH", qEnvironmentVariable("KELVANE_SOURCE_DIR") + "/python");
    environment.insert("PYTHONDONTWRITEBYTECODE", "1");
    process.setProcessEnvironment(environment);
    process.start(program, arguments);
    process.write(input);
    process.closeWriteChannel();
    EXPECT_TRUE(process.waitForFinished(300000));
    EXPECT_EQ(process.exitCode(), 0) << process.readAllStandardError().toStdString();
    return process.readAllStandardOutput();
}

/// 12 decimals say all that the numbers of the rules say.
bool isExactWithDecimals(const KufSampleFilter& filter)
{
    const auto isExact = [](double v) { return QString::number(v, 'f', 12).toDouble() == v; };
    for (int i = 0; i < filter.getRuleCount(); ++i) {
        const auto* rule = dynamic_cast<const Numeric*>(filter.getRule(i));
        if (rule == nullptr)
            continue;
        for (const double number :
             {rule->getCompareValue(), rule->getCompareValue() - rule->getTolerance(),
              rule->getCompareValue() + rule->getTolerance(), rule->getLowerBound(),
              rule->getUpperBound()}) {
            if (std::isfinite(number) && !isExact(number))
                return false;
        }
    }
    return true;
}

const char SCRIPT[] = R"(
import json, sys
import kelvane
task = json.load(sys.stdin)
survey = kelvane.Project(task['project']).dataset('survey')
for row in task['rows']:
    found = [survey.evaluate(text, 'd') for text in row['texts']]
    if row['path']:
        found.append(survey.select(kelvane.SampleFilter.read(row['path'])))
    print(*((bits.astype('u1') + 48).tobytes().decode() for bits in found))
)";
} // namespace

TEST_F(KufPythonProject, pythonSelectsWhatTheBitArraySelects)
{
    const QString python = pythonWith("numpy, zstandard");
    if (python.isEmpty())
        GTEST_SKIP() << "python3 with NumPy and zstandard is not installed";
    QJsonArray rows;
    QList<QByteArray> expected;
    int plainCount = 0;
    for (int round = 0; round < 500; ++round) {
        const KufSampleFilter filter = anyFilter("f");
        const QList<KudDatasetVariable> variables = filter.getVariables();
        const KufSampleFilterPythonVisitor texts(&filter, &points, variables, "d");
        QJsonArray forms = {texts.getEscapedPythonString()};
        if (texts.findQuotingFaults().isEmpty() && isExactWithDecimals(filter))
            forms.append(texts.getPythonString());
        plainCount += forms.size() - 1;
        const QString path = round % 5 == 0 ? save(filter) : QString();
        rows.append(QJsonObject{{"texts", forms}, {"path", path}});

        const QBitArray bits =
            KufSampleFilterQBitArrayVisitor(&filter, &points, variables).getSelection();
        QByteArray line;
        for (int rank = 0; rank < COUNT; ++rank)
            line += bits.testBit(rank) ? '1' : '0';
        QList<QByteArray> evaluations;
        for (int i = 0; i < forms.size() + !path.isEmpty(); ++i)
            evaluations << line;
        expected << evaluations.join(' ');
    }
    EXPECT_GT(plainCount, 200);
    const QJsonObject task{{"project", project.path()}, {"rows", rows}};
    const QList<QByteArray> found =
        outputOf(python, {"-W", "error", "-c", SCRIPT}, QJsonDocument(task).toJson()).split('\n');
    ASSERT_EQ(found.size(), expected.size() + 1);
    for (int i = 0; i < expected.size(); ++i)
        ASSERT_EQ(found.at(i), expected.at(i))
            << QJsonDocument(rows.at(i).toObject()).toJson().toStdString();
}

TEST_F(KufPythonProject, aClusterCountsWhatTheBitArrayCounts)
{
    const QString python = pythonWith("numpy, zstandard, dask.array, distributed");
    if (python.isEmpty())
        GTEST_SKIP() << "python3 with NumPy, zstandard and Dask is not installed";
    QStringList arguments = {qEnvironmentVariable("KELVANE_SOURCE_DIR") +
                                 "/examples/python/select_on_cluster.py",
                             project.path(), "survey", "--partition", "300"};
    QByteArray expected;
    while (expected.count('\n') < 12) {
        const QString name = "f" + QString::number(expected.count('\n'));
        const KufSampleFilter filter = anyFilter(name);
        if (save(filter).isEmpty())
            continue;
        const KufSampleFilterQBitArrayVisitor bits(&filter, &points, filter.getVariables());
        expected +=
            QByteArray::number(bits.getSelection().count(true)) + '\t' + name.toUtf8() + '\n';
        arguments << name;
    }
    EXPECT_EQ(outputOf(python, arguments, QByteArray()), expected);
}
