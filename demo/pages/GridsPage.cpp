// "Elenco studenti": the students of the demo database in the two grids. Above, the extended
// grid sorts the rows in memory by its titles (Shift-click adds a column) and shows the state of
// the dataset in the toolbar; below, the client grid has the database order the rows (Ctrl-click
// the titles, left button ascending, right button descending, then release Ctrl).
#include "ClientDataSet.h"
#include "DBGridExt.h"
#include "DBToolClass.h"
#include "DataSource.h"
#include "DemoPages.h"
#include "Exceptions.h"
#include "ImageList.h"
#include "ViewGrid.h"

#include <QGroupBox>
#include <QLabel>
#include <QMessageBox>
#include <QPainter>
#include <QToolBar>
#include <QVBoxLayout>

using namespace mattoni;

namespace {

// One picture per dataset state, from dsInactive on: a coloured tile with the state's initial.
void DrawStateImages(TCustomImageList *images)
{
    struct Tile
    {
        QColor colour;
        const char *letter;
    };
    const Tile tiles[] = {{QColor(0x9e, 0x9e, 0x9e), "-"}, {QColor(0x2e, 0x7d, 0x32), "L"},
                          {QColor(0xef, 0x6c, 0x00), "R"}, {QColor(0x15, 0x65, 0xc0), "I"},
                          {QColor(0x6a, 0x1b, 0x9a), "K"}};
    for (const Tile &tile : tiles) {
        QPixmap image(images->Width(), images->Height());
        image.fill(Qt::transparent);
        QPainter p(&image);
        p.setRenderHint(QPainter::Antialiasing);
        p.setPen(Qt::NoPen);
        p.setBrush(tile.colour);
        p.drawRoundedRect(QRectF(image.rect()).adjusted(1, 1, -1, -1), 4, 4);
        QFont font = p.font();
        font.setBold(true);
        font.setPixelSize(images->Height() - 8);
        p.setFont(font);
        p.setPen(Qt::white);
        p.drawText(image.rect(), Qt::AlignCenter, QLatin1String(tile.letter));
        p.end();
        images->Add(image);
    }
}

struct ColumnLook
{
    const char *field;
    const char *title;
    int width;
};

void AddColumns(TCustomDBGrid *grid, std::initializer_list<ColumnLook> looks)
{
    for (const ColumnLook &look : looks) {
        TColumn *column = grid->Columns().Add();
        column->setFieldName(QLatin1String(look.field));
        column->Title()->setCaption(QString::fromUtf8(look.title));
        column->setWidth(look.width);
    }
}

// Runs an action of the toolbar, telling the user when the dataset refuses it.
void Act(QWidget *page, const std::function<void()> &action)
{
    try {
        action();
    } catch (const Exception &e) {
        QMessageBox::warning(page, QStringLiteral("Elenco studenti"), e.Message());
    }
}

QWidget *memoryGrid(QWidget *page, DemoContext &context)
{
    auto *box = new QGroupBox(QStringLiteral("Ordinamento in memoria: clic sui titoli, Maiusc+clic per aggiungere colonne"));
    auto *layout = new QVBoxLayout(box);

    auto *ds = new TClientDataSet(page);
    ds->setConnection(context.db);
    ds->setCommandText(QStringLiteral("SELECT matricola, cognome, nome, facolta, corso, anno_immatricolazione, "
                                      "in_corso, media FROM studenti"));
    auto *source = new TDataSource(page);
    source->setDataSet(ds);

    auto *images = new TCustomImageList(22, 22, page);
    DrawStateImages(images);
    auto *toolbar = new QToolBar;
    auto *state = new TDBStateButton;
    state->setImages(images);
    state->setDataSource(source);
    toolbar->addWidget(state);
    toolbar->addSeparator();
    toolbar->addAction(QStringLiteral("Modifica"), page, [=] { Act(page, [=] { ds->Edit(); }); });
    toolbar->addAction(QStringLiteral("Inserisci"), page, [=] { Act(page, [=] { ds->Insert(); }); });
    toolbar->addAction(QStringLiteral("Salva"), page, [=] { Act(page, [=] { ds->Post(); }); });
    toolbar->addAction(QStringLiteral("Annulla"), page, [=] { Act(page, [=] { ds->Cancel(); }); });
    toolbar->addSeparator();
    auto *grid = new TDBGridExt;
    toolbar->addAction(QStringLiteral("Copia le righe scelte"), page, [=] { grid->CopyToClipboard(); });
    auto *stateLabel = new QLabel;
    source->OnStateChange = [=](TDataSource *s) { stateLabel->setText(DataSetStateName(s->State())); };
    toolbar->addSeparator();
    toolbar->addWidget(stateLabel);
    layout->addWidget(toolbar);

    AddColumns(grid, {{"matricola", "Matricola", 80},
                      {"cognome", "Cognome", 120},
                      {"nome", "Nome", 110},
                      {"facolta", "Facoltà", 70},
                      {"corso", "Corso", 70},
                      {"anno_immatricolazione", "Immatricolazione", 120},
                      {"in_corso", "In corso", 70},
                      {"media", "Media", 70}});
    auto *inCorso = grid->Column(6);
    inCorso->setCheck(true);
    inCorso->setValueChecked(QStringLiteral("S"));
    inCorso->setValueUnchecked(QStringLiteral("N"));
    grid->Column(0)->setValidChar(QStringLiteral("0123456789"));
    grid->setAlternateColor(true);
    grid->setMultiSelect(true);
    grid->setTitleSort(true);
    grid->setDataSource(source);
    ds->Open();
    // The rows open sorted by surname, then name: the titles show both markers.
    grid->SortGrid(grid->Columns()[1], false, QStringLiteral("SortGrid"));
    grid->SortGrid(grid->Columns()[2], true, QStringLiteral("SortGrid"));
    ds->First();
    layout->addWidget(grid);
    return box;
}

QWidget *serverGrid(QWidget *page, DemoContext &context)
{
    auto *box = new QGroupBox(QStringLiteral("Ordinamento sul server: Ctrl+clic sui titoli (sinistro crescente, destro "
                                             "decrescente), poi rilasciare Ctrl"));
    auto *layout = new QVBoxLayout(box);
    auto *ds = new TClientDataSet(page);
    ds->setConnection(context.db);
    ds->setCommandText(QStringLiteral("SELECT matricola, cognome, nome, data_nascita, comune, media FROM studenti "
                                      "ORDER BY matricola"));
    auto *source = new TDataSource(page);
    source->setDataSet(ds);
    auto *grid = new TClientDBGrid;
    AddColumns(grid, {{"matricola", "Matricola", 80},
                      {"cognome", "Cognome", 120},
                      {"nome", "Nome", 110},
                      {"data_nascita", "Nascita", 100},
                      {"comune", "Comune", 80},
                      {"media", "Media", 70}});
    grid->setOptions(grid->Options() & ~TDBGridOptions(dgEditing));
    grid->setDataSource(source);
    auto *command = new QLabel;
    command->setTextInteractionFlags(Qt::TextSelectableByMouse);
    command->setWordWrap(true);
    source->OnDataChange = [=](TDataSource *, TField *field) {
        if (!field)
            command->setText(QStringLiteral("Comando: ") + ds->CommandText());
    };
    ds->Open();
    layout->addWidget(grid);
    layout->addWidget(command);
    return box;
}

QWidget *createGridsPage(DemoContext &context)
{
    auto *page = new QWidget;
    auto *layout = new QVBoxLayout(page);
    layout->addWidget(memoryGrid(page, context), 3);
    layout->addWidget(serverGrid(page, context), 2);
    return page;
}

} // namespace

MATTONI_DEMO_PAGE(55, QStringLiteral("Elenco studenti"), createGridsPage);
