// Fields: the typed views of one column of a dataset's current record. TField carries the
// attributes every field shares (name, type, kind, size, label, width, read-only, visible,
// required, lookup definition) and the value accessors; the typed descendants convert, format
// and range-check. TFields is the ordered list a dataset (or an object field) keeps.
//
// A field reads the record the dataset shows it: the current record, the unsaved buffer while
// editing, or the row of a TRecordScope. Conversions follow core/Formatting.h and raise its
// errors; a Null field reads as "", 0, 0.0, false.
#pragma once

#include "Currency.h"
#include "DB.h"
#include "DateTime.h"
#include "mattoni_core_export.h"

#include <QList>
#include <QObject>
#include <QString>
#include <QVariant>

#include <functional>

namespace mattoni {

class TDataSet;
class TField;
class TObjectField;

// A new field of the class the framework uses for Type (TStringField for ftString and
// ftFixedChar, TIntegerField for ftInteger, TBlobField for ftBlob ...). Raises EDatabaseError for
// the types no field class stands for (ftUnknown, ftCursor, ftReference, ftDataSet).
MATTONI_CORE_EXPORT TField *CreateFieldOfType(TFieldType type, QObject *owner);
// Whether a field class stands for Type.
MATTONI_CORE_EXPORT bool FieldTypeSupported(TFieldType type);

class MATTONI_CORE_EXPORT TFields
{
public:
    // The fields of DataSet, or the child fields of Parent (an object field).
    explicit TFields(TDataSet *dataSet, TObjectField *parent = nullptr);
    ~TFields();
    TFields(const TFields &) = delete;
    TFields &operator=(const TFields &) = delete;

    int Count() const { return int(m_list.size()); }
    TField *Fields(int index) const { return m_list.at(index); }
    TField *operator[](int index) const { return m_list.at(index); }
    // By name, ignoring case; FieldByName raises "Field '%s' not found" naming the dataset.
    TField *FindField(const QString &fieldName) const;
    TField *FieldByName(const QString &fieldName) const;
    int IndexOf(const TField *field) const { return int(m_list.indexOf(const_cast<TField *>(field))); }
    // Deletes the fields, last to first.
    void Clear();

    QList<TField *>::const_iterator begin() const { return m_list.cbegin(); }
    QList<TField *>::const_iterator end() const { return m_list.cend(); }

private:
    friend class TField;
    TDataSet *OwnerDataSet() const;
    void Add(TField *field);
    void Remove(TField *field);

    TDataSet *m_dataSet;
    TObjectField *m_parent;
    QList<TField *> m_list;
};

class MATTONI_CORE_EXPORT TField : public QObject
{
    Q_OBJECT
    Q_PROPERTY(Qt::Alignment Alignment READ Alignment WRITE setAlignment)
    Q_PROPERTY(QString DisplayLabel READ DisplayLabel WRITE setDisplayLabel)
    Q_PROPERTY(int DisplayWidth READ DisplayWidth WRITE setDisplayWidth)
    Q_PROPERTY(mattoni::TFieldKind FieldKind READ FieldKind WRITE setFieldKind)
    Q_PROPERTY(QString FieldName READ FieldName WRITE setFieldName)
    Q_PROPERTY(QString KeyFields READ KeyFields WRITE setKeyFields)
    Q_PROPERTY(QString LookupKeyFields READ LookupKeyFields WRITE setLookupKeyFields)
    Q_PROPERTY(QString LookupResultField READ LookupResultField WRITE setLookupResultField)
    Q_PROPERTY(bool ReadOnly READ ReadOnly WRITE setReadOnly)
    Q_PROPERTY(bool Required READ Required WRITE setRequired)
    Q_PROPERTY(bool Visible READ Visible WRITE setVisible)

public:
    ~TField() override;

