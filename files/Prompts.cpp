// The plain prompts of the file components.
#include "Prompts.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QVBoxLayout>

namespace mattoni {

TInputQueryForm::TInputQueryForm(const QString &Caption, const QString &Prompt, const QString &Value,
                                 QWidget *parent)
    : QDialog(parent)
    , lPrompt(new QLabel(Prompt))
    , eValue(new QLineEdit(Value))
    , btOK(new QPushButton(QStringLiteral("OK")))
    , btCancel(new QPushButton(QStringLiteral("Annulla")))
{
    setObjectName(QStringLiteral("InputQueryForm"));
    setWindowTitle(Caption);
    lPrompt->setWordWrap(true);
    lPrompt->setBuddy(eValue);
    eValue->selectAll();
    btOK->setDefault(true);
    connect(btOK, &QPushButton::clicked, this, &QDialog::accept);
    connect(btCancel, &QPushButton::clicked, this, &QDialog::reject);

    auto *buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(btOK);
    buttons->addWidget(btCancel);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(lPrompt);
    layout->addWidget(eValue);
    layout->addLayout(buttons);
    setMinimumWidth(360);
}

TInputQueryForm::~TInputQueryForm() = default;

void ShowMessage(const QString &Msg)
{
    QMessageBox box(QMessageBox::NoIcon, QApplication::applicationDisplayName(), Msg, QMessageBox::Ok);
    box.setObjectName(QStringLiteral("ShowMessage"));
    box.exec();
}

bool InputQuery(const QString &Caption, const QString &Prompt, QString &Value)
{
    // A nested event loop may delete the form under us (the application quitting): guard it.
    QPointer<TInputQueryForm> form = new TInputQueryForm(Caption, Prompt, Value);
    const bool ok = form->exec() == QDialog::Accepted && form;
    if (form) {
        if (ok)
            Value = form->eValue->text();
        delete form;
    }
    return ok;
}

} // namespace mattoni
