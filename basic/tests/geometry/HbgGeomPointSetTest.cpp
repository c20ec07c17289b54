#include <basic/base/HbbGlobal.h>
#include <basic/error/HbeProgrammingError.h>
#include <basic/geometry/HbgGeomPointSet.h>
#include <basic/interval/HbiIntervalIntSmallDisjoint.h>

#include <QtGui/QPolygonF>

#include <cmath>
#include <functional>
#include <limits>
#include <thread>

namespace
{
const double NONE = HbbGlobal::D_FFFF;

HbgGeomPointSet randomPoints(int count)
{
    std::mt19937 random(29);
    std::uniform_int_distribution<int> place(-20, 20);
    HbgGeomPointSet points;
    for (int i = 0; i < count; ++i)
        points.append(HbgVector2D(place(random) / 2., place(random)));
    return points;
}

HbiIntervalIntSmallDisjoint bruteForce(const HbgGeomPointSet& points,
                                       const std::function<bool(double, double)>& isIn)
{
    HbiIntervalIntSmallDisjoint ranks;
    for (int rank = 0; rank < points.getCount(); ++rank) {
        const HbgVector3D point = points.getPoint(rank);
        if (point.x != NONE && point.y != NONE && isIn(point.x, point.y))
            ranks.add(rank);
    }
    return ranks;
}

/// How points may lie that an index by places would not expect.
struct Distribution {
    const char* name;
    HbgVector2D (*place)(int rank, double u, double v); // of two random numbers from -1 to 1
};

const Distribution DISTRIBUTIONS[] = {
    {"anywhere", [](int, double u, double v) { return HbgVector2D(1e3 * u, 1e3 * v); }},
    {"millimetres, far from the origin",
     [](int, double u, double v) {
         return HbgVector2D(1e7 + std::round(20. * u) / 1e3, -1e7 + std::round(20. * v) / 1e3);
     }},
    {"a heap, and one far away",
     [](int rank, double u, double v) { return HbgVector2D(rank == 7 ? 1e7 : u, v); }},
    {"one place", [](int, double, double) { return HbgVector2D(0.1, 1e6); }},
    {"two places", [](int, double u, double) { return HbgVector2D(u < 0. ? 0.1 : 3., 7.); }},
    {"a line along X", [](int, double u, double) { return HbgVector2D(u, 0.3); }},
    {"a line along Y, in order", [](int rank, double, double) { return HbgVector2D(5., rank); }},
    {"a slanted line", [](int, double u, double) { return HbgVector2D(u, 1e3 * u); }},
    {"a cross",
     [](int rank, double u, double) { return rank % 2 ? HbgVector2D(u, 0.) : HbgVector2D(0., u); }},
    {"a lattice",
     [](int, double u, double v) { return HbgVector2D(std::round(9. * u), std::round(9. * v)); }},
    {"closing in on a place",
     [](int rank, double u, double v) {
         return HbgVector2D(std::ldexp(u, -(rank % 500)), std::ldexp(v, -(rank % 500)));
     }},
    {"all magnitudes",
     [](int, double u, double v) {
         return HbgVector2D(std::copysign(std::pow(10., 305. * std::abs(u)), v),
                            std::copysign(std::pow(10., 305. * std::abs(v)), u));
     }},
};

/// Of more range than a square of a double has.
long double squaredDistance(const HbgVector3D& point, const QPointF& place)
{
    const long double dx = static_cast<long double>(point.x) - place.x();
    const long double dy = static_cast<long double>(point.y) - place.y();
    return dx * dx + dy * dy;
}

/// The first point lies somewhere.
int nearestByBruteForce(const HbgGeomPointSet& points, const QPointF& place)
{
    int nearest = 0;
    for (int rank = 1; rank < points.getCount(); ++rank) {
        if (points.getPoint(rank).x != NONE && squaredDistance(points.getPoint(rank), place) <
                                                   squaredDistance(points.getPoint(nearest), place))
            nearest = rank;
    }
    return nearest;
}

void comparePicks(const HbgGeomPointSet& points, std::mt19937& random)
{
    const auto anyPoint = [&] {
        const int rank = static_cast<int>(random() % static_cast<unsigned>(points.getCount()));
        const HbgVector3D point = points.getPoint(rank);
        return point.x == NONE ? QPointF(points.getX()[0], points.getY()[0])
                               : QPointF(point.x, point.y);
    };
    const QPointF at = anyPoint();
    const QPointF other = anyPoint();
    // At a point, between two of them and beside both.
    for (const double part : {0., 0.41, -0.07}) {
        const QPointF place = at + part * (other - at);
        const int nearest = nearestByBruteForce(points, place);
        const auto distance =
            static_cast<double>(std::sqrt(squaredDistance(points.getPoint(nearest), place)));
        for (const double tolerance :
             {std::numeric_limits<double>::infinity(), distance * 1.000001}) {
            const int found = points.pointToRank(place, tolerance);
            const long double square = squaredDistance(points.getPoint(found), place);
            // Another one only where a double cannot tell their distances apart.
            if (square == squaredDistance(points.getPoint(nearest), place))
                EXPECT_EQ(found, nearest);
            else
                EXPECT_EQ(static_cast<double>(std::sqrt(square)), distance);
        }
        EXPECT_EQ(points.pointToRank(place, distance * 0.999999), distance == 0. ? nearest : -1);

        const double reach =
            1.000001 * static_cast<double>(std::sqrt(squaredDistance(points.getPoint(0), place)));
        EXPECT_EQ(points.pointToRanks(place, reach), bruteForce(points, [&](double x, double y) {
                      return squaredDistance({x, y, 0.}, place) <=
                             static_cast<long double>(reach) * reach;
                  }));
        const QRectF area = QRectF(place, other).normalized();
        EXPECT_EQ(points.rectangleToRanks(area), bruteForce(points, [&area](double x, double y) {
                      return area.left() <= x && x <= area.right() && area.top() <= y &&
                             y <= area.bottom();
                  }));
        EXPECT_EQ(points.polygonToRanks(QPolygonF(area)), points.rectangleToRanks(area));
    }
}
} // namespace

