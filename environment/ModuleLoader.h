// TModuleLoader: the common design of TDLLLoader and TBPLLoader. Entry points of modules loaded on
// demand by name, kept in a small most-recently-used cache; when the cache is full the least
// recently used module is unloaded. The two loaders differ only in how a module is loaded and
// unloaded and in the default extension.
#pragma once

#include "mattoni_core_export.h"

#include <QList>
#include <QObject>
#include <QString>

namespace mattoni {

class MATTONI_CORE_EXPORT TModuleLoader : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString Path READ Path WRITE setPath NOTIFY PathChanged)
    Q_PROPERTY(quint8 CacheSize READ CacheSize WRITE setCacheSize NOTIFY CacheSizeChanged)

public:
    // Unloads every cached module.
    ~TModuleLoader() override;

    // Put in front of every module name as it stands (normally a folder ending with "/").
    const QString &Path() const { return m_path; }
    void setPath(const QString &value);
    // The most modules kept loaded at once.
    quint8 CacheSize() const { return m_cacheSize; }
    void setCacheSize(quint8 value);

    // The entry point ProcName of the module ModuleName, loading the module when it is not cached.
    // Cached names are compared exactly, as the caller gave them. Null for an unknown entry point.
    void *ProcAddress(const QString &ModuleName, const QString &ProcName);
    // Unloads every cached module and empties the cache. Entry points obtained before are invalid.
    void FlushCache();

signals:
    void PathChanged();
    void CacheSizeChanged();

protected:
    // Loads a module by its full name; null, or an exception, on failure.
    using LoadFunction = void *(*)(const QString &fileName);
    using UnloadFunction = void (*)(void *handle);

    TModuleLoader(QObject *owner, LoadFunction load, UnloadFunction unload, QLatin1String defaultExtension);

    // Path + Name, plus the default extension when the result holds no "." anywhere (so a "." in
    // Path suppresses it: kept as designed). The result becomes the current name.
    void SetModuleName(const QString &name);
    const QString &ModuleName() const { return m_currentName; }

private:
    struct Entry
    {
        QString name; // as the caller passed it
        void *handle;
    };

    LoadFunction m_load;
    UnloadFunction m_unload;
    QLatin1String m_extension;
    QList<Entry> m_entries; // most recently used first
    QString m_currentName;
    QString m_path;
    quint8 m_cacheSize = 8;
};

} // namespace mattoni
