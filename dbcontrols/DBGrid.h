// TCustomDBGrid: a table of a dataset's records, one row per record and one column per
// TColumn, over Qt's QTableView. The grid follows the dataset's cursor and moves it, edits the
// current record in place, shows the current record and the dataset's state in an indicator
// column, and keeps a list of selected records as bookmarks.
//
// Like the data-aware grids its users know, it answers in grid cells: column 0 is the indicator
// (with dgIndicator), row 0 the titles (with dgTitles), and coordinates are those of the grid
// widget, titles and indicator included. Mouse and key events arrive at the virtual MouseDown,
// MouseUp, MouseMove, KeyDown, KeyPress and KeyUp, wherever they land (titles, indicator, cells
// or the in-place editor), so that descendants change behaviour in one place.
#pragma once

#include "Color.h"
#include "DataSource.h"
#include "mattoni_widgets_export.h"

#include <QAction>
#include <QFont>
#include <QList>
#include <QPointer>
#include <QSet>
#include <QTableView>

class QMimeData;

#include <functional>
#include <memory>

class QPainter;

namespace mattoni {

class TCustomDBGrid;
class TDBGridColumns;

class MATTONI_WIDGETS_EXPORT DBGridTypes
{
    Q_GADGET
public:
    enum TDBGridOption {
        dgEditing = 0x1,
        dgAlwaysShowEditor = 0x2,
        dgTitles = 0x4,
        dgIndicator = 0x8,
        dgColumnResize = 0x10,
        dgColLines = 0x20,
        dgRowLines = 0x40,
        dgTabs = 0x80,
        dgRowSelect = 0x100,
        dgAlwaysShowSelection = 0x200,
        dgConfirmDelete = 0x400,
        dgCancelOnExit = 0x800,
        dgMultiSelect = 0x1000,
    };
    Q_DECLARE_FLAGS(TDBGridOptions, TDBGridOption)
    Q_FLAG(TDBGridOptions)

    enum TGridDrawStateFlag { gdSelected = 0x1, gdFocused = 0x2, gdFixed = 0x4 };
    Q_DECLARE_FLAGS(TGridDrawState, TGridDrawStateFlag)
    Q_FLAG(TGridDrawState)

    enum TDBGridColumnsState { csDefault, csCustomized };
    Q_ENUM(TDBGridColumnsState)

    // The button of a column's in-place editor: cbsAuto a drop-down list where the column
    // offers values, cbsEllipsis a "..." button that fires OnEditButtonClick, cbsNone none.
    enum TColumnButtonStyle { cbsAuto, cbsEllipsis, cbsNone };
    Q_ENUM(TColumnButtonStyle)

    // dmAutomatic: dragging a data cell with the left button drags its record; dmManual: drags
    // start only through BeginDrag.
    enum TDragMode { dmManual, dmAutomatic };
    Q_ENUM(TDragMode)
    // Why OnDragOver is called: a drag came in, moves over the grid, or went away.
    enum TDragState { dsDragEnter, dsDragLeave, dsDragMove };
    Q_ENUM(TDragState)
};
using TDBGridOption = DBGridTypes::TDBGridOption;
using TDBGridOptions = DBGridTypes::TDBGridOptions;
using enum DBGridTypes::TDBGridOption;
using TGridDrawState = DBGridTypes::TGridDrawState;
using enum DBGridTypes::TGridDrawStateFlag;
using TDBGridColumnsState = DBGridTypes::TDBGridColumnsState;
using enum DBGridTypes::TDBGridColumnsState;
using TColumnButtonStyle = DBGridTypes::TColumnButtonStyle;
using enum DBGridTypes::TColumnButtonStyle;
using TDragMode = DBGridTypes::TDragMode;
using enum DBGridTypes::TDragMode;
using TDragState = DBGridTypes::TDragState;
using enum DBGridTypes::TDragState;

// What a new grid has: editing, titles, indicator, resizable columns, lines, Tab between
// columns, a question before Ctrl+Delete deletes, and an untouched new record dropped when the
// focus leaves.
inline constexpr TDBGridOptions DefaultDBGridOptions = TDBGridOptions(dgEditing) | dgTitles | dgIndicator |
                                                      dgColumnResize | dgColLines | dgRowLines | dgTabs |
                                                      dgConfirmDelete | dgCancelOnExit;

// A font with its colour, as cell colouring handlers receive it.
class MATTONI_WIDGETS_EXPORT TFont : public QFont
{
public:
    TFont() = default;
    explicit TFont(const QFont &font, TColor color = clWindowText) : QFont(font), m_color(color) {}
    TColor Color() const { return m_color; }
    void setColor(TColor color) { m_color = color; }

private:
    TColor m_color = clWindowText;
};

// A cell of the grid: X the column (the indicator is 0 with dgIndicator), Y the row (the titles
// are 0 with dgTitles; data rows count from the dataset's first record). -1 outside any cell.
struct TGridCoord
{
    int X = -1;
    int Y = -1;
    friend bool operator==(const TGridCoord &, const TGridCoord &) = default;
};

class TColumn;

class MATTONI_WIDGETS_EXPORT TColumnTitle
{
public:
    explicit TColumnTitle(TColumn *column) : m_column(column) {}

