// Streams between the file system and the 7-Zip engine.
#include "SevenZipStreams_p.h"

#include "SevenZip.h"

#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>

#include <zlib.h>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mattoni::engine7z {

namespace {

constexpr quint32 SeekSet = 0;
constexpr quint32 SeekCur = 1;
constexpr quint32 SeekEnd = 2;

QByteArray nativeName(const QString &fileName)
{
    return QFile::encodeName(fileName);
}

// Moves Pos as the engine's Seek asks; positions past the end are allowed, before the start not.
HRESULT SeekTo(qint64 &pos, qint64 size, qint64 offset, quint32 seekOrigin, quint64 *newPosition)
{
    qint64 base;
    switch (seekOrigin) {
    case SeekSet: base = 0; break;
    case SeekCur: base = pos; break;
    case SeekEnd: base = size; break;
    default: return STG_E_INVALIDFUNCTION;
    }
    if (base + offset < 0)
        return E_INVALIDARG;
    pos = base + offset;
    if (newPosition)
        *newPosition = quint64(pos);
    return S_OK;
}

} // namespace

qint64 ArchiveSizeFromStartHeader(const unsigned char *h)
{
    static const unsigned char signature[6] = {'7', 'z', 0xBC, 0xAF, 0x27, 0x1C};
    if (memcmp(h, signature, 6) != 0)
        return 0;
    const quint32 crc = quint32(h[8]) | quint32(h[9]) << 8 | quint32(h[10]) << 16 | quint32(h[11]) << 24;
    if (crc32(0, h + 12, 20) != crc)
        return 0;
    auto u64 = [h](int at) {
        quint64 v = 0;
        for (int i = 7; i >= 0; --i)
            v = v << 8 | h[at + i];
        return v;
    };
    const quint64 offset = u64(12);
    const quint64 size = u64(20);
    if (offset > quint64(1) << 62 || size > quint64(1) << 62)
        return 0;
    return qint64(32 + offset + size);
}

FileHandle &FileHandle::operator=(FileHandle &&other) noexcept
{
    if (this != &other)
        reset(other.release());
    return *this;
}

void FileHandle::reset(int fd)
{
    if (m_fd >= 0)
        ::close(m_fd);
    m_fd = fd;
}

FileHandle OpenForReading(const QString &fileName)
{
    return FileHandle(::open(nativeName(fileName).constData(), O_RDONLY | O_CLOEXEC));
}

qint64 FileSize(int fd)
{
    struct stat st;
    return ::fstat(fd, &st) == 0 ? qint64(st.st_size) : -1;
}

QString VolumeName(const QString &baseName, int index)
{
    return baseName + QStringLiteral(".%1").arg(index + 1, 3, 10, QLatin1Char('0'));
}

// ---------------------------------------------------------------------------------------------

TMyStreamReader::TMyStreamReader(FileHandle file, const QString &fileName)
{
    Volume v;
    v.fileName = fileName;
    v.size = FileSize(file.get());
    v.file = std::move(file);
    m_size = v.size;
    m_volumeSize = v.size;
    m_volumes.push_back(std::move(v));
}

TMyStreamReader::TMyStreamReader(const QString &baseName, VolumeRequest request, OwnerRunner runOnOwner)
    : m_baseName(baseName)
    , m_request(std::move(request))
    , m_runOnOwner(std::move(runOnOwner))
{
}

bool TMyStreamReader::OpenVolumes()
{
    m_volumes.clear();
    m_volumes.emplace_back();
    m_volumes[0].fileName = VolumeName(m_baseName, 0);
    if (!OpenVolume(0))
        return false;
    m_volumeSize = m_volumes[0].size;
    unsigned char header[32] = {};
    const bool haveHeader = ::pread(m_volumes[0].file.get(), header, sizeof header, 0) == qint64(sizeof header);
    const qint64 total = haveHeader ? ArchiveSizeFromStartHeader(header) : 0;
    if (total > m_volumeSize && m_volumeSize > 0) {
        const qint64 count = (total + m_volumeSize - 1) / m_volumeSize;
        if (count > 99999)
            return false;
        for (int i = 1; i < int(count); ++i) {
            m_volumes.emplace_back();
            m_volumes.back().fileName = VolumeName(m_baseName, i);
        }
        m_size = total;
        return OpenLastVolume();
    }
    // Not a 7z start header (or a single volume): the volumes present one after another.
    m_size = m_volumeSize;
    for (int i = 1;; ++i) {
        const QString name = VolumeName(m_baseName, i);
        FileHandle file = OpenForReading(name);
        if (!file.isOpen())
            break;
        Volume v;
        v.fileName = name;
        v.size = FileSize(file.get());
        m_volumes.push_back(std::move(v));
        m_size += m_volumes.back().size;
    }
    return true;
}

