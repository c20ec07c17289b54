#pragma once

#include <util/system/KusArchiveInput.h>

#include <QtCore/QByteArray>

#include <algorithm>

/// Bytes in memory as the input of an archive's reader, handed out in pieces of at most `piece`.
class MemoryInput : public KusArchiveInput
{
public:
    explicit MemoryInput(const QByteArray& bytes, int piece = 1 << 16)
        : m_bytes(bytes)
        , m_piece(piece)
    {
    }

    qint64 getReadSize() const { return m_position; }

protected:
    HbdSpan<const char> _next(int most) override
    {
        const int count = std::min({most, m_piece, m_bytes.size() - m_position});
        const char* const begin = m_bytes.constData() + m_position;
        m_position += count;
        return HbdSpan<const char>(begin, count);
    }

private:
    QByteArray m_bytes;
    int m_piece;
    int m_position = 0;
};
