#pragma once

#include "KusArchiveFile.h"

#include <exception>
#include <memory>
#include <vector>

/// Turns the bytes of a compressed file into those that were compressed. One thread decodes; any
/// may ask for what `getFile` says of sizes, and `hasChecksum`.
class KusArchiveDecoder
{
public:
    virtual ~KusArchiveDecoder();
    KusArchiveDecoder(const KusArchiveDecoder&) = delete;
    KusArchiveDecoder& operator=(const KusArchiveDecoder&) = delete;

    KusArchiveFile& getFile() { return *m_file; }
    const KusArchiveFile& getFile() const { return *m_file; }

    /// The next bytes, at least one and at most `capacity` (1 or more), 0 at the end. What stands
    /// before a fault is handed out, and the fault is the error of every call from there on: where
    /// that is does not depend on how the calls divide the stream.
    int decode(char* out, int capacity);

    /// The same from a buffer of its own, which stands until the next call.
    HbdSpan<const char> next(int most);

    /// Whether all that was decoded so far is covered by a checksum.
    virtual bool hasChecksum() const = 0;

protected:
    explicit KusArchiveDecoder(std::unique_ptr<KusArchiveFile> file);

    /// As `decode`: an error is thrown by a call that has no bytes to hand out.
    virtual int _decode(char* out, int capacity) = 0;

private:
    std::unique_ptr<KusArchiveFile> m_file;
    std::exception_ptr m_error;
    bool m_atEnd = false;
    std::vector<char> m_buffer;
    int m_begin = 0;
    int m_end = 0;
};
