#include <util/utils/KuuCoordSystem.h>
#include <util/utils/KuuGeometrySample.h>
#include <util/utils/KuuGeometrySet.h>

#include <basic/base/HbbGlobal.h>
#include <basic/error/HbeProgrammingError.h>
#include <basic/unit/HbuUnitService.h>

namespace
{
using Primitive = HbgEPrimitive;
using Ring = HbgGeomPolygon::Ring;

constexpr double NONE = HbbGlobal::D_FFFF;
const Ring TRIANGLE = {{2., 48.}, {3., 48.}, {2., 49.}};

HbgGeomPolygon polygonWithHole()
{
    HbgGeomPolygon polygon(TRIANGLE);
    polygon.addHole(0, {{2.1, 48.1}, {2.2, 48.1}, {2.1, 48.2}});
    return polygon;
}

HbgMesh mesh()
{
    HbgMesh made(HbgEMeshType::SURFACE);
    made.setCells({{2., 48., 10.}, {3., 48., 20.}, {2., 49., 30.}}, {0, 1, 2});
    return made;
}

struct Row {
    const char* name;
    KuuGeometrySample sample;
    Primitive primitive;
    HbgEDimension dimension;
    QVector<Primitive> others; ///< that it converts to
};

QVector<Row> rows()
{
    const auto D2 = HbgEDimension::DIM_2D;
    const auto D3 = HbgEDimension::DIM_3D;
    const auto closed = HbgEPolylineType::CLOSED;
    const QVector<HbgVector3D> high = {{2., 48., 10.}, {3., 48., NONE}, {2., 49., 30.}};
    return {
        {"nothing", {}, Primitive::NONE, D2, {}},
        {"2D point", HbgVector2D(2., 48.), Primitive::POINT_2D, D2, {Primitive::POINT_3D}},
        {"3D point", HbgVector3D(2., 48., 9.), Primitive::POINT_3D, D3, {Primitive::POINT_2D}},
        {"open line", HbgGeomPolyline(TRIANGLE), Primitive::POLYLINE, D2, {}},
        {"no line", HbgGeomPolyline(D3), Primitive::POLYLINE, D3, {}},
        {"ring", HbgGeomPolyline(high, closed), Primitive::POLYLINE, D3, {Primitive::POLYGON}},
        {"polygon", HbgGeomPolygon(TRIANGLE), Primitive::POLYGON, D2, {Primitive::POLYLINE}},
        {"polygon with a hole", polygonWithHole(), Primitive::POLYGON, D2, {}},
        {"no polygon", HbgGeomPolygon(), Primitive::POLYGON, D2, {}},
        {"mesh", mesh(), Primitive::MESH, D3, {}},
    };
}

KuuCoordSystem lonLat()
{
    return KuuCoordSystem::createFromEpsg("4326");
}
KuuCoordSystem lambert()
{
    return KuuCoordSystem::createFromEpsg("2154");
}
HbuUnit length(const char* key)
{
    return HbuUnitService::getInstance().getUnit(HbuEUnitClass::LENGTH, key);
}
} // namespace

TEST(KuuGeometrySample, ConvertsWhereThereIsAWay)
{
    for (const Row& row : rows()) {
        for (const Primitive& primitive : Primitive::createIterator()) {
            SCOPED_TRACE(row.name + (" to " + primitive.getKey().toStdString()));
            EXPECT_EQ(row.sample.getPrimitive(), row.primitive);
            EXPECT_EQ(row.sample.getDimension(), row.dimension);
            const bool isSame = primitive == row.primitive && !row.sample.isEmpty();
            const bool isPossible = isSame || row.others.contains(primitive);
            KuuGeometrySample converted = row.sample;
            EXPECT_EQ(converted.convertGeometry(primitive), isPossible);
            EXPECT_EQ(converted.getPrimitive(), isPossible ? primitive : row.primitive);
            EXPECT_EQ(converted == row.sample, isSame || !isPossible);

            const KuuGeometrySet set = row.sample.getConvertedGeometry(primitive);
            EXPECT_EQ(set.isValid(), isPossible);
            EXPECT_EQ(set.getSampleCount(), isPossible);
            if (isPossible) {
                EXPECT_EQ(set.getGeometrySample(0), converted);
                EXPECT_EQ(set.getDimension(), converted.getDimension());
                EXPECT_FALSE(set.isLineSet());
            }
        }
    }
}

TEST(KuuGeometrySample, ChangesItsDimensionWhereItHasTwo)
{
    for (const Row& row : rows()) {
        SCOPED_TRACE(row.name);
        KuuGeometrySample sample = row.sample;
        sample.convertDimension(row.dimension);
        EXPECT_EQ(sample, row.sample);
        const bool hasTwo = sample.isPoint() || sample.isPolyline();
        for (const HbgEDimension& dimension : {HbgEDimension::DIM_2D, HbgEDimension::DIM_3D}) {
            sample.convertDimension(dimension);
            EXPECT_EQ(sample.getDimension(), hasTwo ? dimension : row.dimension);
        }
        EXPECT_EQ(sample.getBoundingBox().is3D(), sample.isMesh()); // lost on the way
    }
    EXPECT_THROW(KuuGeometrySample(HbgVector2D()).toPoint3D(), HbeProgrammingError);
    EXPECT_THROW(KuuGeometrySample(mesh()).toPolygon(), HbeProgrammingError);
}

