// TSevenZip: lists, writes and extracts 7z archives (encrypted, split into volumes or made
// self-extracting) by driving the 7-Zip engine library loaded at run time. File names are
// UTF-16 texts throughout.
#pragma once

#include "DateTime.h"
#include "mattoni_core_export.h"

#include <QList>
#include <QObject>
#include <QPair>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <atomic>
#include <functional>
#include <initializer_list>
#include <vector>

namespace mattoni {

namespace engine7z {
struct Engine;
struct AddEntry;
class OwnerThread;
} // namespace engine7z

// The engine library: empty means "7z.so" beside the program when present, else the one of
// the system's 7-Zip package. Read at the first use of a given name; each library is loaded once.
MATTONI_CORE_EXPORT extern QString SevenZipLibrary;

// Asks the user for a file; the widgets library installs a file dialog here. Answers false when
// the user gives up. Used when the last volume of a split archive cannot be found and no
// OnOpenVolume handler is assigned.
using TBrowseForFile = std::function<bool(const QString &Title, QString &FileName)>;
MATTONI_CORE_EXPORT extern TBrowseForFile SevenZipBrowseForFile;

// A set over an enumeration with ordinals 0..31, as the option sets of the component.
template<class E>
class TEnumSet
{
public:
    constexpr TEnumSet() = default;
    constexpr TEnumSet(std::initializer_list<E> values)
    {
        for (E v : values)
            m_bits |= bit(v);
    }
    constexpr bool contains(E v) const { return (m_bits & bit(v)) != 0; }
    constexpr TEnumSet &include(E v)
    {
        m_bits |= bit(v);
        return *this;
    }
    constexpr TEnumSet &exclude(E v)
    {
        m_bits &= ~bit(v);
        return *this;
    }
    constexpr bool isEmpty() const { return m_bits == 0; }
    constexpr quint32 toInt() const { return m_bits; }
    friend constexpr bool operator==(TEnumSet a, TEnumSet b) { return a.m_bits == b.m_bits; }

private:
    static constexpr quint32 bit(E v) { return quint32(1) << unsigned(v); }
    quint32 m_bits = 0;
};

// A list of wide texts: the names handed to Add and the volumes an Add wrote.
class MATTONI_CORE_EXPORT TWideStringList_
{
public:
    // Returns the index of the new string.
    int AddString(const QString &s);
    // Removes the first string equal to S; false when there is none.
    bool RemoveString(const QString &s);
    void Clear();
    int Count() const { return int(m_items.size()); }
    const QString &Strings(int index) const { return m_items.at(index); }
    const QStringList &toStringList() const { return m_items; }

private:
    QStringList m_items;
};

class MATTONI_CORE_EXPORT TSevenZip : public QObject
{
    Q_OBJECT
public:
    enum TCompressType { LZMA, PPMD };
    Q_ENUM(TCompressType)
    // Stored as a full integer: a value outside the list still reaches the engine as level 5.
    enum TCompressStrength : int { SAVE, FAST, NORMAL, MAXIMUM, ULTRA };
    Q_ENUM(TCompressStrength)
    enum AddOptsEnum { AddRecurseDirs, AddSolid, AddStoreOnlyFilename, AddIncludeDriveLetter, AddEncryptFilename };
    Q_ENUM(AddOptsEnum)
    enum ExtractOptsEnum { ExtractNoPath, ExtractOverwrite };
    Q_ENUM(ExtractOptsEnum)
    using AddOpts = TEnumSet<AddOptsEnum>;
    using ExtractOpts = TEnumSet<ExtractOptsEnum>;

private:
    Q_PROPERTY(QString AddRootDir READ AddRootDir WRITE setAddRootDir)
    Q_PROPERTY(bool SFXCreate READ SFXCreate WRITE setSFXCreate)
    Q_PROPERTY(QString SFXModule READ SFXModule WRITE setSFXModule)
    Q_PROPERTY(AddOpts AddOptions READ AddOptions WRITE setAddOptions)
    Q_PROPERTY(ExtractOpts ExtractOptions READ ExtractOptions WRITE setExtractOptions)
    Q_PROPERTY(QString ExtrBaseDir READ ExtrBaseDir WRITE setExtrBaseDir)
    Q_PROPERTY(TCompressType LZMACompressType READ LZMACompressType WRITE setLZMACompressType)
    Q_PROPERTY(TCompressStrength LZMACompressStrength READ LZMACompressStrength WRITE setLZMACompressStrength)
    Q_PROPERTY(qint32 LZMAStrength READ LZMAStrength WRITE setLZMAStrength)
    Q_PROPERTY(qint32 LPPMDmem READ LPPMDmem WRITE setLPPMDmem)
    Q_PROPERTY(qint32 LPPMDsize READ LPPMDsize WRITE setLPPMDsize)
    Q_PROPERTY(QString SZFileName READ SZFileName WRITE setSZFileName)
    Q_PROPERTY(qint32 NumberOfFiles READ NumberOfFiles)
    Q_PROPERTY(qint32 VolumeSize READ VolumeSize WRITE setVolumeSize)
    Q_PROPERTY(QString Password READ Password WRITE setPassword)

public:
    using T7zListfileEvent = std::function<void(QObject *Sender, const QString &Filename, qint64 Fileindex,
                                                qint64 FileSizeU, qint64 FileSizeP, qint64 Fileattr,
                                                qint64 Filecrc, const QString &Filemethod, TDateTime FileTime)>;
    using T7zAddFileEvent = std::function<void(QObject *Sender, const QString &Filename, qint64 Filesize)>;
    using T7zExtractfileEvent = std::function<void(QObject *Sender, const QString &Filename, qint64 Filesize)>;
    using T7zProgressEvent =
        std::function<void(QObject *Sender, const QString &Filename, qint64 FilePosArc, qint64 FilePosFile)>;
    using T7zPreProgressEvent = std::function<void(QObject *Sender, qint64 MaxProgress)>;
    using T7zMessageEvent =
        std::function<void(QObject *Sender, qint32 ErrCode, const QString &Message, const QString &Filename)>;
    using T7zSetNewNameEvent = std::function<void(QObject *Sender, quint32 FileIndex, QString &OldFileName)>;
    using T7zExtractOverwrite = std::function<void(QObject *Sender, const QString &FileName, bool &DoOverwrite)>;
    using TOpenVolume = std::function<void(QString &arcFileName, bool Removable, bool &Cancel)>;

