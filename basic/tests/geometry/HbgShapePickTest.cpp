// Picks of polylines and polygons against a search of everything in whole numbers: shapes, places
// and lassos lie on a lattice, where the answer is exact.
#include <basic/geometry/HbgGeomPolygonSet.h>
#include <basic/geometry/HbgGeomPolylineSet.h>
#include <basic/interval/HbiIntervalIntSmallDisjoint.h>

#include <cmath>
#include <limits>

namespace
{
using Ranks = HbiIntervalIntSmallDisjoint;

struct Node {
    qint64 x = 0;
    qint64 y = 0;
};
using Nodes = std::vector<Node>;

qint64 turn(const Node& a, const Node& b, const Node& c)
{
    return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
}
int sign(qint64 value)
{
    return (value > 0) - (value < 0);
}
bool isOn(const Node& a, const Node& b, const Node& c)
{
    return turn(a, b, c) == 0 && std::min(a.x, b.x) <= c.x && c.x <= std::max(a.x, b.x) &&
           std::min(a.y, b.y) <= c.y && c.y <= std::max(a.y, b.y);
}
bool meet(const Node& a, const Node& b, const Node& c, const Node& d)
{
    return (sign(turn(a, b, c)) * sign(turn(a, b, d)) < 0 &&
            sign(turn(c, d, a)) * sign(turn(c, d, b)) < 0) ||
           isOn(a, b, c) || isOn(a, b, d) || isOn(c, d, a) || isOn(c, d, b);
}
bool linesMeet(const Nodes& a, const Nodes& b)
{
    for (size_t i = 0; i < a.size(); ++i) {
        for (size_t j = 0; j < b.size(); ++j) {
            if (meet(a[i], a[i ? i - 1 : 0], b[j], b[j ? j - 1 : 0]))
                return true;
        }
    }
    return false;
}
Nodes closed(Nodes ring)
{
    ring.push_back(ring.front());
    return ring;
}

enum class Where { OUT, BORDER, IN };

Where locate(const Nodes& ring, const Node& node)
{
    int turns = 0;
    for (size_t i = 0; i < ring.size(); ++i) {
        const Node& a = ring[i];
        const Node& b = ring[(i + 1) % ring.size()];
        if (isOn(a, b, node))
            return Where::BORDER;
        if (a.y <= node.y && node.y < b.y && turn(a, b, node) > 0)
            ++turns;
        if (b.y <= node.y && node.y < a.y && turn(a, b, node) < 0)
            --turns;
    }
    return turns ? Where::IN : Where::OUT;
}
bool anyIn(const Nodes& ring, const Nodes& nodes)
{
    return std::any_of(nodes.begin(), nodes.end(),
                       [&ring](const Node& node) { return locate(ring, node) != Where::OUT; });
}

/// A squared distance: over / under.
struct Distance {
    qint64 over = std::numeric_limits<int>::max();
    qint64 under = 1;

    bool operator<(const Distance& other) const { return over * other.under < other.over * under; }
};

Distance distance(const Nodes& line, const Node& node)
{
    const auto dot = [](const Node& o, const Node& a, const Node& b) {
        return (a.x - o.x) * (b.x - o.x) + (a.y - o.y) * (b.y - o.y);
    };
    Distance nearest;
    for (size_t i = 0; i < line.size(); ++i) {
        const Node& a = line[i ? i - 1 : 0];
        const Node& b = line[i];
        const qint64 along = dot(a, b, node);
        const qint64 length = dot(a, b, b);
        const qint64 cross = turn(a, b, node);
        nearest = std::min(nearest, along <= 0        ? Distance{dot(a, node, node), 1}
                                    : along >= length ? Distance{dot(b, node, node), 1}
                                                      : Distance{cross * cross, length});
    }
    return nearest;
}

/// Where the lattice lies among the doubles; squares vanish in the third and overflow in the last
/// two.
struct Frame {
    double offset;
    double step;

