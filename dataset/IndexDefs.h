// Index definitions: named orders of a dataset's records by a list of fields, each ascending or
// descending, case-sensitive or not, unique or not.
#pragma once

#include "DB.h"
#include "mattoni_core_export.h"

#include <QString>

#include <memory>
#include <vector>

namespace mattoni {

class TDataSet;
class TIndexDefs;

class MATTONI_CORE_EXPORT TIndexDef
{
public:
    TIndexDef(TIndexDefs *collection, const QString &name = QString(), const QString &fields = QString(),
              TIndexOptions options = {});

    QString Name() const { return m_name; }
    void setName(const QString &name) { m_name = name; }
    // Field names separated by ";".
    QString Fields() const { return m_fields; }
    void setFields(const QString &fields) { m_fields = fields; }
    // The fields, among Fields, sorted descending ("" with ixDescending: all of them).
    QString DescFields() const { return m_descFields; }
    void setDescFields(const QString &fields) { m_descFields = fields; }
    // The fields compared ignoring case ("" with ixCaseInsensitive: all of them).
    QString CaseInsFields() const { return m_caseInsFields; }
    void setCaseInsFields(const QString &fields) { m_caseInsFields = fields; }
    TIndexOptions Options() const { return m_options; }
    void setOptions(TIndexOptions options) { m_options = options; }
    // How many leading fields form groups; kept with the definition.
    int GroupingLevel() const { return m_groupingLevel; }
    void setGroupingLevel(int level) { m_groupingLevel = level; }
    QString Expression() const { return m_expression; }
    void setExpression(const QString &expression) { m_expression = expression; }
    QString Source() const { return m_source; }
    void setSource(const QString &source) { m_source = source; }

    TIndexDefs *Collection() const { return m_collection; }
    void Assign(const TIndexDef &source);

private:
    TIndexDefs *m_collection;
    QString m_name;
    QString m_fields;
    QString m_descFields;
    QString m_caseInsFields;
    TIndexOptions m_options;
    int m_groupingLevel = 0;
    QString m_expression;
    QString m_source;
};

class MATTONI_CORE_EXPORT TIndexDefs
{
public:
    explicit TIndexDefs(TDataSet *dataSet);
    ~TIndexDefs();
    TIndexDefs(const TIndexDefs &) = delete;
    TIndexDefs &operator=(const TIndexDefs &) = delete;

    TDataSet *DataSet() const { return m_dataSet; }
    int Count() const { return int(m_items.size()); }
    TIndexDef *Items(int index) const { return m_items.at(index).get(); }
    TIndexDef *operator[](int index) const { return m_items.at(index).get(); }
    TIndexDef *AddIndexDef();
    TIndexDef *Add(const QString &name, const QString &fields, TIndexOptions options);
    // By name, ignoring case; -1 or nullptr when absent.
    int IndexOf(const QString &name) const;
    TIndexDef *FindDef(const QString &name) const;
    // Raises "Index '%s' not found".
    TIndexDef *Find(const QString &name) const;
    // The first index whose leading fields are Fields (and, when CaseInsensitive, that ignores
    // case); nullptr when none. FindIndexForFields raises "Index '%s' not found" instead.
    TIndexDef *GetIndexForFields(const QString &fields, bool caseInsensitive) const;
    TIndexDef *FindIndexForFields(const QString &fields) const;
    void Delete(int index);
    void Clear();
    void Assign(const TIndexDefs &source);

    // Reads the definitions again from the dataset: an open dataset lists the indexes it keeps
    // (including those added with AddIndex and without those deleted with DeleteIndex).
    void Update();
    bool Updated() const { return m_updated; }
    void setUpdated(bool value) { m_updated = value; }

private:
    TDataSet *m_dataSet;
    std::vector<std::unique_ptr<TIndexDef>> m_items;
    bool m_updated = false;
};

} // namespace mattoni