    // Last-error codes.
    enum : qint32 {
        ErrSuccess = 0,
        ErrFileNotFound,
        ErrDataError,
        ErrCRCError,
        ErrUnsupportedMethod,
        ErrIndexOutOfRange,
        ErrUserCanceled,
        ErrNotSFX,
        ErrSFXModule,
        ErrCreateSFX,
        ErrNoFilesToAdd,
        ErrCreateFile,
    };

    // Block size of the self-extracting conversions and window of SFXCheck.
    static constexpr qint64 SFXBlockSize = 131072;
    static constexpr qint64 SFXSearchStart = 65536;
    static constexpr qint64 SFXSearchSize = 81920;

    explicit TSevenZip(QObject *parent = nullptr);
    ~TSevenZip() override;

    QString AddRootDir() const { return m_addRootDir; }
    void setAddRootDir(const QString &value);
    bool SFXCreate() const { return m_sfxCreate; }
    void setSFXCreate(bool value);
    QString SFXModule() const { return m_sfxModule; }
    void setSFXModule(const QString &value);
    AddOpts AddOptions() const { return m_addOptions; }
    void setAddOptions(AddOpts value);
    ExtractOpts ExtractOptions() const { return m_extractOptions; }
    void setExtractOptions(ExtractOpts value);
    QString ExtrBaseDir() const { return m_extrBaseDir; }
    void setExtrBaseDir(const QString &value);
    TCompressType LZMACompressType() const { return m_compressType; }
    void setLZMACompressType(TCompressType value);
    TCompressStrength LZMACompressStrength() const { return m_compressStrength; }
    void setLZMACompressStrength(TCompressStrength value);
    // 0 = engine default, else 1..27; raises ERangeError outside.
    qint32 LZMAStrength() const { return m_lzmaStrength; }
    void setLZMAStrength(qint32 value);
    // 0 = engine default, else 1..31; raises ERangeError outside.
    qint32 LPPMDmem() const { return m_ppmdMem; }
    void setLPPMDmem(qint32 value);
    // 0 = engine default, else 2..32; raises ERangeError outside.
    qint32 LPPMDsize() const { return m_ppmdSize; }
    void setLPPMDsize(qint32 value);
    QString SZFileName() const { return m_fileName; }
    void setSZFileName(const QString &value);
    qint32 NumberOfFiles() const { return m_numberOfFiles; }
    // 0 = one file; raises ERangeError when negative.
    qint32 VolumeSize() const { return m_volumeSize; }
    void setVolumeSize(qint32 value);
    QString Password() const { return m_password; }
    void setPassword(const QString &value);

    // The names Add writes: files, folders, or a folder followed by a wildcard name.
    TWideStringList_ &Files() { return m_files; }
    const TWideStringList_ &Files() const { return m_files; }
    // The volumes the last split Add wrote, in order.
    const TWideStringList_ &NamesOfVolumesWritten() const { return m_volumesWritten; }
    void ClearNamesOfVolumeWritten() { m_volumesWritten.Clear(); }

