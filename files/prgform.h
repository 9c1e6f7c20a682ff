// TProgForm: the small window that the file components show while they work, with the name of
// the file being handled and a percentage bar.
#pragma once

#include "mattoni_widgets_export.h"

#include <QDialog>

class QLabel;
class QProgressBar;

namespace mattoni {

// A fixed dialog-bordered window of 409 x 68 pixels, centred on the screen, captioned
// "Operazione in corso..." until its owner sets another caption. It has no buttons: Escape or
// the window's close box set ModalResult to mrCancel (the window stays open), which the copy
// components read as the user's request to stop.
class MATTONI_WIDGETS_EXPORT TProgForm : public QDialog
{
    Q_OBJECT
    Q_PROPERTY(int ModalResult READ ModalResult WRITE setModalResult NOTIFY ModalResultChanged)

public:
    explicit TProgForm(QWidget *parent = nullptr);
    ~TProgForm() override;

    int ModalResult() const { return m_modalResult; }
    void setModalResult(int value);

    QLabel *lFileName;
    QProgressBar *ProgressBar1;

signals:
    void ModalResultChanged();

public slots:
    void reject() override;

private:
    int m_modalResult = 0;
};

} // namespace mattoni