TEST(KuuGeometrySample, RescalesEveryDefinedCoordinate)
{
    for (const Row& row : rows()) {
        SCOPED_TRACE(row.name);
        KuuGeometrySample sample = row.sample;
        const HbgBox box = sample.getBoundingBox();
        sample.rescale(HbuUnitTransfo::invalid());
        sample.rescale(HbuUnitTransfo::linear(1e308)); // beyond what there is
        EXPECT_EQ(sample, row.sample);
        sample.rescale(HbuUnitTransfo::affine(4., 1.));
        const HbgBox scaled = sample.getBoundingBox();
        EXPECT_EQ(scaled.isEmpty(), box.isEmpty());
        EXPECT_EQ(scaled.is3D(), box.is3D());
        if (!box.isEmpty()) {
            EXPECT_EQ(scaled.getXMin(), 4. * box.getXMin() + 1.);
            EXPECT_EQ(scaled.getYMax(), 4. * box.getYMax() + 1.);
        }
        if (box.is3D()) {
            EXPECT_EQ(scaled.getZMax(), 4. * box.getZMax() + 1.);
        }
        sample.rescale(HbuUnitTransfo::affine(4., 1.).inverted());
        EXPECT_EQ(sample.getBoundingBox(), box); // exact here: factors are powers of two
    }
}

TEST(KuuGeometrySample, ConvertsCoordinatesThereAndBack)
{
    for (const Row& row : rows()) {
        SCOPED_TRACE(row.name);
        KuuGeometrySample sample = row.sample;
        const HbgBox before = sample.getBoundingBox();
        EXPECT_EQ(sample.convertCoord(lonLat(), HbuUnit(), lambert(), length("km")),
                  !sample.isEmpty());
        if (before.isEmpty()) {
            EXPECT_EQ(sample, row.sample);
            continue;
        }
        EXPECT_EQ(sample.getPrimitive(), row.primitive);
        const HbgBox box = sample.getBoundingBox();
        EXPECT_NEAR(box.getXMin(), 625.4224046, 1e-6); // of 2° E, 48° N, as PROJ's interface says
        EXPECT_NEAR(box.getYMin(), sample.isPoint() ? 6767.0959308 : 6766.6236900, 1e-6);
        EXPECT_EQ(box.is3D(), before.is3D());
        if (before.is3D()) {
            EXPECT_NEAR(box.getZMin(), before.getZMin() / 1000., 1e-9); // metres before
        }

        EXPECT_TRUE(sample.convertCoord(lambert(), length("km"), lonLat(), HbuUnit()));
        const HbgBox after = sample.getBoundingBox();
        EXPECT_NEAR(after.getXMin(), before.getXMin(), 1e-9);
        EXPECT_NEAR(after.getYMax(), before.getYMax(), 1e-9);
    }
}

TEST(KuuGeometrySample, StaysAsItIsWhereCoordinatesCannotBeConverted)
{
    const KuuCoordSystem local = KuuCoordSystem::createLocal(length("m"));
    const struct {
        const char* why;
        KuuCoordSystem from, to;
        HbuUnit unit;
    } cases[] = {
        {"no first system", KuuCoordSystem(), lambert(), length("m")},
        {"no second system", lambert(), KuuCoordSystem(), length("m")},
        {"an unknown code", lambert(), KuuCoordSystem::createFromEpsg("999999"), length("m")},
        {"no way to a local system", lambert(), local, length("m")},
        {"degrees in a projected system", lambert(), lambert(),
         HbuUnitService::getInstance().getUnit(HbuEUnitClass::ANGLE, "deg")},
    };
    for (const auto& c : cases) {
        for (const Row& row : rows()) {
            SCOPED_TRACE(std::string(c.why) + ", " + row.name);
            KuuGeometrySample sample = row.sample;
            EXPECT_FALSE(sample.convertCoord(c.from, length("m"), c.to, c.unit));
            EXPECT_EQ(sample, row.sample);
        }
    }

    // One vertex that has no image, among others that do.
    const HbgGeomPolyline line(QVector<HbgVector2D>{{2., 48.}, {2., 120.}});
    HbgGeomPolygon polygon(TRIANGLE);
    polygon.addHole(0, {{2.1, 48.1}, {2.2, 1e200}, {2.1, 48.2}});
    for (const KuuGeometrySample& sample : {KuuGeometrySample(line), KuuGeometrySample(polygon),
                                            KuuGeometrySample(HbgVector3D(NONE, 48., 1.))}) {
        KuuGeometrySample converted = sample;
        EXPECT_FALSE(converted.convertCoord(lonLat(), HbuUnit(), lambert(), HbuUnit()));
        EXPECT_EQ(converted, sample);
    }

    KuuGeometrySample inLocal(HbgVector3D(1000., 2000., NONE));
    EXPECT_TRUE(inLocal.convertCoord(local, length("m"), local, length("km"))); // units only
    EXPECT_EQ(inLocal, KuuGeometrySample(HbgVector3D(1., 2., NONE)));
}
