// TColor to QColor and back. Linking the widgets library makes system colours (clWindow,
// clInfoBk ...) resolve through the application palette.
#pragma once

#include "Color.h"
#include "mattoni_widgets_export.h"

#include <QColor>

namespace mattoni {

MATTONI_WIDGETS_EXPORT QColor TColorToQColor(TColor color);
MATTONI_WIDGETS_EXPORT TColor QColorToTColor(const QColor &color);

} // namespace mattoni
