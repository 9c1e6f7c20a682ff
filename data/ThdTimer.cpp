// The threaded timer and its worker.
#include "ThdTimer.h"

#include <QCoreApplication>
#include <QMetaObject>

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace mattoni {

namespace detail {

// Everything the worker and the timer's thread share, under one lock. It outlives the timer while
// a handed-over tick is still queued, so that the queued call can report back safely.
struct TimerShared
{
    std::mutex mutex;
    std::condition_variable changed;
    bool running = false;    // the worker is "resumed"
    bool terminated = false;
    bool wakeUp = false;     // the auto-reset wake-up event
    bool tickPending = false; // a tick has been handed over and has not run yet
    quint32 interval = 1000;
    TThreadPriority priority = tpNormal;
};

} // namespace detail

using detail::TimerShared;

TTimerThread::TTimerThread(TThreadedTimer *owner, std::shared_ptr<TimerShared> shared)
    : m_owner(owner)
    , m_shared(std::move(shared))
{
}

TTimerThread::~TTimerThread() = default;

void TTimerThread::run()
{
    TimerShared &s = *m_shared;
    std::unique_lock<std::mutex> lock(s.mutex);
    while (true) {
        // Suspension point: the worker stays here while the timer is disabled.
        s.changed.wait(lock, [&] { return s.running || s.terminated; });
        if (s.terminated)
            return;
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(s.interval);
        const bool woken = s.changed.wait_until(lock, deadline, [&] { return s.wakeUp || s.terminated || !s.running; });
        if (s.terminated)
            return;
        if (woken) {
            // Disabled during the wait: a suspended thread would have stayed inside it, and enabling
            // sets the event, so on resumption this wait ends without a tick either way.
            if (s.running)
                s.wakeUp = false;
            continue;
        }
        s.tickPending = true;
        // The call is queued on the timer itself: if the timer goes away first, Qt drops it.
        std::shared_ptr<TimerShared> shared = m_shared;
        TThreadedTimer *owner = m_owner;
        QMetaObject::invokeMethod(
            owner,
            [owner, shared] {
                bool terminated;
                {
                    std::lock_guard<std::mutex> guard(shared->mutex);
                    terminated = shared->terminated;
                }
                // The handler may free the timer: nothing below touches it.
                if (!terminated)
                    owner->DoTimer();
                std::lock_guard<std::mutex> guard(shared->mutex);
                shared->tickPending = false;
                shared->changed.notify_all();
            },
            Qt::QueuedConnection);
        // Synchronous hand-over, except that destruction does not wait for the tick to run: the
        // timer's thread may be the one ending us.
        s.changed.wait(lock, [&] { return !s.tickPending || s.terminated; });
        if (s.terminated)
            return;
    }
}

TThreadedTimer::TThreadedTimer(QObject *owner)
    : QObject(owner)
    , m_shared(std::make_shared<TimerShared>())
    , m_thread(new TTimerThread(this, m_shared))
{
}

TThreadedTimer::~TThreadedTimer()
{
    {
        std::lock_guard<std::mutex> guard(m_shared->mutex);
        m_shared->terminated = true;
        m_shared->wakeUp = true;
        m_shared->changed.notify_all();
    }
    m_thread->wait();
    delete m_thread;
}

void TThreadedTimer::setAllowZero(bool value)
{
    if (m_allowZero == value)
        return;
    // Takes effect at the next enabling, as designed.
    m_allowZero = value;
    emit AllowZeroChanged();
}

void TThreadedTimer::setEnabled(bool value)
{
    if (m_enabled == value)
        return;
    m_enabled = value;
    if (value) {
        const quint32 interval = Interval();
        // With Interval 0 and AllowZero off the timer is enabled but never ticks: kept on purpose.
        if (interval > 0 || m_allowZero) {
            signalWakeUp();
            resumeWorker();
        }
    } else {
        suspendWorker();
    }
    emit EnabledChanged();
}

quint32 TThreadedTimer::Interval() const
{
    std::lock_guard<std::mutex> guard(m_shared->mutex);
    return m_shared->interval;
}

void TThreadedTimer::setInterval(quint32 value)
{
    if (Interval() == value)
        return;
    const bool wasEnabled = m_enabled;
    setEnabled(false);
    {
        std::lock_guard<std::mutex> guard(m_shared->mutex);
        m_shared->interval = value;
    }
    setEnabled(wasEnabled);
    emit IntervalChanged();
}

TThreadPriority TThreadedTimer::ThreadPriority() const
{
    if (m_thread->isRunning())
        return TThreadPriority(m_thread->priority());
    std::lock_guard<std::mutex> guard(m_shared->mutex);
    return m_shared->priority;
}

void TThreadedTimer::setThreadPriority(TThreadPriority value)
{
    if (ThreadPriority() == value)
        return;
    {
        std::lock_guard<std::mutex> guard(m_shared->mutex);
        m_shared->priority = value;
    }
    // TThreadPriority and QThread::Priority share their ordinals.
    if (m_thread->isRunning())
        m_thread->setPriority(QThread::Priority(value));
    emit ThreadPriorityChanged();
}

void TThreadedTimer::DoTimer()
{
    if (m_enabled && OnTimer)
        OnTimer(this);
}

void TThreadedTimer::suspendWorker()
{
    std::lock_guard<std::mutex> guard(m_shared->mutex);
    m_shared->running = false;
    m_shared->changed.notify_all();
}

void TThreadedTimer::resumeWorker()
{
    TThreadPriority priority;
    {
        std::lock_guard<std::mutex> guard(m_shared->mutex);
        m_shared->running = true;
        priority = m_shared->priority;
        m_shared->changed.notify_all();
    }
    // The worker is started at its first resumption: a timer that is never enabled costs no thread.
    if (!m_thread->isRunning() && !m_thread->isFinished())
        m_thread->start(QThread::Priority(priority));
}

void TThreadedTimer::signalWakeUp()
{
    std::lock_guard<std::mutex> guard(m_shared->mutex);
    m_shared->wakeUp = true;
    m_shared->changed.notify_all();
}

} // namespace mattoni
