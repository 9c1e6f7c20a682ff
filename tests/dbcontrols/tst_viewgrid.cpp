// The client grid ordering an SQLite query: Ctrl-clicks on the titles with the left and right
// buttons, Ctrl released, the command text rewritten and the rows read back; the failure path
// with its message; the highlight colours and the sort cursor.
#include "ClientDataSet.h"
#include "DataSource.h"
#include "Graphics.h"
#include "GridTestUtils.h"
#include "ViewGrid.h"

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>

#include <memory>

using namespace mattoni;
using namespace gridtest;

namespace {

const char *const Connection = "tst_viewgrid";
const QString Select = QStringLiteral("SELECT id, cognome, nome, data FROM studenti");

struct Query
{
    TClientDataSet ds;
    TDataSource source;
    TClientDBGrid grid;

    explicit Query(const QString &sql)
    {
        ds.setConnectionName(QLatin1String(Connection));
        ds.setCommandText(sql);
        ds.Open();
        source.setDataSet(&ds);
        grid.setDataSource(&source);
        grid.resize(600, 260);
        grid.show();
        grid.activateWindow();
    }

    bool shown() { return QTest::qWaitForWindowActive(&grid); }
    int col(const char *name) { return grid.FindFieldColumn(ds.FieldByName(QLatin1String(name))); }

    // "L:cognome R:data": Ctrl held, the titles clicked with the left or right button, Ctrl
    // released.
    void order(const QString &clicks)
    {
        QTest::keyPress(&grid, Qt::Key_Control, Qt::ControlModifier);
        for (const QString &click : clicks.split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
            const Qt::MouseButton button = click.startsWith(QLatin1Char('L')) ? Qt::LeftButton : Qt::RightButton;
            ClickTitle(grid, col(click.mid(2).toLatin1().constData()), Qt::ControlModifier, button);
        }
        QTest::keyRelease(&grid, Qt::Key_Control, Qt::NoModifier);
    }

    bool plainColours()
    {
        for (const TColumn *c : grid.Columns()) {
            if (c->Color() != clWindow || c->Font().Color() != clWindowText)
                return false;
        }
        return true;
    }
};

} // namespace

class tst_ViewGrid : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dir;

