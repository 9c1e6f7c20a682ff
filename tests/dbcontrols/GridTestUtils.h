// What the grid tests share: clicks on title and data cells at their places on screen, the
// dataset's rows read back, and a modal message box answered as a person would.
#pragma once

#include "DBGrid.h"
#include "DataSet.h"
#include "Fields.h"

#include <QAbstractButton>
#include <QApplication>
#include <QHeaderView>
#include <QMessageBox>
#include <QTimer>
#include <QtTest>

#include <functional>

namespace gridtest {

using namespace mattoni;

// The widget showing a point of the grid: Scrolling (the titles' or the cells' viewport) unless the
// point lies elsewhere, as the fixed columns do.
inline QWidget *WidgetAt(TCustomDBGrid &grid, QWidget *scrolling, const QPoint &at)
{
    if (QRect(scrolling->mapTo(&grid, QPoint(0, 0)), scrolling->size()).contains(at))
        return scrolling;
    return grid.childAt(at);
}

// A title cell of the grid, by the column's index, clicked where it shows.
inline void ClickTitle(TCustomDBGrid &grid, int column, Qt::KeyboardModifiers modifiers = {},
                       Qt::MouseButton button = Qt::LeftButton)
{
    const QRect cell = grid.CellRect(grid.IndicatorOffset() + column, 0);
    QVERIFY2(cell.isValid(), "title not in view");
    QWidget *header = WidgetAt(grid, grid.horizontalHeader()->viewport(), cell.center());
    QTest::mouseClick(header, button, modifiers, header->mapFrom(&grid, cell.center()));
}

// A data cell by the row (0 for the dataset's first record) and the column's index.
inline void ClickCell(TCustomDBGrid &grid, int row, int column, Qt::KeyboardModifiers modifiers = {})
{
    const QRect cell = grid.CellRect(grid.IndicatorOffset() + column, grid.TitleOffset() + row);
    QVERIFY2(cell.isValid(), "cell not in view");
    QWidget *view = WidgetAt(grid, grid.viewport(), cell.center());
    QTest::mouseClick(view, Qt::LeftButton, modifiers, view->mapFrom(&grid, cell.center()));
}

// One field over the dataset in its current order, joined by ",".
inline QString Rows(TDataSet &ds, const QString &field)
{
    QStringList values;
    for (int row = 0; row < ds.RowCount(); ++row) {
        TRecordScope scope(&ds, row);
        values.append(ds.FieldByName(field)->AsString());
    }
    return values.join(QLatin1Char(','));
}

// Runs Action, which opens a modal message box at once or from the event loop soon after; presses
// the box's OK button and returns the box's text (empty when no box came).
inline QString AnswerMessageBox(const std::function<void()> &action)
{
    QString seen;
    QTimer poll;
    poll.setInterval(5);
    QObject::connect(&poll, &QTimer::timeout, [&] {
        auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
        if (!box || !box->isVisible())
            return;
        seen = box->text();
        QTest::mouseClick(box->button(QMessageBox::Ok), Qt::LeftButton);
    });
    poll.start();
    action();
    if (seen.isEmpty())
        (void)QTest::qWaitFor([&] { return !seen.isEmpty(); }, 2000);
    poll.stop();
    return seen;
}

} // namespace gridtest
