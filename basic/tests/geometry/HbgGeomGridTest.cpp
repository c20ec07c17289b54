#include <basic/base/HbbGlobal.h>
#include <basic/error/HbeProgrammingError.h>
#include <basic/geometry/HbgGeomGrid.h>

#include <cmath>
#include <limits>

using Indices = HbgGeomGrid::Indices;

TEST(HbgGeomGrid, numbersNodesAlongXThenYThenZ)
{
    const HbgGeomGrid grid(4, 3, 2, {10., 20., 30.}, 1., 2., 5.);
    std::vector<double> x(24), y(24), z(24);
    grid.getPositions(0, 24, x.data(), y.data(), z.data());
    qint64 rank = 0;
    for (int k = 0; k < 2; ++k) {
        for (int j = 0; j < 3; ++j) {
            for (int i = 0; i < 4; ++i, ++rank) {
                EXPECT_EQ(grid.getRank({i, j, k}), rank);
                EXPECT_EQ(grid.getIndices(rank), (Indices{i, j, k}));
                const HbgVector3D expected(10. + i, 20. + 2. * j, 30. + 5. * k);
                EXPECT_EQ(grid.getPosition(rank), expected);
                const auto at = static_cast<size_t>(rank);
                EXPECT_EQ(HbgVector3D(x[at], y[at], z[at]), expected);
            }
        }
    }
    EXPECT_EQ(grid.getNodeCount(), 24);
    EXPECT_EQ(grid.getBoundingBox(), HbgBox({10., 20., 30.}, {13., 24., 35.}));
}

TEST(HbgGeomGrid, goesFromRanksToIndicesAndBackInLargeTurnedGrids)
{
    const HbgGeomGrid grid(3001, 2003, 4099, {1e6, -2e6, 50.}, 25., -10., 2., 33.);
    std::mt19937_64 random(7);
    for (int i = 0; i < 2000; ++i) {
        const qint64 rank =
            static_cast<qint64>(random() % static_cast<quint64>(grid.getNodeCount()));
        const Indices at = grid.getIndices(rank);
        EXPECT_EQ(grid.getRank(at), rank);
        EXPECT_EQ(grid.getPosition(at), grid.getPosition(rank));
        EXPECT_TRUE(grid.getBoundingBox().contains(grid.getPosition(rank)));
        // Any run of nodes answers what the nodes answer one by one, across rows and layers.
        const qint64 count = std::min<qint64>(5, grid.getNodeCount() - rank);
        double x[5], y[5], z[5];
        grid.getPositions(rank, count, x, y, z);
        EXPECT_EQ(HbgVector3D(x[count - 1], y[count - 1], z[count - 1]),
                  grid.getPosition(rank + count - 1));
    }
}

TEST(HbgGeomGrid, turnsCounterClockwiseAboutItsOrigin)
{
    const HbgGeomGrid quarter(3, 2, {100., 200.}, 10., 1., 90.);
    EXPECT_EQ(quarter.getPosition(Indices{2, 0, 0}), HbgVector3D(100., 220., HbbGlobal::D_FFFF));
    EXPECT_EQ(quarter.getPosition(Indices{0, 1, 0}), HbgVector3D(99., 200., HbbGlobal::D_FFFF));
    EXPECT_EQ(HbgGeomGrid(3, 2, {100., 200.}, 10., 1., -270.).getPosition(4),
              quarter.getPosition(4));

    const HbgGeomGrid turned(2, 1, {0., 0.}, 2., 1., 30.);
    const HbgVector3D end = turned.getPosition(1);
    EXPECT_NEAR(end.x, std::sqrt(3.), 1e-15);
    EXPECT_NEAR(end.y, 1., 1e-15);

    // A quarter turn more turns all positions, and whole turns change nothing at all.
    for (double rotation = -400.; rotation < 400.; rotation += 6.25) {
        const HbgGeomGrid grid(7, 5, {0., 0.}, 3., -0.7, rotation);
        const HbgGeomGrid more(7, 5, {0., 0.}, 3., -0.7, rotation + 90.);
        const HbgGeomGrid many(7, 5, {0., 0.}, 3., -0.7, rotation - 360e6);
        for (qint64 rank = 0; rank < grid.getNodeCount(); ++rank) {
            const HbgVector3D at = grid.getPosition(rank);
            EXPECT_NEAR(more.getPosition(rank).x, -at.y, 1e-14);
            EXPECT_NEAR(more.getPosition(rank).y, at.x, 1e-14);
            EXPECT_EQ(many.getPosition(rank), at);
        }
    }
}

