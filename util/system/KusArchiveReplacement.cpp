#include "KusArchiveReplacement.h"

#include <QtCore/QFile>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <memory>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{
struct Freer {
    void operator()(char* memory) const { std::free(memory); }
};

/// Why the file cannot be replaced; 0 when it can.
int findReplaceError(const QByteArray& path, const struct stat& facts)
{
    if (S_ISDIR(facts.st_mode))
        return EISDIR;
    if (!S_ISREG(facts.st_mode))
        return EINVAL;
    const QByteArray directory = path.left(std::max(path.lastIndexOf('/'), 1));
    struct stat parent = {};
    if (::faccessat(AT_FDCWD, path.constData(), W_OK, AT_EACCESS) != 0 ||
        ::faccessat(AT_FDCWD, directory.constData(), W_OK | X_OK, AT_EACCESS) != 0 ||
        ::stat(directory.constData(), &parent) != 0)
        return errno;
    // In a directory for everybody's files, each may replace only his own.
    const uid_t user = ::geteuid();
    const bool isForeign = user != 0 && user != facts.st_uid && user != parent.st_uid;
    return (parent.st_mode & S_ISVTX) != 0 && isForeign ? EPERM : 0;
}
} // namespace

KusArchiveReplacement::KusArchiveReplacement(const QString& archivePath)
{
    const std::unique_ptr<char, Freer> resolved(
        ::realpath(QFile::encodeName(archivePath).constData(), nullptr));
    struct stat facts = {};
    if (!resolved || ::stat(resolved.get(), &facts) != 0)
        return; // there is none, or opening it for writing will say more
    const QByteArray path(resolved.get());
    const int error = findReplaceError(path, facts);
    if (error != 0)
        m_fault = qt_error_string(error);
    m_older = identify(path, facts);
}

void KusArchiveReplacement::setNewFile(const QString& path)
{
    const QByteArray name = QFile::encodeName(path);
    struct stat facts = {};
    if (!name.isEmpty() && ::stat(name.constData(), &facts) == 0)
        m_new = identify(name, facts);
}

bool KusArchiveReplacement::holds(const QByteArray& fileName, const struct stat& facts) const
{
    const auto isFile = [&](const File& file) {
        return !file.name.isEmpty() && facts.st_dev == file.device && facts.st_ino == file.inode &&
               fileName == file.name;
    };
    return isFile(m_older) || isFile(m_new);
}

KusArchiveReplacement::File KusArchiveReplacement::identify(const QByteArray& path,
                                                            const struct stat& facts)
{
    return {path.mid(path.lastIndexOf('/') + 1), facts.st_dev, facts.st_ino};
}
