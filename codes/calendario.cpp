// A month calendar drawn as a 7 x 7 grid, and the date helpers of the date controls.
#include "calendario.h"

#include "DateHelpers.h"
#include "Formatting.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionFocusRect>

#include <algorithm>

namespace mattoni {

int DaysPerMonth(int Year, int Month)
{
    return DaysInAMonth(Year, Month);
}

bool IsValidDate(int Year, int Month, int Day)
{
    return Year >= 1 && Year <= 9999 && Month >= 1 && Month <= 12 && Day >= 1
        && Day <= DaysPerMonth(Year, Month);
}

bool ValidDate(TDateTime Date)
{
    int year, month, day;
    DecodeDate(Date, year, month, day);
    return IsValidDate(year, month, day);
}

namespace {

constexpr int frameWidth(TBorderStyle style)
{
    return style == bsSingle ? 1 : 0;
}

} // namespace

TinCalendar::TinCalendar(QWidget *parent)
    : QWidget(parent)
    , m_date(Date())
{
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_OpaquePaintEvent);
    CalendarUpdate(false);
}

TinCalendar::~TinCalendar() = default;

void TinCalendar::setBorderStyle(TBorderStyle value)
{
    if (m_borderStyle == value)
        return;
    m_borderStyle = value;
    layoutCells();
    updateGeometry();
    update();
}

void TinCalendar::storeDate(TDateTime value)
{
    if (m_date == value)
        return;
    m_date = value;
    emit CalendarDateChanged();
}

void TinCalendar::setCalendarDate(TDateTime value)
{
    if (m_date == value)
        return;
    storeDate(value);
    UpdateCalendar();
    Change();
}

void TinCalendar::setStartOfWeek(TGiorni value)
{
    if (m_startOfWeek == value)
        return;
    m_startOfWeek = value;
    UpdateCalendar();
}

void TinCalendar::setUseCurrentDate(bool value)
{
    m_useCurrentDate = value;
    if (value) {
        storeDate(Date());
        UpdateCalendar();
    }
}

void TinCalendar::setWeekendColor(TColor value)
{
    if (m_weekendColor == value)
        return;
    m_weekendColor = value;
    update();
}

void TinCalendar::setWeekends(TGiorniSettimana value)
{
    if (m_weekends == value)
        return;
    m_weekends = value;
    UpdateCalendar();
}

void TinCalendar::NextYear()
{
    // Two steps, each a change of its own, so OnChange fires twice on 29 February.
    if (IsLeapYear(Year()) && Month() == 2 && Day() == 29)
        setDay(28);
    setYear(Year() + 1);
}

void TinCalendar::PrevYear()
{
    if (IsLeapYear(Year()) && Month() == 2 && Day() == 29)
        setDay(28);
    setYear(Year() - 1);
}

int TinCalendar::DaysThisMonth() const
{
    return DaysPerMonth(Year(), Month());
}

bool TinCalendar::IsWeekend(int Col, int /*Row*/) const
{
    return m_weekends.contains(TGiorni((m_startOfWeek + Col) % 7));
}

QString TinCalendar::GetCellText(int Col, int Row) const
{
    if (Row == 0)
        return FormatSettings.ShortDayNames.value((m_startOfWeek + Col) % 7);
    const int day = m_monthOffset + Col + (Row - 1) * 7;
    if (day < 1 || day > DaysThisMonth())
        return QString();
    return QString::number(day);
}

void TinCalendar::SetDateElement(int Index, int Value)
{
    if (Value < 1)
        return;
    int y, m, d;
    DecodeDate(m_date, y, m, d);
    switch (Index) {
    case 1:
        if (Value == y)
            return;
        y = Value;
        break;
    case 2:
        if (Value > 12 || Value == m)
            return;
        m = Value;
        d = std::min(d, DaysPerMonth(y, m));
        break;
    case 3:
        if (Value > DaysThisMonth() || Value == d)
            return;
        d = Value;
        break;
    default:
        return;
    }
    // EncodeDate raises before anything changes (a year past 9999, 29 February of a common year).
    storeDate(EncodeDate(y, m, d));
    m_useCurrentDate = false;
    CalendarUpdate(Index == 3);
    Change();
}

