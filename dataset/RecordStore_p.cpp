// The records of a client dataset.
#include "RecordStore_p.h"

#include "Currency.h"
#include "DateTime.h"
#include "Exceptions.h"
#include "Variants.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace mattoni::detail {

namespace {

constexpr qint64 RankGap = qint64(1) << 20;

bool isNullValue(const QVariant &v)
{
    return !v.isValid() || VarIsNull(v);
}

template<typename T>
int threeWay(T a, T b)
{
    return a < b ? -1 : (b < a ? 1 : 0);
}

// Doubles in a total order: -0.0 equals 0.0, NaN after everything.
int compareDoubles(double a, double b)
{
    const bool na = std::isnan(a), nb = std::isnan(b);
    if (na || nb)
        return int(na) - int(nb);
    return threeWay(a, b);
}

// Texts ignoring case, each UTF-16 unit case-folded as QChar::toCaseFolded does (the order of
// QStringView::compare with Qt::CaseInsensitive, and of Prefix). Index builds spend most of their
// time here: equal units are skipped four at a time and ASCII letters are folded inline.
int compareFolded(QStringView a, QStringView b)
{
    const qsizetype n = std::min(a.size(), b.size());
    const char16_t *pa = a.utf16(), *pb = b.utf16();
    qsizetype i = 0;
    while (i < n) {
        for (quint64 wa, wb; i + 4 <= n; i += 4) {
            std::memcpy(&wa, pa + i, sizeof wa);
            std::memcpy(&wb, pb + i, sizeof wb);
            if (wa != wb)
                break;
        }
        while (i < n && pa[i] == pb[i])
            ++i;
        if (i == n)
            break;
        char16_t ca = pa[i], cb = pb[i];
        ca = ca < 128 ? char16_t(ca >= u'A' && ca <= u'Z' ? ca + 32 : ca) : QChar::toCaseFolded(ca);
        cb = cb < 128 ? char16_t(cb >= u'A' && cb <= u'Z' ? cb + 32 : cb) : QChar::toCaseFolded(cb);
        if (ca != cb)
            return ca < cb ? -1 : 1;
        ++i;
    }
    return threeWay(a.size(), b.size());
}

bool isDateType(TFieldType t)
{
    return t == ftDate || t == ftTime || t == ftDateTime || t == ftTimeStamp || t == ftOraTimeStamp;
}

qint64 toInt64(const QVariant &v)
{
    switch (v.metaType().id()) {
    case QMetaType::Int: return v.toInt();
    case QMetaType::LongLong: return v.toLongLong();
    case QMetaType::Bool: return v.toBool() ? 1 : 0;
    default: return VarToInt(v);
    }
}

double toDouble(TFieldType type, const QVariant &v)
{
    if (isDateType(type))
        return VarToDateTime(v);
    return v.metaType().id() == QMetaType::Double ? v.toDouble() : VarToFloat(v);
}

int compareVariants(const QVariant &a, const QVariant &b)
{
    const QPartialOrdering order = QVariant::compare(a, b);
    if (order == QPartialOrdering::Less)
        return -1;
    if (order == QPartialOrdering::Greater)
        return 1;
    if (order == QPartialOrdering::Equivalent)
        return 0;
    return VarToStr(a).compare(VarToStr(b));
}

} // namespace

Storage StorageOf(TFieldType type)
{
    switch (type) {
    case ftSmallint: case ftInteger: case ftWord: case ftAutoInc: case ftLargeint:
        return Storage::Int;
    case ftBoolean:
        return Storage::Bool;
    case ftFloat: case ftCurrency: case ftFMTBcd: case ftDate: case ftTime: case ftDateTime:
    case ftTimeStamp: case ftOraTimeStamp:
        return Storage::Float;
    case ftBCD:
        return Storage::Curr;
    case ftString: case ftFixedChar: case ftWideString: case ftFixedWideChar: case ftGuid: case ftOraInterval:
        return Storage::Text;
    case ftMemo: case ftWideMemo: case ftOraClob:
        return Storage::Memo;
    case ftBytes: case ftVarBytes: case ftBlob: case ftGraphic: case ftFmtMemo: case ftParadoxOle:
    case ftDBaseOle: case ftTypedBinary: case ftOraBlob:
        return Storage::Bytes;
    case ftVariant: case ftInterface: case ftIDispatch:
        return Storage::Variant;
    default:
        return Storage::None;
    }
}

