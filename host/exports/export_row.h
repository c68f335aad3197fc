// SPDX-License-Identifier: MIT
// One row on its way from the database to the formats.
#pragma once

#include "host/exports/table_descriptions.h"
#include "host/exports/times_as_text.h"

#include <QByteArray>
#include <QVector>

#include <string_view>
#include <vector>

// A value as the database stores it. bytes: of a text (nothing guarantees UTF-8, and zero bytes may be among them) or a
// blob; they are the database's and last until the next row.
struct export_cell {
    enum storage { null, integer, real, text, blob };
    storage type = null;
    qint64 whole = 0;
    double fraction = 0;
    std::string_view bytes;
};

// The time that a cell of a time column holds; the texts are of use when is_time.
struct export_time {
    bool is_time = false;
    qint64 seconds = 0;
    time_text utc;
    time_text in_zone; // of use when the export has a zone
};

// What is read of one table. Columns that another file adds to a table's own would be appended to columns and to
// select, the formats then write them like any other.
struct export_table {
    QByteArray name;
    QVector<column_description> columns;
    QByteArray select;            // gives the columns in their order
    QVector<const char*> told_by; // see table_description
    bool with_zone = false;       // times are shown in a zone, too
    // What select gives behind the columns, for formats that tell more than the columns do.
    QVector<const char*> beside = {};

    int index_of(const char* column) const; // -1 when there is none
};

export_table described_export(const table_description& table, bool with_zone);
// Adds the columns reminder_link, linked_title and linked_text to a table of reminders, and beside them why and the
// four linked times, each by its name in the links database; other tables stay as they are. For a reader that has
// links.
void add_link_columns(export_table& table);

struct export_row {
    const export_table& table;
    std::vector<export_cell> cells; // one a column
    std::vector<export_time> times; // one a column; set for columns of kind time only
    std::vector<export_cell> beside = {};
};

// The text of the column that is "" when there is no such column or it holds no text.
std::string_view text_in(const export_row& row, int column);
// What stands under the name in table.beside; null when nothing does.
export_cell beside(const export_row& row, std::string_view name);
// The row's own key.
qint64 key_of(const export_row& row);
