// What the tests of the edit controls share: an active window for real focus changes, keys sent
// where the focus is, and the errors the controls post from their handlers.
#pragma once

#include "ControlErrors.h"
#include "Exceptions.h"

#include <QApplication>
#include <QtTest>

namespace edittest {

// A window with Control between two plain line edits, for Tab and clicks to move between them.
template<typename Control>
struct Between
{
    QWidget window;
    QLineEdit *before = new QLineEdit(&window);
    Control *control = new Control(&window);
    QLineEdit *after = new QLineEdit(&window);

    Between()
    {
        window.resize(300, 120);
        before->setGeometry(10, 10, 100, 22);
        control->move(10, 45);
        after->setGeometry(10, 80, 100, 22);
    }
};

// Shows Window as the active window, so that clicks and Tab move a real focus.
inline bool activate(QWidget &window)
{
    window.show();
    window.activateWindow();
    return QTest::qWaitForWindowActive(&window);
}

inline QWidget *focused() { return QApplication::focusWidget(); }
// Tab, or Shift+Tab, and text typed where the focus is.
inline void tab(bool back = false) { QTest::keyClick(focused(), Qt::Key_Tab, back ? Qt::ShiftModifier : Qt::NoModifier); }
inline void typeIn(const QString &text) { QTest::keyClicks(focused(), text); }

// Collects what the controls hand to OnControlException while it lives.
class PostedErrors
{
public:
    PostedErrors()
    {
        mattoni::OnControlException = [this](QObject *sender, std::exception_ptr error) {
            senders.append(sender);
            errors.append(error);
        };
    }
    ~PostedErrors() { mattoni::OnControlException = nullptr; }
    Q_DISABLE_COPY(PostedErrors)

    QString message(int index) const
    {
        try {
            std::rethrow_exception(errors.at(index));
        } catch (const mattoni::Exception &e) {
            return e.Message();
        } catch (...) {
        }
        return QString();
    }

    QList<QObject *> senders;
    QList<std::exception_ptr> errors;
};

} // namespace edittest
