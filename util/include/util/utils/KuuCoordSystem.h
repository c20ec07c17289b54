#pragma once

#include <util/KuExport.h>
#include <util/extern/KueProj4Definition.h>
#include <util/utils/KuCoordSystemMode.h>

#include <basic/unit/HbuUnit.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QString>

/// The spatial reference of a project or a dataset: a system known by an EPSG code, an IGNF code or
/// a PROJ.4 definition, or the local (unreferenced) system. A value; any thread.
///
/// Coordinates are x = east or longitude and y = north or latitude, whatever the authority's axis
/// order; those of a geographic system are in degrees.
///
/// A system made from a code that the PROJ library does not know is not valid, but it keeps the
/// code and serialises back as it came, so that a project passes unharmed through an installation
/// whose database lacks the code. A default system is not valid and has nothing.
class KELVANE_UTIL_EXPORT KuuCoordSystem
{
    Q_DECLARE_TR_FUNCTIONS(KuuCoordSystem)

public:
    KuuCoordSystem() = default;

    /// `code` without its prefix ("2154", "LAMB93"). An empty name takes the authority's.
    static KuuCoordSystem createFromEpsg(const QString& code, const QString& name = QString());
    static KuuCoordSystem createFromIgnf(const QString& code, const QString& name = QString());
    static KuuCoordSystem createFromProj4(const KueProj4Definition& definition,
                                          const QString& name = QString());
    /// Valid, without codes or definition; `unit` is a length unit, the metre when not valid.
    static KuuCoordSystem createLocal(const HbuUnit& unit = HbuUnit());
    /// A system put together from fields stored one by one (a catalog, project settings): both
    /// codes may be given. Mode, unit and validity come from the first of the IGNF code, the EPSG
    /// code and the definition that the PROJ library knows; a missing definition is completed from
    /// it.
    static KuuCoordSystem createFromFields(const QString& name, const QString& epsgCode,
                                           const QString& ignfCode,
                                           const KueProj4Definition& definition);

    /// The single-text form: "IGNF:%1", else "EPSG:%1", else "PROJ4:%1" (a definition that is valid
    /// by form), else empty.
    QString serialize() const;
    /// Reads the text form; never throws. The prefixes are case-sensitive and stand at the very
    /// start; a text with none of them, or nothing behind it, gives an invalid system.
    static KuuCoordSystem unserialize(const QString& text);
    /// The same for a text given by the user: raises HbeUserError when the system is not valid.
    static KuuCoordSystem fromUserText(const QString& text);

    /// The local system, or a system that the PROJ library can work with.
    bool isValid() const { return m_isValid; }
    bool isLocal() const { return m_isValid && m_mode == Ku::CoordSystemMode::LOCAL; }
    bool isGeographic() const { return m_isValid && m_mode == Ku::CoordSystemMode::GEOGRAPHIC; }
    bool isProjected() const { return m_isValid && m_mode == Ku::CoordSystemMode::PROJECTED; }
    bool hasEpsgCode() const { return !m_epsgCode.isEmpty(); }
    bool hasIgnfCode() const { return !m_ignfCode.isEmpty(); }
    bool hasProj4() const { return m_proj4.isValid(); }

    QString getName() const { return m_name; }
    QString getEpsgCode() const { return m_epsgCode; }
    QString getIgnfCode() const { return m_ignfCode; }
    /// May be empty for a coded system: not every system can be written as a PROJ.4 definition.
    KueProj4Definition getProj4() const { return m_proj4; }
    /// LOCAL for an invalid system.
    Ku::CoordSystemMode getMode() const { return m_mode; }
    /// Of the coordinates: a length unit, or degrees for a geographic system; invalid for an
    /// invalid system.
    HbuUnit getUnit() const { return m_unit; }

    void changeName(const QString& name) { m_name = name; }

    /// The same codes; without codes, the same definition; without these, both local or both
    /// nothing. Names do not count.
    bool isSameEntity(const KuuCoordSystem& other) const;
    /// Coordinates need no reprojection between the two: the same entity or equivalent to PROJ, or
    /// both without any reference (local or nothing). Units of local systems do not count.
    bool isSameTransfo(const KuuCoordSystem& other) const;

    /// From the system's unit to `unit`, and back; invalid when the units are of different classes
    /// (no length converts degrees).
    HbuUnitTransfo getConvertToTransfo(const HbuUnit& unit) const;
    HbuUnitTransfo getConvertFromTransfo(const HbuUnit& unit) const;

    /// All fields are equal, the name included.
    bool operator==(const KuuCoordSystem& other) const;
    bool operator!=(const KuuCoordSystem& other) const { return !(*this == other); }

private:
    QString m_name;
    QString m_epsgCode;
    QString m_ignfCode;
    KueProj4Definition m_proj4;
    Ku::CoordSystemMode m_mode = Ku::CoordSystemMode::LOCAL;
    HbuUnit m_unit;
    bool m_isValid = false;
};
