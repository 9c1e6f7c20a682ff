// What the data layer's tests share: the message of an expected error, the values of a column,
// and an SQLite file of their own reachable as a named Qt SQL connection.
#pragma once

#include "DataSet.h"
#include "Exceptions.h"

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QTemporaryDir>

#include <functional>

namespace datatest {

// The message of the library's error that F raises; empty when it raises none.
inline QString errorOf(const std::function<void()> &f)
{
    try {
        f();
    } catch (const mattoni::Exception &e) {
        return e.Message();
    }
    return QString();
}

// The values of one field over the dataset, in its current order; the cursor comes back.
inline QStringList column(mattoni::TDataSet &ds, const QString &field)
{
    QStringList values;
    const mattoni::TBookmark here = ds.GetBookmark();
    for (ds.First(); !ds.Eof(); ds.Next())
        values.append(ds.FieldByName(field)->AsString());
    if (!here.isEmpty() && ds.BookmarkValid(here))
        ds.GotoBookmark(here);
    return values;
}

// An SQLite file in a temporary folder, filled by Statements, open as connection Name.
class SqliteFile
{
public:
    SqliteFile(const QString &name, const QStringList &statements) : m_name(name)
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        db.setDatabaseName(m_dir.filePath(name + QStringLiteral(".sqlite")));
        if (!db.open()) {
            m_error = db.lastError().text();
            return;
        }
        QSqlQuery q(db);
        for (const QString &sql : statements) {
            if (!q.exec(sql)) {
                m_error = q.lastError().text() + QStringLiteral(": ") + sql;
                return;
            }
        }
    }
    ~SqliteFile()
    {
        QSqlDatabase::database(m_name, false).close();
        QSqlDatabase::removeDatabase(m_name);
    }
    SqliteFile(const SqliteFile &) = delete;
    SqliteFile &operator=(const SqliteFile &) = delete;

    // Empty when the file was made and filled.
    QString Error() const { return m_error; }

private:
    QTemporaryDir m_dir;
    QString m_name;
    QString m_error;
};

} // namespace datatest
