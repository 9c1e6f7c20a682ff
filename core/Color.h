// TColor: a colour as the 32-bit value $00BBGGRR, with the named constants of the framework.
// Values with the high byte $FF name a system colour (clWindow, clInfoBk ...) that ColorToRGB
// resolves through the current palette.
#pragma once

#include "mattoni_core_export.h"

#include <QtGlobal>

namespace mattoni {

using TColor = quint32;

constexpr TColor RGB(int r, int g, int b)
{
    return TColor(quint8(r)) | (TColor(quint8(g)) << 8) | (TColor(quint8(b)) << 16);
}
constexpr int GetRValue(TColor c) { return int(c & 0xFF); }
constexpr int GetGValue(TColor c) { return int((c >> 8) & 0xFF); }
constexpr int GetBValue(TColor c) { return int((c >> 16) & 0xFF); }

inline constexpr TColor clSystemColor = 0xFF000000;

inline constexpr TColor clBlack = 0x000000;
inline constexpr TColor clMaroon = 0x000080;
inline constexpr TColor clGreen = 0x008000;
inline constexpr TColor clOlive = 0x008080;
inline constexpr TColor clNavy = 0x800000;
inline constexpr TColor clPurple = 0x800080;
inline constexpr TColor clTeal = 0x808000;
inline constexpr TColor clGray = 0x808080;
inline constexpr TColor clSilver = 0xC0C0C0;
inline constexpr TColor clRed = 0x0000FF;
inline constexpr TColor clLime = 0x00FF00;
inline constexpr TColor clYellow = 0x00FFFF;
inline constexpr TColor clBlue = 0xFF0000;
inline constexpr TColor clFuchsia = 0xFF00FF;
inline constexpr TColor clAqua = 0xFFFF00;
inline constexpr TColor clLtGray = 0xC0C0C0;
inline constexpr TColor clDkGray = 0x808080;
inline constexpr TColor clWhite = 0xFFFFFF;
inline constexpr TColor clMoneyGreen = 0xC0DCC0;
inline constexpr TColor clSkyBlue = 0xF0CAA6;
inline constexpr TColor clCream = 0xF0FBFF;
inline constexpr TColor clMedGray = 0xA4A0A0;
inline constexpr TColor clNone = 0x1FFFFFFF;
inline constexpr TColor clDefault = 0x20000000;

// System colours: clSystemColor plus the index of the desktop colour role.
inline constexpr TColor clScrollBar = clSystemColor | 0;
inline constexpr TColor clBackground = clSystemColor | 1;
inline constexpr TColor clActiveCaption = clSystemColor | 2;
inline constexpr TColor clInactiveCaption = clSystemColor | 3;
inline constexpr TColor clMenu = clSystemColor | 4;
inline constexpr TColor clWindow = clSystemColor | 5;
inline constexpr TColor clWindowFrame = clSystemColor | 6;
inline constexpr TColor clMenuText = clSystemColor | 7;
inline constexpr TColor clWindowText = clSystemColor | 8;
inline constexpr TColor clCaptionText = clSystemColor | 9;
inline constexpr TColor clActiveBorder = clSystemColor | 10;
inline constexpr TColor clInactiveBorder = clSystemColor | 11;
inline constexpr TColor clAppWorkSpace = clSystemColor | 12;
inline constexpr TColor clHighlight = clSystemColor | 13;
inline constexpr TColor clHighlightText = clSystemColor | 14;
inline constexpr TColor clBtnFace = clSystemColor | 15;
inline constexpr TColor clBtnShadow = clSystemColor | 16;
inline constexpr TColor clGrayText = clSystemColor | 17;
inline constexpr TColor clBtnText = clSystemColor | 18;
inline constexpr TColor clInactiveCaptionText = clSystemColor | 19;
inline constexpr TColor clBtnHighlight = clSystemColor | 20;
inline constexpr TColor cl3DDkShadow = clSystemColor | 21;
inline constexpr TColor cl3DLight = clSystemColor | 22;
inline constexpr TColor clInfoText = clSystemColor | 23;
inline constexpr TColor clInfoBk = clSystemColor | 24;

constexpr bool IsSystemColor(TColor c) { return (c & 0xFF000000) == clSystemColor; }

// Resolves a system colour index to a plain $00BBGGRR value. The core library answers with the
// classic desktop defaults; the widgets library installs a resolver that reads the application
// palette.
using TSystemColorResolver = TColor (*)(int index);
MATTONI_CORE_EXPORT void SetSystemColorResolver(TSystemColorResolver resolver);
MATTONI_CORE_EXPORT TColor DefaultSystemColor(int index);

// A plain colour stays as it is; a system colour is resolved.
MATTONI_CORE_EXPORT TColor ColorToRGB(TColor color);

} // namespace mattoni
