// The in-memory dataset against SQLite in the same run.
//
// 1. Sorting: a million rows of five fields loaded from an SQLite file into a TClientDataSet
//    through CommandText, then sorted on a text field by IndexFieldNames and by AddIndex with
//    the field descending; the reference is SQLite's own ORDER BY (ascending, descending) over
//    the same rows in an in-memory table, every row stepped through. Memory per row is printed.
// 2. Tree reading: a 100,000-row self-referencing table; the roots read with First/Next as a
//    tree view does, and the 10,000 children of one node read through Locate and Filter; the
//    reference is SQLite selecting the same rows through an index.
//
//   bench_clientdataset [rows, default 1000000]
#include "ClientDataSet.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QRandomGenerator>
#include <QSqlDatabase>
#include <QTemporaryDir>
#include <QTextStream>

#include <sqlite3.h>

#include <functional>

using namespace mattoni;

namespace {

QTextStream out(stdout);

void check(int rc, sqlite3 *db, const char *what)
{
    if (rc != SQLITE_OK && rc != SQLITE_DONE && rc != SQLITE_ROW) {
        out << what << ": " << sqlite3_errmsg(db) << Qt::endl;
        std::exit(1);
    }
}

void exec(sqlite3 *db, const char *sql)
{
    check(sqlite3_exec(db, sql, nullptr, nullptr, nullptr), db, sql);
}

// Milliseconds of the fastest of three runs; Reset runs after each, untimed.
double best(const std::function<void()> &run, const std::function<void()> &reset = {})
{
    double fastest = 1e18;
    for (int i = 0; i < 3; ++i) {
        QElapsedTimer t;
        t.start();
        run();
        fastest = std::min(fastest, t.nsecsElapsed() / 1e6);
        if (reset)
            reset();
    }
    return fastest;
}

// Steps through every row of a query; returns the rows seen.
qint64 stepAll(sqlite3 *db, const char *sql)
{
    sqlite3_stmt *stmt = nullptr;
    check(sqlite3_prepare_v2(db, sql, -1, &stmt, nullptr), db, sql);
    qint64 rows = 0;
    while (sqlite3_step(stmt) == SQLITE_ROW)
        ++rows;
    sqlite3_finalize(stmt);
    return rows;
}

qint64 residentBytes()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith("VmRSS:"))
            return line.mid(6).trimmed().split(' ').first().toLongLong() * 1024;
    }
    return 0;
}

QString surname(QRandomGenerator &rng)
{
    static const char *const syllables[] = {"ro", "ssi", "bian", "chi", "es", "po", "si", "to", "co", "lom",
                                            "bo", "ric", "ci", "ma", "ri", "no", "gre", "de", "lu", "ca",
                                            "fer", "ra", "ga", "lli", "con", "ti", "mo", "ret", "sa", "le"};
    QString s;
    const int parts = 2 + int(rng.bounded(3));
    for (int i = 0; i < parts; ++i)
        s += QLatin1String(syllables[rng.bounded(30)]);
    s[0] = s[0].toUpper();
    return s;
}

void fill(sqlite3 *db, int rows)
{
    static const char *const names[] = {"Mario", "Anna", "Luca", "Giulia", "Paolo", "Sara", "Marco", "Elena"};
    QRandomGenerator rng(2013);
    exec(db, "CREATE TABLE studenti (id INTEGER, cognome TEXT, nome TEXT, media REAL, iscrizione INTEGER)");
    exec(db, "BEGIN");
    sqlite3_stmt *ins = nullptr;
    check(sqlite3_prepare_v2(db, "INSERT INTO studenti VALUES (?, ?, ?, ?, ?)", -1, &ins, nullptr), db, "insert");
    for (int i = 1; i <= rows; ++i) {
        const QByteArray s = surname(rng).toUtf8();
        sqlite3_bind_int(ins, 1, i);
        sqlite3_bind_text(ins, 2, s.constData(), int(s.size()), SQLITE_TRANSIENT);
        sqlite3_bind_text(ins, 3, names[rng.bounded(8)], -1, SQLITE_STATIC);
        sqlite3_bind_double(ins, 4, 18 + rng.bounded(1300) / 100.0);
        sqlite3_bind_int(ins, 5, 1990 + int(rng.bounded(35)));
        sqlite3_step(ins);
        sqlite3_reset(ins);
    }
    sqlite3_finalize(ins);
    exec(db, "COMMIT");
}

