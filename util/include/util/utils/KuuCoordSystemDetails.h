#pragma once

#include <util/KuExport.h>
#include <util/utils/KuCoordSystemKind.h>
#include <util/utils/KuuCoordSystemArea.h>

#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVector>

class KuuCoordSystem;

/// What can be said of a coordinate system to people, in the words of its authority. A value, made
/// by `of` on any thread; a system that the PROJ library does not know leaves everything empty but
/// the reason.
struct KELVANE_UTIL_EXPORT KuuCoordSystemDetails {
    struct Axis {
        QString name;         ///< "Geodetic latitude"
        QString abbreviation; ///< "Lat"
        QString direction;    ///< "north"
        QString unit;         ///< "degree"
    };
    struct Other {
        QString text; ///< "EPSG:4326", see KuuCoordSystem::unserialize
        QString name;
    };

    bool isKnown = false;
    QString reason; ///< in PROJ's words, why it is not known; may be empty
    QString name;
    Ku::CoordSystemKind kind = Ku::CoordSystemKind::UNKNOWN;
    QVector<Axis> axes; ///< in the authority's order, of the vertical part, too
    QString method;     ///< of the projection: "Transverse Mercator"
    QString datum;      ///< or datum ensemble, of the horizontal part
    QString ellipsoid;
    double semiMajorAxis = 0.;     ///< metres
    double inverseFlattening = 0.; ///< 0 for a sphere
    QString primeMeridian;
    double primeMeridianLongitude = 0.; ///< degrees east of Greenwich
    KuuCoordSystemArea area;
    QString scope;
    QString proj4; ///< empty where PROJ.4 cannot express the system
    QString wkt2;  ///< ISO 19162:2019
    bool isDeprecated = false;
    QVector<Other> replacements; ///< of a deprecated system

    static KuuCoordSystemDetails of(const KuuCoordSystem& system);
    /// The systems of the other authority (EPSG for a system with an IGNF code, IGNF for others)
    /// that PROJ finds equivalent but for the axis order, the system's own EPSG code first; none
    /// for a system without codes. Takes up to half a second.
    static QVector<Other> findEquivalents(const KuuCoordSystem& system);
};
