#pragma once

#include <basic/base/HbbExport.h>
#include <basic/unit/HbuEUnitClass.h>
#include <basic/unit/HbuEUnitSystem.h>
#include <basic/unit/HbuUnitTransfo.h>

#include <QtCore/QString>

#include <memory>

struct HbuUnitRow;

/// A unit of measure: an immutable value, cheap to copy; any thread. Units come from the unit
/// service; a value taken before the service updated or removed its unit keeps what it was.
///
/// A default unit is not valid: nothing is known of the values' unit. `none()` is valid and says
/// that the values have no unit. Both answer class NONE.
class KELVANE_BASIC_EXPORT HbuUnit
{
public:
    HbuUnit() = default;
    /// `transfo` leads to the reference unit of `unitClass`. The key identifies the unit within its
    /// class and goes into files, name and symbol are shown.
    HbuUnit(const QString& key, const QString& name, const QString& symbol,
            const HbuEUnitClass& unitClass, const HbuEUnitSystem& unitSystem,
            const HbuUnitTransfo& transfo);

    /// The marker of values without unit: key "NONE", class NONE, identity.
    static HbuUnit none();

    /// It has a key, and a valid transformation.
    bool isValid() const;
    bool isNone() const { return getUnitClass() == HbuEUnitClass::NONE; }

    QString getKey() const;
    QString getName() const; ///< translated for built-in units
    QString getSymbol() const;
    HbuEUnitClass getUnitClass() const;
    HbuEUnitSystem getUnitSystem() const;
    /// Towards the reference unit of the class; invalid for a default unit.
    HbuUnitTransfo getTransfo() const;

    /// Of the built-in table, not the user's.
    bool isBuiltIn() const;
    /// Who publishes the factor of a built-in unit, in English; else empty.
    QString getSource() const;

    /// All fields are equal.
    bool operator==(const HbuUnit& other) const;
    bool operator!=(const HbuUnit& other) const { return !(*this == other); }

private:
    friend class HbuUnitService;
    explicit HbuUnit(const HbuUnitRow& row);

    struct Data;
    std::shared_ptr<const Data> m_data; // null for a default unit
};
