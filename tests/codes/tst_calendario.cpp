// The month calendar on screen: its cells for months starting on different weekdays, weekend
// colouring, mouse and keyboard, month and year steps, ReadOnly, and its stored form.
#include "ComponentStream.h"
#include "FormatSettings.h"
#include "calendario.h"

#include <QtTest>

using namespace mattoni;

Q_DECLARE_METATYPE(mattoni::TGiorni)

namespace {

// The stored form of the calendar's own properties, without those of QWidget.
QString ownProperties(const TinCalendar &c)
{
    QStringList kept;
    for (const QString &line : ComponentToString(&c).split(QLatin1Char('\n'))) {
        const QString name = line.trimmed().section(QLatin1Char(' '), 0, 0);
        if (TinCalendar::staticMetaObject.indexOfProperty(name.toLatin1()) >= TinCalendar::staticMetaObject.propertyOffset())
            kept << line;
    }
    return kept.join(QLatin1Char('\n'));
}

struct Shown
{
    TinCalendar calendar;
    int changes = 0;

    explicit Shown(TDateTime date, TGiorni start = Lun)
    {
        calendar.setStartOfWeek(start);
        calendar.setCalendarDate(date);
        calendar.OnChange = [this](QObject *sender) {
            QCOMPARE(sender, &calendar);
            ++changes;
        };
        calendar.resize(7 * 40 + 6 + 2, 7 * 24 + 6 + 2);
        calendar.show();
        calendar.activateWindow();
        if (!QTest::qWaitForWindowActive(&calendar))
            qWarning("calendar window not active");
    }

    void click(int col, int row)
    {
        QTest::mouseClick(&calendar, Qt::LeftButton, {}, calendar.CellRect(col, row).center());
    }
    QPoint cellOf(int day) const
    {
        for (int row = 1; row < TinCalendar::RowCount; ++row)
            for (int col = 0; col < TinCalendar::ColCount; ++col)
                if (calendar.GetCellText(col, row) == QString::number(day))
                    return QPoint(col, row);
        return QPoint(-1, -1);
    }
};

TDateTime date(int y, int m, int d)
{
    return EncodeDate(y, m, d);
}

} // namespace

class tst_Calendario : public QObject
{
    Q_OBJECT
private slots:
    void init() { FormatSettings = TFormatSettings::Italian(); }

