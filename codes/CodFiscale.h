// The Italian personal fiscal code: computed from surname, name, sex, date and place of birth,
// checked by its control character, read back into sex, date and place. Beside it, the check of
// Italian and other European Union VAT numbers.
#pragma once

#include "mattoni_core_export.h"

#include <QChar>
#include <QObject>
#include <QString>

#include <array>

namespace mattoni {

// A set of Latin-1 characters; characters above 255 are never members.
class TCharSet
{
public:
    constexpr TCharSet() = default;

    static constexpr TCharSet Of(const char *members)
    {
        TCharSet s;
        for (; *members; ++members)
            s.add(static_cast<unsigned char>(*members));
        return s;
    }
    static constexpr TCharSet Range(char first, char last)
    {
        TCharSet s;
        for (int c = static_cast<unsigned char>(first); c <= static_cast<unsigned char>(last); ++c)
            s.add(c);
        return s;
    }

    constexpr TCharSet operator+(const TCharSet &other) const
    {
        TCharSet s;
        for (int i = 0; i < 4; ++i)
            s.m_bits[i] = m_bits[i] | other.m_bits[i];
        return s;
    }

    constexpr bool contains(char16_t c) const noexcept
    {
        return c < 256 && ((m_bits[c >> 6] >> (c & 63)) & 1u) != 0;
    }
    constexpr bool contains(QChar c) const noexcept { return contains(c.unicode()); }

private:
    constexpr void add(int c) { m_bits[c >> 6] |= quint64(1) << (c & 63); }

    std::array<quint64, 4> m_bits{};
};

// The month letters, January first: month m is mesi[m - 1].
inline constexpr QLatin1StringView mesi("ABCDEHLMPRST");
inline constexpr TCharSet vocali = TCharSet::Of("AEIOU");
// Digits are members on purpose: a digit inside a surname or name counts as a consonant.
inline constexpr TCharSet car_dc = TCharSet::Range('0', '9') + TCharSet::Range('A', 'Z');
// The characters a code is made of, in the order of the two value tables below.
inline constexpr QLatin1StringView car_pc("0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ");
// Value of each car_pc character in an even position of the code.
inline constexpr std::array<int, 36> car_pn{
    0, 1, 2, 3, 4, 5, 6, 7, 8, 9,
    0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24, 25};
// Value of each car_pc character in an odd position; a digit is worth as much as the letter of
// the same rank.
inline constexpr std::array<int, 36> car_dn{
    1, 0, 5, 7, 9, 13, 15, 17, 19, 21,
    1, 0, 5, 7, 9, 13, 15, 17, 19, 21, 2, 4, 18, 20, 11, 3, 6, 8, 12, 14, 16, 10, 22, 25, 24, 23};
// Kept for applications that use it; nothing in this unit reads it.
inline constexpr QLatin1StringView car_pi("0123456789");

// Computes, checks and decodes fiscal codes. The published properties are plain fields: setting
// them computes nothing; Get() does the work and upper-cases them in place.
class MATTONI_CORE_EXPORT TCodiceFiscale : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString Cognome READ Cognome WRITE setCognome NOTIFY CognomeChanged)
    Q_PROPERTY(QString Nome READ Nome WRITE setNome NOTIFY NomeChanged)
    Q_PROPERTY(QChar Sesso READ Sesso WRITE setSesso NOTIFY SessoChanged)
    Q_PROPERTY(QString DataNascita READ DataNascita WRITE setDataNascita NOTIFY DataNascitaChanged)
    Q_PROPERTY(QString CodiceBelfiore READ CodiceBelfiore WRITE setCodiceBelfiore NOTIFY CodiceBelfioreChanged)

public:
    explicit TCodiceFiscale(QObject *parent = nullptr);
    ~TCodiceFiscale() override;

    QString Cognome() const { return m_cognome; }
    void setCognome(const QString &value);
    QString Nome() const { return m_nome; }
    void setNome(const QString &value);
    // "F" for a woman, any other character for a man; the zero character means not set.
    QChar Sesso() const { return m_sesso; }
    void setSesso(QChar value);
    // "DD/MM/YYYY" or "DD/MM/YY", with any single separator character.
    QString DataNascita() const { return m_dataNascita; }
    void setDataNascita(const QString &value);
    // The four-character cadastral code of the municipality or foreign state of birth.
    QString CodiceBelfiore() const { return m_codiceBelfiore; }
    void setCodiceBelfiore(const QString &value);

    // The parts of the code, as the last Elab_ steps left them.
    QString CodCognome() const { return m_codCognome.toString(); }
    QString CodNome() const { return m_codNome.toString(); }
    QString CodGiorno() const { return m_codGiorno.toString(); }
    QChar CarMese() const { return m_carMese; }
    QString CodAnno() const { return m_codAnno.toString(); }
    QChar CarControllo() const { return m_carControllo; }

    // The code, or "" when surname, name, date, place or sex is missing. Upper-cases (ASCII
    // letters only) surname, name, sex and place code in place first, even when it returns "".
    // A non-numeric day, month or year raises EConvertError "'%s' is not a valid integer
    // value"; a month outside 1-12 raises EConvertError "'%s' is not a valid date" with the
    // whole date text. Parts computed before the error keep their new values.
    QString Get();
    // Sets Sesso, DataNascita (short date format, always in the 1900s) and CodiceBelfiore from a
    // code, leaving Cognome and Nome alone. Neither length nor control character is verified.
    // Non-numeric year or day raise EConvertError; so does an impossible date, after Sesso
    // has been set.
    void Decode(const QString &Codice);
    // True when the code has 16 characters and the last is the control character of the first
    // 15. Lower-case letters are not accepted: callers pass codes in upper case.
    static bool IsCheckDigit(const QString &Codice);

    // The three steps of Get, in its order; each reads the fields as they stand.
    void Elab_Cognome_nome();
    void Elab_Data_Sesso();
    void Elab_CheckDigit();

Q_SIGNALS:
    void CognomeChanged();
    void NomeChanged();
    void SessoChanged();
    void DataNascitaChanged();
    void CodiceBelfioreChanged();

private:
    // A part of the code: at most N characters, longer texts are cut.
    template<int N>
    struct Part
    {
        std::array<QChar, N> chars{};
        qsizetype size = 0;

        void assign(const QChar *text, qsizetype length)
        {
            size = length < N ? length : N;
            for (qsizetype i = 0; i < size; ++i)
                chars[i] = text[i];
        }
        QString toString() const { return QString(chars.data(), size); }
    };

    QString m_cognome;
    Part<3> m_codCognome;
    QString m_nome;
    Part<3> m_codNome;
    QChar m_sesso;
    QString m_dataNascita;
    Part<2> m_codGiorno;
    QChar m_carMese;
    Part<2> m_codAnno;
    QString m_codiceBelfiore;
    QChar m_carControllo;
};

// True for a well-formed VAT number: an Italian partita IVA with its check digit, with or without
// the "IT" prefix, or the number of another member state checked by length and character classes.
// Blanks and control characters around the text are ignored, and so is the case of letters.
MATTONI_CORE_EXPORT bool CheckPartitaIva(const QString &Value);
// True for exactly eleven digits whose last is the check digit of the first ten.
MATTONI_CORE_EXPORT bool CheckPIvaItaliana(const QString &Value);

} // namespace mattoni
