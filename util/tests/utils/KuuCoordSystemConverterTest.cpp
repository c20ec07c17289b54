#include <util/utils/KuuCoordSystemConverter.h>

#include <basic/base/HbbGlobal.h>
#include <basic/data/HbdVariableReal.h>
#include <basic/error/HbeProgrammingError.h>
#include <basic/error/HbeUserError.h>
#include <basic/geometry/HbgGeomPolygon.h>
#include <basic/unit/HbuUnitService.h>

#include "ErrorText.h"
#include "Job.h"

#include <cmath>
#include <limits>
#include <proj.h>
#include <thread>

namespace
{
constexpr double U = HbbGlobal::D_FFFF;
constexpr double INF = std::numeric_limits<double>::infinity();
constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();

/// Half of the globe has no image on it.
const char* const GNOMONIC = "PROJ4:+proj=gnom +lat_0=90 +datum=WGS84";

KuuCoordSystem read(const char* text)
{
    return KuuCoordSystem::unserialize(QString::fromUtf8(text));
}

KuuCoordSystemConverter converterOf(const char* from, const char* to)
{
    return {read(from), read(to)};
}

HbuUnit unitOf(const HbuEUnitClass& unitClass, const char* key)
{
    return HbuUnitService::getInstance().getUnit(unitClass, QString::fromLatin1(key));
}

std::vector<double> randomValues(double low, double high, std::size_t count, unsigned seed)
{
    std::mt19937 generator(seed);
    std::uniform_real_distribution<double> distribution(low, high);
    std::vector<double> values(count);
    for (double& value : values)
        value = distribution(generator);
    return values;
}

/// PROJ's own conversion, which chooses an operation for each point.
class Judge
{
public:
    Judge(const QByteArray& from, const QByteArray& to)
    {
        proj_log_level(m_context, PJ_LOG_NONE);
        PJ* plain = proj_create_crs_to_crs(m_context, textOf(from), textOf(to), nullptr);
        m_pj = proj_normalize_for_visualization(m_context, plain);
        proj_destroy(plain);
    }
    ~Judge()
    {
        proj_destroy(m_pj);
        proj_context_destroy(m_context);
    }
    HbgVector2D convert(double x, double y)
    {
        const PJ_COORD image = proj_trans(m_pj, PJ_FWD, proj_coord(x, y, 0., HUGE_VAL));
        return {image.v[0], image.v[1]};
    }

private:
    static QByteArray textOf(const QByteArray& system)
    {
        return system.startsWith("PROJ4:") ? system.mid(6) + " +type=crs" : system;
    }

    PJ_CONTEXT* m_context = proj_context_create();
    PJ* m_pj = nullptr;
};
} // namespace

