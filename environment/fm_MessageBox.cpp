// The message dialog and the Box... functions.
#include "fm_MessageBox.h"

#include "Graphics.h"
#include "usrconf.h"

#include <QApplication>
#include <QCloseEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QPlainTextEdit>
#include <QScopeGuard>
#include <QScreen>
#include <QStyle>

namespace mattoni {

QPointer<TfmMessageBox> fmMessageBox;

// ---------------------------------------------------------------- TBitBtn

namespace {

struct KindLook
{
    const char *caption;
    const char *glyph;
    int modalResult;
};

const KindLook &lookOf(TBitBtnKind kind)
{
    static const KindLook looks[] = {
        {"", "", mrNone},
        {"OK", "ok", mrOk},
        {"Cancel", "cancel", mrCancel},
        {"&Yes", "yes", mrYes},
        {"&No", "no", mrNo},
        {"Abort", "abort", mrAbort},
        {"&Retry", "retry", mrRetry},
        {"&Ignore", "ignore", mrIgnore},
    };
    return looks[kind];
}

} // namespace

TBitBtn::TBitBtn(QWidget *parent)
    : QPushButton(parent)
{
    // Enter answers with the default button only, wherever the focus is, and a dialog without a
    // default button ignores it: no button becomes the default by taking the focus.
    setAutoDefault(false);
    connect(this, &QPushButton::clicked, this, [this] {
        if (m_modalResult == mrNone)
            return;
        if (auto *dialog = qobject_cast<QDialog *>(window()))
            dialog->done(m_modalResult);
    });
}

void TBitBtn::setKind(TBitBtnKind value)
{
    if (m_kind == value)
        return;
    m_kind = value;
    if (value != bkCustom) {
        const KindLook &look = lookOf(value);
        setText(QString::fromLatin1(look.caption));
        setIcon(QIcon(QStringLiteral(":/mattoni/glyphs/%1.png").arg(QLatin1String(look.glyph))));
        setModalResult(look.modalResult);
    }
    emit KindChanged();
}

void TBitBtn::setModalResult(int value)
{
    if (m_modalResult == value)
        return;
    m_modalResult = value;
    emit ModalResultChanged();
}

void TBitBtn::setCancel(bool value)
{
    if (m_cancel == value)
        return;
    m_cancel = value;
    emit CancelChanged();
}

// ---------------------------------------------------------------- TfmMessageBox

namespace {

enum ButtonFlag { Hidden, Plain, Default, Cancel };

struct ButtonSetup
{
    ButtonFlag flag;
    TBitBtnKind kind;
    const char *caption; // null: the kind's own
};

struct KindSetup
{
    int kind;
    ButtonSetup buttons[3];
    int icon;
};

// BitBtn1, BitBtn2, BitBtn3 per kind, left to right.
const KindSetup kindSetups[] = {
    {0, {{Hidden, bkCustom, nullptr}, {Default, bkOK, nullptr}, {Hidden, bkCustom, nullptr}}, 0},
    {1, {{Hidden, bkCustom, nullptr}, {Cancel, bkCancel, "&Annulla"}, {Default, bkOK, nullptr}}, 2},
    {2, {{Cancel, bkAbort, "&Annulla"}, {Plain, bkIgnore, "&Ignora"}, {Default, bkRetry, "&Riprova"}}, 1},
    {3, {{Cancel, bkCancel, "&Annulla"}, {Plain, bkNo, nullptr}, {Default, bkYes, "&Si"}}, 0},
    {4, {{Hidden, bkCustom, nullptr}, {Cancel, bkNo, nullptr}, {Default, bkYes, "&Si"}}, 0},
    {5, {{Hidden, bkCustom, nullptr}, {Cancel, bkCancel, "&Annulla"}, {Default, bkRetry, "&Riprova"}}, 2},
    {16, {{Hidden, bkCustom, nullptr}, {Default, bkOK, nullptr}, {Hidden, bkCustom, nullptr}}, 1},
    {32, {{Hidden, bkCustom, nullptr}, {Cancel, bkNo, "&Ignora"}, {Default, bkYes, "&Aggiorna"}}, 0},
    {64, {{Hidden, bkCustom, nullptr}, {Default, bkOK, nullptr}, {Hidden, bkCustom, nullptr}}, 3},
};

QPixmap standardIcon(QStyle::StandardPixmap which)
{
    return QApplication::style()->standardIcon(which).pixmap(32, 32);
}

} // namespace

TfmMessageBox::TfmMessageBox(QWidget *parent)
    : QDialog(parent)
    , ImageIcon(new QLabel(this))
    , mmMessage(new QPlainTextEdit(this))
    , btWeb(new TURLSpeedButton(this))
    , btMail(new TMAILSpeedButton(this))
    , BitBtn1(new TBitBtn(this))
    , BitBtn2(new TBitBtn(this))
    , BitBtn3(new TBitBtn(this))
    , ImageList1{standardIcon(QStyle::SP_MessageBoxQuestion), standardIcon(QStyle::SP_MessageBoxCritical),
                 standardIcon(QStyle::SP_MessageBoxWarning), standardIcon(QStyle::SP_MessageBoxInformation)}
{
    // A tool window (no task-bar entry of its own), always on top, with a fixed size.
    setWindowFlags(Qt::Tool | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint
                   | Qt::WindowCloseButtonHint | Qt::WindowStaysOnTopHint);
    setFixedSize(521, 164);
    QFont font = QApplication::font();
    font.setPointSize(8);
    setFont(font);
    QPalette pal = palette();
    pal.setColor(QPalette::Window, TColorToQColor(BkFormColor));
    pal.setColor(QPalette::WindowText, TColorToQColor(FrFormColor));
    setPalette(pal);
    setAutoFillBackground(true);

    ImageIcon->setGeometry(8, 8, 32, 32);
    ImageIcon->setAlignment(Qt::AlignCenter);

    mmMessage->setGeometry(56, 8, 450, 105);
    mmMessage->setReadOnly(true);
    mmMessage->setFocusPolicy(Qt::NoFocus);
    mmMessage->setFrameShape(QFrame::NoFrame);
    mmMessage->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    mmMessage->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    mmMessage->setLineWrapMode(QPlainTextEdit::WidgetWidth);

    btWeb->setGeometry(56, 128, 75, 25);
    btWeb->setText(QStringLiteral("Web"));
    btMail->setGeometry(144, 128, 75, 25);
    btMail->setText(QStringLiteral("Posta"));

    BitBtn1->setGeometry(253, 128, 75, 25);
    BitBtn1->setKind(bkCancel);
    BitBtn2->setGeometry(342, 128, 75, 25);
    BitBtn2->setText(QStringLiteral("&Si"));
    BitBtn2->setIcon(QIcon(QStringLiteral(":/mattoni/glyphs/yes.png")));
    BitBtn2->setModalResult(mrYes);
    BitBtn2->setDefault(true);
    BitBtn3->setGeometry(431, 128, 75, 25);
    BitBtn3->setKind(bkNo);
    setTabOrder(BitBtn1, BitBtn2);
    setTabOrder(BitBtn2, BitBtn3);
}

TfmMessageBox::~TfmMessageBox() = default;

void TfmMessageBox::Prepare(const QString &Caption, const QString &Message, int Kind, bool withAddress,
                            const QString &URL, const QString &Mail)
{
    setWindowTitle(Caption);
    QPalette pal = mmMessage->palette();
    pal.setColor(QPalette::Base, TColorToQColor(BkFormColor));
    pal.setColor(QPalette::Text, TColorToQColor(FrFormColor));
    mmMessage->setPalette(pal);
    QString text = Message;
    text.replace(QLatin1String("\r\n"), QLatin1String("\n")).replace(QLatin1Char('\r'), QLatin1Char('\n'));
    mmMessage->setPlainText(text);

    TBitBtn *const buttons[3] = {BitBtn1, BitBtn2, BitBtn3};
    for (TBitBtn *b : buttons) {
        b->setDefault(false);
        b->setCancel(false);
    }
    for (const KindSetup &setup : kindSetups) {
        // Kind 32 belongs to the overloads with an address only.
        if (setup.kind != Kind || (Kind == 32 && !withAddress))
            continue;
        for (int i = 0; i < 3; ++i) {
            const ButtonSetup &s = setup.buttons[i];
            buttons[i]->setVisible(s.flag != Hidden);
            if (s.flag == Hidden)
                continue;
            // Setting the kind again puts back its caption, glyph and result.
            buttons[i]->setKind(bkCustom);
            buttons[i]->setKind(s.kind);
            if (s.caption)
                buttons[i]->setText(QString::fromUtf8(s.caption));
            buttons[i]->setDefault(s.flag == Default);
            buttons[i]->setCancel(s.flag == Cancel);
        }
        ImageIcon->setPixmap(ImageList1[setup.icon]);
        break;
    }

    btWeb->hide();
    btMail->hide();
    if (withAddress) {
        if (!URL.isEmpty()) {
            btWeb->setURL(URL);
            btWeb->show();
        }
        if (!Mail.isEmpty()) {
            btMail->setMAIL(Mail);
            btMail->show();
        }
    }
}

void TfmMessageBox::Enter(const QString &Caption, const QString &Message, int Kind)
{
    Prepare(Caption, Message, Kind, false);
    exec();
}

void TfmMessageBox::Enter(const QString &Caption, const QString &Message, int Kind, const QString &URL)
{
    Prepare(Caption, Message, Kind, true, URL);
    exec();
}

void TfmMessageBox::Enter(const QString &Caption, const QString &Message, int Kind, const QString &URL, const QString &Mail)
{
    Prepare(Caption, Message, Kind, true, URL, Mail);
    exec();
}

void TfmMessageBox::keyPressEvent(QKeyEvent *event)
{
    // Escape presses the cancel button, when there is one, and does nothing otherwise.
    if (event->key() == Qt::Key_Escape && event->modifiers() == Qt::NoModifier) {
        for (TBitBtn *b : {BitBtn1, BitBtn2, BitBtn3}) {
            if (b->Cancel() && b->isVisible() && b->isEnabled()) {
                b->click();
                break;
            }
        }
        event->accept();
        return;
    }
    QDialog::keyPressEvent(event);
}

void TfmMessageBox::closeEvent(QCloseEvent *event)
{
    // The close box answers Cancel, whatever the buttons.
    if (isVisible())
        done(mrCancel);
    event->accept();
}

void TfmMessageBox::showEvent(QShowEvent *event)
{
    QDialog::showEvent(event);
    if (QScreen *s = screen())
        move(s->availableGeometry().center() - QPoint(width() / 2, height() / 2));
    for (TBitBtn *b : {BitBtn1, BitBtn2, BitBtn3}) {
        if (b->isDefault() && b->isVisible()) {
            b->setFocus(Qt::OtherFocusReason);
            break;
        }
    }
}

void TfmMessageBox::changeEvent(QEvent *event)
{
    QDialog::changeEvent(event);
    // Minimising the dialog minimises the whole application with it.
    if (event->type() == QEvent::WindowStateChange && isMinimized()) {
        const auto windows = QApplication::topLevelWidgets();
        for (QWidget *w : windows) {
            if (w != this && w->isVisible() && !w->isMinimized())
                w->showMinimized();
        }
    }
}

// ---------------------------------------------------------------- Box...

namespace {

// Creates the dialog, fills it through one of the Enter overloads, shows it and frees it.
template<typename... Addresses>
int runBox(const QString &caption, const QString &msg, int kind, const Addresses &...addresses)
{
    QPointer<TfmMessageBox> box = new TfmMessageBox;
    fmMessageBox = box;
    const auto cleanup = qScopeGuard([&] {
        delete box.data();
        fmMessageBox = nullptr;
    });
    box->Enter(caption, msg, kind, addresses...);
    // The dialog may have been deleted inside its own event loop: that counts as cancelled.
    return box ? box->ModalResult() : mrCancel;
}

} // namespace

int BoxYesNoCancel(const QString &Msg)
{
    return runBox(QStringLiteral("SCELTA"), Msg, 3);
}

bool BoxConferma(const QString &Msg)
{
    return runBox(QStringLiteral("CONFERMA"), Msg, 4) == mrYes;
}

void BoxErrore(const QString &Msg)
{
    runBox(QStringLiteral("ERRORE"), Msg, 16);
}

bool BoxAttenzione(const QString &Msg)
{
    return runBox(QStringLiteral("ATTENZIONE"), Msg, 1) == mrOk;
}

void BoxInformazione(const QString &Msg)
{
    runBox(QStringLiteral("INFORMAZIONE"), Msg, 64);
}

void BoxInformazioneLink(const QString &Msg, const QString &URL, const QString &Mail)
{
    runBox(QStringLiteral("INFORMAZIONE"), Msg, 64, URL, Mail);
}

bool BoxDownloadLink(const QString &Msg, const QString &URL)
{
    return runBox(QStringLiteral("DOWNLOAD"), Msg, 32, URL) == mrYes;
}

} // namespace mattoni
