// A project in one file, and out of it again.
#include "ToolRunner.h"

#include <QtCore/QDirIterator>

#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <pty.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{
class ToolArchiveTest : public ToolTest
{
protected:
    QByteArray rawPath(const QByteArray& name) const
    {
        return QFile::encodeName(m_folder.path()) + '/' + name;
    }

    /// Of any name, text or not.
    void writeRaw(const QByteArray& name, qint64 size)
    {
        const QByteArray file = rawPath(name);
        const int out = ::open(file.constData(), O_CREAT | O_WRONLY, 0640);
        EXPECT_EQ(ftruncate(out, size), 0) << file.toStdString();
        ::close(out);
    }

    QStringList names(const QString& archive)
    {
        QStringList all;
        const QJsonObject list = ok({"archive", "list", archive, "--json"}).json();
        for (const QJsonValue& member : list["members"].toArray())
            all.append(member.toObject()["name"].toString());
        return all;
    }

    /// Of a directory, in the order of their names.
    QStringList files(const QString& folder)
    {
        QStringList all;
        QDirIterator each(path(folder), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
        while (each.hasNext())
            all.append(QDir(path(folder)).relativeFilePath(each.next()));
        all.sort();
        return all;
    }

    void writeTree()
    {
        for (const char* name : {"a.csv", "b.tmp", "report/a.csv", "report/deep/b.tmp", "cache/x"})
            write(QString("p/") + name, name);
        QDir(m_folder.path()).mkdir("out");
    }
};

TEST_F(ToolArchiveTest, aProjectTravels)
{
    write("t.csv", "x,y,zinc\n1,2,3.5\n2,3,\n");
    ok({"import", "t.csv", "--project", "survey", "--cs", "EPSG:28992"});
    const QString file = "survey/" + entries("survey").first();
    const ToolRun packed = ok({"pack", "survey/", "s.tar.zst"});
    EXPECT_TRUE(packed.out.startsWith("s.tar.zst: 2 members, ")) << packed.out.toStdString();
    EXPECT_EQ(names("s.tar.zst"), (QStringList{"survey", file}));

    const QJsonObject info = ok({"archive", "info", "s.tar.zst", "--json"}).json();
    EXPECT_EQ(info["size"].toInt(), read(file).size());
    EXPECT_EQ(info["compressedSize"].toInt(), read("s.tar.zst").size());
    EXPECT_EQ(info["information"].toObject()["project_name"].toString(), "survey");
    EXPECT_EQ(info["information"].toObject()["project_coordinates_system"].toString(),
              "EPSG:28992");
    EXPECT_TRUE(ok({"archive", "info", "s.tar.zst"}).out.contains("project_name  "));

    const QJsonObject verified = ok({"archive", "verify", "s.tar.zst", "--json"}).json();
    EXPECT_TRUE(verified["ok"].toBool() && verified["checksum"].toBool());
    EXPECT_EQ(verified["members"].toInt(), 2);

    fault({"unpack", "s.tar.zst", "far/away"}, 1, "'far/away' is not a valid directory.");
    QDir(m_folder.path()).mkpath("far/away");
    EXPECT_TRUE(ok({"unpack", "s.tar.zst", "far/away"}).out.startsWith("far/away: 2 members, "));
    EXPECT_EQ(read("far/away/" + file), read(file));
    EXPECT_EQ(entries("far/away"), QStringList("survey"));
    EXPECT_TRUE(ok({"check", "far/away/survey"}).out.contains("Nothing is wrong"));
}

TEST_F(ToolArchiveTest, patternsChoose)
{
    writeTree();
    ok({"pack", "p", "p.tar.zst", "--exclude", "*.tmp", "--exclude", "/p/cache", "--level", "5"});
    ok({"unpack", "p.tar.zst", "out"});
    EXPECT_EQ(files("out"), (QStringList{"p/a.csv", "p/report/a.csv"}));
    ok({"pack", "p", "p.tar.zst", "--threads", "1"}); // in place of the other
    ok({"unpack", "p.tar.zst", "out", "--only", "deep", "--only", "/p/*.tmp"});
    EXPECT_EQ(files("out"),
              (QStringList{"p/a.csv", "p/b.tmp", "p/report/a.csv", "p/report/deep/b.tmp"}));
    fault({"unpack", "p.tar.zst", "out", "--only", "none"}, 1, "none");
}

TEST_F(ToolArchiveTest, existingFilesAreTheUsersToDecide)
{
    writeTree();
    ok({"pack", "p", "p.tar.zst"});
    write("out/p/report/a.csv", "mine");
    const QByteArray words = fault({"unpack", "p.tar.zst", "out"}, 1, "already exists.");
    EXPECT_TRUE(words.contains("--overwrite replaces existing files, --skip keeps them."));
    EXPECT_EQ(files("out"), QStringList("p/report/a.csv")); // nothing came before it
    EXPECT_EQ(entries("out"), QStringList("p"));
    EXPECT_TRUE(ok({"unpack", "p.tar.zst", "out", "--skip"}).out.contains(" 8 members, "));
    EXPECT_EQ(read("out/p/report/a.csv"), "mine");
    ok({"unpack", "p.tar.zst", "out", "--overwrite"});
    EXPECT_EQ(read("out/p/report/a.csv"), "report/a.csv");
    EXPECT_EQ(files("out/p"), files("p"));
    fault({"unpack", "p.tar.zst", "out", "--overwrite", "--limit", "30"}, 1, "p.tar.zst");
}

// What a name holds comes back byte for byte, and is one line of a listing.
TEST_F(ToolArchiveTest, oddNamesComeBack)
{
    QDir(m_folder.path()).mkdir("p");
    QDir(m_folder.path()).mkdir("out");
    const QList<QByteArray> odd = {"caf\xe9", "line\nfeed", "\xc3\xa4 \xf0\x9f\x97\xba", "\x1b[31m",
                                   "back\\slash"};
    for (const QByteArray& name : odd)
        writeRaw("p/" + name, 3);
    for (const QString locale : {"C", "de_DE.UTF-8"}) {
        ok({"pack", "p", "p.tar.zst"}, locale);
        const QByteArray list = ok({"archive", "list", "p.tar.zst"}, locale).out;
        EXPECT_EQ(list.count('\n'), 1 + 1 + odd.size() + 1) << list.toStdString();
        for (const char* shown : {"caf\\xe9\n", "line\\nfeed\n", "\xc3\xa4 \xf0\x9f\x97\xba\n",
                                  "\\u001b[31m\n", "back\\slash\n"})
            EXPECT_TRUE(list.contains(shown)) << list.toStdString();
        EXPECT_EQ(names("p.tar.zst").size(), 1 + odd.size());
        ok({"unpack", "p.tar.zst", "out"}, locale);
        for (const QByteArray& name : odd)
            EXPECT_EQ(access(rawPath("out/p/" + name).constData(), R_OK), 0) << name.toStdString();
        std::filesystem::remove_all(path("out/p").toStdString());
    }
    std::filesystem::remove_all(path("p").toStdString()); // which Qt cannot
}

// What was read before the fault is told, in either form.
TEST_F(ToolArchiveTest, brokenArchivesTellWhatTheyCan)
{
    std::mt19937 engine(11);
    QByteArray noise(600000, ' ');
    for (char& byte : noise)
        byte = static_cast<char>(engine());
    write("p/a.bin", noise);
    write("p/b.txt", "b");
    ok({"pack", "p", "whole.tar.zst"});
    write("cut.tar.zst", read("whole.tar.zst").left(400000));

    const ToolRun list = run({"archive", "list", "cut.tar.zst"});
    EXPECT_EQ(list.exitCode, 1);
    EXPECT_TRUE(list.out.endsWith("  p/a.bin\n")) << list.out.toStdString();
    EXPECT_TRUE(list.err.contains("cut.tar.zst")) << list.err.toStdString();
    const ToolRun json = run({"archive", "list", "cut.tar.zst", "--json"});
    EXPECT_EQ(json.exitCode, 1);
    EXPECT_EQ(json.json()["memberCount"].toInt(), 2);
    EXPECT_TRUE(json.json()["error"].toString().contains("cut.tar.zst"));

    const ToolRun verified = run({"archive", "verify", "cut.tar.zst", "--json"});
    EXPECT_EQ(verified.exitCode, 1);
    EXPECT_FALSE(verified.json()["ok"].toBool());
    EXPECT_FALSE(verified.json()["faults"].toArray().isEmpty());
    EXPECT_TRUE(run({"archive", "verify", "cut.tar.zst"}).out.startsWith("WRONG  cut.tar.zst"));
}

TEST_F(ToolArchiveTest, aCancelledUnpackingLeavesNothing)
{
    QDir(m_folder.path()).mkpath("out/p");
    writeRaw("b", qint64(400) << 20);
    ok({"pack", "b", "b.tar.zst"});
    write("out/b", "mine");
    const QStringList before = entries("out");
    QProcess process;
    start(process, {"unpack", "b.tar.zst", "out", "--overwrite"});
    ASSERT_TRUE(process.waitForStarted());
    while (process.state() == QProcess::Running && entries("out").size() == before.size())
        process.waitForFinished(1);
    kill(static_cast<pid_t>(process.processId()), SIGINT);
    ASSERT_TRUE(process.waitForFinished(60000));
    EXPECT_EQ(process.exitCode(), 130);
    EXPECT_EQ(entries("out"), before);
    EXPECT_EQ(read("out/b"), "mine");
}

TEST_F(ToolArchiveTest, aFileThatMayNotGrowIsAnErrorThatCleansUp)
{
    QDir(m_folder.path()).mkdir("out");
    writeRaw("b", 4 << 20);
    ok({"pack", "b", "b.tar.zst"});
    rlimit former{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &former), 0);
    const rlimit small{1 << 20, former.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0); // the tool inherits it
    fault({"unpack", "b.tar.zst", "out"}, 1,
          "Cannot create file 'out/b'.\n" + qt_error_string(EFBIG).toUtf8());
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &former), 0);
    EXPECT_EQ(entries("out"), QStringList());
}

