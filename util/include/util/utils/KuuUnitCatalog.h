#pragma once

#include <util/KuExport.h>

#include <basic/unit/HbuUnitService.h>

#include <QtCore/QMap>
#include <QtCore/QObject>

/// The units that the user defines: held by the unit service (HbuUnitService) beside the built-in
/// ones, kept in `unit_user.xml` in the user's directory (KusFileUser); docs/formats/unit-user.md
/// describes the file.
///
/// A process-wide object; main thread.
class KELVANE_UTIL_EXPORT KuuUnitCatalog : public QObject
{
    Q_OBJECT

public:
    /// A unit as the file holds it: field name to text, in the order in which it is written.
    using Fields = QMap<QString, QString>;

    static KuuUnitCatalog& getInstance();
    /// At the start of an application: makes the catalog and loads the user's file. Again later, it
    /// loads what is new there.
    static void init();

    /// The user's file; see loadUserUnits and saveUserUnits.
    void load();
    void save();

    /// Adds the units of a file. Never fails: a file that is missing or cannot be read gives
    /// nothing, a unit that cannot be used, or is known already, is passed over. Sends no notice.
    void loadUserUnits(const QString& path);
    /// Replaces the file as a whole; raises what KuxXml::saveXml raises. Writers in two processes
    /// do not disturb each other: the later file stands. A file that `loadUserUnits` would not
    /// understand whole, because it is damaged or of a newer release, is copied to `path`.old (or
    /// .old2, .old3…) before it is replaced; HbeDiskError when it cannot be, and nothing changes.
    void saveUserUnits(const QString& path);

    /// The new unit, under a key that is made from the name; an invalid one, and nothing happens,
    /// when the unit service refuses it. The unit is written and `unitChanged` is sent. When
    /// writing fails, here and below, the error goes to the caller, no notice is sent, and the
    /// change stands for the session.
    HbuUnit createUnit(const QString& name, const QString& symbol, const HbuEUnitClass& unitClass,
                       const HbuEUnitSystem& unitSystem, const HbuUnitTransfo& transfo);
    /// False, and nothing happens, when the unit service refuses it.
    bool updateUnit(const QString& key, const QString& name, const QString& symbol,
                    const HbuEUnitClass& unitClass, const HbuEUnitSystem& unitSystem,
                    const HbuUnitTransfo& transfo);
    /// False, and nothing happens, when the user has no unit with this key.
    bool deleteUnit(const QString& key);

    /// Whether the key marks a unit that the display makes for itself: such a unit is neither
    /// written nor read.
    static bool isTemporary(const QString& key);

    /// Adds the unit of these fields, as a file of this version holds them, to the unit service;
    /// false when it is passed over.
    static bool _loadUnit(const Fields& fields, int version);
    /// Numbers have 6 significant digits.
    static Fields _saveUnit(const HbuUnit& unit);

signals:
    /// After every successful change by createUnit, updateUnit and deleteUnit.
    void unitChanged();

private:
    KuuUnitCatalog() = default;
    ~KuuUnitCatalog() override = default;
};
