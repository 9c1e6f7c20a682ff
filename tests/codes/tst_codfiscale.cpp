// Fiscal codes computed, checked and decoded; VAT numbers of Italy and the other member states.
#include "CodFiscale.h"
#include "DateTime.h"
#include "Exceptions.h"
#include "Formatting.h"

#include <QRandomGenerator>
#include <QSignalSpy>
#include <QtTest>

#include <memory>

using namespace mattoni;

namespace {

void fill(TCodiceFiscale &cf, const QString &cognome, const QString &nome, QChar sesso, const QString &data,
          const QString &belfiore)
{
    cf.setCognome(cognome);
    cf.setNome(nome);
    cf.setSesso(sesso);
    cf.setDataNascita(data);
    cf.setCodiceBelfiore(belfiore);
}

QString conversionError(const std::function<void()> &call)
{
    try {
        call();
    } catch (const EConvertError &e) {
        return e.Message();
    }
    return QStringLiteral("(no error)");
}

// The text in a heap block of exactly its length, with no terminator behind it, so that the
// sanitizer build reports any read past its end.
bool checkUnterminated(const QString &text)
{
    const auto block = std::make_unique<QChar[]>(text.size());
    std::copy(text.cbegin(), text.cend(), block.get());
    return CheckPartitaIva(QString::fromRawData(block.get(), text.size()));
}

} // namespace

class tst_CodFiscale : public QObject
{
    Q_OBJECT
private slots:
    void init() { FormatSettings = TFormatSettings::Italian(); }

    void get_data()
    {
        QTest::addColumn<QString>("cognome");
        QTest::addColumn<QString>("nome");
        QTest::addColumn<QChar>("sesso");
        QTest::addColumn<QString>("data");
        QTest::addColumn<QString>("belfiore");
        QTest::addColumn<QString>("expected");
        const QChar M(u'M'), F(u'F');
        QTest::newRow("man") << "Rossi" << "Mario" << M << "15/04/1985" << "H501" << "RSSMRA85D15H501T";
        QTest::newRow("woman: day plus 40") << "Bianchi" << "Anna" << F << "03/12/1990" << "F205" << "BNCNNA90T43F205Q";
        QTest::newRow("lower-case sex, two-digit year")
            << "Fo" << "Gianfranco" << QChar(u'm') << "01/01/07" << "A001" << "FOXGFR07A01A001U";
        QTest::newRow("lower-case input") << "rossi" << "mario" << M << "15/04/1985" << "h501" << "RSSMRA85D15H501T";
        QTest::newRow("any separator") << "Rossi" << "Mario" << M << "15-04-1985" << "H501" << "RSSMRA85D15H501T";
        QTest::newRow("any sex but F is male") << "Rossi" << "Mario" << QChar(u'X') << "15/04/1985" << "H501"
                                               << "RSSMRA85D15H501T";
        // Position 15 missing: worth what a "1" there is worth, nothing.
        QTest::newRow("short place code") << "Rossi" << "Mario" << M << "15/04/1985" << "H50" << "RSSMRA85D15H50T";
        QTest::newRow("no sex") << "Rossi" << "Mario" << QChar() << "15/04/1985" << "H501" << "";
        QTest::newRow("no surname") << "" << "Mario" << M << "15/04/1985" << "H501" << "";
        QTest::newRow("no name") << "Rossi" << "" << M << "15/04/1985" << "H501" << "";
        QTest::newRow("no date") << "Rossi" << "Mario" << M << "" << "H501" << "";
        QTest::newRow("no place") << "Rossi" << "Mario" << M << "15/04/1985" << "" << "";
    }
    void get()
    {
        QFETCH(QString, cognome);
        QFETCH(QString, nome);
        QFETCH(QChar, sesso);
        QFETCH(QString, data);
        QFETCH(QString, belfiore);
        QFETCH(QString, expected);
        TCodiceFiscale cf;
        fill(cf, cognome, nome, sesso, data, belfiore);
        QCOMPARE(cf.Get(), expected);
    }

