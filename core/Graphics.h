// TColor to QColor and back, and the small enumerations controls share. Linking the widgets
// library makes system colours (clWindow, clInfoBk ...) resolve through the application palette.
#pragma once

#include "Color.h"
#include "mattoni_widgets_export.h"

#include <QColor>
#include <QObject>

namespace mattoni {

// The controls' shared vocabulary: a window's border and the three states of a check box. The
// enumerations live in a gadget so that properties of these types read and stream by name.
class MATTONI_WIDGETS_EXPORT ControlTypes
{
    Q_GADGET
public:
    enum TBorderStyle { bsNone, bsSingle };
    Q_ENUM(TBorderStyle)
    enum TCheckBoxState { cbUnchecked, cbChecked, cbGrayed };
    Q_ENUM(TCheckBoxState)
};
using TBorderStyle = ControlTypes::TBorderStyle;
using enum ControlTypes::TBorderStyle;
using TCheckBoxState = ControlTypes::TCheckBoxState;
using enum ControlTypes::TCheckBoxState;

MATTONI_WIDGETS_EXPORT QColor TColorToQColor(TColor color);
MATTONI_WIDGETS_EXPORT TColor QColorToTColor(const QColor &color);

} // namespace mattoni
