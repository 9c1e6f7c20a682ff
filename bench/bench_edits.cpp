// Records per second scrolled through a client dataset with a student number, an academic year
// and an enhanced edit with a display format bound to it, against plain line edits that a data
// source's OnDataChange fills with the same texts (zero-padded, formatted) in the same run.
//   bench_edits [records, default 20000]
#include "AnnoAccademico.h"
#include "ClientDataSet.h"
#include "DataSource.h"
#include "EditEnh.h"
#include "FormatSettings.h"
#include "Formatting.h"
#include "Matricola.h"
#include "TextUtils.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QTextStream>

using namespace mattoni;

namespace {

void fill(TClientDataSet &ds, int records)
{
    ds.FieldDefs().Add(QStringLiteral("facolta"), ftString, 3);
    ds.FieldDefs().Add(QStringLiteral("corso"), ftString, 7);
    ds.FieldDefs().Add(QStringLiteral("matricola"), ftString, 6);
    ds.FieldDefs().Add(QStringLiteral("anno"), ftInteger);
    ds.FieldDefs().Add(QStringLiteral("media"), ftFloat);
    ds.CreateDataSet();
    for (int i = 0; i < records; ++i) {
        // Stored as typed, not padded: the controls pad them while browsing.
        ds.AppendRecord({QString::number(10 + i % 6 * 10), QString::number(100101 + i % 23),
                         QString::number(1 + i), 2000 + i % 27, 18 + i % 13 + (i % 4) / 4.0});
    }
}

// Records per second over a full scroll, the best of three.
double scrollRate(TClientDataSet &ds)
{
    double best = 0;
    for (int run = 0; run < 3; ++run) {
        QElapsedTimer timer;
        timer.start();
        for (ds.First(); !ds.Eof(); ds.Next()) {
        }
        best = qMax(best, ds.RecordCount() * 1e9 / double(qMax<qint64>(timer.nsecsElapsed(), 1)));
    }
    return best;
}

} // namespace

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    const int records = argc > 1 ? QString::fromLocal8Bit(argv[1]).toInt() : 20000;
    SetItalianFormatSettings();
    QTextStream out(stdout);
    out << "ratio: time per record with Mattoni's controls over that with the reference (2.00: twice as long)\n";

    TClientDataSet ds;
    fill(ds, records);
    QWidget form;

    TDataSource controlsSource;
    controlsSource.setDataSet(&ds);
    auto *matricola = new TMatricola(&form);
    matricola->setDataFieldFacolta(QStringLiteral("facolta"));
    matricola->setDataFieldCorsoStudi(QStringLiteral("corso"));
    matricola->setDataFieldMatricola(QStringLiteral("matricola"));
    auto *anno = new TAnnoAccademico(&form);
    anno->setDataField(QStringLiteral("anno"));
    auto *media = new TDBEditEnh(&form);
    media->setDataField(QStringLiteral("media"));
    media->setDisplayType(dtGeneral);
    media->setDisplayFormat(QStringLiteral("#,##0.00"));
    matricola->setDataSource(&controlsSource);
    anno->setDataSource(&controlsSource);
    media->setDataSource(&controlsSource);
    const double ours = scrollRate(ds);
    controlsSource.setDataSet(nullptr);

    // The same texts put into plain line edits by hand.
    TDataSource plainSource;
    QLineEdit *edits[6];
    for (QLineEdit *&edit : edits)
        edit = new QLineEdit(&form);
    const QList<TField *> fields = ds.GetFieldList(QStringLiteral("facolta;corso;matricola;anno;media"));
    plainSource.OnDataChange = [&](TDataSource *, TField *) {
        edits[0]->setText(LeadingZeroes(fields[0]->AsString(), 3));
        edits[1]->setText(LeadingZeroes(fields[1]->AsString(), 7));
        edits[2]->setText(LeadingZeroes(fields[2]->AsString(), 6));
        edits[3]->setText(FormatFloat(QStringLiteral("0000;0; "), fields[3]->AsInteger()));
        edits[4]->setText(FormatFloat(QStringLiteral("0000"), fields[3]->AsInteger() + 1));
        edits[5]->setText(FormatFloat(QStringLiteral("#,##0.00"), fields[4]->AsFloat()));
    };
    plainSource.setDataSet(&ds);
    const double reference = scrollRate(ds);

    out << QStringLiteral("%1 records/s   reference (line edits filled by OnDataChange) %2 records/s   ratio %3\n")
               .arg(ours, 10, 'f', 0)
               .arg(reference, 10, 'f', 0)
               .arg(reference / ours, 0, 'f', 2);
    return 0;
}
