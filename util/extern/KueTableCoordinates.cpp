#include "KueTableCoordinates.h"

namespace
{
/// A kind of coordinates, by decreasing rank of its names.
struct Pair {
    QStringList x;
    QStringList y;
};

const QList<Pair>& pairs()
{
    static const QList<Pair> list = {
        {{"x", "xcoord", "xcoordinate", "coordx", "xloc", "xlocation", "xcollar", "xutm", "utmx",
          "posx"},
         {"y", "ycoord", "ycoordinate", "coordy", "yloc", "ylocation", "ycollar", "yutm", "utmy",
          "posy"}},
        {{"easting", "eastings", "east", "utme", "utmeasting", "eastingutm"},
         {"northing", "northings", "north", "utmn", "utmnorthing", "northingutm"}},
        {{"longitude", "lon", "long", "lng", "londd", "longdd", "longitudedd", "decimallongitude"},
         {"latitude", "lat", "latdd", "latitudedd", "decimallatitude"}}};
    return list;
}

const QStringList& zNames()
{
    static const QStringList list = {"z",         "zcoord",    "zcoordinate", "coordz",
                                     "zloc",      "zlocation", "zcollar",     "zutm",
                                     "elevation", "altitude"};
    return list;
}

/// "X (m)", "x_m" and "X location in meter" without what does not tell them apart.
QString simplified(const QString& name)
{
    QString letters;
    for (const QChar c : name) {
        if ((c == '(' || c == '[') && !letters.isEmpty())
            break;
        if (c.isLetterOrNumber())
            letters.append(c.toLower());
        else if (!letters.isEmpty() && !letters.endsWith(' '))
            letters.append(' ');
    }
    QStringList words = letters.split(' ', Qt::SkipEmptyParts);
    static const QStringList units = {"m",  "in",   "meter", "meters", "metre",  "metres",
                                      "ft", "feet", "km",    "deg",    "degree", "degrees"};
    while (words.size() > 1 && units.contains(words.last()))
        words.removeLast();
    return words.join(QString());
}

int find(const QStringList& names, const QStringList& known,
         const std::function<bool(int)>& isNumeric)
{
    for (const QString& name : known) {
        for (int i = 0; i < names.size(); ++i) {
            if (names.at(i) == name && isNumeric(i))
                return i;
        }
    }
    return -1;
}
} // namespace

KueTableCoordinates KueTableCoordinates::guess(const QStringList& names,
                                               const std::function<bool(int)>& isNumeric)
{
    QStringList simple;
    for (const QString& name : names)
        simple.append(simplified(name));
    KueTableCoordinates found;
    for (const Pair& pair : pairs()) {
        found.x = find(simple, pair.x, isNumeric);
        found.y = find(simple, pair.y, isNumeric);
        if (found.x >= 0 && found.y >= 0) {
            found.z = find(simple, zNames(), isNumeric);
            return found;
        }
    }
    return KueTableCoordinates();
}
