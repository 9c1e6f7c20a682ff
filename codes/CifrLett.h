// Numbers in Italian words: cardinals ("centoventitremilaquattrocentocinquantasei"), ordinals
// ("ventunesimo") and amounts in the cheque form ("dodici/50"). Errors come back as text in place
// of the result: "stringa nulla", "numero troppo grande", "caratteri illegali nella stringa".
#pragma once

#include "Currency.h"
#include "mattoni_core_export.h"

#include <QString>

#include <array>

namespace mattoni {

// The words of 0-19 and, at 21-28, the stems of the tens 20-90 (tens digit d at 19 + d) without
// their final vowel. 0 and 20 are empty.
inline constexpr std::array<QLatin1StringView, 29> LETTER{
    QLatin1StringView(""),         QLatin1StringView("uno"),         QLatin1StringView("due"),
    QLatin1StringView("tre"),      QLatin1StringView("quattro"),     QLatin1StringView("cinque"),
    QLatin1StringView("sei"),      QLatin1StringView("sette"),       QLatin1StringView("otto"),
    QLatin1StringView("nove"),     QLatin1StringView("dieci"),       QLatin1StringView("undici"),
    QLatin1StringView("dodici"),   QLatin1StringView("tredici"),     QLatin1StringView("quattordici"),
    QLatin1StringView("quindici"), QLatin1StringView("sedici"),      QLatin1StringView("diciassette"),
    QLatin1StringView("diciotto"), QLatin1StringView("diciannove"),  QLatin1StringView(""),
    QLatin1StringView("vent"),     QLatin1StringView("trent"),       QLatin1StringView("quarant"),
    QLatin1StringView("cinquant"), QLatin1StringView("sessant"),     QLatin1StringView("settant"),
    QLatin1StringView("ottant"),   QLatin1StringView("novant")};

inline constexpr std::array<QLatin1StringView, 11> ORDINAL{
    QLatin1StringView("nullo"),  QLatin1StringView("primo"),   QLatin1StringView("secondo"),
    QLatin1StringView("terzo"),  QLatin1StringView("quarto"),  QLatin1StringView("quinto"),
    QLatin1StringView("sesto"),  QLatin1StringView("settimo"), QLatin1StringView("ottavo"),
    QLatin1StringView("nono"),   QLatin1StringView("decimo")};

// The number in the text in words, words joined without spaces. The text may hold digits, "+",
// "-", "E", "e" and the current decimal separator, at most 12 characters; its value must stay
// below 999999999999. Leading zeros beyond the width of the number's group give "" ("0005").
// A text of legal characters that is no number ("1-2") raises StrToFloat's EConvertError.
// Negative numbers are not written as such: the "-" reads as a zero digit ("-12" is "dodici") and
// may push the text past its width ("-123" gives "").
MATTONI_CORE_EXPORT QString ci_to_let(const QString &Numero);
// "nullo" for "" and "0", the ordinal words for "1" to "10", otherwise the cardinal without its
// last letter followed by "esimo".
MATTONI_CORE_EXPORT QString ci_to_ord(const QString &Numero);
// The whole part in words, "/", the cents in two digits: "dodici/50", "0/05". Whole parts beyond
// 32 bits wrap around.
MATTONI_CORE_EXPORT QString CurrencyToText(Currency Importo);

// The building blocks of ci_to_let.
// The text left-padded with "0" to the width; a longer text comes back unchanged.
MATTONI_CORE_EXPORT QString pad_zeri(const QString &Testo, int Larghezza);
// Groups of exactly 3, 6, 9 or 12 characters in words. Every character counts as its digit, a
// non-digit (or a missing character) as 0.
MATTONI_CORE_EXPORT QString tre_cifre_to_let(const QString &S);
MATTONI_CORE_EXPORT QString sei_cifre_to_let(const QString &S);
MATTONI_CORE_EXPORT QString nove_cifre_to_let(const QString &S);
MATTONI_CORE_EXPORT QString dodici_cifre_to_let(const QString &S);

} // namespace mattoni
