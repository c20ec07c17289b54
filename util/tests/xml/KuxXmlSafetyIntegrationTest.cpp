#include <util/xml/KuxXmlMementoFile.h>

#include "CapturedLog.h"
#include "ErrorText.h"

#include <basic/error/HbeDiskError.h>
#include <basic/error/HbeProgrammingError.h>
#include <util/xml/KuxXml.h>

#include <QtCore/QFileInfo>
#include <QtCore/QSet>
#include <QtXml/QDomDocument>

#include <csignal>

#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{
const QString KEY = "text";

KuuMemento versionOf(int number, int size)
{
    static const KuuId id = KuuId::generate("Thing");
    KuuMemento memento(id);
    memento.setVersion(number);
    memento.setField(KEY, QString(size, QChar('a' + number % 26)));
    return memento;
}

QDomDocument documentOf(const QString& text)
{
    QDomDocument document;
    document.appendChild(KuxXml::createTextNode(document, "r", text));
    return document;
}

TEST(KuxXmlSafetyIntegrationTest, AKilledWriterLeavesOneWholeVersion)
{
    QTemporaryDir folder;
    const QString path = folder.filePath("thing.xml");
    constexpr int SIZE = 300000;
    KuxXmlMementoFile::save(path, versionOf(0, SIZE));
    std::mt19937 random(3);
    QSet<int> seen;
    for (int round = 0; round < 60; ++round) {
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0)
            for (int number = 1;; ++number)
                KuxXmlMementoFile::save(path, versionOf(number, SIZE));
        usleep(unsigned(random() % 30000));
        ASSERT_EQ(kill(child, SIGKILL), 0);
        ASSERT_EQ(waitpid(child, nullptr, 0), child);

        const KuuMemento found = KuxXmlMementoFile::read(path);
        seen.insert(found.getVersion());
        ASSERT_TRUE(found == versionOf(found.getVersion(), SIZE));
    }
    EXPECT_GT(seen.size(), 1);
}

TEST(KuxXmlSafetyIntegrationTest, AFullDiskRaisesAndLeavesTheOldFile)
{
    QTemporaryDir folder;
    const QByteArray mountPoint = QFile::encodeName(folder.path());
    if (mount("none", mountPoint.constData(), "tmpfs", 0, "size=256k") != 0)
        GTEST_SKIP() << "mounting a tmpfs needs root";
    const CapturedLog log;
    const QDir directory(folder.path());
    KuxXmlMementoFile::save(directory, versionOf(1, 1000));
    const QString path =
        directory.filePath(KuxXmlMementoFile::getFileName(versionOf(1, 0).getId()));
    const QString expected = QString("Cannot write/flush XML file into '%1'.").arg(path);
    const KuuMemento large = versionOf(2, 600000);
    EXPECT_EQ(errorOf<HbeDiskError>([&] { KuxXmlMementoFile::save(directory, large); }), expected);
    EXPECT_EQ(errorOf<HbeDiskError>(
                  [&] { KuxXmlMementoFile::save(directory, QList<KuuMemento>{large}); }),
              expected);
    EXPECT_EQ(
        errorOf<HbeDiskError>([&] { KuxXml::saveXml(path, documentOf(QString(600000, 'x'))); }),
        expected);
    EXPECT_TRUE(KuxXmlMementoFile::read(path) == versionOf(1, 1000));
    EXPECT_EQ(directory.entryList(QDir::Files | QDir::Hidden).size(), 1);
    umount(mountPoint.constData());
}

TEST(KuxXmlSafetyIntegrationTest, LinksAreFollowedAndPermissionsKept)
{
    QTemporaryDir folder;
    const QDir directory(folder.path());
    ASSERT_TRUE(directory.mkdir("real"));
    const QString target = directory.filePath("real/t.xml");
    const QString link = directory.filePath("l.xml");
    ASSERT_TRUE(QFile::link("real/t.xml", link));
    const auto modeOf = [&] {
        struct stat status = {};
        stat(QFile::encodeName(target).constData(), &status);
        return status.st_mode & 07777;
    };
    const auto textOf = [&] {
        QDomDocument document;
        KuxXml::readXml(link, document);
        return document.documentElement().text();
    };

    const mode_t former = umask(027);
    KuxXml::saveXml(link, documentOf("1")); // the link led to nothing
    umask(former);
    EXPECT_EQ(modeOf(), mode_t(0640));
    ASSERT_EQ(chmod(QFile::encodeName(target).constData(), 0606), 0);
    KuxXml::saveXml(link, documentOf("2"));
    EXPECT_EQ(modeOf(), mode_t(0606));
    EXPECT_TRUE(QFileInfo(link).isSymLink());
    EXPECT_EQ(textOf(), "2");

    const QString circle = directory.filePath("c.xml");
    ASSERT_TRUE(QFile::link(circle, circle));
    EXPECT_THROW(KuxXml::saveXml(circle, documentOf(QString())), HbeError);
    EXPECT_THROW(KuxXml::saveXml(directory.filePath("real"), documentOf(QString())), HbeError);
    EXPECT_EQ(directory.entryList(QDir::Files | QDir::NoSymLinks).size(), 0);
}

TEST(KuxXmlSafetyIntegrationTest, ATextOfAGigabyteIsRefusedInBoundedMemory)
{
    QTemporaryDir folder;
    QFile file(folder.filePath("big.xml"));
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    file.write("<r>\n");
    // A sparse file: its NULs count as any other character.
    ASSERT_TRUE(file.resize(qint64(1) << 30));
    file.close();
    const auto ownMemory = [] {
        QFile status("/proc/self/status");
        status.open(QIODevice::ReadOnly);
        const QByteArray text = status.readAll();
        return text.mid(text.indexOf("RssAnon:") + 8).trimmed().split(' ').at(0).toLongLong();
    };
    const qint64 before = ownMemory();
    EXPECT_TRUE(
        errorOf<HbeProgrammingError>([&] {
            KuxXmlMementoFile::read(file.fileName());
        }).endsWith("at line 2/column 536870912: 'a text longer than 536870912 characters'."));
    EXPECT_LT(ownMemory() - before, 64 * 1024);
}
} // namespace
