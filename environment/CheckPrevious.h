// Refusing more copies of a program than the settings allow, and bringing the running copy to the
// front instead.
//
// TooManyIstances counts the running processes of this executable's file name owned by this user
// (/proc/<pid>/exe and the process's effective uid). RestoreIfRunning and RefreshHandleRunning keep
// the main window of the first copy in a shared record: a POSIX shared-memory object of 8 bytes
// holding the X11 window id, named after the user and the program's path (InstanceRecordName).
// The copy that creates the record removes it when it ends; a record left by a copy that died is
// recognised (its window is gone, or belongs to another program) and taken over.
#pragma once

#include "mattoni_widgets_export.h"

#include <QString>
#include <QtGui/qwindowdefs.h>

namespace mattoni {

// The user running this process (its effective user), as the system's account name.
MATTONI_WIDGETS_EXPORT QString GetCurrentUserName();

// True when more copies of this executable (same file name, any folder) run for the current user
// than IstanzeApplicazione allows. This process counts too.
MATTONI_WIDGETS_EXPORT bool TooManyIstances();

// "/mattoni-istanza." + user + "." + the program's full path with "%" written "%25" and "/"
// written "%2F", then "." + Qualifier when one is given. A name longer than the system allows
// keeps the user and replaces the path by its SHA-1 in hexadecimal.
MATTONI_WIDGETS_EXPORT QString InstanceRecordName(const QString &Qualifier = QString());

// Takes the major version from the program's version resource into MajorVersion and reads
// "Connessioni" and "Istanze" (GetLocalPriorityRegistryConf). Then, when another copy of this
// program has registered its main window in the record named by Qualifier, restores that window if
// it is minimised, raises and activates it, and answers true: the caller should end. Otherwise
// registers Handle as this copy's main window and answers false.
// The Qualifier lets a program keep separate records (one per database, per role ...); copies that
// pass different qualifiers never see each other.
MATTONI_WIDGETS_EXPORT bool RestoreIfRunning(WId Handle, const QString &Qualifier = QString());

// Stores a new main window of this copy (after the main window was recreated) in the record named
// by Qualifier, creating the record when there is none. Answers false, and leaves the record alone,
// when it belongs to another copy that is still running.
MATTONI_WIDGETS_EXPORT bool RefreshHandleRunning(WId Handle, const QString &Qualifier = QString());

} // namespace mattoni
