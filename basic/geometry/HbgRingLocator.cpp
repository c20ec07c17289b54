#include "HbgRingLocator.h"

#include <boost/geometry/core/cs.hpp>
#include <boost/geometry/geometries/point_xy.hpp>
#include <boost/geometry/strategies/cartesian/side_by_triangle.hpp>

#include <algorithm>

using Point = boost::geometry::model::d2::point_xy<double>;

HbgRingLocator::HbgRingLocator(const QVector<QPointF>& corners)
{
    std::vector<Edge> edges;
    edges.reserve(static_cast<size_t>(corners.size()));
    for (int i = 0; i < corners.size(); ++i) {
        const QPointF& a = corners[i];
        const QPointF& b = corners[i + 1 < corners.size() ? i + 1 : 0];
        m_box.unite(HbgVector2D(a.x(), a.y()));
        if (a.x() != b.x() || a.y() != b.y())
            edges.push_back({a.x(), a.y(), b.x(), b.y()});
    }
    m_low = m_box.getYMin();
    m_high = m_box.getYMax();
    fillSlabs(edges);
}

int HbgRingLocator::slab(double y) const
{
    // Written so that a ring without height, or one too high for a double, has one slab in use.
    const double part = (y - m_low) / (m_high - m_low) * m_slabCount;
    return part > 0. ? static_cast<int>(std::min(part, m_slabCount - 1.)) : 0;
}

void HbgRingLocator::fillSlabs(const std::vector<Edge>& edges)
{
    const auto forEachSlab = [this](const Edge& edge, const auto& visit) {
        const int last = slab(std::max(edge.y1, edge.y2));
        for (int i = slab(std::min(edge.y1, edge.y2)); i <= last; ++i)
            visit(static_cast<size_t>(i));
    };
    // Long edges reach into many slabs; fewer slabs keep the memory a multiple of the edges.
    const auto countEntries = [this, &edges] {
        size_t entries = 0;
        for (const Edge& edge : edges)
            entries += static_cast<size_t>(slab(std::max(edge.y1, edge.y2)) -
                                           slab(std::min(edge.y1, edge.y2)) + 1);
        return entries;
    };
    m_slabCount = static_cast<int>(std::clamp<size_t>(edges.size(), 1, 1 << 16));
    while (m_slabCount > 1 && countEntries() > 8 * edges.size())
        m_slabCount /= 2;

    m_first.assign(static_cast<size_t>(m_slabCount) + 1, 0);
    for (const Edge& edge : edges)
        forEachSlab(edge, [this](size_t i) { ++m_first[i + 1]; });
    for (size_t i = 1; i < m_first.size(); ++i)
        m_first[i] += m_first[i - 1];
    m_edges.resize(m_first.back());
    std::vector<size_t> next(m_first.begin(), m_first.end() - 1);
    for (const Edge& edge : edges)
        forEachSlab(edge, [this, &next, &edge](size_t i) { m_edges[next[i]++] = edge; });
}

bool HbgRingLocator::contains(double x, double y) const
{
    using Side = boost::geometry::strategy::side::side_by_triangle<>;
    if (!m_box.contains(HbgVector2D(x, y)))
        return false;
    const auto at = static_cast<size_t>(slab(y));
    int winding = 0;
    for (size_t i = m_first[at]; i < m_first[at + 1]; ++i) {
        const Edge& edge = m_edges[i];
        if (y < std::min(edge.y1, edge.y2) || y > std::max(edge.y1, edge.y2))
            continue;
        if (edge.y1 == edge.y2) {
            if (x >= std::min(edge.x1, edge.x2) && x <= std::max(edge.x1, edge.x2))
                return true;
            continue;
        }
        const int side = Side::apply(Point(edge.x1, edge.y1), Point(edge.x2, edge.y2), Point(x, y));
        if (side == 0)
            return true;
        // Each edge owns its lower end, so that a corner is counted once.
        if (edge.y1 <= y && y < edge.y2)
            winding += side > 0 ? 1 : 0;
        else if (edge.y2 <= y && y < edge.y1)
            winding -= side < 0 ? 1 : 0;
    }
    return winding != 0;
}
