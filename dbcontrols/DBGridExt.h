// TDBGridExt: the library's general data grid. Over the plain data grid it sorts a client
// dataset by a click on a column title (building the dataset's "SortGrid" index, Shift-click
// adding columns to the sort), shows the sort in the titles, colours cells by a fixed scheme
// that handlers may override, toggles check-box columns between two values, filters the
// characters typed into a column, shows glyphs for blob fields, and copies the selected rows to
// the clipboard.
#pragma once

#include "DBGrid.h"
#include "ImageList.h"
#include "mattoni_widgets_export.h"

#include <QStringList>

namespace mattoni {

class TCustomClientDataSet;

class MATTONI_WIDGETS_EXPORT DBGridExtTypes
{
    Q_GADGET
public:
    // Where a cell's text sits between the cell's top and bottom.
    enum TVertAlignment { vaTopJustify, vaCenter, vaBottomJustify };
    Q_ENUM(TVertAlignment)
};
using TVertAlignment = DBGridExtTypes::TVertAlignment;
using enum DBGridExtTypes::TVertAlignment;

using TTitleClickEvent = std::function<void(QObject *Sender, int ACol, TField *Field)>;
using TCheckTitleBtnEvent = std::function<void(QObject *Sender, int ACol, TField *Field, bool &Enabled)>;
using TGetCellParamsEvent =
    std::function<void(QObject *Sender, TField *Field, TFont *AFont, TColor &Background, bool Highlight)>;
using TGetBtnParamsEvent =
    std::function<void(QObject *Sender, TField *Field, TFont *AFont, TColor &Background, bool IsDown)>;
using TGetCellPropsEvent = std::function<void(QObject *Sender, TField *Field, TFont *AFont, TColor &Background)>;

class MATTONI_WIDGETS_EXPORT TEnhancedColumn : public TColumn
{
    Q_OBJECT
    Q_PROPERTY(bool AutoResize READ AutoResize WRITE setAutoResize)
    Q_PROPERTY(bool Check READ Check WRITE setCheck)
    Q_PROPERTY(QString ValidChar READ ValidChar WRITE setValidChar)
    Q_PROPERTY(QString ValueChecked READ ValueChecked WRITE setValueChecked)
    Q_PROPERTY(QString ValueUnchecked READ ValueUnchecked WRITE setValueUnchecked)
    Q_PROPERTY(QStringList Values READ Values WRITE setValues)
    Q_PROPERTY(int WidthMax READ WidthMax WRITE setWidthMax)

public:
    explicit TEnhancedColumn(TDBGridColumns *collection);

    // Takes part in sharing the grid's width when the grid is resized.
    bool AutoResize() const { return m_autoResize; }
    void setAutoResize(bool value);
    // A check-box column: a click toggles the field between ValueChecked and ValueUnchecked,
    // and no in-place editor opens.
    bool Check() const { return m_check; }
    void setCheck(bool value);
    // When not empty, the only characters that may be typed into the column.
    QString ValidChar() const { return m_validChar; }
    void setValidChar(const QString &value) { m_validChar = value; }
    // ";"-separated values that count as checked (unchecked); the first is the one written.
    QString ValueChecked() const { return m_valueChecked; }
    void setValueChecked(const QString &value);
    QString ValueUnchecked() const { return m_valueUnchecked; }
    void setValueUnchecked(const QString &value);
    // The values offered by the in-place editor's drop-down list (with ButtonStyle cbsAuto).
    QStringList Values() const { return m_values; }
    void setValues(const QStringList &value) { m_values = value; }
    // The widest the column grows to when the grid shares out its width; 0: its DefaultWidth.
    int WidthMax() const { return m_widthMax > 0 ? m_widthMax : DefaultWidth(); }
    void setWidthMax(int value);

    // The sort shown in the title: 0 none, 1 ascending, -1 descending; the field's 0-based
    // position in the sort index (0 also when there is no sort: SortDirection tells them apart).
    int SortDirection() const { return m_sortDirection; }
    int SortPosition() const { return m_sortPosition; }

    // Whether Text is one of ValueChecked (ValueUnchecked), ignoring case.
    bool IsChecked(const QString &text) const;
    bool IsUnchecked(const QString &text) const;

private:
    friend class TDBGridExt;

    bool m_autoResize = false;
    bool m_check = false;
    QString m_validChar;
    QString m_valueChecked = QStringLiteral("1");
    QString m_valueUnchecked = QStringLiteral("0");
    QStringList m_values;
    int m_widthMax = 0;
    int m_sortDirection = 0;
    int m_sortPosition = 0;
};

class MATTONI_WIDGETS_EXPORT TDBGridExt : public TCustomDBGrid
{
    Q_OBJECT
    Q_PROPERTY(bool AlternateColor READ AlternateColor WRITE setAlternateColor)
    Q_PROPERTY(bool ClearSelection READ ClearSelection WRITE setClearSelection)
    Q_PROPERTY(bool MultiSelect READ MultiSelect WRITE setMultiSelect)
    Q_PROPERTY(int RowHeight READ RowHeight WRITE setRowHeight)
    Q_PROPERTY(bool ShowGlyphs READ ShowGlyphs WRITE setShowGlyphs)
    Q_PROPERTY(bool TitleSort READ TitleSort WRITE setTitleSort)
    Q_PROPERTY(bool ShowMemo READ ShowMemo WRITE setShowMemo)
    Q_PROPERTY(bool ShowImage READ ShowImage WRITE setShowImage)
    Q_PROPERTY(int FixedCols READ FixedCols WRITE setFixedCols)
    Q_PROPERTY(mattoni::DBGridExtTypes::TVertAlignment VertAlignment READ VertAlignment WRITE setVertAlignment)

public:
    explicit TDBGridExt(QWidget *owner = nullptr);

