// The demo's main window: the office's heading, a list of pages grouped by what they are for on
// the left, the chosen page on the right, and a clock in the status bar.
#pragma once

#include "DemoPages.h"

#include <QMainWindow>

class QLabel;
class QListWidget;
class QStackedWidget;

namespace mattoni {
class TThreadedTimer;
}

class MainWindow : public QMainWindow
{
    Q_OBJECT
public:
    explicit MainWindow(DemoContext &context, QWidget *parent = nullptr);

    int pageCount() const;
    QString pageTitle(int index) const;
    void showPage(int index);

private:
    QWidget *Heading() const;

    QListWidget *m_list;
    QStackedWidget *m_stack;
    // The list row of each page: the section headings take rows of their own.
    QList<int> m_rows;
    QLabel *m_clock;
    mattoni::TThreadedTimer *m_timer;
};
