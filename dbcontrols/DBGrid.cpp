// The data grid over QTableView.
#include "DBGrid.h"

#include "ControlErrors.h"
#include "DBActions.h"

#include "DataSetModel.h"
#include "Exceptions.h"
#include "Fields.h"
#include "fm_MessageBox.h"
#include "Graphics.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDrag>
#include <QMimeData>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPainter>
#include <QPainterPath>
#include <QScrollBar>
#include <QStyledItemDelegate>
#include <QTimer>
#include <QToolButton>

#include <algorithm>

namespace mattoni {

namespace {

constexpr int IndicatorWidth = 12;

// The editor of a cbsEllipsis column: a line edit with a "..." button at its right end.
class EllipsisEdit : public QLineEdit
{
public:
    explicit EllipsisEdit(QWidget *parent) : QLineEdit(parent), m_button(new QToolButton(this))
    {
        m_button->setText(QStringLiteral("..."));
        m_button->setFocusPolicy(Qt::NoFocus);
        m_button->setCursor(Qt::ArrowCursor);
    }
    QToolButton *Button() const { return m_button; }

protected:
    void resizeEvent(QResizeEvent *event) override
    {
        QLineEdit::resizeEvent(event);
        const int side = height();
        m_button->setGeometry(width() - side, 0, side, side);
        setTextMargins(0, 0, side, 0);
    }

private:
    QToolButton *m_button;
};

void DrawBevel(QPainter *painter, const QRect &rect, bool down)
{
    const QColor light = TColorToQColor(clBtnHighlight);
    const QColor dark = TColorToQColor(clBtnShadow);
    painter->save();
    painter->setPen(down ? dark : light);
    painter->drawLine(rect.topLeft(), rect.topRight());
    painter->drawLine(rect.topLeft(), rect.bottomLeft());
    painter->setPen(down ? light : dark);
    painter->drawLine(rect.bottomLeft(), rect.bottomRight());
    painter->drawLine(rect.topRight(), rect.bottomRight());
    painter->restore();
}

} // namespace

// ---------------------------------------------------------------------------------------------
// The grid's parts: its data link, its item model, its cell delegate and its two headers.

class TCustomDBGrid::Link : public TDataLink
{
public:
    explicit Link(TCustomDBGrid *grid) : m_grid(grid) {}
    // A grid being destroyed hears nothing more.
    void Detach()
    {
        m_grid = nullptr;
        setDataSource(nullptr);
    }

protected:
    void ActiveChanged() override
    {
        if (m_grid)
            m_grid->LinkActive(Active());
    }
    void DataSetChanged() override
    {
        if (m_grid)
            m_grid->DataSetChanged();
    }
    void DataSetScrolled(int) override
    {
        if (m_grid)
            m_grid->SyncCurrentIndex();
    }
    void EditingChanged() override
    {
        if (m_grid)
            m_grid->EditingChanged();
    }
    void LayoutChanged() override
    {
        if (m_grid)
            m_grid->LayoutChanged();
    }
    void RecordChanged(TField *) override
    {
        if (m_grid)
            m_grid->RecordChanged();
    }
    void UpdateData() override
    {
        if (m_grid)
            m_grid->UpdateData();
    }
    void FocusControl(TField **field) override
    {
        if (m_grid && *field && m_grid->FocusField(*field))
            *field = nullptr;
    }

private:
    TCustomDBGrid *m_grid;
};

class TCustomDBGrid::Model : public TDataSetModel
{
public:
    explicit Model(TCustomDBGrid *grid) : TDataSetModel(grid), m_grid(grid) {}

    Qt::ItemFlags flags(const QModelIndex &index) const override
    {
        Qt::ItemFlags f = TDataSetModel::flags(index);
        TColumn *column = m_grid->ViewColumn(index.column());
        if (!column || !m_grid->ColumnEditable(column))
            f &= ~Qt::ItemIsEditable;
        return f;
    }

    QVariant headerData(int section, Qt::Orientation orientation, int role) const override
    {
        if (orientation == Qt::Vertical)
            return QVariant();
        const TColumn *column = m_grid->ViewColumn(section);
        if (!column)
            return QVariant();
        if (role == Qt::DisplayRole)
            return column->Title()->Caption();
        if (role == Qt::FontRole)
            return m_grid->TitleFont();
        return QVariant();
    }

private:
    TCustomDBGrid *m_grid;
};

class TCustomDBGrid::Delegate : public QStyledItemDelegate
{
public:
    explicit Delegate(TCustomDBGrid *grid) : QStyledItemDelegate(grid), m_grid(grid) {}

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        m_grid->PaintCell(painter, option.rect, index);
    }

    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &, const QModelIndex &index) const override
    {
        TColumn *column = m_grid->ViewColumn(index.column());
        if (!column || !m_grid->CanEditShow())
            return nullptr;
        QWidget *editor = m_grid->CreateEditor(parent, column);
        if (!editor)
            return nullptr;
        editor->installEventFilter(m_grid);
        for (QWidget *child : editor->findChildren<QWidget *>())
            child->installEventFilter(m_grid);
        m_grid->m_editor = editor;
        return editor;
    }

    // The view lets an editor go (closed, or its row reset) through here.
    void destroyEditor(QWidget *editor, const QModelIndex &index) const override
    {
        if (editor == m_grid->m_editor) {
            m_grid->m_editor = nullptr;
            m_grid->EditorClosed();
        }
        QStyledItemDelegate::destroyEditor(editor, index);
    }

protected:
    // Ctrl+Enter in an ellipsis column's editor is its button, not the end of the edit: caught
    // here, before the delegate closes the editor on Enter.
    bool eventFilter(QObject *object, QEvent *event) override
    {
        if (event->type() == QEvent::KeyPress && object == m_grid->m_editor) {
            const auto *key = static_cast<QKeyEvent *>(event);
            const TColumn *column = m_grid->m_columns[m_grid->m_selectedIndex];
            if ((key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter) &&
                (key->modifiers() & ~Qt::KeypadModifier) == Qt::ControlModifier && column &&
                column->ButtonStyle() == cbsEllipsis) {
                m_grid->Guard([this] { m_grid->EditButtonClick(); });
                return true;
            }
        }
        return QStyledItemDelegate::eventFilter(object, event);
    }

private:
    TCustomDBGrid *m_grid;
};

// The titles: painted by the grid, mouse events passed to it, resizing and moving of columns
// left to QHeaderView.
class TCustomDBGrid::TitleBar : public QHeaderView
{
public:
    explicit TitleBar(TCustomDBGrid *grid) : QHeaderView(Qt::Horizontal, grid), m_grid(grid)
    {
        setHighlightSections(false);
        setSectionsClickable(false);
        setMouseTracking(true);
        viewport()->setMouseTracking(true);
    }

    // QWidget's destructor still lays the headers out, when the grid is no grid any more.
    void Detach() { m_grid = nullptr; }

    QSize sizeHint() const override
    {
        QSize size = QHeaderView::sizeHint();
        if (!m_grid)
            return size;
        if (const int lines = m_grid->TitleLines(); lines > 1)
            size.setHeight(std::max(size.height(), QFontMetrics(font()).lineSpacing() * lines + 6));
        return size;
    }

protected:
    void paintSection(QPainter *painter, const QRect &rect, int logicalIndex) const override
    {
        m_grid->PaintTitle(painter, rect, logicalIndex);
    }
    void mousePressEvent(QMouseEvent *event) override
    {
        m_grid->m_titleDragged = false;
        m_grid->TitleMouse(event, viewport());
        QHeaderView::mousePressEvent(event);
    }
    void mouseDoubleClickEvent(QMouseEvent *event) override
    {
        m_grid->m_titleDragged = false;
        m_grid->TitleMouse(event, viewport());
        QHeaderView::mouseDoubleClickEvent(event);
    }
    void mouseMoveEvent(QMouseEvent *event) override
    {
        m_grid->TitleMouse(event, viewport());
        QHeaderView::mouseMoveEvent(event);
    }
    void mouseReleaseEvent(QMouseEvent *event) override
    {
        QHeaderView::mouseReleaseEvent(event);
        m_grid->TitleMouse(event, viewport());
    }

private:
    TCustomDBGrid *m_grid;
};

class TCustomDBGrid::Indicator : public QHeaderView
{
public:
    explicit Indicator(TCustomDBGrid *grid) : QHeaderView(Qt::Vertical, grid), m_grid(grid)
    {
        setHighlightSections(false);
        setSectionsClickable(false);
        setMinimumSectionSize(1);
        setSectionResizeMode(QHeaderView::Fixed);
    }

