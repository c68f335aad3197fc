// SPDX-License-Identifier: MIT
// Owners of SQLite's handles. Qt's driver would copy every value into a QVariant.
#pragma once

#include <QString>

#include <memory>
#include <sqlite3.h>

struct close_database {
    void operator()(sqlite3* database) const { sqlite3_close_v2(database); }
};
using database_handle = std::unique_ptr<sqlite3, close_database>;

struct finalize_statement {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using statement_handle = std::unique_ptr<sqlite3_stmt, finalize_statement>;

// Opens the file for reading only; error is set when that fails. Begin a transaction to read everything in the state of
// one moment.
database_handle open_for_reading(const QString& file, QString& error);
// Why the last call for the database failed.
QString error_of(sqlite3* database);
// The path as SQLite takes it: never one of its special names.
QByteArray path_for_sqlite(const QString& file);
