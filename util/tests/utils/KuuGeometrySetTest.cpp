#include <util/utils/KuuGeometrySet.h>

#include <basic/base/HbbGlobal.h>
#include <basic/error/HbeProgrammingError.h>
#include <basic/interval/HbiIntervalIntSmallDisjoint.h>

#include <cmath>
#include <limits>
#include <map>

namespace
{
using Ring = HbgGeomPolygon::Ring;

const Ring TRIANGLE = {{0., 0.}, {1., 0.}, {0., 1.}};

HbgGeomPolygon polygonWithHole()
{
    HbgGeomPolygon polygon(TRIANGLE);
    polygon.addHole(0, {{.1, .1}, {.2, .1}, {.1, .2}});
    return polygon;
}

HbgMesh mesh(const HbgEMeshType& type)
{
    HbgMesh made(type);
    const QVector<int> corners = {0, 1, 2, 3};
    made.setCells({{0., 0., 0.}, {1., 0., 0.}, {0., 1., 0.}, {0., 0., 1.}},
                  corners.mid(0, made.getCornerCount()));
    return made;
}

/// One sample of each sort, by a letter.
const std::map<char, KuuGeometrySample>& samples()
{
    static const std::map<char, KuuGeometrySample> all = {
        {'0', KuuGeometrySample()},
        {'2', HbgVector2D(.25, .25)},
        {'3', HbgVector3D(.25, .25, 9.)},
        {'n', HbgVector2D(.25, std::nan(""))},
        {'o', HbgGeomPolyline(TRIANGLE)},
        {'c', HbgGeomPolyline(TRIANGLE, HbgEPolylineType::CLOSED)},
        {'e', HbgGeomPolyline()},
        {'p', HbgGeomPolygon(TRIANGLE)},
        {'h', polygonWithHole()},
        {'f', HbgGeomPolygon()},
        {'s', mesh(HbgEMeshType::SURFACE)},
        {'v', mesh(HbgEMeshType::VOLUME)},
    };
    return all;
}

/// A set of as many samples of the sort.
KuuGeometrySet setOf(const HbgEGeometrySet& kind, const HbgEDimension& dimension, int count,
                     char sort)
{
    KuuGeometrySet set(kind, dimension);
    for (int i = 0; i < count; ++i)
        EXPECT_TRUE(set.addGeometrySample(samples().at(sort)));
    return set;
}

const HbgGeomGrid GRID_2D(3, 2, {1., 2.}, 0.1, 10., 12.5);
const HbgGeomGrid GRID_3D(3, 2, 4, {1., 2., -5.}, 0.1, 10., 1. / 3.);

KuuGeometrySet sparse(const HbgGeomGrid& grid, const HbiIntervalIntSmallO64Disjoint& nodes)
{
    return KuuGeometrySet(HbgSparseGrid(grid, nodes));
}

const HbgEDimension D2 = HbgEDimension::DIM_2D;
const HbgEDimension D3 = HbgEDimension::DIM_3D;

struct Row {
    const char* name;
    KuuGeometrySet set;
    HbgEGeometrySet kind;
    qint64 count;
    bool isEmpty;
    HbgEDimension dimension;
    const char* taken; ///< the sorts of samples that it takes
};

QVector<Row> rows()
{
    using Kind = HbgEGeometrySet;
    using Run = HbiIntervalIntSmallO64;
    return {
        {"nothing", KuuGeometrySet(), Kind::NONE, 0, true, D2, ""},
        {"points", setOf(Kind::POINTS, D2, 5, '3'), Kind::POINTS, 5, false, D2, "23"},
        {"3D points", setOf(Kind::POINTS, D3, 1, '2'), Kind::POINTS, 1, false, D3, "23"},
        {"lines", setOf(Kind::LINES, D3, 2, 'o'), Kind::LINES, 2, false, D3, "ocep"},
        {"polylines", setOf(Kind::POLYLINES, D2, 3, 'c'), Kind::POLYLINES, 3, false, D2, "ocep"},
        {"polygons", setOf(Kind::POLYGONS, D3, 2, 'p'), Kind::POLYGONS, 2, false, D2, "cphf"},
        {"grid", KuuGeometrySet(GRID_2D), Kind::GRID, 6, false, D2, ""},
        {"3D grid", KuuGeometrySet(GRID_3D), Kind::GRID, 24, false, D3, ""},
        {"cells", sparse(GRID_3D, {Run(1, 2), Run(20, 99)}), Kind::GRID_SPARSE, 6, true, D3, ""},
        {"no cells", sparse(GRID_2D, {}), Kind::GRID_SPARSE, 0, false, D2, ""},
        {"surfaces", setOf(Kind::MESH_SURFACE, D2, 1, 's'), Kind::MESH_SURFACE, 1, false, D3, "s"},
        {"volumes", setOf(Kind::MESH_VOLUME, D2, 2, 'v'), Kind::MESH_VOLUME, 2, false, D3, "v"},
    };
}
} // namespace