    // The fixed columns' view lies over the rest of the header: QTableView then keeps the
    // scrolling cells to the right of both.
    void Detach() { m_grid = nullptr; }

    QSize sizeHint() const override
    {
        if (!m_grid)
            return QHeaderView::sizeHint();
        const int indicator = m_grid->m_options.testFlag(dgIndicator) ? IndicatorWidth : 0;
        return QSize(indicator + m_grid->FixedWidth(), QHeaderView::sizeHint().height());
    }

protected:
    void paintSection(QPainter *painter, const QRect &rect, int logicalIndex) const override
    {
        if (m_grid->m_options.testFlag(dgIndicator))
            m_grid->DrawIndicatorCell(painter, QRect(rect.left(), rect.top(), IndicatorWidth, rect.height()), logicalIndex);
    }
    void mousePressEvent(QMouseEvent *event) override { m_grid->TitleMouse(event, viewport()); }
    void mouseDoubleClickEvent(QMouseEvent *event) override { m_grid->TitleMouse(event, viewport()); }
    void mouseMoveEvent(QMouseEvent *event) override { m_grid->TitleMouse(event, viewport()); }
    void mouseReleaseEvent(QMouseEvent *event) override { m_grid->TitleMouse(event, viewport()); }

private:
    TCustomDBGrid *m_grid;
};

// The fixed columns: a view of the same model over the left of the grid, beside the indicator,
// whose rows follow the grid's. It paints through the grid's delegate and titles, never takes
// the focus, and hands its mouse events to the grid in grid coordinates.
class TCustomDBGrid::FixedView : public QTableView
{
public:
    explicit FixedView(TCustomDBGrid *grid) : QTableView(grid), m_grid(grid)
    {
        setFrameShape(QFrame::NoFrame);
        setFocusPolicy(Qt::NoFocus);
        setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        setSelectionMode(QAbstractItemView::NoSelection);
        setEditTriggers(QAbstractItemView::NoEditTriggers);
        setShowGrid(false);
        setWordWrap(false);
        verticalHeader()->hide();
        verticalHeader()->setMinimumSectionSize(1);
        verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
        viewport()->setMouseTracking(true);
        hide();
    }

    void scrollTo(const QModelIndex &, ScrollHint) override {}

protected:
    void mousePressEvent(QMouseEvent *event) override
    {
        m_grid->TitleMouse(event, viewport());
        event->accept();
    }
    void mouseMoveEvent(QMouseEvent *event) override { m_grid->TitleMouse(event, viewport()); }
    void mouseReleaseEvent(QMouseEvent *event) override { m_grid->TitleMouse(event, viewport()); }
    void mouseDoubleClickEvent(QMouseEvent *event) override
    {
        m_grid->TitleMouse(event, viewport());
        if (m_grid->OnDblClick)
            m_grid->OnDblClick(m_grid);
    }
    void wheelEvent(QWheelEvent *event) override { QCoreApplication::sendEvent(m_grid->viewport(), event); }

private:
    TCustomDBGrid *m_grid;
};

// ---------------------------------------------------------------------------------------------
// TColumnTitle, TColumn

QString TColumnTitle::Caption() const
{
    if (!m_caption.isEmpty())
        return m_caption;
    if (const TField *field = m_column->Field())
        return field->DisplayLabel();
    return m_column->FieldName();
}

void TColumnTitle::setCaption(const QString &value)
{
    if (value == m_caption)
        return;
    m_caption = value;
    m_column->Changed();
}

void TColumnTitle::setAlignment(Qt::Alignment value)
{
    if (value == m_alignment)
        return;
    m_alignment = value;
    m_column->Changed();
}

void TColumnTitle::setColor(TColor value)
{
    if (value == m_color)
        return;
    m_color = value;
    m_column->Changed();
}

TColumn::TColumn(TDBGridColumns *collection)
    : QObject(collection->Grid()), m_collection(collection), m_title(this)
{
    m_font = TFont(collection->Grid()->font(), clWindowText);
}

TColumn::~TColumn()
{
    if (!m_collection->m_clearing) {
        m_collection->m_items.removeOne(this);
        m_collection->Grid()->ColumnsChanged(true);
    }
}

TCustomDBGrid *TColumn::Grid() const
{
    return m_collection->Grid();
}

int TColumn::Index() const
{
    return int(m_collection->m_items.indexOf(const_cast<TColumn *>(this)));
}

void TColumn::setIndex(int value)
{
    m_collection->Move(Index(), value);
}

void TColumn::setFieldName(const QString &value)
{
    if (value == m_fieldName)
        return;
    m_fieldName = value;
    m_field.clear();
    Changed(true);
}

TField *TColumn::Field() const
{
    if (m_field && m_field->DataSet() == Grid()->DataSet())
        return m_field;
    m_field.clear();
    if (TDataSet *ds = Grid()->DataSet(); ds && !m_fieldName.isEmpty())
        m_field = ds->FindField(m_fieldName);
    return m_field;
}

void TColumn::setField(TField *value)
{
    setFieldName(value ? value->FullName() : QString());
    m_field = value;
}

Qt::Alignment TColumn::Alignment() const
{
    if (m_alignmentSet)
        return m_alignment;
    const TField *field = Field();
    return field ? field->Alignment() : Qt::AlignLeft;
}

void TColumn::setAlignment(Qt::Alignment value)
{
    m_alignment = value;
    m_alignmentSet = true;
    Changed();
}

void TColumn::setButtonStyle(TColumnButtonStyle value)
{
    if (value == m_buttonStyle)
        return;
    m_buttonStyle = value;
    Changed();
}

void TColumn::setColor(TColor value)
{
    if (value == m_color)
        return;
    m_color = value;
    Changed();
}

void TColumn::setFont(const TFont &value)
{
    m_font = value;
    Changed();
}

void TColumn::setReadOnly(bool value)
{
    if (value == m_readOnly)
        return;
    m_readOnly = value;
    Changed();
}

void TColumn::setVisible(bool value)
{
    if (value == m_visible)
        return;
    m_visible = value;
    Changed(true);
}

void TColumn::setWidth(int value)
{
    if (value == m_width)
        return;
    m_width = value;
    Changed(true);
}

int TColumn::DefaultWidth() const
{
    const TCustomDBGrid *grid = Grid();
    int width = 64;
    if (const TField *field = Field())
        width = field->DisplayWidth() * QFontMetrics(grid->font()).horizontalAdvance(QLatin1Char('0')) + 4;
    return std::max(width, QFontMetrics(grid->TitleFont()).horizontalAdvance(m_title.Caption()) + 4);
}

void TColumn::Changed(bool layout)
{
    Grid()->ColumnsChanged(layout);
}

// ---------------------------------------------------------------------------------------------
// TDBGridColumns

TDBGridColumns::~TDBGridColumns()
{
    m_clearing = true;
    qDeleteAll(m_items);
}

TColumn *TDBGridColumns::AddColumn()
{
    TColumn *column = m_grid->CreateColumn();
    m_items.append(column);
    return column;
}

TColumn *TDBGridColumns::Add()
{
    if (m_state == csDefault) {
        Clear();
        m_state = csCustomized;
    }
    TColumn *column = AddColumn();
    m_grid->ColumnsChanged(true);
    return column;
}

void TDBGridColumns::Clear()
{
    if (m_items.isEmpty())
        return;
    m_clearing = true;
    const QList<TColumn *> items = std::exchange(m_items, {});
    qDeleteAll(items);
    m_clearing = false;
    m_grid->ColumnsChanged(true);
}

void TDBGridColumns::setState(TDBGridColumnsState value)
{
    if (value == m_state)
        return;
    m_state = value;
    if (value == csDefault) {
        Clear();
        RebuildColumns();
    }
}

void TDBGridColumns::RebuildColumns()
{
    TDataSet *ds = m_grid->DataSet();
    QStringList wanted;
    if (ds) {
        for (TField *field : ds->Fields()) {
            if (field->Visible())
                wanted.append(field->FieldName());
        }
    }
    QStringList present;
    for (const TColumn *column : std::as_const(m_items))
        present.append(column->FieldName());
    if (wanted == present)
        return;

    QList<TColumn *> old = std::exchange(m_items, {});
    for (const QString &name : std::as_const(wanted)) {
        auto it = std::find_if(old.begin(), old.end(),
                               [&](const TColumn *c) { return c->FieldName().compare(name, Qt::CaseInsensitive) == 0; });
        if (it != old.end()) {
            m_items.append(*it);
            old.erase(it);
        } else {
            TColumn *column = m_grid->CreateColumn();
            column->m_fieldName = name;
            m_items.append(column);
        }
    }
    m_clearing = true;
    qDeleteAll(old);
    m_clearing = false;
    m_grid->ColumnsChanged(true);
}

