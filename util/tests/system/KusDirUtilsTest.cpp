#include <util/system/KusDirUtils.h>

#include <util/system/KusFileUtils.h>

#include "FileBytes.h"
#include "FileTree.h"

#include <QtCore/QDateTime>

#ifdef Q_OS_UNIX
#include <sys/stat.h>
#endif

namespace
{
using Outcome = HbcAProgress::Outcome;

/// Times of files only, in milliseconds.
QByteArrayList describe(const QString& directory)
{
    return listTree<std::chrono::milliseconds>(directory, false);
}

class KusDirUtilsTest : public testing::Test
{
protected:
    void SetUp() override
    {
        writeBytes(at("source/a.bin"), QByteArray(3 << 20, 'x') + "end");
        writeBytes(at("source/.hidden"), "hidden");
        writeBytes(at("source/sub/script"), "run");
        writeBytes(at("outside/kept.txt"), "kept");
        QDir dir(m_dir.path());
        ASSERT_TRUE(dir.mkpath("source/empty") && dir.mkpath("source/closed") &&
                    dir.mkpath("target"));
        writeBytes(at("source/closed/file"), "closed");
        QFile::setPermissions(at("source/sub/script"), QFile::ReadOwner | QFile::ExeOwner);
        QFile::setPermissions(at("source/closed"), QFile::ReadOwner | QFile::ExeOwner);
        QFile script(at("source/.hidden"));
        ASSERT_TRUE(script.open(QIODevice::ReadWrite));
        script.setFileTime(QDateTime(QDate(2001, 2, 3), QTime(4, 5, 6)),
                           QFile::FileModificationTime);
        namespace fs = std::filesystem;
        fs::create_symlink("../outside", at("source/to_outside").toStdString());
        fs::create_symlink("sub/script", at("source/to_script").toStdString());
        fs::create_symlink("nowhere", at("source/dangling").toStdString());
    }
    void TearDown() override
    {
        const auto all = QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner;
        QFile::setPermissions(at("source/closed"), all);
        QFile::setPermissions(at("target/source/closed"), all);
    }

    QString at(const char* path) const { return m_dir.filePath(QString::fromUtf8(path)); }

    QTemporaryDir m_dir;
};
} // namespace

TEST_F(KusDirUtilsTest, CopiesEverythingAndFollowsNoLink)
{
    KusDirUtils task(at("source/"));
    EXPECT_EQ(task.getTitle(), "Copying directory");
    task.setOperation(KusDirUtils::Operation::COPY, at("target"));
    ASSERT_TRUE(task.runInCurrentThread()) << task.getErrorText().toStdString();
    EXPECT_EQ(describe(at("target/source")), describe(at("source")));
    EXPECT_EQ(QDir(at("target")).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
              QStringList{"source"});
    EXPECT_EQ(task.getCounter(), task.getTotal());
}

TEST_F(KusDirUtilsTest, RefusesWhatItCannotCopyAndChangesNothing)
{
    ASSERT_TRUE(QDir(m_dir.path()).mkpath("held/source"));
    const QString intoItself = "Cannot copy directory '%1' into '%2'";
    ASSERT_TRUE(QFile::link(at("source/sub"), at("link")));
    const struct {
        QString source, target, message;
    } rows[] = {
        {at("missing"), at("target"), QString("Directory '%1' does not exist.").arg(at("missing"))},
        {at("source/a.bin"), at("target"),
         QString("Directory '%1' does not exist.").arg(at("source/a.bin"))},
        {at("source"), at("missing"), QString("'%1' is not a valid directory").arg(at("missing"))},
        {at("source"), at("source/sub"), intoItself.arg(at("source"), at("source/sub"))},
        {at("source"), at("link"), intoItself.arg(at("source"), at("link"))},
        {at("source"), at("source"), intoItself.arg(at("source"), at("source"))},
        {at("source"), at("held"), QString("Cannot create '%1'").arg(at("held/source"))},
    };
    const QByteArrayList before = describe(m_dir.path());
    for (const auto& row : rows) {
        KusDirUtils task(row.source);
        task.setOperation(KusDirUtils::Operation::COPY, row.target);
        EXPECT_FALSE(task.runInCurrentThread());
        EXPECT_EQ(task.getErrorText(), row.message);
    }
    EXPECT_EQ(describe(m_dir.path()), before);
    KusDirUtils idle(at("source"));
    EXPECT_FALSE(idle.runInCurrentThread());
}

TEST_F(KusDirUtilsTest, ACancelRemovesThePartialCopyAndNothingElse)
{
    writeBytes(at("target/other.txt"), "other");
    const QByteArrayList before = describe(m_dir.path());
    KusDirUtils task(at("source"));
    task.setOperation(KusDirUtils::Operation::COPY, at("target"));
    QStringList messages;
    bool partial = false;
    QObject::connect(&task, &HbcAProgress::messageChanged, [&](const QString& message) {
        messages.append(message);
        if (messages.size() == 2) {
            partial = describe(m_dir.path()).size() > before.size() + 1;
            task.requestCancel();
        }
    });
    EXPECT_FALSE(task.runInCurrentThread());
    EXPECT_EQ(task.getOutcome(), Outcome::CANCELLED);
    EXPECT_TRUE(partial);
    EXPECT_EQ(messages.last(), "Cleaning");
    EXPECT_EQ(describe(m_dir.path()), before);
}

#ifdef Q_OS_UNIX
TEST_F(KusDirUtilsTest, AnEntryThatCannotBeCopiedFailsTheWhole)
{
    ASSERT_EQ(mkfifo(at("source/sub/pipe").toUtf8().constData(), 0600), 0);
    KusDirUtils task(at("source"));
    task.setOperation(KusDirUtils::Operation::COPY, at("target"));
    EXPECT_FALSE(task.runInCurrentThread());
    EXPECT_EQ(task.getOutcome(), Outcome::FAILED);
    EXPECT_TRUE(task.getErrorText().startsWith(
        QString("Cannot copy file '%1' into '").arg(at("source/sub/pipe"))));
    EXPECT_TRUE(task.getErrorText().endsWith("': it is not a regular file"));
    EXPECT_TRUE(KusFileUtils::dirIsEmpty(QDir(at("target"))));
}
#endif
