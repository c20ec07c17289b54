#pragma once

#include <basic/base/HbbAEnum.h>

// clang-format off
#define HBD_E_SUPPORT(ROW, Class)                                                                  \
    ROW(Class, NONE, 0, QT_TRANSLATE_NOOP("HbdESupport", "None"))                                  \
    ROW(Class, POINT, 1, QT_TRANSLATE_NOOP("HbdESupport", "Points"))                               \
    ROW(Class, GRID, 2, QT_TRANSLATE_NOOP("HbdESupport", "Grid nodes"))                            \
    ROW(Class, LINE, 3, QT_TRANSLATE_NOOP("HbdESupport", "Lines"))                                 \
    ROW(Class, LINE_SAMPLE, 4, QT_TRANSLATE_NOOP("HbdESupport", "Line samples"))                   \
    ROW(Class, POLYLINE, 5, QT_TRANSLATE_NOOP("HbdESupport", "Polylines"))                         \
    ROW(Class, POLYGON, 6, QT_TRANSLATE_NOOP("HbdESupport", "Polygons"))                           \
    ROW(Class, MESH, 7, QT_TRANSLATE_NOOP("HbdESupport", "Meshes"))
// clang-format on

/// The set of things that the samples of a table stand for.
class KELVANE_BASIC_EXPORT HbdESupport : public HbbAEnum
{
    HBB_ENUM(HbdESupport, HBD_E_SUPPORT)
};