    // Attributes.
    TDataSet *DataSet() const { return m_dataSet; }
    // Moves the field to DataSet's Fields (or out of any with nullptr); the datasets must be closed.
    void setDataSet(TDataSet *dataSet);
    TObjectField *ParentField() const { return m_parentField; }
    void setParentField(TObjectField *parent);
    QString FieldName() const { return m_fieldName; }
    void setFieldName(const QString &name);
    // "Parent.Child" for the child of an object field, the field name otherwise.
    QString FullName() const;
    TFieldType DataType() const { return m_dataType; }
    TFieldKind FieldKind() const { return m_fieldKind; }
    void setFieldKind(TFieldKind kind);
    bool Calculated() const { return m_fieldKind == fkCalculated; }
    bool Lookup() const { return m_fieldKind == fkLookup; }
    int Size() const { return m_size; }
    void setSize(int size);
    bool ReadOnly() const { return m_readOnly; }
    void setReadOnly(bool value) { m_readOnly = value; }
    bool Required() const { return m_required; }
    void setRequired(bool value) { m_required = value; }
    bool Visible() const { return m_visible; }
    void setVisible(bool value);
    QString DisplayLabel() const { return m_displayLabel.isEmpty() ? FieldName() : m_displayLabel; }
    void setDisplayLabel(const QString &label);
    // The label when set, else the full name: what messages about the field show.
    QString DisplayName() const { return m_displayLabel.isEmpty() ? FullName() : m_displayLabel; }
    // In characters; 0 gives back the type's default width.
    int DisplayWidth() const { return m_displayWidth > 0 ? m_displayWidth : DefaultWidth(); }
    void setDisplayWidth(int width);
    Qt::Alignment Alignment() const { return m_alignment; }
    void setAlignment(Qt::Alignment alignment);
    // 1-based position among the dataset's stored fields; 0 for calculated and lookup fields.
    int FieldNo() const { return m_fieldNo; }
    // Position in the owning field list (the dataset's Fields or the parent's child fields).
    int Index() const;
    virtual bool IsBlob() const { return false; }
    bool CanModify() const;

    // Lookup definition: the value of this field is LookupResultField of the LookupDataSet record
    // whose LookupKeyFields equal this dataset's KeyFields. KeyFields also names the local key
    // fields of a lookup field for sorting.
    QString KeyFields() const { return m_keyFields; }
    void setKeyFields(const QString &fields) { m_keyFields = fields; }
    TDataSet *LookupDataSet() const { return m_lookupDataSet; }
    void setLookupDataSet(TDataSet *dataSet);
    QString LookupKeyFields() const { return m_lookupKeyFields; }
    void setLookupKeyFields(const QString &fields) { m_lookupKeyFields = fields; }
    QString LookupResultField() const { return m_lookupResultField; }
    void setLookupResultField(const QString &field) { m_lookupResultField = field; }

    // Value.
    bool IsNull() const;
    void Clear();
    // The value as a variant of the field's own type; Null when the field is null.
    virtual QVariant Value() const;
    virtual void setValue(const QVariant &value);
    QVariant AsVariant() const { return Value(); }
    void setAsVariant(const QVariant &value) { setValue(value); }
    virtual QString AsString() const;
    virtual void setAsString(const QString &value);
    virtual qint32 AsInteger() const;
    virtual void setAsInteger(qint32 value);
    virtual qint64 AsLargeInt() const;
    virtual void setAsLargeInt(qint64 value);
    virtual double AsFloat() const;
    virtual void setAsFloat(double value);
    virtual Currency AsCurrency() const;
    virtual void setAsCurrency(Currency value);
    virtual TDateTime AsDateTime() const;
    virtual void setAsDateTime(TDateTime value);
    virtual bool AsBoolean() const;
    virtual void setAsBoolean(bool value);
    virtual QByteArray AsBytes() const;
    virtual void setAsBytes(const QByteArray &value);

    // The text for editing (EditFormat) and for showing (DisplayFormat); both pass OnGetText.
    QString Text() const;
    void setText(const QString &text);
    QString DisplayText() const;