void TinCalendar::ChangeMonth(int Delta)
{
    int y, m, d;
    DecodeDate(m_date, y, m, d);
    const TDateTime edge = Delta >= 1 ? EncodeDate(y, m, DaysPerMonth(y, m)) : EncodeDate(y, m, 1);
    int ny, nm, nd;
    DecodeDate(edge + Delta, ny, nm, nd);
    storeDate(EncodeDate(ny, nm, std::min(d, DaysPerMonth(ny, nm))));
    UpdateCalendar();
    Change();
}

void TinCalendar::CalendarUpdate(bool DayOnly)
{
    m_updating = true;
    int y, m, d;
    DecodeDate(m_date, y, m, d);
    const int first = DayOfWeek(EncodeDate(y, m, 1)); // 1 = Sunday
    m_monthOffset = 2 - (first - m_startOfWeek + 7) % 7;
    // Weekdays count from 1 and TGiorni from 0: an offset of 2 would put day 1 before column 0.
    if (m_monthOffset == 2)
        m_monthOffset = -5;
    // MoveCurrent repaints the two cells, all a change of day needs.
    MoveCurrent((d - m_monthOffset) % 7, (d - m_monthOffset) / 7 + 1);
    if (!DayOnly)
        update();
    m_updating = false;
}

void TinCalendar::Change()
{
    if (OnChange)
        OnChange(this);
}

bool TinCalendar::SelectCell(int Col, int Row)
{
    return (m_updating || !m_readOnly) && !GetCellText(Col, Row).isEmpty();
}

void TinCalendar::Click()
{
    const QString text = GetCellText(m_col, m_row);
    if (!text.isEmpty())
        setDay(text.toInt());
}

bool TinCalendar::MoveCurrent(int Col, int Row)
{
    if (Col < 0 || Col >= ColCount || Row < FixedRows || Row >= RowCount)
        return false;
    if (Col == m_col && Row == m_row)
        return true;
    if (!SelectCell(Col, Row))
        return false;
    update(CellRect(m_col, m_row));
    m_col = Col;
    m_row = Row;
    update(CellRect(m_col, m_row));
    return true;
}

void TinCalendar::FocusCell(int Col, int Row)
{
    MoveCurrent(Col, Row);
    Click();
}

QRect TinCalendar::gridRect() const
{
    const int f = frameWidth(m_borderStyle);
    return rect().adjusted(f, f, -f, -f);
}

void TinCalendar::layoutCells()
{
    const QRect grid = gridRect();
    const int allowance = (ColCount - 1) * GridLineWidth();
    m_colWidth = std::max(0, (grid.width() - allowance) / ColCount);
    m_rowHeight = std::max(0, (grid.height() - (RowCount - 1) * GridLineWidth()) / RowCount);
}

QRect TinCalendar::CellRect(int Col, int Row) const
{
    const QRect grid = gridRect();
    return QRect(grid.left() + Col * (m_colWidth + GridLineWidth()),
                 grid.top() + Row * (m_rowHeight + GridLineWidth()), m_colWidth, m_rowHeight);
}

QPoint TinCalendar::MouseCoord(const QPoint &pos) const
{
    for (int row = 0; row < RowCount; ++row)
        for (int col = 0; col < ColCount; ++col)
            if (CellRect(col, row).contains(pos))
                return QPoint(col, row);
    return QPoint(-1, -1);
}

QSize TinCalendar::sizeHint() const
{
    const QFontMetrics fm = fontMetrics();
    int textWidth = fm.horizontalAdvance(QStringLiteral("00"));
    for (const QString &name : FormatSettings.ShortDayNames)
        textWidth = std::max(textWidth, fm.horizontalAdvance(name));
    const int lines = (ColCount - 1) * GridLineWidth();
    const int f = 2 * frameWidth(m_borderStyle);
    return QSize(ColCount * (textWidth + 12) + lines + f, RowCount * (fm.height() + 8) + lines + f);
}

QSize TinCalendar::minimumSizeHint() const
{
    const QFontMetrics fm = fontMetrics();
    const int lines = (ColCount - 1) * GridLineWidth();
    return QSize(ColCount * fm.horizontalAdvance(QStringLiteral("00")) + lines,
                 RowCount * fm.height() + lines);
}

