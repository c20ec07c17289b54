// Stands in while the parts are being written; nothing of it stays.
#include "KusArchiveExtractor.h"
#include "KusArchivePacker.h"
#include "KusArchiveVerifier.h"

#include <util/system/KusTarReader.h>
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
void KusArchivePacker::run(const QVariantMap&){Q_UNUSED(m_progress)} // verification
KusArchiveVerifier::KusArchiveVerifier(const QString& a, const KusArchive::ExtractInfo& i,
                                       KusArchiveProgress& p)
    : m_archivePath(a)
    , m_info(i)
    , m_progress(p)
{
}
KusArchive::Verification KusArchiveVerifier::run()
{
    Q_UNUSED(m_progress) return {};
}
// tar
struct KusTarReader::Private {
};
KusTarReader::KusTarReader(KusArchiveInput&, const QString&) {}
KusTarReader::~KusTarReader() = default;
QVariantMap KusTarReader::readInformation()
{
    return {};
}
