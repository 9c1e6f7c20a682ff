// SQL literals executed by real servers: every case runs once per server (SQLite always; MariaDB,
// Firebird and PostgreSQL when scripts/db-servers.sh runs them) and reads back what the server
// stored.
#include "../common/TestServers.h"

#include "Ambiente.h"
#include "DateTime.h"
#include "FormatSettings.h"
#include "SqlLiterals.h"
#include "Strings.h"

#include <QtSql>
#include <QtTest>

using namespace mattoni;
using namespace mattoni_test;

namespace {

// Settings each server accepts for the literal forms of its TipoDatabase:
// - MariaDB ("MYSQL") and Firebird ("FIREBIRD") with the Italian settings: their forms carry fixed
//   patterns, and both servers read the "." that the Italian time separator prints;
// - PostgreSQL (no group, the default forms): the Italian date "dd/mm/yyyy" with the session's
//   DateStyle "ISO, DMY", and a long time with ":" (it refuses "14.05.09");
// - SQLite (default forms): ISO "yyyy-mm-dd" and "hh:nn:ss", the only texts its date functions read.
void useLiteralSettings(ServerKind kind)
{
    FormatSettings = TFormatSettings::Italian();
    FormatoData = fddbInglese;
    switch (kind) {
    case MariaDB:
        TipoDatabase = dbmsMySQL;
        break;
    case Firebird:
        TipoDatabase = dbmsFirebird;
        break;
    case PostgreSQL:
        TipoDatabase = dbmsSybase;
        FormatSettings.LongTimeFormat = QStringLiteral("hh:nn:ss");
        FormatSettings.TimeSeparator = QLatin1Char(':');
        break;
    case SQLite:
        TipoDatabase.clear();
        FormatSettings.ShortDateFormat = QStringLiteral("yyyy-mm-dd");
        FormatSettings.DateSeparator = QLatin1Char('-');
        FormatSettings.LongTimeFormat = QStringLiteral("hh:nn:ss");
        FormatSettings.TimeSeparator = QLatin1Char(':');
        break;
    }
}

QString dateTimeType(ServerKind kind)
{
    // MariaDB's TIMESTAMP stops at 2038; DATETIME holds 1000-9999.
    return kind == MariaDB ? QStringLiteral("DATETIME") : QStringLiteral("TIMESTAMP");
}

// SQLite keeps the literal text: its date functions tell whether it is a date it understands.
QString readDate(ServerKind kind, const char *column)
{
    return kind == SQLite ? QStringLiteral("date(%1)").arg(QLatin1String(column)) : QLatin1String(column);
}
QString readTime(ServerKind kind, const char *column)
{
    return kind == SQLite ? QStringLiteral("time(%1)").arg(QLatin1String(column)) : QLatin1String(column);
}
QString readDateTime(ServerKind kind, const char *column)
{
    return kind == SQLite ? QStringLiteral("strftime('%Y-%m-%dT%H:%M:%S', %1)").arg(QLatin1String(column))
                          : QLatin1String(column);
}

} // namespace

class tst_SqlServers : public QObject
{
    Q_OBJECT

    // Each data row starts with the server it runs on.
    static void addServerColumn() { QTest::addColumn<int>("kind"); }

    static QSqlDatabase connect(int kind)
    {
        QSqlDatabase db;
        const QString reason = openServer(server(ServerKind(kind)), db);
        if (!reason.isEmpty())
            QTest::qSkip(qPrintable(reason), __FILE__, __LINE__);
        return db;
    }

    static void execOrFail(QSqlQuery &q, const QString &sql)
    {
        if (!q.exec(sql))
            QFAIL(qPrintable(sql + QStringLiteral(": ") + q.lastError().text()));
    }

    // MariaDB reads a backslash in a quoted text as an escape unless the session's sql_mode holds
    // NO_BACKSLASH_ESCAPES; QuotedStr doubles quotes only, so every connection that takes such
    // literals needs it.
    static void setBackslashEscapes(const QSqlDatabase &db, bool on)
    {
        QSqlQuery q(db);
        QVERIFY(q.exec(on ? QStringLiteral("SET SESSION sql_mode = @@GLOBAL.sql_mode")
                          : QStringLiteral("SET SESSION sql_mode = CONCAT(@@GLOBAL.sql_mode, ',NO_BACKSLASH_ESCAPES')")));
    }

private slots:
    void initTestCase()
    {
        for (const Server &s : servers()) {
            QSqlDatabase db;
            if (!openServer(s, db).isEmpty())
                continue;
            const QString dt = dateTimeType(s.kind);
            QString error = recreateTable(s, db, QStringLiteral("lit"),
                                          QStringLiteral("id INTEGER NOT NULL PRIMARY KEY, d DATE, t TIME, dt %1, dd %1").arg(dt));
            if (error.isEmpty())
                error = recreateTable(s, db, QStringLiteral("txt"), QStringLiteral("id INTEGER NOT NULL PRIMARY KEY, v VARCHAR(200)"));
            if (s.kind == MariaDB)
                setBackslashEscapes(db, false);
            if (s.kind == PostgreSQL)
                error += execAll(db, {QStringLiteral("SET DateStyle TO 'ISO, DMY'")});
            QVERIFY2(error.isEmpty(), qPrintable(error));
        }
    }

