// Archives whose sizes, information, extended headers or structure lie.
#include "HostileArchives.h"

#include <util/system/ArchiveZstdWriter.h>
#include <util/system/KusTarReader.h>

using namespace HostileArchives;

namespace
{
/// A frame with a checksum.
QByteArray compressed(const QByteArray& bytes)
{
    QTemporaryDir dir;
    ArchiveZstdWriter writer(dir.filePath("frame"));
    writer.open("wb", 1, 1);
    EXPECT_TRUE(writer.write(bytes.constData(), bytes.size()) && writer.close());
    return readBytes(dir.filePath("frame"));
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
const Fate UNDECODABLE = refused("Cannot decode extended information './PaxHeaders.1/x' because "
                                 "archive file 'A' is corrupted.");
const char* const BAD_SIZE = "its size is no number, or a negative one";

TarBuilder information(const QByteArray& data)
{
    return tar().file(KusTarReader::INFORMATION_NAME, data);
}
TarBuilder oneOfSize(const QByteArray& field)
{
    return tar().file("a", "evil").with(TarBuilder::SIZE, field).end();
}
TarBuilder onePax(const QByteArray& data)
{
    return tar().pax(data).file("a", "evil").end();
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

class KusArchiveHostileDataTest : public HostileArchiveTest
{
};
} // namespace

TEST_F(KusArchiveHostileDataTest, SizesThatLie)
{
    expectFates(sizes());
}

TEST_F(KusArchiveHostileDataTest, InformationThatLies)
{
    expectFates(informationMembers());
}

TEST_F(KusArchiveHostileDataTest, PaxData)
{
    expectFates(paxData());
}

TEST_F(KusArchiveHostileDataTest, BrokenStructure)
{
    expectFates(structure());
}
