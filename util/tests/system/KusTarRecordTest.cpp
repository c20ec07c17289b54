#include <util/system/KusTarRecord.h>

#include "CapturedLog.h"
#include "ErrorText.h"
#include "FileBytes.h"

#include <util/system/KusTarFile.h>

#include <basic/error/HbeDiskError.h>
#include <basic/error/HbeProgrammingError.h>

#include <unistd.h>

namespace
{
constexpr qint64 GIB_8 = qint64(1) << 33;

KusTarFile plainFile(const QByteArray& name)
{
    KusTarFile file;
    file.name = name;
    return file;
}

KusTarFile directory(const QByteArray& name)
{
    KusTarFile file = plainFile(name);
    file.isDirectory = true;
    return file;
}

template <class T>
KusTarFile with(T KusTarFile::*member, const T& value)
{
    KusTarFile file = plainFile("a");
    file.*member = value;
    return file;
}

QByteArray nul(int count)
{
    return QByteArray(count, '\0');
}

QByteArray field(const KusTarRecord& record, int offset, int size)
{
    return record.header().mid(offset, size);
}
} // namespace

TEST(KusTarRecordTest, WritesEachFieldByteForByte)
{
    const QByteArray of100(100, 'n');
    const QByteArray of120(120, 'd');
    const struct {
        const char* name;
        KusTarFile file;
        QByteArray directory;
        int offset;
        QByteArray bytes;
        bool isExtension = false;
    } rows[] = {
        {"name", plainFile("a"), "d/e", 0, "d/e/a" + nul(95)},
        {"no directory", plainFile("a"), "", 0, "a" + nul(99)},
        {"directory", directory("a"), "d", 0, "d/a/" + nul(96)},
        {"name of 100 bytes", plainFile(of100), "", 0, of100},
        {"prefix of it", plainFile(of100), "", 345, nul(155)},
        {"name behind a prefix", plainFile("a"), of120, 0, "a" + nul(99)},
        {"prefix", plainFile("a"), of120 + '/', 345, of120 + nul(35)},
        {"directory of 100 bytes", directory(of100), "", 0, of100, true},
        {"cut prefix", plainFile("a"), QByteArray(156, 'd'), 345, QByteArray(155, 'd'), true},
        {"whole prefix", plainFile("a"), QByteArray(155, 'd'), 345, QByteArray(155, 'd')},
        {"mode", with(&KusTarFile::permissionBits, 0751), "", 100, "0000751" + nul(1)},
        {"no mode", with(&KusTarFile::permissionBits, 0), "", 100, "0000000" + nul(1)},
        {"owner", with<qint64>(&KusTarFile::ownerId, 1000), "", 108, "0001750" + nul(1)},
        {"owner too large", with<qint64>(&KusTarFile::ownerId, 1 << 21), "", 108,
         "0000000" + nul(1)},
        {"unknown group", plainFile("a"), "", 116, "0000000" + nul(1)},
        {"largest octal size", with(&KusTarFile::size, GIB_8 - 1), "", 124, "77777777777" + nul(1)},
        {"binary size", with(&KusTarFile::size, GIB_8), "", 124, "\x80" + nul(6) + "\2" + nul(4)},
        {"time", with<qint64>(&KusTarFile::modifSeconds, 1600000000), "", 136,
         "13727410000" + nul(1)},
        {"short time", with<qint64>(&KusTarFile::modifSeconds, 8), "", 136, "10" + nul(10)},
        {"time before 1970", with<qint64>(&KusTarFile::modifSeconds, -1), "", 136, "0" + nul(11)},
        {"end of the checksum", plainFile("a"), "", 154, nul(1) + ' '},
        {"type, link, magic", plainFile("a"), "", 156, "0" + nul(100) + "ustar" + nul(1) + "00"},
        {"type of a directory", directory("a"), "", 156, "5"},
        {"names of owners", with<QByteArray>(&KusTarFile::ownerName, "ann"), "", 265,
         "ann" + nul(29) + "Unknown" + nul(25) + nul(16)},
        {"end", plainFile("a"), of120, 500, nul(12)},
    };
    for (const auto& row : rows) {
        const KusTarRecord record(row.file, row.directory);
        EXPECT_EQ(field(record, row.offset, row.bytes.size()), row.bytes) << row.name;
        EXPECT_EQ(record.isExtension(), row.isExtension) << row.name;
        EXPECT_TRUE(record.isValid() && record.hasRightChecksum()) << row.name;
    }
}

TEST(KusTarRecordTest, TakesTheFactsOfAFileOnDisk)
{
    const QTemporaryDir folder;
    const QString path = writeBytes(folder.filePath("sparse"));
    ASSERT_TRUE(QFile::resize(path, GIB_8));
    const KusTarRecord record(path, "d");
    EXPECT_EQ(record.nameBytes(), "d/sparse");
    EXPECT_EQ(record.size(), GIB_8);
    EXPECT_EQ(record.modifTime().toSecsSinceEpoch(),
              QFileInfo(path).lastModified().toSecsSinceEpoch());
    EXPECT_EQ(KusTarRecord(folder.path(), "", "other").nameBytes(), "other/");
    EXPECT_FALSE(KusTarRecord(folder.filePath("missing"), "d").isValid());
}