    // The caption set, else the field's display label, else the field name.
    QString Caption() const;
    void setCaption(const QString &value);
    Qt::Alignment Alignment() const { return m_alignment; }
    void setAlignment(Qt::Alignment value);
    // clDefault: the grid's FixedColor.
    TColor Color() const { return m_color; }
    void setColor(TColor value);
    TColumn *Column() const { return m_column; }

private:
    TColumn *m_column;
    QString m_caption;
    Qt::Alignment m_alignment = Qt::AlignLeft;
    TColor m_color = clDefault;
};

// One column of the grid: which field it shows and how.
class MATTONI_WIDGETS_EXPORT TColumn : public QObject
{
    Q_OBJECT
    Q_PROPERTY(Qt::Alignment Alignment READ Alignment WRITE setAlignment)
    Q_PROPERTY(mattoni::DBGridTypes::TColumnButtonStyle ButtonStyle READ ButtonStyle WRITE setButtonStyle)
    Q_PROPERTY(mattoni::TColor Color READ Color WRITE setColor)
    Q_PROPERTY(QString FieldName READ FieldName WRITE setFieldName)
    Q_PROPERTY(bool ReadOnly READ ReadOnly WRITE setReadOnly)
    Q_PROPERTY(bool Visible READ Visible WRITE setVisible)
    Q_PROPERTY(int Width READ Width WRITE setWidth)

public:
    explicit TColumn(TDBGridColumns *collection);
    ~TColumn() override;

    TDBGridColumns *Collection() const { return m_collection; }
    TCustomDBGrid *Grid() const;
    // Position among the grid's columns.
    int Index() const;
    void setIndex(int value);

    QString FieldName() const { return m_fieldName; }
    void setFieldName(const QString &value);
    // The field of that name in the grid's open dataset; nullptr when there is none.
    TField *Field() const;
    void setField(TField *value);

    // The alignment set, else the field's.
    Qt::Alignment Alignment() const;
    void setAlignment(Qt::Alignment value);
    TColumnButtonStyle ButtonStyle() const { return m_buttonStyle; }
    void setButtonStyle(TColumnButtonStyle value);
    // The cells' background (clWindow unless set).
    TColor Color() const { return m_color; }
    void setColor(TColor value);
    // The cells' font and text colour (clWindowText unless set).
    const TFont &Font() const { return m_font; }
    void setFont(const TFont &value);
    bool ReadOnly() const { return m_readOnly; }
    void setReadOnly(bool value);
    bool Visible() const { return m_visible; }
    void setVisible(bool value);
    // In pixels: the width set (by code or by the user dragging the title's edge), else
    // DefaultWidth.
    int Width() const { return m_width > 0 ? m_width : DefaultWidth(); }
    void setWidth(int value);
    // Wide enough for the field's DisplayWidth in digits and for the title.
    int DefaultWidth() const;
    TColumnTitle *Title() { return &m_title; }
    const TColumnTitle *Title() const { return &m_title; }

protected:
    // Tells the grid that the column's look changed (Layout: its size or place too).
    void Changed(bool layout = false);

private:
    friend class TDBGridColumns;
    friend class TColumnTitle;
    friend class TCustomDBGrid;

