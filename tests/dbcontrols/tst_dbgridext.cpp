// The extended grid on screen, driven by real mouse and key events: sorting by the titles (on
// an in-memory dataset and on one read from SQLite), the sort markers, cell colours, check
// boxes, typed characters, multi-selection and the clipboard.
#include "ClientDataSet.h"
#include "DBGridExt.h"
#include "DataSource.h"
#include "Exceptions.h"
#include "FormatSettings.h"
#include "Graphics.h"
#include "fm_MessageBox.h"
#include "GridTestUtils.h"

#include <QClipboard>
#include <QComboBox>
#include <QDrag>
#include <QLineEdit>
#include <QMimeData>
#include <QPainter>
#include <QScrollBar>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QToolButton>

#include <memory>

using namespace mattoni;
using namespace gridtest;

namespace {

// Six students, two of them with surnames that differ only in case; a city table for lookups.
struct Students
{
    TClientDataSet cities;
    TClientDataSet ds;
    TDataSource source;
    TDBGridExt grid;

    Students()
    {
        cities.FieldDefs().Add(QStringLiteral("CITTA"), ftString, 20);
        cities.FieldDefs().Add(QStringLiteral("REGIONE"), ftString, 20);
        cities.CreateDataSet();
        cities.AppendRecord({"Milano", "Lombardia"});
        cities.AppendRecord({"Napoli", "Campania"});
        cities.AppendRecord({"Roma", "Lazio"});

        field(ftInteger, "ID");
        field(ftString, "COGNOME", 12);
        field(ftString, "NOME", 12);
        field(ftString, "CITTA", 12);
        field(ftString, "ATTIVO", 2);
        field(ftCurrency, "TASSA");
        field(ftMemo, "NOTE");
        field(ftString, "INIZIALE", 1)->setFieldKind(fkCalculated);
        lookup("REGIONE", "CITTA");
        // Keyed by a calculated field, which no index can hold.
        lookup("ZONA", "INIZIALE");
        ds.OnCalcFields = [](TDataSet *d) {
            d->FieldByName(QStringLiteral("INIZIALE"))->setAsString(d->FieldByName(QStringLiteral("COGNOME"))->AsString().left(1));
        };
        ds.CreateDataSet();
        ds.AppendRecord({1, "Bianchi", "mario", "Roma", "S", 120.5, "prima riga\nseconda"});
        ds.AppendRecord({2, "rossi", "Anna", "Milano", "N", 80});
        ds.AppendRecord({3, "Verdi", "Luca", "Roma", "", 0});
        ds.AppendRecord({4, "Azzurri", "paola", "Napoli", "si", 15.25});
        ds.AppendRecord({5, "Neri", "Giorgio", "Milano", "S", 7});
        ds.AppendRecord({6, "bianchi", "Carla", "Napoli", "N", 3});
        ds.First();
        source.setDataSet(&ds);
        grid.setDataSource(&source);
        grid.resize(900, 260);
        grid.show();
        grid.activateWindow();
    }

    bool shown() { return QTest::qWaitForWindowActive(&grid); }

    TField *field(TFieldType type, const char *name, int size = 0)
    {
        TField *f = CreateFieldOfType(type, &ds);
        f->setFieldName(QLatin1String(name));
        if (size)
            f->setSize(size);
        f->setDataSet(&ds);
        return f;
    }

    void lookup(const char *name, const char *key)
    {
        TField *f = field(ftString, name, 12);
        f->setFieldKind(fkLookup);
        f->setLookupDataSet(&cities);
        f->setKeyFields(QLatin1String(key));
        f->setLookupKeyFields(QStringLiteral("CITTA"));
        f->setLookupResultField(QStringLiteral("REGIONE"));
    }

    int col(const char *name) { return grid.FindFieldColumn(ds.FieldByName(QLatin1String(name))); }

    // "COGNOME +NOME" clicks the COGNOME title, then the NOME title with Shift.
    void clickTitles(const QString &clicks)
    {
        for (const QString &click : clicks.split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
            const bool shift = click.startsWith(QLatin1Char('+'));
            ClickTitle(grid, col(click.mid(shift ? 1 : 0).toLatin1().constData()),
                       shift ? Qt::ShiftModifier : Qt::NoModifier);
        }
    }

    // The sort markers of the titles: "FIELD:direction:position" for each marked column.
    QString markers()
    {
        QStringList list;
        for (int i = 0; i < grid.Columns().Count(); ++i) {
            const TEnhancedColumn *c = grid.Column(i);
            if (c->SortDirection() != 0)
                list.append(QStringLiteral("%1:%2:%3").arg(c->FieldName()).arg(c->SortDirection()).arg(c->SortPosition()));
        }
        return list.join(QLatin1Char(' '));
    }

    QString sortIndex()
    {
        const TIndexDef *def = ds.IndexDefs().FindDef(QStringLiteral("SortGrid"));
        return def ? def->Fields() + QLatin1Char('/') + def->DescFields() : QStringLiteral("-");
    }

    // The background painted at the top left of a data cell.
    QColor background(int row, const char *name)
    {
        const QRect cell = grid.CellRect(grid.IndicatorOffset() + col(name), grid.TitleOffset() + row);
        const QImage image = grid.grab().toImage();
        return image.pixelColor(cell.topLeft() + QPoint(1, 1));
    }
};

// Keys typed where the focus is: on the grid, then in the editor the first key opens.
void Type(const QString &text)
{
    for (const QChar c : text) {
        QWidget *target = QApplication::focusWidget();
        if (c == QLatin1Char('\b'))
            QTest::keyClick(target, Qt::Key_Backspace);
        else
            QTest::keyClicks(target, QString(c));
    }
}

} // namespace

class tst_DBGridExt : public QObject
{
    Q_OBJECT

private slots:
    void init() { SetItalianFormatSettings(); }

