#pragma once

#include "HbgRectangle.h"

#include <cmath>
#include <limits>

/// A straight line between two places, which may be one place: what picks of lines, rings and
/// lassos are made of. Coordinates are finite.
///
/// Differences are taken first, so that nothing is lost far from the origin. Where a product would
/// overflow, or rounding could decide, the wider range and precision of long double decide.
struct HbgSegment {
    HbgVector2D a;
    HbgVector2D b;

    HbgRectangle box() const { return HbgRectangle::of(a, b); }

    /// 1 for a place on the left of the line through a and b, -1 on the right, 0 on it. A place is
    /// on the line when the rounding of the coordinates may have pushed it off.
    int side(const HbgVector2D& place) const
    {
        const HbgVector2D d = b - a;
        const HbgVector2D w = place - a;
        const double cross = d.x * w.y - d.y * w.x;
        const double doubt = 16. * blur(place) * (std::abs(d.x) + std::abs(d.y));
        if (std::abs(cross) > doubt && std::abs(cross) <= std::numeric_limits<double>::max())
            return cross > 0. ? 1 : -1;
        return exactSide(place);
    }

    /// Touching is enough.
    bool intersects(const HbgSegment& other) const
    {
        return box().intersects(other.box()) && side(other.a) * side(other.b) <= 0 &&
               other.side(a) * other.side(b) <= 0;
    }
    bool intersects(const HbgRectangle& area) const
    {
        if (!box().intersects(area))
            return false;
        if (area.contains(a) || area.contains(b))
            return true;
        // The line runs beside the rectangle when the two corners across it are on one side.
        const bool isRising = (b.x > a.x) == (b.y > a.y);
        const HbgVector2D left(area.low.x, isRising ? area.high.y : area.low.y);
        const HbgVector2D right(area.high.x, isRising ? area.low.y : area.high.y);
        return side(left) * side(right) <= 0;
    }

    /// To the nearest place of the segment; the same for both directions of it, and for a place
    /// beside its box never less than the distance to the box.
    long double squaredDistance(const HbgVector2D& place) const;

private:
    /// The rounding of the coordinates.
    double blur(const HbgVector2D& place) const
    {
        return std::numeric_limits<double>::epsilon() *
               std::max({std::abs(a.x), std::abs(a.y), std::abs(b.x), std::abs(b.y),
                         std::abs(place.x), std::abs(place.y)});
    }
    int exactSide(const HbgVector2D& place) const;
};
