#pragma once

#include <util/utils/KuCoordSystemKind.h>

#include <proj.h>

/// What PROJ's type of a system is to us; UNKNOWN for what places nothing in the plane.
inline Ku::CoordSystemKind toCoordSystemKind(PJ_TYPE type)
{
    switch (type) {
    case PJ_TYPE_GEOGRAPHIC_2D_CRS:
        return Ku::CoordSystemKind::GEOGRAPHIC_2D;
    case PJ_TYPE_GEOGRAPHIC_3D_CRS:
        return Ku::CoordSystemKind::GEOGRAPHIC_3D;
    case PJ_TYPE_PROJECTED_CRS:
        return Ku::CoordSystemKind::PROJECTED;
    case PJ_TYPE_COMPOUND_CRS:
        return Ku::CoordSystemKind::COMPOUND;
    default:
        return Ku::CoordSystemKind::UNKNOWN;
    }
}
