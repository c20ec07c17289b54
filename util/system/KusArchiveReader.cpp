#include <util/system/KusArchiveReader.h>

#include "ArchiveGzipDecoder.h"
#include "ArchiveZstdCrew.h"
#include "ArchiveZstdDecoder.h"
#include "KusArchiveAhead.h"

#include <util/system/KusArchive.h>

#include <QtCore/QFileInfo>

#include <system_error>

struct KusArchiveReader::Private {
    Mode mode;
    Decompressor decompressor = Decompressor::ZSTD;
    std::unique_ptr<KusArchiveDecoder> decoder;
    std::unique_ptr<KusArchiveAhead> ahead; // uses the decoder
    std::unique_ptr<ArchiveZstdCrew> crew;  // uses the decoder's file, until it is relieved
    std::exception_ptr failure;             // of that
    std::function<void()> check;
    bool isStarted = false;

    KusArchiveDecoder& open(const QString& path);
    void start();
    void relieveCrew();
};

KusArchiveReader::KusArchiveReader(const QString& archivePath, Mode mode)
    : m_path(archivePath)
    , m(std::make_unique<Private>())
{
    m->mode = mode;
}

KusArchiveReader::~KusArchiveReader() = default;

KusArchiveDecoder& KusArchiveReader::Private::open(const QString& path)
{
    if (decoder)
        return *decoder;
    auto file = std::make_unique<KusArchiveFile>(path, check);
    const QString suffix = QFileInfo(path).completeSuffix();
    bool isGzip = suffix == KusArchive::getGzipExtension();
    if (!isGzip && suffix != KusArchive::getZstdExtension()) {
        // The magic bytes are all that the databases of content types know gzip by.
        isGzip = ArchiveGzipDecoder::accepts(*file);
        if (!isGzip && !ArchiveZstdDecoder::accepts(*file))
            file->failNotArchive(tr("It is compressed with neither Zstandard nor gzip."));
    }
    decompressor = isGzip ? Decompressor::GZIP : Decompressor::ZSTD;
    if (isGzip)
        decoder = std::make_unique<ArchiveGzipDecoder>(std::move(file));
    else
        decoder = std::make_unique<ArchiveZstdDecoder>(std::move(file));
    return *decoder;
}

void KusArchiveReader::Private::start()
{
    isStarted = true;
    if (mode == Mode::DIRECT)
        return;
    try {
        if (decompressor == Decompressor::ZSTD)
            crew = ArchiveZstdCrew::create(decoder->getFile());
        if (crew)
            return;
        decoder->getFile().allowReadAhead();
        ahead = std::make_unique<KusArchiveAhead>(*decoder);
    } catch (const std::system_error&) {
        mode = Mode::DIRECT; // without a thread it only takes longer
    }
}

/// From here on one thread decodes, which knows what is wrong with the file.
void KusArchiveReader::Private::relieveCrew()
{
    try {
        crew->stop();
        decoder->getFile().rewind();
        if (!crew->moveHere(*decoder, check))
            decoder->getFile().failCorrupted(tr("its segments are not the content of its frame"),
                                             decoder->getFile().getOffset());
    } catch (...) {
        failure = std::current_exception();
    }
    crew.reset();
}

void KusArchiveReader::setCheck(std::function<void()> check)
{
    m->check = std::move(check);
}

KusArchiveReader::Decompressor KusArchiveReader::getDecompressor()
{
    m->open(m_path);
    return m->decompressor;
}

qint64 KusArchiveReader::getFileSize()
{
    return m->open(m_path).getFile().getSize();
}

qint64 KusArchiveReader::getReadSize() const
{
    return m->decoder ? m->decoder->getFile().getReadSize() : 0;
}

bool KusArchiveReader::hasChecksum() const
{
    return m->crew || (m->decoder && m->decoder->hasChecksum());
}

HbdSpan<const char> KusArchiveReader::_next(int most)
{
    KusArchiveDecoder& decoder = m->open(m_path);
    if (!m->isStarted)
        m->start();
    if (m->crew) {
        if (const auto bytes = m->crew->next(most))
            return *bytes;
        m->relieveCrew();
    }
    if (m->failure)
        std::rethrow_exception(m->failure);
    return m->ahead ? m->ahead->next(most) : decoder.next(most);
}
