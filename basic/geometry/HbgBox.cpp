#include <basic/geometry/HbgBox.h>

#include "HbgCoordinate.h"

#include <basic/base/HbbGlobal.h>

#include <algorithm>
#include <cmath>

double HbgBox::Axis::getMin() const
{
    return isEmpty() ? HbbGlobal::D_FFFF : low;
}

double HbgBox::Axis::getMax() const
{
    return isEmpty() ? HbbGlobal::D_FFFF : high;
}

void HbgBox::Axis::unite(double coordinate)
{
    if (!HbgCoordinate::isCoordinate(coordinate))
        return;
    low = std::min(low, coordinate);
    high = std::max(high, coordinate);
}

HbgBox::HbgBox(const HbgVector2D& a, const HbgVector2D& b)
{
    unite(a);
    unite(b);
}

HbgBox::HbgBox(const HbgVector3D& a, const HbgVector3D& b)
{
    unite(a);
    unite(b);
}

void HbgBox::unite(const HbgVector2D& point)
{
    m_axes[0].unite(point.x);
    m_axes[1].unite(point.y);
}

void HbgBox::unite(const HbgVector3D& point)
{
    unite(point.toVector2D());
    m_axes[2].unite(point.z);
}

void HbgBox::unite(const HbgBox& box)
{
    for (int axis = 0; axis < 3; ++axis) {
        m_axes[axis].low = std::min(m_axes[axis].low, box.m_axes[axis].low);
        m_axes[axis].high = std::max(m_axes[axis].high, box.m_axes[axis].high);
    }
}

bool HbgBox::contains(const HbgVector2D& point) const
{
    return m_axes[0].contains(point.x) && m_axes[1].contains(point.y);
}

bool HbgBox::contains(const HbgVector3D& point) const
{
    return contains(point.toVector2D()) && (m_axes[2].isEmpty() || m_axes[2].contains(point.z));
}

bool HbgBox::intersects(const HbgBox& other) const
{
    if (isEmpty() || other.isEmpty())
        return false;
    for (int axis = 0; axis < 3; ++axis) {
        const Axis& a = m_axes[axis];
        const Axis& b = other.m_axes[axis];
        // An axis without range says nothing: a 2D box meets a 3D one wherever their plans meet.
        if (!a.isEmpty() && !b.isEmpty() && (a.low > b.high || b.low > a.high))
            return false;
    }
    return true;
}

bool HbgBox::operator==(const HbgBox& other) const
{
    return std::equal(std::begin(m_axes), std::end(m_axes), std::begin(other.m_axes),
                      [](const Axis& a, const Axis& b) {
                          return (a.isEmpty() && b.isEmpty()) ||
                                 (a.low == b.low && a.high == b.high);
                      });
}