    void titleSort_data()
    {
        QTest::addColumn<QString>("clicks");
        QTest::addColumn<QString>("index");
        QTest::addColumn<QString>("order");
        QTest::addColumn<QString>("markers");
        // Ties (Bianchi and bianchi, the sort ignoring case) keep the order of insertion.
        QTest::newRow("click: ascending") << "COGNOME" << "COGNOME/" << "4,1,6,5,2,3" << "COGNOME:1:0";
        QTest::newRow("again: descending") << "COGNOME COGNOME" << "COGNOME/COGNOME" << "3,2,5,1,6,4" << "COGNOME:-1:0";
        QTest::newRow("third: ascending") << "COGNOME COGNOME COGNOME" << "COGNOME/" << "4,1,6,5,2,3" << "COGNOME:1:0";
        QTest::newRow("shift thrice: removed") << "+COGNOME +COGNOME +COGNOME" << "/" << "1,2,3,4,5,6" << "";
        QTest::newRow("another title restarts") << "COGNOME CITTA" << "CITTA/" << "2,5,4,6,1,3" << "CITTA:1:0";
        QTest::newRow("shift adds a column") << "CITTA +COGNOME" << "CITTA;COGNOME/" << "5,2,4,6,1,3"
                                             << "COGNOME:1:1 CITTA:1:0";
        QTest::newRow("shift turns it") << "CITTA +COGNOME +COGNOME" << "CITTA;COGNOME/COGNOME" << "2,5,6,4,3,1"
                                        << "COGNOME:-1:1 CITTA:1:0";
        QTest::newRow("shift drops it") << "CITTA +COGNOME +COGNOME +COGNOME" << "CITTA/" << "2,5,4,6,1,3"
                                        << "CITTA:1:0";
        QTest::newRow("plain click keeps one") << "CITTA +COGNOME COGNOME" << "COGNOME/COGNOME" << "3,2,5,1,6,4"
                                               << "COGNOME:-1:0";
        QTest::newRow("lookup by its key") << "REGIONE" << "CITTA/" << "2,5,4,6,1,3" << "CITTA:1:0";
        QTest::newRow("calculated: nothing") << "INIZIALE" << "-" << "1,2,3,4,5,6" << "";
        QTest::newRow("memo: nothing") << "COGNOME NOTE" << "COGNOME/" << "4,1,6,5,2,3" << "COGNOME:1:0";
    }

    void titleSort()
    {
        QFETCH(QString, clicks);
        Students s;
        s.grid.setTitleSort(true);
        QVERIFY(s.shown());
        int clicked = 0;
        s.grid.OnTitleClick = [&](TColumn *) { ++clicked; };
        s.clickTitles(clicks);
        QCOMPARE(clicked, int(clicks.count(QLatin1Char(' ')) + 1));
        QTEST(s.sortIndex(), "index");
        QTEST(Rows(s.ds, QStringLiteral("ID")), "order");
        QTEST(s.markers(), "markers");
        const QString name = clicks.section(QLatin1Char(' '), -1).remove(QLatin1Char('+'));
        QCOMPARE(s.grid.SelectedIndex(), s.col(name.toLatin1().constData()));
    }

    // An index that cannot be built leaves the previous sort in place and says why.
    void failedSortRestores()
    {
        Students s;
        s.grid.setTitleSort(true);
        QVERIFY(s.shown());
        s.clickTitles(QStringLiteral("+CITTA +COGNOME"));
        const QString message = AnswerMessageBox([&] { s.clickTitles(QStringLiteral("ZONA")); });
        QCOMPARE(message, QStringLiteral("Field 'INIZIALE' cannot be used in an index"));
        QCOMPARE(s.sortIndex(), QStringLiteral("CITTA;COGNOME/"));
        QCOMPARE(s.ds.IndexName(), QStringLiteral("SortGrid"));
        QCOMPARE(Rows(s.ds, QStringLiteral("ID")), QStringLiteral("5,2,4,6,1,3"));
        QCOMPARE(s.markers(), QStringLiteral("COGNOME:1:1 CITTA:1:0"));
    }

    // Without TitleSort a click only selects the column and reports it.
    void titleClickWithoutSort()
    {
        Students s;
        QVERIFY(s.shown());
        TColumn *clicked = nullptr;
        s.grid.OnTitleClick = [&](TColumn *c) { clicked = c; };
        s.clickTitles(QStringLiteral("CITTA"));
        QCOMPARE(clicked, s.grid.Columns()[s.col("CITTA")]);
        QCOMPARE(s.grid.SelectedIndex(), s.col("CITTA"));
        QCOMPARE(s.sortIndex(), QStringLiteral("-"));
    }

    // The markers follow the named index; "NOME" is part of "COGNOME", so a descending COGNOME
    // marks NOME descending too.
    void indexIndicators()
    {
        Students s;
        s.ds.AddIndex(QStringLiteral("byName"), QStringLiteral("COGNOME;NOME;CITTA"), {}, QStringLiteral("COGNOME"));
        s.ds.AddIndex(QStringLiteral("allDown"), QStringLiteral("CITTA;ID"), ixDescending);
        s.ds.IndexDefs().Update();
        s.grid.SetIndexIndicators(QStringLiteral("byName"));
        QCOMPARE(s.markers(), QStringLiteral("COGNOME:-1:0 NOME:-1:1 CITTA:1:2"));
        s.grid.SetIndexIndicators(QStringLiteral("allDown"));
        QCOMPARE(s.markers(), QStringLiteral("ID:-1:1 CITTA:-1:0"));
        s.ds.setIndexFieldNames(QStringLiteral("NOME"));
        s.grid.setTitleSort(true);
        QCOMPARE(s.markers(), QStringLiteral("NOME:1:0"));
        s.grid.setTitleSort(false);
        QCOMPARE(s.markers(), QString());
    }

    // The sort markers are painted: the marked title differs from the same title unmarked.
    void markersPainted()
    {
        Students s;
        s.grid.setTitleSort(true);
        QVERIFY(s.shown());
        const QRect title = s.grid.CellRect(s.grid.IndicatorOffset() + s.col("CITTA"), 0);
        const QImage plain = s.grid.grab(title).toImage();
        s.clickTitles(QStringLiteral("CITTA +COGNOME"));
        QCoreApplication::processEvents();
        const QImage marked = s.grid.grab(title).toImage();
        QVERIFY(plain != marked);
        // The marker sits at the right end of the title: its left half is unchanged.
        QCOMPARE(marked.copy(0, 0, title.width() / 2, title.height()), plain.copy(0, 0, title.width() / 2, title.height()));
    }

    // A thousand clicks on one title: the last (an even one) leaves the column descending.
    void thousandTitleClicks()
    {
        Students s;
        for (int i = 7; i <= 200; ++i)
            s.ds.AppendRecord({i, QStringLiteral("C%1").arg(i % 37, 3, 10, QLatin1Char('0')), "n", "Roma", "S", i});
        s.grid.setTitleSort(true);
        QVERIFY(s.shown());
        const int cognome = s.col("COGNOME");
        for (int i = 0; i < 1000; ++i)
            ClickTitle(s.grid, cognome);
        QCOMPARE(s.sortIndex(), QStringLiteral("COGNOME/COGNOME"));
        QCOMPARE(Rows(s.ds, QStringLiteral("COGNOME")).section(QLatin1Char(','), 0, 1), QStringLiteral("Verdi,rossi"));
        QCOMPARE(s.ds.RecordCount(), 200);
    }

