#pragma once

#include <cmath>

/// A point or a direction in the plane.
struct HbgVector2D {
    double x = 0.;
    double y = 0.;

    constexpr HbgVector2D() = default;
    constexpr HbgVector2D(double theX, double theY)
        : x(theX)
        , y(theY)
    {
    }

    double length() const { return std::hypot(x, y); }
};

constexpr bool operator==(const HbgVector2D& a, const HbgVector2D& b)
{
    return a.x == b.x && a.y == b.y;
}
constexpr bool operator!=(const HbgVector2D& a, const HbgVector2D& b)
{
    return !(a == b);
}
constexpr HbgVector2D operator+(const HbgVector2D& a, const HbgVector2D& b)
{
    return {a.x + b.x, a.y + b.y};
}
constexpr HbgVector2D operator-(const HbgVector2D& a, const HbgVector2D& b)
{
    return {a.x - b.x, a.y - b.y};
}
constexpr HbgVector2D operator*(double factor, const HbgVector2D& v)
{
    return {factor * v.x, factor * v.y};
}
constexpr double dotProduct(const HbgVector2D& a, const HbgVector2D& b)
{
    return a.x * b.x + a.y * b.y;
}
