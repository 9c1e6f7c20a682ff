// "Messaggi": the library's message dialog. Buttons open each Box... function and each kind for
// real; the previews below show every kind without opening anything, so the page can be looked
// at (and photographed) without a modal dialog in the way. A panel tells the program's version
// and instance information.
#include "DemoPages.h"

#include "Ambiente.h"
#include "CheckPrevious.h"
#include "Version.h"
#include "fm_MessageBox.h"

#include <QCoreApplication>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

using namespace mattoni;

namespace {

struct KindSample
{
    int kind;
    bool withAddress;
    const char *caption;
    const char *message;
};

const KindSample samples[] = {
    {0, false, "AVVISO", "Il piano di studi è stato salvato."},
    {1, false, "ATTENZIONE", "La matricola 123456 ha tasse arretrate.\nProcedere comunque con l'iscrizione?"},
    {2, false, "ERRORE DI LETTURA", "Il disco nell'unità A: non è leggibile."},
    {3, false, "SCELTA", "Salvare le modifiche al libretto prima di uscire?"},
    {4, false, "CONFERMA", "Eliminare l'esame di Analisi I del 12/02/2024?"},
    {5, false, "ATTENZIONE", "Il server del database non risponde."},
    {16, false, "ERRORE", "Codice fiscale non valido: carattere di controllo errato."},
    {32, true, "DOWNLOAD", "È disponibile la versione 3.2 di Segreteria.\nScaricarla ora?"},
    {64, true, "INFORMAZIONE", "Per assistenza rivolgersi all'ufficio informatico."},
};

QWidget *preview(const KindSample &s)
{
    TfmMessageBox box;
    box.Prepare(QString::fromUtf8(s.caption), QString::fromUtf8(s.message), s.kind, s.withAddress,
                s.withAddress ? QStringLiteral("www.ateneo.it") : QString(),
                s.kind == 64 ? QStringLiteral("assistenza@ateneo.it") : QString());
    box.ensurePolished();
    box.adjustSize();
    const QPixmap shot = box.grab().scaledToWidth(390, Qt::SmoothTransformation);
    auto *frame = new QWidget;
    auto *layout = new QVBoxLayout(frame);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    layout->addWidget(new QLabel(QStringLiteral("Tipo %1 - %2").arg(s.kind).arg(QString::fromUtf8(s.caption))));
    auto *image = new QLabel;
    image->setPixmap(shot);
    image->setFrameShape(QFrame::Box);
    image->setFixedSize(shot.size() + QSize(2, 2));
    layout->addWidget(image);
    return frame;
}

QWidget *boxButtons(QLabel *outcome)
{
    auto *group = new QGroupBox(QStringLiteral("Funzioni Box..."));
    auto *grid = new QGridLayout(group);
    const QString msg = QStringLiteral("Confermare l'iscrizione dello studente all'anno accademico 2024/2025?");
    const std::pair<const char *, std::function<QString()>> calls[] = {
        {"BoxYesNoCancel", [msg] { return QString::number(BoxYesNoCancel(msg)); }},
        {"BoxConferma", [msg] { return QVariant(BoxConferma(msg)).toString(); }},
        {"BoxErrore", [] { BoxErrore(QStringLiteral("Impossibile aprire l'archivio degli esami.")); return QString(); }},
        {"BoxAttenzione", [] { return QVariant(BoxAttenzione(QStringLiteral("Il libretto verrà chiuso."))).toString(); }},
        {"BoxInformazione", [] { BoxInformazione(QStringLiteral("Operazione completata.")); return QString(); }},
        {"BoxInformazioneLink", [] {
             BoxInformazioneLink(QStringLiteral("Per assistenza:"), QStringLiteral("www.ateneo.it"), QStringLiteral("assistenza@ateneo.it"));
             return QString();
         }},
        {"BoxDownloadLink", [] {
             return QVariant(BoxDownloadLink(QStringLiteral("È disponibile un aggiornamento."), QStringLiteral("www.ateneo.it/download"))).toString();
         }},
    };
    int i = 0;
    for (const auto &[name, call] : calls) {
        auto *button = new QPushButton(QString::fromLatin1(name));
        QObject::connect(button, &QPushButton::clicked, outcome, [outcome, name, call] {
            const QString result = call();
            outcome->setText(QStringLiteral("%1: %2").arg(QLatin1String(name), result.isEmpty() ? QStringLiteral("chiuso") : result));
        });
        grid->addWidget(button, i / 4, i % 4);
        ++i;
    }
    return group;
}

QWidget *kindButtons(QLabel *outcome)
{
    auto *group = new QGroupBox(QStringLiteral("Enter per tipo"));
    auto *row = new QHBoxLayout(group);
    for (const KindSample &s : samples) {
        auto *button = new QPushButton(QString::number(s.kind));
        QObject::connect(button, &QPushButton::clicked, outcome, [outcome, s] {
            TfmMessageBox box;
            if (s.withAddress)
                box.Enter(QString::fromUtf8(s.caption), QString::fromUtf8(s.message), s.kind, QStringLiteral("www.ateneo.it"));
            else
                box.Enter(QString::fromUtf8(s.caption), QString::fromUtf8(s.message), s.kind);
            outcome->setText(QStringLiteral("Tipo %1: risultato %2").arg(s.kind).arg(box.ModalResult()));
        });
        row->addWidget(button);
    }
    return group;
}

QWidget *programPanel()
{
    auto *group = new QGroupBox(QStringLiteral("Programma"));
    auto *form = new QFormLayout(group);
    const TVersionInfo info;
    form->addRow(QStringLiteral("Prodotto:"), new QLabel(info.IsValid() ? info.ProductName() : QStringLiteral("(nessuna risorsa di versione)")));
    form->addRow(QStringLiteral("Versione:"), new QLabel(info.FileVersionNumber()));
    form->addRow(QStringLiteral("Sistema:"), new QLabel(info.TargetOS()));
    form->addRow(QStringLiteral("Utente:"), new QLabel(GetCurrentUserName()));
    form->addRow(QStringLiteral("Copie:"), new QLabel(TooManyIstances() ? QStringLiteral("più di %1").arg(IstanzeApplicazione)
                                                                       : QStringLiteral("entro il limite di %1").arg(IstanzeApplicazione)));
    auto *record = new QLabel(InstanceRecordName());
    record->setWordWrap(true);
    form->addRow(QStringLiteral("Record:"), record);
    return group;
}

QWidget *createDialogsPage(DemoContext &)
{
    auto *page = new QWidget;
    auto *layout = new QVBoxLayout(page);
    auto *outcome = new QLabel(QStringLiteral("Premere un pulsante per aprire il messaggio."));
    auto *top = new QHBoxLayout;
    auto *left = new QVBoxLayout;
    left->addWidget(boxButtons(outcome));
    left->addWidget(kindButtons(outcome));
    left->addWidget(outcome);
    top->addLayout(left, 3);
    top->addWidget(programPanel(), 2);
    layout->addLayout(top);

    auto *previews = new QWidget;
    auto *grid = new QGridLayout(previews);
    int i = 0;
    for (const KindSample &s : samples) {
        grid->addWidget(preview(s), i / 2, i % 2);
        ++i;
    }
    auto *scroll = new QScrollArea;
    scroll->setWidget(previews);
    scroll->setWidgetResizable(true);
    layout->addWidget(scroll, 1);
    return page;
}

} // namespace

MATTONI_DEMO_PAGE(20, QStringLiteral("Messaggi"), createDialogsPage);
