// The two-hive settings store over QSettings.
#include "Registry.h"

#include <QSettings>

namespace mattoni {

ERegistryException::~ERegistryException() = default;

namespace {

// Marks a key that exists without values: an INI store keeps no empty groups.
const QString KeyMarker = QStringLiteral("@");

QStringList segments(const QString &key)
{
    QString k = key;
    k.replace(QLatin1Char('/'), QLatin1Char('\\'));
    return k.split(QLatin1Char('\\'), Qt::SkipEmptyParts);
}

QString findIgnoringCase(const QStringList &names, const QString &wanted)
{
    for (const QString &n : names) {
        if (n.compare(wanted, Qt::CaseInsensitive) == 0)
            return n;
    }
    return QString();
}

std::unique_ptr<QSettings> openHive(THKey root)
{
    auto s = std::make_unique<QSettings>(QSettings::IniFormat,
                                         root == HKEY_CURRENT_USER ? QSettings::UserScope : QSettings::SystemScope,
                                         QStringLiteral("Mattoni"), QStringLiteral("registry"));
    // A user store must not see the machine's values through Qt's fallbacks.
    s->setFallbacksEnabled(false);
    return s;
}

} // namespace

TRegistry::TRegistry(THKey root)
    : m_root(root)
    , m_settings(openHive(root))
{
}

TRegistry::~TRegistry()
{
    m_settings->sync();
}

void TRegistry::setRootKey(THKey root)
{
    if (root == m_root)
        return;
    CloseKey();
    m_settings->sync();
    m_root = root;
    m_settings = openHive(root);
}

QString TRegistry::CurrentPath() const
{
    QString path = m_current;
    return path.replace(QLatin1Char('/'), QLatin1Char('\\'));
}

QString TRegistry::resolve(const QString &key, bool create) const
{
    const bool absolute = key.startsWith(QLatin1Char('\\')) || key.startsWith(QLatin1Char('/')) || !m_open;
    QString group = absolute ? QString() : m_current;
    for (const QString &part : segments(key)) {
        m_settings->beginGroup(group);
        const QString existing = findIgnoringCase(m_settings->childGroups(), part);
        m_settings->endGroup();
        if (existing.isEmpty() && !create)
            return QString();
        group = group.isEmpty() ? (existing.isEmpty() ? part : existing)
                                : group + QLatin1Char('/') + (existing.isEmpty() ? part : existing);
    }
    return group;
}

bool TRegistry::OpenKey(const QString &key, bool canCreate)
{
    const QString group = resolve(key, canCreate);
    if (group.isEmpty() && !segments(key).isEmpty())
        return false;
    if (canCreate && !group.isEmpty()) {
        m_settings->beginGroup(group);
        if (m_settings->childKeys().isEmpty() && m_settings->childGroups().isEmpty())
            m_settings->setValue(KeyMarker, QString());
        m_settings->endGroup();
    }
    m_current = group;
    m_open = true;
    m_readOnly = false;
    return true;
}

bool TRegistry::OpenKeyReadOnly(const QString &key)
{
    const QString group = resolve(key, false);
    if (group.isEmpty() && !segments(key).isEmpty())
        return false;
    m_current = group;
    m_open = true;
    m_readOnly = true;
    return true;
}

void TRegistry::CloseKey()
{
    m_current.clear();
    m_open = false;
    m_readOnly = false;
}

bool TRegistry::KeyExists(const QString &key) const
{
    return !resolve(key, false).isEmpty();
}

QString TRegistry::valueKey(const QString &name) const
{
    m_settings->beginGroup(m_current);
    const QString existing = findIgnoringCase(m_settings->childKeys(), name);
    m_settings->endGroup();
    if (existing.isEmpty())
        return QString();
    return m_current.isEmpty() ? existing : m_current + QLatin1Char('/') + existing;
}

bool TRegistry::ValueExists(const QString &name) const
{
    return m_open && name != KeyMarker && !valueKey(name).isEmpty();
}

QString TRegistry::ReadString(const QString &name) const
{
    if (!ValueExists(name))
        return QString();
    return m_settings->value(valueKey(name)).toString();
}

void TRegistry::WriteString(const QString &name, const QString &value)
{
    if (!m_open || m_readOnly || name == KeyMarker)
        throw ERegistryException(QStringLiteral("Failed to set data for '%1'").arg(name));
    QString key = valueKey(name);
    if (key.isEmpty())
        key = m_current.isEmpty() ? name : m_current + QLatin1Char('/') + name;
    m_settings->setValue(key, value);
    m_settings->remove(m_current.isEmpty() ? KeyMarker : m_current + QLatin1Char('/') + KeyMarker);
}

bool TRegistry::DeleteValue(const QString &name)
{
    if (!m_open || m_readOnly)
        return false;
    const QString key = valueKey(name);
    if (key.isEmpty())
        return false;
    m_settings->remove(key);
    return true;
}

bool TRegistry::DeleteKey(const QString &key)
{
    const QString group = resolve(key, false);
    if (group.isEmpty())
        return false;
    m_settings->remove(group);
    return true;
}

QStringList TRegistry::GetValueNames() const
{
    if (!m_open)
        return {};
    m_settings->beginGroup(m_current);
    QStringList names = m_settings->childKeys();
    m_settings->endGroup();
    names.removeAll(KeyMarker);
    return names;
}

QStringList TRegistry::GetKeyNames() const
{
    if (!m_open)
        return {};
    m_settings->beginGroup(m_current);
    const QStringList names = m_settings->childGroups();
    m_settings->endGroup();
    return names;
}

QString TRegistry::StorePath(THKey root)
{
    return openHive(root)->fileName();
}

} // namespace mattoni