// On a terminal, whose line never wraps, whatever the name of the member.
TEST_F(ToolArchiveTest, aCancelledPackingKeepsTheOlderArchive)
{
    QDir(m_folder.path()).mkpath("p/a name that takes more than this terminal has\n");
    writeRaw("p/a name that takes more than this terminal has\n/b", qint64(64) << 30);
    write("old.tar.zst", "the older one");
    const QStringList before = entries();
    const QByteArray tool = qgetenv("KELVANE_TOOL");
    winsize size{};
    size.ws_col = 80;
    int terminal = -1;
    const pid_t child = forkpty(&terminal, nullptr, nullptr, &size);
    if (child == 0) {
        if (chdir(rawPath("").constData()) == 0)
            execl(tool.constData(), tool.constData(), "pack", "p", "old.tar.zst", nullptr);
        _exit(127);
    }
    if (child < 0)
        GTEST_SKIP() << "there are no terminals here";
    QByteArray shown;
    char buffer[4096];
    bool isSent = false;
    for (ssize_t n = 0; (n = ::read(terminal, buffer, sizeof buffer)) > 0;) {
        shown.append(buffer, static_cast<int>(n));
        if (!isSent && shown.contains("Archiving: p/a name"))
            isSent = kill(child, SIGINT) == 0;
    }
    ::close(terminal);
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_TRUE(isSent && WIFEXITED(status)) << shown.toStdString();
    EXPECT_EQ(WEXITSTATUS(status), 130);
    for (const QByteArray& line : shown.replace("\r\033[K", "\n").split('\n'))
        EXPECT_LT(QString::fromUtf8(line).size(), 80) << line.toStdString();
    EXPECT_EQ(entries(), before);
    EXPECT_EQ(read("old.tar.zst"), "the older one");
}
} // namespace
