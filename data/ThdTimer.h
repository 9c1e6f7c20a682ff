// TThreadedTimer: a timer whose period is measured by a worker thread of its own, so that a busy
// event loop does not stretch it; each tick is handed to the thread the timer lives in (the main
// thread) and the worker waits until the handler has returned, so ticks never pile up.
#pragma once

#include "mattoni_core_export.h"

#include <QObject>
#include <QThread>

#include <functional>
#include <memory>

namespace mattoni {

enum TThreadPriority { tpIdle, tpLowest, tpLower, tpNormal, tpHigher, tpHighest, tpTimeCritical };

class TThreadedTimer;

namespace detail {
struct TimerShared;
}

// The worker of a TThreadedTimer. It cannot be suspended from outside: "suspended" is a run flag
// the worker checks under the timer's lock, and it parks on a condition variable while the flag
// is down. The wake-up event is an auto-reset flag under the same lock.
class MATTONI_CORE_EXPORT TTimerThread : public QThread
{
    Q_OBJECT
public:
    ~TTimerThread() override;

    TThreadedTimer *Owner() const { return m_owner; }

protected:
    void run() override;

private:
    friend class TThreadedTimer;
    TTimerThread(TThreadedTimer *owner, std::shared_ptr<detail::TimerShared> shared);

    TThreadedTimer *m_owner;
    std::shared_ptr<detail::TimerShared> m_shared;
};

class MATTONI_CORE_EXPORT TThreadedTimer : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool AllowZero READ AllowZero WRITE setAllowZero NOTIFY AllowZeroChanged)
    Q_PROPERTY(bool Enabled READ Enabled WRITE setEnabled NOTIFY EnabledChanged)
    Q_PROPERTY(quint32 Interval READ Interval WRITE setInterval NOTIFY IntervalChanged)
    Q_PROPERTY(TThreadPriority ThreadPriority READ ThreadPriority WRITE setThreadPriority NOTIFY ThreadPriorityChanged)

public:
    Q_ENUM(TThreadPriority)

    explicit TThreadedTimer(QObject *owner = nullptr);
    // Ends the worker without a further tick; never waits on a tick the worker is handing over.
    ~TThreadedTimer() override;

    bool AllowZero() const { return m_allowZero; }
    void setAllowZero(bool value);
    bool Enabled() const { return m_enabled; }
    void setEnabled(bool value);
    quint32 Interval() const;
    void setInterval(quint32 value);
    TThreadPriority ThreadPriority() const;
    void setThreadPriority(TThreadPriority value);

    // Runs on the timer's thread: calls OnTimer when the timer is still enabled.
    void DoTimer();

    std::function<void(QObject *Sender)> OnTimer;

signals:
    void AllowZeroChanged();
    void EnabledChanged();
    void IntervalChanged();
    void ThreadPriorityChanged();

private:
    friend class TTimerThread;
    void suspendWorker();
    void resumeWorker();
    void signalWakeUp();

    std::shared_ptr<detail::TimerShared> m_shared;
    TTimerThread *m_thread;
    bool m_allowZero = false;
    bool m_enabled = false;
};

} // namespace mattoni
