#include "ToolCommandLine.h"
#include "ToolCommands.h"
#include "ToolConversion.h"
#include "ToolInterrupt.h"
#include "ToolOutput.h"
#include "ToolProgress.h"
#include "ToolProject.h"
#include "ToolSelection.h"
#include "ToolUnits.h"
#include "ToolUsageError.h"

#include <util/calc/KucDataSets.h>
#include <util/calc/KucExportData.h>
#include <util/calc/KucExportDataEncodingCsv.h>
#include <util/dataset/KudADataTable.h>
#include <util/dataset/KudMemoryDatasetGrid.h>
#include <util/system/KusSafeFile.h>

#include <basic/error/HbeDiskError.h>
#include <basic/error/HbeUserError.h>

#include <QtCore/QFileInfo>

namespace
{
struct Settings {
    KueCsvSeparator separator;
    KueDecimalSeparator decimal;
    bool fullPrecision = false;
    bool isRestricted = false; ///< to the samples of `ranks`
    HbiIntervalIntSmallDisjoint ranks;
    KuuCoordSystem system; ///< that of the file; not valid: the coordinates stay as they are
};

Settings readSettings(const QCommandLineParser& line)
{
    const QStringList separators{QStringLiteral("comma"), QStringLiteral("semicolon")};
    const QStringList decimals{QStringLiteral("dot"), QStringLiteral("comma")};
    Settings settings;
    settings.separator = KueCsvSeparator::fromValue(
        ToolCommandLine::readWord(line, QStringLiteral("separator"), separators));
    settings.decimal = KueDecimalSeparator::fromValue(
        ToolCommandLine::readWord(line, QStringLiteral("decimal"), decimals));
    if (settings.separator.getChar() == settings.decimal.getChar()) {
        throw ToolUsageError(Tool::tr("A decimal comma cannot stand between commas: add "
                                      "--separator semicolon."));
    }
    if (line.isSet(QStringLiteral("precision"))) {
        ToolCommandLine::readWord(line, QStringLiteral("precision"), {QStringLiteral("full")});
        settings.fullPrecision = true;
    }
    settings.system = ToolProject::readCoordSystem(line);
    return settings;
}

/// The units that the line asks for, each said, since no header tells of it.
void setUnits(KucExportData& job, const QCommandLineParser& line, const KudADataset& dataset,
              const KudDatasetVariableList& variables)
{
    for (const ToolUnits::Choice& choice :
         ToolUnits::read(line, QStringLiteral("units"), dataset)) {
        const QString name = choice.variable.getFullVariableName();
        if (!variables.contains(choice.variable, true))
            throw HbeUserError(Tool::tr("--units names the variable '%1', which is not exported: "
                                        "add it to --variables.")
                                   .arg(name));
        const HbuUnit unit =
            ToolUnits::findInClass(choice, dataset.getVariableDetails(choice.variable));
        job.setUnit(name, unit);
        ToolOutput::printNote(Tool::tr("'%1' is written in %2.").arg(name, unit.getSymbol()));
    }
}

template <class DataSet>
void setDataset(KucExportData& job, DataSet dataset, const Settings& settings)
{
    if (settings.isRestricted)
        dataset.setSelection(settings.ranks);
    job.setDataset(dataset);
}

void exportTo(const QString& path, const QCommandLineParser& line, const Settings& settings,
              const KudADataset& dataset)
{
    const KudDatasetVariableList variables = ToolProject::readVariables(line, dataset);
    KucExportData job;
    if (const KudMemoryDatasetGrid* grid = KudMemoryDatasetGrid::convert(&dataset)) {
        setDataset(job, Kuc::createGrid(*grid, variables), settings);
        job.setSorting(grid->is3D() ? QList<int>{2, 1, 0} : QList<int>{1, 0});
    } else {
        setDataset(job, Kuc::createPoints(dataset, variables), settings);
    }
    // Without --cs no coordinate systems: with one of longitudes and latitudes the coordinates
    // would get other names and seven decimals, and what came in would not go out.
    if (settings.system.isValid()) {
        job.setCoordSystems(dataset.getCoordSystem(), settings.system);
        job.setNodeCoordinates(true);
    }
    setUnits(job, line, dataset, variables);
    job.setUndefString(line.value(QStringLiteral("undefined")));
    job.setFullPrecision(settings.fullPrecision);
    job.setEncodingStrategy(
        std::make_unique<KucExportDataEncodingCsv>(path, settings.separator, settings.decimal)
            .release());
    {
        ToolProgress progress(Tool::tr("Exporting '%1'").arg(dataset.getName()));
        ToolInterrupt::run(job, progress);
    }
    if (settings.isRestricted)
        ToolOutput::printNote(
            Tool::tr("%1 of %2 samples are written.")
                .arg(QString::number(settings.ranks.getCount()),
                     QString::number(dataset.getObjectTable()->getSampleCount())));
    ToolConversion::print(job);
    // Columns of text, say, that look like coordinates to whoever asked.
    if (settings.system.isValid() && job.getConverter() == nullptr &&
        !dataset.getCoordSystem().isSameTransfo(settings.system)) {
        ToolOutput::printWarning(Tool::tr("None of the exported variables is a coordinate: nothing "
                                          "was converted into '%1'.")
                                     .arg(settings.system.serialize()));
    }
}

/// Exports beside the file and puts it in place when it is whole. What is no regular file (a pipe,
/// a terminal) is written as it comes.
void exportSafely(const QString& path, const QCommandLineParser& line, const Settings& settings,
                  const KudADataset& dataset)
{
    const QFileInfo target(path);
    if (target.exists() && !target.isFile() && !target.isDir()) {
        exportTo(path, line, settings, dataset);
        return;
    }
    KusSafeFile file(path);
    if (!file.open())
        throw HbeUserError(
            Tool::tr("Cannot create the file '%1': %2").arg(path, file.getErrorString()));
    exportTo(file.getTemporaryPath(), line, settings, dataset);
    ToolInterrupt::check();
    if (!file.commit())
        throw HbeDiskError(
            Tool::tr("Cannot write the file '%1': %2").arg(path, file.getErrorString()));
}

int run(const QCommandLineParser& line)
{
    ToolSelection::checkUsage(line);
    Settings settings = readSettings(line);
    const QStringList arguments = line.positionalArguments();
    const KudDatasetDirectory project(arguments.at(0));
    const auto dataset = ToolProject::readDataset(project, arguments.at(1));
    if (settings.system.isValid())
        ToolProject::requireCoordSystem(project, *dataset);
    settings.isRestricted = ToolSelection::isRestricted(line);
    if (settings.isRestricted)
        settings.ranks = ToolSelection::readRanks(line, arguments.at(0), *dataset);
    exportSafely(arguments.at(2), line, settings, *dataset);
    return ExitDone;
}
} // namespace

