// TDateTime encoding, decoding and calendar arithmetic.
#include "DateTime.h"

#include "Exceptions.h"

#include <cmath>

namespace mattoni {

namespace {

// Julian day of 1899-12-30, day 0 of TDateTime.
constexpr qint64 JulianDayOfZero = 2415019;

// The value rounded to whole milliseconds, split into whole days (toward zero) and the time of
// day; the time is always positive, as in the framework (-1.25 is 1899-12-29 06:00).
struct Split
{
    qint64 days;
    qint64 msecs;
};

Split splitValue(TDateTime value)
{
    const qint64 total = std::llround(value * double(MSecsPerDay));
    return {total / MSecsPerDay, std::llabs(total) % MSecsPerDay};
}

} // namespace

const int MonthDays[2][13] = {{0, 31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31},
                              {0, 31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31}};

bool IsLeapYear(int year)
{
    return (year % 4 == 0) && ((year % 100 != 0) || (year % 400 == 0));
}

int DaysInAMonth(int year, int month)
{
    if (month < 1 || month > 12)
        return 0;
    return MonthDays[IsLeapYear(year) ? 1 : 0][month];
}

bool TryEncodeDate(int year, int month, int day, TDateTime &date)
{
    if (year < 1 || year > 9999 || month < 1 || month > 12 || day < 1 || day > DaysInAMonth(year, month))
        return false;
    date = double(QDate(year, month, day).toJulianDay() - JulianDayOfZero);
    return true;
}

TDateTime EncodeDate(int year, int month, int day)
{
    TDateTime result = 0;
    if (!TryEncodeDate(year, month, day, result))
        throw EConvertError(QStringLiteral("Invalid argument to date encode"));
    return result;
}

bool TryEncodeTime(int hour, int min, int sec, int msec, TDateTime &time)
{
    if (hour < 0 || hour >= 24 || min < 0 || min >= 60 || sec < 0 || sec >= 60 || msec < 0 || msec >= 1000)
        return false;
    time = double(((qint64(hour) * 60 + min) * 60 + sec) * 1000 + msec) / double(MSecsPerDay);
    return true;
}

TDateTime EncodeTime(int hour, int min, int sec, int msec)
{
    TDateTime result = 0;
    if (!TryEncodeTime(hour, min, sec, msec, result))
        throw EConvertError(QStringLiteral("Invalid argument to time encode"));
    return result;
}

TDateTime EncodeDateTime(int year, int month, int day, int hour, int min, int sec, int msec)
{
    const TDateTime date = EncodeDate(year, month, day);
    const TDateTime time = EncodeTime(hour, min, sec, msec);
    return date >= 0 ? date + time : date - time;
}

void DecodeDate(TDateTime date, int &year, int &month, int &day)
{
    const QDate d = QDate::fromJulianDay(JulianDayOfZero + splitValue(date).days);
    if (!d.isValid() || d.year() < 1 || d.year() > 9999) {
        year = month = day = 0;
        return;
    }
    year = d.year();
    month = d.month();
    day = d.day();
}

void DecodeTime(TDateTime time, int &hour, int &min, int &sec, int &msec)
{
    qint64 ms = splitValue(time).msecs;
    msec = int(ms % 1000);
    ms /= 1000;
    sec = int(ms % 60);
    ms /= 60;
    min = int(ms % 60);
    hour = int(ms / 60);
}

void DecodeDateTime(TDateTime value, int &year, int &month, int &day, int &hour, int &min, int &sec,
                    int &msec)
{
    DecodeDate(value, year, month, day);
    DecodeTime(value, hour, min, sec, msec);
}

int DayOfWeek(TDateTime date)
{
    // 1899-12-30 was a Saturday (7).
    const qint64 days = splitValue(date).days;
    return int(((days % 7) + 7 + 6) % 7) + 1;
}

TDateTime DateOf(TDateTime value)
{
    return double(splitValue(value).days);
}

TDateTime TimeOf(TDateTime value)
{
    return double(splitValue(value).msecs) / double(MSecsPerDay);
}

TDateTime Date()
{
    return QDateToDateTime(QDate::currentDate());
}

TDateTime Time()
{
    return QTimeToDateTime(QTime::currentTime());
}

TDateTime Now()
{
    return QDateTimeToDateTime(QDateTime::currentDateTime());
}

TDateTime IncMonth(TDateTime value, int months)
{
    int year, month, day;
    DecodeDate(value, year, month, day);
    int index = year * 12 + (month - 1) + months;
    year = index / 12;
    month = index % 12 + 1;
    day = qMin(day, DaysInAMonth(year, month));
    const TDateTime date = EncodeDate(year, month, day);
    const TDateTime time = TimeOf(value);
    return date >= 0 ? date + time : date - time;
}

QDate DateTimeToQDate(TDateTime value)
{
    return QDate::fromJulianDay(JulianDayOfZero + splitValue(value).days);
}

QTime DateTimeToQTime(TDateTime value)
{
    return QTime::fromMSecsSinceStartOfDay(int(splitValue(value).msecs));
}

QDateTime DateTimeToQDateTime(TDateTime value)
{
    return QDateTime(DateTimeToQDate(value), DateTimeToQTime(value));
}

TDateTime QDateToDateTime(const QDate &date)
{
    return double(date.toJulianDay() - JulianDayOfZero);
}

TDateTime QTimeToDateTime(const QTime &time)
{
    return double(time.msecsSinceStartOfDay()) / double(MSecsPerDay);
}

TDateTime QDateTimeToDateTime(const QDateTime &value)
{
    const TDateTime date = QDateToDateTime(value.date());
    const TDateTime time = QTimeToDateTime(value.time());
    return date >= 0 ? date + time : date - time;
}

} // namespace mattoni
