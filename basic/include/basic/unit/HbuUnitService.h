#pragma once

#include <basic/base/HbbExport.h>
#include <basic/unit/HbuUnit.h>

#include <QtCore/QVector>

#include <memory>

/// All units: the built-in table and the user's units. Classes and systems are looked up by key at
/// their enumerations (HbuEUnitClass::existsKey, fromKey). A key is unique within its class; keys
/// are case-sensitive.
///
/// A singleton; any thread may use it. Built-in units are never changed, hidden or removed.
/// Nothing here raises an error: what cannot be done is refused, what is not found is an invalid
/// unit or an invalid transformation.
class KELVANE_BASIC_EXPORT HbuUnitService
{
public:
    static HbuUnitService& getInstance();

    /// The units of a class: the built-in ones in table order, then the user's in order of
    /// creation.
    QVector<HbuUnit> getUnits(const HbuEUnitClass& unitClass) const;
    HbuUnit getUnit(const HbuEUnitClass& unitClass, const QString& key) const;
    /// The first unit of the class with this symbol, as table headers hold it ("g/t", "ft").
    HbuUnit getUnitFromSymbol(const HbuEUnitClass& unitClass, const QString& symbol) const;
    /// The first linear unit of the class with this factor towards the reference unit (to 1e-12).
    HbuUnit getUnitFromFactor(const HbuEUnitClass& unitClass, double factor) const;

    /// The unit that the transformations of the class lead to.
    HbuUnit getReferenceUnit(const HbuEUnitClass& unitClass) const;
    /// The unit that values of the class are stored in where the storing side chooses. It is the
    /// reference unit but for ANGLE (deg), TEMPERATURE (degC) and PERMEABILITY (mD).
    HbuUnit getStorageUnit(const HbuEUnitClass& unitClass) const;
    /// Whether units of the class may have a shift: TEMPERATURE only.
    bool acceptsAffine(const HbuEUnitClass& unitClass) const;

    /// From a unit to another of its class; invalid across classes and for an invalid unit.
    HbuUnitTransfo getConversion(const HbuUnit& from, const HbuUnit& to) const;
    HbuUnitTransfo getConversionToStorageUnit(const HbuUnit& unit) const;

    /// A key that no unit of any class has: the name, with "_2", "_3"… behind it where needed.
    QString getUniqueKey(const QString& name) const;
    /// Adds a user unit and returns it. Refused (an invalid unit is returned) when the unit is not
    /// valid, is of class NONE, has a shift that its class does not accept, or when the class has a
    /// unit with its key.
    HbuUnit addUnit(const HbuUnit& unit);
    /// Replaces the user unit with the key of `unit`; its class may change. Refused as `addUnit`
    /// is, and when no user unit has this key.
    bool updateUnit(const HbuUnit& unit);
    /// Removes the user units with this key; false when there is none.
    bool removeUnit(const QString& key);
    /// In order of creation.
    QVector<HbuUnit> getUserUnits() const;

private:
    HbuUnitService();
    ~HbuUnitService();
    Q_DISABLE_COPY(HbuUnitService)

    struct Private;
    const std::unique_ptr<Private> d;
};
