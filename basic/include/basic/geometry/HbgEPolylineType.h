#pragma once

#include <basic/base/HbbAEnum.h>

/// Whether a polyline ends at its last point or goes on to its first.
#define HBG_E_POLYLINE_TYPE(ROW, Class)                                                            \
    ROW(Class, OPEN, 0, QT_TRANSLATE_NOOP("HbgEPolylineType", "Open"))                             \
    ROW(Class, CLOSED, 1, QT_TRANSLATE_NOOP("HbgEPolylineType", "Closed"))

class KELVANE_BASIC_EXPORT HbgEPolylineType : public HbbAEnum
{
    HBB_ENUM(HbgEPolylineType, HBG_E_POLYLINE_TYPE)
};
