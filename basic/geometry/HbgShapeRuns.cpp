#include "HbgShapeRuns.h"

#include <basic/geometry/HbgGeomPolygon.h>
#include <basic/geometry/HbgGeomPolyline.h>

#include <cmath>

/// Segments in a run at most: fewer make a larger tree, more make more tests in vain.
static constexpr size_t RUN_LENGTH = 24;

HbgShapeRuns::HbgShapeRuns(const QVector<HbgGeomPolyline>& polylines)
{
    size_t count = 0;
    for (const HbgGeomPolyline& polyline : polylines)
        count += static_cast<size_t>(polyline.getPointCount()) + 1;
    m_points.reserve(count);

    std::vector<Chain> chains;
    chains.reserve(static_cast<size_t>(polylines.size()));
    for (int shape = 0; shape < polylines.size(); ++shape) {
        const QVector<HbgVector3D>& points = polylines[shape].getPoints();
        for (const HbgVector3D& point : points)
            m_points.push_back(point.toVector2D());
        if (points.size() > 1 && polylines[shape].getType() == HbgEPolylineType::CLOSED)
            m_points.push_back(points.first().toVector2D());
        addChain(chains, shape);
    }
    fillRuns(chains);
}

HbgShapeRuns::HbgShapeRuns(const QVector<HbgGeomPolygon>& polygons)
{
    size_t count = 0;
    for (const HbgGeomPolygon& polygon : polygons)
        count += static_cast<size_t>(polygon.getPointCount()) + 1;
    m_points.reserve(count);

    std::vector<Chain> chains;
    chains.reserve(static_cast<size_t>(polygons.size()));
    const auto addRing = [this, &chains](const HbgGeomPolygon::Ring& ring, int shape) {
        m_points.insert(m_points.end(), ring.begin(), ring.end());
        m_points.push_back(ring.first());
        addChain(chains, shape);
    };
    for (int shape = 0; shape < polygons.size(); ++shape) {
        const HbgGeomPolygon& polygon = polygons[shape];
        for (int contour = 0; contour < polygon.getContourCount(); ++contour) {
            addRing(polygon.getContour(contour), shape);
            for (int hole = 0; hole < polygon.getHoleCount(contour); ++hole)
                addRing(polygon.getHole(contour, hole), shape);
        }
    }
    fillRuns(chains);
}

void HbgShapeRuns::addChain(std::vector<Chain>& chains, int shape) const
{
    const size_t begin = chains.empty() ? 0 : chains.back().end;
    if (m_points.size() > begin)
        chains.push_back({m_points.size(), shape});
}

void HbgShapeRuns::fillRuns(const std::vector<Chain>& chains)
{
    if (chains.empty())
        return;
    HbgRectangle box = HbgRectangle::of(m_points.front(), m_points.front());
    for (const HbgVector2D& point : m_points)
        box.unite(point);
    // A run is not much larger than its share of the ground: long segments stay alone, so that a
    // frame around everything is not looked at wherever one picks.
    const size_t expected = m_points.size() / RUN_LENGTH + chains.size();
    const HbgVector2D reach = 4. / std::sqrt(static_cast<double>(expected)) * (box.high - box.low);

    m_runs.reserve(expected);
    size_t first = 0;
    for (const Chain& chain : chains) {
        cut(first, chain.end - 1, chain.shape, reach);
        first = chain.end;
    }
}

void HbgShapeRuns::cut(size_t first, size_t last, int shape, const HbgVector2D& reach)
{
    const size_t segments = last - first;
    const size_t parts = std::max<size_t>(1, (segments + RUN_LENGTH - 1) / RUN_LENGTH);
    const size_t length = (segments + parts - 1) / parts; // of about the same length each
    do {
        HbgRectangle box = HbgRectangle::of(m_points[first], m_points[first]);
        size_t at = first;
        while (at < last && at - first < length) {
            HbgRectangle grown = box;
            grown.unite(m_points[at + 1]);
            if (at > first &&
                (grown.high.x - grown.low.x > reach.x || grown.high.y - grown.low.y > reach.y))
                break;
            box = grown;
            ++at;
        }
        m_runs.push_back({box, first, static_cast<int>(at - first), shape});
        first = at;
    } while (first < last);
}
