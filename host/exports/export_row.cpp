// SPDX-License-Identifier: MIT
// Look-ups in a row, and what is asked of the database for it.
#include "host/exports/export_row.h"

#include <cstring>

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

std::string_view text_in(const export_row& row, int column) {
    const bool is_text = column >= 0 && row.cells[static_cast<std::size_t>(column)].type == export_cell::text;
    return is_text ? row.cells[static_cast<std::size_t>(column)].bytes : std::string_view();
}

qint64 key_of(const export_row& row) {
    const int column = row.table.index_of("INT");
    return column >= 0 ? row.cells[static_cast<std::size_t>(column)].whole : 0;
}