    // Puts the focus on the control showing this field (its data links' FocusControl).
    void FocusControl();

    std::function<void(TField *Sender)> OnChange;
    std::function<void(TField *Sender)> OnValidate;
    std::function<void(TField *Sender, QString &Text, bool DisplayText)> OnGetText;
    std::function<void(TField *Sender, const QString &Text)> OnSetText;

protected:
    TField(TFieldType dataType, QObject *owner);

    // The stored value, Null when there is none.
    QVariant GetData() const;
    // Stores Value (already of the field's own type, or Null) through OnValidate into the record.
    void SetData(const QVariant &value);
    // The text of the value: DisplayText true for showing, false for editing.
    virtual void GetText(QString &text, bool displayText) const;
    virtual void SetText(const QString &text);
    virtual int DefaultWidth() const { return 10; }
    // "(MEMO)", "(BLOB)", "(ADT)" ...: upper case with a value, lower case without.
    QString ClassDesc() const;
    // The stored value as a T, or Fallback when the field is null.
    template<typename T>
    T DataOr(T fallback) const
    {
        const QVariant v = GetData();
        return !v.isValid() || v.metaType().id() == QMetaType::Nullptr ? fallback : v.value<T>();
    }
    // Clears the field when Value is Null or unassigned, and tells whether it did.
    bool ClearIfNull(const QVariant &value);
    // Empties Text for a null field, and tells whether it did: nothing is left to format.
    bool NullText(QString &text) const;
    // The value of a field of bytes: Null clears, text is taken as Latin-1.
    void SetBytesValue(const QVariant &value);
    [[noreturn]] void AccessError(const char *typeName) const;
    // Notifies the dataset that an attribute shown by controls changed.
    void PropertyChanged(bool layoutAffected);
    void DetachFromList();
    void SetDataSetPointer(TDataSet *dataSet);

    TFieldType m_dataType;
    int m_size = 0;

private:
    friend class TDataSet;
    friend class TFields;
    friend class TObjectField;

    TDataSet *m_dataSet = nullptr;
    TObjectField *m_parentField = nullptr;
    QString m_fieldName;
    TFieldKind m_fieldKind = fkData;
    bool m_readOnly = false;
    bool m_required = false;
    bool m_visible = true;
    QString m_displayLabel;
    int m_displayWidth = 0;
    Qt::Alignment m_alignment = Qt::AlignLeft;
    QString m_keyFields;
    TDataSet *m_lookupDataSet = nullptr;
    QMetaObject::Connection m_lookupWatch;
    QString m_lookupKeyFields;
    QString m_lookupResultField;
    // Set while the dataset has the field bound: its stored column or its calculated slot.
    int m_fieldNo = 0;
    int m_calcSlot = -1;
    // The value under validation: OnValidate reads the proposed value through the field.
    const QVariant *m_proposed = nullptr;
};

class MATTONI_CORE_EXPORT TStringField : public TField
{
    Q_OBJECT
    Q_PROPERTY(int Size READ Size WRITE setSize)
    Q_PROPERTY(bool FixedChar READ FixedChar WRITE setFixedChar)
public:
    explicit TStringField(QObject *owner = nullptr) : TStringField(ftString, owner) {}
    // Whether the field is of a fixed-length type (ftFixedChar, ftFixedWideChar).
    bool FixedChar() const { return m_dataType == ftFixedChar || m_dataType == ftFixedWideChar; }
    void setFixedChar(bool value);

