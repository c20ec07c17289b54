#pragma once

#include <util/KuExport.h>
#include <util/utils/KuCoordSystemMode.h>
#include <util/utils/KuuCoordSystem.h>

#include <QtCore/QList>
#include <QtCore/QObject>
#include <QtCore/QStringList>

#include <memory>
#include <set>

/// The coordinate systems that this process knows by name, and the user's favourites among them.
///
/// They are read from catalog files: the one that comes with this library, then those that the
/// application adds (setCatalogFiles), then the user's own (`cs_user.xml` in the directory of
/// KusFileUser, created empty when missing). The first catalog that defines a name wins; a later
/// system of that name is logged and ignored, but stays in its file. Reading raises no error: what
/// cannot be read is logged (HbbDebug) and left out. What PROJ knows of a system is found out when
/// the system is first asked for, not at the start.
///
/// The favourites are those of the last catalog that has any list of them, so the shipped ones
/// stand until the user changes something.
///
/// A singleton. Any thread may use it; the signal comes on the thread that made the change. A
/// change is written to the user's file before it takes effect, and raises HbeError or HbeDiskError
/// without any effect when that fails. What another process wrote into the file in between is read
/// first. A user's file that is damaged is set aside as "cs_user.xml.damaged" at the first change;
/// one of an unknown version is left alone, and every change is a HbeUserError.
class KELVANE_UTIL_EXPORT KuuCoordSystemCatalog : public QObject
{
    Q_OBJECT

public:
    using Modes = std::set<Ku::CoordSystemMode>;

    static KuuCoordSystemCatalog& getInstance();
    /// Reads the catalog files, again when that was done before. The first question to the catalog
    /// does it otherwise.
    static void init();

    /// Files of the application, read in this order at the next `init`.
    void setCatalogFiles(const QStringList& paths);
    QStringList getCatalogFiles() const;
    static QString getUserFilePath();

    /// An invalid system when the catalog has no such name (case counts) or code. A system whose
    /// code PROJ does not know is found, but not valid. The name of the local system finds that.
    KuuCoordSystem getCoordSystem(const QString& name) const;
    /// Of several systems with this code the first in the order of the catalogs.
    KuuCoordSystem getCoordSystemWithEpsg(const QString& code) const;
    KuuCoordSystem getCoordSystemWithIgnf(const QString& code) const;
    KuuCoordSystem getCoordSystemLocal() const;
    /// The system whose IGNF code is "WGS84G".
    KuuCoordSystem getWgs84() const;
    /// The valid ones, in the order of the catalogs.
    QList<KuuCoordSystem> getGeographicList() const;
    QList<KuuCoordSystem> getProjectedList() const;
    /// All names, those of systems that are not valid included.
    QStringList getNames() const;

    /// Adds a system to the catalog and to the user's file, and returns it. A name that another
    /// system has already gets a number behind it, "Grid (2)", which the returned system shows. A
    /// system that is there already (the same entity under the same name) is returned as it is
    /// there; one without code and definition (local, invalid) is returned and not added.
    KuuCoordSystem addCoordSystem(const KuuCoordSystem& system);
    /// Removes one of the user's own systems, also from the favourites; false for any other name.
    bool removeCoordSystem(const QString& name);

    /// The valid favourites of the wanted modes, each mode by rank: the geographic ones, the
    /// projected ones, and the local system.
    QList<KuuCoordSystem> getFavorites(const Modes& modes) const;
    bool isFavorite(const KuuCoordSystem& system) const;
    /// Replaces the list of one mode; systems of other modes and repetitions are left out, those
    /// that the catalog lacks are added to it.
    void setFavorites(Ku::CoordSystemMode mode, const QList<KuuCoordSystem>& systems);
    /// Behind the last one of its mode; false when it is one already, or neither geographic nor
    /// projected. A system that the catalog lacks is added to it.
    bool addFavorite(const KuuCoordSystem& system);
    bool removeFavorite(const KuuCoordSystem& system);
    /// To the place `rank`, from 0, among the favourites of its mode, at most to the end; false
    /// when it is no favourite or stands there already.
    bool moveFavorite(const KuuCoordSystem& system, int rank);

signals:
    void favoritesChanged();

private:
    KuuCoordSystemCatalog();
    ~KuuCoordSystemCatalog() override;

    struct Private;
    const std::unique_ptr<Private> d;
};
