#include "KusArchiveFile.h"

#include "KusArchiveFeeder.h"

#include <basic/error/HbeDiskError.h>
#include <basic/error/HbeUserError.h>

#include <QtCore/QFile>

#include <algorithm>
#include <array>
#include <cerrno>
#include <system_error>

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
    m_feeder.reset();
    ::close(m_descriptor);
}

HbdSpan<const char> KusArchiveFile::peek(int least)
{
    if (m_end - m_begin < least)
        refill();
    return {m_data + m_begin, m_end - m_begin};
}

void KusArchiveFile::refill()
{
    if (m_check)
        m_check();
    if (m_cancelled)
        return;
    // Who reads that far reads on.
    if (m_mayReadAhead && m_step == LAST_STEP) {
        m_mayReadAhead = false;
        try {
            m_feeder = std::make_unique<KusArchiveFeeder>(m_descriptor);
        } catch (const std::system_error&) {
            // Without a thread it only takes longer.
        }
    }
    if (m_feeder)
        takeAhead();
    else
        read(m_step);
    m_step = std::min(2 * m_step, LAST_STEP);
}

/// Reads so many bytes behind those that are left.
void KusArchiveFile::read(int count)
{
    const int rest = m_end - m_begin;
    if (m_buffer.size() < static_cast<std::size_t>(rest + count))
        m_buffer.resize(static_cast<std::size_t>(rest + count));
    std::copy_n(m_buffer.data() + m_begin, rest, m_buffer.data());
    m_data = m_buffer.data();
    m_begin = 0;
    m_end = rest;
    while (m_end < rest + count && !m_cancelled) {
        const ssize_t got =
            ::read(m_descriptor, m_data + m_end, static_cast<std::size_t>(rest + count - m_end));
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0)
            failToRead(errno);
        if (got == 0)
            break;
        m_end += static_cast<int>(got);
        m_readSize += got;
    }
}

/// Goes on to the next piece, with what is left of this one in front.
void KusArchiveFile::takeAhead()
{
    std::array<char, KusArchiveFeeder::HEADROOM> left;
    const int rest = m_end - m_begin;
    std::copy_n(m_data + m_begin, rest, left.data());
    int error = 0;
    const HbdSpan<char> piece = m_feeder->take(error);
    if (error != 0)
        failToRead(error);
    m_data = piece.data() - rest;
    std::copy_n(left.data(), rest, m_data);
    m_begin = 0;
    m_end = rest + piece.size();
    m_readSize += piece.size();
}

void KusArchiveFile::rewind()
{
    if (::lseek(m_descriptor, 0, SEEK_SET) != 0)
        failToRead(errno);
    m_readBefore = getReadSize();
    m_readSize = 0;
    m_begin = m_end = 0;
    m_step = FIRST_STEP;
    m_cancelled = false;
}

bool KusArchiveFile::readAt(qint64 offset, char* data, int size) const
{
    ssize_t count = -1;
    do {
        count = ::pread(m_descriptor, data, static_cast<std::size_t>(size), offset);
    } while (count < 0 && errno == EINTR);
    return count == size;
}

void KusArchiveFile::failToRead(int error) const
{
    throw HbeDiskError(tr("Cannot read '%1'\n%2").arg(m_path, qt_error_string(error)));
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
