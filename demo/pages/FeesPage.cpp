// "Tasse": the fee instalments of one student. The extended grid lists them, a memory table sums
// them up by academic year, the calendar gives the date of a payment and the receipt writes the
// amount in words, as on a cheque.
#include "CifrLett.h"
#include "ClientDataSet.h"
#include "DBGridExt.h"
#include "DataSource.h"
#include "DemoPages.h"
#include "DemoWidgets.h"
#include "Exceptions.h"
#include "Fields.h"
#include "Formatting.h"
#include "MemDS.h"
#include "NumberHelpers.h"
#include "Params.h"
#include "SqlLiterals.h"
#include "calendario.h"
#include "fm_MessageBox.h"

#include <QComboBox>
#include <QCompleter>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSqlError>
#include <QSqlQuery>
#include <QVBoxLayout>

#include <map>

using namespace mattoni;

namespace {

QString Euro(double amount)
{
    return QStringLiteral("€ ") + FormatValuta(amount, 2);
}

class FeesPage : public QWidget
{
public:
    explicit FeesPage(DemoContext &context)
        : m_db(context.db)
        , m_student(new QComboBox)
        , m_fees(new TClientDataSet(this))
        , m_feesSource(new TDataSource(this))
        , m_summary(new TMemData(this))
        , m_summarySource(new TDataSource(this))
        , m_calendar(new TinCalendar)
        , m_receipt(new QLabel)
        , m_words(new QLabel)
        , m_pay(new QPushButton(QStringLiteral("Registra il pagamento")))
    {
        m_fees->setConnection(m_db);
        m_fees->setCommandText(QStringLiteral(
            "SELECT id, anno_accademico || '/' || (anno_accademico + 1) AS anno, rata, importo, pagata, "
            "strftime('%d/%m/%Y', data_pagamento) AS pagata_il FROM tasse WHERE studente = :studente "
            "ORDER BY anno_accademico, rata"));
        m_fees->Params().CreateParam(ftInteger, QStringLiteral("studente"), ptInput);
        m_fees->setReadOnly(true);
        m_fees->AfterOpen = [](TDataSet *ds) {
            static_cast<TFloatField *>(ds->FieldByName(QStringLiteral("importo")))->setCurrency(true);
        };
        m_feesSource->setDataSet(m_fees);
        m_summarySource->setDataSet(m_summary);
        m_summary->FieldDefs().Add(QStringLiteral("anno"), ftString, 9);
        m_summary->FieldDefs().Add(QStringLiteral("dovuto"), ftCurrency);
        m_summary->FieldDefs().Add(QStringLiteral("pagato"), ftCurrency);
        m_summary->FieldDefs().Add(QStringLiteral("residuo"), ftCurrency);

        auto *chooser = new QHBoxLayout;
        chooser->addWidget(new QLabel(QStringLiteral("Studente:")));
        chooser->addWidget(m_student, 1);
        FillStudents();

        auto *left = new QVBoxLayout;
        left->addLayout(chooser);
        left->addWidget(FeesBox(), 3);
        left->addWidget(SummaryBox(), 2);

        auto *right = new QVBoxLayout;
        right->addWidget(PaymentBox());
        right->addStretch();

        auto *columns = new QHBoxLayout;
        columns->addLayout(left, 3);
        columns->addLayout(right, 2);

        auto *layout = new QVBoxLayout(this);
        layout->addWidget(IntroLabel(QStringLiteral(
            "Le rate delle tasse di uno studente. Si sceglie la rata, si indica sul calendario il giorno del "
            "versamento e si registra il pagamento; la ricevuta riporta l'importo in lettere, come su un assegno.")));
        layout->addLayout(columns, 1);

        connect(m_student, &QComboBox::currentIndexChanged, this, [this] { OpenFees(); });
        m_feesSource->OnDataChange = [this](TDataSource *, TField *) { ShowReceipt(); };
        m_calendar->OnChange = [this](QObject *) { ShowReceipt(); };
        connect(m_pay, &QPushButton::clicked, this, [this] { RunGuarded([this] { Pay(); }); });
        OpenFees();
        // Start on the first instalment still to pay.
        m_fees->Locate(QStringLiteral("pagata"), 0);
    }

private:
    void FillStudents()
    {
        // Students who still owe something come first.
        QSqlQuery q(m_db);
        q.exec(QStringLiteral(
            "SELECT s.id, s.cognome || ' ' || s.nome || ' (matricola ' || s.matricola || ')', "
            "MIN(t.pagata) FROM studenti s JOIN tasse t ON t.studente = s.id "
            "GROUP BY s.id ORDER BY MIN(t.pagata), s.cognome, s.nome"));
        while (q.next())
            m_student->addItem(q.value(1).toString(), q.value(0));
        m_student->setEditable(true);
        m_student->setInsertPolicy(QComboBox::NoInsert);
        m_student->completer()->setFilterMode(Qt::MatchContains);
        m_student->completer()->setCompletionMode(QCompleter::PopupCompletion);
    }

