// A program for the instance-check tests, started as several real copies. Every answer is one line
// on standard output.
//   instance_copy wait          "ready", then runs until standard input closes
//   instance_copy count N       with IstanzeApplicazione N: "too many" or "allowed"
//   instance_copy name [Q]      the shared record's name
//   instance_copy first [Q]     registers a main window ("registered <window id>"), minimises it
//                               ("minimised") and waits until another copy brings it back
//                               ("restored"); "timeout" after 20 s
//   instance_copy hold [Q]      registers a window ("registered <id>") and runs until standard
//                               input closes
//   instance_copy second [Q]    "found" when a registered copy was brought forward, else
//                               "registered"; then "refresh refused" or "refresh stored"
#include "Ambiente.h"
#include "CheckPrevious.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QWidget>
#include <QtTest>

#include <cstdio>
#include <iostream>

using namespace mattoni;

namespace {

void say(const QString &line)
{
    std::printf("%s\n", qPrintable(line));
    std::fflush(stdout);
}

void waitForStdinToClose()
{
    std::string line;
    while (std::getline(std::cin, line)) {
    }
}

int first(const QString &qualifier)
{
    // The record first holds a start-up window, then the real main window (a host that
    // replaces its login form, say).
    QWidget startup;
    say(RestoreIfRunning(startup.winId(), qualifier) ? QStringLiteral("found") : QStringLiteral("first"));
    QWidget main;
    main.setWindowTitle(QStringLiteral("Prima copia"));
    main.resize(300, 200);
    main.show();
    if (!QTest::qWaitForWindowExposed(&main))
        return 1;
    if (!RefreshHandleRunning(main.winId(), qualifier))
        return 1;
    say(QStringLiteral("registered %1").arg(main.winId()));
    main.showMinimized();
    QElapsedTimer clock;
    clock.start();
    bool minimised = false;
    while (clock.elapsed() < 20000) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        QThread::msleep(5);
        if (!minimised && main.isMinimized() && !main.windowHandle()->isExposed()) {
            minimised = true;
            say(QStringLiteral("minimised"));
        } else if (minimised && !main.isMinimized() && main.isActiveWindow()) {
            say(QStringLiteral("restored"));
            return 0;
        }
    }
    say(QStringLiteral("timeout"));
    return 1;
}

} // namespace

int main(int argc, char **argv)
{
    const QString mode = argc > 1 ? QString::fromLocal8Bit(argv[1]) : QString();
    const QString argument = argc > 2 ? QString::fromLocal8Bit(argv[2]) : QString();
    if (mode == QLatin1String("wait")) {
        say(QStringLiteral("ready"));
        waitForStdinToClose();
        return 0;
    }
    if (mode == QLatin1String("count")) {
        IstanzeApplicazione = quint8(argument.toUInt());
        say(TooManyIstances() ? QStringLiteral("too many") : QStringLiteral("allowed"));
        return 0;
    }
    if (mode == QLatin1String("name")) {
        say(InstanceRecordName(argument));
        return 0;
    }
    QApplication app(argc, argv);
    if (mode == QLatin1String("first"))
        return first(argument);
    QWidget window;
    if (mode == QLatin1String("hold")) {
        window.show();
        say(RestoreIfRunning(window.winId(), argument) ? QStringLiteral("found") : QStringLiteral("registered %1").arg(window.winId()));
        waitForStdinToClose();
        return 0;
    }
    if (mode == QLatin1String("second")) {
        say(RestoreIfRunning(window.winId(), argument) ? QStringLiteral("found") : QStringLiteral("registered"));
        say(RefreshHandleRunning(window.winId(), argument) ? QStringLiteral("refresh stored") : QStringLiteral("refresh refused"));
        return 0;
    }
    return 2;
}