void fillTree(sqlite3 *db)
{
    // 1,000 roots; node 1001 has 10,000 children; the rest hang under the roots.
    exec(db, "CREATE TABLE nodi (id INTEGER, padre INTEGER, nome TEXT)");
    exec(db, "BEGIN");
    sqlite3_stmt *ins = nullptr;
    check(sqlite3_prepare_v2(db, "INSERT INTO nodi VALUES (?, ?, ?)", -1, &ins, nullptr), db, "insert");
    for (int id = 1; id <= 100000; ++id) {
        sqlite3_bind_int(ins, 1, id);
        if (id <= 1000)
            sqlite3_bind_null(ins, 2);
        else if (id > 1001 && id <= 11001)
            sqlite3_bind_int(ins, 2, 1001);
        else
            sqlite3_bind_int(ins, 2, 1 + id % 1000);
        const QByteArray name = QByteArray("nodo ") + QByteArray::number(id);
        sqlite3_bind_text(ins, 3, name.constData(), -1, SQLITE_TRANSIENT);
        sqlite3_step(ins);
        sqlite3_reset(ins);
    }
    sqlite3_finalize(ins);
    exec(db, "COMMIT");
}

void line(const QString &what, double ours, double reference)
{
    out << qSetFieldWidth(44) << Qt::left << what << qSetFieldWidth(0) << QString::number(ours, 'f', 1) << " ms   "
        << "sqlite3 " << QString::number(reference, 'f', 1) << " ms   ratio " << QString::number(ours / reference, 'f', 2)
        << Qt::endl;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const int rows = argc > 1 ? QByteArray(argv[1]).toInt() : 1000000;
    QTemporaryDir dir;
    const QByteArray file = dir.filePath(QStringLiteral("bench.sqlite")).toUtf8();

    sqlite3 *disk = nullptr;
    check(sqlite3_open(file.constData(), &disk), disk, "open");
    exec(disk, "PRAGMA journal_mode = OFF");
    exec(disk, "PRAGMA synchronous = OFF");
    fill(disk, rows);
    fillTree(disk);
    sqlite3_close(disk);

    // The reference: the same rows in an in-memory SQLite table.
    sqlite3 *memory = nullptr;
    check(sqlite3_open(":memory:", &memory), memory, "open");
    exec(memory, (QByteArray("ATTACH '") + file + "' AS f").constData());
    exec(memory, "CREATE TABLE studenti AS SELECT * FROM f.studenti");
    exec(memory, "CREATE TABLE nodi AS SELECT * FROM f.nodi");
    exec(memory, "CREATE INDEX nodi_padre ON nodi (padre)");
    exec(memory, "CREATE INDEX nodi_id ON nodi (id)");
    exec(memory, "DETACH f");

    QSqlDatabase qdb = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("bench"));
    qdb.setDatabaseName(QString::fromUtf8(file));
    qdb.open();

    out << "Rows: " << rows << ", five fields (id, cognome, nome, media, iscrizione)" << Qt::endl;
    {
        TClientDataSet ds;
        ds.setConnectionName(QStringLiteral("bench"));
        ds.setCommandText(QStringLiteral("SELECT * FROM studenti"));
        const qint64 before = residentBytes();
        QElapsedTimer load;
        load.start();
        ds.Open();
        const double loadMs = load.nsecsElapsed() / 1e6;
        const qint64 after = residentBytes();
        out << "Load through CommandText: " << QString::number(loadMs, 'f', 0) << " ms, " << ds.RecordCount()
            << " records" << Qt::endl;
        out << "Memory per row: " << QString::number(double(ds.DataSize()) / rows, 'f', 1)
            << " bytes held by the dataset, " << QString::number(double(after - before) / rows, 'f', 1)
            << " bytes of resident memory" << Qt::endl;

        const double sqlAsc = best([&] { stepAll(memory, "SELECT * FROM studenti ORDER BY cognome"); });
        const auto defaultOrder = [&] { ds.setIndexFieldNames(QString()); };
        const double ourAsc = best([&] { ds.setIndexFieldNames(QStringLiteral("cognome")); }, defaultOrder);
        line(QStringLiteral("IndexFieldNames \"cognome\""), ourAsc, sqlAsc);

        const double sqlDesc = best([&] { stepAll(memory, "SELECT * FROM studenti ORDER BY cognome DESC"); });
        const auto dropIndex = [&](const QString &name) {
            return [&ds, name] {
                ds.setIndexName(QString());
                ds.DeleteIndex(name);
            };
        };
        const double ourDesc = best([&] {
            ds.AddIndex(QStringLiteral("Desc"), QStringLiteral("cognome"), {}, QStringLiteral("cognome"));
            ds.setIndexName(QStringLiteral("Desc"));
        }, dropIndex(QStringLiteral("Desc")));
        line(QStringLiteral("AddIndex \"cognome\" descending"), ourDesc, sqlDesc);

        const double sqlCi = best([&] { stepAll(memory, "SELECT * FROM studenti ORDER BY cognome COLLATE NOCASE"); });
        const double ourCi = best([&] {
            ds.AddIndex(QStringLiteral("Ci"), QStringLiteral("cognome"), ixCaseInsensitive);
            ds.setIndexName(QStringLiteral("Ci"));
        }, dropIndex(QStringLiteral("Ci")));
        line(QStringLiteral("AddIndex \"cognome\" case-insensitive"), ourCi, sqlCi);

        const double sqlTwo = best([&] { stepAll(memory, "SELECT * FROM studenti ORDER BY iscrizione, cognome"); });
        const double ourTwo = best([&] { ds.setIndexFieldNames(QStringLiteral("iscrizione;cognome")); }, defaultOrder);
        line(QStringLiteral("IndexFieldNames \"iscrizione;cognome\""), ourTwo, sqlTwo);
    }

    out << Qt::endl << "Tree: 100,000 nodes, 1,000 roots, one node with 10,000 children" << Qt::endl;
    {
        TClientDataSet ds;
        ds.setConnectionName(QStringLiteral("bench"));
        ds.setCommandText(QStringLiteral("SELECT * FROM nodi"));
        ds.Open();
        TField *id = ds.FieldByName(QStringLiteral("id"));
        TField *padre = ds.FieldByName(QStringLiteral("padre"));

        int roots = 0;
        const double ourRoots = best([&] {
            roots = 0;
            for (ds.First(); !ds.Eof(); ds.Next()) {
                const QVariant p = padre->Value();
                if (p.isNull() || p.toString().isEmpty())
                    ++roots;
            }
        });
        const double sqlRoots = best([&] { stepAll(memory, "SELECT id, padre FROM nodi"); });
        line(QStringLiteral("roots read with First/Next (%1)").arg(roots), ourRoots, sqlRoots);

        // As a tree view reads a node's children: the node by Locate, then its children through
        // a filter on the parent field, each child found again by Locate after the previous one.
        int children = 0;
        const double ourChildren = best([&] {
            children = 0;
            ds.setFiltered(false);
            ds.Locate(QStringLiteral("id"), 1001);
            ds.Locate(QStringLiteral("padre"), 1001);
            ds.setFilter(QStringLiteral("padre = 1001"));
            ds.setFiltered(true);
            for (ds.First(); !ds.Eof();) {
                const int current = id->AsInteger();
                ++children;
                ds.Locate(QStringLiteral("id"), current);
                ds.Next();
            }
            ds.setFiltered(false);
        });
        const double sqlChildren = best([&] {
            stepAll(memory, "SELECT id FROM nodi WHERE id = 1001");
            stepAll(memory, "SELECT id, nome FROM nodi WHERE padre = 1001");
        });
        line(QStringLiteral("10,000 children by Locate and Filter (%1)").arg(children), ourChildren, sqlChildren);

        // The same with the filter switched on and off around every child.
        const double ourToggled = best([&] {
            ds.setFilter(QStringLiteral("padre = 1001"));
            int current = 0;
            for (int i = 0; i < 10000; ++i) {
                ds.setFiltered(true);
                if (i == 0)
                    ds.First();
                else {
                    ds.Locate(QStringLiteral("id"), current);
                    ds.Next();
                }
                current = id->AsInteger();
                ds.setFiltered(false);
            }
        });
        line(QStringLiteral("the same, filter toggled per child"), ourToggled, sqlChildren);
    }

    sqlite3_close(memory);
    qdb.close();
    return 0;
}
