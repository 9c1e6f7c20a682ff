// File-system primitives of the copy and backup components.
#include "FileSystem_p.h"

#include "Drives.h"

#include <QFile>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <utility>

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace mattoni::fs {

QByteArray localPath(const QString &path)
{
    return QFile::encodeName(ExpandDrivePath(path));
}

namespace {

bool statPath(const QString &path, struct stat &st)
{
    const QByteArray local = localPath(path);
    return !local.isEmpty() && ::stat(local.constData(), &st) == 0;
}

// "*" and "?" against a name, iteratively with one backtracking point per star.
bool wildcardMatch(const QChar *name, qsizetype nameLength, const QChar *mask, qsizetype maskLength)
{
    qsizetype n = 0, m = 0, starMask = -1, starName = 0;
    while (n < nameLength) {
        if (m < maskLength && (mask[m] == QLatin1Char('?') || mask[m] == name[n])) {
            ++n;
            ++m;
        } else if (m < maskLength && mask[m] == QLatin1Char('*')) {
            starMask = m++;
            starName = n;
        } else if (starMask >= 0) {
            m = starMask + 1;
            n = ++starName;
        } else {
            return false;
        }
    }
    while (m < maskLength && mask[m] == QLatin1Char('*'))
        ++m;
    return m == maskLength;
}

bool matchesAll(const QString &mask)
{
    return mask == QLatin1String("*.*") || mask == QLatin1String("*");
}

} // namespace

bool fileExists(const QString &path)
{
    struct stat st;
    return fileExists(path, st);
}

bool fileExists(const QString &path, struct stat &st)
{
    return statPath(path, st) && !S_ISDIR(st.st_mode);
}

bool directoryExists(const QString &path)
{
    struct stat st;
    return statPath(path, st) && S_ISDIR(st.st_mode);
}

bool forceDirectories(const QString &path)
{
    QByteArray local = localPath(path);
    if (local.isEmpty())
        return false;
    while (local.size() > 1 && local.endsWith('/'))
        local.chop(1);
    struct stat st;
    if (::stat(local.constData(), &st) == 0)
        return S_ISDIR(st.st_mode);
    // Every missing parent first, then the folder itself.
    for (qsizetype i = 1; i <= local.size(); ++i) {
        if (i < local.size() && local.at(i) != '/')
            continue;
        const QByteArray part = local.left(i);
        if (::mkdir(part.constData(), 0777) != 0 && errno != EEXIST)
            return false;
    }
    return ::stat(local.constData(), &st) == 0 && S_ISDIR(st.st_mode);
}

bool removeDirectory(const QString &path)
{
    const QByteArray local = localPath(path);
    return !local.isEmpty() && ::rmdir(local.constData()) == 0;
}

bool deleteFile(const QString &path)
{
    const QByteArray local = localPath(path);
    return !local.isEmpty() && ::unlink(local.constData()) == 0;
}

bool matchesMask(const QString &name, const QString &mask)
{
    if (matchesAll(mask))
        return true;
    if (wildcardMatch(name.constData(), name.size(), mask.constData(), mask.size()))
        return true;
    return mask.endsWith(QLatin1String(".*")) && !name.contains(QLatin1Char('.'))
        && wildcardMatch(name.constData(), name.size(), mask.constData(), mask.size() - 2);
}

std::vector<Entry> listFolder(const QString &folder, const QString &mask, bool withSizes)
{
    std::vector<Entry> entries;
    const QByteArray local = localPath(folder);
    if (local.isEmpty())
        return entries;
    DIR *dir = ::opendir(local.constData());
    if (!dir)
        return entries;
    const int dirFd = ::dirfd(dir);
    const bool all = matchesAll(mask);
    struct Raw
    {
        QByteArray name;
        Entry entry;
    };
    std::vector<Raw> raw;
    while (const dirent *d = ::readdir(dir)) {
        Raw r;
        r.name = QByteArray(d->d_name);
        r.entry.name = QFile::decodeName(r.name);
        if (!all && !matchesMask(r.entry.name, mask))
            continue;
        unsigned char type = d->d_type;
        struct stat st;
        if (type == DT_UNKNOWN) {
            if (::fstatat(dirFd, d->d_name, &st, AT_SYMLINK_NOFOLLOW) != 0)
                continue;
            type = S_ISDIR(st.st_mode) ? DT_DIR : DT_REG;
        }
        r.entry.directory = type == DT_DIR;
        if (withSizes && !r.entry.directory && ::fstatat(dirFd, d->d_name, &st, 0) == 0)
            r.entry.size = st.st_size;
        raw.push_back(std::move(r));
    }
    ::closedir(dir);
    const auto rank = [](const QByteArray &name) {
        return name == "." ? 0 : name == ".." ? 1 : 2;
    };
    std::sort(raw.begin(), raw.end(), [&](const Raw &a, const Raw &b) {
        const int ra = rank(a.name), rb = rank(b.name);
        return ra != rb ? ra < rb : std::strcmp(a.name.constData(), b.name.constData()) < 0;
    });
    entries.reserve(raw.size());
    for (Raw &r : raw)
        entries.push_back(std::move(r.entry));
    return entries;
}

qint32 round32(double value)
{
    if (!std::isfinite(value) || std::fabs(value) >= 9.0e18)
        return 0;
    return wrap32(std::llrint(value));
}

bool File::openLocked(const QString &path, int flags, int lock)
{
    close();
    const QByteArray local = localPath(path);
    if (local.isEmpty())
        return false;
    int fd;
    do
        fd = ::open(local.constData(), flags | O_CLOEXEC, 0666);
    while (fd < 0 && errno == EINTR);
    if (fd < 0)
        return false;
    if (::fstat(fd, &m_stat) != 0 || S_ISDIR(m_stat.st_mode) || ::flock(fd, lock | LOCK_NB) != 0) {
        ::close(fd);
        return false;
    }
    m_fd = fd;
    return true;
}

bool File::openRead(const QString &path)
{
    return openLocked(path, O_RDONLY, LOCK_SH);
}

bool File::create(const QString &path, mode_t mode)
{
    close();
    m_created = false;
    // A new file is empty and ours: only the lock is left to take.
    const QByteArray local = localPath(path);
    if (local.isEmpty())
        return false;
    const int fd = ::open(local.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
    if (fd >= 0) {
        if (::flock(fd, LOCK_EX | LOCK_NB) != 0) {
            ::close(fd);
            return false;
        }
        m_fd = fd;
        m_created = true;
        m_stat = {};
        return true;
    }
    // An existing file is truncated only once the lock is ours, so a file someone else holds
    // is left alone; and only when there is something to cut, since ext4 flushes a truncated
    // file when it is closed.
    if (errno != EEXIST || !openLocked(path, O_WRONLY, LOCK_EX))
        return false;
    if (m_stat.st_size > 0 && ::ftruncate(m_fd, 0) != 0) {
        close();
        return false;
    }
    return true;
}

bool File::openWrite(const QString &path)
{
    return openLocked(path, O_WRONLY, LOCK_EX);
}

bool File::tryExclusive(const QString &path)
{
    return openLocked(path, O_RDONLY, LOCK_EX);
}

void File::close()
{
    if (m_fd >= 0) {
        ::close(m_fd);
        m_fd = -1;
    }
}

qint64 File::read(char *buffer, qint64 size)
{
    ssize_t n;
    do
        n = ::read(m_fd, buffer, size_t(size));
    while (n < 0 && errno == EINTR);
    return n;
}

qint64 File::write(const char *buffer, qint64 size)
{
    qint64 done = 0;
    while (done < size) {
        const ssize_t n = ::write(m_fd, buffer + done, size_t(size - done));
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            break;
        done += n;
    }
    return done;
}

bool File::seekToEnd()
{
    return ::lseek(m_fd, 0, SEEK_END) >= 0;
}


BlockCopy::BlockCopy(File &source, File &destination)
    : m_source(source)
    , m_destination(destination)
    , m_inKernel(S_ISREG(source.status().st_mode) && source.status().st_size > 0)
{
}

qint64 BlockCopy::readAndWrite(qint64 size)
{
    const qint64 read = m_source.read(m_buffer, size);
    if (read > 0)
        m_destination.write(m_buffer, read);
    return read;
}

qint64 BlockCopy::next()
{
    // A megabyte at a time, as fast as the kernel copies a whole file, yet little to undo
    // when the user stops the copy.
    constexpr size_t step = 1 << 20;
    while (m_inKernel && !m_end && m_pending < BlockSize) {
        const ssize_t copied = ::copy_file_range(m_source.fd(), nullptr, m_destination.fd(), nullptr, step, 0);
        if (copied > 0)
            m_pending += copied;
        else if (copied == 0)
            m_end = true;
        else
            m_inKernel = false; // a full disk or files the kernel cannot copy between
    }
    if (m_pending >= BlockSize || (m_end && m_pending > 0)) {
        const qint64 block = std::min(m_pending, BlockSize);
        m_pending -= block;
        return block;
    }
    if (m_end)
        return 0;
    // The rest of a block through the buffer, as a read of 8192 bytes would have it.
    const qint64 pending = std::exchange(m_pending, 0);
    const qint64 read = readAndWrite(BlockSize - pending);
    return read < 0 && pending == 0 ? -1 : pending + std::max<qint64>(read, 0);
}

} // namespace mattoni::fs
