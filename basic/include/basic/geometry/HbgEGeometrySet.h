#pragma once

#include <basic/base/HbbAEnum.h>
#include <basic/geometry/HbgGeometrySetFlags.h>

/// The kind of a set of geometries. LINES are polylines in which every element is one measured line
/// (a borehole, a survey line), POLYLINES are free-form.
#define HBG_E_GEOMETRY_SET(ROW, Class)                                                             \
    ROW(Class, NONE, 0, QT_TRANSLATE_NOOP("HbgEGeometrySet", "None"))                              \
    ROW(Class, POINTS, 1, QT_TRANSLATE_NOOP("HbgEGeometrySet", "Points"))                          \
    ROW(Class, LINES, 2, QT_TRANSLATE_NOOP("HbgEGeometrySet", "Lines"))                            \
    ROW(Class, GRID, 3, QT_TRANSLATE_NOOP("HbgEGeometrySet", "Grid"))                              \
    ROW(Class, GRID_SPARSE, 4, QT_TRANSLATE_NOOP("HbgEGeometrySet", "Sparse grid"))                \
    ROW(Class, POLYGONS, 5, QT_TRANSLATE_NOOP("HbgEGeometrySet", "Polygons"))                      \
    ROW(Class, POLYLINES, 6, QT_TRANSLATE_NOOP("HbgEGeometrySet", "Polylines"))                    \
    ROW(Class, MESH_SURFACE, 7, QT_TRANSLATE_NOOP("HbgEGeometrySet", "Surface meshes"))            \
    ROW(Class, MESH_VOLUME, 8, QT_TRANSLATE_NOOP("HbgEGeometrySet", "Volume meshes"))

class KELVANE_BASIC_EXPORT HbgEGeometrySet : public HbbAEnum
{
    HBB_ENUM(HbgEGeometrySet, HBG_E_GEOMETRY_SET)

public:
    HbgGeometrySetFlags getFlags() const;
};
