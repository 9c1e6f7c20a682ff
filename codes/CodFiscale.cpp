// The Italian personal fiscal code and the check of VAT numbers.
#include "CodFiscale.h"

#include "Exceptions.h"
#include "Formatting.h"
#include "Strings.h"

#include <algorithm>
#include <string_view>

namespace mattoni {

namespace {

// ---------------------------------------------------------------- fiscal code

enum LetterClass : quint8 { Other, Vowel, Consonant };

// The two sets folded into one lookup, so that classifying a letter costs one load.
constexpr std::array<quint8, 256> letterClass = [] {
    std::array<quint8, 256> table{};
    for (char16_t c = 0; c < 256; ++c)
        table[c] = vocali.contains(c) ? Vowel : car_dc.contains(c) ? Consonant : Other;
    return table;
}();

// car_pn and car_dn indexed by the character itself; characters outside car_pc are worth nothing.
struct PositionValues
{
    std::array<quint8, 256> odd{};
    std::array<quint8, 256> even{};
};
constexpr PositionValues positionValues = [] {
    PositionValues values;
    for (qsizetype i = 0; i < car_pc.size(); ++i) {
        const auto c = static_cast<unsigned char>(car_pc.data()[i]);
        values.odd[c] = quint8(car_dn[i]);
        values.even[c] = quint8(car_pn[i]);
    }
    return values;
}();

constexpr qsizetype CheckedLength = 15;

// The control character of the first 15 characters; a shorter text counts as padded with
// characters worth nothing.
QChar controlCharacter(const QChar *text, qsizetype length)
{
    const qsizetype n = std::min(length, CheckedLength);
    int sum = 0;
    for (qsizetype i = 0; i < n; ++i) {
        const char16_t c = text[i].unicode();
        if (c < 256)
            sum += i % 2 == 0 ? positionValues.odd[c] : positionValues.even[c];
    }
    return QChar(u'A' + sum % 26);
}

// The first consonants and vowels of a surname or name, in order of appearance, and how many
// there are in all.
struct Letters
{
    std::array<QChar, 4> consonants;
    std::array<QChar, 3> vowels;
    qsizetype consonantCount = 0;
    qsizetype vowelCount = 0;
};

Letters classify(const QString &text)
{
    Letters letters;
    for (const QChar ch : text) {
        const char16_t c = ch.unicode();
        if (c >= 256)
            continue;
        if (letterClass[c] == Consonant) {
            if (letters.consonantCount < qsizetype(letters.consonants.size()))
                letters.consonants[letters.consonantCount] = ch;
            ++letters.consonantCount;
        } else if (letterClass[c] == Vowel) {
            if (letters.vowelCount < qsizetype(letters.vowels.size()))
                letters.vowels[letters.vowelCount] = ch;
            ++letters.vowelCount;
        }
    }
    return letters;
}

// Consonants first, then vowels, then "X" up to three characters: the surname rule, and the name
// rule below four consonants.
std::array<QChar, 3> consonantsThenVowels(const Letters &letters)
{
    std::array<QChar, 3> part;
    qsizetype k = 0;
    for (qsizetype i = 0; i < std::min<qsizetype>(letters.consonantCount, 3); ++i)
        part[k++] = letters.consonants[i];
    for (qsizetype i = 0; k < 3 && i < std::min<qsizetype>(letters.vowelCount, 3); ++i)
        part[k++] = letters.vowels[i];
    while (k < 3)
        part[k++] = QLatin1Char('X');
    return part;
}

bool isDigit(char16_t c)
{
    return c >= u'0' && c <= u'9';
}

// StrToInt of the count characters at the 1-based index, clipped to the text. Plain digits are
// read directly; anything else goes through StrToInt, with its leniency and its errors.
int intAt(const QString &text, qsizetype index, qsizetype count)
{
    const QStringView piece = QStringView(text).mid(index - 1, count);
    int value = 0;
    for (const QChar c : piece) {
        if (!isDigit(c.unicode()))
            return StrToInt(piece.toString());
        value = value * 10 + (c.unicode() - u'0');
    }
    return piece.isEmpty() ? StrToInt(QString()) : value;
}

// Upper-cases the ASCII letters of the text; text without any is left alone, without a copy.
bool upperCaseInPlace(QString &text)
{
    const bool hasLower = std::any_of(text.cbegin(), text.cend(), [](QChar c) {
        return c.unicode() >= u'a' && c.unicode() <= u'z';
    });
    if (hasLower)
        text = UpperCase(text);
    return hasLower;
}

template<typename T>
bool assign(T &field, const T &value)
{
    if (field == value)
        return false;
    field = value;
    return true;
}

} // namespace

TCodiceFiscale::TCodiceFiscale(QObject *parent)
    : QObject(parent)
{
}

TCodiceFiscale::~TCodiceFiscale() = default;

void TCodiceFiscale::setCognome(const QString &value)
{
    if (assign(m_cognome, value))
        Q_EMIT CognomeChanged();
}

void TCodiceFiscale::setNome(const QString &value)
{
    if (assign(m_nome, value))
        Q_EMIT NomeChanged();
}

void TCodiceFiscale::setSesso(QChar value)
{
    if (assign(m_sesso, value))
        Q_EMIT SessoChanged();
}

void TCodiceFiscale::setDataNascita(const QString &value)
{
    if (assign(m_dataNascita, value))
        Q_EMIT DataNascitaChanged();
}

void TCodiceFiscale::setCodiceBelfiore(const QString &value)
{
    if (assign(m_codiceBelfiore, value))
        Q_EMIT CodiceBelfioreChanged();
}

void TCodiceFiscale::Elab_Cognome_nome()
{
    const std::array<QChar, 3> surname = consonantsThenVowels(classify(m_cognome));
    m_codCognome.assign(surname.data(), surname.size());

    const Letters name = classify(m_nome);
    const std::array<QChar, 3> given = name.consonantCount >= 4
                                           ? std::array<QChar, 3>{name.consonants[0], name.consonants[2], name.consonants[3]}
                                           : consonantsThenVowels(name);
    m_codNome.assign(given.data(), given.size());
}

void TCodiceFiscale::Elab_Data_Sesso()
{
    const int month = intAt(m_dataNascita, 4, 2);
    // The month letter comes from a table of twelve: any other month makes the date invalid.
    if (month < 1 || month > 12)
        throw EConvertError(QStringLiteral("'%1' is not a valid date").arg(m_dataNascita));
    m_carMese = mesi[month - 1];

    const QStringView year = QStringView(m_dataNascita).mid(m_dataNascita.size() >= 9 ? 8 : 6, 2);
    m_codAnno.assign(year.data(), year.size());

    int day = intAt(m_dataNascita, 1, 2);
    if (m_sesso == QLatin1Char('F'))
        day += 40;
    if (day >= 0 && day <= 99) {
        const QChar digits[2] = {QChar(u'0' + day / 10), QChar(u'0' + day % 10)};
        m_codGiorno.assign(digits, 2);
    } else {
        // Written as "0" + digits below 10, then cut to the two characters of the part: a negative
        // day or one above 99 leaves its first two characters.
        const QString text = (day < 10 ? QStringLiteral("0") : QString()) + IntToStr(day);
        m_codGiorno.assign(text.constData(), text.size());
    }
}

void TCodiceFiscale::Elab_CheckDigit()
{
    std::array<QChar, CheckedLength> text{};
    qsizetype n = 0;
    const auto put = [&](const QChar *chars, qsizetype count) {
        for (qsizetype i = 0; i < count && n < CheckedLength; ++i)
            text[n++] = chars[i];
    };
    put(m_codCognome.chars.data(), m_codCognome.size);
    put(m_codNome.chars.data(), m_codNome.size);
    put(m_codAnno.chars.data(), m_codAnno.size);
    put(&m_carMese, 1);
    put(m_codGiorno.chars.data(), m_codGiorno.size);
    put(m_codiceBelfiore.constData(), m_codiceBelfiore.size());
    m_carControllo = controlCharacter(text.data(), n);
}

QString TCodiceFiscale::Get()
{
    const bool cognome = upperCaseInPlace(m_cognome);
    const bool nome = upperCaseInPlace(m_nome);
    const bool belfiore = upperCaseInPlace(m_codiceBelfiore);
    const bool sesso = m_sesso.unicode() >= u'a' && m_sesso.unicode() <= u'z';
    if (sesso)
        m_sesso = UpperCase(QString(m_sesso)).at(0);
    if (cognome)
        Q_EMIT CognomeChanged();
    if (nome)
        Q_EMIT NomeChanged();
    if (sesso)
        Q_EMIT SessoChanged();
    if (belfiore)
        Q_EMIT CodiceBelfioreChanged();

    if (m_cognome.isEmpty() || m_nome.isEmpty() || m_dataNascita.isEmpty() || m_codiceBelfiore.isEmpty()
        || m_sesso.isNull())
        return QString();

    Elab_Cognome_nome();
    Elab_Data_Sesso();
    Elab_CheckDigit();

    QString code(m_codCognome.size + m_codNome.size + m_codAnno.size + 1 + m_codGiorno.size
                     + m_codiceBelfiore.size() + 1,
                 Qt::Uninitialized);
    QChar *out = code.data();
    const auto put = [&out](const QChar *chars, qsizetype count) { out = std::copy_n(chars, count, out); };
    put(m_codCognome.chars.data(), m_codCognome.size);
    put(m_codNome.chars.data(), m_codNome.size);
    put(m_codAnno.chars.data(), m_codAnno.size);
    *out++ = m_carMese;
    put(m_codGiorno.chars.data(), m_codGiorno.size);
    put(m_codiceBelfiore.constData(), m_codiceBelfiore.size());
    *out = m_carControllo;
    return code;
}

void TCodiceFiscale::Decode(const QString &Codice)
{
    // Always the 1900s, by design: "05" is 1905.
    const int year = 1900 + intAt(Codice, 7, 2);
    // A character that is no month letter, or none at all, gives month 0 and so an invalid date.
    const int month = Codice.size() >= 9 ? int(mesi.indexOf(Codice.at(8))) + 1 : 0;
    int day = intAt(Codice, 10, 2);
    if (day >= 40) {
        setSesso(QLatin1Char('F'));
        day -= 40;
    } else {
        setSesso(QLatin1Char('M'));
    }
    setDataNascita(DateToStr(EncodeDate(year, month, day)));
    setCodiceBelfiore(Copy(Codice, 12, 4));
}

bool TCodiceFiscale::IsCheckDigit(const QString &Codice)
{
    return Codice.size() == CheckedLength + 1
           && controlCharacter(Codice.constData(), CheckedLength) == Codice.at(CheckedLength);
}

// ---------------------------------------------------------------- VAT numbers

namespace {

char16_t upperAscii(QChar c)
{
    const char16_t u = c.unicode();
    return u >= u'a' && u <= u'z' ? char16_t(u - 32) : u;
}

bool isLetter(char16_t c)
{
    return c >= u'A' && c <= u'Z';
}

bool allDigits(QStringView rest)
{
    return std::all_of(rest.begin(), rest.end(), [](QChar c) { return isDigit(c.unicode()); });
}

bool digitsOfLength(QStringView rest, std::initializer_list<qsizetype> lengths)
{
    return std::find(lengths.begin(), lengths.end(), rest.size()) != lengths.end() && allDigits(rest);
}

// The rest compared with a pattern of its exact length: "d" a digit, "a" a letter, "x" a digit or
// a letter, "i" "*", "+" or a letter, "?" anything; other pattern characters stand for themselves.
bool matches(QStringView rest, std::string_view pattern)
{
    if (rest.size() != qsizetype(pattern.size()))
        return false;
    for (qsizetype i = 0; i < rest.size(); ++i) {
        const char16_t c = upperAscii(rest[i]);
        bool ok;
        switch (pattern[i]) {
        case 'd': ok = isDigit(c); break;
        case 'a': ok = isLetter(c); break;
        case 'x': ok = isDigit(c) || isLetter(c); break;
        case 'i': ok = c == u'*' || c == u'+' || isLetter(c); break;
        case '?': ok = true; break;
        default: ok = c == char16_t(pattern[i]); break;
        }
        if (!ok)
            return false;
    }
    return true;
}

bool italian(QStringView number)
{
    if (number.size() != 11 || !allDigits(number))
        return false;
    const auto digit = [number](qsizetype i) { return int(number[i].unicode() - u'0'); };
    int sum = 0;
    for (qsizetype i = 0; i < 10; i += 2)
        sum += digit(i);
    for (qsizetype i = 1; i < 10; i += 2) {
        const int twice = 2 * digit(i);
        sum += twice > 9 ? twice - 9 : twice;
    }
    const int check = (10 - sum % 10) % 10;
    return digit(10) == check;
}

struct VatCountry
{
    char prefix[3];
    bool (*rule)(QStringView rest);
};

// Every rule tests the length first, so none reads past the end of the rest.
constexpr VatCountry vatCountries[] = {
    // "U" and nine digits: ten characters, on purpose.
    {"AT", [](QStringView r) { return matches(r, "Uddddddddd"); }},
    {"BE", [](QStringView r) { return matches(r, "0ddddddddd"); }},
    {"BG", [](QStringView r) { return digitsOfLength(r, {9, 10}); }},
    {"CY", [](QStringView r) { return matches(r, "dddddddd?"); }},
    {"CZ", [](QStringView r) { return digitsOfLength(r, {8, 9, 10}); }},
    {"DE", [](QStringView r) { return digitsOfLength(r, {9}); }},
    {"DK", [](QStringView r) { return digitsOfLength(r, {8}); }},
    {"EE", [](QStringView r) { return digitsOfLength(r, {9}); }},
    {"EL", [](QStringView r) { return digitsOfLength(r, {9}); }},
    {"ES", [](QStringView r) {
         return matches(r, "?ddddddd?") && !(isDigit(r[0].unicode()) && isDigit(r[8].unicode()));
     }},
    {"FI", [](QStringView r) { return digitsOfLength(r, {8}); }},
    {"FR", [](QStringView r) { return matches(r, "xxddddddddd"); }},
    {"GB", [](QStringView r) {
         if (r.size() != 5)
             return digitsOfLength(r, {9, 12});
         const char16_t a = upperAscii(r[0]), b = upperAscii(r[1]);
         return ((a == u'G' && b == u'D') || (a == u'H' && b == u'A')) && allDigits(r.sliced(2));
     }},
    {"HU", [](QStringView r) { return digitsOfLength(r, {8}); }},
    // A digit in the second position is refused, as intended.
    {"IE", [](QStringView r) { return matches(r, "diddddda"); }},
    {"IT", [](QStringView r) { return italian(r); }},
    {"LV", [](QStringView r) { return digitsOfLength(r, {11}); }},
    {"LT", [](QStringView r) { return digitsOfLength(r, {9, 12}); }},
    {"LU", [](QStringView r) { return digitsOfLength(r, {8}); }},
    {"MT", [](QStringView r) { return digitsOfLength(r, {8}); }},
    {"NL", [](QStringView r) { return matches(r, "dddddddddBdd"); }},
    {"PL", [](QStringView r) { return digitsOfLength(r, {10}); }},
    {"PT", [](QStringView r) { return digitsOfLength(r, {9}); }},
    // No length test: any run of digits passes, the empty one included, on purpose.
    {"RO", [](QStringView r) { return allDigits(r); }},
    {"SK", [](QStringView r) { return digitsOfLength(r, {10}); }},
    {"SI", [](QStringView r) { return digitsOfLength(r, {8}); }},
    {"SE", [](QStringView r) { return digitsOfLength(r, {12}); }},
};

} // namespace

bool CheckPartitaIva(const QString &Value)
{
    // Trimmed as Trim does (codes up to 32), on a view rather than a copy.
    QStringView s(Value);
    while (!s.isEmpty() && s.front().unicode() <= 32)
        s = s.sliced(1);
    while (!s.isEmpty() && s.back().unicode() <= 32)
        s.chop(1);
    if (s.size() >= 2) {
        const char16_t a = upperAscii(s[0]), b = upperAscii(s[1]);
        for (const VatCountry &country : vatCountries) {
            if (a == char16_t(country.prefix[0]) && b == char16_t(country.prefix[1]))
                return country.rule(s.sliced(2));
        }
    }
    // Without a known prefix the number is taken as Italian.
    return italian(s);
}

bool CheckPIvaItaliana(const QString &Value)
{
    return italian(Value);
}

} // namespace mattoni