void TDBGridColumns::Move(int from, int to)
{
    if (from < 0 || from >= Count() || to < 0 || to >= Count() || from == to)
        return;
    m_items.move(from, to);
    m_grid->ColumnsChanged(true);
}

// ---------------------------------------------------------------------------------------------
// TBookmarkList

bool TBookmarkList::CurrentRowSelected() const
{
    TDataSet *ds = m_grid->DataSet();
    if (!ds || ds->CurrentRow() < 0 || m_set.isEmpty())
        return false;
    return m_set.contains(ds->GetBookmark());
}

void TBookmarkList::setCurrentRowSelected(bool value)
{
    TDataSet *ds = m_grid->DataSet();
    if (!ds || ds->CurrentRow() < 0)
        return;
    const TBookmark current = ds->GetBookmark();
    if (current.isEmpty() || m_set.contains(current) == value)
        return;
    if (value) {
        const auto at = std::lower_bound(m_list.begin(), m_list.end(), current, [ds](const TBookmark &a, const TBookmark &b) {
            return ds->CompareBookmarks(a, b) < 0;
        });
        m_list.insert(at, current);
        m_set.insert(current);
    } else {
        m_list.removeOne(current);
        m_set.remove(current);
    }
    Changed();
}

int TBookmarkList::IndexOf(const TBookmark &item) const
{
    return m_set.contains(item) ? int(m_list.indexOf(item)) : -1;
}

void TBookmarkList::Clear()
{
    if (m_list.isEmpty())
        return;
    m_list.clear();
    m_set.clear();
    Changed();
}

bool TBookmarkList::Refresh()
{
    TDataSet *ds = m_grid->DataSet();
    const qsizetype before = m_list.size();
    m_list.removeIf([ds](const TBookmark &b) { return !ds || !ds->BookmarkValid(b); });
    if (m_list.size() == before)
        return false;
    m_set = QSet<TBookmark>(m_list.cbegin(), m_list.cend());
    Changed();
    return true;
}

void TBookmarkList::Assign(const QList<TBookmark> &items)
{
    m_list = items;
    m_set = QSet<TBookmark>(items.cbegin(), items.cend());
    Changed();
}

// Kept in the dataset's order, so the list follows a new sort.
void TBookmarkList::Sort()
{
    TDataSet *ds = m_grid->DataSet();
    if (!ds || m_list.size() < 2)
        return;
    std::stable_sort(m_list.begin(), m_list.end(),
                     [ds](const TBookmark &a, const TBookmark &b) { return ds->CompareBookmarks(a, b) < 0; });
}

void TBookmarkList::Changed()
{
    m_grid->InvalidateGrid();
}

// ---------------------------------------------------------------------------------------------
// TCustomDBGrid: construction and properties

TCustomDBGrid::TCustomDBGrid(QWidget *owner)
    : QTableView(owner), m_columns(this), m_selectedRows(this), m_link(std::make_unique<Link>(this))
{
    m_model = new Model(this);
    // Connected before the view's selection model is, so that the flag is up when the view
    // moves its current cell off a row being removed: the dataset's cursor must not follow.
    connect(m_model, &QAbstractItemModel::rowsAboutToBeRemoved, this, [this] { m_removingRows = true; });
    connect(m_model, &QAbstractItemModel::rowsRemoved, this, [this] { m_removingRows = false; });
    m_delegate = new Delegate(this);
    m_titleBar = new TitleBar(this);
    m_indicator = new Indicator(this);
    setHorizontalHeader(m_titleBar);
    setVerticalHeader(m_indicator);
    setModel(m_model);
    setItemDelegate(m_delegate);
    // Given the model before the grid connects to it, so that its header has taken in a reset
    // when the grid lays the columns out again.
    m_fixedView = new FixedView(this);
    m_fixedView->setHorizontalHeader(new TitleBar(this));
    m_fixedView->setModel(m_model);
    // A delegate of its own: a view hears every editor of its delegate, and this one has none.
    m_fixedView->setItemDelegate(new Delegate(this));
    setSelectionMode(QAbstractItemView::NoSelection);
    setEditTriggers(QAbstractItemView::AnyKeyPressed | QAbstractItemView::EditKeyPressed);
    setShowGrid(false);
    setWordWrap(false);
    viewport()->setMouseTracking(true);
    // The grid as a whole takes drags, titles and fixed columns included; its parts do not (a
    // scroll area passes its own setting on to its viewport), so that a drag going from one to
    // another stays over the grid. Whether it takes a drop is OnDragOver's to say.
    setAcceptDrops(true);
    viewport()->setAcceptDrops(false);
    SetTitleBarFont(font());
    if (auto *corner = findChild<QAbstractButton *>(QString(), Qt::FindDirectChildrenOnly))
        corner->installEventFilter(this);

    connect(m_model, &TDataSetModel::currentRowChanged, this, [this] { SyncCurrentIndex(); });
    connect(m_model, &QAbstractItemModel::modelReset, this, [this] {
        ApplyColumnLayout();
        SyncCurrentIndex();
    });
    connect(m_model, &QAbstractItemModel::layoutChanged, this, [this] {
        m_selectedRows.Sort();
        SyncCurrentIndex();
    });
    connect(m_model, &TDataSetModel::editError, this, &TCustomDBGrid::ShowError);
    m_focusWatch = connect(qApp, &QApplication::focusChanged, this, &TCustomDBGrid::FocusChanged);
    connect(m_titleBar, &QHeaderView::sectionMoved, this, &TCustomDBGrid::SectionMoved);
    connect(m_titleBar, &QHeaderView::sectionResized, this, &TCustomDBGrid::SectionResized);
    connect(m_fixedView->horizontalHeader(), &QHeaderView::sectionResized, this, &TCustomDBGrid::SectionResized);
    connect(verticalScrollBar(), &QScrollBar::valueChanged, m_fixedView->verticalScrollBar(), &QScrollBar::setValue);
    connect(m_fixedView->verticalScrollBar(), &QScrollBar::rangeChanged, this,
            [this] { m_fixedView->verticalScrollBar()->setValue(verticalScrollBar()->value()); });
    ApplyOptions();
    UpdateRowHeight();
}

TCustomDBGrid::~TCustomDBGrid()
{
    // QWidget's destructor moves the focus away, when the grid is no grid any more.
    disconnect(m_focusWatch);
    m_titleBar->Detach();
    m_indicator->Detach();
    static_cast<TitleBar *>(m_fixedView->horizontalHeader())->Detach();
    m_link->Detach();
    m_model->setDataSource(nullptr);
    m_columns.m_clearing = true;
    qDeleteAll(std::exchange(m_columns.m_items, {}));
}

TDataSource *TCustomDBGrid::DataSource() const
{
    return m_link->DataSource();
}

void TCustomDBGrid::setDataSource(TDataSource *value)
{
    if (value == m_link->DataSource())
        return;
    // The model hears the dataset first, so that its rows exist when the grid lays out.
    m_model->setDataSource(value);
    m_link->setDataSource(value);
    if (!value)
        LinkActive(false);
}

TDataLink *TCustomDBGrid::DataLink() const
{
    return m_link.get();
}

bool TCustomDBGrid::ExecuteAction(QAction *Action)
{
    return DataLinkExecuteAction(*m_link, Action);
}

bool TCustomDBGrid::UpdateAction(QAction *Action)
{
    return DataLinkUpdateAction(*m_link, Action);
}

TDataSet *TCustomDBGrid::DataSet() const
{
    return m_link->Active() ? m_link->DataSet() : nullptr;
}

void TCustomDBGrid::setOptions(TDBGridOptions value)
{
    if (value == m_options)
        return;
    const bool rowLines = m_options.testFlag(dgRowLines) != value.testFlag(dgRowLines);
    m_options = value;
    ApplyOptions();
    if (rowLines)
        UpdateRowHeight();
}

