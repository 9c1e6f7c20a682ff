// The copy component: files and trees copied byte for byte, the progress window and how the
// user stops it, events and nesting, errors, the tree operations and the drive table.
#include "ComponentStream.h"
#include "CopyFile.h"
#include "Drives.h"
#include "Exceptions.h"
#include "FileTestHelpers.h"
#include "prgform.h"

#include <QProgressBar>
#include <QtTest>

#include <memory>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace mattoni;
using namespace filetest;

namespace {

// Start, finish, file and progress events in the order they fired; CancelAt sets Cancel at
// that progress event (1-based).
struct EventLog
{
    QStringList log;
    int progressEvents = 0;
    int cancelAt = 0;
    QSet<TProgForm *> windows;

    void attach(TCustomCopyFile &c)
    {
        const auto window = [this, &c] { windows.insert(c.ProgForm()); };
        c.OnStartOperation = [this, window](QObject *) { log << QStringLiteral("start"); window(); };
        c.OnFinishOperation = [this, window](QObject *) { log << QStringLiteral("finish"); window(); };
        c.OnEachFile = [this, window](QObject *, const QString &name) { log << QStringLiteral("file ") + name; window(); };
        c.OnOperationProgress = [this, window](QObject *, qint32 p, bool &cancel) {
            log << QString::number(p);
            window();
            if (++progressEvents == cancelAt)
                cancel = true;
        };
    }
    QList<int> percents() const
    {
        QList<int> out;
        for (const QString &s : log) {
            bool ok = false;
            const int p = s.toInt(&ok);
            if (ok)
                out << p;
        }
        return out;
    }
};

TProgForm *visibleProgressWindow()
{
    for (QWidget *w : QApplication::topLevelWidgets())
        if (auto *form = qobject_cast<TProgForm *>(w); form && form->isVisible())
            return form;
    return nullptr;
}

// A lock that another program holds on a file.
class ForeignLock
{
public:
    ForeignLock(const QString &path, int how)
        : m_fd(::open(QFile::encodeName(path).constData(), O_RDONLY))
    {
        if (m_fd < 0 || ::flock(m_fd, how | LOCK_NB) != 0)
            qFatal("cannot lock %s", qPrintable(path));
    }
    ~ForeignLock() { ::close(m_fd); }

private:
    int m_fd;
};

} // namespace

class tst_CopyFile : public QObject
{
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> m_dir;

    QString path(const QString &name) const { return m_dir->filePath(name); }

    // src: files of every interesting size, a hidden one, sub-folders (one whose name matches
    // "*.txt"), an empty folder.
    void makeTree(const QString &root)
    {
        QVERIFY(writeFile(root + "/a.txt", pattern(100, 1)));
        QVERIFY(writeFile(root + "/b.bin", pattern(20000, 2)));
        QVERIFY(writeFile(root + "/.hidden", pattern(10, 3)));
        QVERIFY(writeFile(root + "/empty", QByteArray()));
        QVERIFY(writeFile(root + "/sub/c.txt", pattern(8192, 4)));
        QVERIFY(writeFile(root + "/sub/deeper/d.bin", pattern(9000, 5)));
        QVERIFY(writeFile(root + "/sub2.txt/e.txt", pattern(5, 6)));
        QVERIFY(writeFile(root + "/sub2.txt/f.bin", pattern(7, 7)));
        QVERIFY(QDir().mkpath(root + "/emptydir"));
    }

