#include "ToolCommandLine.h"
#include "ToolCommands.h"
#include "ToolJson.h"
#include "ToolOutput.h"
#include "ToolProject.h"
#include "ToolSelection.h"
#include "ToolTable.h"
#include "ToolText.h"
#include "ToolUsageError.h"

#include <util/dataset/KudADataTable.h>
#include <util/dataset/KudADataset.h>
#include <util/dataset/KudSelector.h>
#include <util/filter/KufISampleFilterRule.h>
#include <util/filter/KufSampleFilterCombinationValidator.h>
#include <util/filter/KufSampleFilterDirectory.h>
#include <util/filter/KufSampleFilterPythonVisitor.h>
#include <util/filter/KufSampleFilterRuleText.h>

namespace
{
const QString SAVE = QStringLiteral("save");
const QString REPLACE = QStringLiteral("replace");
const QString MASK = QStringLiteral("mask");
const QString UNMASK = QStringLiteral("unmask");
const QString COUNT = QStringLiteral("count");
const QString PYTHON = QStringLiteral("python");
const QString DESCRIBE = QStringLiteral("describe");
const QString JSON = QStringLiteral("json");

/// A filter and the samples of a dataset that pass it.
struct Selection {
    KufSampleFilter filter;
    QStringList combination; ///< its words in the normal form
    QStringList rules;       ///< as text, one a rule
    QStringList words;       ///< the same described for people
    QVector<int> passing;    ///< how many samples pass each rule
    QBitArray kept;
};

void checkUsage(const QCommandLineParser& line)
{
    ToolSelection::checkUsage(line);
    ToolCommandLine::checkExclusive(line, {SAVE, MASK, UNMASK},
                                    Tool::tr("one run does one of them. A filter that is saved "
                                             "makes a mask with --filter NAME --mask."));
    for (const QString& option : {COUNT, PYTHON, DESCRIBE})
        ToolCommandLine::checkExclusive(line, {JSON, option}, Tool::tr("--json has all."));
    for (const QString& option :
         {QStringLiteral("rule"), QStringLiteral("filter"), COUNT, PYTHON, DESCRIBE, JSON})
        ToolCommandLine::checkExclusive(line, {UNMASK, option}, Tool::tr("--unmask stands alone."));
    if (line.isSet(REPLACE) && !line.isSet(SAVE))
        throw ToolUsageError(Tool::tr("--replace says that --save NAME may replace a filter."));
    if (!ToolSelection::hasFilter(line) && !line.isSet(UNMASK))
        throw ToolUsageError(Tool::tr("Nothing to select by: give --rule TEXT or --filter NAME."));
}

/// With blanks between the words, but none inside of parentheses.
QString joined(const QStringList& words)
{
    QString text;
    for (const QString& word : words) {
        const bool isFirst = text.isEmpty() || text.endsWith(QLatin1Char('('));
        text += (isFirst || word == QLatin1String(")") ? QString() : QStringLiteral(" ")) + word;
    }
    return text;
}

/// The combination with each rule in words.
QString describe(const Selection& selection)
{
    QStringList words;
    for (const QString& word : selection.combination) {
        const bool isRule = word.startsWith(QLatin1Char('R'));
        const QString text = isRule ? selection.words.value(word.midRef(1).toInt() - 1) : word;
        const bool isNegated = isRule && !words.isEmpty() && words.last() == QLatin1String("not");
        words.append(isNegated ? QLatin1Char('(') + text + QLatin1Char(')') : text);
    }
    return words.isEmpty() ? Tool::tr("all samples") : joined(words);
}

Selection select(const QCommandLineParser& line, const QString& project, const KudADataset& dataset)
{
    Selection selection;
    selection.filter = ToolSelection::readFilter(line, project, dataset);
    const KufSampleFilter& filter = selection.filter;
    selection.combination = KufSampleFilterCombinationValidator(&filter).getCombination().split(
        QLatin1Char(' '), Qt::SkipEmptyParts);
    const KufSampleFilterRuleText text(*dataset.getObjectTable());
    for (int i = 0; i < filter.getRuleCount(); ++i) {
        const KudDatasetVariable variable = filter.getVariable(i);
        const KufISampleFilterRule& rule = *filter.getRule(i);
        KufSampleFilter alone;
        alone.addRule(variable, rule);
        selection.rules.append(text.print(variable, rule));
        selection.words.append(rule.getDescription(dataset.getVariableDetails(variable)));
        selection.passing.append(ToolSelection::evaluate(alone, dataset).count(true));
    }
    selection.kept = ToolSelection::evaluate(filter, dataset);
    return selection;
}

/// False for a new name.
bool save(const QCommandLineParser& line, const QString& project, const KufSampleFilter& selected)
{
    const QString name = line.value(SAVE);
    const KufSampleFilterDirectory directory(project);
    const bool isKnown = directory.findName(name).isValid();
    if (isKnown && !line.isSet(REPLACE)) {
        throw HbeUserError(Tool::tr("The project '%1' has a sample filter '%2' already.\n"
                                    "Give another name, or replace it with --replace.")
                               .arg(project, name));
    }
    KufSampleFilter filter(name); // with an identity of its own
    for (int i = 0; i < selected.getRuleCount(); ++i)
        filter.addRule(selected.getVariable(i), *selected.getRule(i));
    filter.setCombination(selected.getCombination());
    directory.replace(filter);
    const QString told = isKnown ? Tool::tr("Replaced the sample filter '%1' of the project '%2'.")
                                 : Tool::tr("Saved the sample filter '%1' into the project '%2'.");
    ToolOutput::printNote(told.arg(name, project));
    return isKnown;
}

void saveMask(const KudDatasetDirectory& project, const KudADataset& dataset)
{
    project.save(dataset);
    ToolOutput::printNote(Tool::tr("%1 of %2 samples of '%3' are masked.")
                              .arg(QString::number(dataset.getMask().count(true)),
                                   QString::number(dataset.getObjectCount()), dataset.getName()));
}

/// The plain form, where it means what the rules mean.
QString getPython(const KufSampleFilter& filter, const KudADataset& dataset)
{
    const KufSampleFilterPythonVisitor visitor(&filter, &dataset, filter.getVariables(), QString());
    const QStringList faults = visitor.findQuotingFaults() + visitor.findRoundedNumbers();
    for (const QString& fault : faults)
        ToolOutput::printNote(fault);
    if (faults.isEmpty())
        return visitor.getPythonString();
    ToolOutput::printNote(
        Tool::tr("So the expression is in the form with escapes and all digits."));
    return visitor.getEscapedPythonString();
}

QString percentText(int count, int all)
{
    return QString::number(all == 0 ? 0.0 : 100.0 * count / all, 'f', 1);
}

QString toText(const Selection& selection, const KudADataset& dataset)
{
    const int all = selection.kept.size();
    const int count = selection.kept.count(true);
    ToolTable table(
        {Tool::tr("rule"), Tool::tr("condition"), Tool::tr("samples"), Tool::tr("percent")});
    table.alignRight(2, 3);
    for (int i = 0; i < selection.rules.size(); ++i) {
        const int passing = selection.passing.at(i);
        table.addRow({KufISampleFilter::getRuleName(i), selection.rules.at(i),
                      QString::number(passing), percentText(passing, all)});
    }
    table.addRow({Tool::tr("all"), joined(selection.combination), QString::number(count),
                  percentText(count, all)});
    return Tool::tr("%1: %2 of %3 samples pass\n\n")
               .arg(ToolText::makeVisible(dataset.getName()), QString::number(count),
                    QString::number(all)) +
           table.toText(2) + QLatin1Char('\n') + ToolText::makeVisible(describe(selection)) +
           QLatin1Char('\n');
}

QByteArray toJson(const QString& project, const Selection& selection, const KudADataset& dataset)
{
    ToolJson json;
    json.beginObject();
    json.key("project").value(project);
    json.key("dataset").value(dataset.getName());
    json.key("count").value(qint64(selection.kept.size()));
    json.key("passing").value(qint64(selection.kept.count(true)));
    json.key("masked").value(qint64(dataset.getMask().count(true)));
    json.key("rules").beginArray();
    for (int i = 0; i < selection.rules.size(); ++i) {
        json.beginObject();
        json.key("rule").value(KufISampleFilter::getRuleName(i));
        json.key("text").value(selection.rules.at(i));
        json.key("description").value(selection.words.at(i));
        json.key("passing").value(qint64(selection.passing.at(i)));
        json.endObject();
    }
    json.endArray();
    json.key("combination").value(joined(selection.combination));
    json.key("description").value(describe(selection));
    json.key("python").value(getPython(selection.filter, dataset));
    json.endObject();
    return json.toByteArray();
}

/// What the options ask for, a line each; the table without them.
QString answer(const QCommandLineParser& line, const Selection& selection,
               const KudADataset& dataset)
{
    QStringList lines;
    if (line.isSet(COUNT))
        lines.append(QString::number(selection.kept.count(true)));
    if (line.isSet(PYTHON))
        lines.append(getPython(selection.filter, dataset));
    if (line.isSet(DESCRIBE))
        lines.append(ToolText::makeVisible(describe(selection)));
    return lines.isEmpty() ? toText(selection, dataset)
                           : lines.join(QLatin1Char('\n')) + QLatin1Char('\n');
}

int run(const QCommandLineParser& line)
{
    checkUsage(line);
    const QString path = line.positionalArguments().at(0);
    const KudDatasetDirectory project(path);
    const auto dataset = ToolProject::readDataset(project, line.positionalArguments().at(1));
    if (line.isSet(UNMASK)) {
        dataset->unmaskAll();
        saveMask(project, *dataset);
        return ExitDone;
    }
    const Selection selection = select(line, path, *dataset);
    if (line.isSet(SAVE))
        save(line, path, selection.filter);
    if (line.isSet(MASK)) {
        dataset->getObjectTable()->getMask()->setBitArray(~selection.kept);
        saveMask(project, *dataset);
    }
    if (line.isSet(JSON))
        ToolOutput::print(toJson(path, selection, *dataset));
    else
        ToolOutput::print(answer(line, selection, *dataset));
    return ExitDone;
}
} // namespace

