#pragma once

#include <QtCore/QtGlobal>

#include <array>
#include <optional>

/// Says of a Zstandard frame that it consists of segments that need nothing of each other, so that
/// several threads can decompress it.
///
/// Each segment but the last has the same number of bytes of content, in full blocks. The frame is
/// one as any other; this stands behind it in a skippable frame (RFC 8878, 3.1.2), which readers
/// pass over:
///
/// | bytes | content, the lowest byte first |
/// |---|---|
/// | 4 | magic number 0x184D2A58 |
/// | 4 | 20, the number of bytes that follow |
/// | 8 | `segments` |
/// | 4 | content of a segment, in bytes |
/// | 8 | the frame's size in the file |
struct ArchiveZstdSegments {
    static constexpr int SIZE = 28;
    using Bytes = std::array<char, SIZE>;

    int contentSize = 0; // of a segment
    qint64 frameSize = 0;

    Bytes encode() const;
    /// None where the bytes are something else.
    static std::optional<ArchiveZstdSegments> decode(const Bytes& bytes);
};
