// TSevenZip: listing, adding and extracting through the 7-Zip engine, and self-extracting files.
#include "SevenZip.h"

#include "Exceptions.h"
#include "SevenZipCallbacks_p.h"
#include "Strings.h"

#include <QCoreApplication>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QStorageInfo>

#include <algorithm>
#include <set>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mattoni {

using namespace engine7z;

TBrowseForFile SevenZipBrowseForFile;

namespace {

// Archives found up to this far into a file are listed and extracted, which covers the stub
// of a self-extracting file.
constexpr quint64 MaxArchiveStart = 4 << 20;
const char *const ConsoleStub = "/usr/lib/p7zip/7zCon.sfx";

bool hasWildcard(const QString &name)
{
    return name.contains(QLatin1Char('*')) || name.contains(QLatin1Char('?'));
}

QString withoutLeadingSlashes(QString path)
{
    while (path.startsWith(QLatin1Char('/')))
        path.remove(0, 1);
    return path;
}

// Whether Path lies on a removable medium, as the kernel reports for its block device.
bool onRemovableMedium(const QString &path)
{
    QFileInfo info(path);
    while (!info.exists() && !info.isRoot() && info.path() != info.filePath())
        info = QFileInfo(info.path());
    const QStorageInfo storage(info.filePath());
    const QString device = QString::fromLocal8Bit(storage.device());
    if (!device.startsWith(QLatin1String("/dev/")))
        return false;
    QString sys = QFileInfo(QStringLiteral("/sys/class/block/") + device.section(QLatin1Char('/'), -1))
                      .canonicalFilePath();
    for (int up = 0; up < 2 && !sys.isEmpty(); ++up) {
        QFile flag(sys + QStringLiteral("/removable"));
        if (flag.open(QIODevice::ReadOnly))
            return flag.readAll().trimmed() == "1";
        sys = QFileInfo(sys).path(); // a partition: ask its disk
    }
    return false;
}

void makeExecutable(const QString &fileName)
{
    QFile::Permissions p = QFile::permissions(fileName);
    if (p & QFile::ReadOwner)
        p |= QFile::ExeOwner | QFile::ExeUser;
    if (p & QFile::ReadGroup)
        p |= QFile::ExeGroup;
    if (p & QFile::ReadOther)
        p |= QFile::ExeOther;
    QFile::setPermissions(fileName, p);
}

// Copies From (from its position) to the end of To in blocks of the self-extracting block size.
bool copyBlocks(QFile &from, QFile &to)
{
    QByteArray block(int(TSevenZip::SFXBlockSize), Qt::Uninitialized);
    for (;;) {
        const qint64 got = from.read(block.data(), block.size());
        if (got < 0)
            return false;
        if (got == 0)
            return true;
        if (to.write(block.constData(), got) != got)
            return false;
    }
}

// A valid 7z start header at Pos.
bool startHeaderAt(QFile &file, qint64 pos)
{
    if (!file.seek(pos))
        return false;
    const QByteArray h = file.read(32);
    return h.size() == 32 && ArchiveSizeFromStartHeader(reinterpret_cast<const uchar *>(h.constData())) > 0;
}

} // namespace

// ---------------------------------------------------------------------------------------------

int TWideStringList_::AddString(const QString &s)
{
    m_items.append(s);
    return int(m_items.size()) - 1;
}

bool TWideStringList_::RemoveString(const QString &s)
{
    const qsizetype at = m_items.indexOf(s);
    if (at < 0)
        return false;
    m_items.removeAt(at);
    return true;
}

void TWideStringList_::Clear()
{
    m_items.clear();
}

// ---------------------------------------------------------------------------------------------

TSevenZip::TSevenZip(QObject *parent)
    : QObject(parent)
{
}

TSevenZip::~TSevenZip() = default;

void TSevenZip::setAddRootDir(const QString &value)
{
    m_addRootDir = value;
}

void TSevenZip::setSFXCreate(bool value)
{
    m_sfxCreate = value;
}

