#pragma once

#include <basic/interval/HbiIntervalIntSmallDisjoint.h>

#include <QtCore/QPointF>
#include <QtCore/QRectF>
#include <QtCore/QVector>

#include <memory>

class HbgGeomPolygon;
class HbgGeomPolyline;

/// The spatial index behind the picks of polylines and polygons: a packed R-tree over short runs of
/// segments, so that a shape of a million points costs a pick no more than a million shapes, and
/// for polygons an index of their areas. It holds its own copy of the coordinates, in the order in
/// which picks read them. Never changes once built; any thread.
class HbgShapeIndex
{
public:
    explicit HbgShapeIndex(const QVector<HbgGeomPolyline>& polylines);
    explicit HbgShapeIndex(const QVector<HbgGeomPolygon>& polygons);
    ~HbgShapeIndex();
    HbgShapeIndex(const HbgShapeIndex&) = delete;
    HbgShapeIndex& operator=(const HbgShapeIndex&) = delete;

    /// By the distance to a line, or to the border of a polygon.
    int findNearest(const QPointF& place, double tolerance) const;
    HbiIntervalIntSmallDisjoint findNear(const QPointF& place, double tolerance) const;

    /// The polygons that hold a place; no polyline does.
    int findFirstHolding(const QPointF& place) const;
    HbiIntervalIntSmallDisjoint findHolding(const QPointF& place) const;

    /// The shapes with a place in common with a rectangle or a lasso.
    HbiIntervalIntSmallDisjoint findMeeting(const QRectF& rectangle) const;
    HbiIntervalIntSmallDisjoint findMeeting(const QVector<QPointF>& lasso) const;

private:
    struct Private; // keeps Boost's headers out
    const std::unique_ptr<Private> d;
};
