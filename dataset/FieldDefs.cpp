// Field definitions.
#include "FieldDefs.h"

#include "DataSet.h"
#include "Fields.h"
#include "Strings.h"

namespace mattoni {

using namespace DBConsts;

TFieldDef::TFieldDef(TFieldDefs *collection, const QString &name, TFieldType dataType, int size, bool required)
    : m_collection(collection), m_name(name), m_dataType(dataType), m_size(size),
      m_childDefs(std::make_unique<TFieldDefs>(collection ? collection->DataSet() : nullptr, this))
{
    setRequired(required);
}

TFieldDef::~TFieldDef() = default;

bool TFieldDef::HasChildDefs() const
{
    return m_childDefs->Count() > 0;
}

TFieldDef *TFieldDef::ParentDef() const
{
    return m_collection ? m_collection->ParentDef() : nullptr;
}

int TFieldDef::Index() const
{
    if (!m_collection)
        return -1;
    for (int i = 0; i < m_collection->Count(); ++i) {
        if (m_collection->Items(i) == this)
            return i;
    }
    return -1;
}

int TFieldDef::FieldNo() const
{
    const TFieldDefs *root = m_collection;
    while (root && root->ParentDef())
        root = root->ParentDef()->Collection();
    if (!root)
        return 0;
    int counter = 0;
    std::function<int(const TFieldDefs &)> walk = [&](const TFieldDefs &defs) -> int {
        for (int i = 0; i < defs.Count(); ++i) {
            ++counter;
            if (defs[i] == this)
                return counter;
            if (const int found = walk(defs[i]->ChildDefs()))
                return found;
        }
        return 0;
    };
    return walk(*root);
}

TField *TFieldDef::CreateField(QObject *owner, TObjectField *parentField, const QString &fieldName,
                               bool createChildren) const
{
    TField *field = CreateFieldOfType(m_dataType, owner);
    try {
        field->setFieldName(fieldName.isEmpty() ? m_name : fieldName);
        if (m_dataType != ftADT)
            field->setSize(m_size);
        field->setRequired(Required());
        field->setReadOnly(m_attributes.testFlag(faReadonly));
        field->setVisible(!m_attributes.testFlag(faHiddenCol));
        if (m_internalCalc)
            field->setFieldKind(fkInternalCalc);
        if (auto *bcd = qobject_cast<TBCDField *>(field))
            bcd->setPrecision(m_precision);
        else if (auto *fmt = qobject_cast<TFMTBCDField *>(field); fmt && m_precision > 0)
            fmt->setPrecision(m_precision);
        if (parentField)
            field->setParentField(parentField);
        else if (m_collection && m_collection->DataSet())
            field->setDataSet(m_collection->DataSet());
        if (auto *object = qobject_cast<TObjectField *>(field); object && createChildren) {
            for (int i = 0; i < m_childDefs->Count(); ++i) {
                const TFieldDef *child = m_childDefs->Items(i);
                const QString childName = m_dataType == ftArray && child->Name().isEmpty()
                    ? m_name + QLatin1Char('[') + QString::number(i) + QLatin1Char(']')
                    : QString();
                child->CreateField(owner, object, childName, true);
            }
        }
    } catch (...) {
        delete field;
        throw;
    }
    return field;
}

void TFieldDef::Assign(const TFieldDef &source)
{
    m_name = source.m_name;
    m_dataType = source.m_dataType;
    m_size = source.m_size;
    m_precision = source.m_precision;
    m_attributes = source.m_attributes;
    m_internalCalc = source.m_internalCalc;
    m_childDefs->Assign(*source.m_childDefs);
}

TFieldDefs::TFieldDefs(TDataSet *dataSet, TFieldDef *parentDef) : m_dataSet(dataSet), m_parentDef(parentDef) {}

TFieldDefs::~TFieldDefs() = default;

TFieldDef *TFieldDefs::AddFieldDef()
{
    m_items.push_back(std::make_unique<TFieldDef>(this));
    return m_items.back().get();
}

TFieldDef *TFieldDefs::Add(const QString &name, TFieldType dataType, int size, bool required)
{
    if (name.isEmpty())
        DatabaseError(QString::fromLatin1(SFieldNameMissing), m_dataSet);
    if (FindDef(name))
        DatabaseErrorFmt(SDuplicateFieldName, {name}, m_dataSet);
    m_items.push_back(std::make_unique<TFieldDef>(this, name, dataType, size, required));
    return m_items.back().get();
}

int TFieldDefs::IndexOf(const QString &name) const
{
    for (int i = 0; i < Count(); ++i) {
        if (SameText(m_items[size_t(i)]->Name(), name))
            return i;
    }
    return -1;
}

TFieldDef *TFieldDefs::FindDef(const QString &name) const
{
    const int i = IndexOf(name);
    return i < 0 ? nullptr : Items(i);
}

TFieldDef *TFieldDefs::Find(const QString &name) const
{
    TFieldDef *def = FindDef(name);
    if (!def)
        DatabaseErrorFmt(SFieldNotFound, {name}, m_dataSet);
    return def;
}

void TFieldDefs::Delete(int index)
{
    m_items.erase(m_items.begin() + index);
}

void TFieldDefs::Clear()
{
    m_items.clear();
}

void TFieldDefs::Assign(const TFieldDefs &source)
{
    if (&source == this)
        return;
    m_items.clear();
    for (int i = 0; i < source.Count(); ++i)
        AddFieldDef()->Assign(*source.Items(i));
}

void TFieldDefs::Update()
{
    if (m_dataSet && !m_parentDef) {
        m_dataSet->InternalInitFieldDefs();
        m_updated = true;
    }
}

} // namespace mattoni
