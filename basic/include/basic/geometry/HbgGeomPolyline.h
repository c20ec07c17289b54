#pragma once

#include <basic/base/HbbExport.h>
#include <basic/geometry/HbgBox.h>
#include <basic/geometry/HbgEDimension.h>
#include <basic/geometry/HbgEPolylineType.h>

#include <QtCore/QPointF>
#include <QtCore/QVector>

class HbgGeomPolygon;

/// A line through points, in 2D or 3D, open or closed. A value with shared contents: copying is
/// cheap, an edit copies what is shared; any thread.
///
/// X and Y of a point are finite and defined, Z is finite or undefined (HbbGlobal::D_FFFF);
/// anything else is refused. A 2D line has undefined elevations; a 3D point loses its own in it. No
/// point, one point, repeated points and crossings are allowed.
class KELVANE_BASIC_EXPORT HbgGeomPolyline
{
public:
    explicit HbgGeomPolyline(const HbgEDimension& dimension = HbgEDimension::DIM_2D,
                             const HbgEPolylineType& type = HbgEPolylineType::OPEN);
    /// A point that is refused is a programming error.
    explicit HbgGeomPolyline(const QVector<HbgVector2D>& points,
                             const HbgEPolylineType& type = HbgEPolylineType::OPEN);
    explicit HbgGeomPolyline(const QVector<HbgVector3D>& points,
                             const HbgEPolylineType& type = HbgEPolylineType::OPEN);

    HbgEDimension getDimension() const;
    /// To 3D, elevations are undefined; to 2D, they are dropped.
    void setDimension(const HbgEDimension& dimension);
    HbgEPolylineType getType() const;
    void setType(const HbgEPolylineType& type);

    int getPointCount() const { return m_points.size(); }
    bool isEmpty() const { return m_points.isEmpty(); }
    const QVector<HbgVector3D>& getPoints() const { return m_points; }

    /// False, and no change, for a coordinate that is refused and for a rank outside.
    bool append(const HbgVector2D& point);
    bool append(const HbgVector3D& point);
    bool insert(int rank, const HbgVector3D& point);
    bool update(int rank, const HbgVector3D& point);
    bool remove(int rank);
    bool setPoints(const QVector<HbgVector3D>& points);
    void clear();

    /// By type, or because its first and its last point share X and Y (of two points or more).
    bool isClosed() const;
    /// Along the line, with the closing segment of a closed type; in 3D through space, where both
    /// elevations are defined.
    double getLength() const;
    HbgBox getBoundingBox() const;
    /// In the plane, to the nearest place of the line; D_FFFF for a line without points and for a
    /// place that is no number.
    double getDistance(const QPointF& place) const;

    /// The area within a closed line, without its elevations; an empty polygon for a line that is
    /// open or has less than three distinct points.
    HbgGeomPolygon toPolygon() const;

    bool operator==(const HbgGeomPolyline& other) const;
    bool operator!=(const HbgGeomPolyline& other) const { return !(*this == other); }

private:
    QVector<HbgVector3D> m_points; // Z undefined in 2D
    bool m_is3D = false;
    bool m_isClosedType = false;
};

// A set moves all that follow when it removes one: as bytes, not one by one.
Q_DECLARE_TYPEINFO(HbgGeomPolyline, Q_MOVABLE_TYPE);
