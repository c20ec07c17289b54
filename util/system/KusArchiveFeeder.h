#pragma once

#include <basic/data/HbdSpan.h>

#include <QtCore/QtGlobal>

#include <array>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>

/// Reads a file in a thread of its own, a few pieces ahead of whoever works on them: copying what
/// the system has in memory takes a tenth of the time that decompressing takes.
///
/// The descriptor is borrowed, and read from its place on. One thread takes the pieces. Where no
/// thread can be made, the constructor throws std::system_error.
class KusArchiveFeeder
{
public:
    /// Before each piece so many bytes may be written, by whoever takes it.
    static constexpr int HEADROOM = 16 << 10;

    explicit KusArchiveFeeder(int descriptor);
    /// Ends the thread; at most one piece is still read.
    ~KusArchiveFeeder();
    KusArchiveFeeder(const KusArchiveFeeder&) = delete;
    KusArchiveFeeder& operator=(const KusArchiveFeeder&) = delete;

    /// The next piece, which stands until the next call; empty at the end of the file and where it
    /// cannot be read: `error` is then that of the system, else 0.
    HbdSpan<char> take(int& error);

private:
    static constexpr int PIECE = 1 << 20;
    static constexpr int SLOTS = 3;

    void work();
    int readPiece(char* data, int& error) const;

    struct Slot {
        std::unique_ptr<char[]> bytes;
        int size = 0;
        int error = 0;
    };

    int m_descriptor;
    std::array<Slot, SLOTS> m_slots;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    qint64 m_readCount = 0;  // pieces, the last one of which is empty
    qint64 m_takenCount = 0; // of them; the last one is at work
    bool m_stopped = false;
    std::thread m_thread; // the last member: it uses the others
};
