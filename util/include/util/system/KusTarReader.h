#pragma once

#include <util/system/KusTarRecord.h>

#include <basic/data/HbdSpan.h>

#include <QtCore/QVariantMap>

class KusArchiveInput;

/// Reads a tar stream, member by member:
///
///     KusArchiveReader archive(path);
///     KusTarReader tar(archive, path);
///     while (tar.nextMember()) … tar.getName() … tar.readData(most) …
///
/// Strictly it reads what Kelvane writes: files, directories and pax records with their "path"; any
/// other record is invalid, and more than two of them make the archive corrupt (the two blocks of
/// NUL at the end are two). Archives of other tools hold more; `readOtherTools` reads:
/// - the end at two blocks of NUL, whatever pads the file behind;
/// - a NUL type flag as a file, and headers older than ustar, these with a right checksum only;
/// - a "file" whose name ends with a slash as the directory that old writers meant;
/// - GNU long names, and GNU headers, which have other fields in the place of the prefix;
/// - the "size" of pax records; global pax headers are passed over;
/// and any other record is refused at once, by its place, name and fault.
///
/// What is wrong with the archive is a HbeUserError that names it. The names of members are those
/// of the archive: whoever writes files asks KusMemberPath whether they may be. One thread uses an
/// object.
class KELVANE_UTIL_EXPORT KusTarReader
{
    Q_DECLARE_TR_FUNCTIONS(KusTarReader)

public:
    /// The file name of the member that holds the archive's information.
    static constexpr char INFORMATION_NAME[] = "qm_archive_info";

    /// The input is borrowed; the path is for messages.
    KusTarReader(KusArchiveInput& input, const QString& archivePath);
    ~KusTarReader();
    KusTarReader(const KusTarReader&) = delete;
    KusTarReader& operator=(const KusTarReader&) = delete;

    /// Before the first member.
    void setReadOtherTools(bool other);
    /// The most that may be read, members and their headers, in bytes; beyond it the archive is
    /// refused before the data of the member are read.
    void setSizeLimit(qint64 bytes);

    /// The archive's information: read from the first member when that is a file of its name, which
    /// is then passed over by `nextMember`; else empty. Once it is known, the sizes of the files
    /// must not exceed what it announces.
    QVariantMap readInformation();
    /// The uncompressed size that the information announces; -1 when there is none.
    qint64 getAnnouncedSize() const;

    /// Goes on to the next member, past the data of this one; false at the end. Reads the
    /// information if that is still to be done.
    bool nextMember();

    /// Of the present member. A directory's name has no slash at its end.
    const QByteArray& getName() const;
    QString getNameText() const;
    qint64 getSize() const;
    bool isDirectory() const;
    const KusTarRecord& getRecord() const;
    /// Whether the checksums of its header and of the records before it are right; before the first
    /// member, that of the information.
    bool hasRightChecksum() const;
    /// Where its header stands in the stream, in bytes.
    qint64 getOffset() const;

    /// The next bytes of its data, at least one and at most `most`; none at their end. Data that
    /// are cut off are a HbeUserError.
    HbdSpan<const char> readData(int most);

    /// Reads on to the end of the input, so that the compression's checksum is verified.
    void readToEnd();

    /// So far: members, and the bytes of files among them.
    qint64 getMemberCount() const;
    qint64 getTotalSize() const;
    /// At the end: whether the two blocks of NUL stood there.
    bool hasClosingBlocks() const;
    /// After `readToEnd`: whether anything but NUL stood behind the end.
    bool hasForeignEnd() const;

private:
    struct Private;
    std::unique_ptr<Private> m;
};
