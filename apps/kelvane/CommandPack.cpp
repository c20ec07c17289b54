#include "ToolArchive.h"
#include "ToolCommandLine.h"
#include "ToolCommands.h"
#include "ToolOutput.h"
#include "ToolText.h"
#include "ToolUsageError.h"

#include <util/dataset/KudDatasetDirectory.h>
#include <util/system/KusArchive.h>

#include <QtCore/QFileInfo>

namespace
{
const QString THREADS = QStringLiteral("threads");
const QString LEVEL = QStringLiteral("level");
const QString EXCLUDE = QStringLiteral("exclude");

constexpr int HIGHEST_LEVEL = 19;

/// The system of all datasets, where they have the same one.
QString findCoordSystem(const KudDatasetDirectory& project)
{
    QString common;
    for (const KuuId& id : project.getIds()) {
        const QString system = project.readCoordSystem(id);
        if (system.isEmpty() || (!common.isEmpty() && system != common))
            return QString();
        common = system;
    }
    return common;
}

/// The information that the archive carries.
QVariantMap describe(const QString& source)
{
    QVariantMap header{{KusArchive::HeaderFieldProjectApplicationName,
                        QStringLiteral("kelvane %1").arg(QLatin1String(KELVANE_VERSION))}};
    const QString name =
        QFileInfo(QDir::cleanPath(QFileInfo(source).absoluteFilePath())).fileName();
    if (!name.isEmpty())
        header.insert(KusArchive::HeaderFieldProjectName, name);
    const KudDatasetDirectory project(source);
    const QString system = project.exists() ? findCoordSystem(project) : QString();
    if (!system.isEmpty())
        header.insert(KusArchive::HeaderFieldProjectCoordinateSytem, system);
    return header;
}

KusArchive::ArchiveInfo readInfo(const QCommandLineParser& line)
{
    KusArchive::ArchiveInfo info;
    info.excluded = line.values(EXCLUDE);
    info.level = ToolCommandLine::readCount(line, LEVEL, info.level);
    if (info.level > HIGHEST_LEVEL)
        throw ToolUsageError(
            Tool::tr("--%1 is at most %2, not %3").arg(LEVEL).arg(HIGHEST_LEVEL).arg(info.level));
    info.threadCount = ToolCommandLine::readCount(line, THREADS, info.threadCount);
    return info;
}

int run(const QCommandLineParser& line)
{
    const QString source = line.positionalArguments().at(0);
    const QString path = line.positionalArguments().at(1);
    KusArchive::ArchiveInfo info = readInfo(line);
    // Readers go by the end of the name, and would take this one for another compression.
    if (QFileInfo(path).suffix() == KusArchive::getGzipExtension())
        throw ToolUsageError(Tool::tr("An archive is compressed with Zstandard: let its name end "
                                      "with .tar.zst; '%1' would be read as gzip.")
                                 .arg(path));
    info.header = describe(source);

    KusArchive archive(path);
    archive.setArchiveOperation(source, info);
    ToolArchive::run(archive, path);

    const KusArchive::Counts counts = archive.getCounts();
    const qint64 size = QFileInfo(path).size();
    ToolOutput::print(Tool::tr("%1: %2\n")
                          .arg(ToolText::makeVisible(path),
                               ToolArchive::getCountText(counts.members, counts.fileSize)));
    QString compressed = Tool::tr("compressed to %1").arg(ToolArchive::getSizeText(size));
    if (size < counts.fileSize)
        compressed += Tool::tr(", %1 %").arg(
            100. * static_cast<double>(size) / static_cast<double>(counts.fileSize), 0, 'f', 1);
    ToolOutput::print(compressed + QLatin1Char('\n'));
    return ExitDone;
}
} // namespace

ToolCommand createPackCommand()
{
    ToolCommand command;
    command.name = QStringLiteral("pack");
    command.arguments = QStringLiteral("DIR FILE.tar.zst");
    command.summary = Tool::tr("Packs a project, or any directory, into one compressed file.");
    command.details = Tool::tr(
        "The archive is put in place when it is complete: an older one of the name stays as it "
        "was until then. 'kelvane unpack' takes it apart again, and so do other tools that read "
        "tar archives with Zstandard. The same files give the same archive. Links and other "
        "special files are refused unless they are excluded.\n"
        "A pattern of --exclude is a name or several, with * ? [a-z] inside of a name and ** over "
        "several: \"*.tmp\", \"cache\", \"report/*.txt\". With / in front it begins at DIR's own "
        "name.");
    command.example = QStringLiteral("kelvane pack survey survey.tar.zst\n"
                                     "kelvane pack survey survey.tar.zst --level 9 "
                                     "--exclude \"*.tmp\" --exclude report");
    command.options = {
        {EXCLUDE, QStringLiteral("PATTERN"), Tool::tr("Leaves out what matches; repeatable.")},
        {LEVEL, QStringLiteral("N"),
         Tool::tr("How hard to compress, 1 (by default, the fastest) to 19.")},
        {THREADS, QStringLiteral("N"),
         Tool::tr("How many threads compress: one for each core by default, three at most.")},
    };
    command.minArguments = 2;
    command.maxArguments = 2;
    command.usesUnits = false;
    command.run = &run;
    return command;
}
