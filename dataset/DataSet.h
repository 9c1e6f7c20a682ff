// TDataSet: a cursor over records with the framework's states (inactive, browse, edit, insert,
// set key ...), its fields and field definitions, navigation, editing, searching, filtering,
// bookmarks and the notifications that data sources pass on to their data links.
//
// TDataSet keeps the cursor and the unsaved record; a descendant keeps the records (see the
// protected "record source" section). Views that show every row (grids, item models) read rows
// through TRecordScope without moving the cursor, and follow row changes through
// TDataSetRowObserver.
#pragma once

#include "DB.h"
#include "FieldDefs.h"
#include "Fields.h"
#include "mattoni_core_export.h"

#include <QHash>
#include <QList>
#include <QObject>
#include <QVariant>

#include <functional>
#include <memory>

namespace mattoni {

class TDataSource;
class TRecordScope;

// Told of every change in a dataset's rows, in row numbers (0-based; in dsInsert the new record
// counts as a row at its insert position), in pairs: the first call comes before the change, the
// second after it, as Qt's item models want them. A moved row's To is its row after the move.
// Opening and closing are no row changes: the data links hear of them.
class MATTONI_CORE_EXPORT TDataSetRowObserver
{
public:
    virtual ~TDataSetRowObserver();
    virtual void RowAboutToBeInserted(int row) = 0;
    virtual void RowInserted(int row) = 0;
    virtual void RowAboutToBeRemoved(int row) = 0;
    virtual void RowRemoved(int row) = 0;
    virtual void RowAboutToBeMoved(int from, int to) = 0;
    virtual void RowMoved(int from, int to) = 0;
    // After a change of the row's values.
    virtual void RowChanged(int row) = 0;
    // The same rows in another order (an index change).
    virtual void RowsAboutToBeReordered() = 0;
    virtual void RowsReordered() = 0;
    // Anything may change (a filter, an emptied dataset).
    virtual void RowsAboutToBeReset() = 0;
    virtual void RowsReset() = 0;
};

class MATTONI_CORE_EXPORT TDataSet : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool Active READ Active WRITE setActive)
    Q_PROPERTY(bool AutoCalcFields READ AutoCalcFields WRITE setAutoCalcFields)
    Q_PROPERTY(QString Filter READ Filter WRITE setFilter)
    Q_PROPERTY(bool Filtered READ Filtered WRITE setFiltered)

