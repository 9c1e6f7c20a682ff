// The screen's cursor table: cursors by number, as controls and applications of this family
// ask for them. Negative numbers are the built-in shapes; positive numbers are free for the
// cursors an application or a control installs (a grid's sort cursor is number 5).
#pragma once

#include "mattoni_widgets_export.h"

#include <QCursor>
#include <QHash>

class QWidget;

namespace mattoni {

using TCursor = int;

inline constexpr TCursor crDefault = 0;
inline constexpr TCursor crArrow = -2;
inline constexpr TCursor crCross = -3;
inline constexpr TCursor crIBeam = -4;
inline constexpr TCursor crHourGlass = -11;
inline constexpr TCursor crSQLWait = -17;
inline constexpr TCursor crHandPoint = -21;

class MATTONI_WIDGETS_EXPORT TScreen
{
public:
    // The cursor of that number; an unknown number gives the arrow.
    QCursor Cursors(TCursor index) const;
    void setCursors(TCursor index, const QCursor &cursor);

private:
    QHash<TCursor, QCursor> m_cursors;
};

// The process-wide table.
MATTONI_WIDGETS_EXPORT TScreen *Screen();

// Gives Control the cursor of that number; crDefault gives it back its parent's cursor.
MATTONI_WIDGETS_EXPORT void SetControlCursor(QWidget *control, TCursor cursor);
// The number last given to Control with SetControlCursor (crDefault when none).
MATTONI_WIDGETS_EXPORT TCursor ControlCursor(const QWidget *control);

} // namespace mattoni
