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

/// Everything below a directory, links not followed: "DIRECTORY/", "FILE=TEXT", "LINK->TARGET",
/// with the mode and the time where they are not those that TarBuilder gives.
QStringList list(const QString& root)
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

/// A frame with a checksum.
QByteArray compressed(const QByteArray& bytes)
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
Fate refused(const QString& text)
{
    return {false, text};
}
Fate unsafe(const char* name, const QString& fault)
{
    return refused(QString("Cannot extract '%1' from archive file 'A':\n%2").arg(name, fault));
}
Fate unsafeLink(const char* name, const char* link)
{
    return unsafe(name, QString("'T/%1' is a symbolic link: nothing is extracted through it or in "
                                "its place.")
                            .arg(link));
}
Fate unreadable(const char* name, const char* fault, int offset)
{
    return refused(QString("Cannot extract '%1' from archive file 'A': %2 (at byte %3).")
                       .arg(name, fault, QString::number(offset)));
}
Fate cut(const char* name, int offset)
{
    return refused(QString("Cannot extract '%1' because archive file 'A' is corrupted.\n"
                           "The archive ends at byte %2, within its data.")
                       .arg(name, QString::number(offset)));
}
Fate tooMuch(const char* what)
{
    return refused(
        QString("Archive file 'A' holds more than the 64.00 MiB that are allowed.\n%1").arg(what));
}
Fate noArchive(const char* why)
{
    return refused(QString("'A' is not a valid archive file.\n%1").arg(why));
}
const Fate CORRUPT = refused("Corrupted archive file 'A' (more than 2 invalid records).");
const Fate UNDECODABLE = refused("Cannot decode extended information './PaxHeaders.1/x' because "
                                 "archive file 'A' is corrupted.");
const char* const UPWARDS = "Its name leads upwards with \"..\".";
const char* const ABSOLUTE = "Its name is absolute.";
const char* const DRIVE = "Its name begins with a drive.";
const char* const FOLDED = "Its name differs only in case, or in how letters are composed, from "
                           "that of an earlier member.";
const char* const BAD_SIZE = "its size is no number, or a negative one";

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
        Row("parent first", one("../evil"), unsafe("../evil", UPWARDS)),
        Row("parent in the middle", one("a/../../evil"), unsafe("a/../../evil", UPWARDS)),
        Row("parent that stays inside", one("a/../evil"), unsafe("a/../evil", UPWARDS)),
        Row("parent last", tar().directory("a/..").end(), unsafe("a/..", UPWARDS)),
        Row("parent alone", tar().directory("../").end(), unsafe("..", UPWARDS)),
        Row("parent between backslashes", one("a\\..\\..\\evil"),
            unsafe("a\\..\\..\\evil", UPWARDS)),
        Row("parent before a backslash", one("..\\evil"), unsafe("..\\evil", UPWARDS)),
        Row("root", one("/evil"), unsafe("/evil", ABSOLUTE)),
        Row("root twice", one("//evil"), unsafe("//evil", ABSOLUTE)),
        Row("root of backslash", one("\\evil"), unsafe("\\evil", ABSOLUTE)),
        Row("drive", one("C:/evil"), unsafe("C:/evil", DRIVE)),
        Row("drive without a root", one("c:evil"), unsafe("c:evil", DRIVE)),
        Row("share", one("\\\\server\\share\\evil"), unsafe("\\\\server\\share\\evil", ABSOLUTE)),
        Row("prefix with parent", tar().file("evil").with(TarBuilder::PREFIX, "a/..").end(),
            unsafe("a/../evil", UPWARDS)),
        Row("prefix with root", tar().file("evil").with(TarBuilder::PREFIX, "/etc").end(),
            unsafe("/etc/evil", ABSOLUTE)),
        Row("pax path with parent", tar().paxPath("../evil").file("good").end(),
            unsafe("../evil", UPWARDS)),
        Row("pax path with root", tar().paxPath("/evil").file("good").end(),
            unsafe("/evil", ABSOLUTE)),
        Row("pax path with drive", tar().paxPath("C:\\evil").file("good").end(),
            unsafe("C:\\evil", DRIVE)),
        Row("pax path with NUL", tar().paxPath(QByteArray("a\0/../../evil", 13)).file("good").end(),
            unsafe("a", "Its name holds a NUL.")),
        Row("pax path for a directory", tar().paxPath("../evil/").directory("good/").end(),
            unsafe("../evil", UPWARDS)),
        Row("GNU name with parent", tar().gnuName("../evil").file("good").end(), CORRUPT,
            unsafe("../evil", UPWARDS)),
        Row("global path with parent",
            tar().pax(TarBuilder::paxEntry("path", "../evil"), 'g').file("good").end(), CORRUPT,
            extracts("good=")),
        Row("information with parent", tar().file("../qm_archive_info", announced("0")).end(),
            extracts("")),
    };
}

