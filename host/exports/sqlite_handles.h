// SPDX-License-Identifier: MIT
// Owners of SQLite's handles. Qt's driver would copy every value into a QVariant.
#pragma once

#include <sqlite3.h>

#include <memory>

struct close_database {
    void operator()(sqlite3* database) const { sqlite3_close_v2(database); }
};
using database_handle = std::unique_ptr<sqlite3, close_database>;

struct finalize_statement {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using statement_handle = std::unique_ptr<sqlite3_stmt, finalize_statement>;
