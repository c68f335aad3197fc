// SPDX-License-Identifier: MIT
// Connections to SQLite files under the name of the function that opens them.
#pragma once

#include <QSqlDatabase>
#include <QString>

// The text in memory of its own. A QStringLiteral keeps its characters in the library that it stands in, and a copy of
// it shares them; Qt keeps the names of registered connections and of their drivers beyond that library's unloading.
inline QString on_the_heap(const QString& text) {
    return QString(text.constData(), text.size());
}

// A connection of that name to the SQLite file at path, not opened yet; the file need not exist. One that has the name
// already is removed first: no query on it may be alive. Stays registered until QSqlDatabase::removeDatabase(name).
inline QSqlDatabase replace_connection(const QString& name, const QString& path) {
    if (QSqlDatabase::contains(name)) {
        QSqlDatabase::removeDatabase(name);
    }
    QSqlDatabase database = QSqlDatabase::addDatabase(QString::fromLatin1("QSQLITE"), on_the_heap(name));
    database.setDatabaseName(on_the_heap(path));
    return database;
}
