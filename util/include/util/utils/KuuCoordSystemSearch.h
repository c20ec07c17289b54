#pragma once

#include <util/KuExport.h>
#include <util/utils/KuCoordSystemKind.h>
#include <util/utils/KuCoordSystemMode.h>
#include <util/utils/KuuCoordSystemArea.h>

#include <QtCore/QString>
#include <QtCore/QVector>

/// Finds coordinate systems of the EPSG and IGNF registers, as far as the PROJ library's database
/// has them, by name, code and area. All that KuuCoordSystem can use are found: geographic,
/// projected, and compound ones.
///
/// The first question reads the database (a quarter of a second), the others take a few
/// milliseconds. Any thread may ask. Nothing here raises an error; without a database nothing is
/// found.
class KELVANE_UTIL_EXPORT KuuCoordSystemSearch
{
public:
    struct Entry {
        QString authority; ///< "EPSG" or "IGNF"
        QString code;
        QString name;
        Ku::CoordSystemMode mode = Ku::CoordSystemMode::PROJECTED;
        Ku::CoordSystemKind kind = Ku::CoordSystemKind::UNKNOWN;
        KuuCoordSystemArea area;
        bool isDeprecated = false;

        /// What KuuCoordSystem::unserialize reads.
        QString getText() const { return authority + QLatin1Char(':') + code; }
    };

    struct Question {
        /// Words that must all occur in the name, the code or the name of the area, without regard
        /// to case, accents and punctuation. No words: everything.
        QString text;
        /// When it is valid: the area of use must contain all of it.
        KuuCoordSystemArea area;
        bool withGeographic = true;
        bool withProjected = true;
        bool withDeprecated = true;
        int limit = 50; ///< of the entries answered
    };

    struct Answer {
        QVector<Entry> entries; ///< the best first
        int count = 0;          ///< of all that were found
    };

    /// Best is an exact code; then systems that are not deprecated come before the others; then an
    /// exact name, a name that begins with the text, a name with the words one behind the other,
    /// and the rest. Among equals systems in common use (those of the shipped catalog) come first,
    /// then names with the words as whole words, as beginnings, inside of words, and words
    /// elsewhere; then 2D before 3D before compound, and smaller areas first when an area was
    /// given, larger ones otherwise.
    static Answer find(const Question& question);
    static Answer find(const QString& text, int limit = 50);

    /// The number of systems that can be found; 0 without a database.
    static int getSystemCount();
};
