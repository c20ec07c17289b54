#include "ArchiveZstdBlock.h"

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
