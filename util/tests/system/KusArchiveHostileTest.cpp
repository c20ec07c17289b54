// Archives made by an enemy, one table of them: what the user is told, and that nothing is changed.
#include <util/system/ArchiveZstdWriter.h>
#include <util/system/KusArchive.h>
#include <util/system/KusTarReader.h>

#include "FileBytes.h"
#include "TarBuilder.h"

#include <QtCore/QDirIterator>
#include <QtCore/QTemporaryDir>

#include <filesystem>
#include <functional>
#include <limits>

#include <sys/stat.h>
#include <unistd.h>

namespace
{
using Existing = KusArchive::ExistingFile;

constexpr qint64 MIB = 1 << 20;

QString shortened(const QString& text)
{
    return text.size() < 60 ? text : text.left(8) + QString("..(%1)").arg(text.size());
}

/// Everything below a directory, itself as well, links not followed: "NAME MODE", then "=TEXT" of a
/// file with its time where that is another than TarBuilder's, "->TARGET" of a link.
QStringList list(const QString& root)
{
    QStringList lines;
    QStringList paths{root};
    QDirIterator entries(root, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                         QDirIterator::Subdirectories);
    while (entries.hasNext())
        paths.append(entries.next());
    for (const QString& path : paths) {
        struct stat facts {};
        EXPECT_EQ(lstat(QFile::encodeName(path), &facts), 0);
        QString line = shortened(path.mid(root.size() + 1));
        if (S_ISLNK(facts.st_mode))
            line += "->" + QFileInfo(path).symLinkTarget();
        else if (S_ISDIR(facts.st_mode))
            line += "/";
        else if (!S_ISREG(facts.st_mode))
            line += "?";
        const unsigned usual = S_ISDIR(facts.st_mode) ? 0755 : 0644;
        if (!S_ISLNK(facts.st_mode) && (facts.st_mode & 07777) != usual)
            line += QString(" %1").arg(facts.st_mode & 07777, 0, 8);
        if (S_ISREG(facts.st_mode)) {
            line += "=" + shortened(QString::fromUtf8(readBytes(path)));
            if (facts.st_mtime != 1000000001)
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
    const char* name;
    TarBuilder tar;
    Fate strict;
    Fate other; // with archives of other tools allowed
    int zeroMebibytes = 0; // behind the tar, in frames of their own
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
        {"parent first", one("../evil"), F, F},
        {"parent in the middle", one("a/../../evil"), F, F},
        {"parent that stays inside", one("a/../evil"), F, F},
        {"parent last", tar().directory("a/..").end(), F, F},
        {"parent alone", tar().directory("../").end(), F, F},
        {"parent between backslashes", one("a\\..\\..\\evil"), F, F},
        {"parent before a backslash", one("..\\evil"), F, F},
        {"root", one("/evil"), F, F},
        {"root twice", one("//evil"), F, F},
        {"root of backslash", one("\\evil"), F, F},
        {"drive", one("C:/evil"), F, F},
        {"drive without a root", one("c:evil"), F, F},
        {"share", one("\\\\server\\share\\evil"), F, F},
        {"prefix with parent", tar().file("evil").with(TarBuilder::PREFIX, "a/..").end(), F, F},
        {"prefix with root", tar().file("evil").with(TarBuilder::PREFIX, "/etc").end(), F, F},
        {"pax path with parent", tar().paxPath("../evil").file("good").end(), F, F},
        {"pax path with root", tar().paxPath("/evil").file("good").end(), F, F},
        {"pax path with drive", tar().paxPath("C:\\evil").file("good").end(), F, F},
        {"pax path with NUL", tar().paxPath(QByteArray("a\0/../../evil", 13)).file("good").end(),
         F, F},
        {"pax path for a directory", tar().paxPath("../evil/").directory("good/").end(), F, F},
        {"GNU name with parent", tar().gnuName("../evil").file("good").end(), F, F},
        {"global path with parent",
         tar().pax(TarBuilder::paxEntry("path", "../evil"), 'g').file("good").end(), F, F},
        {"information with parent", tar().file("../qm_archive_info", announced("0")).end(), F, F},
    };
}

std::vector<Row> namesThatAreOdd()
{
    return {
        {"element of 255 bytes", tar().paxPath(LONG_NAME).file("n").end(), F, F},
        {"element of 256 bytes", tar().paxPath(LONG_NAME + "n").file("n").end(), F, F},
        {"name empty", one(""), F, F},
        {"pax path empty", tar().paxPath("").file("good").end(), F, F},
        {"file that is the target", one("."), F, F},
        {"file that is the target, with a slash", one("./"), F, F},
        {"directory that is the target", tar().directory("./").end(), F, F},
        {"slashes and dots", one("./a//b/./c"), F, F},
        {"file with a slash", one("a/"), F, F},
        {"directory without a slash", tar().directory("a").end(), F, F},
        {"bytes that are no text", one("a\xff\xfe"), F, F},
        {"line feed and bell", one("a\n\a"), F, F},
        {"information deeper down", tar().file("d/qm_archive_info", "evil").end(), F, F},
        {"information as a directory", tar().directory("qm_archive_info/").end(), F, F},
        {"information late", tar().file("a").file("qm_archive_info", "evil").end(), F, F},
        {"case", tar().file("A").file("a").end(), F, F},
        {"case of another letter", tar().file("\u00c9").file("\u00e9").end(), F, F},
        {"letter composed otherwise", tar().file("\u00e9").file("e\u0301").end(), F, F},
        {"case of a directory", tar().file("D/x").file("d/y").end(), F, F},
        {"case of what exists", one("KEPT.TXT"), F, F},
    };
}

std::vector<Row> linksAndTypes()
{
    const auto type = [](char flag) { return tar().member(flag, "a").end(); };
    return {
        {"symbolic link and a member through it",
         tar().link('2', "out", "../sentinel").file("out/evil", "evil").end(), F, F},
        {"the same without an end", tar().link('2', "out", "../sentinel").file("out/evil"), F, F},
        {"hard link and a member over it",
         tar().link('1', "out", "../sentinel/secret").file("out", "evil").end(), F, F},
        {"symbolic link over a directory",
         tar().directory("d/").link('2', "d", "../sentinel").file("d/evil").end(), F, F},
        {"character device", type('3'), F, F},
        {"block device", type('4'), F, F},
        {"pipe", type('6'), F, F},
        {"contiguous file", type('7'), F, F},
        {"sparse file", type('S'), F, F},
        {"type of nobody", type('%'), F, F},
        {"GNU long link", tar().gnuName("../sentinel", 'K').file("a").end(), F, F},
        {"through a link in the target", one("linkdir/evil"), F, F},
        {"through a link further down", one("kept/link/evil"), F, F},
        {"directory over a link", tar().directory("linkdir/").end(), F, F},
        {"over a link to a file", one("linkfile"), F, F},
        {"over a link to a file, skipping", one("linkfile"), F, F, 0, nullptr, Existing::SKIP},
        {"over a link to nothing", one("dangling"), F, F},
        {"through a link to nothing", one("dangling/evil"), F, F},
        {"over a link to a directory", one("linkdir"), F, F},
        {"over a directory", one("kept"), F, F},
        {"over a directory, skipping", one("kept"), F, F, 0, nullptr, Existing::SKIP},
        {"through a file", one("kept.txt/evil"), F, F},
        {"over a file", one("kept.txt"), F, F},
        {"over a file, nobody to ask", one("kept.txt"), F, F, 0, nullptr, Existing::ASK},
        {"over a file, skipping", one("kept.txt"), F, F, 0, nullptr, Existing::SKIP},
        {"file twice", tar().file("a", "1").file("a", "2").end(), F, F},
        {"file twice, nobody to ask", tar().file("a", "1").file("a", "2").end(), F, F, 0, nullptr,
         Existing::ASK},
        {"file, then a directory", tar().file("a").directory("a/").end(), F, F},
        {"file, then a file below", tar().file("a").file("a/b").end(), F, F},
        {"directory, then a file", tar().directory("a/").file("a").end(), F, F},
        {"directory twice", tar().directory("a/").file("a/b").directory("a/").end(), F, F},
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
        {"size negative in octal", oneOfSize("-0000000004"), F, F},
        {"size negative in base 256", oneOfSize(TarBuilder::base256(~0ull, '\xff', '\xff')), F, F},
        {"size 2^63", oneOfSize(TarBuilder::base256(1ull << 63)), F, F},
        {"size 2^63 - 1", oneOfSize(TarBuilder::base256((1ull << 63) - 1)), F, F},
        {"size 2^63 - 513", oneOfSize(TarBuilder::base256((1ull << 63) - 513)), F, F},
        {"size beyond 64 bits", oneOfSize(TarBuilder::base256(4, '\x80', '\x01')), F, F},
        {"size in the first byte", oneOfSize(TarBuilder::base256(4, '\x81')), F, F},
        {"size 4 in base 256", oneOfSize(TarBuilder::base256(4)), F, F},
        {"size with digit 8", oneOfSize("00000000008"), F, F},
        {"size in letters", oneOfSize("four"), F, F},
        {"size with a sign", oneOfSize("+0000000004"), F, F},
        {"size and more", oneOfSize("4 5"), F, F},
        {"size empty, data behind", oneOfSize(""), F, F},
        {"size less than the data", oneOfSize("00000000000"), F, F},
        {"size in blanks", oneOfSize("          4 "), F, F},
        {"size over all twelve bytes", oneOfSize("000000000004"), F, F},
        {"size of a directory",
         tar().directory("d/").with(TarBuilder::SIZE, "00000001000").file("a", "evil").end(), F, F},
        {"size larger than the file", past(2000).raw("evil").pad(), F, F},
        {"data cut inside of a block", tar().file("a", "evil").truncate(514), F, F},
        {"data cut at a block", tar().file("a", QByteArray(600, 'x')).truncate(1024), F, F},
        {"data cut at all", past(1), F, F},
        {"header cut", tar().file("a").file("b").truncate(700), F, F},
        {"no end", tar().file("a", "evil"), F, F},
        {"size of 10 GiB", past(10240 * MIB), F, F, 10240},
        {"size beyond any disk", past(qint64(1) << 62), F, F},
        {"pax size negative", pax("-4"), F, F},
        {"pax size 2^63", pax("9223372036854775808"), F, F},
        {"pax size 2^63 - 1", pax("9223372036854775807"), F, F},
        {"pax size in letters", pax("four"), F, F},
        {"pax size larger than the file", pax("4000"), F, F},
        {"pax size less than the header's", pax("0"), F, F},
        {"zeros behind the end", one("a"), F, F, 2048},
        {"a million blocks of zeros", tar(), F, F, 512},
    };
}

std::vector<Row> informationMembers()
{
    const auto sized = [](const QByteArray& size) {
        return information(announced(size)).file("a", "evil").end();
    };
    return {
        {"announces 4 bytes", sized("4"), F, F},
        {"announces 1 byte", sized("1"), F, F},
        {"announces 1 exabyte", sized("1152921504606846976"), F, F},
        {"announces more than 64 bits", sized("99999999999999999999"), F, F},
        {"announces a negative size", sized("-1"), F, F},
        {"announces letters", sized("four"), F, F},
        {"announces nothing", sized(""), F, F},
        {"announces in no base64",
         information("uncompressed-size = ####\n").file("a", "evil").end(), F, F},
        {"announces bytes",
         information("uncompressed-size = __bin__NA==\n").file("a", "evil").end(), F, F},
        {"information empty", information("").file("a", "evil").end(), F, F},
        {"information of noise", information(QByteArray("\0\xff = \n=\n", 8)).file("a").end(), F, F},
        {"information of 1 GiB",
         information("").with(TarBuilder::SIZE, "10000000000"), F, F, 1024},
        {"information cut", information(announced("4")).truncate(520), F, F},
        {"information twice", information(announced("4")).file("qm_archive_info").end(), F, F},
        {"information in a pax name",
         tar().paxPath("qm_archive_info").file("x", announced("1")).file("a", "evil").end(), F, F},
    };
}

std::vector<Row> paxData()
{
    const QByteArray path = TarBuilder::paxEntry("path", "b");
    return {
        {"pax data of three blocks",
         onePax(TarBuilder::paxEntry("comment", QByteArray(1200, 'c')) + path), F, F},
        {"pax path of 4000 bytes",
         tar().paxPath((QByteArray(199, 'p') + '/').repeated(20)).file("a").end(), F, F},
        {"pax data empty", onePax(""), F, F},
        {"pax data of NUL", onePax(QByteArray(20, '\0')), F, F},
        {"pax without digits", onePax("path=b\n"), F, F},
        {"pax length 0", onePax("0 path=b\n"), F, F},
        {"pax length too short", onePax("3 path=b\n"), F, F},
        {"pax length too long", onePax("99 path=b\n"), F, F},
        {"pax length huge", onePax("99999999999999999999 path=b\n"), F, F},
        {"pax length of 400 digits", onePax(QByteArray(400, '9') + " path=b\n"), F, F},
        {"pax length 2^32", onePax("4294967305 path=b\n"), F, F},
        {"pax length negative", onePax("-9 path=b\n"), F, F},
        {"pax length with a sign", onePax("+9 path=b\n"), F, F},
        {"pax length with zeros", onePax("011 path=b\n"), F, F},
        {"pax without a blank", onePax("8path=b\n"), F, F},
        {"pax without a line feed", onePax("9 path=bX"), F, F},
        {"pax without an equals sign", onePax("8 pathb\n"), F, F},
        {"pax of one digit", onePax("9"), F, F},
        {"pax path twice in one", onePax(path + TarBuilder::paxEntry("path", "c")), F, F},
        {"pax record twice", tar().pax(path).paxPath("c").file("a", "evil").end(), F, F},
        {"pax record for nobody", tar().file("a", "evil").pax(path).end(), F, F},
        {"pax record X", tar().pax(path, 'X').file("a", "evil").end(), F, F},
        {"pax record cut", tar().pax(path).truncate(700), F, F},
        {"pax record of 1 GiB", tar().pax("").with(TarBuilder::SIZE, "10000000000"), F, F, 1024},
        {"pax record of 2^62",
         tar().pax("").with(TarBuilder::SIZE, TarBuilder::base256(1ull << 62)).end(), F, F},
        {"GNU name of 1 GiB",
         tar().gnuName("").with(TarBuilder::SIZE, "10000000000"), F, F, 1024},
        {"global header of 1 GiB",
         tar().pax("", 'g').with(TarBuilder::SIZE, "10000000000"), F, F, 1024},
        {"GNU name empty", tar().gnuName("").file("a", "evil").end(), F, F},
        {"GNU name of nothing", tar().member('L', "././@LongLink").file("a", "evil").end(), F, F},
    };
}

std::vector<Row> structure()
{
    const QByteArray bad(TarBuilder::BLOCK, 'x');
    const TarBuilder good = one("a");
    const auto with = [&](const char* name, auto damage) {
        return Row{name, good, F, F, 0, damage};
    };
    using Bytes = QByteArray;
    return {
        {"checksum wrong", tar().file("a", "evil").with(TarBuilder::CHECKSUM, "0000001").end(), F,
         F},
        {"checksum of letters", tar().file("a").with(TarBuilder::CHECKSUM, "letters").end(), F, F},
        {"no magic", tar().file("a", "evil").with(TarBuilder::MAGIC, "").end(), F, F},
        {"no magic, checksum wrong",
         tar().file("a").with(TarBuilder::MAGIC, "").with(TarBuilder::CHECKSUM, "1").end(), F, F},
        {"two invalid records", tar().raw(bad).raw(bad).file("a", "evil"), F, F},
        {"three invalid records", tar().raw(bad).raw(bad).raw(bad).file("a", "evil"), F, F},
        {"a block of NUL inside", tar().file("a", "evil").zeroBlocks(1).file("b", "evil"), F, F},
        {"two blocks of NUL inside", tar().file("a", "evil").end().file("b", "evil"), F, F},
        {"padding of 18 blocks", tar().file("a", "evil").zeroBlocks(18), F, F},
        {"nothing but the end", tar().end(), F, F},
        {"nothing but one block of NUL", tar().zeroBlocks(1), F, F},
        {"stream empty", tar(), F, F},
        {"stream of one byte", tar().raw("x"), F, F},
        {"stream of text", tar().raw(QByteArray("no archive at all\n").repeated(200)), F, F},
        {"set-user-id", tar().file("a", "evil").with(TarBuilder::MODE, "0006755").end(), F, F},
        {"mode without a right", tar().file("a", "evil").with(TarBuilder::MODE, "0").end(), F, F},
        {"directory without a right",
         tar().directory("d/").with(TarBuilder::MODE, "0").file("d/a", "evil").end(), F, F},
        {"mode of letters", tar().file("a", "evil").with(TarBuilder::MODE, "rw-r--").end(), F, F},
        {"time in the year 2242",
         tar().file("a", "evil").with(TarBuilder::MTIME, "77777777777").end(), F, F},
        {"time before 1970",
         tar().file("a").with(TarBuilder::MTIME, TarBuilder::base256(~0ull, '\xff', '\xff')).end(),
         F, F},
        {"time beyond all",
         tar().file("a").with(TarBuilder::MTIME, TarBuilder::base256((1ull << 63) - 1)).end(), F,
         F},
        with("file empty", [](const Bytes&) { return Bytes(); }),
        with("file of text", [](const Bytes&) { return Bytes("no archive\n"); }),
        with("plain tar", [=](const Bytes&) { return good.bytes(); }),
        with("garbage behind", [](const Bytes& bytes) { return bytes + "garbage"; }),
        with("frame twice", [](const Bytes& bytes) { return bytes + bytes; }),
        with("frame cut", [](const Bytes& bytes) { return bytes.left(bytes.size() - 1); }),
        with("frame cut in the middle", [](const Bytes& bytes) { return bytes.left(30); }),
        with("checksum of the frame wrong",
             [](const Bytes& bytes) { return bytes.left(bytes.size() - 1) + '!'; }),
        with("gzip cut", [](const Bytes&) { return Bytes("\x1f\x8b\x08\0\0\0\0\0\0\3", 10); }),
        with("window of 2 GiB", [](const Bytes&) {
            return Bytes("\x28\xb5\x2f\xfd\x00\xa8\x01\x00\x00", 9); // an empty last block
        }),
    };
}

class KusArchiveHostileTest : public testing::Test
{
protected:
    void prepare()
    {
        std::filesystem::remove_all(at("target").toStdString());
        writeBytes(at("sentinel/secret"), "secret");
        writeBytes(at("target/kept.txt"), "kept");
        writeBytes(at("target/kept/inner.txt"), "inner");
        const std::pair<const char*, const char*> links[] = {{"target/linkdir", "../sentinel"},
                                                             {"target/linkfile", "../sentinel/secret"},
                                                             {"target/dangling", "../sentinel/none"},
                                                             {"target/kept/link", "../../sentinel"}};
        for (const auto& [path, to] : links)
            EXPECT_EQ(symlink(to, QFile::encodeName(at(path)).constData()), 0);
    }

    QString at(const char* path) const { return m_dir.filePath(QString::fromUtf8(path)); }

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
            return {false, archive.getErrorText()
                               .replace(at("archive.tar.zst"), "A")
                               .replace(at("target"), "T")};
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
