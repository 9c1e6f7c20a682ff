// Errors raised inside a control's event handlers. A Qt event or signal cannot carry an exception
// back to whoever caused it (a key, a click, a change of focus): the control catches the error at
// the edge of its handler and posts it here, to be handled from the event loop once the event is
// over. The host decides what happens to it through OnControlException.
#pragma once

#include "mattoni_widgets_export.h"

#include <QObject>

#include <exception>
#include <functional>

namespace mattoni {

// Sender is the control whose handler raised; E the error, to be rethrown and caught by type.
using TControlExceptionEvent = std::function<void(QObject *Sender, std::exception_ptr E)>;

// The process-wide handler of the errors posted by controls. Unassigned: ShowControlException.
MATTONI_WIDGETS_EXPORT extern TControlExceptionEvent OnControlException;

// The default handling: the error's message in a critical message box over Sender's window,
// captioned with the application's display name. EAbort shows nothing.
MATTONI_WIDGETS_EXPORT void ShowControlException(QObject *Sender, std::exception_ptr E);

// Queues E for OnControlException (or ShowControlException); First runs just before, from the
// event loop too (a control puts the focus back on itself there). Sender may be gone by then: the
// handler then receives nullptr.
MATTONI_WIDGETS_EXPORT void PostControlException(QObject *Sender, std::exception_ptr E,
                                                 std::function<void()> First = {});

} // namespace mattoni
