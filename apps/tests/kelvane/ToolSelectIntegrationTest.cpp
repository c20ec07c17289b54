// Selections as a user makes them, against awk on the table that came in.
#include "ToolRunner.h"

namespace
{
class ToolSelectTest : public ToolTest
{
protected:
    /// Numbers, texts and categories, a tenth of them undefined.
    void importSamples(int count)
    {
        std::mt19937 engine(11);
        const auto draw = [&](int below) { return int(engine() % unsigned(below)); };
        const auto cell = [&](const QByteArray& text) { return draw(10) == 0 ? "" : text; };
        const QByteArray rocks[] = {"Ag", "Ah", "W"};
        QByteArray text = "id,zinc,dist,rock,name\n";
        for (int i = 0; i < count; ++i)
            text += QByteArray::number(i) + ',' + cell(QByteArray::number(draw(9))) + ',' +
                    cell(QByteArray::number(draw(5) * 0.25, 'f', 2)) + ',' + cell(rocks[draw(3)]) +
                    ',' + cell('n' + QByteArray::number(draw(50))) + '\n';
        write("t.csv", text);
        ok({"import", "t.csv", "--project", "p", "--text", "name", "--category", "rock"});
    }

    /// The header and the lines for which the condition holds.
    QByteArray awk(const QString& condition)
    {
        QProcess process;
        process.start("env",
                      {"LC_ALL=C", "awk", "-F,", "NR == 1 || (" + condition + ")", path("t.csv")});
        EXPECT_TRUE(process.waitForFinished(60000) && process.exitCode() == 0);
        return process.readAllStandardOutput();
    }
};

TEST_F(ToolSelectTest, everyWayKeepsTheSamplesThatAwkKeeps)
{
    importSamples(3000);
    struct Case {
        QStringList rules;
        QString combination, condition;
    };
    const std::vector<Case> cases = {
        {{"zinc > 4"}, "", "$2 != \"\" && $2 > 4"},
        {{"dist in [0.25, 0.75)", "rock in {Ag, W}"},
         "",
         "$3 != \"\" && $3 >= .25 && $3 < .75 && ($4 == \"Ag\" || $4 == \"W\")"},
        {{"name contains \"9\"", "zinc = 3 +- 1", "dist is defined"},
         "not R3 or R1 and not (R2 or r2)",
         "$3 == \"\" || (index($5, \"9\") && !($2 != \"\" && $2 >= 2 && $2 <= 4))"},
        {{"rock in {}"}, "", "0"},
        {{"rock in {}"}, "NOT R1", "1"},
    };
    for (const Case& c : cases) {
        QStringList options;
        for (const QString& rule : c.rules)
            options += QStringList{"--rule", rule};
        if (!c.combination.isEmpty())
            options += QStringList{"--combine", c.combination};
        const QByteArray expected = awk(c.condition);
        const int count = int(expected.count('\n')) - 1;
        const QStringList select = QStringList{"select", "p", "t"} + options;
        EXPECT_EQ(ok(select + QStringList{"--count"}).out, QByteArray::number(count) + '\n');
        const ToolRun exported = ok(QStringList{"export", "p", "t", "o.csv"} + options);
        EXPECT_EQ(exported.err, QString("note: %1 of 3000 samples are written.\n").arg(count));
        EXPECT_EQ(read("o.csv"), expected);

        ok(select + QStringList{"--save", "kept", "--replace"});
        ok({"export", "p", "t", "filter.csv", "--filter", "kept"});
        EXPECT_EQ(read("filter.csv"), expected);

        ok({"select", "p", "t", "--filter", "kept", "--mask"});
        ok({"export", "p", "t", "masked.csv", "--masked"});
        EXPECT_EQ(read("masked.csv"), expected);
        const QJsonObject info = ok({"info", "p", "t", "--json"}).json();
        EXPECT_EQ(info["datasets"].toArray()[0].toObject()["masked"].toInt(), 3000 - count);
        EXPECT_EQ(info["filters"], QJsonArray{"kept"});
    }
    ok({"select", "p", "t", "--unmask"});
    ok({"export", "p", "t", "all.csv", "--masked"});
    EXPECT_EQ(read("all.csv"), read("t.csv"));
}

TEST_F(ToolSelectTest, answersForPeopleScriptsAndPython)
{
    write("t.csv", "v,name\n1,O'Hara\n2,\n3,x\n");
    ok({"import", "t.csv", "--project", "p", "--text", "name"});
    const QStringList select = {
        "select",          "p", "t", "--rule", "v > 1", "--rule", "name = \"O'Hara\"", "--combine",
        "( R1 )and not R2"};
    EXPECT_EQ(ok(select).out, "t: 2 of 3 samples pass\n\n"
                              "  rule  condition        samples  percent\n"
                              "  R1    v > 1                  2     66.7\n"
                              "  R2    name = \"O'Hara\"        1     33.3\n"
                              "  all   (R1) and not R2        2     66.7\n\n"
                              "('v' is greater than 1) and not ('name' is equal to 'O'Hara')\n");
    const ToolRun python = ok(select + QStringList{"--python"});
    EXPECT_EQ(python.out, "(data['v'] > 1) & (~ (data['name'] == 'O\\'Hara'))\n");
    EXPECT_TRUE(python.err.contains("R2: the text 'O'Hara' holds the character ' (U+0027) at 2."));
    EXPECT_EQ(ok({"select", "p", "t", "--rule", "v < 1e-20", "--python"}).out,
              "data['v'] < 1e-20\n");
    const QJsonObject json = ok(select + QStringList{"--json"}).json();
    EXPECT_EQ(json["passing"].toInt(), 2);
    EXPECT_EQ(json["rules"].toArray()[1].toObject()["text"].toString(), "name = \"O'Hara\"");
    EXPECT_EQ(json["rules"].toArray()[1].toObject()["passing"].toInt(), 1);
}

// What a hand that edits the files of a project can spoil; nothing is selected then.
TEST_F(ToolSelectTest, damagedFiltersAreRefusedWithTheirFault)
{
    importSamples(20);
    ok({"select", "p", "t", "--rule", "zinc > 4", "--rule", "rock in {Ag}", "--save", "f"});
    const QString file = "p/" + entries("p").filter("samplefilter").first();
    const QByteArray good = read(file);
    struct Case {
        QByteArray before, after, error;
        bool isFaultOfFile;
    };
    const std::vector<Case> cases = {
        {"<version>2<", "<version>0<", "R1: rules of the version 0 cannot be read.", true},
        {"<version>2<", "<version>3<", "R1: rules of the version 3 cannot be read.", true},
        {"<type>NUMERIC</type>", "", "R1: the value of 'type' is missing", true},
        {"GREATER_THAN", "BIGGER", "R1: the value of 'compareOperator' is", true},
        {"<compareValue>4<", "<compareValue>four<", "on the variable 'zinc'.", true},
        {"<combination/>", "<combination>R1 and</combination>", "At character 7", true},
        {"</SampleFilter>", "", "unexpected end of file", true},
        {">zinc<", ">zink<", "R1: the variable 'zink' is not in the dataset.", false},
        {">zinc<", ">name<", "R1: the variable 'name' is not a number.", false},
        {">Ag<", ">Xx<", "R2: the variable 'rock' has no category 'Xx'; it has '", false},
        {">Points<", ">Nodes<", "R1: the variable 'zinc' is not in the dataset.", false},
    };
    for (const Case& c : cases) {
        QByteArray bytes = good;
        bytes.replace(bytes.indexOf(c.before), c.before.size(), c.after);
        ASSERT_NE(bytes, good) << c.before.toStdString();
        write(file, bytes);
        for (const QStringList& words :
             {QStringList{"select", "p", "t", "--count"}, QStringList{"export", "p", "t", "o.csv"},
              QStringList{"table", "p", "t"}})
            fault(words + QStringList{"--filter", "f"}, 1, c.error);
        EXPECT_FALSE(QFile::exists(path("o.csv")));
        EXPECT_EQ(run({"check", "p"}).out.contains(c.error), c.isFaultOfFile) << c.after.data();
    }
}

TEST_F(ToolSelectTest, tablesShowWhatIsAskedFor)
{
    write("t.csv",
          "depth,name\n1.50,\"a\nb\"\n,日本\n-12.25,0123456789012345678901234567890123456789x\n"
          "7.00,\n");
    ok({"import", "t.csv", "--project", "p", "--text", "name"});
    ok({"set", "p", "t", "--unit", "depth=m"});
    const QStringList table = {"table", "p", "t"};
    EXPECT_EQ(ok(table).out, QByteArray("#   depth  name\n"
                                        "        m\n"
                                        "1    1.50  a\\nb\n"
                                        "2     N/A  日本\n"
                                        "3  -12.25  012345678901234567890123456789012345678…\n"
                                        "4    7.00  N/A\n"
                                        "rows 1 to 4 of 4\n"));
    EXPECT_EQ(
        ok(table + QStringList{"--variables", "name,depth", "--sort", "depth", "--descending",
                               "--rule", "depth < 100", "--from", "2", "--count", "1"})
            .out,
        "#  name  depth\n             m\n1  a\\nb   1.50\nrows 2 to 2 of 3; there are 4 samples\n");
    EXPECT_EQ(ok(table + QStringList{"--rule", "depth > 99", "--variables", "name"}).out,
              "#  name\nno rows; there are 4 samples\n");
}
} // namespace
