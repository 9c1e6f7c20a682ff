// The demo application: "Segreteria", a small student records office built from Mattoni's
// components on an embedded SQLite database.
//   mattoni_demo [--data FOLDER] [--screenshots FOLDER]
// With --screenshots the demo walks every page, saves one PNG per page and exits.
#include "DemoDatabase.h"
#include "DemoPages.h"
#include "Ambiente.h"
#include "FormatSettings.h"
#include "MainWindow.h"
#include "Registry.h"
#include "usrconf.h"
#include "winutil.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QSettings>
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

// In the screenshot walk every warning counts as a failure, so the walk doubles as a test.
int g_warnings = 0;
QtMessageHandler g_previousHandler = nullptr;

void countWarnings(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    if (type == QtWarningMsg || type == QtCriticalMsg || type == QtFatalMsg)
        ++g_warnings;
    g_previousHandler(type, context, message);
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
    return g_warnings == 0 ? 0 : 1;
}

// The demo keeps its settings store in its data folder, so it never touches the machine's.
// On first run it writes the settings an installer would have written.
void LoadDemoSettings(const QString &dataFolder)
{
    using namespace mattoni;
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, QDir(dataFolder).filePath(QStringLiteral("impostazioni/utente")));
    QSettings::setPath(QSettings::IniFormat, QSettings::SystemScope, QDir(dataFolder).filePath(QStringLiteral("impostazioni/sistema")));
    Company = QStringLiteral("Mattoni");
    AppName = QStringLiteral("Segreteria");
    GetRegistryConf(); // takes the version from the program first
    {
        TRegistry user(HKEY_CURRENT_USER);
        if (!user.KeyExists(RegistryBaseKey()) && user.OpenKey(RegistryBaseKey(), true)) {
            // SQLite reads the MySQL form of dates, "yyyy-mm-dd hh:nn:ss", with its date functions.
            user.WriteString(QStringLiteral("TipoDatabase"), QStringLiteral("MYSQL"));
            user.WriteString(QStringLiteral("FormatoData"), QStringLiteral("0"));
            user.WriteString(QStringLiteral("NomeLogin"), QStringLiteral("segreteria"));
            user.WriteString(QStringLiteral("Esercizio"), QStringLiteral("2026"));
            user.WriteString(QStringLiteral("EmailHost"), QStringLiteral("smtp.ateneo.example.it"));
            user.WriteString(QStringLiteral("EmailSender"), QStringLiteral("segreteria@ateneo.example.it"));
            TRegistry machine(HKEY_LOCAL_MACHINE);
            if (machine.OpenKey(RegistryBaseKey(), true)) {
                machine.WriteString(QStringLiteral("Connessioni"), QStringLiteral("8"));
                machine.WriteString(QStringLiteral("Istanze"), QStringLiteral("1"));
            }
        }
    }
    GetRegistryConf();
    GetLocalPriorityRegistryConf();
    GetRegistryDesktop();
    SetColorMapStyles(CurrentColorMapStyle, TStandardColorMap());
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
    if (parser.isSet(shotsOption))
        g_previousHandler = qInstallMessageHandler(countWarnings);

    // The family's applications were written for the Italian conventions.
    mattoni::SetItalianFormatSettings();

    DemoContext context;
    context.dataFolder = parser.isSet(dataOption)
                             ? parser.value(dataOption)
                             : QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
    context.db = OpenDemoDatabase(context.dataFolder);
    LoadDemoSettings(context.dataFolder);

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
