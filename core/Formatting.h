// Formatting and conversion with the framework's rules: date-time patterns (yyyy mm dd hh nn ss z,
// "/" and ":" printing the separators), numeric patterns ("#,##0.00", "00", "0000;0; "), the
// general float format, and the text-to-value conversions with their EConvertError messages.
#pragma once

#include "Currency.h"
#include "DateTime.h"
#include "FormatSettings.h"
#include "mattoni_core_export.h"

#include <QVariantList>

namespace mattoni {

// Date-time patterns: c d dd ddd dddd ddddd dddddd m mm mmm mmmm yy yyyy h hh n nn s ss z zzz
// t tt am/pm a/p ampm, "/" (date separator), ":" (time separator), quoted text; "m" right after
// an hour means minutes. Any other character prints as it stands.
MATTONI_CORE_EXPORT QString FormatDateTime(const QString &format, TDateTime value,
                                           const TFormatSettings &fs = FormatSettings);

// Numeric patterns: up to three sections (positive;negative;zero), "0" and "#" digit
// placeholders, "." the decimal separator, "," switches thousands grouping on, "E+0"/"E-0"
// scientific notation, quoted text. Values are taken at 15 significant digits, then rounded half
// away from zero, so 2.345 shows as "2.35" with "0.00".
MATTONI_CORE_EXPORT QString FormatFloat(const QString &format, double value,
                                        const TFormatSettings &fs = FormatSettings);
MATTONI_CORE_EXPORT QString FormatCurr(const QString &format, Currency value,
                                       const TFormatSettings &fs = FormatSettings);

// The general format: at most 15 significant digits, fixed notation unless the value needs more
// than 15 integer digits or is below 0.00001 ("1E20", "1,5E-7").
MATTONI_CORE_EXPORT QString FloatToStr(double value, const TFormatSettings &fs = FormatSettings);
// Up to four decimals, trailing zeros dropped.
MATTONI_CORE_EXPORT QString CurrToStr(Currency value, const TFormatSettings &fs = FormatSettings);

MATTONI_CORE_EXPORT QString DateToStr(TDateTime value, const TFormatSettings &fs = FormatSettings);
MATTONI_CORE_EXPORT QString TimeToStr(TDateTime value, const TFormatSettings &fs = FormatSettings);
// Short date, then the long time unless the value is exactly midnight.
MATTONI_CORE_EXPORT QString DateTimeToStr(TDateTime value, const TFormatSettings &fs = FormatSettings);

// Leading blanks, a sign, decimal digits or "$"/"0x" hexadecimal; anything else, or a value out of
// range, raises EConvertError "'%s' is not a valid integer value".
MATTONI_CORE_EXPORT qint32 StrToInt(const QString &s);
MATTONI_CORE_EXPORT qint64 StrToInt64(const QString &s);
MATTONI_CORE_EXPORT bool TryStrToInt(const QString &s, qint32 &value);
MATTONI_CORE_EXPORT bool TryStrToInt64(const QString &s, qint64 &value);
MATTONI_CORE_EXPORT qint32 StrToIntDef(const QString &s, qint32 defaultValue);

// "True"/"False" (any case) or an integer (0 is false); anything else raises EConvertError
// "'%s' is not a valid boolean value". BoolToStr gives "True"/"False", or "-1"/"0" without UseBoolStrs.
MATTONI_CORE_EXPORT bool StrToBool(const QString &s);
MATTONI_CORE_EXPORT bool TryStrToBool(const QString &s, bool &value);
MATTONI_CORE_EXPORT QString BoolToStr(bool value, bool useBoolStrs = false);

// Blanks around, a sign, digits with the current decimal separator, an exponent; no thousands
// separators. Errors: "'%s' is not a valid floating point value".
MATTONI_CORE_EXPORT double StrToFloat(const QString &s, const TFormatSettings &fs = FormatSettings);
MATTONI_CORE_EXPORT bool TryStrToFloat(const QString &s, double &value,
                                       const TFormatSettings &fs = FormatSettings);
MATTONI_CORE_EXPORT double StrToFloatDef(const QString &s, double defaultValue,
                                         const TFormatSettings &fs = FormatSettings);
MATTONI_CORE_EXPORT Currency StrToCurr(const QString &s, const TFormatSettings &fs = FormatSettings);

// Numbers in the order of ShortDateFormat separated by DateSeparator; a missing year is the
// current one; two-digit years follow TwoDigitYearCenturyWindow.
// Errors: "'%s' is not a valid date", "'%s' is not a valid time", "'%s' is not a valid date and time".
MATTONI_CORE_EXPORT TDateTime StrToDate(const QString &s, const TFormatSettings &fs = FormatSettings);
MATTONI_CORE_EXPORT TDateTime StrToTime(const QString &s, const TFormatSettings &fs = FormatSettings);
MATTONI_CORE_EXPORT TDateTime StrToDateTime(const QString &s, const TFormatSettings &fs = FormatSettings);
MATTONI_CORE_EXPORT bool TryStrToDate(const QString &s, TDateTime &value,
                                      const TFormatSettings &fs = FormatSettings);
MATTONI_CORE_EXPORT bool TryStrToTime(const QString &s, TDateTime &value,
                                      const TFormatSettings &fs = FormatSettings);
MATTONI_CORE_EXPORT bool TryStrToDateTime(const QString &s, TDateTime &value,
                                          const TFormatSettings &fs = FormatSettings);

// printf-like formatting with the framework's directives: %s %d %u %x %f %n %e %g %% with
// optional "-", width and ".precision". A directive that does not fit its argument raises
// EConvertError "Format '%s' invalid or incompatible with argument".
MATTONI_CORE_EXPORT QString Format(const QString &format, const QVariantList &args,
                                   const TFormatSettings &fs = FormatSettings);

} // namespace mattoni
