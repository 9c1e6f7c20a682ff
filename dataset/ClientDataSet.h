// TCustomClientDataSet and TClientDataSet: a dataset that keeps its records in memory. It is
// created empty from field definitions (CreateDataSet) or filled by an SQL command through a Qt
// SQL connection (CommandText, ConnectionName, Params); it orders its records by indexes
// (IndexDefs, AddIndex, IndexName, IndexFieldNames), filters them, finds them by key, and keeps
// bookmarks valid across index and filter changes.
#pragma once

#include "DataSet.h"
#include "IndexDefs.h"
#include "Params.h"
#include "mattoni_core_export.h"

#include <QSqlDatabase>
#include <QSqlRecord>

#include <deque>
#include <memory>

namespace mattoni {

namespace detail {
class RecordStore;
struct Index;
} // namespace detail

class MATTONI_CORE_EXPORT TCustomClientDataSet : public TDataSet
{
    Q_OBJECT
    Q_PROPERTY(QString CommandText READ CommandText WRITE setCommandText)
    Q_PROPERTY(QString ConnectionName READ ConnectionName WRITE setConnectionName)
    Q_PROPERTY(QString IndexFieldNames READ IndexFieldNames WRITE setIndexFieldNames)
    Q_PROPERTY(QString IndexName READ IndexName WRITE setIndexName)
    Q_PROPERTY(bool ReadOnly READ ReadOnly WRITE setReadOnly)

public:
    explicit TCustomClientDataSet(QObject *owner = nullptr);
    ~TCustomClientDataSet() override;

    // An empty, open dataset made from FieldDefs, or from the persistent fields when there are no
    // definitions. Raises "No fields defined. Cannot create dataset" when there are neither.
    void CreateDataSet();
    // Deletes every record (the indexes stay).
    void EmptyDataSet();

    // --- SQL: Open runs CommandText on the connection and loads every row, the field types
    // taken from the driver. A failing command raises EDatabaseError with the server's text ---
    QString CommandText() const { return m_commandText; }
    void setCommandText(const QString &text) { m_commandText = text; }
    // The Qt SQL connection by name; empty is the default connection.
    QString ConnectionName() const { return m_connectionName; }
    void setConnectionName(const QString &name) { m_connectionName = name; }
    void setConnection(const QSqlDatabase &database) { m_connectionName = database.connectionName(); }
    // Bound to the ":name" placeholders of CommandText.
    TParams &Params() { return m_params; }

    bool ReadOnly() const { return m_readOnly; }
    void setReadOnly(bool value) { m_readOnly = value; }
    bool CanModify() const override { return !m_readOnly; }

    // --- Indexes. An index orders by its fields, each ascending or descending (DescFields, or
    // ixDescending for all), case-sensitive or not (CaseInsFields, or ixCaseInsensitive for all);
    // ties keep the records' default order. Unique indexes (ixUnique, ixPrimary) refuse
    // duplicate keys with "Key violation". Nulls come first ---
    TIndexDefs &IndexDefs() { return m_indexDefs; }
    // The active index by name; empty is the default order (the order records were added in).
    QString IndexName() const { return m_indexName; }
    void setIndexName(const QString &name);
    // The active order by a ";"-separated field list, ascending and case-sensitive; setting it
    // clears IndexName and the other way round.
    QString IndexFieldNames() const { return m_indexFieldNames; }
    void setIndexFieldNames(const QString &fields);
    // On an open dataset the index exists at once and IndexDefs lists it; on a closed one it is
    // added to IndexDefs.
    void AddIndex(const QString &name, const QString &fields, TIndexOptions options,
                  const QString &descFields = QString(), const QString &caseInsFields = QString(),
                  int groupingLevel = 0);
    // Deleting the active index returns to the default order.
    void DeleteIndex(const QString &name);
    QStringList GetIndexNames() const;
    // The fields of the active order.
    int IndexFieldCount() const;
    TField *IndexFields(int index) const;

