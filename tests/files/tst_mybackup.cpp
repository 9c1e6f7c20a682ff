// The multi-disk backup on real small file systems: each disk is a tmpfs mounted for the test
// and entered in the drive table; "changing the disk" puts another one behind the letter while
// the real prompt is on screen, and the prompt is answered with its own buttons.
#include "ComponentStream.h"
#include "DateTime.h"
#include "Drives.h"
#include "Exceptions.h"
#include "FileTestHelpers.h"
#include "FormatSettings.h"
#include "Formatting.h"
#include "MyBackup.h"
#include "prgform.h"

#include <QtTest>

#include <csignal>
#include <memory>

#include <fcntl.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/statvfs.h>
#include <unistd.h>

using namespace mattoni;
using namespace filetest;

namespace {

// A removable disk: a tmpfs of the given size mounted on a folder of its own.
class Disk
{
public:
    Disk(const QString &mountPoint, int kib)
        : path(mountPoint)
    {
        QDir().mkpath(path);
        const QByteArray options = "size=" + QByteArray::number(kib) + "k,mode=0755";
        mounted = ::mount("tmpfs", QFile::encodeName(path).constData(), "tmpfs", 0, options.constData()) == 0;
    }
    ~Disk()
    {
        if (mounted)
            ::umount2(QFile::encodeName(path).constData(), MNT_DETACH);
    }
    qint64 freeBytes() const
    {
        struct statvfs st;
        return ::statvfs(QFile::encodeName(path).constData(), &st) == 0 ? qint64(st.f_bavail) * qint64(st.f_frsize) : -1;
    }
    QByteArray infos() const { return readFile(path + QStringLiteral("/infos.txt")); }

    QString path;
    bool mounted = false;
};

QString prompt(int disk, QChar drive)
{
    return QStringLiteral("Messaggio di sistema: Prego, inserire il disco #%1 nell'unità di salvataggio %2:").arg(disk).arg(drive);
}

const QString kNoInfos = QStringLiteral("ATTENZIONE: Il disco non contiene alcuna copia di salvataggio.");
const QString kWrongSeries = QStringLiteral("ERRORE: Il disco non corrisponde alla copia di salvataggio: Segreteria 2026");
const QString kNotFirst = QStringLiteral("ATTENZIONE: Il disco non è il primo utilizzato durante la copia di salvataggio.");

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
    void insert(const Disk &d) { SetDriveFolder(QChar('A'), d.path); }

    void configure(TMyBackup &b, const QString &filesPath)
    {
        b.setDrivePath(QStringLiteral("A:/"));
        b.setFilesPath(filesPath);
        b.setID(QStringLiteral("SEG-2026"));
        b.setIdLabel(QStringLiteral("Segreteria 2026"));
        b.setBackupName(QStringLiteral("Archivio studenti"));
        b.setUserName(QStringLiteral("Mario Rossi"));
        b.setUserCompany(QStringLiteral("Università di Prova"));
        b.setUserLicence(QStringLiteral("L-123"));
        b.setVersion(QStringLiteral("3.1"));
    }

    // The folder that spans three disks of 128 KiB: the sub-folder is measured, not saved.
    void makeSource(const QString &root)
    {
        QVERIFY(writeFile(root + "/a.dat", pattern(100000, 1)));
        QVERIFY(writeFile(root + "/b.dat", pattern(150000, 2)));
        QVERIFY(writeFile(root + "/c.txt", pattern(5000, 3)));
        QVERIFY(writeFile(root + "/empty.txt", QByteArray()));
        QVERIFY(writeFile(root + "/sub/x.dat", pattern(3000, 4)));
    }

    // Backs the source up onto three fresh disks, changing them at the real prompts.
    void backupOntoThreeDisks(TMyBackup &b)
    {
        Disk &d1 = disk(128), &d2 = disk(128), &d3 = disk(128);
        insert(d1);
        DialogWatcher watcher([&](const Dialog &d) {
            if (d.title == QStringLiteral("Messaggio di sistema"))
                insert(d.text.contains(QStringLiteral("#2")) ? d2 : d3);
            d.press(QStringLiteral("OK"));
        });
        b.Backup();
        QCOMPARE(watcher.seen, (QStringList{prompt(2, 'A'), prompt(3, 'A')}));
    }

