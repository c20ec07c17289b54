#include "KusArchiveStaging.h"

#include <util/system/KusMemberPath.h>

#include <basic/base/HbbDebug.h>
#include <basic/error/HbeDiskError.h>
#include <basic/error/HbeUserError.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QUuid>

#include <algorithm>
#include <cerrno>
#include <functional>

#include <fcntl.h>
#include <unistd.h>

namespace
{
constexpr int DIRECTORY_FLAGS = O_RDONLY | O_DIRECTORY | O_CLOEXEC;
constexpr int FILE_FLAGS = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
constexpr char MEMBERS_NAME[] = "members";
constexpr mode_t DEFAULT_FILE = 0666;
constexpr mode_t DEFAULT_DIRECTORY = 0777;

quint64 getHash(std::string_view path)
{
    return std::hash<std::string_view>()(path);
}
} // namespace

KusArchiveStaging::KusArchiveStaging(const QString& targetPath)
    : m_targetPath(targetPath)
    , m_name(".unpack_" + QUuid::createUuid().toByteArray(QUuid::Id128))
    , m_isRoot(::geteuid() == 0)
{
    m_target = ::open(QFile::encodeName(targetPath).constData(), DIRECTORY_FLAGS);
    if (m_target < 0 || ::fstat(m_target, &m_targetFacts) != 0) {
        const QString reason = qt_error_string(errno);
        close();
        throw HbeUserError(tr("'%1' is not a valid directory.").arg(targetPath) + '\n' + reason);
    }
    // A member directory of all permissions tells the umask, which cannot be asked for without
    // setting it for all threads.
    struct stat facts = {};
    if (::mkdirat(m_target, m_name.constData(), S_IRWXU) != 0 ||
        (m_directory = ::openat(m_target, m_name.constData(), DIRECTORY_FLAGS | O_NOFOLLOW)) < 0 ||
        ::mkdirat(m_directory, MEMBERS_NAME, 0777) != 0 ||
        ::fstatat(m_directory, MEMBERS_NAME, &facts, AT_SYMLINK_NOFOLLOW) != 0 ||
        ::fchmodat(m_directory, MEMBERS_NAME, S_IRWXU, 0) != 0 ||
        (m_members = ::openat(m_directory, MEMBERS_NAME, DIRECTORY_FLAGS | O_NOFOLLOW)) < 0) {
        const QString reason = qt_error_string(errno);
        remove();
        close();
        throw HbeUserError(tr("You do not have the right to write into '%1'.").arg(targetPath) +
                           '\n' + reason);
    }
    m_umask = ~facts.st_mode & 0777;
    m_descent = std::make_unique<KusArchiveDescent>(m_members, KusArchiveDescent::Use::CREATE);
}

KusArchiveStaging::~KusArchiveStaging()
{
    m_descent.reset();
    if (!m_kept && !remove())
        HbbDebug::printWarning(tr("Cannot remove '%1'.").arg(getPathText()));
    if (!m_done) {
        const struct timespec times[2] = {{0, UTIME_OMIT}, m_targetFacts.st_mtim};
        ::futimens(m_target, times);
    }
    close();
}

void KusArchiveStaging::close()
{
    for (const int descriptor : {m_members, m_directory, m_target}) {
        if (descriptor >= 0)
            ::close(descriptor);
    }
}

QString KusArchiveStaging::getText(std::string_view path) const
{
    return QDir(m_targetPath)
        .filePath(KusMemberPath::getShownText(QByteArray(path.data(), int(path.size()))));
}

QString KusArchiveStaging::getPathText() const
{
    return QDir(m_targetPath).filePath(QFile::decodeName(m_name));
}

int KusArchiveStaging::createFile(std::string_view path, int permissionBits)
{
    const int directory = m_descent->open(KusArchiveDescent::getParent(path));
    if (directory < 0)
        return -1;
    // A view into a longer text need not end here.
    const std::string name(KusArchiveDescent::getFileName(path));
    const mode_t mode = permissionBits < 0 ? DEFAULT_FILE : mode_t(permissionBits) & 0777;
    const int file = ::openat(directory, name.c_str(), FILE_FLAGS, mode);
    // The system took the umask off.
    if (file >= 0 && m_isRoot && permissionBits >= 0 && (mode & m_umask) != 0)
        ::fchmod(file, mode);
    return file;
}

bool KusArchiveStaging::removeFile(std::string_view path)
{
    const int directory = m_descent->open(KusArchiveDescent::getParent(path));
    const std::string name(KusArchiveDescent::getFileName(path));
    return directory >= 0 && ::unlinkat(directory, name.c_str(), 0) == 0;
}

