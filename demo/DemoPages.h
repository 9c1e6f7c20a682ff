// The demo's page registry: each page source registers itself, so pages are added without
// touching the main window.
#pragma once

#include <QSqlDatabase>
#include <QString>
#include <QWidget>

#include <functional>
#include <vector>

// What every page may use: the demo database and its data folder.
struct DemoContext
{
    QSqlDatabase db;
    QString dataFolder;
};

struct DemoPage
{
    int order;
    QString title;
    std::function<QWidget *(DemoContext &)> create;
};

// Pages sorted by their order.
std::vector<DemoPage> DemoPages();
bool RegisterDemoPage(const DemoPage &page);

#define MATTONI_DEMO_CONCAT2(a, b) a##b
#define MATTONI_DEMO_CONCAT(a, b) MATTONI_DEMO_CONCAT2(a, b)
#define MATTONI_DEMO_PAGE(order, title, factory)                                                   \
    static const bool MATTONI_DEMO_CONCAT(demoPageRegistered_, __LINE__) =                         \
        RegisterDemoPage(DemoPage{order, title, factory})