// With one operation and with many, in their areas and beyond: bit for bit PROJ's result.
TEST(KuuCoordSystemConverter, choosesOperationsAsProjDoes)
{
    const struct {
        const char* from;
        const char* to;
        double west, south, east, north;
    } rows[] = {
        {"EPSG:4326", "EPSG:2154", -12, 40, 12, 53},
        {"EPSG:4267", "EPSG:4269", -179, 10, -40, 84},
        {"EPSG:4230", "EPSG:4326", -20, 15, 60, 85},
        {"EPSG:27572", "EPSG:2154", -400000, 1600000, 1300000, 2700000}, // a grid file
        {"EPSG:28992", "EPSG:4326", -7000, 289000, 300000, 629000},
        {"EPSG:4326", "EPSG:3857", -180, -90, 180, 90},
        {"EPSG:3857", "EPSG:3035", -4e6, 2e6, 6e6, 2e7},
        {"EPSG:27700", "EPSG:4326", -100000, -100000, 800000, 1300000},
        {"EPSG:31467", "EPSG:25832", 3200000, 5200000, 3800000, 6200000},
        {"EPSG:4269", "EPSG:4326", 160, 10, 180, 80}, // across the antimeridian
        {"EPSG:2263", "EPSG:4326", 900000, 100000, 1100000, 300000},
        {"EPSG:4326", "EPSG:32661", -180, 50, 180, 90},
        {"EPSG:4123", "EPSG:2393", 18, 58, 32, 71}, // its first axis runs to the north
        {"IGNF:LAMBE", "IGNF:LAMB93", 0, 1700000, 1200000, 2700000},
        {"EPSG:4326",
         "PROJ4:+proj=somerc +lat_0=46.9524 +lon_0=7.4396 +k_0=1 +x_0=2600000 +y_0=1200000 "
         "+ellps=bessel +towgs84=674.374,15.056,405.346",
         5, 45, 11, 48},
        {"PROJ4:+proj=utm +zone=11 +ellps=clrk66 +towgs84=0,0,0",
         "PROJ4:+proj=utm +zone=11 "
         "+datum=WGS84 +units=us-ft",
         300000, 3e6, 700000, 6e6},
        {"PROJ4:+proj=longlat +datum=GGRS87", "EPSG:4326", 19, 34, 30, 42},
        {"PROJ4:+proj=longlat +R=6400000", "PROJ4:+proj=merc +R=6400000 +lon_0=10", -170, -80, 170,
         80},
        {"PROJ4:+proj=longlat +a=6400000 +rf=300",
         "PROJ4:+proj=lcc +lat_1=40 +lat_2=50 +a=6400000 "
         "+rf=300 +pm=paris",
         -10, 30, 20, 60},
    };
    constexpr std::size_t COUNT = 5000;
    for (const auto& row : rows) {
        SCOPED_TRACE(QString("%1 to %2").arg(row.from, row.to).toStdString());
        const std::vector<double> x = randomValues(row.west, row.east, COUNT, 1);
        const std::vector<double> y = randomValues(row.south, row.north, COUNT, 2);
        std::vector<double> points; // x, y, something else
        for (std::size_t i = 0; i < COUNT; ++i)
            points.insert(points.end(), {x[i], y[i], 7.});
        const auto counts =
            converterOf(row.from, row.to).convert(&points[0], &points[1], nullptr, COUNT, 3);
        EXPECT_EQ(counts.converted, qint64(COUNT));
        Judge judge(row.from, row.to);
        int wrong = 0;
        for (std::size_t i = 0; i < COUNT; ++i) {
            const HbgVector2D expected = judge.convert(x[i], y[i]);
            wrong += expected != HbgVector2D(points[3 * i], points[3 * i + 1]);
            wrong += points[3 * i + 2] != 7.;
        }
        EXPECT_EQ(wrong, 0);
    }
    // A full turn further a place is the same place, and has the same operation.
    HbgVector2D place(5., 45.);
    HbgVector2D turned(365., 45.);
    const KuuCoordSystemConverter converter = converterOf("EPSG:4230", "EPSG:4326");
    EXPECT_TRUE(converter.convert(place) && converter.convert(turned));
    EXPECT_NEAR(std::remainder(turned.x - place.x, 360.), 0., 1e-9);
    EXPECT_NEAR(turned.y, place.y, 1e-9);
}

TEST(KuuCoordSystemConverter, countsWhatBecomesOfPoints)
{
    const KuuCoordSystemConverter converter = converterOf("EPSG:4326", GNOMONIC);
    std::vector<double> x = {0., 10., U, 3., INF, 20., NOT_A_NUMBER};
    std::vector<double> y = {80., -80., 1., NOT_A_NUMBER, 50., 60., 4.};
    std::vector<double> z = {1., 2., 3., 4., 5., U, NOT_A_NUMBER};
    const auto counts = converter.convert(x.data(), y.data(), z.data(), qint64(x.size()));
    EXPECT_EQ(counts.converted, 2);
    EXPECT_EQ(counts.failed, 2);
    EXPECT_EQ(counts.undefined, 3);
    for (std::size_t i = 0; i < x.size(); ++i) {
        const bool isConverted = i == 0 || i == 5;
        EXPECT_EQ(std::isfinite(x[i]) && x[i] != U, isConverted) << i;
        EXPECT_EQ(x[i] == U && y[i] == U, !isConverted) << i;
        EXPECT_EQ(HbbGlobal::isUndefined(z[i]), i != 0) << i;
    }
    HbgVector2D lost(10., -80.);
    EXPECT_FALSE(converter.convert(lost));
    EXPECT_EQ(lost, HbgVector2D(10., -80.));
    HbgVector3D noHeight(0., 80., U);
    EXPECT_TRUE(converter.convert(noHeight));
    EXPECT_EQ(noHeight.z, U);

    // Paris, the Atlantic within the boxes of neither system's area, New York.
    std::vector<double> lon = {2.35, -40., -74.};
    std::vector<double> lat = {48.85, 30., 40.7};
    const auto outside =
        converterOf("EPSG:4258", "EPSG:2154").convert(lon.data(), lat.data(), nullptr, 3);
    EXPECT_EQ(outside.converted, 3);
    EXPECT_EQ(outside.outside, 2);
    // On land an operation of some metres, at sea none.
    std::vector<double> nadLon = {-100., -30.};
    std::vector<double> nadLat = {40., 0.};
    const KuuCoordSystemConverter nad = converterOf("EPSG:4267", "EPSG:4269");
    const auto ballpark = nad.convert(nadLon.data(), nadLat.data(), nullptr, 2);
    EXPECT_EQ(ballpark.ballpark, 1);
    EXPECT_EQ(ballpark.worstAccuracy, U);
    const auto operations = nad.getOperations();
    ASSERT_EQ(ballpark.byOperation.size(), operations.size());
    for (int i = 0; i < operations.size(); ++i) {
        if (ballpark.byOperation[i] > 0) {
            EXPECT_TRUE(operations[i].grids.isEmpty()) << operations[i].name.toStdString();
            EXPECT_TRUE(operations[i].isBallpark || operations[i].area.contains(-100., 40.));
        }
    }
}

