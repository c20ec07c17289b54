#include <basic/calc/HbcAProgress.h>

#include <basic/calc/HbcCancelled.h>
#include <basic/calc/HbcSubProgress.h>
#include <basic/error/HbeProgrammingError.h>

#include "HbcSystemMemory.h"

#include <algorithm>
#include <new>

using Lock = std::lock_guard<std::mutex>;
using std::chrono::milliseconds;

namespace
{
constexpr milliseconds SIGNAL_PERIOD{50};
// The clock is looked at about this often; the bounds adapt the number of units between two looks.
constexpr milliseconds LOOK_SOON{2};
constexpr milliseconds LOOK_LATE{10};
// Low enough that a job whose units suddenly take longer is not silent for long.
constexpr qint64 LARGEST_STEP = 256;
// So many messages may come at once; then one per period.
constexpr double MESSAGE_BURST = 20;
constexpr qint64 PART_UNITS = 1000000; // of the counter that follows another job
} // namespace

HbcAProgress::HbcAProgress(const QString& title, QObject* parent)
    : QThread(parent)
    , m_title(title)
{
}

HbcAProgress::~HbcAProgress() = default;

bool HbcAProgress::runInCurrentThread()
{
    if (isRunning() || getOutcome() == Outcome::RUNNING)
        HBE_PROGRAMMING_ERROR("calc/HbcAProgress", tr("The job is running already"));
    execute();
    return getOutcome() == Outcome::DONE;
}

void HbcAProgress::cancelAndWait()
{
    if (!QThread::isRunning())
        return;
    requestCancel();
    wait();
    clearCancel();
}

void HbcAProgress::run()
{
    execute();
}

void HbcAProgress::execute()
{
    {
        const Lock lock(m_mutex);
        m_errorText.clear();
        m_error = nullptr;
        m_message.clear();
        m_lastLook = Clock::now();
        m_lastSignal = m_lastLook - SIGNAL_PERIOD;
        m_outcome.store(Outcome::RUNNING);
    }
    initCounter(0);
    Outcome outcome = Outcome::FAILED;
    try {
        _run();
        outcome = Outcome::DONE;
    } catch (const HbcCancelled& cancelled) {
        outcome = Outcome::CANCELLED;
        keepError(cancelled.getMessage());
    } catch (const HbeError& error) {
        keepError(error.getMessage());
    } catch (const std::bad_alloc&) {
        keepError(tr("There is not enough memory."));
    } catch (const std::exception& error) {
        keepError(QString::fromLocal8Bit(error.what()));
    } catch (...) {
        keepError(tr("An unknown error occurred."));
    }
    report(true);
    m_outcome.store(outcome);
    m_cancelRequested.store(false);
    emit ended(outcome);
}

void HbcAProgress::keepError(const QString& text)
{
    const Lock lock(m_mutex);
    m_errorText = text;
    m_error = std::current_exception();
}

QString HbcAProgress::getErrorText() const
{
    const Lock lock(m_mutex);
    return m_errorText;
}

void HbcAProgress::rethrowError() const
{
    std::exception_ptr error;
    {
        const Lock lock(m_mutex);
        error = m_error;
    }
    if (error)
        std::rethrow_exception(error);
}

bool HbcAProgress::isCancelRequested() const
{
    if (m_cancelRequested.load(std::memory_order_relaxed) || isInterruptionRequested())
        return true;
    const HbcAProgress* parentJob = m_parentJob.load();
    return parentJob != nullptr && parentJob->isCancelRequested();
}

bool HbcAProgress::isCancelled() const
{
    return getOutcome() == Outcome::CANCELLED || isCancelRequested();
}

void HbcAProgress::checkCancelled() const
{
    if (isCancelRequested())
        throw HbcCancelled();
}

void HbcAProgress::initCounter(qint64 total)
{
    {
        const Lock lock(m_mutex);
        Level& level = *m_level;
        level.total = std::max<qint64>(total, 0);
        level.count.store(0);
        level.step = 1;
        level.nextLook.store(1);
    }
    report(false);
}

void HbcAProgress::pushLevel(Level& level, qint64 units)
{
    const Lock lock(m_mutex);
    level.units = units;
    level.parent = m_level;
    m_level = &level;
}

void HbcAProgress::popLevel()
{
    qint64 units = 0;
    {
        const Lock lock(m_mutex);
        units = m_level->units;
        m_level = m_level->parent;
        m_level->count.fetch_add(units);
    }
    report(false);
}

