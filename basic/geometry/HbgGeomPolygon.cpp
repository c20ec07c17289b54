#include <basic/geometry/HbgGeomPolygon.h>

#include "HbgCoordinate.h"

#include "HbgPolygonClipper.h"
#include "HbgWinding.h"

#include <basic/base/HbbGlobal.h>
#include <basic/error/HbeProgrammingError.h>
#include <basic/geometry/HbgGeomPolyline.h>

#include <algorithm>
#include <cmath>

static const char* const SOURCE = "geometry/HbgGeomPolygon";

namespace
{

using Ring = HbgGeomPolygon::Ring;

/// The ring without the corners at its end that only close it; empty when it is refused.
Ring acceptedRing(const Ring& ring)
{
    if (!std::all_of(ring.begin(), ring.end(), HbgCoordinate::isVertex))
        return {};
    int count = ring.size();
    while (count > 1 && ring[count - 1] == ring[0])
        --count;
    if (count < 3)
        return {};
    // The first differs from the last now; a third one must differ from both.
    const HbgVector2D& first = ring[0];
    const HbgVector2D& last = ring[count - 1];
    if (std::all_of(ring.begin(), ring.begin() + count,
                    [&](const HbgVector2D& corner) { return corner == first || corner == last; }))
        return {};
    return count == ring.size() ? ring : ring.mid(0, count);
}

/// Relative to a corner of the ring, so that an area far from the origin keeps its digits.
long double ringArea(const Ring& ring)
{
    using Real = long double;
    const HbgVector2D& origin = ring.first();
    Real twice = 0;
    for (int i = 2; i < ring.size(); ++i) {
        const Real ax = Real(ring[i - 1].x) - origin.x;
        const Real ay = Real(ring[i - 1].y) - origin.y;
        const Real bx = Real(ring[i].x) - origin.x;
        const Real by = Real(ring[i].y) - origin.y;
        twice += ax * by - bx * ay;
    }
    return std::abs(twice) / 2;
}

double ringLength(const Ring& ring)
{
    double length = (ring.first() - ring.last()).length();
    for (int i = 1; i < ring.size(); ++i)
        length += (ring[i] - ring[i - 1]).length();
    return length;
}

} // namespace

HbgGeomPolygon::HbgGeomPolygon(const Ring& contour)
{
    if (!addContour(contour))
        HBE_PROGRAMMING_ERROR(SOURCE, QStringLiteral("The contour of a polygon is no ring."));
}

const HbgGeomPolygon::Ring& HbgGeomPolygon::getContour(int contour) const
{
    if (contour < 0 || contour >= m_parts.size())
        HBE_PROGRAMMING_ERROR(SOURCE, QStringLiteral("Contour out of the polygon."));
    return m_parts[contour].contour;
}

int HbgGeomPolygon::getHoleCount(int contour) const
{
    if (contour < 0 || contour >= m_parts.size())
        HBE_PROGRAMMING_ERROR(SOURCE, QStringLiteral("Contour out of the polygon."));
    return m_parts[contour].holes.size();
}

const HbgGeomPolygon::Ring& HbgGeomPolygon::getHole(int contour, int hole) const
{
    if (hole < 0 || hole >= getHoleCount(contour))
        HBE_PROGRAMMING_ERROR(SOURCE, QStringLiteral("Hole out of the contour."));
    return m_parts[contour].holes[hole];
}

int HbgGeomPolygon::getPointCount() const
{
    int count = 0;
    for (const Part& part : m_parts) {
        count += part.contour.size();
        for (const Ring& hole : part.holes)
            count += hole.size();
    }
    return count;
}

bool HbgGeomPolygon::addContour(const Ring& ring)
{
    const Ring accepted = acceptedRing(ring);
    if (accepted.isEmpty())
        return false;
    m_parts.append({accepted, {}});
    return true;
}

bool HbgGeomPolygon::addHole(int contour, const Ring& ring)
{
    if (contour < 0 || contour >= m_parts.size())
        return false;
    const Ring accepted = acceptedRing(ring);
    if (accepted.isEmpty())
        return false;
    m_parts[contour].holes.append(accepted);
    return true;
}

void HbgGeomPolygon::clear()
{
    m_parts.clear();
}

double HbgGeomPolygon::getArea() const
{
    long double area = 0;
    for (const Part& part : m_parts) {
        area += ringArea(part.contour);
        for (const Ring& hole : part.holes)
            area -= ringArea(hole);
    }
    return static_cast<double>(area);
}

double HbgGeomPolygon::getPerimeter() const
{
    double length = 0.;
    for (const Part& part : m_parts) {
        length += ringLength(part.contour);
        for (const Ring& hole : part.holes)
            length += ringLength(hole);
    }
    return length;
}

HbgBox HbgGeomPolygon::getBoundingBox() const
{
    HbgBox box;
    for (const Part& part : m_parts) {
        for (const HbgVector2D& corner : part.contour)
            box.unite(corner);
    }
    return box;
}

bool HbgGeomPolygon::contains(const QPointF& place) const
{
    if (!std::isfinite(place.x()) || !std::isfinite(place.y()))
        return false;
    const HbgVector2D at(place.x(), place.y());
    const auto windingOf = [&at](const Ring& ring) {
        HbgWinding winding(at);
        winding.addRing(ring.constData(), ring.size());
        return winding;
    };
    return std::any_of(m_parts.begin(), m_parts.end(), [&windingOf](const Part& part) {
        return windingOf(part.contour).isIn() &&
               std::none_of(part.holes.begin(), part.holes.end(), [&windingOf](const Ring& hole) {
                   return windingOf(hole).isStrictlyIn();
               });
    });
}

HbgGeomPolygon HbgGeomPolygon::clipped(const HbgBox& box) const
{
    return isEmpty() || box.isEmpty() ? HbgGeomPolygon() : clipPolygon(*this, box);
}

HbgGeomPolyline HbgGeomPolygon::toPolyline() const
{
    if (m_parts.size() != 1 || !m_parts.first().holes.isEmpty())
        return HbgGeomPolyline();
    return HbgGeomPolyline(m_parts.first().contour, HbgEPolylineType::CLOSED);
}

bool HbgGeomPolygon::operator==(const HbgGeomPolygon& other) const
{
    return std::equal(
        m_parts.begin(), m_parts.end(), other.m_parts.begin(), other.m_parts.end(),
        [](const Part& a, const Part& b) { return a.contour == b.contour && a.holes == b.holes; });
}