// ---------------------------------------------------------------------------------------------
// TextArena

void TextArena::Set(RecordId id, QStringView text)
{
    Span &s = m_spans[id];
    const size_t length = size_t(text.size());
    const char16_t *chars = text.utf16();
    if (length <= s.length) {
        std::copy(chars, chars + length, m_chars.begin() + s.offset);
        m_dead += s.length - length;
        s.length = quint32(length);
        return;
    }
    m_dead += s.length;
    if (m_chars.size() + length > std::numeric_limits<quint32>::max()) {
        Compact();
        if (m_chars.size() + length > std::numeric_limits<quint32>::max())
            throw EDatabaseError(QStringLiteral("Text column exceeds its storage"));
    }
    s.offset = quint32(m_chars.size());
    s.length = quint32(length);
    m_chars.insert(m_chars.end(), chars, chars + length);
    if (m_dead > (size_t(1) << 20) && m_dead * 2 > m_chars.size())
        Compact();
}

void TextArena::Compact()
{
    std::vector<char16_t> chars;
    chars.reserve(m_chars.size() - m_dead);
    for (Span &s : m_spans) {
        const quint32 offset = quint32(chars.size());
        chars.insert(chars.end(), m_chars.begin() + s.offset, m_chars.begin() + s.offset + s.length);
        s.offset = offset;
    }
    m_chars.swap(chars);
    m_dead = 0;
}

void TextArena::Clear()
{
    m_chars.clear();
    m_chars.shrink_to_fit();
    m_spans.clear();
    m_spans.shrink_to_fit();
    m_dead = 0;
}

size_t TextArena::MemoryBytes() const
{
    return m_chars.capacity() * sizeof(char16_t) + m_spans.capacity() * sizeof(Span);
}

// ---------------------------------------------------------------------------------------------
// Column

Column::Column(TFieldType type, int size) : m_type(type), m_kind(StorageOf(type)), m_size(size) {}

void Column::Resize(size_t count)
{
    m_nulls.resize(count, true);
    switch (m_kind) {
    case Storage::Int: case Storage::Bool: case Storage::Curr: m_ints.resize(count); break;
    case Storage::Float: m_floats.resize(count); break;
    case Storage::Text: m_text.Resize(count); break;
    case Storage::Memo: m_memos.resize(count); break;
    case Storage::Bytes: m_bytes.resize(count); break;
    case Storage::Variant: m_variants.resize(count); break;
    case Storage::None: break;
    }
}

QVariant Column::Get(RecordId id) const
{
    if (m_nulls[id])
        return Null();
    switch (m_kind) {
    case Storage::Int:
        if (m_type == ftLargeint)
            return qlonglong(m_ints[id]);
        return int(m_ints[id]);
    case Storage::Bool: return m_ints[id] != 0;
    case Storage::Curr: return QVariant::fromValue(Currency::FromRaw(m_ints[id]));
    case Storage::Float:
        switch (m_type) {
        case ftDate: return DateTimeToQDate(m_floats[id]);
        case ftTime: return DateTimeToQTime(m_floats[id]);
        case ftDateTime: case ftTimeStamp: case ftOraTimeStamp: return DateTimeToQDateTime(m_floats[id]);
        default: return m_floats[id];
        }
    case Storage::Text: return m_text.View(id).toString();
    case Storage::Memo: return m_memos[id];
    case Storage::Bytes: return m_bytes[id];
    case Storage::Variant: return m_variants[id];
    case Storage::None: break;
    }
    return Null();
}

QStringView Column::Text(RecordId id) const
{
    if (m_kind == Storage::Text)
        return m_text.View(id);
    if (m_kind == Storage::Memo)
        return m_memos[id];
    return {};
}

