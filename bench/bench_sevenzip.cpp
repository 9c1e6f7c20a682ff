// TSevenZip against the 7z tool on the same 200 MiB tree, same method and level: the time to
// add and to extract, and the archive sizes. Usage: bench_sevenzip [level 0..4, default 2 (NORMAL)]
#include "SevenZip.h"

#include <QtCore>

#include <cstdio>
#include <sys/resource.h>

using namespace mattoni;

namespace {

constexpr qint64 MiB = 1 << 20;

// Text-like files (records of an administrative register, compressible) and random ones.
void makeTree(const QString &root)
{
    static const char *const words[] = {"matricola", "studente", "esame", "voto", "anno", "accademico", "corso",
                                        "laurea", "segreteria", "iscrizione", "tassa", "Bologna", "Padova", "Roma"};
    QRandomGenerator rng(2026);
    qint64 written = 0;
    int n = 0;
    while (written < 120 * MiB) {
        const QString dir = root + QStringLiteral("/testi/d%1").arg(n % 20);
        QDir().mkpath(dir);
        QByteArray text;
        text.reserve(int(320 * 1024));
        while (text.size() < 300 * 1024 + int(rng.bounded(40 * 1024))) {
            text += words[rng.bounded(int(std::size(words)))];
            text += ';';
            text += QByteArray::number(rng.bounded(100000));
            text += rng.bounded(6) == 0 ? '\n' : ' ';
        }
        QFile f(dir + QStringLiteral("/registro%1.txt").arg(n++));
        f.open(QIODevice::WriteOnly);
        f.write(text);
        written += text.size();
    }
    QByteArray block(int(MiB), Qt::Uninitialized);
    for (int i = 0; written < 200 * MiB; ++i) {
        const QString dir = root + QStringLiteral("/dati/d%1").arg(i % 8);
        QDir().mkpath(dir);
        rng.fillRange(reinterpret_cast<quint32 *>(block.data()), block.size() / 4);
        QFile f(dir + QStringLiteral("/blob%1.bin").arg(i));
        f.open(QIODevice::WriteOnly);
        f.write(block);
        written += block.size();
    }
}

// Wall time, and processor time (user + system) of this process's threads or of the tool.
struct Timing
{
    double wall = 1e9;
    double cpu = 1e9;
};

double cpuSeconds(int who)
{
    struct rusage u;
    getrusage(who, &u);
    return double(u.ru_utime.tv_sec + u.ru_stime.tv_sec) + double(u.ru_utime.tv_usec + u.ru_stime.tv_usec) / 1e6;
}

// Keeps the best of each figure: the machine is shared, and other work only ever adds time.
void measure(Timing &best, int who, const std::function<bool()> &work)
{
    QElapsedTimer t;
    const double cpu0 = cpuSeconds(who);
    t.start();
    if (!work())
        qFatal("benchmark step failed");
    best.wall = qMin(best.wall, t.nsecsElapsed() / 1e9);
    best.cpu = qMin(best.cpu, cpuSeconds(who) - cpu0);
}

bool tool(const QStringList &args, const QString &dir)
{
    QProcess p;
    p.setWorkingDirectory(dir);
    p.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    p.setStandardOutputFile(QProcess::nullDevice());
    p.start(QStringLiteral("7z"), args);
    return p.waitForFinished(-1) && p.exitCode() == 0;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const int strength = argc > 1 ? QByteArray(argv[1]).toInt() : int(NORMAL);
    const quint32 level = TSevenZip::CompressionLevel(TCompressStrength(strength));
    QTemporaryDir tmp;
    const QString tree = tmp.filePath(QStringLiteral("albero"));
    makeTree(tree);
    std::printf("tree: 200 MiB (120 text, 80 random), level %u, solid LZMA2\n", level);
    std::fflush(stdout);

    TSevenZip zip;
    zip.setAddRootDir(tree);
    zip.setAddOptions({AddRecurseDirs, AddSolid});
    zip.setLZMACompressStrength(TCompressStrength(strength));
    zip.Files().AddString(tree);
    const QString ours = tmp.filePath(QStringLiteral("nostro.7z"));
    const QString theirs = tmp.filePath(QStringLiteral("tool.7z"));
    zip.setSZFileName(ours);

    // Rounds alternate which side goes first and keep each side's best time: the machine is
    // shared. Extracting is quick, so it gets more rounds.
    Timing addOurs, addTool, xOurs, xTool;
    auto addWithUs = [&] {
        QFile::remove(ours);
        measure(addOurs, RUSAGE_SELF, [&] { return zip.Add(); });
    };
    auto addWithTool = [&] {
        QFile::remove(theirs);
        measure(addTool, RUSAGE_CHILDREN, [&] {
            return tool({QStringLiteral("a"), QStringLiteral("-mx%1").arg(level), QStringLiteral("-ms=on"), theirs,
                         QStringLiteral(".")},
                        tree);
        });
    };
    const QString outOurs = tmp.filePath(QStringLiteral("x-nostro"));
    const QString outTool = tmp.filePath(QStringLiteral("x-tool"));
    auto extractWithUs = [&] {
        QDir(outOurs).removeRecursively();
        zip.setExtrBaseDir(outOurs);
        measure(xOurs, RUSAGE_SELF, [&] { return zip.Extract(); });
    };
    auto extractWithTool = [&] {
        QDir(outTool).removeRecursively();
        measure(xTool, RUSAGE_CHILDREN, [&] {
            return tool({QStringLiteral("x"), QStringLiteral("-y"), QStringLiteral("-o") + outTool, theirs},
                        tmp.path());
        });
    };
    for (int round = 0; round < 2; ++round) {
        if (round % 2 == 0) {
            addWithUs();
            addWithTool();
        } else {
            addWithTool();
            addWithUs();
        }
    }
    for (int round = 0; round < 6; ++round) {
        if (round % 2 == 0) {
            extractWithUs();
            extractWithTool();
        } else {
            extractWithTool();
            extractWithUs();
        }
    }
    const qint64 sizeOurs = QFileInfo(ours).size();
    const qint64 sizeTool = QFileInfo(theirs).size();
    auto report = [](const char *what, const Timing &us, const Timing &them) {
        std::printf("%-8s TSevenZip %7.2f s (cpu %7.2f s)   7z %7.2f s (cpu %7.2f s)   ratio %.3f (cpu %.3f)\n", what,
                    us.wall, us.cpu, them.wall, them.cpu, us.wall / them.wall, us.cpu / them.cpu);
    };
    report("add:", addOurs, addTool);
    report("extract:", xOurs, xTool);
    std::printf("size:    TSevenZip %lld   7z a %lld   ratio %.4f\n", static_cast<long long>(sizeOurs),
                static_cast<long long>(sizeTool), double(sizeOurs) / double(sizeTool));
    return 0;
}
