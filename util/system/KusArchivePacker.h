#pragma once

#include <util/system/KusArchive.h>

#include <QtCore/QCoreApplication>

class KusArchiveProgress;

/// Writes one archive: the packing half of KusArchive, which says what it does.
class KusArchivePacker
{
    Q_DECLARE_TR_FUNCTIONS(KusArchivePacker)

public:
    KusArchivePacker(const QString& archivePath, const QString& sourcePath,
                     const KusArchive::ArchiveInfo& info, KusArchiveProgress& progress);
    ~KusArchivePacker();

    /// `header` is the information of the archive, without its size.
    void run(const QVariantMap& header);

private:
    QString m_archivePath;
    QString m_sourcePath;
    KusArchive::ArchiveInfo m_info;
    KusArchiveProgress& m_progress;
};