private slots:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QLatin1String(Connection));
        db.setDatabaseName(m_dir.filePath(QStringLiteral("viewgrid.sqlite")));
        QVERIFY(db.open());
        QSqlQuery q(db);
        QVERIFY(q.exec(QStringLiteral("CREATE TABLE studenti (id INTEGER, cognome TEXT, nome TEXT, data TEXT)")));
        QVERIFY(q.exec(QStringLiteral("INSERT INTO studenti VALUES (1,'Rossi','Anna','2001-05-02'),"
                                      "(2,'Bianchi','Luca','2000-01-20'),(3,'Rossi','Carla','2002-11-30'),"
                                      "(4,'Conti','Bruna','1999-07-14'),(5,'Bianchi','Marco','2003-02-01')")));
    }

    void cleanupTestCase() { QSqlDatabase::removeDatabase(QLatin1String(Connection)); }

    void ordering_data()
    {
        QTest::addColumn<QString>("sql");
        QTest::addColumn<QString>("clicks");
        QTest::addColumn<QString>("command");
        QTest::addColumn<QString>("ids");
        QTest::newRow("ascending, then descending")
            << Select << "L:cognome R:data" << Select + " order by COGNOME ASC,DATA DESC" << "5,2,4,3,1";
        QTest::newRow("upper-case clause replaced")
            << Select + " ORDER BY id" << "R:nome" << Select + "  order by NOME DESC" << "5,2,3,4,1";
        QTest::newRow("lower-case clause replaced")
            << Select + " order by id DESC" << "L:nome L:id" << Select + "  order by NOME ASC,ID ASC" << "1,4,3,2,5";
        QTest::newRow("second click takes it out")
            << Select << "L:cognome R:nome L:cognome" << Select + " order by NOME DESC" << "5,2,3,4,1";
        QTest::newRow("same title twice: nothing to apply") << Select << "L:cognome L:cognome" << Select << "1,2,3,4,5";
    }

    void ordering()
    {
        QFETCH(QString, sql);
        QFETCH(QString, clicks);
        Query q(sql);
        QVERIFY(q.shown());
        const int width = q.grid.Columns()[1]->Width();
        q.order(clicks);
        QTEST(q.ds.CommandText(), "command");
        QVERIFY(q.ds.Active());
        QTEST(Rows(q.ds, QStringLiteral("id")), "ids");
        QVERIFY(q.plainColours());
        QCOMPARE(q.grid.OrderCount(), 0);
        // The reopened dataset comes back into the same columns.
        QCOMPARE(q.grid.Columns().Count(), 4);
        QCOMPARE(q.grid.Columns()[1]->Width(), width);
        QCOMPARE(q.grid.model()->rowCount(), 5);
    }

    // A clause in mixed case stays and a second one follows it, which SQLite refuses: the old
    // command comes back and the user is told.
    void refusedOrdering()
    {
        const QString sql = Select + " Order By id DESC";
        Query q(sql);
        QVERIFY(q.shown());
        const QString message = AnswerMessageBox([&] { q.order(QStringLiteral("L:cognome")); });
        QCOMPARE(message, QStringLiteral("Non è possibile eseguire l'ordinamento richiesto"));
        QCOMPARE(q.ds.CommandText(), sql);
        QVERIFY(q.ds.Active());
        QCOMPARE(Rows(q.ds, QStringLiteral("id")), QStringLiteral("5,4,3,2,1"));
        QVERIFY(q.plainColours());
        QCOMPARE(q.grid.OrderCount(), 0);
        QCOMPARE(ControlCursor(&q.grid), crDefault);
    }

    void highlightWhileCollecting()
    {
        Query q(Select);
        QVERIFY(q.shown());
        const int cognome = q.col("cognome");
        QTest::keyPress(&q.grid, Qt::Key_Control, Qt::ControlModifier);
        ClickTitle(q.grid, cognome, Qt::ControlModifier);
        TColumn *column = q.grid.Columns()[cognome];
        QCOMPARE(column->Color(), clHighlight);
        QCOMPARE(column->Font().Color(), clHighlightText);
        QCOMPARE(q.grid.OrderCount(), 1);
        QCOMPARE(q.grid.OrderText(), QStringLiteral("COGNOME ASC"));
        const QRect cell = q.grid.CellRect(q.grid.IndicatorOffset() + cognome, q.grid.TitleOffset() + 2);
        QCOMPARE(q.grid.grab().toImage().pixelColor(cell.topLeft() + QPoint(1, 1)), TColorToQColor(clHighlight));
        ClickTitle(q.grid, cognome, Qt::ControlModifier, Qt::RightButton);
        QVERIFY(q.plainColours());
        QCOMPARE(q.grid.OrderCount(), 0);
        QTest::keyRelease(&q.grid, Qt::Key_Control, Qt::NoModifier);

        // KeepColors: the ordered columns stay marked until the next ordering starts.
        q.grid.setKeepColors(true);
        q.order(QStringLiteral("L:nome"));
        QCOMPARE(q.grid.Columns()[q.col("nome")]->Color(), clHighlight);
        QTest::keyPress(&q.grid, Qt::Key_Control, Qt::ControlModifier);
        ClickTitle(q.grid, q.col("data"), Qt::ControlModifier);
        QCOMPARE(q.grid.Columns()[q.col("nome")]->Color(), clWindow);
        QCOMPARE(q.grid.Columns()[q.col("data")]->Color(), clHighlight);
    }

    void columnClicks_data()
    {
        QTest::addColumn<bool>("indicator");
        QTest::newRow("with indicator") << true;
        QTest::newRow("without indicator") << false;
    }

    // Without Ctrl a click only reports the column, numbered from 1 either way.
    void columnClicks()
    {
        QFETCH(bool, indicator);
        Query q(Select);
        q.grid.setMultiSelect(true);
        if (!indicator)
            q.grid.setOptions(q.grid.Options() & ~TDBGridOptions(dgIndicator));
        QVERIFY(q.shown());
        QList<QVariantList> clicks;
        q.grid.OnColumnClick = [&](QObject *, int index, Qt::MouseButton button, Qt::KeyboardModifiers shift) {
            clicks.append({index, int(button), int(shift)});
        };
        ClickTitle(q.grid, q.col("nome"));
        ClickTitle(q.grid, q.col("id"), Qt::ShiftModifier, Qt::RightButton);
        QCOMPARE(clicks, (QList<QVariantList>{{3, int(Qt::LeftButton), 0}, {1, int(Qt::RightButton), int(Qt::ShiftModifier)}}));
        QCOMPARE(q.ds.CommandText(), Select);
        QCOMPARE(q.grid.OrderCount(), 0);
        if (indicator) {
            // The indicator's title selects every row.
            QWidget *corner = q.grid.findChild<QAbstractButton *>();
            QTest::mouseClick(corner, Qt::LeftButton);
            QCOMPARE(q.grid.GetSelCount(), 5);
            QCOMPARE(clicks.size(), 2);
        }
    }

    void sortCursor()
    {
        Query q(Select);
        QVERIFY(q.shown());
        QWidget *titles = q.grid.horizontalHeader()->viewport();
        const QPoint title = titles->mapFrom(&q.grid, q.grid.CellRect(q.grid.IndicatorOffset() + 1, 0).center());
        QTest::mouseMove(titles, title);
        QCOMPARE(ControlCursor(&q.grid), crDefault);
        QTest::keyPress(&q.grid, Qt::Key_Control, Qt::ControlModifier);
        // The pointer really moves, and the X server reports the move a moment later.
        QTest::mouseMove(titles, title + QPoint(3, 0));
        QTRY_COMPARE(ControlCursor(&q.grid), crSortCursor);
        const QImage drawn = QImage(QStringLiteral(":/cursors/CRSORT")).convertToFormat(QImage::Format_ARGB32);
        QCOMPARE(q.grid.cursor().pixmap().toImage().convertToFormat(QImage::Format_ARGB32), drawn);
        QCOMPARE(q.grid.cursor().hotSpot(), QPoint(1, 1));
        // Over the rows, the plain cursor.
        QTest::mouseMove(q.grid.viewport(), QPoint(20, 20));
        QTRY_COMPARE(ControlCursor(&q.grid), crDefault);
        QTest::mouseMove(titles, title);
        QTRY_COMPARE(ControlCursor(&q.grid), crSortCursor);
        QTest::keyRelease(&q.grid, Qt::Key_Control, Qt::NoModifier);
        QTest::mouseMove(titles, title + QPoint(5, 0));
        QTRY_COMPARE(ControlCursor(&q.grid), crDefault);
    }

    void exclusiveSorts()
    {
        TClientDBGrid grid;
        QVERIFY(grid.EnableSort() && !grid.TitleSort());
        grid.setTitleSort(true);
        QVERIFY(!grid.EnableSort() && grid.TitleSort());
        grid.setEnableSort(true);
        QVERIFY(grid.EnableSort() && !grid.TitleSort());
    }

    // Rows that do not come from a command cannot be ordered by one.
    void inMemoryDataSet()
    {
        TClientDataSet ds;
        ds.FieldDefs().Add(QStringLiteral("ID"), ftInteger);
        TDataSource source;
        source.setDataSet(&ds);
        TClientDBGrid grid;
        grid.setDataSource(&source);
        QVERIFY(grid.EnableSort());
        ds.CreateDataSet();
        QVERIFY(!grid.EnableSort());
    }
};

QTEST_MAIN(tst_ViewGrid)
#include "tst_viewgrid.moc"