TEST(KuuCoordSystemConverter, takesAndGivesEachSidesUnit)
{
    const HbuUnit km = unitOf(HbuEUnitClass::LENGTH, "km");
    const HbuUnit gon = unitOf(HbuEUnitClass::LATITUDE, "gon");
    const HbuUnit rad = unitOf(HbuEUnitClass::ANGLE, "rad");
    const KuuCoordSystem wgs84 = read("EPSG:4326");
    const KuuCoordSystem lambert = read("EPSG:2154");
    HbgVector3D point(3. / 0.9, 46.5 / 0.9, 100.);
    EXPECT_TRUE(KuuCoordSystemConverter(wgs84, gon, lambert, km).convert(point));
    EXPECT_NEAR(point.x, 700., 1e-9);
    EXPECT_NEAR(point.y, 6600., 1e-9);
    EXPECT_NEAR(point.z, 0.1, 1e-12);
    EXPECT_TRUE(KuuCoordSystemConverter(lambert, km, wgs84, rad).convert(point));
    EXPECT_NEAR(point.x, 3. * std::acos(-1.) / 180., 1e-12);
    EXPECT_NEAR(point.z, 100., 1e-9);
    // A length unit of longitudes and latitudes is that of the elevations.
    point = HbgVector3D(3., 46.5, 1.);
    EXPECT_TRUE(KuuCoordSystemConverter(wgs84, km, lambert, HbuUnit::none()).convert(point));
    EXPECT_NEAR(point.x, 700000., 1e-6);
    EXPECT_NEAR(point.z, 1000., 1e-9);
    // US survey feet: the system's own, or metres.
    const KuuCoordSystem newYork = read("EPSG:2263");
    const KuuCoordSystem nad83 = read("EPSG:4269");
    HbgVector2D feet(1000000., 200000.);
    HbgVector2D metres(1000000. * 1200. / 3937., 200000. * 1200. / 3937.);
    EXPECT_TRUE(KuuCoordSystemConverter(newYork, nad83).convert(feet));
    EXPECT_TRUE(
        KuuCoordSystemConverter(newYork, unitOf(HbuEUnitClass::LENGTH, "m"), nad83, HbuUnit())
            .convert(metres));
    EXPECT_NEAR(feet.x, metres.x, 1e-12);
    EXPECT_NEAR(feet.y, metres.y, 1e-12);
    // Degrees, whatever the authority's unit: gons from Paris here.
    HbgVector2D paris(0., 46.8);
    EXPECT_TRUE(converterOf("EPSG:4807", "EPSG:27572").convert(paris));
    EXPECT_NEAR(paris.x, 600000., 1e-6);
    EXPECT_NEAR(paris.y, 2200000., 1e-6);

    // One system: units alone.
    const KuuCoordSystem local = KuuCoordSystem::createLocal(km);
    const KuuCoordSystemConverter units(local, KuuCoordSystem::createLocal());
    EXPECT_FALSE(units.isReprojection() || units.isIdentity());
    EXPECT_TRUE(KuuCoordSystemConverter(lambert, lambert).isIdentity());
    double half[] = {1.5, U, 2.};
    EXPECT_EQ(units.convert(&half[0], &half[1], &half[2], 1).undefined, 1);
    EXPECT_EQ(half[0], 1500.);
    EXPECT_EQ(half[1], U);
    EXPECT_EQ(half[2], 2000.);
    EXPECT_EQ(units.transformDistance(2.), 2000.);
}

