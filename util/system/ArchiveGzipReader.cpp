#include <util/system/ArchiveGzipReader.h>

#include "ArchiveGzipDecoder.h"

#include <basic/error/HbeProgrammingError.h>

#include <cstring>

struct ArchiveGzipReader::Private {
    QString path;
    std::unique_ptr<ArchiveGzipDecoder> decoder;
};

ArchiveGzipReader::ArchiveGzipReader(const QString& path)
    : m(std::make_unique<Private>())
{
    m->path = path;
}

ArchiveGzipReader::~ArchiveGzipReader() = default;

void ArchiveGzipReader::open(const char* mode)
{
    if (std::strcmp(mode, "rb") != 0)
        throw HbeProgrammingError(QStringLiteral("An archive is read in the mode \"rb\"."));
    m->decoder.reset();
    m->decoder = std::make_unique<ArchiveGzipDecoder>(std::make_unique<KusArchiveFile>(m->path));
}

bool ArchiveGzipReader::isOpen() const
{
    return m->decoder != nullptr;
}

void ArchiveGzipReader::close()
{
    m->decoder.reset();
}

qint64 ArchiveGzipReader::getReadSize() const
{
    return m->decoder ? m->decoder->getFile().getReadSize() : 0;
}

HbdSpan<const char> ArchiveGzipReader::_next(int most)
{
    if (!m->decoder)
        throw HbeProgrammingError(QStringLiteral("The archive is not open."));
    return m->decoder->next(most);
}