    // 60,000 bytes: seven blocks on the first disk of 64 KiB, the rest on the second.
    void backupOntoTwoDisks()
    {
        QVERIFY(writeFile(path("src/a.dat"), pattern(60000, 1)));
        TMyBackup b;
        configure(b, path("src"));
        b.setProgress(false);
        Disk &d1 = disk(64), &d2 = disk(64);
        insert(d1);
        DialogWatcher watcher([&](const Dialog &d) {
            insert(d2);
            d.press(QStringLiteral("OK"));
        });
        b.Backup();
        QCOMPARE(watcher.seen, QStringList{prompt(2, 'A')});
    }

    // The info file of a disk: every line of the expected order; Date and Time are those of a
    // moment between Before and now.
    static void checkInfos(const QByteArray &actual, const QByteArray &before, const QByteArray &after,
                           TDateTime since)
    {
        const QList<QByteArray> lines = actual.split('\n');
        QByteArray date, time;
        for (const QByteArray &line : lines) {
            if (line.startsWith("Date="))
                date = line.mid(5).chopped(1);
            if (line.startsWith("Time="))
                time = line.mid(5).chopped(1);
        }
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
        Disk probe(probeDir.filePath(QStringLiteral("probe")), 64);
        if (!probe.mounted)
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
        QCOMPARE(ComponentToString(&b), QStringLiteral("object _: TMyBackup\n"
                                                       "  DrivePath = 'A:/'\n"
                                                       "  FilesPath = 'C:/'\n"
                                                       "  FilesToBackup = ()\n"
                                                       "  FilesRestored = ()\n"
                                                       "  BackupCaption = ''\n"
                                                       "  RestoreCaption = ''\n"
                                                       "  ConfirmDelete = True\n"
                                                       "  Version = ''\n"
                                                       "  ID = ''\n"
                                                       "  IdLabel = ''\n"
                                                       "  BackupName = ''\n"
                                                       "  UserName = ''\n"
                                                       "  UserCompany = ''\n"
                                                       "  UserLicence = ''\n"
                                                       "  InfosFileName = 'infos.txt'\n"
                                                       "  Filter = '*.*'\n"
                                                       "  Progress = True\n"
                                                       "end\n"));
        QVERIFY(b.ShowFileNames());
    }

