// "Studenti": the office's main page. Above, the students in two lists: the extended grid sorts
// them in memory by its titles, the client grid has the database order them. Between them and
// the record, the data toolbar with the dataset's state. Below, the record of the chosen student:
// registration number, academic year of enrolment, fiscal code checked against the personal
// data, LEDs of the "in corso" and "tasse pagate" flags and the e-mail with its mail button.
// Saving writes the record back to the database with SQL built from the record's values.
#include "AMAdvLed.h"
#include "AnnoAccademico.h"
#include "ClientDataSet.h"
#include "CodFiscale.h"
#include "DBGridExt.h"
#include "DBToolClass.h"
#include "DataHelpers.h"
#include "DataSource.h"
#include "DemoPages.h"
#include "DemoWidgets.h"
#include "EditEnh.h"
#include "Exceptions.h"
#include "Formatting.h"
#include "ImageList.h"
#include "Matricola.h"
#include "Params.h"
#include "SqlFieldLiterals.h"
#include "URLComps.h"
#include "ViewGrid.h"
#include "fm_MessageBox.h"

#include "Ambiente.h"

#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QSplitter>
#include <QSqlError>
#include <QSqlQuery>
#include <QTabWidget>
#include <QVBoxLayout>

using namespace mattoni;

namespace {

// The columns written back to "studenti", as the record panel edits them.
const char *const storedColumns[] = {"matricola", "facolta", "corso", "cognome", "nome", "sesso", "data_nascita",
                                     "comune", "codice_fiscale", "anno_immatricolazione", "email", "in_corso",
                                     "tasse_pagate", "media"};

// ISO dates of the database shown the Italian way.
void ShowIsoDate(TField *field)
{
    field->OnGetText = [](TField *sender, QString &text, bool) {
        const QString iso = sender->AsString();
        text = iso.size() >= 10 ? iso.mid(8, 2) + QLatin1Char('/') + iso.mid(5, 2) + QLatin1Char('/') + iso.left(4) : iso;
    };
}

class StudentsPage : public QWidget
{
public:
    explicit StudentsPage(DemoContext &context)
        : m_db(context.db)
        , m_students(new TClientDataSet(this))
        , m_source(new TDataSource(this))
        , m_list(new TClientDataSet(this))
        , m_listSource(new TDataSource(this))
        , m_codeLed(new TAMAdvLed)
        , m_codeVerdict(new QLabel)
        , m_lastCommand(new QLabel)
        , m_position(new QLabel)
    {
        m_students->setObjectName(QStringLiteral("studenti"));
        m_students->setConnection(m_db);
        m_students->setCommandText(QStringLiteral(
            "SELECT s.id, s.matricola, s.cognome, s.nome, s.facolta, s.corso, s.anno_immatricolazione, "
            "s.in_corso, s.tasse_pagate, s.media, s.sesso, strftime('%d/%m/%Y', s.data_nascita) AS nascita, "
            "s.comune, c.nome AS luogo, s.codice_fiscale, s.email "
            "FROM studenti s LEFT JOIN comuni c ON c.codice = s.comune"));
        m_source->setDataSet(m_students);
        m_students->AfterOpen = [](TDataSet *ds) { ShowAverage(ds->FieldByName(QStringLiteral("media"))); };
        m_list->setConnection(m_db);
        m_list->setCommandText(QStringLiteral("SELECT id, matricola, cognome, nome, data_nascita, comune, media "
                                              "FROM studenti ORDER BY matricola"));
        m_list->setReadOnly(true);
        m_list->AfterOpen = [](TDataSet *ds) {
            ShowIsoDate(ds->FieldByName(QStringLiteral("data_nascita")));
            ShowAverage(ds->FieldByName(QStringLiteral("media")));
        };
        m_listSource->setDataSet(m_list);

        auto *toolbar = new DataToolbar(m_source, {dbPrev, dbSucc, dbInsert, dbEdit, dbPost, dbCancel, dbDelete,
                                                   dbRefresh, dbSearch});
        toolbar->SearchField = QStringLiteral("cognome");
        toolbar->OnBeforeAction = [this](QObject *, TDbAction action, bool &done) { BeforeAction(action, done); };
        toolbar->OnAfterAction = [this](QObject *, TDbAction action, bool &error) {
            if (action == dbRefresh && !error)
                RefreshList();
        };

        auto *lists = new QTabWidget;
        lists->addTab(MemoryGrid(), QStringLiteral("Ordine in memoria"));
        lists->addTab(ServerGrid(), QStringLiteral("Ordine del database"));

        auto *top = new QWidget;
        auto *topLayout = new QVBoxLayout(top);
        topLayout->setContentsMargins(0, 0, 0, 0);
        topLayout->addWidget(lists, 1);
        topLayout->addWidget(toolbar);

        auto *splitter = new QSplitter(Qt::Vertical);
        splitter->addWidget(top);
        splitter->addWidget(RecordPanel());
        splitter->setStretchFactor(0, 1);
        splitter->setChildrenCollapsible(false);

        auto *layout = new QVBoxLayout(this);
        layout->addWidget(IntroLabel(QStringLiteral(
            "Gli studenti iscritti. Un clic sul titolo di una colonna ordina l'elenco (Maiusc+clic aggiunge "
            "una colonna); nell'elenco ordinato dal database si tiene premuto Ctrl e si fa clic sui titoli "
            "(sinistro crescente, destro decrescente). La scheda mostra lo studente scelto.")));
        layout->addWidget(splitter, 1);

        WireDataSet();
        m_students->Open();
        m_list->Open();
        // The list opens sorted by surname, then name: the titles show both markers.
        m_grid->SortGrid(m_grid->Columns()[1], false, QStringLiteral("SortGrid"));
        m_grid->SortGrid(m_grid->Columns()[2], true, QStringLiteral("SortGrid"));
        m_students->First();
    }

private:
    QWidget *MemoryGrid()
    {
        m_grid = new TDBGridExt;
        AddColumns(m_grid, {{"matricola", "Matricola", 70},
                            {"cognome", "Cognome", 120},
                            {"nome", "Nome", 110},
                            {"facolta", "Facoltà", 60},
                            {"corso", "Corso", 70},
                            {"anno_immatricolazione", "Immatricolazione", 110},
                            {"in_corso", "In corso", 65},
                            {"tasse_pagate", "Tasse pagate", 90},
                            {"media", "Media", 60}});
        TEnhancedColumn *inCorso = m_grid->Column(6);
        inCorso->setCheck(true);
        inCorso->setValueChecked(QStringLiteral("S"));
        inCorso->setValueUnchecked(QStringLiteral("N"));
        TEnhancedColumn *tasse = m_grid->Column(7);
        tasse->setCheck(true);
        m_grid->Column(0)->setValidChar(QStringLiteral("0123456789"));
        // Surname and name take what the other columns leave of the width.
        for (int c : {1, 2}) {
            m_grid->Column(c)->setAutoResize(true);
            m_grid->Column(c)->setWidthMax(260);
        }
        m_grid->setAlternateColor(true);
        m_grid->setMultiSelect(true);
        m_grid->setTitleSort(true);
        m_grid->setDataSource(m_source);
        return m_grid;
    }

