// Text helpers of the applications.
#include "TextUtils.h"

#include "FormatSettings.h"
#include "Formatting.h"
#include "Strings.h"

namespace mattoni {

QString HeadFillChars(const QString &s, QChar ch, int len)
{
    if (len < 1)
        return QString();
    const QString t = Trim(s);
    if (t.size() < len)
        return QString(len - t.size(), ch) + t;
    return s.left(len);
}

QString TailFillChars(const QString &s, QChar ch, int len)
{
    if (len < 1)
        return QString();
    const QString t = Trim(s);
    if (t.size() < len)
        return t + QString(len - t.size(), ch);
    return s.left(len);
}

QString LeadingZeroes(const QString &s, int n)
{
    const QString t = Trim(s);
    if (n <= t.size())
        return HeadFillChars(Copy(s, int(t.size()) - n + 1, n), QLatin1Char('0'), n);
    return HeadFillChars(s, QLatin1Char('0'), n);
}

void TrimZero(QString &s)
{
    int i = 0;
    while (i < s.size() && s.at(i) == QLatin1Char('0'))
        ++i;
    s.remove(0, i);
}

QString ExtractItemValue(const QString &s, const QString &item)
{
    const QString key = item + QLatin1Char('=');
    const int p = int(s.indexOf(key));
    if (p < 0)
        return QString();
    const int start = p + int(key.size());
    int end = int(s.indexOf(QLatin1Char(';'), start));
    if (end < 0)
        end = int(s.size());
    return Trim(s.mid(start, end - start));
}

QString ModifyItemValue(const QString &s, const QString &item, const QString &value)
{
    const QString key = item + QLatin1Char('=');
    const int p = int(s.indexOf(key));
    if (p < 0)
        return s;
    const int start = p + int(key.size());
    const int next = int(s.indexOf(QLatin1Char(';'), start));
    return s.left(start) + value + (next < 0 ? QString() : s.mid(next));
}

QString StringsToText(const QStringList &list)
{
    return list.join(QLatin1Char(';'));
}

void TextToStrings(const QString &s, QStringList &list)
{
    list = s.split(QLatin1Char(';'));
    if (!list.isEmpty() && list.last().isEmpty())
        list.removeLast();
}

void TextToStrings(const QString &s, QStringList &names, QStringList &values)
{
    QStringList items;
    TextToStrings(s, items);
    names.clear();
    values.clear();
    for (const QString &item : items) {
        const int eq = int(item.indexOf(QLatin1Char('=')));
        names << (eq < 0 ? item : item.left(eq));
        values << (eq < 0 ? QString() : item.mid(eq + 1));
    }
}

qint32 StringValueToInt(const QString &s)
{
    QString rest;
    for (QChar c : s) {
        if ((c >= QLatin1Char('0') && c <= QLatin1Char('9')) || c == QLatin1Char('-')
            || c == FormatSettings.DecimalSeparator)
            rest += c;
    }
    return rest.isEmpty() ? 0 : StrToInt(rest);
}

QString IntValueToStr(quint32 value)
{
    return QString::number(value);
}

QString CreaMask(const QString &s)
{
    static const QString placeholders = QStringLiteral("09ACLac");
    QString out;
    for (QChar c : s) {
        if (placeholders.contains(c))
            out += QLatin1Char('\\');
        out += c;
    }
    return out;
}

} // namespace mattoni
