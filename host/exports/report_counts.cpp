// SPDX-License-Identifier: MIT
// Rows of one profile follow each other, so it is looked up once for many.
#include "host/exports/report_counts.h"

#include "host/exports/html_text.h"
#include "host/exports/report_columns.h"

#include <numeric>

namespace {

constexpr std::size_t most_profiles = 5000; // a foreign database could name another in each row
const char* const others = "(other profiles)";

std::string cells_of(const std::vector<qint64>& numbers) {
    std::string html;
    for (const qint64 number : numbers) {
        html += number > 0 ? "<td class=\"number\">" + grouped(number) + "</td>" : "<td class=\"number none\">0</td>";
    }
    return html + "<td class=\"number sum\">" + grouped(std::accumulate(numbers.begin(), numbers.end(), qint64(0))) +
           "</td></tr>\n";
}

} // namespace

void report_counts::begin(const export_table& table) {
    tables.push_back(table.name);
    for (auto& entry : counts) {
        entry.second.resize(tables.size());
    }
    last_counts = nullptr;
}

void report_counts::take(const export_row& row) {
    const profile of_row(text_in(row, row.table.index_of("source_count_name")),
                         text_in(row, row.table.index_of("system_user")));
    if (!last_counts || of_row != last) {
        last = of_row;
        const bool is_full = counts.size() >= most_profiles && counts.find(of_row) == counts.end();
        last_counts = &counts[is_full ? profile(others, "") : of_row];
        last_counts->resize(tables.size());
    }
    ++last_counts->back();
}

std::string report_counts::html() const {
    std::string html = "<table class=\"counts\"><caption>Rows by profile and table</caption>\n<thead><tr><th "
                       "scope=\"col\">source</th><th scope=\"col\">profile</th>";
    for (const QByteArray& table : tables) {
        html += "<th scope=\"col\"><a href=\"#" + table.toStdString() + "\">" + title_of(table) + "</a></th>";
    }
    html += "<th scope=\"col\">all</th></tr></thead>\n<tbody>\n";
    std::vector<qint64> sums(tables.size());
    for (const auto& [name, numbers] : counts) {
        html += "<tr><td>";
        append_html_line(std::string_view(name.first), html);
        html += "</td><th scope=\"row\">";
        append_html_line(std::string_view(name.second), html);
        html += "</th>" + cells_of(numbers);
        for (std::size_t i = 0; i < sums.size(); ++i) {
            sums[i] += numbers[i];
        }
    }
    return html + "</tbody>\n<tfoot><tr><td></td><th scope=\"row\">all</th>" + cells_of(sums) + "</tfoot></table>\n";
}
