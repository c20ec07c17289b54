#pragma once

#include <util/KuExport.h>

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QVector>

/// What stands in one catalog file of coordinate systems, as it stands there: nothing is asked of
/// the PROJ library. The form is in docs/formats/cs-catalog.md. A value; any thread.
///
/// Reading never raises an error: a file that cannot be read says so in its state, an entry that
/// means nothing is left out, and both are logged.
struct KELVANE_UTIL_EXPORT KuuCoordSystemCatalogFile {
    enum class State {
        READ,
        MISSING,
        DAMAGED, ///< no XML, no catalog, or not readable
        UNKNOWN  ///< of a version that this library does not know
    };

    /// One `cs` element. The name is never empty; a favourite may be a name alone, a system has a
    /// code or a definition.
    struct System {
        QString name;
        QString epsg;
        QString ignf;
        QString proj4;

        bool operator==(const System& other) const;
        bool operator!=(const System& other) const { return !(*this == other); }
    };

    static constexpr int VERSION = 1;

    State state = State::MISSING;
    QVector<System> systems; ///< in the order of the file; names may repeat
    bool hasFavorites = false;
    QVector<System> geographicFavorites; ///< in the order of their ranks
    QVector<System> projectedFavorites;

    /// A missing file is logged with "  XML file '%1' does not exist.".
    static KuuCoordSystemCatalogFile read(const QString& path);
    /// The same for bytes in memory; `name` stands for the path in messages.
    static KuuCoordSystemCatalogFile fromBytes(const QByteArray& bytes, const QString& name);
    /// The catalog that comes with this library: the systems in common use, and the favourites of a
    /// user who has not chosen any.
    static const KuuCoordSystemCatalogFile& getShipped();

    /// Replaces the file as a whole, with the errors of KuxXml::saveXml. Ranks count from 0.
    void write(const QString& path) const;
    /// The same in memory.
    QByteArray toBytes() const;
    /// A file with the document element alone.
    static void writeEmpty(const QString& path);

    /// One line that XML can hold: white space simplified, U+FFFD for what it cannot.
    static QString toLine(const QString& text);
    /// The same, and "unnamed" for an empty one.
    static QString toName(const QString& name);
};
