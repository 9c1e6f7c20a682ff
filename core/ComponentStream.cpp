// A component's stored properties as text and back.
#include "ComponentStream.h"

#include <QBuffer>
#include <QDataStream>
#include <QMetaEnum>
#include <QMetaProperty>
#include <QObject>
#include <QStringList>

#include <algorithm>

namespace mattoni {

EReadError::~EReadError() = default;

namespace {

QString quoteText(const QString &s)
{
    if (s.isEmpty())
        return QStringLiteral("''");
    QString out;
    bool open = false;
    for (QChar c : s) {
        if (c.unicode() < 32) {
            if (open) {
                out += QLatin1Char('\'');
                open = false;
            }
            out += QLatin1Char('#') + QString::number(c.unicode());
        } else {
            if (!open) {
                out += QLatin1Char('\'');
                open = true;
            }
            out += c == QLatin1Char('\'') ? QStringLiteral("''") : QString(c);
        }
    }
    if (open)
        out += QLatin1Char('\'');
    return out;
}

// Reads a quoted text starting at pos; pos moves past it.
bool readText(const QString &s, int &pos, QString &out)
{
    out.clear();
    bool any = false;
    while (pos < s.size()) {
        if (s.at(pos) == QLatin1Char('\'')) {
            ++pos;
            while (true) {
                if (pos >= s.size())
                    return false;
                if (s.at(pos) == QLatin1Char('\'')) {
                    if (pos + 1 < s.size() && s.at(pos + 1) == QLatin1Char('\'')) {
                        out += QLatin1Char('\'');
                        pos += 2;
                        continue;
                    }
                    ++pos;
                    break;
                }
                out += s.at(pos++);
            }
            any = true;
        } else if (s.at(pos) == QLatin1Char('#')) {
            int end = pos + 1;
            while (end < s.size() && s.at(end).isDigit())
                ++end;
            bool ok = false;
            const uint code = s.mid(pos + 1, end - pos - 1).toUInt(&ok);
            if (!ok || code > 0xFFFF)
                return false;
            out += QChar(char16_t(code));
            pos = end;
            any = true;
        } else {
            break;
        }
    }
    return any;
}

QObject *findReference(const QObject *component, const QString &name, const QMetaObject *type)
{
    for (const QObject *scope = component->parent(); scope; scope = scope->parent()) {
        const QList<QObject *> found = scope->findChildren<QObject *>(name);
        for (QObject *o : found) {
            if (o != component && o->metaObject()->inherits(type))
                return o;
        }
    }
    return nullptr;
}

QString writeValue(const QMetaProperty &p, const QVariant &v)
{
    if (p.isEnumType()) {
        const QMetaEnum e = p.enumerator();
        if (e.isFlag())
            return QLatin1Char('[') + QString::fromLatin1(e.valueToKeys(v.toInt())).replace(QLatin1Char('|'), QLatin1String(", ")) + QLatin1Char(']');
        const char *key = e.valueToKey(v.toInt());
        return key ? QString::fromLatin1(key) : QString::number(v.toInt());
    }
    const QMetaType type = p.metaType();
    if (type.flags() & QMetaType::PointerToQObject) {
        const QObject *o = v.value<QObject *>();
        return o && !o->objectName().isEmpty() ? o->objectName() : QStringLiteral("nil");
    }
    switch (type.id()) {
    case QMetaType::Bool: return v.toBool() ? QStringLiteral("True") : QStringLiteral("False");
    case QMetaType::Int: case QMetaType::Short: case QMetaType::Long: case QMetaType::LongLong:
    case QMetaType::SChar: return QString::number(v.toLongLong());
    case QMetaType::UInt: case QMetaType::UShort: case QMetaType::ULong: case QMetaType::ULongLong:
    case QMetaType::UChar: return QString::number(v.toULongLong());
    case QMetaType::Double: case QMetaType::Float: return QString::number(v.toDouble(), 'g', 17);
    case QMetaType::QString: return quoteText(v.toString());
    case QMetaType::QChar: return QLatin1Char('#') + QString::number(v.toChar().unicode());
    case QMetaType::QStringList: {
        QStringList parts;
        for (const QString &s : v.toStringList())
            parts << quoteText(s);
        return QLatin1Char('(') + parts.join(QLatin1Char(' ')) + QLatin1Char(')');
    }
    default: {
        QByteArray bytes;
        QDataStream out(&bytes, QIODevice::WriteOnly);
        if (!type.save(out, v.constData()))
            return QString();
        return QLatin1Char('{') + QString::fromLatin1(bytes.toBase64()) + QLatin1Char('}');
    }
    }
}

QVariant readValue(const QObject *component, const QMetaProperty &p, const QString &text, bool &ok)
{
    ok = true;
    if (p.isEnumType()) {
        const QMetaEnum e = p.enumerator();
        if (e.isFlag()) {
            QString inner = text.trimmed();
            if (!inner.startsWith(QLatin1Char('[')) || !inner.endsWith(QLatin1Char(']'))) {
                ok = false;
                return {};
            }
            inner = inner.mid(1, inner.size() - 2).remove(QLatin1Char(' ')).replace(QLatin1Char(','), QLatin1Char('|'));
            const int value = inner.isEmpty() ? 0 : e.keysToValue(inner.toLatin1().constData(), &ok);
            return value;
        }
        const int value = e.keyToValue(text.toLatin1().constData(), &ok);
        if (!ok) {
            const int n = text.toInt(&ok);
            return n;
        }
        return value;
    }
    const QMetaType type = p.metaType();
    if (type.flags() & QMetaType::PointerToQObject) {
        if (text == QLatin1String("nil"))
            return QVariant(type, nullptr);
        QObject *o = findReference(component, text, type.metaObject());
        ok = o != nullptr;
        QVariant v(type, &o);
        return v;
    }
    int pos = 0;
    QString s;
    switch (type.id()) {
    case QMetaType::Bool:
        ok = text == QLatin1String("True") || text == QLatin1String("False");
        return text == QLatin1String("True");
    case QMetaType::Int: case QMetaType::Short: case QMetaType::Long: case QMetaType::LongLong:
    case QMetaType::SChar: {
        QVariant v(text.toLongLong(&ok));
        v.convert(type);
        return v;
    }
    case QMetaType::UInt: case QMetaType::UShort: case QMetaType::ULong: case QMetaType::ULongLong:
    case QMetaType::UChar: {
        QVariant v(text.toULongLong(&ok));
        v.convert(type);
        return v;
    }
    case QMetaType::Double: case QMetaType::Float: {
        QVariant v(text.toDouble(&ok));
        v.convert(type);
        return v;
    }
    case QMetaType::QString:
        ok = readText(text, pos, s) && pos == text.size();
        return s;
    case QMetaType::QChar:
        ok = readText(text, pos, s) && pos == text.size() && s.size() == 1;
        return ok ? QVariant(s.at(0)) : QVariant();
    case QMetaType::QStringList: {
        QStringList list;
        if (!text.startsWith(QLatin1Char('(')) || !text.endsWith(QLatin1Char(')'))) {
            ok = false;
            return {};
        }
        pos = 1;
        while (pos < text.size() - 1) {
            if (text.at(pos) == QLatin1Char(' ')) {
                ++pos;
                continue;
            }
            if (!readText(text, pos, s)) {
                ok = false;
                return {};
            }
            list << s;
        }
        return list;
    }
    default: {
        if (!text.startsWith(QLatin1Char('{')) || !text.endsWith(QLatin1Char('}'))) {
            ok = false;
            return {};
        }
        const QByteArray bytes = QByteArray::fromBase64(text.mid(1, text.size() - 2).toLatin1());
        QDataStream in(bytes);
        QVariant v(type);
        ok = type.load(in, v.data()) && in.status() == QDataStream::Ok;
        return v;
    }
    }
}

// The properties the class and its bases name in Q_CLASSINFO(key, ...), bases first.
QStringList classInfoNames(const QMetaObject *mo, const char *key)
{
    QStringList names;
    for (int i = mo->classInfoCount() - 1; i >= 0; --i) {
        const QMetaClassInfo info = mo->classInfo(i);
        if (qstrcmp(info.name(), key) != 0)
            continue;
        const QStringList listed = QString::fromLatin1(info.value()).split(QLatin1Char(','), Qt::SkipEmptyParts);
        for (auto it = listed.crbegin(); it != listed.crend(); ++it) {
            if (!names.contains(it->trimmed()))
                names.prepend(it->trimmed());
        }
    }
    return names;
}

// The order in which a class's properties are written and read: those named StreamedFirst, the
// others, those named StreamedLast.
struct StreamOrder
{
    explicit StreamOrder(const QMetaObject *mo)
        : first(classInfoNames(mo, "StreamedFirst"))
        , last(classInfoNames(mo, "StreamedLast"))
    {
    }
    // 0 first, 1 in between, 2 last.
    int group(const QString &name) const { return first.contains(name) ? 0 : last.contains(name) ? 2 : 1; }
    int rank(const QString &name) const
    {
        const qsizetype i = first.indexOf(name);
        return int(i >= 0 ? i : last.indexOf(name));
    }
    // Stable: lines keep their order within their group, the named ones take their class's order.
    void sort(QList<QPair<QString, QString>> &lines) const
    {
        std::stable_sort(lines.begin(), lines.end(), [this](const auto &a, const auto &b) {
            const int ga = group(a.first);
            const int gb = group(b.first);
            if (ga != gb)
                return ga < gb;
            return ga != 1 && rank(a.first) < rank(b.first);
        });
    }

