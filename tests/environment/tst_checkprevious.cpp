// The instance check with real processes: copies of instance_copy, one of them run by another user
// and one under another file name, counted by TooManyIstances; two copies on one X server, the
// first minimised by a window manager and brought back by the second; a record left by a copy that
// was killed.
#include "CheckPrevious.h"

#include <QtTest>

#include <xcb/xcb.h>

#include <grp.h>
#include <pwd.h>
#include <unistd.h>

#include <memory>

using namespace mattoni;

namespace {

constexpr uid_t NobodyId = 65534;

// A running copy of instance_copy.
class Copy
{
public:
    Copy(const QStringList &arguments, bool asNobody = false, const QString &program = QStringLiteral(INSTANCE_COPY))
    {
        if (asNobody) {
            m_process.setChildProcessModifier([] {
                if (setgroups(0, nullptr) != 0 || setgid(NobodyId) != 0 || setuid(NobodyId) != 0)
                    _exit(126);
            });
        }
        // A sanitizer's report in a copy shows in the test's log.
        m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_process.start(program, arguments);
    }
    ~Copy()
    {
        m_process.closeWriteChannel();
        if (!m_process.waitForFinished(5000)) {
            m_process.kill();
            m_process.waitForFinished();
        }
    }

    // The next line of output; empty when none comes within the time.
    QString Line(int timeoutMs = 10000)
    {
        QElapsedTimer clock;
        clock.start();
        while (!m_process.canReadLine() && clock.elapsed() < timeoutMs && m_process.state() != QProcess::NotRunning)
            m_process.waitForReadyRead(50);
        return QString::fromLocal8Bit(m_process.readLine()).trimmed();
    }
    QProcess &Process() { return m_process; }
    // The exit code once the copy has ended by itself; -1 when it does not end.
    int ExitCode()
    {
        m_process.closeWriteChannel();
        if (!m_process.waitForFinished(10000) || m_process.exitStatus() != QProcess::NormalExit)
            return -1;
        return m_process.exitCode();
    }

private:
    QProcess m_process;
};

// The one line a copy answers, or its exit code when it fails.
QString runOnce(const QStringList &arguments, bool asNobody = false)
{
    Copy copy(arguments, asNobody);
    const QString line = copy.Line();
    const int code = copy.ExitCode();
    return code == 0 ? line : QStringLiteral("exit code %1").arg(code);
}

// The record as a file of the shared-memory file system.
QString recordFile(const QString &name)
{
    return QStringLiteral("/dev/shm") + name;
}

quint64 recordValue(const QString &name)
{
    QFile f(recordFile(name));
    if (!f.open(QIODevice::ReadOnly) || f.size() != 8)
        return 0;
    quint64 v = 0;
    f.read(reinterpret_cast<char *>(&v), 8);
    return v;
}

// Whether a window manager runs: it holds the root window's substructure redirection, which a
// second client cannot select (asked on a connection of its own, whose selection ends with it).
bool wmRunning()
{
    xcb_connection_t *c = xcb_connect(nullptr, nullptr);
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(c)).data->root;
    const quint32 mask = XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT;
    xcb_generic_error_t *error = xcb_request_check(c, xcb_change_window_attributes_checked(c, root, XCB_CW_EVENT_MASK, &mask));
    const bool taken = error != nullptr;
    free(error);
    xcb_disconnect(c);
    return taken;
}

} // namespace

class tst_CheckPrevious : public QObject
{
    Q_OBJECT

private slots:
    void copiesPerUser();
    void recordName();
    void restoresTheFirstCopy();
    void recordOfAKilledCopy();
};

void tst_CheckPrevious::copiesPerUser()
{
    const bool canSwitchUser = geteuid() == 0;
    QTemporaryDir dir;
    const QString renamed = dir.filePath(QStringLiteral("instance_other"));
    QVERIFY(QFile::copy(QStringLiteral(INSTANCE_COPY), renamed));

    // Two copies of ours, one under another file name and, when we may, one of another user.
    std::vector<std::unique_ptr<Copy>> running;
    running.push_back(std::make_unique<Copy>(QStringList{"wait"}));
    running.push_back(std::make_unique<Copy>(QStringList{"wait"}));
    running.push_back(std::make_unique<Copy>(QStringList{"wait"}, false, renamed));
    if (canSwitchUser)
        running.push_back(std::make_unique<Copy>(QStringList{"wait"}, true));
    for (auto &copy : running)
        QCOMPARE(copy->Line(), QStringLiteral("ready"));
    const auto ended = qScopeGuard([&] {
        for (auto &copy : running)
            QCOMPARE(copy->ExitCode(), 0);
    });

    // Ours: the two waiting copies and the asking one.
    QCOMPARE(runOnce({"count", "1"}), QStringLiteral("too many"));
    QCOMPARE(runOnce({"count", "2"}), QStringLiteral("too many"));
    QCOMPARE(runOnce({"count", "3"}), QStringLiteral("allowed"));
    if (!canSwitchUser)
        QSKIP("not run as root: the copy of another user cannot be started");
    // The other user's: the waiting copy and the asking one.
    QCOMPARE(runOnce({"count", "1"}, true), QStringLiteral("too many"));
    QCOMPARE(runOnce({"count", "2"}, true), QStringLiteral("allowed"));
}

