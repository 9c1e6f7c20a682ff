// Loading the 7-Zip engine library and moving wide texts across its boundary.
#include "SevenZip.h"
#include "SevenZipEngine_p.h"

#include "Exceptions.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

#include <dlfcn.h>

#include <map>
#include <memory>
#include <mutex>
#include <string>

namespace mattoni {

QString SevenZipLibrary;

namespace engine7z {

namespace {

const char *const LoadFailure = "Could not load CreateObject function from 7za.dll\r\nPerhaps 7za.dll not found";
const char *const SystemLibrary = "/usr/lib/p7zip/7z.so";

QString defaultLibrary()
{
    if (QCoreApplication::instance()) {
        const QString beside = QCoreApplication::applicationDirPath() + QStringLiteral("/7z.so");
        if (QFileInfo::exists(beside))
            return beside;
    }
    return QString::fromLatin1(SystemLibrary);
}

std::unique_ptr<Engine> load(const QString &fileName)
{
    void *handle = dlopen(QFile::encodeName(fileName).constData(), RTLD_NOW | RTLD_LOCAL);
    if (!handle)
        throw EOSError(QString::fromLatin1(LoadFailure));
    auto engine = std::make_unique<Engine>();
    engine->CreateObject = reinterpret_cast<Func_CreateObject>(dlsym(handle, "CreateObject"));
    if (!engine->CreateObject) {
        dlclose(handle);
        throw EOSError(QString::fromLatin1(LoadFailure));
    }
    // Engines before 23 on Linux give IUnknown a virtual destructor, which shifts every slot of
    // every interface; they have no GetModuleProp at all.
    const auto getModuleProp = reinterpret_cast<Func_GetModuleProp>(dlsym(handle, "GetModuleProp"));
    engine->SysAllocStringLen = reinterpret_cast<Func_SysAllocStringLen>(dlsym(handle, "SysAllocStringLen"));
    engine->SysFreeString = reinterpret_cast<Func_SysFreeString>(dlsym(handle, "SysFreeString"));
    quint32 layout = ~0u;
    if (getModuleProp) {
        PROPVARIANT v{};
        if (getModuleProp(kModuleInterfaceType, &v) == S_OK && v.vt == VT_UI4)
            layout = v.ulVal;
        PROPVARIANT ver{};
        if (getModuleProp(kModuleVersion, &ver) == S_OK && ver.vt == VT_UI4)
            engine->Version = ver.ulVal;
    }
    if (layout != kInterfaceVirtDestructorNo || !engine->SysAllocStringLen || !engine->SysFreeString) {
        dlclose(handle);
        throw EOSError(QStringLiteral("The 7-Zip engine %1 has an interface layout this library cannot "
                                      "use: it needs 7-Zip 23 or later, built without a virtual "
                                      "destructor in IUnknown.")
                           .arg(fileName));
    }
    return engine;
}

} // namespace

const Engine &LoadEngine()
{
    static std::mutex mutex;
    static std::map<QString, std::unique_ptr<Engine>> loaded;
    const QString fileName = SevenZipLibrary.isEmpty() ? defaultLibrary() : SevenZipLibrary;
    std::lock_guard lock(mutex);
    auto &slot = loaded[fileName];
    if (!slot) {
        try {
            slot = load(fileName);
        } catch (...) {
            loaded.erase(fileName);
            throw;
        }
    }
    return *slot;
}

BSTR AllocBstr(const Engine &engine, const QString &s)
{
    std::wstring wide(size_t(s.size()), L'\0');
    for (qsizetype i = 0; i < s.size(); ++i)
        wide[size_t(i)] = wchar_t(s.at(i).unicode());
    return engine.SysAllocStringLen(wide.data(), unsigned(wide.size()));
}

QString FromWide(const wchar_t *s, size_t length)
{
    QString result;
    result.reserve(qsizetype(length));
    for (size_t i = 0; i < length; ++i) {
        const char32_t c = char32_t(s[i]);
        if (c > 0xFFFF) {
            const char32_t ucs4[1] = {c};
            result += QString::fromUcs4(ucs4, 1);
        } else {
            result += QChar(char16_t(c));
        }
    }
    return result;
}

QString FromBstr(BSTR s)
{
    if (!s)
        return QString();
    // The byte length sits in the 32 bits before the characters.
    const quint32 bytes = reinterpret_cast<const quint32 *>(s)[-1];
    return FromWide(s, bytes / sizeof(wchar_t));
}

} // namespace engine7z
} // namespace mattoni
