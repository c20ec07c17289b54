// The road with space: what coordinates and numbers are in, and a table out in another system.
#include "ToolRunner.h"

#include <util/dataset/KudDatasetDirectory.h>
#include <util/dataset/KudMemoryDatasetGrid.h>
#include <util/utils/KuuGeometrySet.h>

#include <basic/geometry/HbgGeomGrid.h>

namespace
{
class ToolSpaceTest : public ToolTest
{
protected:
    QList<QList<QByteArray>> rows(const QByteArray& csv) const
    {
        QList<QList<QByteArray>> result;
        for (const QByteArray& line : csv.trimmed().split('\n'))
            result.append(line.split(','));
        return result;
    }
};
} // namespace

// The example that EPSG publishes for the method of RD New, its origin, and the place that the
// Dutch land registry gives for the origin on the ellipsoid of today.
TEST_F(ToolSpaceTest, publishedPointsComeOut)
{
    const struct {
        const char* from;
        const char* to;
        double x, y, toX, toY, tolerance;
    } cases[] = {
        {"EPSG:4289", "EPSG:28992", 6, 53, 196105.283, 557057.739, 1e-3},
        {"EPSG:28992", "EPSG:4289", 155000, 463000, 5.387638889, 52.156160556, 1e-9},
        {"EPSG:28992", "EPSG:4326", 155000, 463000, 5.387203657, 52.155172897, 1e-5},
        {"EPSG:4171", "IGNF:LAMB93", 3, 46.5, 700000, 6600000, 1e-6},
    };
    for (const auto& c : cases) {
        write("t.csv", "x,y\n" + QByteArray::number(c.x, 'g', 17) + ',' +
                           QByteArray::number(c.y, 'g', 17) + '\n');
        ok({"import", "t.csv", "--project", "p", "--replace", "--cs", c.from});
        const ToolRun exported =
            ok({"export", "p", "t", "o.csv", "--cs", c.to, "--precision", "full"});
        EXPECT_TRUE(exported.err.contains("Coordinates converted: 1 points, accuracy"))
            << exported.err.toStdString();
        const auto cells = rows(read("o.csv"));
        EXPECT_NEAR(cells[1][0].toDouble(), c.toX, c.tolerance) << c.to;
        EXPECT_NEAR(cells[1][1].toDouble(), c.toY, c.tolerance) << c.to;
    }
}

TEST_F(ToolSpaceTest, realFilesComeBackFromDegrees)
{
    REQUIRE_DATA("points/meuse.csv");
    ok({"import", data("points/meuse.csv"), "--project", "p", "--cs", "EPSG:28992"});
    ok({"export", "p", "meuse", "plain.csv"});
    const auto before = rows(read("plain.csv"));
    for (const auto& [options, tolerance] :
         {std::pair{QStringList{"--precision", "full"}, 1e-3}, {QStringList(), 12e-3}}) {
        ok(QStringList{"export", "p", "meuse", "world.csv", "--cs", "EPSG:4326"} + options);
        EXPECT_TRUE(read("world.csv").startsWith("Longitude,Latitude,cadmium,"));
        ok({"import", "world.csv", "--project", "p", "--replace", "--cs", "EPSG:4326"});
        ok(QStringList{"export", "p", "world", "back.csv", "--cs", "EPSG:28992"} + options);
        const auto after = rows(read("back.csv"));
        ASSERT_EQ(after.size(), before.size());
        for (int row = 1; row < after.size(); ++row) {
            EXPECT_NEAR(after[row][0].toDouble(), before[row][0].toDouble(), tolerance);
            EXPECT_NEAR(after[row][1].toDouble(), before[row][1].toDouble(), tolerance);
            for (int i = 2; i < after[row].size() && !options.isEmpty(); ++i)
                EXPECT_EQ(after[row][i].toDouble(), before[row][i].toDouble());
        }
    }
    // The extent is that of the converted points.
    ok({"export", "p", "meuse", "world.csv", "--cs", "EPSG:4326", "--precision", "full"});
    double west = 180;
    double north = 0;
    const auto world = rows(read("world.csv"));
    for (int row = 1; row < world.size(); ++row) {
        west = std::min(west, world[row][0].toDouble());
        north = std::max(north, world[row][1].toDouble());
    }
    const QJsonObject extent = dataset("p", {"--cs", "EPSG:4326"})["extent"].toObject();
    EXPECT_EQ(extent["coordinateSystem"].toString(), "EPSG:4326");
    EXPECT_EQ(extent["unit"].toString(), QString::fromUtf8("°"));
    EXPECT_NEAR(extent["boundingBox"].toObject()["xMin"].toDouble(), west, 1e-12);
    EXPECT_NEAR(extent["boundingBox"].toObject()["yMax"].toDouble(), north, 1e-12);
}

