// Numbers in Italian words.
#include "CifrLett.h"

#include "FormatSettings.h"
#include "Formatting.h"
#include "Strings.h"

#include <algorithm>

namespace mattoni {

namespace {

const QString NullString = QStringLiteral("stringa nulla");
const QString TooBig = QStringLiteral("numero troppo grande");
const QString IllegalCharacters = QStringLiteral("caratteri illegali nella stringa");

// The digit at a 0-based position; a non-digit, or a position past the end, reads as 0.
int digitAt(QStringView s, qsizetype i)
{
    if (i >= s.size())
        return 0;
    const char16_t c = s[i].unicode();
    return c >= u'0' && c <= u'9' ? c - u'0' : 0;
}

// The value of the first three characters, read the same way.
int leadingGroup(QStringView s)
{
    return digitAt(s, 0) * 100 + digitAt(s, 1) * 10 + digitAt(s, 2);
}

void threeDigits(QStringView s, QString &out)
{
    const int hundreds = digitAt(s, 0);
    const int tens = digitAt(s, 1);
    const int units = digitAt(s, 2);
    if (hundreds >= 2)
        out += LETTER[hundreds];
    // "cento" keeps its "o" before a vowel, by design: 101 is "centouno", 180 "centoottanta".
    if (hundreds >= 1)
        out += QLatin1StringView("cento");
    if (tens * 10 + units <= 19) {
        out += LETTER[tens * 10 + units];
        return;
    }
    out += LETTER[19 + tens];
    // Before "uno" and "otto" the tens lose their vowel: "ventuno", "novantotto".
    if (units != 1 && units != 8)
        out += QLatin1Char(tens == 2 ? 'i' : 'a');
    out += LETTER[units];
}

// The words of a group of thousands, millions or billions: for one, and after a count of two or
// more.
struct Scale
{
    QLatin1StringView one;
    QLatin1StringView many;
    bool silentWhenNone;
};

// Indexed by the number of three-digit groups below the leading one.
constexpr Scale Scales[] = {
    {},
    {QLatin1StringView("mille"), QLatin1StringView("mila"), true},
    {QLatin1StringView("unmilione"), QLatin1StringView("milioni"), true},
    // No billions still writes the word: "000000000001" is "miliardiuno". Kept on purpose.
    {QLatin1StringView("unmiliardo"), QLatin1StringView("miliardi"), false},
};

// A text of 3 * (lower + 1) digits: the leading group with its scale word, then the lower groups.
void digitGroups(QStringView s, int lower, QString &out)
{
    if (lower == 0) {
        threeDigits(s, out);
        return;
    }
    const Scale &scale = Scales[lower];
    const int count = leadingGroup(s);
    if (count == 1) {
        out += scale.one;
    } else if (count >= 2 || !scale.silentWhenNone) {
        threeDigits(s, out);
        out += scale.many;
    }
    digitGroups(s.mid(3, 3 * lower), lower - 1, out);
}

// Room for the longest number written, so that the words are assembled in one allocation.
constexpr qsizetype WordsCapacity = 160;

QString words(QStringView s, int lower)
{
    QString out;
    out.reserve(WordsCapacity);
    digitGroups(s, lower, out);
    return out;
}

bool isLegal(QChar c, QChar decimalSeparator)
{
    return (c >= QLatin1Char('0') && c <= QLatin1Char('9')) || c == QLatin1Char('+') || c == QLatin1Char('-')
           || c == QLatin1Char('E') || c == QLatin1Char('e') || c == decimalSeparator;
}

} // namespace

QString pad_zeri(const QString &Testo, int Larghezza)
{
    return Testo.size() >= Larghezza ? Testo : QString(Larghezza - Testo.size(), QLatin1Char('0')) + Testo;
}

QString tre_cifre_to_let(const QString &S)
{
    return words(S, 0);
}

QString sei_cifre_to_let(const QString &S)
{
    return words(S, 1);
}

QString nove_cifre_to_let(const QString &S)
{
    return words(S, 2);
}

QString dodici_cifre_to_let(const QString &S)
{
    return words(S, 3);
}

QString ci_to_let(const QString &Numero)
{
    if (Numero.isEmpty())
        return NullString;
    if (Numero.size() > 12)
        return TooBig;
    const QChar decimalSeparator = FormatSettings.DecimalSeparator;
    if (!std::all_of(Numero.cbegin(), Numero.cend(), [=](QChar c) { return isLegal(c, decimalSeparator); }))
        return IllegalCharacters;

    const double value = StrToFloat(Numero);
    if (value == 0)
        return QStringLiteral("zero");
    int width;
    if (value < 1e3)
        width = 3;
    else if (value < 1e6)
        width = 6;
    else if (value < 1e9)
        width = 9;
    else if (value < 999999999999.0) // strictly: 999999999999 itself is refused, on purpose
        width = 12;
    else
        return TooBig;

    // The group routine is chosen by the padded length: a text already longer than its width
    // (leading zeros, a sign) matches none and gives "".
    const QString padded = pad_zeri(Numero, width);
    if (padded.size() % 3 != 0)
        return QString();
    return words(padded, int(padded.size() / 3) - 1);
}

QString ci_to_ord(const QString &Numero)
{
    static constexpr std::array<QLatin1StringView, 11> Small{
        QLatin1StringView("0"), QLatin1StringView("1"), QLatin1StringView("2"), QLatin1StringView("3"),
        QLatin1StringView("4"), QLatin1StringView("5"), QLatin1StringView("6"), QLatin1StringView("7"),
        QLatin1StringView("8"), QLatin1StringView("9"), QLatin1StringView("10")};
    if (Numero.isEmpty())
        return ORDINAL[0];
    const auto small = std::find(Small.begin(), Small.end(), Numero);
    if (small != Small.end())
        return ORDINAL[small - Small.begin()];
    // The last letter goes whatever it is: "ventitresimo", "ventiseesimo", error texts alike.
    QString word = ci_to_let(Numero);
    word.chop(1);
    return word + QLatin1StringView("esimo");
}

QString CurrencyToText(Currency Importo)
{
    const qint64 raw = Importo.Raw();
    // The whole part is kept in 32 bits, as it always was: larger amounts wrap around.
    const auto whole = qint32(raw / Currency::Scale);
    // Same sign as the amount: negative cents are written as none.
    const qint64 fraction = raw % Currency::Scale;
    const QString cents = fraction > 0 ? FormatFloat(QStringLiteral("00"), double(fraction) / 100.0)
                                       : QStringLiteral("00");
    const QString units = whole != 0 ? ci_to_let(IntToStr(whole)) : QStringLiteral("0");
    return units + QLatin1Char('/') + cents;
}

} // namespace mattoni