    QWidget *FeesBox()
    {
        auto *box = new QGroupBox(QStringLiteral("Rate"));
        auto *layout = new QVBoxLayout(box);
        m_grid = new TDBGridExt;
        AddColumns(m_grid, {{"anno", "Anno accademico", 120},
                            {"rata", "Rata", 50},
                            {"importo", "Importo", 100},
                            {"pagata", "Pagata", 60},
                            {"pagata_il", "Pagata il", 90}});
        m_grid->Column(3)->setCheck(true);
        m_grid->setOptions(m_grid->Options() & ~TDBGridOptions(dgEditing));
        m_grid->setTitleSort(true);
        m_grid->setDataSource(m_feesSource);
        layout->addWidget(m_grid);
        return box;
    }

    QWidget *SummaryBox()
    {
        auto *box = new QGroupBox(QStringLiteral("Riepilogo per anno accademico"));
        auto *layout = new QVBoxLayout(box);
        auto *grid = new TDBGridExt;
        AddColumns(grid, {{"anno", "Anno accademico", 120},
                          {"dovuto", "Dovuto", 100},
                          {"pagato", "Pagato", 100},
                          {"residuo", "Da pagare", 100}});
        grid->setOptions(grid->Options() & ~TDBGridOptions(dgEditing));
        grid->setDataSource(m_summarySource);
        layout->addWidget(grid);
        return box;
    }

    QWidget *PaymentBox()
    {
        auto *box = new QGroupBox(QStringLiteral("Versamento"));
        auto *layout = new QVBoxLayout(box);
        m_calendar->setWeekends({Sab, Dom});
        m_calendar->setMinimumSize(300, 170);
        auto *months = new QHBoxLayout;
        const auto step = [this, months](const QString &text, void (TinCalendar::*move)()) {
            auto *b = new QPushButton(text);
            connect(b, &QPushButton::clicked, m_calendar, [this, move] { (m_calendar->*move)(); });
            months->addWidget(b);
        };
        step(QStringLiteral("‹ Mese"), &TinCalendar::PrevMonth);
        months->addStretch();
        m_month = new QLabel;
        m_month->setStyleSheet(QStringLiteral("font-weight: bold"));
        months->addWidget(m_month);
        months->addStretch();
        step(QStringLiteral("Mese ›"), &TinCalendar::NextMonth);
        layout->addWidget(new QLabel(QStringLiteral("Giorno del versamento:")));
        layout->addLayout(months);
        layout->addWidget(m_calendar);

        // The receipt, laid out as the paper one.
        auto *paper = new QFrame;
        paper->setFrameShape(QFrame::Box);
        paper->setStyleSheet(QStringLiteral("QFrame { background: #fffbf0; } QLabel { background: transparent; }"));
        auto *paperLayout = new QVBoxLayout(paper);
        auto *heading = new QLabel(QStringLiteral("Ateneo di esempio - Segreteria studenti\nRicevuta di versamento"));
        heading->setStyleSheet(QStringLiteral("font-weight: bold"));
        paperLayout->addWidget(heading);
        m_receipt->setWordWrap(true);
        paperLayout->addWidget(m_receipt);
        m_words->setStyleSheet(QStringLiteral("font-style: italic; font-size: 11pt"));
        m_words->setWordWrap(true);
        paperLayout->addWidget(m_words);
        layout->addWidget(paper);
        layout->addWidget(m_pay, 0, Qt::AlignRight);
        return box;
    }

    void OpenFees()
    {
        m_fees->Close();
        m_fees->Params().ParamByName(QStringLiteral("studente"))->setAsInteger(m_student->currentData().toInt());
        m_fees->Open();
        FillSummary();
    }