void TCustomDBGrid::ApplyOptions()
{
    m_titleBar->setVisible(m_options.testFlag(dgTitles));
    m_indicator->setVisible(m_options.testFlag(dgIndicator) || FixedWidth() > 0);
    m_fixedView->horizontalHeader()->setVisible(m_options.testFlag(dgTitles));
    const bool resize = m_options.testFlag(dgColumnResize);
    m_titleBar->setSectionResizeMode(resize ? QHeaderView::Interactive : QHeaderView::Fixed);
    m_titleBar->setSectionsMovable(resize);
    m_fixedView->horizontalHeader()->setSectionResizeMode(resize ? QHeaderView::Interactive : QHeaderView::Fixed);
    setTabKeyNavigation(m_options.testFlag(dgTabs));
    if (!m_options.testFlag(dgMultiSelect))
        m_selectedRows.Clear();
    if (m_editor && !CanEditShow())
        closeEditor(m_editor, QAbstractItemDelegate::NoHint);
    updateGeometries();
    InvalidateGrid();
    InvalidateTitles();
}

void TCustomDBGrid::setReadOnly(bool value)
{
    if (value == m_readOnly)
        return;
    m_readOnly = value;
    if (m_editor && value)
        closeEditor(m_editor, QAbstractItemDelegate::RevertModelCache);
    InvalidateGrid();
}

void TCustomDBGrid::setColor(TColor value)
{
    if (value == m_color)
        return;
    // Columns that kept the grid's colour follow it.
    for (TColumn *column : m_columns) {
        if (column->m_color == m_color)
            column->m_color = value;
    }
    m_color = value;
    InvalidateGrid();
}

void TCustomDBGrid::setFixedColor(TColor value)
{
    if (value == m_fixedColor)
        return;
    m_fixedColor = value;
    InvalidateGrid();
    InvalidateTitles();
}

void TCustomDBGrid::setTitleFont(const QFont &value)
{
    m_titleFontSet = true;
    SetTitleBarFont(value);
    InvalidateTitles();
}

void TCustomDBGrid::SetTitleBarFont(const QFont &font)
{
    m_titleFont = font;
    m_titleBar->setFont(font);
    m_fixedView->horizontalHeader()->setFont(font);
}

void TCustomDBGrid::setSelectedIndex(int value)
{
    if (value == m_selectedIndex || value < FixedColsInEffect() || value >= m_columns.Count())
        return;
    ColExit();
    m_selectedIndex = value;
    SyncCurrentIndex();
    ColEnter();
    InvalidateGrid();
}

TField *TCustomDBGrid::SelectedField() const
{
    const TColumn *column = m_columns[m_selectedIndex];
    return column ? column->Field() : nullptr;
}

void TCustomDBGrid::setSelectedField(TField *value)
{
    for (const TColumn *column : m_columns) {
        if (value && column->Field() == value) {
            setSelectedIndex(column->Index());
            return;
        }
    }
}

int TCustomDBGrid::DefaultRowHeight() const
{
    return m_indicator->defaultSectionSize();
}

void TCustomDBGrid::setDefaultRowHeight(int value)
{
    m_rowHeight = std::max(0, value);
    UpdateRowHeight();
}

void TCustomDBGrid::UpdateRowHeight()
{
    int height = m_rowHeight;
    if (height <= 0) {
        height = QFontMetrics(font()).size(Qt::TextSingleLine, QStringLiteral("Wg")).height() + 3;
        if (m_options.testFlag(dgRowLines))
            ++height;
    }
    m_indicator->setDefaultSectionSize(height);
    m_fixedView->verticalHeader()->setDefaultSectionSize(height);
}

// ---------------------------------------------------------------------------------------------
// Fixed columns

void TCustomDBGrid::setFixedCols(int value)
{
    value = std::max(0, value);
    if (value == m_fixedCols)
        return;
    m_fixedCols = value;
    if (const int first = FixedColsInEffect(); m_selectedIndex < first) {
        ColExit();
        m_selectedIndex = first;
        ColEnter();
    }
    ApplyColumnLayout();
    SyncCurrentIndex();
    InvalidateTitles();
}

int TCustomDBGrid::FixedColsInEffect() const
{
    return std::clamp(m_fixedCols, 0, std::max(0, m_columns.Count() - 1));
}

bool TCustomDBGrid::IsFixedColumn(const TColumn *Column) const
{
    return Column && Column->Index() < FixedColsInEffect();
}

// The width the fixed columns shown take.
int TCustomDBGrid::FixedWidth() const
{
    int width = 0;
    for (int i = 0; i < FixedColsInEffect(); ++i) {
        const TColumn *column = m_columns[i];
        if (column->Visible() && ViewColumnOf(column) >= 0)
            width += column->Width();
    }
    return width;
}

void TCustomDBGrid::updateGeometries()
{
    QTableView::updateGeometries();
    // Also called while QTableView is being set up, before the grid has its parts.
    if (m_fixedView)
        PlaceFixedView();
}

void TCustomDBGrid::PlaceFixedView()
{
    const int width = FixedWidth();
    if (width <= 0) {
        m_fixedView->hide();
        return;
    }
    const QRect view = viewport()->geometry();
    const int titles = m_titleBar->isHidden() ? 0 : m_titleBar->height();
    m_fixedView->horizontalHeader()->setFixedHeight(titles);
    m_fixedView->setGeometry(view.left() - width, view.top() - titles, width, view.height() + titles);
    m_fixedView->show();
    m_fixedView->verticalScrollBar()->setValue(verticalScrollBar()->value());
}

// ---------------------------------------------------------------------------------------------
// Coordinates

TGridCoord TCustomDBGrid::MouseCoord(int X, int Y) const
{
    const QRect view = viewport()->geometry();
    const QRect fixed = m_fixedView->isVisible() ? m_fixedView->geometry() : QRect();
    TGridCoord cell;
    if (X >= view.left() && X <= view.right()) {
        if (const TColumn *column = ViewColumn(columnAt(X - view.left())))
            cell.X = IndicatorOffset() + column->Index();
    } else if (X >= fixed.left() && X <= fixed.right()) {
        if (const TColumn *column = ViewColumn(m_fixedView->columnAt(X - fixed.left())))
            cell.X = IndicatorOffset() + column->Index();
    } else if (m_options.testFlag(dgIndicator) && X < view.left() && X >= m_indicator->geometry().left()) {
        cell.X = 0;
    }
    if (Y >= view.top() && Y <= view.bottom()) {
        const int row = rowAt(Y - view.top());
        if (row >= 0)
            cell.Y = TitleOffset() + row;
    } else if (m_options.testFlag(dgTitles) && Y < view.top() && Y >= m_titleBar->geometry().top()) {
        cell.Y = 0;
    }
    if (cell.X < 0 || cell.Y < 0)
        return TGridCoord();
    return cell;
}

QRect TCustomDBGrid::CellRect(int ACol, int ARow) const
{
    const QRect view = viewport()->geometry();
    int x, width;
    if (ACol == 0 && m_options.testFlag(dgIndicator)) {
        x = m_indicator->geometry().left();
        width = m_indicator->width() - FixedWidth();
    } else if (const TColumn *column = m_columns[ACol - IndicatorOffset()]; IsFixedColumn(column)) {
        const int vc = ViewColumnOf(column);
        if (vc < 0 || m_fixedView->isColumnHidden(vc) || m_fixedView->isHidden())
            return QRect();
        x = m_fixedView->geometry().left() + m_fixedView->columnViewportPosition(vc);
        width = m_fixedView->columnWidth(vc);
    } else {
        const int vc = ViewColumnOf(column);
        if (vc < 0 || isColumnHidden(vc))
            return QRect();
        x = view.left() + columnViewportPosition(vc);
        width = columnWidth(vc);
    }
    int y, height;
    if (ARow == 0 && m_options.testFlag(dgTitles)) {
        y = m_titleBar->geometry().top();
        height = m_titleBar->height();
    } else {
        const int row = ARow - TitleOffset();
        if (row < 0 || row >= m_model->rowCount())
            return QRect();
        y = view.top() + rowViewportPosition(row);
        height = rowHeight(row);
    }
    return QRect(x, y, width, height);
}

int TCustomDBGrid::DrawingBufferRow() const
{
    return m_drawingRow < 0 ? -1 : m_drawingRow - std::max(0, rowAt(0));
}

int TCustomDBGrid::CurrentRow() const
{
    const TDataSet *ds = DataSet();
    return ds ? ds->CurrentRow() : -1;
}

bool TCustomDBGrid::FocusWithin() const
{
    const QWidget *focus = QApplication::focusWidget();
    return focus && (focus == this || isAncestorOf(focus));
}

// ---------------------------------------------------------------------------------------------
// Columns shown

