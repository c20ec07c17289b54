// Stands in while the parts are being written; nothing of it stays.
#include "KusArchiveExtractor.h"
#include "KusArchiveVerifier.h"

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
void KusArchiveExtractor::run(){Q_UNUSED(m_progress)} // verification
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
{
    return {};
}
