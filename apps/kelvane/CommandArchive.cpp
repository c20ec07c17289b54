#include "ToolArchive.h"
#include "ToolArchiveListing.h"
#include "ToolCommandLine.h"
#include "ToolCommands.h"
#include "ToolInterrupt.h"
#include "ToolJson.h"
#include "ToolOutput.h"
#include "ToolTable.h"
#include "ToolText.h"
#include "ToolUsageError.h"

#include <util/system/KusArchive.h>
#include <util/system/KusArchiveReader.h>
#include <util/system/KusTarReader.h>

namespace
{
const QString CASE_SENSITIVE = QStringLiteral("case-sensitive");

constexpr int PIECE = 1 << 20; // bytes of a member between two looks for Ctrl-C

bool wantsJson(const QCommandLineParser& line)
{
    return line.isSet(QStringLiteral("json"));
}

int list(const QCommandLineParser& line, const QString& path)
{
    KusArchiveReader archive(path, KusArchiveReader::Mode::AHEAD);
    archive.setCheck(&ToolInterrupt::check);
    KusTarReader tar(archive, path);
    tar.setReadOtherTools(true);
    const auto listing = ToolArchiveListing::create(path, wantsJson(line));
    try {
        while (tar.nextMember()) {
            listing->add(tar);
            do
                ToolInterrupt::check();
            while (!tar.readData(PIECE).isEmpty());
        }
    } catch (const HbeError& error) {
        listing->end(error.getMessage()); // what came before is worth knowing
        throw;
    }
    listing->end(QString());
    return ExitDone;
}

struct Facts {
    QString path;
    QString compression;
    qint64 compressedSize = 0;
    qint64 announcedSize = -1;
    QVariantMap information;
};

/// What the first blocks of the file tell.
Facts readFacts(const QString& path)
{
    KusArchiveReader archive(path);
    archive.setCheck(&ToolInterrupt::check);
    KusTarReader tar(archive, path);
    tar.setReadOtherTools(true);
    Facts facts;
    facts.path = path;
    facts.information = tar.readInformation();
    if (facts.information.isEmpty())
        tar.nextMember(); // is it an archive at all?
    facts.announcedSize = tar.getAnnouncedSize();
    facts.compressedSize = archive.getFileSize();
    facts.compression = archive.getDecompressor() == KusArchiveReader::Decompressor::GZIP
                            ? QStringLiteral("gzip")
                            : QStringLiteral("Zstandard");
    return facts;
}

QByteArray toJson(const Facts& facts)
{
    ToolJson json;
    json.beginObject();
    json.key("file").value(facts.path);
    json.key("compression").value(facts.compression);
    json.key("compressedSize").value(facts.compressedSize);
    if (facts.announcedSize >= 0)
        json.key("size").value(facts.announcedSize);
    else
        json.key("size").null();
    json.key("information").beginObject();
    for (auto entry = facts.information.begin(); entry != facts.information.end(); ++entry) {
        json.key(entry.key().toUtf8().constData());
        if (entry.value().userType() != QMetaType::QByteArray) {
            json.value(entry.value().toString());
            continue;
        }
        json.beginObject();
        json.key("base64").value(QString::fromLatin1(entry.value().toByteArray().toBase64()));
        json.endObject();
    }
    json.endObject();
    json.endObject();
    return json.toByteArray();
}

QString toText(const Facts& facts)
{
    const QString head = Tool::tr("%1: %2, %3\n")
                             .arg(ToolText::makeVisible(facts.path), facts.compression,
                                  ToolArchive::getSizeText(facts.compressedSize));
    if (facts.information.isEmpty())
        return head + Tool::tr("  The archive tells nothing about itself.\n");
    ToolTable table({QString(), QString()});
    for (auto entry = facts.information.begin(); entry != facts.information.end(); ++entry) {
        const QVariant& value = entry.value();
        QString text = ToolText::makeVisible(value.toString());
        if (value.userType() == QMetaType::QByteArray)
            text = ToolArchive::getSizeText(value.toByteArray().size());
        else if (entry.key() == QLatin1String(KusArchive::HeaderFieldSize) &&
                 facts.announcedSize >= 0)
            text = ToolArchive::getSizeText(facts.announcedSize);
        table.addRow({ToolText::makeVisible(entry.key()), text});
    }
    return head + table.toText(2);
}

int showInformation(const QCommandLineParser& line, const QString& path)
{
    const Facts facts = readFacts(path);
    if (wantsJson(line))
        ToolOutput::print(toJson(facts));
    else
        ToolOutput::print(toText(facts));
    return ExitDone;
}

QByteArray toJson(const QString& path, const KusArchive::Verification& found)
{
    ToolJson json;
    json.beginObject();
    json.key("file").value(path);
    json.key("ok").value(found.faults.isEmpty());
    json.key("members").value(found.memberCount);
    json.key("size").value(found.fileSize);
    json.key("checksum").value(found.hasChecksum);
    json.key("faults").value(found.faults);
    json.endObject();
    return json.toByteArray();
}

QString toText(const QString& path, const KusArchive::Verification& found)
{
    const QString name = ToolText::makeVisible(path);
    const QString count = ToolArchive::getCountText(found.memberCount, found.fileSize);
    if (found.faults.isEmpty())
        return (found.hasChecksum
                    ? Tool::tr("ok     %1: %2, the checksum of the content is right\n")
                    : Tool::tr("ok     %1: %2, without a checksum of the content\n"))
            .arg(name, count);
    QString text = Tool::tr("WRONG  %1: %2 could be read\n").arg(name, count);
    for (const QString& fault : found.faults) {
        for (const QString& line : fault.split(QLatin1Char('\n')))
            text += QStringLiteral("       %1\n").arg(ToolText::makeVisible(line));
    }
    return text;
}

int verify(const QCommandLineParser& line, const QString& path)
{
    KusArchive::ExtractInfo info;
    info.readOtherTools = true;
    info.caseSensitive = line.isSet(CASE_SENSITIVE);
    KusArchive archive(path);
    archive.setVerifyOperation(info);
    ToolArchive::run(archive, path);
    const KusArchive::Verification& found = archive.getVerification();
    if (wantsJson(line))
        ToolOutput::print(toJson(path, found));
    else
        ToolOutput::print(toText(path, found));
    return found.faults.isEmpty() ? ExitDone : ExitWrongInput;
}

int run(const QCommandLineParser& line)
{
    const QString word = line.positionalArguments().at(0);
    const QString path = line.positionalArguments().at(1);
    if (word == QLatin1String("list"))
        return list(line, path);
    if (word == QLatin1String("info"))
        return showInformation(line, path);
    if (word == QLatin1String("verify"))
        return verify(line, path);
    throw ToolUsageError(Tool::tr("'kelvane archive' knows list, info and verify, not '%1'%2")
                             .arg(word, ToolCommandLine::getHint(
                                            word, {QStringLiteral("list"), QStringLiteral("info"),
                                                   QStringLiteral("verify")})));
}
} // namespace

ToolCommand createArchiveCommand()
{
    ToolCommand command;
    command.name = QStringLiteral("archive");
    command.arguments = QStringLiteral("list|info|verify FILE");
    command.summary = Tool::tr("Shows what an archive holds, and whether it is whole.");
    command.details =
        Tool::tr("'list' shows the members: mode, size, time of the last change (UTC), name.\n"
                 "'info' shows what the archive says of itself; only the beginning of the file is "
                 "read.\n"
                 "'verify' reads all of it and writes nothing: the headers and their checksums, "
                 "the sizes, the checksum of the content. The exit code is 1 when it is wrong.\n"
                 "Archives of other tools are read, too: tar compressed with Zstandard or gzip.");
    command.example = QStringLiteral("kelvane archive list survey.tar.zst\n"
                                     "kelvane archive info survey.tar.zst --json\n"
                                     "kelvane archive verify survey.tar.zst");
    command.options = {
        {QStringLiteral("json"), QString(), Tool::tr("One JSON document.")},
        {CASE_SENSITIVE, QString(),
         Tool::tr("verify: names that differ only in case are no fault.")},
    };
    command.minArguments = 2;
    command.maxArguments = 2;
    command.usesUnits = false;
    command.run = &run;
    return command;
}
