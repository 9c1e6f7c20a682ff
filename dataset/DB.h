// The data layer's vocabulary: field types and kinds, dataset states, data events, the option
// sets of locating, filtering and indexing, bookmarks, and the database errors with their texts.
#pragma once

#include "mattoni_core_export.h"

#include <QByteArray>
#include <QFlags>
#include <QString>
#include <QVariantList>

class QObject;

namespace mattoni {

// The framework's order of values: code tests ranges of it (ftBlob..ftCursor are the blob-like
// types, ftReference..ftOraClob the nested and server-side ones).
enum TFieldType {
    ftUnknown, ftString, ftSmallint, ftInteger, ftWord, ftBoolean, ftFloat, ftCurrency, ftBCD,
    ftDate, ftTime, ftDateTime, ftBytes, ftVarBytes, ftAutoInc, ftBlob, ftMemo, ftGraphic,
    ftFmtMemo, ftParadoxOle, ftDBaseOle, ftTypedBinary, ftCursor, ftFixedChar, ftWideString,
    ftLargeint, ftADT, ftArray, ftReference, ftDataSet, ftOraBlob, ftOraClob, ftVariant,
    ftInterface, ftIDispatch, ftGuid, ftTimeStamp, ftFMTBcd, ftFixedWideChar, ftWideMemo,
    ftOraTimeStamp, ftOraInterval
};
inline constexpr int FieldTypeCount = ftOraInterval + 1;

enum TFieldKind { fkData, fkCalculated, fkLookup, fkInternalCalc, fkAggregate };

enum TDataSetState {
    dsInactive, dsBrowse, dsEdit, dsInsert, dsSetKey, dsCalcFields, dsFilter, dsNewValue,
    dsOldValue, dsCurValue, dsBlockRead, dsInternalCalc, dsOpening
};

// What a dataset tells its data sources and, through them, their data links.
enum TDataEvent {
    deFieldChange, deRecordChange, deDataSetChange, deDataSetScroll, deLayoutChange,
    deUpdateRecord, deUpdateState, deCheckBrowseMode, dePropertyChange, deFieldListChange,
    deFocusControl
};

enum TLocateOption { loCaseInsensitive = 0x1, loPartialKey = 0x2 };
Q_DECLARE_FLAGS(TLocateOptions, TLocateOption)

enum TFilterOption { foCaseInsensitive = 0x1, foNoPartialCompare = 0x2 };
Q_DECLARE_FLAGS(TFilterOptions, TFilterOption)

enum TIndexOption {
    ixPrimary = 0x1, ixUnique = 0x2, ixDescending = 0x4, ixCaseInsensitive = 0x8,
    ixExpression = 0x10, ixNonMaintained = 0x20
};
Q_DECLARE_FLAGS(TIndexOptions, TIndexOption)

enum TFieldAttribute {
    faHiddenCol = 0x1, faReadonly = 0x2, faRequired = 0x4, faLink = 0x8, faUnNamed = 0x10,
    faFixed = 0x20
};
Q_DECLARE_FLAGS(TFieldAttributes, TFieldAttribute)

enum TParamType { ptUnknown, ptInput, ptOutput, ptInputOutput, ptResult };

// A record's identity, independent of indexes and filters. Empty means none.
using TBookmark = QByteArray;

// The name of a field type as the framework prints it ("String", "Integer", "ADT" ...).
MATTONI_CORE_EXPORT QString FieldTypeName(TFieldType type);
// The field type a variant's value maps to (ftUnknown for unassigned and Null).
MATTONI_CORE_EXPORT TFieldType VarTypeToDataType(const QVariant &value);

// The framework's message texts, with %s directives for mattoni::Format.
namespace DBConsts {
inline constexpr char SFieldNotFound[] = "Field '%s' not found";
inline constexpr char SDataSetOpen[] = "Cannot perform this operation on an open dataset";
inline constexpr char SDataSetClosed[] = "Cannot perform this operation on a closed dataset";
inline constexpr char SNotEditing[] = "Dataset not in edit or insert mode";
inline constexpr char SDataSetEmpty[] = "Cannot perform this operation on an empty dataset";
inline constexpr char SDataSetReadOnly[] = "Cannot modify a read-only dataset";
inline constexpr char SFieldReadOnly[] = "Field '%s' cannot be modified";
inline constexpr char SFieldRequired[] = "Field '%s' must have a value";
inline constexpr char SFieldTypeMismatch[] = "Type mismatch for field '%s', expecting: %s actual: %s";
inline constexpr char SFieldAccessError[] = "Cannot access field '%s' as type %s";
inline constexpr char SFieldRangeError[] = "%s is not a valid value for field '%s'. The allowed range is %s to %s";
inline constexpr char SNotABoolean[] = "'%s' is not a valid boolean value for field '%s'";
inline constexpr char SDuplicateFieldName[] = "Duplicate field name '%s'";
inline constexpr char SFieldNameMissing[] = "Field name missing";
inline constexpr char SUnknownFieldType[] = "Field '%s' is of an unknown type";
inline constexpr char SCannotCreateDataSet[] = "No fields defined. Cannot create dataset";
inline constexpr char SNoDataProvider[] = "Missing data provider or data packet";
inline constexpr char SNoConnection[] = "SQL connection '%s' not found";
inline constexpr char SRecordNotFound[] = "Record not found";
inline constexpr char SIndexNotFound[] = "Index '%s' not found";
inline constexpr char SDuplicateIndexName[] = "Duplicate index name '%s'";
inline constexpr char SIndexNameMissing[] = "Index name missing";
inline constexpr char SNoIndex[] = "No index currently active";
inline constexpr char SKeyViol[] = "Key violation";
inline constexpr char SFieldIndexError[] = "Field '%s' cannot be used in an index";
inline constexpr char SParameterNotFound[] = "Parameter '%s' not found";
inline constexpr char SLookupInfoError[] = "Lookup information for field '%s' is incomplete";
inline constexpr char SFilterParseError[] = "Filter expression error at position %d: %s";
} // namespace DBConsts

// Raises EDatabaseError with Message; a named component prefixes it with "Name: ", as the
// framework does.
[[noreturn]] MATTONI_CORE_EXPORT void DatabaseError(const QString &message, const QObject *component = nullptr);
[[noreturn]] MATTONI_CORE_EXPORT void DatabaseErrorFmt(const char *format, const QVariantList &args,
                                                       const QObject *component = nullptr);

} // namespace mattoni

Q_DECLARE_OPERATORS_FOR_FLAGS(mattoni::TLocateOptions)
Q_DECLARE_OPERATORS_FOR_FLAGS(mattoni::TFilterOptions)
Q_DECLARE_OPERATORS_FOR_FLAGS(mattoni::TIndexOptions)
Q_DECLARE_OPERATORS_FOR_FLAGS(mattoni::TFieldAttributes)
