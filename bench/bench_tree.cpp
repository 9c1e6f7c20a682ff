// The data tree view on a self-referencing SQLite table of 100,000 records: the time to show the
// roots after opening, and to read a node with 10,000 children on its first selection, each
// against references measured in the same run.
//   bench_tree [runs, default 5]
// Each figure is the best of the runs.
#include "ClientDataSet.h"
#include "DBTreeView.h"
#include "DataSource.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTextStream>
#include <QTreeWidget>

#include <functional>
#include <vector>

using namespace mattoni;

namespace {

const char *const Connection = "bench_tree";
constexpr int Records = 100000;
constexpr int Roots = 10;
constexpr int BigChildren = 10000;
const char *const Select = "SELECT id, padre, nome FROM struttura";

// 10 roots; root 1 with 10,000 children; roots 2-10 with 1,000 children each; the remaining
// records are grandchildren spread over those 9,000 children. Ids follow no tree order.
void createTable(QSqlDatabase &db)
{
    QSqlQuery q(db);
    q.exec(QStringLiteral("CREATE TABLE struttura (id INTEGER PRIMARY KEY, padre INTEGER, nome TEXT)"));
    db.transaction();
    q.prepare(QStringLiteral("INSERT INTO struttura VALUES (?, ?, ?)"));
    const auto insert = [&](int id, const QVariant &padre) {
        q.addBindValue(id);
        q.addBindValue(padre);
        q.addBindValue(QStringLiteral("Nodo %1").arg(id));
        q.exec();
    };
    const QVariant none(QMetaType::fromType<int>());
    std::vector<int> middle;
    int id = Records;
    for (int r = 1; r <= Roots; ++r)
        insert(r, none);
    // Children get the highest ids and grandchildren the lowest, so no parent comes first.
    for (int c = 0; c < BigChildren; ++c)
        insert(id--, 1);
    for (int r = 2; r <= Roots; ++r)
        for (int c = 0; c < 1000; ++c) {
            middle.push_back(id);
            insert(id--, r);
        }
    for (std::size_t g = 0; id > Roots; ++g)
        insert(id--, middle[g % middle.size()]);
    db.commit();
}

class Caption : public TCustomDataNode
{
public:
    explicit Caption(QString text) : m_text(std::move(text)) {}
    QString DisplayText(TTreeNode *) const override { return m_text; }

private:
    QString m_text;
};

// Our side: the table through CommandText, a source and a shown tree view with captions. The
// view is attached to the source by the caller, before or after opening.
struct OurTree
{
    TClientDataSet ds;
    TDataSource source;
    TDBReadTreeView view;

    OurTree()
    {
        ds.setConnectionName(QLatin1String(Connection));
        ds.setCommandText(QLatin1String(Select));
        source.setDataSet(&ds);
        view.OnCreatingDataNode = [](QObject *, TDataSet *dataSet, TTreeNode *, TCustomDataNode *&data) {
            data = new Caption(dataSet->FieldByName(QStringLiteral("nome"))->AsString());
        };
        view.setDataFieldNodo(QStringLiteral("id"));
        view.setDataFieldPadre(QStringLiteral("padre"));
        view.show();
    }
};

// The references' side: a shown QTreeWidget with one node, the parent of the big branch.
struct PlainTree
{
    QTreeWidget view;
    QTreeWidgetItem *big = new QTreeWidgetItem(QStringList{QStringLiteral("Nodo 1")});