    // The memory table is made again for every student: one row per academic year.
    void FillSummary()
    {
        struct Totals
        {
            double due = 0;
            double paid = 0;
        };
        std::map<QString, Totals> years;
        const TBookmark here = m_fees->Bookmark();
        m_fees->DisableControls();
        for (m_fees->First(); !m_fees->Eof(); m_fees->Next()) {
            Totals &t = years[m_fees->FieldByName(QStringLiteral("anno"))->AsString()];
            const double amount = m_fees->FieldByName(QStringLiteral("importo"))->AsFloat();
            t.due += amount;
            if (m_fees->FieldByName(QStringLiteral("pagata"))->AsInteger() == 1)
                t.paid += amount;
        }
        m_fees->GotoBookmark(here);
        m_fees->EnableControls();
        m_summary->Open();
        for (const auto &[year, t] : years) {
            m_summary->Append();
            m_summary->FieldByName(QStringLiteral("anno"))->setAsString(year);
            m_summary->FieldByName(QStringLiteral("dovuto"))->setAsFloat(t.due);
            m_summary->FieldByName(QStringLiteral("pagato"))->setAsFloat(t.paid);
            m_summary->FieldByName(QStringLiteral("residuo"))->setAsFloat(t.due - t.paid);
            m_summary->Post();
        }
        m_summary->First();
    }

    void ShowReceipt()
    {
        m_month->setText(FormatDateTime(QStringLiteral("mmmm yyyy"), m_calendar->CalendarDate()));
        if (!m_fees->Active() || m_fees->IsEmpty()) {
            m_receipt->setText(QStringLiteral("Nessuna rata."));
            m_words->clear();
            m_pay->setEnabled(false);
            return;
        }
        const double amount = m_fees->FieldByName(QStringLiteral("importo"))->AsFloat();
        const bool paid = m_fees->FieldByName(QStringLiteral("pagata"))->AsInteger() == 1;
        const QString day = paid ? m_fees->FieldByName(QStringLiteral("pagata_il"))->AsString()
                                 : DateToStr(m_calendar->CalendarDate());
        m_receipt->setText(QStringLiteral("Studente: %1\nRata %2 dell'anno accademico %3\nImporto: %4\nData del versamento: %5%6")
                               .arg(m_student->currentText())
                               .arg(m_fees->FieldByName(QStringLiteral("rata"))->AsString())
                               .arg(m_fees->FieldByName(QStringLiteral("anno"))->AsString())
                               .arg(Euro(amount))
                               .arg(day)
                               .arg(paid ? QStringLiteral(" (già registrato)") : QString()));
        m_words->setText(QStringLiteral("La somma di euro %1").arg(CurrencyToText(Currency(amount))));
        m_pay->setEnabled(!paid);
    }

    void Pay()
    {
        const double amount = m_fees->FieldByName(QStringLiteral("importo"))->AsFloat();
        const QString day = DateToStr(m_calendar->CalendarDate());
        if (!BoxConferma(QStringLiteral("Registrare il pagamento di %1 (%2) con data %3?")
                             .arg(Euro(amount), CurrencyToText(Currency(amount)), day)))
            return;
        const int feeId = m_fees->FieldByName(QStringLiteral("id"))->AsInteger();
        const int studentId = m_student->currentData().toInt();
        QSqlQuery q(m_db);
        if (!q.exec(QStringLiteral("UPDATE tasse SET pagata = 1, data_pagamento = %1 WHERE id = %2")
                        .arg(GetFormattedDate(QVariant(m_calendar->CalendarDate())))
                        .arg(feeId)))
            throw EDatabaseError(q.lastError().text());
        q.prepare(QStringLiteral("UPDATE studenti SET tasse_pagate = (SELECT MIN(pagata) FROM tasse WHERE studente = ?) "
                                 "WHERE id = ?"));
        q.addBindValue(studentId);
        q.addBindValue(studentId);
        if (!q.exec())
            throw EDatabaseError(q.lastError().text());
        OpenFees();
        m_fees->Locate(QStringLiteral("id"), feeId);
        BoxInformazione(QStringLiteral("Pagamento registrato."));
    }

    QSqlDatabase m_db;
    QComboBox *m_student;
    TClientDataSet *m_fees;
    TDataSource *m_feesSource;
    TMemData *m_summary;
    TDataSource *m_summarySource;
    TDBGridExt *m_grid = nullptr;
    TinCalendar *m_calendar;
    QLabel *m_month = nullptr;
    QLabel *m_receipt;
    QLabel *m_words;
    QPushButton *m_pay;
};

} // namespace

MATTONI_DEMO_PAGE(15, QStringLiteral("Tasse"), [](DemoContext &context) -> QWidget * { return new FeesPage(context); });
