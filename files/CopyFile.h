// TCustomCopyFile and TCopyFile: copying or moving one file, a list of file masks or a whole
// folder tree, and measuring, counting, searching, testing and deleting folder trees, with a
// progress window and events that report each file and each block of 8192 bytes.
//
// Every operation runs on the calling (user-interface) thread. Operations nest: each opens a
// level with Start and closes it with Finish, and only the outermost level shows the progress
// window and fires OnStartOperation/OnFinishOperation, so a whole tree copy is one operation.
// Sizes, totals and counts are 32-bit signed, as the component has always kept them.
//
// Paths use "/"; "X:/..." paths go through the drive table (Drives.h).
#pragma once

#include "mattoni_widgets_export.h"

#include <QElapsedTimer>
#include <QObject>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>

namespace mattoni {

class TProgForm;

using TNotifyEvent = std::function<void(QObject *Sender)>;
// Processed is the bar position just set (a percentage); setting Cancel stops the running copy.
using TOperationProgressEvent = std::function<void(QObject *Sender, qint32 processed, bool &Cancel)>;
// The bare name (no folder) of the entry now being handled.
using TEachFileEvent = std::function<void(QObject *Sender, const QString &FileName)>;

class MATTONI_WIDGETS_EXPORT TCustomCopyFile : public QObject
{
    Q_OBJECT
public:
    // pkFile: the bar runs from 0 to 100 for each file. pkDirectory: a folder copy or delete
    // first measures the tree, and the bar runs once from 0 to 100 over all of it.
    enum TProgressKind { pkFile, pkDirectory };
    Q_ENUM(TProgressKind)

    explicit TCustomCopyFile(QObject *parent = nullptr);
    // Closes the running operation, if any, with one Finish.
    ~TCustomCopyFile() override;

    QString CopyFrom() const { return m_copyFrom; }
    void setCopyFrom(const QString &value);
    QString CopyTo() const { return m_copyTo; }
    void setCopyTo(const QString &value);
    // Mask of the tree operations that copy, measure and count; sub-folders too are only
    // visited when their names match it.
    QString Filter() const { return m_filter; }
    void setFilter(const QString &value);
    bool Progress() const { return m_progress; }
    void setProgress(bool value);
    // Shown in a plain message box when CopyNow finds no source or no destination.
    QString OnNotExists() const { return m_onNotExists; }
    void setOnNotExists(const QString &value);
    bool ShowFileNames() const { return m_showFileNames; }
    void setShowFileNames(bool value);
    QString Caption() const { return m_caption; }
    void setCaption(const QString &value);
    bool Movefile() const { return m_movefile; }
    void setMovefile(bool value);
    qint32 Processed() const { return m_processed; }
    bool TransferTimeDate() const { return m_transferTimeDate; }
    void setTransferTimeDate(bool value);
    bool TransferFileAttributes() const { return m_transferFileAttributes; }
    void setTransferFileAttributes(bool value);
    bool Recursive() const { return m_recursive; }
    void setRecursive(bool value);
    // Master switch of the events: when false none fires.
    bool SendEvents() const { return m_sendEvents; }
    void setSendEvents(bool value);
    TProgressKind ProgressKind() const { return m_progressKind; }
    void setProgressKind(TProgressKind value);

    TNotifyEvent OnStartOperation;
    TNotifyEvent OnFinishOperation;
    TOperationProgressEvent OnOperationProgress;
    TEachFileEvent OnEachFile;

    bool IsWorking() const { return m_depth > 0; }
    // The progress window while an outermost operation with Progress runs, null otherwise.
    TProgForm *ProgForm() const { return m_form.get(); }

    // Copies CopyFrom to CopyTo, asking whether to create a missing destination folder.
    void CopyNow();
    // Copies the tree under Source that matches Filter into Destination; true when every
    // folder could be created.
    bool CopyDirectory(const QString &Source, const QString &Destination);
    // Copies every file matching Mask (a path with wildcards) into DestFolder.
    void CopyFilesWithJoker(const QString &Mask, const QString &DestFolder);
    // CopyFilesWithJoker for every non-empty line, as one operation.
    void CopyFiles(const QStringList &Masks, const QString &DestFolder);
    // Deletes the whole tree (Filter does not apply); true when everything went.
    bool DeleteDirectory(const QString &Folder);
    qint32 GetDirectorySize(const QString &Folder);
    qint32 GetDirectoryCount(const QString &Folder);
    bool IsDirectoryEmpty(const QString &Folder);
    // True when some file of the tree cannot be locked for exclusive use.
    bool IsDirectoryInUse(const QString &Folder);
    // True when an entry named exactly FileName (case counts) is in the tree.
    bool FindFile(const QString &Folder, const QString &FileName);
    bool DiskInDrive(QChar Drive);

