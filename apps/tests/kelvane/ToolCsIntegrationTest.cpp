#include "ToolRunner.h"

#include <QtCore/QStandardPaths>

namespace
{
class ToolCsTest : public ToolTest
{
protected:
    static QStringList systemsOf(const ToolRun& result)
    {
        QStringList texts;
        for (const QJsonValue& system : result.json().value("systems").toArray())
            texts.append(system.toObject().value("coordinateSystem").toString());
        return texts;
    }
};

TEST_F(ToolCsTest, searchAnswersTheBestFirst)
{
    const ToolRun named = ok({"cs", "search", "lambert", "93", "--json", "--limit", "3"});
    EXPECT_EQ(systemsOf(named).size(), 3);
    EXPECT_EQ(systemsOf(named).value(0), "EPSG:2154");
    EXPECT_GT(named.json().value("count").toInt(), 3);

    // A place south of the equator and west of Greenwich: Brasilia.
    const ToolRun placed = ok({"cs", "search", "sirgas", "utm", "--area", "-47.9,-15.8", "--json"});
    EXPECT_EQ(systemsOf(placed).value(0), "EPSG:31983");
    EXPECT_FALSE(systemsOf(placed).contains("EPSG:31982")); // the next zone

    const ToolRun table = run({"cs", "search", "utm", "31n", "--limit", "1"});
    EXPECT_TRUE(table.out.contains("EPSG:32631  WGS 84 / UTM zone 31N")) << table.out.toStdString();
    EXPECT_TRUE(table.err.contains("more; --limit")) << table.err.toStdString();
}

// The facts agree with the database, as another program reads it.
TEST_F(ToolCsTest, showAgreesWithTheDatabase)
{
    const QString database = "/usr/share/proj/proj.db";
    const QString sqlite = QStandardPaths::findExecutable("sqlite3");
    if (sqlite.isEmpty() || !QFile::exists(database))
        GTEST_SKIP() << "needs sqlite3 and PROJ's database";
    for (const QString code : {"2154", "28992", "2263", "4326", "7405", "31700"}) {
        const QString query =
            "select c.name, c.deprecated, e.west_lon, e.south_lat, e.east_lon, e.north_lat, s.scope"
            " from crs_view c join usage u on u.object_auth_name = c.auth_name"
            " and u.object_code = c.code and u.object_table_name = c.table_name"
            " join extent e on e.auth_name = u.extent_auth_name and e.code = u.extent_code"
            " join scope s on s.auth_name = u.scope_auth_name and s.code = u.scope_code"
            " where c.auth_name = 'EPSG' and c.code = '" +
            code + "'";
        QProcess process;
        process.start(sqlite, {"-separator", "|", database, query});
        ASSERT_TRUE(process.waitForFinished());
        const QStringList fields =
            QString::fromUtf8(process.readAllStandardOutput()).section('\n', 0, 0).split('|');
        ASSERT_EQ(fields.size(), 7) << code.toStdString();

        const QJsonObject shown = run({"cs", "show", "EPSG:" + code, "--json"}).json();
        const QJsonObject area = shown.value("area").toObject();
        EXPECT_EQ(shown.value("name").toString(), fields[0]);
        EXPECT_EQ(shown.value("deprecated").toBool(), fields[1] == "1");
        EXPECT_EQ(shown.value("replacements").toArray().isEmpty(), fields[1] == "0");
        EXPECT_EQ(area.value("west").toDouble(), fields[2].toDouble());
        EXPECT_EQ(area.value("south").toDouble(), fields[3].toDouble());
        EXPECT_EQ(area.value("east").toDouble(), fields[4].toDouble());
        EXPECT_EQ(area.value("north").toDouble(), fields[5].toDouble());
        EXPECT_EQ(shown.value("scope").toString(), fields[6]);
        EXPECT_TRUE(shown.value("wkt2").toString().contains("ID[\"EPSG\"," + code + "]]"));
    }
}

TEST_F(ToolCsTest, pagesForPeopleNameWhatMatters)
{
    const struct {
        QString system;
        QList<QByteArray> lines;
    } rows[] = {
        {"EPSG:27572",
         {"kind            projected, Lambert Conic Conformal (1SP)", "unit            Metre",
          "prime meridian  Paris, 2.33722917\u00b0 east of Greenwich",
          "semi-major axis 6378249.2 m", "IGNF:LAMBE"}},
        {"EPSG:31700", {"Oblique Stereographic, deprecated\n", "replaced by     EPSG:3844"}},
        {"WGS 84", {"IGNF:WGS84G  WGS 84", "kind            geographic\n", "EPSG:4326"}},
        {"PROJ4:+proj=utm +zone=31 +ellps=intl +towgs84=1,2,3",
         {"Transverse Mercator", "International 1924"}},
    };
    for (const auto& row : rows) {
        const ToolRun shown = run({"cs", "show", row.system}, "de_DE.UTF-8");
        EXPECT_EQ(shown.exitCode, 0) << shown.err.toStdString();
        for (const QByteArray& line : row.lines)
            EXPECT_TRUE(shown.out.contains(line)) << shown.out.toStdString();
    }
}

TEST_F(ToolCsTest, favoritesArePutDownForTheNextRun)
{
    ok({"cs", "favorites", "add", "EPSG:2056"});
    ok({"cs", "favorites", "remove", "WGS 84"});
    const QStringList favorites = systemsOf(run({"cs", "favorites", "--json"}));
    EXPECT_EQ(favorites.last(), "EPSG:2056");
    EXPECT_FALSE(favorites.contains("IGNF:WGS84G"));
    const ToolRun again = run({"cs", "favorites", "add", "EPSG:2056"});
    EXPECT_EQ(again.exitCode, 0);
    EXPECT_TRUE(again.err.contains("was so already")) << again.err.toStdString();

    // A system that no catalog has becomes one of the user's own.
    EXPECT_FALSE(systemsOf(run({"cs", "list", "--json"})).contains("EPSG:2462"));
    ok({"cs", "favorites", "add", "EPSG:2462"});
    EXPECT_TRUE(systemsOf(run({"cs", "list", "--json"})).contains("EPSG:2462"));
}

TEST_F(ToolCsTest, worksWithoutAPlaceForTheUsersFiles)
{
    write("file", "in the way");
    const auto runThere = [this](const QStringList& arguments) {
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("KELVANE_USER_DIR", path("file/below"));
        process.setProcessEnvironment(environment);
        process.start(qEnvironmentVariable("KELVANE_TOOL"), arguments);
        EXPECT_TRUE(process.waitForFinished());
        return ToolRun{process.exitCode(), {}, process.readAllStandardError()};
    };
    EXPECT_EQ(runThere({"cs", "show", "WGS 84"}).exitCode, 0);
    const ToolRun refused = runThere({"cs", "favorites", "add", "EPSG:2056"});
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_TRUE(refused.err.contains("Cannot create the directory")) << refused.err.toStdString();
}
} // namespace
