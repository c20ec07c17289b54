#include <util/system/KusArchive.h>

#include "CapturedLog.h"
#include "ErrorText.h"
#include "FileBytes.h"
#include "FileTree.h"
#include "ShellRun.h"

#include <basic/error/HbeDiskError.h>
#include <basic/error/HbeUserError.h>

#include <QtCore/QDateTime>
#include <QtCore/QRandomGenerator>

#include <csignal>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{
/// A directory of the test's own, removed whatever the length of the paths in it.
class KusArchivePackerTest : public testing::Test
{
protected:
    ~KusArchivePackerTest() override
    {
        runShell("chmod -R u+rwx \"$1\"; rm -rf \"$1\"/*", {path("")});
    }

    QString path(const QString& name) const { return m_folder.path() + '/' + name; }
    void pack(const QString& archive, const QString& source,
              const KusArchive::ArchiveInfo& info = {}) const
    {
        KusArchive task(path(archive));
        task.setArchiveOperation(path(source), info);
        if (!task.runInCurrentThread())
            task.rethrowError();
        EXPECT_EQ(task.getCounter(), task.getTotal());
    }
    template <class Error>
    QString errorOfPacking(const QString& archive, const QString& source,
                           const KusArchive::ArchiveInfo& info = {}) const
    {
        return errorOf<Error>([&] { pack(archive, source, info); });
    }
    /// The names as they stand in the archive, without the information.
    QList<QByteArray> names(const QString& archive) const
    {
        QList<QByteArray> names =
            runShell("zstd -dcq -- \"$1\" | tar t --quoting-style=literal", {path(archive)})
                .split('\n');
        EXPECT_EQ(names.takeFirst(), "qm_archive_info");
        EXPECT_EQ(names.takeLast(), "");
        return names;
    }
    /// A file by its bytes, in directories that are made as needed, with any length of path.
    void make(const QByteArray& name, const QByteArray& data, mode_t mode = 0644) const
    {
        int directory = ::open(QFile::encodeName(m_folder.path()).constData(), O_DIRECTORY);
        QList<QByteArray> elements = name.split('/');
        const QByteArray last = elements.takeLast();
        for (const QByteArray& element : elements) {
            ::mkdirat(directory, element.constData(), 0755);
            const int inner = ::openat(directory, element.constData(), O_DIRECTORY);
            ::close(directory);
            directory = inner;
        }
        if (last.isEmpty()) {
            EXPECT_EQ(::fchmod(directory, mode), 0);
        } else {
            const int file = ::openat(directory, last.constData(), O_CREAT | O_WRONLY, 0600);
            EXPECT_EQ(::write(file, data.constData(), size_t(data.size())), data.size());
            EXPECT_EQ(::fchmod(file, mode), 0);
            const timespec times[] = {{0, 0}, {1000000000 + data.size(), 5}};
            EXPECT_EQ(::futimens(file, times), 0);
            ::close(file);
        }
        ::close(directory);
    }
    void makeTree() const
    {
        for (const int size : {0, 1, 511, 512, 513, 10240000})
            make("tree/sizes/" + QByteArray::number(size), QByteArray(size, char('a' + size % 7)));
        for (const int mode : {0400, 0444, 0600, 0640, 0751, 0777})
            make("tree/modes/" + QByteArray::number(mode, 8), "m", mode_t(mode));
        make("tree/modes/tight/", "", 0700);
        QFile holes(path("tree/holes")); // in front, between and behind
        ASSERT_TRUE(holes.open(QIODevice::WriteOnly) && holes.seek(1 << 20) &&
                    holes.write("data") == 4 && holes.seek(2 << 20) && holes.write("more") == 4 &&
                    holes.resize(3 << 20));
        const QByteArray long250(250, 'l');
        for (const QByteArray& name :
             {QByteArray("x"), QByteArray(100, 'n'), QByteArray(255, 'n'),
              QByteArray("\xc3\xa9 \xe6\xb0\xb4"), QByteArray("line\nfeed"), QByteArray("\xff\xfe"),
              QByteArray("-e"), QByteArray("a.txt"), QByteArray("a/inner"),
              QByteArray(140, 'd') + "/f", QByteArray(150, 'd') + "/f", long250 + "/\xc3\xa9"})
            make("tree/names/" + name, name);
        QByteArray deep("tree");
        while (deep.size() < 3700)
            deep += '/' + long250;
        make(deep + '/' + QByteArray(3999 - deep.size(), 'z'), "deep");
    }

    QTemporaryDir m_folder{"/tmp/kap"}; // short: a path in it comes near to what one may be
};
} // namespace

