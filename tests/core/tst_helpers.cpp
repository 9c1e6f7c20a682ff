// Text, date and number helpers, rough edges included.
#include "DateHelpers.h"
#include "Exceptions.h"
#include "FormatSettings.h"
#include "NumberHelpers.h"
#include "TextUtils.h"

#include <QtTest>

using namespace mattoni;

class tst_Helpers : public QObject
{
    Q_OBJECT
private slots:
    void init() { FormatSettings = TFormatSettings::Italian(); }

    void fillChars_data()
    {
        QTest::addColumn<QString>("s");
        QTest::addColumn<int>("len");
        QTest::addColumn<QString>("head");
        QTest::addColumn<QString>("tail");
        QTest::addColumn<QString>("zeroes");
        QTest::newRow("pads trimmed") << " 42 " << 6 << "****42" << "42****" << "000042";
        // Exact length: the first characters of the untrimmed text, here the blanks.
        QTest::newRow("exact keeps untrimmed head") << "  12" << 2 << "  " << "  " << "00";
        QTest::newRow("longer cut from the left") << "123456" << 3 << "123" << "123" << "456";
        QTest::newRow("zero length") << "abc" << 0 << "" << "" << "";
        QTest::newRow("empty") << "" << 3 << "***" << "***" << "000";
    }
    void fillChars()
    {
        QFETCH(QString, s);
        QFETCH(int, len);
        QFETCH(QString, head);
        QFETCH(QString, tail);
        QFETCH(QString, zeroes);
        QCOMPARE(HeadFillChars(s, QLatin1Char('*'), len), head);
        QCOMPARE(TailFillChars(s, QLatin1Char('*'), len), tail);
        QCOMPARE(LeadingZeroes(s, len), zeroes);
    }

    void trimZero()
    {
        QString s = QStringLiteral("000");
        TrimZero(s);
        QCOMPARE(s, QString());
        s = QStringLiteral("00120");
        TrimZero(s);
        QCOMPARE(s, QStringLiteral("120"));
    }

    void items()
    {
        QCOMPARE(ExtractItemValue(QStringLiteral("A=1;B= 2 ;C=3"), QStringLiteral("B")), QStringLiteral("2"));
        // The first "A=" may sit inside another item's name.
        QCOMPARE(ExtractItemValue(QStringLiteral("XA=5;A=7"), QStringLiteral("A")), QStringLiteral("5"));
        QCOMPARE(ExtractItemValue(QStringLiteral("A=1"), QStringLiteral("Z")), QString());
        QCOMPARE(ModifyItemValue(QStringLiteral("A=1;B=2"), QStringLiteral("C"), QStringLiteral("9")), QStringLiteral("A=1;B=2"));
        QCOMPARE(ModifyItemValue(QStringLiteral("A=1;B=2"), QStringLiteral("A"), QStringLiteral("9")), QStringLiteral("A=9;B=2"));
        QCOMPARE(ModifyItemValue(QStringLiteral("A=1;B=2"), QStringLiteral("B"), QStringLiteral("")), QStringLiteral("A=1;B="));
        QStringList list;
        TextToStrings(QStringLiteral("a;;b;"), list);
        QCOMPARE(list, QStringList({QStringLiteral("a"), QString(), QStringLiteral("b")}));
        QCOMPARE(StringsToText(list), QStringLiteral("a;;b"));
        QStringList names, values;
        TextToStrings(QStringLiteral("A=1;B;C=x=y"), names, values);
        QCOMPARE(names, QStringList({QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("C")}));
        QCOMPARE(values, QStringList({QStringLiteral("1"), QString(), QStringLiteral("x=y")}));
    }

    void stringValueToInt()
    {
        QCOMPARE(StringValueToInt(QStringLiteral(" 0042 ")), 42);
        QCOMPARE(StringValueToInt(QStringLiteral("n. -7")), -7);
        QCOMPARE(StringValueToInt(QStringLiteral("abc")), 0);
        // Kept characters that do not make an integer raise the conversion error.
        QVERIFY_THROWS_EXCEPTION(EConvertError, StringValueToInt(QStringLiteral("06-123")));
        QVERIFY_THROWS_EXCEPTION(EConvertError, StringValueToInt(QStringLiteral("1,2")));
        FormatSettings.DecimalSeparator = QLatin1Char('.');
        QVERIFY_THROWS_EXCEPTION(EConvertError, StringValueToInt(QStringLiteral(" 1.2 ")));
    }

    void masks()
    {
        QCOMPARE(CreaMask(QStringLiteral("CAP 00100")), QStringLiteral("\\C\\AP \\0\\01\\0\\0"));
        QCOMPARE(CreaMask(QStringLiteral("9-a.c/L")), QStringLiteral("\\9-\\a.\\c/\\L"));
        QCOMPARE(CreaMask(QString()), QString());
    }

