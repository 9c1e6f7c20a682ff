// Variant helpers over QVariant.
#include "Variants.h"

#include "Exceptions.h"
#include "Formatting.h"

#include <QDate>
#include <QDateTime>
#include <QTime>

namespace mattoni {

namespace {

[[noreturn]] void cannotConvert(const QVariant &v, const char *target)
{
    throw EVariantError(QStringLiteral("Could not convert variant of type (%1) into type (%2)")
                            .arg(VarTypeName(v), QLatin1String(target)));
}

bool isDateType(const QVariant &v)
{
    const int id = v.metaType().id();
    return id == QMetaType::QDateTime || id == QMetaType::QDate || id == QMetaType::QTime;
}

TDateTime dateValue(const QVariant &v)
{
    switch (v.metaType().id()) {
    case QMetaType::QDate: return QDateToDateTime(v.toDate());
    case QMetaType::QTime: return QTimeToDateTime(v.toTime());
    default: return QDateTimeToDateTime(v.toDateTime());
    }
}

} // namespace

QVariant Null()
{
    return QVariant::fromValue(nullptr);
}

QVariant Unassigned()
{
    return QVariant();
}

bool VarIsNull(const QVariant &v)
{
    return v.metaType().id() == QMetaType::Nullptr;
}

bool VarIsEmpty(const QVariant &v)
{
    return !v.isValid();
}

bool VarIsClear(const QVariant &v)
{
    return !v.isValid();
}

bool VarIsNumeric(const QVariant &v)
{
    switch (v.metaType().id()) {
    case QMetaType::Int: case QMetaType::UInt: case QMetaType::LongLong: case QMetaType::ULongLong:
    case QMetaType::Short: case QMetaType::UShort: case QMetaType::Char: case QMetaType::SChar:
    case QMetaType::UChar: case QMetaType::Long: case QMetaType::ULong: case QMetaType::Double:
    case QMetaType::Float: case QMetaType::Bool:
        return true;
    default:
        return v.metaType() == QMetaType::fromType<Currency>();
    }
}

bool VarIsStr(const QVariant &v)
{
    const int id = v.metaType().id();
    return id == QMetaType::QString || id == QMetaType::QChar || id == QMetaType::QByteArray;
}

QString VarTypeName(const QVariant &v)
{
    if (!v.isValid())
        return QStringLiteral("Empty");
    switch (v.metaType().id()) {
    case QMetaType::Nullptr: return QStringLiteral("Null");
    case QMetaType::QString: case QMetaType::QChar: case QMetaType::QByteArray: return QStringLiteral("String");
    case QMetaType::Double: case QMetaType::Float: return QStringLiteral("Double");
    case QMetaType::Bool: return QStringLiteral("Boolean");
    case QMetaType::Int: case QMetaType::Short: case QMetaType::SChar: return QStringLiteral("Integer");
    case QMetaType::LongLong: case QMetaType::Long: return QStringLiteral("Int64");
    case QMetaType::UInt: case QMetaType::UShort: case QMetaType::UChar: case QMetaType::ULong: return QStringLiteral("LongWord");
    case QMetaType::ULongLong: return QStringLiteral("UInt64");
    case QMetaType::QDateTime: case QMetaType::QDate: case QMetaType::QTime: return QStringLiteral("Date");
    default:
        if (v.metaType() == QMetaType::fromType<Currency>())
            return QStringLiteral("Currency");
        return QString::fromLatin1(v.metaType().name());
    }
}

QString VarToStr(const QVariant &v)
{
    if (!v.isValid() || VarIsNull(v))
        return QString();
    if (isDateType(v)) {
        if (v.metaType().id() == QMetaType::QTime)
            return TimeToStr(dateValue(v));
        return DateTimeToStr(dateValue(v));
    }
    switch (v.metaType().id()) {
    case QMetaType::Double: case QMetaType::Float: return FloatToStr(v.toDouble());
    case QMetaType::Bool: return v.toBool() ? QStringLiteral("True") : QStringLiteral("False");
    default:
        if (v.metaType() == QMetaType::fromType<Currency>())
            return CurrToStr(v.value<Currency>());
        return v.toString();
    }
}

double VarToFloat(const QVariant &v)
{
    if (!v.isValid() || VarIsNull(v))
        cannotConvert(v, "Double");
    if (isDateType(v))
        return dateValue(v);
    if (v.metaType() == QMetaType::fromType<Currency>())
        return v.value<Currency>().ToDouble();
    if (VarIsStr(v)) {
        double d;
        if (!TryStrToFloat(v.toString(), d))
            cannotConvert(v, "Double");
        return d;
    }
    bool ok = false;
    const double d = v.toDouble(&ok);
    if (!ok)
        cannotConvert(v, "Double");
    return d;
}

qint64 VarToInt(const QVariant &v)
{
    if (!v.isValid() || VarIsNull(v))
        cannotConvert(v, "Integer");
    if (VarIsStr(v)) {
        qint64 i;
        if (!TryStrToInt64(v.toString(), i))
            cannotConvert(v, "Integer");
        return i;
    }
    if (v.metaType().id() == QMetaType::Double || v.metaType().id() == QMetaType::Float || isDateType(v)
        || v.metaType() == QMetaType::fromType<Currency>())
        return qint64(std::llround(VarToFloat(v)));
    bool ok = false;
    const qint64 i = v.toLongLong(&ok);
    if (!ok)
        cannotConvert(v, "Integer");
    return i;
}

bool VarToBool(const QVariant &v)
{
    if (!v.isValid() || VarIsNull(v))
        cannotConvert(v, "Boolean");
    if (VarIsStr(v)) {
        const QString s = v.toString().trimmed();
        if (s.compare(QLatin1String("True"), Qt::CaseInsensitive) == 0)
            return true;
        if (s.compare(QLatin1String("False"), Qt::CaseInsensitive) == 0)
            return false;
        qint64 i;
        if (TryStrToInt64(s, i))
            return i != 0;
        cannotConvert(v, "Boolean");
    }
    return VarToFloat(v) != 0;
}

Currency VarToCurr(const QVariant &v)
{
    if (v.metaType() == QMetaType::fromType<Currency>())
        return v.value<Currency>();
    return Currency(VarToFloat(v));
}

TDateTime VarToDateTime(const QVariant &v)
{
    if (!v.isValid() || VarIsNull(v))
        cannotConvert(v, "Date");
    if (isDateType(v))
        return dateValue(v);
    if (VarIsStr(v)) {
        TDateTime d;
        if (!TryStrToDateTime(v.toString(), d))
            cannotConvert(v, "Date");
        return d;
    }
    return VarToFloat(v);
}

bool VarSameValue(const QVariant &a, const QVariant &b)
{
    const bool aNull = VarIsNull(a) || !a.isValid();
    const bool bNull = VarIsNull(b) || !b.isValid();
    if (aNull || bNull)
        return VarIsNull(a) == VarIsNull(b) && a.isValid() == b.isValid();
    if (VarIsStr(a) && VarIsStr(b))
        return a.toString() == b.toString();
    if ((VarIsNumeric(a) || isDateType(a)) && (VarIsNumeric(b) || isDateType(b)))
        return VarToFloat(a) == VarToFloat(b);
    if (VarIsStr(a) != VarIsStr(b)) {
        try {
            return VarToFloat(a) == VarToFloat(b);
        } catch (const EVariantError &) {
            return false;
        }
    }
    return a == b;
}

} // namespace mattoni
