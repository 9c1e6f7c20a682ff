// A month calendar drawn as a 7 x 7 grid (a header row of day names over six weeks), with the
// date helpers the library's date controls share.
#pragma once

#include "Color.h"
#include "DateHelpers.h"
#include "DateTime.h"
#include "Graphics.h"
#include "mattoni_widgets_export.h"

#include <QDataStream>
#include <QWidget>

#include <functional>
#include <initializer_list>

namespace mattoni {

// Days in a month of the Gregorian calendar, February 29 in leap years.
MATTONI_WIDGETS_EXPORT int DaysPerMonth(int Year, int Month);
// 1 <= Year <= 9999, 1 <= Month <= 12 and 1 <= Day <= DaysPerMonth(Year, Month).
MATTONI_WIDGETS_EXPORT bool IsValidDate(int Year, int Month, int Day);
MATTONI_WIDGETS_EXPORT bool ValidDate(TDateTime Date);

class MATTONI_WIDGETS_EXPORT CalendarTypes
{
    Q_GADGET
public:
    // Sunday first, as the weekday numbering of dates (DayOfWeek) minus one.
    enum TGiorni { Dom, Lun, Mar, Mer, Gio, Ven, Sab };
    Q_ENUM(TGiorni)
    // Date orders, for the library's date edit.
    enum TFormatoData { doMDY, doDMY, doYMD };
    Q_ENUM(TFormatoData)
};
using TGiorni = CalendarTypes::TGiorni;
using enum CalendarTypes::TGiorni;
using TFormatoData = CalendarTypes::TFormatoData;
using enum CalendarTypes::TFormatoData;

// A set of weekdays.
class TGiorniSettimana
{
public:
    constexpr TGiorniSettimana() = default;
    constexpr TGiorniSettimana(std::initializer_list<TGiorni> days)
    {
        for (TGiorni d : days)
            m_bits |= bit(d);
    }
    static constexpr TGiorniSettimana fromInt(quint8 bits)
    {
        TGiorniSettimana s;
        s.m_bits = bits & 0x7F;
        return s;
    }
    constexpr bool contains(TGiorni d) const { return (m_bits & bit(d)) != 0; }
    constexpr quint8 toInt() const { return m_bits; }
    friend constexpr bool operator==(TGiorniSettimana, TGiorniSettimana) = default;

private:
    static constexpr quint8 bit(TGiorni d) { return quint8(1u << unsigned(d)); }
    quint8 m_bits = 0;
};

inline QDataStream &operator<<(QDataStream &out, TGiorniSettimana days)
{
    return out << days.toInt();
}
inline QDataStream &operator>>(QDataStream &in, TGiorniSettimana &days)
{
    quint8 bits = 0;
    in >> bits;
    days = TGiorniSettimana::fromInt(bits);
    return in;
}

// The month of CalendarDate as a grid: row 0 holds the short day names (FormatSettings) from
// StartOfWeek on, rows 1 to 6 the days. The selected cell is the current day. Days come from
// the mouse and the arrow keys; ReadOnly keeps the user from choosing another day.
class MATTONI_WIDGETS_EXPORT TinCalendar : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(mattoni::ControlTypes::TBorderStyle BorderStyle READ BorderStyle WRITE setBorderStyle)
    // Always stored: UseCurrentDate, stored after it, brings a calendar that follows the current
    // date back to today when the form is read.
    Q_PROPERTY(double CalendarDate READ CalendarDate WRITE setCalendarDate NOTIFY CalendarDateChanged)
    Q_PROPERTY(int Day READ Day WRITE setDay NOTIFY CalendarDateChanged STORED false)
    Q_PROPERTY(int Month READ Month WRITE setMonth NOTIFY CalendarDateChanged STORED false)
    Q_PROPERTY(int Year READ Year WRITE setYear NOTIFY CalendarDateChanged STORED false)
    Q_PROPERTY(bool ReadOnly READ ReadOnly WRITE setReadOnly)
    Q_PROPERTY(mattoni::CalendarTypes::TGiorni StartOfWeek READ StartOfWeek WRITE setStartOfWeek)
    Q_PROPERTY(bool UseCurrentDate READ UseCurrentDate WRITE setUseCurrentDate)
    Q_PROPERTY(quint32 WeekendColor READ WeekendColor WRITE setWeekendColor)
    Q_PROPERTY(mattoni::TGiorniSettimana Weekends READ Weekends WRITE setWeekends)

public:
    static constexpr int ColCount = 7;
    static constexpr int RowCount = 7;
    static constexpr int FixedRows = 1;