void TSevenZip::setSFXModule(const QString &value)
{
    m_sfxModule = value;
}

void TSevenZip::setAddOptions(AddOpts value)
{
    m_addOptions = value;
}

void TSevenZip::setExtractOptions(ExtractOpts value)
{
    m_extractOptions = value;
}

void TSevenZip::setExtrBaseDir(const QString &value)
{
    m_extrBaseDir = value;
}

void TSevenZip::setLZMACompressType(TCompressType value)
{
    m_compressType = value;
}

void TSevenZip::setLZMACompressStrength(TCompressStrength value)
{
    m_compressStrength = value;
}

namespace {
void checkRange(qint32 value, qint32 low, qint32 high)
{
    if (value != 0 && (value < low || value > high))
        throw ERangeError(QStringLiteral("Range check error"));
}
} // namespace

void TSevenZip::setLZMAStrength(qint32 value)
{
    checkRange(value, 1, 27);
    m_lzmaStrength = value;
}

void TSevenZip::setLPPMDmem(qint32 value)
{
    checkRange(value, 1, 31);
    m_ppmdMem = value;
}

void TSevenZip::setLPPMDsize(qint32 value)
{
    checkRange(value, 2, 32);
    m_ppmdSize = value;
}

void TSevenZip::setSZFileName(const QString &value)
{
    m_fileName = value;
}

void TSevenZip::setVolumeSize(qint32 value)
{
    if (value < 0)
        throw ERangeError(QStringLiteral("Range check error"));
    m_volumeSize = value;
}

void TSevenZip::setPassword(const QString &value)
{
    m_password = value;
}

QString TSevenZip::ErrorText(qint32 code)
{
    static const char *const texts[] = {
        "Success",
        "File not found",
        "Data Error",
        "CRC Error",
        "Unsupported Method",
        "Index out of Range",
        "User canceled operation",
        "File is not an 7z SFX archive",
        "SFXModule error ( Not found )",
        "Could not create SFX",
        "No files to add",
        "Could not create file",
    };
    if (code < 0 || code >= qint32(std::size(texts)))
        return QString();
    return QString::fromLatin1(texts[code]);
}

void TSevenZip::Fail(qint32 code, const QString &fileName)
{
    SetLastError(code);
    if (OnMessage)
        OnMessage(this, code, ErrorText(code), fileName);
}

quint32 TSevenZip::CompressionLevel(TCompressStrength strength)
{
    switch (int(strength) & 0x7F) {
    case SAVE: return 0;
    case FAST: return 3;
    case NORMAL: return 5;
    case MAXIMUM: return 7;
    case ULTRA: return 9;
    default: return 5;
    }
}

QList<QPair<QString, QVariant>> TSevenZip::EngineProperties() const
{
    QList<QPair<QString, QVariant>> props;
    const quint32 level = CompressionLevel(m_compressStrength);
    if (m_compressType == LZMA) {
        props.append({QStringLiteral("X"), QVariant::fromValue(level)});
        props.append({QStringLiteral("s"), m_addOptions.contains(AddSolid) ? QStringLiteral("on") : QStringLiteral("off")});
        if (m_lzmaStrength > 0)
            props.append({QStringLiteral("d"), QVariant::fromValue(quint32(m_lzmaStrength))});
    } else if (m_compressType == PPMD) {
        props.append({QStringLiteral("0"), QStringLiteral("PPMd")});
        props.append({QStringLiteral("X"), QVariant::fromValue(level)});
        if (m_ppmdSize > 0)
            props.append({QStringLiteral("o"), QVariant::fromValue(quint32(m_ppmdSize))});
        if (m_ppmdMem > 0)
            props.append({QStringLiteral("mem"), QVariant::fromValue(quint32(m_ppmdMem))});
    }
    if (!m_password.isEmpty() && m_addOptions.contains(AddEncryptFilename))
        props.append({QStringLiteral("he"), QStringLiteral("on")});
    return props;
}

// ---------------------------------------------------------------------------------------------

