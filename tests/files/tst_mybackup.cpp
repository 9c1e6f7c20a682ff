// The multi-disk backup on real small file systems: each disk is a tmpfs mounted for the test
// and entered in the drive table; "changing the disk" puts another one behind the letter while
// the real prompt is on screen, and the prompt is answered with its own buttons.
#include "ComponentStream.h"
#include "DateTime.h"
#include "Drives.h"
#include "FileTestHelpers.h"
#include "FormatSettings.h"
#include "Formatting.h"
#include "MyBackup.h"
#include "prgform.h"

#include <QtTest>

#include <csignal>
#include <memory>

#include <sys/resource.h>

using namespace mattoni;
using namespace filetest;

namespace {

QString prompt(int disk, char drive = 'A')
{
    return QStringLiteral("Messaggio di sistema: Prego, inserire il disco #%1 nell'unità di salvataggio %2:").arg(disk).arg(drive);
}

const QString kNoInfos = QStringLiteral("ATTENZIONE: Il disco non contiene alcuna copia di salvataggio.");
const QString kWrongSeries = QStringLiteral("ERRORE: Il disco non corrisponde alla copia di salvataggio: Segreteria 2026");

} // namespace

class tst_MyBackup : public QObject
{
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> m_dir;
    std::vector<std::unique_ptr<Disk>> m_disks;

    QString path(const QString &name) const { return m_dir->filePath(name); }
    Disk &disk(int kib)
    {
        m_disks.push_back(std::make_unique<Disk>(path(QStringLiteral("disk%1").arg(m_disks.size() + 1)), kib));
        return *m_disks.back();
    }
    static void insert(const Disk &d) { SetDriveFolder(QChar('A'), d.path); }

    void configure(TMyBackup &b, const QString &filesPath)
    {
        b.setFilesPath(filesPath);
        b.setID(QStringLiteral("SEG-2026"));
        b.setIdLabel(QStringLiteral("Segreteria 2026"));
        b.setBackupName(QStringLiteral("Archivio studenti"));
        b.setUserName(QStringLiteral("Mario Rossi"));
        b.setUserCompany(QStringLiteral("Università di Prova"));
        b.setVersion(QStringLiteral("3.1"));
    }

    // Backs Source up onto fresh disks of Kib, inserting the next one at each prompt.
    void backupOnto(int disks, int kib, const QString &source)
    {
        for (int i = 0; i < disks; ++i)
            disk(kib);
        insert(*m_disks[0]);
        TMyBackup b;
        configure(b, source);
        b.setProgress(false);
        DialogWatcher watcher([&](const Dialog &d) {
            insert(*m_disks[size_t(d.text.section('#', 1).left(1).toInt() - 1)]);
            d.press(QStringLiteral("OK"));
        });
        b.Backup();
        QCOMPARE(watcher.seen.size(), disks - 1);
    }

