#pragma once

#include <basic/geometry/HbgGeomPolyline.h>
#include <basic/geometry/HbgSharedCache.h>

#include <QtCore/QRectF>

class HbgShapeIndex;
class HbiIntervalIntSmallDisjoint;

/// Polylines of one dimension, addressed by rank. A value with shared contents: copying is cheap,
/// an edit copies what is shared.
///
/// Picks are in the plane. They go through a spatial index of the segments that the first of them
/// builds, and that edits drop; copies share it. Const operations may run in several threads at
/// once.
class KELVANE_BASIC_EXPORT HbgGeomPolylineSet
{
public:
    explicit HbgGeomPolylineSet(const HbgEDimension& dimension = HbgEDimension::DIM_2D);

    HbgEDimension getDimension() const;
    int getCount() const { return m_polylines.size(); }
    bool isEmpty() const { return m_polylines.isEmpty(); }
    HbgBox getBoundingBox() const;

    /// A rank outside is a programming error.
    const HbgGeomPolyline& getPolyline(int rank) const;
    const QVector<HbgGeomPolyline>& getPolylines() const { return m_polylines; }

    void reserve(int count);
    /// A polyline takes on the dimension of the set.
    void append(const HbgGeomPolyline& polyline);
    /// False, and no change, for a rank outside.
    bool update(int rank, const HbgGeomPolyline& polyline);
    bool remove(int rank); ///< moves all that follow
    void clear();

    /// The polyline nearest to a place (the lowest rank among equals) within `tolerance`, a
    /// distance >= 0; -1 when there is none.
    int pointToRank(const QPointF& place, double tolerance) const;
    /// All polylines within the tolerance, or with a point in common with a rectangle or polygon;
    /// touching is enough. A polygon is closed implicitly, and one that crosses itself holds all
    /// that it winds around; it needs three corners. A place, tolerance or corner that is no number
    /// picks nothing.
    HbiIntervalIntSmallDisjoint pointToRanks(const QPointF& place, double tolerance) const;
    HbiIntervalIntSmallDisjoint rectangleToRanks(const QRectF& rectangle) const;
    HbiIntervalIntSmallDisjoint polygonToRanks(const QVector<QPointF>& polygon) const;

    bool operator==(const HbgGeomPolylineSet& other) const;
    bool operator!=(const HbgGeomPolylineSet& other) const { return !(*this == other); }

private:
    std::shared_ptr<const HbgShapeIndex> index() const;

    QVector<HbgGeomPolyline> m_polylines;
    bool m_is3D;
    HbgSharedCache<HbgShapeIndex> m_index;
};
