#pragma once

#include <basic/base/HbbAEnum.h>

/// The kinds of quantity that a unit measures. Units convert within a class, never between classes.
/// The reference unit and the storage unit of a class are the unit service's (HbuUnitService).
///
/// CONCENTRATION is mass per mass (%, ppm, g/t), VOLUME_CONCENTRATION mass per volume (mg/l), RATIO
/// any other dimensionless part of a whole (porosity, saturation, probability).
#define HBU_E_UNIT_CLASS(ROW, Class)                                                               \
    ROW(Class, NONE, 0, QT_TRANSLATE_NOOP("HbuEUnitClass", "None"))                                \
    ROW(Class, LENGTH, 1, QT_TRANSLATE_NOOP("HbuEUnitClass", "Length"))                            \
    ROW(Class, AREA, 2, QT_TRANSLATE_NOOP("HbuEUnitClass", "Area"))                                \
    ROW(Class, VOLUME, 3, QT_TRANSLATE_NOOP("HbuEUnitClass", "Volume"))                            \
    ROW(Class, MASS, 4, QT_TRANSLATE_NOOP("HbuEUnitClass", "Mass"))                                \
    ROW(Class, DENSITY, 5, QT_TRANSLATE_NOOP("HbuEUnitClass", "Density"))                          \
    ROW(Class, CONCENTRATION, 6, QT_TRANSLATE_NOOP("HbuEUnitClass", "Concentration"))              \
    ROW(Class, VOLUME_CONCENTRATION, 7,                                                            \
        QT_TRANSLATE_NOOP("HbuEUnitClass", "Volume concentration"))                                \
    ROW(Class, RATIO, 8, QT_TRANSLATE_NOOP("HbuEUnitClass", "Ratio"))                              \
    ROW(Class, PERMEABILITY, 9, QT_TRANSLATE_NOOP("HbuEUnitClass", "Permeability"))                \
    ROW(Class, PRESSURE, 10, QT_TRANSLATE_NOOP("HbuEUnitClass", "Pressure"))                       \
    ROW(Class, TEMPERATURE, 11, QT_TRANSLATE_NOOP("HbuEUnitClass", "Temperature"))                 \
    ROW(Class, TIME, 12, QT_TRANSLATE_NOOP("HbuEUnitClass", "Time"))                               \
    ROW(Class, VELOCITY, 13, QT_TRANSLATE_NOOP("HbuEUnitClass", "Velocity"))                       \
    ROW(Class, ANGLE, 14, QT_TRANSLATE_NOOP("HbuEUnitClass", "Angle"))                             \
    ROW(Class, LONGITUDE, 15, QT_TRANSLATE_NOOP("HbuEUnitClass", "Longitude"))                     \
    ROW(Class, LATITUDE, 16, QT_TRANSLATE_NOOP("HbuEUnitClass", "Latitude"))                       \
    ROW(Class, ACTIVITY, 17, QT_TRANSLATE_NOOP("HbuEUnitClass", "Activity"))                       \
    ROW(Class, ACTIVITY_CONCENTRATION, 18,                                                         \
        QT_TRANSLATE_NOOP("HbuEUnitClass", "Activity concentration"))                              \
    ROW(Class, VOLUME_ACTIVITY_CONCENTRATION, 19,                                                  \
        QT_TRANSLATE_NOOP("HbuEUnitClass", "Volume activity concentration"))

class KELVANE_BASIC_EXPORT HbuEUnitClass : public HbbAEnum
{
    HBB_ENUM(HbuEUnitClass, HBU_E_UNIT_CLASS)

public:
    /// ANGLE, LONGITUDE or LATITUDE, whose units have the same keys and the same factors.
    bool isAngle() const;
};