public:
    using TDataSetNotifyEvent = std::function<void(TDataSet *DataSet)>;

    explicit TDataSet(QObject *owner = nullptr);
    // Frees the fields, persistent ones included, and detaches the data sources.
    ~TDataSet() override;

    // --- State ---
    bool Active() const { return m_state != dsInactive && m_state != dsOpening; }
    void setActive(bool value);
    void Open() { setActive(true); }
    void Close() { setActive(false); }
    TDataSetState State() const { return m_state; }
    // A field of the unsaved record changed since Edit or Insert.
    bool Modified() const { return m_modified; }
    virtual bool CanModify() const { return true; }
    bool IsEmpty() const;
    // Raises "Cannot perform this operation on a closed dataset" unless the dataset is active.
    void CheckActive() const;
    // Raises "Cannot perform this operation on an open dataset" unless it is closed.
    void CheckInactive() const;

    // --- Navigation: Bof after First or a Prior at the first record, Eof after Last or a Next
    // at the last; an empty dataset is at both ---
    void First();
    void Last();
    void Next() { MoveBy(1); }
    void Prior() { MoveBy(-1); }
    // Moves up to Distance records and returns how many it moved.
    int MoveBy(int distance);
    bool Bof() const { return m_bof; }
    bool Eof() const { return m_eof; }
    // 1-based position of the current record in the current order; 0 when there is none. In
    // dsInsert the position the new record takes.
    int RecNo() const;
    void setRecNo(int recNo);
    // The records in the current order, the new one of dsInsert not counted.
    int RecordCount() const;

    // --- Editing ---
    // Edit on an empty dataset inserts.
    void Edit();
    // A new record before the current one (Insert) or after the last (Append); the index puts
    // it in its place when it is posted.
    void Insert();
    void Append();
    // Raises "Dataset not in edit or insert mode" in dsBrowse; key violations and required
    // fields ("Field '%s' must have a value") leave the record in edit.
    void Post();
    void Cancel();
    // The current record; in dsInsert the new one is cancelled instead.
    void Delete();
    // Posts a modified record, cancels an unmodified one.
    void CheckBrowseMode();
    // Lets the data links write their controls' pending text into the fields.
    void UpdateRecord();
    // Clears every field of the unsaved record.
    void ClearFields();
    // Insert or Append, the values assigned to the fields in order (unassigned ones skipped),
    // then Post.
    void InsertRecord(const QVariantList &values);
    void AppendRecord(const QVariantList &values);

    // --- Fields ---
    TFields &Fields() { return m_fields; }
    const TFields &Fields() const { return m_fields; }
    int FieldCount() const { return m_fields.Count(); }
    // Every field, the children of object fields after their parent.
    QList<TField *> FieldList() const;
    TFieldDefs &FieldDefs() { return m_fieldDefs; }
    const TFieldDefs &FieldDefs() const { return m_fieldDefs; }
    // By name or "Parent.Child" full name, ignoring case.
    TField *FindField(const QString &fieldName) const;
    // Raises "Field '%s' not found".
    TField *FieldByName(const QString &fieldName) const;
    // Values of the ";"-separated fields: one value, or a list for several.
    QVariant FieldValues(const QString &fieldNames) const;
    void setFieldValues(const QString &fieldNames, const QVariant &values);
    QStringList GetFieldNames() const;
    // The fields named in a ";"-separated list, in order; raises for an unknown one.
    QList<TField *> GetFieldList(const QString &fieldNames) const;
    // Fields made from FieldDefs at Open (true) rather than persistent ones created in code.
    bool DefaultFields() const { return m_defaultFields; }

    // --- Searching ---
    // Moves to the first record, in the current order, whose KeyFields equal KeyValues (one
    // value, or a list for several fields); false and no move when there is none.
    virtual bool Locate(const QString &keyFields, const QVariant &keyValues, TLocateOptions options = {});
    // ResultFields of that record without moving: a value, a list for several fields, Null when
    // none matches.
    virtual QVariant Lookup(const QString &keyFields, const QVariant &keyValues, const QString &resultFields);

    // --- Filtering: Filter is an expression over the fields (comparisons =, <>, <, >, <=, >=,
    // IS [NOT] NULL, literals, AND, OR, NOT, parentheses); OnFilterRecord decides too ---
    QString Filter() const { return m_filterText; }
    void setFilter(const QString &text);
    bool Filtered() const { return m_filtered; }
    void setFiltered(bool value);
    TFilterOptions FilterOptions() const { return m_filterOptions; }
    void setFilterOptions(TFilterOptions options);

    // --- Bookmarks: stable across index and filter changes ---
    TBookmark GetBookmark() const;
    // Raises "Record not found" when the record is gone or filtered out.
    void GotoBookmark(const TBookmark &bookmark);
    TBookmark Bookmark() const { return GetBookmark(); }
    void setBookmark(const TBookmark &bookmark) { GotoBookmark(bookmark); }
    bool BookmarkValid(const TBookmark &bookmark) const;
    // -1, 0, 1 by the records' order in the current index (an empty bookmark comes first).
    int CompareBookmarks(const TBookmark &a, const TBookmark &b) const;

    // --- Controls: DisableControls silences the data links; the last EnableControls sends them
    // one DataSetChanged (with the state change first, when there was one) ---
    void DisableControls();
    void EnableControls();
    bool ControlsDisabled() const { return m_disableCount > 0; }

    bool AutoCalcFields() const { return m_autoCalcFields; }
    void setAutoCalcFields(bool value) { m_autoCalcFields = value; }

    // --- Rows, for views that show every record without moving the cursor ---
    // RecordCount plus the new record while in dsInsert.
    int RowCount() const;
    // The row of the current record (the new one in dsInsert); -1 when there is none.
    int CurrentRow() const;
    TBookmark RowBookmark(int row) const;
    // -1 when the record is not among the rows.
    int BookmarkRow(const TBookmark &bookmark) const;
    void AddRowObserver(TDataSetRowObserver *observer);
    void RemoveRowObserver(TDataSetRowObserver *observer);

    // Sends Event to the data sources (and through them to the data links).
    void DataEvent(TDataEvent event, qintptr info = 0);
    QList<TDataSource *> DataSources() const { return m_dataSources; }

    // --- Events ---
    TDataSetNotifyEvent BeforeOpen, AfterOpen, BeforeClose, AfterClose;
    TDataSetNotifyEvent BeforeInsert, AfterInsert, BeforeEdit, AfterEdit;
    TDataSetNotifyEvent BeforePost, AfterPost, BeforeCancel, AfterCancel;
    TDataSetNotifyEvent BeforeDelete, AfterDelete, BeforeScroll, AfterScroll;
    // Assigns the calculated and lookup fields of the record it is called for (State is
    // dsCalcFields), and the internally calculated ones of a record being posted (dsInternalCalc).
    TDataSetNotifyEvent OnCalcFields;
    // Gives a new record its initial values.
    TDataSetNotifyEvent OnNewRecord;
    // Sets Accept false to hide the record (State is dsFilter) while Filtered is on.
    std::function<void(TDataSet *DataSet, bool &Accept)> OnFilterRecord;

