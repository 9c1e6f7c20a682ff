// The enhanced edit and its data-aware form.
#include "EditEnh.h"

#include "ControlErrors.h"
#include "Fields.h"
#include "FormatSettings.h"
#include "Formatting.h"
#include "Graphics.h"
#include "usrconf.h"

#include <QApplication>
#include <QKeyEvent>
#include <QPointer>
#include <QScopedValueRollback>
#include <QValidator>

namespace mattoni {

namespace {

// Characters, not UTF-16 units: a character outside the basic plane counts once.
int characterCount(const QString &text)
{
    return int(text.size() - std::count_if(text.cbegin(), text.cend(), [](QChar c) { return c.isLowSurrogate(); }));
}

// The printable text a key types, as QLineEdit inserts it; empty for any other key.
QString typedText(const QKeyEvent *event)
{
    const QString text = event->text();
    const Qt::KeyboardModifiers modifiers = event->modifiers();
    if (text.isEmpty() || !text.at(0).isPrint() || modifiers == Qt::ControlModifier
        || modifiers == (Qt::ControlModifier | Qt::ShiftModifier))
        return QString();
    return text;
}

// The keys with which QLineEdit changes its text.
bool changesText(const QKeyEvent *event)
{
    static constexpr QKeySequence::StandardKey editing[] = {
        QKeySequence::Paste, QKeySequence::Cut, QKeySequence::Undo, QKeySequence::Redo,
        QKeySequence::Delete, QKeySequence::Backspace, QKeySequence::DeleteEndOfWord,
        QKeySequence::DeleteStartOfWord, QKeySequence::DeleteEndOfLine, QKeySequence::DeleteCompleteLine};
    for (QKeySequence::StandardKey key : editing) {
        if (event->matches(key))
            return true;
    }
    return event->key() == Qt::Key_Backspace || event->key() == Qt::Key_Delete || !typedText(event).isEmpty();
}

// QLineEdit's fixed margin between its contents rectangle and the text, on either side.
constexpr int LineEditMargin = 2;

} // namespace

void RemoveInnerMargin(QLineEdit *edit, bool remove)
{
    const int margin = remove ? -LineEditMargin : 0;
    edit->setTextMargins(margin, 0, margin, 0);
}

// Refuses the user's edits that AcceptsInput refuses; QLineEdit then undoes them.
class TEditEnh::Validator : public QValidator
{
public:
    explicit Validator(TEditEnh *edit) : QValidator(edit), m_edit(edit) {}

