// TMatricola: a student's registration number as three adjacent numeric fields bound to three
// fields of one dataset: the faculty code (3 digits), the course-of-study code (7 digits) and the
// student's own number (6 digits), each shown zero-padded to its full width. The control checks
// no rule that ties the three together; that belongs to the application.
#pragma once

#include "CustomPanel.h"
#include "EditEnh.h"
#include "mattoni_widgets_export.h"

namespace mattoni {

class TDataSource;

class MATTONI_WIDGETS_EXPORT TMatricola : public TCustomPanel
{
    Q_OBJECT
    Q_PROPERTY(QString DataFieldFacolta READ DataFieldFacolta WRITE setDataFieldFacolta)
    Q_PROPERTY(QString DataFieldCorsoStudi READ DataFieldCorsoStudi WRITE setDataFieldCorsoStudi)
    Q_PROPERTY(QString DataFieldMatricola READ DataFieldMatricola WRITE setDataFieldMatricola)
    Q_PROPERTY(mattoni::TDataSource *DataSource READ DataSource WRITE setDataSource)
    Q_PROPERTY(int WidthFacolta READ WidthFacolta WRITE setWidthFacolta)
    Q_PROPERTY(int WidthCorsoStudi READ WidthCorsoStudi WRITE setWidthCorsoStudi)
    Q_PROPERTY(bool TabStopFacolta READ TabStopFacolta WRITE setTabStopFacolta)
    Q_PROPERTY(bool TabStopCorsoStudi READ TabStopCorsoStudi WRITE setTabStopCorsoStudi)
    Q_PROPERTY(bool TabStopMatricola READ TabStopMatricola WRITE setTabStopMatricola)
    Q_PROPERTY(quint32 EditColor READ EditColor WRITE setEditColor)

public:
    explicit TMatricola(QWidget *parent = nullptr);
    ~TMatricola() override;

    QString DataFieldFacolta() const { return m_facolta->DataField(); }
    void setDataFieldFacolta(const QString &value) { m_facolta->setDataField(value); }
    QString DataFieldCorsoStudi() const { return m_corsoStudi->DataField(); }
    void setDataFieldCorsoStudi(const QString &value) { m_corsoStudi->setDataField(value); }
    QString DataFieldMatricola() const { return m_matricola->DataField(); }
    void setDataFieldMatricola(const QString &value) { m_matricola->setDataField(value); }
    TDataSource *DataSource() const { return m_facolta->DataSource(); }
    void setDataSource(TDataSource *value);
    int WidthFacolta() const { return m_facolta->width(); }
    void setWidthFacolta(int value) { m_facolta->resize(value, m_facolta->height()); }
    int WidthCorsoStudi() const { return m_corsoStudi->width(); }
    void setWidthCorsoStudi(int value) { m_corsoStudi->resize(value, m_corsoStudi->height()); }
    bool TabStopFacolta() const { return m_facolta->TabStop(); }
    void setTabStopFacolta(bool value) { m_facolta->setTabStop(value); }
    bool TabStopCorsoStudi() const { return m_corsoStudi->TabStop(); }
    void setTabStopCorsoStudi(bool value) { m_corsoStudi->setTabStop(value); }
    bool TabStopMatricola() const { return m_matricola->TabStop(); }
    void setTabStopMatricola(bool value) { m_matricola->setTabStop(value); }
    TColor EditColor() const { return m_editColor; }
    void setEditColor(TColor value);

    // The three edits, for placing the focus and for tab orders.
    TDBEditEnh *EditFacolta() const { return m_facolta; }
    TDBEditEnh *EditCorsoStudi() const { return m_corsoStudi; }
    TDBEditEnh *EditMatricola() const { return m_matricola; }

    // Raised, with the panel as Sender, each time one of the edits is left (also for a move
    // between two of them).
    std::function<void(QObject *Sender)> OnExit;
    // Raised with the edit whose text changed as Sender.
    std::function<void(QObject *Sender)> OnChange;

protected:
    void Resize() override;

private:
    TDBEditEnh *CreateEdit(int maxLength, const QString &displayFormat, int left, int width);
    // Sender when it is one of the panel's edits.
    TDBEditEnh *OwnEdit(QObject *sender) const;
    // The edit's text as its number, zero-padded to the full width by its display format.
    void Normalize(TDBEditEnh *edit);
    void ExitEdit(QObject *Sender);
    void FormattaValori(QObject *Sender);
    void Change(QObject *Sender);

    TColor m_editColor = clWindow;
    bool m_normalizing = false;
    TDBEditEnh *m_facolta;
    TDBEditEnh *m_corsoStudi;
    TDBEditEnh *m_matricola;
};

} // namespace mattoni
