#include "KusArchiveAhead.h"

#include <algorithm>

namespace
{
// Multiples of a tar block, so that none of them stands across an end.
constexpr qint64 TAR_BLOCK = 512;
constexpr qint64 RING_SIZE = 6 << 20;
// Room for which the thread wakes, and most that the caller keeps: small parts would have the two
// wait for each other all the time.
constexpr qint64 LEAST_ROOM = 1 << 20;
constexpr qint64 MOST_TAKEN = 512 << 10;
} // namespace

KusArchiveAhead::KusArchiveAhead(KusArchiveDecoder& decoder)
    : m_decoder(decoder)
    , m_ring(new char[RING_SIZE])
    , m_thread([this] { work(); })
{
}

KusArchiveAhead::~KusArchiveAhead()
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_stopped = true;
    }
    m_changed.notify_all();
    m_decoder.getFile().cancel();
    m_thread.join();
}

void KusArchiveAhead::work()
{
    try {
        while (waitForRoom()) {
            const qint64 place = m_decoded % RING_SIZE;
            const qint64 room = std::min(LEAST_ROOM - m_decoded % LEAST_ROOM, RING_SIZE - place);
            const int count = m_decoder.decode(m_ring.get() + place, static_cast<int>(room));
            m_decoded += count;
            publish(count == 0);
            if (count == 0)
                return;
        }
    } catch (...) {
        m_error = std::current_exception();
        publish(true);
    }
}

// The room is that of a whole part of the ring, which is then filled without a further look.
bool KusArchiveAhead::waitForRoom()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    const qint64 end = m_decoded - m_decoded % LEAST_ROOM + LEAST_ROOM;
    m_changed.wait(lock, [&] { return m_stopped || end - m_released <= RING_SIZE; });
    return !m_stopped;
}

void KusArchiveAhead::publish(bool ended)
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_published = ended ? m_decoded : m_decoded - m_decoded % TAR_BLOCK;
        m_ended = ended;
    }
    m_changed.notify_all();
}

void KusArchiveAhead::take()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    m_released = m_given;
    m_changed.notify_all();
    m_changed.wait(lock, [this] { return m_ended || m_published > m_given; });
    const qint64 end = m_given - m_given % MOST_TAKEN + MOST_TAKEN;
    m_taken = std::min(m_published, end);
    if (m_taken == m_given && m_error)
        std::rethrow_exception(m_error);
}

HbdSpan<const char> KusArchiveAhead::next(int most)
{
    if (m_given == m_taken)
        take();
    const qint64 place = m_given % RING_SIZE;
    const int count = static_cast<int>(std::min<qint64>(most, m_taken - m_given));
    m_given += count;
    return {m_ring.get() + place, count};
}