protected:
    // --- Record source: a descendant that keeps records implements these. Positions count the
    // records of the current view (current order, filter applied), from 0 ---
    using RecordId = quint32;
    static constexpr RecordId NoRecord = 0xFFFFFFFFu;

    // Makes the records available; FieldDefs describe them, the fields are made and bound
    // afterwards. Raise to refuse opening.
    virtual void InternalOpen() = 0;
    // The fields are bound: set up what depends on them (indexes, filter). Raise to refuse opening.
    virtual void InternalOpenComplete() {}
    virtual void InternalClose() = 0;
    // Fills FieldDefs from the source, for TFieldDefs::Update; the base keeps them.
    virtual void InternalInitFieldDefs() {}
    virtual int ViewCount() const = 0;
    virtual RecordId ViewRecord(int position) const = 0;
    // -1 when the record is not in the view (deleted or filtered out).
    virtual int ViewPosition(RecordId id) const = 0;
    virtual bool RecordExists(RecordId id) const = 0;
    // The stored value of column Column (a field's FieldNo - 1) in record Id, of the field's own
    // type, or Null.
    virtual QVariant StoredValue(RecordId id, int column) const = 0;
    // Stores a new record (Values by FieldNo - 1; unassigned means Null), placed in the default
    // order before Before (NoRecord: at the end). Raise to refuse it.
    virtual RecordId InternalInsert(const QVariantList &values, RecordId before) = 0;
    virtual void InternalUpdate(RecordId id, const QVariantList &values) = 0;
    virtual void InternalDelete(RecordId id) = 0;
    // Order of two records in the current index: negative, 0, positive.
    virtual int CompareRecords(RecordId a, RecordId b) const = 0;
    // The filter changed (text, options, OnFilterRecord or Filtered): rebuild the view.
    virtual void FilterChanged() = 0;
    // Refreshes IndexDefs; the base has none.
    virtual void UpdateIndexDefs() {}
    // The first record of the view, in order, whose Fields match Values; the base compares the
    // fields' values record by record.
    virtual bool LocateRecord(const QList<TField *> &fields, const QVariantList &values,
                              TLocateOptions options, RecordId &found);
    // Completes a record about to be posted (numbers of its own); the base leaves it.
    virtual void PrepareRecord(QVariantList &values, bool inserting);
    // Raises when the record may not be posted (a key violation); the base accepts it.
    virtual void CheckRecord(const QVariantList &values, RecordId self) const;
    // The view position a record with Values will have once stored (a new one placed before
    // Before, or Self updated), -1 when the filter will hide it; the base cannot tell (-2), and
    // the rows are then reported as reset.
    virtual int PredictPosition(const QVariantList &values, RecordId before, RecordId self);
    // Leaving dsSetKey: Post keeps the key (Commit), Cancel drops it.
    virtual void InternalPostKey(const QVariantList &key, bool commit);
    virtual TBookmark MakeBookmark(RecordId id) const;
    // NoRecord for a bookmark that is not one of this dataset's.
    virtual RecordId BookmarkRecord(const TBookmark &bookmark) const;

    // Accepts the record by OnFilterRecord (false hides it); call only while Filtered is on.
    bool FilterRecord(RecordId id);
    bool HasFilterHandler() const { return bool(OnFilterRecord); }
    // The values of the fields of Id, through TRecordScope (calculated fields included).
    QVariant RecordFieldValue(RecordId id, TField *field);

    // The cursor's record after the descendant changed the view on its own (sorting, refilling):
    // stays on the current record when it is still there, else on the first.
    void Resync();
    // Row notifications for descendants that change rows by themselves.
    void NotifyRowsAboutToBeReordered();
    void NotifyRowsReordered();
    void NotifyRowsAboutToBeReset();
    void NotifyRowsReset();
    // The fields bound to stored columns, by FieldNo - 1.
    const QList<TField *> &StoredFields() const { return m_storedFields; }
    // Creates the default fields from FieldDefs (when the dataset has no persistent fields) and
    // binds every field to its definition; raises for a missing or mistyped definition.
    void CreateAndBindFields();
    void DestroyDefaultFields();
    // Calls InternalOpen under dsOpening, then CreateAndBindFields, and completes the open.
    void OpenCursor();
    // Persistent fields copied into FieldDefs (data and internally calculated ones).
    void InitFieldDefsFromFields();
    // Increments with every change of records, fields or view: caches keyed by it go stale.
    quint64 DataVersion() const { return m_dataVersion; }
    void Touch() { ++m_dataVersion; }
    // The stored columns: the leaf definitions of FieldDefs, depth first, with their full names.
    struct StoredDef
    {
        QString fullName;
        const TFieldDef *def;
    };
    QList<StoredDef> StoredFieldDefs() const;
    // Enters dsSetKey with Key as the key buffer (one value per stored column).
    void EnterSetKey(const QVariantList &key);
    // Makes Id the current record, with the scroll events.
    void MoveToRecord(RecordId id);
    // Closes without Before/AfterClose: for the destructor of the most derived dataset.
    void CloseForDestruction();

