// The in-memory dataset.
#include "ClientDataSet.h"

#include "Exceptions.h"
#include "FilterCompiler_p.h"
#include "RecordStore_p.h"
#include "Strings.h"
#include "Variants.h"

#include <QSqlError>
#include <QSqlField>
#include <QSqlQuery>
#include <QSqlRecord>

#include <cmath>
#include <cstring>
#include <limits>

namespace mattoni {

using namespace DBConsts;
using detail::Index;
using detail::KeyPart;
using detail::RecordStore;

namespace {

QStringList splitNames(const QString &list)
{
    QStringList names;
    int pos = 1;
    while (pos <= list.size()) {
        const QString name = ExtractFieldName(list, pos);
        if (!name.isEmpty())
            names.append(name);
    }
    return names;
}

bool containsName(const QStringList &names, const QString &name)
{
    for (const QString &n : names) {
        if (SameText(n, name))
            return true;
    }
    return false;
}

QString sqlErrorText(const QSqlError &error)
{
    return error.databaseText().isEmpty() ? error.text() : error.databaseText();
}

// The field type of a column as the driver describes it.
TFieldType fieldTypeOf(const QSqlField &field)
{
    switch (field.metaType().id()) {
    case QMetaType::Bool: return ftBoolean;
    case QMetaType::Short: case QMetaType::SChar: return ftSmallint;
    case QMetaType::UShort: case QMetaType::UChar: return ftWord;
    case QMetaType::Int: return ftInteger;
    case QMetaType::UInt: case QMetaType::LongLong: case QMetaType::ULongLong: return ftLargeint;
    case QMetaType::Double: case QMetaType::Float: return ftFloat;
    case QMetaType::QDate: return ftDate;
    case QMetaType::QTime: return ftTime;
    case QMetaType::QDateTime: return ftDateTime;
    case QMetaType::QByteArray: return ftBlob;
    case QMetaType::QString: case QMetaType::QChar:
        return field.length() > 8192 ? ftMemo : ftString;
    default: return ftVariant;
    }
}

// The size in characters of a text column. The MySQL/MariaDB and Firebird drivers report the
// column's length in bytes of the connection's character set, four per character in UTF-8
// (VARCHAR(10) reads 40); other drivers report characters.
int textSize(const QSqlField &column, const QString &driverName)
{
    const int length = std::max(0, column.length());
    const bool bytes = driverName.startsWith(QLatin1String("QMYSQL")) || driverName == QLatin1String("QMARIADB")
                       || driverName == QLatin1String("QIBASE");
    return bytes && length % 4 == 0 ? length / 4 : length;
}

// A parameter's value as a driver binds it: a typed null, money as a double.
QVariant sqlValue(const TParam *param)
{
    if (param->IsNull()) {
        switch (param->DataType()) {
        case ftString: case ftFixedChar: case ftWideString: case ftMemo: case ftWideMemo:
            return QVariant(QMetaType::fromType<QString>());
        case ftSmallint: case ftInteger: case ftWord: case ftAutoInc: return QVariant(QMetaType::fromType<int>());
        case ftLargeint: return QVariant(QMetaType::fromType<qlonglong>());
        case ftFloat: case ftCurrency: case ftBCD: case ftFMTBcd: return QVariant(QMetaType::fromType<double>());
        case ftDate: return QVariant(QMetaType::fromType<QDate>());
        case ftTime: return QVariant(QMetaType::fromType<QTime>());
        case ftDateTime: case ftTimeStamp: return QVariant(QMetaType::fromType<QDateTime>());
        case ftBoolean: return QVariant(QMetaType::fromType<bool>());
        case ftBlob: case ftBytes: case ftVarBytes: return QVariant(QMetaType::fromType<QByteArray>());
        default: return QVariant();
        }
    }
    const QVariant v = param->Value();
    if (v.metaType() == QMetaType::fromType<Currency>())
        return v.value<Currency>().ToDouble();
    return v;
}

// A value read from the driver, of the type the field of Type holds.
QVariant fieldValue(TFieldType type, const QVariant &v)
{
    if (v.isNull())
        return Null();
    switch (type) {
    case ftSmallint: case ftInteger: case ftWord: case ftLargeint: return v.toLongLong();
    case ftBoolean: return v.toBool();
    case ftFloat: return v.toDouble();
    case ftDate: return v.toDate();
    case ftTime: return v.toTime();
    case ftDateTime: return v.toDateTime();
    case ftBlob: return v.toByteArray();
    case ftString: case ftMemo: return v.toString();
    default: return v;
    }
}

} // namespace

TCustomClientDataSet::TCustomClientDataSet(QObject *owner) : TDataSet(owner), m_indexDefs(this) {}

TCustomClientDataSet::~TCustomClientDataSet()
{
    CloseForDestruction();
}

// ---------------------------------------------------------------------------------------------
// Opening

void TCustomClientDataSet::CreateDataSet()
{
    CheckInactive();
    if (FieldDefs().Count() == 0) {
        if (FieldCount() == 0)
            DatabaseError(QString::fromLatin1(SCannotCreateDataSet), this);
        InitFieldDefsFromFields();
    }
    m_creating = true;
    try {
        Open();
    } catch (...) {
        m_creating = false;
        throw;
    }
    m_creating = false;
}

void TCustomClientDataSet::OpenWithoutCommand()
{
    DatabaseError(QString::fromLatin1(SNoDataProvider), this);
}

void TCustomClientDataSet::CreateStore()
{
    std::vector<detail::Column> columns;
    for (const StoredDef &d : StoredFieldDefs()) {
        if (!FieldTypeSupported(d.def->DataType()) || d.def->DataType() == ftADT || d.def->DataType() == ftArray)
            DatabaseErrorFmt(SUnknownFieldType, {d.fullName}, this);
        columns.emplace_back(d.def->DataType(), d.def->Size());
    }
    m_store = std::make_unique<RecordStore>(std::move(columns));
    ++m_storeSerial;
    m_autoIncNext.assign(size_t(m_store->ColumnCount()), 1);
}

void TCustomClientDataSet::InternalOpen()
{
    if (m_creating)
        CreateStore();
    else if (!m_commandText.isEmpty())
        LoadCommand();
    else
        OpenWithoutCommand();
}

QSqlDatabase TCustomClientDataSet::Database() const
{
    const QString name = m_connectionName.isEmpty() ? QString::fromLatin1(QSqlDatabase::defaultConnection)
                                                    : m_connectionName;
    QSqlDatabase db = QSqlDatabase::database(name, false);
    if (!db.isValid())
        DatabaseErrorFmt(SNoConnection, {name}, this);
    if (!db.isOpen() && !db.open())
        DatabaseError(sqlErrorText(db.lastError()), this);
    return db;
}

void TCustomClientDataSet::LoadCommand()
{
    QSqlQuery query(Database());
    query.setForwardOnly(true);
    bool ok;
    if (m_params.Count() > 0) {
        ok = query.prepare(m_commandText);
        for (int i = 0; ok && i < m_params.Count(); ++i)
            query.bindValue(QLatin1Char(':') + m_params[i]->Name(), sqlValue(m_params[i]));
        ok = ok && query.exec();
    } else {
        ok = query.exec(m_commandText);
    }
    if (!ok)
        DatabaseError(sqlErrorText(query.lastError()), this);

    const QList<TFieldType> types = DefsFromRecord(query.record());
    CreateStore();

    QVariantList values(types.size());
    std::vector<bool> beyond32(size_t(types.size()), false);
    while (query.next()) {
        for (int i = 0; i < types.size(); ++i) {
            values[i] = fieldValue(types[i], query.value(i));
            if (types[i] == ftInteger && !values[i].isNull()) {
                const qint64 v = values[i].toLongLong();
                if (v < std::numeric_limits<qint32>::min() || v > std::numeric_limits<qint32>::max())
                    beyond32[size_t(i)] = true;
            }
        }
        m_store->Append(values);
    }
    if (query.lastError().isValid())
        DatabaseError(sqlErrorText(query.lastError()), this);
    // A driver that calls every integer column "int" (SQLite) may hand 64-bit values.
    for (int i = 0; i < types.size(); ++i) {
        if (beyond32[size_t(i)]) {
            FieldDefs()[i]->setDataType(ftLargeint);
            m_store->ColumnAt(i).Retype(ftLargeint);
        }
    }
    m_store->Loaded();
}

void TCustomClientDataSet::InternalOpenComplete()
{
    for (int i = 0; i < m_indexDefs.Count(); ++i) {
        const TIndexDef *def = m_indexDefs[i];
        if (def->Name().isEmpty())
            DatabaseError(QString::fromLatin1(SIndexNameMissing), this);
        m_store->AddIndex(MakeIndex(def->Name(), def->Fields(), def->Options(), def->DescFields(),
                                    def->CaseInsFields(), def->GroupingLevel()));
    }
    for (int c = 0; c < m_store->ColumnCount(); ++c) {
        if (m_store->ColumnAt(c).Type() == ftAutoInc) {
            qint64 next = 1;
            for (size_t id = 0; id < m_store->Capacity(); ++id) {
                if (m_store->Exists(detail::RecordId(id)) && !m_store->ColumnAt(c).IsNull(detail::RecordId(id)))
                    next = std::max(next, m_store->ColumnAt(c).Int(detail::RecordId(id)) + 1);
            }
            m_autoIncNext[size_t(c)] = next;
        }
    }
    ActivateIndexSetting();
    ApplyFilter();
}

void TCustomClientDataSet::InternalClose()
{
    m_store.reset();
    m_locateCaches.clear();
    m_lastLocate = {};
}

void TCustomClientDataSet::InternalInitFieldDefs()
{
    if (Active() || m_commandText.isEmpty())
        return;
    QSqlQuery query(Database());
    query.setForwardOnly(true);
    if (!query.exec(m_commandText))
        DatabaseError(sqlErrorText(query.lastError()), this);
    DefsFromRecord(query.record());
}

QList<TFieldType> TCustomClientDataSet::DefsFromRecord(const QSqlRecord &record)
{
    FieldDefs().Clear();
    QList<TFieldType> types;
    const QString driver = Database().driverName();
    for (int i = 0; i < record.count(); ++i) {
        const QSqlField column = record.field(i);
        QString name = column.name();
        // Two columns of one name (a join) keep apart as NAME and NAME_1, NAME_2 ...
        for (int n = 1; FieldDefs().FindDef(name); ++n)
            name = column.name() + QLatin1Char('_') + QString::number(n);
        const TFieldType type = fieldTypeOf(column);
        const int size = type == ftString ? textSize(column, driver) : 0;
        TFieldDef *def = FieldDefs().Add(name, type, size, column.requiredStatus() == QSqlField::Required);
        if (type == ftFloat && column.precision() > 0)
            def->setPrecision(column.precision());
        types.append(type);
    }
    return types;
}

void TCustomClientDataSet::EmptyDataSet()
{
    CheckBrowseMode();
    NotifyRowsAboutToBeReset();
    m_store->Clear();
    ++m_storeSerial;
    m_locateCaches.clear();
    m_lastLocate = {};
    Touch();
    NotifyRowsReset();
    Resync();
}

qint64 TCustomClientDataSet::DataSize() const
{
    return m_store ? qint64(m_store->MemoryBytes()) : 0;
}

// ---------------------------------------------------------------------------------------------
// Record source

int TCustomClientDataSet::ViewCount() const
{
    return m_store ? m_store->ViewCount() : 0;
}

TDataSet::RecordId TCustomClientDataSet::ViewRecord(int position) const
{
    return m_store->ViewRecord(position);
}

int TCustomClientDataSet::ViewPosition(RecordId id) const
{
    return m_store ? m_store->ViewPosition(id) : -1;
}

bool TCustomClientDataSet::RecordExists(RecordId id) const
{
    return m_store && m_store->Exists(id);
}

QVariant TCustomClientDataSet::StoredValue(RecordId id, int column) const
{
    return m_store->Value(id, column);
}

void TCustomClientDataSet::PrepareRecord(QVariantList &values, bool)
{
    for (int c = 0; c < m_store->ColumnCount(); ++c) {
        if (m_store->ColumnAt(c).Type() != ftAutoInc)
            continue;
        const QVariant &v = values.at(c);
        if (!v.isValid() || VarIsNull(v))
            values[c] = int(m_autoIncNext[size_t(c)]++);
        else
            m_autoIncNext[size_t(c)] = std::max(m_autoIncNext[size_t(c)], VarToInt(v) + 1);
    }
}

int TCustomClientDataSet::PredictPosition(const QVariantList &values, RecordId before, RecordId self)
{
    return m_store->PredictPosition(values, before, self);
}

TDataSet::RecordId TCustomClientDataSet::InternalInsert(const QVariantList &values, RecordId before)
{
    return m_store->Insert(values, before);
}

void TCustomClientDataSet::InternalUpdate(RecordId id, const QVariantList &values)
{
    m_store->Update(id, values);
}

void TCustomClientDataSet::InternalDelete(RecordId id)
{
    m_store->Remove(id);
}

int TCustomClientDataSet::CompareRecords(RecordId a, RecordId b) const
{
    return m_store->CompareInOrder(a, b);
}

void TCustomClientDataSet::CheckRecord(const QVariantList &values, RecordId self) const
{
    m_store->CheckUnique(values, self);
}

TBookmark TCustomClientDataSet::MakeBookmark(RecordId id) const
{
    TBookmark bookmark(2 * sizeof(quint32), Qt::Uninitialized);
    std::memcpy(bookmark.data(), &m_storeSerial, sizeof(quint32));
    std::memcpy(bookmark.data() + sizeof(quint32), &id, sizeof(quint32));
    return bookmark;
}

TDataSet::RecordId TCustomClientDataSet::BookmarkRecord(const TBookmark &bookmark) const
{
    if (bookmark.size() != qsizetype(2 * sizeof(quint32)))
        return NoRecord;
    quint32 serial;
    RecordId id;
    std::memcpy(&serial, bookmark.constData(), sizeof serial);
    std::memcpy(&id, bookmark.constData() + sizeof(quint32), sizeof id);
    return serial == m_storeSerial ? id : NoRecord;
}

// ---------------------------------------------------------------------------------------------
// Indexes

std::unique_ptr<Index> TCustomClientDataSet::MakeIndex(const QString &name, const QString &fields,
                                                       TIndexOptions options, const QString &descFields,
                                                       const QString &caseInsFields, int groupingLevel) const
{
    auto index = std::make_unique<Index>();
    index->name = name;
    index->fields = fields;
    index->descFields = descFields;
    index->caseInsFields = caseInsFields;
    index->options = options;
    index->groupingLevel = groupingLevel;
    const QStringList desc = splitNames(descFields), caseIns = splitNames(caseInsFields);
    for (const QString &fieldName : splitNames(fields)) {
        const TField *field = FieldByName(fieldName);
        if (field->FieldNo() <= 0)
            DatabaseErrorFmt(SFieldIndexError, {field->DisplayName()}, this);
        KeyPart part;
        part.column = field->FieldNo() - 1;
        part.descending = desc.isEmpty() ? options.testFlag(ixDescending) : containsName(desc, fieldName);
        part.caseInsensitive = caseIns.isEmpty() ? options.testFlag(ixCaseInsensitive) : containsName(caseIns, fieldName);
        index->parts.push_back(part);
    }
    return index;
}

void TCustomClientDataSet::SwitchIndex(Index *index)
{
    CheckBrowseMode();
    NotifyRowsAboutToBeReordered();
    try {
        m_store->SetActiveIndex(index);
    } catch (...) {
        NotifyRowsReordered();
        throw;
    }
    Touch();
    NotifyRowsReordered();
    Resync();
}

// The index that IndexName or IndexFieldNames asks for, made active at open.
void TCustomClientDataSet::ActivateIndexSetting()
{
    if (!m_indexName.isEmpty()) {
        Index *index = m_store->FindIndex(m_indexName);
        if (!index)
            DatabaseErrorFmt(SIndexNotFound, {m_indexName}, this);
        m_store->SetActiveIndex(index);
    } else if (!m_indexFieldNames.isEmpty()) {
        m_store->AddIndex(MakeIndex(QString(), m_indexFieldNames, {}, QString(), QString(), 0));
        m_store->SetActiveIndex(m_store->FindIndex(QString()));
    }
}

void TCustomClientDataSet::setIndexName(const QString &name)
{
    // The name it already has changes nothing, not even an order by IndexFieldNames (whose
    // IndexName reads empty): a stored dataset reads back with both properties.
    if (name == m_indexName)
        return;
    if (Active()) {
        Index *index = name.isEmpty() ? nullptr : m_store->FindIndex(name);
        if (!name.isEmpty() && !index)
            DatabaseErrorFmt(SIndexNotFound, {name}, this);
        SwitchIndex(index);
        m_store->DeleteIndex(QString());
    }
    m_indexName = name;
    m_indexFieldNames.clear();
}

void TCustomClientDataSet::setIndexFieldNames(const QString &fields)
{
    if (fields == m_indexFieldNames && m_indexName.isEmpty())
        return;
    if (Active()) {
        if (fields.isEmpty()) {
            SwitchIndex(nullptr);
            m_store->DeleteIndex(QString());
        } else {
            std::unique_ptr<Index> index = MakeIndex(QString(), fields, {}, QString(), QString(), 0);
            Index *raw = index.get();
            // The new order is built before the old one goes, so a failure leaves the old one.
            CheckBrowseMode();
            m_store->Indexes().push_back(std::move(index));
            try {
                SwitchIndex(raw);
            } catch (...) {
                m_store->Indexes().pop_back();
                throw;
            }
            auto &list = m_store->Indexes();
            for (auto it = list.begin(); it != list.end(); ++it) {
                if ((*it)->name.isEmpty() && it->get() != raw) {
                    list.erase(it);
                    break;
                }
            }
        }
    }
    m_indexFieldNames = fields;
    m_indexName.clear();
}

void TCustomClientDataSet::AddIndex(const QString &name, const QString &fields, TIndexOptions options,
                                    const QString &descFields, const QString &caseInsFields, int groupingLevel)
{
    if (name.isEmpty())
        DatabaseError(QString::fromLatin1(SIndexNameMissing), this);
    if (!Active()) {
        TIndexDef *def = m_indexDefs.Add(name, fields, options);
        def->setDescFields(descFields);
        def->setCaseInsFields(caseInsFields);
        def->setGroupingLevel(groupingLevel);
        return;
    }
    if (m_store->FindIndex(name))
        DatabaseErrorFmt(SDuplicateIndexName, {name}, this);
    m_store->AddIndex(MakeIndex(name, fields, options, descFields, caseInsFields, groupingLevel));
    UpdateIndexDefs();
}

void TCustomClientDataSet::DeleteIndex(const QString &name)
{
    if (!Active()) {
        const int i = m_indexDefs.IndexOf(name);
        if (i < 0)
            DatabaseErrorFmt(SIndexNotFound, {name}, this);
        m_indexDefs.Delete(i);
        return;
    }
    Index *index = name.isEmpty() ? nullptr : m_store->FindIndex(name);
    if (!index)
        DatabaseErrorFmt(SIndexNotFound, {name}, this);
    if (index == m_store->ActiveIndex()) {
        SwitchIndex(nullptr);
        m_indexName.clear();
    }
    m_store->DeleteIndex(name);
    UpdateIndexDefs();
}

void TCustomClientDataSet::UpdateIndexDefs()
{
    if (!Active())
        return;
    m_indexDefs.Clear();
    for (const auto &index : m_store->Indexes()) {
        if (index->name.isEmpty())
            continue;
        TIndexDef *def = m_indexDefs.AddIndexDef();
        def->setName(index->name);
        def->setFields(index->fields);
        def->setDescFields(index->descFields);
        def->setCaseInsFields(index->caseInsFields);
        def->setOptions(index->options);
        def->setGroupingLevel(index->groupingLevel);
    }
    m_indexDefs.setUpdated(true);
}

QStringList TCustomClientDataSet::GetIndexNames() const
{
    QStringList names;
    if (Active()) {
        for (const auto &index : m_store->Indexes()) {
            if (!index->name.isEmpty())
                names.append(index->name);
        }
    } else {
        for (int i = 0; i < m_indexDefs.Count(); ++i)
            names.append(m_indexDefs[i]->Name());
    }
    return names;
}

int TCustomClientDataSet::IndexFieldCount() const
{
    if (m_store && m_store->ActiveIndex())
        return int(m_store->ActiveIndex()->parts.size());
    return 0;
}

TField *TCustomClientDataSet::IndexFields(int index) const
{
    if (index < 0 || index >= IndexFieldCount())
        return nullptr;
    return StoredFields().value(m_store->ActiveIndex()->parts[size_t(index)].column);
}

// ---------------------------------------------------------------------------------------------
// Filtering and searching

void TCustomClientDataSet::ApplyFilter()
{
    detail::Predicate predicate;
    quint64 token = 0;
    if (Filtered()) {
        const std::unique_ptr<TFilterNode> root = ParseFilter(Filter());
        detail::Predicate expression;
        if (root) {
            detail::FieldResolver resolve = [this](const QString &name) {
                TField *field = FieldByName(name);
                detail::FieldAccess access;
                access.type = field->DataType();
                access.name = field->DisplayName();
                if (field->FieldNo() > 0)
                    access.column = field->FieldNo() - 1;
                else
                    access.read = [this, field](detail::RecordId id) { return RecordFieldValue(id, field); };
                return access;
            };
            expression = detail::CompileFilter(*root, *m_store, resolve, FilterOptions());
        }
        if (HasFilterHandler()) {
            predicate = [this, expression](detail::RecordId id) { return (!expression || expression(id)) && FilterRecord(id); };
        } else {
            predicate = expression;
            // An expression alone always gives the same view over the same records.
            token = qHash(Filter()) * 4 + quint64(FilterOptions().toInt()) + 1;
        }
    }
    m_store->SetFilter(std::move(predicate), token);
}

void TCustomClientDataSet::FilterChanged()
{
    ApplyFilter();
}

bool TCustomClientDataSet::LocateRecord(const QList<TField *> &fields, const QVariantList &values,
                                        TLocateOptions options, RecordId &found)
{
    if (!m_store)
        return false;
    const quint64 version = m_store->ViewVersion();
    const bool ci = options.testFlag(loCaseInsensitive);
    // One field searched again on the same view: answer from a hash table of its values.
    if (fields.size() == 1 && fields[0]->FieldNo() > 0 && !options.testFlag(loPartialKey)) {
        const int column = fields[0]->FieldNo() - 1;
        const detail::Column &col = m_store->ColumnAt(column);
        const QVariant &key = values.at(0);
        const bool hashable = (col.Kind() == detail::Storage::Int || col.Kind() == detail::Storage::Text)
            && key.isValid() && !VarIsNull(key);
        if (hashable) {
            auto cache = std::find_if(m_locateCaches.begin(), m_locateCaches.end(), [&](const LocateCache &c) {
                return c.viewVersion == version && c.column == column && c.caseInsensitive == ci;
            });
            const bool repeated = m_lastLocate.viewVersion == version && m_lastLocate.column == column
                && m_lastLocate.caseInsensitive == ci;
            m_lastLocate = {version, column, ci};
            if (cache == m_locateCaches.end() && repeated) {
                LocateCache built;
                built.viewVersion = version;
                built.column = column;
                built.caseInsensitive = ci;
                const auto &view = m_store->View();
                // Backwards, so that the first record of each value is the one that stays.
                for (auto it = view.rbegin(); it != view.rend(); ++it) {
                    if (col.IsNull(*it))
                        continue;
                    if (col.Kind() == detail::Storage::Int)
                        built.ints.insert(col.Int(*it), *it);
                    else
                        built.texts.insert(ci ? col.Text(*it).toString().toCaseFolded() : col.Text(*it).toString(), *it);
                }
                if (m_locateCaches.size() >= 4)
                    m_locateCaches.pop_front();
                m_locateCaches.push_back(std::move(built));
                cache = m_locateCaches.end() - 1;
            }
            if (cache != m_locateCaches.end()) {
                if (col.Kind() == detail::Storage::Int) {
                    double d;
                    try {
                        d = key.metaType().id() == QMetaType::Bool ? (key.toBool() ? 1 : 0) : VarToFloat(key);
                    } catch (const EVariantError &) {
                        return false;
                    }
                    if (d != std::floor(d) || !(std::fabs(d) < 9.0e18))
                        return false;
                    const auto hit = cache->ints.constFind(qint64(d));
                    if (hit == cache->ints.cend())
                        return false;
                    found = *hit;
                    return true;
                }
                const QString text = ci ? VarToStr(key).toCaseFolded() : VarToStr(key);
                const auto hit = cache->texts.constFind(text);
                if (hit == cache->texts.cend())
                    return false;
                found = *hit;
                return true;
            }
        }
    }

    std::vector<detail::Predicate> tests;
    for (int i = 0; i < fields.size(); ++i) {
        detail::FieldAccess access;
        access.type = fields[i]->DataType();
        access.name = fields[i]->DisplayName();
        if (fields[i]->FieldNo() > 0) {
            access.column = fields[i]->FieldNo() - 1;
        } else {
            TField *field = fields[i];
            access.read = [this, field](detail::RecordId id) { return RecordFieldValue(id, field); };
        }
        tests.push_back(detail::CompileLocate(access, *m_store, values.at(i), options));
    }
    for (detail::RecordId id : m_store->View()) {
        bool match = true;
        for (const auto &test : tests) {
            if (!test(id)) {
                match = false;
                break;
            }
        }
        if (match) {
            found = id;
            return true;
        }
    }
    return false;
}

// ---------------------------------------------------------------------------------------------
// Keys

void TCustomClientDataSet::KeyMode(bool keep)
{
    CheckActive();
    if (!m_store->ActiveIndex())
        DatabaseError(QString::fromLatin1(SNoIndex), this);
    EnterSetKey(keep ? m_key : QVariantList());
}

void TCustomClientDataSet::SetKey()
{
    KeyMode(false);
}

void TCustomClientDataSet::EditKey()
{
    KeyMode(true);
}

void TCustomClientDataSet::InternalPostKey(const QVariantList &key, bool commit)
{
    if (commit)
        m_key = key;
}

QVariantList TCustomClientDataSet::KeyForIndex(const QVariantList &buffer) const
{
    QVariantList key;
    const Index *index = m_store->ActiveIndex();
    if (!index)
        return key;
    for (const KeyPart &part : index->parts)
        key.append(buffer.value(part.column));
    return key;
}

bool TCustomClientDataSet::GotoKeyRecord(bool exact)
{
    if (State() == dsSetKey)
        Post();
    CheckBrowseMode();
    if (!m_store->ActiveIndex())
        return false;
    const QVariantList key = KeyForIndex(m_key);
    const auto &view = m_store->View();
    auto it = std::lower_bound(view.begin(), view.end(), 0,
                               [&](detail::RecordId id, int) { return m_store->CompareKey(id, key) < 0; });
    if (exact && (it == view.end() || m_store->CompareKey(*it, key) != 0))
        return false;
    if (it == view.end()) {
        if (view.empty())
            return false;
        --it;
    }
    MoveToRecord(*it);
    return true;
}

bool TCustomClientDataSet::GotoKey()
{
    return GotoKeyRecord(true);
}

void TCustomClientDataSet::GotoNearest()
{
    GotoKeyRecord(false);
}

void TCustomClientDataSet::AssignKey(const QVariantList &keyValues)
{
    SetKey();
    for (int i = 0; i < keyValues.size() && i < IndexFieldCount(); ++i) {
        if (TField *field = IndexFields(i))
            field->setValue(keyValues.at(i));
    }
}

bool TCustomClientDataSet::FindKey(const QVariantList &keyValues)
{
    AssignKey(keyValues);
    return GotoKey();
}

void TCustomClientDataSet::FindNearest(const QVariantList &keyValues)
{
    AssignKey(keyValues);
    GotoNearest();
}

TClientDataSet::TClientDataSet(QObject *owner) : TCustomClientDataSet(owner) {}

} // namespace mattoni
