#include "KusArchiveOutput.h"

#include "KusArchiveHoles.h"
#include "KusArchiveProgress.h"

#include <util/system/ArchiveZstdWriter.h>
#include <util/system/KusTarFile.h>
#include <util/system/KusTarRecord.h>

#include <basic/error/HbeDiskError.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <unistd.h>

namespace
{
constexpr qint64 BUFFER_SIZE = 512 << 10;
constexpr qint64 SMALL_SIZE = 64 << 10; // a file of so many bytes is read at once
constexpr qint64 CLOSING_SIZE = 2 * KusTarRecord::BLOCK_SIZE;
} // namespace

KusArchiveOutput::KusArchiveOutput(ArchiveZstdWriter& writer, const QString& archivePath,
                                   KusArchiveProgress& progress)
    : m_writer(writer)
    , m_archivePath(archivePath)
    , m_progress(progress)
    , m_buffer(new char[BUFFER_SIZE])
{
}

void KusArchiveOutput::addHeader(const KusTarFile& file, const QByteArray& directory)
{
    const KusTarRecord record(file, directory);
    KusTarRecord extension;
    QByteArray data;
    if (record.isExtension() && KusTarRecord::createPaxRecord(file, directory, extension, data)) {
        append(extension.headerData(), KusTarRecord::BLOCK_SIZE, Part::EXTENSION);
        append(data.constData(), data.size(), Part::EXTENSION);
    }
    append(record.headerData(), KusTarRecord::BLOCK_SIZE);
}

void KusArchiveOutput::addData(const QByteArray& data)
{
    append(data.constData(), data.size());
    pad(data.size());
}

int KusArchiveOutput::addData(int descriptor, qint64 size)
{
#ifdef Q_OS_LINUX
    if (size > BUFFER_SIZE)
        ::posix_fadvise(descriptor, 0, 0, POSIX_FADV_SEQUENTIAL);
#endif
    if (BUFFER_SIZE - m_used < std::min(size, SMALL_SIZE))
        flush();
    KusArchiveHoles holes(descriptor);
    for (qint64 position = 0; position < size;) {
        m_progress.check();
        if (m_used == BUFFER_SIZE)
            flush();
        char* const place = m_buffer.get() + m_used;
        const qint64 most = std::min(size - position, BUFFER_SIZE - m_used);
        const qint64 hole = size > BUFFER_SIZE ? std::min(holes.getSize(position), most) : 0;
        if (hole > 0)
            std::memset(place, 0, static_cast<std::size_t>(hole));
        const ssize_t got =
            hole > 0 ? hole : ::pread(descriptor, place, static_cast<std::size_t>(most), position);
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            return got < 0 ? errno : -1;
        m_used += got;
        position += got;
        m_progress.advance(got);
    }
    // Of a file that is cut meanwhile, a hole tells nothing.
    if (holes.wereFound() && ::lseek(descriptor, 0, SEEK_END) < size)
        return -1;
    pad(size);
    return 0;
}

void KusArchiveOutput::close()
{
    flush();
    std::memset(m_buffer.get(), 0, CLOSING_SIZE);
    m_used = CLOSING_SIZE;
    flush(Part::END);
    if (!m_writer.close())
        fail(Part::MEMBER);
}

void KusArchiveOutput::append(const char* data, qint64 size, Part part)
{
    while (size > 0) {
        if (m_used == BUFFER_SIZE)
            flush(part);
        const qint64 count = std::min(size, BUFFER_SIZE - m_used);
        std::memcpy(m_buffer.get() + m_used, data, static_cast<std::size_t>(count));
        m_used += count;
        data += count;
        size -= count;
    }
}

void KusArchiveOutput::pad(qint64 size)
{
    // Headers and data before it fill whole blocks, and so does the buffer.
    const qint64 padding = KusTarRecord::getPaddedSize(size) - size;
    std::memset(m_buffer.get() + m_used, 0, static_cast<std::size_t>(padding));
    m_used += padding;
}

void KusArchiveOutput::flush(Part part)
{
    if (!m_writer.write(m_buffer.get(), m_used))
        fail(part);
    m_used = 0;
}

void KusArchiveOutput::fail(Part part) const
{
    const QString text = part == Part::EXTENSION ? tr("Cannot write extended PAX record for '%1'.")
                         : part == Part::END
                             ? tr("Cannot write trailing zero-filled records into '%1'.")
                             : tr("Cannot write into '%1'.");
    throw HbeDiskError(text.arg(m_archivePath) + '\n' + m_writer.getErrorString());
}
