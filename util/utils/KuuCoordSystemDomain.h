#pragma once

#include "KuuCoordSystemProj.h"

#include <util/utils/KuuCoordSystemArea.h>

#include <limits>
#include <vector>

/// A box of coordinates, closed; everywhere by default.
struct KuuCoordSystemBox {
    double xMin = -std::numeric_limits<double>::infinity();
    double yMin = -std::numeric_limits<double>::infinity();
    double xMax = std::numeric_limits<double>::infinity();
    double yMax = std::numeric_limits<double>::infinity();

    bool contains(double x, double y) const
    {
        return x >= xMin && x <= xMax && y >= yMin && y <= yMax;
    }
    bool contains(const KuuCoordSystemBox& other) const
    {
        return contains(other.xMin, other.yMin) && contains(other.xMax, other.yMax);
    }
    bool intersects(const KuuCoordSystemBox& other) const
    {
        return xMin <= other.xMax && other.xMin <= xMax && yMin <= other.yMax && other.yMin <= yMax;
    }
};

/// Where an operation or a system is for, in the coordinates of a system that PROJ takes: east
/// before north, in the units of its axes. Several boxes where it crosses the antimeridian.
struct KuuCoordSystemDomain {
    std::vector<KuuCoordSystemBox> boxes = std::vector<KuuCoordSystemBox>(1);
    double period = 0.; ///< a full turn of the longitudes; 0 for projected coordinates

    bool isEverywhere() const;
    /// Longitudes may be a full turn off.
    bool contains(double x, double y) const;
    /// One of the boxes holds all of it (as it stands, no turns).
    bool contains(const KuuCoordSystemBox& box) const;
    bool contains(const KuuCoordSystemDomain& other) const;
    /// Some point of the box may be in.
    bool intersects(const KuuCoordSystemBox& box) const;
};

/// What the authority says of an operation's or a system's area of use.
KuuCoordSystemArea readAreaOfUse(const PJ* object);

/// Turns areas of use into areas in the coordinates of one system.
class KuuCoordSystemDomainProjector
{
public:
    explicit KuuCoordSystemDomainProjector(const PJ* crs);

    /// As PROJ does when it chooses among operations; everywhere for an unknown area and where
    /// nothing of it has an image. `margin` widens it by a part of its size.
    KuuCoordSystemDomain project(const KuuCoordSystemArea& area, double margin = 0.) const;

private:
    KuuCoordSystemBox projectBox(double west, double south, double east, double north) const;

    KuuCoordSystemProj::PjPointer m_fromGeographic; // null: nothing can be projected
    double m_period = 0.;
};
