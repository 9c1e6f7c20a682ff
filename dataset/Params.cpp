// Parameters.
#include "Params.h"

#include "Fields.h"
#include "Strings.h"
#include "Variants.h"

namespace mattoni {

using namespace DBConsts;

namespace {

bool isTextType(TFieldType t)
{
    return t == ftString || t == ftFixedChar || t == ftWideString || t == ftFixedWideChar || t == ftMemo
        || t == ftWideMemo || t == ftFmtMemo;
}

} // namespace

TParam::TParam(TParams *collection, TParamType paramType) : m_collection(collection), m_paramType(paramType) {}

bool TParam::IsNull() const
{
    return !m_value.isValid() || VarIsNull(m_value);
}

void TParam::Clear()
{
    m_value = Null();
}

void TParam::setValue(const QVariant &value)
{
    m_value = value;
    if (m_dataType == ftUnknown)
        m_dataType = VarTypeToDataType(value);
    m_bound = value.isValid();
}

void TParam::SetTyped(TFieldType type, const QVariant &value)
{
    m_dataType = type;
    m_value = value;
    m_bound = true;
}

QString TParam::AsString() const { return IsNull() ? QString() : VarToStr(m_value); }
qint32 TParam::AsInteger() const { return IsNull() ? 0 : qint32(VarToInt(m_value)); }
qint64 TParam::AsLargeInt() const { return IsNull() ? 0 : VarToInt(m_value); }
double TParam::AsFloat() const { return IsNull() ? 0.0 : VarToFloat(m_value); }
Currency TParam::AsCurrency() const { return IsNull() ? Currency() : VarToCurr(m_value); }
TDateTime TParam::AsDateTime() const { return IsNull() ? 0.0 : VarToDateTime(m_value); }
bool TParam::AsBoolean() const { return !IsNull() && VarToBool(m_value); }

QByteArray TParam::AsBlob() const
{
    if (IsNull())
        return QByteArray();
    return m_value.metaType().id() == QMetaType::QString ? m_value.toString().toLatin1() : m_value.toByteArray();
}

void TParam::setAsString(const QString &value)
{
    SetTyped(isTextType(m_dataType) ? m_dataType : ftString, value);
}

void TParam::setAsInteger(qint32 value) { SetTyped(ftInteger, value); }
void TParam::setAsSmallInt(qint32 value) { SetTyped(ftSmallint, value); }
void TParam::setAsWord(qint32 value) { SetTyped(ftWord, value); }
void TParam::setAsLargeInt(qint64 value) { SetTyped(ftLargeint, qlonglong(value)); }
void TParam::setAsFloat(double value) { SetTyped(ftFloat, value); }
void TParam::setAsCurrency(Currency value) { SetTyped(ftCurrency, QVariant::fromValue(value)); }
void TParam::setAsBCD(Currency value) { SetTyped(ftBCD, QVariant::fromValue(value)); }
void TParam::setAsDateTime(TDateTime value) { SetTyped(ftDateTime, DateTimeToQDateTime(value)); }
void TParam::setAsDate(TDateTime value) { SetTyped(ftDate, DateTimeToQDate(value)); }
void TParam::setAsTime(TDateTime value) { SetTyped(ftTime, DateTimeToQTime(value)); }
void TParam::setAsBoolean(bool value) { SetTyped(ftBoolean, value); }
void TParam::setAsMemo(const QString &value) { SetTyped(ftMemo, value); }
void TParam::setAsBlob(const QByteArray &value) { SetTyped(ftBlob, value); }

void TParam::AssignField(const TField *field)
{
    m_name = field->FieldName();
    AssignFieldValue(field, field->Value());
}

void TParam::AssignFieldValue(const TField *field, const QVariant &value)
{
    m_dataType = field->DataType();
    m_size = field->Size();
    m_value = value;
    m_bound = true;
}

void TParam::Assign(const TParam &source)
{
    m_name = source.m_name;
    m_dataType = source.m_dataType;
    m_paramType = source.m_paramType;
    m_size = source.m_size;
    m_precision = source.m_precision;
    m_numericScale = source.m_numericScale;
    m_bound = source.m_bound;
    m_value = source.m_value;
}

TParams::TParams() = default;
TParams::~TParams() = default;

TParam *TParams::AddParameter()
{
    m_items.push_back(std::make_unique<TParam>(this));
    return m_items.back().get();
}

TParam *TParams::CreateParam(TFieldType dataType, const QString &name, TParamType paramType)
{
    TParam *param = AddParameter();
    param->setName(name);
    param->setDataType(dataType);
    param->setParamType(paramType);
    return param;
}

TParam *TParams::FindParam(const QString &name) const
{
    for (const auto &p : m_items) {
        if (SameText(p->Name(), name))
            return p.get();
    }
    return nullptr;
}

TParam *TParams::ParamByName(const QString &name) const
{
    TParam *p = FindParam(name);
    if (!p)
        DatabaseErrorFmt(SParameterNotFound, {name});
    return p;
}

int TParams::IndexOf(const TParam *param) const
{
    for (int i = 0; i < Count(); ++i) {
        if (m_items[size_t(i)].get() == param)
            return i;
    }
    return -1;
}

void TParams::Delete(int index)
{
    m_items.erase(m_items.begin() + index);
}

void TParams::Clear()
{
    m_items.clear();
}

void TParams::Assign(const TParams &source)
{
    if (&source == this)
        return;
    m_items.clear();
    for (const auto &p : source.m_items)
        AddParameter()->Assign(*p);
}

void TParams::AssignValues(const TParams &source)
{
    for (const auto &p : source.m_items) {
        if (TParam *own = FindParam(p->Name())) {
            own->setDataType(p->DataType());
            own->setValue(p->Value());
        }
    }
}

QVariant TParams::ParamValues(const QString &names) const
{
    QVariantList values;
    int pos = 1;
    while (pos <= names.size())
        values.append(ParamByName(ExtractFieldName(names, pos))->Value());
    return values.size() == 1 ? values.first() : QVariant(values);
}

void TParams::setParamValues(const QString &names, const QVariant &values)
{
    QList<TParam *> params;
    int pos = 1;
    while (pos <= names.size())
        params.append(ParamByName(ExtractFieldName(names, pos)));
    if (params.size() == 1) {
        params.first()->setValue(values);
        return;
    }
    const QVariantList list = values.toList();
    for (int i = 0; i < params.size(); ++i)
        params[i]->setValue(i < list.size() ? list.at(i) : Null());
}

QString TParams::ParseSQL(const QString &sql, bool doCreate)
{
    QString result;
    result.reserve(sql.size());
    QChar quote;
    for (int i = 0; i < sql.size(); ++i) {
        const QChar c = sql.at(i);
        if (!quote.isNull()) {
            if (c == quote)
                quote = QChar();
            result += c;
            continue;
        }
        if (c == QLatin1Char('\'') || c == QLatin1Char('"')) {
            quote = c;
            result += c;
            continue;
        }
        if (c != QLatin1Char(':')) {
            result += c;
            continue;
        }
        if (i + 1 < sql.size() && sql.at(i + 1) == QLatin1Char(':')) {
            result += QLatin1Char(':');
            ++i;
            continue;
        }
        int end = i + 1;
        while (end < sql.size() && (sql.at(end).isLetterOrNumber() || sql.at(end) == QLatin1Char('_')))
            ++end;
        if (end == i + 1) {
            result += c;
            continue;
        }
        const QString name = sql.mid(i + 1, end - i - 1);
        if (doCreate && !FindParam(name))
            CreateParam(ftUnknown, name, ptInput);
        result += QLatin1Char('?');
        i = end - 1;
    }
    return result;
}

} // namespace mattoni
