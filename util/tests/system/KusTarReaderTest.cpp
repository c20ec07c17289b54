#include <util/system/KusTarReader.h>

#include "ErrorText.h"
#include "FileBytes.h"
#include "MemoryInput.h"
#include "PythonRun.h"

#include <util/system/KusArchiveInformation.h>
#include <util/system/KusTarFile.h>

#include <basic/error/HbeUserError.h>

#include <QtCore/QCryptographicHash>
#include <QtCore/QTemporaryDir>

namespace
{
const QString PATH = QStringLiteral("a.tar.zst");

/// One line for each member: kind, size, time, hash of the data, name.
QString list(KusTarReader& tar)
{
    QString lines;
    while (tar.nextMember()) {
        QCryptographicHash hash(QCryptographicHash::Md5);
        qint64 size = 0;
        for (auto bytes = tar.readData(70000); !bytes.isEmpty(); bytes = tar.readData(70000)) {
            hash.addData(bytes.data(), bytes.size());
            size += bytes.size();
        }
        EXPECT_EQ(size, tar.getSize());
        lines += QStringLiteral("%1 %2 %3 %4 %5\n")
                     .arg(tar.isDirectory() ? QLatin1Char('d') : QLatin1Char('f'))
                     .arg(size)
                     .arg(tar.getRecord().modifSeconds())
                     .arg(QString::fromLatin1(hash.result().toHex()), tar.getNameText());
    }
    return lines;
}

QString listBytes(const QByteArray& bytes, bool other, int piece = 1 << 16)
{
    MemoryInput input(bytes, piece);
    KusTarReader tar(input, PATH);
    tar.setReadOtherTools(other);
    return list(tar);
}

// What Python's tarfile says of an archive, in the form of `list`.
const char LIST[] = R"(
import hashlib, sys, tarfile
def show(path):
    archive = tarfile.open(path)
    for m in archive:
        data = archive.extractfile(m).read() if m.isreg() else b''
        yield '%s %d %d %s %s\n' % ('d' if m.isdir() else 'f', len(data), int(m.mtime),
                                    hashlib.md5(data).hexdigest(), m.name)
)";

// Random archives of each format beside what they hold.
const char MAKE[] = R"(
import io, os, random
random.seed(7)
def name(most):
    length = random.choice([1, 50, 99, 100, 101, 155, 156, 255, 256, 257, 1000, most])
    text = ''
    while len(text.encode()) < min(length, most):
        text += random.choice('a/ .Zäж日𝄞e\u0301')
    return 'x' + text.replace('//', '/_').strip('/')
for number, (format, most) in enumerate([(tarfile.USTAR_FORMAT, 250), (tarfile.GNU_FORMAT, 3990),
                                         (tarfile.PAX_FORMAT, 3990)]):
    path = '%s/%d.tar' % (sys.argv[1], number)
    with tarfile.open(path, 'w', format=format) as archive:
        for size in [0, 1, 511, 512, 513, 10240000] + [random.randrange(3000) for _ in range(60)]:
            m = tarfile.TarInfo(name(most))
            m.mtime = random.choice([0, 1, 2 ** 31, 2 ** 33 - 1])
            m.size = size
            if size == 0 or random.random() < 0.2:
                m.type, m.size = tarfile.DIRTYPE, 0
            try:
                archive.addfile(m, io.BytesIO(random.randbytes(m.size)))
            except ValueError: # too long a name for ustar
                pass
    with open(path + '.txt', 'w', encoding='utf-8') as text:
        text.writelines(show(path))
)";

QByteArray padded(QByteArray data)
{
    data.append(int(KusTarRecord::getPaddedSize(data.size())) - data.size(), '\0');
    return data;
}

QByteArray member(const QByteArray& name, const QByteArray& data, bool isDirectory = false)
{
    KusTarFile file;
    file.name = name;
    file.size = data.size();
    file.isDirectory = isDirectory;
    return KusTarRecord(file, QByteArray()).header() + padded(data);
}

const QByteArray END(1024, '\0');
} // namespace

TEST(KusTarReaderTest, ReadsWhatPythonWrites)
{
    REQUIRE_PYTHON();
    const QTemporaryDir folder;
    runPython(QString::fromLatin1(LIST) + MAKE, {folder.path()});
    for (const char* number : {"0", "1", "2"}) {
        const QString path = folder.filePath(QLatin1String(number) + ".tar");
        const QString expected = QString::fromUtf8(readBytes(path + ".txt"));
        EXPECT_GE(expected.count('\n'), 30);
        for (const int piece : {777, 1 << 20})
            EXPECT_EQ(listBytes(readBytes(path), true, piece), expected) << number;
    }
}

TEST(KusTarReaderTest, ReadsTheInformationAndNoFurther)
{
    QVariantMap information{{"project_name", "Ölfeld"}, {"uncompressed-size", "3"}};
    const QByteArray data = KusArchiveInformation::encode(information);
    const QByteArray bytes = member(KusTarReader::INFORMATION_NAME, data) +
                             member("survey", QByteArray(), true) + member("survey/a", "abc") + END;
    for (const int piece : {1, 511, 513, 1 << 16}) {
        MemoryInput input(bytes, piece);
        KusTarReader tar(input, PATH);
        EXPECT_EQ(tar.readInformation(), information);
        EXPECT_EQ(input.getReadSize(), 512 + data.size());
        EXPECT_EQ(tar.getAnnouncedSize(), 3);
        EXPECT_EQ(list(tar), "d 0 0 d41d8cd98f00b204e9800998ecf8427e survey\n"
                             "f 3 0 900150983cd24fb0d6963f7d28e17f72 survey/a\n");
        EXPECT_TRUE(tar.hasClosingBlocks());
        EXPECT_EQ(tar.getMemberCount(), 2);
        EXPECT_EQ(tar.getTotalSize(), 3);
    }
}

