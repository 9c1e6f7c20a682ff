// The client grid: ordering on the server.
#include "ViewGrid.h"

#include "ClientDataSet.h"
#include "Exceptions.h"
#include "Strings.h"

#include <QCoreApplication>
#include <QHeaderView>
#include <QImage>

namespace mattoni {

namespace {

// The sort cursor of the library's resources; its hot spot travels in the picture.
QCursor LoadSortCursor()
{
    const QImage image(QStringLiteral(":/cursors/CRSORT"));
    return QCursor(QPixmap::fromImage(image), image.text(QStringLiteral("HotSpotX")).toInt(),
                   image.text(QStringLiteral("HotSpotY")).toInt());
}

// Lets the screen catch up (the wait cursor, the repainted rows) without taking in new input
// in the middle of a key or mouse handler.
void ProcessMessages()
{
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}

} // namespace

TClientDBGrid::TClientDBGrid(QWidget *owner) : TDBGridExt(owner)
{
    Screen()->setCursors(crSortCursor, LoadSortCursor());
}

void TClientDBGrid::setEnableSort(bool value)
{
    if (value == m_enableSort)
        return;
    m_enableSort = value;
    if (value && TitleSort())
        TDBGridExt::setTitleSort(false);
    InvalidateTitles();
    InvalidateGrid();
}

void TClientDBGrid::setTitleSort(bool value)
{
    if (value && m_enableSort)
        m_enableSort = false;
    TDBGridExt::setTitleSort(value);
}

void TClientDBGrid::Loaded()
{
    m_loaded = true;
    // Rows that do not come from an SQL command cannot be ordered by one.
    if (auto *ds = qobject_cast<TCustomClientDataSet *>(DataLink()->DataSet()); ds && ds->CommandText().isEmpty())
        setEnableSort(false);
    DimColumns();
    GetSQLBase();
}

void TClientDBGrid::LinkActive(bool Value)
{
    TDBGridExt::LinkActive(Value);
    if (Value && !m_loaded)
        Loaded();
}

void TClientDBGrid::GetSQLBase()
{
    const auto *ds = qobject_cast<TCustomClientDataSet *>(DataLink()->DataSet());
    m_fullSql = ds ? ds->CommandText() : QString();
    // Only these two spellings: a clause written "Order By" stays, and a second one follows it.
    qsizetype at = m_fullSql.indexOf(QLatin1String("order by"));
    if (at < 0)
        at = m_fullSql.indexOf(QLatin1String("ORDER BY"));
    m_sqlBase = at >= 0 ? m_fullSql.left(at) : m_fullSql;
}

void TClientDBGrid::DimColumns()
{
    m_savedColors.clear();
    m_savedFontColors.clear();
    for (const TColumn *column : Columns()) {
        m_savedColors.append(column->Color());
        m_savedFontColors.append(column->Font().Color());
    }
}

void TClientDBGrid::ResetColumnColor()
{
    for (int i = 0; i < Columns().Count() && i < m_savedColors.size(); ++i) {
        TColumn *column = Columns()[i];
        column->setColor(m_savedColors.at(i));
        TFont font = column->Font();
        font.setColor(m_savedFontColors.at(i));
        column->setFont(font);
    }
}

QString TClientDBGrid::OrderText() const
{
    TDataSet *ds = DataLink()->DataSet();
    QString text;
    if (qobject_cast<TCustomClientDataSet *>(ds)) {
        QStringList items;
        for (int i = 0; i < m_orderFields.size(); ++i) {
            if (const TField *field = ds->FindField(m_orderFields.at(i)))
                items.append(field->FieldName() + m_orderDirections.at(i));
        }
        text = items.join(QLatin1Char(','));
    } else {
        text = m_orderFields.join(QLatin1Char(';'));
    }
    return UpperCase(text);
}

// ---------------------------------------------------------------------------------------------
// Collecting the ordering

void TClientDBGrid::KeyDown(int &Key, Qt::KeyboardModifiers Shift)
{
    if ((Shift & ~Qt::KeypadModifier) == Qt::ControlModifier && m_enableSort)
        m_ctrlHeld = true;
    ProcessMessages();
    TDBGridExt::KeyDown(Key, Shift);
}

void TClientDBGrid::MouseDown(Qt::MouseButton Button, Qt::KeyboardModifiers Shift, int X, int Y)
{
    TDBGridExt::MouseDown(Button, Shift, X, Y);
    const TGridCoord cell = MouseCoord(X, Y);
    m_pressedCol = cell.X >= 0 && cell.Y == 0 && Options().testFlag(dgTitles) ? cell.X : -1;
    m_pressButton = Button;
    m_pressShift = Shift;
}

void TClientDBGrid::MouseMove(Qt::KeyboardModifiers Shift, int X, int Y)
{
    TDBGridExt::MouseMove(Shift, X, Y);
    if (!m_enableSort)
        return;
    const QRect titles = horizontalHeader()->isVisible() ? horizontalHeader()->geometry() : QRect();
    const bool overTitles = Y >= titles.top() && Y <= titles.bottom();
    const TCursor wanted = overTitles && m_ctrlHeld ? crSortCursor : crDefault;
    if (ControlCursor(this) != wanted)
        SetControlCursor(this, wanted);
}

void TClientDBGrid::MouseUp(Qt::MouseButton Button, Qt::KeyboardModifiers Shift, int X, int Y)
{
    TDBGridExt::MouseUp(Button, Shift, X, Y);
    const TGridCoord cell = MouseCoord(X, Y);
    const int pressed = std::exchange(m_pressedCol, -1);
    if (pressed < 0 || cell.Y != 0 || cell.X != pressed)
        return;
    int number = pressed;
    if (Options().testFlag(dgIndicator)) {
        if (number == 0) {
            SelectAll();
            return;
        }
    } else {
        // The first data column is number 1 with or without the indicator.
        ++number;
    }
    if (OnColumnClick)
        OnColumnClick(this, number, m_pressButton, m_pressShift);
    const bool ctrlOnly = (m_pressShift & ~Qt::KeypadModifier) == Qt::ControlModifier;
    if (m_enableSort && ctrlOnly && (m_pressButton == Qt::LeftButton || m_pressButton == Qt::RightButton) && number >= 1)
        Collect(number);
}

void TClientDBGrid::Collect(int columnNumber)
{
    TColumn *column = Columns()[columnNumber - 1];
    if (!column)
        return;
    if (!m_orderPending) {
        m_orderFields.clear();
        m_orderDirections.clear();
        // Columns still showing the last ordering (KeepColors) start again from their colours.
        if (m_keepColors)
            ResetColumnColor();
        if (m_savedColors.isEmpty())
            DimColumns();
    }
    QString direction;
    if (qobject_cast<TCustomClientDataSet *>(DataLink()->DataSet()))
        direction = m_pressButton == Qt::LeftButton ? QStringLiteral(" ASC") : QStringLiteral(" DESC");
    const int index = columnNumber - 1;
    if (m_savedColors.size() <= index) {
        m_savedColors.resize(index + 1, clWindow);
        m_savedFontColors.resize(index + 1, clWindowText);
    }
    const qsizetype at = m_orderFields.indexOf(column->FieldName());
    if (at < 0) {
        m_orderFields.append(column->FieldName());
        m_orderDirections.append(direction);
        m_savedColors[index] = column->Color();
        m_savedFontColors[index] = column->Font().Color();
        column->setColor(clHighlight);
        TFont font = column->Font();
        font.setColor(clHighlightText);
        column->setFont(font);
        ++m_orderCount;
    } else {
        // A second Ctrl-click takes the column out; it does not turn its direction.
        m_orderFields.removeAt(at);
        m_orderDirections.removeAt(at);
        column->setColor(m_savedColors.at(index));
        TFont font = column->Font();
        font.setColor(m_savedFontColors.at(index));
        column->setFont(font);
        --m_orderCount;
    }
    m_orderPending = true;
}

// ---------------------------------------------------------------------------------------------
// Applying it

void TClientDBGrid::KeyUp(int &Key, Qt::KeyboardModifiers Shift)
{
    TDBGridExt::KeyUp(Key, Shift);
    try {
        ApplyOrdering();
    } catch (...) {
        m_ctrlHeld = false;
        m_orderPending = false;
        throw;
    }
    m_ctrlHeld = false;
    m_orderPending = false;
}

void TClientDBGrid::ApplyOrdering()
{
    TDataSet *ds = DataLink()->DataSet();
    if (!m_orderPending || m_orderCount < 1 || !m_enableSort || !ds)
        return;
    auto *clientDataSet = qobject_cast<TCustomClientDataSet *>(ds);
    // Whatever happens, the full text is the base afterwards: the next ordering starts from it.
    auto finish = [this] {
        m_fullSql = m_sqlBase;
        m_ctrlHeld = false;
        m_orderPending = false;
    };
    bool disabled = false;
    try {
        GetSQLBase();
        ProcessMessages();
        SetControlCursor(this, crSQLWait);
        m_orderText = OrderText();
        ds->DisableControls();
        disabled = true;
        if (clientDataSet) {
            clientDataSet->Close();
            clientDataSet->setCommandText(m_sqlBase + QStringLiteral(" order by ") + m_orderText);
            clientDataSet->Open();
        }
        if (!m_keepColors)
            ResetColumnColor();
        m_orderCount = 0;
        m_orderPending = false;
        disabled = false;
        ds->EnableControls();
        InvalidateGrid();
        ProcessMessages();
        SetControlCursor(this, crDefault);
    } catch (...) {
        if (auto *client = qobject_cast<TClientDataSet *>(ds)) {
            client->setCommandText(m_fullSql);
            try {
                client->Open();
            } catch (const Exception &) {
                // The old command failing too leaves the dataset closed; the error below says why.
            }
        }
        SetControlCursor(this, crDefault);
        ResetColumnColor();
        m_orderCount = 0;
        if (disabled)
            ds->EnableControls();
        InvalidateGrid();
        ProcessMessages();
        finish();
        throw EDatabaseError(QStringLiteral("Non è possibile eseguire l'ordinamento richiesto"));
    }
    finish();
}

} // namespace mattoni
