// The records of a client dataset: typed columns (numbers in plain arrays, short texts in one
// character arena per column), the default order, the indexes and the filtered view. Private to
// the data layer.
#pragma once

#include "DB.h"
#include "Filter.h"

#include <QByteArray>
#include <QString>
#include <QStringView>
#include <QVariant>

#include <functional>
#include <memory>
#include <vector>

namespace mattoni::detail {

using RecordId = quint32;
inline constexpr RecordId NoRecord = 0xFFFFFFFFu;

// How a column keeps its values.
enum class Storage : quint8 { None, Int, Bool, Float, Curr, Text, Memo, Bytes, Variant };
Storage StorageOf(TFieldType type);

// Texts of one column, back to back; an update that does not fit its old place moves to the
// end and the arena is compacted once half of it is dead.
class TextArena
{
public:
    QStringView View(RecordId id) const
    {
        const Span &s = m_spans[id];
        return QStringView(m_chars.data() + s.offset, qsizetype(s.length));
    }
    void Resize(size_t count) { m_spans.resize(count); }
    void Set(RecordId id, QStringView text);
    void Clear();
    size_t MemoryBytes() const;

private:
    struct Span
    {
        quint32 offset = 0;
        quint32 length = 0;
    };
    void Compact();

    std::vector<char16_t> m_chars;
    std::vector<Span> m_spans;
    size_t m_dead = 0;
};

class Column
{
public:
    Column(TFieldType type, int size);

    TFieldType Type() const { return m_type; }
    // Another type of the same storage (an integer column found to need 64 bits).
    void Retype(TFieldType type) { m_type = type; }
    Storage Kind() const { return m_kind; }
    int Size() const { return m_size; }
    void Resize(size_t count);
    bool IsNull(RecordId id) const { return m_nulls[id]; }
    // The value as the field of this type reads it (QString, int, qlonglong, double, QDate ...).
    QVariant Get(RecordId id) const;
    // Value is of the field's own type or Null.
    void Set(RecordId id, const QVariant &value);
    qint64 Int(RecordId id) const { return m_ints[id]; }
    double Float(RecordId id) const { return m_floats[id]; }
    QStringView Text(RecordId id) const;
    // Nulls first; texts by UTF-16 code units, optionally ignoring case.
    int Compare(RecordId a, RecordId b, bool caseInsensitive) const;
    // An order-preserving 64-bit word of the value: a < b whenever Prefix(a) < Prefix(b). A text
    // gives four characters from Offset. Complete tells whether the word holds the whole value
    // (false for Null, whose word 0 it shares with the lowest values).
    quint64 Prefix(RecordId id, bool caseInsensitive, int offset, bool &complete) const;
    bool HasPrefix() const { return m_kind != Storage::Memo && m_kind != Storage::Bytes && m_kind != Storage::Variant; }
    bool Exact() const { return m_kind == Storage::Int || m_kind == Storage::Bool || m_kind == Storage::Curr || m_kind == Storage::Float; }
    void Clear();
    size_t MemoryBytes() const;

private:
    TFieldType m_type;
    Storage m_kind;
    int m_size;
    std::vector<bool> m_nulls;
    std::vector<qint64> m_ints;
    std::vector<double> m_floats;
    TextArena m_text;
    std::vector<QString> m_memos;
    std::vector<QByteArray> m_bytes;
    std::vector<QVariant> m_variants;
};

struct KeyPart
{
    int column;
    bool descending;
    bool caseInsensitive;
};

// A named order of the records; Order is kept sorted while the index is maintained.
struct Index
{
    QString name;
    QString fields;
    QString descFields;
    QString caseInsFields;
    TIndexOptions options;
    int groupingLevel = 0;
    std::vector<KeyPart> parts;
    std::vector<RecordId> order;
    bool built = false;
    bool Unique() const { return options.testFlag(ixUnique) || options.testFlag(ixPrimary); }
};

using Predicate = std::function<bool(RecordId)>;

class RecordStore
{
public:
    // Columns in the order of the dataset's stored fields.
    explicit RecordStore(std::vector<Column> columns);

    int ColumnCount() const { return int(m_columns.size()); }
    Column &ColumnAt(int c) { return m_columns[size_t(c)]; }
    const Column &ColumnAt(int c) const { return m_columns[size_t(c)]; }
    bool Exists(RecordId id) const { return id < m_alive.size() && m_alive[id]; }
    // Records ever stored (deleted ones included): the range of ids.
    size_t Capacity() const { return m_alive.size(); }
    size_t LiveCount() const { return m_defaultOrder.size(); }

