// Text primitives with the framework's rules: trimming of blanks and control characters,
// ASCII-only case mapping, 1-based Pos/Copy, quoting for SQL.
#pragma once

#include "mattoni_core_export.h"

#include <QString>
#include <QStringList>

namespace mattoni {

// Remove characters with codes up to 32 (blanks and control characters).
MATTONI_CORE_EXPORT QString Trim(const QString &s);
MATTONI_CORE_EXPORT QString TrimLeft(const QString &s);
MATTONI_CORE_EXPORT QString TrimRight(const QString &s);

// Map only the ASCII letters; accented letters stay as they are.
MATTONI_CORE_EXPORT QString UpperCase(const QString &s);
MATTONI_CORE_EXPORT QString LowerCase(const QString &s);
MATTONI_CORE_EXPORT bool SameText(const QString &a, const QString &b);

// S in single quotes with every inner single quote doubled.
MATTONI_CORE_EXPORT QString QuotedStr(const QString &s);

// 1-based position of Sub in S, 0 when absent.
MATTONI_CORE_EXPORT int Pos(const QString &sub, const QString &s);
// Count characters of S from the 1-based Index; out-of-range parts are clipped, never an error.
MATTONI_CORE_EXPORT QString Copy(const QString &s, int index, int count);

MATTONI_CORE_EXPORT QString IntToStr(qint64 value);
MATTONI_CORE_EXPORT QString IntToHex(quint64 value, int digits);

// The file-name parts, with "/" as separator: the folder part keeps its trailing "/".
MATTONI_CORE_EXPORT QString ExtractFilePath(const QString &fileName);
MATTONI_CORE_EXPORT QString ExtractFileName(const QString &fileName);
MATTONI_CORE_EXPORT QString ExtractFileExt(const QString &fileName);
MATTONI_CORE_EXPORT QString ChangeFileExt(const QString &fileName, const QString &extension);
MATTONI_CORE_EXPORT QString IncludeTrailingPathDelimiter(const QString &path);
MATTONI_CORE_EXPORT QString ExcludeTrailingPathDelimiter(const QString &path);

// The next name of a ";"-separated list starting at the 1-based Pos, which moves past it.
MATTONI_CORE_EXPORT QString ExtractFieldName(const QString &fields, int &pos);

} // namespace mattoni
