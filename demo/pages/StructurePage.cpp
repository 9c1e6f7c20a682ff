// "Facoltà e corsi": the faculties and their courses as a tree read from the self-referencing
// table "struttura", the web site of the chosen faculty, and its students (or the course's).
#include "ClientDataSet.h"
#include "DBGridExt.h"
#include "DBTreeView.h"
#include "DataSource.h"
#include "DemoPages.h"
#include "DemoWidgets.h"
#include "URLComps.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QSplitter>
#include <QStyle>
#include <QVBoxLayout>

using namespace mattoni;

namespace {

// A node shows the code and the name of its record.
class StructureNode : public TCustomDataNode
{
public:
    explicit StructureNode(TDataSet *ds) { Read(ds); }
    void Read(TDataSet *ds)
    {
        m_text = ds->FieldByName(QStringLiteral("codice"))->AsString() + QStringLiteral(" - ")
            + ds->FieldByName(QStringLiteral("nome"))->AsString();
    }
    QString DisplayText(TTreeNode *) const override { return m_text; }

private:
    QString m_text;
};

TDBReadTreeView *structureTree(TDataSource *source)
{
    auto *tree = new TDBReadTreeView;
    tree->setDataFieldNodo(QStringLiteral("id"));
    tree->setDataFieldPadre(QStringLiteral("padre"));
    tree->setFetchAll(true);
    tree->setHideSelection(false);
    tree->setImages({QApplication::style()->standardIcon(QStyle::SP_DirIcon),
                     QApplication::style()->standardIcon(QStyle::SP_FileIcon)});
    tree->OnCreatingDataNode = [](QObject *, TDataSet *ds, TTreeNode *, TCustomDataNode *&data) {
        data = new StructureNode(ds);
    };
    tree->OnRefreshingDataNode = [](QObject *, TDataSet *ds, TTreeNode *node) {
        static_cast<StructureNode *>(node->Data())->Read(ds);
    };
    tree->setDataSource(source);
    return tree;
}

TDBGridExt *studentGrid(TDataSource *source)
{
    auto *grid = new TDBGridExt;
    AddColumns(grid, {{"matricola", "Matricola", 70},
                      {"cognome", "Cognome", 130},
                      {"nome", "Nome", 110},
                      {"anno_immatricolazione", "Immatricolazione", 110},
                      {"in_corso", "In corso", 65},
                      {"tasse_pagate", "Tasse pagate", 90},
                      {"media", "Media", 60}});
    grid->Column(4)->setCheck(true);
    grid->Column(4)->setValueChecked(QStringLiteral("S"));
    grid->Column(4)->setValueUnchecked(QStringLiteral("N"));
    grid->Column(5)->setCheck(true);
    grid->setOptions(grid->Options() & ~TDBGridOptions(dgEditing));
    grid->setAlternateColor(true);
    grid->setTitleSort(true);
    grid->setDataSource(source);
    return grid;
}

QWidget *createStructurePage(DemoContext &context)
{
    auto *page = new QWidget;
    auto *students = new TClientDataSet(page);
    students->setConnection(context.db);
    students->setCommandText(QStringLiteral("SELECT id, facolta, corso, matricola, cognome, nome, anno_immatricolazione, "
                                            "in_corso, tasse_pagate, media FROM studenti ORDER BY cognome, nome"));
    students->setFiltered(true);
    students->AfterOpen = [](TDataSet *ds) { ShowAverage(ds->FieldByName(QStringLiteral("media"))); };
    auto *studentSource = new TDataSource(page);
    studentSource->setDataSet(students);
    students->Open();

    auto *structure = new TClientDataSet(page);
    structure->setConnection(context.db);
    structure->setCommandText(QStringLiteral("SELECT id, padre, codice, nome, livello, sito FROM struttura ORDER BY codice"));
    auto *source = new TDataSource(page);
    source->setDataSet(structure);

    auto *title = new QLabel;
    title->setStyleSheet(QStringLiteral("font-weight: bold; font-size: 11pt"));
    auto *site = new TURLSpeedButton;
    site->setText(QStringLiteral("Sito della facoltà"));
    site->setDataSource(source);
    site->setDataField(QStringLiteral("sito"));
    auto *count = new QLabel;

    // The students follow the chosen faculty (level 1) or course (level 2).
    source->OnDataChange = [=](TDataSource *, TField *field) {
        if (field || structure->State() != dsBrowse || structure->IsEmpty())
            return;
        const QString code = structure->FieldByName(QStringLiteral("codice"))->AsString();
        const bool faculty = structure->FieldByName(QStringLiteral("livello"))->AsInteger() == 1;
        title->setText((faculty ? QStringLiteral("Facoltà di ") : QStringLiteral("Corso di laurea in "))
                       + structure->FieldByName(QStringLiteral("nome"))->AsString());
        site->setToolTip(structure->FieldByName(QStringLiteral("sito"))->AsString());
        students->setFilter((faculty ? QStringLiteral("facolta = '") : QStringLiteral("corso = '")) + code
                            + QLatin1Char('\''));
        count->setText(QStringLiteral("%1 studenti").arg(students->RecordCount()));
    };

    TDBReadTreeView *tree = structureTree(source);
    structure->Open();
    tree->expandAll();
    // The first course of the first faculty, to start with.
    if (TTreeNode *faculty = tree->GetFirstNode())
        tree->setSelected(faculty->getFirstChild());

    auto *right = new QWidget;
    auto *column = new QVBoxLayout(right);
    column->setContentsMargins(0, 0, 0, 0);
    auto *heading = new QHBoxLayout;
    heading->addWidget(title);
    heading->addStretch();
    heading->addWidget(site);
    column->addLayout(heading);
    column->addWidget(studentGrid(studentSource), 1);
    column->addWidget(count);

    auto *splitter = new QSplitter;
    splitter->addWidget(tree);
    splitter->addWidget(right);
    splitter->setStretchFactor(1, 1);
    splitter->setSizes({300, 700});

    auto *layout = new QVBoxLayout(page);
    layout->addWidget(IntroLabel(QStringLiteral(
        "Le facoltà e i loro corsi di laurea, letti da una tabella che rimanda a se stessa. Si sceglie un ramo "
        "per vederne gli studenti; il pulsante apre il sito della facoltà.")));
    layout->addWidget(splitter, 1);
    return page;
}

} // namespace

MATTONI_DEMO_PAGE(20, QStringLiteral("Facoltà e corsi"), createStructurePage);
