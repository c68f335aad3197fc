// SPDX-License-Identifier: MIT
// The result database as the exports read it: for reading only, and every table in the state of one moment.
#pragma once

#include "host/exports/export_row.h"
#include "host/exports/sqlite_handles.h"

#include <QString>

#include <functional>

class table_reader {
public:
    explicit table_reader(const QString& file);

    // Why the database cannot be read; empty while it can.
    const QString& error() const { return trouble; }

    // A links database lies beside the file: add_link_columns may be used on what is read.
    bool has_links() const { return links; }
    // False: the file holds no such table with all of its columns, or is none that can be read.
    bool has(const export_table& table) { return prepare(table) != nullptr; }
    // Hands over each row of the table in the order of its key, in constant memory. zone: for export_time::in_zone,
    // used when the table asks for it. False: take said no, or the table could not be read to its end (see error()).
    bool read(const export_table& table, const QTimeZone& zone, const std::function<bool(const export_row&)>& take);

    // A table besides the nine: whether it is there, in main or in links, and has the column if one is given.
    bool holds(const char* schema, const char* table, const char* column = nullptr);
    // Hands over the names of the columns and the values of each row. False: as of read().
    using plain_row_sink = std::function<bool(const QVector<QByteArray>&, const std::vector<export_cell>&)>;
    bool read_plain(const QByteArray& select, const plain_row_sink& take);

private:
    statement_handle prepare(const export_table& table);
    bool fail();
    bool attach_links(const QString& file);

    QString trouble;
    bool links = false;
    database_handle database;
};
