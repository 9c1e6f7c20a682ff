// "SQL": the literals of a date, a time and a text for each database type and day/month order,
// with the connection settings that each server needs to read them as meant.
#include "Ambiente.h"
#include "DateTime.h"
#include "DemoPages.h"
#include "DemoWidgets.h"
#include "SqlLiterals.h"
#include "Strings.h"

#include <QComboBox>
#include <QDateTimeEdit>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>

using namespace mattoni;

namespace {

QLabel *result()
{
    auto *label = new QLabel;
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    label->setStyleSheet(QStringLiteral("font-family: monospace; font-weight: bold"));
    return label;
}

QString advice(const QString &tipo, TFormatoDataDbms formato)
{
    if (DbmsTypeIsEqual(tipo, dbmsMySQL))
        return QStringLiteral(
            "<b>MariaDB / MySQL</b>: subito dopo l'apertura della connessione eseguire<br>"
            "<tt>SET SESSION sql_mode = CONCAT(@@SESSION.sql_mode, ',NO_BACKSLASH_ESCAPES')</tt><br>"
            "QuotedStr raddoppia soltanto gli apici: senza questa modalità una barra rovesciata nel testo "
            "è un carattere di escape, e un testo come <tt>\\' OR 1=1 -- </tt> diventa SQL. "
            "Le date sono sempre anno-mese-giorno con l'ora; FormatoData non conta.");
    if (DbmsTypeIsEqual(tipo, dbmsInterbase) || DbmsTypeIsEqual(tipo, dbmsFirebird)) {
        QString text = QStringLiteral(
            "<b>Firebird</b>: connessione con <tt>ISC_DPB_LC_CTYPE=UTF8</tt> per le lettere accentate. "
            "Firebird legge le date come anno-mese-giorno: usare FormatoData = fddbInglese.");
        if (formato == fddbItaliano)
            text += QStringLiteral("<br><span style='color:#b00020'>Con fddbItaliano il giorno e il mese si "
                                   "scambiano (7 marzo diventa 3 luglio) e un giorno oltre il 12 è rifiutato.</span>");
        return text;
    }
    if (DbmsTypeIsEqual(tipo, dbmsSqlServer) || DbmsTypeIsEqual(tipo, dbmsOleDbSqlServer)
        || DbmsTypeIsEqual(tipo, dbmsOracle) || DbmsTypeIsEqual(tipo, dbmsOleDbOracle) || DbmsTypeIsEqual(tipo, dbmsDb2)
        || DbmsTypeIsEqual(tipo, dbmsAccess))
        return QStringLiteral("Server per cui non ci sono connessioni di prova su Linux: le forme sono quelle previste.");
    return QStringLiteral(
        "<b>Forma predefinita</b>, testo della data e dell'ora nei formati correnti.<br>"
        "<b>PostgreSQL</b>: <tt>SET DateStyle TO 'ISO, DMY'</tt> per le date gg/mm/aaaa, e un'ora lunga "
        "con i due punti (<tt>hh:nn:ss</tt>): l'ora italiana <tt>14.05.09</tt> è rifiutata.<br>"
        "<b>SQLite</b>: data <tt>yyyy-mm-dd</tt> e ora <tt>hh:nn:ss</tt>, gli unici testi che le sue "
        "funzioni di data leggono.");
}

QWidget *createSqlPage(DemoContext &)
{
    auto *page = new QWidget;
    auto *outer = new QVBoxLayout(page);
    outer->addWidget(IntroLabel(QStringLiteral(
        "Il testo SQL di una data, di un'ora e di un testo per ogni tipo di database e ordine di giorno e mese "
        "(TipoDatabase e FormatoData), con le impostazioni della connessione che ogni server chiede per "
        "leggerlo come è scritto. La Segreteria scrive così i propri salvataggi.")));
    auto *row = new QHBoxLayout;
    outer->addLayout(row, 1);

    auto *input = new QGroupBox(QStringLiteral("Letterali SQL"));
    auto *form = new QFormLayout(input);
    auto *tipo = new QComboBox;
    tipo->addItem(QStringLiteral("(nessuno: forma predefinita)"), QString());
    for (const QString *c : {&dbmsMySQL, &dbmsFirebird, &dbmsInterbase, &dbmsSybase, &dbmsOracle, &dbmsOleDbOracle,
                             &dbmsSqlServer, &dbmsOleDbSqlServer, &dbmsAccess, &dbmsDb2, &dbmsODBC})
        tipo->addItem(*c, *c);
    auto *formato = new QComboBox;
    formato->addItem(QStringLiteral("fddbItaliano (giorno prima del mese)"), int(fddbItaliano));
    formato->addItem(QStringLiteral("fddbInglese (mese prima del giorno)"), int(fddbInglese));
    formato->setCurrentIndex(FormatoData == fddbItaliano ? 0 : 1);
    auto *quando = new QDateTimeEdit(QDateTime(QDate(2024, 2, 29), QTime(23, 59, 59)));
    quando->setDisplayFormat(QStringLiteral("dd/MM/yyyy HH:mm:ss"));
    auto *testo = new QLineEdit(QStringLiteral("l'Aquila; C:\\temp -- /* */"));
    auto *data = result();
    auto *ora = result();
    auto *dataOra = result();
    auto *quoted = result();
    form->addRow(QStringLiteral("TipoDatabase:"), tipo);
    form->addRow(QStringLiteral("FormatoData:"), formato);
    form->addRow(QStringLiteral("Valore:"), quando);
    form->addRow(QStringLiteral("Testo:"), testo);
    form->addRow(QStringLiteral("GetFormattedDate:"), data);
    form->addRow(QStringLiteral("GetFormattedTime:"), ora);
    form->addRow(QStringLiteral("GetFormattedDatetime:"), dataOra);
    form->addRow(QStringLiteral("QuotedStr:"), quoted);

    auto *hints = new QGroupBox(QStringLiteral("Impostazioni della connessione"));
    auto *hintsLayout = new QHBoxLayout(hints);
    auto *hint = new QLabel;
    hint->setWordWrap(true);
    hint->setAlignment(Qt::AlignTop | Qt::AlignLeft);
    hint->setTextInteractionFlags(Qt::TextSelectableByMouse);
    hintsLayout->addWidget(hint);

    const auto update = [=] {
        // The page shows other settings than the application's: it borrows the two globals for
        // the call and gives them back.
        const QString savedTipo = TipoDatabase;
        const TFormatoDataDbms savedFormato = FormatoData;
        TipoDatabase = tipo->currentData().toString();
        FormatoData = TFormatoDataDbms(formato->currentData().toInt());
        const QDateTime dt = quando->dateTime();
        const QVariant v(EncodeDate(dt.date().year(), dt.date().month(), dt.date().day())
                         + EncodeTime(dt.time().hour(), dt.time().minute(), dt.time().second(), 0));
        data->setText(GetFormattedDate(v));
        ora->setText(GetFormattedTime(v));
        dataOra->setText(GetFormattedDatetime(v));
        quoted->setText(QuotedStr(testo->text()));
        hint->setText(advice(TipoDatabase, FormatoData));
        TipoDatabase = savedTipo;
        FormatoData = savedFormato;
    };
    QObject::connect(tipo, &QComboBox::currentIndexChanged, page, update);
    QObject::connect(formato, &QComboBox::currentIndexChanged, page, update);
    QObject::connect(quando, &QDateTimeEdit::dateTimeChanged, page, update);
    QObject::connect(testo, &QLineEdit::textChanged, page, update);
    // The page opens on the office's own settings.
    tipo->setCurrentIndex(qMax(0, tipo->findData(TipoDatabase)));
    update();

    row->addWidget(input, 3);
    row->addWidget(hints, 2);
    return page;
}

} // namespace

MATTONI_DEMO_PAGE(40, QStringLiteral("Letterali SQL"), createSqlPage);
