#include "KusArchiveCommit.h"

#include "KusArchiveStaging.h"

#include <basic/base/HbbDebug.h>
#include <basic/error/HbeDiskError.h>
#include <basic/error/HbeUserError.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include <fcntl.h>
#include <unistd.h>

namespace
{
constexpr char ASIDE_NAME[] = "aside";

bool renameWith(int from, const char* oldName, int to, const char* newName, bool exchanging)
{
#ifdef RENAME_EXCHANGE
    const unsigned flags = exchanging ? RENAME_EXCHANGE : RENAME_NOREPLACE;
    return ::renameat2(from, oldName, to, newName, flags) == 0;
#else
    Q_UNUSED(from)
    Q_UNUSED(oldName) Q_UNUSED(to) Q_UNUSED(newName) Q_UNUSED(exchanging) errno = ENOSYS;
    return false;
#endif
}

bool lacksFlags(int error)
{
    return error == EINVAL || error == ENOSYS || error == ENOTSUP;
}

/// Fails where there is something at the new place.
bool rename(int from, const char* oldName, int to, const char* newName)
{
    if (renameWith(from, oldName, to, newName, false))
        return true;
    if (!lacksFlags(errno))
        return false;
    struct stat facts = {};
    if (::fstatat(to, newName, &facts, AT_SYMLINK_NOFOLLOW) == 0) {
        errno = EEXIST;
        return false;
    }
    return ::renameat(from, oldName, to, newName) == 0;
}

QString withReason(const QString& text)
{
    return text + '\n' + qt_error_string(errno);
}
} // namespace

KusArchiveCommit::KusArchiveCommit(KusArchiveStaging& staging, const QString& archivePath,
                                   bool replaces)
    : m_staging(staging)
    , m_archivePath(archivePath)
    , m_replaces(replaces)
    , m_sources(staging.getMembers(), KusArchiveDescent::Use::READ)
    , m_places(staging.getTarget(), KusArchiveDescent::Use::SEARCH)
{
}

void KusArchiveCommit::run(const std::function<void()>& checkCancelled)
{
    try {
        m_pending.emplace_back();
        while (!m_pending.empty()) {
            const std::string path = std::move(m_pending.back());
            m_pending.pop_back();
            merge(path, checkCancelled);
        }
    } catch (...) {
        if (!undo()) {
            m_staging.keep();
            HbbDebug::printWarning(tr("Not everything could be moved back. What is missing is in "
                                      "'%1'.")
                                       .arg(m_staging.getPathText()));
        }
        throw;
    }
    m_staging.setDone();
}

void KusArchiveCommit::merge(const std::string& path, const std::function<void()>& checkCancelled)
{
    openBoth(path);
    struct stat facts = {};
    if (m_source < 0 || m_place < 0 || ::fstat(m_place, &facts) != 0) {
        throw HbeDiskError(
            withReason(tr("Cannot create directory '%1'.").arg(m_staging.getText(path))));
    }
    m_merges.push_back({path, facts.st_mtim, std::string()});
    std::string& entries = m_merges.back().entries;
    // Listed first: exchanging adds entries to the directory. Their room is counted before that,
    // for a text that grows takes up to three times its size.
    std::size_t room = 0;
    KusArchiveDescent::list(m_source,
                            [&](const char* name, bool) { room += 2 + std::strlen(name) + 1; });
    entries.reserve(room);
    const bool listed = KusArchiveDescent::list(m_source, [&](const char* name, bool isDirectory) {
        entries.push_back(PENDING);
        entries.push_back(isDirectory ? 'd' : 'f');
        entries.append(name).push_back('\0');
    });
    if (!listed) {
        throw HbeDiskError(
            withReason(tr("Cannot create directory '%1'.").arg(m_staging.getText(path))));
    }
    for (std::size_t i = 0; i < entries.size();) {
        checkCancelled();
        const char* name = entries.c_str() + i + 2;
        entries[i] = place(path, name, entries[i + 1] == 'd');
        i += 2 + std::strlen(name) + 1;
    }
    const struct timespec times[2] = {{0, UTIME_OMIT}, facts.st_mtim};
    if (!path.empty())
        ::utimensat(m_place, ".", times, 0); // only its owner may; others go without
}

void KusArchiveCommit::openBoth(const std::string& path)
{
    m_source = m_sources.open(path);
    m_place = m_source < 0 ? -1 : m_places.open(path);
}

KusArchiveCommit::State KusArchiveCommit::place(const std::string& path, const char* name,
                                                bool isDirectory)
{
    return isDirectory ? placeDirectory(path, name) : placeFile(path, name);
}