    TDBGridColumns *m_collection;
    QString m_fieldName;
    mutable QPointer<TField> m_field;
    Qt::Alignment m_alignment;
    bool m_alignmentSet = false;
    TColumnButtonStyle m_buttonStyle = cbsAuto;
    TColor m_color = clWindow;
    TFont m_font;
    bool m_readOnly = false;
    bool m_visible = true;
    int m_width = 0;
    TColumnTitle m_title;
};

// The grid's columns. Until a column is added in code they are the default columns, one per
// visible field, made again whenever the dataset's fields change; added columns stay.
class MATTONI_WIDGETS_EXPORT TDBGridColumns
{
public:
    explicit TDBGridColumns(TCustomDBGrid *grid) : m_grid(grid) {}
    ~TDBGridColumns();
    TDBGridColumns(const TDBGridColumns &) = delete;
    TDBGridColumns &operator=(const TDBGridColumns &) = delete;

    TCustomDBGrid *Grid() const { return m_grid; }
    int Count() const { return int(m_items.size()); }
    TColumn *Items(int index) const { return m_items.value(index); }
    TColumn *operator[](int index) const { return m_items.value(index); }
    // A new column at the end; from then on the columns are the customized ones.
    TColumn *Add();
    void Clear();
    TDBGridColumnsState State() const { return m_state; }
    // Back to csDefault makes the default columns again.
    void setState(TDBGridColumnsState value);
    // The default columns for the dataset's visible fields; a column already showing a field of
    // the same name stays, with its width.
    void RebuildColumns();

    QList<TColumn *>::const_iterator begin() const { return m_items.cbegin(); }
    QList<TColumn *>::const_iterator end() const { return m_items.cend(); }

private:
    friend class TColumn;
    friend class TCustomDBGrid;
    TColumn *AddColumn();
    void Move(int from, int to);

    TCustomDBGrid *m_grid;
    QList<TColumn *> m_items;
    TDBGridColumnsState m_state = csDefault;
    bool m_clearing = false;
};

// The selected records of a multi-select grid, as bookmarks kept in the dataset's order.
class MATTONI_WIDGETS_EXPORT TBookmarkList
{
public:
    explicit TBookmarkList(TCustomDBGrid *grid) : m_grid(grid) {}

    int Count() const { return int(m_list.size()); }
    TBookmark Items(int index) const { return m_list.value(index); }
    TBookmark operator[](int index) const { return m_list.value(index); }
    bool CurrentRowSelected() const;
    void setCurrentRowSelected(bool value);
    bool Contains(const TBookmark &item) const { return m_set.contains(item); }
    int IndexOf(const TBookmark &item) const;
    void Clear();
    // Drops the bookmarks of records that are gone; true when there were some.
    bool Refresh();
    // Selects exactly these records (given in the dataset's order).
    void Assign(const QList<TBookmark> &items);

private:
    friend class TCustomDBGrid;
    void Sort();
    void Changed();

