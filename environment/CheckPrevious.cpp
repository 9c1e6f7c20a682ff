// The instance check: processes from /proc, the shared record in POSIX shared memory, and the other
// copy's window restored through xcb.
#include "CheckPrevious.h"

#include "Ambiente.h"
#include "Version.h"
#include "winutil.h"

#include <QCryptographicHash>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>
#include <QSet>
#include <QThread>

#include <xcb/xcb.h>

#include <fcntl.h>
#include <pwd.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <climits>
#include <cstdlib>
#include <memory>

namespace mattoni {

namespace {

// ---------------------------------------------------------------- processes

// The executable of a process: its full path, without the " (deleted)" the kernel adds when the
// file was replaced while running. Empty when it cannot be read (another user's process, a
// kernel thread).
QString executableOf(const QString &pid)
{
    QString target = QFile::symLinkTarget(QStringLiteral("/proc/%1/exe").arg(pid));
    if (target.endsWith(QLatin1String(" (deleted)")))
        target.chop(10);
    return target;
}

QString fileNameOf(const QString &path)
{
    return path.mid(path.lastIndexOf(QLatin1Char('/')) + 1);
}

// The effective uid from /proc/<pid>/status ("Uid: real effective saved fs"); -1 when unknown.
qint64 effectiveUidOf(const QString &pid)
{
    QFile status(QStringLiteral("/proc/%1/status").arg(pid));
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    // Files of /proc tell a size of 0, so atEnd() cannot be trusted: read them whole.
    const QList<QByteArray> lines = status.readAll().split('\n');
    for (const QByteArray &line : lines) {
        if (line.startsWith("Uid:")) {
            const QList<QByteArray> fields = line.mid(4).simplified().split(' ');
            bool ok = false;
            const qint64 uid = fields.size() > 1 ? fields.at(1).toLongLong(&ok) : -1;
            return ok ? uid : -1;
        }
    }
    return -1;
}

QString userNameOf(qint64 uid)
{
    if (uid < 0)
        return QString();
    if (const passwd *pw = getpwuid(uid_t(uid)))
        return QString::fromLocal8Bit(pw->pw_name);
    return QString::number(uid); // an account without a name still tells users apart
}

QString ownExecutable()
{
    return executableOf(QStringLiteral("self"));
}

// Whether the process runs an executable of our file name for the current user.
bool isCopy(const QString &pid, const QString &ownName, const QString &user)
{
    return fileNameOf(executableOf(pid)) == ownName && userNameOf(effectiveUidOf(pid)) == user;
}

// ---------------------------------------------------------------- shared record

// Names of the records this process created: it removes them when it ends.
struct OwnedRecords
{
    QSet<QString> names;
    ~OwnedRecords()
    {
        for (const QString &name : std::as_const(names))
            shm_unlink(QFile::encodeName(name).constData());
    }
};

OwnedRecords &ownedRecords()
{
    static OwnedRecords records;
    return records;
}

class SharedRecord
{
public:
    explicit SharedRecord(const QString &name)
    {
        const QByteArray n = QFile::encodeName(name);
        m_fd = shm_open(n.constData(), O_RDWR | O_CREAT | O_EXCL, 0600);
        if (m_fd >= 0) {
            m_created = true;
            if (ftruncate(m_fd, sizeof(quint64)) != 0) {
                close(m_fd);
                shm_unlink(n.constData());
                m_fd = -1;
                return;
            }
        } else {
            m_fd = shm_open(n.constData(), O_RDWR, 0600);
            if (m_fd < 0)
                return;
            // The creator may not have sized it yet.
            struct stat st;
            for (int i = 0; i < 100 && fstat(m_fd, &st) == 0 && st.st_size < qint64(sizeof(quint64)); ++i)
                QThread::msleep(1);
            if (fstat(m_fd, &st) != 0 || st.st_size < qint64(sizeof(quint64))) {
                close(m_fd);
                m_fd = -1;
                return;
            }
        }
        void *p = mmap(nullptr, sizeof(quint64), PROT_READ | PROT_WRITE, MAP_SHARED, m_fd, 0);
        m_value = p == MAP_FAILED ? nullptr : static_cast<quint64 *>(p);
    }
    ~SharedRecord()
    {
        if (m_value)
            munmap(m_value, sizeof(quint64));
        if (m_fd >= 0)
            close(m_fd);
    }
    SharedRecord(const SharedRecord &) = delete;
    SharedRecord &operator=(const SharedRecord &) = delete;

