// The academic year control on screen, bound to a client dataset: layout, the second year that
// follows the typing, the range checked on exit, the value written back, and the focus.
#include "AnnoAccademico.h"
#include "ClientDataSet.h"
#include "DataSource.h"
#include "EditTestSupport.h"
#include "FormatSettings.h"
#include "Graphics.h"
#include "Variants.h"

using namespace mattoni;
using namespace edittest;

namespace {

struct Form : Between<TAnnoAccademico>
{
    TAnnoAccademico *anno = control;
    TClientDataSet ds;
    TDataSource source;

    Form()
    {
        ds.FieldDefs().Add(QStringLiteral("ID"), ftInteger);
        ds.FieldDefs().Add(QStringLiteral("ANNO"), ftInteger);
        ds.CreateDataSet();
        ds.AppendRecord({1, 2013});
        ds.AppendRecord({2, 0});
        ds.AppendRecord({3, Null()});
        ds.First();
        source.setDataSet(&ds);
        anno->setDataSource(&source);
        anno->setDataField(QStringLiteral("ANNO"));
    }
    QString shown() const { return anno->EditAnno()->text() + QLatin1Char('/') + anno->EditAnnoSuccessivo()->text(); }
    TField *field() const { return ds.FieldByName(QStringLiteral("ANNO")); }
};

} // namespace

class tst_AnnoAccademico : public QObject
{
    Q_OBJECT

private slots:
    void init() { FormatSettings = TFormatSettings::Italian(); }

    void layoutAndBrowsing()
    {
        Form f;
        QCOMPARE(f.anno->size(), QSize(70, 19));
        QCOMPARE(f.anno->EditAnno()->geometry(), QRect(1, 1, 28, 19));
        QCOMPARE(f.anno->EditSeparatore()->text(), QStringLiteral("/"));
        QVERIFY(f.anno->EditSeparatore()->isReadOnly() && f.anno->EditAnnoSuccessivo()->isReadOnly());
        QVERIFY(activate(f.window));
        QCOMPARE(f.anno->EditSeparatore()->geometry(), QRect(28, 0, 6, 19));
        QCOMPARE(f.anno->EditAnnoSuccessivo()->geometry(), QRect(34, 0, 31, 19));
        // The panel is white where no child covers it.
        QCOMPARE(f.anno->ClientArea()->grab().toImage().pixelColor(66, 8), QColor(Qt::white));
        f.anno->setWidthAA(35);
        QCOMPARE(f.anno->EditSeparatore()->x(), 35);
        QCOMPARE(f.anno->EditAnnoSuccessivo()->x(), 41);

        QCOMPARE(f.shown(), QStringLiteral("2013/2014"));
        f.ds.Next();
        QCOMPARE(f.shown(), QStringLiteral(" /"));
        f.ds.Next();
        QCOMPARE(f.shown(), QStringLiteral("/"));
    }

    void typedYear_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("whileTyping");
        QTest::addColumn<QString>("afterExit");
        QTest::addColumn<QVariant>("stored");
        QTest::newRow("2013") << "2013" << "2013/2014" << "2013/2014" << QVariant(2013);
        QTest::newRow("first of the range") << "1900" << "1900/1901" << "1900/1901" << QVariant(1900);
        QTest::newRow("last of the range") << "2099" << "2099/2100" << "2099/2100" << QVariant(2099);
        QTest::newRow("before the range") << "1899" << "1899/1900" << "/" << Null();
        QTest::newRow("after the range") << "2100" << "2100/2101" << "/" << Null();
        QTest::newRow("two digits") << "13" << "13/0014" << "/" << Null();
        QTest::newRow("deleted") << "" << "/" << "/" << Null();
    }
    void typedYear()
    {
        QFETCH(QString, typed);
        QFETCH(QVariant, stored);
        Form f;
        QVERIFY(activate(f.window));
        QTest::mouseClick(f.anno->EditAnno(), Qt::LeftButton);
        QTest::keyClick(focused(), Qt::Key_A, Qt::ControlModifier);
        QTest::keyClick(focused(), Qt::Key_Delete);
        typeIn(typed);
        QTEST(f.shown(), "whileTyping");
        tab();
        QCOMPARE(focused(), f.after);
        QTEST(f.shown(), "afterExit");
        f.ds.Post();
        QCOMPARE(f.field()->Value(), stored);
    }

    // The panel's focus goes to the first year; a text that is no integer raises from the change
    // handler and again on exit, which keeps the focus there.
    void focusAndTextThatIsNoYear()
    {
        PostedErrors posted;
        Form f;
        QVERIFY(activate(f.window));
        f.after->setFocus();
        f.anno->setFocus();
        QCOMPARE(focused(), f.anno->EditAnno());
        QTest::keyClick(focused(), Qt::Key_A, Qt::ControlModifier);
        typeIn(QStringLiteral("-"));
        tab();
        QTRY_COMPARE(posted.errors.size(), 2);
        QVERIFY_THROWS_EXCEPTION(EConvertError, std::rethrow_exception(posted.errors.at(1)));
        QCOMPARE(posted.message(0), QStringLiteral("'-' is not a valid integer value"));
        QTRY_COMPARE(focused(), f.anno->EditAnno());
    }
};

QTEST_MAIN(tst_AnnoAccademico)
#include "tst_annoaccademico.moc"