    void dateHelpers()
    {
        const int days2014[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
        for (int m = 1; m <= 12; ++m)
            QCOMPARE(DaysPerMonth(2014, m), days2014[m - 1]);
        QCOMPARE(DaysPerMonth(1900, 2), 28);
        QCOMPARE(DaysPerMonth(2000, 2), 29);

        QVERIFY(IsValidDate(1, 1, 1) && IsValidDate(9999, 12, 31) && IsValidDate(2012, 2, 29));
        QVERIFY(!IsValidDate(2013, 2, 29));
        QVERIFY(!IsValidDate(0, 1, 1));
        QVERIFY(!IsValidDate(10000, 1, 1));
        QVERIFY(!IsValidDate(2014, 13, 1));
        QVERIFY(!IsValidDate(2014, 4, 0));
        QVERIFY(ValidDate(date(2014, 3, 1) + 0.75));
        QVERIFY(!ValidDate(3000000)); // after 9999
    }

    void defaults()
    {
        TinCalendar c;
        QVERIFY(c.UseCurrentDate() && !c.ReadOnly());
        QCOMPARE(c.CalendarDate(), Date());
        QCOMPARE(c.StartOfWeek(), Lun);
        QVERIFY(c.Weekends() == TGiorniSettimana{Dom});
        QCOMPARE(c.WeekendColor(), clRed);
    }

    void cells_data()
    {
        QTest::addColumn<int>("year");
        QTest::addColumn<int>("month");
        QTest::addColumn<TGiorni>("start");
        QTest::addColumn<int>("offset");
        QTest::addColumn<QPoint>("firstCell");
        QTest::addColumn<QPoint>("lastCell");
        QTest::addColumn<QString>("header");
        // 1 March 2014 is a Saturday, 1 June 2014 a Sunday, 1 September 2014 a Monday.
        QTest::newRow("March 2014 from Monday") << 2014 << 3 << Lun << -4 << QPoint(5, 1) << QPoint(0, 6)
                                                << "lun mar mer gio ven sab dom";
        QTest::newRow("June 2014 from Monday") << 2014 << 6 << Lun << -5 << QPoint(6, 1) << QPoint(0, 6)
                                               << "lun mar mer gio ven sab dom";
        QTest::newRow("September 2014 from Monday") << 2014 << 9 << Lun << 1 << QPoint(0, 1) << QPoint(1, 5)
                                                    << "lun mar mer gio ven sab dom";
        QTest::newRow("June 2014 from Sunday") << 2014 << 6 << Dom << 1 << QPoint(0, 1) << QPoint(1, 5)
                                               << "dom lun mar mer gio ven sab";
        QTest::newRow("February 2015 from Sunday") << 2015 << 2 << Dom << 1 << QPoint(0, 1) << QPoint(6, 4)
                                                   << "dom lun mar mer gio ven sab";
    }
    void cells()
    {
        QFETCH(int, year);
        QFETCH(int, month);
        QFETCH(TGiorni, start);
        QFETCH(int, offset);
        QFETCH(QPoint, firstCell);
        QFETCH(QPoint, lastCell);
        QFETCH(QString, header);

        Shown s(date(year, month, 1), start);
        QCOMPARE(s.calendar.MonthOffset(), offset);
        QStringList names;
        for (int col = 0; col < 7; ++col)
            names << s.calendar.GetCellText(col, 0);
        QCOMPARE(names.join(QLatin1Char(' ')), header);

        // Days run on without a gap from the first cell to the last; every other cell is empty.
        const int days = DaysPerMonth(year, month);
        for (int row = 1; row < 7; ++row) {
            for (int col = 0; col < 7; ++col) {
                const int n = (row - firstCell.y()) * 7 + col - firstCell.x() + 1;
                const QString expected = n >= 1 && n <= days ? QString::number(n) : QString();
                QCOMPARE(s.calendar.GetCellText(col, row), expected);
            }
        }
        QCOMPARE(s.cellOf(days), lastCell);
        QCOMPARE(QPoint(s.calendar.Col(), s.calendar.Row()), firstCell);
        s.calendar.setDay(days);
        QCOMPARE(QPoint(s.calendar.Col(), s.calendar.Row()), lastCell);
    }

    void weekendColour()
    {
        Shown s(date(2014, 9, 13)); // a Saturday, column 5
        s.calendar.setWeekends({Sab, Dom});
        s.calendar.setWeekendColor(RGB(255, 0, 0));
        const QImage image = s.calendar.grab().toImage();
        const auto reddish = [&](int col, int row) {
            const QRect r = s.calendar.CellRect(col, row);
            for (int y = r.top(); y <= r.bottom(); ++y)
                for (int x = r.left(); x <= r.right(); ++x) {
                    const QColor c = image.pixelColor(x, y);
                    if (c.red() > 180 && c.green() < 90 && c.blue() < 90)
                        return true;
                }
            return false;
        };
        for (int col = 0; col < 7; ++col) {
            QCOMPARE(reddish(col, 0), col >= 5);
            QCOMPARE(reddish(col, 2), col == 6); // the selected 13th (column 5) is drawn highlighted
            QCOMPARE(reddish(col, 3), col >= 5);
        }
        s.calendar.setStartOfWeek(Dom);
        const QImage sundayFirst = s.calendar.grab().toImage();
        QVERIFY(sundayFirst != image);
    }

    void mouse()
    {
        Shown s(date(2014, 3, 10));
        s.click(3, 3); // Thursday 13
        QCOMPARE(s.calendar.Day(), 13);
        QCOMPARE(QPoint(s.calendar.Col(), s.calendar.Row()), QPoint(3, 3));
        QCOMPARE(s.changes, 1);
        QVERIFY(!s.calendar.UseCurrentDate());

        s.click(0, 1); // before the 1st: empty
        s.click(4, 0); // day names
        s.click(2, 6); // after the 31st: empty
        QCOMPARE(s.calendar.Day(), 13);
        QCOMPARE(s.changes, 1);

        int doubleClicks = 0;
        s.calendar.OnDblClick = [&](QObject *) { ++doubleClicks; };
        // Through the window, so that the application pairs the two clicks as a person's would be.
        QTest::mouseDClick(s.calendar.windowHandle(), Qt::LeftButton, {}, s.calendar.CellRect(6, 1).center());
        QCOMPARE(doubleClicks, 1);
        QCOMPARE(s.calendar.Day(), 2);

        s.calendar.setReadOnly(true);
        s.click(1, 4);
        QCOMPARE(s.calendar.Day(), 2);
        QCOMPARE(QPoint(s.calendar.Col(), s.calendar.Row()), QPoint(6, 1));
        // The program may still change the day.
        s.calendar.setDay(18);
        QCOMPARE(QPoint(s.calendar.Col(), s.calendar.Row()), QPoint(1, 4));
    }

    void keys_data()
    {
        QTest::addColumn<int>("day");
        QTest::addColumn<int>("key");
        QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
        QTest::addColumn<bool>("readOnly");
        QTest::addColumn<int>("expected");
        const Qt::KeyboardModifiers none;
        // March 2014 from Monday: the 1st at (5, 1), the 3rd at (0, 2), the 31st at (0, 6).
        QTest::newRow("left") << 12 << int(Qt::Key_Left) << none << false << 11;
        QTest::newRow("left wraps to the row above") << 10 << int(Qt::Key_Left) << none << false << 9;
        QTest::newRow("left on the 1st") << 1 << int(Qt::Key_Left) << none << false << 1;
        QTest::newRow("right wraps to the row below") << 16 << int(Qt::Key_Right) << none << false << 17;
        QTest::newRow("up") << 15 << int(Qt::Key_Up) << none << false << 8;
        QTest::newRow("up to an empty cell") << 3 << int(Qt::Key_Up) << none << false << 3;
        QTest::newRow("down") << 24 << int(Qt::Key_Down) << none << false << 31;
        QTest::newRow("down to an empty cell") << 25 << int(Qt::Key_Down) << none << false << 25;
        QTest::newRow("home") << 12 << int(Qt::Key_Home) << none << false << 10;
        QTest::newRow("shift left moves in the row") << 12 << int(Qt::Key_Left) << Qt::KeyboardModifiers(Qt::ShiftModifier) << false << 11;
        QTest::newRow("shift left stops at column 0") << 10 << int(Qt::Key_Left) << Qt::KeyboardModifiers(Qt::ShiftModifier) << false << 10;
        QTest::newRow("read-only left") << 12 << int(Qt::Key_Left) << none << true << 12;
        QTest::newRow("read-only up") << 15 << int(Qt::Key_Up) << none << true << 15;
    }
    void keys()
    {
        QFETCH(int, day);
        QFETCH(int, key);
        QFETCH(Qt::KeyboardModifiers, modifiers);
        QFETCH(bool, readOnly);
        QFETCH(int, expected);

        Shown s(date(2014, 3, day));
        s.calendar.setReadOnly(readOnly);
        s.calendar.setFocus();
        QTest::keyClick(&s.calendar, Qt::Key(key), modifiers);
        QCOMPARE(s.calendar.Day(), expected);
        QCOMPARE(s.calendar.Month(), 3);
        QCOMPARE(QPoint(s.calendar.Col(), s.calendar.Row()), s.cellOf(expected));
        QCOMPARE(s.changes, expected == day ? 0 : 1);
    }

    void steps_data()
    {
        QTest::addColumn<TDateTime>("from");
        QTest::addColumn<QString>("step");
        QTest::addColumn<TDateTime>("expected");
        QTest::addColumn<int>("changes");
        QTest::newRow("prev month from 31 March") << date(2014, 3, 31) << "PrevMonth" << date(2014, 2, 28) << 1;
        QTest::newRow("prev month from 31 March, leap") << date(2012, 3, 31) << "PrevMonth" << date(2012, 2, 29) << 1;
        QTest::newRow("next month from 31 January") << date(2014, 1, 31) << "NextMonth" << date(2014, 2, 28) << 1;
        QTest::newRow("next month over the year") << date(2014, 12, 31) << "NextMonth" << date(2015, 1, 31) << 1;
        QTest::newRow("next year from 29 February") << date(2012, 2, 29) << "NextYear" << date(2013, 2, 28) << 2;
        QTest::newRow("next year") << date(2014, 6, 15) << "NextYear" << date(2015, 6, 15) << 1;
        QTest::newRow("month set from 31 March") << date(2014, 3, 31) << "Month=2" << date(2014, 2, 28) << 1;
        QTest::newRow("month 13 ignored") << date(2014, 3, 31) << "Month=13" << date(2014, 3, 31) << 0;
        QTest::newRow("day 0 ignored") << date(2014, 4, 10) << "Day=0" << date(2014, 4, 10) << 0;
        QTest::newRow("day 31 of April ignored") << date(2014, 4, 10) << "Day=31" << date(2014, 4, 10) << 0;
    }
    void steps()
    {
        QFETCH(TDateTime, from);
        QFETCH(QString, step);
        QFETCH(TDateTime, expected);
        QFETCH(int, changes);

        Shown s(from);
        if (step.contains(QLatin1Char('='))) {
            const QStringList parts = step.split(QLatin1Char('='));
            s.calendar.setProperty(parts[0].toLatin1(), parts[1].toInt());
        } else {
            if (step == QLatin1String("PrevMonth"))
                s.calendar.PrevMonth();
            else if (step == QLatin1String("NextMonth"))
                s.calendar.NextMonth();
            else
                s.calendar.NextYear();
        }
        QCOMPARE(s.calendar.CalendarDate(), expected);
        QCOMPARE(s.changes, changes);
        QCOMPARE(QPoint(s.calendar.Col(), s.calendar.Row()), s.cellOf(s.calendar.Day()));
    }

    void currentDate()
    {
        TinCalendar c;
        int changes = 0;
        c.OnChange = [&](QObject *) { ++changes; };
        c.setDay(c.Day() == 1 ? 2 : 1);
        QVERIFY(!c.UseCurrentDate());
        QCOMPARE(changes, 1);
        c.setUseCurrentDate(true);
        QCOMPARE(c.CalendarDate(), Date());
        QCOMPARE(changes, 1);
        // A date set whole leaves the flag alone.
        c.setCalendarDate(date(2014, 3, 1));
        QVERIFY(c.UseCurrentDate());
        QCOMPARE(changes, 2);
    }

    void storedForm()
    {
        TinCalendar fixed;
        fixed.setCalendarDate(date(2014, 6, 1));
        fixed.setUseCurrentDate(false);
        fixed.setStartOfWeek(Dom);
        fixed.setWeekends({Sab, Dom});
        const QString text = ownProperties(fixed);
        QVERIFY2(text.contains(QLatin1String("StartOfWeek = Dom")) && !text.contains(QLatin1String("Day =")),
                 qPrintable(text));

        TinCalendar read;
        StringToComponent(text, &read);
        QCOMPARE(read.CalendarDate(), date(2014, 6, 1));
        QVERIFY(!read.UseCurrentDate());
        QCOMPARE(read.StartOfWeek(), Dom);
        QVERIFY(read.Weekends() == (TGiorniSettimana{Sab, Dom}));
        QCOMPARE(QPoint(read.Col(), read.Row()), QPoint(0, 1));

        // A calendar on the current date comes back on today, not on the day it was saved.
        TinCalendar today;
        QString saved = ownProperties(today);
        saved.replace(QString::number(today.CalendarDate(), 'g', 17), QStringLiteral("41699"));
        TinCalendar again;
        StringToComponent(saved, &again);
        QCOMPARE(again.CalendarDate(), Date());
    }
};

QTEST_MAIN(tst_Calendario)
#include "tst_calendario.moc"