    // Each answers true when everything went well; failures set the last error and fire
    // OnMessage. A missing engine raises EOSError.
    bool List();
    bool Add();
    bool Extract(bool TestArchive = false);
    // Index of the item whose name equals FileName ignoring case; -1 when there is none.
    qint32 GetIndexByFilename(const QString &FileName);

    void Cancel() { m_abort = true; }
    void ResetCancel() { m_abort = false; }
    bool Canceled() const { return m_abort; }

    // Offset of the archive inside a self-extracting file, counted from SFXSearchStart;
    // -1 (and error 7) when the file holds none.
    qint64 SFXCheck(const QString &FileName);
    bool Convert7ztoSFX(const QString &ArchiveName);
    bool ConvertSFXto7z(const QString &SFXName);
    // The stub Convert7ztoSFX and Add copy: SFXModule as given when it names an existing
    // file, else beside the program, else the system's console stub for the default name.
    QString SFXModulePath() const;

    // The properties Add hands to the engine, in order: names and values (unsigned numbers or
    // texts).
    QList<QPair<QString, QVariant>> EngineProperties() const;
    // The engine's compression level for a strength.
    static quint32 CompressionLevel(TCompressStrength strength);

    qint32 LastError() const { return m_lastError; }
    // Only stores the code.
    void SetLastError(qint32 code) { m_lastError = code; }
    QString LastErrorText() const { return ErrorText(m_lastError); }
    // The text of a last-error code; empty outside 0..11.
    static QString ErrorText(qint32 code);

    T7zListfileEvent OnListfile;
    T7zAddFileEvent OnAddfile;
    T7zExtractfileEvent OnExtractfile;
    T7zProgressEvent OnProgress;
    T7zPreProgressEvent OnPreProgress;
    T7zMessageEvent OnMessage;
    T7zSetNewNameEvent OnSetAddName;
    T7zSetNewNameEvent OnSetExtractName;
    T7zExtractOverwrite OnExtractOverwrite;
    TOpenVolume OnOpenVolume;

    // Used by the engine callbacks, always on the thread that called List, Add or Extract.
    void Fail(qint32 code, const QString &fileName);
    std::atomic<bool> &AbortFlag() { return m_abort; }

private:
    struct OpenArchive;
    bool collectItems(std::vector<engine7z::AddEntry> &items);
    QString storedName(const QString &path) const;
    QString archiveFileForReading() const;
    bool openArchive(const engine7z::Engine &engine, engine7z::OwnerThread &thread, OpenArchive &open);
    void beginOperation();

    QString m_addRootDir;
    bool m_sfxCreate = false;
    QString m_sfxModule = QStringLiteral("7z.sfx");
    AddOpts m_addOptions;
    ExtractOpts m_extractOptions;
    QString m_extrBaseDir;
    TCompressType m_compressType = LZMA;
    TCompressStrength m_compressStrength = NORMAL;
    qint32 m_lzmaStrength = 0;
    qint32 m_ppmdMem = 0;
    qint32 m_ppmdSize = 0;
    QString m_fileName;
    qint32 m_numberOfFiles = 0;
    qint32 m_volumeSize = 0;
    QString m_password;
    TWideStringList_ m_files;
    TWideStringList_ m_volumesWritten;
    qint32 m_lastError = 0;
    std::atomic<bool> m_abort{false};
    bool m_busy = false;
};

using TCompressType = TSevenZip::TCompressType;
using TCompressStrength = TSevenZip::TCompressStrength;
using AddOptsEnum = TSevenZip::AddOptsEnum;
using ExtractOptsEnum = TSevenZip::ExtractOptsEnum;
using AddOpts = TSevenZip::AddOpts;
using ExtractOpts = TSevenZip::ExtractOpts;
using enum TSevenZip::TCompressType;
using enum TSevenZip::TCompressStrength;
using enum TSevenZip::AddOptsEnum;
using enum TSevenZip::ExtractOptsEnum;
using T7zListfileEvent = TSevenZip::T7zListfileEvent;
using T7zAddFileEvent = TSevenZip::T7zAddFileEvent;
using T7zExtractfileEvent = TSevenZip::T7zExtractfileEvent;
using T7zProgressEvent = TSevenZip::T7zProgressEvent;
using T7zPreProgressEvent = TSevenZip::T7zPreProgressEvent;
using T7zMessageEvent = TSevenZip::T7zMessageEvent;
using T7zSetNewNameEvent = TSevenZip::T7zSetNewNameEvent;
using T7zExtractOverwrite = TSevenZip::T7zExtractOverwrite;
using TOpenVolume = TSevenZip::TOpenVolume;

} // namespace mattoni
