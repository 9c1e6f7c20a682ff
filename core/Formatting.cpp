// Formatting and conversion with the framework's rules.
#include "Formatting.h"

#include "Exceptions.h"
#include "Strings.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>

namespace mattoni {

namespace {

// ---------------------------------------------------------------- decimal digits of a double

// |value| = 0.d1d2d3... x 10^point; digits carry no leading or trailing zeros.
struct Decimal
{
    QByteArray digits;
    int point = 0;
    bool negative = false;

    bool isZero() const { return digits.isEmpty(); }
};

Decimal toDecimal(double value, int precision = 15)
{
    Decimal d;
    d.negative = std::signbit(value);
    if (value == 0 || !std::isfinite(value))
        return d;
    char buf[64];
    std::snprintf(buf, sizeof buf, "%.*e", precision - 1, std::fabs(value));
    // buf = "d.ddddde+XX"
    d.digits.append(buf[0]);
    int i = 2;
    while (buf[i] && buf[i] != 'e')
        d.digits.append(buf[i++]);
    const int exp10 = std::atoi(buf + i + 1);
    d.point = exp10 + 1;
    while (!d.digits.isEmpty() && d.digits.endsWith('0'))
        d.digits.chop(1);
    return d;
}

// Rounds half away from zero to `fraction` digits after the point.
void roundDecimal(Decimal &d, int fraction)
{
    const int keep = d.point + fraction;
    if (keep >= d.digits.size())
        return;
    if (keep < 0) {
        d.digits.clear();
        return;
    }
    const bool up = d.digits.at(keep) >= '5';
    d.digits.truncate(keep);
    if (up) {
        int i = keep - 1;
        while (i >= 0 && d.digits.at(i) == '9') {
            d.digits[i] = '0';
            --i;
        }
        if (i < 0) {
            d.digits.prepend('1');
            d.point += 1;
        } else {
            d.digits[i] = char(d.digits.at(i) + 1);
        }
    }
    while (!d.digits.isEmpty() && d.digits.endsWith('0'))
        d.digits.chop(1);
}

QByteArray integerDigits(const Decimal &d)
{
    if (d.point <= 0)
        return QByteArray();
    QByteArray r = d.digits.left(d.point);
    while (r.size() < d.point)
        r.append('0');
    return r;
}

QByteArray fractionDigits(const Decimal &d)
{
    if (d.point >= d.digits.size())
        return QByteArray();
    if (d.point >= 0)
        return d.digits.mid(d.point);
    return QByteArray(-d.point, '0') + d.digits;
}

// ---------------------------------------------------------------- numeric patterns

QStringList splitSections(const QString &format)
{
    QStringList sections;
    QString current;
    QChar quote;
    for (QChar c : format) {
        if (!quote.isNull()) {
            if (c == quote)
                quote = QChar();
            current += c;
        } else if (c == QLatin1Char('"') || c == QLatin1Char('\'')) {
            quote = c;
            current += c;
        } else if (c == QLatin1Char(';') && sections.size() < 2) {
            sections << current;
            current.clear();
        } else {
            current += c;
        }
    }
    sections << current;
    return sections;
}

struct Layout
{
    int intPlaceholders = 0;
    int minInt = 0;
    int minFrac = 0;
    int maxFrac = 0;
    bool thousands = false;
    bool scientific = false;
    int expDigits = 0;
};

bool isExponentAt(const QString &s, int i)
{
    return (s.at(i) == QLatin1Char('E') || s.at(i) == QLatin1Char('e')) && i + 1 < s.size()
           && (s.at(i + 1) == QLatin1Char('+') || s.at(i + 1) == QLatin1Char('-'));
}

Layout analyse(const QString &section)
{
    Layout l;
    bool inFraction = false;
    int firstZero = -1;
    int fracIndex = 0;
    for (int i = 0; i < section.size(); ++i) {
        const QChar c = section.at(i);
        if (c == QLatin1Char('"') || c == QLatin1Char('\'')) {
            const int j = int(section.indexOf(c, i + 1));
            i = j < 0 ? int(section.size()) : j;
            continue;
        }
        if (l.scientific)
            continue;
        if (c == QLatin1Char('0') || c == QLatin1Char('#')) {
            if (inFraction) {
                ++fracIndex;
                if (c == QLatin1Char('0'))
                    l.minFrac = fracIndex;
                l.maxFrac = fracIndex;
            } else {
                if (c == QLatin1Char('0') && firstZero < 0)
                    firstZero = l.intPlaceholders;
                ++l.intPlaceholders;
            }
        } else if (c == QLatin1Char('.')) {
            inFraction = true;
        } else if (c == QLatin1Char(',')) {
            if (!inFraction)
                l.thousands = true;
        } else if (isExponentAt(section, i)) {
            l.scientific = true;
            int j = i + 2;
            while (j < section.size() && section.at(j) == QLatin1Char('0')) {
                ++l.expDigits;
                ++j;
            }
        }
    }
    l.minInt = firstZero < 0 ? 0 : l.intPlaceholders - firstZero;
    return l;
}

QString renderSection(const QString &section, const Layout &l, const Decimal &value, bool minus,
                      int exponent, const TFormatSettings &fs)
{
    QByteArray intDigits = integerDigits(value);
    if (intDigits.size() < l.minInt)
        intDigits.prepend(QByteArray(l.minInt - intDigits.size(), '0'));
    QByteArray frac = fractionDigits(value);
    if (frac.size() < l.minFrac)
        frac.append(QByteArray(l.minFrac - frac.size(), '0'));

    const int n = int(intDigits.size());
    const int p = l.intPlaceholders;
    QString out;
    auto emitIntDigit = [&](int idx) {
        out += QLatin1Char(intDigits.at(idx));
        const int fromRight = n - 1 - idx;
        if (l.thousands && fromRight > 0 && fromRight % 3 == 0 && !fs.ThousandSeparator.isNull())
            out += fs.ThousandSeparator;
    };
    bool integerDone = false;
    auto emitLeadingIntegerDigits = [&](int upTo) {
        if (minus)
            out += QLatin1Char('-');
        for (int idx = 0; idx < upTo; ++idx)
            emitIntDigit(idx);
    };

    int k = 0;
    int f = 0;
    bool inFraction = false;
    for (int i = 0; i < section.size(); ++i) {
        const QChar c = section.at(i);
        if (c == QLatin1Char('"') || c == QLatin1Char('\'')) {
            int j = int(section.indexOf(c, i + 1));
            if (j < 0)
                j = int(section.size());
            out += section.mid(i + 1, j - i - 1);
            i = j;
            continue;
        }
        if (c == QLatin1Char('0') || c == QLatin1Char('#')) {
            if (!inFraction) {
                if (k == 0)
                    emitLeadingIntegerDigits(qMax(0, n - p));
                const int idx = n - p + k;
                if (idx >= 0)
                    emitIntDigit(idx);
                ++k;
                if (k == p)
                    integerDone = true;
            } else {
                if (f < frac.size())
                    out += QLatin1Char(frac.at(f));
                ++f;
            }
        } else if (c == QLatin1Char('.') && !inFraction) {
            if (!integerDone && k == 0) {
                emitLeadingIntegerDigits(n);
                integerDone = true;
            }
            inFraction = true;
            if (!frac.isEmpty())
                out += fs.DecimalSeparator;
        } else if (c == QLatin1Char(',') || c == QLatin1Char('.')) {
            // grouping flag, or a second point: not printed
        } else if (isExponentAt(section, i)) {
            out += c;
            const bool plus = section.at(i + 1) == QLatin1Char('+');
            if (exponent < 0)
                out += QLatin1Char('-');
            else if (plus)
                out += QLatin1Char('+');
            out += QString::number(std::abs(exponent)).rightJustified(l.expDigits, QLatin1Char('0'));
            i += 1 + l.expDigits;
        } else {
            out += c;
        }
    }
    return out;
}

// ---------------------------------------------------------------- date-time patterns

QString pad(int value, int width)
{
    return QString::number(value).rightJustified(width, QLatin1Char('0'));
}

bool matchesAt(const QString &s, int i, QLatin1String word)
{
    return s.mid(i, word.size()).compare(word, Qt::CaseInsensitive) == 0;
}

bool uses12HourClock(const QString &fmt, int from)
{
    QChar quote;
    for (int i = from; i < fmt.size(); ++i) {
        const QChar c = fmt.at(i);
        if (!quote.isNull()) {
            if (c == quote)
                quote = QChar();
            continue;
        }
        if (c == QLatin1Char('"') || c == QLatin1Char('\'')) {
            quote = c;
            continue;
        }
        if (matchesAt(fmt, i, QLatin1String("am/pm")) || matchesAt(fmt, i, QLatin1String("a/p"))
            || matchesAt(fmt, i, QLatin1String("ampm")))
            return true;
    }
    return false;
}

void appendDateTime(QString &out, const QString &fmt, TDateTime value, const TFormatSettings &fs,
                    int depth)
{
    if (depth > 2)
        return;
    int y, mo, d, h, mi, s, ms;
    DecodeDateTime(value, y, mo, d, h, mi, s, ms);
    const int dow = DayOfWeek(value);
    QChar lastToken = QLatin1Char(' ');
    const int n = int(fmt.size());
    for (int i = 0; i < n;) {
        const QChar c = fmt.at(i);
        if (c == QLatin1Char('"') || c == QLatin1Char('\'')) {
            int j = int(fmt.indexOf(c, i + 1));
            if (j < 0)
                j = n;
            out += fmt.mid(i + 1, j - i - 1);
            i = j + 1;
            continue;
        }
        if (c == QLatin1Char('/')) {
            if (!fs.DateSeparator.isNull())
                out += fs.DateSeparator;
            ++i;
            continue;
        }
        if (c == QLatin1Char(':')) {
            if (!fs.TimeSeparator.isNull())
                out += fs.TimeSeparator;
            ++i;
            continue;
        }
        if (!c.isLetter() || c.unicode() > 127) {
            out += c;
            ++i;
            continue;
        }
        char token = char(c.toUpper().unicode());
        int count = 1;
        while (i + count < n && fmt.at(i + count).toUpper() == c.toUpper())
            ++count;
        if (token == 'M' && lastToken == QLatin1Char('H'))
            token = 'N';
        lastToken = QLatin1Char(token);
        switch (token) {
        case 'Y':
            out += count <= 2 ? pad(y % 100, 2) : pad(y, 4);
            break;
        case 'M':
            if (count == 1)
                out += QString::number(mo);
            else if (count == 2)
                out += pad(mo, 2);
            else if (count == 3)
                out += fs.ShortMonthNames.value(mo - 1);
            else
                out += fs.LongMonthNames.value(mo - 1);
            break;
        case 'D':
            if (count == 1)
                out += QString::number(d);
            else if (count == 2)
                out += pad(d, 2);
            else if (count == 3)
                out += fs.ShortDayNames.value(dow - 1);
            else if (count == 4)
                out += fs.LongDayNames.value(dow - 1);
            else if (count == 5)
                appendDateTime(out, fs.ShortDateFormat, value, fs, depth + 1);
            else
                appendDateTime(out, fs.LongDateFormat, value, fs, depth + 1);
            break;
        case 'H': {
            int hour = h;
            if (uses12HourClock(fmt, i + count)) {
                hour = h % 12;
                if (hour == 0)
                    hour = 12;
            }
            out += count == 1 ? QString::number(hour) : pad(hour, 2);
            break;
        }
        case 'N':
            out += count == 1 ? QString::number(mi) : pad(mi, 2);
            break;
        case 'S':
            out += count == 1 ? QString::number(s) : pad(s, 2);
            break;
        case 'Z':
            out += count < 3 ? QString::number(ms) : pad(ms, 3);
            break;
        case 'T':
            appendDateTime(out, count == 1 ? fs.ShortTimeFormat : fs.LongTimeFormat, value, fs, depth + 1);
            break;
        case 'C':
            count = 1;
            appendDateTime(out, fs.ShortDateFormat, value, fs, depth + 1);
            if (TimeOf(value) != 0) {
                out += QLatin1Char(' ');
                appendDateTime(out, fs.LongTimeFormat, value, fs, depth + 1);
            }
            break;
        case 'A':
            if (matchesAt(fmt, i, QLatin1String("am/pm"))) {
                const QString word = fmt.mid(i + (h >= 12 ? 3 : 0), 2);
                out += word;
                count = 5;
            } else if (matchesAt(fmt, i, QLatin1String("a/p"))) {
                out += fmt.at(i + (h >= 12 ? 2 : 0));
                count = 3;
            } else if (matchesAt(fmt, i, QLatin1String("ampm"))) {
                out += h >= 12 ? fs.TimePMString : fs.TimeAMString;
                count = 4;
            } else {
                count = 1;
                out += c;
            }
            break;
        default:
            out += fmt.mid(i, count);
            break;
        }
        i += count;
    }
}

// ---------------------------------------------------------------- parsing

struct Scanner
{
    const QString &s;
    int i = 0;