std::vector<Row> namesThatAreOdd()
{
    return {
        Row("element of 255 bytes", tar().paxPath(LONG_NAME).file("n").end(),
            extracts("d../ d../n..=")),
        Row("element of 256 bytes", tar().paxPath(LONG_NAME + "n").file("n").end(),
            unsafe("d../n..", "Its name has an element of more than 255 bytes.")),
        Row("path of 4,001 bytes",
            tar().paxPath((QByteArray(249, 'p') + '/').repeated(16) + 'q').file("a").end(),
            unsafe("p../p../p../p../p../p../p../p../p../p../p../p../p../p../p../p../q",
                   "Its name has more than 4000 bytes.")),
        Row("placeholders", one("../%1%2%3"), unsafe("../%1%2%3", UPWARDS)),
        Row("backslash inside", one("a\\b"), extracts("a\\b=evil")),
        Row("name empty", one(""), CORRUPT, unreadable("", "it has no name", 0)),
        Row("pax path empty", tar().paxPath("").file("good").end(), extracts("good=")),
        Row("file that is the target", one("."),
            unsafe(".", "It is a file with the name of a directory.")),
        Row("file that is the target, with a slash", one("./"),
            unsafe("./", "It is a file with the name of a directory."),
            refused("Corrupted archive file 'A' (what stands at byte 512, 'evil', is no header of "
                    "a tar archive).")),
        Row("directory that is the target", tar().directory("./").end(), extracts("")),
        Row("slashes and dots", one("./a//b/./c"), extracts("a/ a/b/ a/b/c=evil")),
        Row("file with a slash", one("a/"), extracts("a=evil"),
            refused("Corrupted archive file 'A' (what stands at byte 512, 'evil', is no header of "
                    "a tar archive).")),
        Row("directory without a slash", tar().directory("a").end(), extracts("a/")),
        Row("bytes that are no text", one("a\xff\xfe"), extracts("a\u00ff\u00fe=evil")),
        Row("line feed and bell", one("a\n\a"), extracts("a\n\a=evil")),
        Row("information deeper down", tar().file("d/qm_archive_info", "evil").end(), extracts("")),
        Row("information as a directory", tar().directory("qm_archive_info/").end(),
            extracts("qm_archive_info/")),
        Row("information late", tar().file("a").file("qm_archive_info", "evil").end(),
            extracts("a= qm_archive_info=evil")),
        Row("case", tar().file("A").file("a").end(), unsafe("a", FOLDED)),
        Row("case of another letter", tar().file("\u00c9").file("\u00e9").end(),
            unsafe("\u00e9", FOLDED)),
        Row("letter composed otherwise", tar().file("\u00e9").file("e\u0301").end(),
            unsafe("e\u0301", FOLDED)),
        Row("case of a directory", tar().file("D/x").file("d/y").end(), unsafe("d/y", FOLDED)),
        Row("case of what exists", one("KEPT.TXT"), extracts("KEPT.TXT=evil")),
    };
}

