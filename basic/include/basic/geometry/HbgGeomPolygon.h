#pragma once

#include <basic/base/HbbExport.h>
#include <basic/geometry/HbgBox.h>

#include <QtCore/QPointF>
#include <QtCore/QVector>

class HbgGeomPolyline;

/// An area in the plane: contours, each with holes. Several contours are one polygon of several
/// parts (a county with islands). A value with shared contents; any thread.
///
/// A ring is a list of corners, closed implicitly: a last corner equal to the first is dropped.
/// Corners are finite and defined; a ring needs three distinct ones. Rings may run either way round
/// and may cross themselves (they hold what they wind around). Nobody checks that holes lie within
/// their contour and apart from each other.
class KELVANE_BASIC_EXPORT HbgGeomPolygon
{
public:
    using Ring = QVector<HbgVector2D>;

    HbgGeomPolygon() = default;
    /// One contour; a ring that is refused is a programming error.
    explicit HbgGeomPolygon(const Ring& contour);

    bool isEmpty() const { return m_parts.isEmpty(); }
    int getContourCount() const { return m_parts.size(); }
    /// Ranks outside are a programming error.
    const Ring& getContour(int contour) const;
    int getHoleCount(int contour) const;
    const Ring& getHole(int contour, int hole) const;
    /// The corners of all rings.
    int getPointCount() const;

    /// False, and no change, for a ring that is refused and for a contour outside.
    bool addContour(const Ring& ring);
    bool addHole(int contour, const Ring& ring);
    void clear();

    /// Holes taken off; of rings that do not cross. Exact far from the origin too.
    double getArea() const;
    /// Of contours and holes.
    double getPerimeter() const;
    HbgBox getBoundingBox() const;
    /// In a contour and not within one of its holes; the borders of both are in.
    bool contains(const QPointF& place) const;
    /// What of it lies in the box, whose elevations do not count; empty where nothing does, or
    /// only a part without area. Rings that cross themselves or each other give a result that is
    /// not specified, but no fault.
    HbgGeomPolygon clipped(const HbgBox& box) const;

    /// The closed 2D line around it; an empty line unless it is one contour without holes.
    HbgGeomPolyline toPolyline() const;

    bool operator==(const HbgGeomPolygon& other) const;
    bool operator!=(const HbgGeomPolygon& other) const { return !(*this == other); }

private:
    struct Part {
        Ring contour;
        QVector<Ring> holes;
    };
    QVector<Part> m_parts;
};

// A set moves all that follow when it removes one: as bytes, not one by one.
Q_DECLARE_TYPEINFO(HbgGeomPolygon, Q_MOVABLE_TYPE);
