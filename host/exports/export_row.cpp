// SPDX-License-Identifier: MIT
// Look-ups in a row, and what is asked of the database for it.
#include "host/exports/export_row.h"

#include <algorithm>
#include <cstring>
#include <iterator>

int export_table::index_of(const char* column) const {
    for (int i = 0; i < columns.size(); ++i) {
        if (std::strcmp(columns[i].name, column) == 0) {
            return i;
        }
    }
    return -1;
}

export_table described_export(const table_description& table, bool with_zone) {
    export_table described;
    described.name = table.name;
    described.columns = table.columns;
    described.told_by = table.told_by;
    described.with_zone = with_zone;
    for (const column_description& column : table.columns) {
        described.select += (described.select.isEmpty() ? "select " : ",") + QByteArray(column.name);
    }
    described.select += " from main." + described.name + " order by INT";
    return described;
}

void add_link_columns(export_table& table) {
    if (table.index_of("title") < 0 || table.index_of("completion_time") < 0) {
        return;
    }
    QByteArray columns;
    for (const column_description& column : qAsConst(table.columns)) {
        columns += QByteArray(columns.isEmpty() ? "r." : ",r.") + column.name;
    }
    table.columns += link_columns();
    table.beside = {"why", "linked_creation_time", "linked_last_update_time", "linked_last_access_time",
                    "linked_completion_time"};
    table.select = "select " + columns + ",l.reminder_link,l.linked_title,l.linked_text";
    for (const char* const name : qAsConst(table.beside)) {
        table.select += QByteArray(",l.") + name;
    }
    table.select += " from main." + table.name + " r left join links.reminder_links l on l.table_name='" + table.name +
                    "' and l.INT=r.INT order by r.INT";
}

std::string_view text_in(const export_row& row, int column) {
    const bool is_text = column >= 0 && row.cells[static_cast<std::size_t>(column)].type == export_cell::text;
    return is_text ? row.cells[static_cast<std::size_t>(column)].bytes : std::string_view();
}

export_cell beside(const export_row& row, std::string_view name) {
    const auto& names = row.table.beside;
    const auto found = std::find(names.begin(), names.end(), name);
    return found == names.end() ? export_cell() : row.beside[static_cast<std::size_t>(found - names.begin())];
}

qint64 key_of(const export_row& row) {
    const int column = row.table.index_of("INT");
    return column >= 0 ? row.cells[static_cast<std::size_t>(column)].whole : 0;
}
