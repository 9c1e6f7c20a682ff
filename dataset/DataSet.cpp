// TDataSet: cursor, states, fields, editing, searching and notifications.
#include "DataSet.h"

#include "DataSource.h"
#include "Exceptions.h"
#include "Strings.h"
#include "Variants.h"

#include <cstring>

namespace mattoni {

using namespace DBConsts;

namespace {

bool isNullValue(const QVariant &v)
{
    return !v.isValid() || VarIsNull(v);
}

bool isEditMode(TDataSetState state)
{
    return state == dsEdit || state == dsInsert || state == dsSetKey;
}

// Switches a dataset's state for the length of a scope without telling anybody: the framework's
// temporary states (calculating, filtering) are no state changes for the controls.
class TempState
{
public:
    TempState(TDataSetState &state, TDataSetState temp) : m_state(state), m_saved(state) { state = temp; }
    ~TempState() { m_state = m_saved; }

private:
    TDataSetState &m_state;
    TDataSetState m_saved;
};

bool isStringType(TFieldType t)
{
    return t == ftString || t == ftFixedChar || t == ftWideString || t == ftFixedWideChar || t == ftGuid
        || t == ftOraInterval;
}

bool isMemoType(TFieldType t)
{
    return t == ftMemo || t == ftWideMemo || t == ftFmtMemo || t == ftOraClob;
}

// A persistent field fits a definition of its own type; text and memo types mix within their kind.
bool fieldFitsDef(TFieldType field, TFieldType def)
{
    return field == def || (isStringType(field) && isStringType(def)) || (isMemoType(field) && isMemoType(def));
}

// A field's value against a Locate key: Null matches Null; texts may ignore case or match a
// prefix; other values compare once converted to the field's type.
bool locateMatch(const TField *field, const QVariant &value, const QVariant &key, TLocateOptions options)
{
    const bool valueNull = isNullValue(value), keyNull = isNullValue(key);
    if (valueNull || keyNull)
        return valueNull && keyNull;
    if (isStringType(field->DataType()) || isMemoType(field->DataType())) {
        const QString a = value.toString(), b = VarToStr(key);
        const Qt::CaseSensitivity cs = options.testFlag(loCaseInsensitive) ? Qt::CaseInsensitive : Qt::CaseSensitive;
        if (options.testFlag(loPartialKey))
            return a.startsWith(b, cs);
        return a.compare(b, cs) == 0;
    }
    try {
        switch (field->DataType()) {
        case ftBoolean: return value.toBool() == VarToBool(key);
        case ftDate: case ftTime: case ftDateTime: case ftTimeStamp: case ftOraTimeStamp:
            return VarToDateTime(value) == VarToDateTime(key);
        case ftBCD: return VarToCurr(value) == VarToCurr(key);
        case ftSmallint: case ftInteger: case ftWord: case ftAutoInc: case ftLargeint:
        case ftFloat: case ftCurrency: case ftFMTBcd:
            return VarToFloat(value) == VarToFloat(key);
        default: return VarSameValue(value, key);
        }
    } catch (const EVariantError &) {
        return false;
    }
}

} // namespace

TDataSetRowObserver::~TDataSetRowObserver() = default;

TDataSet::TDataSet(QObject *owner)
    : QObject(owner), m_fields(this), m_fieldDefs(this), m_context(&m_cursorContext)
{
    m_cursorContext.calc = &m_cursorCalc;
}

TDataSet::~TDataSet()
{
    // A descendant closes in its own destructor; what is left is to let the links go.
    if (m_state != dsInactive) {
        m_state = dsInactive;
        DataEvent(deUpdateState);
    }
    while (!m_dataSources.isEmpty())
        m_dataSources.first()->setDataSet(nullptr);
    m_fields.Clear();
}

// ---------------------------------------------------------------------------------------------
// State

void TDataSet::setActive(bool value)
{
    if (value == Active())
        return;
    if (value) {
        if (BeforeOpen)
            BeforeOpen(this);
        OpenCursor();
        if (AfterOpen)
            AfterOpen(this);
        DoAfterScroll();
        return;
    }
    if (BeforeClose)
        BeforeClose(this);
    // Pending changes go without Cancel events, as closing does in the framework.
    m_insertRow = -1;
    m_buffer.clear();
    m_cursorContext = RecordContext{NoRecord, nullptr, &m_cursorCalc};
    SetState(dsInactive);
    InternalClose();
    m_current = NoRecord;
    m_row = -1;
    m_bof = m_eof = true;
    DestroyDefaultFields();
    UnbindFields();
    Touch();
    if (AfterClose)
        AfterClose(this);
}

void TDataSet::OpenCursor()
{
    m_state = dsOpening;
    try {
        InternalOpen();
        CreateAndBindFields();
        InternalOpenComplete();
    } catch (...) {
        m_state = dsInactive;
        try {
            InternalClose();
        } catch (...) {
        }
        DestroyDefaultFields();
        UnbindFields();
        throw;
    }
    m_insertRow = -1;
    m_buffer.clear();
    if (ViewCount() > 0)
        SetCurrent(ViewRecord(0), true, false);
    else
        SetCurrent(NoRecord, true, true);
    Touch();
    SetState(dsBrowse);
}

void TDataSet::CreateAndBindFields()
{
    m_defaultFields = m_fields.Count() == 0;
    if (m_defaultFields) {
        for (int i = 0; i < m_fieldDefs.Count(); ++i)
            m_fieldDefs[i]->CreateField(this);
    }

    const QList<StoredDef> leaves = StoredFieldDefs();
    QHash<QString, const TFieldDef *> objects;
    std::function<void(const TFieldDefs &, const QString &, bool)> walk =
        [&](const TFieldDefs &defs, const QString &prefix, bool arrayParent) {
            for (int i = 0; i < defs.Count(); ++i) {
                const TFieldDef *def = defs[i];
                if (def->DataType() != ftADT && def->DataType() != ftArray)
                    continue;
                const QString name = arrayParent ? prefix + QLatin1Char('[') + QString::number(i) + QLatin1Char(']')
                                                 : (prefix.isEmpty() ? def->Name() : prefix + QLatin1Char('.') + def->Name());
                objects.insert(UpperCase(name), def);
                walk(def->ChildDefs(), name, def->DataType() == ftArray);
            }
        };
    walk(m_fieldDefs, QString(), false);

    m_storedFields = QList<TField *>(leaves.size(), nullptr);
    m_calcFieldCount = 0;
    m_internalCalcCount = 0;
    for (TField *field : FieldList()) {
        field->m_fieldNo = 0;
        field->m_calcSlot = -1;
        switch (field->FieldKind()) {
        case fkData:
        case fkInternalCalc: {
            const QString name = UpperCase(field->FullName());
            if (field->DataType() == ftADT || field->DataType() == ftArray) {
                const TFieldDef *def = objects.value(name);
                if (!def)
                    DatabaseErrorFmt(SFieldNotFound, {field->FullName()}, this);
                if (def->DataType() != field->DataType())
                    DatabaseErrorFmt(SFieldTypeMismatch, {field->DisplayName(), FieldTypeName(field->DataType()),
                                                          FieldTypeName(def->DataType())}, this);
                break;
            }
            int column = -1;
            for (int i = 0; i < leaves.size(); ++i) {
                if (UpperCase(leaves[i].fullName) == name) {
                    column = i;
                    break;
                }
            }
            if (column < 0)
                DatabaseErrorFmt(SFieldNotFound, {field->FullName()}, this);
            if (!fieldFitsDef(field->DataType(), leaves[column].def->DataType()))
                DatabaseErrorFmt(SFieldTypeMismatch, {field->DisplayName(), FieldTypeName(field->DataType()),
                                                      FieldTypeName(leaves[column].def->DataType())}, this);
            field->m_fieldNo = column + 1;
            m_storedFields[column] = field;
            if (field->FieldKind() == fkInternalCalc)
                ++m_internalCalcCount;
            break;
        }
        case fkLookup:
            if (!field->LookupDataSet() || field->KeyFields().isEmpty() || field->LookupKeyFields().isEmpty()
                || field->LookupResultField().isEmpty())
                DatabaseErrorFmt(SLookupInfoError, {field->DisplayName()}, this);
            field->m_calcSlot = m_calcFieldCount++;
            break;
        case fkCalculated:
        case fkAggregate:
            field->m_calcSlot = m_calcFieldCount++;
            break;
        }
    }
    m_cursorCalc.values = QVariantList(m_calcFieldCount);
    m_cursorCalc.valid = false;
    m_scopeCalc.clear();
}

QList<TDataSet::StoredDef> TDataSet::StoredFieldDefs() const
{
    QList<StoredDef> leaves;
    std::function<void(const TFieldDefs &, const QString &, bool)> walk =
        [&](const TFieldDefs &defs, const QString &prefix, bool arrayParent) {
            for (int i = 0; i < defs.Count(); ++i) {
                const TFieldDef *def = defs[i];
                const QString name = arrayParent ? prefix + QLatin1Char('[') + QString::number(i) + QLatin1Char(']')
                                                 : (prefix.isEmpty() ? def->Name() : prefix + QLatin1Char('.') + def->Name());
                if (def->DataType() == ftADT || def->DataType() == ftArray)
                    walk(def->ChildDefs(), name, def->DataType() == ftArray);
                else
                    leaves.append({name, def});
            }
        };
    walk(m_fieldDefs, QString(), false);
    return leaves;
}

void TDataSet::UnbindFields()
{
    for (TField *field : FieldList()) {
        field->m_fieldNo = 0;
        field->m_calcSlot = -1;
    }
    m_storedFields.clear();
    m_calcFieldCount = 0;
    m_internalCalcCount = 0;
    m_scopeCalc.clear();
}

void TDataSet::DestroyDefaultFields()
{
    if (m_defaultFields) {
        m_storedFields.clear();
        m_fields.Clear();
    }
    m_defaultFields = false;
}

void TDataSet::InitFieldDefsFromFields()
{
    std::function<void(TFieldDefs &, const TFields &)> add = [&](TFieldDefs &defs, const TFields &fields) {
        for (const TField *field : fields) {
            if (field->FieldKind() != fkData && field->FieldKind() != fkInternalCalc)
                continue;
            TFieldDef *def = defs.AddFieldDef();
            def->setName(field->FieldName());
            def->setDataType(field->DataType());
            def->setRequired(field->Required());
            if (field->ReadOnly())
                def->setAttributes(def->Attributes() | faReadonly);
            def->setInternalCalcField(field->FieldKind() == fkInternalCalc);
            if (const auto *bcd = qobject_cast<const TBCDField *>(field))
                def->setPrecision(bcd->Precision());
            if (const auto *object = qobject_cast<const TObjectField *>(field)) {
                def->setSize(field->DataType() == ftArray ? object->FieldCount() : 0);
                add(def->ChildDefs(), object->Fields());
            } else {
                def->setSize(field->Size());
            }
        }
    };
    m_fieldDefs.Clear();
    add(m_fieldDefs, m_fields);
}

void TDataSet::SetState(TDataSetState state)
{
    if (state == m_state)
        return;
    m_state = state;
    m_modified = false;
    DataEvent(deUpdateState);
}

bool TDataSet::IsEmpty() const
{
    return !Active() || (ViewCount() == 0 && m_state != dsInsert);
}

void TDataSet::CheckActive() const
{
    if (!Active())
        DatabaseError(QString::fromLatin1(SDataSetClosed), this);
}

void TDataSet::CheckInactive() const
{
    if (Active())
        DatabaseError(QString::fromLatin1(SDataSetOpen), this);
}

void TDataSet::CheckCanModify() const
{
    if (!CanModify())
        DatabaseError(QString::fromLatin1(SDataSetReadOnly), this);
}

// ---------------------------------------------------------------------------------------------
// Cursor

void TDataSet::SetCurrent(RecordId id, bool bof, bool eof)
{
    m_current = id;
    m_row = id == NoRecord ? -1 : ViewPosition(id);
    m_bof = bof;
    m_eof = eof;
    if (m_state != dsInsert)
        m_cursorContext.id = id;
    InvalidateCalc();
}

void TDataSet::RefreshCursorRow()
{
    if (m_current == NoRecord) {
        m_row = -1;
        return;
    }
    if (m_row < 0 || m_row >= ViewCount() || ViewRecord(m_row) != m_current)
        m_row = ViewPosition(m_current);
}

void TDataSet::DoBeforeScroll()
{
    if (BeforeScroll)
        BeforeScroll(this);
}

void TDataSet::DoAfterScroll()
{
    if (AfterScroll)
        AfterScroll(this);
}

void TDataSet::First()
{
    CheckBrowseMode();
    DoBeforeScroll();
    if (ViewCount() > 0)
        SetCurrent(ViewRecord(0), true, false);
    else
        SetCurrent(NoRecord, true, true);
    DataEvent(deDataSetChange);
    DoAfterScroll();
}

void TDataSet::Last()
{
    CheckBrowseMode();
    DoBeforeScroll();
    const int count = ViewCount();
    if (count > 0)
        SetCurrent(ViewRecord(count - 1), false, true);
    else
        SetCurrent(NoRecord, true, true);
    DataEvent(deDataSetChange);
    DoAfterScroll();
}

int TDataSet::MoveBy(int distance)
{
    CheckBrowseMode();
    DoBeforeScroll();
    if (!((distance > 0 && !m_eof) || (distance < 0 && !m_bof)))
        return 0;
    m_bof = m_eof = false;
    const int count = ViewCount();
    if (count == 0) {
        SetCurrent(NoRecord, true, true);
        DoAfterScroll();
        return 0;
    }
    RefreshCursorRow();
    const int from = std::max(m_row, 0);
    qint64 target = qint64(from) + distance;
    bool bof = false, eof = false;
    if (target >= count) {
        target = count - 1;
        eof = true;
    } else if (target < 0) {
        target = 0;
        bof = true;
    }
    const int moved = int(target) - from;
    if (moved != 0) {
        m_current = ViewRecord(int(target));
        m_row = int(target);
        m_cursorContext.id = m_current;
        InvalidateCalc();
    }
    m_bof = bof;
    m_eof = eof;
    if (moved != 0)
        DataEvent(deDataSetScroll, moved);
    DoAfterScroll();
    return moved;
}

int TDataSet::RecNo() const
{
    if (!Active())
        return 0;
    if (m_insertRow >= 0)
        return m_insertRow + 1;
    if (m_current == NoRecord)
        return 0;
    const_cast<TDataSet *>(this)->RefreshCursorRow();
    return m_row + 1;
}

void TDataSet::setRecNo(int recNo)
{
    CheckBrowseMode();
    const int count = ViewCount();
    if (recNo < 1 || recNo > count || recNo == RecNo())
        return;
    DoBeforeScroll();
    SetCurrent(ViewRecord(recNo - 1), false, false);
    DataEvent(deDataSetChange);
    DoAfterScroll();
}

int TDataSet::RecordCount() const
{
    CheckActive();
    return ViewCount();
}

int TDataSet::RowCount() const
{
    if (!Active())
        return 0;
    return ViewCount() + (m_insertRow >= 0 ? 1 : 0);
}

int TDataSet::CurrentRow() const
{
    if (!Active())
        return -1;
    if (m_insertRow >= 0)
        return m_insertRow;
    if (m_current == NoRecord)
        return -1;
    const_cast<TDataSet *>(this)->RefreshCursorRow();
    return m_row;
}

TDataSet::RecordId TDataSet::RowRecord(int row) const
{
    if (!Active() || row < 0)
        return NoRecord;
    if (m_insertRow >= 0) {
        if (row == m_insertRow)
            return NoRecord;
        if (row > m_insertRow)
            --row;
    }
    return row < ViewCount() ? ViewRecord(row) : NoRecord;
}

TBookmark TDataSet::RowBookmark(int row) const
{
    const RecordId id = RowRecord(row);
    return id == NoRecord ? TBookmark() : MakeBookmark(id);
}

int TDataSet::BookmarkRow(const TBookmark &bookmark) const
{
    if (!Active())
        return -1;
    const RecordId id = BookmarkRecord(bookmark);
    if (id == NoRecord || !RecordExists(id))
        return -1;
    int pos = ViewPosition(id);
    if (pos >= 0 && m_insertRow >= 0 && pos >= m_insertRow)
        ++pos;
    return pos;
}

void TDataSet::Resync()
{
    if (m_current != NoRecord && RecordExists(m_current) && ViewPosition(m_current) >= 0)
        SetCurrent(m_current, false, false);
    else if (ViewCount() > 0)
        SetCurrent(ViewRecord(0), true, false);
    else
        SetCurrent(NoRecord, true, true);
    DataEvent(deDataSetChange);
}

// ---------------------------------------------------------------------------------------------
// Editing

void TDataSet::Edit()
{
    if (m_state == dsEdit || m_state == dsInsert)
        return;
    CheckActive();
    if (ViewCount() == 0) {
        Insert();
        return;
    }
    CheckBrowseMode();
    CheckCanModify();
    if (BeforeEdit)
        BeforeEdit(this);
    RefreshCursorRow();
    m_buffer = QVariantList(StoredColumnCount());
    for (int c = 0; c < StoredColumnCount(); ++c)
        m_buffer[c] = StoredValue(m_current, c);
    m_cursorContext = RecordContext{m_current, &m_buffer, &m_cursorCalc};
    SetState(dsEdit);
    DataEvent(deRecordChange);
    if (AfterEdit)
        AfterEdit(this);
}

void TDataSet::BeginInsertAppend()
{
    CheckBrowseMode();
    CheckCanModify();
    if (BeforeInsert)
        BeforeInsert(this);
    DoBeforeScroll();
}

void TDataSet::StartInsert(bool append)
{
    RefreshCursorRow();
    if (append || m_current == NoRecord) {
        m_insertBefore = NoRecord;
        m_insertRow = ViewCount();
    } else {
        m_insertBefore = m_current;
        m_insertRow = m_row;
    }
    const int row = m_insertRow;
    m_insertRow = -1;
    NotifyRows([row](TDataSetRowObserver *o) { o->RowAboutToBeInserted(row); });
    m_insertRow = row;
    m_buffer = QVariantList(StoredColumnCount());
    m_cursorContext = RecordContext{NoRecord, &m_buffer, &m_cursorCalc};
    InvalidateCalc();
    NotifyRows([row](TDataSetRowObserver *o) { o->RowInserted(row); });
}

void TDataSet::EndInsertAppend()
{
    SetState(dsInsert);
    try {
        if (OnNewRecord)
            OnNewRecord(this);
    } catch (...) {
        DiscardUnsaved();
        SetState(dsBrowse);
        DataEvent(deDataSetChange);
        throw;
    }
    // Values set by OnNewRecord alone leave the record unmodified: CheckBrowseMode cancels it.
    m_modified = false;
    DataEvent(deDataSetChange);
    if (AfterInsert)
        AfterInsert(this);
    DoAfterScroll();
}

void TDataSet::Insert()
{
    CheckActive();
    BeginInsertAppend();
    StartInsert(false);
    m_bof = m_eof = false;
    EndInsertAppend();
}

void TDataSet::Append()
{
    CheckActive();
    BeginInsertAppend();
    StartInsert(true);
    m_bof = false;
    m_eof = true;
    EndInsertAppend();
}

void TDataSet::DiscardUnsaved()
{
    if (m_insertRow >= 0) {
        const int row = m_insertRow;
        NotifyRows([row](TDataSetRowObserver *o) { o->RowAboutToBeRemoved(row); });
        m_insertRow = -1;
        m_buffer.clear();
        m_cursorContext = RecordContext{m_current, nullptr, &m_cursorCalc};
        InvalidateCalc();
        NotifyRows([row](TDataSetRowObserver *o) { o->RowRemoved(row); });
    } else if (m_state == dsEdit) {
        m_buffer.clear();
        m_cursorContext = RecordContext{m_current, nullptr, &m_cursorCalc};
        InvalidateCalc();
        NotifyRowChanged(CurrentRow());
    }
    m_modified = false;
}

void TDataSet::CheckRequiredFields()
{
    for (TField *field : FieldList()) {
        if (field->Required() && !field->ReadOnly() && field->FieldKind() == fkData && field->FieldNo() > 0
            && field->DataType() != ftAutoInc && field->IsNull()) {
            field->FocusControl();
            DatabaseErrorFmt(SFieldRequired, {field->DisplayName()});
        }
    }
}

void TDataSet::CalculateInternalFields()
{
    if (m_internalCalcCount == 0 || !OnCalcFields)
        return;
    TempState temp(m_state, dsInternalCalc);
    OnCalcFields(this);
}

void TDataSet::Post()
{
    UpdateRecord();
    if (m_state == dsSetKey) {
        const QVariantList key = m_buffer;
        m_buffer.clear();
        m_cursorContext = RecordContext{m_current, nullptr, &m_cursorCalc};
        InternalPostKey(key, true);
        SetState(dsBrowse);
        return;
    }
    DataEvent(deCheckBrowseMode);
    if (BeforePost)
        BeforePost(this);
    CheckRequiredFields();
    CalculateInternalFields();
    StoreRecord(m_state == dsInsert);
    m_cursorContext = RecordContext{m_current, nullptr, &m_cursorCalc};
    SetState(dsBrowse);
    DataEvent(deDataSetChange);
    if (AfterPost)
        AfterPost(this);
}

void TDataSet::StoreRecord(bool inserting)
{
    PrepareRecord(m_buffer, inserting);
    const RecordId self = inserting ? NoRecord : m_current;
    CheckRecord(m_buffer, self);
    RefreshCursorRow();
    const int oldRow = inserting ? m_insertRow : m_row;
    // Calculated values cached for rows go stale with what the prediction writes.
    Touch();
    const int predicted = PredictPosition(m_buffer, inserting ? m_insertBefore : NoRecord, self);
    if (predicted == -2)
        NotifyRowsAboutToBeReset();
    else if (predicted < 0)
        NotifyRows([oldRow](TDataSetRowObserver *o) { o->RowAboutToBeRemoved(oldRow); });
    else if (predicted != oldRow)
        NotifyRows([oldRow, predicted](TDataSetRowObserver *o) { o->RowAboutToBeMoved(oldRow, predicted); });

    RecordId id = m_current;
    if (inserting) {
        id = InternalInsert(m_buffer, m_insertBefore);
        m_insertRow = -1;
    } else {
        InternalUpdate(id, m_buffer);
    }
    m_buffer.clear();
    Touch();
    const int newRow = ViewPosition(id);
    if (newRow >= 0) {
        SetCurrent(id, false, false);
    } else {
        // The filter hides the record: the cursor stays on the row where it was.
        const int count = ViewCount();
        if (count == 0)
            SetCurrent(NoRecord, true, true);
        else
            SetCurrent(ViewRecord(std::min(oldRow, count - 1)), false, false);
    }

    if (predicted == -2) {
        NotifyRowsReset();
        return;
    }
    if (predicted < 0)
        NotifyRows([oldRow](TDataSetRowObserver *o) { o->RowRemoved(oldRow); });
    else if (predicted != oldRow)
        NotifyRows([oldRow, predicted](TDataSetRowObserver *o) { o->RowMoved(oldRow, predicted); });
    if (predicted >= 0)
        NotifyRowChanged(predicted);
    // A descendant that predicted wrong gets its rows reported again as a whole.
    if (newRow != predicted) {
        NotifyRowsAboutToBeReset();
        NotifyRowsReset();
    }
}

void TDataSet::PrepareRecord(QVariantList &, bool) {}

int TDataSet::PredictPosition(const QVariantList &, RecordId, RecordId)
{
    return -2;
}

void TDataSet::Cancel()
{
    if (m_state == dsSetKey) {
        const QVariantList key = m_buffer;
        m_buffer.clear();
        m_cursorContext = RecordContext{m_current, nullptr, &m_cursorCalc};
        InternalPostKey(key, false);
        SetState(dsBrowse);
        return;
    }
    if (m_state != dsEdit && m_state != dsInsert)
        return;
    DataEvent(deCheckBrowseMode);
    if (BeforeCancel)
        BeforeCancel(this);
    DiscardUnsaved();
    SetState(dsBrowse);
    DataEvent(deDataSetChange);
    if (AfterCancel)
        AfterCancel(this);
}

void TDataSet::Delete()
{
    CheckActive();
    if (m_state == dsInsert || m_state == dsSetKey) {
        Cancel();
        return;
    }
    if (ViewCount() == 0)
        DatabaseError(QString::fromLatin1(SDataSetEmpty), this);
    CheckCanModify();
    DataEvent(deCheckBrowseMode);
    if (BeforeDelete)
        BeforeDelete(this);
    DoBeforeScroll();
    RefreshCursorRow();
    const int row = m_row;
    NotifyRows([row](TDataSetRowObserver *o) { o->RowAboutToBeRemoved(row); });
    InternalDelete(m_current);
    m_buffer.clear();
    Touch();
    NotifyRows([row](TDataSetRowObserver *o) { o->RowRemoved(row); });
    const int count = ViewCount();
    if (count == 0)
        SetCurrent(NoRecord, true, true);
    else
        SetCurrent(ViewRecord(std::min(row, count - 1)), false, row >= count);
    m_cursorContext = RecordContext{m_current, nullptr, &m_cursorCalc};
    SetState(dsBrowse);
    DataEvent(deDataSetChange);
    if (AfterDelete)
        AfterDelete(this);
    DoAfterScroll();
}

void TDataSet::CheckBrowseMode()
{
    CheckActive();
    DataEvent(deCheckBrowseMode);
    switch (m_state) {
    case dsEdit:
    case dsInsert:
        UpdateRecord();
        if (m_modified)
            Post();
        else
            Cancel();
        break;
    case dsSetKey:
        Post();
        break;
    default:
        break;
    }
}

void TDataSet::UpdateRecord()
{
    if (!isEditMode(m_state))
        DatabaseError(QString::fromLatin1(SNotEditing), this);
    DataEvent(deUpdateRecord);
}

void TDataSet::ClearFields()
{
    if (!isEditMode(m_state))
        DatabaseError(QString::fromLatin1(SNotEditing), this);
    DataEvent(deCheckBrowseMode);
    for (QVariant &v : m_buffer)
        v = Null();
    m_modified = true;
    InvalidateCalc();
    if (m_state != dsSetKey)
        NotifyRowChanged(CurrentRow());
    DataEvent(deRecordChange);
}

void TDataSet::InsertRecord(const QVariantList &values)
{
    Insert();
    for (int i = 0; i < values.size() && i < m_fields.Count(); ++i) {
        if (values.at(i).isValid())
            m_fields[i]->setValue(values.at(i));
    }
    Post();
}

void TDataSet::AppendRecord(const QVariantList &values)
{
    Append();
    for (int i = 0; i < values.size() && i < m_fields.Count(); ++i) {
        if (values.at(i).isValid())
            m_fields[i]->setValue(values.at(i));
    }
    Post();
}

void TDataSet::CheckRecord(const QVariantList &, RecordId) const {}

void TDataSet::InternalPostKey(const QVariantList &, bool) {}

void TDataSet::EnterSetKey(const QVariantList &key)
{
    CheckBrowseMode();
    m_buffer = key;
    while (m_buffer.size() < StoredColumnCount())
        m_buffer.append(QVariant());
    m_cursorContext = RecordContext{NoRecord, &m_buffer, nullptr};
    SetState(dsSetKey);
}

void TDataSet::MoveToRecord(RecordId id)
{
    DoBeforeScroll();
    SetCurrent(id, false, false);
    DataEvent(deDataSetChange);
    DoAfterScroll();
}

void TDataSet::CloseForDestruction()
{
    BeforeClose = nullptr;
    AfterClose = nullptr;
    try {
        Close();
    } catch (...) {
    }
}

// ---------------------------------------------------------------------------------------------
// Field values

QVariant TDataSet::GetFieldData(const TField *field) const
{
    const RecordContext &context = *m_context;
    if (field->m_fieldNo > 0) {
        const int column = field->m_fieldNo - 1;
        if (context.buffer) {
            const QVariant &v = context.buffer->at(column);
            return v.isValid() ? v : Null();
        }
        if (context.id == NoRecord)
            return Null();
        return StoredValue(context.id, column);
    }
    if (field->m_calcSlot >= 0 && context.calc) {
        if (!context.calc->valid)
            const_cast<TDataSet *>(this)->CalculateFields(*m_context);
        return context.calc->values.value(field->m_calcSlot, Null());
    }
    return Null();
}

void TDataSet::CalculateFields(RecordContext &context)
{
    CalcValues &calc = *context.calc;
    calc.values = QVariantList(m_calcFieldCount, Null());
    // Valid from the start: the handler reads the values it has already assigned.
    calc.valid = true;
    if (context.id == NoRecord && !context.buffer)
        return;
    TempState temp(m_state, dsCalcFields);
    for (TField *field : FieldList()) {
        if (field->FieldKind() != fkLookup || field->m_calcSlot < 0)
            continue;
        TDataSet *lookup = field->LookupDataSet();
        if (!lookup || !lookup->Active())
            continue;
        const QVariant keys = FieldValues(field->KeyFields());
        const QVariantList keyList = keys.metaType().id() == QMetaType::QVariantList ? keys.toList() : QVariantList{keys};
        if (std::any_of(keyList.cbegin(), keyList.cend(), isNullValue))
            continue;
        calc.values[field->m_calcSlot] = lookup->Lookup(field->LookupKeyFields(), keys, field->LookupResultField());
    }
    if (OnCalcFields)
        OnCalcFields(this);
}

void TDataSet::SetFieldData(TField *field, const QVariant &value)
{
    switch (m_state) {
    case dsCalcFields:
        if (field->m_calcSlot >= 0 && m_context->calc) {
            m_context->calc->values[field->m_calcSlot] = value;
            return;
        }
        if (field->FieldKind() == fkInternalCalc)
            return;
        DatabaseError(QString::fromLatin1(SNotEditing), this);
    case dsInternalCalc:
        if (field->FieldKind() == fkInternalCalc && field->m_fieldNo > 0 && m_context->buffer) {
            (*m_context->buffer)[field->m_fieldNo - 1] = value;
            return;
        }
        if (field->m_calcSlot >= 0)
            return;
        DatabaseError(QString::fromLatin1(SNotEditing), this);
    case dsEdit:
    case dsInsert:
    case dsSetKey:
        break;
    default:
        DatabaseError(QString::fromLatin1(SNotEditing), this);
    }
    if (m_context != &m_cursorContext)
        DatabaseError(QString::fromLatin1(SNotEditing), this);

    if (field->FieldKind() == fkLookup && m_state != dsSetKey) {
        // A lookup field is written through its key fields.
        if (field->ReadOnly())
            DatabaseErrorFmt(SFieldReadOnly, {field->DisplayName()});
        QVariant keys;
        if (!isNullValue(value) && field->LookupDataSet())
            keys = field->LookupDataSet()->Lookup(field->LookupResultField(), value, field->LookupKeyFields());
        setFieldValues(field->KeyFields(), isNullValue(keys) ? Null() : keys);
        return;
    }
    if (field->m_fieldNo <= 0 || (field->ReadOnly() && m_state != dsSetKey))
        DatabaseErrorFmt(SFieldReadOnly, {field->DisplayName()});

    if (field->OnValidate) {
        field->m_proposed = &value;
        try {
            field->OnValidate(field);
        } catch (...) {
            field->m_proposed = nullptr;
            throw;
        }
        field->m_proposed = nullptr;
    }
    m_buffer[field->m_fieldNo - 1] = isNullValue(value) ? Null() : value;
    if (m_state == dsSetKey)
        return;
    InvalidateCalc();
    NotifyRowChanged(CurrentRow());
    if (field->OnChange)
        field->OnChange(field);
    DataEvent(deFieldChange, qintptr(field));
}

// ---------------------------------------------------------------------------------------------
// Fields

QList<TField *> TDataSet::FieldList() const
{
    if (!m_fieldListValid) {
        m_fieldList.clear();
        std::function<void(const TFields &)> add = [&](const TFields &fields) {
            for (TField *f : fields) {
                m_fieldList.append(f);
                if (auto *object = qobject_cast<TObjectField *>(f))
                    add(object->Fields());
            }
        };
        add(m_fields);
        m_fieldListValid = true;
    }
    return m_fieldList;
}

TField *TDataSet::FindField(const QString &fieldName) const
{
    if (TField *f = m_fields.FindField(fieldName))
        return f;
    for (TField *f : FieldList()) {
        if (SameText(f->FullName(), fieldName))
            return f;
    }
    return nullptr;
}

TField *TDataSet::FieldByName(const QString &fieldName) const
{
    TField *f = FindField(fieldName);
    if (!f)
        DatabaseErrorFmt(SFieldNotFound, {fieldName}, this);
    return f;
}

QList<TField *> TDataSet::GetFieldList(const QString &fieldNames) const
{
    QList<TField *> list;
    int pos = 1;
    while (pos <= fieldNames.size())
        list.append(FieldByName(ExtractFieldName(fieldNames, pos)));
    return list;
}

QVariant TDataSet::FieldValues(const QString &fieldNames) const
{
    const QList<TField *> fields = GetFieldList(fieldNames);
    if (fields.size() == 1)
        return fields.first()->Value();
    QVariantList values;
    for (const TField *f : fields)
        values.append(f->Value());
    return values;
}

void TDataSet::setFieldValues(const QString &fieldNames, const QVariant &values)
{
    const QList<TField *> fields = GetFieldList(fieldNames);
    if (fields.size() == 1) {
        fields.first()->setValue(values);
        return;
    }
    const QVariantList list = values.metaType().id() == QMetaType::QVariantList ? values.toList() : QVariantList();
    for (int i = 0; i < fields.size(); ++i)
        fields[i]->setValue(i < list.size() ? list.at(i) : Null());
}

QStringList TDataSet::GetFieldNames() const
{
    QStringList names;
    if (Active() || m_fields.Count() > 0) {
        for (const TField *f : m_fields)
            names.append(f->FieldName());
    } else {
        for (int i = 0; i < m_fieldDefs.Count(); ++i)
            names.append(m_fieldDefs[i]->Name());
    }
    return names;
}

// ---------------------------------------------------------------------------------------------
// Searching

QVariantList TDataSet::LocateValues(const QList<TField *> &fields, const QVariant &keyValues) const
{
    if (fields.size() == 1)
        return {keyValues};
    QVariantList list = keyValues.toList();
    while (list.size() < fields.size())
        list.append(Null());
    return list;
}

bool TDataSet::LocateRecord(const QList<TField *> &fields, const QVariantList &values, TLocateOptions options,
                            RecordId &found)
{
    const int count = ViewCount();
    for (int pos = 0; pos < count; ++pos) {
        const RecordId id = ViewRecord(pos);
        TRecordScope scope(this, id);
        bool match = true;
        for (int i = 0; i < fields.size() && match; ++i)
            match = locateMatch(fields[i], fields[i]->Value(), values.at(i), options);
        if (match) {
            found = id;
            return true;
        }
    }
    return false;
}

bool TDataSet::Locate(const QString &keyFields, const QVariant &keyValues, TLocateOptions options)
{
    CheckBrowseMode();
    const QList<TField *> fields = GetFieldList(keyFields);
    const QVariantList values = LocateValues(fields, keyValues);
    DoBeforeScroll();
    RecordId found = NoRecord;
    if (!LocateRecord(fields, values, options, found))
        return false;
    SetCurrent(found, false, false);
    DataEvent(deDataSetChange);
    DoAfterScroll();
    return true;
}

QVariant TDataSet::Lookup(const QString &keyFields, const QVariant &keyValues, const QString &resultFields)
{
    if (!Active())
        return Null();
    const QList<TField *> fields = GetFieldList(keyFields);
    RecordId found = NoRecord;
    if (!LocateRecord(fields, LocateValues(fields, keyValues), {}, found))
        return Null();
    TRecordScope scope(this, found);
    return FieldValues(resultFields);
}

QVariant TDataSet::RecordFieldValue(RecordId id, TField *field)
{
    TRecordScope scope(this, id);
    return field->Value();
}

// ---------------------------------------------------------------------------------------------
// Filtering

void TDataSet::FilterSettingChanged()
{
    if (!Active() || !m_filtered)
        return;
    CheckBrowseMode();
    RefilterRows();
    First();
}

void TDataSet::RefilterRows()
{
    NotifyRowsAboutToBeReset();
    try {
        FilterChanged();
    } catch (...) {
        NotifyRowsReset();
        throw;
    }
    Touch();
    NotifyRowsReset();
}

template<typename T>
void TDataSet::ChangeFilterSetting(T &setting, const T &value)
{
    if (value == setting)
        return;
    // A filter that does not compile leaves the previous setting.
    const T saved = setting;
    setting = value;
    try {
        FilterSettingChanged();
    } catch (...) {
        setting = saved;
        throw;
    }
}

void TDataSet::setFilter(const QString &text)
{
    ChangeFilterSetting(m_filterText, text);
}

void TDataSet::setFilterOptions(TFilterOptions options)
{
    ChangeFilterSetting(m_filterOptions, options);
}

void TDataSet::setFiltered(bool value)
{
    if (value == m_filtered)
        return;
    if (!Active()) {
        m_filtered = value;
        return;
    }
    CheckBrowseMode();
    m_filtered = value;
    try {
        RefilterRows();
    } catch (...) {
        m_filtered = !value;
        throw;
    }
    First();
}

bool TDataSet::FilterRecord(RecordId id)
{
    bool accept = true;
    if (!OnFilterRecord)
        return accept;
    TRecordScope scope(this, id);
    TempState temp(m_state, dsFilter);
    OnFilterRecord(this, accept);
    return accept;
}

// ---------------------------------------------------------------------------------------------
// Bookmarks

TBookmark TDataSet::MakeBookmark(RecordId id) const
{
    TBookmark bookmark(sizeof(RecordId), Qt::Uninitialized);
    std::memcpy(bookmark.data(), &id, sizeof id);
    return bookmark;
}

TDataSet::RecordId TDataSet::BookmarkRecord(const TBookmark &bookmark) const
{
    if (bookmark.size() != qsizetype(sizeof(RecordId)))
        return NoRecord;
    RecordId id;
    std::memcpy(&id, bookmark.constData(), sizeof id);
    return id;
}

TBookmark TDataSet::GetBookmark() const
{
    if (!Active() || m_insertRow >= 0 || m_current == NoRecord)
        return TBookmark();
    return MakeBookmark(m_current);
}

void TDataSet::GotoBookmark(const TBookmark &bookmark)
{
    CheckBrowseMode();
    const RecordId id = BookmarkRecord(bookmark);
    if (id == NoRecord || !RecordExists(id) || ViewPosition(id) < 0)
        DatabaseError(QString::fromLatin1(SRecordNotFound), this);
    DoBeforeScroll();
    SetCurrent(id, false, false);
    DataEvent(deDataSetChange);
    DoAfterScroll();
}

bool TDataSet::BookmarkValid(const TBookmark &bookmark) const
{
    if (!Active())
        return false;
    const RecordId id = BookmarkRecord(bookmark);
    return id != NoRecord && RecordExists(id) && ViewPosition(id) >= 0;
}

int TDataSet::CompareBookmarks(const TBookmark &a, const TBookmark &b) const
{
    const RecordId ia = BookmarkRecord(a), ib = BookmarkRecord(b);
    if (ia == ib)
        return 0;
    if (ia == NoRecord)
        return -1;
    if (ib == NoRecord)
        return 1;
    const int c = CompareRecords(ia, ib);
    return c < 0 ? -1 : (c > 0 ? 1 : 0);
}

// ---------------------------------------------------------------------------------------------
// Notifications

void TDataSet::DisableControls()
{
    if (m_disableCount == 0) {
        m_disableState = m_state;
        m_enableEvent = deDataSetChange;
    }
    ++m_disableCount;
}

void TDataSet::EnableControls()
{
    if (m_disableCount == 0)
        return;
    if (--m_disableCount > 0)
        return;
    if (m_disableState != m_state)
        DataEvent(deUpdateState);
    if (m_disableState != dsInactive && m_state != dsInactive)
        DataEvent(m_enableEvent);
}

void TDataSet::DataEvent(TDataEvent event, qintptr info)
{
    if (event == deFieldChange) {
        const auto *field = reinterpret_cast<const TField *>(info);
        if (field->FieldKind() == fkData || field->FieldKind() == fkInternalCalc)
            m_modified = true;
        if (m_autoCalcFields)
            InvalidateCalc();
    }
    if (m_disableCount == 0) {
        const QList<TDataSource *> sources = m_dataSources;
        for (TDataSource *source : sources) {
            if (m_dataSources.contains(source))
                source->DataEvent(event, info);
        }
    } else if ((event == deUpdateState && m_state == dsInactive) || event == deLayoutChange) {
        m_enableEvent = deLayoutChange;
    }
}

void TDataSet::AddDataSource(TDataSource *source)
{
    if (!m_dataSources.contains(source))
        m_dataSources.append(source);
}

void TDataSet::RemoveDataSource(TDataSource *source)
{
    m_dataSources.removeOne(source);
}

void TDataSet::AddRowObserver(TDataSetRowObserver *observer)
{
    if (!m_rowObservers.contains(observer))
        m_rowObservers.append(observer);
}

void TDataSet::RemoveRowObserver(TDataSetRowObserver *observer)
{
    m_rowObservers.removeOne(observer);
}

void TDataSet::NotifyRows(const std::function<void(TDataSetRowObserver *)> &call)
{
    for (TDataSetRowObserver *o : QList(m_rowObservers)) {
        if (m_rowObservers.contains(o))
            call(o);
    }
}

void TDataSet::NotifyRowChanged(int row)
{
    if (row >= 0)
        NotifyRows([row](TDataSetRowObserver *o) { o->RowChanged(row); });
}

void TDataSet::NotifyRowsAboutToBeReordered()
{
    NotifyRows([](TDataSetRowObserver *o) { o->RowsAboutToBeReordered(); });
}

void TDataSet::NotifyRowsReordered()
{
    NotifyRows([](TDataSetRowObserver *o) { o->RowsReordered(); });
}

void TDataSet::NotifyRowsAboutToBeReset()
{
    NotifyRows([](TDataSetRowObserver *o) { o->RowsAboutToBeReset(); });
}

void TDataSet::NotifyRowsReset()
{
    NotifyRows([](TDataSetRowObserver *o) { o->RowsReset(); });
}

// ---------------------------------------------------------------------------------------------
// TRecordScope

TRecordScope::TRecordScope(TDataSet *dataSet, int row) : m_dataSet(dataSet), m_saved(dataSet->m_context)
{
    if (row >= 0 && row == dataSet->CurrentRow())
        dataSet->m_context = &dataSet->m_cursorContext;
    else
        Enter(dataSet->RowRecord(row));
}

TRecordScope::TRecordScope(TDataSet *dataSet, TDataSet::RecordId id) : m_dataSet(dataSet), m_saved(dataSet->m_context)
{
    Enter(id);
}

void TRecordScope::Enter(TDataSet::RecordId id)
{
    m_context.id = id;
    if (m_dataSet->m_calcFieldCount > 0 && id != TDataSet::NoRecord) {
        m_context.calc = &m_calc;
        if (m_dataSet->m_scopeCalcVersion != m_dataSet->m_dataVersion) {
            m_dataSet->m_scopeCalc.clear();
            m_dataSet->m_scopeCalcVersion = m_dataSet->m_dataVersion;
        }
        const auto cached = m_dataSet->m_scopeCalc.constFind(id);
        if (cached != m_dataSet->m_scopeCalc.cend()) {
            m_calc.values = *cached;
            m_calc.valid = true;
        }
    }
    m_dataSet->m_context = &m_context;
}

TRecordScope::~TRecordScope()
{
    if (m_context.calc && m_calc.valid && m_dataSet->m_scopeCalcVersion == m_dataSet->m_dataVersion) {
        // A bounded cache: a view reads the rows it shows, a few hundred at a time.
        if (m_dataSet->m_scopeCalc.size() > 4096)
            m_dataSet->m_scopeCalc.clear();
        m_dataSet->m_scopeCalc.insert(m_context.id, m_calc.values);
    }
    m_dataSet->m_context = m_saved;
}

} // namespace mattoni
