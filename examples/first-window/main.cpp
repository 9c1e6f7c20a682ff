// A first window with Mattoni: a fiscal code typed in an enhanced edit, an LED that lights up
// when the code's check character is right, and what the code tells of its holder.
//   first-window [--quit]
// With --quit the window shows itself, prints what it shows and closes at once.
#include <mattoni/AMAdvLed.h>
#include <mattoni/CodFiscale.h>
#include <mattoni/EditEnh.h>
#include <mattoni/Exceptions.h>
#include <mattoni/FormatSettings.h>

#include <QApplication>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>

#include <cstdio>

using namespace mattoni;

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    // Dates as the office writes them: 15/04/1985.
    SetItalianFormatSettings();

    QWidget window;
    window.setWindowTitle(QStringLiteral("Codice fiscale"));

    auto *code = new TEditEnh;
    code->setMaxLength(16);
    code->setPlaceholderText(QStringLiteral("16 caratteri"));

    auto *led = new TAMAdvLed;
    led->setLedType(TAMAdvLed::ltRound);
    led->setColorOn(clLime);
    led->setColorOff(clRed);

    auto *holder = new QLabel;
    auto *decoder = new TCodiceFiscale(&window);

    const auto check = [=] {
        const QString text = code->text().trimmed().toUpper();
        led->setLedOn(TCodiceFiscale::IsCheckDigit(text));
        if (!led->LedOn()) {
            holder->setText(QStringLiteral("carattere di controllo errato"));
            return;
        }
        try {
            decoder->Decode(text);
            holder->setText(QStringLiteral("%1, nato/a il %2, comune %3")
                                .arg(decoder->Sesso() == QLatin1Char('F') ? QStringLiteral("femmina")
                                                                          : QStringLiteral("maschio"),
                                     decoder->DataNascita(), decoder->CodiceBelfiore()));
        } catch (const EConvertError &e) {
            holder->setText(e.Message());
        }
    };
    QObject::connect(code, &QLineEdit::textChanged, &window, check);

    auto *row = new QHBoxLayout;
    row->addWidget(code, 1);
    row->addWidget(led);
    auto *form = new QFormLayout(&window);
    form->addRow(QStringLiteral("Codice fiscale:"), row);
    form->addRow(QStringLiteral("Titolare:"), holder);

    code->setText(QStringLiteral("RSSMRA85D15H501T"));
    window.resize(420, 80);
    window.show();

    if (app.arguments().contains(QStringLiteral("--quit"))) {
        QApplication::processEvents();
        std::printf("%s: %s\n", led->LedOn() ? "acceso" : "spento", qPrintable(holder->text()));
        return 0;
    }
    return app.exec();
}