    // On rows read from SQLite through CommandText.
    void sqlDataSet()
    {
        QTemporaryDir dir;
        {
            QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("grids"));
            db.setDatabaseName(dir.filePath(QStringLiteral("grid.sqlite")));
            QVERIFY(db.open());
            QSqlQuery q(db);
            QVERIFY(q.exec(QStringLiteral("CREATE TABLE studenti (id INTEGER, cognome TEXT, anno INTEGER)")));
            QVERIFY(q.exec(QStringLiteral("INSERT INTO studenti VALUES (1,'Rossi',2021),(2,'bianchi',2019),"
                                          "(3,'Conti',2021),(4,'Bianchi',2020)")));
        }
        {
            TClientDataSet ds;
            ds.setConnectionName(QStringLiteral("grids"));
            ds.setCommandText(QStringLiteral("SELECT * FROM studenti"));
            ds.Open();
            TDataSource source;
            source.setDataSet(&ds);
            TDBGridExt grid;
            grid.setTitleSort(true);
            grid.setDataSource(&source);
            grid.resize(500, 200);
            grid.show();
            QVERIFY(QTest::qWaitForWindowExposed(&grid));
            const int anno = grid.FindFieldColumn(ds.FieldByName(QStringLiteral("anno")));
            const int cognome = grid.FindFieldColumn(ds.FieldByName(QStringLiteral("cognome")));
            ClickTitle(grid, anno);
            ClickTitle(grid, anno);
            ClickTitle(grid, cognome, Qt::ShiftModifier);
            QCOMPARE(Rows(ds, QStringLiteral("id")), QStringLiteral("3,1,4,2"));
            QCOMPARE(grid.Column(cognome)->SortPosition(), 1);
            QCOMPARE(grid.Column(anno)->SortDirection(), -1);
        }
        QSqlDatabase::removeDatabase(QStringLiteral("grids"));
    }

    void cellColours_data()
    {
        QTest::addColumn<QString>("setup");
        QTest::addColumn<int>("row");
        QTest::addColumn<QString>("field");
        QTest::addColumn<TColor>("expected");
        // Row 0 is current; the focused cell is in NOME.
        QTest::newRow("focused cell") << "" << 0 << "NOME" << clCream;
        QTest::newRow("current row") << "" << 0 << "CITTA" << clSkyBlue;
        QTest::newRow("row select: all sky blue") << "rowselect" << 0 << "NOME" << clSkyBlue;
        QTest::newRow("editable") << "" << 1 << "NOME" << clWindow;
        QTest::newRow("read-only column") << "readonly" << 1 << "CITTA" << clInfoBk;
        QTest::newRow("read-only grid") << "gridreadonly" << 2 << "NOME" << clInfoBk;
        QTest::newRow("alternate, top row") << "alternate" << 2 << "NOME" << clCream;
        QTest::newRow("alternate, odd row") << "alternate" << 1 << "NOME" << clWindow;
        QTest::newRow("params handler") << "params" << 1 << "NOME" << clRed;
        QTest::newRow("params handler, focused") << "params" << 0 << "NOME" << clRed;
        QTest::newRow("props handler") << "props" << 1 << "NOME" << clYellow;
        QTest::newRow("props handler, focused") << "props" << 0 << "NOME" << clHighlight;
        QTest::newRow("multi-selected row") << "multi" << 3 << "CITTA" << clSkyBlue;
        QTest::newRow("column's own colour") << "owncolour" << 1 << "CITTA" << clAqua;
    }

    void cellColours()
    {
        QFETCH(QString, setup);
        QFETCH(int, row);
        QFETCH(QString, field);
        QFETCH(TColor, expected);
        Students s;
        QVERIFY(s.shown());
        s.ds.setRecNo(2);
        if (setup == QLatin1String("rowselect"))
            s.grid.setOptions(s.grid.Options() | dgRowSelect);
        if (setup == QLatin1String("readonly"))
            s.grid.Columns()[s.col("CITTA")]->setReadOnly(true);
        if (setup == QLatin1String("gridreadonly"))
            s.grid.setReadOnly(true);
        if (setup == QLatin1String("alternate"))
            s.grid.setAlternateColor(true);
        if (setup == QLatin1String("params"))
            s.grid.OnGetCellParams = [](QObject *, TField *, TFont *, TColor &bg, bool) { bg = clRed; };
        if (setup == QLatin1String("props"))
            s.grid.OnGetCellProps = [](QObject *, TField *, TFont *, TColor &bg) { bg = clYellow; };
        if (setup == QLatin1String("owncolour"))
            s.grid.Columns()[s.col("CITTA")]->setColor(clAqua);
        ClickCell(s.grid, 0, s.col("NOME"));
        if (setup == QLatin1String("multi")) {
            s.grid.setMultiSelect(true);
            ClickCell(s.grid, 3, s.col("NOME"), Qt::ControlModifier);
            ClickCell(s.grid, 0, s.col("NOME"), Qt::ControlModifier);
        }
        QCOMPARE(s.ds.RecNo(), 1);
        QCOMPARE(s.background(row, field.toLatin1().constData()), TColorToQColor(expected));
    }

    void checkBoxColumn_data()
    {
        QTest::addColumn<int>("row");
        QTest::addColumn<QString>("expected");
        QTest::newRow("checked becomes unchecked") << 0 << "N";
        QTest::newRow("unchecked becomes checked") << 1 << "S";
        QTest::newRow("empty becomes checked") << 2 << "S";
        QTest::newRow("any listed value, any case") << 3 << "N";
    }

    void checkBoxColumn()
    {
        QFETCH(int, row);
        Students s;
        TEnhancedColumn *attivo = s.grid.Column(s.col("ATTIVO"));
        attivo->setCheck(true);
        attivo->setValueChecked(QStringLiteral("S;SI"));
        attivo->setValueUnchecked(QStringLiteral("N"));
        QVERIFY(s.shown());
        ClickCell(s.grid, row, s.col("ATTIVO"));
        QCOMPARE(s.ds.State(), dsEdit);
        QTEST(s.ds.FieldByName(QStringLiteral("ATTIVO"))->AsString(), "expected");
        // Entering the column took dgEditing away, so typing opens no editor.
        QVERIFY(!s.grid.Options().testFlag(dgEditing));
        QTest::keyClicks(&s.grid, QStringLiteral("x"));
        QVERIFY(!s.grid.findChild<QLineEdit *>());
        // Leaving the column gives it back.
        ClickCell(s.grid, row, s.col("NOME"));
        QVERIFY(s.grid.Options().testFlag(dgEditing));
    }

    void checkBoxWithoutAutoEdit()
    {
        Students s;
        s.grid.Column(s.col("ATTIVO"))->setCheck(true);
        s.source.setAutoEdit(false);
        QVERIFY(s.shown());
        ClickCell(s.grid, 0, s.col("ATTIVO"));
        ClickCell(s.grid, 0, s.col("ATTIVO"));
        QCOMPARE(s.ds.State(), dsBrowse);
        QCOMPARE(s.ds.FieldByName(QStringLiteral("ATTIVO"))->AsString(), QStringLiteral("S"));
    }

    void typedKeys_data()
    {
        QTest::addColumn<QString>("field");
        QTest::addColumn<QString>("validChar");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("editor");
        QTest::addColumn<QString>("stored");
        QTest::newRow("digits only") << "NOME" << "0123456789" << "1a2\b3" << "13" << "13";
        QTest::newRow("point in currency") << "TASSA" << "" << "12.5" << "12,5" << "12,50";
        QTest::newRow("point in text") << "NOME" << "" << "12.5" << "12.5" << "12.5";
        QTest::newRow("point kept by ValidChar") << "TASSA" << "0123456789," << "7.25x" << "7,25" << "7,25";
    }

    void typedKeys()
    {
        QFETCH(QString, field);
        QFETCH(QString, validChar);
        QFETCH(QString, typed);
        Students s;
        s.grid.Column(s.col(field.toLatin1().constData()))->setValidChar(validChar);
        QVERIFY(s.shown());
        ClickCell(s.grid, 1, s.col(field.toLatin1().constData()));
        Type(typed);
        auto *editor = s.grid.findChild<QLineEdit *>();
        QVERIFY(editor);
        QTEST(editor->text(), "editor");
        QTest::keyClick(editor, Qt::Key_Return);
        QFETCH(QString, stored);
        QTRY_COMPARE(s.ds.FieldByName(field)->Text(), stored);
    }

    // The grid's own keys: Down past the last record appends, Escape cancels, Insert inserts, and
    // an untouched new record goes when the focus leaves; typing edits, when AutoEdit lets it.
    void keys()
    {
        Students s;
        QVERIFY(s.shown());
        const int nome = s.col("NOME");
        ClickCell(s.grid, 5, nome);
        QTest::keyClick(&s.grid, Qt::Key_Down);
        QCOMPARE(s.ds.State(), dsInsert);
        QCOMPARE(s.grid.currentIndex().row(), 6);
        QTest::keyClick(&s.grid, Qt::Key_Down);
        QCOMPARE(s.ds.RowCount(), 7);
        QTest::keyClick(&s.grid, Qt::Key_Escape);
        QCOMPARE(s.ds.State(), dsBrowse);
        QCOMPARE(s.ds.RowCount(), 6);

        ClickCell(s.grid, 2, nome);
        QTest::keyClick(&s.grid, Qt::Key_Insert);
        QCOMPARE(s.ds.State(), dsInsert);
        QCOMPARE(s.grid.currentIndex().row(), 2);
        QLineEdit elsewhere;
        elsewhere.show();
        elsewhere.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&elsewhere));
        QCOMPARE(s.ds.State(), dsBrowse);
        QCOMPARE(s.ds.RowCount(), 6);

        s.grid.activateWindow();
        QVERIFY(s.shown());
        ClickCell(s.grid, 4, nome);
        QVERIFY(!s.grid.findChild<QLineEdit *>());
        Type(QStringLiteral("Zoe"));
        QCOMPARE(s.ds.State(), dsEdit);
        QCOMPARE(s.grid.findChild<QLineEdit *>()->text(), QStringLiteral("Zoe"));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
        QTRY_VERIFY(!s.grid.findChild<QLineEdit *>());
        QTest::keyClick(&s.grid, Qt::Key_Escape);
        QCOMPARE(s.ds.State(), dsBrowse);
        QCOMPARE(s.ds.FieldByName(QStringLiteral("NOME"))->AsString(), QStringLiteral("Giorgio"));

        s.source.setAutoEdit(false);
        Type(QStringLiteral("Zoe"));
        QCOMPARE(s.ds.State(), dsBrowse);
        QVERIFY(!s.grid.findChild<QLineEdit *>());
    }

    // A value the field refuses is shown to the user; the field keeps its value.
    void refusedValue()
    {
        Students s;
        QVERIFY(s.shown());
        ClickCell(s.grid, 1, s.col("ID"));
        Type(QStringLiteral("x1"));
        QWidget *editor = QApplication::focusWidget();
        // The editor's value is written from the event loop, after the key.
        const QString message = AnswerMessageBox([&] { QTest::keyClick(editor, Qt::Key_Return); });
        QCOMPARE(message, QStringLiteral("'x1' is not a valid integer value"));
        QCOMPARE(s.ds.FieldByName(QStringLiteral("ID"))->AsInteger(), 2);
    }

    void glyphs_data()
    {
        QTest::addColumn<TFieldType>("type");
        QTest::addColumn<int>("index");
        QTest::newRow("bytes") << ftBytes << 0;
        QTest::newRow("var bytes") << ftVarBytes << 0;
        QTest::newRow("blob") << ftBlob << 0;
        QTest::newRow("typed binary") << ftTypedBinary << 0;
        QTest::newRow("memo") << ftMemo << 1;
        QTest::newRow("formatted memo") << ftFmtMemo << 1;
        QTest::newRow("graphic") << ftGraphic << 2;
        QTest::newRow("paradox ole") << ftParadoxOle << 3;
        QTest::newRow("dbase ole") << ftDBaseOle << 3;
        QTest::newRow("wide memo") << ftWideMemo << -1;
        QTest::newRow("string") << ftString << -1;
    }

    void glyphs()
    {
        QFETCH(TFieldType, type);
        QFETCH(int, index);
        TDBGridExt grid;
        std::unique_ptr<TField> field(CreateFieldOfType(type, nullptr));
        QCOMPARE(grid.GetImageIndex(field.get()), index);
        grid.setShowGlyphs(false);
        QCOMPARE(grid.GetImageIndex(field.get()), -1);
        grid.setShowGlyphs(true);
        field->OnGetText = [](TField *, QString &, bool) {};
        QCOMPARE(grid.GetImageIndex(field.get()), -1);
    }

    void multiSelectAndClipboard()
    {
        Students s;
        s.grid.setMultiSelect(true);
        QVERIFY(s.shown());
        const int nome = s.col("NOME");
        ClickCell(s.grid, 4, nome, Qt::ControlModifier);
        ClickCell(s.grid, 1, nome, Qt::ControlModifier);
        ClickCell(s.grid, 3, nome, Qt::ControlModifier);
        ClickCell(s.grid, 4, nome, Qt::ControlModifier);
        QCOMPARE(s.grid.GetSelCount(), 2);
        QVERIFY(s.grid.ActiveRowSelected() == false);

        s.grid.CopyToClipboard();
        // Titles first; the memo left out; rows in the dataset's order, whatever the click order.
        QCOMPARE(QGuiApplication::clipboard()->text(),
                 QStringLiteral("ID\tCOGNOME\tNOME\tCITTA\tATTIVO\tTASSA\tINIZIALE\tREGIONE\tZONA\n"
                                "2\trossi\tAnna\tMilano\tN\t80,00 €\tr\tLombardia\t\n"
                                "4\tAzzurri\tpaola\tNapoli\tsi\t15,25 €\tA\tCampania\t\n"));
        QCOMPARE(s.ds.RecNo(), 5);

        // The list keeps the dataset's order across a new sort.
        s.ds.setIndexFieldNames(QStringLiteral("COGNOME"));
        s.grid.GotoSelection(0);
        QCOMPARE(s.ds.FieldByName(QStringLiteral("ID"))->AsInteger(), 4);

        // A plain click clears the selection; with ClearSelection the clicked row stays selected.
        ClickCell(s.grid, 0, nome);
        QCOMPARE(s.grid.GetSelCount(), 0);
        s.grid.setClearSelection(true);
        ClickCell(s.grid, 2, nome);
        QCOMPARE(s.grid.GetSelCount(), 1);
        QVERIFY(s.grid.ActiveRowSelected());
        s.grid.SelectAll();
        QCOMPARE(s.grid.GetSelCount(), 6);
        s.grid.setMultiSelect(false);
        QCOMPARE(s.grid.GetSelCount(), 0);
    }

    void scrollSuspended()
    {
        Students s;
        for (int i = 7; i <= 100; ++i)
            s.ds.AppendRecord({i, "x", "y", "Roma", "S", i});
        s.ds.First();
        QVERIFY(s.shown());
        s.grid.EnableScroll();
        s.grid.DisableScroll();
        s.grid.DisableScroll();
        s.ds.MoveBy(60);
        QCOMPARE(s.grid.currentIndex().row(), 0);
        s.grid.EnableScroll();
        s.ds.MoveBy(10);
        QCOMPARE(s.grid.currentIndex().row(), 0);
        s.grid.EnableScroll();
        QVERIFY(!s.grid.ScrollDisabled());
        QCOMPARE(s.grid.currentIndex().row(), 70);
        QVERIFY(s.grid.viewport()->rect().intersects(s.grid.visualRect(s.grid.currentIndex())));
    }

    // The AutoResize columns share what the others leave of the width, up to their WidthMax.
    void autoResize()
    {
        Students s;
        TEnhancedColumn *cognome = s.grid.Column(s.col("COGNOME")), *nome = s.grid.Column(s.col("NOME"));
        cognome->setAutoResize(true);
        cognome->setWidthMax(400);
        nome->setAutoResize(true);
        nome->setWidthMax(90);
        QVERIFY(s.shown());
        s.grid.resize(1100, 260);
        QTRY_COMPARE(nome->Width(), 90);
        QVERIFY(cognome->Width() > 90 && cognome->Width() <= 400);
        s.grid.resize(800, 260);
        QTRY_VERIFY(nome->Width() < 90);
        QCOMPARE(cognome->Width(), nome->Width());
        int total = 0;
        for (const TColumn *c : s.grid.Columns())
            total += c->Width();
        QVERIFY(total <= s.grid.viewport()->width());
    }

    // A column with Values edits through a drop-down list of them.
    void valuesList()
    {
        Students s;
        s.grid.Column(s.col("CITTA"))->setValues({QStringLiteral("Milano"), QStringLiteral("Napoli"), QStringLiteral("Roma")});
        QVERIFY(s.shown());
        ClickCell(s.grid, 0, s.col("CITTA"));
        ClickCell(s.grid, 0, s.col("CITTA"));
        auto *combo = s.grid.findChild<QComboBox *>();
        QVERIFY(combo);
        QCOMPARE(combo->count(), 3);
        QCOMPARE(combo->currentText(), QStringLiteral("Roma"));
        combo->setCurrentIndex(1);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        QTRY_COMPARE(s.ds.FieldByName(QStringLiteral("CITTA"))->AsString(), QStringLiteral("Napoli"));
    }

    // The fixed columns stay where they are while the others scroll, are painted in FixedColor,
    // and neither keys nor clicks put the cursor in them.
    void fixedColumns()
    {
        Students s;
        for (int i = 7; i <= 60; ++i)
            s.ds.AppendRecord({i, QStringLiteral("C%1").arg(i), "n", "Roma", "S", i});
        s.ds.First();
        s.grid.resize(420, 260);
        s.grid.setFixedCols(2);
        QVERIFY(s.shown());
        const int id = s.col("ID"), cognome = s.col("COGNOME"), nome = s.col("NOME"), last = s.grid.Columns().Count() - 1;
        QCOMPARE(s.grid.SelectedIndex(), nome);
        const auto cellAt = [&](int row, int column) {
            return s.grid.CellRect(s.grid.IndicatorOffset() + column, s.grid.TitleOffset() + row);
        };
        // The record shown at a point of the screen, as the view under it finds it.
        const auto rowAt = [&](const QPoint &at) {
            QWidget *under = s.grid.childAt(at);
            auto *view = under ? qobject_cast<QTableView *>(under->parentWidget()) : nullptr;
            return view ? view->indexAt(under->mapFrom(&s.grid, at)).row() : -2;
        };
        const QRect idCell = cellAt(0, id), cognomeCell = cellAt(0, cognome);
        QCOMPARE(idCell.left(), s.grid.CellRect(0, 0).right() + 1);
        QCOMPARE(cellAt(0, nome).left(), cognomeCell.right() + 1);
        const QRect fixedArea(idCell.left(), 0, cognomeCell.right() - idCell.left() + 1, cellAt(3, id).bottom());
        const QImage before = s.grid.grab(fixedArea).toImage();
        QCOMPARE(s.background(1, "COGNOME"), TColorToQColor(clBtnFace));

        for (int i = 0; i < last + 3; ++i)
            QTest::keyClick(&s.grid, Qt::Key_Right);
        QCOMPARE(s.grid.SelectedIndex(), last);
        QVERIFY(s.grid.horizontalScrollBar()->value() > 0);
        QVERIFY(cellAt(0, nome).left() < cognomeCell.right());
        QCOMPARE(cellAt(0, id), idCell);
        QCOMPARE(cellAt(0, cognome), cognomeCell);
        QCOMPARE(s.grid.MouseCoord(cognomeCell.center().x(), cognomeCell.center().y()),
                 TGridCoord({s.grid.IndicatorOffset() + cognome, s.grid.TitleOffset()}));
        QCOMPARE(s.grid.grab(fixedArea).toImage(), before);

        for (int i = 0; i < last + 3; ++i)
            QTest::keyClick(&s.grid, Qt::Key_Left);
        QCOMPARE(s.grid.SelectedIndex(), nome);
        QTest::keyClick(&s.grid, Qt::Key_Home);
        QCOMPARE(s.grid.SelectedIndex(), nome);

        // Scrolling down, the fixed cells stay beside their rows.
        for (int i = 0; i < 45; ++i)
            QTest::keyClick(&s.grid, Qt::Key_Down);
        QCOMPARE(s.ds.RecNo(), 46);
        QVERIFY(s.grid.verticalScrollBar()->value() > 0);
        QCOMPARE(rowAt(cellAt(45, cognome).center()), 45);
        QCOMPARE(rowAt(cellAt(45, nome).center()), 45);

        // A click on a fixed cell goes to its record and leaves the column as it was.
        TColumn *clicked = nullptr;
        s.grid.OnCellClick = [&](TColumn *c) { clicked = c; };
        ClickCell(s.grid, 43, cognome);
        QCOMPARE(s.ds.RecNo(), 44);
        QCOMPARE(clicked, s.grid.Columns()[cognome]);
        QCOMPARE(s.grid.SelectedIndex(), nome);
        ClickCell(s.grid, 43, cognome);
        QVERIFY(!s.grid.findChild<QLineEdit *>());

        // Their titles sort like the others.
        s.grid.setTitleSort(true);
        ClickTitle(s.grid, cognome);
        QVERIFY(Rows(s.ds, QStringLiteral("ID")).startsWith(QLatin1String("4,1,6,10,11,")));
        QCOMPARE(s.grid.SelectedIndex(), nome);

        // A wider fixed column pushes the scrolling ones right.
        s.grid.Columns()[id]->setWidth(idCell.width() + 30);
        QCOMPARE(cellAt(0, cognome).left(), idCell.left() + idCell.width() + 30);
        QTest::keyClick(&s.grid, Qt::Key_Home);
        QCOMPARE(cellAt(0, nome).left(), cellAt(0, cognome).right() + 1);

        // Without the indicator the fixed columns start at the grid's edge.
        s.grid.setOptions(s.grid.Options() & ~TDBGridOptions(dgIndicator));
        QCOMPARE(cellAt(0, id).left(), s.grid.frameWidth());
        QCOMPARE(cellAt(0, nome).left(), cellAt(0, cognome).right() + 1);

        // At least one column scrolls; none fixed, the first column is at the left again.
        s.grid.setFixedCols(50);
        QCOMPARE(s.grid.FixedCols(), 50);
        QCOMPARE(s.grid.SelectedIndex(), last);
        s.grid.setFixedCols(0);
        QTest::keyClick(&s.grid, Qt::Key_Home);
        QCOMPARE(s.grid.SelectedIndex(), id);
        QCOMPARE(cellAt(0, id).left(), s.grid.viewport()->geometry().left());
    }

    // Both drawing events paint on the cell being drawn, the older one first and only while the
    // columns are the default ones.
    void drawEvents()
    {
        Students s;
        QVERIFY(s.shown());
        ClickCell(s.grid, 1, s.col("NOME"));
        QStringList order;
        QRect dataRect;
        TGridDrawState dataState;
        s.grid.OnDrawDataCell = [&](QObject *sender, QPainter *canvas, const QRect &rect, TField *field,
                                    TGridDrawState state) {
            QCOMPARE(sender, &s.grid);
            if (field->FieldName() != QLatin1String("CITTA") && field->FieldName() != QLatin1String("NOME"))
                return;
            order.append(QStringLiteral("data:") + field->FieldName() + QLatin1Char(':') + field->AsString());
            if (field->FieldName() == QLatin1String("CITTA") && field->AsString() == QLatin1String("Milano") &&
                s.ds.FieldByName(QStringLiteral("ID"))->AsInteger() == 2) {
                dataRect = rect;
                canvas->fillRect(rect, Qt::red);
            }
            if (field->FieldName() == QLatin1String("NOME") && field->AsString() == QLatin1String("Anna"))
                dataState = state;
        };
        s.grid.OnDrawColumnCell = [&](QObject *, QPainter *, const QRect &, int dataCol, TColumn *column, TGridDrawState) {
            if (column->FieldName() == QLatin1String("CITTA") && dataCol == s.col("CITTA"))
                order.append(QStringLiteral("column:") + column->Field()->AsString());
        };
        const QImage image = s.grid.grab().toImage();
        QCOMPARE(order.mid(0, 4), QStringList({"data:NOME:mario", "data:CITTA:Roma", "column:Roma", "data:NOME:Anna"}));
        const QRect cell = s.grid.CellRect(s.grid.IndicatorOffset() + s.col("CITTA"), s.grid.TitleOffset() + 1);
        QCOMPARE(dataRect.translated(s.grid.viewport()->pos()), cell);
        QCOMPARE(image.pixelColor(cell.center()), QColor(Qt::red));
        QCOMPARE(dataState, TGridDrawState(gdSelected | gdFocused));

        // Columns made in code: only the column event.
        s.grid.Columns().Add()->setFieldName(QStringLiteral("CITTA"));
        order.clear();
        (void)s.grid.grab();
        QVERIFY(!order.isEmpty());
        QVERIFY(std::all_of(order.cbegin(), order.cend(), [](const QString &e) { return e.startsWith(QLatin1String("column:")); }));
    }

    // An ellipsis column's editor has a "..." button; a click on it or Ctrl+Enter asks the
    // application for a value, which the editor then shows and keeps.
    void ellipsisButton()
    {
        Students s;
        TEnhancedColumn *citta = s.grid.Column(s.col("CITTA"));
        citta->setButtonStyle(cbsEllipsis);
        citta->setValues({QStringLiteral("Milano"), QStringLiteral("Roma")});
        s.grid.Column(s.col("NOME"))->setValues({QStringLiteral("Anna")});
        s.grid.Column(s.col("NOME"))->setButtonStyle(cbsNone);
        int clicks = 0;
        s.grid.OnEditButtonClick = [&](QObject *sender) {
            QCOMPARE(sender, &s.grid);
            ++clicks;
            s.ds.Edit();
            s.ds.FieldByName(QStringLiteral("CITTA"))->setAsString(QStringLiteral("Torino %1").arg(clicks));
        };
        QVERIFY(s.shown());
        ClickCell(s.grid, 1, s.col("CITTA"));
        ClickCell(s.grid, 1, s.col("CITTA"));
        QVERIFY(!s.grid.findChild<QComboBox *>());
        auto *editor = s.grid.findChild<QLineEdit *>();
        QVERIFY(editor);
        auto *button = editor->findChild<QToolButton *>();
        QVERIFY(button && button->isVisible());
        QCOMPARE(button->text(), QStringLiteral("..."));
        QVERIFY(editor->rect().contains(button->geometry()));
        QCOMPARE(clicks, 0);

        QTest::mouseClick(button, Qt::LeftButton);
        QCOMPARE(clicks, 1);
        QCOMPARE(editor->text(), QStringLiteral("Torino 1"));
        QTest::keyClick(editor, Qt::Key_Return, Qt::ControlModifier);
        QCOMPARE(clicks, 2);
        QCOMPARE(editor->text(), QStringLiteral("Torino 2"));
        QTest::qWait(20);
        QVERIFY(editor->isVisible());
        // Plain Enter is not the button: it closes the editor and the value stays.
        QTest::keyClick(editor, Qt::Key_Return);
        QCOMPARE(clicks, 2);
        QTRY_VERIFY(!s.grid.findChild<QLineEdit *>());
        QCOMPARE(s.ds.FieldByName(QStringLiteral("CITTA"))->AsString(), QStringLiteral("Torino 2"));

        // cbsNone: a plain editor, even with values to offer.
        ClickCell(s.grid, 1, s.col("NOME"));
        ClickCell(s.grid, 1, s.col("NOME"));
        QVERIFY(!s.grid.findChild<QComboBox *>());
        editor = s.grid.findChild<QLineEdit *>();
        QVERIFY(editor && !editor->findChild<QToolButton *>());
        QTest::keyClick(editor, Qt::Key_Return, Qt::ControlModifier);
        QCOMPARE(clicks, 2);
    }

    // A record dragged from one grid to another with the mouse: the target refuses the drag over
    // its titles and takes it over its rows; its handler adds the dragged city to its dataset.
    void dragBetweenGrids()
    {
        Students s;
        s.grid.move(0, 0);
        TDataSource citySource;
        citySource.setDataSet(&s.cities);
        TDBGridExt target;
        target.setDataSource(&citySource);
        target.setGeometry(0, 320, 400, 200);
        target.show();
        QVERIFY(QTest::qWaitForWindowExposed(&target));
        QVERIFY(s.shown());

        QString dragged;
        s.grid.OnStartDrag = [&](QObject *, QMimeData *data) {
            dragged = data->text();
            data->setData(QStringLiteral("application/x-studente"), QByteArray::number(s.ds.FieldByName(QStringLiteral("ID"))->AsInteger()));
        };
        QObject *endTarget = nullptr;
        QPoint endAt;
        s.grid.OnEndDrag = [&](QObject *, QObject *t, int x, int y) {
            endTarget = t;
            endAt = QPoint(x, y);
        };
        QStringList over;
        target.OnDragOver = [&](QObject *, QObject *source, int x, int y, TDragState state, bool &accept) {
            QCOMPARE(source, &s.grid);
            QCOMPARE(s.grid.Dragging(), true);
            QCOMPARE(accept, true);
            accept = target.MouseCoord(x, y).Y >= target.TitleOffset();
            over.append(QStringLiteral("%1:%2").arg(int(state)).arg(accept));
        };
        QPoint dropAt;
        target.OnDragDrop = [&](QObject *, QObject *source, int x, int y) {
            dropAt = QPoint(x, y);
            const QString city = qobject_cast<TDBGridExt *>(source)->SelectedField()->AsString();
            s.cities.AppendRecord({city, QStringLiteral("?")});
        };

        // Presses a data cell of the students' grid and drags it through Path, points of the
        // target grid, releasing at the last; returns when the drag is over.
        QWidget *titles = target.horizontalHeader()->viewport();
        const auto dragAlong = [&](int fromRow, const QList<QPoint> &path) {
            const QRect from = s.grid.CellRect(s.grid.IndicatorOffset() + s.col("CITTA"), s.grid.TitleOffset() + fromRow);
            QTimer::singleShot(0, this, [&] {
                for (const QPoint &at : path) {
                    QWidget *part = !target.rect().contains(at) ? &target
                                    : titles->geometry().translated(titles->parentWidget()->pos()).contains(at)
                                        ? titles
                                        : WidgetAt(target, target.viewport(), at);
                    if (&at == &path.last())
                        QTest::mouseRelease(part, Qt::LeftButton, {}, part->mapFrom(&target, at));
                    else
                        QTest::mouseMove(part, part->mapFrom(&target, at));
                }
            });
            QTimer safety;
            safety.setSingleShot(true);
            connect(&safety, &QTimer::timeout, [] { QDrag::cancel(); });
            safety.start(5000);
            QWidget *source = s.grid.viewport();
            QTest::mousePress(source, Qt::LeftButton, {}, source->mapFrom(&s.grid, from.center()));
            QVERIFY(!s.grid.Dragging());
            // Past the start-drag distance the drag begins; it runs until the release.
            QTest::mouseMove(source, source->mapFrom(&s.grid, from.center()) + QPoint(QApplication::startDragDistance() + 2, 0));
            QVERIFY(safety.isActive());
            QVERIFY(!s.grid.Dragging());
            // The drag hands the release on to the widget pressed, through the event queue.
            QCoreApplication::processEvents();
        };

        // dmManual: pressing and moving drags nothing.
        QWidget *source = s.grid.viewport();
        const QPoint cell = source->mapFrom(&s.grid, s.grid.CellRect(s.grid.IndicatorOffset() + 1, s.grid.TitleOffset() + 1).center());
        QTest::mousePress(source, Qt::LeftButton, {}, cell);
        QTest::mouseMove(source, cell + QPoint(QApplication::startDragDistance() * 3, 0));
        QTest::mouseRelease(source, Qt::LeftButton, {}, cell + QPoint(QApplication::startDragDistance() * 3, 0));
        QVERIFY(dragged.isNull());
        s.grid.setDragMode(dmAutomatic);

        const QPoint title = target.CellRect(target.IndicatorOffset(), 0).center();
        const QPoint row = target.CellRect(target.IndicatorOffset() + 1, target.TitleOffset() + 1).center();
        const QPoint outside(-30, row.y());
        dragAlong(3, {title, title + QPoint(3, 0), row, row + QPoint(2, 0), row + QPoint(2, 0)});
        QCOMPARE(dragged, QStringLiteral("Napoli"));
        QCOMPARE(s.ds.RecNo(), 4);
        // Entered over the titles (refused there), then moved onto the rows: one entry, no leave.
        QVERIFY(!over.isEmpty());
        QCOMPARE(over.first(), QStringLiteral("%1:0").arg(int(dsDragEnter)));
        QCOMPARE(over.filter(QStringLiteral("%1:").arg(int(dsDragEnter))).size(), 1);
        QVERIFY(over.filter(QStringLiteral("%1:").arg(int(dsDragLeave))).isEmpty());
        QCOMPARE(over.last(), QStringLiteral("%1:1").arg(int(dsDragMove)));
        QCOMPARE(dropAt, row + QPoint(2, 0));
        QCOMPARE(endTarget, &target);
        QCOMPARE(endAt, dropAt);
        QCOMPARE(Rows(s.cities, QStringLiteral("CITTA")), QStringLiteral("Milano,Napoli,Roma,Napoli"));

        // Taken away again and dropped where nothing takes it: the target hears it leave, the
        // drag ends without a target.
        over.clear();
        dragAlong(0, {row, outside, outside});
        QCOMPARE(dragged, QStringLiteral("Roma"));
        QVERIFY(!over.isEmpty());
        QVERIFY(over.last().startsWith(QStringLiteral("%1:").arg(int(dsDragLeave))));
        QCOMPARE(endTarget, nullptr);
        QCOMPARE(Rows(s.cities, QStringLiteral("CITTA")), QStringLiteral("Milano,Napoli,Roma,Napoli"));
    }

    void ctrlDelete_data()
    {
        QTest::addColumn<QString>("setup");
        QTest::addColumn<int>("answer");
        QTest::addColumn<QString>("prompt");
        QTest::addColumn<QString>("ids");
        QTest::newRow("asked, yes") << "" << mrYes << "Eliminare il record?" << "1,2,4,5,6";
        QTest::newRow("asked, no") << "" << mrNo << "Eliminare il record?" << "1,2,3,4,5,6";
        QTest::newRow("not asked") << "noconfirm" << mrNone << "" << "1,2,4,5,6";
        QTest::newRow("read-only grid") << "readonly" << mrNone << "" << "1,2,3,4,5,6";
        QTest::newRow("no editing") << "noediting" << mrNone << "" << "1,2,3,4,5,6";
        QTest::newRow("Delete alone") << "plain" << mrNone << "" << "1,2,3,4,5,6";
    }

    // Ctrl+Delete deletes the current record, after the library's confirmation dialog when
    // dgConfirmDelete is set (as it is on a new grid).
    void ctrlDelete()
    {
        QFETCH(QString, setup);
        QFETCH(int, answer);
        Students s;
        QVERIFY(s.grid.Options().testFlag(dgConfirmDelete));
        if (setup == QLatin1String("noconfirm"))
            s.grid.setOptions(s.grid.Options() & ~TDBGridOptions(dgConfirmDelete));
        if (setup == QLatin1String("readonly"))
            s.grid.setReadOnly(true);
        if (setup == QLatin1String("noediting"))
            s.grid.setOptions(s.grid.Options() & ~TDBGridOptions(dgEditing));
        QVERIFY(s.shown());
        ClickCell(s.grid, 2, s.col("NOME"));
        QCOMPARE(s.ds.FieldByName(QStringLiteral("ID"))->AsInteger(), 3);
        QString seen;
        QTimer poll;
        poll.setInterval(5);
        connect(&poll, &QTimer::timeout, [&] {
            auto *box = qobject_cast<TfmMessageBox *>(QApplication::activeModalWidget());
            if (!box || !box->isVisible() || !seen.isEmpty())
                return;
            seen = box->windowTitle() + QLatin1Char(':') + box->mmMessage->toPlainText();
            for (TBitBtn *button : {box->BitBtn1, box->BitBtn2, box->BitBtn3}) {
                if (button->isVisible() && button->ModalResult() == answer)
                    QTest::mouseClick(button, Qt::LeftButton);
            }
        });
        poll.start();
        QTest::keyClick(&s.grid, Qt::Key_Delete, setup == QLatin1String("plain") ? Qt::NoModifier : Qt::ControlModifier);
        poll.stop();
        QFETCH(QString, prompt);
        QCOMPARE(seen.section(QLatin1Char(':'), 1), prompt);
        if (!prompt.isEmpty())
            QCOMPARE(seen.section(QLatin1Char(':'), 0, 0), QStringLiteral("CONFERMA"));
        QTEST(Rows(s.ds, QStringLiteral("ID")), "ids");
        QCOMPARE(s.ds.State(), dsBrowse);
    }

    // A caption with line breaks is written on several lines; the title row grows to fit it and
    // shrinks back.
    void multiLineTitles()
    {
        Students s;
        s.grid.setFixedCols(1);
        QVERIFY(s.shown());
        const int id = s.col("ID"), cognome = s.col("COGNOME");
        const auto title = [&](int column) { return s.grid.CellRect(s.grid.IndicatorOffset() + column, 0); };
        const auto firstRowTop = [&] { return s.grid.CellRect(s.grid.IndicatorOffset() + cognome, s.grid.TitleOffset()).top(); };
        const QRect single = title(cognome);
        const int rowTop = firstRowTop();
        // The lines of text written in a title: runs of pixel rows with ink on them.
        const auto textLines = [&](const QRect &r) {
            const QImage image = s.grid.grab(r.adjusted(2, 2, -2, -2)).toImage();
            int lines = 0;
            bool previous = false;
            for (int y = 0; y < image.height(); ++y) {
                bool ink = false;
                for (int x = 0; x < image.width() && !ink; ++x)
                    ink = image.pixelColor(x, y).lightness() < 100;
                lines += ink && !previous;
                previous = ink;
            }
            return lines;
        };
        QCOMPARE(textLines(single), 1);

        s.grid.Columns()[cognome]->Title()->setCaption(QStringLiteral("COGNOME\nstudente"));
        const QRect twoLines = title(cognome);
        QVERIFY(twoLines.height() >= 2 * QFontMetrics(s.grid.TitleFont()).lineSpacing());
        QCOMPARE(firstRowTop() - rowTop, twoLines.height() - single.height());
        QCOMPARE(textLines(twoLines), 2);
        // The fixed column's title keeps in line with the others.
        QCOMPARE(title(id).height(), twoLines.height());
        QCOMPARE(s.grid.CellRect(s.grid.IndicatorOffset() + id, s.grid.TitleOffset()).top(), firstRowTop());

        s.grid.Columns()[cognome]->Title()->setCaption(QString());
        QCOMPARE(title(cognome), single);
        QCOMPARE(firstRowTop(), rowTop);
    }

    void rowHeight()
    {
        Students s;
        QVERIFY(s.shown());
        const int before = s.grid.rowHeight(0);
        QFont big = s.grid.font();
        big.setPointSize(big.pointSize() * 2);
        s.grid.setFont(big);
        QVERIFY(s.grid.rowHeight(0) > before);
        QCOMPARE(s.grid.RowHeight(), s.grid.rowHeight(0));
        s.grid.setRowHeight(40);
        QCOMPARE(s.grid.rowHeight(3), 40);
    }
};

QTEST_MAIN(tst_DBGridExt)
#include "tst_dbgridext.moc"