void TSevenZip::beginOperation()
{
    if (m_busy)
        throw EInvalidOperation(QStringLiteral("TSevenZip: an operation is already running"));
    SetLastError(ErrSuccess);
}

namespace {

// Marks the component busy for the length of one operation.
class BusyScope
{
public:
    explicit BusyScope(bool &busy) : m_busy(busy) { m_busy = true; }
    ~BusyScope() { m_busy = false; }

private:
    bool &m_busy;
};

} // namespace

// The archive to read: SZFileName itself, or the volumes of a split archive when SZFileName
// names its first volume ("x.7z.001") or only "x.7z.001" exists beside the missing "x.7z".
// Volumes come back as the base name followed by "/" plus the volume mark.
QString TSevenZip::archiveFileForReading() const
{
    if (m_fileName.endsWith(QLatin1String(".001")))
        return m_fileName;
    if (!QFileInfo::exists(m_fileName) && QFileInfo::exists(VolumeName(m_fileName, 0)))
        return VolumeName(m_fileName, 0);
    return m_fileName;
}

struct TSevenZip::OpenArchive
{
    ComPtr<IInArchive> archive;
    ComPtr<TMyStreamReader> reader;
};

bool TSevenZip::openArchive(const Engine &engine, OwnerThread &thread, OpenArchive &open)
{
    const QString fileName = archiveFileForReading();
    if (fileName.endsWith(QLatin1String(".001"))) {
        const QString base = fileName.left(fileName.size() - 4);
        TMyStreamReader::VolumeRequest request;
        if (OnOpenVolume) {
            request = [this, &thread](QString &name, bool) {
                bool cancel = false;
                const bool removable = onRemovableMedium(name);
                const bool ok = thread.call([&] { OnOpenVolume(name, removable, cancel); });
                return ok && !cancel;
            };
        }
        auto *reader = new TMyStreamReader(base, request, [&thread](const std::function<void()> &call) {
            thread.call(call);
        });
        open.reader.reset(reader);
        bool opened = false;
        thread.run([&] {
            opened = reader->OpenVolumes();
            return S_OK;
        });
        thread.rethrow();
        if (!opened) {
            Fail(ErrFileNotFound, reader->FailedFile().isEmpty() ? fileName : reader->FailedFile());
            return false;
        }
    } else {
        FileHandle file = OpenForReading(fileName);
        if (!file.isOpen()) {
            Fail(ErrFileNotFound, fileName);
            return false;
        }
        open.reader.reset(new TMyStreamReader(std::move(file), fileName));
    }

    if (engine.CreateObject(&CLSID_Format7z, &IID_IInArchive, open.archive.putVoid()) != S_OK || !open.archive) {
        Fail(ErrDataError, fileName);
        return false;
    }
    ComPtr<TMyArchiveOpenCallback> callback(new TMyArchiveOpenCallback(engine, m_password));
    const HRESULT result = thread.run([&] {
        const quint64 maxStart = MaxArchiveStart;
        return open.archive->Open(open.reader.get(), &maxStart, callback.get());
    });
    thread.rethrow();
    if (result != S_OK) {
        const QString failed = open.reader->FailedFile();
        Fail(failed.isEmpty() ? ErrDataError : ErrFileNotFound, failed.isEmpty() ? fileName : failed);
        return false;
    }
    return true;
}

