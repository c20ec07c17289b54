#pragma once

#include "HbgSegment.h"
#include "HbgWinding.h"

#include <basic/geometry/HbgBox.h>

#include <QtCore/QPointF>
#include <QtCore/QVector>

#include <vector>

/// Tells for many places whether they lie in one ring (closed implicitly, three corners or more,
/// all finite), and for many lines whether they meet it. The border is in, to rounding; a ring that
/// crosses itself holds what it winds around.
///
/// The ring is cut into horizontal slabs, so that a place looks at the few edges beside it only: a
/// lasso of a thousand corners over a million points would take seconds otherwise. Memory is a
/// small multiple of the edges. Never changes once built; any thread.
class HbgRingLocator
{
public:
    explicit HbgRingLocator(const QVector<QPointF>& corners);
    explicit HbgRingLocator(const QVector<HbgVector2D>& corners);

    const HbgRectangle& getBox() const { return m_box; }
    HbgBox getBoundingBox() const { return {m_box.low, m_box.high}; }
    HbgWinding locate(const HbgVector2D& place) const;
    bool contains(double x, double y) const { return locate({x, y}).isIn(); }

    /// Whether an edge that reaches into the area passes the test; an edge may be tested more than
    /// once.
    template <class Test>
    bool hasEdge(const HbgRectangle& area, const Test& test) const
    {
        const auto end = m_first[static_cast<size_t>(slab(area.high.y)) + 1];
        for (auto i = m_first[static_cast<size_t>(slab(area.low.y))]; i < end; ++i) {
            if (m_edges[i].intersects(area) && test(m_edges[i]))
                return true;
        }
        return false;
    }

private:
    template <class Corner>
    void build(const QVector<Corner>& corners);
    int slab(double y) const;
    void fillSlabs(const std::vector<HbgSegment>& edges);

    HbgRectangle m_box;
    int m_slabCount = 1;
    std::vector<size_t> m_first;     // rank in m_edges of the first edge of each slab, and the end
    std::vector<HbgSegment> m_edges; // of each slab, those that reach into it
};
