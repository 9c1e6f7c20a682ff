// The demo application: "Segreteria", a small student records office built from Mattoni's
// components on an embedded SQLite database.
//   mattoni_demo [--data FOLDER] [--screenshots FOLDER]
// With --screenshots the demo walks every page, saves one PNG per page and exits.
#include "DemoDatabase.h"
#include "DemoPages.h"
#include "FormatSettings.h"
#include "MainWindow.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QStandardPaths>
#include <QTimer>

namespace {

QString fileNameFor(int index, const QString &title)
{
    QString slug;
    for (QChar c : title.toLower()) {
        if (c.isLetterOrNumber() && c.unicode() < 128)
            slug += c;
        else if (!slug.endsWith(QLatin1Char('-')))
            slug += QLatin1Char('-');
    }
    return QStringLiteral("%1-%2.png").arg(index + 1, 2, 10, QLatin1Char('0')).arg(slug);
}

int walkPages(MainWindow &window, const QString &folder)
{
    QDir().mkpath(folder);
    for (int i = 0; i < window.pageCount(); ++i) {
        window.showPage(i);
        for (int k = 0; k < 5; ++k)
            QApplication::processEvents(QEventLoop::AllEvents, 50);
        const QString file = QDir(folder).filePath(fileNameFor(i, window.pageTitle(i)));
        if (!window.grab().save(file)) {
            qCritical("cannot save %s", qPrintable(file));
            return 1;
        }
        qInfo("%s", qPrintable(file));
    }
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Segreteria"));
    QApplication::setOrganizationName(QStringLiteral("Mattoni"));

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Segreteria studenti: la dimostrazione di Mattoni"));
    parser.addHelpOption();
    QCommandLineOption dataOption(QStringLiteral("data"), QStringLiteral("Cartella dei dati."), QStringLiteral("cartella"));
    QCommandLineOption shotsOption(QStringLiteral("screenshots"),
                                   QStringLiteral("Mostra ogni pagina, ne salva l'immagine nella cartella ed esce."),
                                   QStringLiteral("cartella"));
    parser.addOption(dataOption);
    parser.addOption(shotsOption);
    parser.process(app);

    // The family's applications were written for the Italian conventions.
    mattoni::SetItalianFormatSettings();

    DemoContext context;
    context.dataFolder = parser.isSet(dataOption)
                             ? parser.value(dataOption)
                             : QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
    context.db = OpenDemoDatabase(context.dataFolder);

    MainWindow window(context);
    window.show();
    if (parser.isSet(shotsOption)) {
        int result = 0;
        QTimer::singleShot(300, &app, [&] {
            result = walkPages(window, parser.value(shotsOption));
            app.quit();
        });
        app.exec();
        return result;
    }
    return app.exec();
}
