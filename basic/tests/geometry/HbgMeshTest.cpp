#include <basic/base/HbbGlobal.h>
#include <basic/error/HbeProgrammingError.h>
#include <basic/geometry/HbgMeshSet.h>

#include <cmath>
#include <limits>

namespace
{
const QVector<HbgVector3D> UNIT_CUBE{{0., 0., 0.}, {1., 0., 0.}, {0., 1., 0.}, {1., 1., 0.},
                                     {0., 0., 1.}, {1., 0., 1.}, {0., 1., 1.}, {1., 1., 1.}};
const QVector<int> CUBE_SIDES{0, 1, 2, 1, 3, 2, 4, 5, 6, 5, 7, 6, 0, 1, 4, 1, 5, 4,
                              2, 3, 6, 3, 7, 6, 0, 2, 4, 2, 6, 4, 1, 3, 5, 3, 7, 5};
/// Five tetrahedra, some of them the other way round.
const QVector<int> CUBE_CORES{0, 1, 2, 4, 3, 1, 2, 7, 5, 1, 4, 7, 6, 2, 4, 7, 1, 2, 4, 7};

QVector<HbgVector3D> placed(const HbgVector3D& origin, double size)
{
    QVector<HbgVector3D> vertices;
    for (const HbgVector3D& vertex : UNIT_CUBE)
        vertices.append(origin + size * vertex);
    return vertices;
}
} // namespace

TEST(HbgMesh, measuresCubesWhereverTheyAre)
{
    const struct {
        HbgVector3D origin;
        double size;
        double accuracy; // relative: what rounding of the coordinates themselves leaves
    } cases[] = {
        {{0., 0., 0.}, 1., 1e-15},     {{-1., 2., 3.}, 1000., 1e-15},
        {{1e7, -1e7, 1e4}, 2., 1e-15}, {{1e7, 1e7, 1e7}, 0.001, 1e-5},
        {{0., 0., 0.}, 0., 0.},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.size);
        const double area = 6. * test.size * test.size;
        const double volume = test.size * test.size * test.size;
        HbgMesh surface;
        ASSERT_TRUE(surface.setCells(placed(test.origin, test.size), CUBE_SIDES));
        EXPECT_NEAR(surface.getArea(), area, area * test.accuracy);
        EXPECT_EQ(surface.getVolume(), 0.);
        HbgMesh core(HbgEMeshType::VOLUME);
        ASSERT_TRUE(core.setCells(placed(test.origin, test.size), CUBE_CORES));
        EXPECT_NEAR(core.getVolume(), volume, volume * test.accuracy);
        EXPECT_EQ(core.getArea(), 0.);
        EXPECT_EQ(core.getBoundingBox(),
                  HbgBox(test.origin, test.origin + test.size * HbgVector3D(1., 1., 1.)));
    }
}

TEST(HbgMesh, refusesWhatIsNoMesh)
{
    HbgMesh mesh;
    ASSERT_TRUE(mesh.setCells(UNIT_CUBE, CUBE_SIDES));
    const HbgMesh before = mesh;
    for (const QVector<int>& corners :
         {QVector<int>{0, 1}, {0, 1, 2, 3}, {0, 1, 8}, {-1, 1, 2}, {0, 1, 2, 1, 2, 1 << 30}})
        EXPECT_FALSE(mesh.setCells(UNIT_CUBE, corners));
    for (const double wrong :
         {std::nan(""), -std::numeric_limits<double>::infinity(), HbbGlobal::D_FFFF}) {
        for (double HbgVector3D::*axis : {&HbgVector3D::x, &HbgVector3D::y, &HbgVector3D::z}) {
            QVector<HbgVector3D> vertices = UNIT_CUBE;
            vertices[7].*axis = wrong;
            EXPECT_FALSE(mesh.setCells(vertices, CUBE_SIDES));
            EXPECT_FALSE(mesh.setVertices(vertices));
        }
    }
    EXPECT_FALSE(mesh.setVertices(UNIT_CUBE.mid(1)));
    EXPECT_EQ(mesh, before);

    EXPECT_TRUE(mesh.setVertices(placed({5., 5., 5.}, 2.)));
    EXPECT_EQ(mesh.getArea(), 24.);
    EXPECT_NE(mesh, before);
    EXPECT_TRUE(mesh.setCells(UNIT_CUBE, {0, 0, 0, 1, 2, 1})); // degenerate, but cells
    EXPECT_EQ(mesh.getCellCount(), 2);
    EXPECT_EQ(mesh.getArea(), 0.);
    mesh.clear();
    EXPECT_EQ(mesh, HbgMesh());
    EXPECT_NE(mesh, HbgMesh(HbgEMeshType::VOLUME));
}

TEST(HbgMeshSet, keepsMeshesOfItsType)
{
    HbgMesh near;
    HbgMesh far;
    ASSERT_TRUE(near.setCells(UNIT_CUBE, CUBE_SIDES));
    ASSERT_TRUE(far.setCells(placed({9., 9., 9.}, 1.), CUBE_SIDES));
    const HbgMesh other(HbgEMeshType::VOLUME);
    HbgMeshSet set;
    EXPECT_TRUE(set.append(near));
    EXPECT_TRUE(set.append(far));
    EXPECT_FALSE(set.append(other));
    EXPECT_EQ(set.getBoundingBox(), HbgBox({0., 0., 0.}, {10., 10., 10.}));

    EXPECT_FALSE(set.update(0, other));
    EXPECT_FALSE(set.update(2, near));
    EXPECT_FALSE(set.remove(-1));
    EXPECT_FALSE(set.remove(2));
    EXPECT_THROW(set.getMesh(2), HbeProgrammingError);
    EXPECT_TRUE(set.remove(0));
    EXPECT_EQ(set.getMesh(0), far);
    EXPECT_TRUE(set.update(0, near));
    EXPECT_EQ(set.getMeshes(), QVector<HbgMesh>{near});
    set.clear();
    EXPECT_EQ(set, HbgMeshSet());
    EXPECT_NE(set, HbgMeshSet(HbgEMeshType::VOLUME));
}
