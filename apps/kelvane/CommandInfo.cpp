#include "ToolCommands.h"
#include "ToolDatasetFacts.h"
#include "ToolInterrupt.h"
#include "ToolJson.h"
#include "ToolOutput.h"
#include "ToolProgress.h"
#include "ToolProject.h"
#include "ToolText.h"

#include <util/dataset/KudADataset.h>
#include <util/filter/KufSampleFilterDirectory.h>

#include <basic/error/HbeUserError.h>

#include <algorithm>

namespace
{
/// The datasets asked for. Of all datasets, `damaged` counts those that could not be read; the
/// others are shown all the same.
std::vector<std::unique_ptr<KudADataset>> readDatasets(const KudDatasetDirectory& project,
                                                       const QStringList& arguments, int& damaged)
{
    ToolProgress progress(Tool::tr("Reading"));
    std::vector<std::unique_ptr<KudADataset>> datasets;
    if (arguments.size() > 1) {
        progress.show(0, 0);
        datasets.push_back(ToolProject::readDataset(project, arguments.at(1)));
        return datasets;
    }
    const QList<KuuId> ids = project.getIds();
    for (const KuuId& id : ids) {
        ToolInterrupt::check();
        progress.show(static_cast<qint64>(datasets.size()), ids.size());
        try {
            datasets.push_back(project.read(id));
        } catch (const HbeUserError& error) {
            ToolOutput::printWarning(error.getMessage());
            ++damaged;
        }
    }
    std::sort(datasets.begin(), datasets.end(),
              [](const auto& a, const auto& b) { return a->getName() < b->getName(); });
    return datasets;
}

int run(const QCommandLineParser& line)
{
    const QStringList arguments = line.positionalArguments();
    const KudDatasetDirectory project(arguments.first());
    const KuuCoordSystem other = ToolProject::readCoordSystem(line);
    int damaged = 0;
    const auto datasets = readDatasets(project, arguments, damaged);
    const int exitCode = damaged == 0 ? ExitDone : ExitWrongInput;

    QStringList filters = KufSampleFilterDirectory(arguments.first()).getNames();
    filters.sort();
    if (line.isSet(QStringLiteral("json"))) {
        ToolJson json;
        json.beginObject();
        json.key("project").value(arguments.first());
        json.key("datasets").beginArray();
        for (const auto& dataset : datasets)
            ToolDatasetFacts::write(json, *dataset, other);
        json.endArray();
        json.key("filters").value(filters);
        json.endObject();
        ToolOutput::print(json.toByteArray());
        return exitCode;
    }
    QStringList texts;
    for (const auto& dataset : datasets)
        texts.append(ToolDatasetFacts::toText(*dataset, other));
    if (arguments.size() == 1 && !filters.isEmpty())
        texts.append(Tool::tr("sample filters: %1\n")
                         .arg(ToolText::makeVisible(filters.join(QStringLiteral(", ")))));
    ToolOutput::print(texts.isEmpty()
                          ? Tool::tr("The project '%1' holds no datasets.\n").arg(arguments.first())
                          : texts.join(QLatin1Char('\n')));
    return exitCode;
}
} // namespace

ToolCommand createInfoCommand()
{
    ToolCommand command;
    command.name = QStringLiteral("info");
    command.arguments = QStringLiteral("DIR [DATASET]");
    command.summary = Tool::tr("Shows the datasets of a project, or one of them.");
    command.details = Tool::tr(
        "For each dataset: its kind, the number of samples, the box of its coordinates, its "
        "coordinate system, with --cs the box in another one. For each variable: type, role, unit, "
        "the unit it is shown in, how many values are defined and "
        "undefined, the minimum, the maximum and the mean, the categories.\n"
        "With --json the facts are one JSON document with numbers in full precision.");
    command.example = QStringLiteral("kelvane info survey\n"
                                     "kelvane info survey samples --json\n"
                                     "kelvane info survey samples --cs EPSG:4326");
    command.options = {
        {QStringLiteral("cs"), QStringLiteral("CS"),
         Tool::tr("Shows the extent in this coordinate system, too.")},
        {QStringLiteral("json"), QString(), Tool::tr("One JSON document.")},
    };
    command.minArguments = 1;
    command.maxArguments = 2;
    command.run = &run;
    return command;
}
