// The bordered panel of the composite controls.
#include "CustomPanel.h"

#include "ControlErrors.h"
#include "Graphics.h"

#include <QApplication>

namespace mattoni {

TCustomPanel::TCustomPanel(QWidget *parent) : QFrame(parent), m_client(new QWidget(this))
{
    setFrameStyle(QFrame::Box | QFrame::Plain);
    setLineWidth(1);
    // The platform's control font: the application's sans font at 8 points.
    QFont small = font();
    small.setPointSize(8);
    setFont(small);
    m_client->setAutoFillBackground(true);
    m_client->setGeometry(contentsRect());
    PaintClient();
    m_focusWatch = connect(qApp, &QApplication::focusChanged, this,
                           [this](QWidget *, QWidget *now) { FocusChanged(now); });
}

TCustomPanel::~TCustomPanel()
{
    disconnect(m_focusWatch);
}

void TCustomPanel::setColor(TColor value)
{
    if (value == m_color)
        return;
    m_color = value;
    PaintClient();
}

void TCustomPanel::PaintClient()
{
    QPalette colors = m_client->palette();
    colors.setColor(QPalette::Window, TColorToQColor(m_color));
    m_client->setPalette(colors);
}

void TCustomPanel::Resize()
{
    if (OnResize)
        OnResize(this);
}

void TCustomPanel::resizeEvent(QResizeEvent *event)
{
    QFrame::resizeEvent(event);
    m_client->setGeometry(contentsRect());
    try {
        Resize();
    } catch (...) {
        PostControlException(this, std::current_exception());
    }
}

void TCustomPanel::FocusChanged(QWidget *now)
{
    // Another window taking the focus (or none) leaves the panel where it was in its own.
    if (!now || now->window() != window())
        return;
    const bool inside = isAncestorOf(now);
    if (inside == m_focusInside)
        return;
    m_focusInside = inside;
    if (!inside || !OnEnter)
        return;
    try {
        OnEnter(this);
    } catch (...) {
        PostControlException(this, std::current_exception());
    }
}

} // namespace mattoni