    bool atEnd() const { return i >= s.size(); }
    void skipBlanks()
    {
        while (i < s.size() && s.at(i) == QLatin1Char(' '))
            ++i;
    }
    bool scanChar(QChar c)
    {
        skipBlanks();
        if (i < s.size() && s.at(i) == c) {
            ++i;
            return true;
        }
        return false;
    }
    bool scanNumber(int &value, int &digits)
    {
        skipBlanks();
        const int start = i;
        qint64 v = 0;
        while (i < s.size() && s.at(i).isDigit() && s.at(i).unicode() < 128) {
            v = v * 10 + (s.at(i).unicode() - '0');
            if (v > 1000000)
                return false;
            ++i;
        }
        digits = i - start;
        value = int(v);
        return digits > 0;
    }
};

QString dateOrder(const QString &shortDateFormat)
{
    QString order;
    for (QChar c : shortDateFormat) {
        const QChar u = c.toUpper();
        if ((u == QLatin1Char('D') || u == QLatin1Char('M') || u == QLatin1Char('Y')) && !order.contains(u))
            order += u;
    }
    if (order.size() != 3)
        order = QStringLiteral("MDY");
    return order;
}

bool scanDate(Scanner &sc, TDateTime &date, const TFormatSettings &fs)
{
    int n1, n2, n3 = 0, l1, l2, l3 = 0;
    if (!sc.scanNumber(n1, l1) || !sc.scanChar(fs.DateSeparator) || !sc.scanNumber(n2, l2))
        return false;
    const QString order = dateOrder(fs.ShortDateFormat);
    int y, m, d, yLen;
    if (sc.scanChar(fs.DateSeparator)) {
        if (!sc.scanNumber(n3, l3))
            return false;
        const int values[3] = {n1, n2, n3};
        const int lens[3] = {l1, l2, l3};
        y = values[order.indexOf(QLatin1Char('Y'))];
        yLen = lens[order.indexOf(QLatin1Char('Y'))];
        m = values[order.indexOf(QLatin1Char('M'))];
        d = values[order.indexOf(QLatin1Char('D'))];
    } else {
        y = QDate::currentDate().year();
        yLen = 4;
        const bool monthFirst = order.indexOf(QLatin1Char('M')) < order.indexOf(QLatin1Char('D'));
        m = monthFirst ? n1 : n2;
        d = monthFirst ? n2 : n1;
    }
    if (yLen <= 2 && y <= 99) {
        const int base = QDate::currentDate().year() - fs.TwoDigitYearCenturyWindow;
        y += base / 100 * 100;
        if (fs.TwoDigitYearCenturyWindow > 0 && y < base)
            y += 100;
    }
    return TryEncodeDate(y, m, d, date);
}

bool scanAmPm(Scanner &sc, int &hour, const TFormatSettings &fs)
{
    sc.skipBlanks();
    const QString rest = sc.s.mid(sc.i);
    auto take = [&](const QString &word, bool pm) {
        if (word.isEmpty() || !rest.startsWith(word, Qt::CaseInsensitive))
            return false;
        if (hour < 1 || hour > 12)
            return false;
        hour = pm ? (hour == 12 ? 12 : hour + 12) : (hour == 12 ? 0 : hour);
        sc.i += int(word.size());
        return true;
    };
    return take(fs.TimeAMString, false) || take(fs.TimePMString, true) || take(QStringLiteral("AM"), false)
           || take(QStringLiteral("PM"), true);
}

bool scanTime(Scanner &sc, TDateTime &time, const TFormatSettings &fs)
{
    int h, m = 0, s = 0, ms = 0, len;
    if (!sc.scanNumber(h, len))
        return false;
    if (sc.scanChar(fs.TimeSeparator)) {
        if (!sc.scanNumber(m, len))
            return false;
        if (sc.scanChar(fs.TimeSeparator)) {
            if (!sc.scanNumber(s, len))
                return false;
            if (sc.scanChar(fs.DecimalSeparator)) {
                if (!sc.scanNumber(ms, len))
                    return false;
            }
        }
    }
    scanAmPm(sc, h, fs);
    return TryEncodeTime(h, m, s, ms, time);
}

// Decimal text within [min, max], or "$"/"0x" hexadecimal text that covers the unsigned range of
// a `bits`-wide integer and wraps into the signed one, as the framework's Val does.
bool parseInteger(const QString &s, qint64 &value, int bits)
{
    int i = 0;
    const int n = int(s.size());
    while (i < n && s.at(i) == QLatin1Char(' '))
        ++i;
    bool negative = false;
    if (i < n && (s.at(i) == QLatin1Char('-') || s.at(i) == QLatin1Char('+'))) {
        negative = s.at(i) == QLatin1Char('-');
        ++i;
    }
    int base = 10;
    if (i < n && s.at(i) == QLatin1Char('$')) {
        base = 16;
        ++i;
    } else if (i + 1 < n && s.at(i) == QLatin1Char('0')
               && (s.at(i + 1) == QLatin1Char('x') || s.at(i + 1) == QLatin1Char('X'))) {
        base = 16;
        i += 2;
    }
    if (i >= n)
        return false;
    const quint64 signedMax = bits == 64 ? quint64(std::numeric_limits<qint64>::max())
                                         : quint64(std::numeric_limits<qint32>::max());
    const quint64 limit = base == 16 ? (bits == 64 ? ~quint64(0) : quint64(0xFFFFFFFFu))
                                     : signedMax + (negative ? 1 : 0);
    quint64 v = 0;
    for (; i < n; ++i) {
        const ushort c = s.at(i).unicode();
        int digit;
        if (c >= '0' && c <= '9')
            digit = c - '0';
        else if (base == 16 && c >= 'a' && c <= 'f')
            digit = c - 'a' + 10;
        else if (base == 16 && c >= 'A' && c <= 'F')
            digit = c - 'A' + 10;
        else
            return false;
        if (v > (limit - quint64(digit)) / quint64(base))
            return false;
        v = v * quint64(base) + quint64(digit);
    }
    qint64 result = bits == 64 ? qint64(v) : qint64(qint32(quint32(v)));
    if (negative)
        result = qint64(quint64(0) - quint64(result));
    if (bits == 32)
        result = qint32(quint32(quint64(result)));
    value = result;
    return true;
}

QString integerError(const QString &s)
{
    return QStringLiteral("'%1' is not a valid integer value").arg(s);
}

} // namespace

// ---------------------------------------------------------------- public functions

QString FormatDateTime(const QString &format, TDateTime value, const TFormatSettings &fs)
{
    QString out;
    appendDateTime(out, format.isEmpty() ? QStringLiteral("c") : format, value, fs, 0);
    return out;
}

QString FormatFloat(const QString &format, double value, const TFormatSettings &fs)
{
    if (format.isEmpty())
        return FloatToStr(value, fs);
    if (std::isnan(value))
        return QStringLiteral("NAN");
    if (std::isinf(value))
        return value > 0 ? QStringLiteral("INF") : QStringLiteral("-INF");

    const QStringList sections = splitSections(format);
    int index = 0;
    bool minus = false;
    const bool negative = value < 0;
    if (negative) {
        if (sections.size() > 1 && !sections.at(1).isEmpty())
            index = 1;
        else
            minus = true;
    }

    Layout layout = analyse(sections.at(index));
    Decimal dec = toDecimal(value);
    int exponent = 0;
    if (layout.scientific && !dec.isZero()) {
        const int wanted = qMax(1, layout.intPlaceholders);
        exponent = dec.point - wanted;
        dec.point = wanted;
        roundDecimal(dec, layout.maxFrac);
        if (dec.point > wanted) {
            ++exponent;
            dec.point = wanted;
        }
    } else {
        roundDecimal(dec, layout.maxFrac);
    }
    if (dec.isZero()) {
        minus = false;
        exponent = 0;
        if (sections.size() > 2 && !sections.at(2).isEmpty()) {
            index = 2;
            layout = analyse(sections.at(2));
        } else if (index == 1) {
            index = 0;
            layout = analyse(sections.at(0));
        }
    }
    return renderSection(sections.at(index), layout, dec, minus, exponent, fs);
}

QString FormatCurr(const QString &format, Currency value, const TFormatSettings &fs)
{
    return FormatFloat(format, value.ToDouble(), fs);
}

QString FloatToStr(double value, const TFormatSettings &fs)
{
    if (std::isnan(value))
        return QStringLiteral("NAN");
    if (std::isinf(value))
        return value > 0 ? QStringLiteral("INF") : QStringLiteral("-INF");
    const Decimal d = toDecimal(value);
    if (d.isZero())
        return QStringLiteral("0");
    QString out;
    if (d.negative)
        out += QLatin1Char('-');
    const int exp10 = d.point - 1;
    if (exp10 < 15 && exp10 >= -5) {
        const QByteArray intPart = integerDigits(d);
        const QByteArray frac = fractionDigits(d);
        out += intPart.isEmpty() ? QStringLiteral("0") : QString::fromLatin1(intPart);
        if (!frac.isEmpty())
            out += fs.DecimalSeparator + QString::fromLatin1(frac);
    } else {
        out += QLatin1Char(d.digits.at(0));
        if (d.digits.size() > 1)
            out += fs.DecimalSeparator + QString::fromLatin1(d.digits.mid(1));
        out += QLatin1Char('E') + QString::number(exp10);
    }
    return out;
}

QString CurrToStr(Currency value, const TFormatSettings &fs)
{
    const qint64 raw = value.Raw();
    const quint64 magnitude = raw < 0 ? quint64(0) - quint64(raw) : quint64(raw);
    QString out = raw < 0 ? QStringLiteral("-") : QString();
    out += QString::number(magnitude / Currency::Scale);
    QString frac = QString::number(magnitude % Currency::Scale).rightJustified(4, QLatin1Char('0'));
    while (frac.endsWith(QLatin1Char('0')))
        frac.chop(1);
    if (!frac.isEmpty())
        out += fs.DecimalSeparator + frac;
    return out;
}

QString DateToStr(TDateTime value, const TFormatSettings &fs)
{
    return FormatDateTime(fs.ShortDateFormat, value, fs);
}

QString TimeToStr(TDateTime value, const TFormatSettings &fs)
{
    return FormatDateTime(fs.LongTimeFormat, value, fs);
}

QString DateTimeToStr(TDateTime value, const TFormatSettings &fs)
{
    return FormatDateTime(QStringLiteral("c"), value, fs);
}

bool TryStrToInt64(const QString &s, qint64 &value)
{
    return parseInteger(s, value, 64);
}

bool TryStrToInt(const QString &s, qint32 &value)
{
    qint64 v;
    if (!parseInteger(s, v, 32))
        return false;
    value = qint32(v);
    return true;
}

qint32 StrToInt(const QString &s)
{
    qint32 v;
    if (!TryStrToInt(s, v))
        throw EConvertError(integerError(s));
    return v;
}

qint64 StrToInt64(const QString &s)
{
    qint64 v;
    if (!TryStrToInt64(s, v))
        throw EConvertError(integerError(s));
    return v;
}

qint32 StrToIntDef(const QString &s, qint32 defaultValue)
{
    qint32 v;
    return TryStrToInt(s, v) ? v : defaultValue;
}

bool TryStrToBool(const QString &s, bool &value)
{
    const QString t = Trim(s);
    if (t.compare(QLatin1String("True"), Qt::CaseInsensitive) == 0) {
        value = true;
        return true;
    }
    if (t.compare(QLatin1String("False"), Qt::CaseInsensitive) == 0) {
        value = false;
        return true;
    }
    qint64 n;
    if (!TryStrToInt64(s, n))
        return false;
    value = n != 0;
    return true;
}

bool StrToBool(const QString &s)
{
    bool v;
    if (!TryStrToBool(s, v))
        throw EConvertError(QStringLiteral("'%1' is not a valid boolean value").arg(s));
    return v;
}

QString BoolToStr(bool value, bool useBoolStrs)
{
    if (useBoolStrs)
        return value ? QStringLiteral("True") : QStringLiteral("False");
    return value ? QStringLiteral("-1") : QStringLiteral("0");
}

bool TryStrToFloat(const QString &s, double &value, const TFormatSettings &fs)
{
    QString t = s;
    int b = 0, e = int(t.size());
    while (b < e && t.at(b) == QLatin1Char(' '))
        ++b;
    while (e > b && t.at(e - 1) == QLatin1Char(' '))
        --e;
    t = t.mid(b, e - b);
    QByteArray c;
    int i = 0;
    const int n = int(t.size());
    if (i < n && (t.at(i) == QLatin1Char('+') || t.at(i) == QLatin1Char('-')))
        c.append(char(t.at(i++).unicode()));
    int mantissaDigits = 0;
    while (i < n && t.at(i).unicode() >= '0' && t.at(i).unicode() <= '9') {
        c.append(char(t.at(i++).unicode()));
        ++mantissaDigits;
    }
    if (i < n && t.at(i) == fs.DecimalSeparator) {
        c.append('.');
        ++i;
        while (i < n && t.at(i).unicode() >= '0' && t.at(i).unicode() <= '9') {
            c.append(char(t.at(i++).unicode()));
            ++mantissaDigits;
        }
    }
    if (mantissaDigits == 0)
        return false;
    if (i < n && (t.at(i) == QLatin1Char('E') || t.at(i) == QLatin1Char('e'))) {
        c.append('e');
        ++i;
        if (i < n && (t.at(i) == QLatin1Char('+') || t.at(i) == QLatin1Char('-')))
            c.append(char(t.at(i++).unicode()));
        int expDigits = 0;
        while (i < n && t.at(i).unicode() >= '0' && t.at(i).unicode() <= '9') {
            c.append(char(t.at(i++).unicode()));
            ++expDigits;
        }
        if (expDigits == 0)
            return false;
    }
    if (i != n)
        return false;
    char *end = nullptr;
    const double v = std::strtod(c.constData(), &end);
    if (!std::isfinite(v))
        return false;
    value = v;
    return true;
}

double StrToFloat(const QString &s, const TFormatSettings &fs)
{
    double v;
    if (!TryStrToFloat(s, v, fs))
        throw EConvertError(QStringLiteral("'%1' is not a valid floating point value").arg(s));
    return v;
}

double StrToFloatDef(const QString &s, double defaultValue, const TFormatSettings &fs)
{
    double v;
    return TryStrToFloat(s, v, fs) ? v : defaultValue;
}

Currency StrToCurr(const QString &s, const TFormatSettings &fs)
{
    return Currency(StrToFloat(s, fs));
}

bool TryStrToDate(const QString &s, TDateTime &value, const TFormatSettings &fs)
{
    Scanner sc{s};
    TDateTime d;
    if (!scanDate(sc, d, fs))
        return false;
    sc.skipBlanks();
    if (!sc.atEnd())
        return false;
    value = d;
    return true;
}

bool TryStrToTime(const QString &s, TDateTime &value, const TFormatSettings &fs)
{
    Scanner sc{s};
    TDateTime t;
    if (!scanTime(sc, t, fs))
        return false;
    sc.skipBlanks();
    if (!sc.atEnd())
        return false;
    value = t;
    return true;
}

bool TryStrToDateTime(const QString &s, TDateTime &value, const TFormatSettings &fs)
{
    Scanner sc{s};
    TDateTime d = 0, t = 0;
    if (!scanDate(sc, d, fs)) {
        return TryStrToTime(s, value, fs);
    }
    sc.skipBlanks();
    if (!sc.atEnd() && !scanTime(sc, t, fs))
        return false;
    sc.skipBlanks();
    if (!sc.atEnd())
        return false;
    value = d >= 0 ? d + t : d - t;
    return true;
}

TDateTime StrToDate(const QString &s, const TFormatSettings &fs)
{
    TDateTime v;
    if (!TryStrToDate(s, v, fs))
        throw EConvertError(QStringLiteral("'%1' is not a valid date").arg(s));
    return v;
}

TDateTime StrToTime(const QString &s, const TFormatSettings &fs)
{
    TDateTime v;
    if (!TryStrToTime(s, v, fs))
        throw EConvertError(QStringLiteral("'%1' is not a valid time").arg(s));
    return v;
}

TDateTime StrToDateTime(const QString &s, const TFormatSettings &fs)
{
    TDateTime v;
    if (!TryStrToDateTime(s, v, fs))
        throw EConvertError(QStringLiteral("'%1' is not a valid date and time").arg(s));
    return v;
}

QString Format(const QString &format, const QVariantList &args, const TFormatSettings &fs)
{
    QString out;
    int argIndex = 0;
    const int n = int(format.size());
    auto fail = [&]() { return EConvertError(QStringLiteral("Format '%1' invalid or incompatible with argument").arg(format)); };
    for (int i = 0; i < n; ++i) {
        const QChar c = format.at(i);
        if (c != QLatin1Char('%')) {
            out += c;
            continue;
        }
        if (++i >= n)
            throw fail();
        if (format.at(i) == QLatin1Char('%')) {
            out += QLatin1Char('%');
            continue;
        }
        bool left = false;
        int width = -1, precision = -1;
        if (format.at(i) == QLatin1Char('-')) {
            left = true;
            ++i;
        }
        auto readNumber = [&](int &target) {
            int v = 0;
            bool any = false;
            while (i < n && format.at(i).isDigit()) {
                v = v * 10 + format.at(i).digitValue();
                ++i;
                any = true;
            }
            if (any)
                target = v;
        };
        readNumber(width);
        if (i < n && format.at(i) == QLatin1Char('.')) {
            ++i;
            precision = 0;
            readNumber(precision);
        }
        if (i >= n || argIndex >= args.size())
            throw fail();
        const QVariant &arg = args.at(argIndex++);
        const QChar type = format.at(i).toLower();
        QString text;
        bool ok = true;
        switch (type.unicode()) {
        case 's':
            if (arg.metaType().id() != QMetaType::QString && arg.metaType().id() != QMetaType::QChar
                && arg.metaType().id() != QMetaType::QByteArray)
                throw fail();
            text = arg.toString();
            if (precision >= 0)
                text = text.left(precision);
            break;
        case 'd':
        case 'u': {
            const qint64 v = arg.toLongLong(&ok);
            if (!ok || arg.metaType().id() == QMetaType::Double || arg.metaType().id() == QMetaType::QString)
                throw fail();
            text = QString::number(type == QLatin1Char('u') ? qint64(quint32(v)) : v);
            if (precision > 0) {
                const bool neg = text.startsWith(QLatin1Char('-'));
                QString digits = neg ? text.mid(1) : text;
                digits = digits.rightJustified(precision, QLatin1Char('0'));
                text = neg ? QLatin1Char('-') + digits : digits;
            }
            break;
        }
        case 'x': {
            const qint64 v = arg.toLongLong(&ok);
            if (!ok || arg.metaType().id() == QMetaType::Double || arg.metaType().id() == QMetaType::QString)
                throw fail();
            text = QString::number(quint64(v), 16).toUpper();
            if (precision > 0)
                text = text.rightJustified(precision, QLatin1Char('0'));
            break;
        }
        case 'f':
        case 'n':
        case 'e':
        case 'g': {
            if (arg.metaType().id() == QMetaType::QString)
                throw fail();
            const double v = arg.toDouble(&ok);
            if (!ok)
                throw fail();
            if (type == QLatin1Char('f') || type == QLatin1Char('n')) {
                const int decimals = precision < 0 ? 2 : precision;
                QString pattern = type == QLatin1Char('n') ? QStringLiteral("#,##0") : QStringLiteral("0");
                if (decimals > 0)
                    pattern += QLatin1Char('.') + QString(decimals, QLatin1Char('0'));
                text = FormatFloat(pattern, v, fs);
            } else if (type == QLatin1Char('e')) {
                const int digits = precision < 0 ? 15 : qMax(1, precision);
                QString pattern = QStringLiteral("0");
                if (digits > 1)
                    pattern += QLatin1Char('.') + QString(digits - 1, QLatin1Char('0'));
                text = FormatFloat(pattern + QStringLiteral("E+000"), v, fs);
            } else {
                text = FloatToStr(v, fs);
            }
            break;
        }
        default:
            throw fail();
        }
        if (width > text.size())
            text = left ? text.leftJustified(width) : text.rightJustified(width);
        out += text;
    }
    return out;
}

} // namespace mattoni