namespace
{
struct Stream {
    const char* name;
    QByteArray bytes;
    const char* outcome; // the members' names, or the error
};

void expectOutcomes(const std::vector<Stream>& rows, bool other)
{
    for (const Stream& row : rows) {
        QStringList names;
        MemoryInput input(row.bytes);
        KusTarReader tar(input, PATH);
        tar.setReadOtherTools(other);
        const QString error = errorOf<HbeUserError>([&] {
            while (tar.nextMember())
                names.append(tar.getNameText());
            tar.readToEnd();
        });
        EXPECT_EQ(error == "no error" ? names.join(' ') : error, row.outcome) << row.name;
    }
}

QByteArray changed(QByteArray bytes, int at, const QByteArray& replacement)
{
    return bytes.replace(at, replacement.size(), replacement);
}

QByteArray extension(const QByteArray& data, char type = 'x')
{
    return changed(member("ext", data), 156, QByteArray(1, type));
}
} // namespace

// The rule of reading strictly, one row for each of its sentences.
TEST(KusTarReaderTest, ReadsStrictly)
{
    const QByteArray a = member("a", "abc");
    const QByteArray junk(512, 'j');
    const QByteArray zeros(512, '\0');
    const char many[] = "Corrupted archive file 'a.tar.zst' (more than 2 invalid records).";
    const std::vector<Stream> rows{
        {"a part of a block is the end", a + "part of a block", "a"},
        {"nothing is skipped behind an invalid record",
         changed(member("a", a + junk), 257, "gnutar") + END, many},
        {"of a record that is not the next", extension("11 path=bc\n") + junk + a, "bc"},
        {"no path in it", extension("10 size=9\n") + a, "a"},
        {"a directory has no data", changed(a, 156, "5").left(512) + a, "a a"},
        {"long pax data", changed(extension(""), 124, "00004000001") + a,
         "Cannot decode extended information 'ext' because archive file 'a.tar.zst' is corrupted.\n"
         "It has 1.00 MiB; at most 1.00 MiB are allowed."},
    };
    expectOutcomes(rows, false);
}

// Of other tools: what is refused, and what the usual tools read.
TEST(KusTarReaderTest, ReadsOtherTools)
{
    const QByteArray a = member("a", "abc");
    const QByteArray zeros(512, '\0');
    const std::vector<Stream> rows{
        {"no header", a + changed(a, 257, "gnutar"),
         "Corrupted archive file 'a.tar.zst' (what stands at byte 1024, 'a', is no header of a tar "
         "archive)."},
        {"a sparse file", extension("22 GNU.sparse.major=1\n") + a,
         "Cannot extract 'a' from archive file 'a.tar.zst': it is a sparse file; sparse files are "
         "not read (at byte 1024)."},
        {"a pax size", extension("10 size=3\n") + changed(a, 124, "00000000000") + a, "a a"},
        {"a pax size that is none", extension("11 size=-3\n") + a,
         "Cannot decode extended information 'ext' because archive file 'a.tar.zst' is corrupted."},
        {"a GNU header's times are no prefix",
         changed(changed(a, 257, QByteArray("ustar  \0", 8)), 345, "12345"), "a"},
        {"a slash is a directory, whose size means nothing",
         changed(changed(member("d", "", true), 156, "0"), 124, "00000000007") + a, "d a"},
    };
    expectOutcomes(rows, true);
}

TEST(KusTarReaderTest, RefusesMoreThanIsAllowedOrAnnounced)
{
    const QByteArray information = KusArchiveInformation::encode({{"uncompressed-size", "5"}});
    const QByteArray head = member(KusTarReader::INFORMATION_NAME, information);
    const QByteArray bytes = head + member("a", "abc") + member("b", "abc") + END;
    MemoryInput announcing(bytes);
    KusTarReader tar(announcing, PATH);
    EXPECT_TRUE(tar.nextMember());
    EXPECT_EQ(errorOf<HbeUserError>([&] { tar.nextMember(); }),
              "Archive file 'a.tar.zst' holds more than the 5 bytes that it announces.\n"
              "'b', at byte 2048 and of 3 bytes, goes beyond it.");
    EXPECT_EQ(announcing.getReadSize(), 2560);

    struct Limit {
        int bytes;
        const char* error;
    };
    for (const Limit& limit :
         {Limit{3072, "no error"}, Limit{1026, "'b', at byte 1024 and of 0 bytes"},
          Limit{514, "'a', at byte 0 and of 3 bytes"},
          Limit{2560, "What follows its last member goes beyond it at byte 2560."}}) {
        MemoryInput input(bytes.mid(head.size()));
        KusTarReader limited(input, PATH);
        limited.setReadOtherTools(true);
        limited.setSizeLimit(limit.bytes);
        const QString error = errorOf<HbeUserError>([&] {
            while (limited.nextMember()) {
            }
            limited.readToEnd();
        });
        EXPECT_TRUE(error.contains(limit.error)) << error.toStdString();
    }
}
