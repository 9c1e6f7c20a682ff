// The enhanced edit: a line edit that shows its value through a display format while it does not
// have the focus, takes any text or only numbers, limits what the user types to MaxLength
// characters and paints itself with the colour scheme of the input controls by state (focused,
// normal, disabled, read-only). TDBEditEnh binds it to a field of a dataset.
//
// Errors raised by the handlers an edit runs for Qt's events and signals (its exit and change
// handlers, the write-back of its field) go to OnControlException (ControlErrors.h); an error on
// exit also puts the focus back on the edit, so that the user corrects the value first.
#pragma once

#include "Color.h"
#include "DataSource.h"
#include "mattoni_widgets_export.h"

#include <QLineEdit>
#include <QString>

#include <functional>

namespace mattoni {

class TField;

// Takes away the margin QLineEdit keeps inside its frame, for an edit drawn without one: the
// library's composite controls size their borderless edits to the width of their digits.
MATTONI_WIDGETS_EXPORT void RemoveInnerMargin(QLineEdit *edit, bool remove = true);

class MATTONI_WIDGETS_EXPORT TEditEnh : public QLineEdit
{
    Q_OBJECT
    Q_PROPERTY(bool Border READ Border WRITE setBorder)
    Q_PROPERTY(quint32 Color READ Color WRITE setColor)
    Q_PROPERTY(QString DisplayFormat READ DisplayFormat WRITE setDisplayFormat)
    Q_PROPERTY(TDisplayType DisplayType READ DisplayType WRITE setDisplayType)
    Q_PROPERTY(int MaxLength READ MaxLength WRITE setMaxLength)
    Q_PROPERTY(bool ReadOnly READ ReadOnly WRITE setReadOnly)
    Q_PROPERTY(bool TabStop READ TabStop WRITE setTabStop)

public:
    // dtAlpha takes any text; dtGeneral numbers: digits, sign and the decimal separator.
    enum TDisplayType { dtAlpha, dtGeneral };
    Q_ENUM(TDisplayType)

    explicit TEditEnh(QWidget *parent = nullptr);
    ~TEditEnh() override;

    // Without a border the text runs from edge to edge, with no inner margin either.
    bool Border() const { return hasFrame(); }
    void setBorder(bool value);
    // The background while the edit is enabled, editable and without the focus; starts as the
    // scheme's BkNormalColor.
    TColor Color() const { return m_color; }
    void setColor(TColor value);
    // A FormatFloat pattern for the value of a dtGeneral edit without the focus; a text that is
    // no number shows as it is. A dtAlpha edit keeps the pattern for its owner and shows its text.
    QString DisplayFormat() const { return m_displayFormat; }
    void setDisplayFormat(const QString &value);
    TDisplayType DisplayType() const { return m_displayType; }
    void setDisplayType(TDisplayType value);
    // The characters the user may type or paste; 0 for no limit. A longer text set by the
    // program is shown whole.
    int MaxLength() const { return m_maxLength; }
    void setMaxLength(int value);
    bool ReadOnly() const { return isReadOnly(); }
    // Tab and Shift+Tab stop on the edit; without, it still takes the focus from a click.
    bool TabStop() const { return (focusPolicy() & Qt::TabFocus) != 0; }
    void setTabStop(bool value);

    // The value as edited: the text while the edit has the focus, the text before formatting
    // otherwise.
    QString EditText() const { return m_entered ? text() : m_editText; }
    // Whether the edit is the active control of its window: from the focus coming in to the focus
    // going to another control of the same window (another window taking the focus is no exit).
    bool Entered() const { return m_entered; }

    // Any change of the value, by the user or the program, but not the switch between the edited
    // and the displayed form.
    std::function<void(QObject *Sender)> OnChange;
    std::function<void(QObject *Sender)> OnEnter;
    std::function<void(QObject *Sender)> OnExit;

protected:
    bool event(QEvent *event) override;
    void changeEvent(QEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;

    // The text changed: raises OnChange.
    virtual void Change();
    // The edit stopped being the active control: shows the value formatted, raises OnExit.
    virtual void DoExit();
    // Whether the edit paints itself read-only.
    virtual bool ReadOnlyLook() const { return isReadOnly(); }
    // Paints the background and the text with the scheme's colours for the current state.
    void UpdateColors();
    // Characters of Text that the display type refuses (dtGeneral: all but digits, the signs and
    // the decimal separator).
    int RefusedChars(const QString &text) const;
    // Whether the change now on its way comes from the user (a key, a paste, a drop).
    bool UserInput() const { return m_userInput; }
    // Sets the text as the program does, even inside the handling of a user's input.
    void SetProgramText(const QString &text);
    // Posts the error being handled to OnControlException; Refocus first puts the focus back on
    // the edit with its text selected.
    void PostCurrentException(bool refocus);

private:
    class Validator;

    void TextChanged();
    // A user's edit that lengthens the text beyond MaxLength, or brings in characters the display
    // type refuses, is undone; text set by the program is never refused.
    bool AcceptsInput(const QString &input) const;
    // Replaces the text without a change notification.
    void SetShownText(const QString &text);
    QString DisplayTextOf(const QString &value) const;
    void ShowValue();

    TColor m_color;
    QString m_displayFormat;
    TDisplayType m_displayType = dtAlpha;
    int m_maxLength = 0;
    bool m_entered = false;
    bool m_silent = false;
    bool m_userInput = false;
    // The value as edited while the edit shows it formatted.
    QString m_editText;
    // The text before the change being validated.
    QString m_lastText;
};

using TDisplayType = TEditEnh::TDisplayType;
using enum TEditEnh::TDisplayType;

// The enhanced edit bound to one field of a dataset through a data link. It shows the field's
// text; the first key that changes the text puts the dataset in edit mode (when the data source
// has AutoEdit), and the text is written back to the field on exit and on Enter. Escape shows the
// field's value again.
class MATTONI_WIDGETS_EXPORT TDBEditEnh : public TEditEnh
{
    Q_OBJECT
    Q_PROPERTY(QString DataField READ DataField WRITE setDataField)
    Q_PROPERTY(mattoni::TDataSource *DataSource READ DataSource WRITE setDataSource)

public:
    explicit TDBEditEnh(QWidget *parent = nullptr);
    ~TDBEditEnh() override;

    QString DataField() const { return m_dataLink.FieldName(); }
    void setDataField(const QString &value) { m_dataLink.setFieldName(value); }
    TDataSource *DataSource() const { return m_dataLink.DataSource(); }
    void setDataSource(TDataSource *value) { m_dataLink.setDataSource(value); }
    // The bound field while the dataset is open.
    TField *Field() const { return m_dataLink.Field(); }

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void changeEvent(QEvent *event) override;
    void Change() override;
    void DoExit() override;
    bool ReadOnlyLook() const override;

private:
    void DataChange();
    void UpdateData();
    // Puts the dataset in edit mode (AutoEdit permitting) without showing the record again;
    // whether the link is now editing.
    bool EditKeepingText();
    // A user's change that came without a key (a paste from the menu, a drop) while the dataset
    // is not in edit mode: edit and keep the change, or drop it when the dataset cannot be edited.
    void EditAfterChange();

    TFieldDataLink m_dataLink;
    // The text is being set from the field.
    bool m_dataChanging = false;
    // The edit keeps its text while the dataset enters edit mode for the user's change.
    bool m_keepText = false;
};

} // namespace mattoni
