#include <basic/unit/HbuEUnitClass.h>
#include <basic/unit/HbuEUnitSystem.h>

HBB_ENUM_DEFINE(HbuEUnitClass, HBU_E_UNIT_CLASS, NONE, "unit/HbuEUnitClass")
bool HbuEUnitClass::isAngle() const
{
    return *this == ANGLE || *this == LONGITUDE || *this == LATITUDE;
}

HBB_ENUM_DEFINE(HbuEUnitSystem, HBU_E_UNIT_SYSTEM, METRIC, "unit/HbuEUnitSystem")
