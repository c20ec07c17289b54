#include <util/utils/KuuGeometrySet.h>
#include <util/utils/KuuMemento.h>
#include <util/utils/KuuMementoBytes.h>
#include <util/xml/KuxXmlMementoFile.h>

#include <basic/base/HbbGlobal.h>
#include <basic/error/HbeUserError.h>

#include <cmath>
#include <cstring>
#include <limits>

namespace
{
/// Any bits that make a finite number.
class Numbers
{
public:
    double operator()()
    {
        double value;
        do {
            const quint64 bits = m_random();
            std::memcpy(&value, &bits, sizeof value);
        } while (!std::isfinite(value));
        return value;
    }
    int below(int bound) { return int(m_random() % quint64(bound)); }
    HbgVector3D point() { return {(*this)(), (*this)(), (*this)()}; }

private:
    std::mt19937_64 m_random{11};
};

KuuGeometrySet points(Numbers& numbers, const HbgEDimension& dimension)
{
    KuuGeometrySet set(HbgEGeometrySet::POINTS, dimension);
    for (int i = 0; i < 1000; ++i)
        EXPECT_TRUE(set.addGeometrySample(numbers.point()));
    set.addGeometrySample(HbgVector3D(-0., HbbGlobal::D_FFFF, 0.1));
    return set;
}

KuuGeometrySet polylines(Numbers& numbers, const HbgEDimension& dimension)
{
    KuuGeometrySet set(HbgEGeometrySet::LINES, dimension);
    for (int i = 0; i < 50; ++i) {
        HbgGeomPolyline line(dimension, i % 3 ? HbgEPolylineType::OPEN : HbgEPolylineType::CLOSED);
        for (int n = numbers.below(20); n > 0; --n) {
            HbgVector3D point = numbers.point();
            point.z = n % 4 ? point.z : HbbGlobal::D_FFFF;
            line.append(point);
        }
        EXPECT_TRUE(set.addGeometrySample(line));
    }
    return set;
}

KuuGeometrySet polygons(Numbers& numbers)
{
    const auto ring = [&numbers] {
        HbgGeomPolygon::Ring corners(3 + numbers.below(9));
        for (HbgVector2D& corner : corners)
            corner = numbers.point().toVector2D();
        return corners;
    };
    KuuGeometrySet set(HbgEGeometrySet::POLYGONS, HbgEDimension::DIM_2D);
    for (int i = 0; i < 50; ++i) {
        HbgGeomPolygon polygon;
        for (int contour = 0; contour < i % 4; ++contour) {
            EXPECT_TRUE(polygon.addContour(ring()));
            for (int n = numbers.below(3); n > 0; --n)
                EXPECT_TRUE(polygon.addHole(contour, ring()));
        }
        EXPECT_TRUE(set.addGeometrySample(polygon));
    }
    return set;
}

KuuGeometrySet meshes(Numbers& numbers, const HbgEMeshType& type)
{
    HbgMeshSet set(type);
    for (int i = 0; i < 20; ++i) {
        HbgMesh mesh(type);
        QVector<HbgVector3D> vertices(i);
        for (HbgVector3D& vertex : vertices)
            vertex = numbers.point();
        QVector<int> corners(i == 0 ? 0 : mesh.getCornerCount() * numbers.below(9));
        for (int& corner : corners)
            corner = numbers.below(i);
        EXPECT_TRUE(mesh.setCells(vertices, corners));
        set.append(mesh);
    }
    return KuuGeometrySet(set);
}

const HbgGeomGrid GRID_3D(3, 2, 4, {1., 2., -5.}, 0.1, 10., 1. / 3.);

KuuGeometrySet cells(const HbgGeomGrid& grid, const HbiIntervalIntSmallO64Disjoint& nodes)
{
    return KuuGeometrySet(HbgSparseGrid(grid, nodes));
}

QVector<KuuGeometrySet> allSets()
{
    using Run = HbiIntervalIntSmallO64;
    Numbers numbers;
    const HbgGeomGrid large(1 << 20, 1 << 20, 1 << 20, {0., 0., 0.}, 1., 1., 1., 30.);
    QVector<KuuGeometrySet> sets = {
        points(numbers, HbgEDimension::DIM_2D),
        points(numbers, HbgEDimension::DIM_3D),
        polylines(numbers, HbgEDimension::DIM_2D),
        polylines(numbers, HbgEDimension::DIM_3D),
        KuuGeometrySet(polylines(numbers, HbgEDimension::DIM_3D).toLineSet(), false),
        polygons(numbers),
        meshes(numbers, HbgEMeshType::SURFACE),
        meshes(numbers, HbgEMeshType::VOLUME),
        KuuGeometrySet(HbgGeomGrid(3, 2, {1., 2.}, 0.1, 10., 12.5)),
        KuuGeometrySet(GRID_3D),
        cells(GRID_3D, {Run(0, 1), Run(5, 5), Run(20, 23)}),
        cells(large, {Run(7, 8), Run(qint64(1) << 40, (qint64(1) << 60) - 1)}),
    };
    for (const HbgEGeometrySet& kind : HbgEGeometrySet::createIterator()) {
        for (const HbgEDimension& dimension : HbgEDimension::createIterator())
            sets.append(KuuGeometrySet(kind, dimension)); // without elements
    }
    return sets;
}

template <class T>
QByteArray packed(std::initializer_list<T> values)
{
    return KuuMementoBytes::pack(values.begin(), values.size() * sizeof(T));
}

bool isRefused(const QVariantMap& map)
{
    bool ok = true;
    return !KuuGeometrySet::fromVariantMap(map, &ok).isValid() && !ok;
}
} // namespace