    QWidget *ServerGrid()
    {
        auto *box = new QWidget;
        auto *layout = new QVBoxLayout(box);
        layout->setContentsMargins(0, 0, 0, 0);
        auto *grid = new TClientDBGrid;
        AddColumns(grid, {{"matricola", "Matricola", 70},
                          {"cognome", "Cognome", 120},
                          {"nome", "Nome", 110},
                          {"data_nascita", "Data di nascita", 100},
                          {"comune", "Comune", 70},
                          {"media", "Media", 60}});
        grid->setOptions(grid->Options() & ~TDBGridOptions(dgEditing));
        grid->setDataSource(m_listSource);
        auto *command = new QLabel;
        command->setTextInteractionFlags(Qt::TextSelectableByMouse);
        command->setWordWrap(true);
        layout->addWidget(grid, 1);
        layout->addWidget(command);
        // Choosing a student in this list chooses it in the record too.
        m_listSource->OnDataChange = [this, command](TDataSource *, TField *field) {
            if (field)
                return;
            command->setText(QStringLiteral("Comando: ") + m_list->CommandText());
            if (m_following || m_list->State() != dsBrowse || m_list->IsEmpty())
                return;
            Follow(m_students, m_list);
        };
        return box;
    }

    QWidget *RecordPanel()
    {
        auto *box = new QGroupBox(QStringLiteral("Scheda dello studente"));
        auto *form = new QGridLayout(box);
        form->setColumnStretch(1, 1);
        form->setColumnStretch(3, 1);

        auto *matricola = new TMatricola;
        matricola->setDataFieldFacolta(QStringLiteral("facolta"));
        matricola->setDataFieldCorsoStudi(QStringLiteral("corso"));
        matricola->setDataFieldMatricola(QStringLiteral("matricola"));
        matricola->setDataSource(m_source);
        // Wider parts than the designed ones leave a gap after each number.
        matricola->setWidthFacolta(28);
        matricola->setWidthCorsoStudi(60);
        matricola->setFixedSize(28 + 60 + 48 + 5, 21);
        auto *anno = new TAnnoAccademico;
        anno->setDataField(QStringLiteral("anno_immatricolazione"));
        anno->setDataSource(m_source);
        anno->setFixedSize(anno->size());

        const auto edit = [this](const char *field, int maxLength = 0) {
            auto *e = new TDBEditEnh;
            e->setDataSource(m_source);
            e->setDataField(QLatin1String(field));
            e->setMaxLength(maxLength);
            return e;
        };
        const auto label = [](const QString &text) { return new QLabel(text); };
        const auto row = [](std::initializer_list<QWidget *> widgets, bool stretch = true) {
            auto *w = new QWidget;
            auto *l = new QHBoxLayout(w);
            l->setContentsMargins(0, 0, 0, 0);
            for (QWidget *x : widgets)
                l->addWidget(x);
            if (stretch)
                l->addStretch();
            return w;
        };

        form->addWidget(label(QStringLiteral("Matricola (facoltà, corso, numero):")), 0, 0);
        form->addWidget(row({matricola}), 0, 1);
        form->addWidget(label(QStringLiteral("Anno accademico di immatricolazione:")), 0, 2);
        form->addWidget(row({anno}), 0, 3);

        form->addWidget(label(QStringLiteral("Cognome:")), 1, 0);
        form->addWidget(edit("cognome", 40), 1, 1);
        form->addWidget(label(QStringLiteral("Nome:")), 1, 2);
        form->addWidget(edit("nome", 40), 1, 3);

        TDBEditEnh *sesso = edit("sesso", 1);
        sesso->setFixedWidth(30);
        TDBEditEnh *nascita = edit("nascita", 10);
        nascita->setFixedWidth(90);
        TDBEditEnh *comune = edit("comune", 4);
        comune->setFixedWidth(50);
        auto *luogo = new QLabel;
        form->addWidget(label(QStringLiteral("Sesso (M/F):")), 2, 0);
        form->addWidget(row({sesso, label(QStringLiteral("  nato/a il")), nascita}), 2, 1);
        form->addWidget(label(QStringLiteral("Comune di nascita:")), 2, 2);
        form->addWidget(row({comune, luogo}), 2, 3);

        m_codeLed->setLedType(TAMAdvLed::ltCheck);
        m_codeLed->setColorOn(clGreen);
        m_codeLed->setColorOff(clRed);
        form->addWidget(label(QStringLiteral("Codice fiscale:")), 3, 0);
        form->addWidget(row({edit("codice_fiscale", 16), m_codeLed, m_codeVerdict}, false), 3, 1, 1, 3);

        auto *mail = new TMAILSpeedButton;
        mail->setText(QStringLiteral("Scrivi"));
        mail->setDataSource(m_source);
        mail->setDataField(QStringLiteral("email"));
        mail->setToolTip(QStringLiteral("Scrivi allo studente"));
        form->addWidget(label(QStringLiteral("E-mail:")), 4, 0);
        form->addWidget(row({edit("email", 80), mail}, false), 4, 1, 1, 3);

        TDBEditEnh *media = edit("media", 6);
        media->setDisplayType(dtGeneral);
        media->setDisplayFormat(QStringLiteral("#,##0.00"));
        media->setFixedWidth(60);
        const auto flag = [this](const char *field, const QString &on, const QString &off, const QString &checked,
                                 const QString &unchecked) {
            auto *led = new TDBAMAdvLed;
            led->setDataSource(m_source);
            led->setDataField(QLatin1String(field));
            led->setValueChecked(on);
            led->setValueUnchecked(off);
            led->setHintChecked(checked);
            led->setHintUnchecked(unchecked);
            led->setCaption(checked);
            LedLook::Instance().Follow(led);
            led->setColorOn(clLime);
            led->setColorOff(clRed);
            return led;
        };
        form->addWidget(label(QStringLiteral("Media dei voti:")), 5, 0);
        form->addWidget(row({media}), 5, 1);
        form->addWidget(row({flag("in_corso", QStringLiteral("S"), QStringLiteral("N"), QStringLiteral("In corso"),
                                  QStringLiteral("Fuori corso")),
                             flag("tasse_pagate", QStringLiteral("1"), QStringLiteral("0"),
                                  QStringLiteral("Tasse pagate"), QStringLiteral("Tasse da pagare"))}),
                        5, 2, 1, 2);

        auto *images = new TCustomImageList(20, 20, box);
        DrawStateImages(images);
        auto *state = new TDBImageState;
        state->setImages(images);
        state->setDataSource(m_source);
        auto *stateText = new QLabel;
        m_lastCommand->setWordWrap(true);
        m_lastCommand->setTextInteractionFlags(Qt::TextSelectableByMouse);
        m_lastCommand->setStyleSheet(QStringLiteral("color: palette(dark)"));
        auto *status = new QHBoxLayout;
        status->addWidget(state);
        status->addWidget(stateText);
        status->addSpacing(12);
        status->addWidget(m_position);
        status->addSpacing(12);
        status->addWidget(m_lastCommand, 1);
        form->addLayout(status, 6, 0, 1, 4);
        form->setRowStretch(7, 1);

        m_source->OnStateChange = [this, stateText](TDataSource *s) {
            stateText->setText(DataSetStateName(s->State()));
            ShowPosition();
        };
        m_source->OnDataChange = [this, luogo](TDataSource *, TField *field) {
            if (!m_students->Active())
                return;
            luogo->setText(m_students->FieldByName(QStringLiteral("luogo"))->AsString());
            CheckFiscalCode();
            ShowPosition();
            if (!field && !m_following && m_students->State() == dsBrowse && m_list->Active())
                Follow(m_list, m_students);
        };
        return box;
    }

