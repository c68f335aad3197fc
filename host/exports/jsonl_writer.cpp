// SPDX-License-Identifier: MIT
// Numbers, texts and NULL stay what they are in the database.
#include "host/exports/jsonl_writer.h"

#include "host/exports/json_text.h"

jsonl_writer::jsonl_writer(export_folder& export_to) : folder(export_to) {}

bool jsonl_writer::begin(const export_table& table) {
    start_counts();
    file = &folder.create(table.name + ".jsonl");
    return !file->failed();
}

bool jsonl_writer::row(const export_row& row) {
    line = '{';
    for (std::size_t i = 0; i < row.cells.size(); ++i) {
        const column_description& column = row.table.columns[static_cast<int>(i)];
        append_json_field(column.name, row.cells[i], line);
        if (column.kind == column_kind::time) {
            append_json_times(column.name, row.times[i], row.table.with_zone, line);
        }
    }
    line += "}\n";
    count_out();
    return file->write(line);
}
