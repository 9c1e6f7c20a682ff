// The message dialog on a real X server: each kind's buttons, captions, default and cancel; the
// Box... functions answered with a mouse click, Enter, Escape or the window's close box; the web
// and mail buttons through the desktop's URL handlers, also bound to the fields of a dataset; long
// messages and the colour scheme.
#include "ClientDataSet.h"
#include "Graphics.h"
#include "fm_MessageBox.h"
#include "usrconf.h"

#include <QtTest>

#include <xcb/xcb.h>

#include <functional>

using namespace mattoni;

namespace {

// Runs act on the Box... dialog as soon as it is on screen, from inside its modal loop.
void whenShown(std::function<void(TfmMessageBox *)> act)
{
    auto *poll = new QTimer;
    poll->setInterval(5);
    QObject::connect(poll, &QTimer::timeout, [poll, act] {
        TfmMessageBox *box = fmMessageBox;
        if (!box || !box->isVisible() || !box->windowHandle() || !box->windowHandle()->isExposed())
            return;
        poll->stop();
        poll->deleteLater();
        act(box);
        // A failed check returns early: close the dialog so that the test goes on.
        if (QTest::currentTestFailed() && box->isVisible())
            box->done(mrNone);
    });
    poll->start();
}

// A key as the keyboard delivers it: to the focused widget of the dialog.
void pressKey(TfmMessageBox *box, Qt::Key key)
{
    QWidget *target = box->focusWidget() ? box->focusWidget() : box;
    QTest::keyClick(target, key);
}

xcb_atom_t atom(xcb_connection_t *c, const char *name)
{
    xcb_intern_atom_reply_t *reply = xcb_intern_atom_reply(c, xcb_intern_atom(c, 0, uint16_t(strlen(name)), name), nullptr);
    const xcb_atom_t a = reply ? reply->atom : XCB_ATOM_NONE;
    free(reply);
    return a;
}

// The close box: the window manager's request to close, WM_DELETE_WINDOW, sent to the window.
void pressCloseBox(QWidget *window)
{
    auto *x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    QVERIFY(x11);
    xcb_connection_t *c = x11->connection();
    xcb_client_message_event_t event = {};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = xcb_window_t(window->winId());
    event.type = atom(c, "WM_PROTOCOLS");
    event.data.data32[0] = atom(c, "WM_DELETE_WINDOW");
    event.data.data32[1] = XCB_CURRENT_TIME;
    xcb_send_event(c, 0, event.window, XCB_EVENT_MASK_NO_EVENT, reinterpret_cast<const char *>(&event));
    xcb_flush(c);
}

enum Action { ClickFirst, ClickSecond, ClickThird, PressEnter, PressEscape, CloseBox };

void perform(TfmMessageBox *box, Action action)
{
    switch (action) {
    case ClickFirst: QTest::mouseClick(box->BitBtn1, Qt::LeftButton); break;
    case ClickSecond: QTest::mouseClick(box->BitBtn2, Qt::LeftButton); break;
    case ClickThird: QTest::mouseClick(box->BitBtn3, Qt::LeftButton); break;
    case PressEnter: pressKey(box, Qt::Key_Return); break;
    case PressEscape: pressKey(box, Qt::Key_Escape); break;
    case CloseBox: pressCloseBox(box); break;
    }
}

// "caption|result|default" or "caption|result|cancel" or "caption|result|", "" when hidden.
QString describe(TBitBtn *b)
{
    if (!b->isVisible())
        return QString();
    return QStringLiteral("%1|%2|%3").arg(b->text()).arg(b->ModalResult()).arg(QLatin1String(b->isDefault() ? "default" : b->Cancel() ? "cancel" : ""));
}

} // namespace

class UrlCatcher : public QObject
{
    Q_OBJECT
public:
    QList<QUrl> urls;
public slots:
    void openUrl(const QUrl &url) { urls << url; }
};

class tst_fmMessageBox : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void kinds_data();
    void kinds();
    void boxes_data();
    void boxes();
    void addressButtons_data();
    void addressButtons();
    void boundButtons();
    void longMessageScrolls();
    void looks();
    void minimisingTakesTheApplication();

private:
    UrlCatcher m_urls;
};

