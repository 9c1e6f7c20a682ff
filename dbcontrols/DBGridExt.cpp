// The extended data grid.
#include "DBGridExt.h"

#include "ClientDataSet.h"
#include "Exceptions.h"
#include "FormatSettings.h"
#include "Graphics.h"
#include "Strings.h"

#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QHeaderView>
#include <QPainter>
#include <QPainterPath>
#include <QStyle>
#include <QStyleOptionButton>

namespace mattoni {

namespace {

const QLatin1StringView SortIndexName("SortGrid");

QStringList SplitNames(const QString &names)
{
    QStringList list;
    for (const QString &name : names.split(QLatin1Char(';'))) {
        if (const QString trimmed = Trim(name); !trimmed.isEmpty())
            list.append(trimmed);
    }
    return list;
}

bool HasName(const QStringList &names, const QString &name)
{
    return std::any_of(names.cbegin(), names.cend(), [&](const QString &n) { return SameText(n, name); });
}

void RemoveName(QStringList &names, const QString &name)
{
    names.removeIf([&](const QString &n) { return SameText(n, name); });
}

bool MatchesValue(const QString &values, const QString &text)
{
    return HasName(values.split(QLatin1Char(';')), text);
}

QString FirstValue(const QString &values)
{
    return values.section(QLatin1Char(';'), 0, 0);
}

// The glyphs of blob-like fields, 16x16: binary data, a memo, a picture, an embedded object.
void DrawGlyphs(TCustomImageList *list)
{
    const QColor ink = TColorToQColor(clBtnText);
    for (int kind = 0; kind < 4; ++kind) {
        QPixmap image(16, 16);
        image.fill(Qt::transparent);
        QPainter p(&image);
        p.setRenderHint(QPainter::Antialiasing);
        p.setPen(QPen(ink, 1));
        p.setBrush(Qt::white);
        switch (kind) {
        case 0:
            p.drawRect(QRectF(1.5, 3.5, 13, 9));
            p.setFont(QFont(p.font().family(), 5));
            p.drawText(QRectF(1.5, 3.5, 13, 9), Qt::AlignCenter, QStringLiteral("01"));
            break;
        case 1:
            p.drawRect(QRectF(3.5, 1.5, 9, 13));
            for (int y = 4; y <= 12; y += 2)
                p.drawLine(QPointF(5, y + 0.5), QPointF(11, y + 0.5));
            break;
        case 2: {
            p.drawRect(QRectF(1.5, 2.5, 13, 11));
            QPainterPath hill;
            hill.moveTo(2, 13);
            hill.lineTo(6, 7);
            hill.lineTo(9, 11);
            hill.lineTo(11, 9);
            hill.lineTo(14, 13);
            hill.closeSubpath();
            p.setBrush(QColor(0x40, 0x80, 0x40));
            p.drawPath(hill);
            p.setBrush(QColor(0xE0, 0xB0, 0x20));
            p.drawEllipse(QPointF(11, 5.5), 1.5, 1.5);
            break;
        }
        default:
            p.drawRect(QRectF(1.5, 1.5, 13, 13));
            p.setBrush(QColor(0x30, 0x60, 0xC0));
            p.drawRect(QRectF(4.5, 4.5, 7, 7));
            break;
        }
        p.end();
        list->Add(image);
    }
}

} // namespace

// ---------------------------------------------------------------------------------------------
// TEnhancedColumn

TEnhancedColumn::TEnhancedColumn(TDBGridColumns *collection) : TColumn(collection) {}

void TEnhancedColumn::setAutoResize(bool value)
{
    if (value == m_autoResize)
        return;
    m_autoResize = value;
    Changed(true);
}

void TEnhancedColumn::setCheck(bool value)
{
    if (value == m_check)
        return;
    m_check = value;
    Changed();
}

void TEnhancedColumn::setValueChecked(const QString &value)
{
    m_valueChecked = value;
    Changed();
}

void TEnhancedColumn::setValueUnchecked(const QString &value)
{
    m_valueUnchecked = value;
    Changed();
}

void TEnhancedColumn::setWidthMax(int value)
{
    if (value == m_widthMax)
        return;
    m_widthMax = value;
    Changed(true);
}

bool TEnhancedColumn::IsChecked(const QString &text) const
{
    return MatchesValue(m_valueChecked, text);
}

bool TEnhancedColumn::IsUnchecked(const QString &text) const
{
    return MatchesValue(m_valueUnchecked, text);
}

// ---------------------------------------------------------------------------------------------
// TDBGridExt: properties

TDBGridExt::TDBGridExt(QWidget *owner) : TCustomDBGrid(owner), m_glyphs(new TCustomImageList(16, 16, this))
{
    DrawGlyphs(m_glyphs);
}

TColumn *TDBGridExt::CreateColumn()
{
    return new TEnhancedColumn(&Columns());
}

void TDBGridExt::setAlternateColor(bool value)
{
    if (value == m_alternateColor)
        return;
    m_alternateColor = value;
    InvalidateGrid();
}

void TDBGridExt::setMultiSelect(bool value)
{
    TDBGridOptions options = Options();
    options.setFlag(dgMultiSelect, value);
    setOptions(options);
}

void TDBGridExt::setShowGlyphs(bool value)
{
    if (value == m_showGlyphs)
        return;
    m_showGlyphs = value;
    InvalidateGrid();
}

void TDBGridExt::setTitleSort(bool value)
{
    if (value == m_titleSort)
        return;
    m_titleSort = value;
    if (value)
        SetIndexIndicators(QString());
    else
        ClearIndexIndicators();
    InvalidateTitles();
}

void TDBGridExt::setShowMemo(bool value)
{
    if (value == m_showMemo)
        return;
    m_showMemo = value;
    InvalidateGrid();
}

void TDBGridExt::setShowImage(bool value)
{
    if (value == m_showImage)
        return;
    m_showImage = value;
    InvalidateGrid();
}

void TDBGridExt::setVertAlignment(TVertAlignment value)
{
    if (value == m_vertAlignment)
        return;
    m_vertAlignment = value;
    InvalidateGrid();
}

const TCustomImageList &TDBGridExt::Glyphs() const
{
    return *m_glyphs;
}

TCustomClientDataSet *TDBGridExt::ClientDataSet() const
{
    return qobject_cast<TCustomClientDataSet *>(DataSet());
}

// ---------------------------------------------------------------------------------------------
// Sorting by the titles

bool TDBGridExt::IndexFields(TCustomClientDataSet *ds, const QString &indexName, QString &fields, QString &desc,
                             TIndexOptions *options, QString *defName)
{
    const TIndexDef *def = ds->IndexDefs().FindDef(indexName.isEmpty() ? ds->IndexName() : indexName);
    if (!def || (indexName.isEmpty() && ds->IndexName().isEmpty())) {
        fields = ds->IndexFieldNames();
        desc.clear();
        return false;
    }
    fields = def->Fields();
    desc = def->DescFields();
    if (desc.isEmpty() && def->Options().testFlag(ixDescending))
        desc = def->Fields();
    if (options)
        *options = def->Options();
    if (defName)
        *defName = def->Name();
    return true;
}

void TDBGridExt::SortGrid(TColumn *Column, bool Descending, const QString &IndexName)
{
    TField *field = Column ? Column->Field() : nullptr;
    if (!field)
        return;
    const TFieldType type = field->DataType();
    if ((type >= ftBlob && type <= ftCursor) || (type >= ftReference && type <= ftOraClob))
        return;
    auto *ds = qobject_cast<TCustomClientDataSet *>(field->DataSet());
    if (!ds || !ds->Active())
        return;

    QString sortBy;
    switch (field->FieldKind()) {
    case fkData:
    case fkInternalCalc: sortBy = Column->FieldName(); break;
    case fkLookup: sortBy = field->KeyFields(); break;
    default: return;
    }
    const QStringList added = SplitNames(sortBy);

    QString fieldText, descText, defName;
    TIndexOptions defOptions;
    const bool hasDef = IndexFields(ds, IndexName, fieldText, descText, &defOptions, &defName);
    QStringList fields = SplitNames(fieldText), desc = SplitNames(descText);

    TIndexOptions options;
    if (Descending) {
        if (hasDef)
            options = defOptions;
    } else {
        fields.removeIf([&](const QString &n) { return !HasName(added, n); });
        desc.removeIf([&](const QString &n) { return !HasName(added, n); });
    }

    QString oldFields, oldDesc;
    TIndexOptions oldOptions;
    const bool wasActive = hasDef && SameText(ds->IndexName(), defName);
    if (hasDef) {
        oldFields = fieldText;
        oldDesc = descText;
        oldOptions = defOptions;
        const QMetaObject *meta = ds->metaObject();
        if (const int p = meta->indexOfProperty("IndexName"); p >= 0)
            meta->property(p).write(ds, QString());
        ds->DeleteIndex(defName);
        ds->IndexDefs().Update();
    }
    options |= ixCaseInsensitive;

    for (auto it = added.crbegin(); it != added.crend(); ++it) {
        const QString &name = *it;
        if (!HasName(fields, name)) {
            fields.append(name);
        } else if (!HasName(desc, name)) {
            desc.append(name);
        } else {
            RemoveName(desc, name);
            if (Descending)
                RemoveName(fields, name);
        }
    }

    auto *grid = qobject_cast<TDBGridExt *>(Column->Grid());
    try {
        ds->AddIndex(IndexName, fields.join(QLatin1Char(';')), options, desc.join(QLatin1Char(';')), QString(), 0);
        ds->IndexDefs().Update();
        if (grid)
            grid->SetIndexIndicators(IndexName);
        ds->setIndexName(IndexName);
    } catch (...) {
        if (grid) {
            if (!oldFields.isEmpty()) {
                if (ds->IndexDefs().FindDef(IndexName))
                    ds->DeleteIndex(IndexName);
                ds->AddIndex(IndexName, oldFields, oldOptions, oldDesc, QString(), 0);
                ds->IndexDefs().Update();
                grid->SetIndexIndicators(IndexName);
                // The rows go back to the order the indicators show.
                if (wasActive)
                    ds->setIndexName(IndexName);
            } else {
                grid->ClearIndexIndicators();
            }
        }
        throw;
    }
}

void TDBGridExt::ClearIndexIndicators()
{
    for (TColumn *column : Columns()) {
        if (auto *c = qobject_cast<TEnhancedColumn *>(column)) {
            c->m_sortDirection = 0;
            c->m_sortPosition = 0;
        }
    }
    m_sortFieldCount = 0;
    InvalidateTitles();
}

void TDBGridExt::SetIndexIndicators(const QString &IndexName)
{
    ClearIndexIndicators();
    TCustomClientDataSet *ds = ClientDataSet();
    if (!ds)
        return;
    QString fieldText, descText;
    IndexFields(ds, IndexName, fieldText, descText);
    const QStringList fields = SplitNames(fieldText);
    m_sortFieldCount = int(fields.size());
    for (int i = 0; i < fields.size(); ++i) {
        TField *field = ds->FindField(fields.at(i));
        const int col = field ? FindFieldColumn(field) : -1;
        if (TEnhancedColumn *column = col >= 0 ? Column(col) : nullptr) {
            // A plain substring test on the descending fields' text, not a match of whole names:
            // a field whose name is part of a descending field's name shows as descending too.
            column->m_sortDirection = descText.contains(fields.at(i)) ? -1 : 1;
            column->m_sortPosition = i;
        }
    }
    InvalidateTitles();
}

void TDBGridExt::TitleClick(TColumn *Column)
{
    setSelectedIndex(Column->Index());
    if (m_titleSort)
        SortGrid(Column, MouseShift().testFlag(Qt::ShiftModifier), SortIndexName);
    TCustomDBGrid::TitleClick(Column);
}

void TDBGridExt::LinkActive(bool Value)
{
    TCustomDBGrid::LinkActive(Value);
    if (Value && m_titleSort)
        SetIndexIndicators(QString());
    else if (!Value)
        ClearIndexIndicators();
    if (Value)
        EnterCheckColumn();
}

bool TDBGridExt::TitleIsButton(TColumn *Column) const
{
    bool enabled = TitleButtons();
    if (OnCheckButton)
        OnCheckButton(const_cast<TDBGridExt *>(this), IndicatorOffset() + Column->Index(), Column->Field(), enabled);
    return enabled;
}

// ---------------------------------------------------------------------------------------------
// Cells

void TDBGridExt::GetCellProps(TColumn *Column, TFont *AFont, TColor &Background, bool Highlight)
{
    TField *field = Column->Field();
    if (OnGetCellParams) {
        OnGetCellParams(this, field, AFont, Background, Highlight);
        return;
    }
    if (!OnGetCellProps) {
        AFont->setColor(clWindowText);
        TDataSet *ds = DataSet();
        const bool focusedColumn = Column->Index() == SelectedIndex() && !Options().testFlag(dgRowSelect);
        const bool readOnly = ReadOnly() || Column->ReadOnly() || (field && field->ReadOnly());
        if (Highlight) {
            Background = focusedColumn ? clCream : clSkyBlue;
        } else if (Column->Color() != Color() || Column->Font().Color() != clWindowText) {
            // A column given colours of its own keeps them outside the highlighted cells.
            Background = Column->Color();
            AFont->setColor(Column->Font().Color());
        } else if (ds && DrawingRow() == ds->CurrentRow()) {
            Background = clSkyBlue;
        } else if (readOnly) {
            Background = clInfoBk;
        } else if (m_alternateColor && DrawingBufferRow() % 2 == 0) {
            // Counted from the top row in view, so the colours change places as the grid scrolls.
            Background = clCream;
        } else {
            Background = clWindow;
        }
        return;
    }
    if (Highlight) {
        // The highlight keeps its colours whatever the handler does.
        const TColor font = AFont->Color();
        TColor ignored = Background;
        OnGetCellProps(this, field, AFont, ignored);
        AFont->setColor(font);
    } else {
        OnGetCellProps(this, field, AFont, Background);
    }
}

// The highlight colours come first, as the plain grid gives them; the scheme or the handlers
// then decide.
void TDBGridExt::CellColors(TColumn *Column, TFont &Font, TColor &Background, bool Highlight)
{
    TCustomDBGrid::CellColors(Column, Font, Background, Highlight);
    GetCellProps(Column, &Font, Background, Highlight);
}

int TDBGridExt::GetImageIndex(TField *Field) const
{
    if (!m_showGlyphs || !Field || Field->OnGetText)
        return -1;
    switch (Field->DataType()) {
    case ftBytes:
    case ftVarBytes:
    case ftBlob:
    case ftTypedBinary: return 0;
    case ftMemo:
    case ftFmtMemo: return 1;
    case ftGraphic: return 2;
    case ftParadoxOle:
    case ftDBaseOle: return 3;
    default: return -1;
    }
}

void TDBGridExt::DefaultDrawColumnCell(QPainter *Canvas, const QRect &Rect, int DataCol, TColumn *Column,
                                       TGridDrawState State)
{
    auto *column = qobject_cast<TEnhancedColumn *>(Column);
    TField *field = Column->Field();
    const Qt::Alignment vertical = m_vertAlignment == vaTopJustify      ? Qt::AlignTop
                                   : m_vertAlignment == vaBottomJustify ? Qt::AlignBottom
                                                                        : Qt::AlignVCenter;
    if (column && column->Check() && field) {
        Canvas->fillRect(Rect, Canvas->brush());
        const QString text = field->AsString();
        QStyleOptionButton box;
        box.state = QStyle::State_Enabled | (column->IsChecked(text)     ? QStyle::State_On
                                             : column->IsUnchecked(text) ? QStyle::State_Off
                                                                         : QStyle::State_NoChange);
        const QSize size(style()->pixelMetric(QStyle::PM_IndicatorWidth), style()->pixelMetric(QStyle::PM_IndicatorHeight));
        box.rect = QStyle::alignedRect(layoutDirection(), Qt::AlignCenter, size, Rect);
        style()->drawPrimitive(QStyle::PE_IndicatorCheckBox, &box, Canvas, this);
        return;
    }
    const int glyph = GetImageIndex(field);
    if (glyph == 1 && m_showMemo) {
        Canvas->fillRect(Rect, Canvas->brush());
        QString text = field->AsString();
        text.replace(QLatin1Char('\n'), QLatin1Char(' ')).remove(QLatin1Char('\r'));
        DrawCellText(Canvas, Rect, text, Column->Alignment() | vertical);
        return;
    }
    if (glyph == 2 && m_showImage) {
        Canvas->fillRect(Rect, Canvas->brush());
        QImage image;
        if (image.loadFromData(field->AsBytes())) {
            const QImage fitted = image.scaled(Rect.size() - QSize(2, 2), Qt::KeepAspectRatio, Qt::SmoothTransformation);
            Canvas->drawImage(QStyle::alignedRect(layoutDirection(), Qt::AlignCenter, fitted.size(), Rect), fitted);
        }
        return;
    }
    if (glyph >= 0) {
        Canvas->fillRect(Rect, Canvas->brush());
        const QRect at = QStyle::alignedRect(layoutDirection(), Qt::AlignCenter,
                                             QSize(m_glyphs->Width(), m_glyphs->Height()), Rect);
        m_glyphs->Draw(Canvas, at.x(), at.y(), glyph);
        return;
    }
    if (m_vertAlignment == vaCenter) {
        TCustomDBGrid::DefaultDrawColumnCell(Canvas, Rect, DataCol, Column, State);
        return;
    }
    Canvas->fillRect(Rect, Canvas->brush());
    DrawCellText(Canvas, Rect, field ? field->DisplayText() : QString(), Column->Alignment() | vertical);
}

void TDBGridExt::DrawTitleCell(QPainter *Canvas, const QRect &Rect, TColumn *Column, bool Down)
{
    auto *column = qobject_cast<TEnhancedColumn *>(Column);
    const int direction = column ? column->SortDirection() : 0;
    QRect text = Rect;
    if (direction != 0)
        text.setRight(Rect.right() - (m_sortFieldCount > 1 ? 22 : 12));

    if (TitleIsButton(Column)) {
        TFont font(TitleFont(), clBtnText);
        TColor background = Column->Title()->Color() == clDefault ? FixedColor() : Column->Title()->Color();
        if (OnGetBtnParams)
            OnGetBtnParams(this, Column->Field(), &font, background, Down);
        QStyleOptionHeader header;
        header.initFrom(this);
        header.rect = Rect;
        header.state = QStyle::State_Enabled | QStyle::State_Raised | (Down ? QStyle::State_Sunken : QStyle::State_None);
        style()->drawControl(QStyle::CE_HeaderSection, &header, Canvas, this);
        Canvas->fillRect(Rect.adjusted(1, 1, -1, -1), TColorToQColor(background));
        Canvas->setFont(font);
        Canvas->setPen(TColorToQColor(font.Color()));
        DrawCellText(Canvas, Down ? text.translated(1, 1) : text, Column->Title()->Caption(), Column->Title()->Alignment(),
                     true);
    } else {
        TCustomDBGrid::DrawTitleCell(Canvas, Rect, Column, Down);
        if (direction != 0) {
            // The caption gives way to the sort marker.
            const TColor color = Column->Title()->Color() == clDefault ? FixedColor() : Column->Title()->Color();
            Canvas->fillRect(QRect(text.right() + 1, Rect.top() + 1, Rect.right() - text.right() - 1, Rect.height() - 2),
                             TColorToQColor(color));
        }
    }
    if (direction == 0)
        return;

    Canvas->save();
    Canvas->setRenderHint(QPainter::Antialiasing);
    const QColor ink = TColorToQColor(clBtnText);
    const qreal cx = Rect.right() - 7, cy = Rect.center().y() + 0.5;
    QPainterPath arrow;
    if (direction > 0) {
        arrow.moveTo(cx - 4, cy + 2);
        arrow.lineTo(cx + 4, cy + 2);
        arrow.lineTo(cx, cy - 3);
    } else {
        arrow.moveTo(cx - 4, cy - 2);
        arrow.lineTo(cx + 4, cy - 2);
        arrow.lineTo(cx, cy + 3);
    }
    arrow.closeSubpath();
    Canvas->setPen(Qt::NoPen);
    Canvas->setBrush(ink);
    Canvas->drawPath(arrow);
    if (m_sortFieldCount > 1) {
        QFont small = TitleFont();
        small.setPointSizeF(std::max(5.0, small.pointSizeF() * 0.75));
        Canvas->setFont(small);
        Canvas->setPen(ink);
        Canvas->drawText(QRect(Rect.right() - 22, Rect.top(), 11, Rect.height()), Qt::AlignCenter,
                         QString::number(column->SortPosition() + 1));
    }
    Canvas->restore();
}

// ---------------------------------------------------------------------------------------------
// Check boxes, editing and typed keys

bool TDBGridExt::ColumnEditable(TColumn *Column) const
{
    auto *column = qobject_cast<TEnhancedColumn *>(Column);
    return !(column && column->Check()) && TCustomDBGrid::ColumnEditable(Column);
}

void TDBGridExt::EnterCheckColumn()
{
    TEnhancedColumn *column = SelectedColumn();
    if (!column || !column->Check() || m_checkColumn == column)
        return;
    m_checkColumn = column;
    m_checkEditing = Options().testFlag(dgEditing);
    setOptions(Options() & ~TDBGridOptions(dgEditing));
}

void TDBGridExt::ColEnter()
{
    EnterCheckColumn();
    TCustomDBGrid::ColEnter();
}

void TDBGridExt::ColExit()
{
    if (m_checkColumn && m_checkColumn == SelectedColumn()) {
        if (m_checkEditing)
            setOptions(Options() | dgEditing);
        m_checkColumn = nullptr;
    }
    TCustomDBGrid::ColExit();
}

void TDBGridExt::CellClick(TColumn *Column)
{
    auto *column = qobject_cast<TEnhancedColumn *>(Column);
    if (column && column->Check() && m_checkEditing && column == m_checkColumn)
        SaveBoolean();
    TCustomDBGrid::CellClick(Column);
}

void TDBGridExt::SaveBoolean()
{
    TEnhancedColumn *column = SelectedColumn();
    TDataSet *ds = DataSet();
    TField *field = column ? column->Field() : nullptr;
    if (!field || !ds || column->ReadOnly())
        return;
    if (DataSource()->AutoEdit() && ds->State() == dsBrowse)
        ds->Edit();
    if (ds->State() != dsEdit && ds->State() != dsInsert)
        return;
    if (column->IsChecked(field->AsString()))
        field->setAsString(FirstValue(column->ValueUnchecked()));
    else
        field->setAsString(FirstValue(column->ValueChecked()));
}

void TDBGridExt::KeyPress(QChar &Key)
{
    if (const TField *field = SelectedField(); field && Key == QLatin1Char('.')) {
        const TFieldType type = field->DataType();
        if (type == ftFloat || type == ftCurrency || type == ftBCD)
            Key = FormatSettings.DecimalSeparator;
    }
    TCustomDBGrid::KeyPress(Key);
    if (Key.isNull())
        return;
    if (const TEnhancedColumn *column = SelectedColumn(); column && !column->ValidChar().isEmpty()) {
        // Control characters (Backspace, Enter, Escape) always pass.
        if (Key.unicode() >= 32 && !column->ValidChar().contains(Key)) {
            Key = QChar();
            QApplication::beep();
        }
    }
}

QWidget *TDBGridExt::CreateEditor(QWidget *parent, TColumn *Column)
{
    auto *column = qobject_cast<TEnhancedColumn *>(Column);
    if (!column || column->Values().isEmpty() || column->ButtonStyle() != cbsAuto)
        return TCustomDBGrid::CreateEditor(parent, Column);
    auto *combo = new QComboBox(parent);
    combo->setEditable(true);
    combo->setFrame(false);
    combo->addItems(column->Values());
    return combo;
}

// ---------------------------------------------------------------------------------------------
// Selection and the clipboard

void TDBGridExt::ToggleRowSelection()
{
    SelectedRows().setCurrentRowSelected(!SelectedRows().CurrentRowSelected());
}

void TDBGridExt::SelectAll()
{
    TDataSet *ds = DataSet();
    if (!ds)
        return;
    QList<TBookmark> all;
    all.reserve(ds->RecordCount());
    for (int row = 0; row < ds->RecordCount(); ++row)
        all.append(ds->RowBookmark(row));
    SelectedRows().Assign(all);
}

void TDBGridExt::GotoSelection(int Index)
{
    if (TDataSet *ds = DataSet(); ds && Index >= 0 && Index < SelectedRows().Count())
        ds->GotoBookmark(SelectedRows()[Index]);
}

int TDBGridExt::FindFieldColumn(TField *Field) const
{
    for (const TColumn *column : Columns()) {
        if (Field && column->Field() == Field)
            return column->Index();
    }
    return -1;
}

void TDBGridExt::CopyToClipboard()
{
    QClipboard *clipboard = QGuiApplication::clipboard();
    clipboard->clear();
    TDataSet *ds = DataSet();
    if (!ds)
        return;
    QList<TColumn *> copied;
    for (TColumn *column : Columns()) {
        const TField *field = column->Field();
        const TFieldType type = field ? field->DataType() : ftUnknown;
        if (column->Visible() && type != ftBytes && type != ftBlob && type != ftMemo && type != ftGraphic)
            copied.append(column);
    }
    QStringList cells;
    for (const TColumn *column : std::as_const(copied))
        cells.append(column->Title()->Caption());
    QString text = cells.join(QLatin1Char('\t')) + QLatin1Char('\n');

    const TBookmark here = ds->GetBookmark();
    ds->DisableControls();
    try {
        for (int i = 0; i < SelectedRows().Count(); ++i) {
            ds->GotoBookmark(SelectedRows()[i]);
            cells.clear();
            for (const TColumn *column : std::as_const(copied)) {
                const TField *field = column->Field();
                cells.append(field ? field->DisplayText() : QString());
            }
            text += cells.join(QLatin1Char('\t')) + QLatin1Char('\n');
        }
        if (!here.isEmpty() && ds->BookmarkValid(here))
            ds->GotoBookmark(here);
    } catch (...) {
        ds->EnableControls();
        throw;
    }
    ds->EnableControls();
    clipboard->setText(text);
}

// ---------------------------------------------------------------------------------------------
// Automatic widths

void TDBGridExt::resizeEvent(QResizeEvent *event)
{
    TCustomDBGrid::resizeEvent(event);
    AutoSizeColumns();
}

// The visible AutoResize columns share equally what the other columns leave of the grid's
// width, each at most its WidthMax and at least 16 pixels.
void TDBGridExt::AutoSizeColumns()
{
    if (m_autoSizing)
        return;
    QList<TEnhancedColumn *> sharing;
    int fixed = 0;
    for (TColumn *column : Columns()) {
        // Fixed columns stand outside the scrolling width being shared.
        if (!column->Visible() || !column->Field() || IsFixedColumn(column))
            continue;
        auto *c = qobject_cast<TEnhancedColumn *>(column);
        if (c && c->AutoResize())
            sharing.append(c);
        else
            fixed += column->Width();
    }
    if (sharing.isEmpty())
        return;
    const int share = (viewport()->width() - fixed) / int(sharing.size());
    m_autoSizing = true;
    for (TEnhancedColumn *c : std::as_const(sharing))
        c->setWidth(std::clamp(share, 16, std::max(16, c->WidthMax())));
    m_autoSizing = false;
}

} // namespace mattoni
