// Text primitives with the framework's rules.
#include "Strings.h"

namespace mattoni {

namespace {
inline bool isBlank(QChar c)
{
    return c.unicode() <= 32;
}
} // namespace

QString Trim(const QString &s)
{
    int b = 0, e = s.size();
    while (b < e && isBlank(s.at(b)))
        ++b;
    while (e > b && isBlank(s.at(e - 1)))
        --e;
    return s.mid(b, e - b);
}

QString TrimLeft(const QString &s)
{
    int b = 0;
    while (b < s.size() && isBlank(s.at(b)))
        ++b;
    return s.mid(b);
}

QString TrimRight(const QString &s)
{
    int e = s.size();
    while (e > 0 && isBlank(s.at(e - 1)))
        --e;
    return s.left(e);
}

QString UpperCase(const QString &s)
{
    QString r = s;
    for (QChar &c : r) {
        if (c >= QLatin1Char('a') && c <= QLatin1Char('z'))
            c = QChar(c.unicode() - 32);
    }
    return r;
}

QString LowerCase(const QString &s)
{
    QString r = s;
    for (QChar &c : r) {
        if (c >= QLatin1Char('A') && c <= QLatin1Char('Z'))
            c = QChar(c.unicode() + 32);
    }
    return r;
}

bool SameText(const QString &a, const QString &b)
{
    return UpperCase(a) == UpperCase(b);
}

QString QuotedStr(const QString &s)
{
    QString r = s;
    r.replace(QLatin1Char('\''), QLatin1String("''"));
    return QLatin1Char('\'') + r + QLatin1Char('\'');
}

int Pos(const QString &sub, const QString &s)
{
    if (sub.isEmpty())
        return 0;
    return int(s.indexOf(sub)) + 1;
}

QString Copy(const QString &s, int index, int count)
{
    if (index < 1)
        index = 1;
    if (count <= 0 || index > s.size())
        return QString();
    return s.mid(index - 1, count);
}

QString IntToStr(qint64 value)
{
    return QString::number(value);
}

QString IntToHex(quint64 value, int digits)
{
    return QString::number(value, 16).toUpper().rightJustified(digits, QLatin1Char('0'));
}

QString ExtractFilePath(const QString &fileName)
{
    const int i = int(fileName.lastIndexOf(QLatin1Char('/')));
    return fileName.left(i + 1);
}

QString ExtractFileName(const QString &fileName)
{
    const int i = int(fileName.lastIndexOf(QLatin1Char('/')));
    return fileName.mid(i + 1);
}

QString ExtractFileExt(const QString &fileName)
{
    const QString name = ExtractFileName(fileName);
    const int i = int(name.lastIndexOf(QLatin1Char('.')));
    return i < 0 ? QString() : name.mid(i);
}

QString ChangeFileExt(const QString &fileName, const QString &extension)
{
    const QString name = ExtractFileName(fileName);
    const int i = int(name.lastIndexOf(QLatin1Char('.')));
    const QString base = i < 0 ? fileName : fileName.left(fileName.size() - name.size() + i);
    return base + extension;
}

QString IncludeTrailingPathDelimiter(const QString &path)
{
    return path.endsWith(QLatin1Char('/')) ? path : path + QLatin1Char('/');
}

QString ExcludeTrailingPathDelimiter(const QString &path)
{
    return path.endsWith(QLatin1Char('/')) ? path.left(path.size() - 1) : path;
}

QString ExtractFieldName(const QString &fields, int &pos)
{
    int i = pos;
    while (i <= fields.size() && fields.at(i - 1) != QLatin1Char(';'))
        ++i;
    const QString result = Trim(fields.mid(pos - 1, i - pos));
    if (i <= fields.size() && fields.at(i - 1) == QLatin1Char(';'))
        ++i;
    pos = i;
    return result;
}

} // namespace mattoni