void tst_fmMessageBox::initTestCase()
{
    for (const char *scheme : {"http", "https", "mailto"})
        QDesktopServices::setUrlHandler(QString::fromLatin1(scheme), &m_urls, "openUrl");
}

void tst_fmMessageBox::cleanupTestCase()
{
    for (const char *scheme : {"http", "https", "mailto"})
        QDesktopServices::unsetUrlHandler(QString::fromLatin1(scheme));
}

void tst_fmMessageBox::kinds_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<bool>("withAddress");
    QTest::addColumn<QStringList>("buttons");
    QTest::addColumn<int>("icon"); // -1: none
    QTest::addColumn<int>("enterResult"); // 0: not asked
    QTest::addColumn<int>("escapeResult"); // 0: Escape does nothing

    const QStringList designed{"Cancel|2|", "&Si|6|", "&No|7|"};
    QTest::newRow("0 OK") << 0 << false << QStringList{"", "OK|1|default", ""} << 0 << 1 << 0;
    QTest::newRow("1 OK/Cancel") << 1 << false << QStringList{"", "&Annulla|2|cancel", "OK|1|default"} << 2 << 1 << 2;
    QTest::newRow("2 Abort/Retry/Ignore") << 2 << false << QStringList{"&Annulla|3|cancel", "&Ignora|5|", "&Riprova|4|default"} << 1 << 4 << 3;
    QTest::newRow("3 Yes/No/Cancel") << 3 << false << QStringList{"&Annulla|2|cancel", "&No|7|", "&Si|6|default"} << 0 << 6 << 2;
    QTest::newRow("4 Yes/No") << 4 << false << QStringList{"", "&No|7|cancel", "&Si|6|default"} << 0 << 6 << 7;
    QTest::newRow("5 Retry/Cancel") << 5 << false << QStringList{"", "&Annulla|2|cancel", "&Riprova|4|default"} << 2 << 4 << 2;
    QTest::newRow("16 error") << 16 << false << QStringList{"", "OK|1|default", ""} << 1 << 1 << 0;
    QTest::newRow("32 with address") << 32 << true << QStringList{"", "&Ignora|7|cancel", "&Aggiorna|6|default"} << 0 << 6 << 7;
    QTest::newRow("32 without address") << 32 << false << designed << -1 << 0 << 0;
    QTest::newRow("64 information") << 64 << false << QStringList{"", "OK|1|default", ""} << 3 << 1 << 0;
    QTest::newRow("48 not understood") << 48 << true << designed << -1 << 0 << 0;
}

void tst_fmMessageBox::kinds()
{
    QFETCH(int, kind);
    QFETCH(bool, withAddress);
    QFETCH(QStringList, buttons);
    QFETCH(int, icon);
    QFETCH(int, enterResult);
    QFETCH(int, escapeResult);

    // Once answered with Enter (when the kind has a default), once with Escape; a kind without a
    // cancel button ignores Escape and is then answered by its last button.
    for (Action action : {PressEnter, PressEscape}) {
        if (action == PressEnter && !enterResult)
            continue;
        TfmMessageBox box;
        fmMessageBox = &box;
        bool checked = false;
        whenShown([&](TfmMessageBox *shown) {
            QCOMPARE(QStringList({describe(shown->BitBtn1), describe(shown->BitBtn2), describe(shown->BitBtn3)}), buttons);
            if (icon < 0)
                QVERIFY(shown->ImageIcon->pixmap().isNull());
            else
                QCOMPARE(shown->ImageIcon->pixmap().toImage(), shown->ImageList1[icon].toImage());
            checked = true;
            perform(shown, action);
            if (action == PressEscape && !escapeResult) {
                QVERIFY(shown->isVisible());
                perform(shown, ClickThird);
            }
        });
        if (withAddress)
            box.Enter(QStringLiteral("PROVA"), QStringLiteral("Messaggio"), kind, QString(), QString());
        else
            box.Enter(QStringLiteral("PROVA"), QStringLiteral("Messaggio"), kind);
        fmMessageBox = nullptr;
        QVERIFY(checked);
        QCOMPARE(box.ModalResult(), action == PressEnter ? enterResult : escapeResult ? escapeResult : box.BitBtn3->ModalResult());
    }
}

