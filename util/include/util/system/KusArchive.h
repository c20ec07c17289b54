#pragma once

#include <util/KuExport.h>

#include <basic/calc/HbcAProgress.h>

#include <QtCore/QStringList>
#include <QtCore/QVariantMap>

#include <functional>

/// Packs a directory tree, or one file, into one compressed file, and unpacks it again, as a long
/// task:
///
///     KusArchive archive("survey.tar.zst");
///     archive.setArchiveOperation("projects/survey", KusArchive::ArchiveInfo());
///     if (!archive.runInCurrentThread()) … archive.getErrorText() …
///
/// The file is a POSIX tar stream, compressed as a whole with Zstandard, that other tools read too;
/// gzip is accepted when unpacking. `docs/formats/archive.md` has it field by field.
///
/// **Packing.** The members are named from the directory's own name on ("survey/report/a.txt"),
/// each directory before its content, names in the order of their bytes: archives of the same tree
/// are the same. Links and other special files have no place in the format: they are refused, by
/// name, unless left out. The archive is complete under its name or not there at all, whatever
/// happens; nothing is ever written into the directory.
///
/// **Unpacking.** The members are written beside their places and put there at the end, so that a
/// failed or cancelled run leaves the target as it was. Nothing is written outside of the target,
/// or through a link in it. Permissions and modification times are restored, owners are not.
///
/// A wrong archive is a HbeUserError, a failing disk a HbeDiskError. The counter counts bytes, of
/// the source when packing, of the archive file else. An object runs one operation after the other.
class KELVANE_UTIL_EXPORT KusArchive : public HbcAProgress
{
    Q_OBJECT

public:
    /// The keys of the information, as they stand in archives, misspelled ones included.
    static constexpr char HeaderFieldProjectName[] = "project_name";
    static constexpr char HeaderFieldProjectDescription[] = "project_description";
    static constexpr char HeaderFieldProjectApplicationName[] = "project_appplication_name";
    static constexpr char HeaderFieldProjectCoordinateSytem[] = "project_coordinates_system";
    static constexpr char HeaderFieldProjectPreviewTree[] = "project_preview_tree";
    static constexpr char HeaderFieldProjectPreviewView[] = "project_preview_view";
    /// The sum of the sizes of the files, in bytes; always set by the archiver.
    static constexpr char HeaderFieldSize[] = "uncompressed-size";

    static constexpr qint64 DEFAULT_SIZE_LIMIT = qint64(1) << 40;

    /// How to pack. Patterns as in KusMemberPatterns, against the names of the members.
    struct ArchiveInfo {
        QStringList excluded; ///< what is left out
        QStringList included; ///< empty: all; else the files to take, and the directories they need
        QVariantMap header;   ///< the information, over that of `setHeader`
        int level = 1;        ///< of the compression, 1 to 19
        int threadCount = 0;  ///< of the compression, at most; 0: as many as there are cores
    };

    /// What to do with a file that exists at the place of a member.
    enum class ExistingFile { ASK, SKIP, REPLACE };

    /// How to unpack or verify.
    struct ExtractInfo {
        QStringList included; ///< patterns; empty: all. One that matches nothing is a user error
        QVariantMap header;   ///< what the archive's information must hold, else it is refused
        ExistingFile existingFile = ExistingFile::ASK;
        bool readOtherTools = false; ///< see KusTarReader::setReadOtherTools
        /// Take members whose names differ only in case for different ones, though a disk that does
        /// not tell them apart could hold only the last.
        bool caseSensitive = false;
        /// The most that the archive may hold, in bytes. Never more than the target has room for.
        qint64 sizeLimit = DEFAULT_SIZE_LIMIT;
    };

    /// Asks the user: the title, the question, and what is proposed; true to do that. Called in the
    /// thread that runs the task. Without one, the answer is no.
    using Question =
        std::function<bool(const QString& title, const QString& text, const QString& proposal)>;

    /// What a run packed, unpacked or read, without the information.
    struct Counts {
        qint64 members = 0;
        qint64 fileSize = 0; ///< the sum of the sizes of the files, in bytes
    };

    /// What a verification found.
    struct Verification {
        qint64 memberCount = 0;
        qint64 fileSize = 0;      ///< the sum of the sizes of the files, in bytes
        bool hasChecksum = false; ///< the content is covered by a checksum, which was right
        QStringList faults;       ///< in the order of the archive; empty: nothing is wrong
    };

    explicit KusArchive(const QString& archivePath, QObject* parent = nullptr);
    ~KusArchive() override;

    void setArchiveOperation(const QString& sourcePath, const ArchiveInfo& info);
    void setExtractOperation(const QString& targetPath, const ExtractInfo& info);
    /// Reads everything and writes nothing; see `getVerification`. A fault that can be read past is
    /// noted, any other is noted and ends the reading; the run itself succeeds.
    void setVerifyOperation(const ExtractInfo& info);

    /// The information for the archive to be written.
    void setHeader(const QVariantMap& header) { m_header = header; }
    /// The information of the archive on disk; empty when it has none. Reads no more than it must.
    QVariantMap readHeader() const;

    /// Whether the messages of the task name the member at work.
    void setVisibleProgressPaths(bool visible) { m_visiblePaths = visible; }
    bool hasVisibleProgressPaths() const { return m_visiblePaths; }

    void setQuestion(Question question) { m_question = std::move(question); }

    /// Of the last run, once it is over; members that were skipped do not count.
    const Counts& getCounts() const { return m_counts; }
    /// Of the last verification.
    const Verification& getVerification() const { return m_verification; }

    static QString getZstdExtension();
    static QString getGzipExtension();

protected:
    void _run() override;

private:
    enum class Operation { NONE, ARCHIVE, EXTRACT, VERIFY };
    friend class KusArchiveProgress;

    QString m_path;
    Operation m_operation = Operation::NONE;
    QString m_otherPath; // the source, or the target
    ArchiveInfo m_archiveInfo;
    ExtractInfo m_extractInfo;
    QVariantMap m_header;
    Question m_question;
    Counts m_counts;
    Verification m_verification;
    bool m_visiblePaths = false;
};