TEST(HbgGeomGrid, isExactToTheLastNodeFarFromTheOrigin)
{
    for (const double step : {0.001, -0.001, 25., 1e-6}) {
        for (const double rotation : {0., 17., 45., 90., -133.25, 180., 270.}) {
            SCOPED_TRACE(testing::Message() << step << " at " << rotation);
            const HbgGeomGrid flat(31, 17, {1e7, -1e7}, step, 2. * step, rotation);
            const HbgGeomGrid deep(13, 7, 5, {1e7, 0., -1e4}, 3. * step, -step, step, rotation);
            for (const HbgGeomGrid& grid : {flat, deep}) {
                HbgBox box;
                for (qint64 rank = 0; rank < grid.getNodeCount(); ++rank)
                    box.unite(grid.getPosition(rank));
                EXPECT_EQ(grid.getBoundingBox(), box);
                EXPECT_EQ(box.is3D(), grid.is3D());
            }
            // Steps are multiplied, never added up: the last one is as long as the first.
            const HbgVector3D last = flat.getPosition(Indices{30, 0, 0}) - flat.getOrigin();
            EXPECT_NEAR(last.toVector2D().length(), 30. * std::abs(step), 4e-9);
            if (rotation == 0.) {
                EXPECT_EQ(flat.getPosition(Indices{30, 16, 0}),
                          HbgVector3D(1e7 + 30 * step, -1e7 + 16 * (2. * step), HbbGlobal::D_FFFF));
            }
        }
    }
}

TEST(HbgGeomGrid, knowsWhatIsNoGrid)
{
    const double nan = std::nan("");
    const double infinity = std::numeric_limits<double>::infinity();
    const HbgGeomGrid wrong[] = {
        HbgGeomGrid(),
        HbgGeomGrid(0, 2, {0., 0.}, 1., 1.),
        HbgGeomGrid(2, -1, {0., 0.}, 1., 1.),
        HbgGeomGrid(2, 2, {nan, 0.}, 1., 1.),
        HbgGeomGrid(2, 2, {0., HbbGlobal::D_FFFF}, 1., 1.),
        HbgGeomGrid(2, 2, {0., 0.}, infinity, 1.),
        HbgGeomGrid(2, 2, {0., 0.}, 0., 1.),
        HbgGeomGrid(2, 2, {0., 0.}, 1., 1., nan),
        HbgGeomGrid(2, 2, {0., 0.}, 1., 1., infinity),
        HbgGeomGrid(2, 2, 1, {0., 0., nan}, 1., 1., 1.),
    };
    for (const HbgGeomGrid& grid : wrong) {
        EXPECT_FALSE(grid.isValid());
        EXPECT_TRUE(grid.getBoundingBox().isEmpty());
    }
    EXPECT_TRUE(HbgGeomGrid(1, 1, {0., 0.}, 0., 0.).isValid());

    const int most = std::numeric_limits<int>::max();
    const HbgGeomGrid huge(most, most, most, {0., 0., 0.}, 1., 1., 1.);
    EXPECT_EQ(huge.getNodeCount(), HbbGlobal::I_FFFF);
    EXPECT_FALSE(huge.containsRank(0));
    EXPECT_EQ(HbgGeomGrid(most, most, {0., 0.}, 1., 1.).getNodeCount(),
              static_cast<qint64>(most) * most);

    const HbgGeomGrid small(2, 2, {0., 0.}, 1., 1.);
    EXPECT_THROW(small.getIndices(4), HbeProgrammingError);
    EXPECT_THROW(small.getRank({0, 2, 0}), HbeProgrammingError);
    EXPECT_THROW(small.getPosition(Indices{0, 0, 1}), HbeProgrammingError);
    double x[3], y[3];
    EXPECT_THROW(small.getPositions(2, 3, x, y, nullptr), HbeProgrammingError);
}
