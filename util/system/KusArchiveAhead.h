#pragma once

#include "KusArchiveDecoder.h"

#include <condition_variable>
#include <mutex>
#include <thread>

/// Decodes in a thread of its own, a few MiB ahead of the caller, into a ring whose parts the
/// caller gets as they are.
class KusArchiveAhead
{
public:
    /// Starts the thread, which alone uses the decoder from then on. A std::system_error when there
    /// is no thread to be had.
    explicit KusArchiveAhead(KusArchiveDecoder& decoder);
    /// Ends the thread at its next block.
    ~KusArchiveAhead();
    KusArchiveAhead(const KusArchiveAhead&) = delete;
    KusArchiveAhead& operator=(const KusArchiveAhead&) = delete;

    /// As KusArchiveDecoder::next, errors included.
    HbdSpan<const char> next(int most);

private:
    void work();
    bool waitForRoom();
    void publish(bool ended);
    void take();

    KusArchiveDecoder& m_decoder;
    std::unique_ptr<char[]> m_ring;
    qint64 m_decoded = 0; // all counts are from the begin of the stream; the thread's
    qint64 m_given = 0;   // the caller's, as is the next
    qint64 m_taken = 0;

    std::mutex m_mutex; // for all below
    std::condition_variable m_changed;
    qint64 m_published = 0;
    qint64 m_released = 0;
    std::exception_ptr m_error;
    bool m_ended = false;
    bool m_stopped = false;
    std::thread m_thread;
};