    void setValue(const QVariant &value) override;
    QString AsString() const override;
    // Text longer than Size is cut to Size characters (a Size of 0 sets no limit).
    void setAsString(const QString &value) override;
    qint32 AsInteger() const override;
    void setAsInteger(qint32 value) override;
    qint64 AsLargeInt() const override;
    void setAsLargeInt(qint64 value) override;
    double AsFloat() const override;
    void setAsFloat(double value) override;
    Currency AsCurrency() const override;
    void setAsCurrency(Currency value) override { setAsFloat(value.ToDouble()); }
    TDateTime AsDateTime() const override;
    void setAsDateTime(TDateTime value) override;
    // True when the text starts with T, t, Y or y; written as "T" or "F".
    bool AsBoolean() const override;
    void setAsBoolean(bool value) override;

protected:
    TStringField(TFieldType dataType, QObject *owner);
    int DefaultWidth() const override { return m_size > 0 ? m_size : 20; }
    friend TField *CreateFieldOfType(TFieldType, QObject *);
};

class MATTONI_CORE_EXPORT TWideStringField : public TStringField
{
    Q_OBJECT
public:
    explicit TWideStringField(QObject *owner = nullptr) : TStringField(ftWideString, owner) {}

protected:
    TWideStringField(TFieldType dataType, QObject *owner) : TStringField(dataType, owner) {}
    friend TField *CreateFieldOfType(TFieldType, QObject *);
};

// A GUID as text, "{xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx}".
class MATTONI_CORE_EXPORT TGuidField : public TStringField
{
    Q_OBJECT
public:
    explicit TGuidField(QObject *owner = nullptr);
};

class MATTONI_CORE_EXPORT TNumericField : public TField
{
    Q_OBJECT
    Q_PROPERTY(QString DisplayFormat READ DisplayFormat WRITE setDisplayFormat)
    Q_PROPERTY(QString EditFormat READ EditFormat WRITE setEditFormat)
public:
    // FormatFloat patterns; empty uses the type's general form.
    QString DisplayFormat() const { return m_displayFormat; }
    void setDisplayFormat(const QString &format);
    QString EditFormat() const { return m_editFormat; }
    void setEditFormat(const QString &format);

protected:
    TNumericField(TFieldType dataType, QObject *owner);
    // The pattern for the text asked: DisplayFormat for showing, EditFormat (else DisplayFormat)
    // for editing.
    QString FormatFor(bool displayText) const;

private:
    QString m_displayFormat;
    QString m_editFormat;
};

class MATTONI_CORE_EXPORT TIntegerField : public TNumericField
{
    Q_OBJECT
    Q_PROPERTY(qint32 MaxValue READ MaxValue WRITE setMaxValue)
    Q_PROPERTY(qint32 MinValue READ MinValue WRITE setMinValue)
public:
    explicit TIntegerField(QObject *owner = nullptr) : TIntegerField(ftInteger, owner) {}
    // Both 0: only the range of the type applies.
    qint32 MaxValue() const { return m_maxValue; }
    void setMaxValue(qint32 value) { m_maxValue = value; }
    qint32 MinValue() const { return m_minValue; }
    void setMinValue(qint32 value) { m_minValue = value; }

