// What the file-component tests share: files with known bytes, whole trees compared byte for
// byte, and a watcher that answers modal dialogs as a person would.
#pragma once

#include <QAbstractButton>
#include <QApplication>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPointer>
#include <QTimer>
#include <QtTest>

#include "Exceptions.h"

#include <functional>

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace filetest {

// Size bytes that differ from block to block and from seed to seed.
inline QByteArray pattern(qint64 size, int seed = 1)
{
    QByteArray bytes(size, Qt::Uninitialized);
    quint32 x = 2463534242u ^ quint32(seed * 7919);
    for (char &c : bytes) {
        x ^= x << 13;
        x ^= x >> 17;
        x ^= x << 5;
        c = char(x);
    }
    return bytes;
}

inline bool writeFile(const QString &path, const QByteArray &bytes)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile f(path);
    return f.open(QIODevice::WriteOnly) && f.write(bytes) == bytes.size();
}

inline QByteArray readFile(const QString &path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray("<missing>");
}

// Every entry under Root: folders with a trailing "/", files with their size and checksum.
inline QStringList listing(const QString &root)
{
    QStringList out;
    QDirIterator it(root, QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        it.next();
        const QString rel = QDir(root).relativeFilePath(it.filePath());
        if (it.fileInfo().isDir()) {
            out << rel + QLatin1Char('/');
        } else {
            const QByteArray bytes = readFile(it.filePath());
            out << QStringLiteral("%1 %2 %3").arg(rel).arg(bytes.size()).arg(qChecksum(bytes));
        }
    }
    out.sort();
    return out;
}

// The entry names of Listing.
inline QStringList names(const QString &root)
{
    QStringList out;
    for (const QString &line : listing(root))
        out << line.section(QLatin1Char(' '), 0, 0);
    return out;
}

// The message of the error of type E that Call raises, or what happened instead.
template <typename E>
QString raised(const std::function<void()> &call)
{
    try {
        call();
    } catch (const mattoni::Exception &e) {
        return dynamic_cast<const E *>(&e) ? e.Message() : QStringLiteral("other error: ") + e.Message();
    }
    return QStringLiteral("(no error)");
}

// The immutable flag: not even root may delete a file while it is set.
inline bool setImmutable(const QString &path, bool on)
{
    const int fd = ::open(QFile::encodeName(path).constData(), O_RDONLY);
    int flags = 0;
    bool ok = fd >= 0 && ::ioctl(fd, FS_IOC_GETFLAGS, &flags) == 0;
    flags = on ? flags | FS_IMMUTABLE_FL : flags & ~FS_IMMUTABLE_FL;
    ok = ok && ::ioctl(fd, FS_IOC_SETFLAGS, &flags) == 0;
    if (fd >= 0)
        ::close(fd);
    return ok;
}

// A removable disk: a tmpfs of the given size mounted on a folder of its own.
struct Disk
{
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

// One modal dialog on screen.
struct Dialog
{
    QWidget *widget = nullptr;
    QString title;
    QString text;

    // Clicks the visible button whose caption, without its "&", is Caption.
    void press(const QString &caption) const
    {
        for (QAbstractButton *b : widget->findChildren<QAbstractButton *>()) {
            if (b->isVisible() && b->text().remove(QLatin1Char('&')) == caption) {
                QTest::mouseClick(b, Qt::LeftButton);
                return;
            }
        }
        // Closed all the same, so that the operation under test goes on and the test ends.
        QTest::qFail(qPrintable(QStringLiteral("no button \"%1\" in \"%2\"").arg(caption, title)), __FILE__, __LINE__);
        if (auto *dialog = qobject_cast<QDialog *>(widget))
            dialog->reject();
    }
    void type(const QString &value) const
    {
        auto *edit = widget->findChild<QLineEdit *>();
        QVERIFY(edit);
        edit->clear();
        QTest::keyClicks(edit, value);
    }
    QString editText() const
    {
        auto *edit = widget->findChild<QLineEdit *>();
        return edit ? edit->text() : QString();
    }
};

// Answers every modal dialog that appears while it lives, and keeps "title: text" of each.
class DialogWatcher : public QObject
{
public:
    using Answer = std::function<void(const Dialog &)>;

    explicit DialogWatcher(Answer answer)
        : m_answer(std::move(answer))
    {
        m_timer.setInterval(2);
        connect(&m_timer, &QTimer::timeout, this, &DialogWatcher::poll);
        m_timer.start();
    }

    QStringList seen;

private:
    static QString textOf(QWidget *w)
    {
        if (auto *box = qobject_cast<QMessageBox *>(w))
            return box->text();
        if (auto *memo = w->findChild<QPlainTextEdit *>())
            return memo->toPlainText();
        for (QLabel *label : w->findChildren<QLabel *>())
            if (!label->text().isEmpty())
                return label->text();
        return QString();
    }

    void poll()
    {
        QWidget *w = QApplication::activeModalWidget();
        if (!w || w == m_current || !w->isVisible())
            return;
        m_current = w;
        Dialog d{w, w->windowTitle(), textOf(w)};
        seen << d.title + QStringLiteral(": ") + d.text;
        m_answer(d);
    }

    Answer m_answer;
    QTimer m_timer;
    QPointer<QWidget> m_current;
};

} // namespace filetest
