// The demo's main window.
#include "MainWindow.h"

#include "Ambiente.h"
#include "DateTime.h"
#include "Formatting.h"
#include "ThdTimer.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QStackedWidget>
#include <QStatusBar>
#include <QVBoxLayout>

using namespace mattoni;

namespace {

// Pages are grouped by their order: the office's daily work, tools, the system and its data.
QString SectionOf(int order)
{
    if (order < 30)
        return QStringLiteral("Segreteria");
    if (order < 50)
        return QStringLiteral("Strumenti");
    return QStringLiteral("Sistema e archivi");
}

} // namespace

MainWindow::MainWindow(DemoContext &context, QWidget *parent)
    : QMainWindow(parent)
    , m_list(new QListWidget)
    , m_stack(new QStackedWidget)
    , m_clock(new QLabel)
    , m_timer(new TThreadedTimer(this))
{
    setWindowTitle(QStringLiteral("Segreteria studenti - Mattoni"));
    m_list->setFixedWidth(190);
    m_list->setSpacing(1);
    QString section;
    for (const DemoPage &page : DemoPages()) {
        if (SectionOf(page.order) != section) {
            section = SectionOf(page.order);
            auto *heading = new QListWidgetItem(section.toUpper(), m_list);
            heading->setFlags(Qt::NoItemFlags);
            QFont font = heading->font();
            font.setBold(true);
            font.setPointSizeF(font.pointSizeF() * 0.85);
            heading->setFont(font);
        }
        m_rows << m_list->count();
        new QListWidgetItem(QStringLiteral("   ") + page.title, m_list);
        m_stack->addWidget(page.create(context));
    }
    connect(m_list, &QListWidget::currentRowChanged, m_stack, [this](int row) {
        const int page = int(m_rows.indexOf(row));
        if (page >= 0)
            m_stack->setCurrentIndex(page);
    });
    showPage(0);

    auto *central = new QWidget;
    auto *outer = new QVBoxLayout(central);
    outer->setContentsMargins(0, 0, 0, 0);
    outer->setSpacing(0);
    outer->addWidget(Heading());
    auto *body = new QHBoxLayout;
    body->setContentsMargins(6, 6, 6, 0);
    body->addWidget(m_list);
    body->addWidget(m_stack, 1);
    outer->addLayout(body, 1);
    setCentralWidget(central);

    statusBar()->showMessage(QStringLiteral("Dati in %1").arg(context.dataFolder));
    statusBar()->addPermanentWidget(m_clock);
    // The clock ticks from the timer's own thread, so a busy page does not hold it back.
    m_timer->OnTimer = [this](QObject *) { m_clock->setText(FormatDateTime(QStringLiteral("dd/mm/yyyy hh.nn.ss"), Now())); };
    m_timer->OnTimer(m_timer);
    m_timer->setEnabled(true);
    resize(1200, 780);
}

QWidget *MainWindow::Heading() const
{
    auto *bar = new QWidget;
    bar->setAutoFillBackground(true);
    QPalette palette = bar->palette();
    palette.setColor(QPalette::Window, QColor(0x1f, 0x3a, 0x5f));
    palette.setColor(QPalette::WindowText, Qt::white);
    bar->setPalette(palette);
    auto *layout = new QHBoxLayout(bar);
    layout->setContentsMargins(12, 8, 12, 8);
    auto *name = new QLabel(QStringLiteral("Segreteria studenti"));
    QFont font = name->font();
    font.setPointSizeF(font.pointSizeF() * 1.4);
    font.setBold(true);
    name->setFont(font);
    layout->addWidget(name);
    layout->addStretch();
    layout->addWidget(new QLabel(QStringLiteral("Esercizio %1    Utente: %2    Data di lavoro: %3")
                                     .arg(QString::number(Esercizio), NomeLogin.isEmpty() ? QStringLiteral("-") : NomeLogin,
                                          DateToStr(DataSistema))));
    return bar;
}

int MainWindow::pageCount() const
{
    return m_stack->count();
}

QString MainWindow::pageTitle(int index) const
{
    return m_list->item(m_rows.at(index))->text().trimmed();
}

void MainWindow::showPage(int index)
{
    m_list->setCurrentRow(m_rows.at(index));
}
