#include <basic/base/HbbGlobal.h>
#include <basic/error/HbeProgrammingError.h>
#include <basic/geometry/HbgGeomPolygon.h>
#include <basic/geometry/HbgGeomPolylineSet.h>

#include <cmath>
#include <limits>

namespace
{
const double NONE = HbbGlobal::D_FFFF;
const double NAN_VALUE = std::nan("");
const double INFINITE = std::numeric_limits<double>::infinity();
const HbgEPolylineType OPEN = HbgEPolylineType::OPEN;
const HbgEPolylineType CLOSED = HbgEPolylineType::CLOSED;

using Points2D = QVector<HbgVector2D>;
using Points3D = QVector<HbgVector3D>;
} // namespace

TEST(HbgGeomPolyline, refusesWhatIsNoPlace)
{
    for (const HbgEDimension& dimension : {HbgEDimension::DIM_2D, HbgEDimension::DIM_3D}) {
        HbgGeomPolyline line(dimension);
        EXPECT_TRUE(line.append(HbgVector3D(1., 2., NONE)));
        const HbgGeomPolyline before = line;
        for (const HbgVector3D& point :
             {HbgVector3D(NAN_VALUE, 0., 0.), HbgVector3D(0., NONE, 0.),
              HbgVector3D(0., 0., NAN_VALUE), HbgVector3D(-INFINITE, 0., 0.),
              HbgVector3D(0., 0., INFINITE)}) {
            EXPECT_FALSE(line.append(point));
            EXPECT_FALSE(line.insert(0, point));
            EXPECT_FALSE(line.update(0, point));
            EXPECT_FALSE(line.setPoints({{0., 0., 0.}, point}));
            EXPECT_THROW(HbgGeomPolyline(Points3D{point}), HbeProgrammingError);
        }
        EXPECT_FALSE(line.append(HbgVector2D(NONE, 0.)));
        EXPECT_THROW(HbgGeomPolyline(Points2D{{0., NAN_VALUE}}), HbeProgrammingError);
        const HbgVector3D good(0., 0., 0.);
        EXPECT_FALSE(line.insert(2, good) || line.insert(-1, good) || line.update(1, good) ||
                     line.update(-1, good) || line.remove(1) || line.remove(-1));
        EXPECT_EQ(line, before);
    }
}

TEST(HbgGeomPolyline, keepsElevationsIn3DOnly)
{
    HbgGeomPolyline flat;
    EXPECT_TRUE(flat.append(HbgVector3D(1., 2., 3.)));
    EXPECT_TRUE(flat.insert(0, {0., 0., 9.}));
    EXPECT_EQ(flat, HbgGeomPolyline(Points2D{{0., 0.}, {1., 2.}}));
    EXPECT_EQ(flat.getPoints().first().z, NONE);

    HbgGeomPolyline line(Points3D{{0., 0., 5.}, {3., 4., 17.}});
    EXPECT_TRUE(line.append(HbgVector2D(3., 8.)));
    EXPECT_EQ(line.getLength(), 13. + 4.); // the second without an elevation at its end
    line.setType(CLOSED);
    EXPECT_EQ(line.getLength(), 17. + std::hypot(3., 8.));
    EXPECT_EQ(line.getBoundingBox(), HbgBox({0., 0., 5.}, {3., 8., 17.}));
    line.setDimension(HbgEDimension::DIM_2D);
    line.setDimension(HbgEDimension::DIM_3D);
    EXPECT_EQ(line.getPoints().first(), HbgVector3D(0., 0., NONE));
    EXPECT_NE(line, HbgGeomPolyline(Points2D{{0., 0.}, {3., 4.}, {3., 8.}}, CLOSED));
}