    State validate(QString &input, int &) const override
    {
        return !m_edit->m_userInput || m_edit->AcceptsInput(input) ? Acceptable : Invalid;
    }

private:
    TEditEnh *m_edit;
};

// ---------------------------------------------------------------------------------------------
// TEditEnh

TEditEnh::TEditEnh(QWidget *parent) : QLineEdit(parent), m_color(BkNormalColor)
{
    // QLineEdit leaves the pixels next to a missing frame unpainted; the whole edit takes its colour.
    setAutoFillBackground(true);
    setValidator(new Validator(this));
    connect(this, &QLineEdit::textChanged, this, &TEditEnh::TextChanged);
    UpdateColors();
}

TEditEnh::~TEditEnh() = default;

void TEditEnh::setBorder(bool value)
{
    setFrame(value);
    RemoveInnerMargin(this, !value);
}

void TEditEnh::setColor(TColor value)
{
    if (value == m_color)
        return;
    m_color = value;
    UpdateColors();
}

void TEditEnh::setDisplayFormat(const QString &value)
{
    if (value == m_displayFormat)
        return;
    m_displayFormat = value;
    ShowValue();
}

void TEditEnh::setDisplayType(TDisplayType value)
{
    if (value == m_displayType)
        return;
    m_displayType = value;
    ShowValue();
}

void TEditEnh::setMaxLength(int value)
{
    m_maxLength = std::max(0, value);
}

void TEditEnh::setTabStop(bool value)
{
    setFocusPolicy(value ? Qt::StrongFocus : Qt::ClickFocus);
}

int TEditEnh::RefusedChars(const QString &text) const
{
    if (m_displayType != dtGeneral)
        return 0;
    const QChar decimal = FormatSettings.DecimalSeparator;
    return int(std::count_if(text.cbegin(), text.cend(), [decimal](QChar c) {
        return !(c >= QLatin1Char('0') && c <= QLatin1Char('9')) && c != QLatin1Char('-') && c != QLatin1Char('+')
            && c != decimal;
    }));
}

bool TEditEnh::AcceptsInput(const QString &input) const
{
    if (m_maxLength > 0) {
        const int length = characterCount(input);
        if (length > m_maxLength && length > characterCount(m_lastText))
            return false;
    }
    return RefusedChars(input) <= RefusedChars(m_lastText);
}

QString TEditEnh::DisplayTextOf(const QString &value) const
{
    double number = 0;
    if (m_displayType != dtGeneral || m_displayFormat.isEmpty() || !TryStrToFloat(value, number))
        return value;
    return FormatFloat(m_displayFormat, number);
}

void TEditEnh::SetProgramText(const QString &text)
{
    const QScopedValueRollback<bool> program(m_userInput, false);
    setText(text);
}

void TEditEnh::SetShownText(const QString &text)
{
    if (text == this->text())
        return;
    const QScopedValueRollback<bool> silent(m_silent, true);
    SetProgramText(text);
}

void TEditEnh::ShowValue()
{
    if (!m_entered)
        SetShownText(DisplayTextOf(m_editText));
}

void TEditEnh::UpdateColors()
{
    TColor background = m_color;
    TColor foreground = FrNormalColor;
    if (!isEnabled()) {
        background = BkDisabledColor;
        foreground = FrDisabledColor;
    } else if (ReadOnlyLook()) {
        background = BkReadOnlyColor;
        foreground = FrReadOnlyColor;
    } else if (m_entered) {
        background = BkFocusColor;
        foreground = FrFocusColor;
    }
    QPalette colors = palette();
    colors.setColor(QPalette::Base, TColorToQColor(background));
    colors.setColor(QPalette::Text, TColorToQColor(foreground));
    setPalette(colors);
}

void TEditEnh::PostCurrentException(bool refocus)
{
    std::function<void()> first;
    if (refocus) {
        first = [self = QPointer<TEditEnh>(this)] {
            if (self) {
                self->setFocus(Qt::OtherFocusReason);
                self->selectAll();
            }
        };
    }
    PostControlException(this, std::current_exception(), std::move(first));
}

bool TEditEnh::event(QEvent *event)
{
    switch (event->type()) {
    case QEvent::KeyPress: {
        // Tab and Shift+Tab only move the focus: what the exit handlers write is the program's.
        const int key = static_cast<QKeyEvent *>(event)->key();
        if (key == Qt::Key_Tab || key == Qt::Key_Backtab)
            return QLineEdit::event(event);
        const QScopedValueRollback<bool> input(m_userInput, true);
        return QLineEdit::event(event);
    }
    case QEvent::InputMethod:
    case QEvent::Drop:
    case QEvent::MouseButtonRelease: // the X11 selection is pasted with the middle button
    case QEvent::ContextMenu: {      // the menu runs its Paste and Delete inside this event
        const QScopedValueRollback<bool> input(m_userInput, true);
        return QLineEdit::event(event);
    }
    default:
        return QLineEdit::event(event);
    }
}

void TEditEnh::changeEvent(QEvent *event)
{
    QLineEdit::changeEvent(event);
    if (event->type() == QEvent::EnabledChange || event->type() == QEvent::ReadOnlyChange)
        UpdateColors();
}

void TEditEnh::focusInEvent(QFocusEvent *event)
{
    const bool entering = !m_entered;
    if (entering) {
        // Before QLineEdit's handling, which selects the text when the focus comes from Tab.
        m_entered = true;
        SetShownText(m_editText);
    }
    QLineEdit::focusInEvent(event);
    if (!entering)
        return;
    UpdateColors();
    try {
        if (OnEnter)
            OnEnter(this);
    } catch (...) {
        PostCurrentException(false);
    }
}

void TEditEnh::focusOutEvent(QFocusEvent *event)
{
    QLineEdit::focusOutEvent(event);
    if (!m_entered || event->reason() == Qt::ActiveWindowFocusReason || event->reason() == Qt::PopupFocusReason)
        return;
    // Qt names the new focus widget before it tells the old one: focus given to another window
    // (a dialog, a menu) leaves the edit the active control of its own.
    const QWidget *next = QApplication::focusWidget();
    if (next && next->window() != window())
        return;
    m_entered = false;
    m_editText = text();
    try {
        DoExit();
    } catch (...) {
        PostCurrentException(true);
    }
}

void TEditEnh::DoExit()
{
    SetShownText(DisplayTextOf(m_editText));
    setCursorPosition(0);
    UpdateColors();
    if (OnExit)
        OnExit(this);
}

void TEditEnh::TextChanged()
{
    if (!m_silent && !m_entered) {
        // A value set by the program while the edit shows its value formatted.
        m_editText = text();
        SetShownText(DisplayTextOf(m_editText));
        // Without the focus the text shows from its start, as far as the width allows.
        setCursorPosition(0);
    }
    m_lastText = text();
    if (m_silent)
        return;
    try {
        Change();
    } catch (...) {
        PostCurrentException(false);
    }
}

void TEditEnh::Change()
{
    if (OnChange)
        OnChange(this);
}

// ---------------------------------------------------------------------------------------------
// TDBEditEnh

TDBEditEnh::TDBEditEnh(QWidget *parent) : TEditEnh(parent)
{
    m_dataLink.setControl(this);
    m_dataLink.OnDataChange = [this](TFieldDataLink *) { DataChange(); };
    m_dataLink.OnUpdateData = [this](TFieldDataLink *) { UpdateData(); };
    // A field that cannot be modified paints the edit read-only.
    m_dataLink.OnActiveChange = [this](TFieldDataLink *) { UpdateColors(); };
    m_dataLink.OnEditingChange = [this](TFieldDataLink *) { UpdateColors(); };
}

TDBEditEnh::~TDBEditEnh() = default;

bool TDBEditEnh::ReadOnlyLook() const
{
    return isReadOnly() || (Field() && !m_dataLink.CanModify());
}

void TDBEditEnh::DataChange()
{
    if (m_keepText)
        return;
    const QString value = Field() ? Field()->Text() : QString();
    // Setting even the same text would drop the selection the user is typing over.
    if (value == EditText())
        return;
    const QScopedValueRollback<bool> fromData(m_dataChanging, true);
    SetProgramText(value);
}

void TDBEditEnh::UpdateData()
{
    Field()->setText(EditText());
}

void TDBEditEnh::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::ReadOnlyChange)
        m_dataLink.setReadOnly(isReadOnly());
    TEditEnh::changeEvent(event);
}

