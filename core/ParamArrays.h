// Parameter arrays: a variant array with one row per parameter, each row a list of the name
// (column 0) and the value (column 1); the "3D" functions use a third column, the data type
// (a TFieldType number). Names compare ignoring case.
#pragma once

#include "Currency.h"
#include "DB.h"
#include "mattoni_core_export.h"

#include <QString>
#include <QVariant>

namespace mattoni {

class TField;
class TParam;

// The row of Name, -1 when there is none.
MATTONI_CORE_EXPORT int ParamIndex(const QVariantList &params, const QString &name);
MATTONI_CORE_EXPORT int Param3DIndex(const QVariantList &params, const QString &name);
// The value of Name; Null when there is no such row.
MATTONI_CORE_EXPORT QVariant ParamValue(const QVariantList &params, const QString &name);
MATTONI_CORE_EXPORT QVariant Param3DValue(const QVariantList &params, const QString &name);
// The value of Name as money; 0 when missing or null.
MATTONI_CORE_EXPORT Currency ParamCurrency(const QVariantList &params, const QString &name);
// The data type of Name; ftUnknown when missing.
MATTONI_CORE_EXPORT TFieldType ParamDatatype(const QVariantList &params, const QString &name);

// Writers change the row of Name, or append one: [Name, Value] for the plain functions,
// [Name, Value, DataType] for the "3D" ones (a new row's type is the value's own).
MATTONI_CORE_EXPORT void SetParamValue(QVariantList &params, const QString &name, const QVariant &value);
MATTONI_CORE_EXPORT void SetParamCurrency(QVariantList &params, const QString &name, Currency value);
MATTONI_CORE_EXPORT void SetParam3DValue(QVariantList &params, const QString &name, const QVariant &value);
MATTONI_CORE_EXPORT void SetParam3DType(QVariantList &params, const QString &name, TFieldType dataType);
// Name, value and data type of a field or a parameter, as a "3D" row; a plain row of that name
// takes the value alone.
MATTONI_CORE_EXPORT void SetParamfromField(QVariantList &params, const TField *field);
MATTONI_CORE_EXPORT void SetParamfromParam(QVariantList &params, const TParam *param);
// For each row: the name, "[", the value as text, "]; ".
MATTONI_CORE_EXPORT QString GetParamString(const QVariantList &params);

} // namespace mattoni
