// Variant helpers over QVariant. The library keeps the framework's distinction between an
// unassigned variant (an invalid QVariant) and a Null one (a QVariant holding std::nullptr_t),
// and converts with the framework's EVariantError on values that do not convert.
#pragma once

#include "Currency.h"
#include "DateTime.h"
#include "mattoni_core_export.h"

#include <QVariant>

namespace mattoni {

MATTONI_CORE_EXPORT QVariant Null();
MATTONI_CORE_EXPORT QVariant Unassigned();

MATTONI_CORE_EXPORT bool VarIsNull(const QVariant &v);
MATTONI_CORE_EXPORT bool VarIsEmpty(const QVariant &v);
MATTONI_CORE_EXPORT bool VarIsClear(const QVariant &v);
MATTONI_CORE_EXPORT bool VarIsNumeric(const QVariant &v);
MATTONI_CORE_EXPORT bool VarIsStr(const QVariant &v);

// Null and unassigned give the empty text; numbers and dates are printed with the current
// format settings.
MATTONI_CORE_EXPORT QString VarToStr(const QVariant &v);
// Raise EVariantError "Could not convert variant of type (X) into type (Y)" when the value
// does not convert (Null, unassigned, or text that is not a number or date).
MATTONI_CORE_EXPORT double VarToFloat(const QVariant &v);
MATTONI_CORE_EXPORT qint64 VarToInt(const QVariant &v);
MATTONI_CORE_EXPORT bool VarToBool(const QVariant &v);
MATTONI_CORE_EXPORT Currency VarToCurr(const QVariant &v);
MATTONI_CORE_EXPORT TDateTime VarToDateTime(const QVariant &v);

// The type name used in conversion messages ("Null", "Empty", "String", "Double" ...).
MATTONI_CORE_EXPORT QString VarTypeName(const QVariant &v);

// Variants compare equal as the framework compares them: Null equals only Null, numbers by value,
// texts exactly.
MATTONI_CORE_EXPORT bool VarSameValue(const QVariant &a, const QVariant &b);

} // namespace mattoni
