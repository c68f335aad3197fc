// SPDX-License-Identifier: MIT
// Which columns a table of the report has: what tells of the row, its times and numbers each stand in one of their own,
// the rest goes by name into the last one.
#pragma once

#include "host/exports/export_row.h"

#include <string>

enum class report_part {
    key,         // the row's number
    link,        // what the ids say of a reminder row
    value,       // a text or a number
    coordinates, // latitude and longitude, and a link to a map
    time,
    user,   // and where the row is from, by its number in the list of origins
    further // the columns without one of their own
};

struct report_column {
    report_part part;
    int index = -1;     // in the export_table
    int linked = -1;    // a reminder's text: the column with the text that the ids lead to
    std::string beside; // a reminder's time: the name of the time that the ids lead to
};

QVector<report_column> report_columns(const export_table& table);
// The words above the column; with_zone: its times stand in a zone, too.
std::string heading_of(const report_column& column, const export_table& table);
// The name of a CSS class for the column's width.
const char* width_of(const report_column& column, const export_table& table);
// The columns that tell where a row is from: all of them are in the list of origins, none in a row's last column.
const QVector<QByteArray>& origin_columns();
// "time reminders"
std::string title_of(const QByteArray& table);