bool TSevenZip::List()
{
    beginOperation();
    BusyScope busy(m_busy);
    const Engine &engine = LoadEngine();
    OwnerThread thread;
    OpenArchive open;
    if (!openArchive(engine, thread, open))
        return false;
    quint32 count = 0;
    open.archive->GetNumberOfItems(&count);
    for (quint32 i = 0; i < count; ++i) {
        PropVariant path(engine), size(engine), packSize(engine), attrib(engine), crc(engine), method(engine),
            mtime(engine);
        open.archive->GetProperty(i, kpidPath, &path);
        open.archive->GetProperty(i, kpidSize, &size);
        open.archive->GetProperty(i, kpidPackSize, &packSize);
        open.archive->GetProperty(i, kpidAttrib, &attrib);
        open.archive->GetProperty(i, kpidCRC, &crc);
        open.archive->GetProperty(i, kpidMethod, &method);
        open.archive->GetProperty(i, kpidMTime, &mtime);
        TDateTime time = 0;
        if (mtime.vt == VT_FILETIME) {
            const qint64 ns = FileTimeToUnixNs(mtime.filetime);
            time = QDateTimeToDateTime(QDateTime::fromMSecsSinceEpoch(ns / 1000000, Qt::UTC).toLocalTime());
        }
        if (OnListfile)
            OnListfile(this, path.toString(), qint64(i), qint64(size.toUInt64()), qint64(packSize.toUInt64()),
                       qint64(attrib.toUInt64()), qint64(crc.toUInt64()), method.toString(), time);
    }
    m_numberOfFiles = qint32(count);
    open.archive->Close();
    return true;
}

qint32 TSevenZip::GetIndexByFilename(const QString &FileName)
{
    beginOperation();
    BusyScope busy(m_busy);
    const Engine &engine = LoadEngine();
    OwnerThread thread;
    OpenArchive open;
    if (!openArchive(engine, thread, open))
        return -1;
    quint32 count = 0;
    open.archive->GetNumberOfItems(&count);
    const QString wanted = FileName.toUpper();
    for (quint32 i = 0; i < count; ++i) {
        PropVariant path(engine);
        open.archive->GetProperty(i, kpidPath, &path);
        if (path.toString().toUpper() == wanted) {
            open.archive->Close();
            return qint32(i);
        }
    }
    open.archive->Close();
    Fail(ErrIndexOutOfRange, FileName);
    return -1;
}

bool TSevenZip::Extract(bool TestArchive)
{
    beginOperation();
    BusyScope busy(m_busy);
    const Engine &engine = LoadEngine();
    OwnerThread thread;
    OpenArchive open;
    if (!openArchive(engine, thread, open))
        return false;
    QString base = m_extrBaseDir.isEmpty() ? QDir::currentPath() : m_extrBaseDir;
    base = QDir::cleanPath(QDir(base).absolutePath());
    if (!TestArchive && !QDir().mkpath(base)) {
        open.archive->Close();
        Fail(ErrCreateFile, base);
        return false;
    }
    ComPtr<TMyArchiveExtractCallback> callback(
        new TMyArchiveExtractCallback(this, thread, engine, open.archive.get(), base, TestArchive));
    const HRESULT result = thread.run([&] {
        return open.archive->Extract(nullptr, quint32(-1), TestArchive ? 1 : 0, callback.get());
    });
    open.archive->Close();
    thread.rethrow();
    if (result == S_OK)
        return callback->AllOk();
    // A volume gone missing, or an engine failure no item reported (a cancel has reported).
    const QString failed = open.reader->FailedFile();
    if (!failed.isEmpty())
        Fail(ErrFileNotFound, failed);
    else if (m_lastError == ErrSuccess)
        Fail(ErrDataError, m_fileName);
    return false;
}

// ---------------------------------------------------------------------------------------------

QString TSevenZip::storedName(const QString &path) const
{
    if (m_addOptions.contains(AddStoreOnlyFilename))
        return QFileInfo(path).fileName();
    if (!m_addOptions.contains(AddIncludeDriveLetter) && !m_addRootDir.isEmpty()) {
        const QString root = IncludeTrailingPathDelimiter(QDir::cleanPath(m_addRootDir));
        if (path.startsWith(root))
            return path.mid(root.size());
        if (path + QLatin1Char('/') == root)
            return QString(); // the root folder itself has no name of its own
    }
    return withoutLeadingSlashes(path);
}