    void spanningBackupAndRestore()
    {
        makeSource(path("src"));
        const QStringList source = listing(path("src"));
        TMyBackup b;
        configure(b, path("src"));
        b.setBackupCaption(QStringLiteral("Salvataggio"));
        QStringList captions;
        QList<int> percents;
        b.OnEachFile = [&](QObject *, const QString &name) {
            captions << name + QStringLiteral(" | ") + b.ProgForm()->windowTitle();
        };
        b.OnOperationProgress = [&](QObject *, qint32 p, bool &) { percents << p; };
        const TDateTime since = Now();
        backupOntoThreeDisks(b);
        const Disk &d1 = *m_disks[0], &d2 = *m_disks[1], &d3 = *m_disks[2];

        // Whole blocks only, and room for the info file always left on each disk.
        QCOMPARE(readFile(d1.path + "/a.dat"), pattern(100000, 1));
        QCOMPARE(readFile(d1.path + "/b.dat"), pattern(150000, 2).left(2 * 8192));
        QCOMPARE(readFile(d2.path + "/b.dat"), pattern(150000, 2).mid(2 * 8192, 15 * 8192));
        QCOMPARE(readFile(d3.path + "/b.dat"), pattern(150000, 2).mid(17 * 8192));
        QCOMPARE(names(d3.path), (QStringList{"b.dat", "c.txt", "empty.txt", "infos.txt"}));
        for (const Disk *d : {&d1, &d2})
            QVERIFY2(d->freeBytes() >= 4096 && d->freeBytes() < 12288, qPrintable(QString::number(d->freeBytes())));

        const QByteArray head = "User.Name=Mario Rossi\r\nUser.Company=Universit\xe0 di Prova\r\nUser.Licence=L-123\r\n"
                                "Version=3.1\r\nID=SEG-2026\r\n";
        const QByteArray name = "Backup.Name=Archivio studenti\r\n";
        checkInfos(d1.infos(), head, name + "Disk#=1\r\nArchiveSize=258000\r\nFileIncompletelySaved=b.dat\r\n", since);
        checkInfos(d2.infos(), head, name + "Disk#=2\r\nArchiveSize=258000\r\nFileIncompletelySaved=b.dat\r\n", since);
        checkInfos(d3.infos(), head, name + "Disk#=3\r\nArchiveSize=258000\r\n", since);

        // The bar runs over the measured tree, which holds a sub-folder that is not saved.
        QVERIFY(std::is_sorted(percents.begin(), percents.end()));
        QCOMPARE(percents.last(), 99);
        // The backup's caption lasts until the tree is measured, a nested operation.
        QCOMPARE(captions.first(), QStringLiteral(" | Salvataggio"));
        QVERIFY(captions.contains(QStringLiteral("Copia di a.dat | ")));
        QVERIFY(!captions.contains(QStringLiteral("Copia di a.dat | Salvataggio")));
        QCOMPARE(listing(path("src")), source);

        // Restore, the user typing another drive for the second disk.
        SetDriveFolder(QChar('B'), d2.path);
        insert(d1);
        TMyBackup r;
        configure(r, path("restored/here"));
        r.setRestoreCaption(QStringLiteral("Ripristino"));
        QStringList restoreCaptions;
        r.OnEachFile = [&](QObject *, const QString &) { restoreCaptions << r.ProgForm()->windowTitle(); };
        DialogWatcher watcher([&](const Dialog &d) {
            if (d.text.contains(QStringLiteral("#2"))) {
                QCOMPARE(d.editText(), QStringLiteral("A:/"));
                d.type(QStringLiteral("B:/"));
            } else {
                QCOMPARE(d.editText(), QStringLiteral("B:/"));
                SetDriveFolder(QChar('B'), d3.path);
            }
            d.press(QStringLiteral("OK"));
        });
        r.Restore();
        QCOMPARE(watcher.seen, (QStringList{prompt(2, 'A'), prompt(3, 'B')}));
        QCOMPARE(r.DrivePath(), QStringLiteral("B:/"));
        QCOMPARE(r.FilesRestored(), (QStringList{"A:/a.dat", "A:/b.dat", "A:/infos.txt", "B:/b.dat", "B:/infos.txt",
                                                 "B:/b.dat", "B:/c.txt", "B:/empty.txt", "B:/infos.txt"}));
        QFile::remove(path("src/infos.txt"));
        QStringList restored = listing(path("restored/here"));
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
        QCOMPARE(readFile(d2.path + "/f.dat").size(), 8192);
        QCOMPARE(names(d2.path), (QStringList{"f.dat", "infos.txt"}));
        QCOMPARE(watcher.seen, QStringList{prompt(2, 'A')});
        QVERIFY(d2.infos().contains("\r\nArchiveSize=65536\r\n"));
        // Halves round to even, as the framework rounds.
        QCOMPARE(percents, (QList<int>{12, 25, 38, 50, 62, 75, 88, 100}));
    }

    void infoFile_data()
    {
        QTest::addColumn<QString>("company");
        QTest::addColumn<QString>("infosName");
        QTest::addColumn<QByteArray>("head");
        QTest::newRow("every value") << "ACME" << "infos.txt"
                                     << QByteArray("User.Name=Mario Rossi\r\nUser.Company=ACME\r\nUser.Licence=L-123\r\n");
        QTest::newRow("empty company: no line") << "" << "INFO.DAT"
                                                << QByteArray("User.Name=Mario Rossi\r\nUser.Licence=L-123\r\n");
    }
    void infoFile()
    {
        QFETCH(QString, company);
        QFETCH(QString, infosName);
        QFETCH(QByteArray, head);
        QVERIFY(writeFile(path("src/one.txt"), "12345"));
        insert(disk(64));
        TMyBackup b;
        configure(b, path("src"));
        b.setUserCompany(company);
        b.setInfosFileName(infosName);
        b.setVersion(QString());
        const TDateTime since = Now();
        b.Backup();
        checkInfos(readFile(m_disks[0]->path + "/" + infosName), head + "ID=SEG-2026\r\n",
                   "Backup.Name=Archivio studenti\r\nDisk#=1\r\nArchiveSize=5\r\n", since);
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
        b.setFilesToBackup({path("elsewhere/a.dat")});
        b.Backup();
        QCOMPARE(names(m_disks[0]->path), (QStringList{"a.dat", "infos.txt"}));
        QCOMPARE(readFile(m_disks[0]->path + "/a.dat"), QByteArray("from FilesPath"));

        b.setFilesToBackup({QStringLiteral("elsewhere/missing.dat")});
        b.setConfirmDelete(false);
        QCOMPARE(raised<EFOpenError>([&] { b.Backup(); }),
                 QStringLiteral("Errore durante la creazione di \"elsewhere/missing.dat\"!"));
        QVERIFY(!b.IsWorking());
    }

