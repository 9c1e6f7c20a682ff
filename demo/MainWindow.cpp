// The demo's main window.
#include "MainWindow.h"

#include <QHBoxLayout>
#include <QListWidget>
#include <QStackedWidget>
#include <QStatusBar>

MainWindow::MainWindow(DemoContext &context, QWidget *parent)
    : QMainWindow(parent)
    , m_list(new QListWidget)
    , m_stack(new QStackedWidget)
{
    setWindowTitle(QStringLiteral("Segreteria studenti - Mattoni"));
    auto *central = new QWidget;
    auto *layout = new QHBoxLayout(central);
    m_list->setFixedWidth(200);
    layout->addWidget(m_list);
    layout->addWidget(m_stack, 1);
    setCentralWidget(central);
    for (const DemoPage &page : DemoPages()) {
        m_list->addItem(page.title);
        m_stack->addWidget(page.create(context));
    }
    connect(m_list, &QListWidget::currentRowChanged, m_stack, &QStackedWidget::setCurrentIndex);
    m_list->setCurrentRow(0);
    statusBar()->showMessage(QStringLiteral("Dati in %1").arg(context.dataFolder));
    resize(1100, 720);
}

int MainWindow::pageCount() const
{
    return m_stack->count();
}

QString MainWindow::pageTitle(int index) const
{
    return m_list->item(index)->text();
}

void MainWindow::showPage(int index)
{
    m_list->setCurrentRow(index);
}