    explicit TinCalendar(QWidget *parent = nullptr);
    ~TinCalendar() override;

    TBorderStyle BorderStyle() const { return m_borderStyle; }
    void setBorderStyle(TBorderStyle value);
    TDateTime CalendarDate() const { return m_date; }
    void setCalendarDate(TDateTime value);
    int Day() const { return GetDay(m_date); }
    void setDay(int value) { SetDateElement(3, value); }
    int Month() const { return GetMonth(m_date); }
    void setMonth(int value) { SetDateElement(2, value); }
    int Year() const { return GetYear(m_date); }
    void setYear(int value) { SetDateElement(1, value); }
    bool ReadOnly() const { return m_readOnly; }
    void setReadOnly(bool value) { m_readOnly = value; }
    TGiorni StartOfWeek() const { return m_startOfWeek; }
    void setStartOfWeek(TGiorni value);
    bool UseCurrentDate() const { return m_useCurrentDate; }
    // True moves the calendar to today even when it was already true.
    void setUseCurrentDate(bool value);
    TColor WeekendColor() const { return m_weekendColor; }
    void setWeekendColor(TColor value);
    TGiorniSettimana Weekends() const { return m_weekends; }
    void setWeekends(TGiorniSettimana value);

    void NextMonth() { ChangeMonth(1); }
    void PrevMonth() { ChangeMonth(-1); }
    // On 29 February the day becomes 28 before the year moves.
    void NextYear();
    void PrevYear();
    void UpdateCalendar() { CalendarUpdate(false); }
    int DaysThisMonth() const;
    bool IsWeekend(int Col, int Row) const;
    // A short day name in row 0; in the other rows the day number, or "" outside the month.
    QString GetCellText(int Col, int Row) const;

    // The current (selected) cell.
    int Col() const { return m_col; }
    int Row() const { return m_row; }
    // Grid position of day 0: day N sits at column (N - offset) mod 7 of row (N - offset) div 7 + 1.
    int MonthOffset() const { return m_monthOffset; }
    int GridLineWidth() const { return 1; }
    int DefaultColWidth() const { return m_colWidth; }
    int DefaultRowHeight() const { return m_rowHeight; }
    // In widget coordinates.
    QRect CellRect(int Col, int Row) const;
    // The cell under a point, or (-1, -1).
    QPoint MouseCoord(const QPoint &pos) const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

    std::function<void(QObject *Sender)> OnChange;
    std::function<void(QObject *Sender)> OnDblClick;

signals:
    void CalendarDateChanged();

protected:
    // Whether the cell may become the current one.
    virtual bool SelectCell(int Col, int Row);
    // Sets the day to the current cell's number.
    virtual void Click();
    virtual void Change();
    virtual void DrawCell(QPainter &painter, int Col, int Row, const QRect &rect, bool selected);

    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    // 1 = year, 2 = month, 3 = day.
    void SetDateElement(int Index, int Value);
    void ChangeMonth(int Delta);
    void CalendarUpdate(bool DayOnly);
    void storeDate(TDateTime value);
    // Makes a cell current when SelectCell allows it; answers whether it did.
    bool MoveCurrent(int Col, int Row);
    // A move by keyboard: the cell becomes current, then Click follows it.
    void FocusCell(int Col, int Row);
    void layoutCells();
    QRect gridRect() const;

    TDateTime m_date = 0;
    int m_monthOffset = 0;
    bool m_readOnly = false;
    bool m_updating = false;
    bool m_useCurrentDate = true;
    TGiorni m_startOfWeek = Lun;
    TGiorniSettimana m_weekends{Dom};
    TColor m_weekendColor = clRed;
    TBorderStyle m_borderStyle = bsSingle;
    int m_col = 0;
    int m_row = 1;
    int m_colWidth = 0;
    int m_rowHeight = 0;
    bool m_pressed = false;
};

} // namespace mattoni

Q_DECLARE_METATYPE(mattoni::TGiorniSettimana)