KusArchiveCommit::State KusArchiveCommit::placeDirectory(const std::string& path, const char* name)
{
    const std::string whole = KusArchiveDescent::join(path, name);
    const QString text = m_staging.getText(whole);
    if (rename(m_source, name, m_place, name)) {
        // The move took the owner's permissions.
        struct stat facts = {};
        const mode_t mode = m_staging.getPermissions(whole);
        if ((mode & S_IRWXU) != S_IRWXU &&
            (::fstatat(m_place, name, &facts, AT_SYMLINK_NOFOLLOW) != 0 ||
             ::fchmodat(m_place, name, mode | (facts.st_mode & S_ISGID), AT_SYMLINK_NOFOLLOW) != 0))
            HbbDebug::printWarning(withReason(tr("Cannot set the permissions of '%1'.").arg(text)));
        return MOVED_DIRECTORY;
    }
    struct stat facts = {};
    if (errno != EEXIST || ::fstatat(m_place, name, &facts, AT_SYMLINK_NOFOLLOW) != 0)
        throw HbeDiskError(withReason(tr("Cannot create directory '%1'.").arg(text)));
    if (S_ISLNK(facts.st_mode))
        throw HbeUserError(getLinkText(text));
    if (!S_ISDIR(facts.st_mode)) {
        throw HbeUserError(tr("Cannot create directory '%1'.").arg(text) + '\n' +
                           tr("There is a file in its place."));
    }
    m_pending.push_back(whole);
    return PENDING;
}

KusArchiveCommit::State KusArchiveCommit::placeFile(const std::string& path, const char* name)
{
    if (rename(m_source, name, m_place, name))
        return MOVED;
    const QString text = m_staging.getText(KusArchiveDescent::join(path, name));
    struct stat facts = {};
    if (errno != EEXIST || ::fstatat(m_place, name, &facts, AT_SYMLINK_NOFOLLOW) != 0)
        throw HbeDiskError(withReason(tr("Cannot create file '%1'.").arg(text)));
    if (S_ISLNK(facts.st_mode))
        throw HbeUserError(getLinkText(text));
    if (S_ISDIR(facts.st_mode)) {
        throw HbeUserError(tr("Cannot create file '%1'.").arg(text) + '\n' +
                           tr("There is a directory in its place."));
    }
    if (!m_replaces)
        throw HbeUserError(tr("File '%1' already exists.").arg(text));
    if (!exchange(name)) {
        throw HbeDiskError(
            withReason(tr("Cannot remove existing '%1'\nbefore extracting the archive '%2'.")
                           .arg(text, m_archivePath)));
    }
    // Somebody may have put another entry there since it was looked at; a directory would be lost.
    if (::fstatat(m_source, name, &facts, AT_SYMLINK_NOFOLLOW) != 0 || S_ISDIR(facts.st_mode) ||
        S_ISLNK(facts.st_mode)) {
        m_leavesAside = !exchange(name);
        throw HbeDiskError(tr("Cannot create file '%1'.").arg(text) + '\n' +
                           tr("What stands in its place has changed."));
    }
    return EXCHANGED;
}

/// Of the entries of one name in the two directories at work.
bool KusArchiveCommit::exchange(const char* name)
{
    if (renameWith(m_source, name, m_place, name, true))
        return true;
    if (!lacksFlags(errno))
        return false;
    const int aside = m_staging.getDirectory();
    if (!rename(m_place, name, aside, ASIDE_NAME))
        return false;
    if (rename(m_source, name, m_place, name)) {
        if (rename(aside, ASIDE_NAME, m_source, name))
            return true;
        rename(m_place, name, m_source, name);
    }
    const int reason = errno;
    m_leavesAside = !rename(aside, ASIDE_NAME, m_place, name);
    errno = reason;
    return false;
}

bool KusArchiveCommit::undo()
{
    bool complete = !m_leavesAside;
    for (const Merge& merge : m_merges) {
        openBoth(merge.path);
        if (m_source < 0 || m_place < 0) {
            complete = false;
            continue;
        }
        for (std::size_t i = 0; i < merge.entries.size();) {
            const char* name = merge.entries.c_str() + i + 2;
            complete = undoEntry(State(merge.entries[i]), name) && complete;
            i += 2 + std::strlen(name) + 1;
        }
        const struct timespec times[2] = {{0, UTIME_OMIT}, merge.modified};
        ::utimensat(m_place, ".", times, 0);
    }
    return complete;
}

bool KusArchiveCommit::undoEntry(State state, const char* name)
{
    switch (state) {
    case PENDING:
        return true;
    case MOVED_DIRECTORY:
        ::fchmodat(m_place, name, S_IRWXU, AT_SYMLINK_NOFOLLOW);
        return rename(m_place, name, m_source, name);
    case MOVED:
        return rename(m_place, name, m_source, name);
    case EXCHANGED:
        return exchange(name);
    }
    return true;
}

QString KusArchiveCommit::getLinkText(const QString& link)
{
    return tr("'%1' is a symbolic link: nothing is extracted through it or in its place.")
        .arg(link);
}
