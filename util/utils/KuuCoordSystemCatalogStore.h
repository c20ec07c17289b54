#pragma once

#include <util/utils/KuuCoordSystem.h>
#include <util/utils/KuuCoordSystemCatalogFile.h>

#include <QtCore/QHash>
#include <QtCore/QList>
#include <QtCore/QStringList>

#include <deque>
#include <optional>

/// The state behind KuuCoordSystemCatalog, for one thread at a time: the systems of all catalog
/// files, found by name and code, the favourites, and the user's file. A change writes the file
/// first and takes effect when that succeeded.
class KuuCoordSystemCatalogStore
{
public:
    using System = KuuCoordSystemCatalogFile::System;

    /// As they stand in the file, those included that the catalog does not know.
    struct Favorites {
        QVector<System> geographic;
        QVector<System> projected;

        QVector<System>& of(Ku::CoordSystemMode mode);
        const QVector<System>& of(Ku::CoordSystemMode mode) const;
        bool operator!=(const Favorites& other) const;
    };

    void setCatalogFiles(const QStringList& paths) { m_paths = paths; }
    const QStringList& getCatalogFiles() const { return m_paths; }
    static QString getUserFilePath();

    void read();
    /// The user's file is another one than at the last read or write.
    bool isChangedOnDisk() const;

    /// A place in the catalog, -1 for what it does not know.
    int findName(const QString& name) const { return m_byName.value(name, -1); }
    int findEpsg(const QString& code) const { return m_byEpsg.value(code, -1); }
    int findIgnf(const QString& code) const { return m_byIgnf.value(code, -1); }
    /// An invalid system for the place -1.
    KuuCoordSystem getSystem(int place);
    QList<KuuCoordSystem> getSystems(Ku::CoordSystemMode mode);
    QStringList getNames() const;

    KuuCoordSystem add(const KuuCoordSystem& system);
    bool remove(const QString& name);

    const Favorites& getFavorites() const { return m_favorites; }
    QList<KuuCoordSystem> getFavoriteSystems(Ku::CoordSystemMode mode);
    /// Among those of its mode; -1 when it is none.
    int rankOf(const KuuCoordSystem& system);
    void setFavorites(Ku::CoordSystemMode mode, const QList<KuuCoordSystem>& systems);
    bool addFavorite(const KuuCoordSystem& system);
    bool removeFavorite(const KuuCoordSystem& system);
    bool moveFavorite(const KuuCoordSystem& system, int rank);

private:
    struct Entry {
        System fields;
        bool isOwn = false;
        std::optional<KuuCoordSystem> system; // made when it is asked for
    };
    struct Visible {
        int index; // in the list of the file
        int place; // in the catalog
    };
    struct Stamp {
        QString path;
        qint64 time = -1;
        qint64 size = -1;
        bool operator==(const Stamp& other) const
        {
            return path == other.path && time == other.time && size == other.size;
        }
    };

    static Stamp stampOf(const QString& path);
    static System fieldsOf(const KuuCoordSystem& system);
    void readUser();
    void rebuild();
    void append(const System& fields, bool isOwn);
    int find(const System& fields) const;
    int find(const KuuCoordSystem& system) const;
    QString freeName(const QString& name) const;
    /// The favourites that can be shown: known, valid, of this mode, each once.
    QVector<Visible> getVisible(Ku::CoordSystemMode mode);
    void save(KuuCoordSystemCatalogFile file);
    void saveFavorites(const Favorites& favorites);

    QStringList m_paths;
    QVector<KuuCoordSystemCatalogFile> m_files; // of the application
    KuuCoordSystemCatalogFile m_user;
    Stamp m_stamp; // of the user's file
    std::deque<Entry> m_entries;
    QHash<QString, int> m_byName;
    QHash<QString, int> m_byEpsg;
    QHash<QString, int> m_byIgnf;
    QHash<QString, int> m_byDefinition; // of systems without codes, by the normalised text
    Favorites m_favorites;
};
