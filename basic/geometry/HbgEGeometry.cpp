#include <basic/geometry/HbgEDimension.h>
#include <basic/geometry/HbgEGeometrySet.h>
#include <basic/geometry/HbgEMeshType.h>
#include <basic/geometry/HbgEPolylineType.h>
#include <basic/geometry/HbgEPrimitive.h>

HBB_ENUM_DEFINE(HbgEDimension, HBG_E_DIMENSION, DIM_2D, "geometry/HbgEDimension")
HBB_ENUM_DEFINE(HbgEGeometrySet, HBG_E_GEOMETRY_SET, NONE, "geometry/HbgEGeometrySet")
HBB_ENUM_DEFINE(HbgEMeshType, HBG_E_MESH_TYPE, SURFACE, "geometry/HbgEMeshType")
HBB_ENUM_DEFINE(HbgEPolylineType, HBG_E_POLYLINE_TYPE, OPEN, "geometry/HbgEPolylineType")
HBB_ENUM_DEFINE(HbgEPrimitive, HBG_E_PRIMITIVE, NONE, "geometry/HbgEPrimitive")

HbgGeometrySetFlags HbgEGeometrySet::getFlags() const
{
    switch (toEnum()) {
    case E_POINTS:
        return HbgGeometrySetFlags::POINTS;
    case E_LINES:
    case E_POLYLINES:
        return HbgGeometrySetFlags::LINES;
    case E_GRID:
    case E_GRID_SPARSE:
        return HbgGeometrySetFlags::GRID;
    case E_POLYGONS:
        return HbgGeometrySetFlags::POLYGONS;
    case E_MESH_SURFACE:
    case E_MESH_VOLUME:
        return HbgGeometrySetFlags::MESHES;
    case E_NONE:
        break;
    }
    return HbgGeometrySetFlags::NONE;
}
