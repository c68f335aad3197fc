// SPDX-License-Identifier: MIT
// Values as JSON. Bytes that are not UTF-8 are never lost: they are shown and stand in hexadecimal beside that.
#pragma once

#include "host/exports/export_row.h"

#include <string>

// Appends the text in quotes. utf8 must be valid.
void append_json_text(std::string_view utf8, std::string& to);

// Appends "name":value, with a comma in front unless to ends in "{". A text or blob that is not UTF-8, and any other
// blob, is followed by "name_bytes", its exact bytes in hexadecimal. name needs no escaping.
void append_json_field(const char* name, const export_cell& cell, std::string& to);
// The same for a text of our own, and for a number.
void append_json_field(const char* name, std::string_view utf8, std::string& to);
void append_json_field(const char* name, qint64 number, std::string& to);
// The texts of a time, "name_utc" and, when the export has a zone, "name_local"; null for what is no time.
void append_json_times(const char* name, const export_time& time, bool with_zone, std::string& to);
