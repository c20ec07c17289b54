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