// Out of range is undefined and counted; next to an undefined coordinate nothing else is let out.
TEST(KuuCoordSystemConverter, givesNumbersOrNothing)
{
    const HbuUnit mm = unitOf(HbuEUnitClass::LENGTH, "mm");
    const KuuCoordSystem wgs84 = read("EPSG:4326");
    const KuuCoordSystem lambert = read("EPSG:2154");
    const KuuCoordSystemConverter reprojection(wgs84, HbuUnit(), lambert, mm);
    const KuuCoordSystemConverter units(lambert, HbuUnit(), lambert, mm);
    const KuuCoordSystemConverter identity(lambert, lambert);
    const struct {
        const KuuCoordSystemConverter& converter;
        HbgVector3D point;
        qint64 failed; // else it is undefined
        HbgVector3D image;
    } rows[] = {
        {reprojection, {3., 46.5, 1e306}, 1, {U, U, U}}, // it is the millimetres that are too many
        {reprojection, {3., NOT_A_NUMBER, INF}, 0, {U, U, U}},
        {units, {1., 2., 1e306}, 1, {U, U, U}},
        {units, {U, INF, -INF}, 0, {U, U, U}},
        {units, {NOT_A_NUMBER, 2., NOT_A_NUMBER}, 0, {U, 2000., U}},
        {identity, {U, -INF, NOT_A_NUMBER}, 0, {U, U, U}},
    };
    for (const auto& row : rows) {
        HbgVector3D at = row.point;
        const auto counts = row.converter.convert(&at.x, &at.y, &at.z, 1, 3);
        EXPECT_EQ(counts.failed, row.failed);
        EXPECT_EQ(counts.undefined, 1 - row.failed);
        EXPECT_EQ(at, row.image) << at.x << ' ' << at.y << ' ' << at.z;
    }
}

TEST(KuuCoordSystemConverter, refusesWithReasons)
{
    const HbuUnit none;
    const HbuUnit kilogram = unitOf(HbuEUnitClass::MASS, "kg");
    const HbuUnit degree = unitOf(HbuEUnitClass::ANGLE, "deg");
    const KuuCoordSystem lambert = read("EPSG:2154");
    const struct {
        KuuCoordSystem from;
        HbuUnit unit;
        const char* words; // of the message
    } rows[] = {
        {read("EPSG:99999"), none, "EPSG:99999|crs not found"},
        {read("IGNF:NOWHERE"), none, "IGNF:NOWHERE|crs not found"},
        {read("EPSG:5703"), none, "EPSG:5703|neither a geographic nor a projected"},
        {read("PROJ4:+proj=nonsense"), none, "+proj=nonsense|Unknown projection"},
        {read("PROJ4:+proj=utm +zone=99"), none, "zone=99|Invalid value for zone"},
        {read("PROJ4:+proj=longlat +a=1737400 +b=1737400"), none, "celestial body"},
        {KuuCoordSystem(), none, "no coordinate system"},
        {KuuCoordSystem::createLocal(), none, "no place on Earth"},
        {lambert, kilogram, "Kilogram|neither lengths nor angles"},
        {read("EPSG:27572"), degree, "are lengths|Degree"},
    };
    for (const auto& row : rows) {
        const QString error = errorOf<HbeUserError>(
            [&] { KuuCoordSystemConverter(row.from, row.unit, lambert, none); });
        for (const QString& word : QString(row.words).split('|'))
            EXPECT_TRUE(error.contains(word)) << error.toStdString();
    }
}

