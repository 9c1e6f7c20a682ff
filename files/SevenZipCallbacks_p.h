// The callback objects TSevenZip hands to the engine, and the bridge that brings every event
// back to the thread that started the operation. Private to the archive component.
#pragma once

#include "SevenZip.h"
#include "SevenZipEngine_p.h"
#include "SevenZipStreams_p.h"

#include <condition_variable>
#include <deque>
#include <exception>
#include <mutex>
#include <thread>

namespace mattoni::engine7z {

// The engine calls back from its own worker threads. An operation runs the engine on a worker
// thread of ours while the thread that called List, Add or Extract serves the calls that fire
// events, one at a time and in order, so that handlers always run where the host expects them.
class OwnerThread
{
public:
    OwnerThread();
    OwnerThread(const OwnerThread &) = delete;
    OwnerThread &operator=(const OwnerThread &) = delete;

    // Runs Call on the owner thread and waits for it. False once a handler has thrown: the
    // engine is then answered with a failure and the exception reaches the host afterwards.
    bool call(const std::function<void()> &call);
    // Runs Job on a worker thread and serves calls until it ends.
    HRESULT run(const std::function<HRESULT()> &job);
    // Hands the first exception a handler threw to the host.
    void rethrow();

private:
    struct Request
    {
        const std::function<void()> *call;
        bool done = false;
        bool ok = true;
    };
    bool execute(const std::function<void()> &call);

    std::thread::id m_owner;
    std::mutex m_mutex;
    std::condition_variable m_wake;
    std::deque<Request *> m_queue;
    bool m_finished = false;
    std::exception_ptr m_error;
};

// The progress algorithm shared by adding and extracting.
class ProgressTracker
{
public:
    // Takes note of which handlers are assigned: those are the ones the operation serves.
    ProgressTracker(TSevenZip *owner, OwnerThread &thread, bool adding);
    // The item being processed; called on the owner thread.
    void setCurrent(const QString &name, qint64 size);
    HRESULT setTotal(quint64 total);
    HRESULT setCompleted(const quint64 *completeValue);

private:
    void announceFirstItem();

    TSevenZip *m_owner;
    OwnerThread &m_thread;
    bool m_adding;
    bool m_quiet; // no OnProgress handler when the operation started
    bool m_reported = false;
    std::atomic<bool> m_announced{false};
    QString m_name;
    qint64 m_size = 0;
    std::mutex m_mutex; // the positions: reports may come from several engine threads
    qint64 m_archivePos = 0;
    qint64 m_lastReport = 0;
};

class TMyArchiveOpenCallback final : public IArchiveOpenCallback,
                                     public ICryptoGetTextPassword,
                                     public ComObject<TMyArchiveOpenCallback>
{
public:
    TMyArchiveOpenCallback(const Engine &engine, const QString &password);

    HRESULT QueryInterface(const GUID &iid, void **outObject) override;
    ULONG AddRef() override { return addRef(); }
    ULONG Release() override { return release(); }
    HRESULT SetTotal(const quint64 *files, const quint64 *bytes) override;
    HRESULT SetCompleted(const quint64 *files, const quint64 *bytes) override;
    HRESULT CryptoGetTextPassword(BSTR *password) override;

private:
    const Engine &m_engine;
    QString m_password;
};

class TMyArchiveExtractCallback final : public IArchiveExtractCallback,
                                        public ICryptoGetTextPassword,
                                        public ComObject<TMyArchiveExtractCallback>
{
public:
    TMyArchiveExtractCallback(TSevenZip *owner, OwnerThread &thread, const Engine &engine, IInArchive *archive,
                              const QString &baseDir, bool test);
    // True when every item came out well.
    bool AllOk() const { return m_allOk; }

    HRESULT QueryInterface(const GUID &iid, void **outObject) override;
    ULONG AddRef() override { return addRef(); }
    ULONG Release() override { return release(); }
    HRESULT SetTotal(quint64 total) override;
    HRESULT SetCompleted(const quint64 *completeValue) override;
    HRESULT GetStream(quint32 index, ISequentialOutStream **outStream, qint32 askExtractMode) override;
    HRESULT PrepareOperation(qint32 askExtractMode) override;
    HRESULT SetOperationResult(qint32 opRes) override;
    HRESULT CryptoGetTextPassword(BSTR *password) override;

private:
    struct ItemInfo
    {
        QString name;
        bool isDir = false;
        qint64 size = 0;
        quint32 attrib = 0;
        qint64 mtime = 0; // ns since 1970, 0 when unknown
    };
    void prepareItem(quint32 index, const ItemInfo &info, ISequentialOutStream **outStream);
    QString destination(const QString &relative, bool isDir);

    TSevenZip *m_owner;
    OwnerThread &m_thread;
    const Engine &m_engine;
    IInArchive *m_archive;
    QString m_baseDir;
    QString m_canonicalBase;
    bool m_test;
    ProgressTracker m_progress;
    bool m_allOk = true;
    // The item between GetStream and SetOperationResult.
    QString m_itemName;
    ComPtr<TMyExtractStream> m_stream;
    quint32 m_mode = 0644;
    qint64 m_mtime = 0;
};

// One entry Add writes.
struct AddEntry
{
    QString path;   // on disk
    QString name;   // in the archive
    bool isDir = false;
    qint64 size = 0;
    quint32 attrib = 0;
    FILETIME mtime{0, 0};
};

class TMyArchiveUpdateCallback final : public IArchiveUpdateCallback,
                                       public ICryptoGetTextPassword2,
                                       public ComObject<TMyArchiveUpdateCallback>
{
public:
    TMyArchiveUpdateCallback(TSevenZip *owner, OwnerThread &thread, const Engine &engine,
                             const std::vector<AddEntry> &items);

    HRESULT QueryInterface(const GUID &iid, void **outObject) override;
    ULONG AddRef() override { return addRef(); }
    ULONG Release() override { return release(); }
    HRESULT SetTotal(quint64 total) override;
    HRESULT SetCompleted(const quint64 *completeValue) override;
    HRESULT GetUpdateItemInfo(quint32 index, qint32 *newData, qint32 *newProps, quint32 *indexInArchive) override;
    HRESULT GetProperty(quint32 index, PROPID propID, PROPVARIANT *value) override;
    HRESULT GetStream(quint32 index, ISequentialInStream **inStream) override;
    HRESULT SetOperationResult(qint32 operationResult) override;
    HRESULT CryptoGetTextPassword2(qint32 *passwordIsDefined, BSTR *password) override;

private:
    TSevenZip *m_owner;
    OwnerThread &m_thread;
    const Engine &m_engine;
    const std::vector<AddEntry> &m_items;
    QString m_password;
    ProgressTracker m_progress;
};

// FILETIME (100 ns since 1601, UTC) and nanoseconds since 1970.
qint64 FileTimeToUnixNs(const FILETIME &ft);
FILETIME UnixNsToFileTime(qint64 ns);

} // namespace mattoni::engine7z
