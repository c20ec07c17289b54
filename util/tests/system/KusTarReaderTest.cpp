#include <util/system/KusTarReader.h>

#include "ErrorText.h"
#include "FileBytes.h"
#include "MemoryInput.h"
#include "PythonRun.h"

#include <util/system/KusArchiveInformation.h>
#include <util/system/KusTarFile.h>

#include <basic/error/HbeUserError.h>

#include <QtCore/QCryptographicHash>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
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

/// What Python's tarfile says of the archive, in the form of `list`.
const char LIST[] = R"(
import hashlib, sys, tarfile
for m in tarfile.open(sys.argv[1]):
    data = tarfile.open(sys.argv[1]).extractfile(m).read() if m.isreg() else b''
    print('d' if m.isdir() else 'f', len(data), int(m.mtime), hashlib.md5(data).hexdigest(), m.name)
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

TEST(KusTarReaderTest, ReadsRealArchives)
{
    const QString folder = qEnvironmentVariable("KELVANE_TEST_DATA") + "/edge-archive/";
    if (!QFile::exists(folder))
        GTEST_SKIP() << "the sample archives are not there";
    REQUIRE_PYTHON();
    for (const QString& name : QDir(folder + "go-tar").entryList({"*.tar"})) {
        const QByteArray bytes = readBytes(folder + "go-tar/" + name);
        qInfo() << name
                << errorOf<HbeUserError>([&] { qInfo().noquote() << listBytes(bytes, true); });
    }
    for (const QString& name : QDir(folder + "node-tar/tars").entryList({"*.tar"})) {
        const QByteArray bytes = readBytes(folder + "node-tar/tars/" + name);
        qInfo() << name << errorOf<HbeUserError>([&] { listBytes(bytes, true); })
                << (listBytes(bytes, true).toUtf8() ==
                    runPython(LIST, {folder + "node-tar/tars/" + name}));
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