void tst_fmMessageBox::boxes_data()
{
    QTest::addColumn<QString>("function");
    QTest::addColumn<int>("action");
    QTest::addColumn<QString>("caption");
    QTest::addColumn<int>("result"); // the modal result, or 1/0 for true/false

    QTest::newRow("YesNoCancel Si") << "BoxYesNoCancel" << int(ClickThird) << "SCELTA" << mrYes;
    QTest::newRow("YesNoCancel No") << "BoxYesNoCancel" << int(ClickSecond) << "SCELTA" << mrNo;
    QTest::newRow("YesNoCancel Escape") << "BoxYesNoCancel" << int(PressEscape) << "SCELTA" << mrCancel;
    QTest::newRow("YesNoCancel close box") << "BoxYesNoCancel" << int(CloseBox) << "SCELTA" << mrCancel;
    QTest::newRow("Conferma Enter") << "BoxConferma" << int(PressEnter) << "CONFERMA" << 1;
    QTest::newRow("Conferma Escape") << "BoxConferma" << int(PressEscape) << "CONFERMA" << 0;
    QTest::newRow("Conferma close box") << "BoxConferma" << int(CloseBox) << "CONFERMA" << 0;
    QTest::newRow("Attenzione OK") << "BoxAttenzione" << int(ClickThird) << "ATTENZIONE" << 1;
    QTest::newRow("Attenzione Annulla") << "BoxAttenzione" << int(ClickSecond) << "ATTENZIONE" << 0;
    QTest::newRow("Errore close box") << "BoxErrore" << int(CloseBox) << "ERRORE" << 0;
    QTest::newRow("Informazione OK") << "BoxInformazione" << int(ClickSecond) << "INFORMAZIONE" << 0;
    QTest::newRow("InformazioneLink Enter") << "BoxInformazioneLink" << int(PressEnter) << "INFORMAZIONE" << 0;
    QTest::newRow("DownloadLink Aggiorna") << "BoxDownloadLink" << int(ClickThird) << "DOWNLOAD" << 1;
    QTest::newRow("DownloadLink Escape") << "BoxDownloadLink" << int(PressEscape) << "DOWNLOAD" << 0;
}

void tst_fmMessageBox::boxes()
{
    QFETCH(QString, function);
    QFETCH(int, action);
    QFETCH(QString, caption);
    QFETCH(int, result);

    const QString message = QStringLiteral("Prima riga\r\nseconda riga");
    QString seenCaption, seenText;
    whenShown([&](TfmMessageBox *box) {
        seenCaption = box->windowTitle();
        seenText = box->mmMessage->toPlainText();
        perform(box, Action(action));
    });
    int answer = 0;
    if (function == QLatin1String("BoxYesNoCancel"))
        answer = BoxYesNoCancel(message);
    else if (function == QLatin1String("BoxConferma"))
        answer = BoxConferma(message);
    else if (function == QLatin1String("BoxAttenzione"))
        answer = BoxAttenzione(message);
    else if (function == QLatin1String("BoxErrore"))
        BoxErrore(message);
    else if (function == QLatin1String("BoxInformazione"))
        BoxInformazione(message);
    else if (function == QLatin1String("BoxInformazioneLink"))
        BoxInformazioneLink(message, QStringLiteral("www.ateneo.it"), QString());
    else if (function == QLatin1String("BoxDownloadLink"))
        answer = BoxDownloadLink(message, QString());
    QCOMPARE(answer, result);
    QCOMPARE(seenCaption, caption);
    QCOMPARE(seenText, QStringLiteral("Prima riga\nseconda riga"));
    QVERIFY(fmMessageBox.isNull());
}

void tst_fmMessageBox::addressButtons_data()
{
    QTest::addColumn<QString>("url");
    QTest::addColumn<QString>("mail");
    QTest::addColumn<bool>("download");
    QTest::addColumn<QStringList>("opened"); // web first, then mail, for the visible buttons

    QTest::newRow("mail only") << "" << "segreteria@ateneo.it" << false << QStringList{"mailto:segreteria@ateneo.it"};
    QTest::newRow("web only") << "https://www.ateneo.it/orari" << "" << false << QStringList{"https://www.ateneo.it/orari"};
    QTest::newRow("both") << "www.ateneo.it" << "uff.studenti@ateneo.it" << false
                          << QStringList{"http://www.ateneo.it", "mailto:uff.studenti@ateneo.it"};
    QTest::newRow("none") << "" << "" << false << QStringList{};
    QTest::newRow("download") << "http://www.ateneo.it/aggiornamento" << "" << true
                              << QStringList{"http://www.ateneo.it/aggiornamento"};
}