namespace {

bool describe(const QString &path, AddEntry &entry)
{
    struct stat st;
    if (::stat(QFile::encodeName(path).constData(), &st) != 0)
        return false;
    entry.path = path;
    entry.isDir = S_ISDIR(st.st_mode);
    entry.size = entry.isDir ? 0 : qint64(st.st_size);
    // The POSIX mode rides in the high half, as the engine's own Linux build stores it.
    entry.attrib = FILE_ATTRIBUTE_UNIX_EXTENSION | (quint32(st.st_mode) << 16);
    if (entry.isDir)
        entry.attrib |= FILE_ATTRIBUTE_DIRECTORY;
    if (!(st.st_mode & S_IWUSR))
        entry.attrib |= 1; // read-only
    entry.mtime = UnixNsToFileTime(qint64(st.st_mtim.tv_sec) * 1000000000 + st.st_mtim.tv_nsec);
    return true;
}

} // namespace

bool TSevenZip::collectItems(std::vector<AddEntry> &items)
{
    const bool recurse = m_addOptions.contains(AddRecurseDirs);
    std::set<QString> seen;
    auto add = [&](const QString &path) {
        if (!seen.insert(path).second)
            return;
        AddEntry item;
        if (!describe(path, item))
            return;
        if (item.isDir && m_addOptions.contains(AddStoreOnlyFilename))
            return;
        item.name = storedName(path);
        if (item.name.isEmpty())
            return;
        items.push_back(item);
    };
    auto addFolder = [&](const QString &folder, const QStringList &patterns, bool withFolders) {
        QStringList found;
        QDirIterator it(folder, patterns,
                        QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System,
                        recurse ? QDirIterator::Subdirectories : QDirIterator::NoIteratorFlags);
        while (it.hasNext()) {
            it.next();
            const QFileInfo info = it.fileInfo();
            if (info.isDir() && !(withFolders && recurse))
                continue;
            found << info.filePath();
        }
        std::sort(found.begin(), found.end());
        for (const QString &path : std::as_const(found))
            add(path);
    };

    for (const QString &entry : m_files.toStringList()) {
        const QString path = QDir::cleanPath(QDir(entry).absolutePath());
        const QFileInfo info(path);
        if (hasWildcard(info.fileName())) {
            if (!QFileInfo(info.path()).isDir()) {
                Fail(ErrFileNotFound, entry);
                continue;
            }
            addFolder(info.path(), QStringList{info.fileName()}, false);
        } else if (info.isDir()) {
            add(path);
            addFolder(path, QStringList(), true);
        } else if (info.exists()) {
            add(path);
        } else {
            Fail(ErrFileNotFound, entry);
        }
    }
    for (size_t i = 0; i < items.size(); ++i) {
        if (OnSetAddName)
            OnSetAddName(this, quint32(i), items[i].name);
    }
    return !items.empty();
}

namespace {

// Engine properties as the two parallel arrays ISetProperties takes.
class EnginePropertyArrays
{
public:
    EnginePropertyArrays(const Engine &engine, const QList<QPair<QString, QVariant>> &props)
        : m_engine(engine)
    {
        for (const auto &[name, value] : props) {
            m_names.push_back(name.toStdWString());
            PROPVARIANT v{};
            if (value.typeId() == QMetaType::QString) {
                v.vt = VT_BSTR;
                v.bstrVal = AllocBstr(engine, value.toString());
            } else {
                v.vt = VT_UI4;
                v.ulVal = value.toUInt();
            }
            m_values.push_back(v);
        }
        for (const std::wstring &name : m_names)
            m_namePointers.push_back(name.c_str());
    }
    ~EnginePropertyArrays()
    {
        for (PROPVARIANT &v : m_values)
            if (v.vt == VT_BSTR)
                m_engine.SysFreeString(v.bstrVal);
    }
    HRESULT applyTo(ISetProperties *target) const
    {
        return target->SetProperties(m_namePointers.data(), m_values.data(), quint32(m_values.size()));
    }

private:
    const Engine &m_engine;
    std::vector<std::wstring> m_names;
    std::vector<const wchar_t *> m_namePointers;
    std::vector<PROPVARIANT> m_values;
};

} // namespace

