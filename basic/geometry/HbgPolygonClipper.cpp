#include "HbgPolygonClipper.h"
#include "HbgBoostGeometry.h"

#include <algorithm>
#include <cmath>

namespace bg = boost::geometry;

using Polygon = bg::model::polygon<HbgVector2D>;

namespace
{

/// A power of two that brings huge coordinates to where products of four do not overflow; 1 for all
/// others. Multiplying by it rounds nothing.
double scaleOf(const HbgBox& box)
{
    const double largest = std::max({std::abs(box.getXMin()), std::abs(box.getXMax()),
                                     std::abs(box.getYMin()), std::abs(box.getYMax())});
    return largest > 1e60 ? std::ldexp(1., -std::ilogb(largest)) : 1.;
}

class Clipper
{
public:
    Clipper(const HbgBox& box, double scale)
        : m_scale(scale)
        , m_box(box)
    {
    }

    void add(const HbgGeomPolygon& polygon, int contour)
    {
        Polygon part;
        fill(part.outer(), polygon.getContour(contour));
        part.inners().resize(static_cast<size_t>(polygon.getHoleCount(contour)));
        for (int hole = 0; hole < polygon.getHoleCount(contour); ++hole)
            fill(part.inners()[static_cast<size_t>(hole)], polygon.getHole(contour, hole));
        bg::correct(part);

        const HbgRectangle box{{m_box.getXMin() * m_scale, m_box.getYMin() * m_scale},
                               {m_box.getXMax() * m_scale, m_box.getYMax() * m_scale}};
        bg::model::multi_polygon<Polygon> pieces;
        try {
            bg::intersection(part, box, pieces);
        } catch (const bg::exception&) {
            return; // crossing rings that the overlay cannot follow
        }
        for (const Polygon& piece : pieces)
            addPiece(piece);
    }
    const HbgGeomPolygon& result() const { return m_result; }

private:
    void fill(Polygon::ring_type& ring, const HbgGeomPolygon::Ring& corners) const
    {
        ring.reserve(static_cast<size_t>(corners.size()) + 1);
        for (const HbgVector2D& corner : corners)
            ring.push_back(m_scale * corner);
    }
    HbgGeomPolygon::Ring cornersOf(const Polygon::ring_type& ring) const
    {
        HbgGeomPolygon::Ring corners;
        corners.reserve(static_cast<int>(ring.size()));
        for (const HbgVector2D& corner : ring) // where edges are cut, rounding may leave the box
            corners.append({std::clamp(corner.x / m_scale, m_box.getXMin(), m_box.getXMax()),
                            std::clamp(corner.y / m_scale, m_box.getYMin(), m_box.getYMax())});
        return corners;
    }
    void addPiece(const Polygon& piece)
    {
        if (!m_result.addContour(cornersOf(piece.outer())))
            return; // a sliver without area
        for (const Polygon::ring_type& hole : piece.inners())
            m_result.addHole(m_result.getContourCount() - 1, cornersOf(hole));
    }

    const double m_scale;
    const HbgBox m_box;
    HbgGeomPolygon m_result;
};

bool isWithin(const HbgBox& inner, const HbgBox& outer)
{
    return outer.contains(HbgVector2D(inner.getXMin(), inner.getYMin())) &&
           outer.contains(HbgVector2D(inner.getXMax(), inner.getYMax()));
}

} // namespace

HbgGeomPolygon clipPolygon(const HbgGeomPolygon& polygon, const HbgBox& box)
{
    const HbgBox around = polygon.getBoundingBox();
    if (isWithin(around, box))
        return polygon;
    // Apart, or the box has no area.
    if (!around.intersects(box) || !(box.getXMin() < box.getXMax()) ||
        !(box.getYMin() < box.getYMax()))
        return {};
    HbgBox all = around;
    all.unite(box);
    Clipper clipper(box, scaleOf(all));
    for (int contour = 0; contour < polygon.getContourCount(); ++contour)
        clipper.add(polygon, contour);
    return clipper.result();
}
