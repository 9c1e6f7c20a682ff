// TFormatSettings: the date, time and number conventions that the formatting and conversion
// functions follow, and the process-wide FormatSettings that they read by default.
#pragma once

#include "mattoni_core_export.h"

#include <QChar>
#include <QLocale>
#include <QString>
#include <QStringList>

namespace mattoni {

struct MATTONI_CORE_EXPORT TFormatSettings
{
    QChar DateSeparator = QLatin1Char('/');
    QChar TimeSeparator = QLatin1Char(':');
    QChar DecimalSeparator = QLatin1Char('.');
    QChar ThousandSeparator = QLatin1Char(',');
    QString ShortDateFormat = QStringLiteral("m/d/yyyy");
    QString LongDateFormat = QStringLiteral("dddd, mmmm d, yyyy");
    QString ShortTimeFormat = QStringLiteral("h:nn AMPM");
    QString LongTimeFormat = QStringLiteral("h:nn:ss AMPM");
    QString TimeAMString = QStringLiteral("AM");
    QString TimePMString = QStringLiteral("PM");
    QString CurrencyString = QStringLiteral("$");
    // Index 0 is January / Sunday.
    QStringList ShortMonthNames;
    QStringList LongMonthNames;
    QStringList ShortDayNames;
    QStringList LongDayNames;
    // Two-digit years within this many years before now belong to the current century.
    int TwoDigitYearCenturyWindow = 50;

    TFormatSettings();

    // The conventions of a Qt locale, its patterns translated to the framework's letters.
    static TFormatSettings FromLocale(const QLocale &locale);
    // The Italian conventions the family's applications were written for: "dd/mm/yyyy" with "/",
    // long time "hh.nn.ss" with ".", decimal ",", thousands ".", Italian month and day names.
    static TFormatSettings Italian();
    // Neutral conventions (US English names, "/" and ":"), independent of the system.
    static TFormatSettings Invariant();
};

// The process-wide settings. They start from the system locale; the library changes nothing by
// itself afterwards.
MATTONI_CORE_EXPORT extern TFormatSettings FormatSettings;

// Sets FormatSettings to TFormatSettings::Italian().
MATTONI_CORE_EXPORT void SetItalianFormatSettings();

// Translates a Qt date/time pattern ("dd/MM/yyyy HH:mm:ss") to the framework's letters
// ("dd/mm/yyyy hh:nn:ss").
MATTONI_CORE_EXPORT QString QtPatternToFormat(const QString &qtPattern);

} // namespace mattoni
