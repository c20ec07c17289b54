#include <basic/geometry/HbgSparseGrid.h>

#include <basic/base/HbbGlobal.h>
#include <basic/error/HbeProgrammingError.h>

#include <algorithm>

static const char* const SOURCE = "geometry/HbgSparseGrid";

/// Fewer anchors take less memory, more of them shorten the walk from one to a cell.
static constexpr int INTERVALS_PER_ANCHOR = 16;

HbgSparseGrid::HbgSparseGrid(const HbgEDimension& dimension)
    : m_grid(dimension)
{
}

HbgSparseGrid::HbgSparseGrid(const HbgGeomGrid& grid, const HbiIntervalIntSmallO64Disjoint& nodes)
    : m_grid(grid)
{
    const qint64 count = grid.getNodeCount();
    if (count == HbbGlobal::I_FFFF)
        return;
    const HbiIntervalIntSmallO64 all(0, count - 1);
    if (nodes.isEmpty() || (nodes.getMin() >= 0 && nodes.getMax() < count))
        m_nodes = nodes; // shared
    else
        m_nodes = nodes.intersected(all);
}

qint64 HbgSparseGrid::getCellCount() const
{
    return m_nodes.getCount();
}

bool HbgSparseGrid::hasCells() const
{
    return !m_nodes.isEmpty();
}

bool HbgSparseGrid::containsNode(qint64 node) const
{
    return m_nodes.contains(node);
}

std::shared_ptr<const std::vector<HbgSparseGrid::Anchor>> HbgSparseGrid::anchors() const
{
    return m_anchors.get([this] {
        auto anchors = std::make_shared<std::vector<Anchor>>();
        qint64 cell = 0;
        int skipped = 0;
        for (const HbiIntervalIntSmallO64& interval : m_nodes.intervals()) {
            if (skipped == 0)
                anchors->push_back({interval.getMin(), cell});
            skipped = (skipped + 1) % INTERVALS_PER_ANCHOR;
            cell += interval.getLength();
        }
        return anchors;
    });
}

template <class Visitor>
void HbgSparseGrid::visitIntervals(qint64 cell, const Visitor& visit) const
{
    const auto found = anchors();
    const auto above = std::partition_point(
        found->begin(), found->end(), [cell](const Anchor& anchor) { return anchor.cell <= cell; });
    const Anchor& anchor = *std::prev(above);
    const auto intervals = m_nodes.intervals();
    auto interval = intervals.begin();
    interval.seek(anchor.node);
    qint64 skipped = cell - anchor.cell;
    for (; skipped >= interval->getLength(); ++interval)
        skipped -= interval->getLength();
    for (; !interval.isEnd() && visit(interval->getMin() + skipped, interval->getMax()); ++interval)
        skipped = 0;
}

qint64 HbgSparseGrid::getCell(qint64 node) const
{
    if (!m_nodes.contains(node))
        return -1;
    const auto found = anchors();
    const auto above = std::partition_point(
        found->begin(), found->end(), [node](const Anchor& anchor) { return anchor.node <= node; });
    const Anchor& anchor = *std::prev(above);
    const auto intervals = m_nodes.intervals();
    auto interval = intervals.begin();
    interval.seek(anchor.node);
    qint64 cell = anchor.cell;
    for (; interval->getMax() < node; ++interval)
        cell += interval->getLength();
    return cell + (node - interval->getMin());
}

qint64 HbgSparseGrid::getNode(qint64 cell) const
{
    if (cell < 0 || cell >= getCellCount())
        HBE_PROGRAMMING_ERROR(SOURCE, QStringLiteral("Cell out of the sparse grid."));
    qint64 node = -1;
    visitIntervals(cell, [&node](qint64 first, qint64) {
        node = first;
        return false;
    });
    return node;
}

HbgVector3D HbgSparseGrid::getPosition(qint64 cell) const
{
    return m_grid.getPosition(getNode(cell));
}

void HbgSparseGrid::getPositions(qint64 first, qint64 count, double* x, double* y, double* z) const
{
    if (count <= 0)
        return;
    if (first < 0 || first >= getCellCount() || count > getCellCount() - first)
        HBE_PROGRAMMING_ERROR(SOURCE, QStringLiteral("Cells out of the sparse grid."));
    qint64 done = 0;
    visitIntervals(first, [&](qint64 firstNode, qint64 lastNode) {
        const qint64 length = std::min(lastNode - firstNode + 1, count - done);
        m_grid.getPositions(firstNode, length, x + done, y + done, z ? z + done : nullptr);
        done += length;
        return done < count;
    });
}

bool HbgSparseGrid::addCell(qint64 node)
{
    if (!m_grid.containsRank(node) || m_nodes.contains(node))
        return false;
    m_nodes.add(node);
    m_anchors.drop();
    return true;
}

bool HbgSparseGrid::removeCell(qint64 node)
{
    if (!m_nodes.contains(node))
        return false;
    m_nodes.subtract(HbiIntervalIntSmallO64(node, node));
    m_anchors.drop();
    return true;
}

HbgBox HbgSparseGrid::getBoundingBox() const
{
    HbgBox box;
    if (!isValid())
        return box;
    const auto uniteBlock = [this, &box](const HbgGeomGrid::Indices& from, int nx, int ny, int nz) {
        for (const int x : {from.x, from.x + nx - 1}) {
            for (const int y : {from.y, from.y + ny - 1}) {
                for (const int z : {from.z, from.z + nz - 1})
                    box.unite(m_grid.getPosition(HbgGeomGrid::Indices{x, y, z}));
            }
        }
    };
    const qint64 row = m_grid.getNx();
    const qint64 layer = row * m_grid.getNy();
    for (const HbiIntervalIntSmallO64& interval : m_nodes.intervals()) {
        // An interval is at most five blocks: a part of a row, rows, layers, rows, a part of a row.
        // The extremes of a block are at its corners, to the last bit: rounding keeps the order.
        for (qint64 node = interval.getMin(); node <= interval.getMax();) {
            const HbgGeomGrid::Indices at = m_grid.getIndices(node);
            const qint64 left = interval.getMax() - node + 1;
            if (at.x != 0 || left < row) {
                const qint64 nx = std::min(row - at.x, left);
                uniteBlock(at, static_cast<int>(nx), 1, 1);
                node += nx;
            } else if (at.y != 0 || left < layer) {
                const qint64 ny = std::min<qint64>(m_grid.getNy() - at.y, left / row);
                uniteBlock(at, m_grid.getNx(), static_cast<int>(ny), 1);
                node += ny * row;
            } else {
                const qint64 nz = left / layer;
                uniteBlock(at, m_grid.getNx(), m_grid.getNy(), static_cast<int>(nz));
                node += nz * layer;
            }
        }
    }
    return box;
}

bool HbgSparseGrid::operator==(const HbgSparseGrid& other) const
{
    return m_grid == other.m_grid && m_nodes == other.m_nodes;
}
