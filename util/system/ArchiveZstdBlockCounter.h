#pragma once

#include "ArchiveZstdBlock.h"

/// Counts the blocks with content of a frame that passes by.
class ArchiveZstdBlockCounter
{
public:
    /// The head of the frame has `headSize` bytes.
    explicit ArchiveZstdBlockCounter(int headSize)
        : m_skip(headSize)
    {
    }
    /// The next bytes of the frame, from the first one on; what stands behind it changes nothing.
    void add(const char* bytes, qint64 size);
    qint64 getCount() const { return m_count; }

private:
    qint64 m_skip; // up to the next header
    char m_header[ArchiveZstdBlock::HEADER_SIZE] = {};
    int m_headerSize = 0; // what is there of it
    qint64 m_count = 0;
    bool m_isEnded = false;
};
