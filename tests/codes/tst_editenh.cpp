// The enhanced edit on screen, driven by keys, clicks and Tab: the display format with and
// without the focus, what the user may type and paste, the colours by state, and the field
// binding on a client dataset (edit mode on typing, write-back on exit and Enter, errors on exit).
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
    int changes = 0, enters = 0, exits = 0;

    Form()
    {
        edit->resize(150, 22);
        edit->OnChange = [this](QObject *) { ++changes; };
        edit->OnEnter = [this](QObject *) { ++enters; };
        edit->OnExit = [this](QObject *) { ++exits; };
    }
};

// The edit bound to Field of a small dataset, on its first record, in an active window.
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
    // Clicks into the edit and selects its text.
    bool enter()
    {
        if (!activate(window))
            return false;
        QTest::mouseClick(edit, Qt::LeftButton);
        QTest::keyClick(edit, Qt::Key_A, Qt::ControlModifier);
        return true;
    }
};

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
        tab();
        QTEST(f.edit->text(), "shown");
        QCOMPARE(f.edit->EditText(), typed);
        QTest::mouseClick(f.edit, Qt::LeftButton);
        QCOMPARE(f.edit->text(), typed);
        // One change per key; switching between the two forms is no change of the value.
        QCOMPARE(f.changes, typed.size());
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
        QTest::newRow("normal: its own colour") << false << true << false << RGB(230, 255, 230) << FrNormalColor;
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
        const QImage shot = f.edit->grab().toImage();
        QCOMPARE(shot.pixelColor(shot.width() - 3, shot.height() / 2), TColorToQColor(back));
        QCOMPARE(f.edit->palette().color(QPalette::Text), TColorToQColor(text));
    }

    // Keys, and a paste of the X11 selection that comes without any key; what they change goes
    // into the field on exit.
    void changesNeedEditMode_data()
    {
        QTest::addColumn<int>("setup");
        QTest::addColumn<QString>("expected");
        QTest::newRow("AutoEdit") << 0 << "Rossinix";
        QTest::newRow("data source without AutoEdit") << 1 << "Rossi";
        QTest::newRow("read-only edit") << 2 << "Rossi";
        QTest::newRow("read-only field") << 3 << "Rossi";
    }
    void changesNeedEditMode()
    {
        QFETCH(int, setup);
        QFETCH(QString, expected);
        if (!QGuiApplication::clipboard()->supportsSelection())
            QSKIP("no selection clipboard");
        DataForm f("NOME");
        f.source.setAutoEdit(setup != 1);
        f.edit->setReadOnly(setup == 2);
        f.field()->setReadOnly(setup == 3);
        QVERIFY(f.enter());
        QTest::keyClick(f.edit, Qt::Key_End);
        QGuiApplication::clipboard()->setText(QStringLiteral("ni"), QClipboard::Selection);
        QTest::mouseClick(f.edit, Qt::MiddleButton, {}, QPoint(f.edit->width() - 2, f.edit->height() / 2));
        QCOMPARE(f.ds.State(), setup == 0 ? dsEdit : dsBrowse);
        typeIn(QStringLiteral("x"));
        QTest::keyClick(f.edit, Qt::Key_Backspace);
        typeIn(QStringLiteral("x"));
        QCOMPARE(f.edit->text(), expected);
        QCOMPARE(f.field()->AsString(), QStringLiteral("Rossi"));
        tab();
        QCOMPARE(f.exits, 1);
        QCOMPARE(f.field()->AsString(), expected);
        f.ds.CheckBrowseMode();
        f.ds.Close();
        QCOMPARE(f.edit->text(), QString());
    }

    void enterWritesEscapeShowsTheFieldAgain()
    {
        DataForm f("IMPORTO");
        f.edit->setDisplayType(dtGeneral);
        f.edit->setDisplayFormat(QStringLiteral("#,##0.00"));
        QCOMPARE(f.edit->text(), QStringLiteral("1.234,50"));
        QVERIFY(f.enter());
        QCOMPARE(f.edit->selectedText(), QStringLiteral("1234,5"));
        typeIn(QStringLiteral("99,5"));
        QTest::keyClick(f.edit, Qt::Key_Return);
        QCOMPARE(f.field()->AsFloat(), 99.5);
        QCOMPARE(f.ds.State(), dsEdit);
        typeIn(QStringLiteral("7")); // over the text Enter selected
        QTest::keyClick(f.edit, Qt::Key_Escape);
        QCOMPARE(f.edit->text(), QStringLiteral("99,5"));
        tab();
        QCOMPARE(f.edit->text(), QStringLiteral("99,50"));
    }

    // A write-back that fails on exit: the error goes to the handler, or without one to a message
    // box answered with OK; each time the focus comes back to the edit.
    void errorOnExit()
    {
        DataForm f("ID");
        QVERIFY(f.enter());
        typeIn(QStringLiteral("abc"));
        {
            PostedErrors posted;
            tab();
            QTRY_COMPARE(posted.errors.size(), 1);
            QCOMPARE(posted.senders.at(0), static_cast<QObject *>(f.edit));
            QVERIFY_THROWS_EXCEPTION(EConvertError, std::rethrow_exception(posted.errors.at(0)));
            QCOMPARE(posted.message(0), QStringLiteral("'abc' is not a valid integer value"));
        }
        QCOMPARE(focused(), f.edit);
        QCOMPARE(f.edit->selectedText(), QStringLiteral("abc"));
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
        QTRY_COMPARE(shown, QStringLiteral("'abc' is not a valid integer value"));
        QTRY_VERIFY(!QApplication::activeModalWidget());
        // Giving the activation back after the box is the window system's business.
        QCOMPARE(f.window.focusWidget(), f.edit);
        QVERIFY(activate(f.window));
        QCOMPARE(focused(), f.edit);
        // The write-back fails before the exit handler; the box taking and giving back the
        // focus is neither an exit nor an entry.
        QCOMPARE(f.exits, 0);
        QCOMPARE(f.enters, 3);
    }
};

QTEST_MAIN(tst_EditEnh)
#include "tst_editenh.moc"
