// The formatting patterns and conversions every other unit builds on.
#include "DateTime.h"
#include "Exceptions.h"
#include "Formatting.h"

#include <QtTest>

using namespace mattoni;

class tst_Formatting : public QObject
{
    Q_OBJECT
private slots:
    void init() { FormatSettings = TFormatSettings::Italian(); }

    void formatDateTime_data()
    {
        QTest::addColumn<QString>("format");
        QTest::addColumn<QString>("expected");
        // 2006-03-07 14:05:09.042, a Tuesday
        QTest::newRow("short date") << "dd/mm/yyyy" << "07/03/2006";
        QTest::newRow("no padding") << "d/m/yy" << "7/3/06";
        QTest::newRow("year-day-month") << "yyyy-dd-mm" << "2006-07-03";
        QTest::newRow("time colons") << "hh:nn:ss" << "14.05.09";
        QTest::newRow("m after h is minutes") << "hh:mm" << "14.05";
        QTest::newRow("dots stay") << "hh.nn.ss" << "14.05.09";
        QTest::newRow("db2 timestamp") << "yyyy-mm-dd-hh.nn.ss.0" << "2006-03-07-14.05.09.0";
        QTest::newRow("milliseconds") << "ss:z" << "09.42";
        QTest::newRow("milliseconds padded") << "zzz" << "042";
        QTest::newRow("names") << "ddd dddd mmm mmmm" << "mar martedì mar marzo";
        QTest::newRow("quoted") << "\"giorno\" d" << "giorno 7";
        QTest::newRow("c") << "c" << "07/03/2006 14.05.09";
        QTest::newRow("12 hour") << "h:nn am/pm" << "2.05 pm";
        QTest::newRow("12 hour upper") << "hh AM/PM" << "02 PM";
        QTest::newRow("ddddd") << "ddddd" << "07/03/2006";
    }
    void formatDateTime()
    {
        QFETCH(QString, format);
        QFETCH(QString, expected);
        const TDateTime value = EncodeDate(2006, 3, 7) + EncodeTime(14, 5, 9, 42);
        QCOMPARE(FormatDateTime(format, value), expected);
    }

    void dateTimeToStrDropsMidnight()
    {
        QCOMPARE(DateTimeToStr(EncodeDate(2006, 3, 7)), QStringLiteral("07/03/2006"));
        QCOMPARE(DateToStr(EncodeDate(2006, 3, 7) + 0.5), QStringLiteral("07/03/2006"));
        QCOMPARE(TimeToStr(EncodeTime(0, 0, 0, 0)), QStringLiteral("00.00.00"));
    }

    void formatFloat_data()
    {
        QTest::addColumn<QString>("format");
        QTest::addColumn<double>("value");
        QTest::addColumn<QString>("expected");
        QTest::newRow("money") << "#,##0.00" << 1234567.891 << "1.234.567,89";
        QTest::newRow("money small") << "#,##0.00" << 0.5 << "0,50";
        QTest::newRow("money negative") << "#,##0.00" << -1234.5 << "-1.234,50";
        QTest::newRow("half up at 15 digits") << "0.00" << 2.345 << "2,35";
        QTest::newRow("half up negative") << "0.00" << -2.345 << "-2,35";
        QTest::newRow("two digits") << "00" << 5.0 << "05";
        QTest::newRow("two digits rounds") << "00" << 49.5 << "50";
        QTest::newRow("two digits wide") << "00" << 123.0 << "123";
        QTest::newRow("year four") << "0000;0; " << 2013.0 << "2013";
        QTest::newRow("year zero blank") << "0000;0; " << 0.0 << " ";
        QTest::newRow("year negative") << "0000;0; " << -5.0 << "5";
        QTest::newRow("zero padded id") << "000000" << 42.0 << "000042";
        QTest::newRow("optional decimals") << "0.##" << 1.0 << "1";
        QTest::newRow("optional decimals used") << "0.##" << 1.5 << "1,5";
        QTest::newRow("no integer zero") << "#.##" << 0.25 << ",25";
        QTest::newRow("integer grouping") << "#,##0" << 1000000.0 << "1.000.000";
        QTest::newRow("rounding carries") << "0.00" << 9.999 << "10,00";
        QTest::newRow("negative rounds to zero") << "0.00" << -0.001 << "0,00";
        QTest::newRow("literal text") << "\"EUR \"0.00" << 3.0 << "EUR 3,00";
        QTest::newRow("scientific") << "0.00E+00" << 12345.0 << "1,23E+04";
        QTest::newRow("scientific negative exponent") << "0.0E-0" << 0.00123 << "1,2E-3";
    }
    void formatFloat()
    {
        QFETCH(QString, format);
        QFETCH(double, value);
        QFETCH(QString, expected);
        QCOMPARE(FormatFloat(format, value), expected);
    }

    void floatToStr_data()
    {
        QTest::addColumn<double>("value");
        QTest::addColumn<QString>("expected");
        QTest::newRow("integer") << 234.0 << "234";
        QTest::newRow("fraction") << 2.345 << "2,345";
        QTest::newRow("15 digits") << 0.1 + 0.2 << "0,3";
        QTest::newRow("negative") << -12.5 << "-12,5";
        QTest::newRow("small fixed") << 0.00001 << "0,00001";
        QTest::newRow("smaller scientific") << 0.0000015 << "1,5E-6";
        QTest::newRow("large scientific") << 1e20 << "1E20";
        QTest::newRow("largest fixed") << 123456789012345.0 << "123456789012345";
        QTest::newRow("zero") << 0.0 << "0";
    }
    void floatToStr()
    {
        QFETCH(double, value);
        QFETCH(QString, expected);
        QCOMPARE(FloatToStr(value), expected);
    }