TEST(KuuGeometrySet, AnswersByKind)
{
    using Kind = HbgEGeometrySet;
    for (const Row& row : rows()) {
        SCOPED_TRACE(row.name);
        const KuuGeometrySet& set = row.set;
        EXPECT_EQ(set.getGeometry(), row.kind);
        EXPECT_EQ(set.isValid(), row.kind != Kind::NONE);
        EXPECT_EQ(set.getSampleCount(), row.count);
        EXPECT_EQ(set.isEmpty(), row.isEmpty);
        EXPECT_EQ(set.getDimension(), row.dimension);
        EXPECT_EQ(set.isPointSet(), row.kind == Kind::POINTS);
        EXPECT_EQ(set.isLineSet(), row.kind == Kind::LINES);
        EXPECT_EQ(set.isPolylineSet(), row.kind == Kind::POLYLINES);
        EXPECT_EQ(set.isPolygonSet(), row.kind == Kind::POLYGONS);
        EXPECT_EQ(set.isSparseGrid(), row.kind == Kind::GRID_SPARSE);
        EXPECT_EQ(set.isGrid(), row.kind == Kind::GRID || row.kind == Kind::GRID_SPARSE);
        EXPECT_EQ(set.isMeshSet(), row.kind == Kind::MESH_SURFACE || row.kind == Kind::MESH_VOLUME);
        EXPECT_EQ(set.getBoundingBox().isEmpty(), row.count == 0);
    }
    for (const Kind& kind : Kind::createIterator()) {
        SCOPED_TRACE(kind.getKey().toStdString());
        const KuuGeometrySet empty(kind, D3);
        EXPECT_EQ(empty.getGeometry(), kind);
        EXPECT_EQ(empty.isValid(), kind != Kind::NONE);
        EXPECT_EQ(empty.getSampleCount(), 0);
        EXPECT_EQ(empty.isEmpty(), !empty.isGrid());
        EXPECT_EQ(empty.getDimension(), kind == Kind::NONE || kind == Kind::POLYGONS ? D2 : D3);
    }
}

TEST(KuuGeometrySet, TakesWhatItsKindHolds)
{
    for (const Row& row : rows()) {
        for (const auto& [sort, sample] : samples()) {
            SCOPED_TRACE(std::string(row.name) + " and " + sort);
            const bool isTaken = std::string(row.taken).find(sort) != std::string::npos;
            KuuGeometrySet edited = row.set;
            EXPECT_EQ(edited.addGeometrySample(sample), isTaken);
            EXPECT_EQ(edited.getSampleCount(), row.count + isTaken);
            const KuuGeometrySample added = edited.getGeometrySample(row.count);
            EXPECT_EQ(added.isEmpty(), !isTaken);

            KuuGeometrySet updated = row.set;
            EXPECT_EQ(updated.updateGeometrySample(0, sample), isTaken);
            EXPECT_FALSE(updated.updateGeometrySample(row.count, sample));
            if (isTaken) {
                EXPECT_EQ(updated.getGeometrySample(0), added);
                EXPECT_TRUE(edited.removeGeometrySample(row.count));
            } else {
                EXPECT_EQ(updated, row.set);
            }
            EXPECT_EQ(edited, row.set);
        }
    }
}

TEST(KuuGeometrySet, HasNothingAtRanksOutside)
{
    for (const Row& row : rows()) {
        SCOPED_TRACE(row.name);
        KuuGeometrySet set = row.set;
        const bool hasElements = *row.taken != '\0';
        EXPECT_EQ(set.getGeometrySample(0).isEmpty(), !hasElements);
        const qint64 beyond = std::numeric_limits<qint64>::max();
        for (const qint64 rank : {qint64(-1), row.count, beyond, (qint64(1) << 32)}) {
            EXPECT_TRUE(set.getGeometrySample(rank).isEmpty());
            EXPECT_FALSE(set.removeGeometrySample(rank));
        }
        EXPECT_EQ(set, row.set);
        EXPECT_EQ(set.removeGeometrySample(0), hasElements);
        EXPECT_EQ(set.getSampleCount(), row.count - hasElements);
    }
}

