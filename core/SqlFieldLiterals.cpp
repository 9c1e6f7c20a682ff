// SQL literal text of parameter and field values.
#include "SqlFieldLiterals.h"

#include "Fields.h"
#include "Formatting.h"
#include "Params.h"
#include "SqlLiterals.h"
#include "Strings.h"
#include "Variants.h"

namespace mattoni {

namespace {

// The type as the literal rules read it: the low seven bits of the field type.
int typeCode(TFieldType type)
{
    return int(type) & 0x7F;
}

QString withPoint(QString text)
{
    return text.replace(QLatin1Char(','), QLatin1Char('.'));
}

} // namespace

QString GetInsertStringField(const TParams &params, const QString &name)
{
    const TParam *p = params.FindParam(name);
    if (!p || p->IsNull())
        return QStringLiteral("NULL");
    switch (typeCode(p->DataType())) {
    case ftString:
    case ftWideString: {
        const QString text = Trim(p->AsString());
        return text.isEmpty() ? QStringLiteral("NULL") : QuotedStr(text);
    }
    case ftSmallint:
    case ftInteger:
    case ftWord:
        return p->AsString();
    case ftFloat:
    case ftBCD:
    case ftCurrency:
        return withPoint(p->AsString());
    case ftDate:
    case ftTime:
    case ftDateTime:
        return GetFormattedDate(p->AsDateTime());
    default:
        return QLatin1Char(':') + name;
    }
}

QString GetUpdateStringField(const TParams &params, const QString &name)
{
    const TParam *p = params.FindParam(name);
    if (!p)
        return QStringLiteral("NULL");
    const QString assign = name + QLatin1Char('=');
    if (p->IsNull())
        return assign + QStringLiteral("NULL");
    switch (typeCode(p->DataType())) {
    case ftString:
    case ftWideString: {
        const QString text = Trim(p->AsString());
        return assign + (text.isEmpty() ? QStringLiteral("NULL") : QuotedStr(text));
    }
    case ftSmallint:
    case ftInteger:
    case ftWord:
        return assign + p->AsString();
    case ftFloat:
    case ftBCD:
        return assign + withPoint(FloatToStr(p->AsFloat()));
    case ftCurrency:
        return assign + withPoint(CurrToStr(p->AsCurrency()));
    case ftDate:
    case ftTime:
    case ftDateTime:
    case ftTimeStamp:
        return assign + GetFormattedDate(p->AsDateTime());
    default: {
        const QVariant value = p->Value();
        const QString text = assign + QLatin1Char(':');
        if (VarIsStr(value))
            return text + VarToStr(value);
        // A variant sum with a number converts the text to a number, which "Name=:" never is.
        return VarToStr(VarToFloat(text) + VarToFloat(value));
    }
    }
}

QString GetSqlInsertFromField(const TField *field)
{
    if (field->IsNull())
        return QStringLiteral("NULL");
    switch (typeCode(field->DataType())) {
    case ftString:
    case ftWideString:
        return QuotedStr(field->AsString());
    case ftSmallint:
    case ftInteger:
        return field->AsString();
    case ftFloat:
    case ftBCD:
        return withPoint(FloatToStr(field->AsFloat()));
    case ftCurrency:
        return withPoint(FloatToStr(field->AsCurrency().ToDouble()));
    case ftDate:
    case ftTime:
    case ftDateTime:
        return GetFormattedDate(field->AsDateTime());
    default:
        return QLatin1Char(':') + field->FieldName();
    }
}

} // namespace mattoni
