// The data tree view on screen over a self-referencing table, loaded from SQLite through
// CommandText and made in memory: roots, children read on selection, the dataset following the
// selection, and the tree following inserts, edits and deletes.
#include "ClientDataSet.h"
#include "DBActions.h"
#include "DBTreeView.h"
#include "DataSource.h"
#include "Variants.h"

#include <QLineEdit>
#include <QtTest>

using namespace mattoni;

namespace {

const char *const Connection = "tst_dbtreeview";

// The rows of the table: id, parent, name. 9 hangs under 0, which is no root and no record.
struct Row
{
    int id;
    int padre; // -1: Null
    const char *nome;
};
const Row rows[] = {
    {1, -1, "Ingegneria"}, {2, -1, "Lettere"},    {4, 1, "Informatica"}, {5, 1, "Civile"},
    {6, 1, "Gestionale"},  {7, 2, "Filosofia"},   {8, 4, "Algoritmi"},   {9, 0, "Orfano"},
    {10, 2, "Storia"},
};

class Caption : public TCustomDataNode
{
public:
    explicit Caption(const QString &text) : name(text) {}
    QString DisplayText(TTreeNode *) const override { return name; }
    QString name;
};

// A view with handlers that give captions from "nome" and count every data object.
struct Tree
{
    // Before the view: its handlers still count while it is destroyed.
    QSet<TCustomDataNode *> alive;
    int created = 0;
    int released = 0;
    QStringList events;
    TDataSource source;
    TDBReadTreeView view;

    explicit Tree(TDataSet &ds, bool fetchAll = false)
    {
        view.setDataFieldNodo(QStringLiteral("id"));
        view.setDataFieldPadre(QStringLiteral("padre"));
        view.setFetchAll(fetchAll);
        view.OnCreatingDataNode = [this](QObject *sender, TDataSet *dataset, TTreeNode *father, TCustomDataNode *&data) {
            QCOMPARE(sender, &view);
            data = new Caption(dataset->FieldByName(QStringLiteral("nome"))->AsString());
            alive.insert(data);
            ++created;
            events << QStringLiteral("creating %1 under %2").arg(static_cast<Caption *>(data)->name,
                                                                 father ? father->Text() : QStringLiteral("-"));
        };
        view.OnAfterCreatingDataNode = [this](QObject *, TDataSet *, TTreeNode *node) {
            QVERIFY(alive.contains(node->Data()));
            QCOMPARE(node->Text(), static_cast<Caption *>(node->Data())->name);
            QCOMPARE(node->ImageIndex(), node->Level());
            QCOMPARE(node->SelectedIndex(), node->Level());
        };
        view.OnDestroyingDataNode = [this](QObject *, TCustomDataNode *data) {
            QVERIFY(alive.remove(data));
            ++released;
        };
        view.OnRefreshingDataNode = [this](QObject *, TDataSet *dataset, TTreeNode *node) {
            static_cast<Caption *>(node->Data())->name = dataset->FieldByName(QStringLiteral("nome"))->AsString();
            events << QStringLiteral("refreshing %1").arg(node->Text());
        };
        view.OnInsertingDataNode = [this](QObject *, TDataSet *, TTreeNode *current) {
            events << QStringLiteral("inserting under %1").arg(current ? current->Text() : QStringLiteral("-"));
        };
        view.OnEditingDataNode = [this](QObject *, TDataSet *, TTreeNode *node) {
            events << QStringLiteral("editing %1").arg(node ? node->Text() : QStringLiteral("-"));
        };
        view.resize(300, 400);
        view.show();
        source.setDataSet(&ds);
        view.setDataSource(&source);
        events.clear();
    }

    TDataSet *ds() const { return source.DataSet(); }
    int currentId() const { return int(VarToInt(ds()->FieldByName(QStringLiteral("id"))->Value())); }
    TTreeNode *node(int id) const { return view.GetNodeFromID(id); }

