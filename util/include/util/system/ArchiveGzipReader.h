#pragma once

#include <util/system/KusArchiveInput.h>

#include <QtCore/QString>

#include <memory>

/// Reads a gzip file (RFC 1952) of one member or more; the checksum and the size of each member are
/// verified. What follows the last member and is none is passed over, as gzip itself does.
///
/// Errors as those of ArchiveZstdReader. One thread uses an object.
class KELVANE_UTIL_EXPORT ArchiveGzipReader : public KusArchiveInput
{
public:
    explicit ArchiveGzipReader(const QString& path);
    ~ArchiveGzipReader() override;
    ArchiveGzipReader(const ArchiveGzipReader&) = delete;
    ArchiveGzipReader& operator=(const ArchiveGzipReader&) = delete;

    /// Opens for reading; the mode is "rb".
    void open(const char* mode = "rb");
    bool isOpen() const;
    void close();

    /// Of the file: bytes read so far. Any thread may ask.
    qint64 getReadSize() const;

protected:
    HbdSpan<const char> _next(int most) override;

private:
    struct Private;
    std::unique_ptr<Private> m;
};
