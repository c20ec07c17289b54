#include "KusArchiveDecoder.h"

#include <algorithm>

namespace
{
constexpr int BUFFER_SIZE = 128 << 10; // a whole block of Zstandard
}

KusArchiveDecoder::KusArchiveDecoder(std::unique_ptr<KusArchiveFile> file)
    : m_file(std::move(file))
{
}

KusArchiveDecoder::~KusArchiveDecoder() = default;

int KusArchiveDecoder::decode(char* out, int capacity)
{
    if (m_error)
        std::rethrow_exception(m_error);
    if (m_atEnd)
        return 0;
    try {
        const int count = _decode(out, capacity);
        m_atEnd = count == 0;
        return count;
    } catch (...) {
        m_error = std::current_exception();
        throw;
    }
}

HbdSpan<const char> KusArchiveDecoder::next(int most)
{
    if (m_begin == m_end) {
        m_buffer.resize(BUFFER_SIZE);
        m_begin = m_end = 0;
        m_end = decode(m_buffer.data(), BUFFER_SIZE);
    }
    const int count = std::min(most, m_end - m_begin);
    m_begin += count;
    return {m_buffer.data() + m_begin - count, count};
}
