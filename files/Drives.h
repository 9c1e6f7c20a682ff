// Drive letters. The library's file components name places as "A:/..." paths; on this system a
// drive is a folder (usually a mount point) that the host enters in a table of letters. "X:"
// followed by a path means the folder of X followed by that path. A letter without a folder, or
// whose folder is missing or cannot be read, holds no medium.
#pragma once

#include "mattoni_core_export.h"

#include <QChar>
#include <QString>

namespace mattoni {

// Enters Folder for the letter Drive ("A" to "Z", either case); an empty Folder removes the
// letter. Any other character raises EConvertError "Not a valid drive ID".
MATTONI_CORE_EXPORT void SetDriveFolder(QChar Drive, const QString &Folder);
// The folder entered for Drive, empty when there is none (or Drive is not a letter).
MATTONI_CORE_EXPORT QString DriveFolder(QChar Drive);
MATTONI_CORE_EXPORT void ClearDriveTable();

// The path on this system for a path of the library: "X:" + rest becomes the folder of X + rest
// ("A:", "A:/" and "A:" + "name" all start at the folder itself); any other path stands as it
// is. A letter without a folder gives an empty path, which names nothing.
MATTONI_CORE_EXPORT QString ExpandDrivePath(const QString &Path);

// True when Drive holds a readable medium. A lower-case letter counts as its upper case; any
// other character raises EConvertError "Not a valid drive ID".
MATTONI_CORE_EXPORT bool DiskInDrive(QChar Drive);
// Size and free bytes of the medium in Drive (statvfs of its folder), -1 when there is none.
MATTONI_CORE_EXPORT qint64 DiskSize(QChar Drive);
MATTONI_CORE_EXPORT qint64 DiskFree(QChar Drive);

} // namespace mattoni
