// The road as a user walks it: a table in, a project, facts, a table out.
#include "PythonRun.h"
#include "ToolRunner.h"

#include <QtGui/QImage>

#include <charconv>
#include <cmath>
#include <cstring>
#include <set>

namespace
{
class ToolRoadTest : public ToolTest
{
protected:
    /// An independent reader: Python's csv module, one JSON list of lists.
    QJsonArray readCsv(const QString& file, const QString& separator = ",")
    {
        const QString program = "import csv,json,sys\n"
                                "f=open(sys.argv[1],newline='',encoding='utf-8')\n"
                                "print(json.dumps(list(csv.reader(f,delimiter=sys.argv[2]))))";
        return QJsonDocument::fromJson(runPython(program, {file, separator})).array();
    }
};

// Real files go through unharmed: what comes out is what went in, cell by cell.
TEST_F(ToolRoadTest, realFilesComeOutAsTheyWentIn)
{
    for (const QString name : {"points/meuse.csv", "points/volcano_data_2010.csv",
                               "points/jura_transect.csv", "points/drillholes/assay.csv"}) {
        REQUIRE_DATA(name);
        ok({"import", data(name), "--project", "p", "--name", "d", "--replace"});
        ok({"export", "p", "d", "out.csv", "--precision", "full"});
        const QJsonArray before = readCsv(data(name));
        const QJsonArray after = readCsv(path("out.csv"));
        std::vector<QJsonArray> rows; // without empty lines
        for (const QJsonValue& row : before) {
            if (!row.toArray().isEmpty())
                rows.push_back(row.toArray());
        }
        ASSERT_EQ(after.size(), static_cast<int>(rows.size())) << name.toStdString();
        const std::set<QString> missing = {"NA", "NaN", "N/A", "-", ""};
        for (int row = 0; row < after.size(); ++row) {
            for (int i = 0; i < rows[std::size_t(row)].size(); ++i) {
                const QString in = rows[std::size_t(row)].at(i).toString().trimmed();
                const QString out = after.at(row).toArray().at(i).toString();
                bool isNumber = false;
                const double number = in.toDouble(&isNumber);
                const bool same = missing.count(in) != 0 ? out.isEmpty()
                                  : isNumber             ? out.toDouble() == number
                                                         : out == in;
                EXPECT_TRUE(same) << name.toStdString() << " row " << row << ": "
                                  << in.toStdString() << " became " << out.toStdString();
            }
        }
    }
}

// Doubles of every size survive bit for bit with --precision full, whatever the locale and signs.
TEST_F(ToolRoadTest, fullPrecisionKeepsEveryBit)
{
    std::mt19937_64 engine(7);
    std::vector<double> numbers = {0.1, -0.0, 1.0 / 3.0, 5e-324, 1.7976931348623157e308, 1e22};
    while (numbers.size() < 3000) {
        const quint64 bits = engine();
        double number = 0;
        std::memcpy(&number, &bits, sizeof number);
        if (std::isfinite(number) && std::fabs(number) < 1e299)
            numbers.push_back(number);
    }
    QByteArray text = "value\n";
    for (const double number : numbers) {
        char digits[32];
        const char* end = std::to_chars(digits, digits + sizeof digits, number).ptr;
        text += QByteArray(digits, static_cast<int>(end - digits)) + '\n';
    }
    write("in.csv", text);

    for (const QString locale : {"C", "de_DE.UTF-8"}) {
        ok({"import", "in.csv", "--project", "p", "--replace"}, locale);
        const QStringList dot = {"export", "p", "in", "dot.csv", "--precision", "full"};
        const QStringList comma = {"export", "p",         "in",    "comma.csv",   "--precision",
                                   "full",   "--decimal", "comma", "--separator", "semicolon"};
        ok(dot, locale);
        ok(comma, locale);
        EXPECT_TRUE(read("comma.csv") == read("dot.csv").replace('.', ','));
        const QList<QByteArray> lines = read("dot.csv").split('\n');
        for (std::size_t i = 0; i < numbers.size(); ++i) {
            const double back = lines.at(int(i) + 1).toDouble();
            ASSERT_EQ(std::memcmp(&back, &numbers[i], sizeof back), 0)
                << lines.at(int(i) + 1).toStdString();
        }
    }
}

TEST_F(ToolRoadTest, exportOptionsShapeTheFile)
{
    write("t.csv", "id,a,\"b, c\",rock\n001,1.50,,schist\n002,NA,7,\"gr\"\"anite\"\n"
                   "003,2.25,-3,schist\n004,3.00,4,schist\n");
    ok({"import", "t.csv", "--project", "p"});
    struct Case {
        QStringList options;
        QByteArray text;
    };
    const std::vector<Case> cases = {
        {{},
         "id,a,\"b, c\",rock\n001,1.50,,schist\n002,,7,\"gr\"\"anite\"\n003,2.25,-3,schist\n"
         "004,3.00,4,schist\n"},
        {{"--variables", "rock,a", "--undefined", "?"},
         "rock,a\nschist,1.50\n\"gr\"\"anite\",?\nschist,2.25\nschist,3.00\n"},
        {{"--variables", "\"b, c\",id", "--separator", "semicolon"},
         "b, c;id\n;001\n7;002\n-3;003\n4;004\n"},
        {{"--variables", "a", "--separator", "semicolon", "--decimal", "comma"},
         "a\n1,50\n\n2,25\n3,00\n"},
        {{"--variables", "a", "--precision", "full"}, "a\n1.5\n\n2.25\n3\n"},
    };
    for (const Case& c : cases) {
        ok(QStringList{"export", "p", "t", "o.csv"} + c.options);
        EXPECT_EQ(read("o.csv"), c.text) << c.options.join(' ').toStdString();
    }
}

TEST_F(ToolRoadTest, infoIsTheDocumentedJson)
{
    write("t.csv", "EASTING,NORTHING,rock,n,empty\n1.5,10,b,9007199254740993,\n2.5,20,a,-5,\n"
                   "3.5,30,b,,\n4.5,50,b,0,\n");
    const ToolRun imported =
        run({"import", "t.csv", "--project", "p", "--cs", "EPSG:2154", "--json"});
    const QJsonObject report = imported.json();
    EXPECT_TRUE(report["coordinates"].toObject()["guessed"].toBool());
    EXPECT_TRUE(imported.err.contains("EASTING"));

    const ToolRun info = run({"info", "p", "t", "--json"});
    const QByteArray expected =
        R"({"datasets":[{"boundingBox":{"xMax":4.5,"xMin":1.5,"yMax":50,)"
        R"("yMin":10,"zMax":null,"zMin":null},"coordinateSystem":"EPSG:2154",)"
        R"("coordinateSystemKind":"PROJECTED","coordinateSystemName":"RGF93 v1 / Lambert-93",)"
        R"("coordinateUnit":"m","count":4,"elevationUnit":"m",)"
        R"("kind":"POINT","masked":0,"name":"t","variables":[)"
        R"({"categories":[],"defined":4,"displayUnit":null,"maximum":4.5,"mean":3,"minimum":1.5,"name":"EASTING",)"
        R"("role":"X_COORDINATE","type":"real","undefined":0,"unit":null},)"
        R"({"categories":[],"defined":4,"displayUnit":null,"maximum":50,"mean":27.5,"minimum":10,"name":"NORTHING",)"
        R"("role":"Y_COORDINATE","type":"real","undefined":0,"unit":null},)"
        R"({"categories":["b","a"],"defined":4,"displayUnit":null,"maximum":null,"mean":null,"minimum":null,)"
        R"("name":"rock","role":null,"type":"category","undefined":0,"unit":null},)"
        R"({"categories":[],"defined":3,"displayUnit":null,"maximum":9007199254740992,"mean":3002399751580329.5,)"
        R"("minimum":-5,"name":"n","role":null,"type":"integer","undefined":1,"unit":null},)"
        R"({"categories":[],"defined":0,"displayUnit":null,"maximum":null,"mean":null,"minimum":null,)"
        R"("name":"empty","role":null,"type":"text","undefined":4,"unit":null}]}],"filters":[],"project":"p"})";
    EXPECT_EQ(QJsonDocument::fromJson(info.out).toJson(QJsonDocument::Compact), expected);
    EXPECT_TRUE(
        info.out.contains("\"maximum\": 9007199254740993,")); // all digits; Qt reads a double
    EXPECT_EQ(report["dataset"], info.json()["datasets"].toArray().first());

    // No coordinates, then no datasets.
    write("plain.csv", "a\n1\n");
    ok({"import", "plain.csv", "--project", "q"});
    EXPECT_TRUE(dataset("q")["boundingBox"].isNull());
    QDir(m_folder.path()).mkdir("void");
    EXPECT_EQ(run({"info", "void", "--json"}).json()["datasets"].toArray().size(), 0);
}

TEST_F(ToolRoadTest, replacingKeepsTheIdentity)
{
    write("t.csv", "a\n1\n2\n");
    ok({"import", "t.csv", "--project", "deep/p"});
    const QStringList files = entries("deep/p");
    write("t.csv", "a\n1\n2\n3\n");
    ok({"import", "t.csv", "--project", "deep/p", "--replace"});
    EXPECT_EQ(entries("deep/p"), files);
    EXPECT_EQ(dataset("deep/p")["count"].toInt(), 3);
    ok({"import", "t.csv", "--project", "deep/p", "--name", "u"});
    EXPECT_EQ(entries("deep/p").size(), 2);

    // A table that is wrong leaves the old dataset as it is.
    const QByteArray old = read("deep/p/" + files.first());
    write("t.csv", "a,b\n1,2\n2\n");
    EXPECT_EQ(run({"import", "t.csv", "--project", "deep/p", "--replace"}).exitCode, 1);
    EXPECT_EQ(read("deep/p/" + files.first()), old);
}

TEST_F(ToolRoadTest, checkFaultsWhatIsDamagedAndNothingElse)
{
    write("a.csv", "x,y,v\n1,2,3\n4,5,6\n");
    ok({"import", "a.csv", "--project", "p"});
    const QString file = "p/" + entries("p").first();
    const QByteArray good = read(file);
    write("p/readme.txt", "not ours");
    ok({"check", "p"});

    QByteArray otherType = good;
    otherType.replace("LuMemoryDatasetPoint", "LuMemoryDatasetOdd");
    QByteArray otherCount = good;
    otherCount.replace("<name>v</name>", "<name>x</name>");
    const std::vector<QByteArray> damaged = {"", "no XML", good.left(good.size() / 2), otherType,
                                             otherCount};
    for (const QByteArray& bytes : damaged) {
        ASSERT_NE(bytes, good);
        write(file, bytes);
        const ToolRun result = run({"check", "p", "--json"});
        EXPECT_EQ(result.exitCode, 1) << bytes.left(200).toStdString();
        EXPECT_EQ(result.json()["wrong"].toInt(), 1);
        const QJsonArray files = result.json()["files"].toArray();
        EXPECT_EQ(files[0].toObject()["status"].toString(), "wrong");
        EXPECT_FALSE(files[0].toObject()["errors"].toArray().isEmpty());
        EXPECT_EQ(files[1].toObject()["status"].toString(), "foreign");
        EXPECT_EQ(read(file), bytes); // nothing is changed
        EXPECT_EQ(run({"info", "p"}).exitCode, 1);
    }
}

TEST_F(ToolRoadTest, aDamagedFileDoesNotShutTheWayToTheOthers)
{
    write("a.csv", "x,y,v\n1,2,3\n4,5,6\n");
    ok({"import", "a.csv", "--project", "p"});
    write("p/dataset_00000000-0000-0000-0000-000000000001.xml", "no XML");

    const ToolRun all = run({"info", "p", "--json"});
    EXPECT_EQ(all.exitCode, 1);
    EXPECT_TRUE(all.err.contains("dataset_00000000")) << all.err.toStdString();
    EXPECT_EQ(all.json()["datasets"].toArray().size(), 1);
    ok({"info", "p", "a"});
    ok({"export", "p", "a", "out.csv"});
    EXPECT_EQ(read("out.csv"), read("a.csv"));
    ok({"import", "a.csv", "--project", "p", "--name", "b"});
}

TEST_F(ToolRoadTest, mapsAreDrawnWithoutADisplay)
{
    QByteArray text = "x,y,grade,rock\n";
    for (int i = 0; i < 50; ++i)
        text += QByteArray::number(i) + ',' + QByteArray::number(i * 7 % 20) + ',' +
                (i % 9 == 0 ? QByteArray() : QByteArray::number(i * 0.25)) + ",r" +
                QByteArray::number(i % 3) + '\n';
    write("t.csv", text);
    write("one.csv", "x,y,grade\n5,5,\n");
    ok({"import", "t.csv", "--project", "p"});
    ok({"import", "one.csv", "--project", "p"});
    for (const QStringList& words :
         {QStringList{"t", "m.png"}, QStringList{"t", "m.png", "--variable", "rock"},
          QStringList{"one", "m.png", "--variable", "x"}}) {
        const ToolRun result = run(QStringList{"map", "p"} + words);
        EXPECT_EQ(result.exitCode, 0) << result.err.toStdString();
        EXPECT_EQ(result.err, "");
        const QImage image(path("m.png"));
        EXPECT_GT(image.width(), 400);
        EXPECT_GT(image.height(), 400);
        std::set<QRgb> colors;
        for (int x = 0; x < image.width(); ++x) {
            for (int y = 0; y < image.height(); ++y)
                colors.insert(image.pixel(x, y));
        }
        EXPECT_GT(colors.size(), 20u);
        QFile::remove(path("m.png"));
    }
}
} // namespace
