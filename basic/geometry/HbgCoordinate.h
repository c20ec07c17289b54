#pragma once

#include <basic/base/HbbGlobal.h>
#include <basic/geometry/HbgVector3D.h>

#include <QtCore/QPointF>

#include <cmath>

/// What counts as a coordinate, a vertex, a place: once for all geometries.
namespace HbgCoordinate
{
/// Finite and defined.
inline bool isCoordinate(double value)
{
    return std::isfinite(value) && !HbbGlobal::isUndefined(value);
}

inline bool isVertex(const HbgVector2D& point)
{
    return isCoordinate(point.x) && isCoordinate(point.y);
}

inline bool isPlace(const QPointF& place)
{
    return std::isfinite(place.x()) && std::isfinite(place.y());
}

inline HbgVector3D withoutElevation(const HbgVector2D& point)
{
    return {point.x, point.y, HbbGlobal::D_FFFF};
}
} // namespace HbgCoordinate
