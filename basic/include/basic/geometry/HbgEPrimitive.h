#pragma once

#include <basic/base/HbbAEnum.h>

/// The kind of one geometry.
#define HBG_E_PRIMITIVE(ROW, Class)                                                                \
    ROW(Class, NONE, 0, QT_TRANSLATE_NOOP("HbgEPrimitive", "None"))                                \
    ROW(Class, POINT_2D, 1, QT_TRANSLATE_NOOP("HbgEPrimitive", "2D point"))                        \
    ROW(Class, POINT_3D, 2, QT_TRANSLATE_NOOP("HbgEPrimitive", "3D point"))                        \
    ROW(Class, POLYLINE, 3, QT_TRANSLATE_NOOP("HbgEPrimitive", "Polyline"))                        \
    ROW(Class, POLYGON, 4, QT_TRANSLATE_NOOP("HbgEPrimitive", "Polygon"))                          \
    ROW(Class, MESH, 5, QT_TRANSLATE_NOOP("HbgEPrimitive", "Mesh"))

class KELVANE_BASIC_EXPORT HbgEPrimitive : public HbbAEnum
{
    HBB_ENUM(HbgEPrimitive, HBG_E_PRIMITIVE)
};
