// Date helpers of the applications: Italian day names, date parts, month ends, null dates.
#pragma once

#include "DateTime.h"
#include "mattoni_core_export.h"

#include <QString>

namespace mattoni {

// "LUNEDI" ... "DOMENICA" for 1 (Monday) to 7; any other number raises ERangeError.
MATTONI_CORE_EXPORT QString GetNomeGiorno(int day);
MATTONI_CORE_EXPORT int GetYear(TDateTime value);
MATTONI_CORE_EXPORT int GetMonth(TDateTime value);
MATTONI_CORE_EXPORT int GetDay(TDateTime value);
// True for exactly 0, and for a value whose year is 0 or 10000 and more, month 0 or above 12, or day 0.
MATTONI_CORE_EXPORT bool IsNullDate(TDateTime value);
// The last day of the value's month, time dropped.
MATTONI_CORE_EXPORT TDateTime GetEndOfMonth(TDateTime value);
// One month later (IncMonth).
MATTONI_CORE_EXPORT TDateTime GetNextMonth(TDateTime value);
// Whole calendar days from the first to the second date (negative when it is earlier); the
// times of day do not count.
MATTONI_CORE_EXPORT qint32 ElapsedDay(TDateTime from, TDateTime to);
// "DD-MON-YYYY hh:nn:ss" (month as the locale's three-letter name) to month first:
// "MM" + separator + "DD" + separator + 13 characters from position 8; month 13 when no name matches.
MATTONI_CORE_EXPORT QString DatetimeConvert(const QString &s);

} // namespace mattoni