bool KusArchiveStaging::makeDirectory(std::string_view path)
{
    return m_descent->open(path) >= 0;
}

void KusArchiveStaging::setDirectory(std::string_view path, int permissionBits, qint64 modifSeconds)
{
    m_directories.push_back(
        {getHash(path), modifSeconds, permissionBits, quint32(m_directories.size())});
}

void KusArchiveStaging::sortDirectories()
{
    std::sort(m_directories.begin(), m_directories.end(),
              [](const Directory& a, const Directory& b) {
                  return a.hash != b.hash ? a.hash < b.hash : a.order < b.order;
              });
}

const KusArchiveStaging::Directory* KusArchiveStaging::findDirectory(std::string_view path) const
{
    const quint64 hash = getHash(path);
    const auto next = std::upper_bound(m_directories.begin(), m_directories.end(), hash,
                                       [](quint64 h, const Directory& d) { return h < d.hash; });
    return next != m_directories.begin() && (next - 1)->hash == hash ? &*(next - 1) : nullptr;
}

mode_t KusArchiveStaging::getPermissions(std::string_view path) const
{
    const Directory* directory = findDirectory(path);
    if (!directory || directory->permissionBits < 0)
        return DEFAULT_DIRECTORY & ~m_umask;
    return mode_t(directory->permissionBits) & 0777 & ~(m_isRoot ? 0 : m_umask);
}

void KusArchiveStaging::applyDirectories(const std::function<void()>& checkCancelled)
{
    sortDirectories();
    m_descent.reset(); // its way would lead to directories that are closed by now
    KusArchiveDescent descent(m_members, KusArchiveDescent::Use::READ);
    KusArchiveDescent places(m_target, KusArchiveDescent::Use::SEARCH);
    const auto require = [&](bool done, const std::string& path) {
        if (!done) {
            throw HbeDiskError(tr("Cannot create directory '%1'.").arg(getText(path)) + '\n' +
                               qt_error_string(errno));
        }
    };
    KusArchiveDescent::traverse(
        [&](const std::string& path, std::string& names) {
            checkCancelled();
            const int directory = descent.open(path);
            require(directory >= 0, path);
            const bool listed =
                KusArchiveDescent::list(directory, [&](const char* name, bool isDirectory) {
                    if (isDirectory)
                        names.append(name).push_back('\0');
                });
            require(listed, path);
        },
        [&](const std::string& path) {
            if (path.empty())
                return;
            const int directory = descent.open(path);
            require(directory >= 0, path);
            const bool movesAlone = places.open(KusArchiveDescent::getParent(path)) >= 0;
            require(applyDirectory(directory, path, movesAlone), path);
        });
}

bool KusArchiveStaging::applyDirectory(int directory, const std::string& path,
                                       bool movesAlone) const
{
    struct stat facts = {};
    if (::fstat(directory, &facts) != 0)
        return false;
    // A set-group bit is not the archive's: it comes from the target and hands the group on.
    const mode_t inherited = facts.st_mode & S_ISGID;
    const mode_t mode = getPermissions(path) | (movesAlone ? S_IRWXU : 0) | inherited;
    if (mode != (facts.st_mode & 07777) && ::fchmod(directory, mode) != 0)
        return false;
    const Directory* wanted = findDirectory(path);
    const struct timespec times[2] = {{0, UTIME_OMIT}, {wanted ? wanted->modifSeconds : 0, 0}};
    return !wanted || ::futimens(directory, times) == 0;
}

bool KusArchiveStaging::remove()
{
    if (m_directory < 0)
        return m_target < 0 || ::unlinkat(m_target, m_name.constData(), AT_REMOVEDIR) == 0 ||
               errno == ENOENT;
    KusArchiveDescent descent(m_directory, KusArchiveDescent::Use::READ);
    // What cannot be removed shows at the end, when its directory cannot.
    KusArchiveDescent::traverse(
        [&](const std::string& path, std::string& names) {
            const int directory = descent.open(path);
            KusArchiveDescent::list(directory, [&](const char* name, bool isDirectory) {
                if (!isDirectory) {
                    ::unlinkat(directory, name, 0);
                } else if (::unlinkat(directory, name, AT_REMOVEDIR) != 0) {
                    ::fchmodat(directory, name, S_IRWXU, 0);
                    names.append(name).push_back('\0');
                }
            });
        },
        [&](const std::string& path) {
            const int parent = descent.open(KusArchiveDescent::getParent(path));
            const std::string name(KusArchiveDescent::getFileName(path));
            if (!path.empty() && parent >= 0)
                ::unlinkat(parent, name.c_str(), AT_REMOVEDIR);
        });
    return ::unlinkat(m_target, m_name.constData(), AT_REMOVEDIR) == 0;
}
