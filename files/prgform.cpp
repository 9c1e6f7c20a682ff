// The progress window of the file components.
#include "prgform.h"

#include <QApplication>
#include <QLabel>
#include <QProgressBar>
#include <QScreen>

namespace mattoni {

namespace {
constexpr int kModalCancel = 2;
}

TProgForm::TProgForm(QWidget *parent)
    : QDialog(parent)
    , lFileName(new QLabel(this))
    , ProgressBar1(new QProgressBar(this))
{
    setObjectName(QStringLiteral("ProgForm"));
    setWindowTitle(QStringLiteral("Operazione in corso..."));
    QFont font = QApplication::font();
    font.setPointSize(8);
    setFont(font);
    setFixedSize(409, 68);

    lFileName->setObjectName(QStringLiteral("lFileName"));
    lFileName->setGeometry(16, 8, 377, 16);
    ProgressBar1->setObjectName(QStringLiteral("ProgressBar1"));
    ProgressBar1->setGeometry(16, 32, 377, 13);
    ProgressBar1->setRange(0, 100);
    ProgressBar1->setValue(0);
    ProgressBar1->setTextVisible(false);

    if (const QScreen *screen = QGuiApplication::primaryScreen())
        move(screen->availableGeometry().center() - rect().center());
}

TProgForm::~TProgForm() = default;

void TProgForm::setModalResult(int value)
{
    if (m_modalResult == value)
        return;
    m_modalResult = value;
    emit ModalResultChanged();
}

// QDialog answers Escape and the close box with reject(): here it records the user's Cancel
// and leaves the window open until the operation winds down.
void TProgForm::reject()
{
    setModalResult(kModalCancel);
}

} // namespace mattoni
