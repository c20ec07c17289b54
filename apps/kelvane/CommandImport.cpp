#include "ToolCommandLine.h"
#include "ToolCommands.h"
#include "ToolDatasetFacts.h"
#include "ToolInterrupt.h"
#include "ToolJson.h"
#include "ToolOutput.h"
#include "ToolProgress.h"
#include "ToolUsageError.h"

#include <util/dataset/KudDatasetDirectory.h>
#include <util/dataset/KudMemoryDatasetPoint.h>
#include <util/extern/KueTableImport.h>

#include <basic/error/HbeUserError.h>

#include <QtCore/QFileInfo>

namespace
{
using Separator = KueTableOptions::Separator;
using Decimal = KueTableOptions::Decimal;

// In the order of the enumerations.
const QStringList& separatorWords()
{
    static const QStringList words = {QStringLiteral("auto"), QStringLiteral("comma"),
                                      QStringLiteral("semicolon"), QStringLiteral("tab"),
                                      QStringLiteral("space")};
    return words;
}
const QStringList& decimalWords()
{
    static const QStringList words = {QStringLiteral("auto"), QStringLiteral("dot"),
                                      QStringLiteral("comma")};
    return words;
}

QString encodingName(KueTableResult::Encoding encoding)
{
    switch (encoding) {
    case KueTableResult::Encoding::LATIN_1:
        return QStringLiteral("Latin-1");
    case KueTableResult::Encoding::UTF_16:
        return QStringLiteral("UTF-16");
    default:
        return QStringLiteral("UTF-8");
    }
}

KueTableOptions readOptions(const QCommandLineParser& line)
{
    KueTableOptions options;
    options.separator = static_cast<Separator>(
        ToolCommandLine::readWord(line, QStringLiteral("separator"), separatorWords()));
    options.decimal = static_cast<Decimal>(
        ToolCommandLine::readWord(line, QStringLiteral("decimal"), decimalWords()));
    // An empty cell holds nothing, whatever else stands for it in a file.
    if (line.isSet(QStringLiteral("na")))
        options.missingTexts = QStringList{QString()} + line.values(QStringLiteral("na"));
    options.textColumns = line.values(QStringLiteral("text"));
    options.categoryColumns = line.values(QStringLiteral("category"));
    options.xColumn = line.value(QStringLiteral("x"));
    options.yColumn = line.value(QStringLiteral("y"));
    options.zColumn = line.value(QStringLiteral("z"));
    return options;
}

std::unique_ptr<KudMemoryDatasetPoint> readDataset(KueTableImport& tableImport, const QString& path)
{
    ToolProgress progress(Tool::tr("Reading %1").arg(QFileInfo(path).fileName()));
    tableImport.setProgress([&progress](qint64 done, qint64 total) {
        progress.show(done, total);
        return ToolInterrupt::getSignal() == 0;
    });
    std::unique_ptr<KudMemoryDatasetPoint> dataset = tableImport.read(path);
    ToolInterrupt::check();
    return dataset;
}

/// The identity to save under: that of the dataset to be replaced, else not valid.
KuuId findIdentity(const KudDatasetDirectory& project, const QString& name, bool replace)
{
    const KuuId id = project.exists() ? project.findName(name) : KuuId();
    if (id.isValid() && !replace) {
        throw HbeUserError(Tool::tr("The project '%1' has a dataset '%2' already.\n"
                                    "Give another name with --name, or replace it with --replace.")
                               .arg(project.getPath(), name));
    }
    return id;
}

QByteArray toJson(const QCommandLineParser& line, const KueTableResult& result,
                  const KudADataset& dataset, bool replaced)
{
    ToolJson json;
    json.beginObject();
    json.key("project").value(line.value(QStringLiteral("project")));
    json.key("file").value(line.positionalArguments().first());
    const bool isGeoEas = result.form == KueTableResult::Form::GEO_EAS;
    json.key("form").value(isGeoEas ? QStringLiteral("GeoEAS") : QStringLiteral("delimited"));
    json.key("separator").value(separatorWords().at(static_cast<int>(result.separator)));
    json.key("decimal").value(decimalWords().at(static_cast<int>(result.decimal)));
    json.key("encoding").value(encodingName(result.encoding));
    json.key("coordinates").beginObject();
    json.key("x").textOrNull(result.xColumn);
    json.key("y").textOrNull(result.yColumn);
    json.key("z").textOrNull(result.zColumn);
    json.key("guessed").value(result.coordinatesGuessed);
    json.endObject();
    json.key("replaced").value(replaced);
    json.key("notes").value(result.notes);
    json.key("warnings").value(result.warnings);
    json.key("dataset");
    ToolDatasetFacts::write(json, dataset);
    json.endObject();
    return json.toByteArray();
}

QString toText(const QCommandLineParser& line, const KueTableResult& result,
               const KudADataset& dataset, bool replaced)
{
    const QString file = line.positionalArguments().first();
    QString text = result.form == KueTableResult::Form::GEO_EAS
                       ? Tool::tr("Read '%1': GeoEAS, '%2'.\n").arg(file, result.title)
                       : Tool::tr("Read '%1': separator %2, decimal %3, %4.\n")
                             .arg(file, separatorWords().at(static_cast<int>(result.separator)),
                                  decimalWords().at(static_cast<int>(result.decimal)),
                                  encodingName(result.encoding));
    const QString saved = replaced ? Tool::tr("Replaced the dataset in the project '%1':\n\n")
                                   : Tool::tr("Saved into the project '%1':\n\n");
    text += saved.arg(line.value(QStringLiteral("project")));
    return text + ToolDatasetFacts::toText(dataset);
}

int run(const QCommandLineParser& line)
{
    if (!line.isSet(QStringLiteral("project")))
        throw ToolUsageError(Tool::tr("--project DIR is missing: the directory to import into."));
    const QString path = line.positionalArguments().first();
    const QString name = line.isSet(QStringLiteral("name")) ? line.value(QStringLiteral("name"))
                                                            : QFileInfo(path).completeBaseName();
    if (name.isEmpty())
        throw ToolUsageError(Tool::tr("The dataset needs a name: --name N."));
    KueTableImport tableImport(readOptions(line));
    tableImport.setName(name);
    if (line.isSet(QStringLiteral("cs")))
        tableImport.setCoordSystem(KuuCoordSystem::fromUserText(line.value(QStringLiteral("cs"))));

    const KudDatasetDirectory project(line.value(QStringLiteral("project")));
    const KuuId identity = findIdentity(project, name, line.isSet(QStringLiteral("replace")));
    const auto dataset = readDataset(tableImport, path);
    const KueTableResult& result = tableImport.getResult();
    for (const QString& warning : result.warnings)
        ToolOutput::printWarning(warning);
    for (const QString& note : result.notes)
        ToolOutput::printNote(note);

    project.save(*dataset, identity);

    if (line.isSet(QStringLiteral("json")))
        ToolOutput::print(toJson(line, result, *dataset, identity.isValid()));
    else
        ToolOutput::print(toText(line, result, *dataset, identity.isValid()));
    return ExitDone;
}
} // namespace

