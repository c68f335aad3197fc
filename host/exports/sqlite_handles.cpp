// SPDX-License-Identifier: MIT
// The file may come from anywhere: its schema must not call functions that are not safe.
#include "host/exports/sqlite_handles.h"

#include <QFile>
#include <QFileInfo>

#include <cerrno>

database_handle open_for_reading(const QString& file, QString& error) {
    constexpr int patience = 5000; // milliseconds, while another program writes
    constexpr int flags = SQLITE_OPEN_READONLY | SQLITE_OPEN_NOMUTEX;
    sqlite3* opened = nullptr;
    const int code = sqlite3_open_v2(path_for_sqlite(file).constData(), &opened, flags, nullptr);
    database_handle database(opened);
    if (code != SQLITE_OK || sqlite3_db_config(opened, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr) != SQLITE_OK ||
        sqlite3_busy_timeout(opened, patience) != SQLITE_OK) {
        error = error_of(opened);
    }
    return database;
}

QString error_of(sqlite3* database) {
    return database ? QString::fromUtf8(sqlite3_errmsg(database)) : qt_error_string(ENOMEM);
}

QByteArray path_for_sqlite(const QString& file) {
    return QFile::encodeName(QFileInfo(file).absoluteFilePath());
}
