#include "ArchiveZstdSegments.h"

#include <QtCore/QtEndian>

#include <algorithm>

namespace
{
constexpr quint32 MAGIC = 0x184D2A58;
constexpr int HEAD_SIZE = 8;
constexpr char NAME[] = {'s', 'e', 'g', 'm', 'e', 'n', 't', 's'};

constexpr int NAME_PLACE = HEAD_SIZE;
constexpr int CONTENT_PLACE = NAME_PLACE + sizeof NAME;
constexpr int FRAME_PLACE = CONTENT_PLACE + sizeof(quint32);
static_assert(FRAME_PLACE + sizeof(qint64) == ArchiveZstdSegments::SIZE);
} // namespace

ArchiveZstdSegments::Bytes ArchiveZstdSegments::encode() const
{
    Bytes bytes = {};
    qToLittleEndian(MAGIC, bytes.data());
    qToLittleEndian(quint32(SIZE - HEAD_SIZE), bytes.data() + sizeof MAGIC);
    std::copy(std::begin(NAME), std::end(NAME), bytes.begin() + NAME_PLACE);
    qToLittleEndian(quint32(contentSize), bytes.data() + CONTENT_PLACE);
    qToLittleEndian(frameSize, bytes.data() + FRAME_PLACE);
    return bytes;
}

std::optional<ArchiveZstdSegments> ArchiveZstdSegments::decode(const Bytes& bytes)
{
    ArchiveZstdSegments segments;
    segments.contentSize = qFromLittleEndian<qint32>(bytes.data() + CONTENT_PLACE);
    segments.frameSize = qFromLittleEndian<qint64>(bytes.data() + FRAME_PLACE);
    if (segments.contentSize <= 0 || segments.frameSize <= 0 || segments.encode() != bytes)
        return std::nullopt;
    return segments;
}