TEST(HbgGeomPolyline, measuresTheDistanceToItsNearestPlace)
{
    EXPECT_EQ(HbgGeomPolyline().getDistance({0., 0.}), NONE);
    const HbgGeomPolyline angle(Points2D{{0., 0.}, {8., 0.}, {8., 0.}, {8., 6.}});
    EXPECT_EQ(angle.getDistance({NAN_VALUE, 0.}), NONE);
    const HbgGeomPolyline triangle(angle.getPoints(), CLOSED);
    struct Case {
        QPointF place;
        double open, closed;
    };
    for (const Case& c : {Case{{-3., -4.}, 5., 5.}, Case{{5., 2.}, 2., 1.4}, Case{{8., 3.}, 0., 0.},
                          Case{{4., 3.}, 3., 0.}, Case{{11., 10.}, 5., 5.}}) {
        EXPECT_DOUBLE_EQ(angle.getDistance(c.place), c.open);
        EXPECT_NEAR(triangle.getDistance(c.place), c.closed, 1e-15);
    }
    EXPECT_EQ(HbgGeomPolyline(Points2D{{1., 1.}}).getDistance({4., 5.}), 5.);
    // A millimetre beside a line of 10,000 km, and beside a short one far from the origin.
    const HbgGeomPolyline large(Points2D{{-1e7, -1e7}, {1e7, 1e7}});
    EXPECT_NEAR(large.getDistance({0.001, 0.}), 0.001 * std::sqrt(0.5), 1e-9);
    const HbgGeomPolyline far(Points2D{{1e7, 1e7}, {1e7 + 0.004, 1e7 + 0.003}});
    EXPECT_NEAR(far.getDistance({1e7 - 0.001, 1e7 + 0.007}), 0.0062, 1e-8);
    EXPECT_NEAR(far.getDistance({1e7 - 1e6, 1e7}), 1e6, 1e-8);
    // Squares that no double holds.
    const HbgGeomPolyline huge(Points2D{{-1e299, -1e299}, {1e299, 1e299}});
    EXPECT_DOUBLE_EQ(huge.getDistance({2e298, 0.}), std::sqrt(2.) * 1e298);
    EXPECT_DOUBLE_EQ(huge.getLength(), std::sqrt(8.) * 1e299);
}

TEST(HbgGeomPolyline, becomesAPolygonWhenItIsClosed)
{
    const Points3D corners{{0., 0., 1.}, {4., 0., 2.}, {0., 3., 3.}};
    EXPECT_TRUE(HbgGeomPolyline(corners).toPolygon().isEmpty());
    const HbgGeomPolygon triangle(HbgGeomPolygon::Ring{{0., 0.}, {4., 0.}, {0., 3.}});
    EXPECT_EQ(HbgGeomPolyline(corners, CLOSED).toPolygon(), triangle);
    HbgGeomPolyline line(corners);
    line.append(HbgVector3D(0., 0., 9.)); // ends where it began, at another height
    EXPECT_TRUE(line.isClosed());
    EXPECT_EQ(line.toPolygon(), triangle);
    line.setType(CLOSED);
    EXPECT_EQ(line.toPolygon(), triangle);
    EXPECT_EQ(triangle.toPolyline().toPolygon(), triangle);
    EXPECT_EQ(triangle.toPolyline().getDimension(), HbgEDimension::DIM_2D);
    for (const Points2D& points :
         {Points2D(), Points2D{{1., 1.}}, Points2D{{1., 1.}, {2., 2.}, {1., 1.}},
          Points2D{{1., 1.}, {2., 2.}, {2., 2.}, {1., 1.}}}) {
        EXPECT_TRUE(HbgGeomPolyline(points, CLOSED).toPolygon().isEmpty());
        EXPECT_TRUE(HbgGeomPolyline(points, OPEN).toPolygon().isEmpty());
    }
    EXPECT_FALSE(HbgGeomPolyline(Points2D{{1., 1.}}).isClosed());
}

TEST(HbgGeomPolylineSet, keepsOneDimension)
{
    HbgGeomPolylineSet set(HbgEDimension::DIM_3D);
    set.append(HbgGeomPolyline(Points2D{{1., 2.}}));
    set.append(HbgGeomPolyline(Points3D{{0., 0., 7.}}, CLOSED));
    EXPECT_EQ(set.getPolyline(0), HbgGeomPolyline(Points3D{{1., 2., NONE}}));
    EXPECT_EQ(set.getBoundingBox(), HbgBox(HbgVector3D(0., 0., 7.), HbgVector3D(1., 2., 7.)));
    HbgGeomPolylineSet copy = set;
    EXPECT_TRUE(copy.update(0, copy.getPolyline(1)));
    EXPECT_EQ(copy.getPolyline(0), set.getPolyline(1));
    EXPECT_NE(copy, set);
    EXPECT_TRUE(copy.remove(0));
    EXPECT_FALSE(copy.update(1, HbgGeomPolyline()) || copy.update(-1, HbgGeomPolyline()) ||
                 copy.remove(1) || copy.remove(-1));
    EXPECT_THROW(copy.getPolyline(1), HbeProgrammingError);

    HbgGeomPolylineSet flat;
    flat.append(set.getPolyline(1));
    EXPECT_EQ(flat.getPolyline(0), HbgGeomPolyline(Points2D{{0., 0.}}, CLOSED));
    flat.clear();
    EXPECT_TRUE(flat.isEmpty());
    EXPECT_NE(flat, HbgGeomPolylineSet(HbgEDimension::DIM_3D));
}
