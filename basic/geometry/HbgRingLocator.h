#pragma once

#include <basic/geometry/HbgBox.h>

#include <QtCore/QPointF>
#include <QtCore/QVector>

#include <vector>

/// Tells for many places whether they lie in one ring (closed implicitly, three corners or more,
/// all finite). The border is in, to rounding; a ring that crosses itself holds what it winds
/// around.
///
/// The ring is cut into horizontal slabs, so that a place looks at the few edges beside it only: a
/// lasso of a thousand corners over a million points would take seconds otherwise. Memory is a
/// small multiple of the edges. Never changes once built; any thread.
class HbgRingLocator
{
public:
    explicit HbgRingLocator(const QVector<QPointF>& corners);

    const HbgBox& getBoundingBox() const { return m_box; }
    bool contains(double x, double y) const;

private:
    struct Edge {
        double x1, y1, x2, y2;
    };

    int slab(double y) const;
    void fillSlabs(const std::vector<Edge>& edges);

    HbgBox m_box;
    double m_low = 0.;
    double m_high = 0.;
    int m_slabCount = 1;
    std::vector<size_t> m_first; // rank in m_edges of the first edge of each slab, and the end
    std::vector<Edge> m_edges;   // of each slab, those that reach into it
};