    TCustomDBGrid *m_grid;
    QList<TBookmark> m_list;
    QSet<TBookmark> m_set;
};

class MATTONI_WIDGETS_EXPORT TCustomDBGrid : public QTableView
{
    Q_OBJECT
    Q_PROPERTY(mattoni::TColor Color READ Color WRITE setColor)
    Q_PROPERTY(mattoni::TDataSource *DataSource READ DataSource WRITE setDataSource)
    Q_PROPERTY(bool DefaultDrawing READ DefaultDrawing WRITE setDefaultDrawing)
    Q_PROPERTY(mattoni::DBGridTypes::TDragMode DragMode READ DragMode WRITE setDragMode)
    Q_PROPERTY(mattoni::TColor FixedColor READ FixedColor WRITE setFixedColor)
    Q_PROPERTY(mattoni::DBGridTypes::TDBGridOptions Options READ Options WRITE setOptions)
    Q_PROPERTY(bool ReadOnly READ ReadOnly WRITE setReadOnly)
    // Where the cursor is among the columns: run-time state, not stored with the grid.
    Q_PROPERTY(int SelectedIndex READ SelectedIndex WRITE setSelectedIndex STORED false)
    Q_PROPERTY(QFont TitleFont READ TitleFont WRITE setTitleFont)

public:
    using TDBGridClickEvent = std::function<void(TColumn *Column)>;
    using TNotifyEvent = std::function<void(QObject *Sender)>;
    using TMovedEvent = std::function<void(QObject *Sender, int FromIndex, int ToIndex)>;
    using TDrawColumnCellEvent = std::function<void(QObject *Sender, QPainter *Canvas, const QRect &Rect,
                                                    int DataCol, TColumn *Column, TGridDrawState State)>;
    using TDrawDataCellEvent = std::function<void(QObject *Sender, QPainter *Canvas, const QRect &Rect, TField *Field,
                                                  TGridDrawState State)>;
    using TKeyEvent = std::function<void(QObject *Sender, int &Key, Qt::KeyboardModifiers Shift)>;
    using TKeyPressEvent = std::function<void(QObject *Sender, QChar &Key)>;
    using TMouseEvent = std::function<void(QObject *Sender, Qt::MouseButton Button, Qt::KeyboardModifiers Shift,
                                           int X, int Y)>;
    using TMouseMoveEvent = std::function<void(QObject *Sender, Qt::KeyboardModifiers Shift, int X, int Y)>;
    // Data is what the drag carries (the current cell's text when the handler is called); the
    // handler may add to it or replace it.
    using TStartDragEvent = std::function<void(QObject *Sender, QMimeData *Data)>;
    using TDragOverEvent = std::function<void(QObject *Sender, QObject *Source, int X, int Y, TDragState State,
                                              bool &Accept)>;
    using TDragDropEvent = std::function<void(QObject *Sender, QObject *Source, int X, int Y)>;
    using TEndDragEvent = std::function<void(QObject *Sender, QObject *Target, int X, int Y)>;

    explicit TCustomDBGrid(QWidget *owner = nullptr);
    ~TCustomDBGrid() override;

    TDBGridColumns &Columns() { return m_columns; }
    const TDBGridColumns &Columns() const { return m_columns; }
    TDataSource *DataSource() const;
    void setDataSource(TDataSource *value);
    TDataLink *DataLink() const;
    // Dataset actions without a source of their own work on the grid's dataset while it has the
    // focus; true when the action was taken.
    Q_INVOKABLE bool ExecuteAction(QAction *Action);
    Q_INVOKABLE bool UpdateAction(QAction *Action);
    // The dataset while the link is active; nullptr otherwise.
    TDataSet *DataSet() const;

    TDBGridOptions Options() const { return m_options; }
    void setOptions(TDBGridOptions value);
    bool ReadOnly() const { return m_readOnly; }
    void setReadOnly(bool value);
    TColor Color() const { return m_color; }
    void setColor(TColor value);
    TColor FixedColor() const { return m_fixedColor; }
    void setFixedColor(TColor value);
    QFont TitleFont() const { return m_titleFont; }
    void setTitleFont(const QFont &value);
    bool DefaultDrawing() const { return m_defaultDrawing; }
    void setDefaultDrawing(bool value) { m_defaultDrawing = value; }
    TDragMode DragMode() const { return m_dragMode; }
    void setDragMode(TDragMode value) { m_dragMode = value; }

    // Drags the current record: at once when Immediate, else once the mouse has moved Threshold
    // pixels (-1: the desktop's start-drag distance) with a button held. Returns when the drag is
    // over (or, not immediate, at once).
    void BeginDrag(bool Immediate, int Threshold = -1);
    bool Dragging() const { return m_dragging; }