    TEnhancedColumn *Column(int index) const { return qobject_cast<TEnhancedColumn *>(Columns()[index]); }

    // Editable rows alternate a cream background with the plain one.
    bool AlternateColor() const { return m_alternateColor; }
    void setAlternateColor(bool value);
    // A plain click on a multi-select grid clears the selection and selects the clicked row
    // again (off: the click leaves nothing selected).
    bool ClearSelection() const { return ReselectRow(); }
    void setClearSelection(bool value) { setReselectRow(value); }
    // dgMultiSelect; turning it off clears the selected rows.
    bool MultiSelect() const { return Options().testFlag(dgMultiSelect); }
    void setMultiSelect(bool value);
    // The data rows' height in pixels; 0 measures it on "Wg" in the grid's font.
    int RowHeight() const { return DefaultRowHeight(); }
    void setRowHeight(int value) { setDefaultRowHeight(value); }
    // Blob, memo, graphic and OLE fields show a glyph instead of their text.
    bool ShowGlyphs() const { return m_showGlyphs; }
    void setShowGlyphs(bool value);
    // A click on a title sorts the client dataset by the column.
    bool TitleSort() const { return m_titleSort; }
    virtual void setTitleSort(bool value);
    // Memo fields show their text rather than a glyph.
    bool ShowMemo() const { return m_showMemo; }
    void setShowMemo(bool value);
    // Graphic fields show their picture, fitted to the cell.
    bool ShowImage() const { return m_showImage; }
    void setShowImage(bool value);
    TVertAlignment VertAlignment() const { return m_vertAlignment; }
    void setVertAlignment(TVertAlignment value);

    // The title-click sort: Descending is Shift held; a click builds the index of that name.
    virtual void SortGrid(TColumn *Column, bool Descending, const QString &IndexName);
    // Each column's SortDirection and SortPosition from the named index (empty: the dataset's
    // current index).
    virtual void SetIndexIndicators(const QString &IndexName);
    void ClearIndexIndicators();
    // The cell's colours: OnGetCellParams, else the scheme, then OnGetCellProps.
    void GetCellProps(TColumn *Column, TFont *AFont, TColor &Background, bool Highlight);
    // Toggles the selected check-box cell.
    void SaveBoolean();
    // The glyph shown for a blob-like field: 0 bytes and blobs, 1 memos, 2 graphics, 3 OLE
    // objects, -1 none.
    int GetImageIndex(TField *Field) const;
    // The glyphs GetImageIndex numbers.
    const TCustomImageList &Glyphs() const;

    bool ActiveRowSelected() const { return const_cast<TDBGridExt *>(this)->SelectedRows().CurrentRowSelected(); }
    void ToggleRowSelection();
    int GetSelCount() { return SelectedRows().Count(); }
    void SelectAll();
    void UnselectAll() { SelectedRows().Clear(); }
    void GotoSelection(int Index);
    int FindFieldColumn(TField *Field) const;
    // The titles and the selected rows as tab-separated lines, blob columns left out.
    void CopyToClipboard();

    using TCustomDBGrid::FixedCols;
    using TCustomDBGrid::setFixedCols;
    using TCustomDBGrid::DisableScroll;
    using TCustomDBGrid::EnableScroll;
    using TCustomDBGrid::ScrollDisabled;

    TCheckTitleBtnEvent OnCheckButton;
    TGetCellPropsEvent OnGetCellProps;
    TGetCellParamsEvent OnGetCellParams;
    TGetBtnParamsEvent OnGetBtnParams;

protected:
    TColumn *CreateColumn() override;
    void TitleClick(TColumn *Column) override;
    void CellClick(TColumn *Column) override;
    void ColEnter() override;
    void ColExit() override;
    void KeyPress(QChar &Key) override;
    bool ColumnEditable(TColumn *Column) const override;
    void CellColors(TColumn *Column, TFont &Font, TColor &Background, bool Highlight) override;
    void DefaultDrawColumnCell(QPainter *Canvas, const QRect &Rect, int DataCol, TColumn *Column,
                               TGridDrawState State) override;
    void DrawTitleCell(QPainter *Canvas, const QRect &Rect, TColumn *Column, bool Down) override;
    QWidget *CreateEditor(QWidget *parent, TColumn *Column) override;
    void LinkActive(bool Value) override;
    bool TitleIsButton(TColumn *Column) const override;
    // Whether titles are buttons before OnCheckButton has its say: while TitleSort is on.
    virtual bool TitleButtons() const { return m_titleSort; }
    void resizeEvent(QResizeEvent *event) override;

private:
    // The fields and descending fields of the named index (empty: the current one); false and
    // IndexFieldNames when no such definition exists.
    static bool IndexFields(TCustomClientDataSet *ds, const QString &indexName, QString &fields, QString &desc,
                            TIndexOptions *options = nullptr, QString *defName = nullptr);
    TCustomClientDataSet *ClientDataSet() const;
    TEnhancedColumn *SelectedColumn() const { return Column(SelectedIndex()); }
    void EnterCheckColumn();
    void AutoSizeColumns();

    bool m_alternateColor = false;
    bool m_showGlyphs = true;
    bool m_titleSort = false;
    bool m_showMemo = false;
    bool m_showImage = false;
    TVertAlignment m_vertAlignment = vaCenter;
    // The check-box column whose entry removed dgEditing, and whether it was set then.
    TColumn *m_checkColumn = nullptr;
    bool m_checkEditing = false;
    int m_sortFieldCount = 0;
    bool m_autoSizing = false;
    TCustomImageList *m_glyphs;
};

} // namespace mattoni
