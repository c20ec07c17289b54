#include <util/system/ArchiveZstdReader.h>

#include "ArchiveZstdDecoder.h"

#include <basic/error/HbeProgrammingError.h>

#include <cstring>

struct ArchiveZstdReader::Private {
    QString path;
    std::unique_ptr<ArchiveZstdDecoder> decoder;
};

ArchiveZstdReader::ArchiveZstdReader(const QString& path)
    : m(std::make_unique<Private>())
{
    m->path = path;
}

ArchiveZstdReader::~ArchiveZstdReader() = default;

void ArchiveZstdReader::open(const char* mode)
{
    if (std::strcmp(mode, "rb") != 0)
        throw HbeProgrammingError(QStringLiteral("An archive is read in the mode \"rb\"."));
    m->decoder.reset();
    m->decoder = std::make_unique<ArchiveZstdDecoder>(std::make_unique<KusArchiveFile>(m->path));
}

bool ArchiveZstdReader::isOpen() const
{
    return m->decoder != nullptr;
}

void ArchiveZstdReader::close()
{
    m->decoder.reset();
}

qint64 ArchiveZstdReader::getReadSize() const
{
    return m->decoder ? m->decoder->getFile().getReadSize() : 0;
}

HbdSpan<const char> ArchiveZstdReader::_next(int most)
{
    if (!m->decoder)
        throw HbeProgrammingError(QStringLiteral("The archive is not open."));
    return m->decoder->next(most);
}

bool ArchiveZstdReader::hasChecksum() const
{
    return m->decoder && m->decoder->hasChecksum();
}