void TDBEditEnh::keyPressEvent(QKeyEvent *event)
{
    switch (event->key()) {
    case Qt::Key_Escape:
        if (m_dataLink.Editing()) {
            m_dataLink.Reset();
            selectAll();
            event->accept();
            return;
        }
        break;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        try {
            m_dataLink.UpdateRecord();
        } catch (...) {
            PostCurrentException(false);
        }
        selectAll();
        break;
    default:
        // The dataset enters edit mode before the key changes the text, and the key changes the
        // text the user sees (not the field's own text, which may be written differently).
        if (changesText(event) && RefusedChars(typedText(event)) == 0) {
            bool editing = false;
            try {
                editing = EditKeepingText();
            } catch (...) {
                PostCurrentException(false);
            }
            if (!editing) {
                QApplication::beep();
                event->accept();
                return;
            }
        }
        break;
    }
    TEditEnh::keyPressEvent(event);
}

void TDBEditEnh::Change()
{
    if (!m_dataChanging) {
        if (UserInput() && !m_dataLink.Editing()) {
            EditAfterChange();
            return;
        }
        m_dataLink.Modified();
    }
    TEditEnh::Change();
}

bool TDBEditEnh::EditKeepingText()
{
    const QScopedValueRollback<bool> keep(m_keepText, true);
    return m_dataLink.Edit();
}

void TDBEditEnh::EditAfterChange()
{
    if (!EditKeepingText()) {
        QApplication::beep();
        m_dataLink.Reset();
        return;
    }
    m_dataLink.Modified();
    TEditEnh::Change();
}

void TDBEditEnh::DoExit()
{
    m_dataLink.UpdateRecord();
    TEditEnh::DoExit();
}

} // namespace mattoni