    PlainTree()
    {
        view.addTopLevelItem(big);
        view.show();
        QApplication::processEvents();
    }
};

double best(int runs, const std::function<double()> &measure)
{
    double result = 1e300;
    for (int i = 0; i < runs; ++i)
        result = std::min(result, measure());
    return result;
}

double elapsedMs(const QElapsedTimer &t)
{
    return double(t.nsecsElapsed()) / 1e6;
}

struct Row
{
    int id;
    QVariant padre;
    QString nome;
};

std::vector<Row> readAll(QSqlDatabase &db)
{
    std::vector<Row> rows;
    QSqlQuery q(db);
    q.setForwardOnly(true);
    q.exec(QLatin1String(Select));
    while (q.next())
        rows.push_back({q.value(0).toInt(), q.value(1), q.value(2).toString()});
    return rows;
}

} // namespace

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    const int runs = argc > 1 ? std::max(1, QString::fromLocal8Bit(argv[1]).toInt()) : 5;
    QTextStream out(stdout);
    QTemporaryDir dir;
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QLatin1String(Connection));
    db.setDatabaseName(dir.filePath(QStringLiteral("struttura.sqlite")));
    if (!db.open())
        return 1;
    createTable(db);
    readAll(db); // warm the file cache for everyone

    // --- Roots after opening ---
    const double oursOpen = best(runs, [&] {
        OurTree tree;
        tree.view.setDataSource(&tree.source);
        QElapsedTimer t;
        t.start();
        tree.ds.Open();
        QApplication::processEvents();
        const double ms = elapsedMs(t);
        if (tree.view.topLevelItemCount() != Roots)
            qFatal("bench_tree: %d roots", tree.view.topLevelItemCount());
        return ms;
    });
    const double oursRootsOnly = best(runs, [&] {
        OurTree tree;
        tree.ds.Open();
        QElapsedTimer t;
        t.start();
        tree.view.setDataSource(&tree.source);
        QApplication::processEvents();
        return elapsedMs(t);
    });
    const double refOpen = best(runs, [&] {
        QTreeWidget view;
        view.show();
        QElapsedTimer t;
        t.start();
        const std::vector<Row> rows = readAll(db);
        for (const Row &r : rows)
            if (r.padre.isNull())
                view.addTopLevelItem(new QTreeWidgetItem(QStringList{r.nome}));
        QApplication::processEvents();
        return elapsedMs(t);
    });
    const std::vector<Row> memory = readAll(db);
    const double refRootsOnly = best(runs, [&] {
        QTreeWidget view;
        view.show();
        QElapsedTimer t;
        t.start();
        for (const Row &r : memory)
            if (r.padre.isNull())
                view.addTopLevelItem(new QTreeWidgetItem(QStringList{r.nome}));
        QApplication::processEvents();
        return elapsedMs(t);
    });

    // --- A node with 10,000 children, on its first selection ---
    const double oursChildren = best(runs, [&] {
        OurTree tree;
        tree.view.setDataSource(&tree.source);
        tree.ds.Open();
        QApplication::processEvents();
        TTreeNode *big = tree.view.GetNodeFromID(1);
        QElapsedTimer t;
        t.start();
        tree.view.setSelected(big);
        big->setExpanded(true);
        QApplication::processEvents();
        const double ms = elapsedMs(t);
        if (big->Count() != BigChildren)
            qFatal("bench_tree: %d children", big->Count());
        return ms;
    });
    const double refSqlChildren = best(runs, [&] {
        PlainTree tree;
        QElapsedTimer t;
        t.start();
        QSqlQuery q(db);
        q.setForwardOnly(true);
        q.prepare(QStringLiteral("SELECT id, padre, nome FROM struttura WHERE padre = ?"));
        q.addBindValue(1);
        q.exec();
        while (q.next())
            tree.big->addChild(new QTreeWidgetItem(QStringList{q.value(2).toString()}));
        tree.view.setCurrentItem(tree.big);
        tree.big->setExpanded(true);
        QApplication::processEvents();
        return elapsedMs(t);
    });
    const double refMemoryChildren = best(runs, [&] {
        PlainTree tree;
        QElapsedTimer t;
        t.start();
        for (const Row &r : memory)
            if (!r.padre.isNull() && r.padre.toInt() == 1)
                tree.big->addChild(new QTreeWidgetItem(QStringList{r.nome}));
        tree.view.setCurrentItem(tree.big);
        tree.big->setExpanded(true);
        QApplication::processEvents();
        return elapsedMs(t);
    });

    const auto line = [&](const char *what, double ours, const char *ref, double reference) {
        out << QStringLiteral("%1: %2 ms   reference (%3) %4 ms   ratio %5\n")
                   .arg(QLatin1String(what))
                   .arg(ours, 0, 'f', 1)
                   .arg(QLatin1String(ref))
                   .arg(reference, 0, 'f', 1)
                   .arg(ours / reference, 0, 'f', 2);
    };
    out << QStringLiteral("%1 records, %2 roots, a node with %3 children; best of %4 runs\n")
               .arg(Records).arg(Roots).arg(BigChildren).arg(runs);
    line("roots after opening (SQL load included)", oursOpen,
         "QSqlQuery over the table, roots into a QTreeWidget", refOpen);
    line("roots on an open dataset", oursRootsOnly, "roots into a QTreeWidget from rows in memory", refRootsOnly);
    line("10,000 children on first selection", oursChildren,
         "QSqlQuery WHERE padre = 1 into a QTreeWidget", refSqlChildren);
    line("10,000 children on first selection", oursChildren,
         "the same children into a QTreeWidget from rows in memory", refMemoryChildren);
    out << "targets: roots after opening 200 ms, 10,000 children 500 ms\n";
    db.close();
    return 0;
}