void tst_fmMessageBox::addressButtons()
{
    QFETCH(QString, url);
    QFETCH(QString, mail);
    QFETCH(bool, download);
    QFETCH(QStringList, opened);

    m_urls.urls.clear();
    QStringList visible;
    whenShown([&](TfmMessageBox *box) {
        for (TLinkSpeedButton *b : {static_cast<TLinkSpeedButton *>(box->btWeb), static_cast<TLinkSpeedButton *>(box->btMail)}) {
            if (b->isVisible()) {
                visible << b->text();
                QTest::mouseClick(b, Qt::LeftButton);
            }
        }
        QVERIFY(box->isVisible()); // the link buttons leave the dialog open
        perform(box, PressEscape);
        if (box->isVisible())
            perform(box, PressEnter);
    });
    if (download)
        BoxDownloadLink(QStringLiteral("Nuova versione disponibile"), url);
    else
        BoxInformazioneLink(QStringLiteral("Per informazioni"), url, mail);

    QStringList expectedCaptions;
    if (!url.isEmpty())
        expectedCaptions << QStringLiteral("Web");
    if (!mail.isEmpty())
        expectedCaptions << QStringLiteral("Posta");
    QCOMPARE(visible, expectedCaptions);
    QStringList urls;
    for (const QUrl &u : std::as_const(m_urls.urls))
        urls << u.toString();
    QCOMPARE(urls, opened);
}

void tst_fmMessageBox::boundButtons()
{
    TClientDataSet ds;
    ds.FieldDefs().Add(QStringLiteral("SITO"), ftString, 60);
    ds.FieldDefs().Add(QStringLiteral("EMAIL"), ftString, 60);
    ds.CreateDataSet();
    ds.AppendRecord({QStringLiteral("www.unipr.it"), QStringLiteral("segreteria@unipr.it")});
    ds.AppendRecord({QStringLiteral("https://www.unibo.it"), QStringLiteral("info@unibo.it")});
    ds.First();
    TDataSource source;
    source.setDataSet(&ds);

    QWidget form;
    auto *web = new TURLSpeedButton(&form);
    auto *mail = new TMAILSpeedButton(&form);
    mail->move(0, 30);
    web->setDataField(QStringLiteral("SITO"));
    web->setDataSource(&source);
    mail->setDataSource(&source);
    mail->setDataField(QStringLiteral("EMAIL"));
    form.show();
    QVERIFY(QTest::qWaitForWindowExposed(&form));

    QSignalSpy urlChanges(web, &TURLSpeedButton::URLChanged);
    auto clickBoth = [&] {
        m_urls.urls.clear();
        QTest::mouseClick(web, Qt::LeftButton);
        QTest::mouseClick(mail, Qt::LeftButton);
        QStringList urls;
        for (const QUrl &u : std::as_const(m_urls.urls))
            urls << u.toString();
        return urls;
    };
    QCOMPARE(clickBoth(), QStringList({"http://www.unipr.it", "mailto:segreteria@unipr.it"}));
    ds.Next();
    QCOMPARE(web->URL(), QStringLiteral("https://www.unibo.it"));
    QCOMPARE(clickBoth(), QStringList({"https://www.unibo.it", "mailto:info@unibo.it"}));
    ds.Edit();
    ds.FieldByName(QStringLiteral("EMAIL"))->setAsString(QStringLiteral("urp@unibo.it"));
    ds.Post();
    QCOMPARE(mail->MAIL(), QStringLiteral("urp@unibo.it"));
    QCOMPARE(urlChanges.count(), 1);
    // No field, no address; unbound, the address given in code stays.
    ds.Close();
    QCOMPARE(web->URL(), QString());
    web->setDataSource(nullptr);
    web->setURL(QStringLiteral("www.ateneo.it"));
    ds.CreateDataSet();
    ds.AppendRecord({QStringLiteral("www.unife.it"), QStringLiteral("info@unife.it")});
    QCOMPARE(web->URL(), QStringLiteral("www.ateneo.it"));
    QCOMPARE(mail->MAIL(), QStringLiteral("info@unife.it"));
}

