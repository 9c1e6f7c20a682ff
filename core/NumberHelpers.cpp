// Number helpers of the applications.
#include "NumberHelpers.h"

#include "FormatSettings.h"
#include "Formatting.h"
#include "Strings.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace mattoni {

namespace {

double powerOfTen(int n)
{
    return std::pow(10.0, n);
}

// The value as the 15 significant digits that its text shows.
double at15Digits(double x)
{
    char buf[40];
    std::snprintf(buf, sizeof buf, "%.14e", x);
    return std::strtod(buf, nullptr);
}

} // namespace

double CheckZero(double x)
{
    return std::fabs(x) < 1e-9 ? 0.0 : x;
}

double rgaValuta(double x, int n)
{
    const double scale = powerOfTen(n);
    const double scaled = x * scale;
    const QString text = FloatToStr(scaled);
    double whole = std::trunc(scaled);
    const int sep = int(text.indexOf(FormatSettings.DecimalSeparator));
    if (sep >= 0 && sep + 1 < text.size() && text.at(sep + 1) >= QLatin1Char('5') && text.at(sep + 1) <= QLatin1Char('9'))
        whole += 1;
    return whole / scale;
}

double rgaEuro(double x)
{
    return rgaValuta(x, 2);
}

double RoundTo10x(double x, int n)
{
    const double scale = powerOfTen(n);
    return std::nearbyint(x / scale) * scale;
}

double CeilTo10x(double x, int n)
{
    const double scale = powerOfTen(n);
    return std::ceil(x / scale) * scale;
}

double IntegerSup(double x)
{
    return std::ceil(x);
}

double BestInteger(double x)
{
    return RoundTo10x(x, 0);
}

double realSup(double x, int n)
{
    const double scale = powerOfTen(n);
    return std::ceil(at15Digits(x * scale)) / scale;
}

double RealNearest(double x, int n)
{
    if (n < 1)
        return std::nearbyint(x);
    return StrToFloat(FormatFloat(QStringLiteral("0.") + QString(n, QLatin1Char('0')), x));
}

QString FormatValuta(double x, int n)
{
    if (n < 1)
        return FormatFloat(QStringLiteral("#,##0"), x);
    return FormatFloat(QStringLiteral("#,##0.") + QString(n, QLatin1Char('0')), x);
}

double TraduciPercentuale(const QString &integerPart, const QString &decimalPart, bool &ok)
{
    QString i = Trim(integerPart);
    QString d = Trim(decimalPart);
    if (i.isEmpty())
        i = QStringLiteral("0");
    if (d.isEmpty())
        d = QStringLiteral("0");
    double value = 0;
    ok = TryStrToFloat(i + QLatin1Char(',') + d, value);
    return ok ? value / 100 : 0.0;
}

} // namespace mattoni