    QStringList first;
    QStringList last;
};

} // namespace

QString ComponentToString(const QObject *component)
{
    const QMetaObject *mo = component->metaObject();
    QString out = QStringLiteral("object %1: %2\n")
                      .arg(component->objectName().isEmpty() ? QStringLiteral("_") : component->objectName(),
                           QString::fromLatin1(mo->className()).section(QLatin1String("::"), -1));
    QList<QPair<QString, QString>> lines;
    for (int i = 0; i < mo->propertyCount(); ++i) {
        const QMetaProperty p = mo->property(i);
        if (!p.isReadable() || !p.isWritable() || !p.isStored() || qstrcmp(p.name(), "objectName") == 0)
            continue;
        const QString value = writeValue(p, p.read(component));
        if (!value.isEmpty())
            lines.append({QString::fromLatin1(p.name()), value});
    }
    StreamOrder(mo).sort(lines);
    for (const auto &[name, value] : lines)
        out += QStringLiteral("  %1 = %2\n").arg(name, value);
    out += QStringLiteral("end\n");
    return out;
}

void StringToComponent(const QString &text, QObject *component)
{
    const QMetaObject *mo = component->metaObject();
    // A text may hold its lines in any order: they are read in the class's stream order.
    QList<QPair<QString, QString>> lines;
    for (const QString &raw : text.split(QLatin1Char('\n'))) {
        const QString line = raw.trimmed();
        lines.append({line.section(QLatin1String(" = "), 0, 0), raw});
    }
    StreamOrder(mo).sort(lines);
    for (const auto &entry : lines) {
        const QString line = entry.second.trimmed();
        if (line.isEmpty() || line == QLatin1String("end") || line.startsWith(QLatin1String("object ")))
            continue;
        const int eq = int(line.indexOf(QLatin1String(" = ")));
        if (eq < 0)
            throw EReadError(QStringLiteral("Invalid property line: %1").arg(line));
        const QString name = line.left(eq);
        const int index = mo->indexOfProperty(name.toLatin1().constData());
        if (index < 0)
            throw EReadError(QStringLiteral("Property %1 does not exist").arg(name));
        const QMetaProperty p = mo->property(index);
        bool ok = false;
        const QVariant value = readValue(component, p, line.mid(eq + 3), ok);
        if (!ok || !p.write(component, value))
            throw EReadError(QStringLiteral("Invalid property value: %1").arg(line));
    }
}

} // namespace mattoni