    // The current column, by its index in Columns.
    int SelectedIndex() const { return m_selectedIndex; }
    void setSelectedIndex(int value);
    TField *SelectedField() const;
    void setSelectedField(TField *value);
    TBookmarkList &SelectedRows() { return m_selectedRows; }

    TGridCoord MouseCoord(int X, int Y) const;
    // The cell's rectangle in grid coordinates; empty for a cell out of view.
    QRect CellRect(int ACol, int ARow) const;
    int IndicatorOffset() const { return m_options.testFlag(dgIndicator) ? 1 : 0; }
    int TitleOffset() const { return m_options.testFlag(dgTitles) ? 1 : 0; }
    // The data rows' height: measured on "Wg" in the grid's font unless set.
    int DefaultRowHeight() const;
    void setDefaultRowHeight(int value);

    // Fills the rectangle with the painter's brush and writes the column's text in the
    // painter's font and pen, as the grid does before OnDrawColumnCell.
    virtual void DefaultDrawColumnCell(QPainter *Canvas, const QRect &Rect, int DataCol, TColumn *Column,
                                       TGridDrawState State);

    TDBGridClickEvent OnCellClick;
    TDBGridClickEvent OnTitleClick;
    TNotifyEvent OnColEnter;
    TNotifyEvent OnColExit;
    TNotifyEvent OnDblClick;
    // The "..." button of a cbsEllipsis column's editor was clicked, or Ctrl+Enter typed in it.
    TNotifyEvent OnEditButtonClick;
    TMovedEvent OnColumnMoved;
    TDrawColumnCellEvent OnDrawColumnCell;
    // The older per-cell event, by field: fired only while the columns are the default ones,
    // before OnDrawColumnCell.
    TDrawDataCellEvent OnDrawDataCell;
    TKeyEvent OnKeyDown;
    TKeyPressEvent OnKeyPress;
    TKeyEvent OnKeyUp;
    TMouseEvent OnMouseDown;
    TMouseEvent OnMouseUp;
    TMouseMoveEvent OnMouseMove;
    TStartDragEvent OnStartDrag;
    // A drag over the grid: Source is the widget it started from (nullptr from another
    // application). Accept starts true when there is a handler, and the drop is allowed while it
    // stays so; without a handler the grid takes no drops.
    TDragOverEvent OnDragOver;
    TDragDropEvent OnDragDrop;
    // The drag started here ended: Target is the widget that took the drop (nullptr when none did),
    // X and Y the drop point in its coordinates.
    TEndDragEvent OnEndDrag;

protected:
    // The column class of the grid; descendants return their own.
    virtual TColumn *CreateColumn();
    virtual void TitleClick(TColumn *Column);
    virtual void CellClick(TColumn *Column);
    virtual void ColEnter();
    virtual void ColExit();
    virtual void ColumnMoved(int FromIndex, int ToIndex);
    virtual void EditButtonClick();
    virtual void KeyDown(int &Key, Qt::KeyboardModifiers Shift);
    virtual void KeyPress(QChar &Key);
    virtual void KeyUp(int &Key, Qt::KeyboardModifiers Shift);
    virtual void MouseDown(Qt::MouseButton Button, Qt::KeyboardModifiers Shift, int X, int Y);
    virtual void MouseMove(Qt::KeyboardModifiers Shift, int X, int Y);
    virtual void MouseUp(Qt::MouseButton Button, Qt::KeyboardModifiers Shift, int X, int Y);
    virtual void DoStartDrag(QMimeData *Data);
    virtual void DragOver(QObject *Source, int X, int Y, TDragState State, bool &Accept);
    virtual void DragDrop(QObject *Source, int X, int Y);
    virtual void DoEndDrag(QObject *Target, int X, int Y);
    // Whether the in-place editor may open on the current cell.
    virtual bool CanEditShow() const;
    // Whether the current cell's editor may open at all.
    virtual bool ColumnEditable(TColumn *Column) const;
    // The cell's colours before drawing: the column's, or the highlight colours.
    virtual void CellColors(TColumn *Column, TFont &Font, TColor &Background, bool Highlight);
    // Fires OnDrawColumnCell; called for every data cell after the default drawing.
    virtual void DrawColumnCell(QPainter *Canvas, const QRect &Rect, int DataCol, TColumn *Column,
                                TGridDrawState State);
    // Fires OnDrawDataCell; called for every data cell while the columns are the default ones.
    virtual void DrawDataCell(QPainter *Canvas, const QRect &Rect, TField *Field, TGridDrawState State);
    virtual void DrawTitleCell(QPainter *Canvas, const QRect &Rect, TColumn *Column, bool Down);
    virtual void DrawIndicatorCell(QPainter *Canvas, const QRect &Rect, int Row);
    // The editor for the current cell, a line edit (with a "..." button in a cbsEllipsis column)
    // unless a descendant gives another.
    virtual QWidget *CreateEditor(QWidget *parent, TColumn *Column);
    // The dataset opened or closed, or the data source changed.
    virtual void LinkActive(bool Value);
    // The fields or the columns changed.
    virtual void LayoutChanged();
    virtual void EditingChanged();
    // Whether the title of Column is drawn and tracked as a button.
    virtual bool TitleIsButton(TColumn *Column) const;