void TinCalendar::DrawCell(QPainter &painter, int Col, int Row, const QRect &rect, bool selected)
{
    const QPalette &pal = palette();
    if (selected)
        painter.fillRect(rect, pal.color(QPalette::Highlight));
    const QString text = GetCellText(Col, Row);
    if (text.isEmpty())
        return;
    QColor color = pal.color(selected ? QPalette::HighlightedText : QPalette::Text);
    if (IsWeekend(Col, Row) && !selected)
        color = TColorToQColor(m_weekendColor);
    painter.setPen(color);
    const QFontMetrics fm = painter.fontMetrics();
    const int left = rect.left() + (rect.width() - fm.horizontalAdvance(text)) / 2;
    const int top = rect.top() + (rect.height() - fm.height()) / 2;
    painter.drawText(left, top + fm.ascent(), text);
}

void TinCalendar::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const QPalette &pal = palette();
    // Fixed row and day cells share the window colour.
    painter.fillRect(rect(), TColorToQColor(clWindow));
    if (m_borderStyle == bsSingle) {
        painter.setPen(pal.color(QPalette::Dark));
        painter.drawRect(rect().adjusted(0, 0, -1, -1));
    }
    const QRect grid = gridRect();
    const int line = GridLineWidth();
    const QColor lineColor = pal.color(QPalette::Midlight);
    for (int col = 0; col < ColCount - 1; ++col) {
        const QRect cell = CellRect(col, 0);
        painter.fillRect(QRect(cell.right() + 1, grid.top(), line, RowCount * (m_rowHeight + line) - line),
                         lineColor);
    }
    for (int row = 0; row < RowCount - 1; ++row) {
        const QRect cell = CellRect(0, row);
        painter.fillRect(QRect(grid.left(), cell.bottom() + 1, ColCount * (m_colWidth + line) - line, line),
                         row < FixedRows ? pal.color(QPalette::Mid) : lineColor);
    }
    for (int row = 0; row < RowCount; ++row)
        for (int col = 0; col < ColCount; ++col)
            DrawCell(painter, col, row, CellRect(col, row), row == m_row && col == m_col);
    if (hasFocus()) {
        QStyleOptionFocusRect option;
        option.initFrom(this);
        option.rect = CellRect(m_col, m_row);
        option.backgroundColor = pal.color(QPalette::Highlight);
        style()->drawPrimitive(QStyle::PE_FrameFocusRect, &option, &painter, this);
    }
}

void TinCalendar::resizeEvent(QResizeEvent *event)
{
    layoutCells();
    QWidget::resizeEvent(event);
}

void TinCalendar::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::FontChange)
        updateGeometry();
    QWidget::changeEvent(event);
}

void TinCalendar::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton) {
        QWidget::mousePressEvent(event);
        return;
    }
    const QPoint cell = MouseCoord(event->position().toPoint());
    if (cell.y() >= FixedRows)
        MoveCurrent(cell.x(), cell.y());
    m_pressed = true;
}

void TinCalendar::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton || !m_pressed) {
        QWidget::mouseReleaseEvent(event);
        return;
    }
    m_pressed = false;
    if (rect().contains(event->position().toPoint()))
        Click();
}

void TinCalendar::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton && OnDblClick)
        OnDblClick(this);
}

void TinCalendar::keyPressEvent(QKeyEvent *event)
{
    const bool plain = (event->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
    // Left and Right walk the days across the rows. The grid's own move would come on top of
    // the new day and skip one, so it is left out.
    if (plain && (event->key() == Qt::Key_Left || event->key() == Qt::Key_Right)) {
        if (!m_readOnly) {
            if (event->key() == Qt::Key_Left && Day() > 1)
                setDay(Day() - 1);
            else if (event->key() == Qt::Key_Right && Day() < DaysThisMonth())
                setDay(Day() + 1);
        }
        return;
    }
    const bool ctrl = event->modifiers() & Qt::ControlModifier;
    int col = m_col;
    int row = m_row;
    switch (event->key()) {
    case Qt::Key_Left: --col; break;
    case Qt::Key_Right: ++col; break;
    case Qt::Key_Up: --row; break;
    case Qt::Key_Down: ++row; break;
    case Qt::Key_PageUp: row = FixedRows; break;
    case Qt::Key_PageDown: row = RowCount - 1; break;
    case Qt::Key_Home:
        col = 0;
        if (ctrl)
            row = FixedRows;
        break;
    case Qt::Key_End:
        col = ColCount - 1;
        if (ctrl)
            row = RowCount - 1;
        break;
    default:
        QWidget::keyPressEvent(event);
        return;
    }
    FocusCell(col, row);
}

} // namespace mattoni