    double at(qint64 i) const { return offset + static_cast<double>(i) * step; }
    QPointF point(const Node& node) const { return {at(node.x), at(node.y)}; }
    template <class Vector = QVector<HbgVector2D>>
    Vector vector(const Nodes& nodes) const
    {
        Vector result;
        for (const Node& node : nodes)
            result.append({at(node.x), at(node.y)});
        return result;
    }
};
const Frame FRAMES[] = {
    {0., 1.}, {1e7, 0x1p-10}, {0., 0x1p-660}, {0., 0x1p990}, {-0x1p995, 0x1p989}};

class Lattice
{
public:
    explicit Lattice(unsigned seed)
        : m_random(seed)
    {
    }
    int number(int low, int high)
    {
        return std::uniform_int_distribution<int>(low, high)(m_random);
    }
    Node node(int reach) { return {number(-reach, reach), number(-reach, reach)}; }
    Nodes nodes(int count, const Node& middle, int reach)
    {
        Nodes result;
        for (int i = 0; i < count; ++i) {
            const Node node = this->node(reach);
            result.push_back({middle.x + node.x, middle.y + node.y});
        }
        return result;
    }
    /// Random corners that make a ring.
    Nodes ring(int count, const Node& middle, int reach)
    {
        Nodes result = nodes(count, middle, reach);
        result.push_back(middle);
        result.push_back({middle.x + 1, middle.y});
        result.push_back({middle.x, middle.y + 1});
        return result;
    }
    /// Corners all around at a distance of 4 to 8: the square of 2 around the middle is within.
    Nodes star(const Node& middle)
    {
        static const Node WAYS[] = {{1, 0},  {1, 1},   {0, 1},  {-1, 1},
                                    {-1, 0}, {-1, -1}, {0, -1}, {1, -1}};
        Nodes result;
        for (const Node& way : WAYS) {
            const int radius = number(4, 8);
            result.push_back({middle.x + radius * way.x, middle.y + radius * way.y});
        }
        return result;
    }

private:
    std::mt19937 m_random;
};

template <class Shapes, class Test>
Ranks bruteForce(const Shapes& shapes, const Test& test)
{
    Ranks ranks;
    for (size_t rank = 0; rank < shapes.size(); ++rank) {
        if (test(shapes[rank]))
            ranks.add(static_cast<int>(rank));
    }
    return ranks;
}

/// Picks by a rectangle, and by lassos from such within a hole to such around everything.
template <class Set, class Shapes, class Meets>
void comparePicks(const Set& set, const Shapes& shapes, const Frame& frame, const Node& node,
                  const Node& other, const Nodes& lasso, const Meets& meets)
{
    const Nodes corners = {node, {other.x, node.y}, other, {node.x, other.y}};
    EXPECT_EQ(set.rectangleToRanks({frame.point(node), frame.point(other)}),
              bruteForce(shapes, [&](const auto& shape) { return meets(shape, corners); }));
    EXPECT_EQ(set.polygonToRanks(frame.vector<QVector<QPointF>>(lasso)),
              bruteForce(shapes, [&](const auto& shape) { return meets(shape, lasso); }));
}

/// Lines of none to forty points, some far too long, some closed by type (the oracle's line then
/// has its first point again).
std::vector<Nodes> randomLines(Lattice& lattice, const Frame& frame, HbgGeomPolylineSet& set)
{
    std::vector<Nodes> lines;
    for (int i = 0; i < 150; ++i) {
        const int count = lattice.number(0, 9) ? lattice.number(0, 5) : 40;
        Nodes line = lattice.nodes(count, lattice.node(24), lattice.number(0, 9) ? 4 : 24);
        const bool isClosed = count > 0 && lattice.number(0, 2) == 0;
        set.append(HbgGeomPolyline(frame.vector(line),
                                   isClosed ? HbgEPolylineType::CLOSED : HbgEPolylineType::OPEN));
        lines.push_back(isClosed ? closed(line) : line);
    }
    return lines;
}

struct Area {
    Nodes contour;
    Nodes hole; // in the contour; may be none

