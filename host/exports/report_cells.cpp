// SPDX-License-Identifier: MIT
// Of a reminder row's title, text and times the report tells first what the ids lead to, and what the position gave
// only where that is something else, or where the ids do not tell.
#include "host/exports/report_cells.h"

#include "host/exports/cell_text.h"
#include "host/exports/html_text.h"

#include <algorithm>

namespace {

constexpr std::string_view by_position = R"(<div class="pos"><b>by position</b> )";

bool is_linked(const export_row& row) {
    const std::string_view link = text_in(row, row.table.index_of("reminder_link"));
    return link == "confirmed" || link == "contradicted";
}

// What is stored but no time: text, fractions, years that are "never". Nothing for 0 and for empty cells.
void append_no_time(const export_cell& cell, std::string& to) {
    if (cell.type == export_cell::null || (cell.type == export_cell::integer && cell.whole == 0) ||
        (cell.type == export_cell::text && cell.bytes.empty())) {
        return;
    }
    std::string stored;
    append_exact(cell, stored);
    to += R"(<div class="raw"><i>no time:</i> )";
    append_html_line(stored, to);
    to += "</div>";
}

void append_stored_time(const export_row& row, std::size_t index, std::string& to) {
    const export_time& time = row.times[index];
    if (!time.is_time) {
        return append_no_time(row.cells[index], to);
    }
    append_shown_time(time.utc, to);
    if (row.table.with_zone) {
        to += "<br>";
        append_shown_time(time.in_zone, to);
    }
}

void append_positioned(const std::string& content, std::string& to) {
    if (!content.empty()) {
        to += by_position;
        to += content + "</div>";
    }
}

} // namespace

void append_long(std::string_view text, std::string& to) {
    constexpr std::size_t longest = 600;
    constexpr qint64 most_lines = 12;
    if (text.size() <= longest && std::count(text.begin(), text.end(), '\n') <= most_lines) {
        append_html(text, to);
        return;
    }
    to += R"(<div class="long" tabindex="0">)";
    append_html(text, to);
    to += R"(</div><p class="cut">)" + grouped(static_cast<qint64>(text.size())) +
          " bytes; print shows the beginning, the file holds all</p>";
}

void append_utc_time(const export_cell& cell, std::string& to) {
    if (cell.type == export_cell::integer && is_time(cell.whole)) {
        time_text utc = {};
        put_utc_text(cell.whole, utc);
        append_shown_time(utc, to);
    } else {
        append_no_time(cell, to);
    }
}

void append_shown_time(const time_text& text, std::string& to) {
    const std::string_view iso = text.data();
    const std::size_t day = iso.find('T');
    to.append(iso.substr(0, day)).append(" ").append(iso.substr(day + 1));
}

void append_value(const report_column& column, const export_row& row, std::string& to) {
    std::string position;
    append_exact(row.cells[static_cast<std::size_t>(column.index)], position);
    if (column.linked < 0) {
        return append_long(position, to);
    }
    std::string linked;
    append_exact(row.cells[static_cast<std::size_t>(column.linked)], linked);
    if (is_linked(row)) {
        append_long(linked, to);
    }
    if (!is_linked(row) || linked != position) {
        std::string content;
        append_long(position, content);
        append_positioned(content.empty() && is_linked(row) ? "<i>empty</i>" : content, to);
    }
}

void append_time(const report_column& column, const export_row& row, std::string& to) {
    const auto index = static_cast<std::size_t>(column.index);
    std::string position;
    append_stored_time(row, index, position);
    if (column.beside.empty()) {
        to += position;
        return;
    }
    const export_cell linked = beside(row, column.beside);
    const export_cell& stored = row.cells[index];
    const bool is_same = stored.type == export_cell::integer && linked.whole == stored.whole;
    if (is_linked(row) && is_same) {
        to += position;
        return;
    }
    if (is_linked(row)) {
        append_utc_time(linked, to);
    }
    append_positioned(position.empty() && is_linked(row) ? "<i>none</i>" : position, to);
}

void append_link(const report_column& column, const export_row& row, std::string& to) {
    const std::string_view link = text_in(row, column.index);
    if (link == "confirmed") {
        to += R"(<span class="ok">✓ confirmed</span>)";
    } else if (link == "contradicted") {
        to += R"(<span class="bad">✗ contradicted</span>)";
    } else if (link == "undecided") {
        to += R"(<span class="open">? undecided</span> <small>)";
        append_html_line(shown_text(beside(row, "why")), to);
        to += "</small>";
    } else {
        to += R"(<span class="open">– not looked at</span>)";
    }
}

void append_coordinates(const export_row& row, std::string& to) {
    const place found = place_of(row);
    if (found.state == place_state::none) {
        return;
    }
    for (const char* const name : {"latitude", "longitude"}) {
        std::string value;
        append_exact(row.cells[static_cast<std::size_t>(row.table.index_of(name))], value);
        append_html_line(value, to);
        to += *name == 'l' && name[1] == 'a' ? ", " : " ";
    }
    if (found.state == place_state::valid) {
        append_map_link(found.point, to);
    } else {
        to += "<i>invalid</i>";
    }
}
