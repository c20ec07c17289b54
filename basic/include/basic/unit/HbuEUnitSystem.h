#pragma once

#include <basic/base/HbbAEnum.h>

/// The unit system that a unit belongs to; a filter for lists of units, without part in
/// conversions. OTHER: accepted beside any system (degrees, percent, years).
#define HBU_E_UNIT_SYSTEM(ROW, Class)                                                              \
    ROW(Class, METRIC, 0, QT_TRANSLATE_NOOP("HbuEUnitSystem", "Metric"))                           \
    ROW(Class, IMPERIAL, 1, QT_TRANSLATE_NOOP("HbuEUnitSystem", "Imperial"))                       \
    ROW(Class, US_SURVEY, 2, QT_TRANSLATE_NOOP("HbuEUnitSystem", "US survey"))                     \
    ROW(Class, OTHER, 3, QT_TRANSLATE_NOOP("HbuEUnitSystem", "Other"))

class KELVANE_BASIC_EXPORT HbuEUnitSystem : public HbbAEnum
{
    HBB_ENUM(HbuEUnitSystem, HBU_E_UNIT_SYSTEM)
};