    void init()
    {
        FormatSettings = TFormatSettings::Italian();
        TipoDatabase.clear();
        FormatoData = fddbInglese;
    }

    // The three literal forms of a value go into a date, a time and a date-time column, and the date
    // form also into a date-time column: the server gives back the value to the second (the forms
    // carry no milliseconds, and 23:59:59.999 stays on its own day). The date form keeps no time,
    // except MariaDB's, which is always a full date-time.
    void literalsRoundTrip_data()
    {
        addServerColumn();
        QTest::addColumn<QDateTime>("value");
        QTest::addColumn<int>("ms");
        struct Case
        {
            const char *name;
            QDate date;
            QTime time;
            int ms;
        };
        const Case cases[] = {
            {"leap day at midnight", {2024, 2, 29}, {0, 0, 0}, 0},
            {"leap century, last millisecond", {2000, 2, 29}, {23, 59, 59}, 999},
            {"first second of 1900", {1900, 1, 1}, {0, 0, 1}, 0},
            {"1900 has no 29 February", {1900, 3, 1}, {6, 7, 8}, 0},
            {"last second of 2099", {2099, 12, 31}, {23, 59, 59}, 0},
            {"day and month both below 13", {2006, 3, 7}, {14, 5, 9}, 42},
        };
        for (const Server &s : servers())
            for (const Case &c : cases)
                QTest::addRow("%s: %s", s.name, c.name) << int(s.kind) << QDateTime(c.date, c.time) << c.ms;
    }
    void literalsRoundTrip()
    {
        QFETCH(int, kind);
        QFETCH(QDateTime, value);
        QFETCH(int, ms);
        const ServerKind k = ServerKind(kind);
        QSqlDatabase db = connect(kind);
        useLiteralSettings(k);
        const QDate d = value.date();
        const QTime t = value.time();
        const QVariant v(EncodeDate(d.year(), d.month(), d.day()) + EncodeTime(t.hour(), t.minute(), t.second(), ms));

        QSqlQuery q(db);
        execOrFail(q, QStringLiteral("DELETE FROM lit"));
        execOrFail(q, QStringLiteral("INSERT INTO lit (id, d, t, dt, dd) VALUES (1, %1, %2, %3, %4)")
                          .arg(GetFormattedDate(v), GetFormattedTime(v), GetFormattedDatetime(v), GetFormattedDate(v)));
        execOrFail(q, QStringLiteral("SELECT %1, %2, %3, %4 FROM lit")
                          .arg(readDate(k, "d"), readTime(k, "t"), readDateTime(k, "dt"), readDateTime(k, "dd")));
        QVERIFY(q.next());
        QCOMPARE(q.value(0).toDate(), d);
        QCOMPARE(q.value(1).toTime(), t);
        QCOMPARE(q.value(2).toDateTime(), value);
        QCOMPARE(q.value(3).toDateTime(), k == MariaDB ? value : QDateTime(d, QTime(0, 0)));
    }

    // Under fddbItaliano the Interbase date is "yyyy-dd-mm", for servers configured that way. Every
    // server here reads it as year-month-day: a day up to 12 silently swaps with the month, a
    // larger one is refused (SQLite stores the text, which its date functions do not read).
    void italianOrder_data()
    {
        addServerColumn();
        QTest::addColumn<QDate>("value");
        QTest::addColumn<QDate>("stored");
        for (const Server &s : servers()) {
            QTest::addRow("%s: 7 March 2006 swaps", s.name) << int(s.kind) << QDate(2006, 3, 7) << QDate(2006, 7, 3);
            QTest::addRow("%s: 12 January 2024 swaps", s.name) << int(s.kind) << QDate(2024, 1, 12) << QDate(2024, 12, 1);
            QTest::addRow("%s: 13 January 2024 refused", s.name) << int(s.kind) << QDate(2024, 1, 13) << QDate();
            QTest::addRow("%s: 29 February 2024 refused", s.name) << int(s.kind) << QDate(2024, 2, 29) << QDate();
        }
    }
    void italianOrder()
    {
        QFETCH(int, kind);
        QFETCH(QDate, value);
        QFETCH(QDate, stored);
        QSqlDatabase db = connect(kind);
        TipoDatabase = dbmsFirebird;
        FormatoData = fddbItaliano;
        const QString literal = GetFormattedDate(QVariant(EncodeDate(value.year(), value.month(), value.day())));
        QCOMPARE(literal, QLatin1Char('\'') + value.toString(QStringLiteral("yyyy-dd-MM")) + QLatin1Char('\''));

        QSqlQuery q(db);
        execOrFail(q, QStringLiteral("DELETE FROM lit"));
        QDate got;
        if (q.exec(QStringLiteral("INSERT INTO lit (id, d) VALUES (1, %1)").arg(literal))) {
            execOrFail(q, QStringLiteral("SELECT %1 FROM lit").arg(readDate(ServerKind(kind), "d")));
            QVERIFY(q.next());
            got = q.value(0).toDate();
        }
        QCOMPARE(got, stored);
    }

