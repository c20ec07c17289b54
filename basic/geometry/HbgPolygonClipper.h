#pragma once

#include <basic/geometry/HbgGeomPolygon.h>

/// What of a polygon lies in a box (not empty).
HbgGeomPolygon clipPolygon(const HbgGeomPolygon& polygon, const HbgBox& box);
