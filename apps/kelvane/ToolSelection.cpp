#include "ToolSelection.h"

#include "ToolCommandLine.h"
#include "ToolInterrupt.h"
#include "ToolOutput.h"
#include "ToolProject.h"
#include "ToolUsageError.h"

#include <util/calc/KucDataSets.h>
#include <util/dataset/KudADataTable.h>
#include <util/dataset/KudADataset.h>
#include <util/filter/KufSampleFilterCombinationValidator.h>
#include <util/filter/KufSampleFilterDirectory.h>
#include <util/filter/KufSampleFilterQBitArrayVisitor.h>
#include <util/filter/KufSampleFilterRuleNumeric.h>
#include <util/filter/KufSampleFilterRuleText.h>
#include <util/filter/KufSampleFilterValidator.h>

#include <QtCore/QRegularExpression>

namespace
{
const QString RULE = QStringLiteral("rule");
const QString COMBINE = QStringLiteral("combine");
const QString FILTER = QStringLiteral("filter");
const QString MASKED = QStringLiteral("masked");

const KudADataTable& requireTable(const KudADataset& dataset)
{
    const KudADataTable* table = dataset.getObjectTable();
    if (table == nullptr)
        throw HbeUserError(
            Tool::tr("The dataset '%1' has no table of samples.").arg(dataset.getName()));
    return *table;
}

/// Rules compare what is stored, which need not be what is shown.
void tellUnit(const QString& ruleName, const KufSampleFilterRuleText::Rule& parsed,
              const HbdVariableDetails& details)
{
    const auto* rule = dynamic_cast<const KufSampleFilterRuleNumeric*>(parsed.rule.data());
    if (rule == nullptr || rule->getMode() == KufSampleFilterRuleNumeric::Mode::IS_DEFINED ||
        details.unit == details.getShownUnit())
        return;
    ToolOutput::printNote(
        Tool::tr("%1 compares '%2' in %3, in which it is stored; it is shown in %4.")
            .arg(ruleName, parsed.variable.getFullVariableName(), details.unit.getSymbol(),
                 details.getShownUnit().getSymbol()));
}

/// What went wrong with a rule; where it begins with a name that is no variable's, with those there
/// are.
QString explain(const QString& rule, const QString& fault, const KudADataset& dataset)
{
    static const QRegularExpression beginning(
        QStringLiteral("^\\s*(?:\"([^\"\\\\]*)\"|([^\\W\\d][\\w.]*))"),
        QRegularExpression::UseUnicodePropertiesOption);
    const QRegularExpressionMatch match = beginning.match(rule);
    const QString name = match.captured(1) + match.captured(2);
    static const QStringList words = {QStringLiteral("not"), QStringLiteral("selected")};
    if (name.isEmpty() || words.contains(name.toLower()))
        return fault;
    try {
        ToolProject::findVariable(dataset, name);
        return fault;
    } catch (const HbeUserError& error) {
        return error.getMessage();
    }
}

KufSampleFilter parseRules(const QCommandLineParser& line, const KudADataset& dataset)
{
    const KufSampleFilterRuleText text(requireTable(dataset));
    KufSampleFilter filter;
    for (const QString& word : line.values(RULE)) {
        const QString name = KufISampleFilter::getRuleName(filter.getRuleCount());
        try {
            const KufSampleFilterRuleText::Rule parsed = text.parse(word);
            tellUnit(name, parsed, dataset.getVariableDetails(parsed.variable));
            filter.addRule(parsed.variable, *parsed.rule);
        } catch (const HbeUserError& error) {
            throw HbeUserError(
                QStringLiteral("%1: %2").arg(name, explain(word, error.getMessage(), dataset)));
        }
    }
    filter.setCombination(line.value(COMBINE));
    const KufSampleFilterCombinationValidator combination(&filter);
    if (!combination.isValid())
        throw HbeUserError(Tool::tr("--combine '%1': %2")
                               .arg(filter.getCombination().left(200), combination.getError()));
    return filter;
}

KufSampleFilter readStored(const QString& project, const QString& name)
{
    const KufSampleFilterDirectory directory(project);
    const KuuId id = directory.findName(name);
    if (id.isValid())
        return directory.read(id);
    QStringList known = directory.getNames();
    known.sort();
    throw HbeUserError(known.isEmpty()
                           ? Tool::tr("The project '%1' holds no sample filters: "
                                      "'kelvane select' with --save keeps one.")
                                 .arg(project)
                           : Tool::tr("The project '%1' has no sample filter '%2'%3\nIt has: %4")
                                 .arg(project, name, ToolCommandLine::getHint(name, known),
                                      known.join(QStringLiteral(", "))));
}

void requireFits(const KufSampleFilter& filter, const KudADataset& dataset)
{
    const KufSampleFilterValidator validator(&filter, &dataset, filter.getVariables());
    QStringList errors = validator.getErrors();
    if (errors.isEmpty() && validator.getTable() != &requireTable(dataset))
        errors.append(Tool::tr("Its rules are on the table '%1', and the samples are in '%2'.")
                          .arg(validator.getTable()->getName(), requireTable(dataset).getName()));
    if (!errors.isEmpty())
        throw HbeUserError(
            Tool::tr("The sample filter '%1' does not fit the dataset '%2':\n%3")
                .arg(filter.getName(), dataset.getName(), errors.join(QLatin1Char('\n'))));
}

HbiIntervalIntSmallDisjoint toRanks(const QBitArray& bits)
{
    HbiIntervalIntSmallDisjoint ranks;
    for (int rank = 0; rank < bits.size(); ++rank) {
        if (bits.testBit(rank))
            ranks.add(rank);
    }
    return ranks;
}
} // namespace