void Column::Set(RecordId id, const QVariant &value)
{
    const bool null = isNullValue(value);
    m_nulls[id] = null;
    switch (m_kind) {
    case Storage::Int: case Storage::Bool: m_ints[id] = null ? 0 : toInt64(value); break;
    case Storage::Curr:
        m_ints[id] = null ? 0
            : (value.metaType() == QMetaType::fromType<Currency>() ? value.value<Currency>() : VarToCurr(value)).Raw();
        break;
    case Storage::Float: m_floats[id] = null ? 0.0 : toDouble(m_type, value); break;
    case Storage::Text: m_text.Set(id, null ? QString() : value.toString()); break;
    case Storage::Memo: m_memos[id] = null ? QString() : value.toString(); break;
    case Storage::Bytes:
        m_bytes[id] = null ? QByteArray()
            : (value.metaType().id() == QMetaType::QString ? value.toString().toLatin1() : value.toByteArray());
        break;
    case Storage::Variant: m_variants[id] = null ? QVariant() : value; break;
    case Storage::None: break;
    }
}

int Column::Compare(RecordId a, RecordId b, bool caseInsensitive) const
{
    const bool na = m_nulls[a], nb = m_nulls[b];
    if (na || nb)
        return na == nb ? 0 : (na ? -1 : 1);
    switch (m_kind) {
    case Storage::Int: case Storage::Bool: case Storage::Curr: return threeWay(m_ints[a], m_ints[b]);
    case Storage::Float: return compareDoubles(m_floats[a], m_floats[b]);
    case Storage::Text:
        return caseInsensitive ? compareFolded(m_text.View(a), m_text.View(b)) : m_text.View(a).compare(m_text.View(b));
    case Storage::Memo:
        return caseInsensitive ? compareFolded(m_memos[a], m_memos[b]) : m_memos[a].compare(m_memos[b]);
    case Storage::Bytes: return m_bytes[a].compare(m_bytes[b]);
    case Storage::Variant: return compareVariants(m_variants[a], m_variants[b]);
    case Storage::None: break;
    }
    return 0;
}

quint64 Column::Prefix(RecordId id, bool caseInsensitive, int offset, bool &complete) const
{
    complete = false;
    if (m_nulls[id])
        return 0;
    switch (m_kind) {
    case Storage::Int: case Storage::Bool: case Storage::Curr:
        complete = true;
        return quint64(m_ints[id]) ^ (quint64(1) << 63);
    case Storage::Float: {
        double d = m_floats[id];
        if (d == 0)
            d = 0.0;
        else if (std::isnan(d))
            d = std::numeric_limits<double>::quiet_NaN();
        quint64 bits;
        std::memcpy(&bits, &d, sizeof bits);
        complete = true;
        return (bits >> 63) ? ~bits : bits | (quint64(1) << 63);
    }
    case Storage::Text: {
        const QStringView s = m_text.View(id);
        quint64 key = 0;
        // A text counts as held whole only up to its end: a NUL inside would read as the end.
        bool whole = s.size() <= offset + 4;
        for (int i = offset; i < offset + 4; ++i) {
            char16_t c = i < s.size() ? s[i].unicode() : 0;
            if (c == 0 && i < s.size())
                whole = false;
            if (caseInsensitive)
                c = QChar::toCaseFolded(c);
            key = (key << 16) | c;
        }
        complete = whole;
        return key;
    }
    default:
        return 0;
    }
}

void Column::Clear()
{
    m_nulls.clear();
    m_nulls.shrink_to_fit();
    m_ints.clear();
    m_ints.shrink_to_fit();
    m_floats.clear();
    m_floats.shrink_to_fit();
    m_text.Clear();
    m_memos.clear();
    m_memos.shrink_to_fit();
    m_bytes.clear();
    m_bytes.shrink_to_fit();
    m_variants.clear();
    m_variants.shrink_to_fit();
}

size_t Column::MemoryBytes() const
{
    size_t bytes = m_nulls.capacity() / 8 + m_ints.capacity() * sizeof(qint64) + m_floats.capacity() * sizeof(double)
        + m_text.MemoryBytes() + m_memos.capacity() * sizeof(QString) + m_bytes.capacity() * sizeof(QByteArray)
        + m_variants.capacity() * sizeof(QVariant);
    for (const QString &s : m_memos)
        bytes += size_t(s.capacity()) * sizeof(QChar);
    for (const QByteArray &b : m_bytes)
        bytes += size_t(b.capacity());
    return bytes;
}