void tst_fmMessageBox::longMessageScrolls()
{
    QStringList lines;
    for (int i = 1; i <= 60; ++i)
        lines << QStringLiteral("Riga %1 di un messaggio molto lungo, che non sta nell'area del testo").arg(i);
    bool checked = false;
    whenShown([&](TfmMessageBox *box) {
        QCOMPARE(box->size(), QSize(521, 164));
        QCOMPARE(box->mmMessage->geometry(), QRect(56, 8, 450, 105));
        QScrollBar *bar = box->mmMessage->verticalScrollBar();
        QVERIFY(bar->isVisible());
        QVERIFY(bar->maximum() > 0);
        // The reader scrolls to the end with the bar's own arrow and sees the last line.
        const QRect arrow(bar->width() / 2, bar->height() - 4, 1, 1);
        for (int i = 0; i < 200 && bar->value() < bar->maximum(); ++i)
            QTest::mouseClick(bar, Qt::LeftButton, {}, arrow.topLeft());
        QCOMPARE(bar->value(), bar->maximum());
        const QTextBlock last = box->mmMessage->document()->lastBlock();
        QVERIFY(box->mmMessage->cursorForPosition(QPoint(5, box->mmMessage->viewport()->height() - 5)).blockNumber() >= last.blockNumber() - 1);
        checked = true;
        perform(box, PressEnter);
    });
    BoxInformazione(lines.join(QLatin1Char('\n')));
    QVERIFY(checked);
}

void tst_fmMessageBox::looks()
{
    const TColor savedBk = BkFormColor, savedFr = FrFormColor;
    BkFormColor = clSkyBlue;
    FrFormColor = clNavy;
    {
        TfmMessageBox box;
        box.Prepare(QStringLiteral("PROVA"), QStringLiteral("x"), 64, false);
        box.show();
        QVERIFY(QTest::qWaitForWindowExposed(&box));
        QCOMPARE(box.size(), QSize(521, 164));
        const QList<QRect> designed{{8, 8, 32, 32}, {56, 8, 450, 105}, {56, 128, 75, 25}, {144, 128, 75, 25},
                                    {253, 128, 75, 25}, {342, 128, 75, 25}, {431, 128, 75, 25}};
        const QList<QWidget *> parts{box.ImageIcon, box.mmMessage, box.btWeb, box.btMail, box.BitBtn1, box.BitBtn2, box.BitBtn3};
        for (int i = 0; i < parts.size(); ++i)
            QCOMPARE(parts[i]->geometry(), designed[i]);
        QVERIFY(box.windowFlags().testFlag(Qt::WindowStaysOnTopHint));
        QCOMPARE(box.windowType(), Qt::Tool);
        QCOMPARE(box.font().pointSize(), 8);
        QCOMPARE(box.font().family(), QApplication::font().family());
        // Centred on the screen (to the pixel: an odd size has no exact centre).
        QVERIFY((box.geometry().center() - box.screen()->availableGeometry().center()).manhattanLength() <= 2);
        // The painted colours: the form between icon and text, the text area under its one line.
        const QImage image = box.grab().toImage();
        QCOMPARE(image.pixelColor(48, 80), TColorToQColor(clSkyBlue));
        QCOMPARE(image.pixelColor(200, 100), TColorToQColor(clSkyBlue));
        QCOMPARE(box.mmMessage->palette().color(QPalette::Text), TColorToQColor(clNavy));
    }
    BkFormColor = savedBk;
    FrFormColor = savedFr;
}

void tst_fmMessageBox::minimisingTakesTheApplication()
{
    QWidget main;
    main.resize(200, 100);
    main.show();
    QVERIFY(QTest::qWaitForWindowExposed(&main));
    TfmMessageBox box;
    box.Prepare(QStringLiteral("PROVA"), QStringLiteral("x"), 0, false);
    box.show();
    QVERIFY(QTest::qWaitForWindowExposed(&box));
    box.setWindowState(Qt::WindowMinimized);
    QVERIFY(main.isMinimized());
}

QTEST_MAIN(tst_fmMessageBox)
#include "tst_fm_messagebox.moc"
