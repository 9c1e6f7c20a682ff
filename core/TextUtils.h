// Text helpers of the applications: fixed-width fields, "key=value;" item strings, edit masks.
// Each keeps its exact rule, rough edges included: callers depend on them.
#pragma once

#include "mattoni_core_export.h"

#include <QChar>
#include <QString>
#include <QStringList>

namespace mattoni {

// Len below 1: empty. When the trimmed S is shorter than Len: fill characters, then the trimmed
// S. Otherwise the first Len characters of S as passed, not trimmed ("  12" to 2 gives "  ").
MATTONI_CORE_EXPORT QString HeadFillChars(const QString &s, QChar ch, int len);
// As HeadFillChars, the fill going after the trimmed S.
MATTONI_CORE_EXPORT QString TailFillChars(const QString &s, QChar ch, int len);
// S zero-padded to N; a longer S keeps N characters counted back from the end of its trimmed length.
MATTONI_CORE_EXPORT QString LeadingZeroes(const QString &s, int n);
// Deletes all leading "0" characters ("000" becomes empty).
MATTONI_CORE_EXPORT void TrimZero(QString &s);

// The trimmed text after the first Item + "=" found anywhere in S (case-sensitive, so "A" finds
// the "A=" inside "XA=") up to the next ";"; empty when not found.
MATTONI_CORE_EXPORT QString ExtractItemValue(const QString &s, const QString &item);
// S with the value of Item replaced; when Item + "=" is not in S, S unchanged (nothing is added).
MATTONI_CORE_EXPORT QString ModifyItemValue(const QString &s, const QString &item, const QString &value);

// The lines joined with ";".
MATTONI_CORE_EXPORT QString StringsToText(const QStringList &list);
// S split at ";" into the list (which is cleared first); a final ";" makes no empty item.
MATTONI_CORE_EXPORT void TextToStrings(const QString &s, QStringList &list);
// The same, "name=value" items split into the names and the values lists.
MATTONI_CORE_EXPORT void TextToStrings(const QString &s, QStringList &names, QStringList &values);

// Keeps the digits, "-" and the decimal separator in order and converts the rest with StrToInt
// (EConvertError when it is not an integer); an empty rest is 0.
MATTONI_CORE_EXPORT qint32 StringValueToInt(const QString &s);
MATTONI_CORE_EXPORT QString IntValueToStr(quint32 value);
// S with each edit-mask placeholder (0 9 A C L a c) preceded by "\", so a mask shows it literally.
MATTONI_CORE_EXPORT QString CreaMask(const QString &s);

} // namespace mattoni
