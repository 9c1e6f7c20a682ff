// Number helpers of the applications: euro rounding by text, powers-of-ten rounding, money
// formatting and percentages typed in two boxes.
#pragma once

#include "mattoni_core_export.h"

#include <QString>

namespace mattoni {

// 0 when |X| is below 1e-9, otherwise X.
MATTONI_CORE_EXPORT double CheckZero(double x);
// X rounded to 2 decimals by its text: X * 100 printed with FloatToStr; a first decimal digit of 5
// or more adds 1 to the integer part truncated toward zero. So 2.345 gives 2.35 but -2.345 gives
// -2.33: negative amounts move up, kept as the applications expect.
MATTONI_CORE_EXPORT double rgaEuro(double x);
// The same with N decimals.
MATTONI_CORE_EXPORT double rgaValuta(double x, int n);
// X rounded (halves to even, as the platform rounds) / rounded up to a multiple of 10^N.
MATTONI_CORE_EXPORT double RoundTo10x(double x, int n);
MATTONI_CORE_EXPORT double CeilTo10x(double x, int n);
MATTONI_CORE_EXPORT double IntegerSup(double x);
MATTONI_CORE_EXPORT double BestInteger(double x);
// X rounded up (toward plus infinity) to N decimal places, taken at 15 significant digits first so
// that 2.35 stays 2.35.
MATTONI_CORE_EXPORT double realSup(double x, int n);
// N below 1: X rounded to an integer; otherwise X printed with "0." and N zeros and read back.
MATTONI_CORE_EXPORT double RealNearest(double x, int n);
// "#,##0" or "#,##0." followed by N zeros, with the locale's separators.
MATTONI_CORE_EXPORT QString FormatValuta(double x, int n);
// The integer and decimal parts (each trimmed, empty taken as "0") joined by a literal ","
// and read as a float, divided by 100. OK false and 0 when that is not a number.
MATTONI_CORE_EXPORT double TraduciPercentuale(const QString &integerPart, const QString &decimalPart, bool &ok);

} // namespace mattoni
