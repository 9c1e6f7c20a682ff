// "Impostazioni": the settings the office read at start-up from its settings store, the look the
// user chooses (colour scheme, LEDs), and a module loaded at run time.
#include "Ambiente.h"
#include "DemoPages.h"
#include "DemoWidgets.h"
#include "Dllload.h"
#include "Graphics.h"
#include "Registry.h"
#include "Variants.h"
#include "usrconf.h"
#include "winutil.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QMetaEnum>
#include <QTableWidget>
#include <QVBoxLayout>

using namespace mattoni;

namespace {

const char *const styleNames[] = {"Argento", "Oliva", "Oceano", "Classico", "Cielo"};

QWidget *SettingsGroup()
{
    auto *box = new QGroupBox(QStringLiteral("Lette all'avvio dall'archivio delle impostazioni"));
    auto *table = new QTableWidget(0, 2);
    table->setHorizontalHeaderLabels({QStringLiteral("Impostazione"), QStringLiteral("Valore")});
    table->horizontalHeader()->setStretchLastSection(true);
    table->verticalHeader()->hide();
    table->verticalHeader()->setDefaultSectionSize(table->fontMetrics().height() + 6);
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table->setSelectionMode(QAbstractItemView::NoSelection);
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
        {QStringLiteral("ColorMapStyle"), QString::fromUtf8(styleNames[CurrentColorMapStyle])},
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

// A small sample of each colour of the scheme that the controls paint with.
class SchemeSwatches : public QWidget
{
public:
    SchemeSwatches()
    {
        auto *layout = new QGridLayout(this);
        layout->setContentsMargins(0, 0, 0, 0);
        const QPair<const char *, TColor *> colours[] = {
            {"Con il fuoco", &BkFocusColor},     {"Sola lettura", &BkReadOnlyColor},
            {"Obbligatorio", &BkRequiredColor},  {"Errore", &BkErrorColor},
            {"Righe alterne", &BkGridAlternateColor}, {"Selezione", &BkGridSelectedColor},
        };
        int i = 0;
        for (const auto &[name, colour] : colours) {
            auto *swatch = new QLabel(QString::fromUtf8(name));
            swatch->setAlignment(Qt::AlignCenter);
            swatch->setMinimumHeight(22);
            swatch->setAutoFillBackground(true);
            layout->addWidget(swatch, i / 3, i % 3);
            m_swatches.append({swatch, colour});
            ++i;
        }
        Refresh();
    }

    void Refresh()
    {
        for (const auto &[swatch, colour] : m_swatches) {
            QPalette palette = swatch->palette();
            const QColor c = TColorToQColor(*colour);
            palette.setColor(QPalette::Window, c);
            palette.setColor(QPalette::WindowText, c.lightness() < 110 ? Qt::white : Qt::black);
            swatch->setPalette(palette);
        }
    }

private:
    QList<QPair<QLabel *, TColor *>> m_swatches;
};

QWidget *LookGroup()
{
    auto *box = new QGroupBox(QStringLiteral("Aspetto"));
    auto *form = new QFormLayout(box);

    auto *scheme = new QComboBox;
    for (const char *name : styleNames)
        scheme->addItem(QString::fromUtf8(name));
    scheme->setCurrentIndex(CurrentColorMapStyle);
    auto *swatches = new SchemeSwatches;
    QObject::connect(scheme, &QComboBox::currentIndexChanged, box, [swatches](int style) {
        CurrentColorMapStyle = TColorMapStyles(style);
        SetColorMapStyles(CurrentColorMapStyle, TStandardColorMap());
        SaveRegistryString(QString(), QStringLiteral("ColorMapStyle"), QString::number(style));
        swatches->Refresh();
    });
    form->addRow(QStringLiteral("Schema dei colori:"), scheme);
    form->addRow(swatches);

    // The LED shapes, named without their "lt" prefix, as in the shape list of the library.
    LedLook &look = LedLook::Instance();
    auto *shape = new QComboBox;
    const QMetaEnum types = QMetaEnum::fromType<TAMAdvLed::TLedType>();
    for (int i = 0; i < types.keyCount(); ++i)
        shape->addItem(QString::fromLatin1(types.key(i)).mid(2), types.value(i));
    shape->setCurrentIndex(shape->findData(int(look.LedType())));
    auto *border = new QComboBox;
    border->addItems({QStringLiteral("Normale"), QStringLiteral("In rilievo"), QStringLiteral("Incassato")});
    border->setCurrentIndex(look.BorderStyle());
    auto *ctl3D = new QCheckBox(QStringLiteral("Tridimensionale"));
    ctl3D->setChecked(look.Ctl3D());
    auto *preview = new QHBoxLayout;
    for (bool on : {true, false}) {
        auto *led = new TAMAdvLed;
        led->setColorOn(clLime);
        led->setColorOff(clRed);
        led->setLedOn(on);
        LedLook::Instance().Follow(led);
        preview->addWidget(led);
        preview->addWidget(new QLabel(on ? QStringLiteral("acceso") : QStringLiteral("spento")));
    }
    preview->addStretch();
    const auto apply = [shape, border, ctl3D] {
        LedLook::Instance().Set(TAMAdvLed::TLedType(shape->currentData().toInt()),
                                TAMAdvLed::TBorder(border->currentIndex()), ctl3D->isChecked());
        // The LED couples its border and its 3-D switch: show what it kept.
        const QSignalBlocker b1(border);
        const QSignalBlocker b2(ctl3D);
        border->setCurrentIndex(LedLook::Instance().BorderStyle());
        ctl3D->setChecked(LedLook::Instance().Ctl3D());
    };
    QObject::connect(shape, &QComboBox::currentIndexChanged, box, apply);
    QObject::connect(border, &QComboBox::currentIndexChanged, box, apply);
    QObject::connect(ctl3D, &QCheckBox::toggled, box, apply);
    auto *ledRow = new QHBoxLayout;
    ledRow->addWidget(shape);
    ledRow->addWidget(border);
    ledRow->addWidget(ctl3D);
    form->addRow(QStringLiteral("Indicatori:"), ledRow);
    form->addRow(QStringLiteral("Anteprima:"), preview);
    return box;
}

// The SQLite library that holds the office's database, loaded by name like any module of the
// office, to ask it its version.
QWidget *ModulesGroup(QWidget *page)
{
    auto *box = new QGroupBox(QStringLiteral("Moduli"));
    auto *form = new QFormLayout(box);
    auto *loader = new TDLLLoader(page);
    using Version = const char *(*)();
    const auto version = reinterpret_cast<Version>(loader->ProcAddress(QStringLiteral("libsqlite3.so.0"),
                                                                       QStringLiteral("sqlite3_libversion")));
    form->addRow(QStringLiteral("Modulo:"), new QLabel(QStringLiteral("libsqlite3.so.0")));
    form->addRow(QStringLiteral("Versione di SQLite:"),
                 new QLabel(version ? QString::fromLatin1(version()) : QStringLiteral("modulo non trovato")));
    return box;
}

QWidget *CreatePage(DemoContext &)
{
    auto *page = new QWidget;
    auto *grid = new QGridLayout(page);
    grid->addWidget(IntroLabel(QStringLiteral(
                        "All'avvio la Segreteria legge la propria versione e le impostazioni (GetRegistryConf, "
                        "GetLocalPriorityRegistryConf, GetRegistryDesktop); l'aspetto scelto qui vi resta salvato.")),
                    0, 0, 1, 2);
    grid->addWidget(SettingsGroup(), 1, 0, 2, 1);
    grid->addWidget(LookGroup(), 1, 1);
    grid->addWidget(ModulesGroup(page), 2, 1);
    grid->setColumnStretch(0, 1);
    grid->setColumnStretch(1, 1);
    grid->setRowStretch(2, 1);
    return page;
}

} // namespace

MATTONI_DEMO_PAGE(50, QStringLiteral("Impostazioni"), CreatePage);