    // --- records ---
    // Appends a record at the end of the default order without touching indexes or views, for
    // loading; call Loaded() afterwards.
    RecordId Append(const QVariantList &values);
    void Loaded();
    // Inserts before Before in the default order (NoRecord: at the end) and into the indexes and
    // the view.
    RecordId Insert(const QVariantList &values, RecordId before);
    void Update(RecordId id, const QVariantList &values);
    void Remove(RecordId id);
    void Clear();
    QVariant Value(RecordId id, int column) const { return m_columns[size_t(column)].Get(id); }
    // Raises "Key violation" when Values would duplicate the key of a unique index.
    void CheckUnique(const QVariantList &values, RecordId self);
    // The view position a record with Values will have once inserted before Before (or once
    // Self is updated with them), -1 when the filter will hide it.
    int PredictPosition(const QVariantList &values, RecordId before, RecordId self);

    // --- indexes ---
    std::vector<std::unique_ptr<Index>> &Indexes() { return m_indexes; }
    Index *FindIndex(const QString &name) const;
    void AddIndex(std::unique_ptr<Index> index);
    void DeleteIndex(const QString &name);
    // nullptr: the default order.
    void SetActiveIndex(Index *index);
    Index *ActiveIndex() const { return m_active; }
    // Negative, 0, positive by the active order (ranks break ties).
    int CompareInOrder(RecordId a, RecordId b) const;
    // The leading key parts of the active index against Key (values of the key fields' types;
    // unassigned values end the key).
    int CompareKey(RecordId id, const QVariantList &key) const;

    // --- the view: the active order, filtered ---
    // A non-zero Token names the filter: turning the same filter on again over unchanged records
    // takes back the view it gave last time instead of testing every record.
    void SetFilter(Predicate predicate, quint64 token = 0);
    bool Filtered() const { return bool(m_filter); }
    int ViewCount() const { return int(View().size()); }
    RecordId ViewRecord(int position) const { return View()[size_t(position)]; }
    // Binary search by the active order; -1 when the record is not in the view.
    int ViewPosition(RecordId id) const;
    const std::vector<RecordId> &View() const { return m_filter ? m_filtered : *m_activeOrder; }
    // Differs for every distinct view (content or order); a view taken back keeps its number.
    quint64 ViewVersion() const { return m_viewVersion; }

    size_t MemoryBytes() const;

private:
    void SetValues(RecordId id, const QVariantList &values);
    qint64 RankBefore(RecordId before);
    void Renumber();
    void Build(Index &index);
    void Maintain(Index &index) const;
    int CompareParts(const std::vector<KeyPart> &parts, RecordId a, RecordId b) const;
    // The parts alone, without the default order.
    int CompareKeys(const std::vector<KeyPart> &parts, RecordId a, RecordId b) const;
    int CompareValue(const KeyPart &part, RecordId id, const QVariant &value) const;
    std::vector<RecordId>::iterator Find(std::vector<RecordId> &order, const std::vector<KeyPart> &parts, RecordId id);
    void InsertInto(std::vector<RecordId> &order, const std::vector<KeyPart> &parts, RecordId id);
    void EraseFrom(std::vector<RecordId> &order, const std::vector<KeyPart> &parts, RecordId id);
    void RebuildView();
    // Records or order changed: every view is a new one.
    void Changed();
    static const std::vector<KeyPart> &NoParts();

    std::vector<Column> m_columns;
    std::vector<bool> m_alive;
    // Default order: ranks increase along m_defaultOrder and are unique.
    std::vector<qint64> m_rank;
    std::vector<RecordId> m_defaultOrder;
    // A slot that is never a record: values are tried there before they are stored.
    RecordId m_scratch = NoRecord;
    std::vector<std::unique_ptr<Index>> m_indexes;
    Index *m_active = nullptr;
    const std::vector<RecordId> *m_activeOrder;
    Predicate m_filter;
    quint64 m_filterToken = 0;
    std::vector<RecordId> m_filtered;
    struct SavedView
    {
        quint64 token = 0;
        quint64 dataVersion = 0;
        quint64 viewVersion = 0;
        std::vector<RecordId> records;
    } m_savedView;
    quint64 m_dataVersion = 1;
    quint64 m_versionCounter = 1;
    quint64 m_orderVersion = 1;
    quint64 m_viewVersion = 1;
};

} // namespace mattoni::detail
