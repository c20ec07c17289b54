#pragma once

#include <util/system/KusArchive.h>

#include <QtCore/QCoreApplication>

class KusArchiveProgress;

/// Unpacks one archive: the unpacking half of KusArchive, which says what it does.
class KusArchiveExtractor
{
    Q_DECLARE_TR_FUNCTIONS(KusArchiveExtractor)

public:
    KusArchiveExtractor(const QString& archivePath, const QString& targetPath,
                        const KusArchive::ExtractInfo& info, KusArchiveProgress& progress);
    ~KusArchiveExtractor();

    void run();

private:
    QString m_archivePath;
    QString m_targetPath;
    KusArchive::ExtractInfo m_info;
    KusArchiveProgress& m_progress;
};
