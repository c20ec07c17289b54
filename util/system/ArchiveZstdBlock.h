#pragma once

#include <QtCore/QtGlobal>

/// The header of a block in a Zstandard frame (RFC 8878, 3.1.1.2).
struct ArchiveZstdBlock {
    static constexpr int HEADER_SIZE = 3;
    /// Of the content of one block, and of what it takes in the file.
    static constexpr int MAX_SIZE = 128 << 10;

    explicit ArchiveZstdBlock(const char* header);

    bool isLast;
    bool isValid; // of a known kind, and not too large
    int size;     // in the file, without the header
};

/// Counts the blocks with content of a frame that passes by.
class ArchiveZstdBlockCounter
{
public:
    /// The next bytes of the frame, from the first one on. Its header is of `headSize` bytes.
    explicit ArchiveZstdBlockCounter(int headSize)
        : m_skip(headSize)
    {
    }
    void add(const char* bytes, qint64 size);
    qint64 getCount() const { return m_count; }

private:
    qint64 m_skip; // up to the next header
    char m_header[ArchiveZstdBlock::HEADER_SIZE] = {};
    int m_headerSize = 0; // what is there of it
    qint64 m_count = 0;
    bool m_isEnded = false;
};
