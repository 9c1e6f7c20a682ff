// A component's stored properties as readable text, and back: the form of a component that an
// application saves and restores.
//
//   object fcCodice: TCodiceFiscale
//     Cognome = 'Rossi'
//     Sesso = #77
//   end
//
// Texts are quoted with doubled inner quotes and control characters as #n, enumerations and
// flags by their names, references to other components by object name (looked up among the
// component's parent's descendants on reading), any other type as {base64 of its QDataStream form}.
//
// A property that needs the others in place first (a dataset's Active, which opens it with its
// command) is named in the class's Q_CLASSINFO("StreamedLast", "Active"), several separated by
// ",": it is written after the others and, whatever the order of a text, read after them. One
// that sets others (a button's Kind, which sets its caption) is named in "StreamedFirst": it is
// written and read before them.
#pragma once

#include "Exceptions.h"
#include "mattoni_core_export.h"

#include <QString>

class QObject;

namespace mattoni {

MATTONI_DECLARE_EXCEPTION(EReadError, Exception)

MATTONI_CORE_EXPORT QString ComponentToString(const QObject *component);
// Sets the properties written in the text on the component. A property the component does not
// have, or a value that does not read, raises EReadError.
MATTONI_CORE_EXPORT void StringToComponent(const QString &text, QObject *component);

} // namespace mattoni
