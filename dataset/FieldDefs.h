// Field definitions: the structure of a dataset's records (name, type, size, precision,
// attributes, and child definitions for records and arrays), from which its fields are made.
#pragma once

#include "DB.h"
#include "mattoni_core_export.h"

#include <QString>

#include <memory>
#include <vector>

class QObject;

namespace mattoni {

class TDataSet;
class TField;
class TFieldDefs;
class TObjectField;

class MATTONI_CORE_EXPORT TFieldDef
{
public:
    TFieldDef(TFieldDefs *collection, const QString &name = QString(), TFieldType dataType = ftUnknown,
              int size = 0, bool required = false);
    ~TFieldDef();
    TFieldDef(const TFieldDef &) = delete;
    TFieldDef &operator=(const TFieldDef &) = delete;

    QString Name() const { return m_name; }
    void setName(const QString &name) { m_name = name; }
    TFieldType DataType() const { return m_dataType; }
    void setDataType(TFieldType type) { m_dataType = type; }
    // Characters of a string, bytes of a binary, decimals of a BCD, elements of an array.
    int Size() const { return m_size; }
    void setSize(int size) { m_size = size; }
    // Total digits of a BCD.
    int Precision() const { return m_precision; }
    void setPrecision(int precision) { m_precision = precision; }
    TFieldAttributes Attributes() const { return m_attributes; }
    void setAttributes(TFieldAttributes attributes) { m_attributes = attributes; }
    // The faRequired attribute.
    bool Required() const { return m_attributes.testFlag(faRequired); }
    void setRequired(bool value) { m_attributes.setFlag(faRequired, value); }
    // Stored, but computed by the dataset's OnCalcFields when a record is posted.
    bool InternalCalcField() const { return m_internalCalc; }
    void setInternalCalcField(bool value) { m_internalCalc = value; }

    TFieldDefs &ChildDefs() { return *m_childDefs; }
    const TFieldDefs &ChildDefs() const { return *m_childDefs; }
    bool HasChildDefs() const;
    TFieldDefs *Collection() const { return m_collection; }
    TFieldDef *ParentDef() const;
    int Index() const;
    // 1-based position of the definition in the depth-first order of its dataset's definitions.
    int FieldNo() const;

    // A field of the class of DataType, named and sized after this definition, its attributes
    // taken from Attributes (faHiddenCol hides it, faReadonly and faRequired as they say), added
    // to ParentField's children or to the dataset's fields; object fields get their children.
    TField *CreateField(QObject *owner, TObjectField *parentField = nullptr,
                        const QString &fieldName = QString(), bool createChildren = true) const;

    // Copies everything but the collection, children included.
    void Assign(const TFieldDef &source);

private:
    TFieldDefs *m_collection;
    QString m_name;
    TFieldType m_dataType;
    int m_size;
    int m_precision = 0;
    TFieldAttributes m_attributes;
    bool m_internalCalc = false;
    std::unique_ptr<TFieldDefs> m_childDefs;
};

class MATTONI_CORE_EXPORT TFieldDefs
{
public:
    // The definitions of DataSet, or the child definitions of ParentDef.
    explicit TFieldDefs(TDataSet *dataSet, TFieldDef *parentDef = nullptr);
    ~TFieldDefs();
    TFieldDefs(const TFieldDefs &) = delete;
    TFieldDefs &operator=(const TFieldDefs &) = delete;

    TDataSet *DataSet() const { return m_dataSet; }
    TFieldDef *ParentDef() const { return m_parentDef; }
    int Count() const { return int(m_items.size()); }
    TFieldDef *Items(int index) const { return m_items.at(index).get(); }
    TFieldDef *operator[](int index) const { return m_items.at(index).get(); }
    TFieldDef *AddFieldDef();
    TFieldDef *Add(const QString &name, TFieldType dataType, int size = 0, bool required = false);
    // By name, ignoring case; -1 or nullptr when absent.
    int IndexOf(const QString &name) const;
    TFieldDef *FindDef(const QString &name) const;
    // Raises "Field '%s' not found".
    TFieldDef *Find(const QString &name) const;
    void Delete(int index);
    void Clear();
    // Deep copy of Source's definitions.
    void Assign(const TFieldDefs &source);

    // Reads the definitions again from the dataset's source (a running dataset's structure, a
    // command's columns); a dataset without a source keeps them.
    void Update();
    bool Updated() const { return m_updated; }
    void setUpdated(bool value) { m_updated = value; }

private:
    TDataSet *m_dataSet;
    TFieldDef *m_parentDef;
    std::vector<std::unique_ptr<TFieldDef>> m_items;
    bool m_updated = false;
};

} // namespace mattoni