    void backupErrors_data()
    {
        QTest::addColumn<QString>("drivePath");
        QTest::addColumn<QString>("filesPath");
        QTest::addColumn<QString>("message");
        const QString invalid = QStringLiteral("Dovete indicare un percorso valido per l'unità di salvataggio");
        QTest::newRow("empty drive path") << "" << "src" << invalid;
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
        QVERIFY(!b.IsWorking());
        QVERIFY(names(m_disks[0]->path).isEmpty());
    }

    void nonEmptyDisk_data()
    {
        QTest::addColumn<bool>("confirm");
        QTest::addColumn<QString>("answer");
        QTest::addColumn<bool>("immutable");
        QTest::addColumn<QStringList>("dialogs");
        QTest::addColumn<bool>("saved");
        const QString question = QStringLiteral("CONFERMA: L'unità di salvataggio contiene degli archivi. Li elimino ?");
        QTest::newRow("emptied after Yes") << true << "Si" << false << QStringList{question} << true;
        QTest::newRow("emptied without asking") << false << "" << false << QStringList() << true;
        QTest::newRow("No: another disk is asked for")
            << true << "No" << false << QStringList{question, prompt(1, 'A')} << false;
        QTest::newRow("cannot be emptied")
            << false << "" << true
            << QStringList{QStringLiteral("ERRORE: Impossibile eliminare tutti gli archivi !"), prompt(1, 'A')} << false;
    }
    void nonEmptyDisk()
    {
        QFETCH(bool, confirm);
        QFETCH(QString, answer);
        QFETCH(bool, immutable);
        QFETCH(QStringList, dialogs);
        QFETCH(bool, saved);
        QVERIFY(writeFile(path("src/new.txt"), "new"));
        Disk &d = disk(256);
        QVERIFY(writeFile(d.path + "/old.txt", "old"));
        QVERIFY(writeFile(d.path + "/.hidden", "old"));
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
            else if (dialog.title == QStringLiteral("Messaggio di sistema"))
                dialog.press(QStringLiteral("Annulla"));
            else
                dialog.press(QStringLiteral("OK"));
        });
        if (saved) {
            b.Backup();
            QCOMPARE(names(d.path), (QStringList{"infos.txt", "new.txt"}));
        } else {
            QCOMPARE(raised<EAbort>([&] { b.Backup(); }), QString());
            QVERIFY(names(d.path).contains(QStringLiteral("folder/deep/old.bin")));
        }
        if (immutable)
            setImmutable(d.path + "/folder/deep/old.bin", false);
        QCOMPARE(watcher.seen, dialogs);
        QVERIFY(b.SendEvents());
        QVERIFY(!b.IsWorking());
    }

    // Nothing is lost: a backup stopped half-way leaves the source as it was.
    void cancelledBackup()
    {
        makeSource(path("src"));
        const QStringList source = listing(path("src"));
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
        QCOMPARE(listing(path("src")), source);
        QVERIFY(!QFile::exists(m_disks[0]->path + "/infos.txt"));
    }

    // A write that the disk takes only in part ends the backup with the disk's file named.
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

    void firstDisk_data()
    {
        QTest::addColumn<QString>("inserted");
        QTest::addColumn<bool>("cancelFirstPrompt");
        QTest::addColumn<QStringList>("dialogs");
        QTest::newRow("second disk first") << "second" << false << QStringList{kNotFirst, prompt(1, 'A')};
        QTest::newRow("another series") << "other" << false << QStringList{kWrongSeries, prompt(1, 'A')};
        QTest::newRow("no info file") << "blank" << false << QStringList{kNoInfos, prompt(1, 'A')};
        // Cancel does not end the restore here: the disk is checked again and asked for again.
        QTest::newRow("prompt cancelled")
            << "second" << true << QStringList{kNotFirst, prompt(1, 'A'), kNotFirst, prompt(1, 'A')};
    }
    void firstDisk()
    {
        QFETCH(QString, inserted);
        QFETCH(bool, cancelFirstPrompt);
        QFETCH(QStringList, dialogs);
        backupOntoTwoDisks();
        Disk &d1 = *m_disks[0], &d2 = *m_disks[1];
        Disk &other = disk(64);
        QVERIFY(writeFile(other.path + "/infos.txt", "ID=ALTRO\r\nBackup.Name=Archivio studenti\r\nDisk#=1\r\n"));
        Disk &blank = disk(64);

        insert(inserted == "second" ? d2 : inserted == "other" ? other : blank);
        TMyBackup r;
        configure(r, path("restored"));
        r.setProgress(false);
        int prompts = 0;
        DialogWatcher watcher([&](const Dialog &d) {
            if (d.title != QStringLiteral("Messaggio di sistema")) {
                d.press(QStringLiteral("OK"));
            } else if (cancelFirstPrompt && ++prompts == 1) {
                d.press(QStringLiteral("Annulla"));
            } else {
                insert(d.text.contains(QStringLiteral("#1")) ? d1 : d2);
                d.press(QStringLiteral("OK"));
            }
        });
        r.Restore();
        QCOMPARE(watcher.seen, dialogs + QStringList{prompt(2, 'A')});
        QCOMPARE(readFile(path("restored/a.dat")), pattern(60000, 1));
    }

    void laterDisk_data()
    {
        QTest::addColumn<QString>("inserted");
        QTest::addColumn<QStringList>("dialogs");
        // Each error only when the value expected is not empty; then the prompt comes again.
        QTest::newRow("no info file")
            << "blank"
            << QStringList{kNoInfos,
                           "ERRORE: Il disco contiene una copia di salvataggio di \"\" invece che di \"Archivio studenti\".",
                           kWrongSeries};
        QTest::newRow("another backup")
            << "other"
            << QStringList{"ERRORE: Il disco contiene una copia di salvataggio di \"Archivio docenti\" invece che di \"Archivio studenti\".",
                           kWrongSeries};
        QTest::newRow("first disk again") << "first" << QStringList();
    }
    void laterDisk()
    {
        QFETCH(QString, inserted);
        QFETCH(QStringList, dialogs);
        backupOntoTwoDisks();
        Disk &d1 = *m_disks[0], &d2 = *m_disks[1];
        Disk &other = disk(64);
        QVERIFY(writeFile(other.path + "/infos.txt", "ID=ALTRO\r\nBackup.Name=Archivio docenti\r\nDisk#=2\r\n"));
        Disk &blank = disk(64);

        insert(d1);
        TMyBackup r;
        configure(r, path("restored"));
        r.setProgress(false);
        int prompts = 0;
        DialogWatcher watcher([&](const Dialog &d) {
            if (d.title == QStringLiteral("Messaggio di sistema"))
                insert(++prompts == 1 ? (inserted == "blank" ? blank : inserted == "other" ? other : d1) : d2);
            d.press(QStringLiteral("OK"));
        });
        r.Restore();
        QCOMPARE(watcher.seen, QStringList{prompt(2, 'A')} + dialogs + QStringList{prompt(2, 'A')});
        QCOMPARE(readFile(path("restored/a.dat")), pattern(60000, 1));
        // The disks are only read.
        QCOMPARE(readFile(d1.path + "/a.dat").size() + readFile(d2.path + "/a.dat").size(), 60000);
    }

    // Restored data is appended, also to a file that was there before; nothing is deleted.
    void restoreAppends()
    {
        QVERIFY(writeFile(path("src/a.txt"), "restored"));
        QVERIFY(writeFile(path("src/b.txt"), "b"));
        insert(disk(64));
        TMyBackup b;
        configure(b, path("src"));
        b.setProgress(false);
        b.Backup();
        QVERIFY(writeFile(path("dst/a.txt"), "already here, "));
        QVERIFY(writeFile(path("dst/mine.txt"), "mine"));
        TMyBackup r;
        configure(r, path("dst"));
        r.setProgress(false);
        r.setFilter(QStringLiteral("a.*"));
        r.Restore();
        QCOMPARE(readFile(path("dst/a.txt")), QByteArray("already here, restored"));
        QCOMPARE(readFile(path("dst/mine.txt")), QByteArray("mine"));
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
        QCOMPARE(watcher.seen, QStringList{prompt(1, 'A')});
        QCOMPARE(events, (QStringList{"start", "finish"}));
        QVERIFY(!r.IsWorking());
        QVERIFY(QFileInfo(path("dst")).isDir());
    }
};

QTEST_MAIN(tst_MyBackup)
#include "tst_mybackup.moc"
