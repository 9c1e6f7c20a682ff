// The student registration number control.
#include "Matricola.h"

#include "DataSource.h"
#include "Formatting.h"
#include "Strings.h"
#include "TextUtils.h"

#include <QScopedValueRollback>

namespace mattoni {

TMatricola::TMatricola(QWidget *parent)
    : TCustomPanel(parent)
    , m_facolta(CreateEdit(3, QStringLiteral("000"), 1, 22))
    , m_corsoStudi(CreateEdit(7, QStringLiteral("0000000"), 22, 50))
    , m_matricola(CreateEdit(6, QStringLiteral("000000"), 77, 37))
{
    resize(95, 19);
    // The panel takes the edits' colour too: Resize gives the edits the panel's.
    setColor(m_editColor);
}

TMatricola::~TMatricola()
{
    delete m_matricola;
    delete m_corsoStudi;
    delete m_facolta;
}

TDBEditEnh *TMatricola::CreateEdit(int maxLength, const QString &displayFormat, int left, int width)
{
    auto *edit = new TDBEditEnh(ClientArea());
    edit->setGeometry(left, 0, width, 19);
    edit->setMaxLength(maxLength);
    edit->setDisplayFormat(displayFormat);
    edit->setBorder(false);
    edit->setDisplayType(dtAlpha);
    edit->setTabStop(true);
    edit->setReadOnly(false);
    edit->setEnabled(true);
    edit->setColor(m_editColor);
    edit->OnExit = [this](QObject *sender) { ExitEdit(sender); };
    edit->OnChange = [this](QObject *sender) { Change(sender); };
    return edit;
}

void TMatricola::setDataSource(TDataSource *value)
{
    for (TDBEditEnh *edit : {m_facolta, m_corsoStudi, m_matricola})
        edit->setDataSource(value);
}

void TMatricola::setEditColor(TColor value)
{
    m_editColor = value;
    setColor(value);
    for (TDBEditEnh *edit : {m_facolta, m_corsoStudi, m_matricola})
        edit->setColor(value);
}

void TMatricola::Resize()
{
    const int h = height();
    const int widthFacolta = WidthFacolta();
    const int widthCorsoStudi = WidthCorsoStudi();
    m_facolta->setGeometry(1, m_facolta->y(), widthFacolta, h);
    m_corsoStudi->setGeometry(widthFacolta, m_corsoStudi->y(), widthCorsoStudi, h);
    m_matricola->setGeometry(widthFacolta + widthCorsoStudi, m_matricola->y(),
                             width() - widthFacolta - widthCorsoStudi - 5, h);
    // A part laid out without width is skipped; a width given back later does not enable it again.
    for (TDBEditEnh *edit : {m_facolta, m_corsoStudi}) {
        if (edit->width() == 0) {
            edit->setTabStop(false);
            edit->setEnabled(false);
        }
    }
    for (TDBEditEnh *edit : {m_facolta, m_corsoStudi, m_matricola})
        edit->setColor(Color());
    TCustomPanel::Resize();
}

TDBEditEnh *TMatricola::OwnEdit(QObject *sender) const
{
    auto *edit = qobject_cast<TDBEditEnh *>(sender);
    return edit && edit->parent() == ClientArea() ? edit : nullptr;
}

void TMatricola::Normalize(TDBEditEnh *edit)
{
    const qint32 value = StringValueToInt(Trim(edit->text()));
    // The change this makes comes back through Change: its text is normalized already.
    const QScopedValueRollback<bool> normalizing(m_normalizing, true);
    edit->setText(FormatFloat(edit->DisplayFormat(), value));
    edit->setColor(Color());
}

void TMatricola::ExitEdit(QObject *Sender)
{
    if (OnExit)
        OnExit(this);
    if (TDBEditEnh *edit = OwnEdit(Sender))
        Normalize(edit);
}

void TMatricola::FormattaValori(QObject *Sender)
{
    const TDataSource *source = DataSource();
    if (m_normalizing || !source || !source->DataSet() || source->DataSet()->State() != dsBrowse)
        return;
    if (TDBEditEnh *edit = OwnEdit(Sender))
        Normalize(edit);
}

void TMatricola::Change(QObject *Sender)
{
    FormattaValori(Sender);
    if (OnChange)
        OnChange(Sender);
}

} // namespace mattoni
