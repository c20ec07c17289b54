#include "KuuCoordSystemCatalogStore.h"

#include <basic/base/HbbDebug.h>
#include <basic/error/HbeDiskError.h>
#include <basic/error/HbeUserError.h>
#include <util/system/KusFileUser.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QDateTime>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QSet>

#include <algorithm>

using Mode = Ku::CoordSystemMode;
using System = KuuCoordSystemCatalogFile::System;

namespace
{
const QString USER_FILE = QStringLiteral("cs_user.xml");

QString tr(const char* text)
{
    return QCoreApplication::translate("KuuCoordSystemCatalog", text);
}

bool hasCode(const System& system)
{
    return !system.epsg.isEmpty() || !system.ignf.isEmpty();
}

QString normalized(const QString& proj4)
{
    return KueProj4Definition(proj4).getNormalizedText();
}

/// Two records speak of the same system, as far as they say. A record that is but a name speaks of
/// any system of that name.
bool agree(const System& a, const System& b)
{
    const auto share = [&](QString System::*code) {
        return !(a.*code).isEmpty() && a.*code == b.*code;
    };
    const auto differ = [&](QString System::*code) {
        return !(a.*code).isEmpty() && !(b.*code).isEmpty() && a.*code != b.*code;
    };
    if (differ(&System::epsg) || differ(&System::ignf))
        return false;
    if (share(&System::epsg) || share(&System::ignf))
        return true;
    const bool isName = (!hasCode(a) && a.proj4.isEmpty()) || (!hasCode(b) && b.proj4.isEmpty());
    return isName || (!hasCode(a) && !hasCode(b) && normalized(a.proj4) == normalized(b.proj4));
}

/// A damaged file is not lost: whoever knows what stood there may mend it.
void setAside(const QString& path)
{
    QString aside = path + QStringLiteral(".damaged");
    for (int i = 2; QFile::exists(aside); ++i)
        aside = QStringLiteral("%1.damaged%2").arg(path).arg(i);
    if (!QFile::rename(path, aside))
        throw HbeDiskError(tr("Cannot set the damaged file '%1' aside.").arg(path));
    HbbDebug::printWarning(tr("The damaged file '%1' is now '%2'.").arg(path, aside));
}
} // namespace

QVector<System>& KuuCoordSystemCatalogStore::Favorites::of(Mode mode)
{
    return mode == Mode::GEOGRAPHIC ? geographic : projected;
}

const QVector<System>& KuuCoordSystemCatalogStore::Favorites::of(Mode mode) const
{
    return mode == Mode::GEOGRAPHIC ? geographic : projected;
}

bool KuuCoordSystemCatalogStore::Favorites::operator!=(const Favorites& other) const
{
    return geographic != other.geographic || projected != other.projected;
}

QString KuuCoordSystemCatalogStore::getUserFilePath()
{
    return KusFileUser::getPath(USER_FILE);
}

KuuCoordSystemCatalogStore::Stamp KuuCoordSystemCatalogStore::stampOf(const QString& path)
{
    const QFileInfo info(path);
    return {path, info.exists() ? info.lastModified().toMSecsSinceEpoch() : -1,
            info.exists() ? info.size() : -1};
}

bool KuuCoordSystemCatalogStore::isChangedOnDisk() const
{
    return !(stampOf(getUserFilePath()) == m_stamp);
}

void KuuCoordSystemCatalogStore::read()
{
    m_files.clear();
    for (const QString& path : qAsConst(m_paths))
        m_files.append(KuuCoordSystemCatalogFile::read(path));
    readUser();
    rebuild();

    for (const Mode mode : {Mode::GEOGRAPHIC, Mode::PROJECTED}) {
        for (const System& favorite : qAsConst(m_favorites.of(mode))) {
            if (find(favorite) < 0)
                HbbDebug::print(tr("Favorite coordinate system '%1' is in no catalog (ignored).")
                                    .arg(favorite.name));
        }
    }
}

void KuuCoordSystemCatalogStore::readUser()
{
    const QString path = getUserFilePath();
    m_stamp = stampOf(path);
    if (m_stamp.size >= 0) {
        m_user = KuuCoordSystemCatalogFile::read(path);
        return;
    }
    m_user = KuuCoordSystemCatalogFile();
    try {
        KuuCoordSystemCatalogFile::writeEmpty(KusFileUser::createPath(USER_FILE));
        m_stamp = stampOf(path);
    } catch (const HbeError& error) {
        HbbDebug::printWarning(error.getMessage()); // a directory that may not be written
    }
}

void KuuCoordSystemCatalogStore::rebuild()
{
    m_entries.clear();
    m_byName.clear();
    m_byEpsg.clear();
    m_byIgnf.clear();
    m_byDefinition.clear();
    m_favorites = Favorites();
    const auto add = [this](const KuuCoordSystemCatalogFile& file, bool isOwn) {
        for (const System& system : file.systems)
            append(system, isOwn);
        if (file.hasFavorites)
            m_favorites = {file.geographicFavorites, file.projectedFavorites};
    };
    // The local system is none of the catalog's, but its name is taken.
    const QString local = KuuCoordSystem::createLocal().getName();
    m_byName.insert(local, -1);
    add(KuuCoordSystemCatalogFile::getShipped(), false);
    for (const KuuCoordSystemCatalogFile& file : qAsConst(m_files))
        add(file, false);
    add(m_user, true);
}