    // QuotedStr doubles quotes and escapes nothing else: these texts go through it as plain data,
    // into a column and back, and as the value a WHERE clause looks for. MariaDB needs
    // NO_BACKSLASH_ESCAPES for the backslashes.
    void hostileStrings_data()
    {
        addServerColumn();
        QTest::addColumn<QString>("text");
        const QList<QPair<const char *, QString>> texts = {
            {"quotes", QStringLiteral("l'anno dell'iscrizione ''doppio'' \"virgolette\"")},
            {"statement end", QStringLiteral("x'); DELETE FROM txt; --")},
            {"line comment", QStringLiteral("a -- b")},
            {"block comment", QStringLiteral("a /* b */ c /*")},
            {"backslashes", QStringLiteral("C:\\temp\\new\\x00 \\n \\' \\\\")},
            {"backslash at the end", QStringLiteral("fine\\")},
            {"backslash before a quote", QStringLiteral("\\' OR 1=1 -- ")},
            {"control characters", QStringLiteral("tab\tnew\nline\rreturn\x01\x1f\x7f")},
            {"placeholders", QStringLiteral(":Nome ? $1 %s")},
            {"accented", QStringLiteral("perché più città Università °§£ ÀÈÌÒÙ")},
        };
        for (const Server &s : servers())
            for (const auto &[name, text] : texts)
                QTest::addRow("%s: %s", s.name, name) << int(s.kind) << text;
    }
    void hostileStrings()
    {
        QFETCH(int, kind);
        QFETCH(QString, text);
        QSqlDatabase db = connect(kind);
        if (kind == MariaDB)
            setBackslashEscapes(db, false);
        QSqlQuery q(db);
        execOrFail(q, QStringLiteral("DELETE FROM txt"));
        execOrFail(q, QStringLiteral("INSERT INTO txt (id, v) VALUES (1, %1)").arg(QuotedStr(text)));
        execOrFail(q, QStringLiteral("INSERT INTO txt (id, v) VALUES (2, 'other')"));
        execOrFail(q, QStringLiteral("SELECT id, v FROM txt WHERE v = %1").arg(QuotedStr(text)));
        QVERIFY(q.next());
        QCOMPARE(q.value(0).toInt(), 1);
        QCOMPARE(q.value(1).toString(), text);
        QVERIFY(!q.next());
    }

    // Without NO_BACKSLASH_ESCAPES MariaDB turns backslash sequences into other characters, and a
    // backslash before a quote ends the literal early: the rest of the value becomes SQL.
    void mariaDbBackslashEscapes()
    {
        QSqlDatabase db = connect(MariaDB);
        setBackslashEscapes(db, true);
        QSqlQuery q(db);
        execOrFail(q, QStringLiteral("DELETE FROM txt"));
        execOrFail(q, QStringLiteral("INSERT INTO txt (id, v) VALUES (1, %1)").arg(QuotedStr(QStringLiteral("C:\\temp\\new"))));
        execOrFail(q, QStringLiteral("INSERT INTO txt (id, v) VALUES (2, 'other')"));
        execOrFail(q, QStringLiteral("SELECT v FROM txt WHERE id = 1"));
        QVERIFY(q.next());
        QCOMPARE(q.value(0).toString(), QStringLiteral("C:\temp\new"));

        execOrFail(q, QStringLiteral("SELECT COUNT(*) FROM txt WHERE v = %1").arg(QuotedStr(QStringLiteral("\\' OR 1=1 -- "))));
        QVERIFY(q.next());
        QCOMPARE(q.value(0).toInt(), 2);
        QVERIFY(!q.exec(QStringLiteral("INSERT INTO txt (id, v) VALUES (3, %1)").arg(QuotedStr(QStringLiteral("fine\\")))));
        setBackslashEscapes(db, false);
    }
};

QTEST_GUILESS_MAIN(tst_SqlServers)
#include "tst_sqlservers.moc"