std::vector<Row> linksAndTypes()
{
    const auto type = [](char flag) { return tar().member(flag, "a").end(); };
    return {
        Row("symbolic link and a member through it",
            tar().link('2', "out", "../sentinel").file("out/evil", "evil").end(), CORRUPT,
            unreadable("out", "it is a symbolic link; links are never written", 0)),
        Row("the same without an end", tar().link('2', "out", "../sentinel").file("out/evil"),
            extracts("out/ out/evil="),
            unreadable("out", "it is a symbolic link; links are never written", 0)),
        Row("hard link and a member over it",
            tar().link('1', "out", "../sentinel/secret").file("out", "evil").end(), CORRUPT,
            unreadable("out", "it is a hard link; links are never written", 0)),
        Row("hard link of old tools",
            tar().link('1', "out", "../sentinel/secret").with(TarBuilder::MAGIC, "").end(), CORRUPT,
            unreadable("out", "it is a hard link; links are never written", 0)),
        Row("symbolic link over a directory",
            tar().directory("d/").link('2', "d", "../sentinel").file("d/evil").end(), CORRUPT,
            unreadable("d", "it is a symbolic link; links are never written", 512)),
        Row("character device", type('3'), CORRUPT,
            unreadable("a", "it is a device; devices are never written", 0)),
        Row("block device", type('4'), CORRUPT,
            unreadable("a", "it is a device; devices are never written", 0)),
        Row("pipe", type('6'), CORRUPT,
            unreadable("a", "it is a pipe; pipes are never written", 0)),
        Row("contiguous file", type('7'), CORRUPT,
            unreadable("a", "it is of a kind that is not read, 0x37", 0)),
        Row("sparse file", type('S'), CORRUPT,
            unreadable("a", "it is a sparse file; sparse files are not read", 0)),
        Row("type of nobody", type('%'), CORRUPT,
            unreadable("a", "it is of a kind that is not read, 0x25", 0)),
        Row("GNU long link", tar().gnuName("../sentinel", 'K').file("a").end(), CORRUPT,
            extracts("a=")),
        Row("through a link in the target", one("linkdir/evil"),
            unsafeLink("linkdir/evil", "linkdir")),
        Row("through a link further down", one("kept/link/evil"),
            unsafeLink("kept/link/evil", "kept/link")),
        Row("through a link by dots and slashes", tar().directory("kept/./link//new/d/").end(),
            unsafeLink("kept/./link//new/d", "kept/link")),
        Row("directory over a link", tar().directory("linkdir/").end(),
            unsafeLink("linkdir", "linkdir")),
        Row("over a link to a file", one("linkfile"), unsafeLink("linkfile", "linkfile")),
        Row("over a link to a file, skipping", one("linkfile"), unsafeLink("linkfile", "linkfile"))
            .where(Existing::SKIP),
        Row("over a link to nothing", one("dangling"), unsafeLink("dangling", "dangling")),
        Row("through a link to nothing", one("dangling/evil"),
            unsafeLink("dangling/evil", "dangling")),
        Row("over a link to a directory", one("linkdir"), unsafeLink("linkdir", "linkdir")),
        Row("over a hard link", one("hardlink"), extracts("hardlink=evil")),
        Row("over a directory", one("kept"),
            refused("Cannot create file 'T/kept'.\nThere is a directory in its place.")),
        Row("over a directory, skipping", one("kept"),
            refused("Cannot create file 'T/kept'.\nThere is a directory in its place."))
            .where(Existing::SKIP),
        Row("through a file", one("kept.txt/evil"),
            refused("Cannot create directory 'T/kept.txt'.\nThere is a file in the place of a "
                    "directory.")),
        Row("over a file", one("kept.txt"), extracts("kept.txt=evil")),
        Row("over a file, nobody to ask", one("kept.txt"),
            refused("File 'T/kept.txt' already exists."))
            .where(Existing::ASK),
        Row("file twice", tar().file("a", "1").file("a", "2").end(), extracts("a=2")),
        Row("file, then a directory", tar().file("a").directory("a/").end(),
            refused("Cannot create directory 'T/a'.\nAn earlier member of archive file 'A' is a "
                    "file in the place of a directory.")),
        Row("file, then a file below", tar().file("a").file("a/b").end(),
            refused("Cannot create file 'T/a/b'.\nAn earlier member of archive file 'A' is a file "
                    "in the place of a directory.")),
        Row("directory, then a file", tar().directory("a/").file("a").end(),
            refused("Cannot create file 'T/a'.\nAn earlier member of archive file 'A' is a "
                    "directory of its name.")),
        Row("directory twice", tar().directory("a/").file("a/b").directory("a/").end(),
            extracts("a/ a/b=")),
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
        Row("size negative in octal", oneOfSize("-0000000004"), CORRUPT,
            unreadable("a", BAD_SIZE, 0)),
        Row("size negative in base 256", oneOfSize(TarBuilder::base256(~0ull, '\xff', '\xff')),
            CORRUPT, unreadable("a", BAD_SIZE, 0)),
        Row("size 2^63", oneOfSize(TarBuilder::base256(1ull << 63)), CORRUPT,
            unreadable("a", BAD_SIZE, 0)),
        Row("size 2^63 - 1", oneOfSize(TarBuilder::base256((1ull << 63) - 1)),
            tooMuch("'a', at byte 0 and of 8.00 EiB, goes beyond it.")),
        Row("size 2^63 - 513", oneOfSize(TarBuilder::base256((1ull << 63) - 513)),
            tooMuch("'a', at byte 0 and of 8.00 EiB, goes beyond it.")),
        Row("size beyond 64 bits", oneOfSize(TarBuilder::base256(4, '\x80', '\x01')), CORRUPT,
            unreadable("a", BAD_SIZE, 0)),
        Row("size in the first byte", oneOfSize(TarBuilder::base256(4, '\x81')), CORRUPT,
            unreadable("a", BAD_SIZE, 0)),
        Row("size 4 in base 256", oneOfSize(TarBuilder::base256(4)), extracts("a=evil")),
        Row("size with digit 8", oneOfSize("00000000008"), CORRUPT, unreadable("a", BAD_SIZE, 0)),
        Row("size in letters", oneOfSize("four"), CORRUPT, unreadable("a", BAD_SIZE, 0)),
        Row("size with a sign", oneOfSize("+0000000004"), CORRUPT, unreadable("a", BAD_SIZE, 0)),
        Row("size and more", oneOfSize("4 5"), extracts("a=evil")),
        Row("size empty, data behind", oneOfSize(""), CORRUPT, unreadable("a", BAD_SIZE, 0)),
        Row("size less than the data", oneOfSize("00000000000"), CORRUPT,
            refused("Corrupted archive file 'A' (what stands at byte 512, 'evil', is no header of "
                    "a tar archive).")),
        Row("size in blanks", oneOfSize("          4 "), extracts("a=evil")),
        Row("size over all twelve bytes", oneOfSize("000000000004"), extracts("a=evil")),
        Row("size of a directory",
            tar().directory("d/").with(TarBuilder::SIZE, "00000001000").file("a", "evil").end(),
            extracts("a=evil d/")),
        Row("size larger than the file", past(2000).raw("evil").pad(), cut("a", 1024)),
        Row("data cut inside of a block", tar().file("a", "evil").truncate(514), cut("a", 514)),
        Row("data cut at a block", tar().file("a", QByteArray(600, 'x')).truncate(1024),
            cut("a", 1024)),
        Row("data cut at all", past(1), cut("a", 512)),
        Row("header cut", tar().file("a").file("b").truncate(700), extracts("a="),
            refused("Corrupted archive file 'A' (it ends at byte 700, within a header).")),
        Row("no end", tar().file("a", "evil"), extracts("a=evil")),
        Row("size of 10 GiB", past(10240 * MIB),
            tooMuch("'a', at byte 0 and of 10.00 GiB, goes beyond it."))
            .zeros(10240),
        Row("size beyond any disk", past(qint64(1) << 62),
            tooMuch("'a', at byte 0 and of 4.00 EiB, goes beyond it.")),
        Row("pax size negative", pax("-4"), extracts("a=evil"), UNDECODABLE),
        Row("pax size 2^63", pax("9223372036854775808"), extracts("a=evil"), UNDECODABLE),
        Row("pax size 2^63 - 1", pax("9223372036854775807"), extracts("a=evil"),
            tooMuch("'a', at byte 1024 and of 8.00 EiB, goes beyond it.")),
        Row("pax size in letters", pax("four"), extracts("a=evil"), UNDECODABLE),
        Row("pax size larger than the file", pax("4000"), extracts("a=evil"), cut("a", 3072)),
        Row("pax size less than the header's", pax("0"), extracts("a=evil"),
            refused("Corrupted archive file 'A' (what stands at byte 1536, 'evil', is no header of "
                    "a tar archive).")),
        Row("zeros behind the end", one("a"), CORRUPT,
            tooMuch("What follows its last member goes beyond it at byte 67108864."))
            .zeros(2048),
        Row("a million blocks of zeros", tar(), CORRUPT,
            tooMuch("What follows its last member goes beyond it at byte 67108864."))
            .zeros(512),
    };
}