bool TSevenZip::Add()
{
    beginOperation();
    BusyScope busy(m_busy);
    const Engine &engine = LoadEngine();
    OwnerThread thread;

    std::vector<AddEntry> items;
    if (!collectItems(items)) {
        Fail(ErrNoFilesToAdd, m_fileName);
        return false;
    }
    const QString outName = m_sfxCreate ? ChangeFileExt(m_fileName, QStringLiteral(".exe")) : m_fileName;
    if (m_sfxCreate && m_volumeSize > 0) {
        // A self-extracting stub cannot find an archive split over several files.
        Fail(ErrCreateSFX, outName);
        return false;
    }

    std::vector<QString> created;
    ComPtr<TMyStreamWriter> writer;
    if (m_volumeSize > 0) {
        writer.reset(new TMyStreamWriter(outName, m_volumeSize, [&](const QString &name) {
            created.push_back(name);
            thread.call([&] { m_volumesWritten.AddString(name); });
        }));
    } else {
        FileHandle file(::open(QFile::encodeName(outName).constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666));
        if (!file.isOpen()) {
            Fail(ErrCreateFile, outName);
            return false;
        }
        created.push_back(outName);
        qint64 offset = 0;
        if (m_sfxCreate) {
            QFile stub(SFXModulePath());
            QFile out;
            if (!stub.open(QIODevice::ReadOnly)) {
                ::unlink(QFile::encodeName(outName).constData());
                Fail(ErrSFXModule, m_sfxModule);
                return false;
            }
            if (!out.open(file.get(), QIODevice::WriteOnly, QFileDevice::DontCloseHandle) || !copyBlocks(stub, out)
                || !out.flush()) {
                ::unlink(QFile::encodeName(outName).constData());
                Fail(ErrCreateSFX, outName);
                return false;
            }
            offset = stub.size();
        }
        writer.reset(new TMyStreamWriter(outName, std::move(file), offset));
    }

    auto removeOutput = [&] {
        writer.reset();
        for (const QString &name : created)
            ::unlink(QFile::encodeName(name).constData());
    };

    ComPtr<IOutArchive> archive;
    ComPtr<ISetProperties> setProperties;
    if (engine.CreateObject(&CLSID_Format7z, &IID_IOutArchive, archive.putVoid()) != S_OK || !archive
        || archive->QueryInterface(IID_ISetProperties, setProperties.putVoid()) != S_OK) {
        removeOutput();
        Fail(ErrCreateFile, outName);
        return false;
    }
    if (EnginePropertyArrays(engine, EngineProperties()).applyTo(setProperties.get()) != S_OK) {
        removeOutput();
        Fail(ErrCreateFile, outName);
        return false;
    }

    ComPtr<TMyArchiveUpdateCallback> callback(new TMyArchiveUpdateCallback(this, thread, engine, items));
    const HRESULT result = thread.run([&] {
        return archive->UpdateItems(writer.get(), quint32(items.size()), callback.get());
    });
    if (result != S_OK) {
        const QString failed = writer->FailedFile();
        removeOutput();
        thread.rethrow();
        if (m_lastError != ErrUserCanceled)
            Fail(ErrCreateFile, failed.isEmpty() ? outName : failed);
        return false;
    }
    writer.reset();
    thread.rethrow();
    if (m_sfxCreate)
        makeExecutable(outName);
    return true;
}

// ---------------------------------------------------------------------------------------------

QString TSevenZip::SFXModulePath() const
{
    if (QFileInfo(m_sfxModule).isAbsolute())
        return m_sfxModule;
    if (QCoreApplication::instance()) {
        const QString beside = QCoreApplication::applicationDirPath() + QLatin1Char('/') + m_sfxModule;
        if (QFileInfo::exists(beside))
            return beside;
    }
    if (m_sfxModule == QLatin1String("7z.sfx"))
        return QString::fromLatin1(ConsoleStub);
    return m_sfxModule;
}

