// The multi-disk backup.
#include "MyBackup.h"

#include "DateTime.h"
#include "Drives.h"
#include "Exceptions.h"
#include "FileSystem_p.h"
#include "Formatting.h"
#include "Prompts.h"
#include "PropertySetter_p.h"
#include "Strings.h"
#include "fm_MessageBox.h"

#include <QRegularExpression>

#include <array>
#include <limits>

namespace mattoni {

namespace {

constexpr qint64 kBlockSize = 8192;
// Kept free on every disk for its info file.
constexpr qint32 kInfoReserve = 8192;
// An info file is a few hundred bytes; a larger one is read no further than this.
constexpr qint64 kMaxInfoFileSize = 1 << 20;

const QString kCreateError = QStringLiteral("Errore durante la creazione di \"%s\"!");
const QString kInterrupted = QStringLiteral("Operazione interrotta dall'utente!");
const QString kWrongSeries = QStringLiteral("Il disco non corrisponde alla copia di salvataggio: %s");

bool isDots(const QString &name)
{
    return name == QLatin1String(".") || name == QLatin1String("..");
}

// The value of Key in "key=value" lines, the key compared ignoring case; empty when absent.
QString infoValue(const QStringList &lines, const QString &key)
{
    for (const QString &line : lines) {
        const qsizetype eq = line.indexOf(QLatin1Char('='));
        if (eq >= 0 && SameText(line.left(eq), key))
            return line.mid(eq + 1);
    }
    return QString();
}

qint32 percentOf(qint32 bytes, qint32 total)
{
    return fs::round32(double(bytes) / double(total) * 100.0);
}

} // namespace

TMyBackup::TMyBackup(QObject *parent)
    : TCustomCopyFile(parent)
{
    setShowFileNames(true);
}

TMyBackup::~TMyBackup() = default;

MATTONI_PROPERTY_SETTER(TMyBackup, DrivePath, m_drivePath, const QString &)
MATTONI_PROPERTY_SETTER(TMyBackup, FilesPath, m_filesPath, const QString &)
MATTONI_PROPERTY_SETTER(TMyBackup, FilesToBackup, m_filesToBackup, const QStringList &)
MATTONI_PROPERTY_SETTER(TMyBackup, FilesRestored, m_filesRestored, const QStringList &)
MATTONI_PROPERTY_SETTER(TMyBackup, BackupCaption, m_backupCaption, const QString &)
MATTONI_PROPERTY_SETTER(TMyBackup, RestoreCaption, m_restoreCaption, const QString &)
MATTONI_PROPERTY_SETTER(TMyBackup, ConfirmDelete, m_confirmDelete, bool)
MATTONI_PROPERTY_SETTER(TMyBackup, Version, m_version, const QString &)
MATTONI_PROPERTY_SETTER(TMyBackup, ID, m_id, const QString &)
MATTONI_PROPERTY_SETTER(TMyBackup, IdLabel, m_idLabel, const QString &)
MATTONI_PROPERTY_SETTER(TMyBackup, BackupName, m_backupName, const QString &)
MATTONI_PROPERTY_SETTER(TMyBackup, UserName, m_userName, const QString &)
MATTONI_PROPERTY_SETTER(TMyBackup, UserCompany, m_userCompany, const QString &)
MATTONI_PROPERTY_SETTER(TMyBackup, UserLicence, m_userLicence, const QString &)
MATTONI_PROPERTY_SETTER(TMyBackup, InfosFileName, m_infosFileName, const QString &)

// --- Drive and disks ---------------------------------------------------------------------------

void TMyBackup::validateDrivePath()
{
    const QChar letter = m_drivePath.isEmpty() ? QChar() : QChar(UpperCase(m_drivePath.left(1)).at(0));
    if (m_drivePath.size() < 2 || letter < QLatin1Char('A') || letter > QLatin1Char('Z')
        || m_drivePath.at(1) != QLatin1Char(':'))
        throw Exception(QStringLiteral("Dovete indicare un percorso valido per l'unità di salvataggio"));
    m_driveLetter = letter;
}

bool TMyBackup::askForDisk(int disk)
{
    QString path = m_drivePath;
    const QString prompt = Format(QStringLiteral("Prego, inserire il disco #%d nell'unità di salvataggio %s:"),
                                  {disk, QString(m_driveLetter)});
    if (!InputQuery(QStringLiteral("Messaggio di sistema"), prompt, path))
        return false;
    setDrivePath(path);
    return true;
}

QString TMyBackup::driveRoot() const
{
    return RemoveSlash(m_drivePath);
}

// The free bytes of the drive, less the reserve for the info file. Free space beyond what a
// 32-bit size can hold counts as the largest such size.
qint32 TMyBackup::room() const
{
    const qint64 free = mattoni::DiskFree(m_driveLetter);
    return qint32(std::min<qint64>(free, std::numeric_limits<qint32>::max())) - kInfoReserve;
}

void TMyBackup::CheckDrive()
{
    for (;;) {
        validateDrivePath();
        if (DiskInDrive(m_driveLetter)) {
            if (m_operation == opBackup) {
                if (CheckDiskContent())
                    return;
            } else if (m_operation == opRestore) {
                // A refused first disk means another round, not another prompt: CheckFirstDisk
                // has just asked for one.
                if (CheckFirstDisk())
                    return;
                continue;
            } else {
                return;
            }
        }
        if (!askForDisk(m_diskNumber))
            throw EAbort();
    }
}

bool TMyBackup::CheckDiskContent()
{
    if (IsDirectoryEmpty(m_drivePath))
        return true;
    if (m_confirmDelete && !BoxConferma(QStringLiteral("L'unità di salvataggio contiene degli archivi. Li elimino ?")))
        return false;
    WriteFileName(QStringLiteral("Eliminazione del contenuto dell'unità di salvataggio..."));
    setSendEvents(false);
    bool ok = true;
    const QString root = driveRoot();
    // Deleting a folder measures it: the backup's own total and count must survive that.
    const qint32 total = m_totalSize;
    const qint32 processed = m_bytesProcessed;
    const auto keepCounts = [&] {
        m_totalSize = total;
        m_bytesProcessed = processed;
    };
    try {
        for (const fs::Entry &e : fs::listFolder(root, QStringLiteral("*.*"))) {
            if (isDots(e.name))
                continue;
            const QString path = root + QLatin1Char('/') + e.name;
            ok = e.directory ? DeleteDirectory(path) : fs::deleteFile(path);
            if (!ok)
                break;
        }
    } catch (...) {
        keepCounts();
        setSendEvents(true);
        throw;
    }
    keepCounts();
    // Switched back on, not restored: the events are on after a disk has been emptied.
    setSendEvents(true);
    if (!ok)
        BoxErrore(QStringLiteral("Impossibile eliminare tutti gli archivi !"));
    return ok;
}

void TMyBackup::NextDisk()
{
    for (;;) {
        if (!askForDisk(m_diskNumber))
            throw EAbort();
        validateDrivePath();
        if (!DiskInDrive(m_driveLetter))
            continue;
        if (m_operation == opBackup) {
            if (CheckDiskContent())
                return;
        } else if (m_operation == opRestore) {
            QStringList infos;
            GetInfos(infos);
            int found = StrToIntDef(infoValue(infos, QStringLiteral("Disk#")), 0);
            const QString name = infoValue(infos, QStringLiteral("Backup.Name"));
            if (name != m_firstDiskName) {
                found = 0;
                const QString message = QStringLiteral("Il disco contiene una copia di salvataggio di \"%s\" invece che di \"%s\".");
                BoxErrore(Format(message, {name, m_firstDiskName}));
            }
            if (infoValue(infos, QStringLiteral("Id")) != m_id) {
                found = 0;
                BoxErrore(Format(kWrongSeries, {m_idLabel}));
            }
            if (found == m_diskNumber)
                return;
        }
    }
}

bool TMyBackup::GetInfos(QStringList &List)
{
    // Only a medium is waited for here, whatever the operation.
    const TOperation operation = m_operation;
    m_operation = opNone;
    try {
        CheckDrive();
    } catch (...) {
        m_operation = operation;
        throw;
    }
    m_operation = operation;

    List.clear();
    fs::File file;
    const bool found = file.openRead(driveRoot() + QLatin1Char('/') + m_infosFileName);
    if (found) {
        QByteArray bytes;
        std::array<char, kBlockSize> buffer;
        qint64 read;
        while (bytes.size() < kMaxInfoFileSize && (read = file.read(buffer.data(), kBlockSize)) > 0)
            bytes.append(buffer.data(), read);
        const QString text = QString::fromLatin1(bytes.left(kMaxInfoFileSize));
        List = text.split(QRegularExpression(QStringLiteral("\r\n|\r|\n")));
        if (!List.isEmpty() && List.last().isEmpty())
            List.removeLast();
    }
    m_continues = !infoValue(List, QStringLiteral("FileIncompletelySaved")).isEmpty();
    if (!found)
        BoxAttenzione(QStringLiteral("Il disco non contiene alcuna copia di salvataggio."));
    return found;
}

bool TMyBackup::CheckFirstDisk()
{
    // The drive checks inside must only wait for a medium, not come back here.
    const TOperation operation = m_operation;
    m_operation = opNone;
    bool found = false;
    try {
        while (!found) {
            CheckDrive();
            QStringList infos;
            if (GetInfos(infos)) {
                if (infoValue(infos, QStringLiteral("Id")) != m_id) {
                    BoxErrore(Format(kWrongSeries, {m_idLabel}));
                } else {
                    m_firstDiskName = infoValue(infos, QStringLiteral("Backup.Name"));
                    const QString disk = infoValue(infos, QStringLiteral("Disk#"));
                    if (!disk.isEmpty() && StrToIntDef(disk, 0) == 1) {
                        found = true;
                        m_totalSize = StrToIntDef(infoValue(infos, QStringLiteral("ArchiveSize")), 0);
                    } else {
                        BoxAttenzione(
                            QStringLiteral("Il disco non è il primo utilizzato durante la copia di salvataggio."));
                    }
                }
            }
            // Cancel here does not end the restore: the caller asks again.
            if (!found && !askForDisk(1))
                break;
        }
    } catch (...) {
        m_operation = operation;
        throw;
    }
    m_operation = operation;
    return found;
}

void TMyBackup::CheckPath()
{
    if (m_operation == opRestore) {
        fs::forceDirectories(m_filesPath);
        return;
    }
    if (!fs::directoryExists(m_filesPath))
        throw Exception(Format(QStringLiteral("Il percorso \"%s\" non esiste"), {m_filesPath}));
}

// --- Backup ------------------------------------------------------------------------------------

void TMyBackup::Backup()
{
    run(opBackup, m_backupCaption, [this] {
        PrecalcDirSize(m_filesPath);
        WriteFiles();
    });
}

// One Backup or Restore: the operation opened, the caption shown, the folder and the first
// disk checked, the work done; the operation is closed whatever happens.
template <typename Work>
void TMyBackup::run(TOperation operation, const QString &caption, Work &&work)
{
    m_diskNumber = 1;
    m_operation = operation;
    Start();
    const auto closeUp = [this, operation] {
        if (operation == opBackup)
            WriteFileName(QString());
        m_operation = opNone;
        Finish();
    };
    try {
        SetCaption(caption);
        WriteFileName(QString());
        CheckPath();
        CheckDrive();
        work();
    } catch (...) {
        closeUp();
        throw;
    }
    closeUp();
}

void TMyBackup::WriteFiles()
{
    if (m_filesToBackup.isEmpty()) {
        const QString folder = RemoveSlash(m_filesPath);
        for (const fs::Entry &e : fs::listFolder(folder, Filter())) {
            if (isDots(e.name) || e.directory)
                continue;
            m_currentName = e.name;
            WriteFile(folder + QLatin1Char('/') + e.name);
        }
    } else {
        for (const QString &line : std::as_const(m_filesToBackup)) {
            m_currentName = ExtractFileName(line);
            WriteFile(line);
        }
    }
    m_currentName.clear();
    WriteInfos();
}

void TMyBackup::WriteFile(const QString &FileName)
{
    qint32 left = room();
    const qint32 total = m_totalSize;
    // Every file comes from FilesPath, whatever folder its line names.
    const QString name = ExtractFileName(FileName);
    fs::File source;
    if (!source.openRead(RemoveSlash(m_filesPath) + QLatin1Char('/') + name))
        throw EFOpenError(Format(kCreateError, {FileName}));
    QString targetPath = driveRoot() + QLatin1Char('/') + name;
    fs::File target;
    if (!target.create(targetPath))
        throw EFCreateError(Format(kCreateError, {targetPath}));

    std::array<char, kBlockSize> buffer;
    qint64 read;
    do {
        WriteFileName(Format(QStringLiteral("Copia di %s"), {name}));
        if (m_abort)
            throw Exception(kInterrupted);
        read = source.read(buffer.data(), kBlockSize);
        if (read > 0) {
            // Blocks are never split: one that does not fit goes whole onto the next disk.
            if (read > left) {
                target.close();
                WriteInfos();
                ++m_diskNumber;
                NextDisk();
                targetPath = driveRoot() + QLatin1Char('/') + name;
                if (!target.create(targetPath))
                    throw EFCreateError(Format(kCreateError, {targetPath}));
                left = room();
            }
            if (target.write(buffer.data(), read) < read)
                throw Exception(Format(QStringLiteral("Impossibile scrivere sull'archivio %s"), {targetPath}));
            m_bytesProcessed = fs::add32(m_bytesProcessed, read);
            SetProgress(percentOf(m_bytesProcessed, total));
            left -= qint32(read);
        }
    } while (read >= kBlockSize);
}

void TMyBackup::WriteInfos()
{
    const TDateTime now = Now();
    QByteArray text;
    const auto add = [&text](const char *key, const QString &value) {
        // An empty value leaves its key out.
        if (!value.isEmpty())
            text += QByteArray(key) + '=' + value.toLatin1() + "\r\n";
    };
    add("User.Name", m_userName);
    add("User.Company", m_userCompany);
    add("User.Licence", m_userLicence);
    add("Version", m_version);
    add("ID", m_id);
    add("Date", DateToStr(now));
    add("Time", TimeToStr(now));
    add("Backup.Name", m_backupName);
    add("Disk#", IntToStr(m_diskNumber));
    add("ArchiveSize", IntToStr(m_totalSize));
    add("FileIncompletelySaved", m_currentName);

    const QString path = driveRoot() + QLatin1Char('/') + m_infosFileName;
    fs::File file;
    if (!file.create(path) || file.write(text.constData(), text.size()) < text.size())
        throw EFCreateError(Format(kCreateError, {path}));
}

// --- Restore -----------------------------------------------------------------------------------

void TMyBackup::Restore()
{
    run(opRestore, m_restoreCaption, [this] { ReadFiles(); });
}

void TMyBackup::ReadFiles()
{
    setFilesRestored({});
    for (;;) {
        const QString root = driveRoot();
        for (const fs::Entry &e : fs::listFolder(root, Filter())) {
            if (isDots(e.name) || e.directory)
                continue;
            m_currentName = e.name;
            const QString path = root + QLatin1Char('/') + e.name;
            ReadFile(path);
            m_filesRestored.append(path);
            emit FilesRestoredChanged();
        }
        m_currentName.clear();
        if (!m_continues)
            return;
        ++m_diskNumber;
        NextDisk();
    }
}

void TMyBackup::ReadFile(const QString &FileName)
{
    fs::File source;
    const bool opened = source.openRead(FileName);
    // Without an archive size from the first disk, the first file's size stands for it.
    if (m_totalSize == 0) {
        m_bytesProcessed = 0;
        m_totalSize = opened ? fs::wrap32(source.status().st_size) : 0;
    }
    const QString name = ExtractFileName(FileName);
    WriteFileName(Format(QStringLiteral("Copia di %s"), {name}));
    if (!opened)
        throw EFOpenError(Format(kCreateError, {FileName}));

    // Always appended: this joins the pieces of a split file, and equally adds to a file of the
    // same name already in FilesPath.
    const QString targetPath = RemoveSlash(m_filesPath) + QLatin1Char('/') + name;
    fs::File target;
    const bool ready = fs::fileExists(targetPath) ? target.openWrite(targetPath) : target.create(targetPath);
    if (!ready || !target.seekToEnd())
        throw EFCreateError(Format(kCreateError, {targetPath}));

    std::array<char, kBlockSize> buffer;
    qint64 read;
    do {
        if (m_abort)
            throw Exception(kInterrupted);
        read = source.read(buffer.data(), kBlockSize);
        if (read > 0) {
            target.write(buffer.data(), read);
            m_bytesProcessed = fs::add32(m_bytesProcessed, read);
        }
        SetProgress(percentOf(m_bytesProcessed, m_totalSize));
    } while (read >= kBlockSize);
}

} // namespace mattoni