TEST_F(KusArchivePackerTest, OtherToolsUnpackTheSameTree)
{
    makeTree();
    pack("a.tar.zst", "tree");
    const QByteArrayList expected = listTree(path("tree"));
    EXPECT_GT(expected.size(), 40);
    for (const char* tool : {"zstd -dcq \"$1\" | tar xp", "LC_ALL=C.UTF-8 bsdtar -xpf \"$1\""}) {
        const QString target = path("out");
        runShell(QStringLiteral("mkdir \"$2\" && cd \"$2\" && ") + tool,
                 {path("a.tar.zst"), target});
        EXPECT_EQ(listTree(target + "/tree"), expected) << tool;
        runShell("rm -rf \"$1\"", {target});
    }
}

TEST_F(KusArchivePackerTest, TheSameTreeGivesTheSameBytes)
{
    makeTree();
    KusArchive::ArchiveInfo info;
    info.threadCount = 1;
    pack("a.tar.zst", "tree", info);
    info.threadCount = 4;
    pack("b.tar.zst", "tree/", info);
    EXPECT_TRUE(readBytes(path("a.tar.zst")) == readBytes(path("b.tar.zst")));

    make("order/b/c", "");
    for (const char* name : {"order/b.a", "order/b-", "order/a", "order/B", "order/\xc3\xa9"})
        make(name, "");
    pack("c.tar.zst", "order");
    EXPECT_EQ(names("c.tar.zst"),
              (QList<QByteArray>{"order/", "order/B", "order/a", "order/b/", "order/b/c",
                                 "order/b-", "order/b.a", "order/\xc3\xa9"}));
}

TEST_F(KusArchivePackerTest, TheFirstMemberIsTheInformation)
{
    make("src/a", "12345");
    make("src/b/c", "678");
    KusArchive task(path("a.tar.zst"));
    task.setHeader({{KusArchive::HeaderFieldProjectName, "hidden"}, {"a", QByteArray("\1")}});
    KusArchive::ArchiveInfo info;
    info.header = {{KusArchive::HeaderFieldProjectName, "Kupfer"}, {"uncompressed-size", 99}};
    task.setArchiveOperation(path("src"), info);
    ASSERT_TRUE(task.runInCurrentThread()) << task.getErrorText().toStdString();
    EXPECT_EQ(runShell("zstd -dcq \"$1\" | tar xO qm_archive_info", {path("a.tar.zst")}),
              "a = __bin__AQ==\nproject_name = S3VwZmVy\nuncompressed-size = OA==\n");
    const QString detail =
        runShell("zstd -dcq \"$1\" | TZ=UTC tar tv --full-time", {path("a.tar.zst")})
            .split('\n')
            .first();
    EXPECT_TRUE(detail.startsWith("-rw-r--r--")) << detail.toStdString();
    EXPECT_TRUE(detail.contains(
        QFileInfo(path("src")).lastModified().toUTC().toString("yyyy-MM-dd hh:mm:ss")))
        << detail.toStdString();
    EXPECT_FALSE(QFile::exists(path("src/qm_archive_info")));

    // A file alone is the only member; an empty directory goes with its information.
    pack("one.tar.zst", "src/a");
    EXPECT_EQ(runShell("zstd -dcq \"$1\" | tar t", {path("one.tar.zst")}), "a\n");
    make("none/", "", 0755);
    pack("none.tar.zst", "none");
    EXPECT_EQ(runShell("zstd -dcq \"$1\" | wc -c", {path("none.tar.zst")}).trimmed(), "2560");
}

TEST_F(KusArchivePackerTest, PatternsChooseWhatIsPacked)
{
    for (const char* name : {"s/a.xml", "s/a.tmp", "s/r/b.xml", "s/r/x/c.txt", "s/w/d.txt"})
        make(name, "1");
    ASSERT_EQ(::symlink("a.xml", QFile::encodeName(path("s/w/link.tmp")).constData()), 0);
    const struct {
        QStringList excluded;
        QStringList included;
        QByteArray names;
        QString error = QString();
    } rows[] = {
        {{"*.tmp"}, {}, "s/ s/a.xml s/r/ s/r/b.xml s/r/x/ s/r/x/c.txt s/w/ s/w/d.txt"},
        {{"w", "none"}, {}, "s/ s/a.tmp s/a.xml s/r/ s/r/b.xml s/r/x/ s/r/x/c.txt"},
        {{}, {"*.xml"}, "s/ s/a.xml s/r/ s/r/b.xml"},
        {{}, {"c.txt", "a.tmp"}, "s/ s/a.tmp s/r/ s/r/x/ s/r/x/c.txt"},
        {{"b.xml"}, {"r"}, "s/ s/r/ s/r/x/ s/r/x/c.txt"},
        {{}, {"*.xml", "*.none"}, "", "'*.none' matches nothing in '%1'."},
        {{"r"}, {"c.txt"}, "", "'c.txt' matches nothing in '%1'."},
        {{"s"}, {}, "", "The patterns leave nothing of '%1'."},
    };
    for (const auto& row : rows) {
        KusArchive::ArchiveInfo info;
        info.excluded = row.excluded;
        info.included = row.included;
        const QString error = errorOfPacking<HbeUserError>("a.tar.zst", "s", info);
        EXPECT_EQ(error, row.error.isEmpty() ? "no error" : row.error.arg(path("s")));
        if (row.error.isEmpty()) {
            EXPECT_EQ(names("a.tar.zst"), row.names.split(' '));
        }
    }
}

