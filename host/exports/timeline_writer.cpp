// SPDX-License-Identifier: MIT
// A row of whose times none can be told is left out, and counted.
#include "host/exports/timeline_writer.h"

#include "host/console.h"
#include "host/exports/cell_text.h"

#include <algorithm>

namespace {

void put_message(const export_row& row, std::string& message) {
    message = row.table.name.constData();
    message += ':';
    for (const char* const name : row.table.told_by) {
        const int column = row.table.index_of(name);
        std::string shown;
        append_shown(row.cells[static_cast<std::size_t>(column)], shown);
        if (!shown.empty()) {
            message += ' ' + shown;
        }
    }
    message += " (row ";
    append_number(key_of(row), message);
    message += ')';
}

} // namespace

timeline_writer::timeline_writer(export_folder& folder, const char* file_name, std::string_view first_line)
    : file(folder.create(file_name)) {
    file.write(first_line);
}

bool timeline_writer::begin(const export_table&) {
    start_counts();
    return !file.failed();
}

bool timeline_writer::row(const export_row& row) {
    qint64 events = 0;
    bool has_time = false;
    lines.clear();
    for (std::size_t i = 0; i < row.cells.size(); ++i) {
        const column_description& column = row.table.columns[static_cast<int>(i)];
        if (column.kind != column_kind::time || !row.times[i].is_time) {
            continue;
        }
        const bool is_first = !has_time;
        has_time = true;
        if (is_first) {
            put_message(row, message);
        }
        if (append_event({row, column, row.times[i], message, is_first}, lines)) {
            ++events;
        } else {
            note(QStringLiteral("events that the format cannot hold"));
        }
    }
    if (events == 0) {
        return leave_out(has_time ? QStringLiteral("no time that the format can hold") : QStringLiteral("no time"));
    }
    count_out();
    note(QStringLiteral("events"), events);
    return file.write(lines);
}

std::string in_one_line(std::string_view utf8) {
    const auto is_usual = [](char byte) { return byte >= ' ' && byte < 0x7f; };
    if (std::all_of(utf8.begin(), utf8.end(), is_usual)) {
        return std::string(utf8);
    }
    QString decoded;
    is_valid_utf8(utf8, &decoded);
    return printable(decoded).toUtf8().toStdString();
}
