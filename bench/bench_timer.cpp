// TThreadedTimer against QTimer (precise) at an interval of 10 ms: the period between ticks seen
// by the handler on the main thread, mean and 99th percentile over 10 s, with an idle main thread
// and with a main thread busy in 30 ms handlers (one every 50 ms).
//   bench_timer [seconds]
#include "ThdTimer.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <vector>

using namespace mattoni;

namespace {

struct Figures
{
    double mean;
    double p99;
    size_t ticks;
};

Figures measure(bool threaded, bool busy, int seconds)
{
    std::vector<double> periods;
    QElapsedTimer clock;
    qint64 last = -1;
    auto tick = [&] {
        const qint64 now = clock.nsecsElapsed();
        if (last >= 0)
            periods.push_back((now - last) / 1e6);
        last = now;
    };

    QTimer load;
    load.setTimerType(Qt::PreciseTimer);
    load.setInterval(50);
    QObject::connect(&load, &QTimer::timeout, [] {
        QElapsedTimer spin;
        spin.start();
        while (spin.nsecsElapsed() < 30'000'000) {
        }
    });

    TThreadedTimer ours;
    QTimer theirs;
    clock.start();
    if (threaded) {
        ours.OnTimer = [&](QObject *) { tick(); };
        ours.setInterval(10);
        ours.setEnabled(true);
    } else {
        theirs.setTimerType(Qt::PreciseTimer);
        theirs.setInterval(10);
        QObject::connect(&theirs, &QTimer::timeout, tick);
        theirs.start();
    }
    if (busy)
        load.start();
    QEventLoop loop;
    QTimer::singleShot(seconds * 1000, &loop, &QEventLoop::quit);
    loop.exec();
    ours.setEnabled(false);
    theirs.stop();
    load.stop();

    Figures f{0, 0, periods.size()};
    if (periods.empty())
        return f;
    for (double p : periods)
        f.mean += p;
    f.mean /= double(periods.size());
    std::sort(periods.begin(), periods.end());
    f.p99 = periods[std::min(periods.size() - 1, size_t(double(periods.size()) * 0.99))];
    return f;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const int seconds = argc > 1 ? std::max(1, atoi(argv[1])) : 10;
    std::printf("Interval 10 ms, %d s per run; periods in ms\n", seconds);
    std::printf("%-22s %-15s %8s %8s %7s %10s %9s\n", "main thread", "timer", "mean", "p99", "ticks", "mean ratio", "p99 ratio");
    for (bool busy : {false, true}) {
        const Figures reference = measure(false, busy, seconds);
        const Figures threaded = measure(true, busy, seconds);
        const char *scenario = busy ? "busy (30 ms per 50 ms)" : "idle";
        std::printf("%-22s %-15s %8.3f %8.3f %7zu\n", scenario, "QTimer", reference.mean, reference.p99, reference.ticks);
        std::printf("%-22s %-15s %8.3f %8.3f %7zu %10.3f %9.3f\n", scenario, "TThreadedTimer", threaded.mean, threaded.p99,
                    threaded.ticks, threaded.mean / reference.mean, threaded.p99 / reference.p99);
    }
    return 0;
}