// ---------------------------------------------------------------------------------------------
// RecordStore

RecordStore::RecordStore(std::vector<Column> columns) : m_columns(std::move(columns)), m_activeOrder(&m_defaultOrder) {}

const std::vector<KeyPart> &RecordStore::NoParts()
{
    static const std::vector<KeyPart> none;
    return none;
}

void RecordStore::SetValues(RecordId id, const QVariantList &values)
{
    for (size_t c = 0; c < m_columns.size(); ++c)
        m_columns[c].Set(id, int(c) < values.size() ? values.at(int(c)) : QVariant());
}

RecordId RecordStore::Append(const QVariantList &values)
{
    const RecordId id = RecordId(m_alive.size());
    if (id == NoRecord)
        throw EDatabaseError(QStringLiteral("Too many records"));
    const size_t count = size_t(id) + 1;
    for (Column &c : m_columns)
        c.Resize(count);
    m_alive.push_back(true);
    m_rank.push_back(m_defaultOrder.empty() ? 0 : m_rank[m_defaultOrder.back()] + RankGap);
    SetValues(id, values);
    m_defaultOrder.push_back(id);
    return id;
}

void RecordStore::Loaded()
{
    for (auto &index : m_indexes) {
        if (index->built)
            Build(*index);
    }
    RebuildView();
    Changed();
}

void RecordStore::Changed()
{
    ++m_dataVersion;
    m_orderVersion = ++m_versionCounter;
    m_viewVersion = m_filter ? ++m_versionCounter : m_orderVersion;
}

qint64 RecordStore::RankBefore(RecordId before)
{
    if (before == NoRecord || !Exists(before))
        return m_defaultOrder.empty() ? 0 : m_rank[m_defaultOrder.back()] + RankGap;
    auto position = [&] {
        return std::lower_bound(m_defaultOrder.begin(), m_defaultOrder.end(), m_rank[before],
                                [&](RecordId r, qint64 rank) { return m_rank[r] < rank; });
    };
    auto it = position();
    qint64 hi = m_rank[before];
    qint64 lo = it == m_defaultOrder.begin() ? hi - 2 * RankGap : m_rank[*(it - 1)];
    if (hi - lo < 2) {
        Renumber();
        it = position();
        hi = m_rank[before];
        lo = it == m_defaultOrder.begin() ? hi - 2 * RankGap : m_rank[*(it - 1)];
    }
    return lo + (hi - lo) / 2;
}

void RecordStore::Renumber()
{
    for (size_t i = 0; i < m_defaultOrder.size(); ++i)
        m_rank[m_defaultOrder[i]] = qint64(i) * RankGap;
}

RecordId RecordStore::Insert(const QVariantList &values, RecordId before)
{
    const RecordId id = RecordId(m_alive.size());
    if (id == NoRecord)
        throw EDatabaseError(QStringLiteral("Too many records"));
    const qint64 rank = RankBefore(before);
    const size_t count = size_t(id) + 1;
    for (Column &c : m_columns)
        c.Resize(count);
    m_alive.push_back(true);
    m_rank.push_back(rank);
    SetValues(id, values);
    InsertInto(m_defaultOrder, NoParts(), id);
    for (auto &index : m_indexes) {
        if (index->built)
            Maintain(*index);
        if (index->built)
            InsertInto(index->order, index->parts, id);
    }
    if (m_filter && m_filter(id))
        InsertInto(m_filtered, m_active ? m_active->parts : NoParts(), id);
    Changed();
    return id;
}

void RecordStore::Update(RecordId id, const QVariantList &values)
{
    const std::vector<KeyPart> &activeParts = m_active ? m_active->parts : NoParts();
    if (m_filter)
        EraseFrom(m_filtered, activeParts, id);
    for (auto &index : m_indexes) {
        if (index->built)
            Maintain(*index);
        if (index->built)
            EraseFrom(index->order, index->parts, id);
    }
    SetValues(id, values);
    for (auto &index : m_indexes) {
        if (index->built)
            InsertInto(index->order, index->parts, id);
    }
    if (m_filter && m_filter(id))
        InsertInto(m_filtered, activeParts, id);
    Changed();
}

