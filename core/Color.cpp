// System colour resolution for TColor.
#include "Color.h"

#include <atomic>

namespace mattoni {

namespace {
std::atomic<TSystemColorResolver> g_resolver{nullptr};
}

TColor DefaultSystemColor(int index)
{
    // The classic desktop scheme, used until a palette-aware resolver is installed.
    static const TColor defaults[] = {
        RGB(200, 200, 200), RGB(0, 128, 128),   RGB(0, 84, 227),    RGB(122, 150, 223),
        RGB(255, 255, 255), RGB(255, 255, 255), RGB(0, 0, 0),       RGB(0, 0, 0),
        RGB(0, 0, 0),       RGB(255, 255, 255), RGB(212, 208, 200), RGB(212, 208, 200),
        RGB(128, 128, 128), RGB(49, 106, 197),  RGB(255, 255, 255), RGB(236, 233, 216),
        RGB(172, 168, 153), RGB(172, 168, 153), RGB(0, 0, 0),       RGB(216, 228, 248),
        RGB(255, 255, 255), RGB(113, 111, 100), RGB(241, 239, 226), RGB(0, 0, 0),
        RGB(255, 255, 225)};
    if (index < 0 || index >= int(sizeof defaults / sizeof defaults[0]))
        return clBlack;
    return defaults[index];
}

void SetSystemColorResolver(TSystemColorResolver resolver)
{
    g_resolver.store(resolver);
}

TColor ColorToRGB(TColor color)
{
    if (!IsSystemColor(color))
        return color;
    const int index = int(color & 0xFF);
    if (const TSystemColorResolver resolver = g_resolver.load())
        return resolver(index);
    return DefaultSystemColor(index);
}

} // namespace mattoni