TEST_F(KusArchivePackerTest, RefusesWhatAnArchiveCannotHold)
{
    const auto at = [this](const char* name) { return QFile::encodeName(path(name)); };
    make("link/a", "");
    ASSERT_EQ(::symlink("a", at("link/l").constData()), 0);
    make("pipe/a/", "", 0755);
    ASSERT_EQ(::mkfifo(at("pipe/a/p").constData(), 0600), 0);
    make("info/qm_archive_info", "mine");
    make("inner/a/qm_archive_info", "");
    make("qm_archive_info", "");
    make("drive/..\\a", "");
    make("dir.tar.zst/", "", 0755);
    const QString unheld = QStringLiteral(", which an archive cannot hold.\n"
                                          "Leave it out, or put a file in its place.");
    const QString unfit = QStringLiteral("'%1' cannot be archived under its name.\n");
    const struct {
        const char* source;
        const char* archive;
        const char* place;
        QString error;
    } rows[] = {
        {"link", "n.zst", "link/l", "'%1' is a symbolic link" + unheld},
        {"pipe", "n.zst", "pipe/a/p", "'%1' is a pipe" + unheld},
        {"pipe/a/p", "n.zst", "pipe/a/p", "'%1' is neither a file nor a directory."},
        {"info", "n.zst", "info/qm_archive_info",
         unfit + "The archive's own information has this name."},
        {"qm_archive_info", "n.zst", "qm_archive_info",
         unfit + "The archive's own information has this name."},
        {"drive", "n.zst", "drive/..\\a", unfit + "Its name leads upwards with \"..\"."},
        {"missing", "n.zst", "missing", "Cannot archive '%1'.\nNo such file or directory"},
        {"link/a", "link/a", "link/a", "'%1' cannot be archived into itself."},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(errorOfPacking<HbeUserError>(row.archive, row.source),
                  row.error.arg(path(row.place)));
        EXPECT_FALSE(QFile::exists(path("n.zst")));
    }
    EXPECT_EQ(readBytes(path("info/qm_archive_info")), "mine");
    pack("inner.tar.zst", "inner");

    EXPECT_EQ(
        errorOfPacking<HbeDiskError>("dir.tar.zst", "missing"),
        QString("Cannot remove existing '%1'\nbefore archiving '%2'.\n" + qt_error_string(EISDIR))
            .arg(path("dir.tar.zst"), path("missing")));
}

TEST_F(KusArchivePackerTest, SaysWhatItMayNotReadOrReplace)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "needs root, to become somebody else";
    make("s/closed", "", 0000);
    make("locked/", "", 0600);
    make("fixed/a.zst", "old");
    make("fixed/", "", 0555);
    make("own/a.zst", "old", 0444);
    runShell("chown -R 65534:65534 \"$1\"", {m_folder.path()});
    ASSERT_EQ(::seteuid(65534), 0);
    const QString denied = QStringLiteral("\nPermission denied");
    const struct {
        const char* source;
        const char* archive;
        QString error;
    } rows[] = {
        {"s", "n.zst", QStringLiteral("Cannot read '%1/s/closed'.") + denied},
        {"s/closed", "n.zst", QStringLiteral("Cannot read '%1/s/closed'.") + denied},
        {"locked", "n.zst", QStringLiteral("Directory '%1/' cannot cd 'locked'.") + denied},
        {"s", "fixed/a.zst",
         QStringLiteral("Cannot remove existing '%1/fixed/a.zst'\nbefore archiving '%1/s'.") +
             denied},
        {"s", "own/a.zst",
         QStringLiteral("Cannot remove existing '%1/own/a.zst'\nbefore archiving '%1/s'.") +
             denied},
        {"fixed", "fixed/b.zst",
         QStringLiteral("Cannot open for writing '%1/fixed/b.zst'") + denied},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(errorOfPacking<HbeDiskError>(row.archive, row.source),
                  row.error.arg(m_folder.path()));
    }
    ASSERT_EQ(::seteuid(0), 0);
}

