// The module cache shared by the two loaders.
#include "ModuleLoader.h"

#include <dlfcn.h>

namespace mattoni {

TModuleLoader::TModuleLoader(QObject *owner, LoadFunction load, UnloadFunction unload, QLatin1String defaultExtension)
    : QObject(owner)
    , m_load(load)
    , m_unload(unload)
    , m_extension(defaultExtension)
{
}

TModuleLoader::~TModuleLoader()
{
    FlushCache();
}

void TModuleLoader::setPath(const QString &value)
{
    if (m_path == value)
        return;
    m_path = value;
    emit PathChanged();
}

void TModuleLoader::setCacheSize(quint8 value)
{
    if (m_cacheSize == value)
        return;
    m_cacheSize = value;
    emit CacheSizeChanged();
}

void TModuleLoader::SetModuleName(const QString &name)
{
    m_currentName = m_path + name;
    if (!m_currentName.contains(QLatin1Char('.')))
        m_currentName += m_extension;
}

void *TModuleLoader::ProcAddress(const QString &ModuleName, const QString &ProcName)
{
    qsizetype found = -1;
    for (qsizetype i = 0; i < m_entries.size(); ++i) {
        if (m_entries.at(i).name == ModuleName) {
            found = i;
            break;
        }
    }
    void *handle;
    if (found < 0) {
        if (!m_entries.isEmpty() && m_entries.size() >= m_cacheSize) {
            void *evicted = m_entries.takeLast().handle;
            if (evicted)
                m_unload(evicted);
        }
        SetModuleName(ModuleName);
        handle = m_load(m_currentName);
        // With CacheSize 0 the module is never cached, so the loader never unloads it: as designed.
        if (m_entries.size() < m_cacheSize)
            m_entries.prepend(Entry{ModuleName, handle});
    } else {
        handle = m_entries.at(found).handle;
        if (found > 0)
            m_entries.move(found, 0);
    }
    // A module that failed to load is cached with a null handle. It must never reach dlsym, where
    // a null handle means "search every module of the process".
    if (!handle)
        return nullptr;
    return dlsym(handle, ProcName.toUtf8().constData());
}

void TModuleLoader::FlushCache()
{
    while (!m_entries.isEmpty()) {
        void *handle = m_entries.takeFirst().handle;
        if (handle)
            m_unload(handle);
    }
}

} // namespace mattoni
