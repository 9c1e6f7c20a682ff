// SQL literal text of parameter and field values, for the VALUES list of an INSERT and the SET
// list of an UPDATE written by hand. Dates go through GetFormattedDate, so they follow the
// dialect of TipoDatabase.
#pragma once

#include "mattoni_core_export.h"

#include <QString>

namespace mattoni {

class TField;
class TParams;

// The value of parameter Name in an INSERT: "NULL" for a missing or null parameter and for a
// blank text; texts trimmed and quoted; integers as they are; floats, BCD and currency with "."
// for decimals; dates, times and date-times as the date literal (the INSERT form carries the date
// only, on purpose); any other type ":" + Name, left to the query's own binding.
MATTONI_CORE_EXPORT QString GetInsertStringField(const TParams &params, const QString &name);
// The assignment of parameter Name in an UPDATE: Name + "=" + the value as above, Name + "=NULL"
// for a null parameter or a blank text, and plain "NULL" for a missing one (no name in front:
// kept as the applications expect it). Floats and BCD print with FloatToStr, currency with
// CurrToStr. Other types give Name + "=:" joined to the value as a variant sum does: texts
// concatenate, numbers raise EVariantError.
MATTONI_CORE_EXPORT QString GetUpdateStringField(const TParams &params, const QString &name);
// A field's value in an INSERT: "NULL" when null; texts quoted as they are (an empty text stays
// ''); small integers and integers as they are; floats, BCD and currency with "."; dates as the
// date literal; any other type (word and Boolean included) ":" + the field name.
MATTONI_CORE_EXPORT QString GetSqlInsertFromField(const TField *field);

} // namespace mattoni
