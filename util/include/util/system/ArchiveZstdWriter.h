#pragma once

#include <util/KuExport.h>

#include <QtCore/QString>

#include <memory>

/// Writes a file as one Zstandard frame with the checksum of its content, in the format of RFC
/// 8878. Where the frame consists of segments that several threads can decompress, a skippable
/// frame behind it says so (docs/formats/archive.md).
///
/// The compression runs in threads of its own, so that the caller reads on meanwhile; the bytes
/// written do not depend on their number. Whatever level and number are asked for, the memory taken
/// stays below 28 MiB: the highest levels work with smaller tables for it, and the number of
/// threads is lowered where they do not fit.
///
/// The file appears under its name at `close`, whole; until then an older file stays what it was,
/// and without `close` nothing of the new one is left, not even when the process is killed (where
/// the file system has files without a name).
///
/// What fails is a HbeDiskError. One thread uses an object.
class KELVANE_UTIL_EXPORT ArchiveZstdWriter
{
public:
    static constexpr int DEFAULT_LEVEL = 1;
    static constexpr int MIN_LEVEL = 1;
    static constexpr int MAX_LEVEL = 19;

    explicit ArchiveZstdWriter(const QString& path);
    /// Discards what was not closed.
    ~ArchiveZstdWriter();
    ArchiveZstdWriter(const ArchiveZstdWriter&) = delete;
    ArchiveZstdWriter& operator=(const ArchiveZstdWriter&) = delete;

    /// Opens for writing; the mode is "wb". A level outside of its range is a programming error. 0
    /// threads: as many as the machine has cores.
    void open(const char* mode = "wb", int level = DEFAULT_LEVEL, int threadCount = 0);
    bool isOpen() const;

    /// Answers false when the disk does not take the bytes; `getErrorString` says why. An error of
    /// the compression library is a HbeDiskError "Zstd error: %1".
    bool write(const char* data, qint64 size);

    /// Ends the file, flushes the file to the disk and puts it in place; false as for `write`.
    bool close();
    /// Ends without the file.
    void discard();

    /// The new file's name until it has its own, for whoever must not take it for another; empty
    /// where it has none.
    QString getTemporaryPath() const;

    /// What the disk took so far, compressed.
    qint64 getWrittenSize() const;
    QString getErrorString() const;

private:
    struct Private;
    std::unique_ptr<Private> m;
};
