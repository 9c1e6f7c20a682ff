// Fields: the typed views of one column of a dataset's current record.
#include "Fields.h"

#include "DataSet.h"
#include "Exceptions.h"
#include "Formatting.h"
#include "Strings.h"
#include "Variants.h"

#include <cmath>

namespace mattoni {

using namespace DBConsts;

namespace {

// The framework rounds half to even when a float becomes an integer.
qint64 roundEven(double value)
{
    return qint64(std::nearbyint(value));
}

bool isNullValue(const QVariant &v)
{
    return !v.isValid() || VarIsNull(v);
}

// FloatToStr at Precision significant digits (15 gives FloatToStr itself).
QString generalFloat(double value, int precision)
{
    if (precision >= 15 || value == 0 || !std::isfinite(value))
        return FloatToStr(value);
    return FloatToStr(QString::number(value, 'g', precision).toDouble());
}

// Money as shown: grouped with two decimals, then the currency string.
QString currencyText(double value, bool displayText)
{
    if (!displayText)
        return FormatFloat(QStringLiteral("0.00"), value);
    return FormatFloat(QStringLiteral("#,##0.00"), value) + QLatin1Char(' ') + FormatSettings.CurrencyString;
}

} // namespace

// ---------------------------------------------------------------------------------------------
// TFields

TFields::TFields(TDataSet *dataSet, TObjectField *parent) : m_dataSet(dataSet), m_parent(parent) {}

TFields::~TFields()
{
    Clear();
}

TField *TFields::FindField(const QString &fieldName) const
{
    for (TField *f : m_list) {
        if (SameText(f->FieldName(), fieldName))
            return f;
    }
    return nullptr;
}

TField *TFields::FieldByName(const QString &fieldName) const
{
    TField *f = FindField(fieldName);
    if (!f)
        DatabaseErrorFmt(SFieldNotFound, {fieldName}, m_dataSet);
    return f;
}

void TFields::Clear()
{
    while (!m_list.isEmpty())
        delete m_list.last();
}

TDataSet *TFields::OwnerDataSet() const
{
    return m_parent ? m_parent->DataSet() : m_dataSet;
}

void TFields::Add(TField *field)
{
    if (!field->FieldName().isEmpty() && FindField(field->FieldName()))
        DatabaseErrorFmt(SDuplicateFieldName, {field->FieldName()}, OwnerDataSet());
    m_list.append(field);
    field->m_parentField = m_parent;
    field->SetDataSetPointer(OwnerDataSet());
    if (TDataSet *ds = OwnerDataSet())
        ds->FieldListChanged();
}

void TFields::Remove(TField *field)
{
    m_list.removeOne(field);
    TDataSet *ds = OwnerDataSet();
    field->m_parentField = nullptr;
    field->SetDataSetPointer(nullptr);
    if (ds)
        ds->FieldListChanged();
}

// ---------------------------------------------------------------------------------------------
// TField

TField::TField(TFieldType dataType, QObject *owner) : QObject(owner), m_dataType(dataType) {}

TField::~TField()
{
    TDataSet *dataSet = m_dataSet;
    DetachFromList();
    if (dataSet) {
        // A dataset never keeps running with one of its fields gone.
        try {
            dataSet->Close();
        } catch (...) {
        }
    }
}

void TField::DetachFromList()
{
    if (m_parentField)
        m_parentField->m_fields.Remove(this);
    else if (m_dataSet)
        m_dataSet->m_fields.Remove(this);
}

void TField::SetDataSetPointer(TDataSet *dataSet)
{
    m_dataSet = dataSet;
    if (auto *object = qobject_cast<TObjectField *>(this)) {
        for (TField *child : object->Fields())
            child->SetDataSetPointer(dataSet);
    }
}

void TField::setDataSet(TDataSet *dataSet)
{
    if (dataSet == m_dataSet && !m_parentField)
        return;
    if (m_dataSet)
        m_dataSet->CheckInactive();
    if (dataSet) {
        dataSet->CheckInactive();
        if (!m_fieldName.isEmpty() && dataSet->Fields().FindField(m_fieldName))
            DatabaseErrorFmt(SDuplicateFieldName, {m_fieldName}, dataSet);
    }
    DetachFromList();
    if (dataSet)
        dataSet->m_fields.Add(this);
}

void TField::setParentField(TObjectField *parent)
{
    if (parent == m_parentField)
        return;
    if (m_dataSet)
        m_dataSet->CheckInactive();
    if (parent && parent->DataSet())
        parent->DataSet()->CheckInactive();
    if (parent && !m_fieldName.isEmpty() && parent->Fields().FindField(m_fieldName))
        DatabaseErrorFmt(SDuplicateFieldName, {m_fieldName}, parent->DataSet());
    DetachFromList();
    if (parent)
        parent->m_fields.Add(this);
}

void TField::setFieldName(const QString &name)
{
    if (name == m_fieldName)
        return;
    if (m_dataSet) {
        m_dataSet->CheckInactive();
        const TFields &list = m_parentField ? m_parentField->Fields() : m_dataSet->Fields();
        TField *other = list.FindField(name);
        if (other && other != this)
            DatabaseErrorFmt(SDuplicateFieldName, {name}, m_dataSet);
    }
    m_fieldName = name;
    if (m_dataSet)
        m_dataSet->FieldListChanged();
}

QString TField::FullName() const
{
    if (!m_parentField)
        return m_fieldName;
    if (m_parentField->DataType() == ftArray)
        return m_parentField->FullName() + QLatin1Char('[') + QString::number(Index()) + QLatin1Char(']');
    return m_parentField->FullName() + QLatin1Char('.') + m_fieldName;
}

void TField::setFieldKind(TFieldKind kind)
{
    if (kind == m_fieldKind)
        return;
    if (m_dataSet)
        m_dataSet->CheckInactive();
    m_fieldKind = kind;
}

void TField::setSize(int size)
{
    if (size == m_size)
        return;
    if (m_dataSet)
        m_dataSet->CheckInactive();
    m_size = size;
}

void TField::setVisible(bool value)
{
    if (value == m_visible)
        return;
    m_visible = value;
    PropertyChanged(true);
}

void TField::setDisplayLabel(const QString &label)
{
    const QString stored = label == m_fieldName ? QString() : label;
    if (stored == m_displayLabel)
        return;
    m_displayLabel = stored;
    PropertyChanged(true);
}

void TField::setDisplayWidth(int width)
{
    if (width == m_displayWidth)
        return;
    m_displayWidth = width;
    PropertyChanged(true);
}

void TField::setAlignment(Qt::Alignment alignment)
{
    if (alignment == m_alignment)
        return;
    m_alignment = alignment;
    PropertyChanged(false);
}

int TField::Index() const
{
    if (m_parentField)
        return m_parentField->Fields().IndexOf(this);
    return m_dataSet ? m_dataSet->Fields().IndexOf(this) : -1;
}

bool TField::CanModify() const
{
    if (m_readOnly || !m_dataSet || !m_dataSet->CanModify())
        return false;
    if (m_dataType == ftADT || m_dataType == ftArray)
        return true;
    return m_fieldNo > 0;
}

void TField::setLookupDataSet(TDataSet *dataSet)
{
    if (dataSet == m_lookupDataSet)
        return;
    if (m_dataSet)
        m_dataSet->CheckInactive();
    disconnect(m_lookupWatch);
    m_lookupDataSet = dataSet;
    if (dataSet)
        m_lookupWatch = connect(dataSet, &QObject::destroyed, this, [this] { m_lookupDataSet = nullptr; });
}

bool TField::IsNull() const
{
    if (const auto *object = qobject_cast<const TObjectField *>(this)) {
        for (const TField *child : object->Fields()) {
            if (!child->IsNull())
                return false;
        }
        return true;
    }
    return isNullValue(GetData());
}

void TField::Clear()
{
    if (auto *object = qobject_cast<TObjectField *>(this)) {
        for (TField *child : object->Fields())
            child->Clear();
        return;
    }
    SetData(Null());
}

QVariant TField::Value() const
{
    const QVariant v = GetData();
    return isNullValue(v) ? Null() : v;
}

void TField::setValue(const QVariant &value)
{
    if (isNullValue(value))
        Clear();
    else
        SetData(value);
}

QString TField::AsString() const
{
    return ClassDesc();
}

void TField::setAsString(const QString &) { AccessError("String"); }
qint32 TField::AsInteger() const { AccessError("Integer"); }
void TField::setAsInteger(qint32) { AccessError("Integer"); }
qint64 TField::AsLargeInt() const { AccessError("LargeInt"); }
void TField::setAsLargeInt(qint64) { AccessError("LargeInt"); }
double TField::AsFloat() const { AccessError("Float"); }
void TField::setAsFloat(double) { AccessError("Float"); }
Currency TField::AsCurrency() const { AccessError("Currency"); }
void TField::setAsCurrency(Currency) { AccessError("Currency"); }
TDateTime TField::AsDateTime() const { AccessError("DateTime"); }
void TField::setAsDateTime(TDateTime) { AccessError("DateTime"); }
bool TField::AsBoolean() const { AccessError("Boolean"); }
void TField::setAsBoolean(bool) { AccessError("Boolean"); }
QByteArray TField::AsBytes() const { AccessError("Bytes"); }
void TField::setAsBytes(const QByteArray &) { AccessError("Bytes"); }

QString TField::Text() const
{
    QString text;
    if (OnGetText)
        OnGetText(const_cast<TField *>(this), text, false);
    else
        GetText(text, false);
    return text;
}

void TField::setText(const QString &text)
{
    if (OnSetText)
        OnSetText(this, text);
    else
        SetText(text);
}

QString TField::DisplayText() const
{
    QString text;
    if (OnGetText)
        OnGetText(const_cast<TField *>(this), text, true);
    else
        GetText(text, true);
    return text;
}

void TField::FocusControl()
{
    if (!m_dataSet || !m_dataSet->Active())
        return;
    TField *field = this;
    m_dataSet->DataEvent(deFocusControl, qintptr(&field));
}

QVariant TField::GetData() const
{
    if (m_proposed)
        return *m_proposed;
    if (!m_dataSet)
        return Null();
    return m_dataSet->GetFieldData(this);
}

void TField::SetData(const QVariant &value)
{
    if (!m_dataSet)
        DatabaseErrorFmt(SNotEditing, {});
    m_dataSet->SetFieldData(this, value);
}

void TField::GetText(QString &text, bool) const
{
    text = AsString();
}

void TField::SetText(const QString &text)
{
    setAsString(text);
}

bool TField::ClearIfNull(const QVariant &value)
{
    if (!isNullValue(value))
        return false;
    Clear();
    return true;
}

bool TField::NullText(QString &text) const
{
    if (!IsNull())
        return false;
    text.clear();
    return true;
}

void TField::SetBytesValue(const QVariant &value)
{
    if (ClearIfNull(value))
        return;
    // Text arrives as Latin-1 bytes; anything else as the bytes it holds.
    if (VarIsStr(value) && value.metaType().id() != QMetaType::QByteArray)
        setAsString(value.toString());
    else
        setAsBytes(value.toByteArray());
}

QString TField::ClassDesc() const
{
    QString name = QString::fromLatin1(metaObject()->className());
    name = name.mid(name.lastIndexOf(QLatin1Char(':')) + 1);
    if (name.startsWith(QLatin1Char('T')))
        name.remove(0, 1);
    if (name.endsWith(QLatin1String("Field")))
        name.chop(5);
    return QLatin1Char('(') + (IsNull() ? name.toLower() : name.toUpper()) + QLatin1Char(')');
}

void TField::AccessError(const char *typeName) const
{
    DatabaseErrorFmt(SFieldAccessError, {DisplayName(), QString::fromLatin1(typeName)});
}

void TField::PropertyChanged(bool layoutAffected)
{
    if (m_dataSet && m_dataSet->Active())
        m_dataSet->DataEvent(layoutAffected ? deLayoutChange : deDataSetChange);
}

// ---------------------------------------------------------------------------------------------
// Text fields

TStringField::TStringField(TFieldType dataType, QObject *owner) : TField(dataType, owner)
{
    m_size = dataType == ftGuid ? 38 : 20;
}

void TStringField::setFixedChar(bool value)
{
    const bool wide = m_dataType == ftWideString || m_dataType == ftFixedWideChar;
    if (m_dataType == ftGuid || value == FixedChar())
        return;
    m_dataType = value ? (wide ? ftFixedWideChar : ftFixedChar) : (wide ? ftWideString : ftString);
}

void TStringField::setValue(const QVariant &value)
{
    if (!ClearIfNull(value))
        setAsString(VarToStr(value));
}

QString TStringField::AsString() const { return DataOr<QString>(QString()); }

void TStringField::setAsString(const QString &value)
{
    SetData(m_size > 0 && value.size() > m_size ? value.left(m_size) : value);
}

qint32 TStringField::AsInteger() const { return StrToInt(AsString()); }
void TStringField::setAsInteger(qint32 value) { setAsString(IntToStr(value)); }
qint64 TStringField::AsLargeInt() const { return StrToInt64(AsString()); }
void TStringField::setAsLargeInt(qint64 value) { setAsString(IntToStr(value)); }
double TStringField::AsFloat() const { return StrToFloat(AsString()); }
void TStringField::setAsFloat(double value) { setAsString(FloatToStr(value)); }
Currency TStringField::AsCurrency() const { return StrToCurr(AsString()); }
TDateTime TStringField::AsDateTime() const { return StrToDateTime(AsString()); }
void TStringField::setAsDateTime(TDateTime value) { setAsString(DateTimeToStr(value)); }

bool TStringField::AsBoolean() const
{
    const QString s = AsString();
    return !s.isEmpty() && QStringLiteral("TtYy").contains(s.at(0));
}

void TStringField::setAsBoolean(bool value)
{
    setAsString(value ? QStringLiteral("T") : QStringLiteral("F"));
}

TGuidField::TGuidField(QObject *owner) : TStringField(ftGuid, owner) {}

// ---------------------------------------------------------------------------------------------
// Numbers

TNumericField::TNumericField(TFieldType dataType, QObject *owner) : TField(dataType, owner)
{
    setAlignment(Qt::AlignRight);
}

void TNumericField::setDisplayFormat(const QString &format)
{
    if (format == m_displayFormat)
        return;
    m_displayFormat = format;
    PropertyChanged(false);
}

void TNumericField::setEditFormat(const QString &format)
{
    if (format == m_editFormat)
        return;
    m_editFormat = format;
    PropertyChanged(false);
}

QString TNumericField::FormatFor(bool displayText) const
{
    return displayText || m_editFormat.isEmpty() ? m_displayFormat : m_editFormat;
}

TIntegerField::TIntegerField(TFieldType dataType, QObject *owner)
    : TNumericField(dataType, owner), m_minRange(std::numeric_limits<qint32>::min()),
      m_maxRange(std::numeric_limits<qint32>::max())
{
}

void TIntegerField::setValue(const QVariant &value)
{
    if (!ClearIfNull(value))
        setAsLargeInt(VarToInt(value));
}

QString TIntegerField::AsString() const { return IsNull() ? QString() : IntToStr(AsInteger()); }

void TIntegerField::setAsString(const QString &value)
{
    if (value.isEmpty())
        Clear();
    else
        setAsLargeInt(StrToInt64(value));
}

qint32 TIntegerField::AsInteger() const { return DataOr<qint32>(0); }
void TIntegerField::setAsInteger(qint32 value) { setAsLargeInt(value); }

void TIntegerField::setAsLargeInt(qint64 value)
{
    CheckRange(value);
    SetData(qint32(value));
}

void TIntegerField::setAsFloat(double value)
{
    const double rounded = std::nearbyint(value);
    if (!(std::fabs(rounded) < 9.0e18)) {
        qint64 lo, hi;
        Range(lo, hi);
        DatabaseErrorFmt(SFieldRangeError, {FloatToStr(value), DisplayName(), IntToStr(lo), IntToStr(hi)});
    }
    setAsLargeInt(qint64(rounded));
}

void TIntegerField::GetText(QString &text, bool displayText) const
{
    if (NullText(text))
        return;
    const QString format = FormatFor(displayText);
    text = format.isEmpty() ? IntToStr(AsInteger()) : FormatFloat(format, AsInteger());
}

void TIntegerField::Range(qint64 &lo, qint64 &hi) const
{
    lo = m_minRange;
    hi = m_maxRange;
    if (m_minValue != 0 || m_maxValue != 0) {
        lo = std::max<qint64>(lo, m_minValue);
        hi = std::min<qint64>(hi, m_maxValue);
    }
}

void TIntegerField::CheckRange(qint64 value) const
{
    qint64 lo, hi;
    Range(lo, hi);
    if (value < lo || value > hi)
        DatabaseErrorFmt(SFieldRangeError, {IntToStr(value), DisplayName(), IntToStr(lo), IntToStr(hi)});
}

TSmallintField::TSmallintField(QObject *owner) : TIntegerField(ftSmallint, owner)
{
    m_minRange = -32768;
    m_maxRange = 32767;
}

TWordField::TWordField(QObject *owner) : TIntegerField(ftWord, owner)
{
    m_minRange = 0;
    m_maxRange = 65535;
}

TAutoIncField::TAutoIncField(QObject *owner) : TIntegerField(ftAutoInc, owner) {}

void TLargeintField::setValue(const QVariant &value)
{
    if (!ClearIfNull(value))
        setAsLargeInt(VarToInt(value));
}

QString TLargeintField::AsString() const { return IsNull() ? QString() : IntToStr(AsLargeInt()); }

void TLargeintField::setAsString(const QString &value)
{
    if (value.isEmpty())
        Clear();
    else
        setAsLargeInt(StrToInt64(value));
}

qint32 TLargeintField::AsInteger() const { return qint32(AsLargeInt()); }
qint64 TLargeintField::AsLargeInt() const { return DataOr<qlonglong>(0); }
void TLargeintField::setAsLargeInt(qint64 value) { SetData(qlonglong(value)); }
void TLargeintField::setAsFloat(double value) { setAsLargeInt(roundEven(value)); }

void TLargeintField::GetText(QString &text, bool displayText) const
{
    if (NullText(text))
        return;
    const QString format = FormatFor(displayText);
    text = format.isEmpty() ? IntToStr(AsLargeInt()) : FormatFloat(format, double(AsLargeInt()));
}

TFloatField::TFloatField(TFieldType dataType, QObject *owner) : TNumericField(dataType, owner) {}

void TFloatField::setCurrency(bool value)
{
    if (value == m_currency)
        return;
    m_currency = value;
    PropertyChanged(false);
}

void TFloatField::setPrecision(int value)
{
    m_precision = std::clamp(value, 2, 15);
    PropertyChanged(false);
}

void TFloatField::setValue(const QVariant &value)
{
    if (!ClearIfNull(value))
        setAsFloat(VarToFloat(value));
}

QString TFloatField::AsString() const { return IsNull() ? QString() : generalFloat(AsFloat(), m_precision); }

void TFloatField::setAsString(const QString &value)
{
    if (value.isEmpty())
        Clear();
    else
        setAsFloat(StrToFloat(value));
}

qint32 TFloatField::AsInteger() const { return qint32(roundEven(AsFloat())); }
qint64 TFloatField::AsLargeInt() const { return roundEven(AsFloat()); }
double TFloatField::AsFloat() const { return DataOr<double>(0.0); }

void TFloatField::setAsFloat(double value)
{
    if ((m_minValue != 0 || m_maxValue != 0) && (value < m_minValue || value > m_maxValue))
        DatabaseErrorFmt(SFieldRangeError,
                         {FloatToStr(value), DisplayName(), FloatToStr(m_minValue), FloatToStr(m_maxValue)});
    SetData(value);
}

void TFloatField::GetText(QString &text, bool displayText) const
{
    if (NullText(text))
        return;
    const QString format = FormatFor(displayText);
    if (!format.isEmpty())
        text = FormatFloat(format, AsFloat());
    else if (m_currency)
        text = currencyText(AsFloat(), displayText);
    else
        text = generalFloat(AsFloat(), m_precision);
}

TCurrencyField::TCurrencyField(QObject *owner) : TFloatField(ftCurrency, owner)
{
    setCurrency(true);
}

TBCDField::TBCDField(QObject *owner) : TNumericField(ftBCD, owner)
{
    m_size = 4;
}

void TBCDField::setCurrency(bool value)
{
    if (value == m_currency)
        return;
    m_currency = value;
    PropertyChanged(false);
}

void TBCDField::setValue(const QVariant &value)
{
    if (!ClearIfNull(value))
        setAsCurrency(VarToCurr(value));
}

QString TBCDField::AsString() const { return IsNull() ? QString() : CurrToStr(AsCurrency()); }

void TBCDField::setAsString(const QString &value)
{
    if (value.isEmpty())
        Clear();
    else
        setAsCurrency(StrToCurr(value));
}

qint32 TBCDField::AsInteger() const { return qint32(AsLargeInt()); }
qint64 TBCDField::AsLargeInt() const { return roundEven(AsCurrency().ToDouble()); }
mattoni::Currency TBCDField::AsCurrency() const { return DataOr<mattoni::Currency>(mattoni::Currency()); }
void TBCDField::setAsCurrency(mattoni::Currency value) { SetData(QVariant::fromValue(value)); }

void TBCDField::GetText(QString &text, bool displayText) const
{
    if (NullText(text))
        return;
    const mattoni::Currency c = AsCurrency();
    const QString format = FormatFor(displayText);
    if (!format.isEmpty())
        text = FormatCurr(format, c);
    else if (m_currency)
        text = currencyText(c.ToDouble(), displayText);
    else
        text = CurrToStr(c);
}

TFMTBCDField::TFMTBCDField(QObject *owner) : TFloatField(ftFMTBcd, owner)
{
    m_size = 8;
}

// ---------------------------------------------------------------------------------------------
// Booleans

TBooleanField::TBooleanField(QObject *owner) : TField(ftBoolean, owner) {}

void TBooleanField::setDisplayValues(const QString &values)
{
    m_displayValues = values;
    if (values.isEmpty()) {
        m_trueText = QStringLiteral("True");
        m_falseText = QStringLiteral("False");
    } else {
        const qsizetype p = values.indexOf(QLatin1Char(';'));
        m_trueText = p < 0 ? values : values.left(p);
        m_falseText = p < 0 ? QString() : values.mid(p + 1);
    }
    PropertyChanged(true);
}

void TBooleanField::setValue(const QVariant &value)
{
    if (!ClearIfNull(value))
        setAsBoolean(VarToBool(value));
}

QString TBooleanField::AsString() const
{
    if (IsNull())
        return QString();
    return AsBoolean() ? m_trueText : m_falseText;
}

void TBooleanField::setAsString(const QString &value)
{
    if (value.isEmpty()) {
        if (m_falseText.isEmpty())
            setAsBoolean(false);
        else if (m_trueText.isEmpty())
            setAsBoolean(true);
        else
            Clear();
        return;
    }
    // The false text is tried first, as the framework does: "F" never reads as "False;Falso".
    if (SameText(value, m_falseText.left(value.size())))
        setAsBoolean(false);
    else if (SameText(value, m_trueText.left(value.size())))
        setAsBoolean(true);
    else
        DatabaseErrorFmt(SNotABoolean, {value, DisplayName()});
}

bool TBooleanField::AsBoolean() const { return DataOr<bool>(false); }
void TBooleanField::setAsBoolean(bool value) { SetData(value); }

int TBooleanField::DefaultWidth() const
{
    return int(std::max(m_trueText.size(), m_falseText.size()));
}

// ---------------------------------------------------------------------------------------------
// Dates and times

TDateTimeField::TDateTimeField(TFieldType dataType, QObject *owner) : TField(dataType, owner) {}

void TDateTimeField::setDisplayFormat(const QString &format)
{
    if (format == m_displayFormat)
        return;
    m_displayFormat = format;
    PropertyChanged(false);
}

void TDateTimeField::setValue(const QVariant &value)
{
    if (!ClearIfNull(value))
        setAsDateTime(VarToDateTime(value));
}

QString TDateTimeField::AsString() const
{
    QString text;
    GetText(text, false);
    return text;
}

void TDateTimeField::setAsString(const QString &value)
{
    if (value.isEmpty())
        Clear();
    else if (m_dataType == ftDate)
        setAsDateTime(StrToDate(value));
    else if (m_dataType == ftTime)
        setAsDateTime(StrToTime(value));
    else
        setAsDateTime(StrToDateTime(value));
}

TDateTime TDateTimeField::AsDateTime() const
{
    return IsNull() ? 0.0 : VarToDateTime(GetData());
}

void TDateTimeField::setAsDateTime(TDateTime value)
{
    switch (m_dataType) {
    case ftDate: SetData(DateTimeToQDate(value)); break;
    case ftTime: SetData(DateTimeToQTime(value)); break;
    default: SetData(DateTimeToQDateTime(value)); break;
    }
}

void TDateTimeField::GetText(QString &text, bool displayText) const
{
    if (NullText(text))
        return;
    QString format;
    if (displayText && !m_displayFormat.isEmpty())
        format = m_displayFormat;
    else if (m_dataType == ftDate)
        format = FormatSettings.ShortDateFormat;
    else if (m_dataType == ftTime)
        format = FormatSettings.LongTimeFormat;
    else
        format = QStringLiteral("c");
    text = FormatDateTime(format, AsDateTime());
}

int TDateTimeField::DefaultWidth() const
{
    switch (m_dataType) {
    case ftDate: return 10;
    case ftTime: return 8;
    default: return 19;
    }
}

// ---------------------------------------------------------------------------------------------
// Bytes and large objects

TBinaryField::TBinaryField(TFieldType dataType, QObject *owner) : TField(dataType, owner)
{
    m_size = 16;
}

void TBinaryField::setValue(const QVariant &value) { SetBytesValue(value); }
QString TBinaryField::AsString() const { return QString::fromLatin1(AsBytes()); }
void TBinaryField::setAsString(const QString &value) { setAsBytes(value.toLatin1()); }
QByteArray TBinaryField::AsBytes() const { return DataOr<QByteArray>(QByteArray()); }

void TBinaryField::setAsBytes(const QByteArray &value)
{
    SetData(m_size > 0 && m_dataType == ftBytes ? value.left(m_size) : value);
}

void TBinaryField::GetText(QString &text, bool) const
{
    text = ClassDesc();
}

TBlobField::TBlobField(TFieldType dataType, QObject *owner) : TField(dataType, owner) {}

void TBlobField::setValue(const QVariant &value) { SetBytesValue(value); }
QString TBlobField::AsString() const { return QString::fromLatin1(AsBytes()); }
void TBlobField::setAsString(const QString &value) { setAsBytes(value.toLatin1()); }
QByteArray TBlobField::AsBytes() const { return DataOr<QByteArray>(QByteArray()); }
void TBlobField::setAsBytes(const QByteArray &value) { SetData(value); }

void TBlobField::GetText(QString &text, bool) const
{
    text = ClassDesc();
}

void TMemoField::setValue(const QVariant &value)
{
    if (ClearIfNull(value))
        return;
    if (value.metaType().id() == QMetaType::QByteArray)
        setAsBytes(value.toByteArray());
    else
        setAsString(VarToStr(value));
}

QString TMemoField::AsString() const { return DataOr<QString>(QString()); }
void TMemoField::setAsString(const QString &value) { SetData(value); }
QByteArray TMemoField::AsBytes() const { return AsString().toLatin1(); }
void TMemoField::setAsBytes(const QByteArray &value) { setAsString(QString::fromLatin1(value)); }

// ---------------------------------------------------------------------------------------------
// Variants

void TVariantField::setValue(const QVariant &value)
{
    if (!ClearIfNull(value))
        SetData(value);
}

QString TVariantField::AsString() const { return VarToStr(GetData()); }
qint32 TVariantField::AsInteger() const { return IsNull() ? 0 : qint32(VarToInt(GetData())); }
qint64 TVariantField::AsLargeInt() const { return IsNull() ? 0 : VarToInt(GetData()); }
double TVariantField::AsFloat() const { return IsNull() ? 0.0 : VarToFloat(GetData()); }
mattoni::Currency TVariantField::AsCurrency() const { return IsNull() ? mattoni::Currency() : VarToCurr(GetData()); }
TDateTime TVariantField::AsDateTime() const { return IsNull() ? 0.0 : VarToDateTime(GetData()); }
bool TVariantField::AsBoolean() const { return !IsNull() && VarToBool(GetData()); }

// ---------------------------------------------------------------------------------------------
// Object fields

TObjectField::TObjectField(TFieldType dataType, QObject *owner)
    : TField(dataType, owner), m_fields(nullptr, this)
{
}

TObjectField::~TObjectField()
{
    m_fields.Clear();
}

QVariant TObjectField::Value() const
{
    if (IsNull())
        return Null();
    QVariantList values;
    for (const TField *child : m_fields)
        values.append(child->Value());
    return values;
}

void TObjectField::setValue(const QVariant &value)
{
    if (isNullValue(value)) {
        Clear();
        return;
    }
    const QVariantList values = value.toList();
    for (int i = 0; i < m_fields.Count() && i < values.size(); ++i)
        m_fields[i]->setValue(values.at(i));
}

QString TObjectField::AsString() const
{
    QStringList parts;
    for (const TField *child : m_fields)
        parts.append(child->DisplayText());
    return QLatin1Char('(') + parts.join(QLatin1String(", ")) + QLatin1Char(')');
}

void TObjectField::GetText(QString &text, bool) const
{
    text = AsString();
}

// ---------------------------------------------------------------------------------------------

bool FieldTypeSupported(TFieldType type)
{
    return type > ftUnknown && type < FieldTypeCount && type != ftCursor && type != ftReference
        && type != ftDataSet;
}

TField *CreateFieldOfType(TFieldType type, QObject *owner)
{
    switch (type) {
    case ftString: return new TStringField(owner);
    case ftFixedChar: return new TStringField(ftFixedChar, owner);
    case ftWideString: return new TWideStringField(owner);
    case ftFixedWideChar: return new TWideStringField(ftFixedWideChar, owner);
    case ftOraInterval: return new TStringField(ftOraInterval, owner);
    case ftGuid: return new TGuidField(owner);
    case ftSmallint: return new TSmallintField(owner);
    case ftInteger: return new TIntegerField(owner);
    case ftWord: return new TWordField(owner);
    case ftAutoInc: return new TAutoIncField(owner);
    case ftLargeint: return new TLargeintField(owner);
    case ftBoolean: return new TBooleanField(owner);
    case ftFloat: return new TFloatField(owner);
    case ftCurrency: return new TCurrencyField(owner);
    case ftBCD: return new TBCDField(owner);
    case ftFMTBcd: return new TFMTBCDField(owner);
    case ftDate: return new TDateField(owner);
    case ftTime: return new TTimeField(owner);
    case ftDateTime: return new TDateTimeField(owner);
    case ftTimeStamp: return new TSQLTimeStampField(owner);
    case ftOraTimeStamp: return new TSQLTimeStampField(ftOraTimeStamp, owner);
    case ftBytes: return new TBytesField(owner);
    case ftVarBytes: return new TVarBytesField(owner);
    case ftBlob: case ftFmtMemo: case ftParadoxOle: case ftDBaseOle: case ftTypedBinary: case ftOraBlob:
        return new TBlobField(type, owner);
    case ftMemo: return new TMemoField(owner);
    case ftOraClob: return new TMemoField(ftOraClob, owner);
    case ftWideMemo: return new TWideMemoField(owner);
    case ftGraphic: return new TGraphicField(owner);
    case ftVariant: return new TVariantField(owner);
    case ftInterface: return new TInterfaceField(owner);
    case ftIDispatch: return new TIDispatchField(owner);
    case ftADT: return new TADTField(owner);
    case ftArray: return new TArrayField(owner);
    default:
        DatabaseErrorFmt(SUnknownFieldType, {FieldTypeName(type)});
    }
}

} // namespace mattoni