    void WireDataSet()
    {
        m_students->OnNewRecord = [this](TDataSet *ds) {
            QSqlQuery q(m_db);
            q.exec(QStringLiteral("SELECT COALESCE(MAX(id), 0) + 1, COALESCE(MAX(matricola), 100000) + 1 FROM studenti"));
            q.next();
            ds->FieldByName(QStringLiteral("id"))->setAsInteger(q.value(0).toInt());
            ds->FieldByName(QStringLiteral("matricola"))->setAsString(
                QStringLiteral("%1").arg(q.value(1).toInt(), 6, 10, QLatin1Char('0')));
            ds->FieldByName(QStringLiteral("facolta"))->setAsString(QStringLiteral("010"));
            ds->FieldByName(QStringLiteral("corso"))->setAsString(QStringLiteral("0100101"));
            ds->FieldByName(QStringLiteral("anno_immatricolazione"))->setAsInteger(Esercizio);
            ds->FieldByName(QStringLiteral("in_corso"))->setAsString(QStringLiteral("S"));
            ds->FieldByName(QStringLiteral("tasse_pagate"))->setAsInteger(0);
        };
        m_students->BeforePost = [this](TDataSet *) { CheckBeforePost(); };
        m_students->AfterPost = [this](TDataSet *) { WriteBack(); };
    }

