// The data layer's vocabulary.
#include "DB.h"

#include "Currency.h"
#include "Exceptions.h"
#include "Formatting.h"

#include <QObject>

namespace mattoni {

QString FieldTypeName(TFieldType type)
{
    static const char *const names[FieldTypeCount] = {
        "Unknown", "String", "SmallInt", "Integer", "Word", "Boolean", "Float", "Currency", "BCD",
        "Date", "Time", "DateTime", "Bytes", "VarBytes", "AutoInc", "Blob", "Memo", "Graphic",
        "FmtMemo", "ParadoxOle", "dBaseOle", "TypedBinary", "Cursor", "FixedChar", "WideString",
        "Largeint", "ADT", "Array", "Reference", "DataSet", "OraBlob", "OraClob", "Variant",
        "Interface", "IDispatch", "Guid", "TimeStamp", "FMTBcd", "FixedWideChar", "WideMemo",
        "OraTimeStamp", "OraInterval"};
    if (type < 0 || type >= FieldTypeCount)
        return QString();
    return QString::fromLatin1(names[type]);
}

TFieldType VarTypeToDataType(const QVariant &value)
{
    switch (value.metaType().id()) {
    case QMetaType::UnknownType: case QMetaType::Nullptr: return ftUnknown;
    case QMetaType::QString: case QMetaType::QChar: return ftString;
    case QMetaType::Short: case QMetaType::SChar: case QMetaType::Char: return ftSmallint;
    case QMetaType::UShort: case QMetaType::UChar: return ftWord;
    case QMetaType::Int: return ftInteger;
    case QMetaType::UInt: case QMetaType::LongLong: case QMetaType::ULongLong:
    case QMetaType::Long: case QMetaType::ULong: return ftLargeint;
    case QMetaType::Bool: return ftBoolean;
    case QMetaType::Double: case QMetaType::Float: return ftFloat;
    case QMetaType::QDate: return ftDate;
    case QMetaType::QTime: return ftTime;
    case QMetaType::QDateTime: return ftDateTime;
    case QMetaType::QByteArray: return ftBlob;
    default:
        if (value.metaType() == QMetaType::fromType<Currency>())
            return ftBCD;
        return ftVariant;
    }
}

void DatabaseError(const QString &message, const QObject *component)
{
    if (component && !component->objectName().isEmpty())
        throw EDatabaseError(component->objectName() + QLatin1String(": ") + message);
    throw EDatabaseError(message);
}

void DatabaseErrorFmt(const char *format, const QVariantList &args, const QObject *component)
{
    DatabaseError(Format(QString::fromLatin1(format), args), component);
}

} // namespace mattoni
