#include <basic/unit/HbuUnitService.h>

#include "HbuUnitTable.h"

#include <QtCore/QHash>
#include <QtCore/QSet>

#include <algorithm>
#include <cmath>
#include <map>
#include <mutex>
#include <shared_mutex>

struct HbuUnitService::Private {
    std::map<int, QVector<HbuUnit>> builtIn; // by class value; never changes
    QSet<QString> builtInKeys;
    std::map<int, HbuUnit> user; // by number, in order of creation
    int lastNumber = 0;
    QMultiHash<QString, int> userNumbers; // by key
    mutable std::shared_mutex mutex;      // guards the user's units

    /// The first unit of the class that is wanted, or an invalid one; the caller holds the lock.
    template <class Visitor>
    HbuUnit find(const HbuEUnitClass& unitClass, const Visitor& isWanted) const
    {
        const HbuUnit unit = findBuiltIn(unitClass, isWanted);
        if (unit.isValid())
            return unit;
        for (const auto& numbered : user) {
            if (numbered.second.getUnitClass() == unitClass && isWanted(numbered.second))
                return numbered.second;
        }
        return {};
    }

    template <class Visitor>
    HbuUnit findBuiltIn(const HbuEUnitClass& unitClass, const Visitor& isWanted) const
    {
        const auto units = builtIn.find(unitClass.getValue());
        if (units != builtIn.end()) {
            for (const HbuUnit& unit : units->second) {
                if (isWanted(unit))
                    return unit;
            }
        }
        return {};
    }

    HbuUnit findKey(const HbuEUnitClass& unitClass, const QString& key) const;
    /// The number of the user unit with the key: that of the class, or else the first one; 0 when
    /// there is none.
    int getUserNumber(const QString& key, const HbuEUnitClass& unitClass) const;
};

using ReadLock = std::shared_lock<std::shared_mutex>;
using WriteLock = std::unique_lock<std::shared_mutex>;

HbuUnit HbuUnitService::Private::findKey(const HbuEUnitClass& unitClass, const QString& key) const
{
    const int number = getUserNumber(key, unitClass);
    if (number != 0 && user.at(number).getUnitClass() == unitClass)
        return user.at(number);
    if (!builtInKeys.contains(key))
        return {};
    return findBuiltIn(unitClass, [&key](const HbuUnit& unit) { return unit.getKey() == key; });
}

int HbuUnitService::Private::getUserNumber(const QString& key, const HbuEUnitClass& unitClass) const
{
    int first = 0;
    for (auto it = userNumbers.constFind(key); it != userNumbers.cend() && it.key() == key; ++it) {
        if (user.at(it.value()).getUnitClass() == unitClass)
            return it.value();
        first = first == 0 ? it.value() : std::min(first, it.value());
    }
    return first;
}

HbuUnitService& HbuUnitService::getInstance()
{
    static HbuUnitService service;
    return service;
}

HbuUnitService::HbuUnitService()
    : d(std::make_unique<Private>())
{
    d->builtIn[HbuEUnitClass::E_NONE].append(HbuUnit::none());
    for (const HbuUnitRow* row = HbuUnitTable::begin(); row != HbuUnitTable::end(); ++row)
        d->builtIn[row->unitClass].append(HbuUnit(*row));
    for (const auto& units : d->builtIn) {
        for (const HbuUnit& unit : units.second)
            d->builtInKeys.insert(unit.getKey());
    }
}

HbuUnitService::~HbuUnitService() = default;

QVector<HbuUnit> HbuUnitService::getUnits(const HbuEUnitClass& unitClass) const
{
    const ReadLock lock(d->mutex);
    QVector<HbuUnit> units;
    d->find(unitClass, [&units](const HbuUnit& unit) {
        units.append(unit);
        return false;
    });
    return units;
}

HbuUnit HbuUnitService::getUnit(const HbuEUnitClass& unitClass, const QString& key) const
{
    const ReadLock lock(d->mutex);
    return d->findKey(unitClass, key);
}

HbuUnit HbuUnitService::getUnitFromSymbol(const HbuEUnitClass& unitClass,
                                          const QString& symbol) const
{
    const ReadLock lock(d->mutex);
    return d->find(unitClass,
                   [&symbol](const HbuUnit& unit) { return unit.getSymbol() == symbol; });
}

