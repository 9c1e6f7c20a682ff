// The client grid ordering a query on each server as it does on SQLite: Ctrl-clicks on the titles
// with the left and right buttons, Ctrl released, the command text rewritten, the rows read back
// from the server; a clause the server refuses brings the old command back.
#include "../common/TestServers.h"

#include "ClientDataSet.h"
#include "DataSource.h"
#include "GridTestUtils.h"
#include "ViewGrid.h"

using namespace mattoni;
using namespace mattoni_test;
using namespace gridtest;

namespace {

const QString Select = QStringLiteral("SELECT id, cognome, nome, data FROM studenti_griglia");

struct Query
{
    TClientDataSet ds;
    TDataSource source;
    TClientDBGrid grid;

    Query(const QSqlDatabase &db, const QString &sql)
    {
        ds.setConnection(db);
        ds.setCommandText(sql);
        ds.Open();
        source.setDataSet(&ds);
        grid.setDataSource(&source);
        // MariaDB and Firebird size a UTF-8 VARCHAR(10) field at 40 characters, the bytes it may
        // take: the grid is made wide enough for every title.
        grid.resize(900, 260);
        grid.show();
        grid.activateWindow();
    }

    int col(const char *name) { return grid.FindFieldColumn(ds.FieldByName(QLatin1String(name))); }

    // "L:cognome R:data": Ctrl held, the titles clicked with the left or right button, Ctrl
    // released.
    void order(const QString &clicks)
    {
        QTest::keyPress(&grid, Qt::Key_Control, Qt::ControlModifier);
        for (const QString &click : clicks.split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
            const Qt::MouseButton button = click.startsWith(QLatin1Char('L')) ? Qt::LeftButton : Qt::RightButton;
            const int column = col(click.mid(2).toLatin1().constData());
            // A click beyond the visible titles would be lost without a trace.
            QVERIFY(grid.rect().contains(grid.CellRect(grid.IndicatorOffset() + column, 0)));
            ClickTitle(grid, column, Qt::ControlModifier, button);
        }
        QTest::keyRelease(&grid, Qt::Key_Control, Qt::NoModifier);
    }
};

} // namespace

class tst_ViewGridServers : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        for (const auto &[s, db] : openServers()) {
            QStringList rows;
            for (const char *row : {"1, 'Rossi', 'Anna', '2001-05-02'", "2, 'Bianchi', 'Luca', '2000-01-20'",
                                    "3, 'Rossi', 'Carla', '2002-11-30'", "4, 'Conti', 'Bruna', '1999-07-14'",
                                    "5, 'Bianchi', 'Marco', '2003-02-01'"})
                rows << QStringLiteral("INSERT INTO studenti_griglia VALUES (%1)").arg(QLatin1String(row));
            QString error = recreateTable(s, db, QStringLiteral("studenti_griglia"),
                                          QStringLiteral("id INTEGER, cognome VARCHAR(10), nome VARCHAR(10), data DATE"));
            if (error.isEmpty())
                error = execAll(db, rows);
            QVERIFY2(error.isEmpty(), qPrintable(error));
        }
    }

    void ordering_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("sql");
        QTest::addColumn<QString>("clicks");
        QTest::addColumn<QString>("command");
        QTest::addColumn<QString>("ids");
        for (const Server &s : servers()) {
            QTest::addRow("%s: ascending, then descending", s.name)
                << int(s.kind) << Select << "L:cognome R:data" << Select + " order by COGNOME ASC,DATA DESC" << "5,2,4,3,1";
            QTest::addRow("%s: upper-case clause replaced", s.name)
                << int(s.kind) << Select + " ORDER BY id" << "R:nome" << Select + "  order by NOME DESC" << "5,2,3,4,1";
        }
    }
    void ordering()
    {
        QFETCH(int, kind);
        QFETCH(QString, sql);
        QFETCH(QString, clicks);
        MATTONI_SERVER_OR_SKIP(db, ServerKind(kind));
        Query q(db, sql);
        QVERIFY(QTest::qWaitForWindowActive(&q.grid));
        q.order(clicks);
        QTEST(q.ds.CommandText(), "command");
        QVERIFY(q.ds.Active());
        QTEST(Rows(q.ds, QStringLiteral("id")), "ids");
    }

    // A clause in mixed case stays and a second one follows it, which every server refuses.
    void refusedOrdering_data()
    {
        QTest::addColumn<int>("kind");
        for (const Server &s : servers())
            QTest::addRow("%s", s.name) << int(s.kind);
    }
    void refusedOrdering()
    {
        QFETCH(int, kind);
        const QString sql = Select + " Order By id DESC";
        MATTONI_SERVER_OR_SKIP(db, ServerKind(kind));
        Query q(db, sql);
        QVERIFY(QTest::qWaitForWindowActive(&q.grid));
        const QString message = AnswerMessageBox([&] { q.order(QStringLiteral("L:cognome")); });
        QCOMPARE(message, QStringLiteral("Non è possibile eseguire l'ordinamento richiesto"));
        QCOMPARE(q.ds.CommandText(), sql);
        QVERIFY(q.ds.Active());
        QCOMPARE(Rows(q.ds, QStringLiteral("id")), QStringLiteral("5,4,3,2,1"));
    }
};

QTEST_MAIN(tst_ViewGridServers)
#include "tst_viewgridservers.moc"
