#include <util/system/KusSafeFile.h>

#include <QtCore/QDir>
#include <QtCore/QFile>

#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{
// The file that a path stands for: links followed to the end, also when the last one points to a
// file that does not exist yet. A circle of links gives an empty name. Directories are left to the
// system: where "link/.." leads depends on the link.
QByteArray resolvedTarget(const QString& path)
{
    QByteArray current = QFile::encodeName(path);
    if (!current.startsWith('/')) {
        current.prepend(QFile::encodeName(QDir::currentPath()) + '/');
    }
    for (int hop = 0; hop < 40; ++hop) {
        char text[PATH_MAX];
        const ssize_t size = ::readlink(current.constData(), text, sizeof text);
        if (size < 0) {
            return current;
        }
        const QByteArray target(text, int(size));
        current =
            target.startsWith('/') ? target : current.left(current.lastIndexOf('/') + 1) + target;
    }
    return QByteArray();
}

// A name of its own beside the target, so that the rename stays within one file system. `make`
// makes the file of a name, or answers -1 with errno.
template <class Make>
int createBeside(const QByteArray& target, QByteArray& name, Make make)
{
    static std::atomic<unsigned> counter{0};
    // Room for the suffix even when the target's name is as long as a name may be.
    const int slash = target.lastIndexOf('/');
    const QByteArray stem = target.left(slash + 1) + target.mid(slash + 1, 200);
    for (int attempt = 0; attempt < 1000; ++attempt) {
        name = stem + '.' + QByteArray::number(qint64(getpid())) + '_' +
               QByteArray::number(counter.fetch_add(1)) + ".part";
        const int result = make(name.constData());
        if (result >= 0 || errno != EEXIST) {
            return result;
        }
    }
    return -1;
}

// The way to a file without a name.
QByteArray processPath(int descriptor)
{
    return "/proc/self/fd/" + QByteArray::number(descriptor);
}

int linkTo(int descriptor, const char* name)
{
    return ::linkat(AT_FDCWD, processPath(descriptor).constData(), AT_FDCWD, name,
                    AT_SYMLINK_FOLLOW);
}

// -1 where there are no such files, or no way to name one later.
int createUnnamed(const QByteArray& target, mode_t mode)
{
#ifdef O_TMPFILE
    const QByteArray directory = target.left(target.lastIndexOf('/') + 1);
    const int descriptor = ::open(directory.constData(), O_WRONLY | O_TMPFILE | O_CLOEXEC, mode);
    if (descriptor >= 0 && ::access(processPath(descriptor).constData(), F_OK) != 0) {
        ::close(descriptor);
        return -1;
    }
    return descriptor;
#else
    Q_UNUSED(target)
    Q_UNUSED(mode)
    return -1;
#endif
}
} // namespace

KusSafeFile::KusSafeFile(const QString& path)
    : m_path(path)
{
}

KusSafeFile::KusSafeFile(KusSafeFile&& other) noexcept
    : m_path(std::move(other.m_path))
    , m_target(std::move(other.m_target))
    , m_temporary(std::move(other.m_temporary))
    , m_error(std::move(other.m_error))
    , m_descriptor(std::exchange(other.m_descriptor, -1))
    , m_flushed(other.m_flushed)
{
    other.m_temporary.clear();
}

KusSafeFile::~KusSafeFile()
{
    discard();
}

