// SQL literals executed by real servers: every case runs once per server (SQLite always; MariaDB,
// Firebird and PostgreSQL when scripts/db-servers.sh runs them) and reads back what the server
// stored.
#include "../common/TestServers.h"

#include "Ambiente.h"
#include "ClientDataSet.h"
#include "Currency.h"
#include "DateTime.h"
#include "Exceptions.h"
#include "FormatSettings.h"
#include "Params.h"
#include "SqlFieldLiterals.h"
#include "SqlLiterals.h"
#include "Strings.h"
#include "Variants.h"

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

// One column per field type that the parameter and field literals know, with a value to write.
struct TypedColumn
{
    const char *name;
    TFieldType type;
    QVariant value;
};

const QList<TypedColumn> &typedColumns()
{
    static const QList<TypedColumn> columns = {
        {"NOME", ftString, QStringLiteral("  l'Aquila; -- /* x */  ")},
        {"NOTA", ftWideString, QStringLiteral("perché più città")},
        {"ANNO", ftSmallint, 2024},
        {"MATRICOLA", ftInteger, 123456},
        {"CREDITI", ftWord, 180},
        {"MEDIA", ftFloat, 27.25},
        {"TASSA", ftBCD, QVariant::fromValue(Currency(1234.5))},
        {"IMPORTO", ftCurrency, QVariant::fromValue(Currency(156.75))},
        {"NATO", ftDate, QDate(2000, 2, 29)},
        {"ORA", ftTime, QTime(14, 5, 9)},
        {"QUANDO", ftDateTime, QDateTime(QDate(2024, 2, 29), QTime(23, 59, 59))},
        {"REGISTRATO", ftTimeStamp, QDateTime(QDate(2024, 2, 29), QTime(23, 59, 59))},
        {"ATTIVO", ftBoolean, true},
        {"FOTO", ftBlob, QByteArray("\0\x01'\\-- /*", 9)},
    };
    return columns;
}

QString sqlType(ServerKind kind, TFieldType type)
{
    switch (type) {
    case ftString:
    case ftWideString:
        return QStringLiteral("VARCHAR(40)");
    case ftSmallint:
        return QStringLiteral("SMALLINT");
    case ftInteger:
    case ftWord:
        return QStringLiteral("INTEGER");
    case ftFloat:
        return QStringLiteral("DOUBLE PRECISION");
    case ftBCD:
        return QStringLiteral("NUMERIC(12,2)");
    case ftCurrency:
        return QStringLiteral("NUMERIC(18,4)");
    case ftDate:
        return QStringLiteral("DATE");
    case ftBoolean:
        return QStringLiteral("BOOLEAN");
    case ftBlob:
        return kind == Firebird ? QStringLiteral("BLOB SUB_TYPE 0") : kind == PostgreSQL ? QStringLiteral("BYTEA") : QStringLiteral("BLOB");
    default:
        // Times too: their INSERT form is a date literal, which a TIME column would refuse.
        return dateTimeType(kind);
    }
}

QString readColumn(ServerKind kind, const TypedColumn &c)
{
    if (c.type == ftDate)
        return readDate(kind, c.name);
    if (sqlType(kind, c.type) == dateTimeType(kind))
        return readDateTime(kind, c.name);
    return QLatin1String(c.name);
}

// What the server holds after a column's literal: the literal forms of dates carry the date only
// (MariaDB's the full date-time), texts from parameters are trimmed, and the ":Name" references
// hold the bound value.
QVariant expectedStored(ServerKind kind, const TypedColumn &c, bool fromParam, bool update)
{
    const bool fullDate = kind == MariaDB;
    switch (c.type) {
    case ftString:
        return fromParam ? c.value.toString().trimmed() : c.value;
    case ftBCD:
    case ftCurrency:
        return c.value.value<Currency>().ToDouble();
    case ftTime:
        return QDateTime(QDate(1899, 12, 30), fullDate ? c.value.toTime() : QTime(0, 0));
    case ftDateTime:
        return fullDate ? c.value : QDateTime(c.value.toDateTime().date(), QTime(0, 0));
    case ftTimeStamp:
        // Bound in an INSERT, a date literal in an UPDATE.
        return fullDate || !update ? c.value : QDateTime(c.value.toDateTime().date(), QTime(0, 0));
    default:
        return c.value;
    }
}

} // namespace

class tst_SqlServers : public QObject
{
    Q_OBJECT

    // Each data row starts with the server it runs on.
    static void addServerColumn() { QTest::addColumn<int>("kind"); }

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

    // The statement tests start from an empty fld and the server's literal settings.
    static void startTyped(QSqlQuery &q, ServerKind kind)
    {
        useLiteralSettings(kind);
        execOrFail(q, QStringLiteral("DELETE FROM fld"));
    }

