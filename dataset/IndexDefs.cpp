// Index definitions.
#include "IndexDefs.h"

#include "DataSet.h"
#include "Strings.h"

namespace mattoni {

using namespace DBConsts;

TIndexDef::TIndexDef(TIndexDefs *collection, const QString &name, const QString &fields, TIndexOptions options)
    : m_collection(collection), m_name(name), m_fields(fields), m_options(options)
{
}

void TIndexDef::Assign(const TIndexDef &source)
{
    m_name = source.m_name;
    m_fields = source.m_fields;
    m_descFields = source.m_descFields;
    m_caseInsFields = source.m_caseInsFields;
    m_options = source.m_options;
    m_groupingLevel = source.m_groupingLevel;
    m_expression = source.m_expression;
    m_source = source.m_source;
}

TIndexDefs::TIndexDefs(TDataSet *dataSet) : m_dataSet(dataSet) {}

TIndexDefs::~TIndexDefs() = default;

TIndexDef *TIndexDefs::AddIndexDef()
{
    m_items.push_back(std::make_unique<TIndexDef>(this));
    return m_items.back().get();
}

TIndexDef *TIndexDefs::Add(const QString &name, const QString &fields, TIndexOptions options)
{
    if (FindDef(name))
        DatabaseErrorFmt(SDuplicateIndexName, {name}, m_dataSet);
    m_items.push_back(std::make_unique<TIndexDef>(this, name, fields, options));
    return m_items.back().get();
}

int TIndexDefs::IndexOf(const QString &name) const
{
    for (int i = 0; i < Count(); ++i) {
        if (SameText(m_items[size_t(i)]->Name(), name))
            return i;
    }
    return -1;
}

TIndexDef *TIndexDefs::FindDef(const QString &name) const
{
    const int i = IndexOf(name);
    return i < 0 ? nullptr : Items(i);
}

TIndexDef *TIndexDefs::Find(const QString &name) const
{
    TIndexDef *def = FindDef(name);
    if (!def)
        DatabaseErrorFmt(SIndexNotFound, {name}, m_dataSet);
    return def;
}

TIndexDef *TIndexDefs::GetIndexForFields(const QString &fields, bool caseInsensitive) const
{
    const QString wanted = UpperCase(fields);
    for (const auto &def : m_items) {
        if (caseInsensitive && !def->Options().testFlag(ixCaseInsensitive))
            continue;
        const QString own = UpperCase(def->Fields());
        if (own == wanted || own.startsWith(wanted + QLatin1Char(';')))
            return def.get();
    }
    return nullptr;
}

TIndexDef *TIndexDefs::FindIndexForFields(const QString &fields) const
{
    TIndexDef *def = GetIndexForFields(fields, false);
    if (!def)
        DatabaseErrorFmt(SIndexNotFound, {fields}, m_dataSet);
    return def;
}

void TIndexDefs::Delete(int index)
{
    m_items.erase(m_items.begin() + index);
}

void TIndexDefs::Clear()
{
    m_items.clear();
}

void TIndexDefs::Assign(const TIndexDefs &source)
{
    if (&source == this)
        return;
    m_items.clear();
    for (const auto &def : source.m_items)
        AddIndexDef()->Assign(*def);
}

void TIndexDefs::Update()
{
    if (m_dataSet)
        m_dataSet->UpdateIndexDefs();
    m_updated = true;
}

} // namespace mattoni
