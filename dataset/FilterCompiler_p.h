// Filter expressions and Locate keys turned into tests on a record store: comparisons on stored
// fields read the typed columns directly, with literals converted once. Private to the data layer.
#pragma once

#include "DB.h"
#include "Filter.h"
#include "RecordStore_p.h"

#include <functional>

namespace mattoni::detail {

// How a compiled test reaches a field: its stored column, or a reader for the fields that are
// not stored (calculated, lookup).
struct FieldAccess
{
    int column = -1;
    TFieldType type = ftUnknown;
    QString name;
    std::function<QVariant(RecordId)> read;
};
using FieldResolver = std::function<FieldAccess(const QString &name)>;

// Raises the filter error for a literal that does not fit the field it is compared with.
Predicate CompileFilter(const TFilterNode &root, const RecordStore &store, const FieldResolver &resolve,
                        TFilterOptions options);
// The Locate test of one field: equal to Key (Null matches Null), texts ignoring case or matching
// a prefix as the options say. A key that does not convert to the field's type matches nothing.
Predicate CompileLocate(const FieldAccess &field, const RecordStore &store, const QVariant &key,
                        TLocateOptions options);

} // namespace mattoni::detail
