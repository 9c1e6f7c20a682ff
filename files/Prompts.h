// The two plain prompts of the file components: a message with an OK button, and a question
// that asks for one line of text.
#pragma once

#include "mattoni_widgets_export.h"

#include <QDialog>

class QLabel;
class QLineEdit;
class QPushButton;

namespace mattoni {

// A modal window with a prompt, an edit holding the value, "OK" (Enter) and "Annulla" (Escape).
class MATTONI_WIDGETS_EXPORT TInputQueryForm : public QDialog
{
    Q_OBJECT
public:
    TInputQueryForm(const QString &Caption, const QString &Prompt, const QString &Value,
                    QWidget *parent = nullptr);
    ~TInputQueryForm() override;

    QLabel *lPrompt;
    QLineEdit *eValue;
    QPushButton *btOK;
    QPushButton *btCancel;
};

// Shows Msg with an OK button under the application's name, modally.
MATTONI_WIDGETS_EXPORT void ShowMessage(const QString &Msg);

// Asks for a line of text: true and Value replaced by the edited text when the user confirms,
// false and Value untouched when the user cancels or closes the window.
MATTONI_WIDGETS_EXPORT bool InputQuery(const QString &Caption, const QString &Prompt, QString &Value);

} // namespace mattoni