void RecordStore::Remove(RecordId id)
{
    if (!Exists(id))
        return;
    if (m_filter)
        EraseFrom(m_filtered, m_active ? m_active->parts : NoParts(), id);
    for (auto &index : m_indexes) {
        if (index->built)
            Maintain(*index);
        if (index->built)
            EraseFrom(index->order, index->parts, id);
    }
    EraseFrom(m_defaultOrder, NoParts(), id);
    m_alive[id] = false;
    for (Column &c : m_columns)
        c.Set(id, QVariant());
    Changed();
}

void RecordStore::Clear()
{
    for (Column &c : m_columns)
        c.Clear();
    m_alive.clear();
    m_alive.shrink_to_fit();
    m_rank.clear();
    m_rank.shrink_to_fit();
    m_defaultOrder.clear();
    m_defaultOrder.shrink_to_fit();
    for (auto &index : m_indexes) {
        index->order.clear();
        index->order.shrink_to_fit();
    }
    m_filtered.clear();
    m_savedView = SavedView();
    m_scratch = NoRecord;
    Changed();
}

// Only the active index and the unique ones follow every change; any other index is dropped
// and built again when it is next made active.
void RecordStore::Maintain(Index &index) const
{
    if (&index != m_active && !index.Unique()) {
        index.built = false;
        index.order.clear();
        index.order.shrink_to_fit();
    }
}

int RecordStore::CompareParts(const std::vector<KeyPart> &parts, RecordId a, RecordId b) const
{
    for (const KeyPart &p : parts) {
        int c = m_columns[size_t(p.column)].Compare(a, b, p.caseInsensitive);
        if (c != 0)
            return p.descending ? -c : c;
    }
    return threeWay(m_rank[a], m_rank[b]);
}

int RecordStore::CompareKeys(const std::vector<KeyPart> &parts, RecordId a, RecordId b) const
{
    for (const KeyPart &p : parts) {
        const int c = m_columns[size_t(p.column)].Compare(a, b, p.caseInsensitive);
        if (c != 0)
            return p.descending ? -c : c;
    }
    return 0;
}

int RecordStore::CompareInOrder(RecordId a, RecordId b) const
{
    return CompareParts(m_active ? m_active->parts : NoParts(), a, b);
}

int RecordStore::CompareValue(const KeyPart &part, RecordId id, const QVariant &value) const
{
    const Column &col = m_columns[size_t(part.column)];
    const bool na = col.IsNull(id), nb = isNullValue(value);
    int c = 0;
    if (na || nb) {
        c = na == nb ? 0 : (na ? -1 : 1);
    } else {
        switch (col.Kind()) {
        case Storage::Int: case Storage::Bool: c = threeWay(col.Int(id), toInt64(value)); break;
        case Storage::Curr:
            c = threeWay(col.Int(id), (value.metaType() == QMetaType::fromType<Currency>()
                                           ? value.value<Currency>() : VarToCurr(value)).Raw());
            break;
        case Storage::Float: c = compareDoubles(col.Float(id), toDouble(col.Type(), value)); break;
        case Storage::Text: case Storage::Memo:
            c = col.Text(id).compare(VarToStr(value), part.caseInsensitive ? Qt::CaseInsensitive : Qt::CaseSensitive);
            break;
        default: c = compareVariants(col.Get(id), value); break;
        }
    }
    return part.descending ? -c : c;
}

int RecordStore::CompareKey(RecordId id, const QVariantList &key) const
{
    if (!m_active)
        return 0;
    for (size_t i = 0; i < m_active->parts.size() && int(i) < key.size(); ++i) {
        if (!key.at(int(i)).isValid())
            break;
        const int c = CompareValue(m_active->parts[i], id, key.at(int(i)));
        if (c != 0)
            return c;
    }
    return 0;
}