    // The highlight rule: a selected row of a multi-select grid, or the current cell (the current
    // row with dgRowSelect) while the grid has the focus or dgAlwaysShowSelection is set.
    bool HighlightCell(int DataCol, int Row) const;
    // While a cell is drawn: its row (and the record the dataset's fields read). -1 otherwise.
    int DrawingRow() const { return m_drawingRow; }
    // The drawn row's position among the rows in view, from 0 at the top.
    int DrawingBufferRow() const;
    // The shift state and button of the last mouse press on the grid.
    Qt::KeyboardModifiers MouseShift() const { return m_mouseShift; }
    Qt::MouseButton MouseButton() const { return m_mouseButton; }
    // The title column pressed with the mouse (-1 when none); the title is drawn down while the
    // mouse is held on it.
    int PressedTitle() const { return m_pressedTitle; }
    // Whether a plain left press on a multi-select grid selects the pressed row again after
    // clearing the selection.
    bool ReselectRow() const { return m_reselectRow; }
    void setReselectRow(bool value) { m_reselectRow = value; }
    void InvalidateTitles();
    void InvalidateGrid();
    // Draws Text in Rect with the painter's font and pen, at Alignment, two pixels in; on one
    // line unless MultiLine, where its line breaks start new lines.
    void DrawCellText(QPainter *Canvas, const QRect &Rect, const QString &Text, Qt::Alignment Alignment,
                      bool MultiLine = false) const;
    // The most lines a title caption has: the title row is as tall as they need.
    int TitleLines() const;
    // Runs F; an error it raises goes to the application's handler of control errors
    // (OnControlException; by default a message box), as the edits' errors do.
    void Guard(const std::function<void()> &f);
    void ShowError(const QString &message);

    // The leftmost FixedCols columns stay in place while the others scroll sideways; they are
    // drawn in FixedColor and the cursor never enters them. At least one column always scrolls.
    int FixedCols() const { return m_fixedCols; }
    void setFixedCols(int value);
    // The columns fixed now: FixedCols, less when there are not enough columns.
    int FixedColsInEffect() const;
    bool IsFixedColumn(const TColumn *Column) const;

    // While disabled, the grid does not follow the dataset's cursor; it catches up when scroll
    // handling resumes.
    void DisableScroll();
    void EnableScroll();
    bool ScrollDisabled() const { return m_scrollLock > 0; }

