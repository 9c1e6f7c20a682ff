// The demo's page registry.
#include "DemoPages.h"

#include <algorithm>

namespace {
std::vector<DemoPage> &registry()
{
    static std::vector<DemoPage> pages;
    return pages;
}
} // namespace

bool RegisterDemoPage(const DemoPage &page)
{
    registry().push_back(page);
    return true;
}

std::vector<DemoPage> DemoPages()
{
    std::vector<DemoPage> pages = registry();
    std::stable_sort(pages.begin(), pages.end(), [](const DemoPage &a, const DemoPage &b) { return a.order < b.order; });
    return pages;
}