    void BeforeAction(TDbAction action, bool &done)
    {
        if (action != dbDelete || m_students->IsEmpty())
            return;
        const QString who = m_students->FieldByName(QStringLiteral("cognome"))->AsString() + QLatin1Char(' ')
            + m_students->FieldByName(QStringLiteral("nome"))->AsString();
        if (!BoxConferma(QStringLiteral("Eliminare lo studente %1 e le sue tasse?").arg(who))) {
            done = true;
            return;
        }
        const int id = m_students->FieldByName(QStringLiteral("id"))->AsInteger();
        Execute(QStringLiteral("DELETE FROM tasse WHERE studente = %1").arg(id));
        Execute(QStringLiteral("DELETE FROM studenti WHERE id = %1").arg(id));
        m_students->Delete();
        RefreshList();
        done = true;
    }

    // A record that cannot be saved stays in edit: the user is told why.
    void CheckBeforePost()
    {
        for (const char *required : {"cognome", "nome", "sesso", "nascita", "comune"}) {
            if (m_students->FieldByName(QLatin1String(required))->AsString().trimmed().isEmpty()) {
                BoxErrore(QStringLiteral("Manca il dato \"%1\" dello studente.").arg(QLatin1String(required)));
                throw EAbort(QString());
            }
        }
        TDateTime birth = 0;
        if (!TryStrToDate(m_students->FieldByName(QStringLiteral("nascita"))->AsString(), birth)) {
            BoxErrore(QStringLiteral("La data di nascita non è valida: si scrive gg/mm/aaaa."));
            throw EAbort(QString());
        }
        if (!FiscalCodeMatches()
            && !BoxConferma(QStringLiteral("Il codice fiscale non corrisponde ai dati anagrafici. Salvare comunque?")))
            throw EAbort(QString());
    }

