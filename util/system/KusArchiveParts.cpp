// Stands in while the parts are being written; nothing of it stays.
#include "KusArchivePacker.h"

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
