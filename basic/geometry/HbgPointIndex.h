#pragma once

#include <basic/interval/HbiIntervalIntSmallDisjoint.h>

#include <QtCore/QPointF>
#include <QtCore/QRectF>
#include <QtCore/QVector>

#include <memory>

/// The spatial index behind the picks of a point set: a packed R-tree over the points whose X and Y
/// are defined. Never changes once built; any thread.
class HbgPointIndex
{
public:
    HbgPointIndex(const QVector<double>& x, const QVector<double>& y);
    ~HbgPointIndex();
    HbgPointIndex(const HbgPointIndex&) = delete;
    HbgPointIndex& operator=(const HbgPointIndex&) = delete;

    int findNearest(const QPointF& place, double tolerance) const;
    HbiIntervalIntSmallDisjoint findWithin(const QPointF& place, double tolerance) const;
    HbiIntervalIntSmallDisjoint findWithin(const QRectF& rectangle) const;
    HbiIntervalIntSmallDisjoint findWithin(const QVector<QPointF>& polygon) const;

private:
    struct Private; // keeps Boost's headers out
    const std::unique_ptr<Private> d;
};
