#pragma once

#include "KusArchiveReplacement.h"
#include "KusArchiveWalk.h"

#include <util/system/KusArchive.h>
#include <util/system/KusMemberPatterns.h>

#include <QtCore/QCoreApplication>

#include <vector>

class KusArchiveOutput;
class KusArchiveProgress;
struct KusTarFile;

/// Writes one archive: the packing half of KusArchive, which says what it does.
///
/// The source is gone through twice: first without its data, to refuse what cannot be packed and to
/// sum up the sizes, then with them. The archive is begun only when nothing is refused. A source
/// that changes in between fails the run, so that what the archive announces is true.
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
    enum class Choice { NONE, ENTER, TAKE };
    /// A directory that goes into the archive when something in it does.
    struct Pending;

    void inspectSource();
    void nameSource();
    void openSource(bool isDirectory);
    KusArchiveWalk::Descriptor reopenDirectory() const;
    QString getShownSource() const;

    Choice choose(const QByteArray& name, bool isDirectory);
    void scan();
    void scanDirectory(KusArchiveWalk& walk);
    void scanFile(const KusArchiveWalk& walk);
    QString findNameFault(const QByteArray& name) const;
    [[noreturn]] void refuseName(const QString& shownPath, const QString& fault) const;
    void warnOfCase(const KusArchiveWalk& walk);

    void write(const QVariantMap& header);
    void writeInformation(KusArchiveOutput& output, const QByteArray& information) const;
    void addMember(KusArchiveOutput& output, const KusTarFile& file, const QByteArray& above);
    void writeSingleFile(KusArchiveOutput& output);
    void writeDirectory(KusArchiveOutput& output);
    void writePending(KusArchiveOutput& output, const QByteArray& name,
                      std::vector<Pending>& pending);
    void writeFile(KusArchiveOutput& output, const KusArchiveWalk& walk,
                   std::vector<Pending>& pending);

    QString m_archivePath;
    QString m_sourcePath;
    KusArchive::ArchiveInfo m_info;
    KusArchiveProgress& m_progress;
    KusArchiveReplacement m_own;

    KusMemberPatterns m_excluded;
    KusMemberPatterns m_included;
    QByteArray m_sourceName;
    QString m_shownBase; // stands before the names of members in messages
    KusArchiveWalk::Descriptor m_source;
    bool m_isDirectory = false;
    qint64 m_announcedSize = 0;
    qint64 m_writtenSize = 0;
};
