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

// Seconds of the second of two runs, each on a fresh destination after a sync.
double secondRun(const QString &destination, const std::function<void()> &copy)
{
    double seconds = 0;
    for (int run = 0; run < 2; ++run) {
        QDir(destination).removeRecursively();
        ::sync();
        QElapsedTimer timer;
        timer.start();
        copy();
        seconds = timer.nsecsElapsed() / 1e9;
    }
    QDir(destination).removeRecursively();
    return seconds;
}

double median(std::vector<double> v)
{
    std::sort(v.begin(), v.end());
    return v[v.size() / 2];
}

void compare(const QString &title, const QString &source, const QString &work, int rounds)
{
    const QString destination = work + QStringLiteral("/copy");
    std::vector<double> offRatios, onRatios;
    out << title << "\n";
    out << "  round      cp -r   off (window)     on (window)\n";
    for (int round = 1; round <= rounds; ++round) {
        const double cp = secondRun(destination, [&] {
            if (QProcess::execute(QStringLiteral("cp"), {QStringLiteral("-r"), source, destination}) != 0)
                qFatal("cp failed");
        });
        const auto ours = [&](bool progress) {
            return secondRun(destination, [&] {
                TCopyFile copy;
                copy.setProgress(progress);
                copy.setShowFileNames(true);
                if (!copy.CopyDirectory(source, destination))
                    qFatal("CopyDirectory failed");
            });
        };
        const double off = ours(false);
        const double on = ours(true);
        offRatios.push_back(off / cp);
        onRatios.push_back(on / cp);
        out << QStringLiteral("  %1   %2 s   %3 s %4x   %5 s %6x\n")
                   .arg(round, 5)
                   .arg(cp, 6, 'f', 3)
                   .arg(off, 6, 'f', 3)
                   .arg(off / cp, 5, 'f', 2)
                   .arg(on, 6, 'f', 3)
                   .arg(on / cp, 5, 'f', 2);
        out.flush();
    }
    out << QStringLiteral("  median ratio: off %1x (target 1.25x), on %2x (target 1.5x)\n\n")
               .arg(median(offRatios), 0, 'f', 2)
               .arg(median(onRatios), 0, 'f', 2);
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
