// Stands in while the parts are being written; nothing of it stays.
#include "KusArchiveExtractor.h"
#include "KusArchivePacker.h"

// extraction
KusArchiveExtractor::KusArchiveExtractor(const QString& a, const QString& t,
                                         const KusArchive::ExtractInfo& i, KusArchiveProgress& p)
    : m_archivePath(a)
    , m_targetPath(t)
    , m_info(i)
    , m_progress(p)
{
}
KusArchiveExtractor::~KusArchiveExtractor() = default;
void KusArchiveExtractor::run(){Q_UNUSED(m_progress)} // packing
KusArchivePacker::KusArchivePacker(const QString& a, const QString& s,
                                   const KusArchive::ArchiveInfo& i, KusArchiveProgress& p)
    : m_archivePath(a)
    , m_sourcePath(s)
    , m_info(i)
    , m_progress(p)
{
}
KusArchivePacker::~KusArchivePacker() = default;
void KusArchivePacker::run(const QVariantMap&)
{
    Q_UNUSED(m_progress)
}
{
    return 0;
}
qint64 KusArchiveReader::getReadSize() const
{
    return 0;
}
bool KusArchiveReader::hasChecksum() const
{
    return false;
}