    void currToStr()
    {
        QCOMPARE(CurrToStr(Currency(12.5)), QStringLiteral("12,5"));
        QCOMPARE(CurrToStr(Currency(1936.27)), QStringLiteral("1936,27"));
        QCOMPARE(CurrToStr(Currency(-0.0001)), QStringLiteral("-0,0001"));
        QCOMPARE(CurrToStr(Currency(7)), QStringLiteral("7"));
    }

    void strToInt_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("ok");
        QTest::addColumn<int>("value");
        QTest::newRow("plain") << "42" << true << 42;
        QTest::newRow("leading blanks") << "  -7" << true << -7;
        QTest::newRow("plus") << "+7" << true << 7;
        QTest::newRow("hex dollar") << "$FF" << true << 255;
        QTest::newRow("hex 0x") << "0x10" << true << 16;
        QTest::newRow("hex wraps") << "$FFFFFFFF" << true << -1;
        QTest::newRow("min") << "-2147483648" << true << std::numeric_limits<int>::min();
        QTest::newRow("overflow") << "2147483648" << false << 0;
        QTest::newRow("trailing blank") << "42 " << false << 0;
        QTest::newRow("empty") << "" << false << 0;
        QTest::newRow("decimal") << "1.2" << false << 0;
        QTest::newRow("letters") << "12a" << false << 0;
    }
    void strToInt()
    {
        QFETCH(QString, text);
        QFETCH(bool, ok);
        QFETCH(int, value);
        if (ok) {
            QCOMPARE(StrToInt(text), value);
            return;
        }
        try {
            StrToInt(text);
            QFAIL("no error");
        } catch (const EConvertError &e) {
            QCOMPARE(e.Message(), QStringLiteral("'%1' is not a valid integer value").arg(text));
        }
    }

    void strToFloat()
    {
        QCOMPARE(StrToFloat(QStringLiteral(" 1,5 ")), 1.5);
        QCOMPARE(StrToFloat(QStringLiteral("-2,5E2")), -250.0);
        QCOMPARE(StrToFloat(QStringLiteral("7")), 7.0);
        for (const char *bad : {"1.5", "1.000,5", "", "E", "1-2", "1,5,2"}) {
            try {
                StrToFloat(QLatin1String(bad));
                QFAIL(bad);
            } catch (const EConvertError &e) {
                QCOMPARE(e.Message(), QStringLiteral("'%1' is not a valid floating point value").arg(QLatin1String(bad)));
            }
        }
    }

    void strToDate()
    {
        QCOMPARE(StrToDate(QStringLiteral("15/04/1985")), EncodeDate(1985, 4, 15));
        QCOMPARE(StrToDate(QStringLiteral("1/2/2020")), EncodeDate(2020, 2, 1));
        QCOMPARE(StrToDate(QStringLiteral("3/12")), EncodeDate(QDate::currentDate().year(), 12, 3));
        // Two-digit years: within 50 years before now belong to this century.
        const int thisYear = QDate::currentDate().year();
        const int past = (thisYear - 10) % 100;
        int y, m, d;
        DecodeDate(StrToDate(QStringLiteral("01/01/%1").arg(past, 2, 10, QLatin1Char('0'))), y, m, d);
        QCOMPARE(y, thisYear - 10);
        FormatSettings.ShortDateFormat = QStringLiteral("mm/dd/yyyy");
        QCOMPARE(StrToDate(QStringLiteral("04/15/1985")), EncodeDate(1985, 4, 15));
        for (const char *bad : {"31/02/2020", "15-04-1985", "", "15/04/1985x"}) {
            try {
                FormatSettings.ShortDateFormat = QStringLiteral("dd/mm/yyyy");
                StrToDate(QLatin1String(bad));
                QFAIL(bad);
            } catch (const EConvertError &e) {
                QCOMPARE(e.Message(), QStringLiteral("'%1' is not a valid date").arg(QLatin1String(bad)));
            }
        }
    }

    void strToTimeAndDateTime()
    {
        QCOMPARE(StrToTime(QStringLiteral("14.05.59")), EncodeTime(14, 5, 59, 0));
        QCOMPARE(StrToTime(QStringLiteral("14.05")), EncodeTime(14, 5, 0, 0));
        QCOMPARE(StrToDateTime(QStringLiteral("07/03/2006 14.05.09")),
                 EncodeDate(2006, 3, 7) + EncodeTime(14, 5, 9, 0));
        QVERIFY_THROWS_EXCEPTION(EConvertError, StrToTime(QStringLiteral("25.00")));
        QVERIFY_THROWS_EXCEPTION(EConvertError, StrToDateTime(QStringLiteral("07/03/2006 x")));
    }

    void formatDirectives()
    {
        QCOMPARE(Format(QStringLiteral("Prego, inserire il disco #%d nell'unità %s:"), {3, QStringLiteral("A")}),
                 QStringLiteral("Prego, inserire il disco #3 nell'unità A:"));
        QCOMPARE(Format(QStringLiteral("%5d|%-4s|%.3d|%%"), {42, QStringLiteral("ab"), 7}),
                 QStringLiteral("   42|ab  |007|%"));
        QCOMPARE(Format(QStringLiteral("%.2f %n"), {2.345, 1234.5}), QStringLiteral("2,35 1.234,50"));
        QVERIFY_THROWS_EXCEPTION(EConvertError, Format(QStringLiteral("%d"), {QStringLiteral("x")}));
        QVERIFY_THROWS_EXCEPTION(EConvertError, Format(QStringLiteral("%s %s"), {QStringLiteral("x")}));
    }
};

QTEST_GUILESS_MAIN(tst_Formatting)
#include "tst_formatting.moc"
