#pragma once

#include <basic/geometry/HbgVector2D.h>

/// A point or a direction in space. The elevation of a point may be undefined (HbbGlobal::D_FFFF).
struct HbgVector3D {
    double x = 0.;
    double y = 0.;
    double z = 0.;

    constexpr HbgVector3D() = default;
    constexpr HbgVector3D(double theX, double theY, double theZ)
        : x(theX)
        , y(theY)
        , z(theZ)
    {
    }

    constexpr HbgVector2D toVector2D() const { return {x, y}; }
    double length() const { return std::hypot(x, y, z); }
};

constexpr bool operator==(const HbgVector3D& a, const HbgVector3D& b)
{
    return a.x == b.x && a.y == b.y && a.z == b.z;
}
constexpr bool operator!=(const HbgVector3D& a, const HbgVector3D& b)
{
    return !(a == b);
}
constexpr HbgVector3D operator+(const HbgVector3D& a, const HbgVector3D& b)
{
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}
constexpr HbgVector3D operator-(const HbgVector3D& a, const HbgVector3D& b)
{
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}
constexpr HbgVector3D operator*(double factor, const HbgVector3D& v)
{
    return {factor * v.x, factor * v.y, factor * v.z};
}
constexpr double dotProduct(const HbgVector3D& a, const HbgVector3D& b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z;
}
constexpr HbgVector3D crossProduct(const HbgVector3D& a, const HbgVector3D& b)
{
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
