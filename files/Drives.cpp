// The drive table and the media behind its letters.
#include "Drives.h"

#include "Exceptions.h"

#include <QFile>

#include <array>

#include <dirent.h>
#include <sys/statvfs.h>

namespace mattoni {

namespace {

// The library runs its file components on the user-interface thread and the host fills the
// table at start-up, so the table needs no lock (as the other process-wide settings).
std::array<QString, 26> &driveTable()
{
    static std::array<QString, 26> table;
    return table;
}

// 0 for "A" ... 25 for "Z", -1 for anything but an ASCII letter.
int driveIndex(QChar drive)
{
    const char16_t c = drive.unicode();
    if (c >= u'a' && c <= u'z')
        return c - u'a';
    if (c >= u'A' && c <= u'Z')
        return c - u'A';
    return -1;
}

int checkedDriveIndex(QChar drive)
{
    const int index = driveIndex(drive);
    if (index < 0)
        throw EConvertError(QStringLiteral("Not a valid drive ID"));
    return index;
}

// statvfs of the drive's folder when it holds a readable medium.
bool mediumStats(QChar drive, struct statvfs &stats)
{
    const QString &folder = driveTable()[size_t(checkedDriveIndex(drive))];
    if (folder.isEmpty())
        return false;
    const QByteArray local = QFile::encodeName(folder);
    // A folder that cannot be listed is a drive without a readable medium.
    DIR *dir = opendir(local.constData());
    if (!dir)
        return false;
    closedir(dir);
    return statvfs(local.constData(), &stats) == 0;
}

} // namespace

void SetDriveFolder(QChar Drive, const QString &Folder)
{
    driveTable()[size_t(checkedDriveIndex(Drive))] = Folder;
}

QString DriveFolder(QChar Drive)
{
    const int index = driveIndex(Drive);
    return index < 0 ? QString() : driveTable()[size_t(index)];
}

void ClearDriveTable()
{
    for (QString &folder : driveTable())
        folder.clear();
}

QString ExpandDrivePath(const QString &Path)
{
    if (Path.size() < 2 || Path.at(1) != QLatin1Char(':'))
        return Path;
    const int index = driveIndex(Path.at(0));
    if (index < 0)
        return Path;
    const QString &folder = driveTable()[size_t(index)];
    if (folder.isEmpty())
        return QString();
    QString rest = Path.mid(2);
    if (rest.startsWith(QLatin1Char('/')))
        rest.remove(0, 1);
    if (rest.isEmpty())
        return folder;
    return folder.endsWith(QLatin1Char('/')) ? folder + rest : folder + QLatin1Char('/') + rest;
}

bool DiskInDrive(QChar Drive)
{
    return DiskSize(Drive) != -1;
}

qint64 DiskSize(QChar Drive)
{
    struct statvfs stats;
    if (!mediumStats(Drive, stats))
        return -1;
    return qint64(stats.f_blocks) * qint64(stats.f_frsize);
}

qint64 DiskFree(QChar Drive)
{
    struct statvfs stats;
    if (!mediumStats(Drive, stats))
        return -1;
    return qint64(stats.f_bavail) * qint64(stats.f_frsize);
}

} // namespace mattoni