TEST(KuuGeometrySet, ConvertsWhatItTakes)
{
    const HbgGeomPolyline high({HbgVector3D(0., 0., 5.), {1., 0., 6.}, {0., 1., 7.}, {0., 0., 5.}});
    KuuGeometrySet polygons(HbgEGeometrySet::POLYGONS, D2);
    EXPECT_TRUE(polygons.addGeometrySample(high)); // closed by its ends
    EXPECT_EQ(polygons.getGeometrySample(0).toPolygon(), HbgGeomPolygon(TRIANGLE));

    KuuGeometrySet lines(HbgEGeometrySet::LINES, D2);
    EXPECT_TRUE(lines.addGeometrySample(high));
    EXPECT_EQ(lines.getGeometrySample(0).getDimension(), D2);
    EXPECT_TRUE(lines.addGeometrySample(HbgGeomPolygon(TRIANGLE)));
    EXPECT_EQ(lines.getGeometrySample(1), samples().at('c'));

    KuuGeometrySet points(HbgEGeometrySet::POINTS, D3);
    EXPECT_TRUE(points.addGeometrySample(HbgVector2D(7., 8.)));
    EXPECT_EQ(points.getGeometrySample(0),
              KuuGeometrySample(HbgVector3D(7., 8., HbbGlobal::D_FFFF)));
}

TEST(KuuGeometrySet, PicksPointsLinesAndPolygons)
{
    const QVector<QPointF> lasso = {{-1., -1.}, {3., -1.}, {-1., 3.}};
    for (const Row& row : rows()) {
        SCOPED_TRACE(row.name);
        const bool isPicked = row.set.isPointSet() ||
                              row.set.getFlags().testFlag(HbgGeometrySetFlags::LINES) ||
                              row.set.isPolygonSet();
        const qint64 found = isPicked ? row.count : 0;
        EXPECT_EQ(row.set.pointToRank({.2, .2}, .3), isPicked ? 0 : -1);
        EXPECT_EQ(row.set.pointToRanks({.2, .2}, .3).getCount(), found);
        EXPECT_EQ(row.set.rectangleToRanks({0., 0., .5, .5}).getCount(), found);
        EXPECT_EQ(row.set.polygonToRanks(lasso).getCount(), found);

        // Near, but outside.
        const bool isNear = isPicked && !row.set.isPolygonSet();
        EXPECT_EQ(row.set.pointToRank({-.1, .2}, 1.), isNear ? 0 : -1);
        EXPECT_EQ(row.set.pointToRanks({-.1, .2}, 1.).getCount(), isNear ? row.count : 0);
        EXPECT_EQ(row.set.pointToRank({-.1, .2}, .05), -1);
        EXPECT_TRUE(row.set.rectangleToRanks({5., 5., 1., 1.}).isEmpty());
    }
}

TEST(KuuGeometrySet, HandsOutTheContainerOfItsKind)
{
    for (const Row& row : rows()) {
        SCOPED_TRACE(row.name);
        const auto hands = [](const auto& access) {
            try {
                access();
                return true;
            } catch (const HbeProgrammingError&) {
                return false;
            }
        };
        const KuuGeometrySet& set = row.set;
        KuuGeometrySet copy = set;
        const bool isLine = set.isLineSet() || set.isPolylineSet();
        EXPECT_EQ(hands([&] { copy = KuuGeometrySet(set.toPointSet()); }), set.isPointSet());
        EXPECT_EQ(hands([&] { copy = KuuGeometrySet(set.toLineSet(), set.isLineSet()); }), isLine);
        EXPECT_EQ(hands([&] { EXPECT_EQ(copy.toPolylineSet(), set.toLineSet()); }), isLine);
        EXPECT_EQ(hands([&] { copy = KuuGeometrySet(set.toPolygonSet()); }), set.isPolygonSet());
        EXPECT_EQ(hands([&] { copy = KuuGeometrySet(set.toGrid()); }),
                  set.isGrid() && !set.isSparseGrid());
        EXPECT_EQ(hands([&] { copy = KuuGeometrySet(set.toSparseGrid()); }), set.isSparseGrid());
        EXPECT_EQ(hands([&] { copy = KuuGeometrySet(set.toMeshSet()); }), set.isMeshSet());
        EXPECT_EQ(copy, set); // each constructor finds the kind again
    }
}
