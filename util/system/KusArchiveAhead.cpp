#include "KusArchiveAhead.h"

#include <algorithm>

namespace
{
// Multiples of a tar block, so that none of them stands across an end.
constexpr qint64 TAR_BLOCK = 512;
constexpr qint64 RING_SIZE = 8 << 20;
// What the two threads hand over at once: with smaller parts, waking each other is what they do
// most.
constexpr qint64 PART = 1 << 20;

qint64 endOfPart(qint64 place)
{
    return place - place % PART + PART;
}
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
        bool ended = false;
        while (!ended && waitForRoom()) {
            const qint64 room = endOfPart(m_decoded) - m_decoded;
            const int count =
                m_decoder.decode(m_ring.get() + m_decoded % RING_SIZE, static_cast<int>(room));
            m_decoded += count;
            ended = count == 0;
            // The begin at once, for whoever wants no more than that.
            if (ended || count == room || m_decoded < PART)
                publish(ended);
        }
    } catch (...) {
        m_error = std::current_exception();
        publish(true);
    }
}

// The room is that of a whole part.
bool KusArchiveAhead::waitForRoom()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    const qint64 end = endOfPart(m_decoded);
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
    m_taken = std::min(m_published, endOfPart(m_given));
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
