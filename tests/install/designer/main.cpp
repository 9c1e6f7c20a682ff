// What Qt Designer finds on a user's machine: the installed plugin, through QT_PLUGIN_PATH, with
// the installed libraries behind it. Prints the widgets it offers.
#include <QApplication>
#include <QUiLoader>

#include <cstdio>

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    QUiLoader loader;
    QStringList ours = loader.availableWidgets().filter(QStringLiteral("mattoni::"));
    ours.sort();
    std::printf("%s\n", qPrintable(ours.join(QLatin1Char(' '))));
    return 0;
}
