// The enhanced edit on screen, driven by keys, clicks and Tab: the display format with and
// without the focus, what the user may type and paste, the colours by state, and the field
// binding on a client dataset (edit on typing, write-back on exit and Enter, errors on exit).
#include "ClientDataSet.h"
#include "DataSource.h"
#include "EditEnh.h"
#include "EditTestSupport.h"
#include "FormatSettings.h"
#include "Graphics.h"
#include "usrconf.h"

#include <QClipboard>
#include <QMessageBox>

using namespace mattoni;
using namespace edittest;

namespace {

// The edit between two line edits, counting its events.
template<typename Edit>
struct Form : Between<Edit>
{
    Edit *edit = this->control;
    int changes = 0;
    int enters = 0;
    int exits = 0;

    Form()
    {
        edit->resize(150, 22);
        edit->OnChange = [this](QObject *) { ++changes; };
        edit->OnEnter = [this](QObject *) { ++enters; };
        edit->OnExit = [this](QObject *) { ++exits; };
    }
};

// A form whose edit is bound to Field of a small dataset, on the first record.
struct DataForm : Form<TDBEditEnh>
{
    TClientDataSet ds;
    TDataSource source;

    explicit DataForm(const char *field)
    {
        ds.FieldDefs().Add(QStringLiteral("ID"), ftInteger);
        ds.FieldDefs().Add(QStringLiteral("NOME"), ftString, 20);
        ds.FieldDefs().Add(QStringLiteral("IMPORTO"), ftFloat);
        ds.CreateDataSet();
        ds.AppendRecord({1, QStringLiteral("Rossi"), 1234.5});
        ds.AppendRecord({2, QStringLiteral("Bianchi"), 0.0});
        ds.First();
        source.setDataSet(&ds);
        edit->setDataSource(&source);
        edit->setDataField(QLatin1String(field));
    }
    TField *field() const { return edit->Field(); }
};

QColor background(QWidget *w)
{
    return w->grab().toImage().pixelColor(w->width() - 3, w->height() / 2);
}

} // namespace

