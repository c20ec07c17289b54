#include <util/utils/KuuCoordSystem.h>
#include <util/utils/KuuCoordSystemService.h>

#include <basic/error/HbeUserError.h>
#include <basic/unit/HbuUnitService.h>

#include "ErrorText.h"

namespace
{
using Mode = Ku::CoordSystemMode;

const char* const UTM31 = "+proj=utm +zone=31 +datum=WGS84 +units=m +no_defs";

KuuCoordSystemService& service()
{
    return KuuCoordSystemService::getInstance();
}
KuuCoordSystem read(const char* text)
{
    return KuuCoordSystem::unserialize(QString::fromUtf8(text));
}
KuuCoordSystem fromProj4(const char* text)
{
    return KuuCoordSystem::createFromProj4(KueProj4Definition(QString::fromUtf8(text)));
}
HbuUnit length(const char* key)
{
    return HbuUnitService::getInstance().getUnit(HbuEUnitClass::LENGTH, QString::fromUtf8(key));
}
} // namespace

TEST(KuuCoordSystem, readsAndWritesItsTextForm)
{
    const struct {
        const char* text;
        bool isValid;
        const char* back;
    } rows[] = {
        {"EPSG:2154", true, "EPSG:2154"},
        {"IGNF:LAMB93", true, "IGNF:LAMB93"},
        {"PROJ4:+proj=utm +zone=31 +datum=WGS84", true, "PROJ4:+proj=utm +zone=31 +datum=WGS84"},
        {"PROJ4:+init=epsg:2154", true, "PROJ4:+init=epsg:2154"},
        {"EPSG:99999", false, "EPSG:99999"}, // unknown: kept
        {"EPSG: 2154", false, "EPSG: 2154"}, // no such code: kept
        {"EPSG:2154.0", false, "EPSG:2154.0"},
        {"EPSG:02154", false, "EPSG:02154"},
        {"EPSG:2154'--", false, "EPSG:2154'--"}, // likewise
        {"IGNF:EPSG:2154", false, "IGNF:EPSG:2154"},
        {"EPSG:5703", false, "EPSG:5703"}, // heights alone place nothing
        {"EPSG:4978", false, "EPSG:4978"}, // geocentric
        {"PROJ4:+proj=nonsense +a=1", false, "PROJ4:+proj=nonsense +a=1"},
        {"PROJ4:+proj=cart +ellps=GRS80", false, "PROJ4:+proj=cart +ellps=GRS80"},
        {"PROJ4:garbage", false, ""},
        {"epsg:2154", false, ""},
        {" EPSG:2154", false, ""},
        {"EPSG:", false, ""},
        {"2154", false, ""},
        {"", false, ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        const KuuCoordSystem system = read(row.text);
        EXPECT_EQ(system.isValid(), row.isValid);
        EXPECT_EQ(system.serialize(), QString::fromUtf8(row.back));
        EXPECT_EQ(KuuCoordSystem::unserialize(system.serialize()), system);
        EXPECT_EQ(system.getUnit().isValid(), row.isValid);
        EXPECT_EQ(*row.back == '\0', system == KuuCoordSystem());
    }
    const KuuCoordSystem both =
        KuuCoordSystem::createFromFields(QString(), "2154", "LAMB93", KueProj4Definition());
    EXPECT_EQ(both.serialize(), "IGNF:LAMB93");
    EXPECT_TRUE(KuuCoordSystem::createLocal().serialize().isEmpty());
}

TEST(KuuCoordSystem, knowsTheFactsOfPublishedSystems)
{
    ASSERT_TRUE(service().init());
    const struct {
        const char* text;
        const char* name;
        Mode mode;
        const char* unit;
        const char* parameter; // of the PROJ.4 definition, with its value
        const char* value;
    } rows[] = {
        {"EPSG:4326", "WGS 84", Mode::GEOGRAPHIC, "deg", "proj", "longlat"},
        {"EPSG:2154", "RGF93 v1 / Lambert-93", Mode::PROJECTED, "m", "lat_0", "46.5"},
        {"EPSG:28992", "Amersfoort / RD New", Mode::PROJECTED, "m", "proj", "sterea"},
        {"EPSG:27572", "NTF (Paris) / Lambert zone II", Mode::PROJECTED, "m", "pm", "paris"},
        {"EPSG:4807", "NTF (Paris)", Mode::GEOGRAPHIC, "deg", "pm", "paris"}, // in grads at EPSG
        {"EPSG:2263", "NAD83 / New York Long Island (ftUS)", Mode::PROJECTED, "ft-us", "units",
         "us-ft"},
        {"EPSG:7405", "OSGB36 / British National Grid + ODN height", Mode::PROJECTED, "m", "proj",
         "tmerc"},
        {"IGNF:LAMB93", "RGF93 Lambert 93", Mode::PROJECTED, "m", "lon_0", "3"},
    };
    for (const auto& row : rows) {
        const KuuCoordSystem system = read(row.text);
        if (!system.isValid()) {
            std::cout << "PROJ's database lacks " << row.text << ": skipped\n";
            continue;
        }
        SCOPED_TRACE(row.text);
        EXPECT_EQ(system.getName(), QString::fromUtf8(row.name));
        EXPECT_EQ(system.getMode(), row.mode);
        EXPECT_EQ(system.getUnit().getKey(), QString::fromUtf8(row.unit));
        EXPECT_EQ(system.getProj4().getParameter(QString::fromUtf8(row.parameter)),
                  QString::fromUtf8(row.value));
    }
    const KueProj4Definition feet("+proj=utm +zone=15 +datum=NAD83 +units=us-ft");
    EXPECT_EQ(service().extractUnit(feet), length("ft-us"));
    EXPECT_EQ(service().getCoordSystemMode(feet), Mode::PROJECTED);
    EXPECT_EQ(service().expandDefinition(feet), feet);
    const KueProj4Definition byCode("+init=epsg:32631");
    EXPECT_EQ(service().expandDefinition(byCode), KueProj4Definition(QString::fromUtf8(UTM31)));
    EXPECT_TRUE(service().expandDefinition(KueProj4Definition("+init=epsg:99999")).isEmpty());
    // A unit that our table does not have is made: the Gold Coast foot.
    const HbuUnit foot = KuuCoordSystem::createFromEpsg("2136").getUnit();
    EXPECT_NEAR(foot.getTransfo().getFactor(), 0.304799710181509, 1e-15);
    const HbuUnit half = fromProj4("+proj=utm +zone=31 +datum=WGS84 +to_meter=0.5").getUnit();
    EXPECT_EQ(half.getSymbol(), "0.5 m");
    EXPECT_EQ(half.getTransfo(), HbuUnitTransfo::linear(0.5));
}

TEST(KuuCoordSystem, refusesAnUnknownSystemOfTheUser)
{
    EXPECT_TRUE(KuuCoordSystem::fromUserText("EPSG:2154").isProjected());
    EXPECT_EQ(errorOf<HbeUserError>([] { KuuCoordSystem::fromUserText("EPSG:99999"); }),
              "Unknown coordinate system: \"EPSG:99999\".");
}

TEST(KuuCoordSystem, tellsEntitiesFromTransformations)
{
    const KuuCoordSystem lambert = KuuCoordSystem::createFromEpsg("2154");
    const KuuCoordSystem lambertOfBoth =
        KuuCoordSystem::createFromFields("both", "2154", "LAMB93", KueProj4Definition());
    const KuuCoordSystem utm = fromProj4(UTM31);
    const struct {
        KuuCoordSystem a;
        KuuCoordSystem b;
        bool isSameEntity;
        bool isSameTransfo;
    } rows[] = {
        {lambert, lambert, true, true},
        {lambert, KuuCoordSystem::createFromEpsg("2154", "mine"), true, true},
        {lambert, lambertOfBoth, false, true},
        {lambert, KuuCoordSystem::createFromEpsg("27572"), false, false},
        {utm, fromProj4("proj=utm zone=31 units=m datum=WGS84"), true, true},
        {utm, fromProj4("+proj=utm +zone=32 +datum=WGS84 +units=m"), false, false},
        {utm, fromProj4("+proj=utm +zone=31 +datum=WGS84 +units=us-ft"), false, false},
        {utm, KuuCoordSystem::createFromEpsg("32631"), false, true},
        // The axis order of an authority is not ours.
        {KuuCoordSystem::createFromEpsg("4326"), fromProj4("+proj=longlat +datum=WGS84"), false,
         true},
        // The same ellipsoid is not the same datum.
        {KuuCoordSystem::createFromEpsg("4289"), fromProj4("+proj=longlat +ellps=bessel"), false,
         false},
        {KuuCoordSystem::createLocal(), KuuCoordSystem(), false, true},
        {KuuCoordSystem::createLocal(), KuuCoordSystem::createLocal(length("ft")), true, true},
        {KuuCoordSystem(), KuuCoordSystem(), true, true},
        {lambert, KuuCoordSystem::createLocal(), false, false},
        {lambert, KuuCoordSystem(), false, false},
        {read("EPSG:99999"), read("EPSG:99999"), true, true},
        {read("EPSG:99999"), read("EPSG:99998"), false, false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.a.serialize().toStdString() + " | " + row.b.serialize().toStdString());
        EXPECT_EQ(row.a.isSameEntity(row.b), row.isSameEntity);
        EXPECT_EQ(row.b.isSameEntity(row.a), row.isSameEntity);
        EXPECT_EQ(row.a.isSameTransfo(row.b), row.isSameTransfo);
        EXPECT_EQ(row.b.isSameTransfo(row.a), row.isSameTransfo);
    }
}

TEST(KuuCoordSystem, convertsItsUnit)
{
    const KuuCoordSystem newYork = KuuCoordSystem::createFromEpsg("2263");
    EXPECT_EQ(newYork.getConvertToTransfo(length("m")).apply(3937.), 1200.);
    EXPECT_EQ(newYork.getConvertFromTransfo(length("m")).apply(1200.), 3937.);
    const KuuCoordSystem wgs84 = KuuCoordSystem::createFromEpsg("4326");
    EXPECT_FALSE(wgs84.getConvertToTransfo(length("m")).isValid());
    EXPECT_FALSE(KuuCoordSystem().getConvertToTransfo(length("m")).isValid());

    const KuuCoordSystem local = KuuCoordSystem::createLocal(length("ft"));
    EXPECT_TRUE(local.isValid() && local.isLocal() && !local.isProjected());
    EXPECT_EQ(local.getConvertToTransfo(length("in")).apply(1.), 12.);
    EXPECT_EQ(KuuCoordSystem::createLocal().getUnit(), length("m"));
}
