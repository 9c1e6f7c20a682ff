// The in-memory table.
#include "MemDS.h"

#include "Strings.h"

#include <functional>

namespace mattoni {

using namespace DBConsts;

namespace {

// The types a memory table sorts on.
bool sortable(TFieldType type)
{
    switch (type) {
    case ftString: case ftSmallint: case ftInteger: case ftWord: case ftBoolean: case ftFloat:
    case ftCurrency: case ftBCD: case ftDate: case ftTime: case ftDateTime: case ftBytes:
    case ftVarBytes: case ftAutoInc: case ftBlob: case ftMemo: case ftGraphic: case ftFmtMemo:
    case ftParadoxOle: case ftDBaseOle: case ftTypedBinary: case ftFixedChar: case ftWideString:
    case ftLargeint: case ftOraBlob: case ftOraClob: case ftTimeStamp: case ftFMTBcd:
    case ftFixedWideChar: case ftWideMemo: case ftOraTimeStamp: case ftOraInterval:
        return true;
    default:
        return false;
    }
}

QString kindName(TFieldKind kind)
{
    switch (kind) {
    case fkData: return QStringLiteral("Data");
    case fkCalculated: return QStringLiteral("Calculated");
    case fkLookup: return QStringLiteral("Lookup");
    case fkInternalCalc: return QStringLiteral("InternalCalc");
    case fkAggregate: return QStringLiteral("Aggregate");
    }
    return QString();
}

void addDefinitions(TFieldDefs &defs, const TFields &fields)
{
    for (const TField *field : fields) {
        if (field->FieldKind() != fkData)
            continue;
        TFieldDef *def = defs.AddFieldDef();
        def->setName(field->FieldName());
        def->setDataType(field->DataType());
        def->setSize(field->Size());
        TFieldAttributes attributes;
        if (!field->Visible())
            attributes |= faHiddenCol;
        if (field->Required())
            attributes |= faRequired;
        if (field->ReadOnly())
            attributes |= faReadonly;
        def->setAttributes(attributes);
        if (const auto *bcd = qobject_cast<const TBCDField *>(field); bcd && field->DataType() == ftBCD)
            def->setPrecision(bcd->Precision());
        if (const auto *object = qobject_cast<const TObjectField *>(field))
            addDefinitions(def->ChildDefs(), object->Fields());
    }
}

// Children before their parent, last to first.
void wideToPlain(TFieldDefs &defs)
{
    for (int i = defs.Count() - 1; i >= 0; --i) {
        wideToPlain(defs[i]->ChildDefs());
        if (defs[i]->DataType() == ftWideString)
            defs[i]->setDataType(ftString);
    }
}

} // namespace

TMemData::TMemData(QObject *owner) : TCustomClientDataSet(owner) {}

void TMemData::Open()
{
    Close();
    if (FieldCount() == 0 && FieldDefs().Count() == 0)
        DatabaseError(QString::fromLatin1(SCannotCreateDataSet), this);
    CreateDataSet();
}

void TMemData::OpenWithoutCommand()
{
    if (FieldDefs().Count() == 0) {
        if (FieldCount() == 0)
            DatabaseError(QString::fromLatin1(SCannotCreateDataSet), this);
        InitFieldDefsFromFields();
    }
    CreateStore();
}

void TMemData::EmptyTable()
{
    CheckBrowseMode();
    EmptyDataSet();
}

void TMemData::SortOnFields(const QString &fieldNames, bool, bool)
{
    int pos = 1;
    while (pos <= fieldNames.size()) {
        const TField *field = FieldByName(ExtractFieldName(fieldNames, pos));
        if (field->FieldKind() != fkData || !sortable(field->DataType()))
            DatabaseErrorFmt(SFieldTypeMismatch,
                             {field->DisplayName(), QStringLiteral("sortable data field"),
                              kindName(field->FieldKind()) + QLatin1Char(' ') + FieldTypeName(field->DataType())},
                             this);
    }
    setIndexFieldNames(fieldNames);
}

void TMemData::CopyStructure(TDataSet *source)
{
    Close();
    Fields().Clear();
    if (!source)
        return;
    source->FieldDefs().Update();
    FieldDefs().Assign(source->FieldDefs());
    CreateDataSet();
}

void TMemData::MakeStructure(const QList<TField *> &fields)
{
    Close();
    Fields().Clear();
    FieldDefs().Clear();
    for (const TField *source : fields) {
        TFieldDef *def = FieldDefs().Add(source->FieldName(), source->DataType(), source->Size(), source->Required());
        TField *field = def->CreateField(this);
        field->setDisplayLabel(source->DisplayLabel());
        field->setDisplayWidth(source->DisplayWidth());
        field->setReadOnly(source->FieldKind() != fkData);
    }
}

void TMemData::LightCopyStructure(TDataSet *source)
{
    Close();
    Fields().Clear();
    if (!source)
        return;
    FieldDefs().Clear();
    addDefinitions(FieldDefs(), source->Fields());
    wideToPlain(FieldDefs());
    CreateDataSet();
}

} // namespace mattoni