    bool holds(const Node& node) const
    {
        return locate(contour, node) != Where::OUT &&
               (hole.empty() || locate(hole, node) != Where::IN);
    }
    bool meets(const Nodes& ring) const
    {
        return linesMeet(closed(contour), closed(ring)) || anyIn(ring, contour) ||
               std::any_of(ring.begin(), ring.end(),
                           [this](const Node& node) { return holds(node); }) ||
               (!hole.empty() && linesMeet(closed(hole), closed(ring)));
    }
};

std::vector<Area> randomAreas(Lattice& lattice, const Frame& frame, HbgGeomPolygonSet& set)
{
    std::vector<Area> areas;
    for (int i = 0; i < 60; ++i) {
        const Node middle = lattice.node(24);
        Area area;
        if (lattice.number(0, 2))
            area = {lattice.star(middle),
                    lattice.number(0, 1) ? lattice.ring(lattice.number(0, 4), middle, 2) : Nodes()};
        else // crossing itself; at times large enough for a locator of its own
            area.contour = lattice.ring(lattice.number(0, 9) ? 4 : 80, middle, 9);
        HbgGeomPolygon polygon(frame.vector(area.contour));
        EXPECT_EQ(polygon.addHole(0, frame.vector(area.hole)), !area.hole.empty());
        set.append(polygon);
        areas.push_back(area);
    }
    return areas;
}
} // namespace

class HbgShapePick : public testing::TestWithParam<int>
{
protected:
    const Frame frame = FRAMES[GetParam()];
};
INSTANTIATE_TEST_SUITE_P(Frames, HbgShapePick, testing::Range(0, int(std::size(FRAMES))));

TEST_P(HbgShapePick, findsPolylinesAsASearchOfAll)
{
    Lattice lattice(11);
    HbgGeomPolylineSet set;
    std::vector<Nodes> lines = randomLines(lattice, frame, set);
    for (int i = 0; i < 400; ++i) {
        SCOPED_TRACE(i);
        const Node node = lattice.node(30);
        const int tolerance = lattice.number(0, 12);
        const auto isNear = [&](const Nodes& line) {
            return !(Distance{tolerance * tolerance, 1} < distance(line, node));
        };
        EXPECT_EQ(set.pointToRanks(frame.point(node), tolerance * frame.step),
                  bruteForce(lines, isNear));
        const auto nearest =
            std::min_element(lines.begin(), lines.end(), [&](const Nodes& a, const Nodes& b) {
                return distance(a, node) < distance(b, node);
            });
        EXPECT_EQ(set.pointToRank(frame.point(node), tolerance * frame.step),
                  isNear(*nearest) ? nearest - lines.begin() : -1);

        const Node other{node.x + lattice.number(-9, 9), node.y + lattice.number(-9, 9)};
        comparePicks(set, lines, frame, node, other,
                     lattice.ring(i % 2 ? i % 9 : i / 5, node, i % 30),
                     [](const Nodes& line, const Nodes& ring) {
                         return anyIn(ring, line) || linesMeet(line, closed(ring));
                     });
        // Edits between the picks: the index must not outlive them.
        if (i % 40 == 0) {
            EXPECT_TRUE(set.remove(i / 10));
            lines.erase(lines.begin() + i / 10);
        }
    }
}

TEST_P(HbgShapePick, findsPolygonsAsASearchOfAll)
{
    Lattice lattice(12);
    HbgGeomPolygonSet set;
    std::vector<Area> areas = randomAreas(lattice, frame, set);
    for (int i = 0; i < 400; ++i) {
        SCOPED_TRACE(i);
        const Node node = lattice.node(30);
        const Ranks holding =
            bruteForce(areas, [&node](const Area& area) { return area.holds(node); });
        EXPECT_EQ(set.pointToRanks(frame.point(node)), holding);
        EXPECT_EQ(set.pointToRank(frame.point(node)), holding.isEmpty() ? -1 : holding.getMin());
        const HbgGeomPolygon& one = set.getPolygon(i % set.getCount());
        EXPECT_EQ(one.contains(frame.point(node)), holding.contains(i % set.getCount()));

        const Node other{node.x + lattice.number(-3, 9), node.y + lattice.number(-3, 9)};
        comparePicks(set, areas, frame, node, other,
                     lattice.ring(i % 2 ? i % 9 : i / 5, node, i % 30),
                     [](const Area& area, const Nodes& ring) { return area.meets(ring); });
        if (i % 40 == 0) {
            EXPECT_TRUE(set.insert(0, set.getPolygon(9)));
            areas.insert(areas.begin(), Area(areas[9]));
        }
    }
}

