// TColor to QColor and back, and the palette-aware system colour resolver.
#include "Graphics.h"

#include <QGuiApplication>
#include <QPalette>

namespace mattoni {

namespace {

TColor paletteColor(int index)
{
    if (!qobject_cast<QGuiApplication *>(QCoreApplication::instance()))
        return DefaultSystemColor(index);
    const QPalette pal = QGuiApplication::palette();
    QPalette::ColorRole role;
    QPalette::ColorGroup group = QPalette::Active;
    switch (index) {
    case 4: case 15: role = QPalette::Button; break;       // menu, button face
    case 5: role = QPalette::Base; break;                  // window
    case 7: case 18: role = QPalette::ButtonText; break;   // menu text, button text
    case 8: role = QPalette::Text; break;                  // window text
    case 13: role = QPalette::Highlight; break;
    case 14: role = QPalette::HighlightedText; break;
    case 16: role = QPalette::Mid; break;                  // button shadow
    case 17: role = QPalette::Text; group = QPalette::Disabled; break;
    case 20: role = QPalette::Light; break;
    case 21: role = QPalette::Shadow; break;
    case 22: role = QPalette::Midlight; break;
    case 23: role = QPalette::ToolTipText; break;
    case 24: role = QPalette::ToolTipBase; break;
    default: return DefaultSystemColor(index);
    }
    return QColorToTColor(pal.color(group, role));
}

// Installed when the widgets library loads.
const bool resolverInstalled = [] {
    SetSystemColorResolver(&paletteColor);
    return true;
}();

} // namespace

QColor TColorToQColor(TColor color)
{
    if (color == clNone)
        return QColor(Qt::transparent);
    const TColor rgb = ColorToRGB(color);
    return QColor(GetRValue(rgb), GetGValue(rgb), GetBValue(rgb));
}

TColor QColorToTColor(const QColor &color)
{
    return RGB(color.red(), color.green(), color.blue());
}

} // namespace mattoni
