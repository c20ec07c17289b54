#include "ToolArchive.h"

#include "ToolCommand.h"
#include "ToolInterrupt.h"
#include "ToolProgress.h"

#include <util/system/KusArchive.h>
#include <util/system/KusFileUtils.h>

#include <QtCore/QFileInfo>

void ToolArchive::run(KusArchive& archive, const QString& archivePath)
{
    ToolProgress progress(QFileInfo(archivePath).fileName());
    archive.setVisibleProgressPaths(progress.isTerminal());
    ToolInterrupt::run(archive, progress, true);
}

QString ToolArchive::getSizeText(qint64 bytes)
{
    const QString exact = bytes == 1 ? Tool::tr("1 byte") : Tool::tr("%1 bytes").arg(bytes);
    return bytes < 1024 ? exact
                        : QStringLiteral("%1 (%2)").arg(exact, KusFileUtils::getStringSize(bytes));
}

QString ToolArchive::getCountText(qint64 members, qint64 bytes)
{
    const QString count = members == 1 ? Tool::tr("1 member") : Tool::tr("%1 members").arg(members);
    return QStringLiteral("%1, %2").arg(count, getSizeText(bytes));
}