    void setValue(const QVariant &value) override;
    QString AsString() const override;
    void setAsString(const QString &value) override;
    qint32 AsInteger() const override;
    // Out of range: "%d is not a valid value for field '%s'. The allowed range is %d to %d".
    void setAsInteger(qint32 value) override;
    qint64 AsLargeInt() const override { return AsInteger(); }
    void setAsLargeInt(qint64 value) override;
    double AsFloat() const override { return AsInteger(); }
    void setAsFloat(double value) override;
    Currency AsCurrency() const override { return Currency(AsInteger()); }
    void setAsCurrency(Currency value) override { setAsFloat(value.ToDouble()); }
    bool AsBoolean() const override { return AsInteger() != 0; }
    void setAsBoolean(bool value) override { setAsInteger(value ? 1 : 0); }

protected:
    TIntegerField(TFieldType dataType, QObject *owner);
    void GetText(QString &text, bool displayText) const override;
    int DefaultWidth() const override { return 11; }
    // The allowed values: the type's range, narrowed by MinValue and MaxValue when set.
    void Range(qint64 &lo, qint64 &hi) const;
    void CheckRange(qint64 value) const;
    qint64 m_minRange;
    qint64 m_maxRange;

private:
    qint32 m_minValue = 0;
    qint32 m_maxValue = 0;
};

class MATTONI_CORE_EXPORT TSmallintField : public TIntegerField
{
    Q_OBJECT
public:
    explicit TSmallintField(QObject *owner = nullptr);

protected:
    int DefaultWidth() const override { return 6; }
};

class MATTONI_CORE_EXPORT TWordField : public TIntegerField
{
    Q_OBJECT
public:
    explicit TWordField(QObject *owner = nullptr);

protected:
    int DefaultWidth() const override { return 5; }
};

// An integer the dataset numbers by itself: read-only to the user, set on insert.
class MATTONI_CORE_EXPORT TAutoIncField : public TIntegerField
{
    Q_OBJECT
public:
    explicit TAutoIncField(QObject *owner = nullptr);
};

class MATTONI_CORE_EXPORT TLargeintField : public TNumericField
{
    Q_OBJECT
public:
    explicit TLargeintField(QObject *owner = nullptr) : TNumericField(ftLargeint, owner) {}

    void setValue(const QVariant &value) override;
    QString AsString() const override;
    void setAsString(const QString &value) override;
    qint32 AsInteger() const override;
    void setAsInteger(qint32 value) override { setAsLargeInt(value); }
    qint64 AsLargeInt() const override;
    void setAsLargeInt(qint64 value) override;
    double AsFloat() const override { return double(AsLargeInt()); }
    void setAsFloat(double value) override;
    Currency AsCurrency() const override { return Currency(AsLargeInt()); }
    void setAsCurrency(Currency value) override { setAsFloat(value.ToDouble()); }
    bool AsBoolean() const override { return AsLargeInt() != 0; }
    void setAsBoolean(bool value) override { setAsLargeInt(value ? 1 : 0); }

protected:
    void GetText(QString &text, bool displayText) const override;
    int DefaultWidth() const override { return 15; }
};

class MATTONI_CORE_EXPORT TFloatField : public TNumericField
{
    Q_OBJECT
    Q_PROPERTY(bool Currency READ Currency WRITE setCurrency)
    Q_PROPERTY(double MaxValue READ MaxValue WRITE setMaxValue)
    Q_PROPERTY(double MinValue READ MinValue WRITE setMinValue)
    Q_PROPERTY(int Precision READ Precision WRITE setPrecision)
public:
    explicit TFloatField(QObject *owner = nullptr) : TFloatField(ftFloat, owner) {}
    // Shows the value as money: "#,##0.00" followed by a blank and the currency string.
    bool Currency() const { return m_currency; }
    void setCurrency(bool value);
    double MaxValue() const { return m_maxValue; }
    void setMaxValue(double value) { m_maxValue = value; }
    double MinValue() const { return m_minValue; }
    void setMinValue(double value) { m_minValue = value; }
    // Significant digits of the general form, 2 to 15.
    int Precision() const { return m_precision; }
    void setPrecision(int value);

