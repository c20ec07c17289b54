#include "ArchiveZstdBlock.h"

#include <algorithm>

namespace
{
enum Kind { RAW, RLE, COMPRESSED, RESERVED };
}

ArchiveZstdBlock::ArchiveZstdBlock(const char* header)
{
    unsigned bits = 0;
    for (int i = HEADER_SIZE; i-- > 0;)
        bits = bits << 8 | static_cast<unsigned char>(header[i]);
    const unsigned kind = bits >> 1 & 3;
    const int stated = static_cast<int>(bits >> 3);
    isLast = (bits & 1) != 0;
    isValid = kind != RESERVED && stated <= MAX_SIZE;
    size = kind == RLE ? 1 : stated; // one byte, repeated so often
}

void ArchiveZstdBlockCounter::add(const char* bytes, qint64 size)
{
    const char* const end = bytes + size;
    while (bytes != end && !m_isEnded) {
        const qint64 skipped = std::min<qint64>(m_skip, end - bytes);
        m_skip -= skipped;
        bytes += skipped;
        while (m_skip == 0 && bytes != end && m_headerSize < ArchiveZstdBlock::HEADER_SIZE)
            m_header[m_headerSize++] = *bytes++;
        if (m_headerSize == ArchiveZstdBlock::HEADER_SIZE) {
            const ArchiveZstdBlock block(m_header);
            m_headerSize = 0;
            m_skip = block.size;
            m_count += block.size != 0 ? 1 : 0;
            m_isEnded = block.isLast;
        }
    }
}
