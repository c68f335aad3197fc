// SPDX-License-Identifier: MIT
// A cell of the report's tables.
#pragma once

#include "host/exports/report_columns.h"

#include <string>

// Append the content of a cell as HTML; nothing where the row has nothing to show.
void append_value(const report_column& column, const export_row& row, std::string& to);
void append_time(const report_column& column, const export_row& row, std::string& to);
void append_link(const report_column& column, const export_row& row, std::string& to);
void append_coordinates(const export_row& row, std::string& to);

// A long text in a box of its own, others as they are.
void append_long(std::string_view text, std::string& to);
// A stored time, in UTC; what is stored and no time is told as that.
void append_utc_time(const export_cell& cell, std::string& to);
// "2019-05-01 12:00:00+00:00" of the ISO 8601 text.
void append_shown_time(const time_text& text, std::string& to);