void KuuCoordSystemCatalogStore::append(const System& fields, bool isOwn)
{
    if (m_byName.contains(fields.name)) {
        HbbDebug::print(tr("Loading coordinate system catalog: coordinate system '%1' already in "
                           "catalog (ignored).")
                            .arg(fields.name));
        return;
    }
    const int place = int(m_entries.size());
    const auto insertFirst = [place](QHash<QString, int>& places, const QString& key) {
        if (!key.isEmpty() && !places.contains(key))
            places.insert(key, place);
    };
    m_byName.insert(fields.name, place);
    insertFirst(m_byEpsg, fields.epsg);
    insertFirst(m_byIgnf, fields.ignf);
    if (!hasCode(fields))
        insertFirst(m_byDefinition, normalized(fields.proj4));
    m_entries.push_back({fields, isOwn, std::nullopt});
}

KuuCoordSystem KuuCoordSystemCatalogStore::getSystem(int place)
{
    if (place < 0)
        return KuuCoordSystem();
    Entry& entry = m_entries[size_t(place)];
    if (!entry.system) {
        const System& fields = entry.fields;
        entry.system = KuuCoordSystem::createFromFields(fields.name, fields.epsg, fields.ignf,
                                                        KueProj4Definition(fields.proj4));
    }
    return *entry.system;
}

QList<KuuCoordSystem> KuuCoordSystemCatalogStore::getSystems(Mode mode)
{
    QList<KuuCoordSystem> systems;
    for (int place = 0; place < int(m_entries.size()); ++place) {
        const KuuCoordSystem system = getSystem(place);
        if (system.isValid() && system.getMode() == mode)
            systems.append(system);
    }
    return systems;
}

QStringList KuuCoordSystemCatalogStore::getNames() const
{
    QStringList names;
    for (const Entry& entry : m_entries)
        names.append(entry.fields.name);
    return names;
}

/// By name, if the rest agrees, and then by what a renamed system keeps.
int KuuCoordSystemCatalogStore::find(const System& fields) const
{
    const int places[] = {findName(fields.name), findIgnf(fields.ignf), findEpsg(fields.epsg),
                          hasCode(fields) ? -1
                                          : m_byDefinition.value(normalized(fields.proj4), -1)};
    for (const int place : places) {
        if (place >= 0 && agree(m_entries[size_t(place)].fields, fields))
            return place;
    }
    return -1;
}

int KuuCoordSystemCatalogStore::find(const KuuCoordSystem& system) const
{
    return system.serialize().isEmpty() ? -1 : find(fieldsOf(system));
}

System KuuCoordSystemCatalogStore::fieldsOf(const KuuCoordSystem& system)
{
    System fields;
    fields.name = KuuCoordSystemCatalogFile::toName(system.getName());
    fields.epsg = KuuCoordSystemCatalogFile::toLine(system.getEpsgCode());
    fields.ignf = KuuCoordSystemCatalogFile::toLine(system.getIgnfCode());
    // The definition that PROJ gives for the codes may change with its version: it is not kept.
    const KuuCoordSystem coded = KuuCoordSystem::createFromFields(
        fields.name, fields.epsg, fields.ignf, KueProj4Definition());
    if (!hasCode(fields) || system.getProj4() != coded.getProj4())
        fields.proj4 = KuuCoordSystemCatalogFile::toLine(system.getProj4().getText());
    return fields;
}

QString KuuCoordSystemCatalogStore::freeName(const QString& name) const
{
    QString free = name;
    for (int i = 2; m_byName.contains(free); ++i)
        free = QStringLiteral("%1 (%2)").arg(name).arg(i);
    return free;
}

KuuCoordSystem KuuCoordSystemCatalogStore::add(const KuuCoordSystem& system)
{
    if (system.serialize().isEmpty())
        return system;
    System fields = fieldsOf(system);
    const int place = findName(fields.name);
    if (place >= 0 && agree(m_entries[size_t(place)].fields, fields))
        return getSystem(place);

    fields.name = freeName(fields.name);
    KuuCoordSystemCatalogFile file = m_user;
    file.systems.append(fields);
    save(file);
    append(fields, true);
    return getSystem(int(m_entries.size()) - 1);
}

bool KuuCoordSystemCatalogStore::remove(const QString& name)
{
    const int place = findName(name);
    if (place < 0 || !m_entries[size_t(place)].isOwn)
        return false;
    KuuCoordSystemCatalogFile file = m_user;
    const auto isMeant = [&name](const System& system) { return system.name == name; };
    file.systems.erase(std::find_if(file.systems.begin(), file.systems.end(), isMeant));
    for (QVector<System>* favorites : {&file.geographicFavorites, &file.projectedFavorites}) {
        const auto leadsThere = [&](const System& system) { return find(system) == place; };
        favorites->erase(std::remove_if(favorites->begin(), favorites->end(), leadsThere),
                         favorites->end());
    }
    save(file);
    rebuild();
    return true;
}

