// Small helpers over datasets, fields and parameters, and two that stand alone: an integer
// sort and a random password.
#pragma once

#include "mattoni_core_export.h"

#include <QList>
#include <QString>

namespace mattoni {

class TDataSet;
class TField;
class TParams;

// Field takes Source's value; a null Source gives Field the empty value of its own type instead
// (an empty text, 0, false, the zero date, empty bytes), so that Field is never left null.
MATTONI_CORE_EXPORT void SetNotNullFieldValue(TField *field, const TField *source);
// One input parameter per field of DataSet, added to Params: named and typed like the field,
// holding the current record's value.
MATTONI_CORE_EXPORT void CloneToParams(TDataSet *dataSet, TParams &params);
// Sorts A ascending in place from index Lo to index Hi, both included (clipped to the array).
MATTONI_CORE_EXPORT void QuickSort(QList<qint32> &a, int lo, int hi);
// A random text of Length characters from letters and digits, without the look-alikes 0, O, 1,
// I and l; the generator is seeded afresh for every password.
MATTONI_CORE_EXPORT QString GetRandomPaswd(int length);

} // namespace mattoni
