// The library's message dialog, TfmMessageBox, and the Box... functions that ask and tell the
// user through it: Italian captions, the colour scheme of usrconf, a read-only scrolling text for
// long messages and optional buttons that open a web address or write a mail.
#pragma once

#include "URLComps.h"
#include "mattoni_widgets_export.h"

#include <QDialog>
#include <QPixmap>
#include <QPointer>
#include <QPushButton>

#include <array>

class QLabel;
class QPlainTextEdit;

namespace mattoni {

// Modal results, as the dialog and its buttons report them.
inline constexpr int mrNone = 0;
inline constexpr int mrOk = 1;
inline constexpr int mrCancel = 2;
inline constexpr int mrAbort = 3;
inline constexpr int mrRetry = 4;
inline constexpr int mrIgnore = 5;
inline constexpr int mrYes = 6;
inline constexpr int mrNo = 7;

// The standard kinds of a bitmap button: each sets a caption, a glyph and a modal result.
enum TBitBtnKind { bkCustom, bkOK, bkCancel, bkYes, bkNo, bkAbort, bkRetry, bkIgnore };

// A push button with a kind, a modal result that closes its dialog when clicked, and a Cancel
// flag that makes it answer Escape (Default, from QPushButton, makes it answer Enter).
class MATTONI_WIDGETS_EXPORT TBitBtn : public QPushButton
{
    Q_OBJECT
    Q_PROPERTY(TBitBtnKind Kind READ Kind WRITE setKind NOTIFY KindChanged)
    Q_PROPERTY(int ModalResult READ ModalResult WRITE setModalResult NOTIFY ModalResultChanged)
    Q_PROPERTY(bool Cancel READ Cancel WRITE setCancel NOTIFY CancelChanged)

public:
    Q_ENUM(TBitBtnKind)

    explicit TBitBtn(QWidget *parent = nullptr);

    TBitBtnKind Kind() const { return m_kind; }
    // The kind's caption ("OK", "Cancel", "&Yes", "&No", "Abort", "&Retry", "&Ignore"), glyph and
    // modal result.
    void setKind(TBitBtnKind value);
    int ModalResult() const { return m_modalResult; }
    void setModalResult(int value);
    bool Cancel() const { return m_cancel; }
    void setCancel(bool value);

signals:
    void KindChanged();
    void ModalResultChanged();
    void CancelChanged();

private:
    TBitBtnKind m_kind = bkCustom;
    int m_modalResult = mrNone;
    bool m_cancel = false;
};

class MATTONI_WIDGETS_EXPORT TfmMessageBox : public QDialog
{
    Q_OBJECT
public:
    explicit TfmMessageBox(QWidget *parent = nullptr);
    ~TfmMessageBox() override;

    // Kinds are the message-box flags: 0 OK, 1 OK/Cancel, 2 Abort/Retry/Ignore, 3 Yes/No/Cancel,
    // 4 Yes/No, 5 Retry/Cancel, 16 error, 64 information; 32 (Yes "&Aggiorna" / No "&Ignora") only
    // in the overloads with an address. They are not combined; any other value leaves the buttons
    // as they are. Each overload sets everything, shows the dialog modally and returns when it is
    // closed; ModalResult() tells how.
    void Enter(const QString &Caption, const QString &Message, int Kind);
    void Enter(const QString &Caption, const QString &Message, int Kind, const QString &URL);
    void Enter(const QString &Caption, const QString &Message, int Kind, const QString &URL, const QString &Mail);

    // What Enter sets, without showing the dialog (for previews; Enter calls it). withAddress
    // selects the overloads that take an address.
    void Prepare(const QString &Caption, const QString &Message, int Kind, bool withAddress,
                 const QString &URL = QString(), const QString &Mail = QString());

    int ModalResult() const { return result(); }

    // The parts of the dialog, placed as designed on a 521 x 164 client area.
    QLabel *ImageIcon;
    QPlainTextEdit *mmMessage;
    TURLSpeedButton *btWeb;
    TMAILSpeedButton *btMail;
    TBitBtn *BitBtn1;
    TBitBtn *BitBtn2;
    TBitBtn *BitBtn3;
    // 0 questions and plain notices, 1 errors, 2 warnings, 3 information.
    std::array<QPixmap, 4> ImageList1;

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void changeEvent(QEvent *event) override;
};

// The dialog of the Box... call being shown, null otherwise.
MATTONI_WIDGETS_EXPORT extern QPointer<TfmMessageBox> fmMessageBox;

// "SCELTA", Yes/No/Cancel: the modal result (mrYes, mrNo or mrCancel).
MATTONI_WIDGETS_EXPORT int BoxYesNoCancel(const QString &Msg);
// "CONFERMA", Yes/No: true for Yes.
MATTONI_WIDGETS_EXPORT bool BoxConferma(const QString &Msg);
// "ERRORE", OK.
MATTONI_WIDGETS_EXPORT void BoxErrore(const QString &Msg);
// "ATTENZIONE", OK/Cancel: true for OK.
MATTONI_WIDGETS_EXPORT bool BoxAttenzione(const QString &Msg);
// "INFORMAZIONE", OK.
MATTONI_WIDGETS_EXPORT void BoxInformazione(const QString &Msg);
// "INFORMAZIONE", OK, with the "Web" button for a non-empty URL and "Posta" for a non-empty Mail.
MATTONI_WIDGETS_EXPORT void BoxInformazioneLink(const QString &Msg, const QString &URL, const QString &Mail);
// "DOWNLOAD", "&Aggiorna"/"&Ignora", with the "Web" button for a non-empty URL: true for
// "&Aggiorna".
MATTONI_WIDGETS_EXPORT bool BoxDownloadLink(const QString &Msg, const QString &URL);

} // namespace mattoni