    // Bytes into From, copied by CopyNow to To with the events logged; To must then hold them.
    void copyWithoutWindow(TCopyFile &copy, EventLog &events, const QByteArray &bytes, const char *from, const char *to)
    {
        QVERIFY(writeFile(path(from), bytes));
        copy.setProgress(false);
        events.attach(copy);
        copy.setCopyFrom(path(from));
        copy.setCopyTo(path(to));
        copy.CopyNow();
        QCOMPARE(readFile(path(to)), bytes);
    }

private slots:
    void initTestCase() { ::umask(022); }
    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>();
        QVERIFY(m_dir->isValid());
        ClearDriveTable();
    }
    void cleanup()
    {
        QCOMPARE(visibleProgressWindow(), nullptr);
        m_dir.reset();
    }

    void publishedProperties()
    {
        TCopyFile copy;
        QCOMPARE(ComponentToString(&copy), QStringLiteral("object _: TCopyFile\n"
                                                          "  CopyFrom = ''\n"
                                                          "  CopyTo = ''\n"
                                                          "  Filter = '*.*'\n"
                                                          "  Progress = True\n"
                                                          "  OnNotExists = ''\n"
                                                          "  ShowFileNames = False\n"
                                                          "  Caption = ''\n"
                                                          "  Movefile = False\n"
                                                          "  TransferTimeDate = True\n"
                                                          "  TransferFileAttributes = True\n"
                                                          "  Recursive = True\n"
                                                          "  SendEvents = True\n"
                                                          "  ProgressKind = pkDirectory\n"
                                                          "end\n"));
        QCOMPARE(copy.Processed(), 0);
        QVERIFY(!copy.IsWorking());
    }

    void progressWindowLayout()
    {
        TProgForm form;
        QCOMPARE(form.windowTitle(), QStringLiteral("Operazione in corso..."));
        QCOMPARE(form.size(), QSize(409, 68));
        QCOMPARE(form.minimumSize(), form.maximumSize());
        QCOMPARE(form.font().pointSize(), 8);
        QCOMPARE(form.lFileName->pos(), QPoint(16, 8));
        QCOMPARE(form.ProgressBar1->geometry(), QRect(16, 32, 377, 13));
        QCOMPARE(form.ProgressBar1->minimum(), 0);
        QCOMPARE(form.ProgressBar1->maximum(), 100);
        QCOMPARE(form.ModalResult(), 0);
        const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
        QVERIFY(qAbs(form.geometry().center().x() - screen.center().x()) <= 1);
    }

    void copyNow_data()
    {
        QTest::addColumn<int>("size");
        QTest::addColumn<QStringList>("progress");
        QTest::addColumn<int>("processed");
        QTest::newRow("empty") << 0 << QStringList() << 0;
        QTest::newRow("one byte") << 1 << QStringList{"100"} << 100;
        QTest::newRow("one block less a byte") << 8191 << QStringList{"100"} << 100;
        QTest::newRow("exactly one block") << 8192 << QStringList{"100"} << 100;
        QTest::newRow("one block and a byte") << 8193 << QStringList{"100", "100"} << 100;
        QTest::newRow("three blocks") << 3 * 8192 << QStringList{"33", "67", "100"} << 100;
        QTest::newRow("odd size") << 30000 << QStringList{"27", "55", "82", "100"} << 100;
    }
    void copyNow()
    {
        QFETCH(int, size);
        QFETCH(QStringList, progress);
        QFETCH(int, processed);
        const QByteArray bytes = pattern(size, size);
        TCopyFile copy;
        EventLog events;
        copyWithoutWindow(copy, events, bytes, "src.bin", "dst.bin");
        QCOMPARE(events.log, (QStringList{"start", "file src.bin"} + progress + QStringList{"finish"}));
        QCOMPARE(copy.Processed(), processed);
        QCOMPARE(readFile(path("src.bin")), bytes);
    }

    // Bytes x 100 overflows 32 bits past 21,474,836 bytes: the bar swings to negative values.
    void percentageOverflow()
    {
        TCopyFile copy;
        EventLog events;
        copyWithoutWindow(copy, events, pattern(24000000, 9), "big.bin", "copy.bin");
        const QList<int> p = events.percents();
        QCOMPARE(p.size(), 2930);
        QCOMPARE(p.at(2620), 89);  // 21,471,232 bytes
        QCOMPARE(p.at(2621), -89); // 21,479,424 bytes
        QCOMPARE(p.last(), -79);
        QCOMPARE(copy.Processed(), -79);
    }

    void timesAndAttributes_data()
    {
        QTest::addColumn<bool>("transferTime");
        QTest::addColumn<bool>("transferAttributes");
        QTest::newRow("both") << true << true;
        QTest::newRow("date only") << true << false;
        QTest::newRow("attributes only") << false << true;
        QTest::newRow("neither") << false << false;
    }
    void timesAndAttributes()
    {
        QFETCH(bool, transferTime);
        QFETCH(bool, transferAttributes);
        QVERIFY(writeFile(path("src.txt"), "read-only"));
        const QDateTime stamp(QDate(2001, 2, 3), QTime(4, 5, 6));
        {
            QFile f(path("src.txt"));
            QVERIFY(f.open(QIODevice::ReadWrite));
            QVERIFY(f.setFileTime(stamp, QFileDevice::FileModificationTime));
        }
        QVERIFY(::chmod(QFile::encodeName(path("src.txt")).constData(), 0444) == 0);
        TCopyFile copy;
        copy.setProgress(false);
        copy.setTransferTimeDate(transferTime);
        copy.setTransferFileAttributes(transferAttributes);
        copy.setCopyFrom(path("src.txt"));
        copy.setCopyTo(path("dst.txt"));
        copy.CopyNow();
        const QFileInfo info(path("dst.txt"));
        QCOMPARE(info.lastModified() == stamp, transferTime);
        struct stat st;
        QVERIFY(::stat(QFile::encodeName(path("dst.txt")).constData(), &st) == 0);
        QCOMPARE(st.st_mode & 0777, transferAttributes ? 0444u : 0644u);
    }

    void moveFile()
    {
        makeTree(path("src"));
        const QStringList before = listing(path("src"));
        TCopyFile copy;
        copy.setProgress(false);
        copy.setMovefile(true);
        QVERIFY(copy.CopyDirectory(path("src"), path("dst")));
        QCOMPARE(listing(path("dst")), before);
        // The files moved, the folders stay behind.
        QCOMPARE(names(path("src")), (QStringList{"emptydir/", "sub/", "sub/deeper/", "sub2.txt/"}));
    }

    void cancel_data()
    {
        QTest::addColumn<QString>("how");
        QTest::newRow("event handler") << "handler";
        QTest::newRow("Escape on the window") << "escape";
        QTest::newRow("window closed") << "close";
    }
    void cancel()
    {
        QFETCH(QString, how);
        const QByteArray bytes = pattern(20 * 8192, 4);
        QVERIFY(writeFile(path("src.bin"), bytes));
        TCopyFile copy;
        EventLog events;
        events.attach(copy);
        if (how == "handler")
            events.cancelAt = 2;
        // The user acts while the copy runs: the key press or the close request waits in the
        // queue until the copy lets messages through.
        bool acted = false;
        QTimer::singleShot(0, this, [&] {
            TProgForm *form = visibleProgressWindow();
            QVERIFY(form);
            acted = true;
            if (how == "escape")
                QTest::keyClick(form, Qt::Key_Escape);
            else if (how == "close")
                form->windowHandle()->close();
            QVERIFY(form->isVisible());
        });
        copy.setCopyFrom(path("src.bin"));
        copy.setCopyTo(path("dst.bin"));
        copy.CopyNow();
        QVERIFY(acted);
        QVERIFY(!QFile::exists(path("dst.bin")));
        QCOMPARE(readFile(path("src.bin")), bytes);
        QCOMPARE(events.log.count("start"), 1);
        QCOMPARE(events.log.last(), QStringLiteral("finish"));
        QVERIFY(events.percents().size() <= 2);
    }

    void folderCopy()
    {
        makeTree(path("src"));
        TCopyFile copy;
        copy.setShowFileNames(true);
        EventLog events;
        events.attach(copy);
        QVERIFY(copy.CopyDirectory(path("src/"), path("dst/new")));
        QCOMPARE(listing(path("dst/new")), listing(path("src")));
        // One operation for the whole tree: one window, one start, one finish.
        QCOMPARE(events.log.first(), QStringLiteral("start"));
        QCOMPARE(events.log.count("start"), 1);
        QCOMPARE(events.log.count("finish"), 1);
        QCOMPARE(events.log.last(), QStringLiteral("finish"));
        QCOMPARE(events.windows.size(), 1);
        QVERIFY(*events.windows.begin());
        // The bar runs once over the whole tree.
        const QList<int> p = events.percents();
        QVERIFY(std::is_sorted(p.begin(), p.end()));
        QCOMPARE(p.last(), 100);
        QVERIFY(p.first() < 10);
        // Files in name order, folder by folder.
        QStringList files;
        for (const QString &s : events.log)
            if (s.startsWith("file "))
                files << s.mid(5);
        QCOMPARE(files, (QStringList{".hidden", "a.txt", "b.bin", "empty", "c.txt", "d.bin", "e.txt", "f.bin"}));
    }

    void folderFilter_data()
    {
        QTest::addColumn<QString>("filter");
        QTest::addColumn<bool>("recursive");
        QTest::addColumn<QStringList>("copied");
        QTest::newRow("*.txt: only folders named so are entered")
            << "*.txt" << true << QStringList{"a.txt", "sub2.txt/", "sub2.txt/e.txt"};
        QTest::newRow("*.bin") << "*.bin" << true << QStringList{"b.bin"};
        QTest::newRow("?.*: one-letter names, with or without extension")
            << "?.*" << true << QStringList{"a.txt", "b.bin"};
        QTest::newRow("not recursive")
            << "*.*" << false << QStringList{".hidden", "a.txt", "b.bin", "empty"};
        QTest::newRow("*: everything") << "*" << true << QStringList();
    }
    void folderFilter()
    {
        QFETCH(QString, filter);
        QFETCH(bool, recursive);
        QFETCH(QStringList, copied);
        makeTree(path("src"));
        if (copied.isEmpty())
            copied = names(path("src"));
        TCopyFile copy;
        copy.setProgress(false);
        copy.setFilter(filter);
        copy.setRecursive(recursive);
        QVERIFY(copy.CopyDirectory(path("src"), path("dst")));
        QCOMPARE(names(path("dst")), copied);
    }

    // A cancelled tree copy stops the file in hand and skips every later one, and leaves no
    // partial file behind.
    void cancelFolder()
    {
        for (int i = 1; i <= 4; ++i)
            QVERIFY(writeFile(path("src/f%1.bin").arg(i), pattern(3 * 8192, i)));
        QVERIFY(writeFile(path("src/sub/g.bin"), pattern(100, 9)));
        const QStringList before = listing(path("src"));
        TCopyFile copy;
        copy.setProgress(false);
        EventLog events;
        events.attach(copy);
        events.cancelAt = 4; // first block of the second file
        QVERIFY(copy.CopyDirectory(path("src"), path("dst")));
        QCOMPARE(names(path("dst")), (QStringList{"f1.bin", "sub/"}));
        QCOMPARE(readFile(path("dst/f1.bin")), readFile(path("src/f1.bin")));
        QCOMPARE(listing(path("src")), before);
        QCOMPARE(events.percents().size(), 4);
        QCOMPARE(events.log.count("file f4.bin"), 1);
    }

    void errors_data()
    {
        QTest::addColumn<QString>("situation");
        QTest::addColumn<bool>("createError");
        QTest::newRow("source locked by another program") << "source locked" << false;
        QTest::newRow("destination locked by another program") << "destination locked" << true;
        QTest::newRow("destination is a folder") << "destination folder" << true;
    }
    void errors()
    {
        QFETCH(QString, situation);
        QFETCH(bool, createError);
        QVERIFY(writeFile(path("src.txt"), "source"));
        if (situation == "destination folder")
            QVERIFY(QDir().mkpath(path("dst.txt")));
        else
            QVERIFY(writeFile(path("dst.txt"), "someone else's"));
        std::unique_ptr<ForeignLock> lock;
        if (situation == "source locked")
            lock = std::make_unique<ForeignLock>(path("src.txt"), LOCK_EX);
        if (situation == "destination locked")
            lock = std::make_unique<ForeignLock>(path("dst.txt"), LOCK_SH);
        TCopyFile copy;
        copy.setMovefile(true);
        EventLog events;
        events.attach(copy);
        copy.setCopyFrom(path("src.txt"));
        copy.setCopyTo(path("dst.txt"));
        // The destination's name in both messages.
        const QString expected = QStringLiteral("Errore durante la creazione di \"%1\"!").arg(path("dst.txt"));
        if (createError)
            QCOMPARE(raised<EFCreateError>([&] { copy.CopyNow(); }), expected);
        else
            QCOMPARE(raised<EFOpenError>([&] { copy.CopyNow(); }), expected);
        QVERIFY(!copy.IsWorking());
        QCOMPARE(events.log, (QStringList{"start", "file src.txt", "finish"}));
        QCOMPARE(readFile(path("src.txt")), QByteArray("source"));
        if (situation != "destination folder")
            QCOMPARE(readFile(path("dst.txt")), QByteArray("someone else's"));
    }

    void copyFiles()
    {
        QVERIFY(writeFile(path("src/x1.txt"), "one"));
        QVERIFY(writeFile(path("src/x2.txt"), "two"));
        QVERIFY(writeFile(path("src/y.bin"), "three"));
        QVERIFY(writeFile(path("src/z.bin"), "four"));
        QVERIFY(QDir().mkpath(path("src/folder.txt")));
        QVERIFY(QDir().mkpath(path("dst")));
        TCopyFile copy;
        copy.setProgress(false);
        EventLog events;
        events.attach(copy);
        copy.CopyFiles({path("src/*.txt"), QString(), path("src/y.???")}, path("dst"));
        QCOMPARE(names(path("dst")), (QStringList{"x1.txt", "x2.txt", "y.bin"}));
        QCOMPARE(readFile(path("dst/y.bin")), QByteArray("three"));
        QCOMPARE(events.log.count("start"), 1);
        QCOMPARE(events.log.count("finish"), 1);
        // Named once by the mask copy and once by the file copy.
        QCOMPARE(events.log.count("file x1.txt"), 2);

        events.log.clear();
        QCOMPARE(raised<Exception>([&] { copy.CopyFiles({path("src/*.*")}, path("nowhere")); }),
                 QStringLiteral("La cartella \"%1\" non esiste!").arg(path("nowhere")));
        QVERIFY(events.log.isEmpty());
        QVERIFY(!QFile::exists(path("nowhere")));
    }

    void deleteDirectory_data()
    {
        QTest::addColumn<bool>("recursive");
        QTest::addColumn<int>("kind");
        QTest::addColumn<bool>("result");
        QTest::addColumn<QStringList>("left");
        QTest::newRow("recursive") << true << int(pkDirectory) << true << QStringList();
        QTest::newRow("not recursive: sub-folders stay")
            << false << int(pkDirectory) << false
            << QStringList{"victim/", "victim/emptydir/", "victim/sub/", "victim/sub/c.txt", "victim/sub/deeper/",
                           "victim/sub/deeper/d.bin", "victim/sub2.txt/", "victim/sub2.txt/e.txt", "victim/sub2.txt/f.bin"};
        QTest::newRow("per-file bar") << true << int(pkFile) << true << QStringList();
    }
    void deleteDirectory()
    {
        QFETCH(bool, recursive);
        QFETCH(int, kind);
        QFETCH(bool, result);
        QFETCH(QStringList, left);
        makeTree(path("victim"));
        QVERIFY(::chmod(QFile::encodeName(path("victim/a.txt")).constData(), 0444) == 0);
        TCopyFile copy;
        copy.setProgress(false);
        copy.setRecursive(recursive);
        copy.setProgressKind(TProgressKind(kind));
        copy.setFilter(QStringLiteral("*.bin")); // not used by deletion
        EventLog events;
        events.attach(copy);
        QCOMPARE(copy.DeleteDirectory(path("victim/")), result);
        QCOMPARE(names(m_dir->path()), left);
        const QList<int> p = events.percents();
        QVERIFY(!p.isEmpty());
        if (kind == pkFile)
            QCOMPARE(p, QList<int>(p.size(), -1)); // no total: the bar is asked for -1
        QCOMPARE(events.log.count("start"), 1);
    }

    void deleteDirectoryStopsAtFirstFailure()
    {
        QVERIFY(writeFile(path("victim/a"), "a"));
        QVERIFY(writeFile(path("victim/b"), "b"));
        QVERIFY(writeFile(path("victim/c"), "c"));
        if (!setImmutable(path("victim/b"), true))
            QSKIP("the file system refuses the immutable flag");
        TCopyFile copy;
        copy.setProgress(false);
        const bool result = copy.DeleteDirectory(path("victim"));
        setImmutable(path("victim/b"), false);
        QVERIFY(!result);
        QCOMPARE(names(path("victim")), (QStringList{"b", "c"}));
    }

    void measureAndSearch()
    {
        makeTree(path("t"));
        TCopyFile copy;
        copy.setProgress(false);
        QCOMPARE(copy.GetDirectorySize(path("t")), 100 + 20000 + 10 + 8192 + 9000 + 5 + 7);
        QCOMPARE(copy.GetDirectoryCount(path("t/")), 8);
        copy.setFilter(QStringLiteral("*.txt"));
        QCOMPARE(copy.GetDirectorySize(path("t")), 100 + 5);
        QCOMPARE(copy.GetDirectoryCount(path("t")), 2);
        copy.setRecursive(false);
        QCOMPARE(copy.GetDirectoryCount(path("t")), 1);
        QCOMPARE(copy.GetDirectorySize(path("missing")), 0);

        // Sizes are 32-bit: a 3 GiB (sparse) file wraps the sum around.
        QFile big(path("t/huge.txt"));
        QVERIFY(big.open(QIODevice::WriteOnly) && big.resize(3ll << 30));
        big.close();
        copy.setRecursive(true);
        QCOMPARE(copy.GetDirectorySize(path("t")), qint32(100 + 5 + (3ll << 30) - (1ll << 32)));

        // Search: every entry, folders too, case counting; the mask does not apply.
        QVERIFY(copy.FindFile(path("t"), QStringLiteral("d.bin")));
        QVERIFY(copy.FindFile(path("t"), QStringLiteral("deeper")));
        QVERIFY(!copy.FindFile(path("t"), QStringLiteral("D.bin")));
        copy.setRecursive(false);
        QVERIFY(!copy.FindFile(path("t"), QStringLiteral("d.bin")));
        QCOMPARE(raised<Exception>([&] { copy.FindFile(path("none"), QStringLiteral("x")); }),
                 QStringLiteral("La cartella \"%1\" non esiste!").arg(path("none")));
    }

    void emptyAndInUse()
    {
        QVERIFY(QDir().mkpath(path("empty")));
        QVERIFY(writeFile(path("hidden/.only"), "x"));
        QVERIFY(writeFile(path("busy/sub/file"), "x"));
        TCopyFile copy;
        copy.setProgress(false);
        QVERIFY(copy.IsDirectoryEmpty(path("empty")));
        QVERIFY(!copy.IsDirectoryEmpty(path("hidden/")));
        QCOMPARE(raised<Exception>([&] { copy.IsDirectoryEmpty(path("none/")); }),
                 QStringLiteral("La cartella \"%1\" non esiste!").arg(path("none/")));

        QVERIFY(!copy.IsDirectoryInUse(path("busy")));
        {
            ForeignLock reader(path("busy/sub/file"), LOCK_SH);
            QVERIFY(copy.IsDirectoryInUse(path("busy")));
            copy.setRecursive(false);
            QVERIFY(!copy.IsDirectoryInUse(path("busy")));
        }
        // The walk names the missing folder as it reached it, without the trailing slash.
        QCOMPARE(raised<Exception>([&] { copy.IsDirectoryInUse(path("none/")); }),
                 QStringLiteral("La cartella \"%1\" non esiste!").arg(path("none")));
    }

    void showFileNames_data()
    {
        QTest::addColumn<bool>("show");
        QTest::newRow("names shown") << true;
        QTest::newRow("names hidden") << false;
    }
    void showFileNames()
    {
        QFETCH(bool, show);
        QVERIFY(writeFile(path("src/one.txt"), "1"));
        QVERIFY(writeFile(path("src/two.txt"), "2"));
        TCopyFile copy;
        copy.setShowFileNames(show);
        copy.setCaption(QStringLiteral("Copia dei documenti"));
        QStringList shown;
        copy.OnEachFile = [&](QObject *, const QString &name) {
            TProgForm *form = visibleProgressWindow();
            QVERIFY(form);
            QCOMPARE(form->windowTitle(), QStringLiteral("Copia dei documenti"));
            shown << name + '=' + form->lFileName->text();
        };
        copy.CopyDirectory(path("src"), path("dst"));
        if (show)
            QCOMPARE(shown, (QStringList{"one.txt=one.txt", "two.txt=two.txt"}));
        else
            QCOMPARE(shown, (QStringList{"one.txt=", "two.txt="}));
    }

    void sendEventsOff()
    {
        QVERIFY(writeFile(path("src.bin"), pattern(5 * 8192)));
        TCopyFile copy;
        copy.setProgress(false);
        copy.setSendEvents(false);
        EventLog events;
        events.attach(copy);
        events.cancelAt = 1; // never asked: the copy runs to its end
        copy.setCopyFrom(path("src.bin"));
        copy.setCopyTo(path("dst.bin"));
        copy.CopyNow();
        QVERIFY(events.log.isEmpty());
        QCOMPARE(readFile(path("dst.bin")), pattern(5 * 8192));
    }

    void destroyedWhileWorking()
    {
        EventLog events;
        auto copy = std::make_unique<TCopyFile>();
        events.attach(*copy);
        copy->Start();
        QVERIFY(copy->IsWorking());
        QVERIFY(visibleProgressWindow());
        copy.reset();
        QCOMPARE(events.log, (QStringList{"start", "finish"}));
    }

    void onNotExists_data()
    {
        QTest::addColumn<QString>("from");
        QTest::addColumn<QString>("to");
        QTest::addColumn<QString>("message");
        QTest::newRow("missing source") << "missing.txt" << "dst.txt" << "File non trovato";
        QTest::newRow("source is a folder") << "folder" << "dst.txt" << "Nessun file";
        QTest::newRow("no message") << "missing.txt" << "dst.txt" << "";
    }
    void onNotExists()
    {
        QFETCH(QString, from);
        QFETCH(QString, to);
        QFETCH(QString, message);
        QVERIFY(QDir().mkpath(path("folder")));
        TCopyFile copy;
        copy.setOnNotExists(message);
        EventLog events;
        events.attach(copy);
        DialogWatcher watcher([](const Dialog &d) { d.press(QStringLiteral("OK")); });
        copy.setCopyFrom(path(from));
        copy.setCopyTo(path(to));
        copy.CopyNow();
        if (message.isEmpty())
            QVERIFY(watcher.seen.isEmpty());
        else
            QCOMPARE(watcher.seen, QStringList{QApplication::applicationDisplayName() + ": " + message});
        QVERIFY(events.log.isEmpty());
        QVERIFY(!QFile::exists(path(to)));
    }

    void missingDestinationFolder_data()
    {
        QTest::addColumn<QString>("to");
        QTest::addColumn<QString>("answer");
        QTest::addColumn<QStringList>("dialogs");
        QTest::addColumn<bool>("copied");
        const auto question = [](const QString &folder) {
            // Two blanks after "destinazione"; the two carriage returns make an empty line.
            return QStringLiteral("CONFERMA: La cartella di destinazione  %1 non esiste...\n\nVuoi creare la cartella ?").arg(folder);
        };
        const QString stopped = QStringLiteral("ATTENZIONE: Processo interrotto!");
        QTest::newRow("yes: created with its parents")
            << "new/deeper/dst.txt" << "Si" << QStringList{question("new/deeper/")} << true;
        QTest::newRow("no: nothing done") << "new/deeper/dst.txt" << "No" << QStringList{question("new/deeper/"), stopped} << false;
        QTest::newRow("bare name: an empty folder") << "=bare.txt" << "No" << QStringList{question(""), stopped} << false;
        // Asked even without a destination, which then gets the OnNotExists message.
        QTest::newRow("no destination")
            << "=" << "Si" << QStringList{question(""), QApplication::applicationDisplayName() + ": Manca la destinazione"} << false;
    }
    void missingDestinationFolder()
    {
        QFETCH(QString, to);
        QFETCH(QString, answer);
        QFETCH(QStringList, dialogs);
        QFETCH(bool, copied);
        QVERIFY(writeFile(path("src.txt"), "source"));
        // "=" marks a destination taken as it stands, without the test folder in front.
        const QString destination = to.startsWith('=') ? to.mid(1) : path(to);
        const QString folderShown = to.startsWith('=') ? QString() : path("new/deeper/");
        for (QString &d : dialogs)
            d.replace(QStringLiteral("new/deeper/"), folderShown);
        TCopyFile copy;
        copy.setOnNotExists(QStringLiteral("Manca la destinazione"));
        EventLog events;
        events.attach(copy);
        DialogWatcher watcher([&](const Dialog &d) { d.press(d.title == "CONFERMA" ? answer : QStringLiteral("OK")); });
        copy.setCopyFrom(path("src.txt"));
        copy.setCopyTo(destination);
        copy.CopyNow();
        QCOMPARE(watcher.seen, dialogs);
        QCOMPARE(QFile::exists(path("new/deeper")), copied);
        if (copied) {
            QCOMPARE(readFile(path(to)), QByteArray("source"));
            QCOMPARE(events.log.count("finish"), 1);
        } else {
            QVERIFY(events.log.isEmpty());
        }
    }

    void drives_data()
    {
        QTest::addColumn<QChar>("drive");
        QTest::addColumn<QString>("expected");
        QTest::newRow("mapped") << QChar('A') << "true";
        QTest::newRow("lower case") << QChar('a') << "true";
        QTest::newRow("folder missing") << QChar('M') << "false";
        QTest::newRow("no folder") << QChar('Q') << "false";
        QTest::newRow("digit") << QChar('1') << "Not a valid drive ID";
        QTest::newRow("colon") << QChar(':') << "Not a valid drive ID";
    }
    void drives()
    {
        QFETCH(QChar, drive);
        QFETCH(QString, expected);
        SetDriveFolder(QChar('A'), path("floppy"));
        SetDriveFolder(QChar('M'), path("gone"));
        QVERIFY(QDir().mkpath(path("floppy")));
        TCopyFile copy;
        QString answer;
        try {
            answer = copy.DiskInDrive(drive) ? "true" : "false";
        } catch (const EConvertError &e) {
            answer = e.Message();
        }
        QCOMPARE(answer, expected);
    }

    void drivePaths_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("expected");
        QTest::newRow("drive alone") << "A:" << "/mnt/floppy/";
        QTest::newRow("drive root") << "A:/" << "/mnt/floppy/";
        QTest::newRow("path on drive") << "a:/dir/file.txt" << "/mnt/floppy/dir/file.txt";
        QTest::newRow("no slash after colon") << "A:file.txt" << "/mnt/floppy/file.txt";
        QTest::newRow("unmapped drive names nothing") << "Q:/file.txt" << "";
        QTest::newRow("plain path") << "/home/x:y" << "/home/x:y";
        QTest::newRow("relative path") << "docs/a.txt" << "docs/a.txt";
    }
    void drivePaths()
    {
        QFETCH(QString, path);
        QFETCH(QString, expected);
        SetDriveFolder(QChar('A'), QStringLiteral("/mnt/floppy/"));
        QCOMPARE(ExpandDrivePath(path), expected);
    }

    void copyBetweenDrives()
    {
        makeTree(path("c/src"));
        QVERIFY(QDir().mkpath(path("d")));
        SetDriveFolder(QChar('C'), path("c"));
        SetDriveFolder(QChar('D'), path("d"));
        TCopyFile copy;
        copy.setProgress(false);
        QVERIFY(copy.CopyDirectory(QStringLiteral("C:/src"), QStringLiteral("D:/copia/")));
        QCOMPARE(listing(path("d/copia")), listing(path("c/src")));
        QVERIFY(!copy.CopyDirectory(QStringLiteral("Q:/src"), QStringLiteral("D:/x")));
        QVERIFY(!copy.CopyDirectory(QStringLiteral("C:/src"), QStringLiteral("Q:/x")));
    }
};

QTEST_MAIN(tst_CopyFile)
#include "tst_copyfile.moc"