    // The record goes back to the database as an UPDATE (or an INSERT) whose values are the SQL
    // literals of the record's fields, in the dialect of TipoDatabase.
    void WriteBack()
    {
        TParams params;
        CloneToParams(m_students, params);
        // The record shows the date of birth as text; the database gets it as a date literal.
        TDateTime birth = 0;
        TryStrToDate(m_students->FieldByName(QStringLiteral("nascita"))->AsString(), birth);
        params.CreateParam(ftDate, QStringLiteral("data_nascita"), ptInput)->setAsDateTime(birth);
        const int id = m_students->FieldByName(QStringLiteral("id"))->AsInteger();
        QSqlQuery exists(m_db);
        exists.exec(QStringLiteral("SELECT 1 FROM studenti WHERE id = %1").arg(id));
        QStringList parts;
        if (exists.next()) {
            for (const char *column : storedColumns)
                parts << GetUpdateStringField(params, QLatin1String(column));
            Execute(QStringLiteral("UPDATE studenti SET %1 WHERE id = %2").arg(parts.join(QStringLiteral(", "))).arg(id));
        } else {
            QStringList names;
            for (const char *column : storedColumns) {
                names << QLatin1String(column);
                parts << GetInsertStringField(params, QLatin1String(column));
            }
            Execute(QStringLiteral("INSERT INTO studenti (id, %1) VALUES (%2, %3)")
                        .arg(names.join(QStringLiteral(", ")))
                        .arg(id)
                        .arg(parts.join(QStringLiteral(", "))));
        }
        RefreshList();
    }

    void Execute(const QString &sql)
    {
        QSqlQuery q(m_db);
        if (!q.exec(sql))
            throw EDatabaseError(q.lastError().text());
        m_lastCommand->setText(QStringLiteral("Ultimo comando: ") + sql);
    }

    // The second list shows what the database holds; it follows the record by its id.
    void RefreshList()
    {
        m_following = true;
        m_list->Close();
        m_list->Open();
        m_following = false;
        Follow(m_list, m_students);
    }

    void Follow(TClientDataSet *follower, TClientDataSet *leader)
    {
        m_following = true;
        const QVariant id = leader->FieldByName(QStringLiteral("id"))->Value();
        if (follower->FieldByName(QStringLiteral("id"))->Value() != id)
            follower->Locate(QStringLiteral("id"), id);
        m_following = false;
    }

    bool FiscalCodeMatches(QString *computed = nullptr)
    {
        TCodiceFiscale cf;
        const auto text = [this](const char *field) { return m_students->FieldByName(QLatin1String(field))->AsString(); };
        cf.setCognome(text("cognome"));
        cf.setNome(text("nome"));
        const QString sex = text("sesso").trimmed();
        cf.setSesso(sex.isEmpty() ? QChar() : sex.at(0));
        cf.setDataNascita(text("nascita"));
        cf.setCodiceBelfiore(text("comune"));
        QString code;
        try {
            code = cf.Get();
        } catch (const EConvertError &) {
        }
        if (computed)
            *computed = code;
        return !code.isEmpty() && code == text("codice_fiscale").trimmed().toUpper();
    }

    void CheckFiscalCode()
    {
        const QString code = m_students->FieldByName(QStringLiteral("codice_fiscale"))->AsString().trimmed().toUpper();
        QString computed;
        const bool matches = FiscalCodeMatches(&computed);
        m_codeLed->setLedOn(matches);
        if (matches)
            m_codeVerdict->setText(QStringLiteral("corrisponde ai dati anagrafici"));
        else if (!TCodiceFiscale::IsCheckDigit(code))
            m_codeVerdict->setText(QStringLiteral("carattere di controllo errato"));
        else if (computed.isEmpty())
            m_codeVerdict->setText(QStringLiteral("dati anagrafici incompleti"));
        else
            m_codeVerdict->setText(QStringLiteral("non corrisponde ai dati: dai dati risulta %1").arg(computed));
    }

    void ShowPosition()
    {
        if (m_students->Active())
            m_position->setText(QStringLiteral("Studente %1 di %2").arg(m_students->RecNo()).arg(m_students->RecordCount()));
    }

    QSqlDatabase m_db;
    TClientDataSet *m_students;
    TDataSource *m_source;
    TClientDataSet *m_list;
    TDataSource *m_listSource;
    TDBGridExt *m_grid = nullptr;
    TAMAdvLed *m_codeLed;
    QLabel *m_codeVerdict;
    QLabel *m_lastCommand;
    QLabel *m_position;
    bool m_following = false;
};

} // namespace

MATTONI_DEMO_PAGE(10, QStringLiteral("Studenti"), [](DemoContext &context) -> QWidget * {
    return new StudentsPage(context);
});
