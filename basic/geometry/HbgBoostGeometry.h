#pragma once

#include "HbgRectangle.h"

#define BOOST_ALLOW_DEPRECATED_HEADERS // Boost 1.74 reads one of its own
#include <boost/geometry.hpp>
#include <boost/geometry/geometries/register/box.hpp>
#include <boost/geometry/geometries/register/point.hpp>

/// Boost.Geometry works on our places and rectangles as they are. For source files only.
BOOST_GEOMETRY_REGISTER_POINT_2D(HbgVector2D, double, boost::geometry::cs::cartesian, x, y)
BOOST_GEOMETRY_REGISTER_BOX(HbgRectangle, HbgVector2D, low, high)
