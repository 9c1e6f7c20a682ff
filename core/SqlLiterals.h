// SQL literal text for dates, times and date-times in the dialect of the database named by
// TipoDatabase, with the server's day/month order from FormatoData.
#pragma once

#include "mattoni_core_export.h"

#include <QString>
#include <QVariant>

namespace mattoni {

// V holds a date-time (a QDateTime, QDate, QTime or a TDateTime number); a value that is not one
// (Null, unassigned, text that is not a number) raises EVariantError. Every dialect group that
// TipoDatabase matches overwrites the result in the order Interbase, DB2, SQL Server, Oracle,
// Access, MySQL, so the last one matched wins; any other type gets the default form, quoted locale
// text.
MATTONI_CORE_EXPORT QString GetFormattedDate(const QVariant &v);
MATTONI_CORE_EXPORT QString GetFormattedTime(const QVariant &v);
MATTONI_CORE_EXPORT QString GetFormattedDatetime(const QVariant &v);

} // namespace mattoni
