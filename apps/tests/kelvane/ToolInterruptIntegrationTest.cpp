// Ctrl-C, terminals and pipes.
#include "ToolRunner.h"

#include <util/dataset/KudDatasetDirectory.h>
#include <util/dataset/KudMemoryDatasetPoint.h>

#include <basic/data/HbdVariableReal.h>

#include <csignal>
#include <fcntl.h>
#include <pty.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace
{
class ToolInterruptTest : public ToolTest
{
protected:
    /// A dataset whose export takes a while.
    void saveLargeDataset(int samples)
    {
        HbdDataTable table;
        for (const QString name : {"a", "b", "c", "d"}) {
            HbdVariableDetails details(name);
            details.format = HbbEFormat::DECIMAL;
            details.precision = 6;
            auto column = std::make_unique<HbdVariableReal>(details);
            column->resize(samples);
            for (int i = 0; i < samples; ++i)
                column->set(i, i * 0.731 + name.at(0).unicode());
            table.addVariable(std::move(column));
        }
        KudMemoryDatasetPoint dataset("large");
        dataset.setDataTable(std::move(table));
        KudDatasetDirectory(path("p")).save(dataset);
    }
};

TEST_F(ToolInterruptTest, aCancelledExportLeavesTheOldFileAndNothingElse)
{
    saveLargeDataset(400000);
    write("out.csv", "the old file\n");
    const QStringList before = entries();
    int cancelled = 0;
    for (int attempt = 0; attempt < 20 && cancelled < 3; ++attempt) {
        QProcess process;
        start(process, {"export", "p", "large", "out.csv"});
        ASSERT_TRUE(process.waitForStarted());
        // The new file lies beside the old one: the export is under way.
        while (process.state() == QProcess::Running && entries().size() == before.size())
            process.waitForFinished(1);
        kill(static_cast<pid_t>(process.processId()), SIGINT);
        ASSERT_TRUE(process.waitForFinished(60000));
        EXPECT_EQ(entries(), before);
        if (process.exitCode() == 0) { // it was faster than the signal
            EXPECT_TRUE(read("out.csv").startsWith("a,b,c,d\n"));
            write("out.csv", "the old file\n");
            continue;
        }
        ++cancelled;
        EXPECT_EQ(process.exitCode(), 130);
        EXPECT_EQ(read("out.csv"), "the old file\n");
    }
    EXPECT_EQ(cancelled, 3);
}

TEST_F(ToolInterruptTest, aCancelledImportCreatesNothing)
{
    QByteArray text = "x,y,v\n";
    for (int i = 0; i < 400000; ++i)
        text += "652100.25,6862010.75,12.125\n";
    write("t.csv", text);
    const QStringList before = entries();
    QProcess process;
    start(process, {"import", "t.csv", "--project", "q"});
    ASSERT_TRUE(process.waitForStarted());
    process.waitForFinished(30);
    kill(static_cast<pid_t>(process.processId()), SIGTERM);
    ASSERT_TRUE(process.waitForFinished(60000));
    if (process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0)
        GTEST_SKIP() << "the import was faster than the signal";
    EXPECT_EQ(entries(), before);
}

TEST_F(ToolInterruptTest, theProgressBarIsForTerminalsAndClearsItsLine)
{
    int ends[2];
    if (openpty(&ends[0], &ends[1], nullptr, nullptr, nullptr) != 0)
        GTEST_SKIP() << "there are no terminals here";
    ::close(ends[0]);
    ::close(ends[1]);
    saveLargeDataset(20000);
    const QByteArray fifo = QFile::encodeName(path("fifo"));
    ASSERT_EQ(mkfifo(fifo.constData(), 0600), 0);

    // A reader that lets the tool wait makes an export that lasts.
    qint64 bytes = 0;
    std::thread reader([&] {
        const int in = ::open(fifo.constData(), O_RDONLY);
        std::this_thread::sleep_for(std::chrono::milliseconds(900));
        char buffer[65536];
        for (ssize_t n = 0; (n = ::read(in, buffer, sizeof buffer)) > 0;)
            bytes += n;
        ::close(in);
    });
    const QByteArray tool = qgetenv("KELVANE_TOOL");
    const QByteArray project = QFile::encodeName(path("p"));
    int terminal = -1;
    const pid_t child = forkpty(&terminal, nullptr, nullptr, nullptr);
    if (child == 0) {
        execl(tool.constData(), tool.constData(), "export", project.constData(), "large",
              fifo.constData(), nullptr);
        _exit(127);
    }
    QByteArray shown;
    char buffer[4096];
    for (ssize_t n = 0; (n = ::read(terminal, buffer, sizeof buffer)) > 0;)
        shown.append(buffer, static_cast<int>(n));
    int status = 0;
    waitpid(child, &status, 0);
    // Lets a reader go whom a tool that failed early left waiting.
    ::close(::open(fifo.constData(), O_WRONLY | O_NONBLOCK));
    reader.join();
    ::close(terminal);
    EXPECT_EQ(status, 0);
    EXPECT_GT(bytes, 20000);
    EXPECT_TRUE(shown.contains("Exporting 'large' [")) << shown.toStdString();
    EXPECT_TRUE(shown.endsWith("\r\033[K")) << shown.toStdString();
}

TEST_F(ToolInterruptTest, aFullOutputIsToldNotIgnored)
{
    write("t.csv", "a\n1\n");
    ok({"import", "t.csv", "--project", "p"});
    QProcess shell;
    shell.setWorkingDirectory(m_folder.path());
    shell.start("sh", {"-c", "\"$KELVANE_TOOL\" info p >/dev/full"});
    ASSERT_TRUE(shell.waitForFinished());
    EXPECT_EQ(shell.exitCode(), 1);
}
} // namespace