TEST_F(ToolSpaceTest, setSaysWhatNumbersAreAndChangesNone)
{
    write("t.csv", "x,y,depth,\"zinc, total\",rock\n1000,2000,10.5,250,a\n1000,2000,11.0,,b\n"
                   "1000,2000,12.0,1,a\n1000,2000,13.0,40000,b\n");
    ok({"import", "t.csv", "--project", "p", "--z", "depth", "--x", "x", "--y", "y"});
    const QStringList files = entries("p");

    ok({"set", "p", "t", "--cs", "EPSG:2154", "--unit", "x=ft,y=ft", "--unit",
        "\"zinc, total=ppm\""});
    ok({"export", "p", "t", "o.csv"});
    EXPECT_EQ(read("o.csv"), read("t.csv"));
    QJsonObject info = dataset("p");
    EXPECT_EQ(info["coordinateSystem"].toString(), "EPSG:2154");
    EXPECT_EQ(info["coordinateSystemKind"].toString(), "PROJECTED");
    EXPECT_EQ(info["coordinateUnit"].toString(), "ft");
    EXPECT_EQ(info["elevationUnit"].toString(), "ft");
    EXPECT_EQ(info["variables"].toArray()[3].toObject()["unit"].toString(), "ppm");

    // Shown in another unit, and for one file in a third.
    ok({"set", "p", "t", "--display", "\"zinc, total=%\""});
    ok({"export", "p", "t", "o.csv", "--variables", "\"zinc, total\""});
    EXPECT_EQ(read("o.csv"), "\"zinc, total\"\n0.0250\n\n0.0001\n4.0000\n");
    const ToolRun other = ok({"export", "p", "t", "o.csv", "--variables", "\"zinc, total\",depth",
                              "--units", "\"zinc, total=g/t\""});
    EXPECT_TRUE(other.err.contains("'zinc, total' is written in g/t.")) << other.err.toStdString();
    EXPECT_TRUE(read("o.csv").startsWith("\"zinc, total\",depth\n250,10.5\n"));

    // Feet are taken for feet: 2296587.9265 ft are 700 km.
    write("f.csv", "x,y\n2296587.926509186,21653543.30708661\n");
    ok({"import", "f.csv", "--project", "q", "--cs", "EPSG:2154"});
    ok({"set", "q", "f", "--unit", "x=ft,y=ft"});
    ok({"export", "q", "f", "o.csv", "--cs", "EPSG:4171"});
    EXPECT_EQ(read("o.csv"), "Longitude,Latitude\n3.0000000,46.5000000\n");

    // Each coordinate has its own unit, else the system's.
    for (const QByteArray units : {"x=km,y=none", "x=none,y=km", "x=km,y=ft"}) {
        const bool isOnlyY = units.startsWith("x=none");
        const bool isFeet = units.endsWith("ft");
        write("u.csv", isOnlyY  ? "x,y\n700000,6600\n"
                       : isFeet ? "x,y\n700,21653543.30708661\n"
                                : "x,y\n700,6600000\n");
        ok({"import", "u.csv", "--project", "u", "--replace", "--cs", "EPSG:2154"});
        const ToolRun set = ok({"set", "u", "u", "--unit", QString(units)});
        EXPECT_TRUE(set.out.contains(isOnlyY ? " m, y 6600 to 6600 km" : " km, y "));
        EXPECT_TRUE(set.out.contains(isFeet ? " ft\n" : isOnlyY ? " km\n" : " m\n"));
        const QJsonObject place =
            dataset("u", {"--cs", "EPSG:4171"})["extent"].toObject()["boundingBox"].toObject();
        EXPECT_NEAR(place["xMin"].toDouble(), 3., 1e-9) << units.toStdString();
        EXPECT_NEAR(place["yMin"].toDouble(), 46.5, 1e-9) << units.toStdString();
    }
    // Longitudes and latitudes are angles, of two classes.
    write("u.csv", "x,y\n3,0.8115781021773633\n");
    ok({"import", "u.csv", "--project", "u", "--replace", "--cs", "EPSG:4326"});
    ok({"set", "u", "u", "--unit", "x=LONGITUDE:deg,y=LATITUDE:rad"});
    const QJsonObject place =
        dataset("u", {"--cs", "EPSG:2154"})["extent"].toObject()["boundingBox"].toObject();
    EXPECT_NEAR(place["yMin"].toDouble(), 6600000., 1e-3);

    // All or nothing.
    const QByteArray saved = read("p/" + files.first());
    for (const QStringList& wrong :
         std::vector<QStringList>{{"--cs", "EPSG:4326"}, // its coordinates are in feet
                                  {"--cs", "EPSG:28992", "--unit", "gold=ppm"},
                                  {"--cs", "EPSG:28992", "--unit", "rock=ppm"},
                                  {"--cs", "EPSG:28992", "--unit", "depth=lightyear"},
                                  {"--unit", "depth=m,depth=ft"},
                                  {"--unit", "depth=RATIO:m"},
                                  {"--unit", "x=ppm"},
                                  {"--unit", "depth=m", "--display", "depth=ppm"}}) {
        EXPECT_NE(fault(QStringList{"set", "p", "t"} + wrong, 1, ""), "");
        EXPECT_EQ(read("p/" + files.first()), saved);
    }

    ok({"set", "p", "t", "--cs", "none", "--unit", "x=none,y=none"});
    info = dataset("p");
    EXPECT_TRUE(info["coordinateSystem"].isNull());
    EXPECT_TRUE(info["coordinateUnit"].isNull());
    EXPECT_EQ(entries("p"), files);
    EXPECT_EQ(ok({"check", "p"}).err, "");
}

