// The 7-Zip engine's binary interfaces as its Linux build (7-Zip 23 and later) lays them out:
// COM-style interfaces without a virtual destructor in IUnknown, 32-bit HRESULT and ULONG,
// BSTR as a wchar_t string (4 bytes a character here) preceded by its byte length, and the
// 16-byte PROPVARIANT. Declared from the engine's published interface definitions; private to
// the archive component.
#pragma once

#include <QString>
#include <QtGlobal>

#include <atomic>
#include <cstring>
#include <cwchar>

namespace mattoni::engine7z {

using HRESULT = qint32;
using ULONG = quint32;
using PROPID = quint32;
using VARTYPE = quint16;
using BSTR = wchar_t *;

inline constexpr HRESULT S_OK = 0;
inline constexpr HRESULT S_FALSE = 1;
inline constexpr HRESULT E_NOTIMPL = HRESULT(0x80004001u);
inline constexpr HRESULT E_NOINTERFACE = HRESULT(0x80004002u);
inline constexpr HRESULT E_ABORT = HRESULT(0x80004004u);
inline constexpr HRESULT E_FAIL = HRESULT(0x80004005u);
inline constexpr HRESULT E_OUTOFMEMORY = HRESULT(0x8007000Eu);
inline constexpr HRESULT E_INVALIDARG = HRESULT(0x80070057u);
inline constexpr HRESULT STG_E_INVALIDFUNCTION = HRESULT(0x80030001u);

struct GUID
{
    quint32 Data1;
    quint16 Data2;
    quint16 Data3;
    quint8 Data4[8];
};

inline bool operator==(const GUID &a, const GUID &b)
{
    return std::memcmp(&a, &b, sizeof(GUID)) == 0;
}

// Every interface of the engine is {23170F69-40C1-278A-0000-00gg00ss0000}: group and sub id.
constexpr GUID EngineIid(quint8 group, quint8 sub)
{
    return GUID{0x23170F69, 0x40C1, 0x278A, {0, 0, 0, group, 0, sub, 0, 0}};
}

inline constexpr GUID IID_IUnknown{0x00000000, 0x0000, 0x0000, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
inline constexpr GUID IID_IProgress = EngineIid(0x00, 0x05);
inline constexpr GUID IID_ISequentialInStream = EngineIid(0x03, 0x01);
inline constexpr GUID IID_ISequentialOutStream = EngineIid(0x03, 0x02);
inline constexpr GUID IID_IInStream = EngineIid(0x03, 0x03);
inline constexpr GUID IID_IOutStream = EngineIid(0x03, 0x04);
inline constexpr GUID IID_IStreamGetSize = EngineIid(0x03, 0x06);
inline constexpr GUID IID_ICompressProgressInfo = EngineIid(0x04, 0x04);
inline constexpr GUID IID_ICryptoGetTextPassword = EngineIid(0x05, 0x10);
inline constexpr GUID IID_ICryptoGetTextPassword2 = EngineIid(0x05, 0x11);
inline constexpr GUID IID_ISetProperties = EngineIid(0x06, 0x03);
inline constexpr GUID IID_IArchiveOpenCallback = EngineIid(0x06, 0x10);
inline constexpr GUID IID_IArchiveExtractCallback = EngineIid(0x06, 0x20);
inline constexpr GUID IID_IInArchive = EngineIid(0x06, 0x60);
inline constexpr GUID IID_IArchiveUpdateCallback = EngineIid(0x06, 0x80);
inline constexpr GUID IID_IOutArchive = EngineIid(0x06, 0xA0);

// The handler class of the 7z format: {23170F69-40C1-278A-1000-000110070000}.
inline constexpr GUID CLSID_Format7z{0x23170F69, 0x40C1, 0x278A, {0x10, 0, 0, 0x01, 0x10, 0x07, 0, 0}};

enum VARENUM : VARTYPE {
    VT_EMPTY = 0,
    VT_BSTR = 8,
    VT_BOOL = 11,
    VT_UI4 = 19,
    VT_UI8 = 21,
    VT_FILETIME = 64,
};

struct FILETIME
{
    quint32 dwLowDateTime;
    quint32 dwHighDateTime;
};

struct PROPVARIANT
{
    VARTYPE vt;
    quint16 wReserved1;
    quint16 wReserved2;
    quint16 wReserved3;
    union {
        quint32 ulVal;
        quint64 uhVal;
        qint16 boolVal;
        FILETIME filetime;
        BSTR bstrVal;
    };
};
static_assert(sizeof(PROPVARIANT) == 16, "the engine's PROPVARIANT is 16 bytes");
static_assert(sizeof(wchar_t) == 4, "the engine's Linux BSTR holds 4-byte characters");

// Item properties asked of and answered by the engine.
enum PropId : PROPID {
    kpidPath = 3,
    kpidIsDir = 6,
    kpidSize = 7,
    kpidPackSize = 8,
    kpidAttrib = 9,
    kpidCTime = 10,
    kpidATime = 11,
    kpidMTime = 12,
    kpidEncrypted = 15,
    kpidCRC = 19,
    kpidIsAnti = 21,
    kpidMethod = 22,
    kpidPosixAttrib = 53,
};

// Results of IArchiveExtractCallback::SetOperationResult.
enum ExtractResult : qint32 {
    kOpOK = 0,
    kOpUnsupportedMethod,
    kOpDataError,
    kOpCRCError,
    kOpUnavailable,
    kOpUnexpectedEnd,
    kOpDataAfterEnd,
    kOpIsNotArc,
    kOpHeadersError,
    kOpWrongPassword,
};

enum AskMode : qint32 { kAskExtract = 0, kAskTest, kAskSkip, kAskReadExternal };

// Attribute bit saying that the high 16 bits carry the POSIX mode.
inline constexpr quint32 FILE_ATTRIBUTE_DIRECTORY = 0x10;
inline constexpr quint32 FILE_ATTRIBUTE_UNIX_EXTENSION = 0x8000;

// GetModuleProp answers: interface layout (0 = IUnknown without virtual destructor) and version.
inline constexpr PROPID kModuleInterfaceType = 0;
inline constexpr PROPID kModuleVersion = 1;
inline constexpr quint32 kInterfaceVirtDestructorNo = 0;

} // namespace mattoni::engine7z

// The interfaces keep the engine's own names in the global namespace: objects cross the library
// boundary in both directions, and the run-time type checks of the sanitizers match types by name.
using mattoni::engine7z::BSTR;
using mattoni::engine7z::GUID;
using mattoni::engine7z::HRESULT;
using mattoni::engine7z::PROPID;
using mattoni::engine7z::PROPVARIANT;
using mattoni::engine7z::ULONG;
using mattoni::engine7z::VARTYPE;

struct IUnknown
{
    virtual HRESULT QueryInterface(const GUID &iid, void **outObject) = 0;
    virtual ULONG AddRef() = 0;
    virtual ULONG Release() = 0;
};

struct ISequentialInStream : IUnknown
{
    virtual HRESULT Read(void *data, quint32 size, quint32 *processedSize) = 0;
};

struct ISequentialOutStream : IUnknown
{
    virtual HRESULT Write(const void *data, quint32 size, quint32 *processedSize) = 0;
};

struct IInStream : ISequentialInStream
{
    virtual HRESULT Seek(qint64 offset, quint32 seekOrigin, quint64 *newPosition) = 0;
};

struct IOutStream : ISequentialOutStream
{
    virtual HRESULT Seek(qint64 offset, quint32 seekOrigin, quint64 *newPosition) = 0;
    virtual HRESULT SetSize(quint64 newSize) = 0;
};

struct IStreamGetSize : IUnknown
{
    virtual HRESULT GetSize(quint64 *size) = 0;
};

struct IProgress : IUnknown
{
    virtual HRESULT SetTotal(quint64 total) = 0;
    virtual HRESULT SetCompleted(const quint64 *completeValue) = 0;
};

struct ICompressProgressInfo : IUnknown
{
    virtual HRESULT SetRatioInfo(const quint64 *inSize, const quint64 *outSize) = 0;
};

struct ICryptoGetTextPassword : IUnknown
{
    virtual HRESULT CryptoGetTextPassword(BSTR *password) = 0;
};

struct ICryptoGetTextPassword2 : IUnknown
{
    virtual HRESULT CryptoGetTextPassword2(qint32 *passwordIsDefined, BSTR *password) = 0;
};

struct IArchiveOpenCallback : IUnknown
{
    virtual HRESULT SetTotal(const quint64 *files, const quint64 *bytes) = 0;
    virtual HRESULT SetCompleted(const quint64 *files, const quint64 *bytes) = 0;
};

struct IArchiveExtractCallback : IProgress
{
    virtual HRESULT GetStream(quint32 index, ISequentialOutStream **outStream, qint32 askExtractMode) = 0;
    virtual HRESULT PrepareOperation(qint32 askExtractMode) = 0;
    virtual HRESULT SetOperationResult(qint32 opRes) = 0;
};

struct IInArchive : IUnknown
{
    virtual HRESULT Open(IInStream *stream, const quint64 *maxCheckStartPosition,
                         IArchiveOpenCallback *openCallback) = 0;
    virtual HRESULT Close() = 0;
    virtual HRESULT GetNumberOfItems(quint32 *numItems) = 0;
    virtual HRESULT GetProperty(quint32 index, PROPID propID, PROPVARIANT *value) = 0;
    virtual HRESULT Extract(const quint32 *indices, quint32 numItems, qint32 testMode,
                            IArchiveExtractCallback *extractCallback) = 0;
    virtual HRESULT GetArchiveProperty(PROPID propID, PROPVARIANT *value) = 0;
    virtual HRESULT GetNumberOfProperties(quint32 *numProps) = 0;
    virtual HRESULT GetPropertyInfo(quint32 index, BSTR *name, PROPID *propID, VARTYPE *varType) = 0;
    virtual HRESULT GetNumberOfArchiveProperties(quint32 *numProps) = 0;
    virtual HRESULT GetArchivePropertyInfo(quint32 index, BSTR *name, PROPID *propID, VARTYPE *varType) = 0;
};

struct IArchiveUpdateCallback : IProgress
{
    virtual HRESULT GetUpdateItemInfo(quint32 index, qint32 *newData, qint32 *newProps,
                                      quint32 *indexInArchive) = 0;
    virtual HRESULT GetProperty(quint32 index, PROPID propID, PROPVARIANT *value) = 0;
    virtual HRESULT GetStream(quint32 index, ISequentialInStream **inStream) = 0;
    virtual HRESULT SetOperationResult(qint32 operationResult) = 0;
};

struct IOutArchive : IUnknown
{
    virtual HRESULT UpdateItems(ISequentialOutStream *outStream, quint32 numItems,
                                IArchiveUpdateCallback *updateCallback) = 0;
    virtual HRESULT GetFileTimeType(quint32 *type) = 0;
};

struct ISetProperties : IUnknown
{
    virtual HRESULT SetProperties(const wchar_t *const *names, const PROPVARIANT *values, quint32 numProps) = 0;
};

namespace mattoni::engine7z {

using ::ICompressProgressInfo;
using ::ICryptoGetTextPassword;
using ::ICryptoGetTextPassword2;
using ::IArchiveExtractCallback;
using ::IArchiveOpenCallback;
using ::IArchiveUpdateCallback;
using ::IInArchive;
using ::IInStream;
using ::IOutArchive;
using ::IOutStream;
using ::IProgress;
using ::ISequentialInStream;
using ::ISequentialOutStream;
using ::ISetProperties;
using ::IStreamGetSize;
using ::IUnknown;

// Exports of the engine library.
using Func_CreateObject = HRESULT (*)(const GUID *clsID, const GUID *iid, void **outObject);
using Func_GetModuleProp = HRESULT (*)(PROPID propID, PROPVARIANT *value);
using Func_SysAllocStringLen = BSTR (*)(const wchar_t *s, unsigned len);
using Func_SysFreeString = void (*)(BSTR bstr);

// QueryInterface's answers: the object seen as Interface, with a reference for the caller; or none.
template<class Interface, class Object>
HRESULT Answer(Object *object, void **outObject)
{
    *outObject = static_cast<Interface *>(object);
    object->AddRef();
    return S_OK;
}

inline HRESULT NoInterface(void **outObject)
{
    *outObject = nullptr;
    return E_NOINTERFACE;
}

// Holds one reference to an engine object and gives it back when it goes.
template<class T>
class ComPtr
{
public:
    ComPtr() = default;
    explicit ComPtr(T *p) : m_p(p)
    {
        if (m_p)
            m_p->AddRef();
    }
    ComPtr(const ComPtr &) = delete;
    ComPtr &operator=(const ComPtr &) = delete;
    ~ComPtr() { reset(); }
    // Holds P (counting a new reference) instead of the current object.
    void reset(T *p = nullptr)
    {
        if (p)
            p->AddRef();
        if (m_p)
            m_p->Release();
        m_p = p;
    }
    T *get() const { return m_p; }
    T *operator->() const { return m_p; }
    explicit operator bool() const { return m_p != nullptr; }
    // For out-parameters: the engine hands over a reference already counted.
    T **put()
    {
        if (m_p) {
            m_p->Release();
            m_p = nullptr;
        }
        return &m_p;
    }
    void **putVoid() { return reinterpret_cast<void **>(put()); }

private:
    T *m_p = nullptr;
};

// Reference counting shared by our objects handed to the engine; the engine may call them from
// its worker threads, hence the atomic count.
template<class Derived>
class ComObject
{
public:
    ULONG addRef() { return ++m_refs; }
    ULONG release()
    {
        const ULONG left = --m_refs;
        if (left == 0)
            delete static_cast<Derived *>(this);
        return left;
    }

private:
    std::atomic<ULONG> m_refs{0};
};

// The loaded engine library: its entry point and the string allocator that objects crossing
// its boundary must share.
struct Engine
{
    Func_CreateObject CreateObject = nullptr;
    Func_SysAllocStringLen SysAllocStringLen = nullptr;
    Func_SysFreeString SysFreeString = nullptr;
    quint32 Version = 0; // major << 16 | minor
};

// The library named by SevenZipLibrary, loaded once per name and kept for the process's life,
// since engine objects may outlive any one component. Raises EOSError when it cannot be loaded
// or its interface layout is not ours.
const Engine &LoadEngine();

// The engine keeps wide texts as UTF-16 code units, one per wchar_t, surrogate pairs included.
BSTR AllocBstr(const Engine &engine, const QString &s);
QString FromWide(const wchar_t *s, size_t length);
QString FromBstr(BSTR s);

// A PROPVARIANT that frees its string through the engine when it goes.
class PropVariant : public PROPVARIANT
{
public:
    explicit PropVariant(const Engine &engine)
        : PROPVARIANT{}
        , m_engine(engine)
    {
        vt = VT_EMPTY;
    }
    PropVariant(const PropVariant &) = delete;
    PropVariant &operator=(const PropVariant &) = delete;
    ~PropVariant() { clear(); }
    void clear()
    {
        if (vt == VT_BSTR && bstrVal)
            m_engine.SysFreeString(bstrVal);
        vt = VT_EMPTY;
        uhVal = 0;
    }
    // VT_UI4 and VT_UI8 as a number, anything else as Default.
    quint64 toUInt64(quint64 defaultValue = 0) const
    {
        if (vt == VT_UI4)
            return ulVal;
        if (vt == VT_UI8)
            return uhVal;
        return defaultValue;
    }
    QString toString() const { return vt == VT_BSTR ? FromBstr(bstrVal) : QString(); }
    bool toBool() const { return vt == VT_BOOL && boolVal != 0; }

private:
    const Engine &m_engine;
};

} // namespace mattoni::engine7z