bool TMyStreamReader::OpenVolume(int index)
{
    Volume &v = m_volumes[size_t(index)];
    if (v.file.isOpen())
        return true;
    const bool last = index == int(m_volumes.size()) - 1 && index > 0;
    QString name = v.fileName;
    FileHandle file = OpenForReading(name);
    while (!file.isOpen()) {
        bool retry = false;
        if (m_request)
            retry = m_request(name, last);
        else if (last)
            m_runOnOwner([&] { retry = BrowseForFile(name); });
        if (!retry) {
            m_failedFile = name;
            return false;
        }
        file = OpenForReading(name);
    }
    v.fileName = name;
    v.size = FileSize(file.get());
    v.file = std::move(file);
    // Only the volume being read stays open besides the first and the last, which the engine
    // comes back to.
    for (size_t i = 1; i + 1 < m_volumes.size(); ++i)
        if (int(i) != index)
            m_volumes[i].file.reset();
    return true;
}

bool TMyStreamReader::OpenNextVolume()
{
    if (m_current + 1 >= int(m_volumes.size()))
        return false;
    ++m_current;
    return OpenVolume(m_current);
}

bool TMyStreamReader::OpenLastVolume()
{
    return OpenVolume(int(m_volumes.size()) - 1);
}

bool TMyStreamReader::BrowseForFile(QString &fileName)
{
    if (!SevenZipBrowseForFile)
        return false;
    return SevenZipBrowseForFile(QStringLiteral("Select last volume"), fileName);
}

qint64 TMyStreamReader::ReadPart(void *data, qint64 size)
{
    Volume &v = m_volumes[size_t(m_current)];
    const qint64 inVolume = m_pos - volumeStart(m_current);
    const qint64 count = qMin(size, v.size - inVolume);
    if (count <= 0)
        return 0;
    qint64 done;
    do {
        done = ::pread(v.file.get(), data, size_t(count), inVolume);
    } while (done < 0 && errno == EINTR);
    return done;
}

HRESULT TMyStreamReader::Read(void *data, quint32 size, quint32 *processedSize)
{
    if (processedSize)
        *processedSize = 0;
    if (size == 0 || m_pos >= m_size)
        return S_OK;
    int index = m_volumeSize > 0 ? int(m_pos / m_volumeSize) : 0;
    index = qMin(index, int(m_volumes.size()) - 1);
    if (index != m_current || !m_volumes[size_t(index)].file.isOpen()) {
        m_current = index;
        if (!OpenVolume(index))
            return E_FAIL;
    }
    const qint64 done = ReadPart(data, qMin<qint64>(size, m_size - m_pos));
    if (done < 0)
        return E_FAIL;
    m_pos += done;
    if (processedSize)
        *processedSize = quint32(done);
    return S_OK;
}

HRESULT TMyStreamReader::Seek(qint64 offset, quint32 seekOrigin, quint64 *newPosition)
{
    return SeekTo(m_pos, m_size, offset, seekOrigin, newPosition);
}

HRESULT TMyStreamReader::GetSize(quint64 *size)
{
    *size = quint64(m_size);
    return S_OK;
}

HRESULT TMyStreamReader::QueryInterface(const GUID &iid, void **outObject)
{
    if (iid == IID_IUnknown || iid == IID_ISequentialInStream || iid == IID_IInStream)
        return Answer<IInStream>(this, outObject);
    if (iid == IID_IStreamGetSize)
        return Answer<IStreamGetSize>(this, outObject);
    return NoInterface(outObject);
}

// ---------------------------------------------------------------------------------------------

TMyStreamWriter::TMyStreamWriter(const QString &fileName, FileHandle file, qint64 offset)
    : m_offset(offset)
    , m_file(std::move(file))
    , m_fileIndex(0)
{
    m_files.push_back(fileName);
}

TMyStreamWriter::TMyStreamWriter(const QString &baseName, qint64 volumeSize, FileCreated created)
    : m_baseName(baseName)
    , m_volumeSize(volumeSize)
    , m_created(std::move(created))
{
}

bool TMyStreamWriter::CreateNewFile()
{
    const QString name = VolumeName(m_baseName, int(m_files.size()));
    FileHandle file(::open(nativeName(name).constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666));
    if (!file.isOpen()) {
        m_failedFile = name;
        return false;
    }
    m_files.push_back(name);
    m_file = std::move(file);
    m_fileIndex = int(m_files.size()) - 1;
    if (m_created)
        m_created(name);
    return true;
}

// The descriptor of volume Index, created or opened again as needed; -1 on failure.
int TMyStreamWriter::fileAt(int index)
{
    if (index == m_fileIndex)
        return m_file.get();
    while (int(m_files.size()) <= index)
        if (!CreateNewFile())
            return -1;
    if (index != m_fileIndex) {
        const QString &name = m_files[size_t(index)];
        m_file.reset(::open(nativeName(name).constData(), O_WRONLY | O_CLOEXEC));
        m_fileIndex = m_file.isOpen() ? index : -1;
        if (!m_file.isOpen()) {
            m_failedFile = name;
            return -1;
        }
    }
    return m_file.get();
}

