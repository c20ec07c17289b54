#include "ToolArchive.h"
#include "ToolCommandLine.h"
#include "ToolCommands.h"
#include "ToolOutput.h"
#include "ToolText.h"

#include <util/system/KusArchive.h>

#include <basic/error/HbeUserError.h>

namespace
{
const QString ONLY = QStringLiteral("only");
const QString OVERWRITE = QStringLiteral("overwrite");
const QString SKIP = QStringLiteral("skip");
const QString CASE_SENSITIVE = QStringLiteral("case-sensitive");
const QString LIMIT = QStringLiteral("limit");

KusArchive::ExtractInfo readInfo(const QCommandLineParser& line)
{
    using ExistingFile = KusArchive::ExistingFile;
    ToolCommandLine::checkExclusive(line, {OVERWRITE, SKIP},
                                    Tool::tr("an existing file is replaced, or it stays"));
    KusArchive::ExtractInfo info;
    info.included = line.values(ONLY);
    info.existingFile = line.isSet(OVERWRITE) ? ExistingFile::REPLACE
                        : line.isSet(SKIP)    ? ExistingFile::SKIP
                                              : ExistingFile::ASK;
    info.readOtherTools = true;
    info.caseSensitive = line.isSet(CASE_SENSITIVE);
    info.sizeLimit = ToolCommandLine::readSize(line, LIMIT, info.sizeLimit);
    return info;
}

/// A file in the way ends the run; which options let it go on is said.
void unpack(KusArchive& archive, const QString& path)
{
    bool isInTheWay = false;
    archive.setQuestion([&isInTheWay](const QString&, const QString&, const QString&) {
        isInTheWay = true;
        return false;
    });
    try {
        ToolArchive::run(archive, path);
    } catch (const HbeUserError& error) {
        if (!isInTheWay)
            throw;
        throw HbeUserError(error.getMessage() + QLatin1Char('\n') +
                           Tool::tr("--overwrite replaces existing files, --skip keeps them."));
    }
}

int run(const QCommandLineParser& line)
{
    const QString path = line.positionalArguments().at(0);
    const QString target = line.positionalArguments().at(1);
    KusArchive archive(path);
    archive.setExtractOperation(target, readInfo(line));
    unpack(archive, path);

    const KusArchive::Counts counts = archive.getCounts();
    ToolOutput::print(Tool::tr("%1: %2\n")
                          .arg(ToolText::makeVisible(target),
                               ToolArchive::getCountText(counts.members, counts.fileSize)));
    return ExitDone;
}
} // namespace

ToolCommand createUnpackCommand()
{
    ToolCommand command;
    command.name = QStringLiteral("unpack");
    command.arguments = QStringLiteral("FILE DIR");
    command.summary = Tool::tr("Unpacks an archive into an existing directory.");
    command.details = Tool::tr(
        "Archives of other tools are read, too: tar compressed with Zstandard or gzip. Nothing is "
        "written outside of DIR, whatever the archive says. When something is wrong, or Ctrl-C "
        "ends it, DIR is as it was before.\n"
        "A file that exists already ends the run, unless an option says what becomes of it. "
        "Patterns of --only are those of 'kelvane pack --exclude'.");
    command.example = QStringLiteral("kelvane unpack survey.tar.zst elsewhere\n"
                                     "kelvane unpack survey.tar.zst elsewhere --only report "
                                     "--only \"*.csv\" --overwrite");
    command.options = {
        {ONLY, QStringLiteral("PATTERN"), Tool::tr("Unpacks what matches only; repeatable.")},
        {OVERWRITE, QString(), Tool::tr("Replaces files that exist already.")},
        {SKIP, QString(), Tool::tr("Keeps files that exist already.")},
        {CASE_SENSITIVE, QString(),
         Tool::tr("Takes names that differ only in case for different ones.")},
        {LIMIT, QStringLiteral("SIZE"),
         Tool::tr("The most that the archive may hold: 500M, 20G; 1T by default.")},
    };
    command.minArguments = 2;
    command.maxArguments = 2;
    command.usesUnits = false;
    command.run = &run;
    return command;
}