void RecordStore::CheckUnique(const QVariantList &values, RecordId self)
{
    for (auto &index : m_indexes) {
        if (!index->Unique())
            continue;
        if (!index->built)
            Build(*index);
        auto keyCompare = [&](RecordId id) {
            for (const KeyPart &p : index->parts) {
                const int c = CompareValue(p, id, values.value(p.column));
                if (c != 0)
                    return c;
            }
            return 0;
        };
        auto it = std::lower_bound(index->order.begin(), index->order.end(), 0,
                                   [&](RecordId id, int) { return keyCompare(id) < 0; });
        for (; it != index->order.end() && keyCompare(*it) == 0; ++it) {
            if (*it != self)
                throw EDatabaseError(QString::fromLatin1(DBConsts::SKeyViol));
        }
    }
}

int RecordStore::PredictPosition(const QVariantList &values, RecordId before, RecordId self)
{
    if (m_scratch == NoRecord) {
        m_scratch = RecordId(m_alive.size());
        for (Column &c : m_columns)
            c.Resize(size_t(m_scratch) + 1);
        m_alive.push_back(false);
        m_rank.push_back(0);
    }
    SetValues(m_scratch, values);
    m_rank[m_scratch] = self != NoRecord ? m_rank[self] : RankBefore(before);
    if (m_filter && !m_filter(m_scratch))
        return -1;
    const std::vector<RecordId> &view = View();
    auto it = std::lower_bound(view.begin(), view.end(), m_scratch,
                               [&](RecordId a, RecordId b) { return CompareInOrder(a, b) < 0; });
    int position = int(it - view.begin());
    if (self != NoRecord) {
        const int own = ViewPosition(self);
        if (own >= 0 && own < position)
            --position;
    }
    return position;
}

void RecordStore::Build(Index &index)
{
    // Records start in the default order and the sort is stable, so equal keys keep it.
    std::vector<RecordId> order = m_defaultOrder;
    const std::vector<KeyPart> &parts = index.parts;
    if (!parts.empty() && m_columns[size_t(parts[0].column)].HasPrefix()) {
        // Two words of key per record decide most comparisons inside the array: eight characters
        // of a text, or an exact number and the first word of the next part.
        struct Item
        {
            quint64 first;
            quint64 second;
            RecordId id;
            bool complete;
        };
        const Column &c0 = m_columns[size_t(parts[0].column)];
        const bool exactFirst = c0.Exact();
        const Column *c1 = exactFirst && parts.size() > 1 && m_columns[size_t(parts[1].column)].HasPrefix()
            ? &m_columns[size_t(parts[1].column)] : nullptr;
        std::vector<Item> items(order.size());
        for (size_t i = 0; i < order.size(); ++i) {
            const RecordId id = order[i];
            bool complete = false;
            quint64 k0 = c0.Prefix(id, parts[0].caseInsensitive, 0, complete);
            quint64 k1 = 0;
            if (exactFirst) {
                bool second = true;
                if (c1) {
                    k1 = c1->Prefix(id, parts[1].caseInsensitive, 0, second);
                    if (parts[1].descending)
                        k1 = ~k1;
                }
                complete = complete && second && parts.size() <= (c1 ? 2u : 1u);
            } else {
                k1 = c0.Prefix(id, parts[0].caseInsensitive, 4, complete);
                complete = complete && parts.size() == 1;
            }
            if (parts[0].descending) {
                k0 = ~k0;
                if (!exactFirst)
                    k1 = ~k1;
            }
            items[i] = {k0, k1, id, complete};
        }
        std::stable_sort(items.begin(), items.end(), [&](const Item &a, const Item &b) {
            if (a.first != b.first)
                return a.first < b.first;
            if (a.second != b.second)
                return a.second < b.second;
            if (a.complete && b.complete)
                return false;
            return CompareKeys(parts, a.id, b.id) < 0;
        });
        for (size_t i = 0; i < items.size(); ++i)
            order[i] = items[i].id;
    } else if (!parts.empty()) {
        std::stable_sort(order.begin(), order.end(),
                         [&](RecordId a, RecordId b) { return CompareKeys(parts, a, b) < 0; });
    }
    if (index.Unique()) {
        for (size_t i = 1; i < order.size(); ++i) {
            if (CompareKeys(parts, order[i - 1], order[i]) == 0)
                throw EDatabaseError(QString::fromLatin1(DBConsts::SKeyViol));
        }
    }
    index.order.swap(order);
    index.built = true;
}