TEST(KusTarRecordTest, PutsAPaxRecordBeforeANameThatDoesNotFit)
{
    KusTarRecord header;
    QByteArray data;
    const QString long120 = QString(120, 'd');
    const QString long160 = QString(160, 'd');
    const QTemporaryDir folder;
    const QString path = writeBytes(folder.filePath(QString(30, 'n')));
    EXPECT_FALSE(KusTarRecord::createPaxRecord(path, long120, header, data));
    EXPECT_FALSE(header.isValid());

    ASSERT_TRUE(KusTarRecord::createPaxRecord(path, long160, header, data));
    const QByteArray pid = QByteArray::number(qint64(::getpid()));
    EXPECT_EQ(header.nameBytes(), "./PaxHeaders." + pid + '/' + QByteArray(30, 'n'));
    EXPECT_TRUE(header.isValid() && header.isExtension() && header.hasRightChecksum());
    EXPECT_EQ(header.typeFlag(), 'x');
    const QByteArray record = "201 path=" + QByteArray(160, 'd') + '/' + QByteArray(30, 'n') + "\n";
    EXPECT_EQ(header.size(), record.size());
    EXPECT_EQ(data, record + nul(512 - record.size()));

    ASSERT_TRUE(KusTarRecord::createPaxRecord(plainFile(QByteArray(101, 'n')), "d", header, data));
    EXPECT_EQ(field(header, 345, 3), "d" + nul(2));
}

TEST(KusTarRecordTest, CountsTheDigitsOfAPaxRecordWithIt)
{
    for (int size = 101; size < 10100; size += size < 980 || size > 1020 ? 7 : 1) {
        KusTarRecord header;
        QByteArray data;
        const QByteArray name(size, 'n');
        ASSERT_TRUE(KusTarRecord::createPaxRecord(plainFile(name), "", header, data));
        EXPECT_EQ(data.left(data.indexOf(' ')).toLongLong(), header.size()) << size;
        EXPECT_EQ(data.indexOf('\n') + 1, header.size()) << size;
        EXPECT_EQ(data.size() % 512, 0) << size;
        QByteArray path;
        EXPECT_TRUE(KusTarRecord::decodePaxRecord(data, path)) << size;
        EXPECT_EQ(path, name);
    }
}

TEST(KusTarRecordTest, DecodesPaxRecords)
{
    const QString fault = QStringLiteral("Invalid PAX format for record %1 (%2)");
    const QString noLength = QStringLiteral("no length found");
    const QString badLength = QStringLiteral("invalid record length");
    const struct {
        QByteArray data;
        QByteArray path; // "old" is what it was before
        int number = 0;  // of the faulty record
        QString fault = QString();
    } rows[] = {
        {"", "old"},
        {"10 path=a\n", "a"},
        {"12 path=a=b\n" + nul(500), "a=b"},
        {"10 path=a\n10 path=b\n", "b"},
        {"11 size=12\n10 path=a\n", "a"},
        {"12 path=a\nb\n", "a\nb"},
        {"9 path=\n", "old", 1, badLength},
        {"path=a\n", "old", 1, noLength},
        {" 10 path=a\n", "old", 1, noLength},
        {"10 path=a\n-1 x=y\n", "old", 2, noLength},
        {"11 path=a\n", "old", 1, badLength},
        {"2 path=a\n", "old", 1, badLength},
        {"99999999999999999999 path=a\n", "old", 1, badLength},
        {"9 path=ab\n", "old", 1, QStringLiteral("missing end of line")},
    };
    for (const auto& row : rows) {
        const CapturedLog log;
        QByteArray path("old");
        const bool isDecoded = KusTarRecord::decodePaxRecord(row.data, path);
        EXPECT_EQ(isDecoded, row.number == 0) << row.data.constData();
        EXPECT_EQ(log.texts, row.number == 0 ? QStringList()
                                             : QStringList(fault.arg(row.number).arg(row.fault)))
            << row.data.constData();
        EXPECT_EQ(path, row.path) << row.data.constData();
    }
}

TEST(KusTarRecordTest, ReadsItsFileInPaddedChunks)
{
    const QTemporaryDir folder;
    const QByteArray bytes = QByteArray(10240000, 'a') + 'b';
    const QString path = writeBytes(folder.filePath("a"), bytes);
    KusTarRecord record(path, "d");
    EXPECT_TRUE(errorOf<HbeProgrammingError>([&] {
                    record.readNextData();
                }).endsWith("The source file is not open."));
    record.initFile();
    EXPECT_TRUE(record.readNextData() == bytes.left(10240000));
    EXPECT_EQ(record.readNextData(), "b" + nul(511));
    EXPECT_EQ(record.readNextData(), QByteArray());

    record.initFile();
    ASSERT_TRUE(QFile::resize(path, 100));
    EXPECT_EQ(errorOf<HbeDiskError>([&] { record.readNextData(); }),
              QStringLiteral("Cannot read '%1': it became shorter while it was read").arg(path));
    ASSERT_TRUE(QFile::remove(path));
    const QString missing = errorOf<HbeProgrammingError>([&] { record.initFile(); });
    EXPECT_TRUE(
        missing.endsWith("' in file 'system/KusTarRecord' failed:\n\nNo such file or directory"))
        << missing.toStdString();
}