    // Qt's side.
    void keyPressEvent(QKeyEvent *event) override;
    void keyReleaseEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    bool event(QEvent *event) override;
    void changeEvent(QEvent *event) override;
    void currentChanged(const QModelIndex &current, const QModelIndex &previous) override;
    // Typing does not jump to a row: it edits the current cell.
    void keyboardSearch(const QString &) override {}
    bool eventFilter(QObject *watched, QEvent *event) override;
    void updateGeometries() override;

private:
    class Link;
    class Model;
    class Delegate;
    class TitleBar;
    class Indicator;
    class FixedView;
    friend class Link;
    friend class Model;
    friend class Delegate;
    friend class TitleBar;
    friend class Indicator;
    friend class FixedView;
    friend class TColumn;
    friend class TColumnTitle;
    friend class TDBGridColumns;
    friend class TBookmarkList;

    TColumn *ViewColumn(int viewColumn) const { return m_viewColumns.value(viewColumn); }
    int ViewColumnOf(const TColumn *column) const { return int(m_viewColumns.indexOf(const_cast<TColumn *>(column))); }
    void ColumnsChanged(bool layout);
    void UpdateViewColumns();
    void ApplyColumnLayout();
    void ApplyOptions();
    void SyncCurrentIndex();
    void SectionMoved(int logical, int oldVisual, int newVisual);
    void SectionResized(int logical, int oldSize, int newSize);
    void PaintCell(QPainter *painter, const QRect &rect, const QModelIndex &index);
    void PaintTitle(QPainter *painter, const QRect &rect, int viewColumn);
    void TitleMouse(QMouseEvent *event, QWidget *from);
    void DataSetChanged();
    void RecordChanged();
    void UpdateData();
    bool FocusField(TField *field);
    void EditorClosed();
    bool EditorKey(QKeyEvent *event);
    bool EditRecord();
    bool FocusWithin() const;
    void FocusChanged(QWidget *old, QWidget *now);
    void UpdateRowHeight();
    int FixedWidth() const;
    void PlaceFixedView();
    void SetTitleBarFont(const QFont &font);
    void DragEvent(QEvent *event);
    void StartDrag();
    int CurrentRow() const;

    TDBGridColumns m_columns;
    TBookmarkList m_selectedRows;
    std::unique_ptr<Link> m_link;
    Model *m_model;
    Delegate *m_delegate;
    TitleBar *m_titleBar;
    Indicator *m_indicator;
    FixedView *m_fixedView = nullptr;
    QList<TColumn *> m_viewColumns;
    QPointer<QWidget> m_editor;
    QMetaObject::Connection m_focusWatch;

    TDBGridOptions m_options = DefaultDBGridOptions;
    bool m_readOnly = false;
    TColor m_color = clWindow;
    TColor m_fixedColor = clBtnFace;
    QFont m_titleFont;
    bool m_titleFontSet = false;
    bool m_defaultDrawing = true;
    int m_selectedIndex = 0;
    int m_fixedCols = 0;
    int m_rowHeight = 0;
    int m_drawingRow = -1;
    int m_scrollLock = 0;
    bool m_syncing = false;
    bool m_removingRows = false;
    bool m_layingOut = false;
    bool m_reselectRow = false;
    bool m_forwardingKey = false;

    Qt::KeyboardModifiers m_mouseShift;
    Qt::MouseButton m_mouseButton = Qt::NoButton;
    TGridCoord m_pressCell;
    int m_pressedTitle = -1;
    bool m_titleDragged = false;

    TDragMode m_dragMode = dmManual;
    bool m_dragging = false;
    // A drag waiting for the mouse to travel DragThreshold from DragStart.
    bool m_dragArmed = false;
    QPoint m_dragStart;
    int m_dragThreshold = 0;
    // The drag over the grid: where it came from, and whether OnDragOver accepted it last.
    QPointer<QObject> m_dragSource;
    bool m_dragAccepted = false;
    QPoint m_dragPoint;
};

} // namespace mattoni

Q_DECLARE_OPERATORS_FOR_FLAGS(mattoni::DBGridTypes::TDBGridOptions)
Q_DECLARE_OPERATORS_FOR_FLAGS(mattoni::DBGridTypes::TGridDrawState)
