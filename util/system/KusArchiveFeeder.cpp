#include "KusArchiveFeeder.h"

#include <cerrno>

#include <unistd.h>

KusArchiveFeeder::KusArchiveFeeder(int descriptor)
    : m_descriptor(descriptor)
{
    for (Slot& slot : m_slots)
        slot.bytes.reset(new char[HEADROOM + PIECE]);
    m_thread = std::thread([this] { work(); });
}

KusArchiveFeeder::~KusArchiveFeeder()
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_stopped = true;
    }
    m_changed.notify_all();
    m_thread.join();
}

HbdSpan<char> KusArchiveFeeder::take(int& error)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    const bool isAtEnd = m_takenCount > 0 && m_slots[(m_takenCount - 1) % SLOTS].size == 0;
    if (!isAtEnd) {
        ++m_takenCount;
        m_changed.notify_all();
        m_changed.wait(lock, [this] { return m_readCount >= m_takenCount; });
    }
    const Slot& slot = m_slots[(m_takenCount - 1) % SLOTS];
    error = slot.error;
    return {slot.bytes.get() + HEADROOM, slot.size};
}

void KusArchiveFeeder::work()
{
    for (bool isAtEnd = false; !isAtEnd;) {
        {
            std::unique_lock<std::mutex> lock(m_mutex);
            // The piece at work, the last one that was taken, keeps its slot.
            m_changed.wait(lock,
                           [this] { return m_stopped || m_readCount - m_takenCount < SLOTS - 1; });
            if (m_stopped)
                return;
        }
        Slot& slot = m_slots[m_readCount % SLOTS];
        int error = 0;
        const int size = readPiece(slot.bytes.get() + HEADROOM, error);
        isAtEnd = size == 0;
        const std::lock_guard<std::mutex> lock(m_mutex);
        slot.size = size;
        slot.error = error;
        ++m_readCount;
        m_changed.notify_all();
    }
}

/// A whole piece but at the end; what was read before an error comes first.
int KusArchiveFeeder::readPiece(char* data, int& error) const
{
    int size = 0;
    while (size < PIECE) {
        const ssize_t count =
            ::read(m_descriptor, data + size, static_cast<std::size_t>(PIECE - size));
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0 && size == 0)
            error = errno;
        if (count <= 0)
            break;
        size += static_cast<int>(count);
    }
    return size;
}
