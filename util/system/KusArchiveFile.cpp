#include "KusArchiveFile.h"

#include <basic/error/HbeDiskError.h>
#include <basic/error/HbeUserError.h>

#include <QtCore/QFile>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{
constexpr int FIRST_STEP = 16 << 10;
constexpr int LAST_STEP = 256 << 10;
} // namespace

KusArchiveFile::KusArchiveFile(const QString& path, std::function<void()> check)
    : m_path(path)
    , m_check(std::move(check))
    , m_step(FIRST_STEP)
{
    const auto fail = [&path](int error) {
        throw HbeDiskError(
            tr("Cannot open for reading '%1'\n%2").arg(path, qt_error_string(error)));
    };
    const int descriptor =
        ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    if (descriptor < 0)
        fail(errno);

    struct stat status = {};
    const bool known = ::fstat(descriptor, &status) == 0;
    if (!known || !S_ISREG(status.st_mode) || status.st_size == 0) {
        const int error = known ? EISDIR : errno;
        ::close(descriptor);
        if (!known || S_ISDIR(status.st_mode))
            fail(error);
        failNotArchive(S_ISREG(status.st_mode) ? tr("It is empty.") : tr("It is no regular file."));
    }
    m_descriptor = descriptor;
    m_size = status.st_size;
}

KusArchiveFile::~KusArchiveFile()
{
    ::close(m_descriptor);
}

HbdSpan<const char> KusArchiveFile::peek(int least)
{
    if (m_end - m_begin < least)
        refill();
    return {m_buffer.data() + m_begin, m_end - m_begin};
}

void KusArchiveFile::refill()
{
    if (m_check)
        m_check();
    const int rest = m_end - m_begin;
    if (rest > 0)
        std::memmove(m_buffer.data(), m_buffer.data() + m_begin, static_cast<std::size_t>(rest));
    m_begin = 0;
    m_end = rest;
    const int wanted = rest + m_step;
    if (m_buffer.size() < static_cast<std::size_t>(wanted))
        m_buffer.resize(static_cast<std::size_t>(wanted));
    m_step = std::min(2 * m_step, LAST_STEP);

    while (m_end < wanted && !m_cancelled) {
        const ssize_t count =
            ::read(m_descriptor, m_buffer.data() + m_end, static_cast<std::size_t>(wanted - m_end));
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            throw HbeDiskError(tr("Cannot read '%1'\n%2").arg(m_path, qt_error_string(errno)));
        if (count == 0)
            break;
        m_end += static_cast<int>(count);
        m_readSize += count;
    }
}

void KusArchiveFile::failNotArchive(const QString& reason) const
{
    throw HbeUserError(tr("'%1' is not a valid archive file.").arg(m_path) + '\n' + reason);
}

void KusArchiveFile::failCorrupted(const QString& fault, qint64 offset) const
{
    throw HbeUserError(tr("Corrupted archive file '%1' (%2, at byte %3).")
                           .arg(m_path, fault, QString::number(offset)));
}

void KusArchiveFile::failCutOff() const
{
    failCorrupted(tr("it is cut off"), getOffset() + (m_end - m_begin));
}
