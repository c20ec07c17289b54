// Archives made by an enemy, one table of them: what the user is told, and that nothing is changed.
#include <util/system/ArchiveZstdWriter.h>
#include <util/system/KusArchive.h>
#include <util/system/KusTarReader.h>

#include "FileBytes.h"
#include "TarBuilder.h"

#include <QtCore/QRegularExpression>
#include <QtCore/QTemporaryDir>

#include <filesystem>
#include <fstream>
#include <functional>

#include <sys/stat.h>

namespace
{
namespace fs = std::filesystem;
using Existing = KusArchive::ExistingFile;

constexpr qint64 MIB = 1 << 20;

/// Long runs of a letter are shown as two dots.
QString shortened(QString text)
{
    static const QRegularExpression longRun("(.)\\1{30,}");
    return text.replace(longRun, "\\1..");
}

/// Everything below a directory, links not followed: "DIRECTORY/", "FILE=TEXT", "LINK->TARGET", with
/// the mode and the time where they are not those that TarBuilder gives.
QStringList list(const QString& root)
{
    QStringList lines;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(root.toStdString())) {
        struct stat facts {};
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
        if (S_ISREG(facts.st_mode)) {
            std::ifstream file(entry.path());
            line += '=' + QString::fromStdString(
                              {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()});
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

QByteArray zstd(const QByteArray& bytes)
{
    QTemporaryDir dir;
    ArchiveZstdWriter writer(dir.filePath("frame"));
    writer.open("wb", 1, 1);
    EXPECT_TRUE(writer.write(bytes.constData(), bytes.size()) && writer.close());
    return readBytes(dir.filePath("frame"));
}

/// What becomes of an archive: the entries that are new in the target, or what the user is told,
/// with A for the path of the archive and T for that of the target.
struct Fate {
    bool extracts;
    QString text;
};
Fate extracts(const char* entries)
{
    return {true, QString::fromUtf8(entries)};
}
Fate refused(const char* text)
{
    return {false, QString::fromUtf8(text)};
}

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

#define F (true ? refused("") : extracts(""))
TarBuilder tar()
{
    return TarBuilder();
}
/// An archive of one file.
TarBuilder one(const QByteArray& name)
{
    return tar().file(name, "evil").end();
}
TarBuilder information(const QByteArray& data)
{
    return tar().file(KusTarReader::INFORMATION_NAME, data);
}
QByteArray announced(const QByteArray& size)
{
    return "uncompressed-size = " + size.toBase64() + '\n';
}
TarBuilder oneOfSize(const QByteArray& field)
{
    return tar().file("a", "evil").with(TarBuilder::SIZE, field).end();
}
TarBuilder onePax(const QByteArray& data)
{
    return tar().pax(data).file("a", "evil").end();
}

const QByteArray LONG_NAME = QByteArray(200, 'd') + '/' + QByteArray(255, 'n');

std::vector<Row> namesThatLead()
{
    return {
        Row("parent first", one("../evil"), F, F),
        Row("parent in the middle", one("a/../../evil"), F, F),
        Row("parent that stays inside", one("a/../evil"), F, F),
        Row("parent last", tar().directory("a/..").end(), F, F),
        Row("parent alone", tar().directory("../").end(), F, F),
        Row("parent between backslashes", one("a\\..\\..\\evil"), F, F),
        Row("parent before a backslash", one("..\\evil"), F, F),
        Row("root", one("/evil"), F, F),
        Row("root twice", one("//evil"), F, F),
        Row("root of backslash", one("\\evil"), F, F),
        Row("drive", one("C:/evil"), F, F),
        Row("drive without a root", one("c:evil"), F, F),
        Row("share", one("\\\\server\\share\\evil"), F, F),
        Row("prefix with parent", tar().file("evil").with(TarBuilder::PREFIX, "a/..").end(), F, F),
        Row("prefix with root", tar().file("evil").with(TarBuilder::PREFIX, "/etc").end(), F, F),
        Row("pax path with parent", tar().paxPath("../evil").file("good").end(), F, F),
        Row("pax path with root", tar().paxPath("/evil").file("good").end(), F, F),
        Row("pax path with drive", tar().paxPath("C:\\evil").file("good").end(), F, F),
        Row("pax path with NUL", tar().paxPath(QByteArray("a\0/../../evil", 13)).file("good").end(), F, F),
        Row("pax path for a directory", tar().paxPath("../evil/").directory("good/").end(), F, F),
        Row("GNU name with parent", tar().gnuName("../evil").file("good").end(), F, F),
        Row("global path with parent",
         tar().pax(TarBuilder::paxEntry("path", "../evil"), 'g').file("good").end(), F, F),
        Row("information with parent", tar().file("../qm_archive_info", announced("0")).end(), F, F),
    };
}

std::vector<Row> namesThatAreOdd()
{
    return {
        Row("element of 255 bytes", tar().paxPath(LONG_NAME).file("n").end(), F, F),
        Row("element of 256 bytes", tar().paxPath(LONG_NAME + "n").file("n").end(), F, F),
        Row("path of 4,001 bytes",
            tar().paxPath((QByteArray(249, 'p') + '/').repeated(16) + 'q').file("a").end(), F, F),
        Row("backslash inside", one("a\\b"), F, F),
        Row("name empty", one(""), F, F),
        Row("pax path empty", tar().paxPath("").file("good").end(), F, F),
        Row("file that is the target", one("."), F, F),
        Row("file that is the target, with a slash", one("./"), F, F),
        Row("directory that is the target", tar().directory("./").end(), F, F),
        Row("slashes and dots", one("./a//b/./c"), F, F),
        Row("file with a slash", one("a/"), F, F),
        Row("directory without a slash", tar().directory("a").end(), F, F),
        Row("bytes that are no text", one("a\xff\xfe"), F, F),
        Row("line feed and bell", one("a\n\a"), F, F),
        Row("information deeper down", tar().file("d/qm_archive_info", "evil").end(), F, F),
        Row("information as a directory", tar().directory("qm_archive_info/").end(), F, F),
        Row("information late", tar().file("a").file("qm_archive_info", "evil").end(), F, F),
        Row("case", tar().file("A").file("a").end(), F, F),
        Row("case of another letter", tar().file("\u00c9").file("\u00e9").end(), F, F),
        Row("letter composed otherwise", tar().file("\u00e9").file("e\u0301").end(), F, F),
        Row("case of a directory", tar().file("D/x").file("d/y").end(), F, F),
        Row("case of what exists", one("KEPT.TXT"), F, F),
    };
}

std::vector<Row> linksAndTypes()
{
    const auto type = [](char flag) { return tar().member(flag, "a").end(); };
    return {
        Row("symbolic link and a member through it",
         tar().link('2', "out", "../sentinel").file("out/evil", "evil").end(), F, F),
        Row("the same without an end", tar().link('2', "out", "../sentinel").file("out/evil"), F, F),
        Row("hard link and a member over it",
         tar().link('1', "out", "../sentinel/secret").file("out", "evil").end(), F, F),
        Row("symbolic link over a directory",
         tar().directory("d/").link('2', "d", "../sentinel").file("d/evil").end(), F, F),
        Row("character device", type('3'), F, F),
        Row("block device", type('4'), F, F),
        Row("pipe", type('6'), F, F),
        Row("contiguous file", type('7'), F, F),
        Row("sparse file", type('S'), F, F),
        Row("type of nobody", type('%'), F, F),
        Row("GNU long link", tar().gnuName("../sentinel", 'K').file("a").end(), F, F),
        Row("through a link in the target", one("linkdir/evil"), F, F),
        Row("through a link further down", one("kept/link/evil"), F, F),
        Row("directory over a link", tar().directory("linkdir/").end(), F, F),
        Row("over a link to a file", one("linkfile"), F, F),
        Row("over a link to a file, skipping", one("linkfile"), F, F).where(Existing::SKIP),
        Row("over a link to nothing", one("dangling"), F, F),
        Row("through a link to nothing", one("dangling/evil"), F, F),
        Row("over a link to a directory", one("linkdir"), F, F),
        Row("over a hard link", one("hardlink"), F, F),
        Row("over a directory", one("kept"), F, F),
        Row("over a directory, skipping", one("kept"), F, F).where(Existing::SKIP),
        Row("through a file", one("kept.txt/evil"), F, F),
        Row("over a file", one("kept.txt"), F, F),
        Row("over a file, nobody to ask", one("kept.txt"), F, F).where(Existing::ASK),
        Row("over a file, skipping", one("kept.txt"), F, F).where(Existing::SKIP),
        Row("file twice", tar().file("a", "1").file("a", "2").end(), F, F),
        Row("file twice, nobody to ask", tar().file("a", "1").file("a", "2").end(), F, F).where(Existing::ASK),
        Row("file, then a directory", tar().file("a").directory("a/").end(), F, F),
        Row("file, then a file below", tar().file("a").file("a/b").end(), F, F),
        Row("directory, then a file", tar().directory("a/").file("a").end(), F, F),
        Row("directory twice", tar().directory("a/").file("a/b").directory("a/").end(), F, F),
    };
}

std::vector<Row> sizes()
{
    const auto past = [](qint64 size) {
        return tar().file("a").with(TarBuilder::SIZE, TarBuilder::base256(quint64(size)));
    };
    const auto pax = [](const char* size) {
        return tar().pax(TarBuilder::paxEntry("size", size)).file("a", "evil").end();
    };
    return {
        Row("size negative in octal", oneOfSize("-0000000004"), F, F),
        Row("size negative in base 256", oneOfSize(TarBuilder::base256(~0ull, '\xff', '\xff')), F, F),
        Row("size 2^63", oneOfSize(TarBuilder::base256(1ull << 63)), F, F),
        Row("size 2^63 - 1", oneOfSize(TarBuilder::base256((1ull << 63) - 1)), F, F),
        Row("size 2^63 - 513", oneOfSize(TarBuilder::base256((1ull << 63) - 513)), F, F),
        Row("size beyond 64 bits", oneOfSize(TarBuilder::base256(4, '\x80', '\x01')), F, F),
        Row("size in the first byte", oneOfSize(TarBuilder::base256(4, '\x81')), F, F),
        Row("size 4 in base 256", oneOfSize(TarBuilder::base256(4)), F, F),
        Row("size with digit 8", oneOfSize("00000000008"), F, F),
        Row("size in letters", oneOfSize("four"), F, F),
        Row("size with a sign", oneOfSize("+0000000004"), F, F),
        Row("size and more", oneOfSize("4 5"), F, F),
        Row("size empty, data behind", oneOfSize(""), F, F),
        Row("size less than the data", oneOfSize("00000000000"), F, F),
        Row("size in blanks", oneOfSize("          4 "), F, F),
        Row("size over all twelve bytes", oneOfSize("000000000004"), F, F),
        Row("size of a directory",
         tar().directory("d/").with(TarBuilder::SIZE, "00000001000").file("a", "evil").end(), F, F),
        Row("size larger than the file", past(2000).raw("evil").pad(), F, F),
        Row("data cut inside of a block", tar().file("a", "evil").truncate(514), F, F),
        Row("data cut at a block", tar().file("a", QByteArray(600, 'x')).truncate(1024), F, F),
        Row("data cut at all", past(1), F, F),
        Row("header cut", tar().file("a").file("b").truncate(700), F, F),
        Row("no end", tar().file("a", "evil"), F, F),
        Row("size of 10 GiB", past(10240 * MIB), F, F).zeros(10240),
        Row("size beyond any disk", past(qint64(1) << 62), F, F),
        Row("pax size negative", pax("-4"), F, F),
        Row("pax size 2^63", pax("9223372036854775808"), F, F),
        Row("pax size 2^63 - 1", pax("9223372036854775807"), F, F),
        Row("pax size in letters", pax("four"), F, F),
        Row("pax size larger than the file", pax("4000"), F, F),
        Row("pax size less than the header's", pax("0"), F, F),
        Row("zeros behind the end", one("a"), F, F).zeros(2048),
        Row("a million blocks of zeros", tar(), F, F).zeros(512),
    };
}

std::vector<Row> informationMembers()
{
    const auto sized = [](const QByteArray& size) {
        return information(announced(size)).file("a", "evil").end();
    };
    return {
        Row("announces 4 bytes", sized("4"), F, F),
        Row("announces 1 byte", sized("1"), F, F),
        Row("announces 1 exabyte", sized("1152921504606846976"), F, F),
        Row("announces more than 64 bits", sized("99999999999999999999"), F, F),
        Row("announces a negative size", sized("-1"), F, F),
        Row("announces letters", sized("four"), F, F),
        Row("announces nothing", sized(""), F, F),
        Row("announces in no base64",
         information("uncompressed-size = ####\n").file("a", "evil").end(), F, F),
        Row("announces bytes",
         information("uncompressed-size = __bin__NA==\n").file("a", "evil").end(), F, F),
        Row("information empty", information("").file("a", "evil").end(), F, F),
        Row("information of noise", information(QByteArray("\0\xff = \n=\n", 8)).file("a").end(), F, F),
        Row("information of 1 GiB",
         information("").with(TarBuilder::SIZE, "10000000000"), F, F).zeros(1024),
        Row("information cut", information(announced("4")).truncate(520), F, F),
        Row("information twice", information(announced("4")).file("qm_archive_info").end(), F, F),
        Row("information in a pax name",
         tar().paxPath("qm_archive_info").file("x", announced("1")).file("a", "evil").end(), F, F),
    };
}

std::vector<Row> paxData()
{
    const QByteArray path = TarBuilder::paxEntry("path", "b");
    return {
        Row("pax data of three blocks",
         onePax(TarBuilder::paxEntry("comment", QByteArray(1200, 'c')) + path), F, F),
        Row("pax data empty", onePax(""), F, F),
        Row("pax data of NUL", onePax(QByteArray(20, '\0')), F, F),
        Row("pax without digits", onePax("path=b\n"), F, F),
        Row("pax length 0", onePax("0 path=b\n"), F, F),
        Row("pax length too short", onePax("3 path=b\n"), F, F),
        Row("pax length too long", onePax("99 path=b\n"), F, F),
        Row("pax length huge", onePax("99999999999999999999 path=b\n"), F, F),
        Row("pax length of 400 digits", onePax(QByteArray(400, '9') + " path=b\n"), F, F),
        Row("pax length 2^32", onePax("4294967305 path=b\n"), F, F),
        Row("pax length negative", onePax("-9 path=b\n"), F, F),
        Row("pax length with a sign", onePax("+9 path=b\n"), F, F),
        Row("pax length with zeros", onePax("011 path=b\n"), F, F),
        Row("pax without a blank", onePax("8path=b\n"), F, F),
        Row("pax without a line feed", onePax("9 path=bX"), F, F),
        Row("pax without an equals sign", onePax("8 pathb\n"), F, F),
        Row("pax of one digit", onePax("9"), F, F),
        Row("pax path twice in one", onePax(path + TarBuilder::paxEntry("path", "c")), F, F),
        Row("pax record twice", tar().pax(path).paxPath("c").file("a", "evil").end(), F, F),
        Row("pax record for nobody", tar().file("a", "evil").pax(path).end(), F, F),
        Row("pax record X", tar().pax(path, 'X').file("a", "evil").end(), F, F),
        Row("pax record cut", tar().pax(path).truncate(700), F, F),
        Row("pax record of 1 GiB", tar().pax("").with(TarBuilder::SIZE, "10000000000"), F, F).zeros(1024),
        Row("pax record of 2^62",
         tar().pax("").with(TarBuilder::SIZE, TarBuilder::base256(1ull << 62)).end(), F, F),
        Row("GNU name of 1 GiB",
         tar().gnuName("").with(TarBuilder::SIZE, "10000000000"), F, F).zeros(1024),
        Row("global header of 1 GiB",
         tar().pax("", 'g').with(TarBuilder::SIZE, "10000000000"), F, F).zeros(1024),
        Row("GNU name empty", tar().gnuName("").file("a", "evil").end(), F, F),
        Row("GNU name of nothing", tar().member('L', "././@LongLink").file("a", "evil").end(), F, F),
    };
}

std::vector<Row> structure()
{
    const QByteArray bad(TarBuilder::BLOCK, 'x');
    const TarBuilder good = one("a");
    const auto with = [&](const char* name, const Fate& strict, const Fate& other, auto damage) {
        Row row(name, good, strict, other);
        row.damage = damage;
        return row;
    };
    using Bytes = QByteArray;
    return {
        Row("checksum wrong", tar().file("a", "evil").with(TarBuilder::CHECKSUM, "0000001").end(), F, F),
        Row("checksum of letters", tar().file("a").with(TarBuilder::CHECKSUM, "letters").end(), F, F),
        Row("no magic", tar().file("a", "evil").with(TarBuilder::MAGIC, "").end(), F, F),
        Row("no magic, checksum wrong",
         tar().file("a").with(TarBuilder::MAGIC, "").with(TarBuilder::CHECKSUM, "1").end(), F, F),
        Row("two invalid records", tar().raw(bad).raw(bad).file("a", "evil"), F, F),
        Row("three invalid records", tar().raw(bad).raw(bad).raw(bad).file("a", "evil"), F, F),
        Row("a block of NUL inside", tar().file("a", "evil").zeroBlocks(1).file("b", "evil"), F, F),
        Row("two blocks of NUL inside", tar().file("a", "evil").end().file("b", "evil"), F, F),
        Row("padding of 18 blocks", tar().file("a", "evil").zeroBlocks(18), F, F),
        Row("nothing but the end", tar().end(), F, F),
        Row("nothing but one block of NUL", tar().zeroBlocks(1), F, F),
        Row("stream empty", tar(), F, F),
        Row("stream of one byte", tar().raw("x"), F, F),
        Row("stream of text", tar().raw(QByteArray("no archive at all\n").repeated(200)), F, F),
        Row("set-user-id", tar().file("a", "evil").with(TarBuilder::MODE, "0006755").end(), F, F),
        Row("mode without a right", tar().file("a", "evil").with(TarBuilder::MODE, "0").end(), F, F),
        Row("directory without a right",
         tar().directory("d/").with(TarBuilder::MODE, "0").file("d/a", "evil").end(), F, F),
        Row("mode of letters", tar().file("a", "evil").with(TarBuilder::MODE, "rw-r--").end(), F, F),
        Row("time in the year 2242",
         tar().file("a", "evil").with(TarBuilder::MTIME, "77777777777").end(), F, F),
        Row("time before 1970",
         tar().file("a").with(TarBuilder::MTIME, TarBuilder::base256(~0ull, '\xff', '\xff')).end(), F, F),
        Row("time beyond all",
         tar().file("a").with(TarBuilder::MTIME, TarBuilder::base256((1ull << 63) - 1)).end(), F, F),
        with("file empty", F, F, [](const Bytes&) { return Bytes(); }),
        with("file of text", F, F, [](const Bytes&) { return Bytes("no archive\n"); }),
        with("plain tar", F, F, [=](const Bytes&) { return good.bytes(); }),
        with("garbage behind", F, F, [](const Bytes& bytes) { return bytes + "garbage"; }),
        with("frame twice", F, F, [](const Bytes& bytes) { return bytes + bytes; }),
        with("frame cut", F, F, [](const Bytes& bytes) { return bytes.left(bytes.size() - 1); }),
        with("frame cut in the middle", F, F, [](const Bytes& bytes) { return bytes.left(30); }),
        with("checksum of the frame wrong", F, F,
             [](const Bytes& bytes) { return bytes.left(bytes.size() - 1) + '!'; }),
        with("gzip cut", F, F, [](const Bytes&) { return Bytes("\x1f\x8b\x08\0\0\0\0\0\0\3", 10); }),
        with("window of 2 GiB", F, F, [](const Bytes&) {
            return Bytes("\x28\xb5\x2f\xfd\x00\xa8\x01\x00\x00", 9); // an empty last block
        }),
    };
}

class KusArchiveHostileTest : public testing::Test
{
protected:
    void prepare()
    {
        fs::remove_all(at("target").toStdString());
        writeBytes(at("sentinel/secret"), "secret");
        writeBytes(at("target/kept.txt"), "kept");
        writeBytes(at("target/kept/inner.txt"), "inner");
        const std::pair<const char*, const char*> links[] = {{"target/linkdir", "../sentinel"},
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

std::vector<Row> allRows()
{
    std::vector<Row> rows;
    for (const auto& part : {namesThatLead(), namesThatAreOdd(), linksAndTypes(), sizes(),
                             informationMembers(), paxData(), structure()})
        rows.insert(rows.end(), part.begin(), part.end());
    return rows;
}
} // namespace

TEST_F(KusArchiveHostileTest, EachHasItsFateAndNothingElseChanges)
{
    const QByteArray zeros = zstd(QByteArray(MIB, '\0'));
    for (const Row& row : allRows()) {
        const QByteArray frame =
            zstd(row.tar.bytes()) + zeros.repeated(row.zeroMebibytes);
        for (const bool other : {false, true}) {
            SCOPED_TRACE(row.name + std::string(other ? ", other tools" : ", strictly"));
            prepare();
            writeBytes(at("archive.tar.zst"), row.damage ? row.damage(frame) : frame);
            const Fate fate = unpack(row, other);
            const Fate& expected = other ? row.other : row.strict;
            if (qEnvironmentVariableIsSet("DUMP")) {
                printf("@%s\t%d\t%s\n", row.name, fate.extracts, fate.text.toUtf8().toPercentEncoding(" /'().:,[]-=>@+\"?").constData());
                continue;
            }
            EXPECT_EQ(fate.extracts, expected.extracts) << fate.text.toStdString();
            EXPECT_EQ(fate.text, expected.text);
        }
    }
}
