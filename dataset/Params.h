// Parameters: named, typed values handed to a command (":name" in its text) or built from a
// record's fields.
#pragma once

#include "Currency.h"
#include "DB.h"
#include "DateTime.h"
#include "mattoni_core_export.h"

#include <QString>
#include <QVariant>

#include <memory>
#include <vector>

namespace mattoni {

class TField;
class TParams;

class MATTONI_CORE_EXPORT TParam
{
public:
    explicit TParam(TParams *collection = nullptr, TParamType paramType = ptUnknown);
    TParam(const TParam &) = delete;
    TParam &operator=(const TParam &) = delete;

    QString Name() const { return m_name; }
    void setName(const QString &name) { m_name = name; }
    TFieldType DataType() const { return m_dataType; }
    void setDataType(TFieldType type) { m_dataType = type; }
    TParamType ParamType() const { return m_paramType; }
    void setParamType(TParamType type) { m_paramType = type; }
    int Size() const { return m_size; }
    void setSize(int size) { m_size = size; }
    int Precision() const { return m_precision; }
    void setPrecision(int precision) { m_precision = precision; }
    int NumericScale() const { return m_numericScale; }
    void setNumericScale(int scale) { m_numericScale = scale; }
    // A value was assigned since the last Clear.
    bool Bound() const { return m_bound; }
    void setBound(bool value) { m_bound = value; }
    TParams *Collection() const { return m_collection; }

    // Null or unassigned.
    bool IsNull() const;
    // Null; the data type stays.
    void Clear();
    QVariant Value() const { return m_value; }
    // An unknown data type becomes the value's type.
    void setValue(const QVariant &value);

    // Readers give "", 0, false for a null parameter; a value that does not convert raises
    // EVariantError. Writers set the data type they name.
    QString AsString() const;
    void setAsString(const QString &value);
    qint32 AsInteger() const;
    void setAsInteger(qint32 value);
    qint32 AsSmallInt() const { return AsInteger(); }
    void setAsSmallInt(qint32 value);
    qint32 AsWord() const { return AsInteger(); }
    void setAsWord(qint32 value);
    qint64 AsLargeInt() const;
    void setAsLargeInt(qint64 value);
    double AsFloat() const;
    void setAsFloat(double value);
    Currency AsCurrency() const;
    void setAsCurrency(Currency value);
    Currency AsBCD() const { return AsCurrency(); }
    void setAsBCD(Currency value);
    TDateTime AsDateTime() const;
    void setAsDateTime(TDateTime value);
    TDateTime AsDate() const { return AsDateTime(); }
    void setAsDate(TDateTime value);
    TDateTime AsTime() const { return AsDateTime(); }
    void setAsTime(TDateTime value);
    bool AsBoolean() const;
    void setAsBoolean(bool value);
    QString AsMemo() const { return AsString(); }
    void setAsMemo(const QString &value);
    QByteArray AsBlob() const;
    void setAsBlob(const QByteArray &value);

    // Name, data type and value of Field.
    void AssignField(const TField *field);
    // Data type and value of Field, keeping the name.
    void AssignFieldValue(const TField *field, const QVariant &value);
    void Assign(const TParam &source);

private:
    void SetTyped(TFieldType type, const QVariant &value);

    TParams *m_collection;
    QString m_name;
    TFieldType m_dataType = ftUnknown;
    TParamType m_paramType;
    int m_size = 0;
    int m_precision = 0;
    int m_numericScale = 0;
    bool m_bound = false;
    QVariant m_value;
};

class MATTONI_CORE_EXPORT TParams
{
public:
    TParams();
    ~TParams();
    TParams(const TParams &) = delete;
    TParams &operator=(const TParams &) = delete;

    int Count() const { return int(m_items.size()); }
    TParam *Items(int index) const { return m_items.at(index).get(); }
    TParam *operator[](int index) const { return m_items.at(index).get(); }
    TParam *AddParameter();
    TParam *CreateParam(TFieldType dataType, const QString &name, TParamType paramType);
    // By name, ignoring case; nullptr when absent.
    TParam *FindParam(const QString &name) const;
    // Raises "Parameter '%s' not found".
    TParam *ParamByName(const QString &name) const;
    int IndexOf(const TParam *param) const;
    void Delete(int index);
    void Clear();
    // Deep copy of Source's parameters.
    void Assign(const TParams &source);
    // Values of same-named parameters of Source.
    void AssignValues(const TParams &source);
    // Values of the ";"-separated parameters: one value, or a list for several.
    QVariant ParamValues(const QString &names) const;
    void setParamValues(const QString &names, const QVariant &values);
    // The ":name" parameters of an SQL text (outside quotes; "::" stands for ":"): created when
    // DoCreate (once per name), and the text with each replaced by "?".
    QString ParseSQL(const QString &sql, bool doCreate);

private:
    std::vector<std::unique_ptr<TParam>> m_items;
};

} // namespace mattoni