TEST(HbgGeomPointSet, picksExactlyHoweverThePointsLie)
{
    std::mt19937 random(23);
    std::uniform_real_distribution<double> part(-1., 1.);
    for (const Distribution& distribution : DISTRIBUTIONS) {
        for (const int count : {1, 2, 32, 33, 500, 5000}) {
            SCOPED_TRACE(testing::Message() << distribution.name << ", " << count);
            HbgGeomPointSet points;
            for (int rank = 0; rank < count; ++rank) {
                const double u = part(random);
                HbgVector2D point = distribution.place(rank, u, part(random));
                point.x = rank % 31 == 3 ? NONE : point.x; // lies nowhere
                EXPECT_TRUE(points.append(point));
            }
            for (int i = 0; i < 20; ++i) {
                comparePicks(points, random);
                // The index must not outlive an edit: two points change places.
                const HbgVector3D point = points.getPoint(i % count);
                EXPECT_TRUE(points.update(i % count, points.getPoint(0)));
                EXPECT_TRUE(points.update(0, point.x == NONE ? points.getPoint(0) : point));
            }
        }
    }
}

TEST(HbgGeomPointSet, buildsItsIndexForPicksOnly)
{
    HbgGeomPointSet points = randomPoints(100);
    const auto look = [](const HbgGeomPointSet& set) {
        return set.getBoundingBox().is3D() || set.isEmpty() || set.getX() != set.getX();
    };
    const std::function<void()> edits[] = {
        [&] { points.append(HbgVector2D(1., 2.)); },
        [&] { points.update(3, HbgVector2D(1., 2.)); },
        [&] { EXPECT_TRUE(points.remove(3)); },
        [&] { points.setCoordinates(points.getX(), points.getY()); },
        [&] { points = HbgGeomPointSet(); },
    };
    for (const auto& edit : edits) {
        EXPECT_FALSE(points.isIndexed());
        EXPECT_FALSE(look(points));
        EXPECT_FALSE(points.isIndexed());
        points.pointToRank({0., 0.}, 1.);
        EXPECT_TRUE(points.isIndexed());
        EXPECT_FALSE(points.append(HbgVector2D(std::nan(""), 0.))); // refused: no edit
        const HbgGeomPointSet copy = points;
        EXPECT_TRUE(copy.isIndexed());
        edit();
        EXPECT_FALSE(points.isIndexed());
        EXPECT_TRUE(copy.isIndexed());
    }
    // Nothing stays in what is moved away.
    HbgGeomPointSet source = randomPoints(100);
    source.rectangleToRanks({-20., -20., 40., 40.});
    points = std::move(source);
    EXPECT_TRUE(points.isIndexed());
    EXPECT_TRUE(source.rectangleToRanks({-20., -20., 40., 40.}).isEmpty());
}

TEST(HbgGeomPointSet, picksInAnyPolygonAsQtFillsIt)
{
    std::mt19937 random(17);
    std::uniform_real_distribution<double> place(-100., 100.);
    HbgGeomPointSet points;
    for (int i = 0; i < 3000; ++i)
        points.append(HbgVector2D(place(random), place(random)));
    for (int corners = 3; corners < 200; ++corners) {
        SCOPED_TRACE(corners);
        // Rings around the middle, and lassos that cross themselves many times.
        QVector<QPointF> polygon;
        for (int i = 0; i < corners; ++i) {
            const double angle = 6.283185307 * i / corners;
            const double radius = std::abs(place(random));
            polygon.append(corners % 2 ? QPointF(radius * std::cos(angle), radius * std::sin(angle))
                                       : QPointF(place(random), place(random)));
        }
        const QPolygonF filled(polygon);
        EXPECT_EQ(points.polygonToRanks(polygon), bruteForce(points, [&](double x, double y) {
                      return filled.containsPoint(QPointF(x, y), Qt::WindingFill);
                  }));
        polygon.append(polygon.first()); // closed explicitly: the same
        EXPECT_EQ(points.polygonToRanks(polygon), points.polygonToRanks(filled));
    }
}

