#include <basic/error/HbeProgrammingError.h>
#include <basic/geometry/HbgSparseGrid.h>

#include <limits>

namespace
{
struct Case {
    const char* name;
    HbgGeomGrid grid;
    int share; // of the nodes that are cells, in percent
    int run;   // the longest run of nodes taken or left at once
};

const Case CASES[] = {
    {"scattered 2D", {57, 31, {1e7, 5e6}, 0.001, -0.002, 31.}, 30, 1},
    {"runs 3D", {13, 11, 9, {-1e7, 0., 100.}, 25., 10., -0.5, -72.}, 50, 60},
    {"long runs 3D", {7, 5, 40, {0., 0., 0.}, 1., 2., 3., 135.}, 60, 400},
    {"one row", {500, 1, {0., 0.}, 1., 1., 90.}, 50, 5},
    {"one column", {1, 500, {0., 0.}, 1., 1., 0.}, 50, 5},
    {"everything", {20, 10, 3, {0., 0., 0.}, 1., 1., 1., 45.}, 100, 1},
    {"nothing", {20, 10, 3, {0., 0., 0.}, 1., 1., 1., 45.}, 0, 1},
};

std::vector<qint64> randomNodes(const Case& test, std::mt19937& random)
{
    std::vector<qint64> nodes;
    for (qint64 node = 0; node < test.grid.getNodeCount();) {
        const bool isTaken = static_cast<int>(random() % 100) < test.share;
        const qint64 end = node + 1 + random() % static_cast<unsigned>(test.run);
        for (; node < std::min(end, test.grid.getNodeCount()); ++node) {
            if (isTaken)
                nodes.push_back(node);
        }
    }
    return nodes;
}

HbiIntervalIntSmallO64Disjoint setOf(const std::vector<qint64>& nodes)
{
    HbiIntervalIntSmallO64Disjoint set;
    for (const qint64 node : nodes)
        set.add(node);
    return set;
}

/// Compares with the plain list of nodes, one by one.
void expectCells(const HbgSparseGrid& sparse, const std::vector<qint64>& nodes)
{
    const HbgGeomGrid& grid = sparse.getGrid();
    ASSERT_EQ(sparse.getCellCount(), static_cast<qint64>(nodes.size()));
    EXPECT_EQ(sparse.hasCells(), !nodes.empty());
    std::vector<qint64> cellAt(static_cast<size_t>(grid.getNodeCount()), -1);
    HbgBox box;
    for (size_t cell = 0; cell < nodes.size(); ++cell) {
        cellAt[static_cast<size_t>(nodes[cell])] = static_cast<qint64>(cell);
        EXPECT_EQ(sparse.getNode(static_cast<qint64>(cell)), nodes[cell]);
        EXPECT_EQ(sparse.getPosition(static_cast<qint64>(cell)), grid.getPosition(nodes[cell]));
        box.unite(grid.getPosition(nodes[cell]));
    }
    EXPECT_EQ(sparse.getBoundingBox(), box);
    for (qint64 node = 0; node < grid.getNodeCount(); ++node) {
        EXPECT_EQ(sparse.getCell(node), cellAt[static_cast<size_t>(node)]);
        EXPECT_EQ(sparse.containsNode(node), sparse.getCell(node) >= 0);
    }
    std::vector<double> x(nodes.size()), y(nodes.size()), z(nodes.size());
    for (size_t first = 0; first < nodes.size(); first = 2 * first + 1) {
        const size_t count = std::min<size_t>(nodes.size() - first, 300);
        sparse.getPositions(static_cast<qint64>(first), static_cast<qint64>(count), x.data(),
                            y.data(), z.data());
        for (size_t i = 0; i < count; ++i)
            EXPECT_EQ(HbgVector3D(x[i], y[i], z[i]), grid.getPosition(nodes[first + i]));
    }
}
} // namespace

TEST(HbgSparseGrid, countsItsCellsAsAListOfThemDoes)
{
    std::mt19937 random(11);
    for (const Case& test : CASES) {
        SCOPED_TRACE(test.name);
        std::vector<qint64> nodes = randomNodes(test, random);
        HbgSparseGrid sparse(test.grid, setOf(nodes));
        expectCells(sparse, nodes);

        // Edits between the look-ups: what was counted must not outlive them.
        const HbgSparseGrid before = sparse;
        for (int i = 0; i < 20; ++i) {
            const qint64 node = random() % test.grid.getNodeCount();
            const auto at = std::lower_bound(nodes.begin(), nodes.end(), node);
            const bool isCell = at != nodes.end() && *at == node;
            EXPECT_EQ(sparse.addCell(node), !isCell);
            if (isCell) {
                EXPECT_TRUE(sparse.removeCell(node));
                EXPECT_FALSE(sparse.removeCell(node));
                nodes.erase(at);
            } else {
                nodes.insert(at, node);
            }
            EXPECT_NE(sparse, before);
            EXPECT_EQ(sparse.getCell(nodes.empty() ? 0 : nodes.back()),
                      static_cast<qint64>(nodes.size()) - 1);
        }
        expectCells(sparse, nodes);
    }
}

TEST(HbgSparseGrid, leavesOutAndRefusesWhatIsOutside)
{
    const HbgGeomGrid grid(4, 5, {0., 0.}, 1., 1.);
    HbgSparseGrid sparse(grid, HbiIntervalIntSmallO64(-10, 2));
    EXPECT_EQ(sparse.getCellCount(), 3);
    EXPECT_EQ(HbgSparseGrid(grid, HbiIntervalIntSmallO64(18, 1000)).getCellCount(), 2);
    for (const qint64 node : {qint64(-1), qint64(20), std::numeric_limits<qint64>::max()}) {
        EXPECT_FALSE(sparse.addCell(node));
        EXPECT_FALSE(sparse.removeCell(node));
        EXPECT_EQ(sparse.getCell(node), -1);
    }
    double x[3], y[3];
    sparse.getPositions(0, 3, x, y, nullptr);
    EXPECT_EQ(x[2], 2.);
    EXPECT_THROW(sparse.getNode(3), HbeProgrammingError);
    EXPECT_THROW(sparse.getPosition(-1), HbeProgrammingError);
    EXPECT_THROW(sparse.getPositions(1, 3, x, y, nullptr), HbeProgrammingError);

    const int most = std::numeric_limits<int>::max();
    const HbgGeomGrid uncounted(most, most, most, {0., 0., 0.}, 1., 1., 1.);
    EXPECT_FALSE(HbgSparseGrid(uncounted, HbiIntervalIntSmallO64(0, 5)).hasCells());
    EXPECT_FALSE(HbgSparseGrid().isValid());
    EXPECT_TRUE(HbgSparseGrid(HbgEDimension::DIM_3D).getBoundingBox().isEmpty());
}

TEST(HbgSparseGrid, goesBeyond32BitsWithoutWalkingItsCells)
{
    const qint64 side = 100000;
    const HbgGeomGrid grid(100000, 100000, 100, {5e5, 6e6, 0.}, 2., 2., 1., 20.);
    HbgSparseGrid sparse(grid, HbiIntervalIntSmallO64(0, grid.getNodeCount() - 1));
    EXPECT_TRUE(sparse.removeCell(side * side * 50 + 7));
    EXPECT_EQ(sparse.getCellCount(), side * side * 100 - 1);
    EXPECT_EQ(sparse.getBoundingBox(), grid.getBoundingBox());
    EXPECT_EQ(sparse.getNode(side * side * 50 + 7), side * side * 50 + 8);
    EXPECT_EQ(sparse.getCell(grid.getNodeCount() - 1), sparse.getCellCount() - 1);
}