    // --- Keys: dsSetKey lets the index fields take a key to search for ---
    void SetKey();
    // dsSetKey keeping the previous key.
    void EditKey();
    // The first record whose leading index fields equal the key; false without a move when none.
    bool GotoKey();
    // The first record at or after the key (the last one when none is).
    void GotoNearest();
    bool FindKey(const QVariantList &keyValues);
    void FindNearest(const QVariantList &keyValues);

    // Bytes held by the records, the indexes and the view.
    qint64 DataSize() const;

protected:
    // Open without CommandText and without CreateDataSet: the base raises "Missing data provider
    // or data packet".
    virtual void OpenWithoutCommand();
    // Makes the empty record store from FieldDefs.
    void CreateStore();

    void InternalOpen() override;
    void InternalOpenComplete() override;
    void InternalClose() override;
    void InternalInitFieldDefs() override;
    int ViewCount() const override;
    RecordId ViewRecord(int position) const override;
    int ViewPosition(RecordId id) const override;
    bool RecordExists(RecordId id) const override;
    QVariant StoredValue(RecordId id, int column) const override;
    RecordId InternalInsert(const QVariantList &values, RecordId before) override;
    void InternalUpdate(RecordId id, const QVariantList &values) override;
    void InternalDelete(RecordId id) override;
    int CompareRecords(RecordId a, RecordId b) const override;
    void FilterChanged() override;
    void UpdateIndexDefs() override;
    bool LocateRecord(const QList<TField *> &fields, const QVariantList &values, TLocateOptions options,
                      RecordId &found) override;
    void PrepareRecord(QVariantList &values, bool inserting) override;
    void CheckRecord(const QVariantList &values, RecordId self) const override;
    int PredictPosition(const QVariantList &values, RecordId before, RecordId self) override;
    void InternalPostKey(const QVariantList &key, bool commit) override;
    TBookmark MakeBookmark(RecordId id) const override;
    RecordId BookmarkRecord(const TBookmark &bookmark) const override;

private:
    QSqlDatabase Database() const;
    void LoadCommand();
    // FieldDefs as the columns of a query's record; their types, in order.
    QList<TFieldType> DefsFromRecord(const QSqlRecord &record);
    std::unique_ptr<detail::Index> MakeIndex(const QString &name, const QString &fields, TIndexOptions options,
                                             const QString &descFields, const QString &caseInsFields,
                                             int groupingLevel) const;
    void SwitchIndex(detail::Index *index);
    void ActivateIndexSetting();
    void ApplyFilter();
    // Moves to the first record at the key (Exact) or at or after it (else the last one).
    bool GotoKeyRecord(bool exact);
    QVariantList KeyForIndex(const QVariantList &buffer) const;
    void KeyMode(bool keep);
    void AssignKey(const QVariantList &keyValues);

    std::unique_ptr<detail::RecordStore> m_store;
    // Each store gets a serial so that bookmarks of an emptied or reopened dataset go stale.
    quint32 m_storeSerial = 0;
    TIndexDefs m_indexDefs;
    QString m_indexName;
    QString m_indexFieldNames;
    QString m_commandText;
    QString m_connectionName;
    TParams m_params;
    bool m_readOnly = false;
    bool m_creating = false;
    QVariantList m_key;
    std::vector<qint64> m_autoIncNext;

    // Hash tables of a column's values for repeated Locate calls on the same view.
    struct LocateCache
    {
        quint64 viewVersion = 0;
        int column = -1;
        bool caseInsensitive = false;
        QHash<qint64, quint32> ints;
        QHash<QString, quint32> texts;
    };
    std::deque<LocateCache> m_locateCaches;
    struct
    {
        quint64 viewVersion = 0;
        int column = -1;
        bool caseInsensitive = false;
    } m_lastLocate;
};

class MATTONI_CORE_EXPORT TClientDataSet : public TCustomClientDataSet
{
    Q_OBJECT
public:
    explicit TClientDataSet(QObject *owner = nullptr);
};

} // namespace mattoni
