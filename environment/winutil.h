// Reading and writing the application's settings in the settings store (see Registry.h). All
// configuration lives under one base key per application and major version:
// "Software\" + Company + "\" + AppName + "\" + MajorVersion. Values are texts; numbers, dates and
// flags are converted on reading. A missing key or value leaves the setting as it is.
#pragma once

#include "mattoni_core_export.h"

#include <QString>

namespace mattoni {

// "Software\<Company>\<AppName>\<MajorVersion>".
MATTONI_CORE_EXPORT QString RegistryBaseKey();

// Takes the program's version from its version resource into MajorVersion ... BuildVersion,
// then reads the connection, mail and working settings from the user's key or, only when that
// key does not exist, from the machine's. A stored number that is not a number raises
// EConvertError; a "DataSistema" that is not a date raises EConvertError; a missing
// "DataSistema" sets today's date.
MATTONI_CORE_EXPORT void GetRegistryConf();
// "Connessioni" and "Istanze" from the machine's key or, when it does not exist, the user's;
// numbers above 255 raise ERangeError.
MATTONI_CORE_EXPORT void GetLocalPriorityRegistryConf();
// The control-panel layout and the colour style, user's key first, as GetRegistryConf.
MATTONI_CORE_EXPORT void GetRegistryDesktop();
// Writes Ident = Value into the base key, or into its sub-key Section, in the user's hive when
// the user's base key exists and in the machine's otherwise; the key is created when missing.
MATTONI_CORE_EXPORT void SaveRegistryString(const QString &section, const QString &ident, const QString &value);
// The text of Ident in the sub-key Section, from the hive chosen as by SaveRegistryString;
// empty when missing.
MATTONI_CORE_EXPORT QString LoadRegistryString(const QString &section, const QString &ident);

} // namespace mattoni