void TCustomDBGrid::ColumnsChanged(bool layout)
{
    if (m_columns.m_clearing)
        return;
    if (layout)
        UpdateViewColumns();
    // A caption may have gained or lost a line.
    updateGeometries();
    InvalidateGrid();
    InvalidateTitles();
}

void TCustomDBGrid::UpdateViewColumns()
{
    QList<TColumn *> columns;
    QStringList names;
    if (DataSet()) {
        for (TColumn *column : m_columns) {
            if (column->Field()) {
                columns.append(column);
                names.append(column->FieldName());
            }
        }
    }
    m_viewColumns = columns;
    // An empty name matches no field: the model then shows no column rather than every field.
    if (names.isEmpty())
        names.append(QString());
    m_model->setFieldNames(names);
    ApplyColumnLayout();
    if (m_selectedIndex >= m_columns.Count())
        m_selectedIndex = std::max(0, m_columns.Count() - 1);
    m_selectedIndex = std::max(m_selectedIndex, FixedColsInEffect());
}

void TCustomDBGrid::ApplyColumnLayout()
{
    const bool wasLayingOut = std::exchange(m_layingOut, true);
    const int count = std::min(int(m_viewColumns.size()), m_model->columnCount());
    for (int vc = 0; vc < count; ++vc) {
        const TColumn *column = m_viewColumns.at(vc);
        const bool fixed = IsFixedColumn(column);
        setColumnWidth(vc, column->Width());
        setColumnHidden(vc, !column->Visible() || fixed);
        m_fixedView->setColumnWidth(vc, column->Width());
        m_fixedView->setColumnHidden(vc, !column->Visible() || !fixed);
    }
    m_indicator->setVisible(m_options.testFlag(dgIndicator) || FixedWidth() > 0);
    updateGeometries();
    m_layingOut = wasLayingOut;
}

void TCustomDBGrid::SectionResized(int logical, int, int newSize)
{
    if (m_layingOut || newSize <= 0)
        return;
    if (TColumn *column = ViewColumn(logical)) {
        column->m_width = newSize;
        m_titleDragged = true;
        // The scrolling columns start where the fixed ones now end.
        if (IsFixedColumn(column))
            ApplyColumnLayout();
    }
}

void TCustomDBGrid::SectionMoved(int logical, int oldVisual, int newVisual)
{
    if (m_layingOut)
        return;
    m_titleDragged = true;
    TColumn *moved = ViewColumn(logical);
    TColumn *target = ViewColumn(newVisual);
    // The header goes back to its plain order; the columns themselves change places.
    m_layingOut = true;
    m_titleBar->moveSection(newVisual, oldVisual);
    m_layingOut = false;
    if (!moved || !target)
        return;
    // Dropped over the fixed columns (hidden in this header), it stays the first to scroll.
    const int from = moved->Index(), to = std::max(target->Index(), FixedColsInEffect());
    if (from == to)
        return;
    m_columns.Move(from, to);
    if (m_selectedIndex == from)
        m_selectedIndex = to;
    ColumnMoved(from + IndicatorOffset(), to + IndicatorOffset());
}

// ---------------------------------------------------------------------------------------------
// Following the dataset

void TCustomDBGrid::LinkActive(bool Value)
{
    if (m_columns.State() == csDefault) {
        if (Value)
            m_columns.RebuildColumns();
        else
            m_columns.Clear();
    }
    if (!Value)
        m_selectedRows.Clear();
    UpdateViewColumns();
    SyncCurrentIndex();
    InvalidateGrid();
    InvalidateTitles();
}

void TCustomDBGrid::LayoutChanged()
{
    if (m_columns.State() == csDefault)
        m_columns.RebuildColumns();
    UpdateViewColumns();
    InvalidateTitles();
}

void TCustomDBGrid::DataSetChanged()
{
    // A dataset reopened under DisableControls comes back with new fields and no ActiveChanged.
    if (m_columns.State() == csDefault)
        m_columns.RebuildColumns();
    const bool fieldsMoved = std::any_of(m_viewColumns.cbegin(), m_viewColumns.cend(),
                                         [](const TColumn *c) { return !c->Field(); });
    if (fieldsMoved || (m_viewColumns.isEmpty() && m_columns.Count() > 0))
        UpdateViewColumns();
    SyncCurrentIndex();
    InvalidateGrid();
}

void TCustomDBGrid::RecordChanged()
{
    InvalidateGrid();
}

void TCustomDBGrid::EditingChanged()
{
    if (!m_link->Editing() && m_editor)
        closeEditor(m_editor, QAbstractItemDelegate::NoHint);
    InvalidateGrid();
}

void TCustomDBGrid::UpdateData()
{
    if (m_editor)
        commitData(m_editor);
}

bool TCustomDBGrid::FocusField(TField *field)
{
    for (const TColumn *column : m_columns) {
        if (column->Field() == field) {
            setSelectedIndex(column->Index());
            setFocus();
            return true;
        }
    }
    return false;
}

void TCustomDBGrid::SyncCurrentIndex()
{
    if (m_syncing || ScrollDisabled())
        return;
    const int row = CurrentRow();
    int vc = ViewColumnOf(m_columns[m_selectedIndex]);
    if (vc < 0 && !m_viewColumns.isEmpty())
        vc = 0;
    const QModelIndex index = row >= 0 && vc >= 0 ? m_model->index(row, vc) : QModelIndex();
    if (index != currentIndex()) {
        m_syncing = true;
        selectionModel()->setCurrentIndex(index, QItemSelectionModel::NoUpdate);
        m_syncing = false;
    }
    if (index.isValid())
        scrollTo(index);
    InvalidateGrid();
    if (index.isValid() && m_options.testFlag(dgAlwaysShowEditor) && !m_editor && CanEditShow() && FocusWithin())
        QTimer::singleShot(0, this, [this] {
            if (!m_editor && CanEditShow() && currentIndex().isValid())
                edit(currentIndex());
        });
}

void TCustomDBGrid::DisableScroll()
{
    ++m_scrollLock;
}

void TCustomDBGrid::EnableScroll()
{
    if (m_scrollLock == 0)
        return;
    if (--m_scrollLock == 0)
        SyncCurrentIndex();
}

void TCustomDBGrid::currentChanged(const QModelIndex &current, const QModelIndex &previous)
{
    QTableView::currentChanged(current, previous);
    if (m_syncing || m_removingRows || !current.isValid())
        return;
    Guard([&] {
        TDataSet *ds = DataSet();
        const int row = CurrentRow();
        if (ds && row >= 0 && current.row() != row)
            ds->MoveBy(current.row() - row);
        if (const TColumn *column = ViewColumn(current.column()))
            setSelectedIndex(column->Index());
    });
    SyncCurrentIndex();
}

// ---------------------------------------------------------------------------------------------
// Virtual behaviour

TColumn *TCustomDBGrid::CreateColumn()
{
    return new TColumn(&m_columns);
}

void TCustomDBGrid::TitleClick(TColumn *Column)
{
    if (OnTitleClick)
        OnTitleClick(Column);
}

void TCustomDBGrid::CellClick(TColumn *Column)
{
    if (OnCellClick)
        OnCellClick(Column);
}

void TCustomDBGrid::ColEnter()
{
    if (OnColEnter)
        OnColEnter(this);
}

void TCustomDBGrid::ColExit()
{
    if (OnColExit)
        OnColExit(this);
}

void TCustomDBGrid::ColumnMoved(int FromIndex, int ToIndex)
{
    if (OnColumnMoved)
        OnColumnMoved(this, FromIndex, ToIndex);
}

void TCustomDBGrid::EditButtonClick()
{
    if (OnEditButtonClick)
        OnEditButtonClick(this);
}

bool TCustomDBGrid::ColumnEditable(TColumn *Column) const
{
    const TField *field = Column->Field();
    return field && !field->IsBlob() && !Column->ReadOnly() && !m_readOnly && field->CanModify();
}

bool TCustomDBGrid::CanEditShow() const
{
    if (!m_link->Active() || m_link->ReadOnly() || m_readOnly || !m_options.testFlag(dgEditing) ||
        m_options.testFlag(dgRowSelect))
        return false;
    TColumn *column = m_columns[m_selectedIndex];
    return column && ColumnEditable(column);
}

bool TCustomDBGrid::TitleIsButton(TColumn *) const
{
    return false;
}