TEST(KuuGeometrySetMemento, ComesBackBitForBitThroughXml)
{
    for (const KuuGeometrySet& set : allSets()) {
        SCOPED_TRACE(set.getGeometry().getKey().toStdString());
        KuuMemento memento(KuuId::generate("Dataset"));
        memento.setField("geometry", set.toVariantMap());
        const QByteArray bytes = KuxXmlMementoFile::mementoToBytes(memento);
        const QVariant saved =
            KuxXmlMementoFile::bytesToMemento(bytes, "test").getField("geometry");
        bool ok = false;
        const KuuGeometrySet back = KuuGeometrySet::fromVariantMap(saved.toMap(), &ok);
        EXPECT_TRUE(ok);
        EXPECT_EQ(back, set);
        EXPECT_EQ(back.toVariantMap(), set.toVariantMap()); // -0 too
    }
}

TEST(KuuGeometrySetMemento, SavesAGridThatIsNotValidAsOneWithoutNodes)
{
    const HbgGeomGrid lost(3, 2, {std::nan(""), 0.}, 1., 1.);
    for (const KuuGeometrySet& set :
         {KuuGeometrySet(lost), cells(lost, HbiIntervalIntSmallO64(1, 2)),
          KuuGeometrySet(HbgGeomGrid(-3, 2, {0., 0.}, 1., 1.))}) {
        const KuuGeometrySet back = KuuGeometrySet::fromVariantMap(set.toVariantMap());
        EXPECT_EQ(back, KuuGeometrySet(set.getGeometry(), HbgEDimension::DIM_2D));
    }
}

TEST(KuuGeometrySetMemento, ReadsPointsOfOlderVersions)
{
    QVariantMap map{{"kind", "POINTS"},
                    {"dimension", "DIM_3D"},
                    {"x", "1 -0"},
                    {"y", "0.1 1e+300"},
                    {"z", "5 1e-300"}};
    KuuGeometrySet expected(HbgEGeometrySet::POINTS, HbgEDimension::DIM_3D);
    expected.addGeometrySample(HbgVector3D(1., 0.1, 5.));
    expected.addGeometrySample(HbgVector3D(-0., HbbGlobal::D_FFFF, 1e-300));
    EXPECT_EQ(KuuGeometrySet::fromVariantMap(map), expected);
    for (const char* damaged : {"1", "1 2 3", "1 inf", "1 x", "1,5 2"}) {
        map["y"] = damaged;
        EXPECT_TRUE(isRefused(map)) << damaged;
    }
    map.remove("y");
    EXPECT_TRUE(isRefused(map));
}

TEST(KuuGeometrySetMemento, RefusesAMapThatIsNotWhole)
{
    // A frame that states 2^60 bytes: magic, a size field of eight bytes, the size.
    const QByteArray bomb = QByteArray::fromHex("28b52ffdc0000000000000001000").toBase64();
    EXPECT_THROW(KuuMementoBytes{bomb}, HbeUserError);
    for (const KuuGeometrySet& set : allSets()) {
        if (set.getSampleCount() == 0)
            continue;
        const QVariantMap whole = set.toVariantMap();
        for (const QString& key : whole.keys()) {
            SCOPED_TRACE((set.getGeometry().getKey() + ' ' + key).toStdString());
            QVariantMap map = whole;
            map.remove(key);
            EXPECT_TRUE(isRefused(map));
            QVector<QVariant> damages = {"1 x", "", QVariantList{1}, bomb};
            const QByteArray text = whole[key].toByteArray();
            if (text.size() > 25) // not a short text of numbers
                damages += {-1, text.left(text.size() / 2), packed<qint8>({1, 2, 3}),
                            packed<qint64>({-5, 7})};
            for (const QVariant& damaged : damages) {
                map[key] = damaged;
                EXPECT_TRUE(isRefused(map)) << damaged.toString().toStdString();
            }
        }
    }
    EXPECT_TRUE(isRefused({}));
    EXPECT_TRUE(isRefused({{"kind", "NONE"}, {"x", 1}}));
}