bool KusSafeFile::open(Naming naming)
{
    discard();
    m_target = resolvedTarget(m_path);
    if (m_target.isEmpty()) {
        errno = ELOOP;
        return fail();
    }

    struct stat existing = {};
    const bool exists = ::stat(m_target.constData(), &existing) == 0;
    if (exists && !S_ISREG(existing.st_mode)) {
        errno = S_ISDIR(existing.st_mode) ? EISDIR : EINVAL;
        return fail();
    }
    // A read-only file says that it is not to be replaced, though its directory would let us.
    if (exists && ::access(m_target.constData(), W_OK) != 0) {
        return fail();
    }

    if (!create(naming, exists ? 0600 : 0666)) {
        return fail();
    }
    if (exists) {
        // The owner first, for changing it drops the set-id bits. Only root may; others keep going.
        if (existing.st_uid != ::geteuid() || existing.st_gid != ::getegid()) {
            const int ignored = ::fchown(m_descriptor, existing.st_uid, existing.st_gid);
            Q_UNUSED(ignored)
        }
        if (::fchmod(m_descriptor, existing.st_mode & 07777) != 0) {
            return fail();
        }
    }
    return true;
}

bool KusSafeFile::create(Naming naming, unsigned mode)
{
    if (naming == Naming::AT_COMMIT) {
        m_descriptor = createUnnamed(m_target, mode);
    }
    if (m_descriptor < 0) {
        m_descriptor = createBeside(m_target, m_temporary, [mode](const char* name) {
            return ::open(name, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
        });
    }
    if (m_descriptor < 0) {
        m_temporary.clear();
    }
    return m_descriptor >= 0;
}

bool KusSafeFile::write(const char* data, qint64 size)
{
    m_flushed = false;
    while (size > 0) {
        const ssize_t written = ::write(m_descriptor, data, size_t(size));
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written < 0) {
            return fail();
        }
        data += written;
        size -= written;
    }
    return m_descriptor >= 0;
}

bool KusSafeFile::startFlush()
{
#ifdef Q_OS_LINUX
    return ::sync_file_range(m_descriptor, 0, 0, SYNC_FILE_RANGE_WRITE) == 0 || fail();
#else
    return true;
#endif
}

bool KusSafeFile::flush()
{
    // The size and the blocks must be on the disk before the rename is; times need not be.
    if (::fdatasync(m_descriptor) != 0) {
        return fail();
    }
    m_flushed = true;
    return true;
}

bool KusSafeFile::close()
{
    if (m_descriptor >= 0 && m_temporary.isEmpty() && !giveName()) {
        return false;
    }
    const int descriptor = std::exchange(m_descriptor, -1);
    return descriptor < 0 || ::close(descriptor) == 0 || fail();
}

// A file cannot be linked over another one, so the name is one for the rename.
bool KusSafeFile::giveName()
{
    const int result = createBeside(
        m_target, m_temporary, [this](const char* name) { return linkTo(m_descriptor, name); });
    if (result < 0) {
        m_temporary.clear();
        return fail();
    }
    return true;
}

bool KusSafeFile::commit()
{
    const bool isOpen = m_descriptor >= 0 || !m_temporary.isEmpty();
    if (!isOpen || (!m_flushed && !flush())) {
        discard();
        return false;
    }
    // Where there is no older file, the new one takes its name at once.
    if (m_temporary.isEmpty() && linkTo(m_descriptor, m_target.constData()) == 0) {
        ::close(std::exchange(m_descriptor, -1));
        return true;
    }
    if (!close()) {
        discard();
        return false;
    }
    if (::rename(m_temporary.constData(), m_target.constData()) != 0) {
        fail();
        discard();
        return false;
    }
    m_temporary.clear();
    return true;
}

void KusSafeFile::discard()
{
    if (m_descriptor >= 0) {
        ::close(std::exchange(m_descriptor, -1));
    }
    if (!m_temporary.isEmpty()) {
        ::unlink(m_temporary.constData());
        m_temporary.clear();
    }
    m_flushed = false;
}

bool KusSafeFile::flushFileSystem(const QString& path)
{
    const int descriptor = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0) {
        return false;
    }
#ifdef Q_OS_LINUX
    const bool ok = ::syncfs(descriptor) == 0;
#else
    ::sync();
    const bool ok = true;
#endif
    ::close(descriptor);
    return ok;
}

bool KusSafeFile::fail()
{
    m_error = qt_error_string(errno);
    return false;
}