QWidget *TCustomDBGrid::CreateEditor(QWidget *parent, TColumn *Column)
{
    QLineEdit *editor;
    if (Column->ButtonStyle() == cbsEllipsis) {
        auto *ellipsis = new EllipsisEdit(parent);
        connect(ellipsis->Button(), &QToolButton::clicked, this, [this] { Guard([this] { EditButtonClick(); }); });
        editor = ellipsis;
    } else {
        editor = new QLineEdit(parent);
    }
    editor->setFrame(false);
    if (const TField *field = Column->Field(); field && field->DataType() == ftString && field->Size() > 0)
        editor->setMaxLength(field->Size());
    return editor;
}

void TCustomDBGrid::EditorClosed()
{
    InvalidateGrid();
}

void TCustomDBGrid::KeyDown(int &Key, Qt::KeyboardModifiers Shift)
{
    if (OnKeyDown)
        OnKeyDown(this, Key, Shift);
    TDataSet *ds = DataSet();
    if (Key == 0 || !ds)
        return;
    const bool plain = (Shift & ~Qt::KeypadModifier) == Qt::NoModifier;
    const bool canModify = m_options.testFlag(dgEditing) && !m_readOnly && !m_link->ReadOnly() && ds->CanModify() &&
                           DataSource()->AutoEdit();
    switch (Key) {
    case Qt::Key_Down:
        // Down from the last record appends one; from an untouched new record it goes nowhere.
        if (plain && ds->CurrentRow() == ds->RowCount() - 1) {
            if (ds->State() == dsInsert && !ds->Modified()) {
                Key = 0;
            } else if (canModify && ds->State() == dsBrowse) {
                ds->Append();
                Key = 0;
            }
        }
        break;
    case Qt::Key_Insert:
        if (plain && canModify) {
            ds->Insert();
            Key = 0;
        }
        break;
    case Qt::Key_Delete:
        // Ctrl+Delete deletes the current record, asking first with dgConfirmDelete; a grid
        // without dgEditing is one the user does not change, so it deletes nothing either.
        if ((Shift & ~Qt::KeypadModifier) == Qt::ControlModifier && !m_editor && m_options.testFlag(dgEditing) &&
            !m_readOnly && !m_link->ReadOnly() && ds->CanModify() && !ds->IsEmpty()) {
            Key = 0;
            if (!m_options.testFlag(dgConfirmDelete) || BoxConferma(QStringLiteral("Eliminare il record?")))
                ds->Delete();
        }
        break;
    case Qt::Key_Escape:
        if (!m_editor && (ds->State() == dsEdit || ds->State() == dsInsert)) {
            ds->Cancel();
            Key = 0;
        }
        break;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (!m_editor && CanEditShow() && currentIndex().isValid()) {
            edit(currentIndex());
            Key = 0;
        }
        break;
    default:
        break;
    }
}

void TCustomDBGrid::KeyPress(QChar &Key)
{
    if (OnKeyPress)
        OnKeyPress(this, Key);
}

void TCustomDBGrid::KeyUp(int &Key, Qt::KeyboardModifiers Shift)
{
    if (OnKeyUp)
        OnKeyUp(this, Key, Shift);
}

void TCustomDBGrid::MouseDown(Qt::MouseButton Button, Qt::KeyboardModifiers Shift, int X, int Y)
{
    m_mouseShift = Shift;
    m_mouseButton = Button;
    if (!FocusWithin())
        setFocus(Qt::MouseFocusReason);
    const TGridCoord cell = MouseCoord(X, Y);
    m_pressCell = cell;
    TDataSet *ds = DataSet();
    if (cell.X >= 0 && cell.Y == 0 && m_options.testFlag(dgTitles)) {
        if (Button == Qt::LeftButton && cell.X >= IndicatorOffset()) {
            m_pressedTitle = cell.X;
            InvalidateTitles();
        }
    } else if (cell.X >= 0 && ds) {
        const int row = cell.Y - TitleOffset();
        const int current = ds->CurrentRow();
        const bool onCurrentCell = row == current && cell.X - IndicatorOffset() == m_selectedIndex;
        if (current >= 0 && row != current)
            ds->MoveBy(row - current);
        if (cell.X >= IndicatorOffset())
            setSelectedIndex(cell.X - IndicatorOffset());
        if (m_options.testFlag(dgMultiSelect) && m_link->Active() && Button == Qt::LeftButton) {
            if (Shift & Qt::ControlModifier) {
                m_selectedRows.setCurrentRowSelected(!m_selectedRows.CurrentRowSelected());
            } else {
                m_selectedRows.Clear();
                if (m_reselectRow)
                    m_selectedRows.setCurrentRowSelected(true);
            }
        }
        // A click on the current cell opens its editor.
        if (onCurrentCell && Button == Qt::LeftButton && !(Shift & Qt::ControlModifier) && cell.X >= IndicatorOffset() &&
            !m_editor && CanEditShow() && currentIndex().isValid())
            edit(currentIndex());
    }
    if (OnMouseDown)
        OnMouseDown(this, Button, Shift, X, Y);
}

void TCustomDBGrid::MouseMove(Qt::KeyboardModifiers Shift, int X, int Y)
{
    if (OnMouseMove)
        OnMouseMove(this, Shift, X, Y);
}

void TCustomDBGrid::MouseUp(Qt::MouseButton Button, Qt::KeyboardModifiers Shift, int X, int Y)
{
    const TGridCoord cell = MouseCoord(X, Y);
    const TGridCoord pressed = std::exchange(m_pressCell, TGridCoord());
    const int pressedTitle = std::exchange(m_pressedTitle, -1);
    if (pressedTitle >= 0)
        InvalidateTitles();
    const bool onTitles = cell.Y == 0 && m_options.testFlag(dgTitles);
    if (pressedTitle >= 0 && onTitles && cell.X == pressedTitle && !m_titleDragged) {
        if (TColumn *column = m_columns[cell.X - IndicatorOffset()])
            TitleClick(column);
    } else if (!onTitles && cell.X >= IndicatorOffset() && cell == pressed && Button == Qt::LeftButton) {
        if (TColumn *column = m_columns[cell.X - IndicatorOffset()])
            CellClick(column);
    }
    if (OnMouseUp)
        OnMouseUp(this, Button, Shift, X, Y);
}

// ---------------------------------------------------------------------------------------------
// Qt events, passed on to the virtual handlers above

void TCustomDBGrid::Guard(const std::function<void()> &f)
{
    try {
        f();
    } catch (...) {
        PostControlException(this, std::current_exception());
    }
}

void TCustomDBGrid::ShowError(const QString &message)
{
    PostControlException(this, std::make_exception_ptr(Exception(message)));
}

void TCustomDBGrid::keyPressEvent(QKeyEvent *event)
{
    int key = event->key();
    Qt::KeyboardModifiers shift = event->modifiers();
    // The modifier key itself counts as held, as it does for applications on other desktops.
    if (key == Qt::Key_Control)
        shift |= Qt::ControlModifier;
    else if (key == Qt::Key_Shift)
        shift |= Qt::ShiftModifier;
    else if (key == Qt::Key_Alt)
        shift |= Qt::AltModifier;
    Guard([&] { KeyDown(key, shift); });
    if (key == 0) {
        event->accept();
        return;
    }
    const QString text = event->text();
    if (text.size() == 1) {
        QChar ch = text.at(0);
        Guard([&] { KeyPress(ch); });
        if (ch.isNull()) {
            event->accept();
            return;
        }
        // A typed character edits the record, when the dataset lets it.
        if (ch.unicode() >= 32 && !m_editor && CanEditShow() && !EditRecord()) {
            event->accept();
            return;
        }
        if (ch != text.at(0)) {
            QKeyEvent changed(event->type(), event->key(), event->modifiers(), QString(ch), event->isAutoRepeat(),
                              ushort(event->count()));
            m_forwardingKey = true;
            QTableView::keyPressEvent(&changed);
            m_forwardingKey = false;
            return;
        }
    }
    m_forwardingKey = true;
    QTableView::keyPressEvent(event);
    m_forwardingKey = false;
}

void TCustomDBGrid::keyReleaseEvent(QKeyEvent *event)
{
    int key = event->key();
    Guard([&] { KeyUp(key, event->modifiers()); });
    if (key != 0)
        QTableView::keyReleaseEvent(event);
}

// Puts the record in edit mode as the data source allows; whether it is being edited now.
bool TCustomDBGrid::EditRecord()
{
    bool editing = false;
    Guard([&] { editing = m_link->Edit(); });
    return editing;
}