void HbcAProgress::lookAtClock(qint64 count)
{
    {
        // Workers that come while another one looks go on counting.
        const std::unique_lock<std::mutex> lock(m_mutex, std::try_to_lock);
        Level& level = *m_level;
        if (!lock.owns_lock() || count < level.nextLook.load())
            return;
        const Clock::time_point now = Clock::now();
        const auto elapsed = now - m_lastLook;
        m_lastLook = now;
        if (elapsed < LOOK_SOON)
            level.step = std::min(level.step * 2, LARGEST_STEP);
        else if (elapsed > LOOK_LATE)
            level.step = std::max<qint64>(level.step / 4, 1);
        level.nextLook.store(count + level.step);
    }
    report(false);
}

void HbcAProgress::report(bool atEnd)
{
    if (HbcAProgress* parentJob = m_parentJob.load()) {
        parentJob->follow(*this);
        return;
    }
    qint64 counter = 0;
    qint64 total = 0;
    {
        const Lock lock(m_mutex);
        const Clock::time_point now = Clock::now();
        if (!atEnd && now - m_lastSignal < SIGNAL_PERIOD)
            return;
        m_lastSignal = now;
        counter = counterUnderLock();
        total = m_root.total;
    }
    emit progressChanged(counter, total);
    sendPendingMessage(atEnd);
}

qint64 HbcAProgress::counterUnderLock() const
{
    double inner = 0; // units of the level at hand that the sub-progress above it has done
    for (const Level* level = m_level; level->parent != nullptr; level = level->parent) {
        const double done = static_cast<double>(level->count.load()) + inner;
        const double total = static_cast<double>(level->total);
        inner = total > 0 ? std::min(done / total, 1.0) * static_cast<double>(level->units) : 0;
    }
    const qint64 counter = m_root.count.load() + static_cast<qint64>(inner);
    return m_root.total > 0 ? std::min(counter, m_root.total) : counter;
}

qint64 HbcAProgress::getCounter() const
{
    const Lock lock(m_mutex);
    return counterUnderLock();
}

qint64 HbcAProgress::getTotal() const
{
    const Lock lock(m_mutex);
    return m_root.total;
}

void HbcAProgress::setMessage(const QString& message)
{
    if (HbcAProgress* parentJob = m_parentJob.load())
        parentJob->setMessage(message);
    {
        const Lock lock(m_mutex);
        m_message = message;
        m_messagePending = true;
    }
    sendPendingMessage(false);
}

QString HbcAProgress::getMessage() const
{
    const Lock lock(m_mutex);
    return m_message;
}

void HbcAProgress::sendPendingMessage(bool atEnd)
{
    QString message;
    {
        const Lock lock(m_mutex);
        if (!m_messagePending)
            return;
        const Clock::time_point now = Clock::now();
        const std::chrono::duration<double> elapsed = now - m_lastMessage;
        const std::chrono::duration<double> period = SIGNAL_PERIOD;
        m_lastMessage = now;
        m_messageAllowance = std::min(m_messageAllowance + elapsed / period, MESSAGE_BURST);
        if (!atEnd && m_messageAllowance < 1)
            return;
        m_messageAllowance -= 1;
        m_messagePending = false;
        message = m_message;
    }
    emit messageChanged(message);
}

void HbcAProgress::runSubProgress(HbcAProgress& job, qint64 units)
{
    const HbcSubProgress part(*this, units);
    initCounter(PART_UNITS);
    job.m_parentJob.store(this);
    const bool done = job.runInCurrentThread();
    job.m_parentJob.store(nullptr);
    if (!done)
        job.rethrowError();
}

void HbcAProgress::follow(const HbcAProgress& job)
{
    const double total = static_cast<double>(job.getTotal());
    const double part = total > 0 ? static_cast<double>(job.getCounter()) / total : 0;
    m_level->count.store(static_cast<qint64>(part * static_cast<double>(PART_UNITS)));
    report(false);
}

qint64 HbcAProgress::getAvailableMemory() const
{
    if (const qint64 bytes = m_availableMemory.load(); bytes > 0)
        return bytes;
    const HbcAProgress* parentJob = m_parentJob.load();
    return parentJob != nullptr ? parentJob->getAvailableMemory() : HbcSystemMemory::getAvailable();
}
