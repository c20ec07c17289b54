#include "HbgRingLocator.h"

#include <algorithm>

static HbgVector2D placeOf(const QPointF& corner)
{
    return {corner.x(), corner.y()};
}

static HbgVector2D placeOf(const HbgVector2D& corner)
{
    return corner;
}

HbgRingLocator::HbgRingLocator(const QVector<QPointF>& corners)
{
    build(corners);
}

HbgRingLocator::HbgRingLocator(const QVector<HbgVector2D>& corners)
{
    build(corners);
}

template <class Corner>
void HbgRingLocator::build(const QVector<Corner>& corners)
{
    std::vector<HbgSegment> edges;
    edges.reserve(static_cast<size_t>(corners.size()));
    HbgVector2D from = placeOf(corners.last());
    m_box = HbgRectangle::of(from, from);
    for (const Corner& corner : corners) {
        const HbgVector2D to = placeOf(corner);
        m_box.unite(to);
        edges.push_back({from, to});
        from = to;
    }
    fillSlabs(edges);
}

int HbgRingLocator::slab(double y) const
{
    // Written so that a ring without height, or one too high for a double, has one slab in use.
    const double part = (y - m_box.low.y) / (m_box.high.y - m_box.low.y) * m_slabCount;
    return part > 0. ? static_cast<int>(std::min(part, m_slabCount - 1.)) : 0;
}

void HbgRingLocator::fillSlabs(const std::vector<HbgSegment>& edges)
{
    const auto forEachSlab = [this](const HbgSegment& edge, const auto& visit) {
        const int last = slab(std::max(edge.a.y, edge.b.y));
        for (int i = slab(std::min(edge.a.y, edge.b.y)); i <= last; ++i)
            visit(static_cast<size_t>(i));
    };
    // Long edges reach into many slabs; fewer slabs keep the memory a multiple of the edges.
    const auto countEntries = [this, &edges] {
        size_t entries = 0;
        for (const HbgSegment& edge : edges)
            entries += static_cast<size_t>(slab(std::max(edge.a.y, edge.b.y)) -
                                           slab(std::min(edge.a.y, edge.b.y)) + 1);
        return entries;
    };
    m_slabCount = static_cast<int>(std::clamp<size_t>(edges.size(), 1, 1 << 16));
    while (m_slabCount > 1 && countEntries() > 8 * edges.size())
        m_slabCount /= 2;

    m_first.assign(static_cast<size_t>(m_slabCount) + 1, 0);
    for (const HbgSegment& edge : edges)
        forEachSlab(edge, [this](size_t i) { ++m_first[i + 1]; });
    for (size_t i = 1; i < m_first.size(); ++i)
        m_first[i] += m_first[i - 1];
    m_edges.resize(m_first.back());
    std::vector<size_t> next(m_first.begin(), m_first.end() - 1);
    for (const HbgSegment& edge : edges)
        forEachSlab(edge, [this, &next, &edge](size_t i) { m_edges[next[i]++] = edge; });
}

HbgWinding HbgRingLocator::locate(const HbgVector2D& place) const
{
    HbgWinding winding(place);
    if (!m_box.contains(place))
        return winding;
    const auto at = static_cast<size_t>(slab(place.y));
    for (size_t i = m_first[at]; i < m_first[at + 1]; ++i)
        winding.add(m_edges[i].a, m_edges[i].b);
    return winding;
}
