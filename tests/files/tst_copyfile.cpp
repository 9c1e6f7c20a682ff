// The copy component: files and trees copied byte for byte, the progress window and how the
// user stops it, events and nesting, errors, the tree operations and the drive table.
#include "ComponentStream.h"
#include "CopyFile.h"
#include "Drives.h"
#include "FileTestHelpers.h"
#include "prgform.h"

#include <QtTest>

#include <memory>

#include <sys/file.h>

using namespace mattoni;
using namespace filetest;

namespace {

// Start, finish, file and progress events in the order they fired; Cancel is set at the
// progress event number CancelAt.
struct EventLog
{
    QStringList log;
    int cancelAt = 0;
    QSet<TProgForm *> windows;

    void attach(TCustomCopyFile &c)
    {
        const auto add = [this, &c](const QString &entry) {
            log << entry;
            windows.insert(c.ProgForm());
        };
        c.OnStartOperation = [add](QObject *) { add(QStringLiteral("start")); };
        c.OnFinishOperation = [add](QObject *) { add(QStringLiteral("finish")); };
        c.OnEachFile = [add](QObject *, const QString &name) { add(QStringLiteral("file ") + name); };
        c.OnOperationProgress = [this, add](QObject *, qint32 p, bool &cancel) {
            add(QString::number(p));
            if (percents().size() == cancelAt)
                cancel = true;
        };
    }
    QList<int> percents() const
    {
        QList<int> out;
        for (const QString &s : log)
            if (s.at(0).isDigit() || s.at(0) == u'-')
                out << s.toInt();
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

    // Files of interesting sizes, a hidden one, sub-folders (one named like "*.txt") and an
    // empty folder.
    void makeTree(const QString &root)
    {
        const QList<QPair<const char *, int>> files = {{"a.txt", 100}, {"b.bin", 20000}, {".hidden", 10},
                                                       {"empty", 0}, {"sub/c.txt", 8192}, {"sub/deeper/d.bin", 9000},
                                                       {"sub2.txt/e.txt", 5}, {"sub2.txt/f.bin", 7}};
        for (const auto &[name, size] : files)
            QVERIFY(writeFile(root + '/' + name, pattern(size, size)));
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
        QCOMPARE(ComponentToString(&copy),
                 QStringLiteral("object _: TCopyFile\n  CopyFrom = ''\n  CopyTo = ''\n  Filter = '*.*'\n  Progress = True\n"
                                "  OnNotExists = ''\n  ShowFileNames = False\n  Caption = ''\n  Movefile = False\n"
                                "  TransferTimeDate = True\n  TransferFileAttributes = True\n  Recursive = True\n"
                                "  SendEvents = True\n  ProgressKind = pkDirectory\nend\n"));
        const TProgForm form;
        QCOMPARE(form.windowTitle(), QStringLiteral("Operazione in corso..."));
        QCOMPARE(form.size(), QSize(409, 68));
    }

    void copyNow_data()
    {
        QTest::addColumn<int>("size");
        QTest::addColumn<QStringList>("progress");
        QTest::newRow("empty") << 0 << QStringList();
        QTest::newRow("one byte") << 1 << QStringList{"100"};
        QTest::newRow("exactly one block") << 8192 << QStringList{"100"};
        QTest::newRow("one block and a byte") << 8193 << QStringList{"100", "100"};
        QTest::newRow("three blocks") << 3 * 8192 << QStringList{"33", "67", "100"};
        QTest::newRow("odd size") << 30000 << QStringList{"27", "55", "82", "100"};
    }
    void copyNow()
    {
        QFETCH(int, size);
        QFETCH(QStringList, progress);
        TCopyFile copy;
        EventLog events;
        copyWithoutWindow(copy, events, pattern(size, size), "src.bin", "dst.bin");
        QCOMPARE(events.log, (QStringList{"start", "file src.bin"} + progress + QStringList{"finish"}));
        QCOMPARE(copy.Processed(), size ? 100 : 0);
        QCOMPARE(readFile(path("src.bin")), pattern(size, size));
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
        QCOMPARE(copy.Processed(), -79);
    }

    // Data that does not fit goes unnoticed: the copy reads, counts and reports every block,
    // on one file system and across two.
    void fullDisk_data()
    {
        QTest::addColumn<bool>("sameDisk");
        QTest::newRow("source on the same disk") << true;
        QTest::newRow("source on another file system") << false;
    }
    void fullDisk()
    {
        QFETCH(bool, sameDisk);
        Disk disk(path("disk"), 64);
        if (!disk.mounted)
            QSKIP("tmpfs cannot be mounted here (mount -t tmpfs needs root)");
        const QString source = sameDisk ? disk.path + "/src.bin" : path("src.bin");
        QVERIFY(writeFile(source, pattern(40000, 3)));
        QVERIFY(writeFile(disk.path + "/filler", pattern(65536 - (sameDisk ? 40960 : 0) - 20480)));
        TCopyFile copy;
        copy.setProgress(false);
        EventLog events;
        events.attach(copy);
        copy.setCopyFrom(source);
        copy.setCopyTo(disk.path + "/dst.bin");
        copy.CopyNow();
        QCOMPARE(events.percents(), (QList<int>{20, 41, 61, 82, 100}));
        QCOMPARE(readFile(disk.path + "/dst.bin"), pattern(40000, 3).left(20480)); // two blocks and a half
        QCOMPARE(readFile(source), pattern(40000, 3));
    }

    void timesAndAttributes_data()
    {
        QTest::addColumn<bool>("transfer");
        QTest::newRow("transferred") << true;
        QTest::newRow("not transferred") << false;
    }
    void timesAndAttributes()
    {
        QFETCH(bool, transfer);
        QVERIFY(writeFile(path("src.txt"), "read-only"));
        const QDateTime stamp(QDate(2001, 2, 3), QTime(4, 5, 6));
        const auto readOnly = QFileDevice::ReadOwner | QFileDevice::ReadGroup | QFileDevice::ReadOther;
        QFile f(path("src.txt"));
        QVERIFY(f.open(QIODevice::ReadWrite) && f.setFileTime(stamp, QFileDevice::FileModificationTime));
        f.close();
        QVERIFY(f.setPermissions(readOnly));
        TCopyFile copy;
        copy.setProgress(false);
        copy.setTransferTimeDate(transfer);
        copy.setTransferFileAttributes(transfer);
        copy.setCopyFrom(path("src.txt"));
        copy.setCopyTo(path("dst.txt"));
        copy.CopyNow();
        QCOMPARE(QFileInfo(path("dst.txt")).lastModified() == stamp, transfer);
        QCOMPARE(QFile(path("dst.txt")).permissions() & QFileDevice::WriteOwner, transfer ? 0 : QFileDevice::WriteOwner);
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
        events.cancelAt = how == "handler" ? 2 : 0;
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

    void folderCopy_data()
    {
        QTest::addColumn<bool>("showNames");
        QTest::newRow("names shown") << true;
        QTest::newRow("names hidden") << false;
    }
    void folderCopy()
    {
        QFETCH(bool, showNames);
        makeTree(path("src"));
        TCopyFile copy;
        copy.setShowFileNames(showNames);
        copy.setCaption(QStringLiteral("Copia dei documenti"));
        EventLog events;
        events.attach(copy);
        QStringList shown;
        const auto logFile = copy.OnEachFile;
        copy.OnEachFile = [&](QObject *sender, const QString &name) {
            logFile(sender, name);
            QCOMPARE(visibleProgressWindow()->windowTitle(), QStringLiteral("Copia dei documenti"));
            shown << visibleProgressWindow()->lFileName->text();
        };
        QVERIFY(copy.CopyDirectory(path("src/"), path("dst/new")));
        QCOMPARE(listing(path("dst/new")), listing(path("src")));
        // One operation for the whole tree: one window, one start, one finish.
        QCOMPARE(events.log.first(), QStringLiteral("start"));
        QCOMPARE(events.log.count("start"), 1);
        QCOMPARE(events.log.count("finish"), 1);
        QCOMPARE(events.log.last(), QStringLiteral("finish"));
        QCOMPARE(events.windows.size(), 1);
        // The bar runs once over the whole tree.
        const QList<int> p = events.percents();
        QVERIFY(std::is_sorted(p.begin(), p.end()));
        QCOMPARE(p.last(), 100);
        // Files in name order, folder by folder.
        const QStringList files{".hidden", "a.txt", "b.bin", "empty", "c.txt", "d.bin", "e.txt", "f.bin"};
        QCOMPARE(shown, showNames ? files : QStringList(files.size(), QString()));
    }

    void folderFilter_data()
    {
        QTest::addColumn<QString>("filter");
        QTest::addColumn<bool>("recursive");
        QTest::addColumn<bool>("move");
        QTest::addColumn<QStringList>("copied");
        QTest::newRow("*.txt: only folders named so are entered")
            << "*.txt" << true << false << QStringList{"a.txt", "sub2.txt/", "sub2.txt/e.txt"};
        QTest::newRow("?.*: one-letter names, with or without extension")
            << "?.*" << true << false << QStringList{"a.txt", "b.bin"};
        QTest::newRow("not recursive") << "*.*" << false << false << QStringList{".hidden", "a.txt", "b.bin", "empty"};
        QTest::newRow("moved: the folders stay behind")
            << "*.txt" << true << true << QStringList{"a.txt", "sub2.txt/", "sub2.txt/e.txt"};
    }
    void folderFilter()
    {
        QFETCH(QString, filter);
        QFETCH(bool, recursive);
        QFETCH(bool, move);
        QFETCH(QStringList, copied);
        makeTree(path("src"));
        const QStringList before = names(path("src"));
        TCopyFile copy;
        copy.setProgress(false);
        copy.setFilter(filter);
        copy.setRecursive(recursive);
        copy.setMovefile(move);
        QVERIFY(copy.CopyDirectory(path("src"), path("dst")));
        QCOMPARE(names(path("dst")), copied);
        QCOMPARE(names(path("src")).size(), before.size() - (move ? 2 : 0));
        QCOMPARE(readFile(path("dst/sub2.txt/e.txt")) == pattern(5, 5), filter == "*.txt");
    }

    // A cancelled tree copy stops the file in hand, skips every later one and leaves no partial
    // file behind.
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
    }

    void errors_data()
    {
        QTest::addColumn<QString>("situation");
        QTest::newRow("source locked by another program") << "source locked";
        QTest::newRow("destination locked by another program") << "destination locked";
        QTest::newRow("destination is a folder") << "destination folder";
    }
    void errors()
    {
        QFETCH(QString, situation);
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
        if (situation == "source locked")
            QCOMPARE(raised<EFOpenError>([&] { copy.CopyNow(); }), expected);
        else
            QCOMPARE(raised<EFCreateError>([&] { copy.CopyNow(); }), expected);
        QVERIFY(!copy.IsWorking());
        QCOMPARE(events.log, (QStringList{"start", "file src.txt", "finish"}));
        QCOMPARE(readFile(path("src.txt")), QByteArray("source"));
        if (situation != "destination folder")
            QCOMPARE(readFile(path("dst.txt")), QByteArray("someone else's"));
    }

    void nothingToCopy_data()
    {
        QTest::addColumn<QString>("from");
        QTest::addColumn<QString>("to");
        QTest::addColumn<QString>("answer");
        QTest::addColumn<QStringList>("dialogs");
        const auto question = [](const QString &folder) {
            // Two blanks after "destinazione"; the two carriage returns make an empty line.
            return QStringLiteral("CONFERMA: La cartella di destinazione  %1 non esiste...\n\nVuoi creare la cartella ?").arg(folder);
        };
        const QString stopped = QStringLiteral("ATTENZIONE: Processo interrotto!");
        const QString notExists = QApplication::applicationDisplayName() + QStringLiteral(": Manca il file");
        const QString deeper = QStringLiteral("new/deeper/");
        QTest::newRow("missing folder: yes") << "src.txt" << deeper + "dst.txt" << "Si" << QStringList{question(deeper)};
        QTest::newRow("missing folder: no") << "src.txt" << deeper + "dst.txt" << "No" << QStringList{question(deeper), stopped};
        QTest::newRow("bare name: no folder") << "src.txt" << "=bare.txt" << "No" << QStringList{question(""), stopped};
        // Asked even without a destination, which then gets the OnNotExists message.
        QTest::newRow("no destination") << "src.txt" << "=" << "Si" << QStringList{question(""), notExists};
        QTest::newRow("missing source") << "missing.txt" << "dst.txt" << "" << QStringList{notExists};
        QTest::newRow("source is a folder") << "folder" << "dst.txt" << "" << QStringList{notExists};
    }
    void nothingToCopy()
    {
        QFETCH(QString, from);
        QFETCH(QString, to);
        QFETCH(QString, answer);
        QFETCH(QStringList, dialogs);
        QVERIFY(writeFile(path("src.txt"), "source"));
        QVERIFY(QDir().mkpath(path("folder")));
        // "=" marks a destination taken as it stands, outside the test folder.
        const QString destination = to.startsWith('=') ? to.mid(1) : path(to);
        for (QString &d : dialogs)
            d.replace(QStringLiteral("new/deeper/"), path("new/deeper/"));
        TCopyFile copy;
        copy.setOnNotExists(QStringLiteral("Manca il file"));
        EventLog events;
        events.attach(copy);
        DialogWatcher watcher([&](const Dialog &d) { d.press(d.title == "CONFERMA" ? answer : QStringLiteral("OK")); });
        copy.setCopyFrom(path(from));
        copy.setCopyTo(destination);
        copy.CopyNow();
        QCOMPARE(watcher.seen, dialogs);
        const bool copied = answer == "Si" && to.contains('/');
        QCOMPARE(readFile(destination), copied ? QByteArray("source") : QByteArray("<missing>"));
        QCOMPARE(events.log.isEmpty(), !copied);

        copy.setOnNotExists(QString());
        copy.setCopyFrom(path("missing.txt"));
        copy.CopyNow(); // and without a message nothing is shown
        QCOMPARE(watcher.seen, dialogs);
    }

    void copyFiles()
    {
        for (const char *name : {"x1.txt", "x2.txt", "y.bin", "z.bin"})
            QVERIFY(writeFile(path("src/") + name, name));
        QVERIFY(QDir().mkpath(path("src/folder.txt")));
        QVERIFY(QDir().mkpath(path("dst")));
        TCopyFile copy;
        copy.setProgress(false);
        EventLog events;
        events.attach(copy);
        copy.CopyFiles({path("src/*.txt"), QString(), path("src/y.???")}, path("dst"));
        QCOMPARE(names(path("dst")), (QStringList{"x1.txt", "x2.txt", "y.bin"}));
        QCOMPARE(events.log.count("start"), 1);
        // Named once by the mask copy and once by the file copy.
        QCOMPARE(events.log.count("file x1.txt"), 2);

        events.log.clear();
        QCOMPARE(raised<Exception>([&] { copy.CopyFiles({path("src/*.*")}, path("nowhere")); }),
                 QStringLiteral("La cartella \"%1\" non esiste!").arg(path("nowhere")));
        QVERIFY(events.log.isEmpty());
    }

    void deleteDirectory_data()
    {
        QTest::addColumn<bool>("recursive");
        QTest::addColumn<int>("kind");
        QTest::addColumn<bool>("result");
        QTest::newRow("recursive") << true << int(pkDirectory) << true;
        QTest::newRow("not recursive: sub-folders stay") << false << int(pkDirectory) << false;
        QTest::newRow("per-file bar") << true << int(pkFile) << true;
    }
    void deleteDirectory()
    {
        QFETCH(bool, recursive);
        QFETCH(int, kind);
        QFETCH(bool, result);
        makeTree(path("victim"));
        QVERIFY(QFile(path("victim/a.txt")).setPermissions(QFileDevice::ReadOwner));
        TCopyFile copy;
        copy.setProgress(false);
        copy.setRecursive(recursive);
        copy.setProgressKind(TProgressKind(kind));
        copy.setFilter(QStringLiteral("*.bin")); // not used by deletion
        EventLog events;
        events.attach(copy);
        QCOMPARE(copy.DeleteDirectory(path("victim/")), result);
        const QStringList left = names(m_dir->path());
        QCOMPARE(left.size(), recursive ? 0 : 9);
        QVERIFY(!left.contains("victim/a.txt") && !left.contains("victim/.hidden"));
        const QList<int> p = events.percents();
        if (kind == pkFile)
            QCOMPARE(p, QList<int>(p.size(), -1)); // no total: the bar is asked for -1
        else
            QVERIFY(std::is_sorted(p.begin(), p.end()) && p.first() == 0);
    }

    void measureAndSearch()
    {
        makeTree(path("t"));
        QVERIFY(writeFile(path("busy/sub/file"), "x"));
        TCopyFile copy;
        copy.setProgress(false);
        QCOMPARE(copy.GetDirectorySize(path("t")), 100 + 20000 + 10 + 8192 + 9000 + 5 + 7);
        QCOMPARE(copy.GetDirectoryCount(path("t/")), 8);
        copy.setFilter(QStringLiteral("*.txt"));
        QCOMPARE(copy.GetDirectoryCount(path("t")), 2);
        copy.setRecursive(false);
        QCOMPARE(copy.GetDirectoryCount(path("t")), 1);
        QCOMPARE(copy.GetDirectorySize(path("missing")), 0);
        // Sizes are 32-bit: a 3 GiB (sparse) file wraps the sum around.
        QFile big(path("t/huge.txt"));
        QVERIFY(big.open(QIODevice::WriteOnly) && big.resize(3ll << 30));
        QCOMPARE(copy.GetDirectorySize(path("t")), qint32(100 + (3ll << 30) - (1ll << 32)));

        // Search and the in-use test see every entry, folders too; case counts.
        copy.setRecursive(true);
        QVERIFY(copy.FindFile(path("t"), QStringLiteral("d.bin")));
        QVERIFY(copy.FindFile(path("t"), QStringLiteral("deeper")));
        QVERIFY(!copy.FindFile(path("t"), QStringLiteral("D.bin")));
        QVERIFY(!copy.IsDirectoryInUse(path("busy")));
        {
            ForeignLock reader(path("busy/sub/file"), LOCK_SH);
            QVERIFY(copy.IsDirectoryInUse(path("busy")));
            copy.setRecursive(false);
            QVERIFY(!copy.IsDirectoryInUse(path("busy")));
            QVERIFY(!copy.FindFile(path("t"), QStringLiteral("d.bin")));
        }
        QVERIFY(!copy.IsDirectoryEmpty(path("busy")));
        QVERIFY(copy.IsDirectoryEmpty(path("t/emptydir")));
        // The empty test names the folder as given, the walks as they reached it.
        const QString missing = QStringLiteral("La cartella \"%1\" non esiste!");
        QCOMPARE(raised<Exception>([&] { copy.IsDirectoryEmpty(path("none/")); }), missing.arg(path("none/")));
        QCOMPARE(raised<Exception>([&] { copy.IsDirectoryInUse(path("none/")); }), missing.arg(path("none")));
        QCOMPARE(raised<Exception>([&] { copy.FindFile(path("none"), "x"); }), missing.arg(path("none")));
    }

    void drives()
    {
        SetDriveFolder(QChar('A'), path("floppy"));
        SetDriveFolder(QChar('M'), path("gone"));
        QVERIFY(QDir().mkpath(path("floppy/src")));
        TCopyFile copy;
        copy.setProgress(false);
        QVERIFY(copy.DiskInDrive(QChar('A')));
        QVERIFY(copy.DiskInDrive(QChar('a')));
        QVERIFY(!copy.DiskInDrive(QChar('M'))); // its folder is missing
        QVERIFY(!copy.DiskInDrive(QChar('Q'))); // no folder
        QCOMPARE(raised<EConvertError>([&] { copy.DiskInDrive(QChar('1')); }), QStringLiteral("Not a valid drive ID"));
        // "X:" paths lead into the drive's folder; a letter without one names nothing.
        QVERIFY(writeFile(path("floppy/src/x.txt"), "x"));
        QVERIFY(copy.CopyDirectory(QStringLiteral("a:/src"), QStringLiteral("A:copia/")));
        QCOMPARE(readFile(path("floppy/copia/x.txt")), QByteArray("x"));
        QVERIFY(!copy.CopyDirectory(QStringLiteral("A:/src"), QStringLiteral("Q:/x")));
    }
};

QTEST_MAIN(tst_CopyFile)
#include "tst_copyfile.moc"