    // The same text as surname and as name: the rules differ only from four consonants up.
    void letters_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("asSurname");
        QTest::addColumn<QString>("asName");
        QTest::newRow("four consonants") << "GIANFRANCO" << "GNF" << "GFR";
        QTest::newRow("three consonants") << "CARLO" << "CRL" << "CRL";
        QTest::newRow("two consonants") << "BOVA" << "BVO" << "BVO";
        QTest::newRow("two consonants no vowel") << "BB" << "BBX" << "BBX";
        QTest::newRow("one consonant") << "REA" << "REA" << "REA";
        QTest::newRow("one consonant one vowel") << "FO" << "FOX" << "FOX";
        QTest::newRow("vowels only") << "AIEO" << "AIE" << "AIE";
        QTest::newRow("one vowel") << "O" << "OXX" << "OXX";
        QTest::newRow("apostrophe skipped") << "D'ARCO" << "DRC" << "DRC";
        QTest::newRow("no letters") << "--" << "XXX" << "XXX";
        QTest::newRow("digit is a consonant") << "X1" << "X1X" << "X1X";
        QTest::newRow("accented letter skipped") << QString::fromUtf8("NICOLÒ") << "NCL" << "NCL";
        QTest::newRow("spaces skipped") << "DE LA CRUZ" << "DLC" << "DCR";
    }
    void letters()
    {
        QFETCH(QString, text);
        QFETCH(QString, asSurname);
        QFETCH(QString, asName);
        TCodiceFiscale cf;
        fill(cf, text, text, u'M', QStringLiteral("01/01/2000"), QStringLiteral("H501"));
        QCOMPARE(cf.Get().size(), 16);
        QCOMPARE(cf.CodCognome(), asSurname);
        QCOMPARE(cf.CodNome(), asName);
    }

    void dateParts_data()
    {
        QTest::addColumn<QChar>("sesso");
        QTest::addColumn<QString>("data");
        QTest::addColumn<QString>("giorno");
        QTest::addColumn<QChar>("mese");
        QTest::addColumn<QString>("anno");
        QTest::newRow("leading zero") << QChar(u'M') << "05/06/1985" << "05" << QChar(u'H') << "85";
        QTest::newRow("woman from 41") << QChar(u'F') << "01/07/1985" << "41" << QChar(u'L') << "85";
        QTest::newRow("woman up to 71") << QChar(u'F') << "31/08/1985" << "71" << QChar(u'M') << "85";
        QTest::newRow("two-digit year") << QChar(u'M') << "10/09/07" << "10" << QChar(u'P') << "07";
        QTest::newRow("nine characters") << QChar(u'M') << "10/10/198" << "10" << QChar(u'R') << "8";
        // The year is copied as text, never converted.
        QTest::newRow("year as text") << QChar(u'M') << "10/11/19XY" << "10" << QChar(u'S') << "XY";
        // A day beyond 99 keeps the first two characters of its digits.
        QTest::newRow("day cut to two characters") << QChar(u'F') << "99/01/1985" << "13" << QChar(u'A') << "85";
    }
    void dateParts()
    {
        QFETCH(QChar, sesso);
        QFETCH(QString, data);
        QFETCH(QString, giorno);
        QFETCH(QChar, mese);
        QFETCH(QString, anno);
        TCodiceFiscale cf;
        fill(cf, QStringLiteral("Rossi"), QStringLiteral("Mario"), sesso, data, QStringLiteral("H501"));
        const QString code = cf.Get();
        QCOMPARE(cf.CodGiorno(), giorno);
        QCOMPARE(cf.CarMese(), mese);
        QCOMPARE(cf.CodAnno(), anno);
        QCOMPARE(code.mid(6, anno.size() + 1 + giorno.size()), anno + mese + giorno);
    }

    void badDates_data()
    {
        QTest::addColumn<QString>("data");
        QTest::addColumn<QString>("message");
        QTest::addColumn<QString>("monthAndYear");
        QTest::newRow("month 13") << "15/13/1990" << "'15/13/1990' is not a valid date" << "D85";
        QTest::newRow("month 0") << "15/00/1990" << "'15/00/1990' is not a valid date" << "D85";
        QTest::newRow("negative month") << "15/-1/1990" << "'15/-1/1990' is not a valid date" << "D85";
        QTest::newRow("month not a number") << "15/AP/1990" << "'AP' is not a valid integer value" << "D85";
        QTest::newRow("no month") << "15" << "'' is not a valid integer value" << "D85";
        QTest::newRow("day not a number") << "xx/12/1990" << "'xx' is not a valid integer value" << "T90";
    }
    // The parts computed before the error keep their new values, the rest their old ones.
    void badDates()
    {
        QFETCH(QString, data);
        QFETCH(QString, message);
        QFETCH(QString, monthAndYear);
        TCodiceFiscale cf;
        fill(cf, QStringLiteral("Rossi"), QStringLiteral("Mario"), u'M', QStringLiteral("15/04/1985"),
             QStringLiteral("H501"));
        QCOMPARE(cf.Get(), QStringLiteral("RSSMRA85D15H501T"));
        cf.setCognome(QStringLiteral("Verdi"));
        cf.setDataNascita(data);
        QCOMPARE(conversionError([&] { cf.Get(); }), message);
        QCOMPARE(cf.CodCognome(), QStringLiteral("VRD"));
        QCOMPARE(cf.CarMese() + cf.CodAnno(), monthAndYear);
        QCOMPARE(cf.CodGiorno(), QStringLiteral("15"));
        QCOMPARE(cf.CarControllo(), QChar(u'T'));
    }

    void getUpperCasesInPlace()
    {
        TCodiceFiscale cf;
        QSignalSpy cognome(&cf, &TCodiceFiscale::CognomeChanged);
        QSignalSpy nome(&cf, &TCodiceFiscale::NomeChanged);
        QSignalSpy sesso(&cf, &TCodiceFiscale::SessoChanged);
        QSignalSpy belfiore(&cf, &TCodiceFiscale::CodiceBelfioreChanged);
        fill(cf, QString::fromUtf8("de' rossì"), QStringLiteral("MARIO"), u'f', QStringLiteral("15/04/1985"),
             QStringLiteral("h501"));
        cf.setDataNascita(QString());
        QCOMPARE(cf.Get(), QString()); // upper-cases even when it returns nothing
        QCOMPARE(cf.Cognome(), QString::fromUtf8("DE' ROSSì"));
        QCOMPARE(cf.Sesso(), QChar(u'F'));
        QCOMPARE(cf.CodiceBelfiore(), QStringLiteral("H501"));
        QCOMPARE(cognome.count(), 2);
        QCOMPARE(nome.count(), 1); // already upper case: no change to report
        QCOMPARE(sesso.count(), 2);
        QCOMPARE(belfiore.count(), 2);
        cf.setCognome(cf.Cognome());
        QCOMPARE(cognome.count(), 2);
    }

    void isCheckDigit_data()
    {
        QTest::addColumn<QString>("code");
        QTest::addColumn<bool>("expected");
        QTest::newRow("valid") << "RSSMRA85D15H501T" << true;
        QTest::newRow("valid woman") << "BNCNNA90T43F205Q" << true;
        QTest::newRow("wrong character") << "RSSMRA85D15H501U" << false;
        QTest::newRow("lower case") << "rssmra85d15h501t" << false;
        QTest::newRow("lower-case last") << "RSSMRA85D15H501t" << false;
        QTest::newRow("15 characters") << "RSSMRA85D15H501" << false;
        QTest::newRow("17 characters") << "RSSMRA85D15H501TT" << false;
        QTest::newRow("empty") << "" << false;
    }
    void isCheckDigit()
    {
        QFETCH(QString, code);
        QFETCH(bool, expected);
        QCOMPARE(TCodiceFiscale::IsCheckDigit(code), expected);
    }

    void decode_data()
    {
        QTest::addColumn<QString>("code");
        QTest::addColumn<QChar>("sesso");
        QTest::addColumn<QString>("data");
        QTest::addColumn<QString>("belfiore");
        QTest::newRow("man") << "RSSMRA85D15H501T" << QChar(u'M') << "15/04/1985" << "H501";
        QTest::newRow("woman") << "BNCNNA90T43F205Q" << QChar(u'F') << "03/12/1990" << "F205";
        QTest::newRow("always the 1900s") << "FOXGFR05A01A001U" << QChar(u'M') << "01/01/1905" << "A001";
        QTest::newRow("check character ignored") << "RSSMRA85D15H501" << QChar(u'M') << "15/04/1985" << "H501";
        QTest::newRow("short place") << "RSSMRA85D15H5" << QChar(u'M') << "15/04/1985" << "H5";
    }
    void decode()
    {
        QFETCH(QString, code);
        QFETCH(QChar, sesso);
        QFETCH(QString, data);
        QFETCH(QString, belfiore);
        TCodiceFiscale cf;
        cf.setCognome(QStringLiteral("Rossi"));
        cf.Decode(code);
        QCOMPARE(cf.Sesso(), sesso);
        QCOMPARE(cf.DataNascita(), data);
        QCOMPARE(cf.CodiceBelfiore(), belfiore);
        QCOMPARE(cf.Cognome(), QStringLiteral("Rossi"));
    }

    void decodeErrors_data()
    {
        QTest::addColumn<QString>("code");
        QTest::addColumn<QString>("message");
        QTest::addColumn<QChar>("sesso");
        QTest::newRow("letter in the year") << "RSSMRA8LD15H501T" << "'8L' is not a valid integer value" << QChar();
        QTest::newRow("letter in the day") << "RSSMRA85D1MH501T" << "'1M' is not a valid integer value" << QChar();
        QTest::newRow("too short") << "RSSMRA85D" << "'' is not a valid integer value" << QChar();
        // Sesso is set before the date is encoded.
        QTest::newRow("not a month letter") << "RSSMRA85Z15H501T" << "Invalid argument to date encode" << QChar(u'M');
        QTest::newRow("31 April") << "RSSMRA85D71H501T" << "Invalid argument to date encode" << QChar(u'F');
        QTest::newRow("29 February 2000 read as 1900") << "RSSMRA00B29H501U" << "Invalid argument to date encode"
                                                       << QChar(u'M');
    }
    void decodeErrors()
    {
        QFETCH(QString, code);
        QFETCH(QString, message);
        QFETCH(QChar, sesso);
        TCodiceFiscale cf;
        QCOMPARE(conversionError([&] { cf.Decode(code); }), message);
        QCOMPARE(cf.Sesso(), sesso);
        QCOMPARE(cf.DataNascita(), QString());
        QCOMPARE(cf.CodiceBelfiore(), QString());
    }

    // Generated persons: every computed code carries its own control character and decodes back
    // to sex, place and date, the year brought into the 1900s.
    void generatedPersons()
    {
        QRandomGenerator rng(20240611);
        const QString letters = QString::fromUtf8("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ' -àèòù0");
        const auto word = [&] {
            QString w;
            for (int n = 1 + rng.bounded(14); n > 0; --n)
                w += letters.at(rng.bounded(int(letters.size())));
            return w;
        };
        const QString sexes = QStringLiteral("MFmfX");
        const QString separators = QStringLiteral("/-.");
        TCodiceFiscale cf, decoded;
        for (int i = 0; i < 5000; ++i) {
            const int year = 1900 + rng.bounded(200);
            const int month = 1 + rng.bounded(12);
            // 29 February 2000 would decode as 1900, no leap year: see decodeErrors.
            const int day = 1 + rng.bounded(DaysInAMonth(year == 2000 ? 1900 : year, month));
            const QChar sep = separators.at(rng.bounded(3));
            const bool fullYear = rng.bounded(2) == 1;
            const auto digits = [](int value, int width) { return QStringLiteral("%1").arg(value, width, 10, QLatin1Char('0')); };
            const QString date = digits(day, 2) + sep + digits(month, 2) + sep
                                 + (fullYear ? digits(year, 4) : digits(year % 100, 2));
            const QChar sex = sexes.at(rng.bounded(int(sexes.size())));
            const QString place = QStringLiteral("%1%2").arg(QChar(u'a' + rng.bounded(26))).arg(rng.bounded(1000), 3, 10,
                                                                                              QLatin1Char('0'));
            fill(cf, word(), word(), sex, date, place);
            const QString code = cf.Get();
            QVERIFY2(code.size() == 16 && TCodiceFiscale::IsCheckDigit(code), qPrintable(code));
            decoded.Decode(code);
            QCOMPARE(decoded.Sesso(), sex.toUpper() == QLatin1Char('F') ? QChar(u'F') : QChar(u'M'));
            QCOMPARE(decoded.CodiceBelfiore(), place.toUpper());
            QCOMPARE(decoded.DataNascita(), DateToStr(EncodeDate(1900 + year % 100, month, day)));
        }
    }

    void checkPartitaIva_data()
    {
        QTest::addColumn<QString>("value");
        QTest::addColumn<bool>("expected");
        QTest::newRow("italian") << "01234567897" << true;
        QTest::newRow("IT prefix") << "IT01234567897" << true;
        QTest::newRow("trimmed, lower case") << " it01234567897 " << true;
        QTest::newRow("tab and newline trimmed") << "\tIT01234567897\n" << true;
        QTest::newRow("wrong check digit") << "01234567890" << false;
        QTest::newRow("letter") << "0123456789A" << false;
        QTest::newRow("check digit 3") << "12345678903" << true;
        QTest::newRow("zeros") << "00000000000" << true;
        QTest::newRow("AT ten characters") << "ATU123456789" << true;
        QTest::newRow("AT no U") << "AT1123456789" << false;
        QTest::newRow("BE") << "BE0123456789" << true;
        QTest::newRow("BE not 0") << "BE1123456789" << false;
        QTest::newRow("CY last anything") << "CY12345678-" << true;
        QTest::newRow("FR letters") << "FRab123456789" << true;
        QTest::newRow("FR symbol") << "FR-1123456789" << false;
        QTest::newRow("GB GD") << "GBGD123" << true;
        QTest::newRow("GB HA") << "GBHA999" << true;
        QTest::newRow("GB other pair") << "GBXX123" << false;
        QTest::newRow("GB pair and letter") << "GBGD12A" << false;
        QTest::newRow("IE") << "IE1A23456B" << true;
        QTest::newRow("IE star") << "IE1*23456B" << true;
        QTest::newRow("IE plus") << "IE1+23456B" << true;
        QTest::newRow("IE digit second") << "IE1234567T" << false;
        QTest::newRow("IE digit last") << "IE1A234567" << false;
        QTest::newRow("ES letter first") << "ESX1234567Z" << true;
        QTest::newRow("ES digit last") << "ESA12345678" << true;
        QTest::newRow("ES digits both ends") << "ES123456789" << false;
        QTest::newRow("ES letter inside") << "ESX12A4567Z" << false;
        QTest::newRow("NL") << "NL123456789B01" << true;
        QTest::newRow("NL no B") << "NL123456789C01" << false;
        QTest::newRow("RO letter") << "RO12A" << false;
        QTest::newRow("unknown prefix") << "XY12345678" << false;
        QTest::newRow("one character") << "A" << false;
        QTest::newRow("blank") << "   " << false;
        QTest::newRow("empty") << "" << false;
    }
    void checkPartitaIva()
    {
        QFETCH(QString, value);
        QFETCH(bool, expected);
        QCOMPARE(checkUnterminated(value), expected);
    }

    // One valid rest per country, cut to every shorter length ("DK", "AT" bare) and grown by a digit:
    // the result follows the lengths each country allows, and no rule reads past the end.
    void everyPrefixEveryLength_data()
    {
        QTest::addColumn<QString>("prefix");
        QTest::addColumn<QString>("rest");
        QTest::addColumn<QList<int>>("lengths");
        const auto row = [](const char *prefix, const char *rest, QList<int> lengths) {
            QTest::newRow(prefix) << QString::fromLatin1(prefix) << QString::fromLatin1(rest) << lengths;
        };
        row("AT", "U123456789", {10});
        row("BE", "0123456789", {10});
        row("BG", "1234567890", {9, 10});
        row("CY", "12345678X", {9});
        row("CZ", "1234567890", {8, 9, 10});
        row("DE", "123456789", {9});
        row("DK", "12345678", {8});
        row("EE", "123456789", {9});
        row("EL", "123456789", {9});
        row("ES", "X1234567Z", {9});
        row("FI", "12345678", {8});
        row("FR", "AB123456789", {11});
        row("GB", "123456789012", {9, 12});
        row("HU", "12345678", {8});
        row("IE", "1A23456B", {8});
        row("IT", "01234567897", {11});
        row("LV", "12345678901", {11});
        row("LT", "123456789012", {9, 12});
        row("LU", "12345678", {8});
        row("MT", "12345678", {8});
        row("NL", "123456789B01", {12});
        row("PL", "1234567890", {10});
        row("PT", "123456789", {9});
        row("RO", "123456789012345", {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16});
        row("SK", "1234567890", {10});
        row("SI", "12345678", {8});
        row("SE", "123456789012", {12});
    }
    void everyPrefixEveryLength()
    {
        QFETCH(QString, prefix);
        QFETCH(QString, rest);
        QFETCH(QList<int>, lengths);
        const QString full = rest + QLatin1Char('0');
        for (int n = 0; n <= full.size(); ++n) {
            const QString value = prefix + full.left(n);
            QVERIFY2(checkUnterminated(value) == lengths.contains(n), qPrintable(value));
            QVERIFY2(checkUnterminated(value.toLower()) == lengths.contains(n), qPrintable(value));
        }
    }

    void checkPIvaItaliana()
    {
        QVERIFY(CheckPIvaItaliana(QStringLiteral("01234567897")));
        QVERIFY(!CheckPIvaItaliana(QStringLiteral("IT01234567897")));
        QVERIFY(!CheckPIvaItaliana(QStringLiteral(" 01234567897")));
    }
};

QTEST_GUILESS_MAIN(tst_CodFiscale)
#include "tst_codfiscale.moc"