    void setValue(const QVariant &value) override;
    QString AsString() const override;
    void setAsString(const QString &value) override;
    qint32 AsInteger() const override;
    void setAsInteger(qint32 value) override { setAsFloat(value); }
    qint64 AsLargeInt() const override;
    void setAsLargeInt(qint64 value) override { setAsFloat(double(value)); }
    double AsFloat() const override;
    // Outside MinValue..MaxValue (when either is set): the range error.
    void setAsFloat(double value) override;
    mattoni::Currency AsCurrency() const override { return mattoni::Currency(AsFloat()); }
    void setAsCurrency(mattoni::Currency value) override { setAsFloat(value.ToDouble()); }

protected:
    TFloatField(TFieldType dataType, QObject *owner);
    void GetText(QString &text, bool displayText) const override;
    int DefaultWidth() const override { return 10; }

private:
    bool m_currency = false;
    double m_minValue = 0;
    double m_maxValue = 0;
    int m_precision = 15;
};

class MATTONI_CORE_EXPORT TCurrencyField : public TFloatField
{
    Q_OBJECT
public:
    explicit TCurrencyField(QObject *owner = nullptr);
};

// A fixed-point number held as Currency (four decimals). Precision counts all digits, Size the
// decimals.
class MATTONI_CORE_EXPORT TBCDField : public TNumericField
{
    Q_OBJECT
    Q_PROPERTY(bool Currency READ Currency WRITE setCurrency)
    Q_PROPERTY(int Precision READ Precision WRITE setPrecision)
    Q_PROPERTY(int Size READ Size WRITE setSize)
public:
    explicit TBCDField(QObject *owner = nullptr);
    bool Currency() const { return m_currency; }
    void setCurrency(bool value);
    int Precision() const { return m_precision; }
    void setPrecision(int value) { m_precision = value; }

    void setValue(const QVariant &value) override;
    QString AsString() const override;
    void setAsString(const QString &value) override;
    qint32 AsInteger() const override;
    void setAsInteger(qint32 value) override { setAsCurrency(mattoni::Currency(value)); }
    qint64 AsLargeInt() const override;
    void setAsLargeInt(qint64 value) override { setAsCurrency(mattoni::Currency(value)); }
    double AsFloat() const override { return AsCurrency().ToDouble(); }
    void setAsFloat(double value) override { setAsCurrency(mattoni::Currency(value)); }
    mattoni::Currency AsCurrency() const override;
    void setAsCurrency(mattoni::Currency value) override;

protected:
    void GetText(QString &text, bool displayText) const override;
    int DefaultWidth() const override { return m_precision > 0 ? m_precision + 2 : 10; }

private:
    bool m_currency = false;
    int m_precision = 0;
};

// A decimal number of up to 15 significant digits, held as a double. Precision and Size as BCD.
class MATTONI_CORE_EXPORT TFMTBCDField : public TFloatField
{
    Q_OBJECT
    Q_PROPERTY(int Size READ Size WRITE setSize)
public:
    explicit TFMTBCDField(QObject *owner = nullptr);
};

class MATTONI_CORE_EXPORT TBooleanField : public TField
{
    Q_OBJECT
    Q_PROPERTY(QString DisplayValues READ DisplayValues WRITE setDisplayValues)
public:
    explicit TBooleanField(QObject *owner = nullptr);
    // "True text;False text", default "True;False".
    QString DisplayValues() const { return m_displayValues; }
    void setDisplayValues(const QString &values);

    void setValue(const QVariant &value) override;
    QString AsString() const override;
    // A text that starts either display value (ignoring case) chooses it; "" clears; anything
    // else raises "'%s' is not a valid boolean value for field '%s'".
    void setAsString(const QString &value) override;
    bool AsBoolean() const override;
    void setAsBoolean(bool value) override;
    qint32 AsInteger() const override { return AsBoolean() ? 1 : 0; }
    void setAsInteger(qint32 value) override { setAsBoolean(value != 0); }

protected:
    int DefaultWidth() const override;

private:
    QString m_displayValues = QStringLiteral("True;False");
    QString m_trueText = QStringLiteral("True");
    QString m_falseText = QStringLiteral("False");
};

class MATTONI_CORE_EXPORT TDateTimeField : public TField
{
    Q_OBJECT
    Q_PROPERTY(QString DisplayFormat READ DisplayFormat WRITE setDisplayFormat)
public:
    explicit TDateTimeField(QObject *owner = nullptr) : TDateTimeField(ftDateTime, owner) {}
    // A FormatDateTime pattern; empty shows the short date (date fields), the long time (time
    // fields) or both.
    QString DisplayFormat() const { return m_displayFormat; }
    void setDisplayFormat(const QString &format);

