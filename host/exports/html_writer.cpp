// SPDX-License-Identifier: MIT
// The order of the report.
#include "host/exports/html_writer.h"

#include "host/exports/cell_text.h"
#include "host/exports/html_text.h"
#include "host/exports/report_cells.h"
#include "host/exports/report_columns.h"
#include "host/exports/report_evidence.h"
#include "host/exports/report_frame.h"
#include "host/exports/table_descriptions.h"

#include <algorithm>
#include <cctype>

namespace {

const char* const sources_select = "select * from main.sources";
const char* const not_shown_select = "select * from links.reminders_not_shown";

// Why a table may have no rows, in words for the reader.
std::string no_rows(const QByteArray& table, const report_record& record) {
    if (!record.is_there && !record.is_merged()) {
        return "<p class=\"none\">No rows. Without a run record this does not show that there was no data.</p>\n";
    }
    if (record.is_there && !record.texts("tables").contains(QString::fromLatin1(table))) {
        return "<p class=\"none\">No rows. The last run did not look for any: the table was not selected.</p>\n";
    }
    return record.has_gaps()
               ? "<p class=\"none\">No rows. Something was not read (see <a href=\"#first\">what to know "
                 "first</a>), so this does not show that there was no data.</p>\n"
               : "<p class=\"none\">No rows. The evidence that the run found was read to its end and holds "
                 "none.</p>\n";
}

const table_description* description_of(const QByteArray& name) {
    const auto& all = table_descriptions();
    const auto found = std::find_if(all.begin(), all.end(), [&](const auto& table) { return name == table.name; });
    return found == all.end() ? nullptr : &*found;
}

std::string plain_cell(const QByteArray& name, const export_cell& cell) {
    std::string html = "<td>";
    if (name.endsWith("_time")) {
        append_utc_time(cell, html);
    } else {
        std::string value;
        append_exact(cell, value);
        append_long(value, html);
    }
    return html + "</td>";
}

} // namespace

html_writer::html_writer(export_folder& folder, table_reader& source, const QString& of_database)
    : file(folder.create("report.html")), reader(source), database(of_database), scratch(folder) {
    tables.reserve(static_cast<std::size_t>(table_descriptions().size()));
}

bool html_writer::is_whole() {
    if (!scratch.error().isEmpty()) {
        file.fail(scratch.error());
    }
    return !file.failed();
}

bool html_writer::begin(const export_table& table) {
    start_counts();
    tables.emplace_back(table, scratch);
    activity.begin(table);
    rows_by_profile.begin(table);
    return is_whole();
}

bool html_writer::row(const export_row& row) {
    tables.back().take(row);
    activity.take(row);
    rows_by_profile.take(row);
    places.take(row);
    count_out();
    return is_whole();
}

bool html_writer::end() {
    tables.back().end();
    return is_whole();
}

report_facts html_writer::facts_of_rows() {
    report_facts facts;
    for (const report_rows& table : tables) {
        facts.rows += table.count();
        facts.reminders += description_of(table.table().name)->has_reminders() ? table.count() : 0;
        for (auto link = table.links().begin(); link != table.links().end(); ++link) {
            facts.links[link.key()] += link.value();
        }
    }
    facts.has_links = reader.has_links();
    if (reader.holds("links", "reminders_not_shown")) {
        reader.read_plain("select count(*) from links.reminders_not_shown",
                          [&](const auto&, const std::vector<export_cell>& cells) {
                              facts.not_shown = cells[0].whole;
                              return true;
                          });
    }
    return facts;
}

bool html_writer::write_overview(const report_record& record, const report_facts& facts) {
    std::vector<report_section> sections{{"first", "What to know first"}, {"activity", "Activity"}, {"rows", "Rows"}};
    for (const report_rows& table : tables) {
        const table_description* const described = description_of(table.table().name);
        sections.push_back({described->name, title_of(table.table().name)});
    }
    for (const report_section& last : {report_section{"places", "Places"}, report_section{"evidence", "Evidence"},
                                       report_section{"run", "The run"}}) {
        sections.push_back(last);
    }
    return file.write(report_head(record, sections)) && file.write(section_begin("first", "What to know first")) &&
           file.write(warnings_html(record, facts)) && file.write(section_end()) &&
           file.write(section_begin("activity", "Activity over time")) && file.write(activity.html()) &&
           file.write(section_end()) && file.write(section_begin("rows", "Rows by profile and table")) &&
           file.write(rows_by_profile.html()) && file.write(section_end());
}

bool html_writer::write_table(const report_rows& table, const report_record& record) {
    const table_description* const described = description_of(table.table().name);
    std::string title = title_of(table.table().name);
    title[0] = static_cast<char>(std::toupper(title[0]));
    std::string intro = std::string("<p>A row is ") + described->row + ". From ";
    append_html(std::string_view(described->origin), intro);
    intro += ".</p>\n";
    return file.write(section_begin(
               described->name, title + " <small>" + counted(table.count(), "row", "rows") + "</small>", "table")) &&
           file.write(intro) &&
           (table.count() > 0 ? table.write(file) : file.write(no_rows(table.table().name, record))) &&
           file.write(section_end());
}

bool html_writer::write_plain(const char* id, const char* title, const QByteArray& select) {
    bool is_first = true;
    const bool done =
        file.write(section_begin(id, title)) &&
        reader.read_plain(select, [&](const QVector<QByteArray>& names, const std::vector<export_cell>& cells) {
            std::string html;
            if (is_first) {
                html = std::string("<table class=\"plain\"><caption>") + title + "</caption><thead><tr>";
                for (const QByteArray& name : names) {
                    html += "<th scope=\"col\">" + html_line(QString::fromUtf8(name)) + "</th>";
                }
                html += "</tr></thead>\n<tbody>\n";
            }
            is_first = false;
            html += "<tr>";
            for (int i = 0; i < names.size(); ++i) {
                html += plain_cell(names[i], cells[static_cast<std::size_t>(i)]);
            }
            return file.write(html + "</tr>\n");
        });
    return done && file.write(is_first ? "" : "</tbody></table>\n") && file.write(section_end());
}

bool html_writer::finish() {
    report_record record = read_report_record(database);
    if (reader.holds("main", "sources", "outcome")) {
        reader.read_plain("select outcome from main.sources", [&](const auto&, const std::vector<export_cell>& cells) {
            ++record.outcomes[shown_text(cells[0])];
            return true;
        });
    }
    const report_facts facts = facts_of_rows();
    bool done = write_overview(record, facts);
    if (done && reader.holds("main", "sources")) {
        done = write_plain("sources", "Sources", sources_select);
    }
    for (const report_rows& table : tables) {
        done = done && write_table(table, record);
    }
    if (done && facts.not_shown > 0) {
        done = write_plain("not-shown", "Reminders in no row", not_shown_select);
    }
    done = done && file.write(section_begin("places", "Places")) && file.write(places.html()) &&
           file.write(section_end()) && file.write(section_begin("evidence", "Evidence files")) &&
           file.write(evidence_html(record)) && file.write(section_end()) &&
           file.write(section_begin("run", "The run")) && file.write(run_html(record)) && file.write(section_end()) &&
           file.write(report_foot());
    return done && is_whole() && file.make_whole();
}
