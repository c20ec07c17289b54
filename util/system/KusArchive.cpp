#include <util/system/KusArchive.h>

#include "KusArchiveExtractor.h"
#include "KusArchivePacker.h"
#include "KusArchiveProgress.h"
#include "KusArchiveVerifier.h"

#include <util/system/KusArchiveReader.h>
#include <util/system/KusTarReader.h>

#include <basic/error/HbeProgrammingError.h>

KusArchive::KusArchive(const QString& archivePath, QObject* parent)
    : HbcAProgress(QString(), parent)
    , m_path(archivePath)
{
}

KusArchive::~KusArchive() = default;

void KusArchive::setArchiveOperation(const QString& sourcePath, const ArchiveInfo& info)
{
    m_operation = Operation::ARCHIVE;
    m_otherPath = sourcePath;
    m_archiveInfo = info;
}

void KusArchive::setExtractOperation(const QString& targetPath, const ExtractInfo& info)
{
    m_operation = Operation::EXTRACT;
    m_otherPath = targetPath;
    m_extractInfo = info;
}

void KusArchive::setVerifyOperation(const ExtractInfo& info)
{
    m_operation = Operation::VERIFY;
    m_extractInfo = info;
}

QVariantMap KusArchive::readHeader() const
{
    KusArchiveReader archive(m_path);
    return KusTarReader(archive, m_path).readInformation();
}

QString KusArchive::getZstdExtension()
{
    return QStringLiteral("zst");
}

QString KusArchive::getGzipExtension()
{
    return QStringLiteral("gz");
}

void KusArchive::_run()
{
    KusArchiveProgress progress(*this);
    m_counts = Counts();
    switch (m_operation) {
    case Operation::NONE:
        throw HbeProgrammingError(tr("KusArchive run without operation defined."));
    case Operation::ARCHIVE: {
        QVariantMap header = m_header;
        for (auto entry = m_archiveInfo.header.begin(); entry != m_archiveInfo.header.end();
             ++entry)
            header.insert(entry.key(), entry.value());
        KusArchivePacker(m_path, m_otherPath, m_archiveInfo, progress).run(header);
        break;
    }
    case Operation::EXTRACT:
        KusArchiveExtractor(m_path, m_otherPath, m_extractInfo, progress).run();
        break;
    case Operation::VERIFY:
        m_verification = KusArchiveVerifier(m_path, m_extractInfo, progress).run();
        break;
    }
}
