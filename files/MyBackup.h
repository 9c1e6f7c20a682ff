// TMyBackup: saves the files of one folder onto a removable backup drive, spreading them over
// as many disks as needed, and restores them from those disks in order. Every disk carries an
// info file of "key=value" lines (CR LF) telling which backup it belongs to, its number in the
// series, the total size of the backup and whether a file goes on onto the next disk.
#pragma once

#include "CopyFile.h"
#include "mattoni_widgets_export.h"

namespace mattoni {

// The operation in progress; opNone when idle.
enum TOperation { opBackup, opRestore, opNone };

class MATTONI_WIDGETS_EXPORT TMyBackup : public TCustomCopyFile
{
    Q_OBJECT
    Q_PROPERTY(QString DrivePath READ DrivePath WRITE setDrivePath NOTIFY DrivePathChanged)
    Q_PROPERTY(QString FilesPath READ FilesPath WRITE setFilesPath NOTIFY FilesPathChanged)
    Q_PROPERTY(QStringList FilesToBackup READ FilesToBackup WRITE setFilesToBackup NOTIFY FilesToBackupChanged)
    Q_PROPERTY(QStringList FilesRestored READ FilesRestored WRITE setFilesRestored NOTIFY FilesRestoredChanged)
    Q_PROPERTY(QString BackupCaption READ BackupCaption WRITE setBackupCaption NOTIFY BackupCaptionChanged)
    Q_PROPERTY(QString RestoreCaption READ RestoreCaption WRITE setRestoreCaption NOTIFY RestoreCaptionChanged)
    Q_PROPERTY(bool ConfirmDelete READ ConfirmDelete WRITE setConfirmDelete NOTIFY ConfirmDeleteChanged)
    Q_PROPERTY(QString Version READ Version WRITE setVersion NOTIFY VersionChanged)
    Q_PROPERTY(QString ID READ ID WRITE setID NOTIFY IDChanged)
    Q_PROPERTY(QString IdLabel READ IdLabel WRITE setIdLabel NOTIFY IdLabelChanged)
    Q_PROPERTY(QString BackupName READ BackupName WRITE setBackupName NOTIFY BackupNameChanged)
    Q_PROPERTY(QString UserName READ UserName WRITE setUserName NOTIFY UserNameChanged)
    Q_PROPERTY(QString UserCompany READ UserCompany WRITE setUserCompany NOTIFY UserCompanyChanged)
    Q_PROPERTY(QString UserLicence READ UserLicence WRITE setUserLicence NOTIFY UserLicenceChanged)
    Q_PROPERTY(QString InfosFileName READ InfosFileName WRITE setInfosFileName NOTIFY InfosFileNameChanged)
    Q_PROPERTY(QString Filter READ Filter WRITE setFilter NOTIFY FilterChanged)
    Q_PROPERTY(bool Progress READ Progress WRITE setProgress NOTIFY ProgressChanged)

public:
    explicit TMyBackup(QObject *parent = nullptr);
    ~TMyBackup() override;

    // Root of the backup drive, a letter and a colon first ("A:/"); the user may change it in
    // the insert-disk prompts.
    QString DrivePath() const { return m_drivePath; }
    void setDrivePath(const QString &value);
    // The folder whose files are saved, and into which they are restored.
    QString FilesPath() const { return m_filesPath; }
    void setFilesPath(const QString &value);
    // Files to save, by bare name from FilesPath; when empty, the files of FilesPath matching
    // Filter (sub-folders are not saved).
    QStringList FilesToBackup() const { return m_filesToBackup; }
    void setFilesToBackup(const QStringList &value);
    // Filled by Restore: the path on the backup drive of every file restored.
    QStringList FilesRestored() const { return m_filesRestored; }
    void setFilesRestored(const QStringList &value);
    QString BackupCaption() const { return m_backupCaption; }
    void setBackupCaption(const QString &value);
    QString RestoreCaption() const { return m_restoreCaption; }
    void setRestoreCaption(const QString &value);
    bool ConfirmDelete() const { return m_confirmDelete; }
    void setConfirmDelete(bool value);
    QString Version() const { return m_version; }
    void setVersion(const QString &value);
    // Identity of the backup series, compared on restore; IdLabel names it to the user.
    QString ID() const { return m_id; }
    void setID(const QString &value);
    QString IdLabel() const { return m_idLabel; }
    void setIdLabel(const QString &value);
    QString BackupName() const { return m_backupName; }
    void setBackupName(const QString &value);
    QString UserName() const { return m_userName; }
    void setUserName(const QString &value);
    QString UserCompany() const { return m_userCompany; }
    void setUserCompany(const QString &value);
    QString UserLicence() const { return m_userLicence; }
    void setUserLicence(const QString &value);
    QString InfosFileName() const { return m_infosFileName; }
    void setInfosFileName(const QString &value);

    // Saves; errors go on to the caller after the operation has been closed. Cancelling an
    // insert-disk prompt raises EAbort, which callers pass over silently.
    void Backup();
    // Restores, appending every piece to the file of the same name in FilesPath.
    void Restore();
    // Waits for a medium and loads the info file of the disk in the drive into List; false,
    // after a warning, when the disk has none.
    bool GetInfos(QStringList &List);

    // The steps of Backup and Restore.
    void CheckDrive();
    void NextDisk();
    bool CheckDiskContent();
    bool CheckFirstDisk();
    void CheckPath();
    void WriteFiles();
    void WriteFile(const QString &FileName);
    void WriteInfos();
    void ReadFiles();
    void ReadFile(const QString &FileName);

signals:
    void DrivePathChanged();
    void FilesPathChanged();
    void FilesToBackupChanged();
    void FilesRestoredChanged();
    void BackupCaptionChanged();
    void RestoreCaptionChanged();
    void ConfirmDeleteChanged();
    void VersionChanged();
    void IDChanged();
    void IdLabelChanged();
    void BackupNameChanged();
    void UserNameChanged();
    void UserCompanyChanged();
    void UserLicenceChanged();
    void InfosFileNameChanged();

private:
    template <typename Work>
    void run(TOperation operation, const QString &caption, Work &&work);
    void validateDrivePath();
    // The insert-disk prompt; false when the user cancels it.
    bool askForDisk(int disk);
    QString driveRoot() const;
    qint32 room() const;

    QString m_drivePath = QStringLiteral("A:/");
    QString m_filesPath = QStringLiteral("C:/");
    QStringList m_filesToBackup;
    QStringList m_filesRestored;
    QString m_backupCaption;
    QString m_restoreCaption;
    bool m_confirmDelete = true;
    QString m_version;
    QString m_id;
    QString m_idLabel;
    QString m_backupName;
    QString m_userName;
    QString m_userCompany;
    QString m_userLicence;
    QString m_infosFileName = QStringLiteral("infos.txt");

    TOperation m_operation = opNone;
    int m_diskNumber = 1;
    QChar m_driveLetter;
    // The file being saved or restored, empty between files.
    QString m_currentName;
    // "Backup.Name" of the first disk, which the later disks must repeat.
    QString m_firstDiskName;
    // The last info file read said that a file goes on onto the next disk.
    bool m_continues = false;
};

} // namespace mattoni
