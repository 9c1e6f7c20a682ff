// SQL literal text for dates and times by database dialect.
#include "SqlLiterals.h"

#include "Ambiente.h"
#include "Formatting.h"
#include "Strings.h"
#include "Variants.h"

namespace mattoni {

namespace {

bool isGroup(const QString &a, const QString &b = QString())
{
    return DbmsTypeIsEqual(TipoDatabase, a) || (!b.isEmpty() && DbmsTypeIsEqual(TipoDatabase, b));
}

bool italian()
{
    return FormatoData == fddbItaliano;
}

QString fmt(const QString &pattern, TDateTime value)
{
    return FormatDateTime(pattern, value);
}

// Undoes a "." time separator of the locale: every "." of the text becomes ":".
QString dotsToColons(QString s)
{
    return s.replace(QLatin1Char('.'), QLatin1Char(':'));
}

QString quoted(const QString &s)
{
    return QLatin1Char('\'') + s + QLatin1Char('\'');
}

QString defaultTime(TDateTime t)
{
    return quoted(TimeToStr(t));
}

} // namespace

QString GetFormattedDate(const QVariant &v)
{
    const TDateTime d = VarToFloat(v);
    QString result = quoted(DateToStr(d));
    if (isGroup(dbmsInterbase, dbmsFirebird))
        result = quoted(fmt(italian() ? QStringLiteral("yyyy-dd-mm") : QStringLiteral("yyyy-mm-dd"), d));
    if (isGroup(dbmsDb2))
        result = QStringLiteral("DATE('") + fmt(italian() ? QStringLiteral("yyyy-dd-mm") : QStringLiteral("yyyy-mm-dd"), d)
                 + QStringLiteral("')");
    if (isGroup(dbmsSqlServer, dbmsOleDbSqlServer))
        result = quoted(fmt(italian() ? QStringLiteral("dd/mm/yyyy") : QStringLiteral("mm/dd/yyyy"), d));
    if (isGroup(dbmsOracle, dbmsOleDbOracle))
        result = QStringLiteral("TO_DATE('") + DateToStr(d) + QStringLiteral("', 'dd/mm/yyyy')");
    if (isGroup(dbmsAccess))
        result = QLatin1Char('#') + fmt(italian() ? QStringLiteral("dd/mm/yyyy") : QStringLiteral("mm/dd/yyyy"), d)
                 + QLatin1Char('#');
    if (isGroup(dbmsMySQL))
        result = quoted(dotsToColons(fmt(QStringLiteral("yyyy-mm-dd hh:nn:ss"), d)));
    return result;
}

QString GetFormattedTime(const QVariant &v)
{
    const TDateTime t = VarToFloat(v);
    QString result = defaultTime(t);
    // The Interbase and DB2 times ignore the day/month order, as the servers do.
    if (isGroup(dbmsInterbase, dbmsFirebird))
        result = quoted(fmt(QStringLiteral("hh:nn:ss"), t));
    if (isGroup(dbmsDb2))
        result = QStringLiteral("TIME('") + fmt(QStringLiteral("hh.nn.ss"), t) + QStringLiteral("')");
    // Wraps the quoted default time: CAST('12:30:00' as datetime).
    if (isGroup(dbmsSqlServer, dbmsOleDbSqlServer))
        result = QStringLiteral("CAST(") + dotsToColons(defaultTime(t)) + QStringLiteral(" as datetime)");
    if (isGroup(dbmsOracle, dbmsOleDbOracle))
        result = QStringLiteral("TO_DATE('") + TimeToStr(t) + QStringLiteral("', 'HH24:MI:SS')");
    // Hours and minutes only: seconds are dropped on purpose.
    if (isGroup(dbmsAccess))
        result = QLatin1Char('#') + fmt(QStringLiteral("hh:nn"), t) + QLatin1Char('#');
    // Always a full date-time; a pure time carries the date 1899-12-30.
    if (isGroup(dbmsMySQL))
        result = quoted(dotsToColons(fmt(QStringLiteral("yyyy-mm-dd hh:nn:ss"), t)));
    return result;
}

QString GetFormattedDatetime(const QVariant &v)
{
    const TDateTime dt = VarToFloat(v);
    QString result = quoted(DateTimeToStr(dt));
    if (isGroup(dbmsInterbase, dbmsFirebird))
        result = QuotedStr(fmt(italian() ? QStringLiteral("yyyy-dd-mm hh:nn:ss") : QStringLiteral("yyyy-mm-dd hh:nn:ss"), dt));
    if (isGroup(dbmsDb2))
        result = QStringLiteral("TIMESTAMP('")
                 + fmt(italian() ? QStringLiteral("yyyy-dd-mm-hh.nn.ss.0") : QStringLiteral("yyyy-mm-dd-hh.nn.ss.0"), dt)
                 + QStringLiteral("')");
    if (isGroup(dbmsSqlServer, dbmsOleDbSqlServer))
        result = quoted(dotsToColons(
            fmt(italian() ? QStringLiteral("dd/mm/yyyy hh:nn:ss:z") : QStringLiteral("mm/dd/yyyy hh:nn:ss:z"), dt)));
    if (isGroup(dbmsOracle, dbmsOleDbOracle))
        result = QStringLiteral("TO_DATE('") + DateTimeToStr(dt) + QStringLiteral("', 'dd/mm/yyyy HH24.MI.SS')");
    if (isGroup(dbmsAccess))
        result = QLatin1Char('#')
                 + fmt(italian() ? QStringLiteral("dd/mm/yyyy hh:nn:ss") : QStringLiteral("mm/dd/yyyy hh:nn:ss"), dt)
                 + QLatin1Char('#');
    if (isGroup(dbmsMySQL))
        result = quoted(dotsToColons(fmt(QStringLiteral("yyyy-mm-dd hh:nn:ss"), dt)));
    return result;
}

} // namespace mattoni