TEST(KuuCoordSystemConverter, reportsWhatIsDoneAndWhatIsNot)
{
    const KuuCoordSystemConverter french = converterOf("EPSG:4326", "EPSG:2154");
    ASSERT_EQ(french.getOperations().size(), 1);
    EXPECT_EQ(french.getOperations()[0].accuracy, 1.);
    EXPECT_EQ(french.getOperations()[0].area.left(), -9.86);
    EXPECT_FALSE(french.getReport().contains("Warning")) << french.getReport().toStdString();

    const QString report = converterOf("EPSG:4267", "EPSG:4269").getReport();
    for (const char* text : {"EPSG:4267 (NAD27)", "accuracy 0.15 m", "us_noaa_conus.tif",
                             "Ballpark geographic offset from NAD27 to NAD83"})
        EXPECT_TRUE(report.contains(text)) << text << '\n' << report.toStdString();
    EXPECT_EQ(report, converterOf("EPSG:4267", "EPSG:4269").getReport()); // from the cache

    KuuCoordSystemConverter::Counts counts;
    counts.converted = 1234567;
    counts.outside = 12;
    EXPECT_TRUE(french.getReport(counts).contains("1234567"));
    EXPECT_TRUE(french.getReport(counts).contains("outside of the area of use"));
}

TEST(KuuCoordSystemConverter, boxesHoldAllImages)
{
    const struct {
        const char* from;
        const char* to;
        QRectF rectangle;
    } rows[] = {
        {"EPSG:4326", "EPSG:2154", {-4., 42., 12., 9.}},
        {"EPSG:2154", "EPSG:4326", {100000., 6100000., 1e6, 1e6}},
        {"EPSG:4326", "EPSG:3031", {-180., -90., 360., 30.}},
        {"EPSG:3031", "EPSG:4326", {-1e6, -2e6, 3e6, 4e6}}, // the pole
        {"EPSG:3031", "EPSG:4326", {-1e6, -2e6, 3e6, 1e6}}, // the antimeridian
        {"EPSG:3832", "EPSG:4326", {-5e6, -1e6, 1e7, 2e6}}, // likewise
        {"EPSG:4326", "EPSG:3035", {-10., 35., 40., 30.}},
        {"EPSG:4326", GNOMONIC, {-30., -60., 200., 140.}}, // partly without image
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(QString("%1 to %2").arg(row.from, row.to).toStdString());
        const KuuCoordSystemConverter converter = converterOf(row.from, row.to);
        const QRectF image = converter.convert(row.rectangle);
        ASSERT_FALSE(image.isNull());
        const std::vector<double> x = randomValues(0., 1., 20000, 3);
        const std::vector<double> y = randomValues(0., 1., 20000, 4);
        for (std::size_t i = 0; i < x.size(); ++i) {
            HbgVector2D point(row.rectangle.left() + x[i] * row.rectangle.width(),
                              row.rectangle.top() + y[i] * row.rectangle.height());
            if (std::string(row.to) == GNOMONIC && point.y < 5.)
                continue; // to the horizon there is no end
            if (converter.convert(point)) {
                ASSERT_TRUE(point.x >= image.left() && point.x <= image.right() &&
                            point.y >= image.top() && point.y <= image.bottom())
                    << point.x << ' ' << point.y;
            }
        }
    }
    EXPECT_TRUE(converterOf("EPSG:4326", GNOMONIC).convert(QRectF(0., -80., 10., 10.)).isNull());
    // Not much larger than needed.
    const QRectF france = converterOf("EPSG:4326", "EPSG:2154").convert(QRectF(2., 46., 2., 1.));
    EXPECT_NEAR(france.width(), 156000., 3000.);
    EXPECT_NEAR(france.height(), 111700., 1000.);
    const HbgBox box = converterOf("EPSG:4326", "EPSG:2154")
                           .convert(HbgBox(HbgVector3D(2., 46., -5.), HbgVector3D(3., 47., 9.)));
    EXPECT_EQ(box.getZMin(), -5.);
    EXPECT_EQ(box.getZMax(), 9.);
    EXPECT_TRUE(converterOf("EPSG:4326", "EPSG:2154").convert(HbgBox()).isEmpty());
}

TEST(KuuCoordSystemConverter, distancesDependOnThePlace)
{
    const KuuCoordSystemConverter down = converterOf("EPSG:4326", "EPSG:3857");
    EXPECT_EQ(down.transformDistance(1.), U);
    EXPECT_NEAR(down.transformDistance(1., QPointF(0., 0.)), 111322., 10.);
    EXPECT_GT(down.transformDistance(1., QPointF(0., 60.)), 150000.);
    const KuuCoordSystemConverter up = converterOf("EPSG:3832", "EPSG:4326"); // about 150 E
    EXPECT_NEAR(up.transformDistance(111319.5, QPointF(111319.5 * 29.5, 0.)), 1., 0.01);
    EXPECT_EQ(converterOf("EPSG:4326", GNOMONIC).transformDistance(1., QPointF(0., -50.)), U);
    EXPECT_NEAR(converterOf("EPSG:2263", "EPSG:2154").transformDistance(3937.), 1200., 1e-9);
}

