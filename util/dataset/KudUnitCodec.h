#pragma once

#include <util/utils/KuuMementoCodec.h>

#include <basic/unit/HbuUnitService.h>

/// A unit in a memento's field: "CLASS:key", both as the unit service knows them; empty for none.
template <>
struct KuuMementoCodec<HbuUnit> {
    static QVariant encode(const HbuUnit& unit)
    {
        if (!unit.isValid())
            return QString();
        return QString(unit.getUnitClass().getKey() + QLatin1Char(':') + unit.getKey());
    }

    static bool decode(const QVariant& variant, HbuUnit& unit)
    {
        const QString text = variant.toString();
        const QString unitClass = text.section(QLatin1Char(':'), 0, 0);
        const QString key = text.section(QLatin1Char(':'), 1);
        if (text.isEmpty()) {
            unit = HbuUnit();
            return true;
        }
        if (unitClass == HbuEUnitClass::NONE.getKey()) {
            unit = HbuUnit::none();
            return true;
        }
        if (!HbuEUnitClass::existsKey(unitClass))
            return false;
        const HbuUnit found =
            HbuUnitService::getInstance().getUnit(HbuEUnitClass::fromKey(unitClass), key);
        if (found.isValid())
            unit = found;
        return found.isValid();
    }
};
