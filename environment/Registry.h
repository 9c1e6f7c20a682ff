// TRegistry: a hierarchical settings store with two hives, the current user's and the machine's,
// holding keys ("Software\Company\App\1"), value names and text values. Each hive is a QSettings
// INI store (user scope and system scope, organisation "Mattoni", application "registry"); keys and
// value names are matched ignoring case, as such stores always did. Tests redirect both hives with
// QSettings::setPath.
#pragma once

#include "Exceptions.h"
#include "mattoni_core_export.h"

#include <QString>
#include <QStringList>

#include <memory>

class QSettings;

namespace mattoni {

MATTONI_DECLARE_EXCEPTION(ERegistryException, Exception)

enum THKey { HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE };

class MATTONI_CORE_EXPORT TRegistry
{
public:
    explicit TRegistry(THKey root = HKEY_CURRENT_USER);
    ~TRegistry();
    TRegistry(const TRegistry &) = delete;
    TRegistry &operator=(const TRegistry &) = delete;

    THKey RootKey() const { return m_root; }
    void setRootKey(THKey root);
    // The open key with "\" separators, empty when none is open.
    QString CurrentPath() const;
    bool ReadOnly() const { return m_readOnly; }

    // A key starting with "\" or opened with no key open is taken from the hive's root, any other
    // is relative to the open key. OpenKey creates missing keys when asked.
    bool OpenKey(const QString &key, bool canCreate);
    bool OpenKeyReadOnly(const QString &key);
    void CloseKey();

    bool KeyExists(const QString &key) const;
    bool ValueExists(const QString &name) const;
    // The text of a value of the open key; empty when the value is missing.
    QString ReadString(const QString &name) const;
    // Raises ERegistryException "Failed to set data for '%s'" when no key is open for writing.
    void WriteString(const QString &name, const QString &value);
    bool DeleteValue(const QString &name);
    bool DeleteKey(const QString &key);
    QStringList GetValueNames() const;
    QStringList GetKeyNames() const;

    // The INI file that holds a hive.
    static QString StorePath(THKey root);

private:
    QString resolve(const QString &key, bool create) const;
    QString valueKey(const QString &name) const;

    THKey m_root;
    std::unique_ptr<QSettings> m_settings;
    QString m_current;
    bool m_open = false;
    bool m_readOnly = false;
};

} // namespace mattoni