    // An info file: the lines expected, Date and Time those of a moment since Since.
    static void checkInfos(const QByteArray &actual, const QByteArray &before, const QByteArray &after, TDateTime since)
    {
        const QString text = QString::fromLatin1(actual);
        const QByteArray date = text.section("Date=", 1).section('\r', 0, 0).toLatin1();
        const QByteArray time = text.section("Time=", 1).section('\r', 0, 0).toLatin1();
        bool moment = false;
        for (TDateTime t = since; t <= Now() + 1.0 / SecsPerDay; t += 0.5 / SecsPerDay)
            moment = moment || (DateToStr(t).toLatin1() == date && TimeToStr(t).toLatin1() == time);
        QVERIFY2(moment, actual.constData());
        QCOMPARE(actual, before + "Date=" + date + "\r\nTime=" + time + "\r\n" + after);
    }

private slots:
    void initTestCase()
    {
        FormatSettings = TFormatSettings::Italian();
        QTemporaryDir probeDir;
        if (!Disk(probeDir.filePath(QStringLiteral("probe")), 64).mounted)
            QSKIP("tmpfs cannot be mounted here: the backup disks need root (mount -t tmpfs)");
    }
    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>();
        QVERIFY(m_dir->isValid());
        ClearDriveTable();
    }
    void cleanup()
    {
        m_disks.clear();
        m_dir.reset();
    }

    void publishedProperties()
    {
        TMyBackup b;
        QCOMPARE(ComponentToString(&b),
                 QStringLiteral("object _: TMyBackup\n  DrivePath = 'A:/'\n  FilesPath = 'C:/'\n  FilesToBackup = ()\n"
                                "  FilesRestored = ()\n  BackupCaption = ''\n  RestoreCaption = ''\n  ConfirmDelete = True\n"
                                "  Version = ''\n  ID = ''\n  IdLabel = ''\n  BackupName = ''\n  UserName = ''\n"
                                "  UserCompany = ''\n  UserLicence = ''\n  InfosFileName = 'infos.txt'\n  Filter = '*.*'\n"
                                "  Progress = True\nend\n"));
        QVERIFY(b.ShowFileNames());
    }

    void spanningBackupAndRestore()
    {
        // 258,000 bytes measured, 255,000 saved (the sub-folder is not); three disks of 128 KiB.
        const QList<QPair<const char *, int>> files = {{"a.dat", 100000}, {"b.dat", 150000}, {"c.txt", 5000},
                                                       {"empty.txt", 0}, {"sub/x.dat", 3000}};
        for (const auto &[name, size] : files)
            QVERIFY(writeFile(path("src/") + name, pattern(size, size)));
        const QStringList source = listing(path("src"));
        Disk &d1 = disk(128), &d2 = disk(128), &d3 = disk(128);
        insert(d1);
        TMyBackup b;
        configure(b, path("src"));
        b.setBackupCaption(QStringLiteral("Salvataggio"));
        QStringList captions;
        QList<int> percents;
        b.OnEachFile = [&](QObject *, const QString &name) { captions << name + " | " + b.ProgForm()->windowTitle(); };
        b.OnOperationProgress = [&](QObject *, qint32 p, bool &) { percents << p; };
        const TDateTime since = Now();
        {
            DialogWatcher watcher([&](const Dialog &d) {
                insert(d.text.contains(QStringLiteral("#2")) ? d2 : d3);
                d.press(QStringLiteral("OK"));
            });
            b.Backup();
            QCOMPARE(watcher.seen, (QStringList{prompt(2), prompt(3)}));
        }

        // Whole blocks only, and room for the info file always left on each disk.
        const QByteArray bBytes = pattern(150000, 150000);
        QCOMPARE(readFile(d1.path + "/a.dat"), pattern(100000, 100000));
        QCOMPARE(readFile(d1.path + "/b.dat"), bBytes.left(2 * 8192));
        QCOMPARE(readFile(d2.path + "/b.dat"), bBytes.mid(2 * 8192, 15 * 8192));
        QCOMPARE(readFile(d3.path + "/b.dat"), bBytes.mid(17 * 8192));
        QCOMPARE(names(d3.path), (QStringList{"b.dat", "c.txt", "empty.txt", "infos.txt"}));
        for (const Disk *d : {&d1, &d2})
            QVERIFY2(d->freeBytes() >= 4096 && d->freeBytes() < 12288, qPrintable(QString::number(d->freeBytes())));

        // Latin-1, CR LF, keys in order, the empty licence left out.
        const QByteArray head = "User.Name=Mario Rossi\r\nUser.Company=Universit\xe0 di Prova\r\nVersion=3.1\r\nID=SEG-2026\r\n";
        const QByteArray tail = "Backup.Name=Archivio studenti\r\nDisk#=%1\r\nArchiveSize=258000\r\n";
        const QByteArray split = "FileIncompletelySaved=b.dat\r\n";
        checkInfos(d1.infos(), head, QByteArray(tail).replace("%1", "1") + split, since);
        checkInfos(d2.infos(), head, QByteArray(tail).replace("%1", "2") + split, since);
        checkInfos(d3.infos(), head, QByteArray(tail).replace("%1", "3"), since);

        QVERIFY(std::is_sorted(percents.begin(), percents.end()));
        QCOMPARE(percents.last(), 99);
        // The backup's caption lasts until the tree is measured, a nested operation.
        QCOMPARE(captions.first(), QStringLiteral(" | Salvataggio"));
        QVERIFY(captions.contains(QStringLiteral("Copia di a.dat | ")));
        QCOMPARE(listing(path("src")), source);

        // Restore, the user typing another drive for the second disk.
        SetDriveFolder(QChar('B'), d2.path);
        insert(d1);
        TMyBackup r;
        configure(r, path("restored/here"));
        r.setRestoreCaption(QStringLiteral("Ripristino"));
        QStringList restoreCaptions;
        r.OnEachFile = [&](QObject *, const QString &) { restoreCaptions << r.ProgForm()->windowTitle(); };
        DialogWatcher restoreWatcher([&](const Dialog &d) {
            QCOMPARE(d.editText(), d.text.contains(QStringLiteral("#2")) ? QStringLiteral("A:/") : QStringLiteral("B:/"));
            if (d.text.contains(QStringLiteral("#2")))
                d.type(QStringLiteral("B:/"));
            else
                SetDriveFolder(QChar('B'), d3.path);
            d.press(QStringLiteral("OK"));
        });
        r.Restore();
        QCOMPARE(restoreWatcher.seen, (QStringList{prompt(2), prompt(3, 'B')}));
        QCOMPARE(r.FilesRestored(), (QStringList{"A:/a.dat", "A:/b.dat", "A:/infos.txt", "B:/b.dat", "B:/infos.txt",
                                                 "B:/b.dat", "B:/c.txt", "B:/empty.txt", "B:/infos.txt"}));
        // The info files are restored too, one after the other.
        QCOMPARE(readFile(path("restored/here/infos.txt")), d1.infos() + d2.infos() + d3.infos());
        QVERIFY(QFile::remove(path("restored/here/infos.txt")));
        QVERIFY(QDir(path("src/sub")).removeRecursively());
        QCOMPARE(listing(path("restored/here")), listing(path("src")));
        restoreCaptions.removeDuplicates();
        QCOMPARE(restoreCaptions, QStringList{"Ripristino"});
    }

    // A block that fills the room exactly stays; the next one moves whole to the next disk,
    // which is emptied first without changing the backup's total.
    void blockThatFitsExactly()
    {
        QVERIFY(writeFile(path("src/f.dat"), pattern(8 * 8192, 5)));
        Disk &d1 = disk(64), &d2 = disk(64); // 64 KiB: room for seven blocks
        QVERIFY(writeFile(d2.path + "/old/x.bin", pattern(4000)));
        insert(d1);
        TMyBackup b;
        configure(b, path("src"));
        b.setConfirmDelete(false);
        QList<int> percents;
        b.OnOperationProgress = [&](QObject *, qint32 p, bool &) { percents << p; };
        DialogWatcher watcher([&](const Dialog &d) {
            insert(d2);
            d.press(QStringLiteral("OK"));
        });
        b.Backup();
        QCOMPARE(readFile(d1.path + "/f.dat").size(), 7 * 8192);
        QCOMPARE(names(d2.path), (QStringList{"f.dat", "infos.txt"}));
        QCOMPARE(readFile(d2.path + "/f.dat").size(), 8192);
        QVERIFY(d2.infos().contains("\r\nArchiveSize=65536\r\n"));
        // Halves round to even, as the framework rounds.
        QCOMPARE(percents, (QList<int>{12, 25, 38, 50, 62, 75, 88, 100}));
    }

    // A list line in another folder saves the file of the same name from FilesPath.
    void filesToBackup()
    {
        QVERIFY(writeFile(path("src/a.dat"), "from FilesPath"));
        QVERIFY(writeFile(path("src/b.dat"), "not listed"));
        QVERIFY(writeFile(path("elsewhere/a.dat"), "from elsewhere"));
        insert(disk(64));
        TMyBackup b;
        configure(b, path("src"));
        b.setConfirmDelete(false);
        b.setFilesToBackup({path("elsewhere/a.dat")});
        b.Backup();
        QCOMPARE(names(m_disks[0]->path), (QStringList{"a.dat", "infos.txt"}));
        QCOMPARE(readFile(m_disks[0]->path + "/a.dat"), QByteArray("from FilesPath"));
        b.setFilesToBackup({QStringLiteral("elsewhere/missing.dat")});
        QCOMPARE(raised<EFOpenError>([&] { b.Backup(); }),
                 QStringLiteral("Errore durante la creazione di \"elsewhere/missing.dat\"!"));
    }

    void backupErrors_data()
    {
        QTest::addColumn<QString>("drivePath");
        QTest::addColumn<QString>("filesPath");
        QTest::addColumn<QString>("message");
        const QString invalid = QStringLiteral("Dovete indicare un percorso valido per l'unità di salvataggio");
        QTest::newRow("letter alone") << "A" << "src" << invalid;
        QTest::newRow("digit") << "1:/" << "src" << invalid;
        QTest::newRow("no colon") << "AB/" << "src" << invalid;
        QTest::newRow("missing folder") << "A:/" << "nowhere" << "Il percorso \"%1\" non esiste";
    }
    void backupErrors()
    {
        QFETCH(QString, drivePath);
        QFETCH(QString, filesPath);
        QFETCH(QString, message);
        QVERIFY(writeFile(path("src/x"), "x"));
        insert(disk(64));
        TMyBackup b;
        configure(b, path(filesPath));
        b.setDrivePath(drivePath);
        QStringList events;
        b.OnStartOperation = [&](QObject *) { events << "start"; };
        b.OnFinishOperation = [&](QObject *) { events << "finish"; };
        QCOMPARE(raised<Exception>([&] { b.Backup(); }), QString(message).replace(QStringLiteral("%1"), path(filesPath)));
        QCOMPARE(events, (QStringList{"start", "finish"}));
        QVERIFY(names(m_disks[0]->path).isEmpty());
    }

    void nonEmptyDisk_data()
    {
        QTest::addColumn<bool>("confirm");
        QTest::addColumn<QString>("answer");
        QTest::addColumn<bool>("immutable");
        QTest::addColumn<QStringList>("dialogs");
        const QString question = QStringLiteral("CONFERMA: L'unità di salvataggio contiene degli archivi. Li elimino ?");
        QTest::newRow("emptied after Yes") << true << "Si" << false << QStringList{question};
        QTest::newRow("emptied without asking") << false << "" << false << QStringList();
        QTest::newRow("No: another disk is asked for") << true << "No" << false << QStringList{question, prompt(1)};
        QTest::newRow("cannot be emptied")
            << false << "" << true << QStringList{QStringLiteral("ERRORE: Impossibile eliminare tutti gli archivi !"), prompt(1)};
    }
    void nonEmptyDisk()
    {
        QFETCH(bool, confirm);
        QFETCH(QString, answer);
        QFETCH(bool, immutable);
        QFETCH(QStringList, dialogs);
        QVERIFY(writeFile(path("src/new.txt"), "new"));
        Disk &d = disk(256);
        QVERIFY(writeFile(d.path + "/old.txt", "old") && writeFile(d.path + "/.hidden", "old"));
        QVERIFY(writeFile(d.path + "/folder/deep/old.bin", pattern(20000)));
        if (immutable && !setImmutable(d.path + "/folder/deep/old.bin", true))
            QSKIP("the file system refuses the immutable flag");
        insert(d);
        TMyBackup b;
        configure(b, path("src"));
        b.setConfirmDelete(confirm);
        DialogWatcher watcher([&](const Dialog &dialog) {
            if (dialog.title == QStringLiteral("CONFERMA"))
                dialog.press(answer);
            else
                dialog.press(dialog.title == QStringLiteral("Messaggio di sistema") ? QStringLiteral("Annulla") : QStringLiteral("OK"));
        });
        const QString error = raised<EAbort>([&] { b.Backup(); });
        if (immutable)
            setImmutable(d.path + "/folder/deep/old.bin", false);
        QCOMPARE(watcher.seen, dialogs);
        const bool saved = dialogs.size() < 2;
        QCOMPARE(error, saved ? QStringLiteral("(no error)") : QString());
        QCOMPARE(names(d.path).contains(QStringLiteral("new.txt")), saved);
        QCOMPARE(names(d.path).contains(QStringLiteral("folder/deep/old.bin")), !saved);
        QVERIFY(b.SendEvents());
    }

    // Nothing is lost: a backup stopped half-way leaves the source as it was.
    void cancelledBackup()
    {
        QVERIFY(writeFile(path("src/a.dat"), pattern(100000)));
        insert(disk(512));
        TMyBackup b;
        configure(b, path("src"));
        int progress = 0;
        b.OnOperationProgress = [&](QObject *, qint32, bool &cancel) { cancel = ++progress == 5; };
        QStringList events;
        b.OnFinishOperation = [&](QObject *) { events << "finish"; };
        QCOMPARE(raised<Exception>([&] { b.Backup(); }), QStringLiteral("Operazione interrotta dall'utente!"));
        QCOMPARE(progress, 5);
        QCOMPARE(events, QStringList{"finish"});
        QCOMPARE(readFile(path("src/a.dat")), pattern(100000));
        QVERIFY(!QFile::exists(m_disks[0]->path + "/infos.txt"));
    }

    // A write that the disk takes only in part ends the backup, naming the disk's file.
    void shortWrite()
    {
        QVERIFY(writeFile(path("src/big.dat"), pattern(40000)));
        insert(disk(512));
        TMyBackup b;
        configure(b, path("src"));
        b.setProgress(false);
        struct rlimit old;
        QVERIFY(::getrlimit(RLIMIT_FSIZE, &old) == 0);
        const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
        struct rlimit limit = old;
        limit.rlim_cur = 20000;
        QVERIFY(::setrlimit(RLIMIT_FSIZE, &limit) == 0);
        const QString message = raised<Exception>([&] { b.Backup(); });
        ::setrlimit(RLIMIT_FSIZE, &old);
        std::signal(SIGXFSZ, oldHandler);
        QCOMPARE(message, QStringLiteral("Impossibile scrivere sull'archivio A:/big.dat"));
    }

    void restoreDiskChecks_data()
    {
        QTest::addColumn<QString>("first");  // the disk in the drive when the restore starts
        QTest::addColumn<QString>("second"); // the disk inserted at the first prompt for #2
        QTest::addColumn<QStringList>("dialogs");
        const QString notFirst = QStringLiteral("ATTENZIONE: Il disco non è il primo utilizzato durante la copia di salvataggio.");
        QTest::newRow("second disk first") << "d2" << "d2" << QStringList{notFirst, prompt(1), prompt(2)};
        QTest::newRow("another series first") << "other" << "d2" << QStringList{kWrongSeries, prompt(1), prompt(2)};
        QTest::newRow("no info file first") << "blank" << "d2" << QStringList{kNoInfos, prompt(1), prompt(2)};
        // Cancel does not end the restore here: the disk is checked and asked for again.
        QTest::newRow("first prompt cancelled")
            << "d2!" << "d2" << QStringList{notFirst, prompt(1), notFirst, prompt(1), prompt(2)};
        // Each error only when the value expected is not empty; then the prompt comes again.
        QTest::newRow("later disk without info file")
            << "d1" << "blank"
            << QStringList{prompt(2), kNoInfos,
                           "ERRORE: Il disco contiene una copia di salvataggio di \"\" invece che di \"Archivio studenti\".",
                           kWrongSeries, prompt(2)};
        QTest::newRow("later disk of another backup")
            << "d1" << "other"
            << QStringList{prompt(2),
                           "ERRORE: Il disco contiene una copia di salvataggio di \"Archivio docenti\" invece che di \"Archivio studenti\".",
                           kWrongSeries, prompt(2)};
        QTest::newRow("first disk again") << "d1" << "d1" << QStringList{prompt(2), prompt(2)};
    }
    void restoreDiskChecks()
    {
        QFETCH(QString, first);
        QFETCH(QString, second);
        QFETCH(QStringList, dialogs);
        // 60,000 bytes: seven blocks on the first disk of 64 KiB, the rest on the second.
        QVERIFY(writeFile(path("src/a.dat"), pattern(60000, 1)));
        backupOnto(2, 64, path("src"));
        Disk &other = disk(64), &blank = disk(64);
        QVERIFY(writeFile(other.path + "/infos.txt", "ID=ALTRO\r\nBackup.Name=Archivio docenti\r\nDisk#=1\r\n"));
        const QMap<QString, Disk *> named{
            {"d1", m_disks[0].get()}, {"d2", m_disks[1].get()}, {"other", &other}, {"blank", &blank}};
        insert(*named.value(QString(first).remove('!')));
        TMyBackup r;
        configure(r, path("restored"));
        r.setProgress(false);
        int firstPrompts = 0, secondPrompts = 0;
        DialogWatcher watcher([&](const Dialog &d) {
            if (d.title != QStringLiteral("Messaggio di sistema"))
                return d.press(QStringLiteral("OK"));
            if (d.text.contains(QStringLiteral("#2")))
                insert(++secondPrompts == 1 ? *named.value(second) : *m_disks[1]);
            else if (++firstPrompts == 1 && first.endsWith('!'))
                return d.press(QStringLiteral("Annulla"));
            else
                insert(*m_disks[0]);
            d.press(QStringLiteral("OK"));
        });
        r.Restore();
        QCOMPARE(watcher.seen, dialogs);
        QCOMPARE(readFile(path("restored/a.dat")), pattern(60000, 1));
    }

    // Restored data is appended, also to a file that was there before; nothing is deleted.
    void restoreAppends()
    {
        QVERIFY(writeFile(path("src/a.txt"), "restored") && writeFile(path("src/b.txt"), "b"));
        backupOnto(1, 64, path("src"));
        QVERIFY(writeFile(path("dst/a.txt"), "already here, ") && writeFile(path("dst/mine.txt"), "mine"));
        TMyBackup r;
        configure(r, path("dst"));
        r.setProgress(false);
        r.setFilter(QStringLiteral("a.*"));
        r.Restore();
        QCOMPARE(readFile(path("dst/a.txt")), QByteArray("already here, restored"));
        QCOMPARE(r.FilesRestored(), QStringList{"A:/a.txt"});
        QCOMPARE(names(path("dst")), (QStringList{"a.txt", "mine.txt"}));
    }

    // Cancelling the prompt for a missing disk ends the restore silently, operation closed.
    void noMediumCancelled()
    {
        TMyBackup r;
        configure(r, path("dst"));
        QStringList events;
        r.OnStartOperation = [&](QObject *) { events << "start"; };
        r.OnFinishOperation = [&](QObject *) { events << "finish"; };
        DialogWatcher watcher([](const Dialog &d) { d.press(QStringLiteral("Annulla")); });
        QCOMPARE(raised<EAbort>([&] { r.Restore(); }), QString());
        QCOMPARE(watcher.seen, QStringList{prompt(1)});
        QCOMPARE(events, (QStringList{"start", "finish"}));
    }
};

QTEST_MAIN(tst_MyBackup)
#include "tst_mybackup.moc"
