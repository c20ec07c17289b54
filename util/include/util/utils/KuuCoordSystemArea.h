#pragma once

#include <util/KuExport.h>

#include <QtCore/QString>

/// Where on Earth a coordinate system is meant to be used: a box of longitudes and latitudes in
/// degrees, and its name. A box that crosses the antimeridian has its west greater than its east. A
/// value; any thread.
struct KELVANE_UTIL_EXPORT KuuCoordSystemArea {
    QString name;
    double west = 0.;
    double south = 0.;
    double east = 0.;
    double north = 0.;
    bool isValid = false; ///< nobody stated a box otherwise; the name may be known all the same

    /// A valid box without a name.
    static KuuCoordSystemArea fromBox(double west, double south, double east, double north);
    /// A point, "lon,lat", or a box, "west,south,east,north", in the C locale, latitudes from -90
    /// to 90 and longitudes from -360 to 360; not valid for any other text.
    static KuuCoordSystemArea fromText(const QString& text);

    /// The difference of longitudes, from 0 to 360.
    double getWidth() const;
    /// The part of the Earth's surface, from 0 to 1.
    double getSize() const;
    /// The other one lies within this one, edges included; false when one of them is not valid.
    /// Longitudes are compared modulo 360.
    bool contains(const KuuCoordSystemArea& other) const;
};