private:
    friend class TField;
    friend class TFields;
    friend class TFieldDefs;
    friend class TIndexDefs;
    friend class TDataSource;
    friend class TRecordScope;

    struct CalcValues
    {
        bool valid = false;
        QVariantList values;
    };
    // The record fields read: a stored record, optionally overridden by an unsaved buffer.
    struct RecordContext
    {
        RecordId id = NoRecord;
        QVariantList *buffer = nullptr;
        CalcValues *calc = nullptr;
    };

    void SetState(TDataSetState state);
    void SetCurrent(RecordId id, bool bof, bool eof);
    void RefreshCursorRow();
    void DoBeforeScroll();
    void DoAfterScroll();
    void CheckCanModify() const;
    void BeginInsertAppend();
    void EndInsertAppend();
    void StartInsert(bool append);
    void DiscardUnsaved();
    void CheckRequiredFields();
    void CalculateInternalFields();
    void CalculateFields(RecordContext &context);
    QVariant GetFieldData(const TField *field) const;
    void SetFieldData(TField *field, const QVariant &value);
    void FieldListChanged() { m_fieldListValid = false; }
    void AddDataSource(TDataSource *source);
    void RemoveDataSource(TDataSource *source);
    void NotifyRows(const std::function<void(TDataSetRowObserver *)> &call);
    void NotifyRowChanged(int row);
    // Stores the unsaved record (an insert or an update) and reports where its row went.
    void StoreRecord(bool inserting);
    QVariantList LocateValues(const QList<TField *> &fields, const QVariant &keyValues) const;
    void FilterSettingChanged();
    void RefilterRows();
    template<typename T>
    void ChangeFilterSetting(T &setting, const T &value);
    void InvalidateCalc() { m_cursorCalc.valid = false; }
    RecordId RowRecord(int row) const;
    int StoredColumnCount() const { return int(m_storedFields.size()); }
    void UnbindFields();

    TFields m_fields;
    TFieldDefs m_fieldDefs;
    TDataSetState m_state = dsInactive;
    bool m_defaultFields = false;
    QList<TField *> m_storedFields;
    int m_calcFieldCount = 0;
    int m_internalCalcCount = 0;
    mutable QList<TField *> m_fieldList;
    mutable bool m_fieldListValid = false;

    // The cursor: the current record and its row in the view.
    RecordId m_current = NoRecord;
    int m_row = -1;
    bool m_bof = true;
    bool m_eof = true;
    // dsEdit, dsInsert: the unsaved record; dsSetKey: the key.
    QVariantList m_buffer;
    bool m_modified = false;
    // dsInsert: the row of the new record and the record it goes before (NoRecord: appended).
    int m_insertRow = -1;
    RecordId m_insertBefore = NoRecord;
    CalcValues m_cursorCalc;
    RecordContext m_cursorContext;
    RecordContext *m_context;
    // Calculated values of rows read through TRecordScope, valid for m_scopeCalcVersion.
    QHash<RecordId, QVariantList> m_scopeCalc;
    quint64 m_scopeCalcVersion = 0;
    quint64 m_dataVersion = 0;

    QString m_filterText;
    bool m_filtered = false;
    TFilterOptions m_filterOptions;
    bool m_autoCalcFields = true;

    int m_disableCount = 0;
    TDataSetState m_disableState = dsInactive;
    TDataEvent m_enableEvent = deDataSetChange;
    QList<TDataSource *> m_dataSources;
    QList<TDataSetRowObserver *> m_rowObservers;
};

// While it lives, the fields of DataSet read the record at Row (see TDataSet::RowCount) as if it
// were current: calculated fields and OnGetText included, without moving the cursor and without
// any notification. The current row reads the unsaved values while editing. A row out of range
// reads Null everywhere.
class MATTONI_CORE_EXPORT TRecordScope
{
public:
    TRecordScope(TDataSet *dataSet, int row);
    ~TRecordScope();
    TRecordScope(const TRecordScope &) = delete;
    TRecordScope &operator=(const TRecordScope &) = delete;

private:
    friend class TDataSet;
    TRecordScope(TDataSet *dataSet, TDataSet::RecordId id);
    void Enter(TDataSet::RecordId id);

    TDataSet *m_dataSet;
    TDataSet::RecordContext m_context;
    TDataSet::CalcValues m_calc;
    TDataSet::RecordContext *m_saved;
};

} // namespace mattoni
