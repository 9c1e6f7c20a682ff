// TDateTime: days since 1899-12-30 as a double, the time of day as the fraction.
// Encoding, decoding and calendar arithmetic on it, with the framework's conversion errors.
#pragma once

#include "mattoni_core_export.h"

#include <QDate>
#include <QDateTime>
#include <QTime>

namespace mattoni {

using TDateTime = double;

inline constexpr int HoursPerDay = 24;
inline constexpr int MinsPerDay = 24 * 60;
inline constexpr int SecsPerDay = 24 * 60 * 60;
inline constexpr qint64 MSecsPerDay = qint64(SecsPerDay) * 1000;
// Days from 0001-01-01 to 1899-12-31, the framework's date delta.
inline constexpr int DateDelta = 693594;

// Days of each month, [leap][month], month 1..12.
MATTONI_CORE_EXPORT extern const int MonthDays[2][13];

MATTONI_CORE_EXPORT bool IsLeapYear(int year);
// 0 for a month outside 1..12.
MATTONI_CORE_EXPORT int DaysInAMonth(int year, int month);

MATTONI_CORE_EXPORT bool TryEncodeDate(int year, int month, int day, TDateTime &date);
// Raises EConvertError "Invalid argument to date encode" for an impossible date.
MATTONI_CORE_EXPORT TDateTime EncodeDate(int year, int month, int day);
MATTONI_CORE_EXPORT bool TryEncodeTime(int hour, int min, int sec, int msec, TDateTime &time);
// Raises EConvertError "Invalid argument to time encode".
MATTONI_CORE_EXPORT TDateTime EncodeTime(int hour, int min, int sec, int msec);
MATTONI_CORE_EXPORT TDateTime EncodeDateTime(int year, int month, int day, int hour, int min, int sec,
                                             int msec);

MATTONI_CORE_EXPORT void DecodeDate(TDateTime date, int &year, int &month, int &day);
MATTONI_CORE_EXPORT void DecodeTime(TDateTime time, int &hour, int &min, int &sec, int &msec);
MATTONI_CORE_EXPORT void DecodeDateTime(TDateTime value, int &year, int &month, int &day, int &hour,
                                        int &min, int &sec, int &msec);

// 1 = Sunday ... 7 = Saturday.
MATTONI_CORE_EXPORT int DayOfWeek(TDateTime date);
MATTONI_CORE_EXPORT TDateTime DateOf(TDateTime value);
MATTONI_CORE_EXPORT TDateTime TimeOf(TDateTime value);

// The current date (midnight), time of day (date part 0) and both.
MATTONI_CORE_EXPORT TDateTime Date();
MATTONI_CORE_EXPORT TDateTime Time();
MATTONI_CORE_EXPORT TDateTime Now();

// Moves by whole months; a day past the end of the target month becomes its last day.
MATTONI_CORE_EXPORT TDateTime IncMonth(TDateTime value, int months = 1);

MATTONI_CORE_EXPORT QDate DateTimeToQDate(TDateTime value);
MATTONI_CORE_EXPORT QTime DateTimeToQTime(TDateTime value);
MATTONI_CORE_EXPORT QDateTime DateTimeToQDateTime(TDateTime value);
MATTONI_CORE_EXPORT TDateTime QDateToDateTime(const QDate &date);
MATTONI_CORE_EXPORT TDateTime QTimeToDateTime(const QTime &time);
MATTONI_CORE_EXPORT TDateTime QDateTimeToDateTime(const QDateTime &value);

} // namespace mattoni