QVector<KuuCoordSystemCatalogStore::Visible> KuuCoordSystemCatalogStore::getVisible(Mode mode)
{
    const QVector<System>& favorites = m_favorites.of(mode);
    QVector<Visible> visible;
    QSet<int> seen;
    for (int i = 0; i < favorites.size(); ++i) {
        const int place = find(favorites.at(i));
        const KuuCoordSystem system = getSystem(place);
        if (!system.isValid() || system.getMode() != mode || seen.contains(place))
            continue;
        seen.insert(place);
        visible.append({i, place});
    }
    return visible;
}

QList<KuuCoordSystem> KuuCoordSystemCatalogStore::getFavoriteSystems(Mode mode)
{
    QList<KuuCoordSystem> systems;
    for (const Visible& favorite : getVisible(mode))
        systems.append(getSystem(favorite.place));
    return systems;
}

int KuuCoordSystemCatalogStore::rankOf(const KuuCoordSystem& system)
{
    const int place = find(system);
    const QVector<Visible> visible = getVisible(system.getMode());
    for (int rank = 0; place >= 0 && rank < visible.size(); ++rank) {
        if (visible.at(rank).place == place)
            return rank;
    }
    return -1;
}

void KuuCoordSystemCatalogStore::setFavorites(Mode mode, const QList<KuuCoordSystem>& systems)
{
    if (mode == Mode::LOCAL)
        return;
    Favorites favorites = m_favorites;
    QVector<System>& list = favorites.of(mode);
    // Those that cannot be shown here and now are not the caller's to drop.
    QVector<System> hidden;
    for (const System& favorite : qAsConst(list)) {
        const KuuCoordSystem shown = getSystem(find(favorite));
        if (!shown.isValid() || shown.getMode() != mode)
            hidden.append(favorite);
    }
    list.clear();
    QSet<int> seen;
    for (const KuuCoordSystem& system : systems) {
        if (!system.isValid() || system.getMode() != mode)
            continue;
        int place = find(system);
        if (place < 0)
            place = findName(add(system).getName());
        if (seen.contains(place))
            continue;
        seen.insert(place);
        list.append(m_entries[size_t(place)].fields);
    }
    list += hidden;
    saveFavorites(favorites);
}

bool KuuCoordSystemCatalogStore::addFavorite(const KuuCoordSystem& system)
{
    if ((!system.isGeographic() && !system.isProjected()) || rankOf(system) >= 0)
        return false;
    int place = find(system);
    if (place < 0)
        place = findName(add(system).getName());
    Favorites favorites = m_favorites;
    favorites.of(system.getMode()).append(m_entries[size_t(place)].fields);
    saveFavorites(favorites);
    return true;
}

bool KuuCoordSystemCatalogStore::removeFavorite(const KuuCoordSystem& system)
{
    const int place = find(system);
    if (rankOf(system) < 0)
        return false;
    Favorites favorites = m_favorites;
    QVector<System>& list = favorites.of(system.getMode());
    const auto leadsThere = [&](const System& favorite) { return find(favorite) == place; };
    list.erase(std::remove_if(list.begin(), list.end(), leadsThere), list.end());
    saveFavorites(favorites);
    return true;
}

bool KuuCoordSystemCatalogStore::moveFavorite(const KuuCoordSystem& system, int rank)
{
    const QVector<Visible> visible = getVisible(system.getMode());
    const int from = rankOf(system);
    const int to = std::max(0, std::min(rank, visible.size() - 1));
    if (from < 0 || from == to)
        return false;
    Favorites favorites = m_favorites;
    favorites.of(system.getMode()).move(visible.at(from).index, visible.at(to).index);
    saveFavorites(favorites);
    return true;
}

void KuuCoordSystemCatalogStore::saveFavorites(const Favorites& favorites)
{
    KuuCoordSystemCatalogFile file = m_user;
    file.hasFavorites = true;
    file.geographicFavorites = favorites.geographic;
    file.projectedFavorites = favorites.projected;
    save(file);
    m_favorites = favorites;
}

void KuuCoordSystemCatalogStore::save(KuuCoordSystemCatalogFile file)
{
    if (m_user.state == KuuCoordSystemCatalogFile::State::UNKNOWN)
        throw HbeUserError(tr("The user's coordinate systems are not changed: '%1' is of a version "
                              "that this program does not know.")
                               .arg(m_stamp.path));
    const QString path = KusFileUser::createPath(USER_FILE);
    if (m_user.state == KuuCoordSystemCatalogFile::State::DAMAGED && QFile::exists(path))
        setAside(path);
    file.write(path);
    file.state = KuuCoordSystemCatalogFile::State::READ;
    m_user = file;
    m_stamp = stampOf(path);
}
