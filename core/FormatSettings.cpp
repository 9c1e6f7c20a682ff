// The process-wide format settings and their presets.
#include "FormatSettings.h"

namespace mattoni {

namespace {

QStringList localeNames(const QLocale &locale, QLocale::FormatType kind, bool months)
{
    QStringList result;
    if (months) {
        for (int m = 1; m <= 12; ++m)
            result << locale.monthName(m, kind);
    } else {
        // Qt counts Monday = 1 ... Sunday = 7; the framework's lists start on Sunday.
        result << locale.dayName(7, kind);
        for (int d = 1; d <= 6; ++d)
            result << locale.dayName(d, kind);
    }
    return result;
}

// The first character of a pattern that is neither a pattern letter nor quoted text.
QChar separatorIn(const QString &pattern, QChar fallback)
{
    bool quoted = false;
    for (QChar c : pattern) {
        if (c == QLatin1Char('\'')) {
            quoted = !quoted;
            continue;
        }
        if (!quoted && !c.isLetterOrNumber() && !c.isSpace())
            return c;
    }
    return fallback;
}

} // namespace

TFormatSettings::TFormatSettings()
    : ShortMonthNames{QStringLiteral("Jan"), QStringLiteral("Feb"), QStringLiteral("Mar"),
                      QStringLiteral("Apr"), QStringLiteral("May"), QStringLiteral("Jun"),
                      QStringLiteral("Jul"), QStringLiteral("Aug"), QStringLiteral("Sep"),
                      QStringLiteral("Oct"), QStringLiteral("Nov"), QStringLiteral("Dec")}
    , LongMonthNames{QStringLiteral("January"), QStringLiteral("February"), QStringLiteral("March"),
                     QStringLiteral("April"),   QStringLiteral("May"),      QStringLiteral("June"),
                     QStringLiteral("July"),    QStringLiteral("August"),   QStringLiteral("September"),
                     QStringLiteral("October"), QStringLiteral("November"), QStringLiteral("December")}
    , ShortDayNames{QStringLiteral("Sun"), QStringLiteral("Mon"), QStringLiteral("Tue"),
                    QStringLiteral("Wed"), QStringLiteral("Thu"), QStringLiteral("Fri"),
                    QStringLiteral("Sat")}
    , LongDayNames{QStringLiteral("Sunday"),   QStringLiteral("Monday"), QStringLiteral("Tuesday"),
                   QStringLiteral("Wednesday"), QStringLiteral("Thursday"), QStringLiteral("Friday"),
                   QStringLiteral("Saturday")}
{
}

TFormatSettings TFormatSettings::Invariant()
{
    return TFormatSettings();
}

TFormatSettings TFormatSettings::Italian()
{
    TFormatSettings s;
    s.DateSeparator = QLatin1Char('/');
    s.TimeSeparator = QLatin1Char('.');
    s.DecimalSeparator = QLatin1Char(',');
    s.ThousandSeparator = QLatin1Char('.');
    s.ShortDateFormat = QStringLiteral("dd/mm/yyyy");
    s.LongDateFormat = QStringLiteral("dddd d mmmm yyyy");
    s.ShortTimeFormat = QStringLiteral("hh.nn");
    s.LongTimeFormat = QStringLiteral("hh.nn.ss");
    s.TimeAMString.clear();
    s.TimePMString.clear();
    s.CurrencyString = QStringLiteral("€");
    s.ShortMonthNames = QStringList{QStringLiteral("gen"), QStringLiteral("feb"), QStringLiteral("mar"),
                                    QStringLiteral("apr"), QStringLiteral("mag"), QStringLiteral("giu"),
                                    QStringLiteral("lug"), QStringLiteral("ago"), QStringLiteral("set"),
                                    QStringLiteral("ott"), QStringLiteral("nov"), QStringLiteral("dic")};
    s.LongMonthNames = QStringList{QStringLiteral("gennaio"),   QStringLiteral("febbraio"),
                                   QStringLiteral("marzo"),     QStringLiteral("aprile"),
                                   QStringLiteral("maggio"),    QStringLiteral("giugno"),
                                   QStringLiteral("luglio"),    QStringLiteral("agosto"),
                                   QStringLiteral("settembre"), QStringLiteral("ottobre"),
                                   QStringLiteral("novembre"),  QStringLiteral("dicembre")};
    s.ShortDayNames = QStringList{QStringLiteral("dom"), QStringLiteral("lun"), QStringLiteral("mar"),
                                  QStringLiteral("mer"), QStringLiteral("gio"), QStringLiteral("ven"),
                                  QStringLiteral("sab")};
    s.LongDayNames = QStringList{QStringLiteral("domenica"), QStringLiteral("lunedì"),
                                 QStringLiteral("martedì"),  QStringLiteral("mercoledì"),
                                 QStringLiteral("giovedì"),  QStringLiteral("venerdì"),
                                 QStringLiteral("sabato")};
    return s;
}

QString QtPatternToFormat(const QString &qtPattern)
{
    QString out;
    const int n = qtPattern.size();
    for (int i = 0; i < n;) {
        const QChar c = qtPattern.at(i);
        if (c == QLatin1Char('\'')) {
            // Quoted text: the framework quotes with double quotes.
            int j = qtPattern.indexOf(QLatin1Char('\''), i + 1);
            if (j < 0)
                j = n;
            out += QLatin1Char('"') + qtPattern.mid(i + 1, j - i - 1) + QLatin1Char('"');
            i = j + 1;
            continue;
        }
        int run = 1;
        while (i + run < n && qtPattern.at(i + run) == c)
            ++run;
        switch (c.unicode()) {
        case 'M': out += QString(run, QLatin1Char('m')); break;
        case 'm': out += QString(qMin(run, 2), QLatin1Char('n')); break;
        case 'H': case 'h': out += QString(qMin(run, 2), QLatin1Char('h')); break;
        case 'A': case 'a':
            out += QStringLiteral("AMPM");
            if (i + run < n && (qtPattern.at(i + run) == QLatin1Char('P') || qtPattern.at(i + run) == QLatin1Char('p')))
                ++run;
            break;
        case 't': break;
        default: out += QString(run, c); break;
        }
        i += run;
    }
    return out.trimmed();
}

TFormatSettings TFormatSettings::FromLocale(const QLocale &locale)
{
    TFormatSettings s;
    const QString shortDate = locale.dateFormat(QLocale::ShortFormat);
    const QString longDate = locale.dateFormat(QLocale::LongFormat);
    const QString shortTime = locale.timeFormat(QLocale::ShortFormat);
    const QString longTime = locale.timeFormat(QLocale::LongFormat);
    s.ShortDateFormat = QtPatternToFormat(shortDate);
    s.LongDateFormat = QtPatternToFormat(longDate);
    s.ShortTimeFormat = QtPatternToFormat(shortTime);
    // Qt's long time format carries the time zone ("t"), which the framework's has not.
    s.LongTimeFormat = QtPatternToFormat(longTime);
    s.DateSeparator = separatorIn(shortDate, QLatin1Char('/'));
    s.TimeSeparator = separatorIn(shortTime, QLatin1Char(':'));
    s.DecimalSeparator = locale.decimalPoint().isEmpty() ? QLatin1Char('.') : locale.decimalPoint().at(0);
    s.ThousandSeparator = locale.groupSeparator().isEmpty() ? QLatin1Char(',') : locale.groupSeparator().at(0);
    s.TimeAMString = locale.amText();
    s.TimePMString = locale.pmText();
    s.CurrencyString = locale.currencySymbol();
    s.ShortMonthNames = localeNames(locale, QLocale::ShortFormat, true);
    s.LongMonthNames = localeNames(locale, QLocale::LongFormat, true);
    s.ShortDayNames = localeNames(locale, QLocale::ShortFormat, false);
    s.LongDayNames = localeNames(locale, QLocale::LongFormat, false);
    return s;
}

TFormatSettings FormatSettings = TFormatSettings::FromLocale(QLocale::system());

void SetItalianFormatSettings()
{
    FormatSettings = TFormatSettings::Italian();
}

} // namespace mattoni
