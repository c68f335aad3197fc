// SPDX-License-Identifier: MIT
// A table with a file for each row would fill the memory: the list ends at some size.
#include "host/exports/report_origins.h"

#include "host/exports/cell_text.h"
#include "host/exports/html_text.h"
#include "host/exports/report_columns.h"

namespace {

constexpr int most_listed = 500;
constexpr std::size_t longest_listed = 4096; // bytes of an origin

} // namespace

report_origins::report_origins(const export_table& table) {
    for (const QByteArray& name : origin_columns()) {
        const int column = table.index_of(name.constData());
        if (column >= 0) {
            columns.push_back(column);
        }
    }
}

int report_origins::number_of(const export_row& row) {
    std::string values;
    for (const int column : columns) {
        const export_cell& cell = row.cells[static_cast<std::size_t>(column)];
        append_exact(cell, values);
        values += {'\0', static_cast<char>(cell.type)};
    }
    if (last > 0 && values == key) {
        return last;
    }
    const auto found = numbers.find(values);
    if (found != numbers.end()) {
        last = found->second;
    } else if (numbers.size() >= most_listed || values.size() > longest_listed) {
        return 0;
    } else {
        shown.emplace_back();
        append_values(row, shown.back());
        last = static_cast<int>(shown.size());
        numbers.emplace(values, last);
    }
    key = values;
    return last;
}

void report_origins::append_values(const export_row& row, std::string& to) const {
    for (const int column : columns) {
        std::string value;
        append_exact(row.cells[static_cast<std::size_t>(column)], value);
        if (!value.empty()) {
            to += std::string("<div><b>") + row.table.columns[column].name + "</b> ";
            append_html_line(value, to);
            to += "</div>";
        }
    }
}

std::string report_origins::list() const {
    std::string html;
    for (const std::string& origin : shown) {
        html += "<li>" + origin + "</li>\n";
    }
    return html.empty() ? html
                        : R"(<ol class="origins">)"
                          "\n" +
                              html + "</ol>\n";
}
