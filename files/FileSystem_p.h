// File-system primitives of the copy and backup components: paths through the drive table,
// folder listings by mask, files opened with the sharing the components ask for (flock locks:
// shared for "deny write", exclusive for "exclusive" and "deny read"), 32-bit size arithmetic.
#pragma once

#include <QByteArray>
#include <QString>

#include <sys/stat.h>
#include <vector>

namespace mattoni::fs {

// The path on this system, encoded for the system calls; empty for a drive without a folder.
QByteArray localPath(const QString &path);

// A file that is not a folder (links are followed).
bool fileExists(const QString &path);
// The same, with the file's status.
bool fileExists(const QString &path, struct stat &st);
bool directoryExists(const QString &path);
// Creates the folder and every missing parent; true when the folder exists afterwards.
bool forceDirectories(const QString &path);
bool removeDirectory(const QString &path);
// Neither the write permission ("read-only") nor a leading dot ("hidden") keeps a file from
// being deleted here, so deleting needs no attribute cleared first.
bool deleteFile(const QString &path);

// File masks: "*" any run of characters, "?" one character, and a mask ending in ".*"
// also takes names without an extension ("*.*" takes every name). Case counts, as it does in the
// names of this system.
bool matchesMask(const QString &name, const QString &mask);

struct Entry
{
    QString name;
    bool directory = false;
    qint64 size = 0; // files only, and only when asked for
};

// The entries of Folder matching Mask, "." and ".." first when they match, then the others in
// the byte order of their names, hidden ones included. Links count as files (a link to a folder
// is never descended into). An unreadable or missing folder lists nothing.
std::vector<Entry> listFolder(const QString &folder, const QString &mask, bool withSizes = false);

// Sizes, totals and counts are 32-bit signed, as the components keep them: values wrap around.
inline qint32 wrap32(qint64 value)
{
    return qint32(quint32(quint64(value)));
}
inline qint32 add32(qint32 a, qint64 b)
{
    return qint32(quint32(a) + quint32(quint64(b)));
}
// Rounds half to even, as the framework's Round, and wraps the result to 32 bits; a value that
// is no number counts as 0.
qint32 round32(double value);

// An open file descriptor, closed by its destructor.
class File
{
public:
    File() = default;
    File(const File &) = delete;
    File &operator=(const File &) = delete;
    ~File() { close(); }

    // Read-only, others may read but not write ("deny write"); a folder is refused.
    bool openRead(const QString &path);
    // Created (with Mode, less the umask) or truncated for writing; nobody else may use it
    // ("exclusive"). Created() tells a new file from an existing one.
    bool create(const QString &path, mode_t mode = 0666);
    bool created() const { return m_created; }
    // An existing file opened for writing, nobody else may use it ("deny read").
    bool openWrite(const QString &path);
    // Opened read-only and locked exclusively: fails while someone else has the file locked.
    bool tryExclusive(const QString &path);

    bool isOpen() const { return m_fd >= 0; }
    int fd() const { return m_fd; }
    void close();

    // Bytes read, 0 at the end, -1 on an error (after retrying interrupted calls).
    qint64 read(char *buffer, qint64 size);
    qint64 write(const char *buffer, qint64 size);
    bool seekToEnd();
    // The status of a file opened to be read, as it was opened.
    const struct stat &status() const { return m_stat; }

private:
    bool openLocked(const QString &path, int flags, int lock);
    int m_fd = -1;
    bool m_created = false;
    struct stat m_stat = {};
};

// The copy of one file, block by block as the copy component reports it: every block is 8192
// bytes but the last, and the bytes of each block are in the destination when Next returns.
// Between two regular files the data moves in larger steps inside the kernel; anything else,
// and any step the kernel refuses, goes through a buffer of 8192 bytes.
class BlockCopy
{
public:
    static constexpr qint64 BlockSize = 8192;

    BlockCopy(File &source, File &destination);
    // The size of the next block: 0 at the end, -1 when the source cannot be read. Write errors
    // are not reported: the block counts as copied.
    qint64 next();

private:
    qint64 readAndWrite(qint64 size);

    File &m_source;
    File &m_destination;
    bool m_inKernel;
    bool m_end = false;
    qint64 m_pending = 0; // copied, not yet handed out as blocks
    char m_buffer[BlockSize];
};

} // namespace mattoni::fs