// Keys typed into the in-place editor pass through KeyPress like keys typed on the grid.
bool TCustomDBGrid::EditorKey(QKeyEvent *event)
{
    if (m_forwardingKey)
        return false;
    const QString text = event->text();
    if (text.size() != 1)
        return false;
    QChar ch = text.at(0);
    Guard([&] { KeyPress(ch); });
    if (ch.isNull())
        return true;
    if ((ch.unicode() >= 32 || ch == QLatin1Char('\b')) && !EditRecord())
        return true;
    if (ch != text.at(0)) {
        QKeyEvent changed(event->type(), event->key(), event->modifiers(), QString(ch), event->isAutoRepeat(),
                          ushort(event->count()));
        m_forwardingKey = true;
        QCoreApplication::sendEvent(QApplication::focusWidget(), &changed);
        m_forwardingKey = false;
        return true;
    }
    return false;
}

bool TCustomDBGrid::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::KeyPress && m_editor &&
        (watched == m_editor || m_editor->isAncestorOf(qobject_cast<QWidget *>(watched))))
        return EditorKey(static_cast<QKeyEvent *>(event));
    if (auto *corner = qobject_cast<QAbstractButton *>(watched); corner && corner->parent() == this) {
        switch (event->type()) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonRelease:
        case QEvent::MouseButtonDblClick:
            TitleMouse(static_cast<QMouseEvent *>(event), corner);
            return true;
        default:
            break;
        }
    }
    return QTableView::eventFilter(watched, event);
}

void TCustomDBGrid::TitleMouse(QMouseEvent *event, QWidget *from)
{
    const QPoint p = from->mapTo(this, event->position().toPoint());
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick: {
        m_dragArmed = false;
        Guard([&] { MouseDown(event->button(), event->modifiers(), p.x(), p.y()); });
        const TGridCoord cell = MouseCoord(p.x(), p.y());
        if (m_dragMode == dmAutomatic && event->button() == Qt::LeftButton && cell.X >= IndicatorOffset() &&
            cell.Y >= TitleOffset() && DataSet()) {
            m_dragArmed = true;
            m_dragStart = p;
            m_dragThreshold = QApplication::startDragDistance();
        }
        break;
    }
    case QEvent::MouseMove:
        Guard([&] { MouseMove(event->modifiers(), p.x(), p.y()); });
        if (m_dragArmed && !(event->buttons() & Qt::LeftButton))
            m_dragArmed = false;
        if (m_dragArmed && (p - m_dragStart).manhattanLength() >= m_dragThreshold)
            StartDrag();
        break;
    case QEvent::MouseButtonRelease:
        m_dragArmed = false;
        Guard([&] { MouseUp(event->button(), event->modifiers(), p.x(), p.y()); });
        break;
    default:
        break;
    }
}

// ---------------------------------------------------------------------------------------------
// Drag and drop

void TCustomDBGrid::BeginDrag(bool Immediate, int Threshold)
{
    if (m_dragging)
        return;
    if (Immediate) {
        StartDrag();
        return;
    }
    m_dragArmed = true;
    m_dragStart = mapFromGlobal(QCursor::pos());
    m_dragThreshold = Threshold < 0 ? QApplication::startDragDistance() : Threshold;
}

void TCustomDBGrid::StartDrag()
{
    m_dragArmed = false;
    if (m_dragging)
        return;
    auto *data = new QMimeData;
    Guard([&] {
        if (const TField *field = SelectedField(); field && CurrentRow() >= 0)
            data->setText(field->DisplayText());
        DoStartDrag(data);
    });
    auto *drag = new QDrag(this);
    drag->setMimeData(data);
    m_dragging = true;
    const Qt::DropAction action = drag->exec(Qt::CopyAction | Qt::MoveAction, Qt::CopyAction);
    m_dragging = false;
    QObject *target = action == Qt::IgnoreAction ? nullptr : drag->target();
    drag->deleteLater();
    // A view takes drops on its viewport: the target named is the view, and for the fixed
    // columns the grid they belong to.
    auto *widget = qobject_cast<QWidget *>(target);
    if (auto *area = widget ? qobject_cast<QAbstractScrollArea *>(widget->parentWidget()) : nullptr;
        area && area->viewport() == widget)
        widget = area;
    if (auto *fixed = dynamic_cast<FixedView *>(widget))
        widget = fixed->parentWidget();
    QPoint at;
    if (auto *grid = qobject_cast<TCustomDBGrid *>(widget))
        at = grid->m_dragPoint;
    else if (widget)
        at = widget->mapFromGlobal(QCursor::pos());
    Guard([&] { DoEndDrag(widget ? widget : target, at.x(), at.y()); });
}

void TCustomDBGrid::DragEvent(QEvent *event)
{
    switch (event->type()) {
    case QEvent::DragEnter:
    case QEvent::DragMove: {
        auto *e = static_cast<QDragMoveEvent *>(event);
        const bool entering = event->type() == QEvent::DragEnter;
        m_dragPoint = e->position().toPoint();
        if (entering)
            m_dragSource = e->source();
        bool accept = false;
        Guard([&] { DragOver(e->source(), m_dragPoint.x(), m_dragPoint.y(), entering ? dsDragEnter : dsDragMove, accept); });
        m_dragAccepted = accept;
        if (accept) {
            e->acceptProposedAction();
        } else {
            // Refused here: the grid stays the drag's target, so that OnDragOver is asked again
            // as the drag moves, and a drop here is turned down when it comes.
            e->setDropAction(Qt::IgnoreAction);
            e->accept();
        }
        break;
    }
    case QEvent::DragLeave: {
        bool accept = false;
        Guard([&] { DragOver(m_dragSource, m_dragPoint.x(), m_dragPoint.y(), dsDragLeave, accept); });
        m_dragSource = nullptr;
        m_dragAccepted = false;
        break;
    }
    case QEvent::Drop: {
        auto *e = static_cast<QDropEvent *>(event);
        m_dragPoint = e->position().toPoint();
        if (!std::exchange(m_dragAccepted, false)) {
            e->ignore();
            break;
        }
        e->acceptProposedAction();
        m_dragSource = nullptr;
        Guard([&] { DragDrop(e->source(), m_dragPoint.x(), m_dragPoint.y()); });
        break;
    }
    default:
        break;
    }
}

// QAbstractScrollArea leaves drag events on its frame unhandled, expecting them on the viewport.
bool TCustomDBGrid::event(QEvent *event)
{
    switch (event->type()) {
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::DragLeave:
    case QEvent::Drop:
        DragEvent(event);
        return true;
    default:
        return QTableView::event(event);
    }
}

void TCustomDBGrid::DoStartDrag(QMimeData *Data)
{
    if (OnStartDrag)
        OnStartDrag(this, Data);
}

void TCustomDBGrid::DragOver(QObject *Source, int X, int Y, TDragState State, bool &Accept)
{
    Accept = bool(OnDragOver);
    if (OnDragOver)
        OnDragOver(this, Source, X, Y, State, Accept);
}

void TCustomDBGrid::DragDrop(QObject *Source, int X, int Y)
{
    if (OnDragDrop)
        OnDragDrop(this, Source, X, Y);
}

void TCustomDBGrid::DoEndDrag(QObject *Target, int X, int Y)
{
    if (OnEndDrag)
        OnEndDrag(this, Target, X, Y);
}

void TCustomDBGrid::mousePressEvent(QMouseEvent *event)
{
    TitleMouse(event, viewport());
    event->accept();
}

void TCustomDBGrid::mouseMoveEvent(QMouseEvent *event)
{
    TitleMouse(event, viewport());
}

void TCustomDBGrid::mouseReleaseEvent(QMouseEvent *event)
{
    TitleMouse(event, viewport());
}

void TCustomDBGrid::mouseDoubleClickEvent(QMouseEvent *event)
{
    TitleMouse(event, viewport());
    if (OnDblClick)
        OnDblClick(this);
}

void TCustomDBGrid::focusInEvent(QFocusEvent *event)
{
    QTableView::focusInEvent(event);
    SyncCurrentIndex();
}

void TCustomDBGrid::focusOutEvent(QFocusEvent *event)
{
    QTableView::focusOutEvent(event);
    InvalidateGrid();
}

// The focus went from the grid or its editor to a widget outside: with dgCancelOnExit an
// untouched new record goes.
void TCustomDBGrid::FocusChanged(QWidget *old, QWidget *now)
{
    const auto within = [this](QWidget *w) { return w && (w == this || isAncestorOf(w)); };
    if (!within(old) || within(now))
        return;
    if (TDataSet *ds = DataSet(); ds && m_options.testFlag(dgCancelOnExit) && ds->State() == dsInsert && !ds->Modified())
        Guard([&] { ds->Cancel(); });
}

