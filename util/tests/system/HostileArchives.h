#pragma once

#include <util/system/KusArchive.h>

#include "FileBytes.h"
#include "TarBuilder.h"

#include <QtCore/QRegularExpression>
#include <QtCore/QTemporaryDir>

#include <filesystem>
#include <fstream>
#include <functional>

#include <sys/stat.h>

/// Archives made by an enemy, as tables of rows: what the user is told, and that nothing is
/// changed.
namespace HostileArchives
{
namespace fs = std::filesystem;
using Existing = KusArchive::ExistingFile;

constexpr qint64 MIB = 1 << 20;

/// Long runs of a letter are shown as two dots.
inline QString shortened(QString text)
{
    static const QRegularExpression longRun("(.)\\1{30,}");
    return text.replace(longRun, "\\1..");
}

/// Everything below a directory, links not followed: "DIRECTORY/", "FILE=TEXT", "LINK->TARGET",
/// with the mode and the time where they are not those that TarBuilder gives.
inline QStringList list(const QString& root)
{
    QStringList lines;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(root.toStdString())) {
        struct stat facts {
        };
        EXPECT_EQ(lstat(entry.path().c_str(), &facts), 0);
        const std::string name = entry.path().lexically_relative(root.toStdString()).string();
        QString line = shortened(QString::fromLatin1(name.c_str()));
        if (entry.is_symlink()) {
            lines.append(line + "->" + fs::read_symlink(entry.path()).c_str());
            continue;
        }
        const bool isDirectory = S_ISDIR(facts.st_mode);
        line += isDirectory ? "/" : S_ISREG(facts.st_mode) ? "" : "?";
        if ((facts.st_mode & 07777) != (isDirectory ? 0755 : 0644))
            line += QString(" %1").arg(facts.st_mode & 07777, 0, 8);
        if (isDirectory) // so that it can be removed
            fs::permissions(entry.path(), fs::perms::owner_all, fs::perm_options::add);
        if (S_ISREG(facts.st_mode)) {
            std::ifstream file(entry.path());
            line += '=' + QString::fromStdString({std::istreambuf_iterator<char>(file),
                                                  std::istreambuf_iterator<char>()});
            if (facts.st_mtime >= (qint64(1) << 31)) // how much later is the disk's affair
                line += " @later";
            else if (facts.st_mtime != TarBuilder::TIME)
                line += QString(" @%1").arg(facts.st_mtime);
        }
        lines.append(line);
    }
    lines.sort();
    return lines;
}

/// What becomes of an archive: the entries that are new in the target, or what the user is told,
/// with A for the path of the archive and T for that of the target.
struct Fate {
    bool extracts;
    QString text;
};
inline Fate extracts(const char* entries)
{
    return {true, QString::fromUtf8(entries)};
}
inline Fate refused(const QString& text)
{
    return {false, text};
}
inline Fate unreadable(const char* name, const char* fault, int offset)
{
    return refused(QString("Cannot extract '%1' from archive file 'A': %2 (at byte %3).")
                       .arg(name, fault, QString::number(offset)));
}
inline const Fate CORRUPT = refused("Corrupted archive file 'A' (more than 2 invalid records).");

struct Row {
    Row(const char* title, TarBuilder stream, Fate inBoth)
        : Row(title, std::move(stream), inBoth, inBoth)
    {
    }
    Row(const char* title, TarBuilder stream, Fate strictly, Fate ofOtherTools)
        : name(title)
        , tar(std::move(stream))
        , strict(std::move(strictly))
        , other(std::move(ofOtherTools))
    {
    }
    Row& zeros(int mebibytes)
    {
        zeroMebibytes = mebibytes;
        return *this;
    }
    Row& where(Existing policy)
    {
        existing = policy;
        return *this;
    }

    const char* name;
    TarBuilder tar;
    Fate strict;
    Fate other;                                                    // of other tools
    int zeroMebibytes = 0;                                         // behind, in frames of their own
    std::function<QByteArray(const QByteArray&)> damage = nullptr; // of the compressed bytes
    Existing existing = Existing::REPLACE;
};

inline TarBuilder tar()
{
    return TarBuilder();
}
/// An archive of one file.
inline TarBuilder one(const QByteArray& name)
{
    return tar().file(name, "evil").end();
}
inline QByteArray announced(const QByteArray& size)
{
    return "uncompressed-size = " + size.toBase64() + '\n';
}

/// Unpacks each archive, strictly and as of another tool, into a target full of traps.
class HostileArchiveTest : public testing::Test
{
protected:
    void prepare()
    {
        fs::remove_all(at("target").toStdString());
        writeBytes(at("sentinel/secret"), "secret");
        writeBytes(at("target/kept.txt"), "kept");
        writeBytes(at("target/kept/inner.txt"), "inner");
        const std::pair<const char*, const char*> links[] = {
            {"target/linkdir", "../sentinel"},
            {"target/linkfile", "../sentinel/secret"},
            {"target/dangling", "../sentinel/none"},
            {"target/kept/link", "../../sentinel"}};
        for (const auto& [path, to] : links)
            fs::create_symlink(to, at(path).toStdString());
        fs::create_hard_link(at("sentinel/secret").toStdString(),
                             at("target/hardlink").toStdString());
    }

    QString at(const char* path) const { return m_dir.filePath(QString::fromUtf8(path)); }

    QString shown(QString text) const
    {
        static const QRegularExpression freeSpace("only .* available.*",
                                                  QRegularExpression::DotMatchesEverythingOption);
        text.replace(at("archive.tar.zst"), "A").replace(at("target"), "T");
        return shortened(text.replace(freeSpace, "only.."));
    }

    /// What the user is told or gets is what the row says, and nothing else changes.
    void expectFates(const std::vector<Row>& rows)
    {
        bool isPrepared = false;
        for (const Row& row : rows) {
            QByteArray frame = TarBuilder::toFrame(row.tar.bytes());
            if (row.zeroMebibytes > 0)
                frame += TarBuilder::zeroFrame(row.zeroMebibytes);
            for (const bool other : {false, true}) {
                SCOPED_TRACE(row.name + std::string(other ? ", other tools" : ", strictly"));
                if (!isPrepared)
                    prepare();
                writeBytes(at("archive.tar.zst"), row.damage ? row.damage(frame) : frame);
                const Fate fate = unpack(row, other);
                isPrepared = !fate.extracts; // nothing has changed
                const Fate& expected = other ? row.other : row.strict;
                EXPECT_EQ(fate.extracts, expected.extracts) << fate.text.toStdString();
                EXPECT_EQ(fate.text, expected.text);
            }
        }
    }

    Fate unpack(const Row& row, bool readOtherTools)
    {
        KusArchive::ExtractInfo info;
        info.readOtherTools = readOtherTools;
        info.existingFile = row.existing;
        info.sizeLimit = 64 * MIB;
        KusArchive archive(at("archive.tar.zst"));
        archive.setExtractOperation(at("target"), info);
        const QStringList before = list(at("target"));
        const QStringList sentinel = list(at("sentinel"));
        const bool done = archive.runInCurrentThread();
        const QStringList after = list(at("target"));
        EXPECT_EQ(list(at("sentinel")), sentinel);
        EXPECT_EQ(QDir(m_dir.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot).size(), 3);
        if (!done) {
            EXPECT_EQ(after, before);
            return {false, shown(archive.getErrorText())};
        }
        QStringList made;
        for (const QString& line : after) {
            if (!before.contains(line))
                made.append(line);
        }
        return {true, made.join(" ")};
    }

    QTemporaryDir m_dir;
};

} // namespace HostileArchives
