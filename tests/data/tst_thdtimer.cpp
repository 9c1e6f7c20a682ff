// TThreadedTimer: ticks on the main thread, handed over synchronously, and the rules of Enabled,
// Interval and AllowZero, observed through real ticks. Waits are on conditions; the few fixed
// waits only give a timer that must stay silent the chance to tick.
#include "ThdTimer.h"

#include <QtTest>

using namespace mattoni;

namespace {

// Runs the event loop until cond holds. Unlike QTest::qWait, which sleeps between rounds, this
// takes a handed-over tick as soon as it is posted, so fast timers are not slowed down.
bool waitUntil(const std::function<bool()> &cond, int timeoutMs = 5000)
{
    QTimer wake;
    wake.start(10);
    QElapsedTimer clock;
    clock.start();
    while (!cond()) {
        if (clock.elapsed() > timeoutMs)
            return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    return true;
}

} // namespace

class tst_ThdTimer : public QObject
{
    Q_OBJECT

private slots:
    void ticksOnTheMainThread();
    void handOverIsSynchronous();
    void sameIntervalDoesNotRestart();
    void zeroIntervalNeedsAllowZeroAtEnabling();
    void tickHandedOverBeforeDisablingIsDropped();
    void disablingInsideTheHandler();
    void destructionNeverTicksAgain_data();
    void destructionNeverTicksAgain();
    void thousandTimers();
};

void tst_ThdTimer::ticksOnTheMainThread()
{
    TThreadedTimer timer;
    QCOMPARE(timer.Interval(), quint32(1000));
    QVERIFY(!timer.Enabled());
    int ticks = 0;
    timer.OnTimer = [&](QObject *sender) {
        QCOMPARE(sender, &timer);
        QCOMPARE(QThread::currentThread(), QCoreApplication::instance()->thread());
        ++ticks;
    };
    timer.setThreadPriority(tpLower);
    timer.setInterval(5);
    timer.setEnabled(true);
    QTRY_VERIFY(ticks >= 3);
    QCOMPARE(timer.ThreadPriority(), tpLower);
}

void tst_ThdTimer::handOverIsSynchronous()
{
    // With Interval 0 ticks come as fast as the main thread takes them, yet never pile up: while
    // a handler runs the worker waits, so letting events run inside it delivers no other tick.
    TThreadedTimer timer;
    timer.setAllowZero(true);
    timer.setInterval(0);
    int ticks = 0;
    int depth = 0;
    int deepest = 0;
    timer.OnTimer = [&](QObject *) {
        deepest = qMax(deepest, ++depth);
        ++ticks;
        QCoreApplication::processEvents();
        --depth;
    };
    timer.setEnabled(true);
    QVERIFY(waitUntil([&] { return ticks >= 200; }));
    QCOMPARE(deepest, 1);
}

void tst_ThdTimer::sameIntervalDoesNotRestart()
{
    // Setting the interval again and again faster than it elapses: the same value lets the timer
    // tick, a different one restarts the period each time and starves it.
    for (bool same : {true, false}) {
        TThreadedTimer timer;
        int ticks = 0;
        timer.OnTimer = [&](QObject *) { ++ticks; };
        timer.setInterval(150);
        timer.setEnabled(true);
        QElapsedTimer clock;
        clock.start();
        bool flip = false;
        while (clock.elapsed() < 700 && (!same || ticks < 2)) {
            QTest::qWait(30);
            timer.setInterval(same ? 150 : ((flip = !flip) ? 151 : 150));
        }
        QVERIFY(timer.Enabled());
        if (same)
            QVERIFY(ticks >= 2);
        else
            QCOMPARE(ticks, 0);
    }
}

void tst_ThdTimer::zeroIntervalNeedsAllowZeroAtEnabling()
{
    TThreadedTimer timer;
    int ticks = 0;
    timer.OnTimer = [&](QObject *) { ++ticks; };
    timer.setInterval(0);
    timer.setEnabled(true);
    QVERIFY(timer.Enabled());
    QTest::qWait(50);
    timer.setAllowZero(true);
    QTest::qWait(50);
    QCOMPARE(ticks, 0);

    timer.setEnabled(false);
    timer.setEnabled(true);
    QVERIFY(waitUntil([&] { return ticks >= 20; }));
}

void tst_ThdTimer::tickHandedOverBeforeDisablingIsDropped()
{
    TThreadedTimer timer;
    int ticks = 0;
    timer.OnTimer = [&](QObject *) { ++ticks; };
    timer.setInterval(1);
    timer.setEnabled(true);
    // The main thread is busy while the worker hands a tick over.
    QThread::msleep(50);
    timer.setEnabled(false);
    QTest::qWait(30);
    QCOMPARE(ticks, 0);
}

void tst_ThdTimer::disablingInsideTheHandler()
{
    TThreadedTimer timer;
    int ticks = 0;
    timer.OnTimer = [&](QObject *) {
        ++ticks;
        timer.setEnabled(false);
    };
    timer.setInterval(2);
    timer.setEnabled(true);
    QTRY_COMPARE(ticks, 1);
    QTest::qWait(30);
    QCOMPARE(ticks, 1);
    timer.setEnabled(true);
    QTRY_COMPARE(ticks, 2);
}

void tst_ThdTimer::destructionNeverTicksAgain_data()
{
    QTest::addColumn<bool>("enabled");
    QTest::addColumn<bool>("tickQueued");
    QTest::newRow("disabled") << false << false;
    QTest::newRow("enabled") << true << false;
    QTest::newRow("enabled with a tick handed over") << true << true;
}

void tst_ThdTimer::destructionNeverTicksAgain()
{
    QFETCH(bool, enabled);
    QFETCH(bool, tickQueued);
    int ticks = 0;
    auto *timer = new TThreadedTimer;
    timer->OnTimer = [&](QObject *) { ++ticks; };
    timer->setInterval(tickQueued ? 1 : 20);
    timer->setEnabled(enabled);
    if (tickQueued)
        QThread::msleep(30); // the worker is now waiting for the main thread to take its tick
    delete timer;
    QTest::qWait(40);
    QCOMPARE(ticks, 0);
}

void tst_ThdTimer::thousandTimers()
{
    int ticks = 0;
    for (int round = 0; round < 10; ++round) {
        std::vector<std::unique_ptr<TThreadedTimer>> timers;
        for (int i = 0; i < 100; ++i) {
            auto timer = std::make_unique<TThreadedTimer>();
            timer->OnTimer = [&](QObject *) { ++ticks; };
            timer->setAllowZero(i % 4 == 0);
            timer->setInterval(quint32(i % 4));
            timer->setEnabled(i % 3 != 0);
            timers.push_back(std::move(timer));
        }
        QCoreApplication::processEvents();
        QThread::msleep(2);
    }
    QVERIFY(ticks > 0);
}

QTEST_GUILESS_MAIN(tst_ThdTimer)
#include "tst_thdtimer.moc"