TEST_F(ToolSpaceTest, whatMakesCoordinatesWorseIsSaid)
{
    write("t.csv", "x,y,v\n5,52,1\n,52,2\n5,200,3\n-120,-40,4\n");
    ok({"import", "t.csv", "--project", "p", "--cs", "EPSG:4326"});
    const struct {
        const char* system;
        QList<QByteArray> said;
    } cases[] = {
        {"EPSG:28992",
         {"1 without coordinates", "1 points cannot be converted", "outside of the area of use"}},
        {"EPSG:2154", {"converted: 2 points"}},
    };
    for (const auto& c : cases) {
        const ToolRun result =
            ok({"export", "p", "t", "o.csv", "--cs", c.system, "--undefined", "NA"});
        for (const QByteArray& text : c.said)
            EXPECT_TRUE(result.err.contains(text)) << result.err.toStdString();
        const auto cells = rows(read("o.csv"));
        EXPECT_EQ(cells[2], (QList<QByteArray>{"NA", "NA", "2"}));
        EXPECT_EQ(cells[3], (QList<QByteArray>{"NA", "NA", "3"}));
    }
    // Without coordinates in the file nothing is converted: here, and where they are but text.
    ToolRun none = ok({"export", "p", "t", "o.csv", "--cs", "EPSG:2154", "--variables", "v"});
    EXPECT_EQ(none.err, "warning: None of the exported variables is a coordinate: nothing was "
                        "converted into 'EPSG:2154'.\n");
    EXPECT_EQ(read("o.csv"), "v\n1\n2\n3\n4\n");
    write("s.csv", "x,y\n5 E,52\n");
    ok({"import", "s.csv", "--project", "p", "--cs", "EPSG:4326"});
    EXPECT_EQ(ok({"export", "p", "s", "o.csv", "--cs", "EPSG:2154"}).err, none.err);
}

// A grid in another system is no grid any more: its nodes are written out.
TEST_F(ToolSpaceTest, gridsAreExportedWithTheirNodes)
{
    KudMemoryDatasetGrid grid("g");
    grid.setGeometrySet(
        KuuGeometrySet(HbgGeomGrid(2, 2, HbgVector2D{700000, 6600000}, 1000, 1000)));
    const KudDatasetVariable variable =
        grid.createVariable(HbdVariableDetails("v", HbdEVarType::INTEGER), HbdESupport::GRID);
    for (int rank = 0; rank < 4; ++rank)
        grid.getGridTable()->updateValue(variable, rank, rank);
    grid.setCoordSystem(KuuCoordSystem::createFromEpsg("2154"));
    KudDatasetDirectory(path("p")).save(grid);
    ok({"export", "p", "g", "o.csv"});
    EXPECT_EQ(read("o.csv"), "v\n0\n1\n2\n3\n");
    ok({"export", "p", "g", "o.csv", "--cs", "EPSG:4171"});
    const auto cells = rows(read("o.csv"));
    EXPECT_EQ(cells[0], (QList<QByteArray>{"Longitude", "Latitude", "v"}));
    EXPECT_EQ(cells[1], (QList<QByteArray>{"3.0000000", "46.5000000", "0"}));
    EXPECT_NEAR(cells[4][0].toDouble(), 3.0130, 1e-4);
    EXPECT_NEAR(cells[4][1].toDouble(), 46.5090, 1e-4);
    ok({"export", "p", "g", "some.csv", "--cs", "EPSG:4171", "--rule", "v in (0, 2]"});
    EXPECT_EQ(rows(read("some.csv")), (QList<QList<QByteArray>>{cells[0], cells[2], cells[3]}));
    ok({"select", "p", "g", "--rule", "v in (0, 2]", "--mask"});
    ok({"export", "p", "g", "masked.csv", "--cs", "EPSG:4171", "--masked"});
    EXPECT_EQ(read("masked.csv"), read("some.csv"));
}