std::vector<Row> informationMembers()
{
    const auto sized = [](const QByteArray& size) {
        return information(announced(size)).file("a", "evil").end();
    };
    return {
        Row("announces 4 bytes", sized("4"), extracts("a=evil")),
        Row("announces 1 byte", sized("1"),
            refused("Archive file 'A' holds more than the 1 bytes that it announces.\n'a', at byte "
                    "1024 and of 4 bytes, goes beyond it.")),
        Row("announces 1 exabyte", sized("1152921504606846976"),
            refused("Directory 'T' have only..")),
        Row("announces more than 64 bits", sized("99999999999999999999"), extracts("a=evil")),
        Row("announces a negative size", sized("-1"), extracts("a=evil")),
        Row("announces letters", sized("four"), extracts("a=evil")),
        Row("announces nothing", sized(""), extracts("a=evil")),
        Row("announces in no base64",
            information("uncompressed-size = ####\n").file("a", "evil").end(), extracts("a=evil")),
        Row("announces bytes",
            information("uncompressed-size = __bin__NA==\n").file("a", "evil").end(),
            extracts("a=evil")),
        Row("information empty", information("").file("a", "evil").end(), extracts("a=evil")),
        Row("information of noise", information(QByteArray("\0\xff = \n=\n", 8)).file("a").end(),
            extracts("a=")),
        Row("information of 1 GiB", information("").with(TarBuilder::SIZE, "10000000000"),
            refused("Cannot extract 'qm_archive_info' because archive file 'A' is corrupted.\nIt "
                    "has 1.00 GiB; at most 4.00 MiB are allowed."))
            .zeros(1024),
        Row("information of too many lines", information(QByteArray("a = \n").repeated(10001)),
            refused("Cannot extract 'qm_archive_info' because archive file 'A' is corrupted.\nIt "
                    "has more than 10000 lines.")),
        Row("information cut", information(announced("4")).truncate(520),
            cut("qm_archive_info", 520)),
        Row("information twice", information(announced("4")).file("qm_archive_info").end(),
            extracts("qm_archive_info=")),
        Row("information in a pax name",
            tar().paxPath("qm_archive_info").file("x", announced("1")).file("a", "evil").end(),
            extracts("a=evil qm_archive_info=uncompressed-size = MQ==\n")),
    };
}

