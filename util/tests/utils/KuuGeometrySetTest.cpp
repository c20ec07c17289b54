#include <util/utils/KuuGeometrySet.h>

#include <basic/base/HbbGlobal.h>
#include <basic/error/HbeProgrammingError.h>
#include <basic/interval/HbiIntervalIntSmallDisjoint.h>

#include <QtPrinters.h>

#include <cmath>
#include <cstring>
#include <limits>

namespace
{

KuuGeometrySet pointSet(const HbgEDimension& dimension, int count)
{
    KuuGeometrySet set(HbgEGeometrySet::POINTS, dimension);
    for (int i = 0; i < count; ++i)
        set.addGeometrySample(HbgVector3D(i / 3., -i, 100. + i));
    return set;
}

const HbgGeomGrid GRID_2D(3, 2, {1., 2.}, 0.1, 10., 12.5);
const HbgGeomGrid GRID_3D(3, 2, 4, {1., 2., -5.}, 0.1, 10., 1. / 3.);

} // namespace

TEST(KuuGeometrySet, answersByKind)
{
    const struct {
        const char* name;
        KuuGeometrySet set;
        bool isValid;
        qint64 count;
        bool isEmpty;
        HbgEDimension dimension;
        bool isGrid;
        bool takesPoints;
    } rows[] = {
        {"nothing", KuuGeometrySet(), false, 0, true, HbgEDimension::DIM_2D, false, false},
        {"no points", pointSet(HbgEDimension::DIM_3D, 0), true, 0, true, HbgEDimension::DIM_3D,
         false, true},
        {"points", pointSet(HbgEDimension::DIM_2D, 5), true, 5, false, HbgEDimension::DIM_2D, false,
         true},
        {"2D grid", KuuGeometrySet(GRID_2D), true, 6, false, HbgEDimension::DIM_2D, true, false},
        {"3D grid", KuuGeometrySet(GRID_3D), true, 24, false, HbgEDimension::DIM_3D, true, false},
        {"grid without nodes",
         {HbgEGeometrySet::GRID, HbgEDimension::DIM_3D},
         true,
         0,
         false,
         HbgEDimension::DIM_3D,
         true,
         false},
        {"sparse grid",
         {HbgEGeometrySet::GRID_SPARSE, HbgEDimension::DIM_3D},
         false,
         0,
         true,
         HbgEDimension::DIM_2D,
         true,
         false},
        {"mesh",
         {HbgEGeometrySet::MESH_SURFACE, HbgEDimension::DIM_2D},
         false,
         0,
         true,
         HbgEDimension::DIM_3D,
         false,
         false},
        {"polygons",
         {HbgEGeometrySet::POLYGONS, HbgEDimension::DIM_2D},
         false,
         0,
         true,
         HbgEDimension::DIM_2D,
         false,
         false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(row.set.isValid(), row.isValid);
        EXPECT_EQ(row.set.getSampleCount(), row.count);
        EXPECT_EQ(row.set.isEmpty(), row.isEmpty);
        EXPECT_EQ(row.set.getDimension().getKey(), row.dimension.getKey());
        EXPECT_EQ(row.set.isGrid(), row.isGrid);

        KuuGeometrySet edited = row.set;
        EXPECT_EQ(edited.addGeometrySample(HbgVector3D(1., 2., 3.)), row.takesPoints);
        EXPECT_EQ(edited.addGeometrySample(HbgVector2D(1., 2.)), row.takesPoints);
        EXPECT_FALSE(edited.addGeometrySample(KuuGeometrySample()));
        EXPECT_FALSE(edited.addGeometrySample(HbgVector2D(1., std::nan(""))));
        EXPECT_EQ(edited.getSampleCount(), row.count + (row.takesPoints ? 2 : 0));
        EXPECT_EQ(edited == row.set, !row.takesPoints);

        edited = row.set;
        const qint64 beyond = std::numeric_limits<qint64>::max();
        for (const qint64 rank : {qint64(-1), row.count, beyond, (qint64(1) << 32)}) {
            EXPECT_TRUE(edited.getGeometrySample(rank).isEmpty());
            EXPECT_FALSE(edited.removeGeometrySample(rank));
            EXPECT_FALSE(edited.updateGeometrySample(rank, HbgVector2D(0., 0.)));
        }
        const bool hasPoint = row.takesPoints && row.count > 0;
        EXPECT_EQ(edited.getGeometrySample(0).isPoint(), hasPoint);
        EXPECT_EQ(edited.pointToRank({0., 0.}, 1e6), hasPoint ? 0 : -1);
        const qint64 found = hasPoint ? row.count : 0;
        EXPECT_EQ(edited.pointToRanks({0., 0.}, 1e6).getCount(), found);
        EXPECT_EQ(edited.rectangleToRanks({-1e6, -1e6, 2e6, 2e6}).getCount(), found);
        EXPECT_EQ(edited.polygonToRanks({{-1e6, -1e6}, {1e6, -1e6}, {0., 1e6}}).getCount(), found);
        EXPECT_EQ(edited, row.set);
    }
}

TEST(KuuGeometrySet, editsPointsInItsOwnDimension)
{
    KuuGeometrySet flat = pointSet(HbgEDimension::DIM_2D, 3);
    EXPECT_EQ(flat.getGeometrySample(1), KuuGeometrySample(HbgVector2D(1 / 3., -1.)));
    EXPECT_TRUE(flat.updateGeometrySample(1, HbgVector3D(7., 8., 9.)));
    EXPECT_EQ(flat.getGeometrySample(1), KuuGeometrySample(HbgVector2D(7., 8.)));
    EXPECT_TRUE(flat.removeGeometrySample(0));
    EXPECT_EQ(flat.pointToRank({7., 8.}, 0.), 0);

    KuuGeometrySet high = pointSet(HbgEDimension::DIM_3D, 1);
    EXPECT_TRUE(high.addGeometrySample(HbgVector2D(7., 8.)));
    EXPECT_EQ(high.getGeometrySample(1), KuuGeometrySample(HbgVector3D(7., 8., HbbGlobal::D_FFFF)));
    EXPECT_THROW(high.toGrid(), HbeProgrammingError);
    EXPECT_THROW(KuuGeometrySet(GRID_2D).toPointSet(), HbeProgrammingError);
    EXPECT_EQ(KuuGeometrySet(GRID_2D).toGrid(), GRID_2D);
}

TEST(KuuGeometrySet, comesBackFromItsMementoBitForBit)
{
    std::mt19937_64 random(11);
    KuuGeometrySet points(HbgEGeometrySet::POINTS, HbgEDimension::DIM_3D);
    for (int i = 0; i < 1000; ++i) {
        double values[3]; // any bits that make a finite number
        for (double& value : values) {
            do {
                const quint64 bits = random();
                std::memcpy(&value, &bits, sizeof value);
            } while (!std::isfinite(value));
        }
        ASSERT_TRUE(points.addGeometrySample(HbgVector3D(values[0], values[1], values[2])));
    }
    points.addGeometrySample(HbgVector3D(-0., HbbGlobal::D_FFFF, 0.1));
    const KuuGeometrySet sets[] = {
        KuuGeometrySet(),
        points,
        pointSet(HbgEDimension::DIM_2D, 4),
        pointSet(HbgEDimension::DIM_3D, 0),
        KuuGeometrySet(GRID_2D),
        KuuGeometrySet(GRID_3D),
        {HbgEGeometrySet::GRID, HbgEDimension::DIM_2D},
        {HbgEGeometrySet::POLYGONS, HbgEDimension::DIM_2D},
    };
    for (const KuuGeometrySet& set : sets) {
        bool ok = false;
        const KuuGeometrySet back = KuuGeometrySet::fromVariantMap(set.toVariantMap(), &ok);
        EXPECT_TRUE(ok);
        EXPECT_EQ(back, set);
        EXPECT_EQ(back.toVariantMap(), set.toVariantMap()); // -0 too
    }
}

TEST(KuuGeometrySet, refusesAMementoThatIsNotWhole)
{
    const auto refuses = [](QVariantMap map, const char* key, const QVariant& value) {
        if (value.isValid())
            map[QString::fromUtf8(key)] = value;
        else
            map.remove(QString::fromUtf8(key));
        bool ok = true;
        return !KuuGeometrySet::fromVariantMap(map, &ok).isValid() && !ok;
    };
    const QVariantMap grid = KuuGeometrySet(GRID_3D).toVariantMap();
    for (const QString& key : grid.keys()) {
        EXPECT_TRUE(refuses(grid, key.toUtf8().constData(), QVariant())) << key.toStdString();
        EXPECT_TRUE(refuses(grid, key.toUtf8().constData(), QStringLiteral("1 x")))
            << key.toStdString();
    }
    EXPECT_TRUE(refuses(grid, "nodes", QStringLiteral("3 2")));
    EXPECT_TRUE(refuses(grid, "nodes", QStringLiteral("3 2 99999999999")));
    EXPECT_TRUE(refuses(grid, "origin", QStringLiteral("1 2 nan")));
    EXPECT_TRUE(refuses(grid, "steps", QStringLiteral("1,5 2 3")));

    const QVariantMap points = pointSet(HbgEDimension::DIM_3D, 2).toVariantMap();
    for (const QString& key : points.keys())
        EXPECT_TRUE(refuses(points, key.toUtf8().constData(), QVariant())) << key.toStdString();
    EXPECT_TRUE(refuses(points, "z", QStringLiteral("1 2 3")));
    EXPECT_TRUE(refuses(points, "x", QStringLiteral("1 inf")));
    EXPECT_TRUE(refuses({{QStringLiteral("kind"), QStringLiteral("POLYGONS")}}, "x", 1));
    EXPECT_FALSE(KuuGeometrySet::fromVariantMap({}).isValid());
}

TEST(KuuGeometrySample, convertsBetweenPoints)
{
    KuuGeometrySample sample(HbgVector2D(2., 4.));
    EXPECT_FALSE(sample.convertGeometry(HbgEPrimitive::POLYLINE));
    EXPECT_FALSE(sample.convertGeometry(HbgEPrimitive::NONE));
    EXPECT_TRUE(sample.convertGeometry(HbgEPrimitive::POINT_3D));
    EXPECT_EQ(sample.toPoint3D(), HbgVector3D(2., 4., HbbGlobal::D_FFFF));
    EXPECT_THROW(sample.toPoint2D(), HbeProgrammingError);
    sample.rescale(HbuUnitTransfo::linear(0.5));
    EXPECT_EQ(sample.toPoint3D(), HbgVector3D(1., 2., HbbGlobal::D_FFFF));
    EXPECT_EQ(sample.getBoundingBox(), HbgBox(HbgVector2D(1., 2.), HbgVector2D(1., 2.)));

    const KuuGeometrySet set = sample.getConvertedGeometry(HbgEPrimitive::POINT_2D);
    EXPECT_EQ(set.getSampleCount(), 1);
    EXPECT_EQ(set.getGeometrySample(0), KuuGeometrySample(HbgVector2D(1., 2.)));
    EXPECT_FALSE(sample.getConvertedGeometry(HbgEPrimitive::MESH).isValid());
    EXPECT_FALSE(KuuGeometrySample().convertGeometry(HbgEPrimitive::POINT_2D));
    EXPECT_TRUE(KuuGeometrySample().getBoundingBox().isEmpty());
}
