#include <util/utils/KuuCoordSystemCatalog.h>

#include "KuuCoordSystemCatalogStore.h"

#include <exception>
#include <mutex>

using Mode = Ku::CoordSystemMode;

/// What every public operation does alike: one thread at a time, on catalogs that are read.
struct KuuCoordSystemCatalog::Private {
    std::mutex mutex;
    KuuCoordSystemCatalogStore store;
    bool isRead = false;

    void read()
    {
        isRead = true;
        store.read();
    }

    template <class Ask>
    auto ask(const Ask& question)
    {
        const std::lock_guard<std::mutex> lock(mutex);
        if (!isRead)
            read();
        return question(store);
    }

    /// Changes the catalog, and tells when the favourites are others afterwards, which may also be
    /// another process's doing.
    template <class Change>
    void change(KuuCoordSystemCatalog& catalog, const Change& makeChange)
    {
        std::exception_ptr error;
        bool isOther = false;
        {
            const std::lock_guard<std::mutex> lock(mutex);
            if (!isRead)
                read();
            const KuuCoordSystemCatalogStore::Favorites before = store.getFavorites();
            try {
                if (store.isChangedOnDisk())
                    store.read();
                makeChange(store);
            } catch (...) {
                error = std::current_exception();
            }
            isOther = store.getFavorites() != before;
        }
        if (isOther)
            emit catalog.favoritesChanged();
        if (error)
            std::rethrow_exception(error);
    }
};

KuuCoordSystemCatalog& KuuCoordSystemCatalog::getInstance()
{
    static KuuCoordSystemCatalog catalog;
    return catalog;
}

KuuCoordSystemCatalog::KuuCoordSystemCatalog()
    : d(std::make_unique<Private>())
{
}

KuuCoordSystemCatalog::~KuuCoordSystemCatalog() = default;

void KuuCoordSystemCatalog::init()
{
    KuuCoordSystemCatalog& catalog = getInstance();
    Private& own = *catalog.d;
    bool isOther = false;
    {
        const std::lock_guard<std::mutex> lock(own.mutex);
        const KuuCoordSystemCatalogStore::Favorites before = own.store.getFavorites();
        const bool wasRead = own.isRead;
        own.read();
        isOther = wasRead && own.store.getFavorites() != before;
    }
    if (isOther)
        emit catalog.favoritesChanged();
}

void KuuCoordSystemCatalog::setCatalogFiles(const QStringList& paths)
{
    const std::lock_guard<std::mutex> lock(d->mutex);
    d->store.setCatalogFiles(paths);
}

QStringList KuuCoordSystemCatalog::getCatalogFiles() const
{
    const std::lock_guard<std::mutex> lock(d->mutex);
    return d->store.getCatalogFiles();
}

QString KuuCoordSystemCatalog::getUserFilePath()
{
    return KuuCoordSystemCatalogStore::getUserFilePath();
}

KuuCoordSystem KuuCoordSystemCatalog::getCoordSystem(const QString& name) const
{
    const KuuCoordSystem local = getCoordSystemLocal();
    if (name == local.getName())
        return local;
    return d->ask([&name](KuuCoordSystemCatalogStore& store) {
        return store.getSystem(store.findName(name));
    });
}

KuuCoordSystem KuuCoordSystemCatalog::getCoordSystemWithEpsg(const QString& code) const
{
    return d->ask([&code](KuuCoordSystemCatalogStore& store) {
        return store.getSystem(store.findEpsg(code));
    });
}

KuuCoordSystem KuuCoordSystemCatalog::getCoordSystemWithIgnf(const QString& code) const
{
    return d->ask([&code](KuuCoordSystemCatalogStore& store) {
        return store.getSystem(store.findIgnf(code));
    });
}

KuuCoordSystem KuuCoordSystemCatalog::getCoordSystemLocal() const
{
    return KuuCoordSystem::createLocal();
}

KuuCoordSystem KuuCoordSystemCatalog::getWgs84() const
{
    return getCoordSystemWithIgnf(QStringLiteral("WGS84G"));
}

QList<KuuCoordSystem> KuuCoordSystemCatalog::getGeographicList() const
{
    return d->ask(
        [](KuuCoordSystemCatalogStore& store) { return store.getSystems(Mode::GEOGRAPHIC); });
}

QList<KuuCoordSystem> KuuCoordSystemCatalog::getProjectedList() const
{
    return d->ask(
        [](KuuCoordSystemCatalogStore& store) { return store.getSystems(Mode::PROJECTED); });
}

QStringList KuuCoordSystemCatalog::getNames() const
{
    return d->ask([](KuuCoordSystemCatalogStore& store) { return store.getNames(); });
}

KuuCoordSystem KuuCoordSystemCatalog::addCoordSystem(const KuuCoordSystem& system)
{
    KuuCoordSystem added;
    d->change(*this, [&](KuuCoordSystemCatalogStore& store) { added = store.add(system); });
    return added;
}

bool KuuCoordSystemCatalog::removeCoordSystem(const QString& name)
{
    bool isRemoved = false;
    d->change(*this, [&](KuuCoordSystemCatalogStore& store) { isRemoved = store.remove(name); });
    return isRemoved;
}

QList<KuuCoordSystem> KuuCoordSystemCatalog::getFavorites(const Modes& modes) const
{
    return d->ask([&modes](KuuCoordSystemCatalogStore& store) {
        QList<KuuCoordSystem> systems;
        for (const Mode mode : {Mode::GEOGRAPHIC, Mode::PROJECTED}) {
            if (modes.count(mode) != 0)
                systems += store.getFavoriteSystems(mode);
        }
        if (modes.count(Mode::LOCAL) != 0)
            systems += KuuCoordSystem::createLocal();
        return systems;
    });
}

bool KuuCoordSystemCatalog::isFavorite(const KuuCoordSystem& system) const
{
    return d->ask(
        [&system](KuuCoordSystemCatalogStore& store) { return store.rankOf(system) >= 0; });
}

void KuuCoordSystemCatalog::setFavorites(Mode mode, const QList<KuuCoordSystem>& systems)
{
    d->change(*this, [&](KuuCoordSystemCatalogStore& store) { store.setFavorites(mode, systems); });
}

bool KuuCoordSystemCatalog::addFavorite(const KuuCoordSystem& system)
{
    bool isAdded = false;
    d->change(*this,
              [&](KuuCoordSystemCatalogStore& store) { isAdded = store.addFavorite(system); });
    return isAdded;
}

bool KuuCoordSystemCatalog::removeFavorite(const KuuCoordSystem& system)
{
    bool isRemoved = false;
    d->change(*this,
              [&](KuuCoordSystemCatalogStore& store) { isRemoved = store.removeFavorite(system); });
    return isRemoved;
}

bool KuuCoordSystemCatalog::moveFavorite(const KuuCoordSystem& system, int rank)
{
    bool isMoved = false;
    d->change(*this, [&](KuuCoordSystemCatalogStore& store) {
        isMoved = store.moveFavorite(system, rank);
    });
    return isMoved;
}
