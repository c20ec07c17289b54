#pragma once

#include <basic/geometry/HbgVector2D.h>

#include <algorithm>
#include <cmath>
#include <limits>

/// A closed rectangle along the axes that is never empty: corners in order, finite unless they were
/// pushed outwards on purpose. The plain form of HbgBox for inner loops.
struct HbgRectangle {
    HbgVector2D low;
    HbgVector2D high;

    static HbgRectangle of(const HbgVector2D& a, const HbgVector2D& b)
    {
        return {{std::min(a.x, b.x), std::min(a.y, b.y)}, {std::max(a.x, b.x), std::max(a.y, b.y)}};
    }

    /// Surely holds every place at the distance: rounding may only widen it.
    static HbgRectangle around(const HbgVector2D& place, double distance)
    {
        const double reach = distance * (1. + 1e-15);
        const double infinity = std::numeric_limits<double>::infinity();
        return {
            {std::nextafter(place.x - reach, -infinity),
             std::nextafter(place.y - reach, -infinity)},
            {std::nextafter(place.x + reach, infinity), std::nextafter(place.y + reach, infinity)}};
    }

    void unite(const HbgVector2D& place)
    {
        low = {std::min(low.x, place.x), std::min(low.y, place.y)};
        high = {std::max(high.x, place.x), std::max(high.y, place.y)};
    }
    bool contains(const HbgVector2D& place) const
    {
        return low.x <= place.x && place.x <= high.x && low.y <= place.y && place.y <= high.y;
    }
    bool contains(const HbgRectangle& other) const
    {
        return contains(other.low) && contains(other.high);
    }
    bool intersects(const HbgRectangle& other) const
    {
        return low.x <= other.high.x && other.low.x <= high.x && low.y <= other.high.y &&
               other.low.y <= high.y;
    }

    /// 0 within. Long double holds the square of any distance between doubles.
    long double squaredDistance(const HbgVector2D& place) const
    {
        using Real = long double;
        const Real x = std::max({Real(low.x) - place.x, Real(place.x) - high.x, Real(0)});
        const Real y = std::max({Real(low.y) - place.y, Real(place.y) - high.y, Real(0)});
        return x * x + y * y;
    }
};
