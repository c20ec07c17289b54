// Compressed bytes from anywhere: reading them ends, and both ways of reading give the same bytes
// and then the same error.
#include "FuzzTarget.h"

#include <util/system/KusArchiveReader.h>

#include <basic/error/HbeDiskError.h>
#include <basic/error/HbeUserError.h>

#include <QtCore/QByteArray>

#include <sys/mman.h>
#include <unistd.h>

namespace
{
// Of a bomb only the begin is looked at.
constexpr int MOST_BYTES = 16 << 20;

struct Reading {
    QByteArray bytes;
    QString error;
};

Reading readAll(const QString& path, KusArchiveReader::Mode mode, int piece)
{
    Reading reading;
    KusArchiveReader reader(path, mode);
    try {
        while (reading.bytes.size() < MOST_BYTES) {
            const int most = std::min(piece, MOST_BYTES - reading.bytes.size());
            const HbdSpan<const char> bytes = reader.next(most);
            require(bytes.size() <= most);
            if (bytes.isEmpty())
                break;
            reading.bytes.append(bytes.data(), bytes.size());
        }
        require(reader.getReadSize() <= reader.getFileSize());
    } catch (const HbeUserError& error) {
        reading.error = error.getMessage();
        require(reading.error.contains(path));
    }
    return reading;
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const int file = ::memfd_create("archive", 0);
    static const QString path = QStringLiteral("/proc/self/fd/%1").arg(file);
    require(::ftruncate(file, 0) == 0);
    require(::pwrite(file, data, size, 0) == static_cast<ssize_t>(size));

    const Reading direct = readAll(path, KusArchiveReader::Mode::DIRECT, 1 << 20);
    const Reading ahead = readAll(path, KusArchiveReader::Mode::AHEAD, 10007);
    require(direct.bytes == ahead.bytes && direct.error == ahead.error);
    return 0;
}
