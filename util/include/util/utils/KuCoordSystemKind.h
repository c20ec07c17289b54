#pragma once

namespace Ku
{

/// What a geographic or projected coordinate system is made of.
enum class CoordSystemKind {
    UNKNOWN,
    GEOGRAPHIC_2D, ///< longitude and latitude
    GEOGRAPHIC_3D, ///< the same and the height above the ellipsoid
    PROJECTED,     ///< plane coordinates, with a height or without
    COMPOUND       ///< one of these and a vertical system
};

} // namespace Ku