void TCustomDBGrid::changeEvent(QEvent *event)
{
    QTableView::changeEvent(event);
    if (event->type() == QEvent::FontChange) {
        if (!m_titleFontSet)
            SetTitleBarFont(font());
        UpdateRowHeight();
    }
}

// ---------------------------------------------------------------------------------------------
// Drawing

bool TCustomDBGrid::HighlightCell(int DataCol, int Row) const
{
    const TDataSet *ds = DataSet();
    if (!ds)
        return false;
    if (m_options.testFlag(dgMultiSelect) && m_selectedRows.Count() > 0 && m_selectedRows.Contains(ds->RowBookmark(Row)))
        return true;
    const bool selected = Row == ds->CurrentRow() && (m_options.testFlag(dgRowSelect) || DataCol == m_selectedIndex);
    return selected && (m_options.testFlag(dgAlwaysShowSelection) || FocusWithin());
}

void TCustomDBGrid::CellColors(TColumn *, TFont &Font, TColor &Background, bool Highlight)
{
    if (Highlight) {
        Background = clHighlight;
        Font.setColor(clHighlightText);
    }
}

void TCustomDBGrid::PaintCell(QPainter *painter, const QRect &rect, const QModelIndex &index)
{
    TColumn *column = ViewColumn(index.column());
    TDataSet *ds = DataSet();
    if (!column || !ds || index.row() >= ds->RowCount())
        return;
    const int row = index.row();
    const bool fixed = IsFixedColumn(column);
    TGridDrawState state;
    if (fixed) {
        state = gdFixed;
    } else if (row == ds->CurrentRow() && (m_options.testFlag(dgRowSelect) || column->Index() == m_selectedIndex)) {
        state |= gdSelected;
        if (FocusWithin())
            state |= gdFocused;
    }
    painter->save();
    m_drawingRow = row;
    try {
        // The fields read the drawn row while it is drawn, as handlers of the events expect.
        TRecordScope scope(ds, row);
        TFont font = column->Font();
        TColor background = m_fixedColor;
        if (!fixed) {
            background = column->Color();
            CellColors(column, font, background, HighlightCell(column->Index(), row));
        }
        painter->setBrush(TColorToQColor(background));
        painter->setPen(TColorToQColor(font.Color()));
        painter->setFont(font);
        if (m_defaultDrawing)
            DefaultDrawColumnCell(painter, rect, column->Index(), column, state);
        if (m_columns.State() == csDefault)
            DrawDataCell(painter, rect, column->Field(), state);
        DrawColumnCell(painter, rect, column->Index(), column, state);
    } catch (const Exception &) {
        // A value that cannot be shown would fail again at every repaint: the cell stays blank.
    }
    m_drawingRow = -1;
    painter->restore();

    painter->save();
    painter->setPen(TColorToQColor(clSilver));
    if (m_options.testFlag(dgColLines))
        painter->drawLine(rect.topRight(), rect.bottomRight());
    if (m_options.testFlag(dgRowLines))
        painter->drawLine(rect.bottomLeft(), rect.bottomRight());
    if (state.testFlag(gdFocused) && !m_options.testFlag(dgRowSelect) && !m_editor) {
        painter->setPen(QPen(TColorToQColor(clWindowText), 1, Qt::DotLine));
        painter->setBrush(Qt::NoBrush);
        painter->drawRect(rect.adjusted(0, 0, -2, -2));
    }
    painter->restore();
}

void TCustomDBGrid::DefaultDrawColumnCell(QPainter *Canvas, const QRect &Rect, int, TColumn *Column, TGridDrawState)
{
    Canvas->fillRect(Rect, Canvas->brush());
    const TField *field = Column->Field();
    DrawCellText(Canvas, Rect, field ? field->DisplayText() : QString(), Column->Alignment());
}

void TCustomDBGrid::DrawColumnCell(QPainter *Canvas, const QRect &Rect, int DataCol, TColumn *Column,
                                   TGridDrawState State)
{
    if (OnDrawColumnCell)
        OnDrawColumnCell(this, Canvas, Rect, DataCol, Column, State);
}

void TCustomDBGrid::DrawDataCell(QPainter *Canvas, const QRect &Rect, TField *Field, TGridDrawState State)
{
    if (OnDrawDataCell)
        OnDrawDataCell(this, Canvas, Rect, Field, State);
}

int TCustomDBGrid::TitleLines() const
{
    int lines = 1;
    for (const TColumn *column : m_columns) {
        if (column->Visible())
            lines = std::max(lines, int(column->Title()->Caption().count(QLatin1Char('\n'))) + 1);
    }
    return lines;
}

void TCustomDBGrid::DrawCellText(QPainter *Canvas, const QRect &Rect, const QString &Text, Qt::Alignment Alignment,
                                 bool MultiLine) const
{
    Qt::Alignment align = Alignment;
    if (!(align & Qt::AlignVertical_Mask))
        align |= Qt::AlignVCenter;
    if (!(align & Qt::AlignHorizontal_Mask))
        align |= Qt::AlignLeft;
    Canvas->drawText(Rect.adjusted(2, 0, -2, 0), int(align) | (MultiLine ? 0 : Qt::TextSingleLine), Text);
}

void TCustomDBGrid::PaintTitle(QPainter *painter, const QRect &rect, int viewColumn)
{
    TColumn *column = ViewColumn(viewColumn);
    if (!column)
        return;
    painter->save();
    DrawTitleCell(painter, rect, column, TitleIsButton(column) && m_pressedTitle == IndicatorOffset() + column->Index());
    painter->restore();
}

void TCustomDBGrid::DrawTitleCell(QPainter *Canvas, const QRect &Rect, TColumn *Column, bool Down)
{
    const TColor color = Column->Title()->Color() == clDefault ? m_fixedColor : Column->Title()->Color();
    Canvas->fillRect(Rect, TColorToQColor(color));
    DrawBevel(Canvas, Rect, Down);
    Canvas->setFont(m_titleFont);
    Canvas->setPen(TColorToQColor(clBtnText));
    const QRect text = Down ? Rect.translated(1, 1) : Rect;
    DrawCellText(Canvas, text, Column->Title()->Caption(), Column->Title()->Alignment(), true);
}

void TCustomDBGrid::DrawIndicatorCell(QPainter *Canvas, const QRect &Rect, int Row)
{
    Canvas->save();
    Canvas->fillRect(Rect, TColorToQColor(m_fixedColor));
    DrawBevel(Canvas, Rect, false);
    const TDataSet *ds = DataSet();
    if (ds) {
        const QPointF c = QRectF(Rect).center();
        Canvas->setRenderHint(QPainter::Antialiasing);
        Canvas->setPen(Qt::NoPen);
        Canvas->setBrush(TColorToQColor(clBtnText));
        const bool selected = m_options.testFlag(dgMultiSelect) && m_selectedRows.Contains(ds->RowBookmark(Row));
        if (Row == ds->CurrentRow()) {
            if (ds->State() == dsEdit) {
                // An I-beam: the record is being edited.
                Canvas->setPen(QPen(TColorToQColor(clBtnText), 1.2));
                Canvas->drawLine(QPointF(c.x(), c.y() - 4), QPointF(c.x(), c.y() + 4));
                Canvas->drawLine(QPointF(c.x() - 2, c.y() - 4), QPointF(c.x() + 2, c.y() - 4));
                Canvas->drawLine(QPointF(c.x() - 2, c.y() + 4), QPointF(c.x() + 2, c.y() + 4));
            } else if (ds->State() == dsInsert) {
                QFont font = Canvas->font();
                font.setBold(true);
                Canvas->setFont(font);
                Canvas->setPen(TColorToQColor(clBtnText));
                Canvas->drawText(Rect, Qt::AlignCenter, QStringLiteral("*"));
            } else {
                QPainterPath arrow;
                arrow.moveTo(c.x() - 2, c.y() - 4);
                arrow.lineTo(c.x() + 3, c.y());
                arrow.lineTo(c.x() - 2, c.y() + 4);
                arrow.closeSubpath();
                Canvas->drawPath(arrow);
            }
        } else if (selected) {
            Canvas->drawEllipse(c, 2.5, 2.5);
        }
    }
    Canvas->restore();
}

void TCustomDBGrid::InvalidateTitles()
{
    m_titleBar->viewport()->update();
    m_fixedView->horizontalHeader()->viewport()->update();
}

void TCustomDBGrid::InvalidateGrid()
{
    viewport()->update();
    m_indicator->viewport()->update();
    m_fixedView->viewport()->update();
}

} // namespace mattoni