ToolCommand createImportCommand()
{
    ToolCommand command;
    command.name = QStringLiteral("import");
    command.arguments = QStringLiteral("FILE --project DIR");
    command.summary = Tool::tr("Imports a table of samples as a point dataset of a project.");
    command.details = Tool::tr(
        "FILE is delimited text with a header line, or GeoEAS, which is recognised by its form. "
        "Each column becomes integer, real, category (few different texts) or text. Coordinates "
        "are recognised by common names (x, easting, lon …) when none is given.\n"
        "A file that cannot be understood is an error that names the line, the column and the "
        "text; nothing is created then. DIR is created when it is missing.");
    command.example = QStringLiteral(
        "kelvane import samples.csv --project survey\n"
        "kelvane import assays.txt --project survey --name assays --x EAST --y NORTH "
        "--separator tab --na -999 --cs EPSG:2154");
    const QString column = QStringLiteral("COL");
    command.options = {
        {QStringLiteral("project"), QStringLiteral("DIR"), Tool::tr("The project directory.")},
        {QStringLiteral("name"), QStringLiteral("N"),
         Tool::tr("The name of the dataset; that of the file by default.")},
        {QStringLiteral("replace"), QString(),
         Tool::tr("Replaces the dataset of that name and keeps its identity.")},
        {QStringLiteral("x"), column, Tool::tr("The column of the X coordinate.")},
        {QStringLiteral("y"), column, Tool::tr("The column of the Y coordinate.")},
        {QStringLiteral("z"), column, Tool::tr("The column of the Z coordinate.")},
        {QStringLiteral("separator"), QStringLiteral("S"),
         Tool::tr("comma, semicolon, tab, space (runs of blanks) or auto, the default.")},
        {QStringLiteral("decimal"), QStringLiteral("D"),
         Tool::tr("dot, comma or auto, the default.")},
        {QStringLiteral("na"), QStringLiteral("TEXT"),
         Tool::tr("A cell of this text is undefined; may be repeated. It replaces the list NA, "
                  "NaN, N/A, -; an empty cell is always undefined.")},
        {QStringLiteral("cs"), QStringLiteral("TEXT"),
         Tool::tr("The coordinate system: EPSG:code, IGNF:code or PROJ4:definition.")},
        {QStringLiteral("text"), column, Tool::tr("A column that stays text; may be repeated.")},
        {QStringLiteral("category"), column,
         Tool::tr("A column that becomes a category; may be repeated.")},
        {QStringLiteral("json"), QString(), Tool::tr("The report as one JSON document.")},
    };
    command.minArguments = 1;
    command.maxArguments = 1;
    command.run = &run;
    return command;
}
