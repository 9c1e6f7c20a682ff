// Parameter arrays.
#include "ParamArrays.h"

#include "Fields.h"
#include "Params.h"
#include "Strings.h"
#include "Variants.h"

namespace mattoni {

namespace {

QVariant cell(const QVariantList &params, int row, int column)
{
    const QVariantList r = params.at(row).toList();
    return column < r.size() ? r.at(column) : QVariant();
}

void setCell(QVariantList &params, int row, int column, const QVariant &value)
{
    QVariantList r = params.at(row).toList();
    while (r.size() <= column)
        r.append(Null());
    r[column] = value;
    params[row] = r;
}

// The row of Name, appended as [Name, Null] or [Name, Null, ftUnknown] when missing.
int rowFor(QVariantList &params, const QString &name, int columns)
{
    int row = ParamIndex(params, name);
    if (row < 0) {
        QVariantList r{name, Null()};
        if (columns == 3)
            r.append(int(ftUnknown));
        params.append(QVariant(r));
        row = int(params.size()) - 1;
    }
    return row;
}

void setThreeColumns(QVariantList &params, const QString &name, const QVariant &value, TFieldType type)
{
    const int existing = ParamIndex(params, name);
    const int row = rowFor(params, name, 3);
    setCell(params, row, 1, value);
    if (existing < 0 || params.at(row).toList().size() >= 3)
        setCell(params, row, 2, int(type));
}

} // namespace

int ParamIndex(const QVariantList &params, const QString &name)
{
    for (int i = 0; i < params.size(); ++i) {
        if (SameText(cell(params, i, 0).toString(), name))
            return i;
    }
    return -1;
}

int Param3DIndex(const QVariantList &params, const QString &name)
{
    return ParamIndex(params, name);
}

QVariant ParamValue(const QVariantList &params, const QString &name)
{
    const int row = ParamIndex(params, name);
    return row < 0 ? Null() : cell(params, row, 1);
}

QVariant Param3DValue(const QVariantList &params, const QString &name)
{
    return ParamValue(params, name);
}

Currency ParamCurrency(const QVariantList &params, const QString &name)
{
    const QVariant v = ParamValue(params, name);
    return !v.isValid() || VarIsNull(v) ? Currency() : VarToCurr(v);
}

TFieldType ParamDatatype(const QVariantList &params, const QString &name)
{
    const int row = ParamIndex(params, name);
    if (row < 0)
        return ftUnknown;
    const QVariant v = cell(params, row, 2);
    return v.isValid() && !VarIsNull(v) ? TFieldType(v.toInt()) : ftUnknown;
}

void SetParamValue(QVariantList &params, const QString &name, const QVariant &value)
{
    setCell(params, rowFor(params, name, 2), 1, value);
}

void SetParamCurrency(QVariantList &params, const QString &name, Currency value)
{
    SetParamValue(params, name, QVariant::fromValue(value));
}

void SetParam3DValue(QVariantList &params, const QString &name, const QVariant &value)
{
    const bool existing = ParamIndex(params, name) >= 0;
    const int row = rowFor(params, name, 3);
    setCell(params, row, 1, value);
    if (!existing)
        setCell(params, row, 2, int(VarTypeToDataType(value)));
}

void SetParam3DType(QVariantList &params, const QString &name, TFieldType dataType)
{
    setCell(params, rowFor(params, name, 3), 2, int(dataType));
}

void SetParamfromField(QVariantList &params, const TField *field)
{
    setThreeColumns(params, field->FieldName(), field->Value(), field->DataType());
}

void SetParamfromParam(QVariantList &params, const TParam *param)
{
    setThreeColumns(params, param->Name(), param->Value(), param->DataType());
}

QString GetParamString(const QVariantList &params)
{
    QString text;
    for (int i = 0; i < params.size(); ++i)
        text += cell(params, i, 0).toString() + QLatin1Char('[') + VarToStr(cell(params, i, 1)) + QStringLiteral("]; ");
    return text;
}

} // namespace mattoni
