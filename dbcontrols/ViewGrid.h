// TClientDBGrid: an extended grid for client datasets whose rows come from an SQL command. It
// sorts on the server: holding Ctrl, the user clicks titles (left button ascending, right button
// descending) to collect an ordering, shown in the highlight colours; when Ctrl is released the
// grid rewrites the command's " order by " clause and reopens the dataset.
#pragma once

#include "DBGridExt.h"
#include "Screen.h"
#include "mattoni_widgets_export.h"

#include <QList>
#include <QStringList>

namespace mattoni {

using TColumnClickEvent =
    std::function<void(QObject *Sender, int Index, Qt::MouseButton Button, Qt::KeyboardModifiers Shift)>;

// The screen cursor shown while Ctrl is held over the titles.
inline constexpr TCursor crSortCursor = 5;

class MATTONI_WIDGETS_EXPORT TClientDBGrid : public TDBGridExt
{
    Q_OBJECT
    Q_PROPERTY(bool EnableSort READ EnableSort WRITE setEnableSort)
    Q_PROPERTY(bool KeepColors READ KeepColors WRITE setKeepColors)

public:
    explicit TClientDBGrid(QWidget *owner = nullptr);

    // Sorting on the server by Ctrl-clicks; it excludes TitleSort, and TitleSort excludes it.
    bool EnableSort() const { return m_enableSort; }
    void setEnableSort(bool value);
    void setTitleSort(bool value) override;
    // The chosen columns keep the highlight colours after the ordering is applied, showing
    // what the rows are ordered by.
    bool KeepColors() const { return m_keepColors; }
    void setKeepColors(bool value) { m_keepColors = value; }

    // What a grid read from a stored form does once loaded; a grid made in code does it when its
    // dataset first opens. A client dataset without CommandText switches EnableSort off.
    void Loaded();
    // Reads the command text: FullSQL is all of it, SQLBase what comes before "order by" (or,
    // failing that, "ORDER BY").
    void GetSQLBase();
    QString FullSQL() const { return m_fullSql; }
    QString SQLBase() const { return m_sqlBase; }
    // The clause of the collected ordering, in upper case: "NOME ASC,DATA DESC".
    QString OrderText() const;
    int OrderCount() const { return m_orderCount; }
    // Gives every column back its saved colour and font colour.
    void ResetColumnColor();
    // Sizes the saved colours to the columns and stores their colours.
    void DimColumns();

    TColumnClickEvent OnColumnClick;

protected:
    void KeyDown(int &Key, Qt::KeyboardModifiers Shift) override;
    void KeyUp(int &Key, Qt::KeyboardModifiers Shift) override;
    void MouseDown(Qt::MouseButton Button, Qt::KeyboardModifiers Shift, int X, int Y) override;
    void MouseMove(Qt::KeyboardModifiers Shift, int X, int Y) override;
    void MouseUp(Qt::MouseButton Button, Qt::KeyboardModifiers Shift, int X, int Y) override;
    void LinkActive(bool Value) override;
    bool TitleButtons() const override { return TitleSort() || m_enableSort; }

private:
    void Collect(int columnNumber);
    void ApplyOrdering();

    bool m_enableSort = true;
    bool m_keepColors = false;
    bool m_loaded = false;
    int m_pressedCol = -1;
    Qt::MouseButton m_pressButton = Qt::NoButton;
    Qt::KeyboardModifiers m_pressShift;
    QStringList m_orderFields;
    QStringList m_orderDirections;
    int m_orderCount = 0;
    QString m_orderText;
    QString m_sqlBase;
    QString m_fullSql;
    QList<TColor> m_savedColors;
    QList<TColor> m_savedFontColors;
    bool m_ctrlHeld = false;
    bool m_orderPending = false;
};

} // namespace mattoni