qint64 TMyStreamWriter::WritePart(const void *data, qint64 size)
{
    int index = 0;
    qint64 at = m_pos;
    qint64 count = size;
    if (m_volumeSize > 0) {
        index = int(m_pos / m_volumeSize);
        at = m_pos - qint64(index) * m_volumeSize;
        count = qMin(size, m_volumeSize - at);
    }
    const int fd = fileAt(index);
    if (fd < 0)
        return -1;
    qint64 done;
    do {
        done = ::pwrite(fd, data, size_t(count), m_offset + at);
    } while (done < 0 && errno == EINTR);
    if (done < 0)
        m_failedFile = m_files[size_t(index)];
    return done;
}

HRESULT TMyStreamWriter::Write(const void *data, quint32 size, quint32 *processedSize)
{
    if (processedSize)
        *processedSize = 0;
    const char *p = static_cast<const char *>(data);
    qint64 left = size;
    while (left > 0) {
        const qint64 done = WritePart(p, left);
        if (done <= 0)
            return E_FAIL;
        p += done;
        left -= done;
        m_pos += done;
        m_size = qMax(m_size, m_pos);
        if (processedSize)
            *processedSize += quint32(done);
    }
    return S_OK;
}

HRESULT TMyStreamWriter::Seek(qint64 offset, quint32 seekOrigin, quint64 *newPosition)
{
    return SeekTo(m_pos, m_size, offset, seekOrigin, newPosition);
}

HRESULT TMyStreamWriter::SetSize(quint64 newSize)
{
    const qint64 size = qint64(newSize);
    if (m_volumeSize == 0) {
        if (::ftruncate(m_file.get(), m_offset + size) != 0)
            return E_FAIL;
    } else {
        const int last = size == 0 ? 0 : int((size - 1) / m_volumeSize);
        const int fd = fileAt(last);
        if (fd < 0 || ::ftruncate(fd, size - qint64(last) * m_volumeSize) != 0)
            return E_FAIL;
        // Volumes past the new end are left as they are: the engine only ever grows its output.
    }
    m_size = size;
    return S_OK;
}

HRESULT TMyStreamWriter::QueryInterface(const GUID &iid, void **outObject)
{
    if (iid == IID_IUnknown || iid == IID_ISequentialOutStream || iid == IID_IOutStream)
        return Answer<IOutStream>(this, outObject);
    return NoInterface(outObject);
}

// ---------------------------------------------------------------------------------------------

TMyExtractStream::TMyExtractStream(FileHandle file, const QString &tempName, const QString &fileName)
    : m_file(std::move(file))
    , m_tempName(tempName)
    , m_fileName(fileName)
{
}

TMyExtractStream::~TMyExtractStream()
{
    m_file.reset();
    if (!m_committed)
        ::unlink(nativeName(m_tempName).constData());
}

TMyExtractStream *TMyExtractStream::Create(const QString &fileName)
{
    const QFileInfo info(fileName);
    for (int attempt = 0; attempt < 16; ++attempt) {
        const QString temp = info.path() + QStringLiteral("/.") + info.fileName().left(200)
                             + QStringLiteral(".%1.part").arg(QRandomGenerator::global()->generate(), 8, 16,
                                                                  QLatin1Char('0'));
        FileHandle file(::open(nativeName(temp).constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
        if (file.isOpen())
            return new TMyExtractStream(std::move(file), temp, fileName);
        if (errno != EEXIST)
            return nullptr;
    }
    return nullptr;
}

HRESULT TMyExtractStream::Write(const void *data, quint32 size, quint32 *processedSize)
{
    const char *p = static_cast<const char *>(data);
    qint64 left = size;
    while (left > 0) {
        const qint64 done = ::write(m_file.get(), p, size_t(left));
        if (done < 0 && errno == EINTR)
            continue;
        if (done <= 0) {
            m_failed = true;
            if (processedSize)
                *processedSize = quint32(p - static_cast<const char *>(data));
            return E_FAIL;
        }
        p += done;
        left -= done;
    }
    if (processedSize)
        *processedSize = size;
    return S_OK;
}

bool TMyExtractStream::Commit(quint32 mode, qint64 modificationTime)
{
    if (m_failed || !m_file.isOpen())
        return false;
    ::fchmod(m_file.get(), mode & 07777);
    if (modificationTime != 0) {
        struct timespec times[2];
        times[0].tv_sec = 0;
        times[0].tv_nsec = UTIME_OMIT;
        times[1].tv_sec = modificationTime / 1000000000;
        times[1].tv_nsec = modificationTime % 1000000000;
        if (times[1].tv_nsec < 0) {
            times[1].tv_nsec += 1000000000;
            times[1].tv_sec -= 1;
        }
        ::futimens(m_file.get(), times);
    }
    if (::close(m_file.release()) != 0)
        return false;
    // rename() replaces a symbolic link at the destination instead of writing through it.
    if (::rename(nativeName(m_tempName).constData(), nativeName(m_fileName).constData()) != 0)
        return false;
    m_committed = true;
    return true;
}

HRESULT TMyExtractStream::QueryInterface(const GUID &iid, void **outObject)
{
    if (iid == IID_IUnknown || iid == IID_ISequentialOutStream)
        return Answer<ISequentialOutStream>(this, outObject);
    return NoInterface(outObject);
}

} // namespace mattoni::engine7z
