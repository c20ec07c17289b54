#pragma once

namespace Ku
{

/// How a coordinate system is referenced. The values go into files.
enum class CoordSystemMode {
    PROJECTED = 0,  ///< plane coordinates, in the system's length unit
    GEOGRAPHIC = 1, ///< longitude and latitude, in degrees
    LOCAL = 2       ///< plane coordinates without reference to the Earth
};

} // namespace Ku
