// The title-click sort of the extended grid on 100,000 records, against the same order set
// through IndexFieldNames on the same dataset, with the same grid showing it, in the same run.
// Each measure starts from the default order: a click on one string column, and a Shift-click
// that adds a second column to a sort on the first. Times are the main thread's processor time
// (the machine may be busy with other work) and, beside them, the wall-clock time.
//   bench_grid [repetitions, default 15]
#include "ClientDataSet.h"
#include "DBGridExt.h"
#include "DataSource.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QHeaderView>
#include <QRandomGenerator>
#include <QTest>
#include <QTextStream>

#include <algorithm>
#include <ctime>
#include <functional>
#include <utility>
#include <vector>

using namespace mattoni;

namespace {

constexpr int Rows = 100000;

void Fill(TClientDataSet &ds)
{
    static const char *const surnames[] = {"Rossi", "Russo", "Ferrari", "Esposito", "Bianchi", "Romano",
                                           "Colombo", "Ricci", "Marino", "Greco", "Bruno", "Gallo",
                                           "Conti", "De Luca", "Mancini", "Costa", "Giordano", "Rizzo"};
    static const char *const cities[] = {"Roma", "Milano", "Napoli", "Torino", "Palermo", "Genova",
                                         "Bologna", "Firenze", "Bari", "Catania"};
    ds.FieldDefs().Add(QStringLiteral("ID"), ftInteger);
    ds.FieldDefs().Add(QStringLiteral("COGNOME"), ftString, 30);
    ds.FieldDefs().Add(QStringLiteral("CITTA"), ftString, 20);
    ds.FieldDefs().Add(QStringLiteral("ANNO"), ftInteger);
    ds.CreateDataSet();
    QRandomGenerator rng(20240611);
    ds.DisableControls();
    for (int i = 1; i <= Rows; ++i) {
        // Surnames with a numbered suffix, so that most keys differ beyond their first letters.
        const QString surname = QStringLiteral("%1 %2").arg(QLatin1String(surnames[rng.bounded(18)])).arg(rng.bounded(100000));
        ds.AppendRecord({i, surname, QLatin1String(cities[rng.bounded(10)]), 2000 + rng.bounded(25)});
    }
    ds.EnableControls();
    ds.First();
}

double ThreadMilliseconds()
{
    timespec t;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return double(t.tv_sec) * 1e3 + double(t.tv_nsec) / 1e6;
}

double Median(std::vector<double> v)
{
    std::sort(v.begin(), v.end());
    return v[v.size() / 2];
}

struct Times
{
    std::vector<double> cpu, wall;
};

struct Run
{
    std::function<void()> reset;
    std::function<void()> measured;
};

// Milliseconds of each run's Measured part (after its Reset, not timed), the runs taking turns
// so that both meet the same load on a shared machine.
std::pair<Times, Times> Time(int repetitions, const Run &ours, const Run &reference)
{
    std::pair<Times, Times> times;
    for (int i = 0; i < repetitions; ++i) {
        for (const auto &[run, into] : {std::pair{&ours, &times.first}, std::pair{&reference, &times.second}}) {
            run->reset();
            QCoreApplication::processEvents();
            QElapsedTimer timer;
            timer.start();
            const double start = ThreadMilliseconds();
            run->measured();
            into->cpu.push_back(ThreadMilliseconds() - start);
            into->wall.push_back(double(timer.nsecsElapsed()) / 1e6);
            QCoreApplication::processEvents();
        }
    }
    return times;
}

} // namespace

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    const int repetitions = argc > 1 ? std::max(1, QString::fromLocal8Bit(argv[1]).toInt()) : 15;

    TClientDataSet ds;
    Fill(ds);
    TDataSource source;
    source.setDataSet(&ds);
    TDBGridExt grid;
    grid.setTitleSort(true);
    grid.setDataSource(&source);
    grid.resize(800, 500);
    grid.show();
    QCoreApplication::processEvents();

    auto click = [&](const char *field, Qt::KeyboardModifiers modifiers) {
        const int column = grid.FindFieldColumn(ds.FieldByName(QLatin1String(field)));
        QWidget *titles = grid.horizontalHeader()->viewport();
        QTest::mouseClick(titles, Qt::LeftButton, modifiers,
                          titles->mapFrom(&grid, grid.CellRect(grid.IndicatorOffset() + column, 0).center()));
    };
    auto defaultOrder = [&] {
        if (ds.IndexDefs().FindDef(QStringLiteral("SortGrid")))
            ds.DeleteIndex(QStringLiteral("SortGrid"));
        ds.setIndexFieldNames(QString());
    };

    struct Case
    {
        const char *name;
        std::pair<Times, Times> times;
    };
    std::vector<Case> cases;
    cases.push_back({"one string column",
                     Time(repetitions, {defaultOrder, [&] { click("COGNOME", Qt::NoModifier); }},
                          {defaultOrder, [&] { ds.setIndexFieldNames(QStringLiteral("COGNOME")); }})});
    cases.push_back({"two columns (Shift-click)",
                     Time(repetitions,
                          {[&] {
                               defaultOrder();
                               click("CITTA", Qt::NoModifier);
                           },
                           [&] { click("COGNOME", Qt::ShiftModifier); }},
                          {[&] {
                               defaultOrder();
                               ds.setIndexFieldNames(QStringLiteral("CITTA"));
                           },
                           [&] { ds.setIndexFieldNames(QStringLiteral("CITTA;COGNOME")); }})});

    QTextStream out(stdout);
    out << "Title-click sort of " << Rows << " records, median of " << repetitions
        << " runs, ms of processor time (wall clock)\n";
    out << qSetFieldWidth(28) << Qt::left << "case" << qSetFieldWidth(18) << Qt::right << "title click"
        << "IndexFieldNames" << qSetFieldWidth(8) << "ratio" << qSetFieldWidth(0) << "\n";
    for (const Case &c : cases) {
        const Times &oursTimes = c.times.first, &referenceTimes = c.times.second;
        const double ours = Median(oursTimes.cpu), reference = Median(referenceTimes.cpu);
        out << qSetFieldWidth(28) << Qt::left << c.name << qSetFieldWidth(18) << Qt::right
            << QStringLiteral("%1 (%2)").arg(ours, 0, 'f', 1).arg(Median(oursTimes.wall), 0, 'f', 1)
            << QStringLiteral("%1 (%2)").arg(reference, 0, 'f', 1).arg(Median(referenceTimes.wall), 0, 'f', 1)
            << qSetFieldWidth(8) << QString::number(ours / reference, 'f', 2) << qSetFieldWidth(0) << "\n";
    }
    return 0;
}
