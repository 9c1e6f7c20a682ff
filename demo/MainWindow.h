// The demo's main window: a list of pages on the left, the chosen page on the right.
#pragma once

#include "DemoPages.h"

#include <QMainWindow>

class QListWidget;
class QStackedWidget;

class MainWindow : public QMainWindow
{
    Q_OBJECT
public:
    explicit MainWindow(DemoContext &context, QWidget *parent = nullptr);

    int pageCount() const;
    QString pageTitle(int index) const;
    void showPage(int index);

private:
    QListWidget *m_list;
    QStackedWidget *m_stack;
};
