#pragma once

#include <basic/base/HbbExport.h>
#include <basic/geometry/HbgBox.h>
#include <basic/geometry/HbgEDimension.h>
#include <basic/geometry/HbgSharedCache.h>

#include <QtCore/QPointF>
#include <QtCore/QRectF>
#include <QtCore/QVector>

class HbgPointIndex;
class HbiIntervalIntSmallDisjoint;

/// Points, addressed by rank; one contiguous array of coordinates per axis (no Z in 2D). A value
/// with shared contents: copying is cheap, an edit copies what is shared.
///
/// A coordinate is a finite number or undefined (HbbGlobal::D_FFFF); NaN and infinities are
/// refused. A point whose X or Y is undefined lies nowhere: no pick finds it and no box counts it.
/// A 2D point in a 3D set has an undefined elevation, a 3D point in a 2D set loses its own.
///
/// Picks go through a spatial index that the first of them builds, O(n log n), and that edits drop;
/// copies share it. It takes less than 29 bytes a point. Const operations may run in several
/// threads at once.
class KELVANE_BASIC_EXPORT HbgGeomPointSet
{
public:
    explicit HbgGeomPointSet(const HbgEDimension& dimension = HbgEDimension::DIM_2D);

    HbgEDimension getDimension() const;
    int getCount() const { return m_x.size(); }
    bool isEmpty() const { return m_x.isEmpty(); }
    HbgBox getBoundingBox() const;

    /// `rank` is from 0 below the count (a programming error otherwise); the Z of a 2D set is
    /// undefined.
    HbgVector3D getPoint(int rank) const;
    /// The coordinates along an axis: `getCount()` of them. Empty for the Z of a 2D set.
    const QVector<double>& getX() const { return m_x; }
    const QVector<double>& getY() const { return m_y; }
    const QVector<double>& getZ() const { return m_z; }

    void reserve(int count);
    /// False, and no change, for a NaN or infinite coordinate; `update` also for a rank outside.
    bool append(const HbgVector2D& point);
    bool append(const HbgVector3D& point);
    bool update(int rank, const HbgVector2D& point);
    bool update(int rank, const HbgVector3D& point);
    bool remove(int rank); ///< moves all that follow
    void clear();
    /// Replaces all points by columns of one length (a programming error otherwise); `z` is empty
    /// for a 2D set. Here NaN and infinities become undefined, as in any column read as
    /// coordinates.
    void setCoordinates(QVector<double> x, QVector<double> y, QVector<double> z = {});

    /// The nearest point (the lowest rank among equals) within `tolerance` of a place, a distance
    /// >= 0; -1 when there is none.
    int pointToRank(const QPointF& place, double tolerance) const;
    /// All points within the tolerance, within a rectangle or within a polygon; points on the
    /// border are in. A polygon is closed implicitly, and one that crosses itself holds all that it
    /// winds around. A place, tolerance or corner that is no number picks nothing.
    HbiIntervalIntSmallDisjoint pointToRanks(const QPointF& place, double tolerance) const;
    HbiIntervalIntSmallDisjoint rectangleToRanks(const QRectF& rectangle) const;
    HbiIntervalIntSmallDisjoint polygonToRanks(const QVector<QPointF>& polygon) const;

    /// A pick has built the index, and nothing has been edited since.
    bool isIndexed() const { return m_index.isBuilt(); }

    /// The same dimension and coordinates in the same order.
    bool operator==(const HbgGeomPointSet& other) const;
    bool operator!=(const HbgGeomPointSet& other) const { return !(*this == other); }

private:
    std::shared_ptr<const HbgPointIndex> index() const;

    QVector<double> m_x;
    QVector<double> m_y;
    QVector<double> m_z; // empty in 2D
    bool m_is3D;
    HbgSharedCache<HbgPointIndex> m_index; // of X and Y
};
