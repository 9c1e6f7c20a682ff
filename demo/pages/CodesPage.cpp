// "Codici": the fiscal code computed and decoded, a VAT number checked, an amount in words.
#include "CifrLett.h"
#include "CodFiscale.h"
#include "DemoPages.h"
#include "DemoWidgets.h"
#include "Exceptions.h"
#include "Formatting.h"

#include <QComboBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>

using namespace mattoni;

namespace {

QLineEdit *edit(const QString &text, const QString &placeholder = QString())
{
    auto *e = new QLineEdit(text);
    e->setPlaceholderText(placeholder);
    return e;
}

QLabel *result()
{
    auto *label = new QLabel;
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    label->setWordWrap(true);
    return label;
}

void showResult(QLabel *label, const QString &text, bool ok = true)
{
    label->setText(text);
    label->setStyleSheet(ok ? QStringLiteral("font-weight: bold") : QStringLiteral("color: #b00020"));
}

QGroupBox *fiscalCodeBox(QWidget *page)
{
    auto *box = new QGroupBox(QStringLiteral("Calcolo del codice fiscale"));
    auto *form = new QFormLayout(box);
    auto *cognome = edit(QStringLiteral("Rossi"));
    auto *nome = edit(QStringLiteral("Mario"));
    auto *sesso = new QComboBox;
    sesso->addItem(QStringLiteral("(non indicato)"), QChar());
    sesso->addItem(QStringLiteral("Maschio"), QChar(u'M'));
    sesso->addItem(QStringLiteral("Femmina"), QChar(u'F'));
    sesso->setCurrentIndex(1);
    auto *data = edit(QStringLiteral("15/04/1985"), QStringLiteral("GG/MM/AAAA"));
    auto *belfiore = edit(QStringLiteral("H501"), QStringLiteral("es. H501 per Roma"));
    belfiore->setMaxLength(4);
    auto *codice = result();
    form->addRow(QStringLiteral("Cognome:"), cognome);
    form->addRow(QStringLiteral("Nome:"), nome);
    form->addRow(QStringLiteral("Sesso:"), sesso);
    form->addRow(QStringLiteral("Data di nascita:"), data);
    form->addRow(QStringLiteral("Codice del comune:"), belfiore);
    form->addRow(QStringLiteral("Codice fiscale:"), codice);

    auto *cf = new TCodiceFiscale(page);
    const auto update = [=] {
        cf->setCognome(cognome->text());
        cf->setNome(nome->text());
        cf->setSesso(sesso->currentData().value<QChar>());
        cf->setDataNascita(data->text());
        cf->setCodiceBelfiore(belfiore->text());
        try {
            const QString code = cf->Get();
            if (code.isEmpty())
                showResult(codice, QStringLiteral("Dati incompleti"), false);
            else
                showResult(codice, code);
        } catch (const EConvertError &e) {
            showResult(codice, QStringLiteral("Data di nascita non valida: %1").arg(e.Message()), false);
        }
    };
    for (QLineEdit *e : {cognome, nome, data, belfiore})
        QObject::connect(e, &QLineEdit::textChanged, page, update);
    QObject::connect(sesso, &QComboBox::currentIndexChanged, page, update);
    update();
    return box;
}

QGroupBox *decodeBox(QWidget *page)
{
    auto *box = new QGroupBox(QStringLiteral("Lettura di un codice fiscale"));
    auto *form = new QFormLayout(box);
    auto *codice = edit(QStringLiteral("BNCNNA90T43F205Q"));
    codice->setMaxLength(16);
    auto *controllo = result();
    auto *sesso = result();
    auto *data = result();
    auto *comune = result();
    form->addRow(QStringLiteral("Codice fiscale:"), codice);
    form->addRow(QStringLiteral("Carattere di controllo:"), controllo);
    form->addRow(QStringLiteral("Sesso:"), sesso);
    form->addRow(QStringLiteral("Data di nascita:"), data);
    form->addRow(QStringLiteral("Codice del comune:"), comune);
    auto *secolo = new QLabel(QStringLiteral("Il codice non indica il secolo: l'anno si legge nel Novecento."));
    secolo->setStyleSheet(QStringLiteral("color: palette(mid)"));
    secolo->setWordWrap(true);
    form->addRow(secolo);

    auto *cf = new TCodiceFiscale(page);
    const auto update = [=] {
        const QString text = codice->text().toUpper();
        const bool valid = TCodiceFiscale::IsCheckDigit(text);
        showResult(controllo, valid ? QStringLiteral("corretto") : QStringLiteral("errato"), valid);
        try {
            cf->Decode(text);
            showResult(sesso, cf->Sesso() == QLatin1Char('F') ? QStringLiteral("femmina") : QStringLiteral("maschio"));
            showResult(data, cf->DataNascita());
            showResult(comune, cf->CodiceBelfiore());
        } catch (const EConvertError &e) {
            showResult(sesso, QString());
            showResult(data, QStringLiteral("Codice non leggibile: %1").arg(e.Message()), false);
            showResult(comune, QString());
        }
    };
    QObject::connect(codice, &QLineEdit::textChanged, page, update);
    update();
    return box;
}

QGroupBox *vatBox(QWidget *page)
{
    auto *box = new QGroupBox(QStringLiteral("Partita IVA"));
    auto *form = new QFormLayout(box);
    auto *numero = edit(QStringLiteral("IT01234567897"), QStringLiteral("italiana o di un altro paese UE, es. ATU123456789"));
    auto *esito = result();
    form->addRow(QStringLiteral("Numero:"), numero);
    form->addRow(QStringLiteral("Esito:"), esito);
    const auto update = [=] {
        const bool valid = CheckPartitaIva(numero->text());
        showResult(esito, valid ? QStringLiteral("partita IVA valida") : QStringLiteral("partita IVA non valida"), valid);
    };
    QObject::connect(numero, &QLineEdit::textChanged, page, update);
    update();
    return box;
}

QGroupBox *wordsBox(QWidget *page)
{
    auto *box = new QGroupBox(QStringLiteral("Importi e numeri in lettere"));
    auto *form = new QFormLayout(box);
    auto *importo = edit(QStringLiteral("1234,50"), QStringLiteral("euro, es. 1234,50"));
    auto *assegno = result();
    auto *numero = edit(QStringLiteral("21"));
    auto *cardinale = result();
    auto *ordinale = result();
    form->addRow(QStringLiteral("Importo:"), importo);
    form->addRow(QStringLiteral("Sull'assegno:"), assegno);
    form->addRow(QStringLiteral("Numero:"), numero);
    form->addRow(QStringLiteral("In lettere:"), cardinale);
    form->addRow(QStringLiteral("Ordinale:"), ordinale);
    const auto updateAmount = [=] {
        try {
            showResult(assegno, CurrencyToText(StrToCurr(importo->text())));
        } catch (const EConvertError &) {
            showResult(assegno, QStringLiteral("Importo non valido"), false);
        }
    };
    const auto updateNumber = [=] {
        try {
            showResult(cardinale, ci_to_let(numero->text()));
            showResult(ordinale, ci_to_ord(numero->text()));
        } catch (const EConvertError &) {
            showResult(cardinale, QStringLiteral("Numero non valido"), false);
            showResult(ordinale, QString());
        }
    };
    QObject::connect(importo, &QLineEdit::textChanged, page, updateAmount);
    QObject::connect(numero, &QLineEdit::textChanged, page, updateNumber);
    updateAmount();
    updateNumber();
    return box;
}

QWidget *createCodesPage(DemoContext &)
{
    auto *page = new QWidget;
    auto *grid = new QGridLayout(page);
    grid->addWidget(IntroLabel(QStringLiteral(
                        "I codici dell'amministrazione: il codice fiscale calcolato dai dati anagrafici e letto "
                        "all'indietro, la partita IVA italiana o di un altro paese dell'Unione, gli importi e i "
                        "numeri scritti in lettere.")),
                    0, 0, 1, 2);
    grid->addWidget(fiscalCodeBox(page), 1, 0);
    grid->addWidget(decodeBox(page), 1, 1);
    grid->addWidget(vatBox(page), 2, 0);
    grid->addWidget(wordsBox(page), 2, 1);
    grid->setRowStretch(3, 1);
    grid->setColumnStretch(0, 1);
    grid->setColumnStretch(1, 1);
    return page;
}

} // namespace

MATTONI_DEMO_PAGE(30, QStringLiteral("Codici"), createCodesPage);