    // INSERT INTO fld with the literals; every ":Name" literal is bound to the column's value.
    static void insertTyped(const QSqlDatabase &db, int id, const QStringList &literals)
    {
        QStringList names{QStringLiteral("ID")};
        for (const TypedColumn &c : typedColumns())
            names << QLatin1String(c.name);
        QSqlQuery q(db);
        const QString sql = QStringLiteral("INSERT INTO fld (%1) VALUES (%2, %3)")
                                .arg(names.join(QStringLiteral(", ")))
                                .arg(id)
                                .arg(literals.join(QStringLiteral(", ")));
        QVERIFY2(q.prepare(sql), qPrintable(sql + QStringLiteral(": ") + q.lastError().text()));
        for (int i = 0; i < literals.size(); ++i) {
            if (literals[i].startsWith(QLatin1Char(':')))
                q.bindValue(literals[i], typedColumns()[i].value);
        }
        QVERIFY2(q.exec(), qPrintable(sql + QStringLiteral(": ") + q.lastError().text()));
    }

    // Reads row id of fld back and compares each column with expected (a null QVariant: NULL).
    static void compareTyped(const QSqlDatabase &db, ServerKind kind, int id, const QVariantList &expected)
    {
        QStringList reads;
        for (const TypedColumn &c : typedColumns())
            reads << readColumn(kind, c);
        QSqlQuery q(db);
        execOrFail(q, QStringLiteral("SELECT %1 FROM fld WHERE ID = %2").arg(reads.join(QStringLiteral(", "))).arg(id));
        QVERIFY(q.next());
        for (int i = 0; i < expected.size(); ++i) {
            const QVariant want = expected[i];
            QVariant got = q.value(i);
            bool same = got.isNull() == want.isNull();
            if (same && !want.isNull())
                same = got.convert(want.metaType()) && got == want;
            if (!same)
                QFAIL(qPrintable(QStringLiteral("row %1, %2: stored %3, expected %4")
                                     .arg(id)
                                     .arg(QLatin1String(typedColumns()[i].name), q.value(i).toString(),
                                          want.isNull() ? QStringLiteral("NULL") : want.toString())));
        }
    }

private slots:
    void initTestCase()
    {
        for (const auto &[s, db] : openServers()) {
            const QString dt = dateTimeType(s.kind);
            QString error = recreateTable(s, db, QStringLiteral("lit"),
                                          QStringLiteral("id INTEGER NOT NULL PRIMARY KEY, d DATE, t TIME, dt %1, dd %1").arg(dt));
            if (error.isEmpty())
                error = recreateTable(s, db, QStringLiteral("txt"), QStringLiteral("id INTEGER NOT NULL PRIMARY KEY, v VARCHAR(200)"));
            QStringList columns{QStringLiteral("ID INTEGER NOT NULL PRIMARY KEY")};
            for (const TypedColumn &c : typedColumns())
                columns << QLatin1String(c.name) + QLatin1Char(' ') + sqlType(s.kind, c.type);
            if (error.isEmpty())
                error = recreateTable(s, db, QStringLiteral("fld"), columns.join(QStringLiteral(", ")));
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
        MATTONI_SERVER_OR_SKIP(db, ServerKind(kind));
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
        MATTONI_SERVER_OR_SKIP(db, ServerKind(kind));
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

    // Whole INSERT and UPDATE statements from parameters: one row of values, one of NULLs (a blank
    // text counts as NULL), then an UPDATE of the NULL row to the values and of the other to NULLs.
    // The UPDATE leaves out Boolean and blob: their form is the variant sum of "Name=:" and the
    // value, no SQL (a Boolean raises EVariantError, a blob's bytes are appended as text).
    void paramStatements_data()
    {
        addServerColumn();
        for (const Server &s : servers())
            QTest::addRow("%s", s.name) << int(s.kind);
    }
    void paramStatements()
    {
        QFETCH(int, kind);
        const ServerKind k = ServerKind(kind);
        MATTONI_SERVER_OR_SKIP(db, k);
        QSqlQuery q(db);
        startTyped(q, k);

        TParams values, nulls;
        for (const TypedColumn &c : typedColumns()) {
            TParam *p = values.CreateParam(c.type, QLatin1String(c.name), ptInput);
            p->setValue(c.value);
            TParam *n = nulls.CreateParam(c.type, QLatin1String(c.name), ptInput);
            if (c.type == ftString)
                n->setAsString(QStringLiteral("   "));
            else
                n->Clear();
        }
        QStringList inserted, insertedNulls;
        QVariantList stored, storedNulls, updated;
        for (const TypedColumn &c : typedColumns()) {
            inserted << GetInsertStringField(values, QLatin1String(c.name));
            insertedNulls << GetInsertStringField(nulls, QLatin1String(c.name));
            stored << expectedStored(k, c, true, false);
            storedNulls << QVariant();
        }
        QCOMPARE(insertedNulls, QStringList(insertedNulls.size(), QStringLiteral("NULL")));
        insertTyped(db, 1, inserted);
        insertTyped(db, 2, insertedNulls);
        compareTyped(db, k, 1, stored);
        compareTyped(db, k, 2, storedNulls);

        QStringList assignments;
        for (const TypedColumn &c : typedColumns()) {
            const QString name = QLatin1String(c.name);
            if (c.type == ftBoolean || c.type == ftBlob) {
                updated << QVariant();
            } else {
                assignments << GetUpdateStringField(values, name);
                updated << expectedStored(k, c, true, true);
            }
        }
        execOrFail(q, QStringLiteral("UPDATE fld SET %1 WHERE ID = 2").arg(assignments.join(QStringLiteral(", "))));
        compareTyped(db, k, 2, updated);
        assignments.clear();
        for (const TypedColumn &c : typedColumns())
            assignments << GetUpdateStringField(nulls, QLatin1String(c.name));
        execOrFail(q, QStringLiteral("UPDATE fld SET %1 WHERE ID = 1").arg(assignments.join(QStringLiteral(", "))));
        compareTyped(db, k, 1, storedNulls);
    }

    // INSERT statements from a client dataset's fields: one record of values, one of NULLs with an
    // empty text, which stays '' (a field's text is neither trimmed nor turned into NULL). Word,
    // Boolean, time stamp and blob fields give ":Name", bound to the field's value.
    void fieldStatements_data() { paramStatements_data(); }
    void fieldStatements()
    {
        QFETCH(int, kind);
        const ServerKind k = ServerKind(kind);
        MATTONI_SERVER_OR_SKIP(db, k);
        QSqlQuery q(db);
        startTyped(q, k);

        TClientDataSet ds;
        QVariantList record, empty;
        for (const TypedColumn &c : typedColumns()) {
            ds.FieldDefs().Add(QLatin1String(c.name), c.type, c.type == ftString || c.type == ftWideString ? 40 : 0);
            record << c.value;
            empty << (c.type == ftString ? QVariant(QLatin1String("")) : QVariant());
        }
        ds.CreateDataSet();
        ds.AppendRecord(record);
        ds.AppendRecord(empty);
        ds.First();
        for (int id = 1; id <= 2; ++id, ds.Next()) {
            QStringList literals;
            QVariantList stored;
            for (const TypedColumn &c : typedColumns()) {
                const TField *field = ds.FieldByName(QLatin1String(c.name));
                literals << GetSqlInsertFromField(field);
                stored << (id == 2 ? (c.type == ftString ? QVariant(QLatin1String("")) : QVariant())
                                   : expectedStored(k, c, false, false));
            }
            insertTyped(db, id, literals);
            compareTyped(db, k, id, stored);
        }
    }

    // A text column opens with its size in characters, whatever the driver reports (MariaDB and
    // Firebird give UTF-8 bytes); SQLite reports no size at all.
    void textColumnSize_data()
    {
        addServerColumn();
        for (const Server &s : servers())
            QTest::addRow("%s", s.name) << int(s.kind);
    }
    void textColumnSize()
    {
        QFETCH(int, kind);
        MATTONI_SERVER_OR_SKIP(db, ServerKind(kind));
        TClientDataSet ds;
        ds.setConnection(db);
        ds.setCommandText(QStringLiteral("SELECT id, v FROM txt"));
        ds.Open();
        QCOMPARE(ds.FieldByName(QStringLiteral("v"))->Size(), kind == SQLite ? 0 : 200);
    }

    // QuotedStr doubles quotes and escapes nothing else: these texts go through it as plain data,
    // into a column and back, and as the value a WHERE clause looks for; so do the INSERT and UPDATE
    // forms of a text parameter and a text field. MariaDB needs NO_BACKSLASH_ESCAPES for the
    // backslashes.
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
        MATTONI_SERVER_OR_SKIP(db, ServerKind(kind));
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

        // The same text as a parameter (trimmed) and as a field (as it is).
        TParams params;
        params.CreateParam(ftString, QStringLiteral("v"), ptInput)->setAsString(text);
        TClientDataSet ds;
        ds.FieldDefs().Add(QStringLiteral("v"), ftString, 200);
        ds.CreateDataSet();
        ds.AppendRecord({text});
        execOrFail(q, QStringLiteral("INSERT INTO txt (id, v) VALUES (3, %1)").arg(GetInsertStringField(params, QStringLiteral("v"))));
        execOrFail(q, QStringLiteral("INSERT INTO txt (id, v) VALUES (4, %1)").arg(GetSqlInsertFromField(ds.FieldByName(QStringLiteral("v")))));
        execOrFail(q, QStringLiteral("UPDATE txt SET %1 WHERE id = 2").arg(GetUpdateStringField(params, QStringLiteral("v"))));
        execOrFail(q, QStringLiteral("SELECT v FROM txt WHERE id > 1 ORDER BY id"));
        for (const QString &want : {Trim(text), Trim(text), text}) {
            QVERIFY(q.next());
            QCOMPARE(q.value(0).toString(), want);
        }
    }

    // Without NO_BACKSLASH_ESCAPES MariaDB turns backslash sequences into other characters, and a
    // backslash before a quote ends the literal early: the rest of the value becomes SQL.
    void mariaDbBackslashEscapes()
    {
        MATTONI_SERVER_OR_SKIP(db, ServerKind(MariaDB));
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
