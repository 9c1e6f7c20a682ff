// Demo page "Facoltà e corsi": the faculties and their courses as a tree read from the table
// "struttura", the students of the chosen faculty or course, and LEDs of every shape bound to the
// current student's "in corso" flag and paid fees.
#include "AMAdvLed.h"
#include "ClientDataSet.h"
#include "DBTreeView.h"
#include "DataSetModel.h"
#include "DataSource.h"
#include "DemoPages.h"

#include <QApplication>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QMetaEnum>
#include <QSplitter>
#include <QStyle>
#include <QTableView>
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

TDBReadTreeView *structureTree(DemoContext &context, QWidget *page, TClientDataSet *students)
{
    auto *structure = new TClientDataSet(page);
    structure->setConnection(context.db);
    structure->setCommandText(QStringLiteral("SELECT id, padre, codice, nome, livello FROM struttura ORDER BY codice"));
    auto *source = new TDataSource(page);
    source->setDataSet(structure);

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
    // The students follow the chosen faculty (level 1) or course (level 2).
    source->OnDataChange = [structure, students](TDataSource *, TField *field) {
        if (field || structure->State() != dsBrowse || structure->IsEmpty())
            return;
        const QString code = structure->FieldByName(QStringLiteral("codice"))->AsString();
        const bool faculty = structure->FieldByName(QStringLiteral("livello"))->AsInteger() == 1;
        students->setFilter((faculty ? QStringLiteral("facolta = '") : QStringLiteral("corso = '")) + code
                            + QLatin1Char('\''));
    };
    tree->setDataSource(source);
    structure->Open();
    tree->expandAll();
    // The first course of the first faculty, to start with.
    if (TTreeNode *faculty = tree->GetFirstNode())
        tree->setSelected(faculty->getFirstChild());
    return tree;
}

QWidget *studentTable(QWidget *page, TDataSource *source)
{
    auto *model = new TDataSetModel(page);
    model->setFieldNames({QStringLiteral("matricola"), QStringLiteral("cognome"), QStringLiteral("nome"),
                          QStringLiteral("in_corso"), QStringLiteral("tasse_pagate")});
    model->setDataSource(source);
    auto *table = new QTableView;
    table->setModel(model);
    table->setSelectionBehavior(QAbstractItemView::SelectRows);
    table->setSelectionMode(QAbstractItemView::SingleSelection);
    table->verticalHeader()->hide();
    table->horizontalHeader()->setStretchLastSection(true);
    QObject::connect(table->selectionModel(), &QItemSelectionModel::currentRowChanged, model,
                     [model](const QModelIndex &current) {
                         if (current.isValid())
                             model->setCurrentRow(current.row());
                     });
    const auto follow = [table, model](int row) {
        if (row >= 0 && table->currentIndex().row() != row)
            table->setCurrentIndex(model->index(row, 0));
    };
    QObject::connect(model, &TDataSetModel::currentRowChanged, table, follow);
    follow(model->CurrentRow());
    return table;
}

// One LED of each shape, in the order of TLedType, every other one on the fees.
QWidget *ledPanel(TDataSource *source)
{
    auto *box = new QGroupBox(QStringLiteral("Studente corrente: in corso (S/N) e tasse pagate (1/0)"));
    auto *grid = new QGridLayout(box);
    const QMetaEnum types = QMetaEnum::fromType<TAMAdvLed::TLedType>();
    const TAMAdvLed::TBorder borders[] = {TAMAdvLed::brDefault, TAMAdvLed::brRaised, TAMAdvLed::brLowered};
    for (int i = 0; i < types.keyCount(); ++i) {
        auto *led = new TDBAMAdvLed;
        const bool fees = i % 2 == 1;
        led->setLedType(TAMAdvLed::TLedType(types.value(i)));
        led->setBorderStyle(borders[i % 3]);
        if (i % 4 == 3)
            led->setCtl3D(false);
        led->setValueChecked(fees ? QStringLiteral("1") : QStringLiteral("S"));
        led->setValueUnchecked(fees ? QStringLiteral("0") : QStringLiteral("N"));
        led->setHintChecked(fees ? QStringLiteral("Tasse pagate") : QStringLiteral("In corso"));
        led->setHintUnchecked(fees ? QStringLiteral("Tasse da pagare") : QStringLiteral("Fuori corso"));
        led->setColorOn(fees ? clLime : clYellow);
        led->setColorOff(fees ? clRed : clOlive);
        led->setCaption(QString::fromLatin1(types.key(i)).mid(2) + (fees ? QStringLiteral(" (tasse)")
                                                                         : QStringLiteral(" (in corso)")));
        led->setDataSource(source);
        led->setDataField(fees ? QStringLiteral("tasse_pagate") : QStringLiteral("in_corso"));
        grid->addWidget(led, i / 3, i % 3);
    }
    auto *note = new QLabel(QStringLiteral("Un clic su un LED cambia il dato dello studente (in memoria)."));
    grid->addWidget(note, (types.keyCount() + 2) / 3, 0, 1, 3);
    return box;
}

QWidget *createStructurePage(DemoContext &context)
{
    auto *page = new QWidget;
    auto *students = new TClientDataSet(page);
    students->setConnection(context.db);
    students->setCommandText(QStringLiteral("SELECT id, facolta, corso, matricola, cognome, nome, in_corso, "
                                            "tasse_pagate FROM studenti ORDER BY cognome, nome"));
    students->setFiltered(true);
    auto *studentSource = new TDataSource(page);
    studentSource->setDataSet(students);
    students->Open();

    auto *layout = new QHBoxLayout(page);
    auto *splitter = new QSplitter;
    splitter->addWidget(structureTree(context, page, students));
    auto *right = new QWidget;
    auto *column = new QVBoxLayout(right);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(studentTable(page, studentSource), 1);
    column->addWidget(ledPanel(studentSource));
    splitter->addWidget(right);
    splitter->setStretchFactor(1, 1);
    layout->addWidget(splitter);
    return page;
}

} // namespace

MATTONI_DEMO_PAGE(40, QStringLiteral("Facoltà e corsi"), createStructurePage);
