// Access levels of a user.
#include "usrlevel.h"

namespace mattoni {

const QString DesUserLevel[4] = {QStringLiteral("Lettura e scrittura"), QStringLiteral("Sola lettura"),
                                 QStringLiteral("Accesso negato"), QStringLiteral("Non specificato")};

} // namespace mattoni
