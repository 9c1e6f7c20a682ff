// The demo's embedded SQLite database.
#include "DemoDatabase.h"

#include <QDir>
#include <QSqlError>
#include <QSqlQuery>
#include <QStringList>

namespace {

void exec(QSqlQuery &q, const QString &sql)
{
    if (!q.exec(sql))
        qFatal("demo database: %s\n%s", qPrintable(q.lastError().text()), qPrintable(sql));
}

void createSchema(QSqlDatabase &db)
{
    QSqlQuery q(db);
    exec(q, QStringLiteral("CREATE TABLE IF NOT EXISTS meta (chiave TEXT PRIMARY KEY, valore TEXT)"));
}

} // namespace

QSqlDatabase OpenDemoDatabase(const QString &dataFolder)
{
    QDir().mkpath(dataFolder);
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("segreteria"));
    db.setDatabaseName(QDir(dataFolder).filePath(QStringLiteral("segreteria.sqlite")));
    if (!db.open())
        qFatal("demo database: %s", qPrintable(db.lastError().text()));
    createSchema(db);
    return db;
}