    // QDateTime for date-time and time-stamp fields, QDate for date fields, QTime for time fields.
    void setValue(const QVariant &value) override;
    QString AsString() const override;
    void setAsString(const QString &value) override;
    TDateTime AsDateTime() const override;
    void setAsDateTime(TDateTime value) override;
    double AsFloat() const override { return AsDateTime(); }
    void setAsFloat(double value) override { setAsDateTime(value); }

protected:
    TDateTimeField(TFieldType dataType, QObject *owner);
    void GetText(QString &text, bool displayText) const override;
    int DefaultWidth() const override;

private:
    QString m_displayFormat;
};

class MATTONI_CORE_EXPORT TDateField : public TDateTimeField
{
    Q_OBJECT
public:
    explicit TDateField(QObject *owner = nullptr) : TDateTimeField(ftDate, owner) {}
};

class MATTONI_CORE_EXPORT TTimeField : public TDateTimeField
{
    Q_OBJECT
public:
    explicit TTimeField(QObject *owner = nullptr) : TDateTimeField(ftTime, owner) {}
};

class MATTONI_CORE_EXPORT TSQLTimeStampField : public TDateTimeField
{
    Q_OBJECT
public:
    explicit TSQLTimeStampField(QObject *owner = nullptr) : TDateTimeField(ftTimeStamp, owner) {}

protected:
    TSQLTimeStampField(TFieldType dataType, QObject *owner) : TDateTimeField(dataType, owner) {}
    friend TField *CreateFieldOfType(TFieldType, QObject *);
};

class MATTONI_CORE_EXPORT TBinaryField : public TField
{
    Q_OBJECT
    Q_PROPERTY(int Size READ Size WRITE setSize)
public:
    void setValue(const QVariant &value) override;
    // The bytes read as Latin-1 text.
    QString AsString() const override;
    void setAsString(const QString &value) override;
    QByteArray AsBytes() const override;
    void setAsBytes(const QByteArray &value) override;

protected:
    TBinaryField(TFieldType dataType, QObject *owner);
    void GetText(QString &text, bool displayText) const override;
};

class MATTONI_CORE_EXPORT TBytesField : public TBinaryField
{
    Q_OBJECT
public:
    explicit TBytesField(QObject *owner = nullptr) : TBinaryField(ftBytes, owner) {}
};

class MATTONI_CORE_EXPORT TVarBytesField : public TBinaryField
{
    Q_OBJECT
public:
    explicit TVarBytesField(QObject *owner = nullptr) : TBinaryField(ftVarBytes, owner) {}
};

// Binary large objects; the text shown is the class description ("(BLOB)", "(blob)").
class MATTONI_CORE_EXPORT TBlobField : public TField
{
    Q_OBJECT
public:
    explicit TBlobField(QObject *owner = nullptr) : TBlobField(ftBlob, owner) {}
    TFieldType BlobType() const { return m_dataType; }
    bool IsBlob() const override { return true; }

    void setValue(const QVariant &value) override;
    QString AsString() const override;
    void setAsString(const QString &value) override;
    QByteArray AsBytes() const override;
    void setAsBytes(const QByteArray &value) override;

protected:
    TBlobField(TFieldType dataType, QObject *owner);
    void GetText(QString &text, bool displayText) const override;
    friend TField *CreateFieldOfType(TFieldType, QObject *);
};

// Text large objects: the value is text ("(MEMO)" is what a grid shows).
class MATTONI_CORE_EXPORT TMemoField : public TBlobField
{
    Q_OBJECT
public:
    explicit TMemoField(QObject *owner = nullptr) : TBlobField(ftMemo, owner) {}

