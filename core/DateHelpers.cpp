// Date helpers of the applications.
#include "DateHelpers.h"

#include "Exceptions.h"
#include "Formatting.h"
#include "Strings.h"

#include <cmath>

namespace mattoni {

QString GetNomeGiorno(int day)
{
    static const char *const names[7] = {"LUNEDI", "MARTEDI", "MERCOLEDI", "GIOVEDI", "VENERDI", "SABATO", "DOMENICA"};
    if (day < 1 || day > 7)
        throw ERangeError(QStringLiteral("Range check error"));
    return QString::fromLatin1(names[day - 1]);
}

int GetYear(TDateTime value)
{
    int y, m, d;
    DecodeDate(value, y, m, d);
    return y;
}

int GetMonth(TDateTime value)
{
    int y, m, d;
    DecodeDate(value, y, m, d);
    return m;
}

int GetDay(TDateTime value)
{
    int y, m, d;
    DecodeDate(value, y, m, d);
    return d;
}

bool IsNullDate(TDateTime value)
{
    if (value == 0)
        return true;
    int y, m, d;
    DecodeDate(value, y, m, d);
    return y == 0 || y >= 10000 || m == 0 || m > 12 || d == 0;
}

TDateTime GetEndOfMonth(TDateTime value)
{
    int y, m, d;
    DecodeDate(value, y, m, d);
    return EncodeDate(y, m, DaysInAMonth(y, m));
}

TDateTime GetNextMonth(TDateTime value)
{
    return IncMonth(value, 1);
}

qint32 ElapsedDay(TDateTime from, TDateTime to)
{
    return qint32(DateOf(to) - DateOf(from));
}

QString DatetimeConvert(const QString &s)
{
    const QString wanted = UpperCase(Copy(s, 4, 3));
    const int year = QDate::currentDate().year();
    int month = 1;
    while (month <= 12 && UpperCase(FormatDateTime(QStringLiteral("mmm"), EncodeDate(year, month, 1))) != wanted)
        ++month;
    const QString sep(FormatSettings.DateSeparator);
    return FormatFloat(QStringLiteral("00"), month) + sep + Copy(s, 1, 2) + sep + Copy(s, 8, 13);
}

} // namespace mattoni
