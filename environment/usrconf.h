// The colour scheme of the input controls and the layout of the main control panel.
// The Bk... colours are backgrounds, the Fr... colours texts, one per control state; a host picks a
// style (SetColorMapStyles) and every control of the library paints with these variables.
#pragma once

#include "Color.h"
#include "mattoni_core_export.h"

#include <QString>

namespace mattoni {

enum TColorMapStyles : qint32 { cmsSilver, cmsOlive, cmsOcean, cmsClassic, cmsCielo };

enum TColorElements {
    ceBkFrameColor,
    ceBkFormColor,
    ceBkFocusColor,
    ceBkNormalColor,
    ceBkDisabledColor,
    ceBkReadOnlyColor,
    ceBkRequiredColor,
    ceBkErrorColor,
    ceBkTitoloSezioneColor,
    ceBkGridAlternateColor,
    ceBkGridAlternateReadOnlyColor,
    ceBkGridSelectedColor,
    ceFrFormColor,
    ceFrFocusColor,
    ceFrNormalColor,
    ceFrDisabledColor,
    ceFrReadOnlyColor,
    ceFrRequiredColor,
    ceFrErrorColor,
    ceFrTitoloSezioneColor,
    ceFrGridAlternateColor,
    ceFrGridSelectedColor
};
inline constexpr int ColorElementCount = ceFrGridSelectedColor + 1;

// Luminance amounts per style and element: 0 keeps the map's colour, 1000 + n takes its shadow
// colour with amount n, any other n its highlight colour with amount n (negative darkens).
MATTONI_CORE_EXPORT extern const qint32 ColorMapLumen[5][ColorElementCount];

MATTONI_CORE_EXPORT extern TColorMapStyles CurrentColorMapStyle;

MATTONI_CORE_EXPORT extern TColor BkFrameColor;
MATTONI_CORE_EXPORT extern TColor BkFormColor;
MATTONI_CORE_EXPORT extern TColor BkFocusColor;
MATTONI_CORE_EXPORT extern TColor BkNormalColor;
MATTONI_CORE_EXPORT extern TColor BkDisabledColor;
MATTONI_CORE_EXPORT extern TColor BkReadOnlyColor;
MATTONI_CORE_EXPORT extern TColor BkRequiredColor;
MATTONI_CORE_EXPORT extern TColor BkErrorColor;
MATTONI_CORE_EXPORT extern TColor BkTitoloSezioneColor;
MATTONI_CORE_EXPORT extern TColor BkGridAlternateColor;
MATTONI_CORE_EXPORT extern TColor BkGridAlternateReadOnlyColor;
MATTONI_CORE_EXPORT extern TColor BkGridSelectedColor;
MATTONI_CORE_EXPORT extern TColor BkSelectedFrameColor;
MATTONI_CORE_EXPORT extern TColor FrFormColor;
MATTONI_CORE_EXPORT extern TColor FrFocusColor;
MATTONI_CORE_EXPORT extern TColor FrNormalColor;
MATTONI_CORE_EXPORT extern TColor FrDisabledColor;
MATTONI_CORE_EXPORT extern TColor FrReadOnlyColor;
MATTONI_CORE_EXPORT extern TColor FrRequiredColor;
MATTONI_CORE_EXPORT extern TColor FrErrorColor;
MATTONI_CORE_EXPORT extern TColor FrTitoloSezioneColor;
MATTONI_CORE_EXPORT extern TColor FrGridAlternateColor;
MATTONI_CORE_EXPORT extern TColor FrGridAlternateReadOnlyColor;
MATTONI_CORE_EXPORT extern TColor FrGridSelectedColor;

// Layout of the main control panel.
MATTONI_CORE_EXPORT extern TColor ctrlPanelBackGroundColor;
MATTONI_CORE_EXPORT extern QString ctrlPanelBackGroundImagePath;
MATTONI_CORE_EXPORT extern quint8 ctrlPanelBackGroundPosition;
MATTONI_CORE_EXPORT extern quint8 ctrlPanelWindowState;
MATTONI_CORE_EXPORT extern qint32 ctrlPanelWindowTop;
MATTONI_CORE_EXPORT extern qint32 ctrlPanelWindowLeft;
MATTONI_CORE_EXPORT extern qint32 ctrlPanelWindowHeight;
MATTONI_CORE_EXPORT extern qint32 ctrlPanelWindowWidth;
MATTONI_CORE_EXPORT extern bool paRightVisible;
MATTONI_CORE_EXPORT extern bool paTreeVisible;
MATTONI_CORE_EXPORT extern qint32 paTreeWidth;
MATTONI_CORE_EXPORT extern QString paTreePath;
MATTONI_CORE_EXPORT extern bool atbStrumentiVisible;
MATTONI_CORE_EXPORT extern qint32 ctrlbLeftWidth;

// The background image of the panel is a QImage/QPixmap of the widgets side; the core keeps its
// path only (ctrlPanelBackGroundImagePath).

// Node kinds of the panel's tree.
inline constexpr int tnNull = 0;
inline constexpr int tnCartella = 1;
inline constexpr int tnLibrary = 2;
inline constexpr int tnTask = 3;
inline constexpr int tnPackage = 4;
inline constexpr int tnPlugin = 5;

// The colour roles of an action-bar colour map. A host may derive its own map; the standard map
// holds the scheme's default colours, so applying it with any style shades those defaults.
class MATTONI_CORE_EXPORT TColorMap
{
public:
    virtual ~TColorMap();

    TColor Color = clSilver;                 // form background
    TColor FrameColor = clGray;              // frames
    TColor HighlightColor = clCream;         // focused control
    TColor MenuColor = clWindow;             // normal control
    TColor DisabledColor = clSilver;         // disabled control
    TColor UnusedColor = clInfoBk;           // read-only control
    TColor HotColor = clAqua;                // required control
    TColor ShadowColor = clMaroon;           // control in error
    TColor TitleColor = clInfoBk;            // section titles
    TColor AlternateColor = clCream;         // alternate grid rows
    TColor AlternateReadOnlyColor = clMoneyGreen;
    TColor SelectedColor = clSkyBlue;        // grid selection
    TColor FontColor = clWindowText;
    TColor HotFontColor = clWindowText;
    TColor DisabledFontColor = clWindowText;
    TColor ErrorFontColor = clSilver;
    TColor SelectedFontColor = clWindowText;

    // The map's colour for one element of the scheme.
    TColor ColorOf(TColorElements element) const;
};

class MATTONI_CORE_EXPORT TStandardColorMap : public TColorMap
{
};

// Delta 0: Color itself; Delta div 1000 not 0: the shadow colour of Color with amount
// Delta mod 1000; otherwise its highlight colour with amount Delta.
MATTONI_CORE_EXPORT TColor GetColor(TColor color, qint32 delta);

// Shading in the HLS model with lightness 0..240: the highlight colour moves the lightness by
// amount / 1000 of the full range (negative darkens), the shadow colour darkens by as much.
MATTONI_CORE_EXPORT TColor GetHighLightColor(TColor color, qint32 amount);
MATTONI_CORE_EXPORT TColor GetShadowColor(TColor color, qint32 amount);

// Fills every colour variable from the map, shaded by the style's row of ColorMapLumen.
MATTONI_CORE_EXPORT void SetColorMapStyles(TColorMapStyles style, const TColorMap &map);

// Puts the colour and layout variables back to their load-time defaults.
MATTONI_CORE_EXPORT void ResetUsrConf();

} // namespace mattoni
