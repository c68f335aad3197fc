// SPDX-License-Identifier: MIT
// One event stays one line: what would break it is made visible.
#include "host/exports/l2tcsv_writer.h"

#include "host/exports/cell_text.h"
#include "host/exports/csv_writer.h"

namespace {

constexpr std::string_view first_line = "date,time,timezone,MACB,source,sourcetype,type,user,host,short,desc,version,"
                                        "filename,inode,notes,format,extra\r\n";

const char* macb_of(event_kind event) {
    switch (event) {
    case event_kind::modified:
        return "M...";
    case event_kind::accessed:
        return ".A..";
    case event_kind::created:
        return "...B";
    default:
        return "....";
    }
}

std::string shown_in(const export_row& row, const char* column) {
    std::string shown;
    const int index = row.table.index_of(column);
    if (index >= 0) {
        append_shown(row.cells[static_cast<std::size_t>(index)], shown);
    }
    return shown;
}

// Its first characters.
std::string shortened(const std::string& utf8) {
    constexpr int longest = 80;
    QString decoded;
    is_valid_utf8(utf8, &decoded);
    if (decoded.size() <= longest) {
        return utf8;
    }
    const bool splits_pair = decoded.at(longest).isLowSurrogate();
    return decoded.left(splits_pair ? longest - 1 : longest).toUtf8().toStdString() + "...";
}

} // namespace

l2tcsv_writer::l2tcsv_writer(export_folder& folder, bool exact_bytes)
    : timeline_writer(folder, "l2tcsv.csv", first_line), exact(exact_bytes) {}

bool l2tcsv_writer::append_event(const timeline_event& event, std::string& to) {
    const std::string_view utc = event.time.utc.data(); // yyyy-MM-ddThh:mm:ss+00:00
    to += std::string(utc.substr(5, 2)) + '/' + std::string(utc.substr(8, 2)) + '/' + std::string(utc.substr(0, 4));
    to += ',' + std::string(utc.substr(11, 8)) + ",UTC," + macb_of(event.column.event) + ",CORTANA,Cortana ";
    to += event.row.table.name.constData();
    to += std::string(",") + event.column.event_name + ',';
    append(shown_in(event.row, "system_user"), to);
    to += ",-,";
    append(shortened(event.message), to);
    to += ',';
    append(event.message, to);
    to += ",2,";
    append(shown_in(event.row, "source_file"), to);
    to += ',';
    append_number(key_of(event.row), to);
    to += std::string(",-,cortana,column: ") + event.column.name + "\r\n";
    return true;
}

void l2tcsv_writer::append(std::string_view utf8, std::string& line) {
    std::string text = in_one_line(utf8);
    if (!exact && is_formula(text)) {
        text.insert(0, 1, '\'');
        note(QStringLiteral("cells with an apostrophe in front"));
    }
    append_csv_field(text.empty() ? std::string_view("-") : std::string_view(text), line);
}