class tst_EditEnh : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        BkFocusColor = RGB(255, 240, 200);
        BkDisabledColor = RGB(190, 190, 190);
        BkReadOnlyColor = RGB(255, 255, 210);
        FrFocusColor = RGB(0, 0, 128);
        FrNormalColor = RGB(10, 10, 10);
        FrDisabledColor = RGB(90, 90, 90);
        FrReadOnlyColor = RGB(0, 96, 0);
    }
    void cleanupTestCase() { ResetUsrConf(); }
    void init() { FormatSettings = TFormatSettings::Italian(); }

    void displayFormatWithoutFocus_data()
    {
        QTest::addColumn<TDisplayType>("type");
        QTest::addColumn<QString>("format");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("shown");
        QTest::newRow("grouped, two decimals") << dtGeneral << "#,##0.00" << "1234,5" << "1.234,50";
        QTest::newRow("zero shows blank") << dtGeneral << "0000;0; " << "0" << " ";
        QTest::newRow("negative section, rounded") << dtGeneral << "0.0;(0.0)" << "-2,25" << "(2,3)";
        QTest::newRow("no number shows as typed") << dtGeneral << "0000" << "-" << "-";
        QTest::newRow("alpha shows its text") << dtAlpha << "000" << "42" << "42";
    }
    void displayFormatWithoutFocus()
    {
        QFETCH(TDisplayType, type);
        QFETCH(QString, format);
        QFETCH(QString, typed);
        Form<TEditEnh> f;
        f.edit->setDisplayType(type);
        f.edit->setDisplayFormat(format);
        QVERIFY(activate(f.window));
        QTest::mouseClick(f.edit, Qt::LeftButton);
        typeIn(typed);
        const int changes = f.changes;
        QCOMPARE(changes, typed.size());
        tab();
        QCOMPARE(focused(), f.after);
        QTEST(f.edit->text(), "shown");
        QCOMPARE(f.edit->EditText(), typed);
        QTest::mouseClick(f.edit, Qt::LeftButton);
        QCOMPARE(f.edit->text(), typed);
        // Switching between the two forms is no change of the value.
        QCOMPARE(f.changes, changes);
    }

    void whatTheUserMayEnter_data()
    {
        QTest::addColumn<TDisplayType>("type");
        QTest::addColumn<int>("maxLength");
        QTest::addColumn<QString>("initial");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<bool>("pasted");
        QTest::addColumn<QString>("expected");
        QTest::newRow("numbers only") << dtGeneral << 0 << "" << "1a2.b-3,4+" << false << "12-3,4+";
        QTest::newRow("pasted letters refused whole") << dtGeneral << 0 << "5" << "12ab" << true << "5";
        QTest::newRow("pasted number") << dtGeneral << 0 << "5" << "12" << true << "512";
        QTest::newRow("max length typed") << dtAlpha << 5 << "" << "abcdefgh" << false << "abcde";
        QTest::newRow("max length pasted") << dtAlpha << 5 << "ab" << "cdef" << true << "ab";
        QTest::newRow("program text kept whole") << dtAlpha << 4 << "123456" << "7" << false << "123456";
    }
    void whatTheUserMayEnter()
    {
        QFETCH(TDisplayType, type);
        QFETCH(int, maxLength);
        QFETCH(QString, initial);
        QFETCH(QString, typed);
        QFETCH(bool, pasted);
        Form<TEditEnh> f;
        f.edit->setDisplayType(type);
        f.edit->setMaxLength(maxLength);
        f.edit->setText(initial);
        QVERIFY(activate(f.window));
        QTest::mouseClick(f.edit, Qt::LeftButton);
        QTest::keyClick(f.edit, Qt::Key_End);
        if (pasted) {
            QGuiApplication::clipboard()->setText(typed);
            QTest::keyClick(f.edit, Qt::Key_V, Qt::ControlModifier);
        } else {
            typeIn(typed);
        }
        QTEST(f.edit->text(), "expected");
    }

    void colourByState_data()
    {
        QTest::addColumn<bool>("focus");
        QTest::addColumn<bool>("enabled");
        QTest::addColumn<bool>("readOnly");
        QTest::addColumn<TColor>("back");
        QTest::addColumn<TColor>("text");
        const TColor own = RGB(230, 255, 230);
        QTest::newRow("normal: its own colour") << false << true << false << own << FrNormalColor;
        QTest::newRow("focused") << true << true << false << BkFocusColor << FrFocusColor;
        QTest::newRow("disabled") << false << false << false << BkDisabledColor << FrDisabledColor;
        QTest::newRow("read-only") << false << true << true << BkReadOnlyColor << FrReadOnlyColor;
        QTest::newRow("read-only beats focused") << true << true << true << BkReadOnlyColor << FrReadOnlyColor;
    }
    void colourByState()
    {
        QFETCH(bool, focus);
        QFETCH(bool, enabled);
        QFETCH(bool, readOnly);
        QFETCH(TColor, back);
        QFETCH(TColor, text);
        Form<TEditEnh> f;
        f.edit->setBorder(false);
        f.edit->setColor(RGB(230, 255, 230));
        f.edit->setReadOnly(readOnly);
        f.edit->setEnabled(enabled);
        QVERIFY(activate(f.window));
        if (focus)
            QTest::mouseClick(f.edit, Qt::LeftButton);
        QCOMPARE(background(f.edit), TColorToQColor(back));
        QCOMPARE(f.edit->palette().color(QPalette::Text), TColorToQColor(text));
        // Leaving gives the normal colours back.
        f.before->setFocus();
        if (f.edit->isEnabled() && !f.edit->ReadOnly())
            QCOMPARE(background(f.edit), TColorToQColor(RGB(230, 255, 230)));
    }

    void typingEditsAndExitWritesBack()
    {
        DataForm f("NOME");
        QCOMPARE(f.edit->text(), QStringLiteral("Rossi"));
        QVERIFY(activate(f.window));
        QTest::mouseClick(f.edit, Qt::LeftButton);
        QCOMPARE(f.ds.State(), dsBrowse);
        QTest::keyClick(f.edit, Qt::Key_End);
        typeIn(QStringLiteral("ni"));
        QCOMPARE(f.ds.State(), dsEdit);
        QCOMPARE(f.field()->AsString(), QStringLiteral("Rossi"));
        QTest::mouseClick(f.after, Qt::LeftButton);
        QCOMPARE(f.exits, 1);
        QCOMPARE(f.field()->AsString(), QStringLiteral("Rossini"));
        f.ds.Post();
        f.ds.Next();
        QCOMPARE(f.edit->text(), QStringLiteral("Bianchi"));
        f.ds.First();
        QCOMPARE(f.edit->text(), QStringLiteral("Rossini"));
        f.ds.Close();
        QCOMPARE(f.edit->text(), QString());
    }

    void keysRefused_data()
    {
        QTest::addColumn<int>("setup");
        QTest::newRow("data source without AutoEdit") << 0;
        QTest::newRow("read-only edit") << 1;
        QTest::newRow("read-only field") << 2;
    }
    void keysRefused()
    {
        QFETCH(int, setup);
        DataForm f("NOME");
        if (setup == 0)
            f.source.setAutoEdit(false);
        else if (setup == 1)
            f.edit->setReadOnly(true);
        else
            f.field()->setReadOnly(true);
        QVERIFY(activate(f.window));
        QTest::mouseClick(f.edit, Qt::LeftButton);
        typeIn(QStringLiteral("x"));
        QTest::keyClick(f.edit, Qt::Key_Backspace);
        QCOMPARE(f.edit->text(), QStringLiteral("Rossi"));
        QCOMPARE(f.ds.State(), dsBrowse);
        // A paste that comes without a key is dropped too.
        QGuiApplication::clipboard()->setText(QStringLiteral("zz"), QClipboard::Selection);
        QTest::mouseClick(f.edit, Qt::MiddleButton);
        QCOMPARE(f.edit->text(), QStringLiteral("Rossi"));
        QCOMPARE(f.ds.State(), dsBrowse);
    }

    void pasteWithoutKeyEditsTheRecord()
    {
        if (!QGuiApplication::clipboard()->supportsSelection())
            QSKIP("no selection clipboard");
        DataForm f("NOME");
        QVERIFY(activate(f.window));
        QTest::mouseClick(f.edit, Qt::LeftButton);
        QTest::keyClick(f.edit, Qt::Key_End);
        QGuiApplication::clipboard()->setText(QStringLiteral("ni"), QClipboard::Selection);
        QTest::mouseClick(f.edit, Qt::MiddleButton, {}, QPoint(f.edit->width() - 2, f.edit->height() / 2));
        QCOMPARE(f.ds.State(), dsEdit);
        QCOMPARE(f.edit->text(), QStringLiteral("Rossini"));
        tab();
        QCOMPARE(f.field()->AsString(), QStringLiteral("Rossini"));
    }

    void enterWritesEscapeShowsTheFieldAgain()
    {
        DataForm f("IMPORTO");
        f.edit->setDisplayType(dtGeneral);
        f.edit->setDisplayFormat(QStringLiteral("#,##0.00"));
        QCOMPARE(f.edit->text(), QStringLiteral("1.234,50"));
        QVERIFY(activate(f.window));
        QTest::mouseClick(f.edit, Qt::LeftButton);
        QCOMPARE(f.edit->text(), QStringLiteral("1234,5"));
        QTest::keyClick(f.edit, Qt::Key_A, Qt::ControlModifier);
        typeIn(QStringLiteral("99,5"));
        QTest::keyClick(f.edit, Qt::Key_Return);
        QCOMPARE(f.field()->AsFloat(), 99.5);
        QCOMPARE(f.ds.State(), dsEdit);
        QCOMPARE(f.edit->selectedText(), QStringLiteral("99,5"));
        typeIn(QStringLiteral("7"));
        QTest::keyClick(f.edit, Qt::Key_Escape);
        QCOMPARE(f.edit->text(), QStringLiteral("99,5"));
        tab();
        QCOMPARE(f.edit->text(), QStringLiteral("99,50"));
        f.ds.Post();
        QCOMPARE(f.field()->AsFloat(), 99.5);
    }

    void errorOnExitGoesToTheHandlerAndKeepsTheFocus()
    {
        PostedErrors posted;
        DataForm f("ID");
        QVERIFY(activate(f.window));
        QTest::mouseClick(f.edit, Qt::LeftButton);
        QTest::keyClick(f.edit, Qt::Key_A, Qt::ControlModifier);
        typeIn(QStringLiteral("abc"));
        tab();
        QTRY_COMPARE(posted.errors.size(), 1);
        QCOMPARE(posted.senders.at(0), static_cast<QObject *>(f.edit));
        QVERIFY_THROWS_EXCEPTION(EConvertError, std::rethrow_exception(posted.errors.at(0)));
        QCOMPARE(posted.message(0), QStringLiteral("'abc' is not a valid integer value"));
        QCOMPARE(focused(), f.edit);
        QCOMPARE(f.edit->selectedText(), QStringLiteral("abc"));
        // The write-back failed before the exit handler.
        QCOMPARE(f.exits, 0);
        QCOMPARE(f.enters, 2);
    }

    void errorWithoutHandlerShowsAMessageBox()
    {
        DataForm f("ID");
        QVERIFY(activate(f.window));
        QTest::mouseClick(f.edit, Qt::LeftButton);
        QTest::keyClick(f.edit, Qt::Key_A, Qt::ControlModifier);
        typeIn(QStringLiteral("x1"));
        QString shown;
        QTimer answer;
        connect(&answer, &QTimer::timeout, this, [&] {
            if (auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget())) {
                shown = box->text();
                QTest::mouseClick(box->button(QMessageBox::Ok), Qt::LeftButton);
            }
        });
        answer.start(20);
        tab();
        QTRY_COMPARE(shown, QStringLiteral("'x1' is not a valid integer value"));
        QTRY_VERIFY(!QApplication::activeModalWidget());
        // Giving the activation back after the box is the window system's business.
        QCOMPARE(f.window.focusWidget(), f.edit);
        QVERIFY(activate(f.window));
        QCOMPARE(focused(), f.edit);
        // The box taking and giving back the focus is neither an exit nor an entry.
        QCOMPARE(f.exits, 0);
        QCOMPARE(f.enters, 2);
    }

    void tabStopOffStillTakesClicks()
    {
        Form<TEditEnh> f;
        f.edit->setTabStop(false);
        QVERIFY(activate(f.window));
        QTest::mouseClick(f.before, Qt::LeftButton);
        tab();
        QCOMPARE(focused(), f.after);
        QTest::mouseClick(f.edit, Qt::LeftButton);
        QCOMPARE(focused(), f.edit);
    }
};

QTEST_MAIN(tst_EditEnh)
#include "tst_editenh.moc"
