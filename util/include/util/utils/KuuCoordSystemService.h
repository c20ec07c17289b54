#pragma once

#include <util/KuExport.h>
#include <util/extern/KueProj4Definition.h>
#include <util/utils/KuCoordSystemMode.h>
#include <util/utils/KuuCoordSystemConverter.h>

#include <basic/unit/HbuUnit.h>

#include <QtCore/QString>

#include <memory>

class KuuCoordSystem;

/// What the PROJ library knows of coordinate systems. Usable are geographic and projected systems,
/// also as the horizontal part of a compound one; all others (vertical, geocentric…) count as
/// unknown.
///
/// A singleton; any thread may use it (each has a PROJ context of its own). Answers are cached, so
/// that asking for one code a thousand times searches the database once. Nothing here raises an
/// error: an unknown code or definition answers an empty or invalid value.
class KELVANE_UTIL_EXPORT KuuCoordSystemService
{
public:
    using Converter = KuuCoordSystemConverter;

    static KuuCoordSystemService& getInstance();
    /// Prepares the calling thread's PROJ context; false when PROJ finds no database of its own, so
    /// that no code can be known.
    static bool init();

    /// What is known of one system.
    struct Description {
        bool isKnown = false;
        QString name;
        KueProj4Definition definition; ///< empty where PROJ.4 cannot express the system
        Ku::CoordSystemMode mode = Ku::CoordSystemMode::LOCAL;
        HbuUnit unit; ///< degrees for a geographic system
    };
    Description describeEpsg(const QString& code) const;
    Description describeIgnf(const QString& code) const;
    Description describeProj4(const KueProj4Definition& definition) const;

    bool existsEpsg(const QString& code) const { return describeEpsg(code).isKnown; }
    bool existsIgnf(const QString& code) const { return describeIgnf(code).isKnown; }
    KueProj4Definition epsgDefinition(const QString& code) const;
    KueProj4Definition ignfDefinition(const QString& code) const;
    /// The definition as PROJ reads it, with the parameters that "+init=epsg:…" stands for; empty
    /// for one that PROJ does not know.
    KueProj4Definition expandDefinition(const KueProj4Definition& definition) const;
    QString extractNameFromEpsg(const QString& code) const;
    QString extractNameFromIgnf(const QString& code) const;
    HbuUnit extractUnit(const KueProj4Definition& definition) const;
    /// LOCAL for a definition that PROJ does not know.
    Ku::CoordSystemMode getCoordSystemMode(const KueProj4Definition& definition) const;
    /// The text that PROJ makes the system from: "IGNF:…", "EPSG:…" or the definition; empty for a
    /// local or invalid system.
    QString csToProj4String(const KuuCoordSystem& system) const;

    /// PROJ finds the two systems equivalent, the axis order of geographic systems apart.
    bool areEquivalent(const KuuCoordSystem& a, const KuuCoordSystem& b) const;

private:
    KuuCoordSystemService();
    ~KuuCoordSystemService();
    Q_DISABLE_COPY(KuuCoordSystemService)

    Description describe(const QString& projText) const;

    struct Private;
    const std::unique_ptr<Private> d;
};
