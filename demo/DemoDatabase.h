// The demo's embedded SQLite database, created with sample data on first run.
#pragma once

#include <QSqlDatabase>
#include <QString>

// Opens (creating and filling it when missing) the database "segreteria.sqlite" in the folder.
QSqlDatabase OpenDemoDatabase(const QString &dataFolder);
