#pragma once

#include <util/system/KusArchiveInput.h>

#include <QtCore/QString>

#include <memory>

/// Reads a file of Zstandard frames (RFC 8878), one after the other, skippable frames passed over.
/// The checksum of each frame's content is verified where it has one.
///
/// Reads no more of the file than the bytes that are asked for need, in steps that grow. A frame
/// may ask for a window of up to 128 MiB, as the usual tools allow; the memory is taken as it is
/// filled.
///
/// A file that cannot be read is a HbeDiskError; one that is damaged, cut off or no Zstandard file
/// is a HbeUserError, with the place in the compressed file. One thread uses an object.
class KELVANE_UTIL_EXPORT ArchiveZstdReader : public KusArchiveInput
{
public:
    explicit ArchiveZstdReader(const QString& path);
    ~ArchiveZstdReader() override;
    ArchiveZstdReader(const ArchiveZstdReader&) = delete;
    ArchiveZstdReader& operator=(const ArchiveZstdReader&) = delete;

    /// Opens for reading; the mode is "rb".
    void open(const char* mode = "rb");
    bool isOpen() const;
    void close();

    /// Of the file: bytes read so far. Any thread may ask.
    qint64 getReadSize() const;
    /// Whether every frame read so far holds a checksum of its content. Any thread may ask.
    bool hasChecksum() const;

protected:
    HbdSpan<const char> _next(int most) override;

private:
    struct Private;
    std::unique_ptr<Private> m;
};
