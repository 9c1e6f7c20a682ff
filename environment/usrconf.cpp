// The colour scheme and the control-panel layout.
#include "usrconf.h"

#include <QtGlobal>
#include <cmath>

namespace mattoni {

const qint32 ColorMapLumen[5][ColorElementCount] = {
    {0, 20, -60, 65, 1070, 30, -65, -35, -25, 50, 30, -30, 0, 0, 0, -70, 0, 0, 0, 0, 0, 0},
    {0, 0, -55, 65, 70, 15, -50, -30, -20, 40, 15, -30, 0, 0, 0, -70, 0, 0, 0, 0, 0, 0},
    {0, 20, -55, 65, 70, 15, -50, -30, -35, 40, 15, -30, 0, 0, 0, -70, 0, 0, 0, 0, 0, 0},
    {0, 0, 55, 20, 70, -20, 1060, 30, 1025, 5, -20, 5, 0, 0, 0, -70, 0, 0, -5, 0, 0, 0},
    {0, 10, 30, 60, 35, 35, 1070, -40, 1025, 60, 35, -10, 0, 0, 0, -70, 0, 0, 0, 0, 0, 0},
};

TColorMapStyles CurrentColorMapStyle = cmsOcean;

TColor BkFrameColor = clGray;
TColor BkFormColor = clSilver;
TColor BkFocusColor = clCream;
TColor BkNormalColor = clWindow;
TColor BkDisabledColor = clSilver;
TColor BkReadOnlyColor = clInfoBk;
TColor BkRequiredColor = clAqua;
TColor BkErrorColor = clMaroon;
TColor BkTitoloSezioneColor = clInfoBk;
TColor BkGridAlternateColor = clCream;
TColor BkGridAlternateReadOnlyColor = clMoneyGreen;
TColor BkGridSelectedColor = clSkyBlue;
TColor BkSelectedFrameColor = clCream;
TColor FrFormColor = clWindowText;
TColor FrFocusColor = clWindowText;
TColor FrNormalColor = clWindowText;
TColor FrDisabledColor = clWindowText;
TColor FrReadOnlyColor = clWindowText;
TColor FrRequiredColor = clWindowText;
TColor FrErrorColor = clSilver;
TColor FrTitoloSezioneColor = clWindowText;
TColor FrGridAlternateColor = clWindowText;
TColor FrGridAlternateReadOnlyColor = clWindowText;
TColor FrGridSelectedColor = clWindowText;

TColor ctrlPanelBackGroundColor = clWindow;
QString ctrlPanelBackGroundImagePath;
quint8 ctrlPanelBackGroundPosition = 3;
quint8 ctrlPanelWindowState = 0;
qint32 ctrlPanelWindowTop = 0;
qint32 ctrlPanelWindowLeft = 0;
qint32 ctrlPanelWindowHeight = 0;
qint32 ctrlPanelWindowWidth = 0;
bool paRightVisible = false;
bool paTreeVisible = false;
qint32 paTreeWidth = 0;
QString paTreePath;
bool atbStrumentiVisible = false;
qint32 ctrlbLeftWidth = 0;

namespace {

constexpr int HlsMax = 240;

struct Hls
{
    double h, l, s;
};

Hls toHls(TColor rgb)
{
    const double r = GetRValue(rgb) / 255.0, g = GetGValue(rgb) / 255.0, b = GetBValue(rgb) / 255.0;
    const double mx = qMax(r, qMax(g, b)), mn = qMin(r, qMin(g, b));
    Hls out{0, (mx + mn) / 2, 0};
    const double d = mx - mn;
    if (d > 0) {
        out.s = out.l > 0.5 ? d / (2 - mx - mn) : d / (mx + mn);
        if (mx == r)
            out.h = (g - b) / d + (g < b ? 6 : 0);
        else if (mx == g)
            out.h = (b - r) / d + 2;
        else
            out.h = (r - g) / d + 4;
        out.h /= 6;
    }
    return out;
}

double hueToRgb(double p, double q, double t)
{
    if (t < 0)
        t += 1;
    if (t > 1)
        t -= 1;
    if (t < 1.0 / 6)
        return p + (q - p) * 6 * t;
    if (t < 0.5)
        return q;
    if (t < 2.0 / 3)
        return p + (q - p) * (2.0 / 3 - t) * 6;
    return p;
}

TColor fromHls(const Hls &c)
{
    double r, g, b;
    if (c.s == 0) {
        r = g = b = c.l;
    } else {
        const double q = c.l < 0.5 ? c.l * (1 + c.s) : c.l + c.s - c.l * c.s;
        const double p = 2 * c.l - q;
        r = hueToRgb(p, q, c.h + 1.0 / 3);
        g = hueToRgb(p, q, c.h);
        b = hueToRgb(p, q, c.h - 1.0 / 3);
    }
    return RGB(int(std::lround(r * 255)), int(std::lround(g * 255)), int(std::lround(b * 255)));
}

TColor adjustLightness(TColor color, qint32 amount)
{
    Hls c = toHls(ColorToRGB(color));
    const double step = double(amount) * HlsMax / 1000.0;
    c.l = qBound(0.0, (c.l * HlsMax + step) / HlsMax, 1.0);
    return fromHls(c);
}

} // namespace

TColorMap::~TColorMap() = default;

TColor TColorMap::ColorOf(TColorElements element) const
{
    switch (element) {
    case ceBkFrameColor: return FrameColor;
    case ceBkFormColor: return Color;
    case ceBkFocusColor: return HighlightColor;
    case ceBkNormalColor: return MenuColor;
    case ceBkDisabledColor: return DisabledColor;
    case ceBkReadOnlyColor: return UnusedColor;
    case ceBkRequiredColor: return HotColor;
    case ceBkErrorColor: return ShadowColor;
    case ceBkTitoloSezioneColor: return TitleColor;
    case ceBkGridAlternateColor: return AlternateColor;
    case ceBkGridAlternateReadOnlyColor: return AlternateReadOnlyColor;
    case ceBkGridSelectedColor: return SelectedColor;
    case ceFrFormColor: return FontColor;
    case ceFrFocusColor: return HotFontColor;
    case ceFrNormalColor: return FontColor;
    case ceFrDisabledColor: return DisabledFontColor;
    case ceFrReadOnlyColor: return FontColor;
    case ceFrRequiredColor: return FontColor;
    case ceFrErrorColor: return ErrorFontColor;
    case ceFrTitoloSezioneColor: return FontColor;
    case ceFrGridAlternateColor: return FontColor;
    case ceFrGridSelectedColor: return SelectedFontColor;
    }
    return Color;
}

TColor GetHighLightColor(TColor color, qint32 amount)
{
    return adjustLightness(color, amount);
}

TColor GetShadowColor(TColor color, qint32 amount)
{
    return adjustLightness(color, -amount);
}

TColor GetColor(TColor color, qint32 delta)
{
    if (delta == 0)
        return color;
    if (delta / 1000 != 0)
        return GetShadowColor(color, delta % 1000);
    return GetHighLightColor(color, delta);
}

void SetColorMapStyles(TColorMapStyles style, const TColorMap &map)
{
    const qint32 *row = ColorMapLumen[qBound(0, int(style), 4)];
    TColor *const targets[ColorElementCount] = {
        &BkFrameColor,         &BkFormColor,          &BkFocusColor,
        &BkNormalColor,        &BkDisabledColor,      &BkReadOnlyColor,
        &BkRequiredColor,      &BkErrorColor,         &BkTitoloSezioneColor,
        &BkGridAlternateColor, &BkGridAlternateReadOnlyColor, &BkGridSelectedColor,
        &FrFormColor,          &FrFocusColor,         &FrNormalColor,
        &FrDisabledColor,      &FrReadOnlyColor,      &FrRequiredColor,
        &FrErrorColor,         &FrTitoloSezioneColor, &FrGridAlternateColor,
        &FrGridSelectedColor};
    for (int e = 0; e < ColorElementCount; ++e)
        *targets[e] = GetColor(map.ColorOf(TColorElements(e)), row[e]);
    // The selected frame shades the focus colour by the error column's amount.
    BkSelectedFrameColor = GetColor(map.ColorOf(ceBkFocusColor), row[ceBkErrorColor]);
    FrGridAlternateReadOnlyColor = FrGridAlternateColor;
}

void ResetUsrConf()
{
    // The defaults are the standard map's colours, unshaded.
    const TStandardColorMap standard;
    BkFrameColor = standard.FrameColor;
    BkFormColor = standard.Color;
    BkFocusColor = standard.HighlightColor;
    BkNormalColor = standard.MenuColor;
    BkDisabledColor = standard.DisabledColor;
    BkReadOnlyColor = standard.UnusedColor;
    BkRequiredColor = standard.HotColor;
    BkErrorColor = standard.ShadowColor;
    BkTitoloSezioneColor = standard.TitleColor;
    BkGridAlternateColor = standard.AlternateColor;
    BkGridAlternateReadOnlyColor = standard.AlternateReadOnlyColor;
    BkGridSelectedColor = standard.SelectedColor;
    BkSelectedFrameColor = standard.HighlightColor;
    FrFormColor = FrFocusColor = FrNormalColor = FrDisabledColor = FrReadOnlyColor = FrRequiredColor =
        FrTitoloSezioneColor = FrGridAlternateColor = FrGridAlternateReadOnlyColor = FrGridSelectedColor =
            clWindowText;
    FrErrorColor = clSilver;
    CurrentColorMapStyle = cmsOcean;
    ctrlPanelBackGroundColor = clWindow;
    ctrlPanelBackGroundImagePath.clear();
    ctrlPanelBackGroundPosition = 3;
    ctrlPanelWindowState = 0;
    ctrlPanelWindowTop = ctrlPanelWindowLeft = ctrlPanelWindowHeight = ctrlPanelWindowWidth = 0;
    paRightVisible = paTreeVisible = false;
    paTreeWidth = 0;
    paTreePath.clear();
    atbStrumentiVisible = false;
    ctrlbLeftWidth = 0;
}

} // namespace mattoni
