// SPDX-License-Identifier: MIT
// An index gives each field one type, so a field is always a text or always a number.
#include "host/exports/timesketch_writer.h"

#include "host/exports/cell_text.h"
#include "host/exports/json_text.h"

namespace {

bool holds_integers(column_kind kind) {
    return kind == column_kind::key || kind == column_kind::time || kind == column_kind::size ||
           kind == column_kind::count;
}

// NULL and '' are left out. A value of another type than its field's goes into a field of its own.
void append_field(const column_description& column, const export_cell& cell, std::string& to) {
    const bool is_text = cell.type == export_cell::text || cell.type == export_cell::blob;
    if (cell.type == export_cell::null || (is_text && cell.bytes.empty())) {
        return;
    }
    if (!holds_integers(column.kind) && !is_text) {
        std::string number;
        append_exact(cell, number);
        append_json_field(column.name, number, to);
    } else if (holds_integers(column.kind) && cell.type != export_cell::integer) {
        const std::string other = std::string(column.name) + "_as_found";
        std::string shown;
        append_shown(cell, shown);
        append_json_field(other.c_str(), shown, to);
    } else {
        append_json_field(column.name, cell, to);
    }
}

} // namespace

timesketch_writer::timesketch_writer(export_folder& folder) : timeline_writer(folder, "timesketch.jsonl", {}) {}

bool timesketch_writer::append_event(const timeline_event& event, std::string& to) {
    constexpr qint64 microseconds = 1000000;
    if (event.is_first) {
        row_fields = "{";
        append_json_field("message", event.message, row_fields);
        append_json_field("data_type", std::string("windows:cortana:") + event.row.table.name.constData(), row_fields);
        for (std::size_t i = 0; i < event.row.cells.size(); ++i) {
            append_field(event.row.table.columns[static_cast<int>(i)], event.row.cells[i], row_fields);
        }
    }
    to += row_fields;
    append_json_field("datetime", std::string_view(event.time.utc.data()), to);
    append_json_field("timestamp", event.time.seconds * microseconds, to);
    append_json_field("timestamp_desc", std::string_view(event.column.event_name), to);
    to += "}\n";
    return true;
}