ToolCommand createSelectCommand()
{
    ToolCommand command;
    command.name = QStringLiteral("select");
    command.arguments = QStringLiteral("DIR DATASET");
    command.summary = Tool::tr("Counts the samples that pass rules; keeps them as filter or mask.");
    command.details = Tool::tr(
        "A rule is a condition on a variable: zinc > 300, lead = 2 +- 0.5, dist in [0, 0.2), om "
        "is defined, name contains \"Bore\", landuse in {Ag, Ah}, selected. Odd names stand in "
        "double quotes. Numbers are in the unit that values are stored in. An undefined value "
        "fails every rule.\n"
        "With --mask the samples that pass are kept, and all others become masked: 'kelvane "
        "export --masked' then writes what passed.");
    command.example = QStringLiteral(
        "kelvane select survey samples --rule \"zinc > 300\"\n"
        "kelvane select survey samples --rule \"zinc > 300\" --rule \"x < 2\" --combine \"R1 or "
        "R2\" --save rich\n"
        "kelvane select survey samples --filter rich --mask");
    command.options = ToolSelection::getFilterOptions();
    command.options += {
        {SAVE, QStringLiteral("NAME"), Tool::tr("Keeps the rules in the project as a filter.")},
        {REPLACE, QString(), Tool::tr("Lets --save replace the filter of that name.")},
        {MASK, QString(), Tool::tr("Masks the samples that do not pass, and no others.")},
        {UNMASK, QString(), Tool::tr("No sample is masked any more.")},
        {COUNT, QString(), Tool::tr("Prints how many samples pass, and no table.")},
        {PYTHON, QString(), Tool::tr("Prints the rules as an expression of Python with NumPy.")},
        {DESCRIBE, QString(),
         Tool::tr("Prints the rules in words. These three together: a line each.")},
        {JSON, QString(), Tool::tr("One JSON document.")},
    };
    command.minArguments = 2;
    command.maxArguments = 2;
    command.run = &run;
    return command;
}
