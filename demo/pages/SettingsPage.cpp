// Demo page "Impostazioni": the application settings as read from the settings store, and the SQL
// literals of a date-time for a chosen database type and day/month order.
#include "Ambiente.h"
#include "DemoPages.h"
#include "Registry.h"
#include "SqlLiterals.h"
#include "Variants.h"
#include "usrconf.h"
#include "winutil.h"

#include <QComboBox>
#include <QDateTimeEdit>
#include <QFormLayout>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QTableWidget>
#include <QVBoxLayout>

using namespace mattoni;

namespace {

QString styleName(TColorMapStyles s)
{
    static const char *const names[] = {"cmsSilver", "cmsOlive", "cmsOcean", "cmsClassic", "cmsCielo"};
    return QString::fromLatin1(names[s]);
}

QWidget *settingsGroup()
{
    auto *box = new QGroupBox(QStringLiteral("Impostazioni lette dall'archivio delle impostazioni"));
    auto *table = new QTableWidget(0, 2);
    table->setHorizontalHeaderLabels({QStringLiteral("Impostazione"), QStringLiteral("Valore")});
    table->horizontalHeader()->setStretchLastSection(true);
    table->verticalHeader()->hide();
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    const QList<QPair<QString, QString>> rows = {
        {QStringLiteral("Chiave di base"), RegistryBaseKey()},
        {QStringLiteral("Versione del programma"),
         QStringLiteral("%1.%2.%3.%4").arg(MajorVersion).arg(MinorVersion).arg(ReleaseVersion).arg(BuildVersion)},
        {QStringLiteral("TipoDatabase"), TipoDatabase},
        {QStringLiteral("FormatoData"), FormatoData == fddbItaliano ? QStringLiteral("fddbItaliano") : QStringLiteral("fddbInglese")},
        {QStringLiteral("NomeLogin"), NomeLogin},
        {QStringLiteral("Esercizio"), QString::number(Esercizio)},
        {QStringLiteral("DataSistema"), VarToStr(QVariant(DateTimeToQDateTime(DataSistema)))},
        {QStringLiteral("EmailHost"), EmailHost},
        {QStringLiteral("EmailSender"), EmailSender},
        {QStringLiteral("Connessioni"), QString::number(Connessioni)},
        {QStringLiteral("Istanze"), QString::number(IstanzeApplicazione)},
        {QStringLiteral("ColorMapStyle"), styleName(CurrentColorMapStyle)},
        {QStringLiteral("Archivio utente"), TRegistry::StorePath(HKEY_CURRENT_USER)},
        {QStringLiteral("Archivio di sistema"), TRegistry::StorePath(HKEY_LOCAL_MACHINE)},
    };
    for (const auto &row : rows) {
        const int r = table->rowCount();
        table->insertRow(r);
        table->setItem(r, 0, new QTableWidgetItem(row.first));
        table->setItem(r, 1, new QTableWidgetItem(row.second));
    }
    table->resizeColumnToContents(0);
    auto *layout = new QVBoxLayout(box);
    layout->addWidget(table);
    return box;
}

class LiteralsGroup : public QGroupBox
{
public:
    LiteralsGroup()
        : QGroupBox(QStringLiteral("Letterali SQL"))
    {
        auto *form = new QFormLayout(this);
        m_type->addItem(QStringLiteral("(nessuno: forma predefinita)"), QString());
        for (const QString *t : {&dbmsFirebird, &dbmsInterbase, &dbmsMySQL, &dbmsOracle, &dbmsOleDbOracle, &dbmsSqlServer,
                                 &dbmsOleDbSqlServer, &dbmsAccess, &dbmsDb2, &dbmsSybase, &dbmsODBC})
            m_type->addItem(*t, *t);
        m_type->setCurrentIndex(m_type->findData(TipoDatabase));
        m_order->addItem(QStringLiteral("fddbItaliano (giorno prima del mese)"), int(fddbItaliano));
        m_order->addItem(QStringLiteral("fddbInglese (mese prima del giorno)"), int(fddbInglese));
        m_order->setCurrentIndex(FormatoData == fddbItaliano ? 0 : 1);
        m_when->setDateTime(QDateTime(QDate(2006, 3, 7), QTime(14, 5, 9)));
        m_when->setDisplayFormat(QStringLiteral("dd/MM/yyyy HH:mm:ss"));
        m_when->setCalendarPopup(true);
        form->addRow(QStringLiteral("Tipo di database"), m_type);
        form->addRow(QStringLiteral("Ordine giorno/mese"), m_order);
        form->addRow(QStringLiteral("Data e ora"), m_when);
        for (QLineEdit *e : {m_date, m_time, m_datetime})
            e->setReadOnly(true);
        form->addRow(QStringLiteral("GetFormattedDate"), m_date);
        form->addRow(QStringLiteral("GetFormattedTime"), m_time);
        form->addRow(QStringLiteral("GetFormattedDatetime"), m_datetime);
        connect(m_type, &QComboBox::currentIndexChanged, this, [this] { refresh(); });
        connect(m_order, &QComboBox::currentIndexChanged, this, [this] { refresh(); });
        connect(m_when, &QDateTimeEdit::dateTimeChanged, this, [this] { refresh(); });
        refresh();
    }

private:
    void refresh()
    {
        // The literal functions read the process-wide settings; the page restores them afterwards.
        const QString savedType = TipoDatabase;
        const TFormatoDataDbms savedOrder = FormatoData;
        TipoDatabase = m_type->currentData().toString();
        FormatoData = TFormatoDataDbms(m_order->currentData().toInt());
        const QVariant v(m_when->dateTime());
        m_date->setText(GetFormattedDate(v));
        m_time->setText(GetFormattedTime(v));
        m_datetime->setText(GetFormattedDatetime(v));
        TipoDatabase = savedType;
        FormatoData = savedOrder;
    }

    QComboBox *m_type = new QComboBox;
    QComboBox *m_order = new QComboBox;
    QDateTimeEdit *m_when = new QDateTimeEdit;
    QLineEdit *m_date = new QLineEdit;
    QLineEdit *m_time = new QLineEdit;
    QLineEdit *m_datetime = new QLineEdit;
};

QWidget *createPage(DemoContext &)
{
    auto *page = new QWidget;
    auto *layout = new QVBoxLayout(page);
    auto *intro = new QLabel(QStringLiteral(
        "All'avvio la Segreteria legge la propria versione e le impostazioni (GetRegistryConf, "
        "GetLocalPriorityRegistryConf, GetRegistryDesktop). Le date nel testo SQL seguono il dialetto del database."));
    intro->setWordWrap(true);
    layout->addWidget(intro);
    layout->addWidget(settingsGroup(), 3);
    layout->addWidget(new LiteralsGroup, 2);
    return page;
}

} // namespace

MATTONI_DEMO_PAGE(10, QStringLiteral("Impostazioni"), createPage);