    void click(int id)
    {
        TTreeNode *n = node(id);
        QVERIFY2(n, qPrintable(QStringLiteral("no node %1").arg(id)));
        view.scrollToItem(n);
        QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, view.visualItemRect(n).center());
        QCOMPARE(view.Selected(), n);
    }

    // The tree as text: "Ingegneria(Informatica, Civile); Lettere".
    QString dump() const
    {
        std::function<QString(TTreeNode *)> one = [&](TTreeNode *n) {
            QString s = n->Text();
            if (n->HasChildren()) {
                QStringList children;
                for (TTreeNode *c = n->getFirstChild(); c; c = c->getNextSibling())
                    children << one(c);
                s += QLatin1Char('(') + children.join(QStringLiteral(", ")) + QLatin1Char(')');
            }
            return s;
        };
        QStringList roots;
        for (TTreeNode *n = view.GetFirstNode(); n; n = n->getNextSibling())
            roots << one(n);
        return roots.join(QStringLiteral("; "));
    }
};

} // namespace

class tst_DBTreeView : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dir;

    // The table as a dataset: from SQLite through CommandText, or made in memory.
    void fill(TClientDataSet &ds, bool fromSql)
    {
        if (fromSql) {
            ds.setConnectionName(QLatin1String(Connection));
            ds.setCommandText(QStringLiteral("SELECT id, padre, nome FROM struttura ORDER BY id"));
            ds.Open();
            return;
        }
        ds.FieldDefs().Add(QStringLiteral("id"), ftInteger, 0, true);
        ds.FieldDefs().Add(QStringLiteral("padre"), ftInteger);
        ds.FieldDefs().Add(QStringLiteral("nome"), ftString, 40);
        ds.CreateDataSet();
        for (const Row &r : rows)
            ds.AppendRecord({r.id, r.padre < 0 ? Null() : QVariant(r.padre), QString::fromLatin1(r.nome)});
        ds.First();
    }

    static void source_data()
    {
        QTest::addColumn<bool>("fromSql");
        QTest::newRow("sqlite") << true;
        QTest::newRow("memory") << false;
    }

