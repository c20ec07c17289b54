#include "ToolRunner.h"

#include <csignal>

namespace
{
class ToolConvertTest : public ToolTest
{
protected:
    ToolRun convert(const QStringList& arguments)
    {
        return run(QStringList{"convert", "--from", "EPSG:4326", "--to", "EPSG:2154"} + arguments,
                   "de_DE.UTF-8");
    }

    void startStream(QProcess& process)
    {
        start(process, {"convert", "--from", "EPSG:4326", "--to", "EPSG:2154", "-"});
        EXPECT_TRUE(process.waitForStarted());
    }

    static QByteArray nextLine(QProcess& process)
    {
        while (!process.canReadLine() && process.waitForReadyRead(20000)) {
        }
        return process.readLine();
    }
};

TEST_F(ToolConvertTest, onePointOfTheCommandLine)
{
    const ToolRun point = convert({"-4.5", "48.4"});
    EXPECT_EQ(point.out, "145709.78894982324 6837422.082614361\n");
    EXPECT_TRUE(point.err.contains("Inverse of RGF93 v1 to WGS 84 (1) + Lambert-93"));
    EXPECT_TRUE(point.err.contains("accuracy 1 m"));
    EXPECT_EQ(convert({"3", "46.5", "-12.25", "--quiet"}).out, "700000 6600000 -12.25\n");
    EXPECT_EQ(convert({"3", "46.5", "--quiet"}).err, "");
    EXPECT_EQ(convert({"--to-unit", "km", "3", "46.5"}).out, "700 6600\n");
    EXPECT_EQ(run({"convert", "--from", "EPSG:2154", "--to", "EPSG:4326", "--to-unit", "gon",
                   "700000", "6600000"})
                  .out.left(5),
              "3.333");
}

TEST_F(ToolConvertTest, linesKeepTheirForm)
{
    write("points.txt", "\xEF\xBB\xBF# lon lat\n"
                        "3 46.5\n"
                        "  +3,\t46.5 ; 12\r\n"
                        "\n"
                        "NA 3\n"
                        "3;46.5;\n"
                        "1e3 95\n"
                        "3\t46.5");
    const ToolRun result = convert({"points.txt"});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out, "\xEF\xBB\xBF# lon lat\n"
                          "700000 6600000\n"
                          "  700000,\t6600000 ; 12\r\n"
                          "\n"
                          "NA NA\n"
                          "700000;6600000;NA\n"
                          "NA NA\n"
                          "700000\t6600000\n");
    EXPECT_TRUE(result.err.contains("Converted: 4 "));
    EXPECT_TRUE(result.err.contains("not convertible, undefined now: 1"));
    EXPECT_TRUE(convert({"points.txt", "--undefined", "-99"}).err.contains("line 5"));
}

TEST_F(ToolConvertTest, faultsAreNamedBehindWhatWasRight)
{
    const struct {
        QByteArray line;
        QByteArray fault;
    } rows[] = {
        {"3", "one column"},          {"1 2 3 4", "more than three columns"},
        {"x y", "'x' is no"},         {"3 46.5m", "'46.5m' is no"},
        {"1e999 3", "'1e999' is no"}, {"inf 3", "'inf' is no"},
        {"3,46,5,1", "more than"},    {"+-3 1", "'+-3' is no"},
        {"0x10 1", "'0x10' is no"},
    };
    for (const auto& row : rows) {
        write("points%2.txt", "3 46.5\n# more\n" + row.line + "\n3 46.5\n");
        const ToolRun result = convert({"points%2.txt"});
        EXPECT_EQ(result.exitCode, 1) << row.line.constData();
        EXPECT_EQ(result.out, "700000 6600000\n# more\n");
        EXPECT_TRUE(result.err.contains("'points%2.txt', line 3: ")) << result.err.toStdString();
        EXPECT_TRUE(result.err.contains(row.fault)) << result.err.toStdString();
    }
    const struct {
        QStringList arguments;
        int exitCode;
        QByteArray error;
    } usages[] = {
        {{"convert", "--from", "EPSG:4326", "1", "2"}, 2, "--to CS is missing"},
        {{"convert", "--from", "EPSG:4326", "--to", "EPSG:2154"}, 2, "Too few arguments"},
        {{"convert", "--from", "EPSG:4326", "--to", "EPSG:99", "1", "2"}, 1, "crs not found"},
        {{"convert", "--from", "epsg:4326", "--to", "EPSG:99", "1", "2"}, 1, "epsg:4326"},
        {{"convert", "--from", "EPSG:4326", "--to", "EPSG:2154", "1", "b"}, 2, "'b' is no"},
        {{"convert", "--from", "EPSG:4326", "--to", "EPSG:2154", "none"}, 1, "none"},
        {{"convert", "--from", "EPSG:4326", "--to", "EPSG:2154", "--to-unit", "kn", "1", "2"},
         2,
         "did you mean 'km'?"},
    };
    for (const auto& row : usages)
        fault(row.arguments, row.exitCode, row.error);
}

// A line is answered before the next one is written.
TEST_F(ToolConvertTest, streamIsConvertedAsItArrives)
{
    QProcess process;
    startStream(process);
    for (int i = 0; i < 3; ++i) {
        process.write("3 46.");
        process.waitForBytesWritten();
        process.write("5\n");
        EXPECT_EQ(nextLine(process), "700000 6600000\n");
    }
    // More than any block, in pieces that end anywhere.
    QByteArray lines;
    for (int i = 0; i < 30000; ++i)
        lines += "3 46.5\n";
    process.write(lines);
    process.closeWriteChannel();
    ASSERT_TRUE(process.waitForFinished(60000));
    EXPECT_EQ(process.exitCode(), 0);
    EXPECT_EQ(process.readAllStandardOutput(), QByteArray("700000 6600000\n").repeated(30000));
    EXPECT_TRUE(process.readAllStandardError().contains("Converted: 30003 "));
}

TEST_F(ToolConvertTest, endsWithItsReaderOrBySignal)
{
    QProcess shell;
    shell.setWorkingDirectory(m_folder.path());
    shell.start("sh",
                {"-c", "(yes 3 46.5 | \"$KELVANE_TOOL\" convert --from EPSG:4326 --to EPSG:2154 - "
                       "2>err; echo $? >code) | head -n 1"});
    ASSERT_TRUE(shell.waitForFinished(20000));
    EXPECT_EQ(shell.readAllStandardOutput(), "700000 6600000\n");
    EXPECT_EQ(read("code").trimmed().toInt(), 128 + SIGPIPE);
    EXPECT_EQ(read("err"), "");

    QProcess process;
    startStream(process);
    process.write("3 46.5\n");
    EXPECT_EQ(nextLine(process), "700000 6600000\n");
    ::kill(static_cast<pid_t>(process.processId()), SIGINT);
    ASSERT_TRUE(process.waitForFinished(20000));
    EXPECT_EQ(process.exitCode(), 128 + SIGINT);
}
} // namespace
