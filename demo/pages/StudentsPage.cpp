// Demo page "Studenti": one student's record from the demo database, with the registration
// number and the year of enrolment in their composite controls, the other fields in enhanced
// edits, and buttons to move through the records, save and cancel. The record panel sits in a
// vertical splitter, so that a list of the students can go above it.
#include "AnnoAccademico.h"
#include "ClientDataSet.h"
#include "ControlErrors.h"
#include "DataSource.h"
#include "DemoPages.h"
#include "EditEnh.h"
#include "Matricola.h"

#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSplitter>
#include <QVBoxLayout>

using namespace mattoni;

namespace {

QString stateText(const TDataSet &ds)
{
    switch (ds.State()) {
    case dsEdit:
        return QStringLiteral("Modifica in corso");
    case dsInsert:
        return QStringLiteral("Inserimento in corso");
    case dsInactive:
        return QStringLiteral("Archivio chiuso");
    default:
        return QStringLiteral("Consultazione");
    }
}

TDBEditEnh *fieldEdit(TDataSource *source, const QString &field, QWidget *parent)
{
    auto *edit = new TDBEditEnh(parent);
    edit->setDataSource(source);
    edit->setDataField(field);
    return edit;
}

QWidget *recordPanel(DemoContext &context, QWidget *page)
{
    auto *ds = new TClientDataSet(page);
    ds->setConnection(context.db);
    ds->setCommandText(QStringLiteral(
        "SELECT id, facolta, corso, matricola, cognome, nome, anno_immatricolazione, media "
        "FROM studenti ORDER BY cognome, nome, id"));
    ds->Open();
    auto *source = new TDataSource(page);
    source->setDataSet(ds);

    auto *box = new QGroupBox(QStringLiteral("Scheda dello studente"));
    auto *form = new QFormLayout;

    auto *matricola = new TMatricola(box);
    matricola->setDataFieldFacolta(QStringLiteral("facolta"));
    matricola->setDataFieldCorsoStudi(QStringLiteral("corso"));
    matricola->setDataFieldMatricola(QStringLiteral("matricola"));
    matricola->setDataSource(source);
    // A little wider than the default: the student-number part takes the extra width.
    matricola->setFixedSize(120, 21);
    form->addRow(QStringLiteral("Facoltà, corso e matricola:"), matricola);

    auto *anno = new TAnnoAccademico(box);
    anno->setDataField(QStringLiteral("anno_immatricolazione"));
    anno->setDataSource(source);
    anno->setFixedSize(anno->size());
    form->addRow(QStringLiteral("Anno accademico di immatricolazione:"), anno);

    form->addRow(QStringLiteral("Cognome:"), fieldEdit(source, QStringLiteral("cognome"), box));
    form->addRow(QStringLiteral("Nome:"), fieldEdit(source, QStringLiteral("nome"), box));
    TDBEditEnh *media = fieldEdit(source, QStringLiteral("media"), box);
    media->setDisplayType(dtGeneral);
    media->setDisplayFormat(QStringLiteral("#,##0.00"));
    media->setMaxLength(6);
    form->addRow(QStringLiteral("Media dei voti:"), media);

    auto *position = new QLabel;
    auto *state = new QLabel;
    const auto update = [ds, position, state] {
        position->setText(QStringLiteral("Studente %1 di %2").arg(ds->RecNo()).arg(ds->RecordCount()));
        state->setText(stateText(*ds));
    };
    source->OnDataChange = [update](TDataSource *, TField *) { update(); };
    source->OnStateChange = [update](TDataSource *) { update(); };
    update();

    auto *buttons = new QHBoxLayout;
    const QList<QPair<QString, std::function<void()>>> actions = {
        {QStringLiteral("Primo"), [ds] { ds->First(); }},
        {QStringLiteral("Precedente"), [ds] { ds->Prior(); }},
        {QStringLiteral("Successivo"), [ds] { ds->Next(); }},
        {QStringLiteral("Ultimo"), [ds] { ds->Last(); }},
        {QStringLiteral("Salva"), [ds] { if (ds->State() != dsBrowse) ds->Post(); }},
        {QStringLiteral("Annulla"), [ds] { ds->Cancel(); }},
    };
    for (const auto &action : actions) {
        auto *button = new QPushButton(action.first);
        QObject::connect(button, &QPushButton::clicked, box, [box, run = action.second] {
            try {
                run();
            } catch (...) {
                PostControlException(box, std::current_exception());
            }
        });
        buttons->addWidget(button);
    }
    buttons->addStretch();

    auto *layout = new QVBoxLayout(box);
    layout->addLayout(form);
    layout->addLayout(buttons);
    auto *status = new QHBoxLayout;
    status->addWidget(position);
    status->addStretch();
    status->addWidget(state);
    layout->addLayout(status);
    layout->addStretch();
    return box;
}

QWidget *createStudentsPage(DemoContext &context)
{
    auto *page = new QSplitter(Qt::Vertical);
    page->setObjectName(QStringLiteral("studentsSplitter"));
    page->addWidget(recordPanel(context, page));
    return page;
}

} // namespace

MATTONI_DEMO_PAGE(50, QStringLiteral("Studenti"), createStudentsPage);
