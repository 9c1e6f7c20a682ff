// Numbers, ordinals and amounts written in Italian words.
#include "CifrLett.h"
#include "Exceptions.h"
#include "FormatSettings.h"

#include <QtTest>

using namespace mattoni;

class tst_CifrLett : public QObject
{
    Q_OBJECT
private slots:
    void init() { FormatSettings = TFormatSettings::Italian(); }

    void ciToLet_data()
    {
        QTest::addColumn<QString>("number");
        QTest::addColumn<QString>("expected");
        const auto row = [](const char *number, const char *expected) {
            QTest::newRow(number) << QString::fromLatin1(number) << QString::fromLatin1(expected);
        };
        row("1", "uno");
        row("17", "diciassette");
        row("20", "venti");
        row("21", "ventuno");
        row("23", "ventitre");
        row("28", "ventotto");
        row("30", "trenta");
        row("31", "trentuno");
        row("38", "trentotto");
        row("88", "ottantotto");
        row("99", "novantanove");
        row("100", "cento");
        row("101", "centouno");
        row("108", "centootto");
        row("111", "centoundici");
        row("180", "centoottanta");
        row("200", "duecento");
        row("999", "novecentonovantanove");
        row("1000", "mille");
        row("1001", "milleuno");
        row("1100", "millecento");
        row("2000", "duemila");
        row("2021", "duemilaventuno");
        row("21000", "ventunomila");
        row("100000", "centomila");
        row("123456", "centoventitremilaquattrocentocinquantasei");
        row("1000000", "unmilione");
        row("1001000", "unmilionemille");
        row("2000000", "duemilioni");
        row("1000000000", "unmiliardo");
        row("2500000000", "duemiliardicinquecentomilioni");
        row("999999999998",
            "novecentonovantanovemiliardinovecentonovantanovemilioninovecentonovantanovemilanovecentonovantotto");
        row("0", "zero");
        row("00", "zero");
        row("007", "sette");
        row("0005", "");
        row("000000000001", "miliardiuno");
        // Characters that are no digits count as zeros in their group.
        row("-12", "dodici");
        row("-123", "");
        row("1E3", "centotre");
        row("1,5", "centocinque");
        row("", "stringa nulla");
        row("999999999999", "numero troppo grande");
        row("1234567890123", "numero troppo grande");
        row("9E20", "numero troppo grande");
        row("12a", "caratteri illegali nella stringa");
        row("1.5", "caratteri illegali nella stringa");
        row("1 2", "caratteri illegali nella stringa");
    }
    void ciToLet()
    {
        QFETCH(QString, number);
        QFETCH(QString, expected);
        QCOMPARE(ci_to_let(number), expected);
    }

    void decimalSeparatorIsTheCurrentOne()
    {
        FormatSettings.DecimalSeparator = QLatin1Char('.');
        QCOMPARE(ci_to_let(QStringLiteral("1.5")), QStringLiteral("centocinque"));
        QCOMPARE(ci_to_let(QStringLiteral("1,5")), QStringLiteral("caratteri illegali nella stringa"));
    }

    void malformedNumberRaises()
    {
        QVERIFY_THROWS_EXCEPTION(EConvertError, ci_to_let(QStringLiteral("1-2")));
        QVERIFY_THROWS_EXCEPTION(EConvertError, ci_to_let(QStringLiteral("E")));
    }

    // Every three-digit group is written in lower-case letters, and only 000 is silent.
    void everyGroup()
    {
        for (int n = 0; n < 1000; ++n) {
            const QString group = QStringLiteral("%1").arg(n, 3, 10, QLatin1Char('0'));
            const QString words = tre_cifre_to_let(group);
            QVERIFY2(words.isEmpty() == (n == 0), qPrintable(group));
            for (QChar c : words)
                QVERIFY2(c >= QLatin1Char('a') && c <= QLatin1Char('z'), qPrintable(group + QLatin1Char(' ') + words));
        }
    }

    void groups()
    {
        QCOMPARE(dodici_cifre_to_let(QStringLiteral("000000000000")), QStringLiteral("miliardi"));
        QCOMPARE(nove_cifre_to_let(QStringLiteral("000000000")), QString());
        QCOMPARE(sei_cifre_to_let(QStringLiteral("001001")), QStringLiteral("milleuno"));
        QCOMPARE(tre_cifre_to_let(QStringLiteral("1")), QStringLiteral("cento")); // missing digits are zeros
        QCOMPARE(pad_zeri(QStringLiteral("5"), 3), QStringLiteral("005"));
        QCOMPARE(pad_zeri(QStringLiteral("12345"), 3), QStringLiteral("12345"));
    }

    void ciToOrd_data()
    {
        QTest::addColumn<QString>("number");
        QTest::addColumn<QString>("expected");
        const auto row = [](const char *number, const char *expected) {
            QTest::newRow(*number ? number : "empty") << QString::fromLatin1(number) << QString::fromLatin1(expected);
        };
        row("", "nullo");
        row("0", "nullo");
        row("1", "primo");
        row("7", "settimo");
        row("10", "decimo");
        row("11", "undicesimo");
        row("20", "ventesimo");
        row("21", "ventunesimo");
        row("23", "ventitresimo");
        row("26", "ventiseesimo");
        row("100", "centesimo");
        row("1000", "millesimo");
        row("1000000", "unmilionesimo");
        row("01", "unesimo"); // only the exact texts "1" to "10" are looked up
        row("12a", "caratteri illegali nella stringesimo");
    }
    void ciToOrd()
    {
        QFETCH(QString, number);
        QFETCH(QString, expected);
        QCOMPARE(ci_to_ord(number), expected);
    }

    void currencyToText_data()
    {
        QTest::addColumn<Currency>("amount");
        QTest::addColumn<QString>("expected");
        QTest::newRow("cents") << Currency(12.50) << "dodici/50";
        QTest::newRow("whole") << Currency(12) << "dodici/00";
        QTest::newRow("cents only") << Currency(0.05) << "0/05";
        QTest::newRow("nothing") << Currency(0) << "0/00";
        QTest::newRow("odd cents") << Currency(123.45) << "centoventitre/45";
        QTest::newRow("large") << Currency(2500000.99) << "duemilionicinquecentomila/99";
        QTest::newRow("half cent rounds up") << Currency(0.995) << "0/100";
        QTest::newRow("negative: no cents") << Currency(-12.50) << "dodici/00";
        QTest::newRow("wraps at 32 bits") << Currency(qint64(4294967297)) << "uno/00";
    }
    void currencyToText()
    {
        QFETCH(Currency, amount);
        QFETCH(QString, expected);
        QCOMPARE(CurrencyToText(amount), expected);
    }
};

QTEST_GUILESS_MAIN(tst_CifrLett)
#include "tst_cifrlett.moc"
