#include "ToolRunner.h"

namespace
{
class ToolUsageTest : public ToolTest
{
};

// What the words of a command line come to.
TEST_F(ToolUsageTest, exitCodesAndHints)
{
    write("good.csv", "x,y,zinc\n1,2,3.5\n");
    write("ragged.csv", "x,y,zinc\n1,2,3.5\n4,5\n");
    ok({"import", "good.csv", "--project", "p"});

    struct Case {
        QStringList arguments;
        int exitCode;
        QByteArray error; // stands in stderr
    };
    const std::vector<Case> cases = {
        {{}, 2, "A command is missing"},
        {{"imprt"}, 2, "did you mean 'import'?"},
        {{"nonsense"}, 2, "'kelvane --help' lists"},
        {{"--vrsion"}, 2, "did you mean '--version'?"},
        {{"info"}, 2, "Usage: kelvane info DIR [DATASET]"},
        {{"info", "p", "good", "more"}, 2, "'more' is one argument too many"},
        {{"info", "p", "--jsn"}, 2, "did you mean '--json'?"},
        {{"info", "p", "-j"}, 2, "Unknown option '-j'"},
        {{"import", "good.csv"}, 2, "--project DIR is missing"},
        {{"import", "good.csv", "--project"}, 2, "project"},
        {{"import", "good.csv", "--project", "q", "--separator", "colon"}, 2, "comma, semicolon"},
        {{"import", "good.csv", "--project", "q", "--decimal", "coma"}, 2, "did you mean 'comma'?"},
        {{"import", "none.csv", "--project", "q"}, 1, "none.csv"},
        {{"import", ".", "--project", "q", "--name", "n"}, 1, "regular file"},
        {{"import", "ragged.csv", "--project", "q"}, 1, "line 3"},
        {{"import", "good.csv", "--project", "q", "--x", "east"}, 1, "east"},
        {{"import", "good.csv", "--project", "q", "--cs", "epsg:2154"}, 1, "epsg:2154"},
        {{"import", "good.csv", "--project", "q", "--cs", "EPSG:99999999"}, 1, "99999999"},
        {{"import", "good.csv", "--project", "p"}, 1, "has a dataset 'good' already"},
        {{"import", "good.csv", "--project", "good.csv"}, 1, "good.csv"},
        {{"info", "none"}, 1, "There is no directory 'none'"},
        {{"info", "p", "god"}, 1, "did you mean 'good'?"},
        {{"check", "none"}, 1, "There is no directory 'none'"},
        {{"export", "p", "good", "o.csv", "--variables", "x,zinq"}, 1, "did you mean 'zinc'?"},
        {{"export", "p", "good", "o.csv", "--decimal", "comma"}, 2, "--separator semicolon"},
        {{"export", "p", "good", "o.csv", "--precision", "half"}, 2, "full"},
        {{"export", "p", "good", "none/o.csv"}, 1, "none/o.csv"},
        {{"export", "p", "good", "p"}, 1, "'p'"},
        {{"export", "p", "good", "o.csv", "--cs", "EPSG:4326"}, 1, "kelvane set p good --cs"},
        {{"export", "p", "good", "o.csv", "--cs", "WGS84"}, 1, "WGS84"},
        {{"export", "p", "good", "o.csv", "--units", "zinc"}, 2, "VAR=UNIT, not 'zinc'"},
        {{"export", "p", "good", "o.csv", "--units", "zinq=%"}, 1, "did you mean 'zinc'?"},
        {{"export", "p", "good", "o.csv", "--units", "zinc=%"}, 1, "'zinc' has no unit"},
        {{"export", "p", "good", "o.csv", "--filter", "f", "--masked"}, 2, "exclude each other"},
        {{"export", "p", "good", "o.csv", "--combine", "R1"}, 2, "give them with --rule TEXT"},
        {{"export", "p", "good", "o.csv", "--rule", "zinq > 1"}, 1, "did you mean 'zinc'?"},
        {{"select", "p", "good"}, 2, "give --rule TEXT or --filter NAME"},
        {{"select", "p", "good", "--rule", "x > 1", "--filter", "f"}, 2, "exclude each other"},
        {{"select", "p", "good", "--rule", "x > 1", "--save", "f", "--mask"}, 2, "--filter NAME"},
        {{"select", "p", "good", "--rule", "x > 1", "--count", "--json"}, 2, "--json has all"},
        {{"select", "p", "good", "--unmask", "--rule", "x > 1"}, 2, "--unmask stands alone"},
        {{"select", "p", "good", "--rule", "x > 1", "--replace"}, 2, "--save NAME"},
        {{"select", "p", "good", "--rule", "x > 1", "--rule", "x >"}, 1, "R2: At character 4"},
        {{"select", "p", "good", "--rule", "x > 1", "--combine", "R1 or"}, 1, "At character 6"},
        {{"select", "p", "good", "--filter", "f"}, 1, "holds no sample filters"},
        {{"table", "p", "good", "--from", "2"}, 1, "There is no row 2: the last one is 1."},
        {{"table", "p", "good", "--count", "-1"}, 2, "--count is a number above 0, not '-1'"},
        {{"table", "p", "good", "--descending"}, 2, "--sort VAR"},
        {{"table", "p", "good", "--sort", "zinq"}, 1, "did you mean 'zinc'?"},
        {{"set", "p", "good"}, 2, "Nothing to set"},
        {{"set", "p", "god", "--cs", "EPSG:4326"}, 1, "did you mean 'good'?"},
        {{"set", "p", "good", "--unit", "zinc=ppmm"}, 1, "did you mean 'ppm'?"},
        {{"set", "p", "good", "--unit", "zinc=RATIO:kg"}, 1, "There are: "},
        {{"map", "p", "good", "m.png", "--variable", "gold"}, 1, "There are: x, y, zinc"},
        {{"map", "p", "good", "none/m.png"}, 1, "none/m.png"},
        {{"pack", "p"}, 2, "Usage: kelvane pack DIR FILE.tar.zst"},
        {{"pack", "p", "q.tar.gz"}, 2, "end with .tar.zst; 'q.tar.gz' would be read as gzip."},
        {{"pack", "p", "q.tar.zst", "--level", "20"}, 2, "--level is at most 19, not 20"},
        {{"pack", "p", "q.tar.zst", "--threads", "no"}, 2, "--threads is a number above 0"},
        {{"pack", "p", "q.tar.zst", "--exclude", ""}, 1, "''"},
        {{"pack", "none", "q.tar.zst"}, 1, "none"},
        {{"pack", "p", "none/q.tar.zst"}, 1, "none/q.tar.zst"},
        {{"unpack", "good.csv", "p"}, 1, "'good.csv' is not a valid archive file."},
        {{"unpack", "none.tar.zst", "p"}, 1, "none.tar.zst"},
        {{"unpack", "p", "p"}, 1, "'p'"},
        {{"unpack", "q.tar.zst", "p", "--skip", "--overwrite"}, 2, "exclude each other"},
        {{"unpack", "q.tar.zst", "p", "--limit", "9000000T"}, 2, "not '9000000T'"},
        {{"archive", "list"}, 2, "Usage: kelvane archive list|info|verify FILE"},
        {{"archive", "verfy", "q.tar.zst"}, 2, "did you mean 'verify'?"},
        {{"archive", "info", "good.csv"}, 1, "'good.csv' is not a valid archive file."},
        {{"archive", "list", "none.tar.zst"}, 1, "none.tar.zst"},
        {{"cs"}, 2, "Usage: kelvane cs search"},
        {{"cs", "shw"}, 2, "did you mean 'show'?"},
        {{"cs", "search"}, 2, "--area, is missing"},
        {{"cs", "search", "utm", "--area", "2,91"}, 2, "not '2,91'"},
        {{"cs", "search", "utm", "--limit", "0"}, 2, "not '0'"},
        {{"cs", "search", "no such system"}, 1, "No coordinate system is found"},
        {{"cs", "show"}, 2, "Usage: kelvane cs show CS"},
        {{"cs", "show", "EPSG:99999999"}, 1, "crs not found"},
        {{"cs", "show", "epsg:2154"}, 1, "EPSG:2154  RGF93"},
        {{"cs", "show", "EPSG:5703"}, 1, "neither geographic nor projected"},
        {{"cs", "show", "lambert-93"}, 1, "Did you mean:\n  EPSG:2154"},
        {{"cs", "favorites", "toggle", "EPSG:2154"}, 2, "add|remove CS"},
    };
    const QStringList before = entries();
    for (const Case& c : cases)
        fault(c.arguments, c.exitCode, c.error);
    EXPECT_EQ(entries(), before); // none of these created anything
}

TEST_F(ToolUsageTest, helpShowsExamplesThatTheCommandUnderstands)
{
    EXPECT_TRUE(run({"--version"}).out.startsWith("kelvane "));
    const QByteArray help = run({"--help"}).out;
    for (const char* command : {"import", "info", "set", "select", "table", "export", "check",
                                "map", "cs", "convert", "units", "pack", "unpack", "archive"}) {
        const ToolRun result = run({command, "--help"});
        EXPECT_EQ(result.exitCode, 0);
        EXPECT_EQ(result.err, "");
        EXPECT_TRUE(help.contains(QByteArray("  ") + command));
        const int example = result.out.indexOf("Example:\n");
        ASSERT_GT(example, 0) << command;
        for (const QByteArray& line : result.out.mid(example + 9).trimmed().split('\n')) {
            QStringList words = QProcess::splitCommand(QString::fromUtf8(line.trimmed()));
            ASSERT_EQ(words.takeFirst(), "kelvane");
            EXPECT_NE(run(words).exitCode, 2) << line.toStdString();
        }
    }
}
} // namespace