    void setValue(const QVariant &value) override;
    QString AsString() const override;
    void setAsString(const QString &value) override;
    QByteArray AsBytes() const override;
    void setAsBytes(const QByteArray &value) override;

protected:
    TMemoField(TFieldType dataType, QObject *owner) : TBlobField(dataType, owner) {}
    friend TField *CreateFieldOfType(TFieldType, QObject *);
};

class MATTONI_CORE_EXPORT TWideMemoField : public TMemoField
{
    Q_OBJECT
public:
    explicit TWideMemoField(QObject *owner = nullptr) : TMemoField(ftWideMemo, owner) {}
};

class MATTONI_CORE_EXPORT TGraphicField : public TBlobField
{
    Q_OBJECT
public:
    explicit TGraphicField(QObject *owner = nullptr) : TBlobField(ftGraphic, owner) {}
};

// Any value a variant holds, stored as it is.
class MATTONI_CORE_EXPORT TVariantField : public TField
{
    Q_OBJECT
public:
    explicit TVariantField(QObject *owner = nullptr) : TVariantField(ftVariant, owner) {}

    void setValue(const QVariant &value) override;
    QString AsString() const override;
    void setAsString(const QString &value) override { setValue(value); }
    qint32 AsInteger() const override;
    void setAsInteger(qint32 value) override { setValue(value); }
    qint64 AsLargeInt() const override;
    void setAsLargeInt(qint64 value) override { setValue(value); }
    double AsFloat() const override;
    void setAsFloat(double value) override { setValue(value); }
    mattoni::Currency AsCurrency() const override;
    void setAsCurrency(mattoni::Currency value) override { setValue(QVariant::fromValue(value)); }
    TDateTime AsDateTime() const override;
    void setAsDateTime(TDateTime value) override { setValue(DateTimeToQDateTime(value)); }
    bool AsBoolean() const override;
    void setAsBoolean(bool value) override { setValue(value); }

protected:
    TVariantField(TFieldType dataType, QObject *owner) : TField(dataType, owner) {}
};

class MATTONI_CORE_EXPORT TInterfaceField : public TVariantField
{
    Q_OBJECT
public:
    explicit TInterfaceField(QObject *owner = nullptr) : TVariantField(ftInterface, owner) {}

protected:
    TInterfaceField(TFieldType dataType, QObject *owner) : TVariantField(dataType, owner) {}
};

class MATTONI_CORE_EXPORT TIDispatchField : public TInterfaceField
{
    Q_OBJECT
public:
    explicit TIDispatchField(QObject *owner = nullptr) : TInterfaceField(ftIDispatch, owner) {}
};

// A field made of child fields (a record or an array). The children are stored; the object
// field itself is Null when all of them are.
class MATTONI_CORE_EXPORT TObjectField : public TField
{
    Q_OBJECT
public:
    ~TObjectField() override;
    TFields &Fields() { return m_fields; }
    const TFields &Fields() const { return m_fields; }
    int FieldCount() const { return m_fields.Count(); }

    // The children's values as a list.
    QVariant Value() const override;
    // A list assigns the children in order; Null clears them all.
    void setValue(const QVariant &value) override;
    // "(" + the children's display texts joined by ", " + ")".
    QString AsString() const override;

protected:
    TObjectField(TFieldType dataType, QObject *owner);
    void GetText(QString &text, bool displayText) const override;

private:
    friend class TField;
    TFields m_fields;
};

class MATTONI_CORE_EXPORT TADTField : public TObjectField
{
    Q_OBJECT
public:
    explicit TADTField(QObject *owner = nullptr) : TObjectField(ftADT, owner) {}
};

// Children named "Name[0]", "Name[1]" ...; Size is their number.
class MATTONI_CORE_EXPORT TArrayField : public TObjectField
{
    Q_OBJECT
public:
    explicit TArrayField(QObject *owner = nullptr) : TObjectField(ftArray, owner) {}
};

} // namespace mattoni

Q_DECLARE_METATYPE(mattoni::TFieldKind)
Q_DECLARE_METATYPE(mattoni::TFieldType)
