// The copy component: operations, the progress window's life and the events.
#include "CopyFile.h"

#include "Drives.h"
#include "Exceptions.h"
#include "FileSystem_p.h"
#include "Formatting.h"
#include "Prompts.h"
#include "PropertySetter_p.h"
#include "Strings.h"
#include "fm_MessageBox.h"
#include "prgform.h"

#include <QApplication>
#include <QLabel>
#include <QPointer>
#include <QProgressBar>

namespace mattoni {

namespace {

// The window is repainted, and the application's messages pumped, at a human pace; the events
// keep firing for every file and every block.
constexpr qint64 kRepaintIntervalMs = 100;

const QString kCreateError = QStringLiteral("Errore durante la creazione di \"%s\"!");
const QString kMissingFolder = QStringLiteral("La cartella \"%s\" non esiste!");

bool isDots(const QString &name)
{
    return name == QLatin1String(".") || name == QLatin1String("..");
}

// Bytes processed x 100 in 32-bit signed arithmetic, overflowing past 21,474,836 bytes as the
// component always has, divided by the total and rounded.
qint32 percentOf(qint32 bytes, qint32 total)
{
    const auto product = qint32(quint32(bytes) * 100u);
    return fs::round32(double(product) / double(total));
}

} // namespace

TCustomCopyFile::TCustomCopyFile(QObject *parent)
    : QObject(parent)
{
}

TCustomCopyFile::~TCustomCopyFile()
{
    if (m_working)
        Finish();
}

MATTONI_PROPERTY_SETTER(TCustomCopyFile, CopyFrom, m_copyFrom, const QString &)
MATTONI_PROPERTY_SETTER(TCustomCopyFile, CopyTo, m_copyTo, const QString &)
MATTONI_PROPERTY_SETTER(TCustomCopyFile, Filter, m_filter, const QString &)
MATTONI_PROPERTY_SETTER(TCustomCopyFile, Progress, m_progress, bool)
MATTONI_PROPERTY_SETTER(TCustomCopyFile, OnNotExists, m_onNotExists, const QString &)
MATTONI_PROPERTY_SETTER(TCustomCopyFile, ShowFileNames, m_showFileNames, bool)
MATTONI_PROPERTY_SETTER(TCustomCopyFile, Caption, m_caption, const QString &)
MATTONI_PROPERTY_SETTER(TCustomCopyFile, Movefile, m_movefile, bool)
MATTONI_PROPERTY_SETTER(TCustomCopyFile, Processed, m_processed, qint32)
MATTONI_PROPERTY_SETTER(TCustomCopyFile, TransferTimeDate, m_transferTimeDate, bool)
MATTONI_PROPERTY_SETTER(TCustomCopyFile, TransferFileAttributes, m_transferFileAttributes, bool)
MATTONI_PROPERTY_SETTER(TCustomCopyFile, Recursive, m_recursive, bool)
MATTONI_PROPERTY_SETTER(TCustomCopyFile, SendEvents, m_sendEvents, bool)
MATTONI_PROPERTY_SETTER(TCustomCopyFile, ProgressKind, m_progressKind, TProgressKind)

// --- Operations and the progress window ---------------------------------------------------------

void TCustomCopyFile::Start()
{
    ++m_depth;
    if (m_depth == 1) {
        m_working = true;
        m_abort = false;
        // A program without widgets (QCoreApplication only) works without the window.
        if (m_progress && !m_form && qobject_cast<QApplication *>(QCoreApplication::instance())) {
            m_form = std::make_unique<TProgForm>();
            m_form->setWindowTitle(m_caption);
            // Between two repaints the label and the bar take their values without painting.
            m_form->lFileName->setUpdatesEnabled(false);
            m_form->ProgressBar1->setUpdatesEnabled(false);
            m_form->show();
            m_paintClock.invalidate();
        }
        if (m_sendEvents && OnStartOperation)
            OnStartOperation(this);
    } else if (m_form) {
        SetCaption(m_caption);
    }
}

void TCustomCopyFile::Finish()
{
    if (m_depth <= 0)
        return;
    if (--m_depth > 0)
        return;
    m_totalSize = 0;
    m_working = false;
    if (m_sendEvents && OnFinishOperation)
        OnFinishOperation(this);
    m_form.reset();
}

void TCustomCopyFile::paintAtHumanPace()
{
    if (m_paintClock.isValid() && m_paintClock.elapsed() < kRepaintIntervalMs)
        return;
    const QPointer<TProgForm> form = m_form.get();
    form->lFileName->setUpdatesEnabled(true);
    form->ProgressBar1->setUpdatesEnabled(true);
    QCoreApplication::processEvents();
    if (form) {
        form->lFileName->setUpdatesEnabled(false);
        form->ProgressBar1->setUpdatesEnabled(false);
    }
    m_paintClock.start();
}

void TCustomCopyFile::WriteFileName(const QString &Name)
{
    if (m_form) {
        m_form->lFileName->setText(m_showFileNames ? Name : QString());
        paintAtHumanPace();
    }
    if (m_sendEvents && OnEachFile)
        OnEachFile(this, Name);
}

void TCustomCopyFile::SetProgress(qint32 Percent)
{
    if (m_form) {
        m_form->ProgressBar1->setValue(Percent);
        paintAtHumanPace();
        if (m_form)
            m_abort = m_form->ModalResult() == mrCancel;
    }
    if (m_sendEvents && OnOperationProgress)
        OnOperationProgress(this, Percent, m_abort);
}

void TCustomCopyFile::SetCaption(const QString &Text)
{
    // Compared first: a caption set again for every file of a tree costs a trip to the display.
    if (m_form && m_form->windowTitle() != Text)
        m_form->setWindowTitle(Text);
}

void TCustomCopyFile::setBarVisible(bool visible)
{
    if (m_form)
        m_form->ProgressBar1->setVisible(visible);
}

QString TCustomCopyFile::AppendSlash(const QString &Path)
{
    return Path.isEmpty() || Path.endsWith(QLatin1Char('/')) ? Path : Path + QLatin1Char('/');
}

QString TCustomCopyFile::RemoveSlash(const QString &Path)
{
    return Path.endsWith(QLatin1Char('/')) ? Path.left(Path.size() - 1) : Path;
}

bool TCustomCopyFile::DiskInDrive(QChar Drive)
{
    return mattoni::DiskInDrive(Drive);
}

// --- One file ---------------------------------------------------------------------------------

void TCustomCopyFile::CopyNow()
{
    struct stat sourceInfo;
    const bool sourceExists = !m_copyFrom.isEmpty() && fs::fileExists(m_copyFrom, sourceInfo);
    if (sourceExists) {
        // Asked even when CopyTo is empty or a bare name: its folder part is then empty.
        const QString folder = ExtractFilePath(m_copyTo);
        if (!fs::directoryExists(folder)) {
            // The two blanks after "destinazione" are part of the message.
            if (!BoxConferma(QStringLiteral("La cartella di destinazione  ") + folder
                             + QStringLiteral(" non esiste...\r\rVuoi creare la cartella ?"))) {
                BoxAttenzione(QStringLiteral("Processo interrotto!"));
                return;
            }
            fs::forceDirectories(folder);
        }
    }
    if (!sourceExists || m_copyTo.isEmpty()) {
        if (!m_onNotExists.isEmpty())
            ShowMessage(m_onNotExists);
        return;
    }

    // A measured tree keeps its total, so that the bar runs once over all of it.
    if (!(m_progressKind == pkDirectory && m_totalSize != 0)) {
        m_bytesProcessed = 0;
        m_totalSize = fs::wrap32(sourceInfo.st_size);
    }

    Start();
    fs::File source;
    fs::File destination;
    struct stat sourceStat = {};
    bool complete = false;
    const auto closeUp = [&] {
        if (m_abort) {
            destination.close();
            fs::deleteFile(m_copyTo);
        }
        source.close();
        if (!m_abort) {
            // Only onto a destination this copy opened: a failed copy leaves others' files alone.
            // A new file got the source's permissions when it was made, unless the umask took
            // some away.
            struct stat made;
            const mode_t mode = sourceStat.st_mode & 0777;
            if (m_transferFileAttributes && destination.isOpen()
                && (!destination.created() || ::fstat(destination.fd(), &made) != 0 || (made.st_mode & 0777) != mode))
                ::fchmod(destination.fd(), mode);
            destination.close();
            if (m_movefile && complete)
                fs::deleteFile(m_copyFrom);
        }
        destination.close();
        Finish();
    };
    try {
        WriteFileName(ExtractFileName(m_copyFrom));
        // The destination's name in both messages, also when the source failed to open: the
        // message has always named the file being made.
        if (!source.openRead(m_copyFrom))
            throw EFOpenError(Format(kCreateError, {m_copyTo}));
        sourceStat = source.status();
        if (!destination.create(m_copyTo, m_transferFileAttributes ? sourceStat.st_mode & 0777 : 0666))
            throw EFCreateError(Format(kCreateError, {m_copyTo}));
        // Write errors go unnoticed, as they always have.
        fs::BlockCopy blocks(source, destination);
        qint64 read;
        do {
            if (m_abort)
                break;
            read = blocks.next();
            if (read > 0) {
                m_bytesProcessed = fs::add32(m_bytesProcessed, read);
                setProcessed(m_totalSize < 1 ? 0 : percentOf(m_bytesProcessed, m_totalSize));
                SetProgress(m_processed);
            }
        } while (read >= fs::BlockCopy::BlockSize);
        if (m_transferTimeDate) {
            const struct timespec times[2] = {{0, UTIME_OMIT}, sourceStat.st_mtim};
            ::futimens(destination.fd(), times);
        }
        complete = true;
    } catch (...) {
        closeUp();
        throw;
    }
    closeUp();
}

// --- Trees -------------------------------------------------------------------------------------

void TCustomCopyFile::PrecalcDirSize(const QString &Folder)
{
    if (m_progressKind != pkDirectory)
        return;
    m_bytesProcessed = 0;
    const bool progress = m_progress;
    const bool events = m_sendEvents;
    m_progress = false;
    m_sendEvents = false;
    try {
        m_totalSize = GetDirectorySize(Folder);
    } catch (...) {
        m_progress = progress;
        m_sendEvents = events;
        throw;
    }
    m_progress = progress;
    m_sendEvents = events;
}

qint32 TCustomCopyFile::GetDirectorySize(const QString &Folder)
{
    return measure(Folder, false);
}

qint32 TCustomCopyFile::GetDirectoryCount(const QString &Folder)
{
    return measure(Folder, true);
}

qint32 TCustomCopyFile::measure(const QString &Folder, bool count)
{
    return operation([&] {
        setBarVisible(false);
        const qint32 result = measureTree(RemoveSlash(Folder), count);
        setBarVisible(true);
        return result;
    });
}

qint32 TCustomCopyFile::measureTree(const QString &folder, bool count)
{
    qint32 sum = 0;
    for (const fs::Entry &e : fs::listFolder(folder, m_filter, !count)) {
        if (isDots(e.name))
            continue;
        WriteFileName(e.name);
        if (e.directory) {
            if (m_recursive)
                sum = fs::add32(sum, measureTree(folder + QLatin1Char('/') + e.name, count));
        } else {
            sum = fs::add32(sum, count ? 1 : e.size);
        }
    }
    return sum;
}

bool TCustomCopyFile::CopyDirectory(const QString &Source, const QString &Destination)
{
    PrecalcDirSize(Source);
    return operation([&] { return copyTree(RemoveSlash(Source), RemoveSlash(Destination)); });
}

bool TCustomCopyFile::copyTree(const QString &source, const QString &destination)
{
    if (!fs::directoryExists(source) || !fs::forceDirectories(destination))
        return false;
    bool result = true;
    for (const fs::Entry &e : fs::listFolder(source, m_filter)) {
        if (isDots(e.name))
            continue;
        const QString tail = QLatin1Char('/') + e.name;
        if (e.directory) {
            // After the first failed folder no further folder is tried; files still are.
            if (m_recursive && result)
                result = copyTree(source + tail, destination + tail);
        } else {
            setCopyFrom(source + tail);
            setCopyTo(destination + tail);
            CopyNow();
        }
    }
    return result;
}

bool TCustomCopyFile::DeleteDirectory(const QString &Folder)
{
    bool success = true;
    PrecalcDirSize(Folder);
    operation([&] { deleteTree(RemoveSlash(Folder), success); });
    return success;
}

void TCustomCopyFile::deleteTree(const QString &folder, bool &success)
{
    if (success && fs::directoryExists(folder)) {
        for (const fs::Entry &e : fs::listFolder(folder, QStringLiteral("*.*"), true)) {
            SetProgress(m_totalSize == 0 ? -1 : percentOf(m_bytesProcessed, m_totalSize));
            if (!isDots(e.name)) {
                WriteFileName(e.name);
                const QString path = folder + QLatin1Char('/') + e.name;
                if (e.directory) {
                    if (m_recursive)
                        deleteTree(path, success);
                } else if (!fs::deleteFile(path)) {
                    success = false;
                }
            }
            m_bytesProcessed = fs::add32(m_bytesProcessed, e.size);
            if (!success)
                break;
        }
    }
    if (success)
        success = fs::removeDirectory(folder);
}

bool TCustomCopyFile::IsDirectoryEmpty(const QString &Folder)
{
    if (!fs::directoryExists(Folder))
        throw Exception(Format(kMissingFolder, {Folder}));
    for (const fs::Entry &e : fs::listFolder(Folder, QStringLiteral("*.*")))
        if (!isDots(e.name))
            return false;
    return true;
}

bool TCustomCopyFile::walk(const QString &folder, const TVisit &visit)
{
    if (!fs::directoryExists(folder))
        throw Exception(Format(kMissingFolder, {folder}));
    for (const fs::Entry &e : fs::listFolder(folder, QStringLiteral("*.*"))) {
        if (isDots(e.name))
            continue;
        WriteFileName(e.name);
        if (visit(folder, e.name, e.directory))
            return true;
        if (e.directory && m_recursive && walk(folder + QLatin1Char('/') + e.name, visit))
            return true;
    }
    return false;
}

bool TCustomCopyFile::IsDirectoryInUse(const QString &Folder)
{
    return operation([&] {
        setBarVisible(false);
        const bool inUse = walk(RemoveSlash(Folder), [](const QString &folder, const QString &name, bool directory) {
            fs::File file;
            return !directory && !file.tryExclusive(folder + QLatin1Char('/') + name);
        });
        setBarVisible(true);
        return inUse;
    });
}

bool TCustomCopyFile::FindFile(const QString &Folder, const QString &FileName)
{
    return operation([&] {
        setBarVisible(false);
        const bool found = walk(RemoveSlash(Folder), [&](const QString &, const QString &name, bool) {
            return name == FileName;
        });
        setBarVisible(true);
        return found;
    });
}

// --- Masks -------------------------------------------------------------------------------------

void TCustomCopyFile::CopyFilesWithJoker(const QString &Mask, const QString &DestFolder)
{
    operation([&] {
        const QString destination = AppendSlash(DestFolder);
        const QString folder = ExtractFilePath(Mask);
        const auto entries = fs::listFolder(folder.isEmpty() ? QStringLiteral(".") : folder, ExtractFileName(Mask));
        for (const fs::Entry &e : entries) {
            if (isDots(e.name) || e.directory)
                continue;
            WriteFileName(e.name);
            setCopyFrom(folder + e.name);
            setCopyTo(destination + e.name);
            CopyNow();
        }
    });
}

void TCustomCopyFile::CopyFiles(const QStringList &Masks, const QString &DestFolder)
{
    if (!fs::directoryExists(DestFolder))
        throw Exception(Format(kMissingFolder, {DestFolder}));
    operation([&] {
        for (const QString &mask : Masks)
            if (!mask.isEmpty())
                CopyFilesWithJoker(mask, DestFolder);
    });
}

TCopyFile::TCopyFile(QObject *parent)
    : TCustomCopyFile(parent)
{
}

TCopyFile::~TCopyFile() = default;

} // namespace mattoni