TEST(HbgShapePick, takesTheLowestOfEqualRanks)
{
    HbgGeomPolylineSet lines;
    lines.append(HbgGeomPolyline());
    // The border of two shapes, drawn both ways, and lines that begin in its nearest place.
    const HbgVector2D a(0.1, 0.2), b(7.3, 3.9), foot(0.3, 5.7);
    lines.append(HbgGeomPolyline(QVector<HbgVector2D>{b, a}));
    lines.append(HbgGeomPolyline(QVector<HbgVector2D>{a, b}));
    lines.append(HbgGeomPolyline(QVector<HbgVector2D>{foot, {-9., 5.7}}));
    lines.append(HbgGeomPolyline(QVector<HbgVector2D>{foot}));
    const double infinity = std::numeric_limits<double>::infinity();
    for (double x = -2.; x < 10.; x += 0.37)
        EXPECT_NE(lines.pointToRank({x, x / 3.}, infinity), 2) << x;
    EXPECT_EQ(lines.pointToRank({0.7, 6.1}, infinity), 3);
    EXPECT_EQ(lines.pointToRank({1e250, 0.}, infinity), 1); // all are equally far from there
    EXPECT_EQ(lines.pointToRank({1e250, 0.}, 1e249), -1);
}

TEST(HbgShapePick, findsNothingWithoutAPlace)
{
    const double nan = std::nan("");
    const double infinity = std::numeric_limits<double>::infinity();
    HbgGeomPolylineSet lines;
    EXPECT_EQ(lines.pointToRank({0., 0.}, infinity), -1);
    EXPECT_TRUE(lines.rectangleToRanks({-1., -1., 2., 2.}).isEmpty());
    lines.append(HbgGeomPolyline(QVector<HbgVector2D>{{0., 0.}, {1., 1.}}));
    HbgGeomPolygonSet polygons;
    EXPECT_EQ(polygons.pointToRank({0., 0.}), -1);
    polygons.append(HbgGeomPolygon()); // lies nowhere
    polygons.append(HbgGeomPolygon({{-1., -1.}, {1., -1.}, {0., 2.}}));
    EXPECT_EQ(polygons.pointToRank({0., 0.}), 1);

    for (const QPointF& place : {QPointF(nan, 0.), QPointF(0., infinity)}) {
        EXPECT_EQ(lines.pointToRank(place, 1.), -1);
        EXPECT_TRUE(lines.pointToRanks(place, infinity).isEmpty());
        EXPECT_EQ(polygons.pointToRank(place), -1);
        EXPECT_TRUE(polygons.pointToRanks(place).isEmpty());
        const QRectF rectangle(place, QPointF(1., 1.));
        EXPECT_TRUE(lines.rectangleToRanks(rectangle).isEmpty());
        EXPECT_TRUE(polygons.rectangleToRanks(rectangle).isEmpty());
        const QVector<QPointF> lasso{{-1., -1.}, {1., -1.}, place};
        EXPECT_TRUE(lines.polygonToRanks(lasso).isEmpty());
        EXPECT_TRUE(polygons.polygonToRanks(lasso).isEmpty());
    }
    EXPECT_EQ(lines.pointToRank({0., 0.}, -1.), -1);
    EXPECT_TRUE(lines.pointToRanks({0., 0.}, nan).isEmpty());
    EXPECT_TRUE(lines.polygonToRanks({{-1., 0.}, {1., 0.}}).isEmpty());
}
