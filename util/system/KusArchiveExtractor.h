#pragma once

#include "KusArchiveNames.h"

#include <util/system/KusArchive.h>
#include <util/system/KusMemberPatterns.h>

#include <QtCore/QCoreApplication>

#include <memory>

class KusArchiveProgress;
class KusArchiveReader;
class KusArchiveStaging;
class KusArchiveWatchedInput;
class KusArchiveDescent;
class KusTarReader;

/// Unpacks one archive: the unpacking half of KusArchive, which says what it does. The members go
/// to a KusArchiveStaging first, a KusArchiveCommit puts them into their places.
class KusArchiveExtractor
{
    Q_DECLARE_TR_FUNCTIONS(KusArchiveExtractor)

public:
    KusArchiveExtractor(const QString& archivePath, const QString& targetPath,
                        const KusArchive::ExtractInfo& info, KusArchiveProgress& progress);
    ~KusArchiveExtractor();

    void run();

private:
    void checkTarget() const;
    void checkInformation(const QVariantMap& information) const;
    void checkSpace(qint64 announced) const;

    void readMembers();
    void unpackMember();
    bool takeName();
    void unpackDirectory();
    void unpackFile();
    void claimSpace();
    int createFile();
    void writeFile(int file);
    void checkPatterns() const;
    void checkPlace(bool isDirectory, bool& exists);
    bool mayReplace() const;

    [[noreturn]] void refuse(const QString& fault) const;
    [[noreturn]] void refuseKind(bool isDirectory) const;
    [[noreturn]] void failToCreate(bool isDirectory) const;
    [[noreturn]] void failToStage(bool isDirectory) const;
    QString getText() const;

    QString m_archivePath;
    QString m_targetPath;
    KusArchive::ExtractInfo m_info;
    KusArchiveProgress& m_progress;

    KusMemberPatterns m_patterns;
    qint64 m_freeSpace = -1; // -1: not known
    qint64 m_writtenSize = 0;
    std::unique_ptr<KusArchiveReader> m_archive;
    std::unique_ptr<KusArchiveWatchedInput> m_input;
    std::unique_ptr<KusTarReader> m_tar;
    std::unique_ptr<KusArchiveStaging> m_staging;
    std::unique_ptr<KusArchiveDescent> m_places; // what the target has
    KusArchiveNames m_names;
    QByteArray m_path; // of the member at work, without needless elements
};
