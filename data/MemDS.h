// TMemData: an in-memory table. A client dataset that builds its structure from another
// dataset's fields, sorts on a field list and empties itself; its records live only in memory.
#pragma once

#include "ClientDataSet.h"
#include "mattoni_core_export.h"

#include <QList>

namespace mattoni {

// For callers that copy data into a memory table: replace its rows or add to them.
enum TLoadDataMode { lmCopy, lmAppend };

class MATTONI_CORE_EXPORT TMemData : public TCustomClientDataSet
{
    Q_OBJECT
    Q_PROPERTY(int Capacity READ Capacity WRITE setCapacity)

public:
    explicit TMemData(QObject *owner = nullptr);

    // Kept for compatibility: reads 0, and setting it does nothing.
    int Capacity() const { return 0; }
    void setCapacity(int) {}

    // Closes the table and makes it again, empty, from its field definitions (or its persistent
    // fields). Raises "No fields defined. Cannot create dataset" when it has neither.
    void Open();
    // Browse mode as CheckBrowseMode brings it (a pending record posted when modified, else
    // cancelled), then every record deleted.
    void EmptyTable();
    // Orders the table by the ";"-separated fields through IndexFieldNames, ascending as the index
    // compares; the two flags are accepted and ignored. Each name must be a field ("Field '%s' not
    // found") that is a plain data field of a sortable type; any other raises "Type mismatch for
    // field '%s', expecting: sortable data field actual: <kind> <type>" and no order is set.
    void SortOnFields(const QString &fieldNames, bool caseInsensitive = true, bool descending = false);
    // Closes the table and frees its fields (last to first); with a Source, takes Source's
    // refreshed field definitions (wide strings stay wide) and makes itself from them, open and
    // empty.
    void CopyStructure(TDataSet *source);
    // Closes the table and frees its fields and definitions; then, for each field of the list in
    // order, a definition of its name, type, size and required flag, and a persistent field made
    // from it with its display label and width, read-only exactly when the source is not a plain
    // data field. The table stays closed.
    void MakeStructure(const QList<TField *> &fields);
    // Closes the table and frees its fields; with a Source, definitions of its plain data fields
    // (children of object fields included) with their hidden, required and read-only attributes
    // and the precision of BCD fields, every wide string turned into a plain string; then makes
    // itself from them, open and empty.
    void LightCopyStructure(TDataSet *source);

protected:
    // Opening without a command makes the empty table.
    void OpenWithoutCommand() override;
};

} // namespace mattoni
