#include "HbgSegment.h"

namespace
{

using Real = long double; // its exponent holds the product of any four doubles

Real squaredBetween(const HbgVector2D& a, const HbgVector2D& b)
{
    const Real dx = Real(a.x) - b.x;
    const Real dy = Real(a.y) - b.y;
    return dx * dx + dy * dy;
}

} // namespace

int HbgSegment::exactSide(const HbgVector2D& place) const
{
    const Real dx = Real(b.x) - a.x;
    const Real dy = Real(b.y) - a.y;
    const Real cross = dx * (Real(place.y) - a.y) - dy * (Real(place.x) - a.x);
    const Real doubt = Real(blur(place)) * (std::abs(dx) + std::abs(dy));
    return cross > doubt ? 1 : cross < -doubt ? -1 : 0;
}

long double HbgSegment::squaredDistance(const HbgVector2D& place) const
{
    // From the same end for both directions, so that a border of two shapes is equally far.
    const bool isForward = a.x != b.x ? a.x < b.x : a.y < b.y;
    const HbgVector2D& start = isForward ? a : b;
    const HbgVector2D& end = isForward ? b : a;
    const Real dx = Real(end.x) - start.x;
    const Real dy = Real(end.y) - start.y;
    const Real wx = Real(place.x) - start.x;
    const Real wy = Real(place.y) - start.y;
    const Real along = wx * dx + wy * dy;
    const Real length = dx * dx + dy * dy;
    if (along <= 0)
        return squaredBetween(start, place);
    if (along >= length)
        return squaredBetween(end, place);
    const Real cross = dx * wy - dy * wx;
    return std::max(cross * cross / length, box().squaredDistance(place));
}
