// The engine's callbacks: passwords, progress, the streams of each item and their results.
#include "SevenZipCallbacks_p.h"

#include <QDir>
#include <QFileInfo>

#include <sys/stat.h>

namespace mattoni::engine7z {

namespace {

constexpr qint64 FileTimeUnixEpoch = 116444736000000000LL; // 1970-01-01 in 100 ns since 1601

// The last-error code of an item's extraction result.
qint32 extractResultCode(qint32 opRes)
{
    switch (opRes) {
    case kOpOK: return TSevenZip::ErrSuccess;
    case kOpUnsupportedMethod: return TSevenZip::ErrUnsupportedMethod;
    case kOpCRCError: return TSevenZip::ErrCRCError;
    default: return TSevenZip::ErrDataError; // data error, truncation, wrong password ...
    }
}

// An item name made safe to join to the destination folder: "/" separated, no empty, "." or
// ".." parts, never absolute. Empty when nothing safe is left or a ".." part was met.
QString safeRelativeName(const QString &name)
{
    QStringList parts;
    for (const QString &part : name.split(QLatin1Char('/'), Qt::SkipEmptyParts)) {
        if (part == QLatin1String("."))
            continue;
        if (part == QLatin1String(".."))
            return QString();
        parts << part;
    }
    return parts.join(QLatin1Char('/'));
}

} // namespace

qint64 FileTimeToUnixNs(const FILETIME &ft)
{
    const qint64 ticks = qint64(quint64(ft.dwHighDateTime) << 32 | ft.dwLowDateTime);
    return (ticks - FileTimeUnixEpoch) * 100;
}

FILETIME UnixNsToFileTime(qint64 ns)
{
    const quint64 ticks = quint64(ns / 100 + FileTimeUnixEpoch);
    return FILETIME{quint32(ticks), quint32(ticks >> 32)};
}

// ---------------------------------------------------------------------------------------------

OwnerThread::OwnerThread()
    : m_owner(std::this_thread::get_id())
{
}

bool OwnerThread::execute(const std::function<void()> &call)
{
    if (m_error)
        return false;
    try {
        call();
        return true;
    } catch (...) {
        m_error = std::current_exception();
        return false;
    }
}

bool OwnerThread::call(const std::function<void()> &call)
{
    if (std::this_thread::get_id() == m_owner)
        return execute(call);
    Request request{&call};
    std::unique_lock lock(m_mutex);
    m_queue.push_back(&request);
    m_wake.notify_all();
    m_wake.wait(lock, [&] { return request.done; });
    return request.ok;
}

HRESULT OwnerThread::run(const std::function<HRESULT()> &job)
{
    HRESULT result = E_FAIL;
    m_finished = false;
    std::thread worker([&] {
        result = job();
        std::lock_guard lock(m_mutex);
        m_finished = true;
        m_wake.notify_all();
    });
    std::unique_lock lock(m_mutex);
    for (;;) {
        m_wake.wait(lock, [&] { return m_finished || !m_queue.empty(); });
        if (m_queue.empty())
            break;
        Request *request = m_queue.front();
        m_queue.pop_front();
        lock.unlock();
        const bool ok = execute(*request->call);
        lock.lock();
        request->ok = ok;
        request->done = true;
        m_wake.notify_all();
    }
    lock.unlock();
    worker.join();
    return result;
}

void OwnerThread::rethrow()
{
    if (m_error) {
        std::exception_ptr error = m_error;
        m_error = nullptr;
        std::rethrow_exception(error);
    }
}

// ---------------------------------------------------------------------------------------------

ProgressTracker::ProgressTracker(TSevenZip *owner, OwnerThread &thread, bool adding)
    : m_owner(owner)
    , m_thread(thread)
    , m_adding(adding)
    , m_quiet(!owner->OnProgress)
{
    if (!(adding ? bool(owner->OnAddfile) : bool(owner->OnExtractfile)))
        m_announced = true;
}

void ProgressTracker::setCurrent(const QString &name, qint64 size)
{
    m_name = name;
    m_size = size;
    if (m_reported)
        announceFirstItem();
}

// OnAddfile or OnExtractfile, once: on the first progress report, or, since the engine may
// report before it opens any item (a multi-threaded decoder opens its first output late), as
// soon as the first item is open after that report. The position is the whole operation's,
// not the file's, so later files are followed through OnProgress.
void ProgressTracker::announceFirstItem()
{
    if (m_announced || m_name.isEmpty())
        return;
    m_announced = true;
    if (m_adding) {
        if (m_owner->OnAddfile)
            m_owner->OnAddfile(m_owner, m_name, m_size);
    } else if (m_owner->OnExtractfile) {
        m_owner->OnExtractfile(m_owner, m_name, m_size);
    }
}

HRESULT ProgressTracker::setTotal(quint64 total)
{
    const bool ok = m_thread.call([&] {
        if (m_owner->OnPreProgress)
            m_owner->OnPreProgress(m_owner, qint64(total));
    });
    return ok ? S_OK : E_ABORT;
}

HRESULT ProgressTracker::setCompleted(const quint64 *completeValue)
{
    if (!completeValue)
        return S_OK;
    const qint64 reported = qint64(*completeValue);
    // Nothing to tell the host: keep the count here, without waking the owner thread.
    if (m_quiet && m_announced && !m_owner->AbortFlag()) {
        std::lock_guard lock(m_mutex);
        m_archivePos += reported - m_lastReport;
        m_lastReport = reported;
        return S_OK;
    }
    bool abort = false;
    const bool ok = m_thread.call([&] {
        m_reported = true;
        announceFirstItem();
        qint64 position;
        {
            std::lock_guard lock(m_mutex);
            m_archivePos += reported - m_lastReport;
            m_lastReport = reported;
            position = m_archivePos;
        }
        if (m_owner->OnProgress)
            m_owner->OnProgress(m_owner, m_name, position, reported);
        if (m_owner->AbortFlag()) {
            abort = true;
            m_owner->Fail(TSevenZip::ErrUserCanceled, m_name);
        }
    });
    return ok && !abort ? S_OK : E_ABORT;
}

// ---------------------------------------------------------------------------------------------

TMyArchiveOpenCallback::TMyArchiveOpenCallback(const Engine &engine, const QString &password)
    : m_engine(engine)
    , m_password(password)
{
}

HRESULT TMyArchiveOpenCallback::QueryInterface(const GUID &iid, void **outObject)
{
    if (iid == IID_IUnknown || iid == IID_IArchiveOpenCallback)
        return Answer<IArchiveOpenCallback>(this, outObject);
    if (iid == IID_ICryptoGetTextPassword)
        return Answer<ICryptoGetTextPassword>(this, outObject);
    return NoInterface(outObject);
}

HRESULT TMyArchiveOpenCallback::SetTotal(const quint64 *, const quint64 *)
{
    return S_OK;
}

HRESULT TMyArchiveOpenCallback::SetCompleted(const quint64 *, const quint64 *)
{
    return S_OK;
}

HRESULT TMyArchiveOpenCallback::CryptoGetTextPassword(BSTR *password)
{
    // Encrypted names without a password: stop opening rather than try an empty one.
    if (m_password.isEmpty())
        return E_ABORT;
    *password = AllocBstr(m_engine, m_password);
    return *password ? S_OK : E_OUTOFMEMORY;
}

// ---------------------------------------------------------------------------------------------

TMyArchiveExtractCallback::TMyArchiveExtractCallback(TSevenZip *owner, OwnerThread &thread, const Engine &engine,
                                                     IInArchive *archive, const QString &baseDir, bool test)
    : m_owner(owner)
    , m_thread(thread)
    , m_engine(engine)
    , m_archive(archive)
    , m_baseDir(baseDir)
    , m_canonicalBase(QFileInfo(baseDir).canonicalFilePath())
    , m_test(test)
    , m_progress(owner, thread, false)
{
}

HRESULT TMyArchiveExtractCallback::QueryInterface(const GUID &iid, void **outObject)
{
    if (iid == IID_IUnknown || iid == IID_IArchiveExtractCallback || iid == IID_IProgress)
        return Answer<IArchiveExtractCallback>(this, outObject);
    if (iid == IID_ICryptoGetTextPassword)
        return Answer<ICryptoGetTextPassword>(this, outObject);
    return NoInterface(outObject);
}

HRESULT TMyArchiveExtractCallback::SetTotal(quint64 total)
{
    return m_progress.setTotal(total);
}

HRESULT TMyArchiveExtractCallback::SetCompleted(const quint64 *completeValue)
{
    return m_progress.setCompleted(completeValue);
}

// The full path for an item, once its folder exists and lies inside the base folder even after
// following symbolic links; empty when the item must not be written.
QString TMyArchiveExtractCallback::destination(const QString &relative, bool isDir)
{
    const QString target = m_baseDir + QLatin1Char('/') + relative;
    const QString folder = isDir ? target : QFileInfo(target).path();
    if (!QDir().mkpath(folder))
        return QString();
    const QString canonical = QFileInfo(folder).canonicalFilePath();
    if (canonical != m_canonicalBase && !canonical.startsWith(m_canonicalBase + QLatin1Char('/')))
        return QString();
    return target;
}

void TMyArchiveExtractCallback::prepareItem(quint32 index, const ItemInfo &info, ISequentialOutStream **outStream)
{
    QString name = info.name;
    const bool dir = info.isDir;
    if (m_owner->OnSetExtractName)
        m_owner->OnSetExtractName(m_owner, index, name);
    m_itemName = name;
    m_progress.setCurrent(name, info.size);
    m_mtime = info.mtime;
    if (info.attrib & FILE_ATTRIBUTE_UNIX_EXTENSION)
        m_mode = (info.attrib >> 16) & 0777;
    else
        m_mode = (info.attrib & 1) ? 0444 : 0644;
    if (m_test)
        return;

    QString relative = safeRelativeName(name);
    if (m_owner->ExtractOptions().contains(ExtractNoPath)) {
        if (dir)
            return;
        relative = relative.section(QLatin1Char('/'), -1);
    }
    const QString target = relative.isEmpty() ? QString() : destination(relative, dir);
    if (target.isEmpty()) {
        m_allOk = false;
        m_owner->Fail(TSevenZip::ErrCreateFile, name);
        return;
    }
    if (dir)
        return;
    struct stat st;
    if (::lstat(QFile::encodeName(target).constData(), &st) == 0) {
        if (S_ISDIR(st.st_mode)) {
            m_allOk = false;
            m_owner->Fail(TSevenZip::ErrCreateFile, target);
            return;
        }
        if (!m_owner->ExtractOptions().contains(ExtractOverwrite)) {
            bool doOverwrite = false;
            if (m_owner->OnExtractOverwrite)
                m_owner->OnExtractOverwrite(m_owner, target, doOverwrite);
            if (!doOverwrite)
                return;
        }
    }
    TMyExtractStream *stream = TMyExtractStream::Create(target);
    if (!stream) {
        m_allOk = false;
        m_owner->Fail(TSevenZip::ErrCreateFile, target);
        return;
    }
    m_stream.reset(stream);
    stream->AddRef();
    *outStream = stream;
}

HRESULT TMyArchiveExtractCallback::GetStream(quint32 index, ISequentialOutStream **outStream,
                                             qint32 askExtractMode)
{
    *outStream = nullptr;
    m_stream.reset();
    if (askExtractMode != kAskExtract && askExtractMode != kAskTest)
        return S_OK;
    // The archive is asked here, on the engine's thread, never from the owner's.
    PropVariant path(m_engine), isDir(m_engine), size(m_engine), attrib(m_engine), mtime(m_engine);
    m_archive->GetProperty(index, kpidPath, &path);
    m_archive->GetProperty(index, kpidIsDir, &isDir);
    m_archive->GetProperty(index, kpidSize, &size);
    m_archive->GetProperty(index, kpidAttrib, &attrib);
    m_archive->GetProperty(index, kpidMTime, &mtime);
    ItemInfo info;
    info.name = path.toString();
    info.isDir = isDir.toBool();
    info.size = qint64(size.toUInt64());
    info.attrib = quint32(attrib.toUInt64());
    info.mtime = mtime.vt == VT_FILETIME ? FileTimeToUnixNs(mtime.filetime) : 0;
    const bool ok = m_thread.call([&] { prepareItem(index, info, outStream); });
    return ok ? S_OK : E_ABORT;
}

HRESULT TMyArchiveExtractCallback::PrepareOperation(qint32)
{
    return S_OK;
}

HRESULT TMyArchiveExtractCallback::SetOperationResult(qint32 opRes)
{
    const bool ok = m_thread.call([&] {
        const qint32 code = extractResultCode(opRes);
        m_owner->SetLastError(code);
        if (code != TSevenZip::ErrSuccess) {
            m_allOk = false;
            m_owner->Fail(code, m_itemName);
        } else if (m_stream && !m_stream->Commit(m_mode, m_mtime)) {
            m_allOk = false;
            m_owner->Fail(TSevenZip::ErrCreateFile, m_itemName);
        }
    });
    // Dropping an uncommitted stream removes its temporary file.
    m_stream.reset();
    return ok ? S_OK : E_ABORT;
}

HRESULT TMyArchiveExtractCallback::CryptoGetTextPassword(BSTR *password)
{
    // A missing password is tried as an empty one, so the item fails like one with a wrong password.
    *password = AllocBstr(m_engine, m_owner->Password());
    return *password ? S_OK : E_OUTOFMEMORY;
}

// ---------------------------------------------------------------------------------------------

TMyArchiveUpdateCallback::TMyArchiveUpdateCallback(TSevenZip *owner, OwnerThread &thread, const Engine &engine,
                                                   const std::vector<AddEntry> &items)
    : m_owner(owner)
    , m_thread(thread)
    , m_engine(engine)
    , m_items(items)
    , m_password(owner->Password())
    , m_progress(owner, thread, true)
{
}

HRESULT TMyArchiveUpdateCallback::QueryInterface(const GUID &iid, void **outObject)
{
    if (iid == IID_IUnknown || iid == IID_IArchiveUpdateCallback || iid == IID_IProgress)
        return Answer<IArchiveUpdateCallback>(this, outObject);
    if (iid == IID_ICryptoGetTextPassword2)
        return Answer<ICryptoGetTextPassword2>(this, outObject);
    return NoInterface(outObject);
}

HRESULT TMyArchiveUpdateCallback::SetTotal(quint64 total)
{
    return m_progress.setTotal(total);
}

HRESULT TMyArchiveUpdateCallback::SetCompleted(const quint64 *completeValue)
{
    return m_progress.setCompleted(completeValue);
}

HRESULT TMyArchiveUpdateCallback::GetUpdateItemInfo(quint32, qint32 *newData, qint32 *newProps,
                                                    quint32 *indexInArchive)
{
    if (newData)
        *newData = 1;
    if (newProps)
        *newProps = 1;
    if (indexInArchive)
        *indexInArchive = quint32(-1);
    return S_OK;
}

HRESULT TMyArchiveUpdateCallback::GetProperty(quint32 index, PROPID propID, PROPVARIANT *value)
{
    value->vt = VT_EMPTY;
    if (index >= m_items.size())
        return E_INVALIDARG;
    const AddEntry &item = m_items[index];
    switch (propID) {
    case kpidPath:
        value->bstrVal = AllocBstr(m_engine, item.name);
        if (!value->bstrVal)
            return E_OUTOFMEMORY;
        value->vt = VT_BSTR;
        break;
    case kpidIsDir:
    case kpidIsAnti:
        value->vt = VT_BOOL;
        value->boolVal = propID == kpidIsDir && item.isDir ? -1 : 0;
        break;
    case kpidSize:
        value->vt = VT_UI8;
        value->uhVal = quint64(item.size);
        break;
    case kpidAttrib:
        value->vt = VT_UI4;
        value->ulVal = item.attrib;
        break;
    case kpidMTime:
        value->vt = VT_FILETIME;
        value->filetime = item.mtime;
        break;
    default:
        break;
    }
    return S_OK;
}

HRESULT TMyArchiveUpdateCallback::GetStream(quint32 index, ISequentialInStream **inStream)
{
    *inStream = nullptr;
    if (index >= m_items.size())
        return E_INVALIDARG;
    const AddEntry &item = m_items[index];
    if (item.isDir)
        return S_OK;
    FileHandle file = OpenForReading(item.path);
    const bool opened = file.isOpen();
    const bool ok = m_thread.call([&] {
        m_progress.setCurrent(item.path, item.size);
        if (!opened)
            m_owner->Fail(TSevenZip::ErrFileNotFound, item.path);
    });
    if (!ok)
        return E_ABORT;
    if (!opened)
        return S_FALSE; // the engine leaves the item out
    auto *reader = new TMyStreamReader(std::move(file), item.path);
    reader->AddRef();
    *inStream = static_cast<IInStream *>(reader);
    return S_OK;
}

HRESULT TMyArchiveUpdateCallback::SetOperationResult(qint32)
{
    return S_OK;
}

HRESULT TMyArchiveUpdateCallback::CryptoGetTextPassword2(qint32 *passwordIsDefined, BSTR *password)
{
    *passwordIsDefined = m_password.isEmpty() ? 0 : 1;
    *password = AllocBstr(m_engine, m_password);
    return *password ? S_OK : E_OUTOFMEMORY;
}

} // namespace mattoni::engine7z
