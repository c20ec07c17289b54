#include <basic/base/HbbGlobal.h>
#include <basic/error/HbeProgrammingError.h>
#include <basic/geometry/HbgGeomPolygonSet.h>
#include <basic/geometry/HbgGeomPolyline.h>

#include <cmath>
#include <limits>

namespace
{
using Ring = HbgGeomPolygon::Ring;

Ring square(double x, double y, double side)
{
    return {{x, y}, {x + side, y}, {x + side, y + side}, {x, y + side}};
}
Ring reversed(Ring ring)
{
    std::reverse(ring.begin(), ring.end());
    return ring;
}
/// A ring that does not cross itself, around a place.
Ring star(const HbgVector2D& middle, double radius, int corners, std::mt19937& random)
{
    std::uniform_real_distribution<double> part(0.2, 1.);
    Ring ring;
    for (int i = 0; i < corners; ++i) {
        const double angle = 6.283185307179586 * i / corners;
        const double length = radius * part(random);
        ring.append({middle.x + length * std::cos(angle), middle.y + length * std::sin(angle)});
    }
    return ring;
}
} // namespace

TEST(HbgGeomPolygon, refusesWhatIsNoRing)
{
    const double nan = std::nan("");
    HbgGeomPolygon polygon(square(0., 0., 4.));
    const HbgGeomPolygon before = polygon;
    for (const Ring& ring :
         {Ring(), Ring{{1., 1.}}, Ring{{1., 1.}, {2., 2.}, {1., 1.}, {2., 2.}, {1., 1.}},
          Ring{{0., 0.}, {1., 0.}, {nan, 1.}}, Ring{{0., 0.}, {1., 0.}, {HbbGlobal::D_FFFF, 1.}},
          Ring{{0., 0.}, {1., 0.}, {0., -std::numeric_limits<double>::infinity()}}}) {
        EXPECT_FALSE(polygon.addContour(ring));
        EXPECT_FALSE(polygon.addHole(0, ring));
        EXPECT_THROW((HbgGeomPolygon(ring)), HbeProgrammingError);
    }
    EXPECT_FALSE(polygon.addHole(1, square(1., 1., 1.)));
    EXPECT_FALSE(polygon.addHole(-1, square(1., 1., 1.)));
    EXPECT_EQ(polygon, before);
    EXPECT_THROW(polygon.getContour(1), HbeProgrammingError);
    EXPECT_THROW(polygon.getHoleCount(-1), HbeProgrammingError);
    EXPECT_THROW(polygon.getHole(0, 0), HbeProgrammingError);

    Ring closed = square(0., 0., 4.);
    closed.append(closed.first());
    closed.append(closed.first());
    EXPECT_EQ(HbgGeomPolygon(closed), before);
    EXPECT_EQ(HbgGeomPolygon({{0., 0.}, {1., 1.}, {2., 2.}}).getArea(), 0.); // flat, but a ring
}

TEST(HbgGeomPolygon, measuresPartsAndHoles)
{
    for (const double at : {0., 1e7, -3e9}) {
        HbgGeomPolygon polygon(square(at, at, 4.));
        EXPECT_TRUE(polygon.addHole(0, reversed(square(at + 1., at + 1., 2.))));
        EXPECT_TRUE(polygon.addContour(reversed(square(at + 8., at, 1.))));
        EXPECT_EQ(polygon.getArea(), 16. - 4. + 1.);
        EXPECT_EQ(polygon.getPerimeter(), 16. + 8. + 4.);
        EXPECT_EQ(polygon.getPointCount(), 12);
        EXPECT_EQ(polygon.getBoundingBox(),
                  HbgBox(HbgVector2D(at, at), HbgVector2D(at + 9., at + 4.)));
        EXPECT_TRUE(polygon.toPolyline().isEmpty());
        struct Case {
            double x, y;
            bool isIn;
        };
        for (const Case& c : {Case{0.5, 0.5, true}, Case{2., 2., false}, Case{1., 2., true},
                              Case{0., 4., true}, Case{4., 1., true}, Case{4.001, 1., false},
                              Case{1.001, 2., false}, Case{8.5, 0.5, true}, Case{6., 0., false}})
            EXPECT_EQ(polygon.contains({at + c.x, at + c.y}), c.isIn) << c.x << ' ' << c.y;
    }
    // A drop of a few millimetres, 10,000 km from the origin; the border is in, to rounding.
    const HbgGeomPolygon drop({{1e7, 1e7}, {1e7 + 0.008, 1e7}, {1e7, 1e7 + 0.004}});
    EXPECT_NEAR(drop.getArea(), 16e-6, 1e-10);
    EXPECT_TRUE(drop.contains({1e7 + 0.006, 1e7 + 0.001}));
    EXPECT_FALSE(drop.contains({1e7 + 0.0061, 1e7 + 0.0011}));
    const HbgGeomPolygon huge(square(-9e299, -9e299, 18e299));
    EXPECT_TRUE(huge.contains({1., 8e299}));
    EXPECT_FALSE(huge.contains({1., 9.1e299}));
    EXPECT_FALSE(std::isnan(huge.getArea()));
    EXPECT_FALSE(huge.contains({std::nan(""), 0.}));
}

