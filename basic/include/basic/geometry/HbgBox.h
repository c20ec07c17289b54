#pragma once

#include <basic/base/HbbExport.h>
#include <basic/geometry/HbgVector2D.h>
#include <basic/geometry/HbgVector3D.h>

#include <limits>

/// A box along the axes, closed, made by uniting points: empty by default. Each axis has a range of
/// its own; a coordinate that is undefined, NaN or infinite says nothing and widens nothing. A box
/// that no elevation went into is a 2D one.
class KELVANE_BASIC_EXPORT HbgBox
{
public:
    HbgBox() = default;
    /// The box of two opposite corners, in any order.
    HbgBox(const HbgVector2D& a, const HbgVector2D& b);
    HbgBox(const HbgVector3D& a, const HbgVector3D& b);

    /// There is no range along X or along Y.
    bool isEmpty() const { return m_axes[0].isEmpty() || m_axes[1].isEmpty(); }
    bool is3D() const { return !isEmpty() && !m_axes[2].isEmpty(); }

    /// HbbGlobal::D_FFFF where the axis has no range.
    double getXMin() const { return m_axes[0].getMin(); }
    double getXMax() const { return m_axes[0].getMax(); }
    double getYMin() const { return m_axes[1].getMin(); }
    double getYMax() const { return m_axes[1].getMax(); }
    double getZMin() const { return m_axes[2].getMin(); }
    double getZMax() const { return m_axes[2].getMax(); }

    void unite(const HbgVector2D& point);
    void unite(const HbgVector3D& point);
    void unite(const HbgBox& box);

    /// A point on the border is inside. The Z range counts when the box has one.
    bool contains(const HbgVector2D& point) const;
    bool contains(const HbgVector3D& point) const;
    bool intersects(const HbgBox& other) const;

    bool operator==(const HbgBox& other) const;
    bool operator!=(const HbgBox& other) const { return !(*this == other); }

private:
    struct Axis {
        double low = std::numeric_limits<double>::infinity();
        double high = -std::numeric_limits<double>::infinity();

        bool isEmpty() const { return low > high; }
        double getMin() const;
        double getMax() const;
        void unite(double coordinate);
        bool contains(double coordinate) const { return low <= coordinate && coordinate <= high; }
    };
    Axis m_axes[3];
};