qint64 TSevenZip::SFXCheck(const QString &FileName)
{
    QFile file(FileName);
    if (!file.open(QIODevice::ReadOnly)) {
        Fail(ErrFileNotFound, FileName);
        return -1;
    }
    // An ELF stub ends where its section table or its last segment ends; the archive follows.
    const QByteArray elf = file.read(64);
    if (elf.size() == 64 && elf.startsWith("\x7F" "ELF") && elf.at(4) == 2 && elf.at(5) == 1) {
        auto u = [&](int at, int bytes) {
            quint64 v = 0;
            for (int i = bytes - 1; i >= 0; --i)
                v = v << 8 | quint8(elf.at(at + i));
            return v;
        };
        quint64 end = u(0x28, 8) + u(0x3A, 2) * u(0x3C, 2);
        const quint64 phoff = u(0x20, 8), phentsize = u(0x36, 2), phnum = u(0x38, 2);
        for (quint64 i = 0; i < phnum && phentsize >= 40; ++i) {
            if (!file.seek(qint64(phoff + i * phentsize)))
                break;
            const QByteArray ph = file.read(qint64(phentsize));
            if (ph.size() < 40)
                break;
            quint64 offset = 0, fileSize = 0;
            for (int b = 7; b >= 0; --b) {
                offset = offset << 8 | quint8(ph.at(8 + b));
                fileSize = fileSize << 8 | quint8(ph.at(32 + b));
            }
            end = qMax(end, offset + fileSize);
        }
        if (end >= quint64(SFXSearchStart) && end < quint64(file.size()) && startHeaderAt(file, qint64(end)))
            return qint64(end) - SFXSearchStart;
    }
    // Other stubs: look for the start header in the window after the first 64 KiB.
    if (file.seek(SFXSearchStart)) {
        const QByteArray window = file.read(SFXSearchSize);
        static const char signature[6] = {'7', 'z', char(0xBC), char(0xAF), 0x27, 0x1C};
        for (qsizetype at = window.indexOf(QByteArrayView(signature, 6)); at >= 0;
             at = window.indexOf(QByteArrayView(signature, 6), at + 1)) {
            if (startHeaderAt(file, SFXSearchStart + at))
                return at;
        }
    }
    Fail(ErrNotSFX, FileName);
    return -1;
}

bool TSevenZip::Convert7ztoSFX(const QString &ArchiveName)
{
    SetLastError(ErrSuccess);
    if (!QFileInfo::exists(ArchiveName)) {
        Fail(ErrFileNotFound, ArchiveName);
        return false;
    }
    const QString outName = ChangeFileExt(ArchiveName, QStringLiteral(".exe"));
    // QFile::copy refuses an existing output, as the stub copy must.
    if (!QFile::copy(SFXModulePath(), outName)) {
        Fail(ErrSFXModule, m_sfxModule);
        return false;
    }
    QFile in(ArchiveName);
    QFile out(outName);
    if (!in.open(QIODevice::ReadOnly) || !out.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::ExistingOnly)
        || !copyBlocks(in, out) || !out.flush()) {
        out.close();
        QFile::remove(outName);
        Fail(ErrCreateSFX, outName);
        return false;
    }
    out.close();
    makeExecutable(outName);
    return true;
}

bool TSevenZip::ConvertSFXto7z(const QString &SFXName)
{
    SetLastError(ErrSuccess);
    const qint64 offset = SFXCheck(SFXName);
    if (offset == -1)
        return false;
    const QString outName = ChangeFileExt(SFXName, QStringLiteral(".7z"));
    QFile in(SFXName);
    QFile out(outName);
    if (!in.open(QIODevice::ReadOnly) || !in.seek(SFXSearchStart + offset)) {
        Fail(ErrFileNotFound, SFXName);
        return false;
    }
    if (!out.open(QIODevice::WriteOnly | QIODevice::Truncate) || !copyBlocks(in, out) || !out.flush()) {
        out.close();
        QFile::remove(outName);
        Fail(ErrCreateFile, outName);
        return false;
    }
    return true;
}

} // namespace mattoni
