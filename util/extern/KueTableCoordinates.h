#pragma once

#include <QtCore/QStringList>

#include <functional>

/// Which columns are coordinates, by their names.
struct KueTableCoordinates {
    int x = -1; ///< positions of columns; -1 where there is none
    int y = -1;
    int z = -1;

    /// Looks for X and Y of one kind (x and y, easting and northing, longitude and latitude), and,
    /// where there are both, for a Z. Names are compared without case, punctuation and units. Only
    /// columns that `isNumeric` agrees to are taken.
    static KueTableCoordinates guess(const QStringList& names,
                                     const std::function<bool(int)>& isNumeric);
};