std::vector<Row> paxData()
{
    const QByteArray path = TarBuilder::paxEntry("path", "b");
    return {
        Row("pax data of three blocks",
            onePax(TarBuilder::paxEntry("comment", QByteArray(1200, 'c')) + path),
            extracts("b=evil")),
        Row("pax data empty", onePax(""), extracts("a=evil")),
        Row("pax data of NUL", onePax(QByteArray(20, '\0')), extracts("a=evil")),
        Row("pax without digits", onePax("path=b\n"), UNDECODABLE),
        Row("pax length 0", onePax("0 path=b\n"), UNDECODABLE),
        Row("pax length too short", onePax("3 path=b\n"), UNDECODABLE),
        Row("pax length too long", onePax("99 path=b\n"), UNDECODABLE),
        Row("pax length huge", onePax("99999999999999999999 path=b\n"), UNDECODABLE),
        Row("pax length of 400 digits", onePax(QByteArray(400, '9') + " path=b\n"), UNDECODABLE),
        Row("pax length 2^32", onePax("4294967305 path=b\n"), UNDECODABLE),
        Row("pax length negative", onePax("-9 path=b\n"), UNDECODABLE),
        Row("pax length with a sign", onePax("+9 path=b\n"), UNDECODABLE),
        Row("pax length with zeros", onePax("011 path=b\n"), extracts("b=evil")),
        Row("pax without a blank", onePax("8path=b\n"), UNDECODABLE),
        Row("pax without a line feed", onePax("9 path=bX"), UNDECODABLE),
        Row("pax without an equals sign", onePax("8 pathb\n"), extracts("a=evil")),
        Row("pax of one digit", onePax("9"), UNDECODABLE),
        Row("pax path twice in one", onePax(path + TarBuilder::paxEntry("path", "c")),
            extracts("c=evil")),
        Row("pax record twice", tar().pax(path).paxPath("c").file("a", "evil").end(),
            extracts("c=evil")),
        Row("pax record for nobody", tar().file("a", "evil").pax(path).end(), extracts("a=evil"),
            refused("Corrupted archive file 'A' (it ends at byte 2560, before the member of "
                    "extended information 'b').")),
        Row("pax record X", tar().pax(path, 'X').file("a", "evil").end(), extracts("b=evil")),
        Row("pax record cut", tar().pax(path).truncate(700), cut("./PaxHeaders.1/x", 700)),
        Row("pax record of 1 GiB", tar().pax("").with(TarBuilder::SIZE, "10000000000"),
            refused("Cannot decode extended information './PaxHeaders.1/x' because archive file "
                    "'A' is corrupted.\nIt has 1.00 GiB; at most 1.00 MiB are allowed."))
            .zeros(1024),
        Row("pax record of 2^62",
            tar().pax("").with(TarBuilder::SIZE, TarBuilder::base256(1ull << 62)).end(),
            refused("Cannot decode extended information './PaxHeaders.1/x' because archive file "
                    "'A' is corrupted.\nIt has 4.00 EiB; at most 1.00 MiB are allowed.")),
        Row("GNU name of 1 GiB", tar().gnuName("").with(TarBuilder::SIZE, "10000000000"), CORRUPT,
            refused("Cannot decode extended information '././@LongLink' because archive file 'A' "
                    "is corrupted.\nIt has 1.00 GiB; at most 1.00 MiB are allowed."))
            .zeros(1024),
        Row("global header of 1 GiB", tar().pax("", 'g').with(TarBuilder::SIZE, "10000000000"),
            CORRUPT, tooMuch("'./PaxHeaders.1/x', at byte 0 and of 1.00 GiB, goes beyond it."))
            .zeros(1024),
        Row("GNU name empty", tar().gnuName("").file("a", "evil").end(), CORRUPT,
            extracts("a=evil")),
        Row("GNU name of nothing", tar().member('L', "././@LongLink").file("a", "evil").end(),
            CORRUPT, extracts("a=evil")),
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
        Row("checksum wrong", tar().file("a", "evil").with(TarBuilder::CHECKSUM, "0000001").end(),
            extracts("a=evil")),
        Row("checksum of letters", tar().file("a").with(TarBuilder::CHECKSUM, "letters").end(),
            extracts("a=")),
        Row("no magic", tar().file("a", "evil").with(TarBuilder::MAGIC, "").end(), CORRUPT,
            extracts("a=evil")),
        Row("no magic, checksum wrong",
            tar().file("a").with(TarBuilder::MAGIC, "").with(TarBuilder::CHECKSUM, "1").end(),
            CORRUPT,
            noArchive("Decompressed, it does not begin with the header of a tar archive.")),
        Row("two invalid records", tar().raw(bad).raw(bad).file("a", "evil"), extracts("a=evil"),
            noArchive("Decompressed, it does not begin with the header of a tar archive.")),
        Row("three invalid records", tar().raw(bad).raw(bad).raw(bad).file("a", "evil"), CORRUPT,
            noArchive("Decompressed, it does not begin with the header of a tar archive.")),
        Row("a block of NUL inside", tar().file("a", "evil").zeroBlocks(1).file("b", "evil"),
            extracts("a=evil b=evil")),
        Row("two blocks of NUL inside", tar().file("a", "evil").end().file("b", "evil"),
            extracts("a=evil b=evil"), extracts("a=evil")),
        Row("padding of 18 blocks", tar().file("a", "evil").zeroBlocks(18), CORRUPT,
            extracts("a=evil")),
        Row("nothing but the end", tar().end(), extracts("")),
        Row("nothing but one block of NUL", tar().zeroBlocks(1), extracts("")),
        Row("stream empty", tar(), noArchive("Decompressed, it is shorter than one header.")),
        Row("stream of one byte", tar().raw("x"),
            noArchive("Decompressed, it is shorter than one header.")),
        Row("stream of text", tar().raw(QByteArray("no archive at all\n").repeated(200)), CORRUPT,
            noArchive("Decompressed, it does not begin with the header of a tar archive.")),
        Row("stream of little text", tar().raw(QByteArray("no archive at all\n").repeated(30)),
            noArchive("Decompressed, it holds no member of a tar archive."),
            noArchive("Decompressed, it does not begin with the header of a tar archive.")),
        Row("set-user-id", tar().file("a", "evil").with(TarBuilder::MODE, "0006755").end(),
            extracts("a 755=evil")),
        Row("mode without a right to write",
            tar().file("a", "evil").with(TarBuilder::MODE, "0000400").end(),
            extracts("a 400=evil")),
        Row("directory without a right to write",
            tar().directory("d/").with(TarBuilder::MODE, "500").file("d/a", "evil").end(),
            extracts("d/ 500 d/a=evil")),
        Row("mode of letters", tar().file("a", "evil").with(TarBuilder::MODE, "rw-r--").end(),
            extracts("a=evil")),
        Row("time in the year 2242",
            tar().file("a", "evil").with(TarBuilder::MTIME, "77777777777").end(),
            extracts("a=evil @later")),
        Row("time before 1970",
            tar()
                .file("a")
                .with(TarBuilder::MTIME, TarBuilder::base256(~0ull, '\xff', '\xff'))
                .end(),
            extracts("a= @-1")),
        Row("time beyond all",
            tar().file("a").with(TarBuilder::MTIME, TarBuilder::base256((1ull << 63) - 1)).end(),
            extracts("a= @later")),
        with("plain tar", noArchive("It is compressed with neither Zstandard nor gzip."),
             noArchive("It is compressed with neither Zstandard nor gzip."),
             [=](const Bytes&) { return good.bytes(); }),
        with("garbage behind",
             refused("Corrupted archive file 'A' (what follows the compressed data is none, at "
                     "byte 2057)."),
             refused("Corrupted archive file 'A' (what follows the compressed data is none, at "
                     "byte 2057)."),
             [](const Bytes& bytes) { return bytes + "garbage"; }),
        with("frame twice", CORRUPT, extracts("a=evil"),
             [](const Bytes& bytes) { return bytes + bytes; }),
        with("frame cut", refused("Corrupted archive file 'A' (it is cut off, at byte 2056)."),
             refused("Corrupted archive file 'A' (it is cut off, at byte 2056)."),
             [](const Bytes& bytes) { return bytes.left(bytes.size() - 1); }),
        with("checksum of the frame wrong",
             refused("Corrupted archive file 'A' (Zstd error: Restored data doesn't match "
                     "checksum, at byte 86)."),
             refused("Corrupted archive file 'A' (Zstd error: Restored data doesn't match "
                     "checksum, at byte 86)."),
             [=](const Bytes&) {
                 const Bytes bytes = compressed(good.bytes());
                 return bytes.left(bytes.size() - 1) + '!';
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
    bool isPrepared = false;
    for (const Row& row : allRows()) {
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
