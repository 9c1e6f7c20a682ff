// Access levels of a user and their Italian descriptions.
#pragma once

#include "mattoni_core_export.h"

#include <QString>

namespace mattoni {

enum TUserLevel { ulReadWrite, ulRead, ulDenied, ulUnknown };

// "Lettura e scrittura", "Sola lettura", "Accesso negato", "Non specificato".
MATTONI_CORE_EXPORT extern const QString DesUserLevel[4];

} // namespace mattoni