    bool IsOpen() const { return m_value != nullptr; }
    bool Created() const { return m_created; }
    quint64 Load() const { return __atomic_load_n(m_value, __ATOMIC_ACQUIRE); }
    void Store(quint64 v) { __atomic_store_n(m_value, v, __ATOMIC_RELEASE); }

private:
    int m_fd = -1;
    quint64 *m_value = nullptr;
    bool m_created = false;
};

// ---------------------------------------------------------------- X11

// The application's own xcb connection when it runs on X11, else one of our own (a console
// program, or another platform plugin with a DISPLAY at hand). Null when there is no X server.
class XConnection
{
public:
    XConnection()
    {
        auto *app = qobject_cast<QGuiApplication *>(QCoreApplication::instance());
        if (auto *x11 = app ? app->nativeInterface<QNativeInterface::QX11Application>() : nullptr)
            m_connection = x11->connection();
        if (!m_connection && qEnvironmentVariableIsSet("DISPLAY")) {
            m_connection = xcb_connect(nullptr, nullptr);
            m_own = true;
            if (xcb_connection_has_error(m_connection)) {
                xcb_disconnect(m_connection);
                m_connection = nullptr;
            }
        }
    }
    ~XConnection()
    {
        if (m_own && m_connection)
            xcb_disconnect(m_connection);
    }
    XConnection(const XConnection &) = delete;
    XConnection &operator=(const XConnection &) = delete;

    xcb_connection_t *get() const { return m_connection; }

    xcb_atom_t Atom(const char *name) const
    {
        auto cookie = xcb_intern_atom(m_connection, 0, uint16_t(qstrlen(name)), name);
        std::unique_ptr<xcb_intern_atom_reply_t, decltype(&free)> reply(xcb_intern_atom_reply(m_connection, cookie, nullptr), &free);
        return reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
    }

    // The 32-bit items of a window property (at most 64).
    QList<quint32> Property(xcb_window_t window, xcb_atom_t property) const
    {
        auto cookie = xcb_get_property(m_connection, 0, window, property, XCB_GET_PROPERTY_TYPE_ANY, 0, 64);
        std::unique_ptr<xcb_get_property_reply_t, decltype(&free)> reply(xcb_get_property_reply(m_connection, cookie, nullptr), &free);
        QList<quint32> items;
        if (reply && reply->format == 32) {
            const auto *data = static_cast<const quint32 *>(xcb_get_property_value(reply.get()));
            const int n = xcb_get_property_value_length(reply.get()) / 4;
            for (int i = 0; i < n; ++i)
                items << data[i];
        }
        return items;
    }

    // Map state and root of a window; false when the window does not exist.
    bool Attributes(xcb_window_t window, quint8 &mapState, xcb_window_t &root) const
    {
        std::unique_ptr<xcb_get_window_attributes_reply_t, decltype(&free)> attributes(
            xcb_get_window_attributes_reply(m_connection, xcb_get_window_attributes(m_connection, window), nullptr), &free);
        std::unique_ptr<xcb_get_geometry_reply_t, decltype(&free)> geometry(
            xcb_get_geometry_reply(m_connection, xcb_get_geometry(m_connection, window), nullptr), &free);
        if (!attributes || !geometry)
            return false;
        mapState = attributes->map_state;
        root = geometry->root;
        return true;
    }

