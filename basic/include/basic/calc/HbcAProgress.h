#pragma once

#include <basic/base/HbbExport.h>

#include <QtCore/QString>
#include <QtCore/QThread>

#include <atomic>
#include <chrono>
#include <exception>
#include <mutex>

/// A cancellable job with a progress counter and messages, run in a thread of its own (`start()`)
/// or in the caller's (`runInCurrentThread()`).
///
/// A class implements `_run()`: it calls `initCounter` once, `advance` as it goes and
/// `checkCancelled` before each block of work. What `_run` throws is kept for the owner; nothing
/// leaves the thread. The owner stops a running job with `cancelAndWait()` before deleting it.
///
/// Threads:
/// - the running thread (and workers that it starts and joins): `advance`, `checkCancelled`,
///   `isCancelled`, `setMessage`;
/// - the running thread alone, while no worker advances: `initCounter`, HbcSubProgress,
///   `runSubProgress`;
/// - any thread: `requestCancel`, `isCancelled` and the getters of counter, message, outcome and
///   memory;
/// - the owner, while the job is not running: `start`, `runInCurrentThread`, `clearCancel`,
///   `rethrowError`, `setAvailableMemory`.
/// Signals are sent by the running thread (or a worker): connect them to an object of another
/// thread as usual, they are queued.
class KELVANE_BASIC_EXPORT HbcAProgress : public QThread
{
    Q_OBJECT

public:
    enum class Outcome { NOT_RUN, RUNNING, DONE, CANCELLED, FAILED };
    Q_ENUM(Outcome)

    explicit HbcAProgress(const QString& title = QString(), QObject* parent = nullptr);
    ~HbcAProgress() override;

    const QString& getTitle() const { return m_title; }

    /// Runs the job here and answers whether it is done; see `getErrorText` and `rethrowError`.
    [[nodiscard]] bool runInCurrentThread();
    /// Requests a cancel and waits until the thread has ended.
    void cancelAndWait();

    Outcome getOutcome() const { return m_outcome.load(); }
    /// Why the last run was cancelled or failed; empty when it did not.
    QString getErrorText() const;
    /// Throws what ended the last run, as it was thrown; does nothing when nothing did.
    void rethrowError() const;

    /// A request made while the job is not running is for the next run; the end of a run takes the
    /// request away. QThread::requestInterruption is a request, too.
    void requestCancel() { m_cancelRequested.store(true); }
    void clearCancel() { m_cancelRequested.store(false); }
    /// A cancel is requested, or ended the last run.
    bool isCancelled() const;
    /// Throws HbcCancelled when a cancel is requested. Cheap enough for every row.
    void checkCancelled() const;

    /// Starts counting from 0 up to `total` units (0 or less: the length is not known). Inside a
    /// sub-progress this is the counter of the sub-progress.
    void initCounter(qint64 total);
    /// Counts further units. Nearly free: an atomic addition, and a look at the clock now and then.
    void advance(qint64 units = 1)
    {
        const qint64 count = m_level->count.fetch_add(units, std::memory_order_relaxed) + units;
        if (count >= m_level->nextLook.load(std::memory_order_relaxed))
            lookAtClock(count);
    }
    /// Of the job as a whole; a running sub-progress counts with its share, rounded down.
    qint64 getCounter() const;
    qint64 getTotal() const;

    /// What the job is doing now, translated.
    void setMessage(const QString& message);
    QString getMessage() const;

    /// Runs another job here as a part of this one, worth `units` of the present counter: its
    /// counter moves ours, its messages are ours, a cancel of ours is one of its, and it may use
    /// our memory. What ends it is thrown.
    void runSubProgress(HbcAProgress& job, qint64 units);

    /// The memory in bytes that the job may take: what the system has available now, unless set.
    qint64 getAvailableMemory() const;
    /// 0 or less: ask the system.
    void setAvailableMemory(qint64 bytes) { m_availableMemory.store(bytes); }

Q_SIGNALS:
    /// At most every 50 ms, and at the end of the run.
    void progressChanged(qint64 counter, qint64 total);
    /// Bursts of messages are thinned out; the last one is always sent before the run ends.
    void messageChanged(const QString& message);
    /// The run is over, in whatever thread it was; QThread::finished tells of its own thread only.
    void ended(HbcAProgress::Outcome outcome);

protected:
    /// The job.
    virtual void _run() = 0;

private:
    friend class HbcSubProgress;
    using Clock = std::chrono::steady_clock;

    /// One counter; a sub-progress puts its own above that of its parent.
    struct Level {
        std::atomic<qint64> count{0};
        std::atomic<qint64> nextLook{1}; // the count at which to look at the clock again
        qint64 step = 1;                 // the distance between two looks, adapted to the pace
        qint64 total = 0;
        qint64 units = 0; // of the parent's counter
        Level* parent = nullptr;
    };

    void run() final;
    void execute();
    void keepError(const QString& text);
    bool isCancelRequested() const;
    void pushLevel(Level& level, qint64 units);
    void popLevel();
    void lookAtClock(qint64 count);
    void report(bool atEnd);
    void sendPendingMessage(bool atEnd);
    void follow(const HbcAProgress& job);
    qint64 counterUnderLock() const;

    const QString m_title;
    Level m_root;
    Level* m_level = &m_root; // borrowed from the innermost HbcSubProgress

    mutable std::mutex m_mutex; // levels as seen by getters, message, error, times
    QString m_message;
    bool m_messagePending = false;
    double m_messageAllowance = 0; // grows with the time since m_lastMessage, the epoch at first
    Clock::time_point m_lastMessage;
    Clock::time_point m_lastLook;
    Clock::time_point m_lastSignal;
    QString m_errorText;
    std::exception_ptr m_error;

    std::atomic<Outcome> m_outcome{Outcome::NOT_RUN};
    std::atomic<bool> m_cancelRequested{false};
    std::atomic<qint64> m_availableMemory{0};
    std::atomic<HbcAProgress*> m_parentJob{nullptr}; // borrowed, while we run as its part
};
