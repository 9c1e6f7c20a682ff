// The file dialog through which TSevenZip asks for the last volume of a split archive when the
// host assigned no OnOpenVolume handler. Loading the widgets library installs it in
// SevenZipBrowseForFile unless the host installed its own first.
#pragma once

#include "mattoni_widgets_export.h"

#include <QString>

namespace mattoni {

// Shows a file dialog titled Title, starting at FileName's folder; true with the chosen file in
// FileName, false when the user cancels.
MATTONI_WIDGETS_EXPORT bool SevenZipBrowseWithDialog(const QString &Title, QString &FileName);

} // namespace mattoni
