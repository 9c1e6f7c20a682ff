// The widgets side of TSevenZip: the file dialog for a missing last volume.
#include "SevenZipDialogs.h"

#include "SevenZip.h"

#include <QApplication>
#include <QFileDialog>
#include <QFileInfo>

namespace mattoni {

bool SevenZipBrowseWithDialog(const QString &Title, QString &FileName)
{
    const QString chosen =
        QFileDialog::getOpenFileName(QApplication::activeWindow(), Title, QFileInfo(FileName).path(),
                                     QStringLiteral("%1 (*.%2);;* (*)").arg(QFileInfo(FileName).fileName(),
                                                                          QFileInfo(FileName).suffix()));
    if (chosen.isEmpty())
        return false;
    FileName = chosen;
    return true;
}

namespace {
[[maybe_unused]] const bool installed = [] {
    if (!SevenZipBrowseForFile)
        SevenZipBrowseForFile = SevenZipBrowseWithDialog;
    return true;
}();
} // namespace

} // namespace mattoni
