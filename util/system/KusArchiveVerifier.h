#pragma once

#include <util/system/KusArchive.h>

#include <QtCore/QCoreApplication>

class KusArchiveProgress;

/// Reads one archive to its end and says what is wrong with it.
class KusArchiveVerifier
{
    Q_DECLARE_TR_FUNCTIONS(KusArchiveVerifier)

public:
    KusArchiveVerifier(const QString& archivePath, const KusArchive::ExtractInfo& info,
                       KusArchiveProgress& progress);

    KusArchive::Verification run();

private:
    struct Run;

    QString m_archivePath;
    KusArchive::ExtractInfo m_info;
    KusArchiveProgress& m_progress;
};
