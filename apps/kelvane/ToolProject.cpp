#include "ToolProject.h"

#include "ToolCommandLine.h"

#include "ToolCommand.h"

#include <util/dataset/KudADataset.h>

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
