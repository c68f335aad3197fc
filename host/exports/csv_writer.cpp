// SPDX-License-Identifier: MIT
// NULL is an empty field, '' a quoted one.
#include "host/exports/csv_writer.h"

#include "host/exports/cell_text.h"

namespace {

constexpr std::string_view line_end = "\r\n";

// What a look over a text finds: most need no second one.
constexpr unsigned char needs_quotes = 1;
constexpr unsigned char is_unusual = 2; // not ASCII, or a zero byte

struct byte_classes {
    unsigned char of[256] = {};
    constexpr byte_classes() {
        of[0] = is_unusual;
        for (int code = 0x80; code < 0x100; ++code) {
            of[code] = is_unusual;
        }
        for (const char byte : {'"', ',', '\r', '\n'}) {
            of[static_cast<unsigned char>(byte)] = needs_quotes;
        }
    }
};
constexpr byte_classes classes;

unsigned char classes_in(std::string_view text) {
    unsigned char found = 0;
    for (const char byte : text) {
        found = static_cast<unsigned char>(found | classes.of[static_cast<unsigned char>(byte)]);
    }
    return found;
}

bool holds_number(column_kind kind) {
    return kind == column_kind::coordinate || kind == column_kind::distance || kind == column_kind::count ||
           kind == column_kind::size;
}

} // namespace

bool is_formula(std::string_view text) {
    constexpr std::string_view starts = "=+-@\t\r\n";
    return !text.empty() && starts.find(text.front()) != std::string_view::npos;
}

void append_csv_field(std::string_view text, std::string& to) {
    if ((classes_in(text) & needs_quotes) == 0) {
        to.append(text);
        return;
    }
    to += '"';
    for (const char byte : text) {
        to.append(byte == '"' ? 2U : 1U, byte);
    }
    to += '"';
}

csv_writer::csv_writer(export_folder& export_to, bool exact_bytes) : folder(export_to), exact(exact_bytes) {}

bool csv_writer::begin(const export_table& table) {
    start_counts();
    file = &folder.create(table.name + ".csv");
    line.clear();
    for (const column_description& column : table.columns) {
        line += line.empty() ? "" : ",";
        line += column.name;
        if (column.kind == column_kind::time) {
            line += std::string(",") + column.name + "_utc";
            line += table.with_zone ? std::string(",") + column.name + "_local" : std::string();
        }
    }
    line += line_end;
    return file->write(line);
}

bool csv_writer::row(const export_row& row) {
    line.clear();
    for (std::size_t i = 0; i < row.cells.size(); ++i) {
        line.append(i == 0 ? "" : ",");
        const column_kind kind = row.table.columns[static_cast<int>(i)].kind;
        append_cell(row.cells[i], kind);
        if (kind != column_kind::time) {
            continue;
        }
        const export_time& time = row.times[i];
        line += ',';
        line += time.is_time ? time.utc.data() : "";
        if (row.table.with_zone) {
            line += ',';
            line += time.is_time ? time.in_zone.data() : "";
        }
    }
    line += line_end;
    count_out();
    return file->write(line);
}

void csv_writer::append_cell(const export_cell& cell, column_kind kind) {
    if (cell.type != export_cell::text && cell.type != export_cell::blob) {
        append_exact(cell, line);
        return;
    }
    if (cell.bytes.empty()) {
        line += "\"\"";
        return;
    }
    if (exact) {
        append_csv_field(cell.bytes, line);
        return;
    }
    const unsigned char found = classes_in(cell.bytes);
    if (found == 0 && !is_formula(cell.bytes)) {
        line.append(cell.bytes);
        return;
    }
    shown.clear();
    append_shown(cell, shown);
    if (is_formula(shown) && !(holds_number(kind) && is_number(shown))) {
        shown.insert(0, 1, '\'');
        note(QStringLiteral("cells with an apostrophe in front"));
    }
    append_csv_field(shown, line);
}

bool csv_writer::end() {
    return file->make_whole();
}
