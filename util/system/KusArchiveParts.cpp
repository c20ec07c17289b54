// Stands in while the parts are being written; nothing of it stays.
#include "KusArchivePacker.h"
#include "KusArchiveVerifier.h"

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