private slots:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QLatin1String(Connection));
        db.setDatabaseName(m_dir.filePath(QStringLiteral("struttura.sqlite")));
        QVERIFY(db.open());
        QSqlQuery q(db);
        QVERIFY(q.exec(QStringLiteral("CREATE TABLE struttura (id INTEGER PRIMARY KEY, padre INTEGER, nome TEXT)")));
        q.prepare(QStringLiteral("INSERT INTO struttura VALUES (?, ?, ?)"));
        for (const Row &r : rows) {
            q.addBindValue(r.id);
            q.addBindValue(r.padre < 0 ? QVariant(QMetaType::fromType<int>()) : QVariant(r.padre));
            q.addBindValue(QString::fromLatin1(r.nome));
            QVERIFY(q.exec());
        }
    }

    void cleanupTestCase()
    {
        QSqlDatabase::database(QLatin1String(Connection)).close();
        QSqlDatabase::removeDatabase(QLatin1String(Connection));
    }

    void rootsAndSelection_data() { source_data(); }
    void rootsAndSelection()
    {
        QFETCH(bool, fromSql);
        TClientDataSet ds;
        fill(ds, fromSql);
        ds.Locate(QStringLiteral("id"), 7);
        Tree t(ds);
        QVERIFY(QTest::qWaitForWindowExposed(&t.view));

        // Only empty parents make roots: 9 hangs under 0. Building left the dataset in place.
        QCOMPARE(t.dump(), QStringLiteral("Ingegneria; Lettere"));
        QCOMPARE(t.currentId(), 7);
        QCOMPARE(t.node(1)->childIndicatorPolicy(), QTreeWidgetItem::ShowIndicator);

        t.click(1);
        QCOMPARE(t.currentId(), 1);
        QCOMPARE(t.dump(), QStringLiteral("Ingegneria(Informatica, Civile, Gestionale); Lettere"));
        QCOMPARE(t.events, (QStringList{"refreshing Ingegneria", "creating Informatica under Ingegneria",
                                        "creating Civile under Ingegneria",
                                        "creating Gestionale under Ingegneria"}));
        QCOMPARE(t.node(4)->Level(), 1);
        QCOMPARE(t.node(4)->childIndicatorPolicy(), QTreeWidgetItem::ShowIndicator);
        QCOMPARE(t.node(5)->childIndicatorPolicy(), QTreeWidgetItem::DontShowIndicatorWhenChildless);
        // The filter used to walk the children is gone again.
        QVERIFY(!ds.Filtered());
        QCOMPARE(ds.Filter(), QString());
        QCOMPARE(ds.RecordCount(), 9);

        // Children are read once: back on the node, nothing new.
        t.click(2);
        t.click(1);
        QCOMPARE(t.created, 2 + 3 + 2);
        QCOMPARE(t.currentId(), 1);

        // Keys move the selection, and the dataset with it.
        t.node(1)->setExpanded(true);
        t.view.setFocus();
        QTest::keyClick(&t.view, Qt::Key_Down);
        QCOMPARE(t.view.Selected(), t.node(4));
        QCOMPARE(t.currentId(), 4);
        QCOMPARE(t.dump(), QStringLiteral("Ingegneria(Informatica(Algoritmi), Civile, Gestionale); Lettere(Filosofia, Storia)"));

        // Closing removes every node and releases every data object.
        ds.Close();
        QCOMPARE(t.view.topLevelItemCount(), 0);
        QCOMPARE(t.released, t.created);
        QVERIFY(t.alive.isEmpty());
        QCOMPARE(t.view.GetNodeFromID(1), nullptr);
    }

    void fetchAll()
    {
        TClientDataSet ds;
        fill(ds, true);
        Tree t(ds, true);
        QCOMPARE(t.dump(), QStringLiteral("Ingegneria(Informatica, Civile, Gestionale); Lettere(Filosofia, Storia)"));
        QCOMPARE(t.currentId(), 1);
    }

    void followsTheDataSet_data() { source_data(); }
    void followsTheDataSet()
    {
        QFETCH(bool, fromSql);
        TClientDataSet ds;
        fill(ds, fromSql);
        Tree t(ds);
        QVERIFY(QTest::qWaitForWindowExposed(&t.view));
        t.click(1);
        t.events.clear();

        // A child of a read node joins it; one of an unread node waits until that is read.
        ds.Append();
        QCOMPARE(t.events, QStringList{"inserting under Ingegneria"});
        ds.FieldByName(QStringLiteral("id"))->setAsInteger(11);
        ds.FieldByName(QStringLiteral("padre"))->setAsInteger(1);
        ds.FieldByName(QStringLiteral("nome"))->setAsString(QStringLiteral("Meccanica"));
        QCOMPARE(t.dump(), QStringLiteral("Ingegneria(Informatica, Civile, Gestionale); Lettere"));
        ds.Post();
        ds.AppendRecord({12, 4, QStringLiteral("Reti")});
        ds.AppendRecord({13, Null(), QStringLiteral("Economia")});
        QCOMPARE(t.dump(), QStringLiteral("Ingegneria(Informatica, Civile, Gestionale, Meccanica); Lettere; Economia"));
        t.click(4);
        QCOMPARE(t.dump(), QStringLiteral("Ingegneria(Informatica(Algoritmi, Reti), Civile, Gestionale, Meccanica); Lettere; Economia"));

        // An edit shows at once; a new parent moves the node, an unread one takes it away.
        t.events.clear();
        QVERIFY(ds.Locate(QStringLiteral("id"), 5));
        ds.Edit();
        ds.FieldByName(QStringLiteral("nome"))->setAsString(QStringLiteral("Ingegneria civile"));
        ds.Post();
        QCOMPARE(t.events.first(), QStringLiteral("refreshing Civile"));
        QVERIFY(t.events.contains(QStringLiteral("editing Civile")));
        QCOMPARE(t.node(5)->Text(), QStringLiteral("Ingegneria civile"));
        ds.Edit();
        ds.FieldByName(QStringLiteral("padre"))->setAsInteger(13);
        ds.Post();
        QCOMPARE(t.dump(), QStringLiteral("Ingegneria(Informatica(Algoritmi, Reti), Gestionale, Meccanica); Lettere; Economia"));
        QVERIFY(!t.node(5));
        t.click(13);
        QCOMPARE(t.dump(), QStringLiteral("Ingegneria(Informatica(Algoritmi, Reti), Gestionale, Meccanica); Lettere; Economia(Ingegneria civile)"));
        QCOMPARE(t.node(5)->ImageIndex(), 1);
        QVERIFY(ds.Locate(QStringLiteral("id"), 12));
        ds.Edit();
        ds.FieldByName(QStringLiteral("padre"))->setAsInteger(13);
        ds.Post();
        QCOMPARE(t.dump(), QStringLiteral("Ingegneria(Informatica(Algoritmi), Gestionale, Meccanica); Lettere; Economia(Ingegneria civile, Reti)"));
        QCOMPARE(t.node(12)->Level(), 1);
        ds.Edit();
        ds.FieldByName(QStringLiteral("padre"))->Clear();
        ds.Post();
        QCOMPARE(t.dump(), QStringLiteral("Ingegneria(Informatica(Algoritmi), Gestionale, Meccanica); Lettere; Economia(Ingegneria civile); Reti"));
        QCOMPARE(t.node(12)->ImageIndex(), 0);

        // Deleting the current record takes its node (and subtree) away on the next change.
        const int before = t.released;
        t.click(4);
        ds.Delete();
        QCOMPARE(t.dump(), QStringLiteral("Ingegneria(Gestionale, Meccanica); Lettere; Economia(Ingegneria civile); Reti"));
        QCOMPARE(t.released, before + 2);
        QVERIFY(!t.node(8));
        // The dataset stays on the record after the deleted one, and the selection follows it.
        QCOMPARE(t.currentId(), 5);
        QCOMPARE(t.view.Selected(), t.node(5));

        // A record gone behind the view's back: selecting its node selects the parent instead.
        ds.DisableControls();
        QVERIFY(ds.Locate(QStringLiteral("id"), 6));
        ds.Delete();
        ds.EnableControls();
        QVERIFY(t.node(6));
        t.click(1);
        t.node(1)->setExpanded(true);
        t.view.setFocus();
        QTest::keyClick(&t.view, Qt::Key_Down);
        QCOMPARE(t.view.Selected(), t.node(1));
        QVERIFY(!t.node(6));
        QCOMPARE(t.currentId(), 1);
        QCOMPARE(t.dump(), QStringLiteral("Ingegneria(Meccanica); Lettere; Economia(Ingegneria civile); Reti"));
    }

    void noReadWhileEditing()
    {
        TClientDataSet ds;
        fill(ds, true);
        Tree t(ds);
        QVERIFY(QTest::qWaitForWindowExposed(&t.view));
        QVERIFY(ds.Locate(QStringLiteral("id"), 2));
        ds.Edit();
        t.click(2);
        QCOMPARE(t.dump(), QStringLiteral("Ingegneria; Lettere"));
        ds.Cancel();
        t.click(1);
        t.click(2);
        QCOMPARE(t.dump(), QStringLiteral("Ingegneria(Informatica, Civile, Gestionale); Lettere(Filosofia, Storia)"));
    }

    void keepsTheUsersFilter()
    {
        TClientDataSet ds;
        fill(ds, true);
        const QString filter = QStringLiteral("nome <> 'Civile'");
        ds.setFilter(filter);
        ds.setFiltered(true);
        Tree t(ds);
        QVERIFY(QTest::qWaitForWindowExposed(&t.view));
        t.click(1);
        QCOMPARE(t.dump(), QStringLiteral("Ingegneria(Informatica, Gestionale); Lettere"));
        QCOMPARE(ds.Filter(), filter);
        QVERIFY(ds.Filtered());
        QCOMPARE(ds.RecordCount(), 8);
    }

    // Dataset actions without a source work on the tree's dataset while the tree has the focus,
    // through its shortcut typed on the keyboard; one with its own source ignores the focus.
    void datasetActions()
    {
        TClientDataSet ds;
        fill(ds, false);
        Tree t(ds);
        QLineEdit elsewhere;
        elsewhere.show();
        TDataSetNext next(&t.view);
        TDataSetEdit edit(&t.view);
        TDataSetCancel cancel(&t.view);
        next.setShortcut(QKeySequence(Qt::CTRL | Qt::Key_N));
        edit.setShortcut(QKeySequence(Qt::CTRL | Qt::Key_E));
        cancel.setShortcut(QKeySequence(Qt::Key_Escape));
        t.view.addActions({&next, &edit, &cancel});
        QCOMPARE(next.text(), QStringLiteral("Successivo"));

        elsewhere.activateWindow();
        elsewhere.setFocus();
        QTRY_VERIFY(elsewhere.hasFocus());
        QVERIFY(!next.isEnabled());
        QVERIFY(!edit.isEnabled());

        t.view.activateWindow();
        t.view.setFocus();
        QTRY_VERIFY(t.view.hasFocus());
        QVERIFY(next.isEnabled());
        QVERIFY(edit.isEnabled());
        QVERIFY(!cancel.isEnabled());
        QCOMPARE(t.currentId(), 1);
        QTest::keyClick(&t.view, Qt::Key_N, Qt::ControlModifier);
        QCOMPARE(t.currentId(), 2);

        // The actions follow the dataset's state while the tree keeps the focus.
        QTest::keyClick(&t.view, Qt::Key_E, Qt::ControlModifier);
        QCOMPARE(ds.State(), dsEdit);
        QVERIFY(cancel.isEnabled());
        QVERIFY(!edit.isEnabled());
        QTest::keyClick(&t.view, Qt::Key_Escape);
        QCOMPARE(ds.State(), dsBrowse);
        QVERIFY(!cancel.isEnabled());

        ds.Last();
        QVERIFY(!next.isEnabled());

        // Bound to its own source, the action moves that source's dataset wherever the focus is.
        TClientDataSet other;
        fill(other, false);
        TDataSource otherSource;
        otherSource.setDataSet(&other);
        TDataSetNext bound;
        bound.setDataSource(&otherSource);
        QVERIFY(bound.isEnabled());
        QVERIFY(!bound.HandlesTarget(&t.source));
        QVERIFY(!t.view.ExecuteAction(&bound));
        bound.trigger();
        QCOMPARE(other.FieldByName(QStringLiteral("id"))->AsInteger(), 2);
        other.Close();
        QVERIFY(!bound.isEnabled());
    }

    void releasesOnDestruction()
    {
        TClientDataSet ds;
        fill(ds, false);
        QSet<TCustomDataNode *> alive;
        {
            Tree t(ds, true);
            t.view.OnDestroyingDataNode = [&alive](QObject *, TCustomDataNode *data) { QVERIFY(alive.remove(data)); };
            alive = t.alive;
            QCOMPARE(alive.size(), 7);
            QCOMPARE(t.view.GetNodeFromID(10)->Parent(), t.view.GetNodeFromID(2));
        }
        QVERIFY(alive.isEmpty());
        // The dataset stays usable without the view.
        QVERIFY(ds.Locate(QStringLiteral("id"), 8));
    }
};

QTEST_MAIN(tst_DBTreeView)
#include "tst_dbtreeview.moc"