    void Check(xcb_void_cookie_t cookie) const { free(xcb_request_check(m_connection, cookie)); }

private:
    xcb_connection_t *m_connection = nullptr;
    bool m_own = false;
};

// Whether the stored window is the main window of a running copy: it exists and, when it tells
// its process (_NET_WM_PID), that process is a copy of this program for this user. Without an X
// server nothing can be checked and the record is believed.
bool isLiveCopyWindow(const XConnection &x, xcb_window_t window)
{
    if (!x.get())
        return true;
    quint8 mapState;
    xcb_window_t root;
    if (!x.Attributes(window, mapState, root))
        return false;
    const QList<quint32> pid = x.Property(window, x.Atom("_NET_WM_PID"));
    if (pid.isEmpty())
        return true;
    // The X server reuses the ids of a client that went away: the window may now be one of ours.
    if (pid.first() == quint32(getpid()))
        return false;
    return isCopy(QString::number(pid.first()), fileNameOf(ownExecutable()), GetCurrentUserName());
}

// Minimised is iconic in ICCCM terms (WM_STATE), or hidden in EWMH terms: the window manager has
// unmapped the window and keeps it as an icon or a task-bar entry.
bool isMinimised(const XConnection &x, xcb_window_t window)
{
    constexpr quint32 IconicState = 3;
    const QList<quint32> wmState = x.Property(window, x.Atom("WM_STATE"));
    if (!wmState.isEmpty() && wmState.first() == IconicState)
        return true;
    return x.Property(window, x.Atom("_NET_WM_STATE")).contains(x.Atom("_NET_WM_STATE_HIDDEN"));
}

void restoreWindow(const XConnection &x, xcb_window_t window)
{
    xcb_connection_t *c = x.get();
    if (!c)
        return;
    quint8 mapState;
    xcb_window_t root;
    if (!x.Attributes(window, mapState, root))
        return;
    // Mapping an iconic window is how ICCCM asks for its normal state back.
    if (isMinimised(x, window) || mapState != XCB_MAP_STATE_VIEWABLE)
        x.Check(xcb_map_window_checked(c, window));
    const quint32 above = XCB_STACK_MODE_ABOVE;
    x.Check(xcb_configure_window_checked(c, window, XCB_CONFIG_WINDOW_STACK_MODE, &above));

    const xcb_atom_t activeWindow = x.Atom("_NET_ACTIVE_WINDOW");
    if (x.Property(root, x.Atom("_NET_SUPPORTED")).contains(activeWindow)) {
        // A window manager that activates on request: ask as a pager would (source 2), so that
        // focus-stealing prevention lets it through.
        xcb_client_message_event_t event = {};
        event.response_type = XCB_CLIENT_MESSAGE;
        event.format = 32;
        event.window = window;
        event.type = activeWindow;
        event.data.data32[0] = 2;
        event.data.data32[1] = XCB_CURRENT_TIME;
        xcb_send_event(c, 0, root, XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                       reinterpret_cast<const char *>(&event));
    } else {
        // Focus can only go to a viewable window: give a window manager a moment to map it.
        QElapsedTimer clock;
        clock.start();
        while (x.Attributes(window, mapState, root) && mapState != XCB_MAP_STATE_VIEWABLE && clock.elapsed() < 1000)
            QThread::msleep(5);
        if (mapState == XCB_MAP_STATE_VIEWABLE)
            x.Check(xcb_set_input_focus_checked(c, XCB_INPUT_FOCUS_PARENT, window, XCB_CURRENT_TIME));
    }
    xcb_flush(c);
}

// The stored window, waiting briefly for a copy that has just created the record to fill it.
quint64 storedWindow(const SharedRecord &record)
{
    quint64 window = record.Load();
    for (int i = 0; i < 100 && window == 0; ++i) {
        QThread::msleep(1);
        window = record.Load();
    }
    return window;
}

void takeRecord(SharedRecord &record, const QString &name, WId handle)
{
    record.Store(quint64(handle));
    ownedRecords().names.insert(name);
}

} // namespace

QString GetCurrentUserName()
{
    return userNameOf(qint64(geteuid()));
}

bool TooManyIstances()
{
    const QString ownName = fileNameOf(ownExecutable());
    const QString user = GetCurrentUserName();
    int count = 0;
    const QStringList entries = QDir(QStringLiteral("/proc")).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString &entry : entries) {
        bool numeric = false;
        entry.toLongLong(&numeric);
        if (numeric && isCopy(entry, ownName, user))
            ++count;
    }
    return count > IstanzeApplicazione;
}

QString InstanceRecordName(const QString &Qualifier)
{
    QString path = ownExecutable();
    path.replace(QLatin1Char('%'), QLatin1String("%25")).replace(QLatin1Char('/'), QLatin1String("%2F"));
    const QString prefix = QStringLiteral("/mattoni-istanza.") + GetCurrentUserName() + QLatin1Char('.');
    const QString suffix = Qualifier.isEmpty() ? QString() : QLatin1Char('.') + Qualifier;
    QString name = prefix + path + suffix;
    if (QFile::encodeName(name).size() > NAME_MAX) {
        const QByteArray hash = QCryptographicHash::hash(QFile::encodeName(path), QCryptographicHash::Sha1).toHex();
        name = prefix + QString::fromLatin1(hash) + suffix;
    }
    return name;
}

bool RestoreIfRunning(WId Handle, const QString &Qualifier)
{
    TVersionResource resource;
    if (resource.LoadFromRunningProgram())
        MajorVersion = GetMajorVersion(resource.FileVersion());
    GetLocalPriorityRegistryConf();

    const QString name = InstanceRecordName(Qualifier);
    SharedRecord record(name);
    if (!record.IsOpen())
        return false;
    if (record.Created() || ownedRecords().names.contains(name)) {
        takeRecord(record, name, Handle);
        return false;
    }
    const XConnection x;
    const quint64 window = storedWindow(record);
    if (window == 0 || !isLiveCopyWindow(x, xcb_window_t(window))) {
        // Left by a copy that died: this copy is now the first one.
        takeRecord(record, name, Handle);
        return false;
    }
    restoreWindow(x, xcb_window_t(window));
    return true;
}

bool RefreshHandleRunning(WId Handle, const QString &Qualifier)
{
    const QString name = InstanceRecordName(Qualifier);
    SharedRecord record(name);
    if (!record.IsOpen())
        return false;
    if (!record.Created() && !ownedRecords().names.contains(name)) {
        const XConnection x;
        const quint64 window = storedWindow(record);
        if (window != 0 && isLiveCopyWindow(x, xcb_window_t(window)))
            return false;
    }
    takeRecord(record, name, Handle);
    return true;
}

} // namespace mattoni