    void dayNames()
    {
        QCOMPARE(GetNomeGiorno(1), QStringLiteral("LUNEDI"));
        QCOMPARE(GetNomeGiorno(7), QStringLiteral("DOMENICA"));
        QVERIFY_THROWS_EXCEPTION(ERangeError, GetNomeGiorno(0));
        QVERIFY_THROWS_EXCEPTION(ERangeError, GetNomeGiorno(8));
    }

    void dates()
    {
        const TDateTime d = EncodeDate(2024, 2, 10) + 0.75;
        QCOMPARE(GetYear(d), 2024);
        QCOMPARE(GetMonth(d), 2);
        QCOMPARE(GetDay(d), 10);
        QCOMPARE(GetEndOfMonth(d), EncodeDate(2024, 2, 29));
        QCOMPARE(GetEndOfMonth(EncodeDate(2023, 2, 1)), EncodeDate(2023, 2, 28));
        QCOMPARE(GetNextMonth(EncodeDate(2024, 1, 31)), EncodeDate(2024, 2, 29));
        QCOMPARE(ElapsedDay(EncodeDate(2024, 1, 1) + 0.9, EncodeDate(2024, 3, 1) + 0.1), 60);
        QCOMPARE(ElapsedDay(EncodeDate(2024, 3, 1), EncodeDate(2024, 1, 1)), -60);
        QVERIFY(IsNullDate(0));
        QVERIFY(IsNullDate(EncodeDate(9999, 12, 31) + 1));
        QVERIFY(!IsNullDate(EncodeDate(1899, 12, 29)));
    }

    void datetimeConvert()
    {
        QCOMPARE(DatetimeConvert(QStringLiteral("07-MAR-2006 14.05.09")), QStringLiteral("03/07/2006 14.05.09"));
        QCOMPARE(DatetimeConvert(QStringLiteral("31-dic-1999")), QStringLiteral("12/31/1999"));
        QCOMPARE(DatetimeConvert(QStringLiteral("01-XYZ-2000")), QStringLiteral("13/01/2000"));
    }

    void euroRounding_data()
    {
        QTest::addColumn<double>("x");
        QTest::addColumn<double>("expected");
        QTest::newRow("up") << 2.345 << 2.35;
        QTest::newRow("down") << 2.344 << 2.34;
        QTest::newRow("negative moves up") << -2.345 << -2.33;
        QTest::newRow("exact") << 10.5 << 10.5;
        QTest::newRow("lire") << 1936.27 << 1936.27;
    }
    void euroRounding()
    {
        QFETCH(double, x);
        QFETCH(double, expected);
        QCOMPARE(rgaEuro(x), expected);
        QCOMPARE(rgaValuta(x, 2), expected);
    }

    void powersOfTen()
    {
        QCOMPARE(RoundTo10x(1234.0, 2), 1200.0);
        QCOMPARE(RoundTo10x(1250.0, 2), 1200.0); // halves to even
        QCOMPARE(CeilTo10x(1201.0, 2), 1300.0);
        QCOMPARE(RoundTo10x(2.346, -2), 2.35);
        QCOMPARE(BestInteger(2.5), 2.0);
        QCOMPARE(BestInteger(3.5), 4.0);
        QCOMPARE(IntegerSup(2.01), 3.0);
        QCOMPARE(realSup(2.341, 2), 2.35);
        QCOMPARE(realSup(2.35, 2), 2.35);
        QCOMPARE(RealNearest(2.345, 2), 2.35);
        QCOMPARE(RealNearest(2.5, 0), 2.0);
        QCOMPARE(CheckZero(1e-10), 0.0);
        QCOMPARE(CheckZero(1e-8), 1e-8);
    }

    void money()
    {
        QCOMPARE(FormatValuta(1234567.891, 2), QStringLiteral("1.234.567,89"));
        QCOMPARE(FormatValuta(1234.5, 0), QStringLiteral("1.235"));
    }

    void percentages()
    {
        bool ok = false;
        QCOMPARE(TraduciPercentuale(QStringLiteral(" 12 "), QStringLiteral("5"), ok), 0.125);
        QVERIFY(ok);
        QCOMPARE(TraduciPercentuale(QString(), QString(), ok), 0.0);
        QVERIFY(ok);
        TraduciPercentuale(QStringLiteral("1x"), QStringLiteral("0"), ok);
        QVERIFY(!ok);
        // The comma is literal: with a "." decimal separator nothing reads.
        FormatSettings.DecimalSeparator = QLatin1Char('.');
        TraduciPercentuale(QStringLiteral("12"), QStringLiteral("5"), ok);
        QVERIFY(!ok);
    }
};

QTEST_GUILESS_MAIN(tst_Helpers)
#include "tst_helpers.moc"