TEST(KuuGeometrySetMemento, RefusesNumbersThatContradictEachOther)
{
    const double NOT_A_NUMBER = std::nan("");
    const QVariantMap lines{{"kind", "LINES"},
                            {"dimension", "DIM_2D"},
                            {"count", "2"},
                            {"points", packed<qint32>({1, 1})},
                            {"closed", packed<quint8>({0, 1})},
                            {"coordinates", packed({1., 2., 3., 4.})}};
    const QVariantMap polygons{{"kind", "POLYGONS"},
                               {"dimension", "DIM_2D"},
                               {"count", "1"},
                               {"contours", packed<qint32>({1})},
                               {"holes", packed<qint32>({0})},
                               {"corners", packed<qint32>({3})},
                               {"coordinates", packed({0., 1., 0., 0., 0., 1.})}};
    const QVariantMap meshes{{"kind", "MESH_SURFACE"},
                             {"dimension", "DIM_3D"},
                             {"count", "1"},
                             {"vertices", packed<qint32>({2})},
                             {"cells", packed<qint32>({1})},
                             {"corners", packed<qint32>({0, 1, 1})},
                             {"coordinates", packed({0., 1., 0., 0., 0., 1.})}};
    const QVariantMap points{{"kind", "POINTS"},
                             {"dimension", "DIM_3D"},
                             {"count", "1"},
                             {"coordinates", packed({0., 1., 2.})}};
    const QVariantMap grid = KuuGeometrySet(GRID_3D).toVariantMap();
    QVariantMap sparse = cells(GRID_3D, HbiIntervalIntSmallO64(1, 2)).toVariantMap();
    const qint32 MANY = std::numeric_limits<qint32>::max();
    const qint64 MOST = std::numeric_limits<qint64>::max();
    const struct {
        const QVariantMap& map;
        const char* key;
        QVariantList values;
    } cases[] = {
        {lines, "count", {"1", "4294967298"}},
        {lines,
         "points",
         {packed<qint32>({-1, 3}), packed<qint32>({MANY, MANY}), packed<qint32>({1, 2}),
          packed<qint32>({2})}},
        {lines, "closed", {packed<quint8>({0, 2})}},
        {lines,
         "coordinates",
         {packed({1., 2., NOT_A_NUMBER, 4.}), packed({1., 2., HbbGlobal::D_FFFF, 4.}),
          packed({1., 2., 3., 4., 5., 6.})}},
        {lines, "dimension", {"DIM_3D"}},
        {lines, "kind", {"POLYGONS"}},
        {polygons, "contours", {packed<qint32>({2})}},
        {polygons, "holes", {packed<qint32>({1}), packed<qint32>({MANY})}},
        {polygons, "corners", {packed<qint32>({-3})}},
        {polygons, "coordinates", {packed({0., 1., 0., 0., 0., 0.})}},
        {polygons, "dimension", {"DIM_3D"}},
        {meshes, "corners", {packed<qint32>({0, 1, 2}), packed<qint32>({0, 1, -1})}},
        {meshes, "cells", {packed<qint32>({MANY})}},
        {meshes, "vertices", {packed<qint32>({1})}},
        {meshes, "kind", {"MESH_VOLUME"}},
        {meshes, "coordinates", {packed({0., 1., 0., 0., 0., HbbGlobal::D_FFFF})}},
        {points, "coordinates", {packed({0., 1., NOT_A_NUMBER}), packed({0., 1.})}},
        {grid, "nodes", {"3 2", "3 -2 4", "3 2 99999999999"}},
        {grid, "origin", {"1 2 nan", "1 2 1e300"}},
        {grid, "steps", {"0 1 1", "1,5 2 3"}},
        {sparse, "count", {"1"}},
        {sparse,
         "cells",
         {packed<qint64>({-1, 2}), packed<qint64>({1}), packed<qint64>({1, 0}),
          packed<qint64>({1, 24}), packed<qint64>({24, 1}), packed<qint64>({1, MOST}),
          packed<qint64>({1, 2, 0, 2}), packed<qint64>({MOST, 2})}},
        {sparse, "nodes", {"0 2 4"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.map["kind"].toString().toStdString() + ' ' + c.key);
        bool ok = false;
        EXPECT_GT(KuuGeometrySet::fromVariantMap(c.map, &ok).getSampleCount(), 0);
        EXPECT_TRUE(ok);
        for (const QVariant& value : c.values) {
            QVariantMap damaged = c.map;
            damaged[c.key] = value;
            EXPECT_TRUE(isRefused(damaged)) << c.values.indexOf(value);
        }
    }
}
