// The cursor table.
#include "Screen.h"

#include <QCoreApplication>
#include <QVariant>
#include <QWidget>

namespace mattoni {

namespace {

// The control's cursor number, kept beside the QCursor that Qt holds.
const char *const CursorNumberProperty = "_mattoni_cursor";

Qt::CursorShape BuiltInShape(TCursor index)
{
    switch (index) {
    case crCross: return Qt::CrossCursor;
    case crIBeam: return Qt::IBeamCursor;
    case crHourGlass: return Qt::WaitCursor;
    // Qt has no hourglass marked "SQL": the plain one says the same.
    case crSQLWait: return Qt::WaitCursor;
    case crHandPoint: return Qt::PointingHandCursor;
    default: return Qt::ArrowCursor;
    }
}

} // namespace

QCursor TScreen::Cursors(TCursor index) const
{
    const auto it = m_cursors.constFind(index);
    return it != m_cursors.constEnd() ? *it : QCursor(BuiltInShape(index));
}

void TScreen::setCursors(TCursor index, const QCursor &cursor)
{
    // Installed cursors hold pixmaps, which must go before the application does.
    if (m_cursors.isEmpty())
        qAddPostRoutine([] { Screen()->m_cursors.clear(); });
    m_cursors.insert(index, cursor);
}

TScreen *Screen()
{
    static TScreen screen;
    return &screen;
}

void SetControlCursor(QWidget *control, TCursor cursor)
{
    if (!control)
        return;
    control->setProperty(CursorNumberProperty, cursor);
    if (cursor == crDefault)
        control->unsetCursor();
    else
        control->setCursor(Screen()->Cursors(cursor));
}

TCursor ControlCursor(const QWidget *control)
{
    return control ? control->property(CursorNumberProperty).toInt() : crDefault;
}

} // namespace mattoni
