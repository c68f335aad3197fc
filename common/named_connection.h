// SPDX-License-Identifier: MIT
// Connections to SQLite files under the name of the function that opens them.
#pragma once

#include <QSqlDatabase>
#include <QString>

// A connection of that name to the file, not opened yet. One that has the name already is removed first.
inline QSqlDatabase replace_connection(const QString& name, const QString& path) {
    if (QSqlDatabase::contains(name)) {
        QSqlDatabase::removeDatabase(name);
    }
    QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
    database.setDatabaseName(path);
    return database;
}
