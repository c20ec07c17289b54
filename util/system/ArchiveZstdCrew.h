#pragma once

#include "ArchiveZstdSegments.h"

#include <basic/data/HbdSpan.h>

#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

class KusArchiveDecoder;
class KusArchiveFile;

/// Decompresses the segments of a frame (ArchiveZstdSegments) in several threads, which take turns
/// at reading the file, a few segments ahead of the caller.
///
/// It knows no errors: what is not as it should be, it leaves to a decoder that goes through the
/// file from its begin, and that says what is wrong with it.
class ArchiveZstdCrew
{
public:
    /// A crew for the file, of which it is to be the only reader, from its first byte on; null
    /// where the file has no segments, or where there are no threads to be had. The file is
    /// borrowed.
    static std::unique_ptr<ArchiveZstdCrew> create(KusArchiveFile& file);
    ~ArchiveZstdCrew();
    ArchiveZstdCrew(const ArchiveZstdCrew&) = delete;
    ArchiveZstdCrew& operator=(const ArchiveZstdCrew&) = delete;

    /// The next bytes, at least one and at most `most`, which stand until the next call; empty at
    /// the end, where the checksum of all that was handed out is right. None when it cannot go on.
    std::optional<HbdSpan<const char>> next(int most);

    /// Ends the threads, each at its next block of the file, and leaves that at its end: it is to
    /// be rewound. Nothing comes next any more.
    void stop();

    /// Moves a decoder of the same file from the begin to where the crew is; false when what stands
    /// before is not what was handed out. `check` may be null; it is called on the way and may
    /// throw.
    bool moveHere(KusArchiveDecoder& decoder, const std::function<void()>& check) const;

private:
    struct Segment;
    class Decompressor;
    class Hash;
    struct Slot {
        std::unique_ptr<char[]> content;
        int size = 0;
        bool isReady = false;
        bool isFailed = false;
        bool isLast = false;
    };

    ArchiveZstdCrew(KusArchiveFile& file, const ArchiveZstdSegments& segments, char windowByte);
    bool start();
    void work(Segment& segment);
    bool readNext(Segment& segment);
    bool readBlocks(Segment& segment);
    bool readEnd();
    bool read(char* data, int count);
    bool waitForSlot(qint64 index);
    void publish(const Segment& segment, int size);
    void takeSegment();
    Slot& slotOf(qint64 index) { return m_slots[std::size_t(index) % m_slots.size()]; }

    KusArchiveFile& m_file;
    const ArchiveZstdSegments m_segments;
    const char m_windowByte; // of the frame's head

    std::mutex m_turn; // for the file and these
    qint64 m_readCount = 0;
    qint64 m_readSize = 0; // of the frame
    bool m_isReadingEnded = false;
    quint32 m_checksum = 0; // known with the last segment

    // The caller's.
    std::unique_ptr<Hash> m_hash;
    qint64 m_position = 0;
    qint64 m_takenCount = 0; // segments, the last of which is at work
    int m_given = 0;         // of that one

    std::mutex m_mutex;                  // for the slots and these
    std::condition_variable m_released;  // for the threads
    std::condition_variable m_published; // for the caller
    std::vector<Slot> m_slots;
    qint64 m_releasedCount = 0;
    bool m_isStopped = false;

    std::vector<Segment> m_segmentsAtWork; // of a thread each
    std::vector<std::thread> m_threads;
};
