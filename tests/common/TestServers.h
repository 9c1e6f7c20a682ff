// Connections for the tests that run once per SQL server: SQLite always, MariaDB, Firebird and
// PostgreSQL when scripts/db-servers.sh has started them and exported their settings
// ("host=...;port=...;user=...;password=...;db=..." in MATTONI_TEST_MYSQL, MATTONI_TEST_FIREBIRD,
// MATTONI_TEST_PSQL). A test row of a server that is not there is skipped with the reason.
#pragma once

#include <QHash>
#include <QList>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QString>
#include <QStringList>

#include <array>
#include <utility>

namespace mattoni_test {

enum ServerKind { SQLite, MariaDB, Firebird, PostgreSQL };

struct Server
{
    ServerKind kind;
    const char *name;     // the prefix of the test rows
    const char *driver;   // the Qt SQL driver
    const char *variable; // the settings' environment variable; none for SQLite
};

inline const std::array<Server, 4> &servers()
{
    static const std::array<Server, 4> list{{
        {SQLite, "SQLite", "QSQLITE", nullptr},
        {MariaDB, "MariaDB", "QMYSQL", "MATTONI_TEST_MYSQL"},
        {Firebird, "Firebird", "QIBASE", "MATTONI_TEST_FIREBIRD"},
        {PostgreSQL, "PostgreSQL", "QPSQL", "MATTONI_TEST_PSQL"},
    }};
    return list;
}

inline const Server &server(ServerKind kind)
{
    return servers()[kind];
}

// The name of the connection a test executable keeps open to a server.
inline QString connectionName(const Server &s)
{
    return QStringLiteral("mattoni_test_") + QLatin1String(s.name);
}

// Opens the server's connection once per process and returns it in db. The result is empty when
// the connection is open, otherwise the reason it is not (for QSKIP).
inline QString openServer(const Server &s, QSqlDatabase &db)
{
    const QString name = connectionName(s);
    if (QSqlDatabase::contains(name)) {
        db = QSqlDatabase::database(name);
        if (db.isOpen())
            return {};
    }
    if (!QSqlDatabase::isDriverAvailable(QLatin1String(s.driver)))
        return QStringLiteral("%1: the Qt driver %2 is not installed").arg(QLatin1String(s.name), QLatin1String(s.driver));
    QHash<QString, QString> settings;
    if (s.variable) {
        const QString text = qEnvironmentVariable(s.variable);
        if (text.isEmpty())
            return QStringLiteral("%1: %2 is not set (scripts/db-servers.sh starts the test servers)")
                .arg(QLatin1String(s.name), QLatin1String(s.variable));
        for (const QString &item : text.split(QLatin1Char(';'), Qt::SkipEmptyParts)) {
            const qsizetype eq = item.indexOf(QLatin1Char('='));
            settings.insert(item.left(eq).trimmed(), item.mid(eq + 1));
        }
    }
    db = QSqlDatabase::contains(name) ? QSqlDatabase::database(name, false)
                                      : QSqlDatabase::addDatabase(QLatin1String(s.driver), name);
    if (s.kind == SQLite) {
        db.setDatabaseName(QStringLiteral(":memory:"));
    } else {
        db.setHostName(settings.value(QStringLiteral("host")));
        db.setPort(settings.value(QStringLiteral("port")).toInt());
        db.setUserName(settings.value(QStringLiteral("user")));
        db.setPassword(settings.value(QStringLiteral("password")));
        db.setDatabaseName(settings.value(QStringLiteral("db")));
    }
    if (s.kind == Firebird)
        db.setConnectOptions(QStringLiteral("ISC_DPB_LC_CTYPE=UTF8"));
    if (!db.open())
        return QStringLiteral("%1: cannot connect: %2").arg(QLatin1String(s.name), db.lastError().text());
    return {};
}

// The servers whose connection opens, each with its connection: those a test prepares tables on.
inline QList<std::pair<Server, QSqlDatabase>> openServers()
{
    QList<std::pair<Server, QSqlDatabase>> open;
    for (const Server &s : servers()) {
        QSqlDatabase db;
        if (openServer(s, db).isEmpty())
            open.append({s, db});
    }
    return open;
}

// Declares db, opened on the server of the test row, or skips the row with the reason.
#define MATTONI_SERVER_OR_SKIP(db, kind)                                                           \
    QSqlDatabase db;                                                                               \
    if (const QString skipReason = mattoni_test::openServer(mattoni_test::server(kind), db);       \
        !skipReason.isEmpty())                                                                     \
    QSKIP(qPrintable(skipReason))

// Runs statements one by one; the first that fails is returned with its error, else empty.
inline QString execAll(const QSqlDatabase &db, const QStringList &statements)
{
    QSqlQuery q(db);
    for (const QString &sql : statements) {
        if (!q.exec(sql))
            return sql + QStringLiteral(": ") + q.lastError().text();
    }
    return {};
}

// Drops the table when it is there and creates it anew: Firebird says RECREATE, the others
// DROP TABLE IF EXISTS.
inline QString recreateTable(const Server &s, const QSqlDatabase &db, const QString &table, const QString &columns)
{
    if (s.kind == Firebird)
        return execAll(db, {QStringLiteral("RECREATE TABLE %1 (%2)").arg(table, columns)});
    return execAll(db, {QStringLiteral("DROP TABLE IF EXISTS %1").arg(table),
                        QStringLiteral("CREATE TABLE %1 (%2)").arg(table, columns)});
}

} // namespace mattoni_test
