#include "ArchiveZstdBlockCounter.h"

#include <algorithm>

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