ToolCommand createExportCommand()
{
    ToolCommand command;
    command.name = QStringLiteral("export");
    command.arguments = QStringLiteral("DIR DATASET FILE");
    command.summary = Tool::tr("Exports a dataset of a project as delimited text.");
    command.details = Tool::tr(
        "A header line with the names of the variables, then one line a sample. FILE is replaced "
        "when the export is whole; Ctrl-C, an error or a full disk leaves it as it was.\n"
        "Numbers are written with the digits that came in, or with --precision full as the "
        "shortest text that reads back as the same number.\n"
        "With --cs the coordinates are converted into another coordinate system; what was done, "
        "and how exactly, is said. Longitudes and latitudes are headed so and written in degrees "
        "with "
        "seven decimals, other converted coordinates in the unit of the system. A coordinate that "
        "cannot be "
        "converted is undefined. Of a grid, the coordinates of the nodes are written as columns.\n"
        "With --rule, --filter or --masked only the samples that pass are written.");
    command.example = QStringLiteral("kelvane export survey samples samples.csv\n"
                                     "kelvane export survey samples zinc.csv --variables x,y,zinc "
                                     "--separator semicolon --decimal comma --undefined NA\n"
                                     "kelvane export survey samples world.csv --cs EPSG:4326 "
                                     "--units zinc=%,depth=ft\n"
                                     "kelvane export survey samples rich.csv --filter rich");
    command.options = {
        {QStringLiteral("separator"), QStringLiteral("S"),
         Tool::tr("comma, the default, or semicolon.")},
        {QStringLiteral("decimal"), QStringLiteral("D"), Tool::tr("dot, the default, or comma.")},
        {QStringLiteral("undefined"), QStringLiteral("TEXT"),
         Tool::tr("Stands for undefined values; nothing by default.")},
        {QStringLiteral("variables"), QStringLiteral("LIST"),
         Tool::tr("The variables to export, in this order: a,b,\"c, with a comma\".")},
        {QStringLiteral("cs"), QStringLiteral("CS"),
         Tool::tr("The coordinate system of the file: EPSG:code, IGNF:code or PROJ4:definition.")},
        {QStringLiteral("units"), QStringLiteral("LIST"),
         Tool::tr("The units to write variables in: VAR=UNIT,…; may be repeated.")},
        {QStringLiteral("precision"), QStringLiteral("full"),
         Tool::tr("Writes every digit that a number has.")},
    };
    command.options += ToolSelection::getOptions();
    command.minArguments = 3;
    command.maxArguments = 3;
    command.run = &run;
    return command;
}
