#include "ToolProject.h"

#include "ToolCommand.h"
#include "ToolCommandLine.h"

#include <util/calc/KucDataSets.h>
#include <util/dataset/KudADataTable.h>
#include <util/dataset/KudADataset.h>
#include <util/extern/KueCsv.h>

#include <basic/error/HbeUserError.h>

std::unique_ptr<KudADataset> ToolProject::readDataset(const KudDatasetDirectory& project,
                                                      const QString& name)
{
    const KuuId id = project.findName(name);
    if (id.isValid())
        return project.read(id);

    QStringList known = project.getNames();
    known.sort();
    throw HbeUserError(
        known.isEmpty() ? Tool::tr("The project '%1' holds no datasets.").arg(project.getPath())
                        : Tool::tr("The project '%1' has no dataset '%2'%3\nIt has: %4")
                              .arg(project.getPath(), name, ToolCommandLine::getHint(name, known),
                                   known.join(QStringLiteral(", "))));
}

KudDatasetVariable ToolProject::findVariable(const KudADataset& dataset, const QString& name)
{
    const KudADataTable& table = *dataset.getObjectTable();
    const KudDatasetVariable variable = table.getVariableFromName(name);
    if (variable.isValid())
        return variable;
    QStringList known;
    for (int i = 0; i < table.getVariableCount(); ++i)
        known.append(table.getVariableAt(i).getFullVariableName());
    throw HbeUserError(Tool::tr("The dataset '%1' has no variable '%2'%3\nIt has: %4")
                           .arg(dataset.getName(), name, ToolCommandLine::getHint(name, known),
                                known.join(QStringLiteral(", "))));
}

KudDatasetVariableList ToolProject::readVariables(const QCommandLineParser& line,
                                                  const KudADataset& dataset)
{
    if (!line.isSet(QStringLiteral("variables")))
        return Kuc::getExportedVariables(dataset);

    const KueCsv list(QLatin1Char(','), false, QLatin1Char('"'), QLatin1Char('.'));
    KudDatasetVariableList variables;
    for (const QString& name : list.parseDelimitedRow(line.value(QStringLiteral("variables"))))
        variables.append(findVariable(dataset, name));
    return variables;
}

KuuCoordSystem ToolProject::readCoordSystem(const QCommandLineParser& line)
{
    const QString option = QStringLiteral("cs");
    return line.isSet(option) ? KuuCoordSystem::fromUserText(line.value(option)) : KuuCoordSystem();
}

KuuCoordSystem ToolProject::requireCoordSystem(const KudDatasetDirectory& project,
                                               const KudADataset& dataset)
{
    const KuuCoordSystem system = dataset.getCoordSystem();
    if (system.isValid() && !system.isLocal())
        return system;
    const QString way = Tool::tr("Say which one its coordinates are in: "
                                 "kelvane set %1 %2 --cs EPSG:…")
                            .arg(project.getPath(), dataset.getName());
    const QString code = system.serialize();
    const QString state =
        !code.isEmpty()
            ? Tool::tr("The coordinate system '%1' of the dataset '%2' is not known here.")
                  .arg(code, dataset.getName())
        : system.isLocal()
            ? Tool::tr("The coordinates of the dataset '%1' are local ones.").arg(dataset.getName())
            : Tool::tr("The dataset '%1' has no coordinate system.").arg(dataset.getName());
    throw HbeUserError(state + QLatin1Char('\n') + way);
}