HbuUnit HbuUnitService::getUnitFromFactor(const HbuEUnitClass& unitClass, double factor) const
{
    const ReadLock lock(d->mutex);
    return d->find(unitClass, [factor](const HbuUnit& unit) {
        const HbuUnitTransfo transfo = unit.getTransfo();
        return !transfo.isAffine() &&
               std::abs(transfo.getFactor() - factor) <= 1e-12 * std::abs(factor);
    });
}

HbuUnit HbuUnitService::getReferenceUnit(const HbuEUnitClass& unitClass) const
{
    const auto units = d->builtIn.find(unitClass.getValue());
    return units == d->builtIn.end() ? HbuUnit() : units->second.first();
}

HbuUnit HbuUnitService::getStorageUnit(const HbuEUnitClass& unitClass) const
{
    switch (unitClass.toEnum()) {
    case HbuEUnitClass::E_ANGLE:
        return getUnit(unitClass, QStringLiteral("deg"));
    case HbuEUnitClass::E_TEMPERATURE:
        return getUnit(unitClass, QStringLiteral("degC"));
    case HbuEUnitClass::E_PERMEABILITY:
        return getUnit(unitClass, QStringLiteral("mD"));
    default:
        return getReferenceUnit(unitClass);
    }
}

bool HbuUnitService::acceptsAffine(const HbuEUnitClass& unitClass) const
{
    return unitClass == HbuEUnitClass::TEMPERATURE;
}

HbuUnitTransfo HbuUnitService::getConversion(const HbuUnit& from, const HbuUnit& to) const
{
    if (!from.isValid() || !to.isValid() || from.getUnitClass() != to.getUnitClass())
        return HbuUnitTransfo::invalid();
    return from.getTransfo().followedBy(to.getTransfo().inverted());
}

HbuUnitTransfo HbuUnitService::getConversionToStorageUnit(const HbuUnit& unit) const
{
    return getConversion(unit, getStorageUnit(unit.getUnitClass()));
}

QString HbuUnitService::getUniqueKey(const QString& name) const
{
    const ReadLock lock(d->mutex);
    const QString base = name.isEmpty() ? QStringLiteral("unit") : name;
    QString key = base;
    for (int i = 2; d->builtInKeys.contains(key) || d->userNumbers.contains(key); ++i)
        key = base + QLatin1Char('_') + QString::number(i);
    return key;
}

static bool isAcceptable(const HbuUnit& unit)
{
    return unit.isValid() && !unit.isNone() &&
           (!unit.getTransfo().isAffine() ||
            HbuUnitService::getInstance().acceptsAffine(unit.getUnitClass()));
}

HbuUnit HbuUnitService::addUnit(const HbuUnit& unit)
{
    if (!isAcceptable(unit))
        return {};
    const WriteLock lock(d->mutex);
    if (d->findKey(unit.getUnitClass(), unit.getKey()).isValid())
        return {};
    d->user.emplace(++d->lastNumber, unit);
    d->userNumbers.insert(unit.getKey(), d->lastNumber);
    return unit;
}

bool HbuUnitService::updateUnit(const HbuUnit& unit)
{
    if (!isAcceptable(unit))
        return false;
    const WriteLock lock(d->mutex);
    const int number = d->getUserNumber(unit.getKey(), unit.getUnitClass());
    if (number == 0)
        return false;
    HbuUnit& replaced = d->user.at(number);
    const bool changesClass = replaced.getUnitClass() != unit.getUnitClass();
    if (changesClass && d->findKey(unit.getUnitClass(), unit.getKey()).isValid())
        return false;
    replaced = unit;
    return true;
}

bool HbuUnitService::removeUnit(const QString& key)
{
    const WriteLock lock(d->mutex);
    const QList<int> numbers = d->userNumbers.values(key);
    for (const int number : numbers)
        d->user.erase(number);
    return d->userNumbers.remove(key) > 0;
}

QVector<HbuUnit> HbuUnitService::getUserUnits() const
{
    const ReadLock lock(d->mutex);
    QVector<HbuUnit> units;
    for (const auto& numbered : d->user)
        units.append(numbered.second);
    return units;
}
