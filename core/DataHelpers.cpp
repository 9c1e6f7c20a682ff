// Helpers over datasets, fields and parameters.
#include "DataHelpers.h"

#include "DataSet.h"
#include "Fields.h"
#include "Params.h"

#include <QRandomGenerator>

#include <utility>

namespace mattoni {

namespace {

QVariant emptyValueOf(TFieldType type)
{
    switch (type) {
    case ftSmallint: case ftInteger: case ftWord: case ftAutoInc: return 0;
    case ftLargeint: return qlonglong(0);
    case ftBoolean: return false;
    case ftFloat: case ftCurrency: case ftFMTBcd: return 0.0;
    case ftBCD: return QVariant::fromValue(Currency());
    case ftDate: case ftTime: case ftDateTime: case ftTimeStamp: case ftOraTimeStamp:
        return DateTimeToQDateTime(0);
    case ftBytes: case ftVarBytes: case ftBlob: case ftGraphic: case ftFmtMemo: case ftParadoxOle:
    case ftDBaseOle: case ftTypedBinary: case ftOraBlob:
        return QByteArray("");
    default: return QString(QLatin1String(""));
    }
}

} // namespace

void SetNotNullFieldValue(TField *field, const TField *source)
{
    if (source->IsNull())
        field->setValue(emptyValueOf(field->DataType()));
    else
        field->setValue(source->Value());
}

void CloneToParams(TDataSet *dataSet, TParams &params)
{
    for (const TField *field : dataSet->Fields()) {
        TParam *p = params.CreateParam(field->DataType(), field->FieldName(), ptInput);
        p->AssignField(field);
    }
}

void QuickSort(QList<qint32> &a, int lo, int hi)
{
    lo = std::max(lo, 0);
    hi = std::min(hi, int(a.size()) - 1);
    // Partition around the middle value, then sort the smaller side first and loop on the larger
    // one, so that the recursion stays shallow.
    while (lo < hi) {
        const qint32 pivot = a[lo + (hi - lo) / 2];
        int i = lo, j = hi;
        while (i <= j) {
            while (a[i] < pivot)
                ++i;
            while (a[j] > pivot)
                --j;
            if (i <= j)
                std::swap(a[i++], a[j--]);
        }
        if (j - lo < hi - i) {
            QuickSort(a, lo, j);
            lo = i;
        } else {
            QuickSort(a, i, hi);
            hi = j;
        }
    }
}

QString GetRandomPaswd(int length)
{
    static const char alphabet[] = "ABCDEFGHJKLMNPQRSTUVWXYZabcdefghijkmnopqrstuvwxyz23456789";
    const int size = int(sizeof alphabet) - 1;
    QRandomGenerator generator = QRandomGenerator::securelySeeded();
    QString password;
    for (int i = 0; i < length; ++i)
        password += QLatin1Char(alphabet[generator.bounded(size)]);
    return password;
}

} // namespace mattoni