TEST(HbgGeomPolygon, holdsWhatItsRingsWindAround)
{
    // Twice around: the middle is within for all that. A bow tie holds both of its halves.
    Ring twice = square(0., 0., 4.) + square(-1., -1., 6.);
    EXPECT_TRUE(HbgGeomPolygon(twice).contains({2., 2.}));
    const HbgGeomPolygon tie({{0., 0.}, {4., 4.}, {4., 0.}, {0., 4.}});
    EXPECT_TRUE(tie.contains({3.5, 2.}));
    EXPECT_TRUE(tie.contains({0.5, 2.}));
    EXPECT_TRUE(tie.contains({2., 2.}));
    EXPECT_FALSE(tie.contains({2., 3.}));
}

// Cut along lines into pieces, nothing is lost and nothing is counted twice. On a lattice, cuts run
// through corners and along edges.
TEST(HbgGeomPolygon, isCutIntoPiecesOfItsArea)
{
    std::mt19937 random(21);
    std::uniform_real_distribution<double> place(-9., 9.);
    for (int i = 0; i < 400; ++i) {
        SCOPED_TRACE(i);
        const double at = i % 3 ? 0. : 1e7;
        const double size = i % 7 ? 1. : 1e140;
        const auto snapped = [&](double value) {
            return i % 2 ? at + value * size : at + std::round(value) * size;
        };
        const auto ring = [&](double x, double radius, int corners) {
            Ring result = star({x, 0.}, radius, corners, random);
            for (HbgVector2D& corner : result)
                corner = {snapped(corner.x), snapped(corner.y)};
            return result;
        };
        HbgGeomPolygon polygon(ring(0., 10., 3 + (i % 2 ? i % 60 : i % 6)));
        if (i % 4 == 1)
            polygon.addHole(0, ring(0., 0.9, 3 + i % 9));
        if (i % 5 == 0)
            polygon.addContour(ring(30., 10., 8));
        const double x = snapped(place(random));
        const double y = snapped(place(random));
        const double far = 1e4 * size;
        double area = 0.;
        for (const double dx : {-far, far}) {
            for (const double dy : {-far, far}) {
                const HbgBox box(HbgVector2D(x, y), HbgVector2D(at + dx, at + dy));
                const HbgGeomPolygon piece = polygon.clipped(box);
                area += piece.getArea();
                HbgBox both = box;
                both.unite(piece.getBoundingBox());
                EXPECT_EQ(both, box);
            }
        }
        EXPECT_NEAR(area / polygon.getArea(), 1., 1e-8);
        EXPECT_EQ(polygon.clipped(HbgBox({at - far, at - far}, {at + far, at + far})), polygon);
        EXPECT_TRUE(polygon.clipped(HbgBox({at + 50. * size, at}, {at + far, at + far})).isEmpty());
    }
}

TEST(HbgGeomPolygon, isCutWithoutFaultWhateverItsRings)
{
    const HbgGeomPolygon polygon(reversed(square(0., 0., 4.)));
    EXPECT_EQ(polygon.clipped(HbgBox({1., 1., 5.}, {2., 9., 6.})).getArea(), 3.);
    EXPECT_TRUE(polygon.clipped(HbgBox()).isEmpty());
    EXPECT_TRUE(polygon.clipped(HbgBox(HbgVector2D(1., -1.), HbgVector2D(1., 9.))).isEmpty());
    EXPECT_TRUE(polygon.clipped(HbgBox(HbgVector2D(4., 0.), HbgVector2D(9., 9.))).isEmpty());

    std::mt19937 random(22);
    std::uniform_int_distribution<int> place(-6, 6);
    const auto wild = [&](int corners) {
        Ring ring{{0., 0.}, {1., 0.}, {0., 1.}};
        while (ring.size() < corners)
            ring.append({double(place(random)), double(place(random))});
        return ring;
    };
    for (int i = 0; i < 3000; ++i) {
        HbgGeomPolygon tangle(wild(3 + i % 12));
        tangle.addHole(0, wild(3 + i % 5));
        const HbgBox box(HbgVector2D(place(random), place(random)),
                         HbgVector2D(place(random), place(random)));
        EXPECT_NO_THROW(tangle.clipped(box));
    }
}

TEST(HbgGeomPolygonSet, isEditedByRank)
{
    const HbgGeomPolygon a(square(0., 0., 1.)), b(square(5., 0., 1.)), c(square(9., 0., 1.));
    HbgGeomPolygonSet set;
    set.append(a);
    EXPECT_TRUE(set.insert(1, c));
    EXPECT_TRUE(set.insert(1, b));
    EXPECT_EQ(set.getPolygons(), (QVector<HbgGeomPolygon>{a, b, c}));
    EXPECT_EQ(set.getBoundingBox(), HbgBox(HbgVector2D(0., 0.), HbgVector2D(10., 1.)));
    HbgGeomPolygonSet copy = set;
    EXPECT_TRUE(copy.update(0, copy.getPolygon(2)));
    EXPECT_TRUE(copy.remove(1));
    EXPECT_EQ(copy.getPolygons(), (QVector<HbgGeomPolygon>{c, c}));
    EXPECT_EQ(set.getPolygon(0), a);
    EXPECT_FALSE(copy.insert(3, a) || copy.insert(-1, a) || copy.update(2, a) ||
                 copy.update(-1, a) || copy.remove(2) || copy.remove(-1));
    EXPECT_THROW(copy.getPolygon(2), HbeProgrammingError);
}
