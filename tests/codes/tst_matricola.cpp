// The student number control on screen, bound to a client dataset filled from an SQLite table:
// its layout, the zero-padding while browsing and on exit, the values written back, the error of
// a text that is no integer, and a layout without the faculty part.
#include "ClientDataSet.h"
#include "DataSource.h"
#include "EditTestSupport.h"
#include "FormatSettings.h"
#include "Graphics.h"
#include "Matricola.h"

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>

using namespace mattoni;
using namespace edittest;

namespace {

const char *const Connection = "tst_matricola";

struct Form : Between<TMatricola>
{
    TMatricola *matricola = control;
    TClientDataSet ds;
    TDataSource source;
    QList<QObject *> exits;

    Form()
    {
        matricola->OnExit = [this](QObject *sender) { exits.append(sender); };
        ds.setConnectionName(QLatin1String(Connection));
        ds.setCommandText(QStringLiteral("SELECT * FROM studenti ORDER BY id"));
        ds.Open();
        source.setDataSet(&ds);
        matricola->setDataFieldFacolta(QStringLiteral("facolta"));
        matricola->setDataFieldCorsoStudi(QStringLiteral("corso"));
        matricola->setDataFieldMatricola(QStringLiteral("matricola"));
        matricola->setDataSource(&source);
    }
    QList<TDBEditEnh *> edits() const
    {
        return {matricola->EditFacolta(), matricola->EditCorsoStudi(), matricola->EditMatricola()};
    }
    QStringList shown() const
    {
        QStringList texts;
        for (const TDBEditEnh *edit : edits())
            texts << edit->text();
        return texts;
    }
    QList<QRect> geometries() const
    {
        QList<QRect> rects;
        for (const TDBEditEnh *edit : edits())
            rects << edit->geometry();
        return rects;
    }
    TDBEditEnh *edit(int part) const { return edits().at(part); }
};

} // namespace

class tst_Matricola : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dir;

private slots:
    void initTestCase()
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QLatin1String(Connection));
        db.setDatabaseName(m_dir.filePath(QStringLiteral("studenti.sqlite")));
        QVERIFY(db.open());
        QSqlQuery q(db);
        QVERIFY(q.exec(QStringLiteral("CREATE TABLE studenti (id INTEGER PRIMARY KEY, facolta TEXT, corso TEXT, matricola TEXT)")));
        QVERIFY(q.exec(QStringLiteral("INSERT INTO studenti VALUES (1, '10', '100101', '42'), (2, '060', '0600602', '000123')")));
    }
    void cleanupTestCase()
    {
        QSqlDatabase::database(QLatin1String(Connection)).close();
        QSqlDatabase::removeDatabase(QLatin1String(Connection));
    }
    void init() { FormatSettings = TFormatSettings::Italian(); }

    void layoutAndResize()
    {
        Form f;
        QCOMPARE(f.matricola->size(), QSize(95, 19));
        QCOMPARE(f.geometries(), QList<QRect>({{1, 0, 22, 19}, {22, 0, 50, 19}, {77, 0, 37, 19}}));
        QVERIFY(activate(f.window));
        QCOMPARE(f.geometries(), QList<QRect>({{1, 0, 22, 19}, {22, 0, 50, 19}, {72, 0, 18, 19}}));
        f.matricola->setWidthCorsoStudi(60);
        f.matricola->resize(200, 25);
        QCOMPARE(f.geometries(), QList<QRect>({{1, 0, 22, 25}, {22, 0, 60, 25}, {82, 0, 113, 25}}));
        const TColor color = RGB(240, 250, 255);
        f.matricola->setEditColor(color);
        QCOMPARE(f.edit(2)->Color(), color);
        QCOMPARE(f.matricola->ClientArea()->grab().toImage().pixelColor(198 - 4, 10), TColorToQColor(color));
    }

    void browsingShowsZeroPadded()
    {
        Form f;
        QCOMPARE(f.shown(), QStringList({"010", "0100101", "000042"}));
        f.ds.Next();
        QCOMPARE(f.shown(), QStringList({"060", "0600602", "000123"}));
        f.ds.First();
        QCOMPARE(f.ds.State(), dsBrowse);
        QCOMPARE(f.ds.FieldByName(QStringLiteral("matricola"))->AsString(), QStringLiteral("42"));
    }

    void exitNormalizesAndWritesBack_data()
    {
        QTest::addColumn<int>("part");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("shown");
        QTest::newRow("student number") << 2 << "42" << "000042";
        QTest::newRow("blanks around") << 2 << " 7 " << "000007";
        QTest::newRow("empty student number") << 2 << "" << "000000";
        QTest::newRow("empty faculty") << 0 << "" << "000";
        QTest::newRow("course") << 1 << "9" << "0000009";
    }
    void exitNormalizesAndWritesBack()
    {
        QFETCH(int, part);
        QFETCH(QString, typed);
        QFETCH(QString, shown);
        Form f;
        f.ds.Next();
        QVERIFY(activate(f.window));
        QTest::mouseClick(f.edit(part), Qt::LeftButton);
        QTest::keyClick(f.edit(part), Qt::Key_A, Qt::ControlModifier);
        QTest::keyClick(f.edit(part), Qt::Key_Delete);
        typeIn(typed);
        tab();
        QCOMPARE(f.edit(part)->text(), shown);
        QCOMPARE(f.exits, QList<QObject *>({f.matricola}));
        f.ds.Post();
        const char *const fields[] = {"facolta", "corso", "matricola"};
        QCOMPARE(f.ds.FieldByName(QLatin1String(fields[part]))->AsString(), shown);
        QCOMPARE(f.ds.RecNo(), 2);
    }

    void textThatIsNoIntegerRaisesOnExit()
    {
        FormatSettings.DecimalSeparator = QLatin1Char('.');
        PostedErrors posted;
        Form f;
        QVERIFY(activate(f.window));
        TDBEditEnh *student = f.edit(2);
        QTest::mouseClick(student, Qt::LeftButton);
        QTest::keyClick(student, Qt::Key_A, Qt::ControlModifier);
        typeIn(QStringLiteral(" 1.2 "));
        tab();
        QTRY_COMPARE(posted.errors.size(), 1);
        QVERIFY_THROWS_EXCEPTION(EConvertError, std::rethrow_exception(posted.errors.at(0)));
        QCOMPARE(posted.message(0), QStringLiteral("'1.2' is not a valid integer value"));
        QCOMPARE(f.exits.size(), 1);
        QTRY_COMPARE(focused(), student);
        QCOMPARE(student->text(), QStringLiteral(" 1.2 "));
    }

    void facultyWidthZeroSkipsTheFaculty()
    {
        Form f;
        f.matricola->setWidthFacolta(0);
        QVERIFY(activate(f.window));
        QVERIFY(!f.edit(0)->isEnabled());
        QVERIFY(!f.matricola->TabStopFacolta());
        QCOMPARE(f.edit(1)->x(), 0);
        QCOMPARE(f.edit(2)->x(), 50);
        int enters = 0;
        f.matricola->OnEnter = [&enters](QObject *) { ++enters; };
        QTest::mouseClick(f.before, Qt::LeftButton);
        tab();
        QCOMPARE(focused(), f.edit(1));
        tab();
        QCOMPARE(focused(), f.edit(2));
        QCOMPARE(enters, 1);
        tab();
        tab(true);
        QCOMPARE(enters, 2);
        tab(true);
        tab(true);
        QCOMPARE(focused(), f.before);
    }
};

QTEST_MAIN(tst_Matricola)
#include "tst_matricola.moc"
