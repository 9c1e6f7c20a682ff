// CopyDirectory against `cp -r` of the same tree in the same run: (a) 1 GiB in 8 files and
// (b) 20,000 files of 4 KiB in 20 folders, with the progress window off and on. Each copy runs
// twice with the page cache warm and the second time counts; the destination is deleted and
// the disk synced before every run. The window needs a display: run under cmake/run-on-xvfb.sh.
//   bench_copy [folder for the trees, default the system's temporary folder] [rounds, default 3]
#include "CopyFile.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTextStream>

#include <algorithm>
#include <functional>
#include <vector>

#include <sys/resource.h>
#include <unistd.h>

using namespace mattoni;

namespace {

QTextStream out(stdout);

void writePattern(const QString &path, qint64 size, quint32 seed)
{
    QFile f(path);
    if (!f.open(QIODevice::WriteOnly))
        qFatal("cannot write %s", qPrintable(path));
    QByteArray block(1 << 20, Qt::Uninitialized);
    quint32 x = 2463534242u ^ seed;
    for (qint64 done = 0; done < size; done += block.size()) {
        for (char &c : block) {
            x ^= x << 13;
            x ^= x >> 17;
            x ^= x << 5;
            c = char(x);
        }
        f.write(block.constData(), std::min<qint64>(block.size(), size - done));
    }
}

void makeBigTree(const QString &root)
{
    QDir().mkpath(root);
    for (int i = 0; i < 8; ++i)
        writePattern(QStringLiteral("%1/part%2.bin").arg(root).arg(i), 128ll << 20, quint32(i + 1));
}

void makeSmallTree(const QString &root)
{
    const QByteArray bytes(4096, 'x');
    for (int d = 0; d < 20; ++d) {
        const QString folder = QStringLiteral("%1/dir%2").arg(root).arg(d, 2, 10, QLatin1Char('0'));
        QDir().mkpath(folder);
        for (int i = 0; i < 1000; ++i) {
            QFile f(QStringLiteral("%1/file%2.dat").arg(folder).arg(i, 4, 10, QLatin1Char('0')));
            if (!f.open(QIODevice::WriteOnly) || f.write(bytes) != bytes.size())
                qFatal("cannot write the small tree");
        }
    }
}

struct Time
{
    double wall = 0;
    double cpu = 0; // user and system time of the process doing the copy
};

double cpuSeconds(int who)
{
    struct rusage usage;
    ::getrusage(who, &usage);
    return double(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) + (usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

// The second of two runs, each on a fresh destination after a sync. Who says whose processor
// time counts: this process's or its children's.
Time secondRun(const QString &destination, int who, const std::function<void()> &copy)
{
    Time time;
    for (int run = 0; run < 2; ++run) {
        QDir(destination).removeRecursively();
        ::sync();
        const double cpu = cpuSeconds(who);
        QElapsedTimer timer;
        timer.start();
        copy();
        time.wall = timer.nsecsElapsed() / 1e9;
        time.cpu = cpuSeconds(who) - cpu;
    }
    QDir(destination).removeRecursively();
    return time;
}

double median(std::vector<double> v)
{
    std::sort(v.begin(), v.end());
    return v[v.size() / 2];
}

void compare(const QString &title, const QString &source, const QString &work, int rounds)
{
    const QString destination = work + QStringLiteral("/copy");
    std::vector<double> offRatios, onRatios, offCpu, onCpu;
    out << title << "\n";
    out << "  round   cp -r wall (cpu)      window off: wall (cpu) ratio    window on: wall (cpu) ratio\n";
    for (int round = 1; round <= rounds; ++round) {
        const Time cp = secondRun(destination, RUSAGE_CHILDREN, [&] {
            if (QProcess::execute(QStringLiteral("cp"), {QStringLiteral("-r"), source, destination}) != 0)
                qFatal("cp failed");
        });
        const auto ours = [&](bool progress) {
            return secondRun(destination, RUSAGE_SELF, [&] {
                TCopyFile copy;
                copy.setProgress(progress);
                copy.setShowFileNames(true);
                if (!copy.CopyDirectory(source, destination))
                    qFatal("CopyDirectory failed");
            });
        };
        const Time off = ours(false);
        const Time on = ours(true);
        offRatios.push_back(off.wall / cp.wall);
        onRatios.push_back(on.wall / cp.wall);
        offCpu.push_back(off.cpu / cp.cpu);
        onCpu.push_back(on.cpu / cp.cpu);
        const auto cell = [](const Time &t) {
            return QStringLiteral("%1 s (%2 s)").arg(t.wall, 6, 'f', 3).arg(t.cpu, 5, 'f', 3);
        };
        out << QStringLiteral("  %1   %2   %3 %4x   %5 %6x\n")
                   .arg(round, 5)
                   .arg(cell(cp), cell(off))
                   .arg(off.wall / cp.wall, 5, 'f', 2)
                   .arg(cell(on))
                   .arg(on.wall / cp.wall, 5, 'f', 2);
        out.flush();
    }
    out << QStringLiteral("  median wall-clock ratio: off %1x (target 1.25x), on %2x (target 1.5x)\n")
               .arg(median(offRatios), 0, 'f', 2)
               .arg(median(onRatios), 0, 'f', 2);
    out << QStringLiteral("  median processor-time ratio: off %1x, on %2x\n\n")
               .arg(median(offCpu), 0, 'f', 2)
               .arg(median(onCpu), 0, 'f', 2);
    out.flush();
}

} // namespace

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    const QStringList args = app.arguments();
    const QString base = args.size() > 1 ? args.at(1) : QDir::tempPath();
    const int rounds = args.size() > 2 ? std::max(1, args.at(2).toInt()) : 3;
    QTemporaryDir work(base + QStringLiteral("/bench_copy-XXXXXX"));
    if (!work.isValid())
        qFatal("cannot create a folder under %s", qPrintable(base));

    makeBigTree(work.filePath(QStringLiteral("big")));
    compare(QStringLiteral("(a) 1 GiB in 8 files"), work.filePath(QStringLiteral("big")), work.path(), rounds);
    QDir(work.filePath(QStringLiteral("big"))).removeRecursively();

    makeSmallTree(work.filePath(QStringLiteral("small")));
    compare(QStringLiteral("(b) 20,000 files of 4 KiB"), work.filePath(QStringLiteral("small")), work.path(), rounds);
    return 0;
}