void tst_CheckPrevious::recordName()
{
    const passwd *pw = getpwuid(geteuid());
    QVERIFY(pw);
    QCOMPARE(GetCurrentUserName(), QString::fromLocal8Bit(pw->pw_name));
    const QString user = GetCurrentUserName();
    QString escaped = QStringLiteral(INSTANCE_COPY);
    escaped.replace(QLatin1String("%"), QLatin1String("%25")).replace(QLatin1String("/"), QLatin1String("%2F"));
    QCOMPARE(runOnce({"name"}), "/mattoni-istanza." + user + "." + escaped);
    QCOMPARE(runOnce({"name", "ateneo"}), "/mattoni-istanza." + user + "." + escaped + ".ateneo");

    // A path too long for a name: its SHA-1 instead.
    QTemporaryDir dir;
    QString deep = dir.path();
    for (int i = 0; i < 12; ++i)
        deep += QStringLiteral("/cartella-con-un-nome-lungo-%1").arg(i);
    QVERIFY(QDir().mkpath(deep));
    const QString program = deep + QStringLiteral("/instance_copy");
    QVERIFY(QFile::copy(QStringLiteral(INSTANCE_COPY), program));
    Copy copy({"name", "x"}, false, program);
    const auto ended = qScopeGuard([&] { QCOMPARE(copy.ExitCode(), 0); });
    QString escapedDeep = program;
    escapedDeep.replace(QLatin1String("%"), QLatin1String("%25")).replace(QLatin1String("/"), QLatin1String("%2F"));
    const QString hash = QString::fromLatin1(QCryptographicHash::hash(escapedDeep.toLocal8Bit(), QCryptographicHash::Sha1).toHex());
    QCOMPARE(copy.Line(), "/mattoni-istanza." + user + "." + hash + ".x");
}

void tst_CheckPrevious::restoresTheFirstCopy()
{
    // Minimising needs a window manager. twm is small and keeps to ICCCM: it iconifies on the
    // client's request and gives the normal state back when the window is mapped again. Its
    // configuration uses the X server's built-in font and places windows without asking.
    const QString wm = QStandardPaths::findExecutable(QStringLiteral("twm"));
    if (wm.isEmpty())
        QSKIP("no window manager (twm) installed: a window cannot be minimised without one");
    QTemporaryDir dir;
    QFile rc(dir.filePath(QStringLiteral("twmrc")));
    QVERIFY(rc.open(QIODevice::WriteOnly));
    rc.write("TitleFont \"fixed\"\nResizeFont \"fixed\"\nMenuFont \"fixed\"\nIconFont \"fixed\"\n"
             "IconManagerFont \"fixed\"\nRandomPlacement\nNoGrabServer\n");
    rc.close();
    QProcess wmProcess;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("LC_ALL"), QStringLiteral("C"));
    wmProcess.setProcessEnvironment(env);
    wmProcess.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    wmProcess.start(wm, {QStringLiteral("-f"), rc.fileName()});
    QVERIFY(wmProcess.waitForStarted());
    const auto stopWm = qScopeGuard([&] {
        wmProcess.terminate();
        if (!wmProcess.waitForFinished(3000))
            wmProcess.kill();
        wmProcess.waitForFinished();
    });
    // Running once it has selected the root window's redirection: a second client cannot.
    QTRY_VERIFY(wmRunning());

    const QString qualifier = QStringLiteral("restore");
    const QString name = runOnce({"name", qualifier});
    QFile::remove(recordFile(name)); // left by an earlier run that was stopped
    {
        Copy first({"first", qualifier});
        QCOMPARE(first.Line(), QStringLiteral("first"));
        const QString registered = first.Line();
        QVERIFY2(registered.startsWith(QLatin1String("registered ")), qPrintable(registered));
        // The record holds the main window that replaced the start-up one.
        QCOMPARE(recordValue(name), registered.mid(11).toULongLong());
        QCOMPARE(first.Line(), QStringLiteral("minimised"));

        Copy second({"second", qualifier});
        QCOMPARE(second.Line(), QStringLiteral("found"));
        QCOMPARE(second.Line(), QStringLiteral("refresh refused"));
        QCOMPARE(second.ExitCode(), 0);
        QCOMPARE(first.Line(), QStringLiteral("restored"));
        QVERIFY(first.Process().waitForFinished(5000));
        QCOMPARE(first.Process().exitCode(), 0);
    }
    // The first copy removed its record when it ended.
    QVERIFY(!QFile::exists(recordFile(name)));
}

void tst_CheckPrevious::recordOfAKilledCopy()
{
    const QString qualifier = QStringLiteral("killed");
    const QString name = runOnce({"name", qualifier});
    QFile::remove(recordFile(name));
    {
        Copy holder({"hold", qualifier});
        QVERIFY(holder.Line().startsWith(QLatin1String("registered ")));
        QVERIFY(QFile::exists(recordFile(name)));
        holder.Process().kill();
        QVERIFY(holder.Process().waitForFinished());
    }
    // Left behind, pointing at a window that went with its process: the next copy takes it over.
    QVERIFY(QFile::exists(recordFile(name)));
    {
        Copy next({"second", qualifier});
        QCOMPARE(next.Line(), QStringLiteral("registered"));
        QCOMPARE(next.Line(), QStringLiteral("refresh stored"));
        QCOMPARE(next.ExitCode(), 0);
    }
    QVERIFY(!QFile::exists(recordFile(name)));
}

QTEST_MAIN(tst_CheckPrevious)
#include "tst_checkprevious.moc"
