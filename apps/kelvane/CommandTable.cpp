#include "ToolCommandLine.h"
#include "ToolCommands.h"
#include "ToolOutput.h"
#include "ToolProject.h"
#include "ToolSelection.h"
#include "ToolTable.h"
#include "ToolText.h"
#include "ToolUsageError.h"

#include <util/dataset/KudADataTable.h>
#include <util/dataset/KudADataset.h>
#include <util/dataset/KudSampleOrder.h>
#include <util/dataset/KudTableUtils.h>

#include <basic/data/HbdAVariable.h>
#include <basic/data/HbdVarTypeFlags.h>

#include <limits>

namespace
{
const QString FROM = QStringLiteral("from");
const QString COUNT = QStringLiteral("count");
const QString SORT = QStringLiteral("sort");
const QString DESCENDING = QStringLiteral("descending");

constexpr int DEFAULT_COUNT = 20;
constexpr int LONGEST_TEXT = 40; // columns of the terminal

using Columns = std::vector<const HbdAVariable*>;

bool isNumber(const HbdAVariable& column)
{
    return HbdVarTypeFlags::NUMERIC.contains(column.getType());
}

/// The ranks of the samples that the options keep, in the order that --sort asks for.
std::vector<int> readRanks(const QCommandLineParser& line, const KudADataset& dataset)
{
    const HbiIntervalIntSmallDisjoint kept =
        ToolSelection::readRanks(line, line.positionalArguments().at(0), dataset);
    std::vector<int> ranks;
    ranks.reserve(static_cast<std::size_t>(kept.getCount()));
    for (const HbiIntervalIntSmall& interval : kept.intervals()) {
        for (int rank = interval.getMin(); rank <= interval.getMax(); ++rank)
            ranks.push_back(rank);
    }
    if (line.isSet(SORT)) {
        const KudDatasetVariable variable = ToolProject::findVariable(dataset, line.value(SORT));
        KudSampleOrder::sort(ranks, *dataset.readValues(variable),
                             line.isSet(DESCENDING) ? Qt::DescendingOrder : Qt::AscendingOrder);
    }
    return ranks;
}

QString cellText(const HbdAVariable& column, int rank)
{
    const QString text = KudTableUtils::valueToRole(Qt::DisplayRole, column, rank).toString();
    // A number that is cut would be another one.
    return isNumber(column) ? text : ToolText::cut(ToolText::makeVisible(text), LONGEST_TEXT);
}

ToolTable createTable(const Columns& columns)
{
    QStringList names{QStringLiteral("#")};
    QStringList units{QString()};
    for (const HbdAVariable* column : columns) {
        names.append(ToolText::cut(ToolText::makeVisible(column->getFullName()), LONGEST_TEXT));
        units.append(column->getDetails().getShownUnit().getSymbol());
    }
    ToolTable table(names);
    table.keepEmptyColumns();
    table.alignRight(0, 0);
    for (int i = 0; i < int(columns.size()); ++i) {
        if (isNumber(*columns[std::size_t(i)]))
            table.alignRight(i + 1, i + 1);
    }
    if (!units.join(QString()).isEmpty())
        table.addRow(units);
    return table;
}

/// Of a terminal as many columns as fit; the others are named.
int countShown(const ToolTable& table, const Columns& columns)
{
    const int width = ToolOutput::getTerminalWidth();
    const int all = static_cast<int>(columns.size()) + 1;
    const int shown = width == 0 ? all : std::min(all, std::max(2, table.countFitting(width)));
    if (shown < all) {
        QStringList names;
        for (int i = shown - 1; i < all - 1; ++i)
            names.append(columns[std::size_t(i)]->getFullName());
        ToolOutput::printNote(Tool::tr("Too wide for the terminal; left out: %1\n"
                                       "--variables chooses what is shown.")
                                  .arg(names.join(QStringLiteral(", "))));
    }
    return shown;
}

QString rangeText(int from, int end, int count, int all)
{
    const QString rows =
        count == 0 ? Tool::tr("no rows")
                   : Tool::tr("rows %1 to %2 of %3")
                         .arg(QString::number(from), QString::number(end), QString::number(count));
    return count == all ? rows : rows + Tool::tr("; there are %1 samples").arg(all);
}

int run(const QCommandLineParser& line)
{
    ToolSelection::checkUsage(line);
    if (line.isSet(DESCENDING) && !line.isSet(SORT))
        throw ToolUsageError(Tool::tr("--descending turns the order of --sort VAR: give that."));
    const int from = ToolCommandLine::readCount(line, FROM, 1);
    const int most = ToolCommandLine::readCount(line, COUNT, DEFAULT_COUNT);
    const QStringList arguments = line.positionalArguments();
    const auto dataset =
        ToolProject::readDataset(KudDatasetDirectory(arguments.at(0)), arguments.at(1));

    Columns columns;
    for (const KudDatasetVariable& variable : ToolProject::readVariables(line, *dataset))
        columns.push_back(dataset->readValues(variable));
    const std::vector<int> ranks = readRanks(line, *dataset);
    const int count = static_cast<int>(ranks.size());
    if (from > std::max(count, 1))
        throw HbeUserError(
            Tool::tr("There is no row %1: the last one is %2.").arg(from).arg(count));

    const int end = from - 1 + std::min(most, count - from + 1);
    ToolTable table = createTable(columns);
    for (int row = from - 1; row < end; ++row) {
        const int rank = ranks[std::size_t(row)];
        QStringList cells{QString::number(rank + 1)};
        for (const HbdAVariable* column : columns)
            cells.append(cellText(*column, rank));
        table.addRow(cells);
    }
    ToolOutput::print(table.toText(0, countShown(table, columns)));
    ToolOutput::print(rangeText(from, end, count, dataset->getObjectTable()->getSampleCount()) +
                      QLatin1Char('\n'));
    return ExitDone;
}
} // namespace

ToolCommand createTableCommand()
{
    ToolCommand command;
    command.name = QStringLiteral("table");
    command.arguments = QStringLiteral("DIR DATASET");
    command.summary = Tool::tr("Shows samples as rows on the terminal.");
    command.details = Tool::tr(
        "The first column, #, is the number of the sample in the dataset; whatever is selected or "
        "sorted, it stays. Numbers are in the unit that their variable is shown in, N/A stands "
        "for undefined values, long texts are cut. On a terminal as many columns are shown as "
        "fit; elsewhere all.");
    command.example =
        QStringLiteral("kelvane table survey samples\n"
                       "kelvane table survey samples --sort zinc --descending --count 5\n"
                       "kelvane table survey samples --rule \"zinc > 300\" --variables x,y,zinc");
    command.options = {
        {FROM, QStringLiteral("N"), Tool::tr("The first row to show; 1 by default.")},
        {COUNT, QStringLiteral("N"), Tool::tr("How many rows to show; 20 by default.")},
        {SORT, QStringLiteral("VAR"),
         Tool::tr("Sorts by this variable; undefined values come last.")},
        {DESCENDING, QString(), Tool::tr("Sorts the highest first.")},
        {QStringLiteral("variables"), QStringLiteral("LIST"),
         Tool::tr("The variables to show, in this order: a,b,\"c, with a comma\".")},
    };
    command.options += ToolSelection::getOptions();
    command.minArguments = 2;
    command.maxArguments = 2;
    command.run = &run;
    return command;
}
