#pragma once

#include <basic/geometry/HbgGeomPolygon.h>
#include <basic/geometry/HbgSharedCache.h>

#include <QtCore/QRectF>

class HbgShapeIndex;
class HbiIntervalIntSmallDisjoint;

/// Polygons, addressed by rank. A value with shared contents: copying is cheap, an edit copies what
/// is shared.
///
/// Picks go through a spatial index that the first of them builds, and that edits drop; copies
/// share it. Const operations may run in several threads at once.
class KELVANE_BASIC_EXPORT HbgGeomPolygonSet
{
public:
    int getCount() const { return m_polygons.size(); }
    bool isEmpty() const { return m_polygons.isEmpty(); }
    HbgBox getBoundingBox() const;

    /// A rank outside is a programming error.
    const HbgGeomPolygon& getPolygon(int rank) const;
    const QVector<HbgGeomPolygon>& getPolygons() const { return m_polygons; }

    void reserve(int count);
    void append(const HbgGeomPolygon& polygon);
    /// False, and no change, for a rank outside.
    bool insert(int rank, const HbgGeomPolygon& polygon); ///< the count is inside
    bool update(int rank, const HbgGeomPolygon& polygon);
    bool remove(int rank); ///< moves all that follow
    void clear();

    /// The polygon that holds a place (the lowest rank of several); -1 when none does.
    int pointToRank(const QPointF& place) const;
    /// All polygons that hold a place, or have a point in common with a rectangle or a lasso;
    /// touching is enough. A lasso is closed implicitly, and one that crosses itself holds all that
    /// it winds around; it needs three corners. A place or corner that is no number picks nothing.
    /// To a rectangle or a lasso, the border of a hole is the polygon's, wherever the hole lies.
    HbiIntervalIntSmallDisjoint pointToRanks(const QPointF& place) const;
    HbiIntervalIntSmallDisjoint rectangleToRanks(const QRectF& rectangle) const;
    HbiIntervalIntSmallDisjoint polygonToRanks(const QVector<QPointF>& lasso) const;

    bool operator==(const HbgGeomPolygonSet& other) const;
    bool operator!=(const HbgGeomPolygonSet& other) const { return !(*this == other); }

private:
    std::shared_ptr<const HbgShapeIndex> index() const;

    QVector<HbgGeomPolygon> m_polygons;
    HbgSharedCache<HbgShapeIndex> m_index;
};