TEST_F(KusArchivePackerTest, AFailureLeavesTheOlderArchive)
{
    make("out/a.tar.zst", "old");
    // More than the jobs of the compression hold, so that the disk is met before the end.
    QByteArray noise(24 << 20, Qt::Uninitialized);
    QRandomGenerator(1).fillRange(reinterpret_cast<quint32*>(noise.data()), noise.size() / 4);
    make("s/noise", noise);
    make("s/z", "");

    // A disk that takes no more, as far as a process can tell.
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit most = {1 << 20, RLIM_INFINITY};
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &most), 0);
    const QString error = errorOfPacking<HbeDiskError>("out/a.tar.zst", "s");
    const rlimit none = {RLIM_INFINITY, RLIM_INFINITY};
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &none), 0);
    EXPECT_EQ(error,
              "Cannot write into '" + path("out/a.tar.zst") + "'.\n" + qt_error_string(EFBIG));

    // The large file is long enough for something to happen while it is read.
    const struct {
        const char* name;
        std::function<void(KusArchive&)> act;
        QString error;
    } rows[] = {
        {"cancelled", [](KusArchive& task) { task.requestCancel(); }, ""},
        {"shorter", [this](KusArchive&) { QFile::resize(path("s/large"), 1); },
         "'%1/large' changed while it was archived."},
        {"grown", [this](KusArchive&) { writeBytes(path("s/z"), "more"); },
         "'%1' changed while it was archived."},
        {"gone", [this](KusArchive&) { QFile::remove(path("s/z")); },
         "'%1/z' changed while it was archived."},
    };
    for (const auto& row : rows) {
        writeBytes(path("s/large"));
        ASSERT_TRUE(QFile::resize(path("s/large"), qint64(2) << 30));
        KusArchive task(path("out/a.tar.zst"));
        task.setArchiveOperation(path("s"), {});
        task.start();
        while (task.getCounter() == 0 && !task.isFinished())
            QThread::msleep(1);
        row.act(task);
        task.wait();
        const bool isCancelled = task.getOutcome() == HbcAProgress::Outcome::CANCELLED;
        EXPECT_EQ(isCancelled, row.error.isEmpty()) << row.name;
        EXPECT_TRUE(isCancelled || task.getErrorText() == row.error.arg(path("s")))
            << task.getErrorText().toStdString();
        EXPECT_EQ(task.getMessage(), "Cleaning");
        EXPECT_TRUE(!isCancelled || task.getCounter() < task.getTotal());
        EXPECT_EQ(
            QDir(path("out")).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
            QStringList("a.tar.zst"));
        EXPECT_EQ(readBytes(path("out/a.tar.zst")), "old") << row.name;
    }
}

TEST_F(KusArchivePackerTest, TheOlderArchiveInTheSourceIsLeftOut)
{
    make("s/a", "1");
    make("s/old.tar.zst", "old");
    ASSERT_EQ(::link(QFile::encodeName(path("s/old.tar.zst")).constData(),
                     QFile::encodeName(path("s/kept")).constData()),
              0);
    pack("s/old.tar.zst", "s");
    pack("s/old.tar.zst", "s/.");
    EXPECT_EQ(names("s/old.tar.zst"), (QList<QByteArray>{"s/", "s/a", "s/kept"}));
    EXPECT_EQ(readBytes(path("s/kept")), "old");
}

TEST_F(KusArchivePackerTest, AnyDepthTakesFewDescriptors)
{
    QByteArray deep("s");
    for (int i = 0; i < 500; ++i)
        deep += "/deeper";
    make(deep + "/f", "1");
    make("s/e/f", "2");
    rlimit former = {};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &former), 0);
    const rlimit few = {rlim_t(::dup(0) + 48), former.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &few), 0);
    const QString error = errorOfPacking<HbeDiskError>("a.tar.zst", "s");
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &former), 0);
    ASSERT_EQ(error, "no error");
    const QList<QByteArray> found = names("a.tar.zst");
    ASSERT_EQ(found.size(), 504);
    EXPECT_TRUE(found.at(501) == deep + "/f");
    EXPECT_EQ(found.last(), "s/e/f");
}

TEST_F(KusArchivePackerTest, WarnsOfNamesThatDifferOnlyInCase)
{
    for (const char* name : {"s/r/A.txt", "s/r/a.txt", "s/b.tmp", "s/B.tmp", "s/c"})
        make(name, "");
    const CapturedLog log;
    KusArchive::ArchiveInfo info;
    info.excluded = QStringList("B.tmp");
    pack("a.tar.zst", "s", info);
    EXPECT_EQ(log.texts,
              QStringList("'s/r/A.txt' and 's/r/a.txt' differ only in case, or in how "
                          "letters are composed: unpacking refuses them unless told otherwise."));
}