    void Start();
    void Finish();
    // Shows Name (or a blank, without ShowFileNames) and fires OnEachFile.
    void WriteFileName(const QString &Name);
    // Moves the bar, reads the window's Cancel and fires OnOperationProgress.
    void SetProgress(qint32 Percent);
    // The caption of the progress window, when it is shown; Caption stays as it is.
    void SetCaption(const QString &Text);
    static QString AppendSlash(const QString &Path);
    static QString RemoveSlash(const QString &Path);
    // In pkDirectory mode: bytes processed back to 0 and the total measured, silently.
    void PrecalcDirSize(const QString &Folder);

signals:
    void CopyFromChanged();
    void CopyToChanged();
    void FilterChanged();
    void ProgressChanged();
    void OnNotExistsChanged();
    void ShowFileNamesChanged();
    void CaptionChanged();
    void MovefileChanged();
    void ProcessedChanged();
    void TransferTimeDateChanged();
    void TransferFileAttributesChanged();
    void RecursiveChanged();
    void SendEventsChanged();
    void ProgressKindChanged();

protected:
    // The abort flag: the Cancel handed to OnOperationProgress, cleared by the outermost Start.
    bool m_abort = false;
    // Total size of the current folder operation and bytes processed so far.
    qint32 m_totalSize = 0;
    qint32 m_bytesProcessed = 0;

    // Runs Work between Start and Finish; Finish runs also when Work raises.
    template <typename Work>
    auto operation(Work &&work);

private:
    void setProcessed(qint32 value);
    void paintAtHumanPace();
    void setBarVisible(bool visible);
    qint32 measure(const QString &Folder, bool count);
    qint32 measureTree(const QString &folder, bool count);
    bool copyTree(const QString &source, const QString &destination);
    void deleteTree(const QString &folder, bool &success);
    // The walk of the in-use test and the search: Visit returns true to end it.
    using TVisit = std::function<bool(const QString &folder, const QString &name, bool directory)>;
    bool walk(const QString &folder, const TVisit &visit);

    QString m_copyFrom;
    QString m_copyTo;
    QString m_filter = QStringLiteral("*.*");
    bool m_progress = true;
    QString m_onNotExists;
    bool m_showFileNames = false;
    QString m_caption;
    bool m_movefile = false;
    qint32 m_processed = 0;
    bool m_transferTimeDate = true;
    bool m_transferFileAttributes = true;
    bool m_recursive = true;
    bool m_sendEvents = true;
    TProgressKind m_progressKind = pkDirectory;

    int m_depth = 0;
    bool m_working = false;
    std::unique_ptr<TProgForm> m_form;
    QElapsedTimer m_paintClock;
};

using TProgressKind = TCustomCopyFile::TProgressKind;
inline constexpr TProgressKind pkFile = TCustomCopyFile::pkFile;
inline constexpr TProgressKind pkDirectory = TCustomCopyFile::pkDirectory;

template <typename Work>
auto TCustomCopyFile::operation(Work &&work)
{
    Start();
    try {
        if constexpr (std::is_void_v<decltype(work())>) {
            work();
            Finish();
        } else {
            auto result = work();
            Finish();
            return result;
        }
    } catch (...) {
        Finish();
        throw;
    }
}

// The component with its properties published, in the order they are stored.
class MATTONI_WIDGETS_EXPORT TCopyFile : public TCustomCopyFile
{
    Q_OBJECT
    Q_PROPERTY(QString CopyFrom READ CopyFrom WRITE setCopyFrom NOTIFY CopyFromChanged)
    Q_PROPERTY(QString CopyTo READ CopyTo WRITE setCopyTo NOTIFY CopyToChanged)
    Q_PROPERTY(QString Filter READ Filter WRITE setFilter NOTIFY FilterChanged)
    Q_PROPERTY(bool Progress READ Progress WRITE setProgress NOTIFY ProgressChanged)
    Q_PROPERTY(QString OnNotExists READ OnNotExists WRITE setOnNotExists NOTIFY OnNotExistsChanged)
    Q_PROPERTY(bool ShowFileNames READ ShowFileNames WRITE setShowFileNames NOTIFY ShowFileNamesChanged)
    Q_PROPERTY(QString Caption READ Caption WRITE setCaption NOTIFY CaptionChanged)
    Q_PROPERTY(bool Movefile READ Movefile WRITE setMovefile NOTIFY MovefileChanged)
    Q_PROPERTY(qint32 Processed READ Processed NOTIFY ProcessedChanged)
    Q_PROPERTY(bool TransferTimeDate READ TransferTimeDate WRITE setTransferTimeDate NOTIFY TransferTimeDateChanged)
    Q_PROPERTY(bool TransferFileAttributes READ TransferFileAttributes WRITE setTransferFileAttributes
                   NOTIFY TransferFileAttributesChanged)
    Q_PROPERTY(bool Recursive READ Recursive WRITE setRecursive NOTIFY RecursiveChanged)
    Q_PROPERTY(bool SendEvents READ SendEvents WRITE setSendEvents NOTIFY SendEventsChanged)
    Q_PROPERTY(mattoni::TCustomCopyFile::TProgressKind ProgressKind READ ProgressKind WRITE setProgressKind
                   NOTIFY ProgressKindChanged)

public:
    explicit TCopyFile(QObject *parent = nullptr);
    ~TCopyFile() override;
};

} // namespace mattoni
