#pragma once

#include <util/KuExport.h>

#include <QtCore/QByteArray>
#include <QtCore/QCoreApplication>
#include <QtCore/QDateTime>
#include <QtCore/QString>

#include <array>
#include <memory>

struct KusTarFile;

/// One header of a tar stream (POSIX.1-1988 ustar, with pax extended headers of POSIX.1-2001) and,
/// when it was made from a file, the file's data. A block is 512 bytes.
///
/// Names are bytes, UTF-8 by convention and as they stand on disk; `name()` is the text of them.
///
/// A copy shares no open file: it is closed.
class KELVANE_UTIL_EXPORT KusTarRecord
{
    Q_DECLARE_TR_FUNCTIONS(KusTarRecord)

public:
    static constexpr int BLOCK_SIZE = 512;
    static constexpr int CHUNK_BLOCKS = 20000; ///< the most blocks that `readNextData` answers
    static constexpr int NAME_SIZE = 100;
    static constexpr int PREFIX_SIZE = 155;

    enum TypeFlag : char { FILE_TYPE = '0', DIRECTORY_TYPE = '5', EXTENSION_TYPE = 'x' };

    /// Not valid.
    KusTarRecord();
    /// Parses a block; one of another size makes a record that is not valid.
    explicit KusTarRecord(const QByteArray& block);
    explicit KusTarRecord(const char* block);
    /// The header of a file or directory on disk (a link is followed): the member's name is the
    /// directory path in the archive, "/" and the name, by default that of the source; an empty
    /// directory path adds no slash. A source that is missing, or neither file nor directory, makes
    /// a record that is not valid.
    KusTarRecord(const QString& sourcePath, const QString& archiveDirPath,
                 const QString& name = QString());
    /// The same of facts that are at hand, for a member whose data the caller has.
    KusTarRecord(const KusTarFile& file, const QByteArray& archiveDirPath);

    KusTarRecord(const KusTarRecord& other);
    KusTarRecord& operator=(const KusTarRecord& other);
    KusTarRecord(KusTarRecord&& other) noexcept;
    KusTarRecord& operator=(KusTarRecord&& other) noexcept;
    ~KusTarRecord();

    /// The 512 bytes.
    QByteArray header() const;
    const char* headerData() const { return m_header.data(); }

    /// The prefix, "/" unless that is empty, and the name field.
    QString name() const;
    QByteArray nameBytes() const;
    char typeFlag() const;
    /// Bytes of data; -1 when the field holds no number, a negative one, or one beyond 2^63 - 1.
    qint64 size() const;
    /// When the file was last modified, in local time; invalid when the field holds no number, or
    /// one that no calendar reaches.
    QDateTime modifTime() const;
    /// The same in seconds since 1970; 0 when the field holds no number.
    qint64 modifSeconds() const;
    /// The nine permission bits, octal 0 to 0777; -1 when the field holds no number.
    int permissionBits() const;

    /// Everything but a directory is a file.
    bool isFile() const { return typeFlag() != DIRECTORY_TYPE; }
    /// In a record made from a file: the name did not fit, a pax record must stand before it. In
    /// one that was read: it is itself a pax record.
    bool isExtension() const;
    /// A file or directory of a ustar archive or a pax record, with a name and a size. The checksum
    /// does not matter, on purpose: archives of old writers have wrong ones.
    bool isValid() const;
    /// Whether the checksum field is the sum of the header's bytes.
    bool hasRightChecksum() const;
    /// Nothing but NUL, as the two blocks that end a tar stream.
    bool isZeroBlock() const;

    /// Opens the source for reading; what fails is a HbeProgrammingError or HbeDiskError.
    void initFile();
    /// The next blocks of the file, at most CHUNK_BLOCKS, the last one padded with NUL; empty at
    /// its end. Exactly `size()` bytes are read: a file that became shorter meanwhile is a
    /// HbeDiskError, what it grew by is left out.
    QByteArray readNextData();
    void closeFile();

    /// The pax record that stands before the record of a member whose name does not fit; false, and
    /// nothing else, when it fits. `data` is padded to whole blocks.
    static bool createPaxRecord(const QString& sourcePath, const QString& archiveDirPath,
                                KusTarRecord& header, QByteArray& data);
    /// The same of facts that are at hand.
    static bool createPaxRecord(const KusTarFile& file, const QByteArray& archiveDirPath,
                                KusTarRecord& header, QByteArray& data);
    /// The "path" of a pax record's data; without one, `path` stays what it is. False for data that
    /// cannot be decoded; what is wrong with them is logged.
    static bool decodePaxRecord(const QByteArray& data, QString& path);
    static bool decodePaxRecord(const QByteArray& data, QByteArray& path);

    /// The size of so many bytes in whole blocks, in bytes; 0 for 0 or less. What would not fit
    /// into the number is its largest multiple of a block.
    static qint64 getPaddedSize(qint64 size);

private:
    struct Source;

    std::array<char, BLOCK_SIZE> m_header{};
    bool m_isExtension = false;
    std::unique_ptr<Source> m_source; // null in a record that was read
};