std::vector<RecordId>::iterator RecordStore::Find(std::vector<RecordId> &order, const std::vector<KeyPart> &parts,
                                                  RecordId id)
{
    auto it = std::lower_bound(order.begin(), order.end(), id,
                               [&](RecordId a, RecordId b) { return CompareParts(parts, a, b) < 0; });
    return it != order.end() && *it == id ? it : order.end();
}

void RecordStore::InsertInto(std::vector<RecordId> &order, const std::vector<KeyPart> &parts, RecordId id)
{
    auto it = std::lower_bound(order.begin(), order.end(), id,
                               [&](RecordId a, RecordId b) { return CompareParts(parts, a, b) < 0; });
    order.insert(it, id);
}

void RecordStore::EraseFrom(std::vector<RecordId> &order, const std::vector<KeyPart> &parts, RecordId id)
{
    auto it = Find(order, parts, id);
    if (it != order.end())
        order.erase(it);
}

Index *RecordStore::FindIndex(const QString &name) const
{
    for (const auto &index : m_indexes) {
        if (index->name.compare(name, Qt::CaseInsensitive) == 0)
            return index.get();
    }
    return nullptr;
}

void RecordStore::AddIndex(std::unique_ptr<Index> index)
{
    if (index->Unique())
        Build(*index);
    m_indexes.push_back(std::move(index));
}

void RecordStore::DeleteIndex(const QString &name)
{
    Index *index = FindIndex(name);
    if (!index)
        return;
    if (index == m_active)
        SetActiveIndex(nullptr);
    m_indexes.erase(std::find_if(m_indexes.begin(), m_indexes.end(),
                                 [&](const std::unique_ptr<Index> &p) { return p.get() == index; }));
}

void RecordStore::SetActiveIndex(Index *index)
{
    if (index && !index->built)
        Build(*index);
    Index *previous = m_active;
    m_active = index;
    m_activeOrder = index ? &index->order : &m_defaultOrder;
    if (previous && previous != index)
        Maintain(*previous);
    if (m_filter)
        std::sort(m_filtered.begin(), m_filtered.end(), [&](RecordId a, RecordId b) { return CompareInOrder(a, b) < 0; });
    Changed();
}

void RecordStore::SetFilter(Predicate predicate, quint64 token)
{
    if (m_filter && m_filterToken != 0)
        m_savedView = SavedView{m_filterToken, m_dataVersion, m_viewVersion, m_filtered};
    m_filter = std::move(predicate);
    m_filterToken = m_filter ? token : 0;
    if (!m_filter) {
        m_filtered.clear();
        m_filtered.shrink_to_fit();
        m_viewVersion = m_orderVersion;
        return;
    }
    if (token != 0 && m_savedView.token == token && m_savedView.dataVersion == m_dataVersion) {
        m_filtered = m_savedView.records;
        m_viewVersion = m_savedView.viewVersion;
        return;
    }
    RebuildView();
    m_viewVersion = ++m_versionCounter;
}

void RecordStore::RebuildView()
{
    m_filtered.clear();
    if (m_filter) {
        for (RecordId id : *m_activeOrder) {
            if (m_filter(id))
                m_filtered.push_back(id);
        }
    }
    m_filtered.shrink_to_fit();
}

int RecordStore::ViewPosition(RecordId id) const
{
    if (!Exists(id))
        return -1;
    const std::vector<RecordId> &view = View();
    const std::vector<KeyPart> &parts = m_active ? m_active->parts : NoParts();
    auto it = std::lower_bound(view.begin(), view.end(), id,
                               [&](RecordId a, RecordId b) { return CompareParts(parts, a, b) < 0; });
    return it != view.end() && *it == id ? int(it - view.begin()) : -1;
}

size_t RecordStore::MemoryBytes() const
{
    size_t bytes = m_alive.capacity() / 8 + m_rank.capacity() * sizeof(qint64)
        + m_defaultOrder.capacity() * sizeof(RecordId) + m_filtered.capacity() * sizeof(RecordId);
    for (const Column &c : m_columns)
        bytes += c.MemoryBytes();
    for (const auto &index : m_indexes)
        bytes += index->order.capacity() * sizeof(RecordId);
    return bytes;
}

} // namespace mattoni::detail
