// SPDX-License-Identifier: MIT
// Pages are closed <details>: a browser builds what they hold but draws only those that are open.
#include "host/exports/report_rows.h"

#include "host/exports/cell_text.h"
#include "host/exports/html_text.h"
#include "host/exports/report_cells.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr qint64 rows_a_page = 500;

// Columns that have one of their own, stand with the origin, or say nothing beside another.
bool stands_elsewhere(const export_table& table, const QVector<report_column>& columns, int index) {
    const QByteArray name = table.columns[index].name;
    return name == "linked_title" || name == "linked_text" || name == "longitude" || origin_columns().contains(name) ||
           std::any_of(columns.begin(), columns.end(),
                       [&](const report_column& column) { return column.index == index; });
}

bool is_empty(const export_cell& cell, column_kind kind) {
    const bool is_no_mark = kind == column_kind::host && cell.type == export_cell::integer && cell.whole == 0;
    return cell.type == export_cell::null || is_no_mark ||
           (cell.type != export_cell::integer && cell.type != export_cell::real && cell.bytes.empty());
}

// The path ends in the value, from one of its slashes on.
bool is_end_of(std::string_view path, std::string_view value) {
    if (value.size() > path.size() || path.substr(path.size() - value.size()) != value) {
        return false;
    }
    const std::size_t before = path.size() - value.size();
    return value.front() == '/' || before == 0 || path[before - 1] == '/';
}

} // namespace

report_rows::report_rows(const export_table& of_table, scratch_file& to)
    : described(of_table), columns(report_columns(of_table)), origins(of_table), scratch(to),
      used(static_cast<std::size_t>(columns.size()), false) {}

void report_rows::take(const export_row& row) {
    if (rows++ % rows_a_page == 0) {
        starts.push_back(scratch.size());
    }
    html = "<tr>";
    for (int i = 0; i < columns.size(); ++i) {
        html += columns[i].part == report_part::time ? R"(<td class="t">)" : "<td>";
        const std::size_t before = html.size();
        append_cell(columns[i], row);
        used[static_cast<std::size_t>(i)] = used[static_cast<std::size_t>(i)] || html.size() > before;
        html += "</td>";
    }
    html += "</tr>\n";
    scratch.write(html);
    if (described.index_of("reminder_link") >= 0) {
        const std::string_view link = text_in(row, described.index_of("reminder_link"));
        ++link_counts[QByteArray(link.data(), static_cast<int>(link.size()))];
    }
}

void report_rows::end() {
    starts.push_back(scratch.size());
}

void report_rows::append_cell(const report_column& column, const export_row& row) {
    switch (column.part) {
    case report_part::key:
        append_html_line(shown_text(row.cells[static_cast<std::size_t>(column.index)]), html);
        return;
    case report_part::link:
        return append_link(column, row, html);
    case report_part::value:
        return append_value(column, row, html);
    case report_part::coordinates:
        return append_coordinates(row, html);
    case report_part::time:
        return append_time(column, row, html);
    case report_part::user: {
        const int origin = origins.number_of(row);
        append_html_line(shown_text(row.cells[static_cast<std::size_t>(column.index)]), html);
        html += origin > 0 ? " [" + std::to_string(origin) + ']' : std::string();
        return;
    }
    case report_part::further:
        return append_further(row);
    }
}

void report_rows::append_further(const export_row& row) {
    std::string path(text_in(row, described.index_of("windows_path"))); // what the row tells of its file
    for (int i = 0; i < described.columns.size(); ++i) {
        const column_description& column = described.columns[i];
        const export_cell& cell = row.cells[static_cast<std::size_t>(i)];
        if (is_empty(cell, column.kind) || stands_elsewhere(described, columns, i)) {
            continue;
        }
        std::string value;
        append_exact(cell, value);
        const bool is_of_file = column.kind == column_kind::path || std::strcmp(column.name, "file_name") == 0;
        if (is_of_file && is_end_of(path, value)) {
            left_out_parts = true;
            continue;
        }
        if (column.kind == column_kind::path) {
            path = value;
        }
        html += std::string("<div><b>") + column.name + "</b> ";
        append_html_line(value, html);
        html += "</div>";
    }
    if (origins.number_of(row) == 0) {
        origins.append_values(row, html);
    }
}

std::string report_rows::page_head(const std::string& range) const {
    std::string classes;
    std::string cols;
    std::string heads;
    for (int i = 0; i < columns.size(); ++i) {
        classes += is_used(i) ? "" : " e" + std::to_string(i + 1);
        cols += std::string("<col class=\"") + width_of(columns[i], described) + "\">";
        heads += "<th scope=\"col\">" + heading_of(columns[i], described) + "</th>";
    }
    return "<table class=\"rows" + classes + "\"><caption>" + title_of(described.name) + ", rows " + range +
           "</caption>\n<colgroup>" + cols + "</colgroup>\n<thead><tr>" + heads + "</tr></thead>\n<tbody>\n";
}

bool report_rows::write_page(std::size_t number, pending_file& to) const {
    const qint64 first = static_cast<qint64>(number) * rows_a_page + 1;
    const qint64 last = std::min(rows, first + rows_a_page - 1);
    const std::string range = grouped(first) + (last > first ? "–" + grouped(last) : std::string());
    const std::string opening = number == 0 ? "<details class=\"page\" open>" : "<details class=\"page\">";
    return to.write(opening + "<summary>Rows " + range + " of " + grouped(rows) + "</summary>\n" + page_head(range)) &&
           scratch.copy(starts[number], starts[number + 1], to) && to.write("</tbody></table></details>\n");
}

std::string report_rows::legend() const {
    std::string html_of_legend =
        "<details class=\"legend\"><summary>What the columns mean</summary>\n<table><thead><tr>"
        "<th scope=\"col\">column</th><th scope=\"col\">meaning</th><th scope=\"col\">unit</th>"
        "<th scope=\"col\">from</th></tr></thead>\n<tbody>\n";
    for (const column_description& column : described.columns) {
        if (column.kind == column_kind::host) {
            continue;
        }
        html_of_legend += std::string("<tr><th scope=\"row\"><code>") + column.name + "</code></th>";
        for (const char* const text : {column.meaning, column.unit, column.origin}) {
            html_of_legend += "<td>";
            append_html(std::string_view(text), html_of_legend);
            html_of_legend += "</td>";
        }
        html_of_legend += "</tr>\n";
    }
    return html_of_legend + "</tbody></table></details>\n";
}

bool report_rows::write(pending_file& to) const {
    for (std::size_t page = 0; page + 1 < starts.size(); ++page) {
        if (!write_page(page, to)) {
            return false;
        }
    }
    const std::string list = origins.list();
    std::string notes;
    std::string empty;
    for (int i = 0; i < columns.size(); ++i) {
        empty += is_used(i) ? "" : (empty.empty() ? "" : ", ") + heading_of(columns[i], described);
    }
    notes += empty.empty() ? "" : "<p class=\"small\">Left out, since empty in every row: " + empty + ".</p>\n";
    notes += left_out_parts
                 ? "<p class=\"small\">A file's name and further paths are told only where they are no end of the "
                   "path that the row shows.</p>\n"
                 : "";
    notes += list.empty() ? "" : "<h3>Where these rows are from</h3>\n" + list;
    return to.write(notes + legend());
}
