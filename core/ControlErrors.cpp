// Errors raised inside controls' event handlers, handled from the event loop.
#include "ControlErrors.h"

#include "Exceptions.h"

#include <QGuiApplication>
#include <QMessageBox>
#include <QPointer>
#include <QWidget>

namespace mattoni {

TControlExceptionEvent OnControlException;

void ShowControlException(QObject *sender, std::exception_ptr e)
{
    QString message;
    try {
        std::rethrow_exception(e);
    } catch (const EAbort &) {
        return;
    } catch (const Exception &error) {
        message = error.Message();
    } catch (const std::exception &error) {
        message = QString::fromLocal8Bit(error.what());
    } catch (...) {
    }
    auto *widget = qobject_cast<QWidget *>(sender);
    QMessageBox::critical(widget ? widget->window() : nullptr, QGuiApplication::applicationDisplayName(), message);
}

void PostControlException(QObject *sender, std::exception_ptr e, std::function<void()> first)
{
    QMetaObject::invokeMethod(
        QCoreApplication::instance(),
        [source = QPointer<QObject>(sender), e, first = std::move(first)] {
            if (first)
                first();
            if (OnControlException)
                OnControlException(source.data(), e);
            else
                ShowControlException(source.data(), e);
        },
        Qt::QueuedConnection);
}

} // namespace mattoni
