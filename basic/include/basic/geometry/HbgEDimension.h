#pragma once

#include <basic/base/HbbAEnum.h>

/// Whether a geometry has elevations. The value is the number of coordinates.
#define HBG_E_DIMENSION(ROW, Class)                                                                \
    ROW(Class, DIM_2D, 2, QT_TRANSLATE_NOOP("HbgEDimension", "2D"))                                \
    ROW(Class, DIM_3D, 3, QT_TRANSLATE_NOOP("HbgEDimension", "3D"))

class KELVANE_BASIC_EXPORT HbgEDimension : public HbbAEnum
{
    HBB_ENUM(HbgEDimension, HBG_E_DIMENSION)
};
