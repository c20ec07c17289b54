// Hostile names, and members that are links or other things, or stand where there is something.
#include "HostileArchives.h"

using namespace HostileArchives;

namespace
{
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
const char* const UPWARDS = "Its name leads upwards with \"..\".";
const char* const ABSOLUTE = "Its name is absolute.";
const char* const DRIVE = "Its name begins with a drive.";
const char* const FOLDED = "Its name differs only in case, or in how letters are composed, from "
                           "that of an earlier member.";
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

class KusArchiveHostileNamesTest : public HostileArchiveTest
{
};
} // namespace

TEST_F(KusArchiveHostileNamesTest, NamesThatLeadOutside)
{
    expectFates(namesThatLead());
}

TEST_F(KusArchiveHostileNamesTest, OddNames)
{
    expectFates(namesThatAreOdd());
}

TEST_F(KusArchiveHostileNamesTest, LinksTypesAndWhatIsInTheWay)
{
    expectFates(linksAndTypes());
}