QVector<ToolOption> ToolSelection::getFilterOptions()
{
    return {
        {RULE, QStringLiteral("TEXT"),
         Tool::tr("A rule, as in \"zinc > 300\"; may be repeated: R1, R2 …")},
        {COMBINE, QStringLiteral("TEXT"),
         Tool::tr("How rules are combined, as in \"R1 and not (R2 or R3)\"; all of them by "
                  "default.")},
        {FILTER, QStringLiteral("NAME"),
         Tool::tr("The sample filter that the project keeps under this name.")},
    };
}

QVector<ToolOption> ToolSelection::getOptions()
{
    return getFilterOptions() << ToolOption{MASKED, QString(),
                                            Tool::tr("Only the samples that are not masked.")};
}

void ToolSelection::checkUsage(const QCommandLineParser& line)
{
    ToolCommandLine::checkExclusive(line, {RULE, FILTER, MASKED}, Tool::tr("give one of them."));
    if (line.isSet(COMBINE) && !line.isSet(RULE))
        throw ToolUsageError(
            Tool::tr("--combine says how rules are combined: give them with --rule TEXT."));
}

bool ToolSelection::hasFilter(const QCommandLineParser& line)
{
    return line.isSet(RULE) || line.isSet(FILTER);
}

bool ToolSelection::isRestricted(const QCommandLineParser& line)
{
    return hasFilter(line) || line.isSet(MASKED);
}

KufSampleFilter ToolSelection::readFilter(const QCommandLineParser& line, const QString& project,
                                          const KudADataset& dataset)
{
    if (line.isSet(RULE))
        return parseRules(line, dataset);
    const KufSampleFilter filter = readStored(project, line.value(FILTER));
    requireFits(filter, dataset);
    return filter;
}

QBitArray ToolSelection::evaluate(const KufSampleFilter& filter, const KudADataset& dataset)
{
    const KufSampleFilterQBitArrayVisitor visitor(&filter, &dataset, filter.getVariables());
    ToolInterrupt::check();
    return visitor.getSelection();
}

HbiIntervalIntSmallDisjoint ToolSelection::readRanks(const QCommandLineParser& line,
                                                     const QString& project,
                                                     const KudADataset& dataset)
{
    if (hasFilter(line))
        return toRanks(evaluate(readFilter(line, project, dataset), dataset));
    const int count = requireTable(dataset).getSampleCount();
    return line.isSet(MASKED) ? Kuc::getActiveSamples(dataset)
                              : HbiIntervalIntSmallDisjoint(HbiIntervalIntSmall(0, count - 1));
}
