// The streams TSevenZip hands to the engine: a reader over one file or over the volumes of a
// split archive, and a writer to one file or to volumes of a given size. Private to the
// archive component.
#pragma once

#include "SevenZipEngine_p.h"

#include <QString>

#include <functional>
#include <vector>

namespace mattoni::engine7z {

// Closes a POSIX file descriptor when it goes.
class FileHandle
{
public:
    FileHandle() = default;
    explicit FileHandle(int fd) : m_fd(fd) {}
    FileHandle(FileHandle &&other) noexcept : m_fd(other.release()) {}
    FileHandle &operator=(FileHandle &&other) noexcept;
    FileHandle(const FileHandle &) = delete;
    FileHandle &operator=(const FileHandle &) = delete;
    ~FileHandle() { reset(); }
    int get() const { return m_fd; }
    bool isOpen() const { return m_fd >= 0; }
    int release()
    {
        const int fd = m_fd;
        m_fd = -1;
        return fd;
    }
    void reset(int fd = -1);

private:
    int m_fd = -1;
};

FileHandle OpenForReading(const QString &fileName);
qint64 FileSize(int fd);

// The archive's full size as its 32-byte start header tells it (signature, format version,
// the header's CRC, then the offset and size of the closing header); 0 when the bytes are not
// a valid start header.
qint64 ArchiveSizeFromStartHeader(const unsigned char *header);

// The name of volume Index (0-based) of a split archive: "name.7z.001", "name.7z.002" ...
QString VolumeName(const QString &baseName, int index);

// Reads one file, or the volumes of a split archive as one stream. Volumes are opened when the
// engine first reads from them; a missing one is asked for through RequestVolume.
class TMyStreamReader final : public IInStream, public IStreamGetSize, public ComObject<TMyStreamReader>
{
public:
    // Answers false to give up; may change FileName to where the volume is. Last is true for
    // the archive's last volume, the one read first.
    using VolumeRequest = std::function<bool(QString &FileName, bool Last)>;
    // Runs a call on the thread that started the operation, where dialogs may open.
    using OwnerRunner = std::function<void(const std::function<void()> &)>;

    // One file already opened.
    TMyStreamReader(FileHandle file, const QString &fileName);
    // The volumes of BaseName (without ".001"); call OpenVolumes before use. Without a
    // Request, a missing last volume is looked for with BrowseForFile.
    TMyStreamReader(const QString &baseName, VolumeRequest request, OwnerRunner runOnOwner);

    // Finds the volume size and count and opens the first and the last volume.
    bool OpenVolumes();
    // The volume that could not be opened, if any.
    QString FailedFile() const { return m_failedFile; }

    HRESULT QueryInterface(const GUID &iid, void **outObject) override;
    ULONG AddRef() override { return addRef(); }
    ULONG Release() override { return release(); }
    HRESULT Read(void *data, quint32 size, quint32 *processedSize) override;
    HRESULT Seek(qint64 offset, quint32 seekOrigin, quint64 *newPosition) override;
    HRESULT GetSize(quint64 *size) override;

private:
    struct Volume
    {
        QString fileName;
        FileHandle file;
        qint64 size = -1;
    };
    qint64 ReadPart(void *data, qint64 size);
    bool OpenVolume(int index);
    bool OpenNextVolume();
    bool OpenLastVolume();
    bool BrowseForFile(QString &fileName);
    qint64 volumeStart(int index) const { return qint64(index) * m_volumeSize; }

    std::vector<Volume> m_volumes;
    QString m_baseName;
    VolumeRequest m_request;
    OwnerRunner m_runOnOwner;
    qint64 m_volumeSize = 0; // every volume but the last
    qint64 m_size = 0;
    qint64 m_pos = 0;
    int m_current = 0;
    QString m_failedFile;
};

// Writes one file (after Offset bytes, where a self-extracting stub goes), or volumes of
// VolumeSize bytes. Positions the engine sees start at 0 either way.
class TMyStreamWriter final : public IOutStream, public ComObject<TMyStreamWriter>
{
public:
    // Called with each file the writer creates.
    using FileCreated = std::function<void(const QString &FileName)>;

    // One file at FileName, opened (created when Create) and written from Offset.
    TMyStreamWriter(const QString &fileName, FileHandle file, qint64 offset);
    // Volumes BaseName.001, .002 ...
    TMyStreamWriter(const QString &baseName, qint64 volumeSize, FileCreated created);

    QString FailedFile() const { return m_failedFile; }
    int FileCount() const { return int(m_files.size()); }

    HRESULT QueryInterface(const GUID &iid, void **outObject) override;
    ULONG AddRef() override { return addRef(); }
    ULONG Release() override { return release(); }
    HRESULT Write(const void *data, quint32 size, quint32 *processedSize) override;
    HRESULT Seek(qint64 offset, quint32 seekOrigin, quint64 *newPosition) override;
    HRESULT SetSize(quint64 newSize) override;

private:
    qint64 WritePart(const void *data, qint64 size);
    bool CreateNewFile();
    int fileAt(int index);

    QString m_baseName;
    qint64 m_volumeSize = 0; // 0: one file
    qint64 m_offset = 0;
    FileCreated m_created;
    std::vector<QString> m_files;
    FileHandle m_file;
    int m_fileIndex = -1;
    qint64 m_pos = 0;
    qint64 m_size = 0;
    QString m_failedFile;
};

// An extracted file: written beside its destination under a hidden temporary name and put in
// place by Commit only once the engine has checked it, so a wrong password or a damaged item
// never leaves a half-written file behind.
class TMyExtractStream final : public ISequentialOutStream, public ComObject<TMyExtractStream>
{
public:
    TMyExtractStream(FileHandle file, const QString &tempName, const QString &fileName);
    ~TMyExtractStream();
    static TMyExtractStream *Create(const QString &fileName);

    bool Commit(quint32 mode, qint64 modificationTime);
    bool Failed() const { return m_failed; }

    HRESULT QueryInterface(const GUID &iid, void **outObject) override;
    ULONG AddRef() override { return addRef(); }
    ULONG Release() override { return release(); }
    HRESULT Write(const void *data, quint32 size, quint32 *processedSize) override;

private:
    FileHandle m_file;
    QString m_tempName;
    QString m_fileName;
    bool m_committed = false;
    bool m_failed = false;
};

} // namespace mattoni::engine7z