TEST(KuuCoordSystemConverter, threadsShareOneConverter)
{
    constexpr std::size_t COUNT = 300000;
    const KuuCoordSystemConverter converter = converterOf("EPSG:4230", "EPSG:4326");
    const std::vector<double> x = randomValues(-20., 60., COUNT, 5);
    const std::vector<double> y = randomValues(15., 85., COUNT, 6);
    const auto convert = [&](std::vector<double> ownX, std::vector<double> ownY, int threadCount) {
        const auto counts =
            converter.convert(ownX.data(), ownY.data(), nullptr, COUNT, 1, threadCount);
        return std::make_tuple(ownX, ownY, counts.byOperation, counts.outside);
    };
    const auto expected = convert(x, y, 1);
    std::vector<std::thread> threads;
    for (int t = 0; t < 3; ++t) {
        threads.emplace_back([&] {
            EXPECT_TRUE(convert(x, y, 0) == expected);
            // Other pairs at the same time, more than a thread keeps.
            for (int zone = 1; zone <= 20; ++zone) {
                HbgVector2D point(6. * zone - 183., 50.);
                const QByteArray utm = QByteArray::number(32600 + zone).prepend("EPSG:");
                EXPECT_TRUE(converterOf("EPSG:4326", utm.constData()).convert(point));
                EXPECT_NEAR(point.x, 500000., 1e-6);
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
}

TEST(KuuCoordSystemConverter, queueIsConvertedInOneJob)
{
    KuuCoordSystemConverter converter = converterOf("EPSG:4326", "EPSG:2154");
    std::vector<double> points(200000, 46.5);
    for (std::size_t i = 0; i < points.size(); i += 2)
        points[i] = 3.;
    HbgGeomPolygon polygon({{2., 46.}, {4., 46.}, {4., 48.}});
    ASSERT_TRUE(polygon.addHole(0, {{3., 46.2}, {3.5, 46.2}, {3.5, 46.7}}));
    HbgGeomPolygon lost({{2., 46.}, {4., 46.}, {U / 1e10, 48.}});
    HbdVariableDetails details;
    HbdVariableReal x(details);
    HbdVariableReal y(details);
    x.setValues({3., U});
    y.setValues({46.5, 46.5});

    KuuCoordSystemConverter::Counts counts;
    Job job([&](Job& self) { counts = converter.convertWanted(self); });
    converter.wantToConvert(&points[0], &points[1], nullptr, 100000, 2);
    converter.wantToConvert(polygon);
    converter.wantToConvert(lost);
    converter.wantToConvert(x, y);
    ASSERT_TRUE(job.runInCurrentThread()) << job.getErrorText().toStdString();
    EXPECT_EQ(job.getTotal(), 100000 + 6 + 3 + 2);
    EXPECT_EQ(job.getCounter(), job.getTotal());
    EXPECT_EQ(counts.converted + counts.failed + counts.undefined, job.getTotal());
    EXPECT_EQ(counts.undefined, 1);
    EXPECT_NEAR(points[199998], 700000., 1e-6);
    EXPECT_NEAR(x.at(0), 700000., 1e-6);
    EXPECT_EQ(x.at(1), U);
    EXPECT_NEAR(polygon.getContour(0)[0].y, 6545000., 10000.);
    EXPECT_EQ(polygon.getHoleCount(0), 1);
    EXPECT_TRUE(lost.isEmpty() || counts.failed == 0);

    // The queue is empty now; a cancel leaves nothing in it either, and most points as they were.
    ASSERT_TRUE(job.runInCurrentThread());
    EXPECT_EQ(counts.converted, 0);
    const std::vector<double> before = points;
    converter.wantToConvert(&points[0], &points[1], nullptr, 100000, 2);
    job.requestCancel();
    EXPECT_FALSE(job.runInCurrentThread());
    EXPECT_EQ(job.getOutcome(), HbcAProgress::Outcome::CANCELLED);
    EXPECT_EQ(points, before);

    HbdVariableReal shorter(details);
    EXPECT_THROW(converter.wantToConvert(x, shorter), HbeProgrammingError);
}
