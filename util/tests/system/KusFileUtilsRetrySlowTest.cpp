#include <util/system/KusFileUtils.h>

#include "CapturedLog.h"
#include "FileBytes.h"

#include <chrono>
#include <thread>

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

namespace
{
/// Does the work after so many milliseconds, in a thread of its own that the destructor waits for.
class Later
{
public:
    template <class Work>
    Later(int milliseconds, Work work)
        : m_thread([milliseconds, work] {
            std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
            work();
        })
    {
    }
    ~Later() { m_thread.join(); }

private:
    std::thread m_thread;
};
} // namespace

// What holds a directory up here is a file in it, which another thread takes away.
TEST(KusFileUtilsRetrySlowTest, RemovesWhatIsLockedForAMoment)
{
    const struct {
        int lockedFor;
        bool removed;
        int failures;
    } rows[] = {{500, true, 1}, {1500, true, 2}, {3000, false, 3}};
    for (const auto& row : rows) {
        const QTemporaryDir parent;
        const QString dir = parent.filePath("locked");
        const QString lock = dir + "/lock";
        ASSERT_TRUE(QDir().mkdir(dir));
        writeBytes(lock);
        CapturedLog warnings;
        const Later unlock(row.lockedFor, [lock] { QFile::remove(lock); });
        EXPECT_EQ(KusFileUtils::removePath(dir), row.removed) << row.lockedFor;
        EXPECT_EQ(QFile::exists(dir), !row.removed) << row.lockedFor;
        const QStringList texts = warnings.texts;
        ASSERT_EQ(texts.size(), row.failures) << row.lockedFor;
        for (int i = 0; i < texts.size(); ++i) {
            const QString start =
                QString("Failed to remove '%1' (try %2). Error was ").arg(dir).arg(i + 1);
            EXPECT_TRUE(texts[i].startsWith(start) && texts[i].endsWith('.') &&
                        texts[i].size() > start.size() + 1)
                << texts[i].toStdString();
        }
    }
}

TEST(KusFileUtilsRetrySlowTest, RenamesWhenTheTargetIsFreed)
{
    const QTemporaryDir dir;
    const QString from = dir.filePath("from");
    const QString to = dir.filePath("to");
    writeBytes(from);
    writeBytes(to);
    CapturedLog warnings;
    {
        const Later free(500, [to] { QFile::remove(to); });
        EXPECT_TRUE(KusFileUtils::renamePath(from, to));
    }
    EXPECT_FALSE(QFile::exists(from));
    ASSERT_EQ(warnings.texts.size(), 1);
    EXPECT_TRUE(warnings.texts.first().startsWith(
        QString("Failed to rename '%1' to '%2' (try 1). Error was ").arg(from, to)));
}

TEST(KusFileUtilsRetrySlowTest, NeverReplacesTheTargetOfARename)
{
    const QTemporaryDir dir;
    const QString from = dir.filePath("from");
    const QString to = dir.filePath("to");
    ASSERT_TRUE(QDir().mkdir(from) && QDir().mkdir(to));
    CapturedLog warnings;
    EXPECT_FALSE(KusFileUtils::renamePath(from, to));
    EXPECT_EQ(warnings.texts.size(), 3);
    EXPECT_TRUE(QFile::exists(from) && QFile::exists(to));
}

#ifdef Q_OS_UNIX
TEST(KusFileUtilsRetrySlowTest, AnInterruptedRemovalGivesTheRestItsNameBack)
{
    // The superuser may remove anything.
    const bool switched = geteuid() == 0;
    if (switched && seteuid(65534) != 0)
        GTEST_SKIP() << "cannot run as an ordinary user";
    {
        const QTemporaryDir dir;
        const QString tree = dir.filePath("tree");
        const QString closed = tree + "/closed";
        ASSERT_TRUE(QDir().mkpath(closed));
        writeBytes(closed + "/file");
        QFile::setPermissions(closed, QFile::ReadOwner | QFile::ExeOwner);
        CapturedLog warnings;
        EXPECT_FALSE(KusFileUtils::removePath(tree, true));
        EXPECT_EQ(warnings.texts.size(), 3);
        EXPECT_TRUE(QFile::exists(closed + "/file"));
        EXPECT_EQ(QDir(dir.path()).entryList(QDir::NoDotAndDotDot | QDir::Dirs),
                  QStringList{"tree"});
        QFile::setPermissions(closed, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }
    EXPECT_TRUE(!switched || seteuid(0) == 0);
}
#endif
