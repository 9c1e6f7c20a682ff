// TAnnoAccademico: an academic year shown as two four-digit years joined by "/" (2013/2014).
// Only the first year is bound to the dataset and edited; the "/" and the second year, always
// the first plus one, are shown read-only. A first year outside 1900-2099 is cleared on exit.
#pragma once

#include "CustomPanel.h"
#include "EditEnh.h"
#include "mattoni_widgets_export.h"

class QLineEdit;

namespace mattoni {

class TDataSource;

class MATTONI_WIDGETS_EXPORT TAnnoAccademico : public TCustomPanel
{
    Q_OBJECT
    Q_PROPERTY(QString DataField READ DataField WRITE setDataField)
    Q_PROPERTY(mattoni::TDataSource *DataSource READ DataSource WRITE setDataSource)
    Q_PROPERTY(int WidthAA READ WidthAA WRITE setWidthAA)
    Q_PROPERTY(quint32 EditColor READ EditColor WRITE setEditColor)

public:
    explicit TAnnoAccademico(QWidget *parent = nullptr);
    ~TAnnoAccademico() override;

    QString DataField() const { return m_anno->DataField(); }
    void setDataField(const QString &value) { m_anno->setDataField(value); }
    TDataSource *DataSource() const { return m_anno->DataSource(); }
    void setDataSource(TDataSource *value) { m_anno->setDataSource(value); }
    // The width of the first-year edit; the "/" and the second year move with it at once.
    int WidthAA() const { return m_anno->width(); }
    void setWidthAA(int value);
    TColor EditColor() const { return m_editColor; }
    void setEditColor(TColor value);

    // The children. The panel passes the focus it is given to the first-year edit.
    TDBEditEnh *EditAnno() const { return m_anno; }
    QLineEdit *EditSeparatore() const { return m_separatore; }
    QLineEdit *EditAnnoSuccessivo() const { return m_annoSuccessivo; }

    // Raised, with the panel as Sender, when the first-year edit is left.
    std::function<void(QObject *Sender)> OnExit;
    // Raised with the first-year edit as Sender when its text changed.
    std::function<void(QObject *Sender)> OnChange;

protected:
    void Resize() override;

private:
    QLineEdit *CreateReadOnlyEdit(int width, int maxLength);
    void PaintChildren();
    void ExitEdit(QObject *Sender);
    void Change(QObject *Sender);

    TColor m_editColor = clWindow;
    TDBEditEnh *m_anno;
    QLineEdit *m_separatore;
    QLineEdit *m_annoSuccessivo;
};

} // namespace mattoni