TEST(HbgGeomPointSet, picksNothingWithoutAPlace)
{
    HbgGeomPointSet points;
    EXPECT_EQ(points.pointToRank({0., 0.}, 1.), -1);
    points.append(HbgVector2D(0., 0.));
    const double nan = std::nan("");
    EXPECT_EQ(points.pointToRank({0., 0.}, 0.), 0);
    EXPECT_EQ(points.pointToRank({0., 0.}, -1.), -1);
    EXPECT_EQ(points.pointToRank({0., 0.}, nan), -1);
    EXPECT_EQ(points.pointToRank({nan, 0.}, 1.), -1);
    EXPECT_EQ(points.pointToRank({1e9, 0.}, std::numeric_limits<double>::infinity()), 0);
    EXPECT_TRUE(points.rectangleToRanks(QRectF(nan, 0., 1., 1.)).isEmpty());
    EXPECT_EQ(points.polygonToRanks({{-8., -8.}, {8., -8.}, {-8., 8.}}).getCount(), 1); // border
    EXPECT_TRUE(points.polygonToRanks({{-1., 0.}, {1., 0.}}).isEmpty());
    EXPECT_TRUE(points.polygonToRanks({{-1., -1.}, {1., -1.}, {nan, 1.}}).isEmpty());
}

TEST(HbgGeomPointSet, refusesWhatIsNoCoordinate)
{
    const double nan = std::nan("");
    HbgGeomPointSet points(HbgEDimension::DIM_3D);
    EXPECT_FALSE(points.append(HbgVector3D(1., 2., nan)));
    EXPECT_FALSE(points.append(HbgVector2D(std::numeric_limits<double>::infinity(), 0.)));
    EXPECT_TRUE(points.append(HbgVector2D(1., 2.)));
    EXPECT_EQ(points.getPoint(0), HbgVector3D(1., 2., NONE));
    EXPECT_FALSE(points.update(0, HbgVector2D(nan, 0.)));
    EXPECT_FALSE(points.update(1, HbgVector2D(0., 0.)));
    EXPECT_FALSE(points.remove(-1));
    EXPECT_THROW(points.getPoint(1), HbeProgrammingError);

    points.setCoordinates({1., nan, 5.}, {2., 3., 4.}, {9., 9., NONE});
    EXPECT_EQ(points.getPoint(1), HbgVector3D(NONE, 3., 9.));
    EXPECT_EQ(points.getBoundingBox(), HbgBox({1., 2., 9.}, {5., 4., 9.}));
    EXPECT_THROW(points.setCoordinates({1.}, {1., 2.}), HbeProgrammingError);
}

TEST(HbgGeomPointSet, sharesItsIndexWithCopiesAndThreads)
{
    HbgGeomPointSet points = randomPoints(5000);
    const HbgGeomPointSet reference = points;
    const auto count = [](const HbgGeomPointSet& set) {
        return set.rectangleToRanks({-5., -5., 10., 10.}).getCount();
    };
    std::vector<qint64> counts(4);
    std::vector<std::thread> threads;
    for (qint64& found : counts)
        threads.emplace_back([&] { found = count(HbgGeomPointSet(points)) + count(points); });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(counts, std::vector<qint64>(4, 2 * count(reference)));
    points.clear();
    EXPECT_EQ(reference.getCount(), 5000);
    EXPECT_EQ(count(points), 0);
}

TEST(HbgBox, ignoresUndefinedCoordinates)
{
    HbgBox box;
    EXPECT_TRUE(box.isEmpty());
    EXPECT_EQ(box.getXMin(), NONE);
    box.unite(HbgVector3D(1., NONE, std::nan("")));
    EXPECT_TRUE(box.isEmpty());
    box.unite(HbgVector2D(-1., 4.));
    EXPECT_EQ(box, HbgBox(HbgVector2D(1., 4.), HbgVector2D(-1., 4.)));
    EXPECT_FALSE(box.is3D());
    EXPECT_TRUE(box.contains(HbgVector3D(0., 4., 100.)));
    EXPECT_FALSE(box.intersects(HbgBox()));
    HbgBox high({0., 0., 5.}, {9., 9., 6.});
    EXPECT_TRUE(box.intersects(high));
    high.unite(box);
    EXPECT_EQ(high.getXMin(), -1.);
    EXPECT_EQ(high.getZMin(), 5.);
    EXPECT_FALSE(high.contains(HbgVector3D(0., 4., 7.)));
}
