// SPDX-License-Identifier: MIT
// Text as HTML: the one place through which everything that evidence, a database or a record holds gets into a report.
#pragma once

#include "host/exports/places.h"

#include <QString>

#include <string>
#include <string_view>

// Appends the text as content of an element (or, where the characters are known, as an attribute's value in double
// quotes). Markup becomes characters. What a reader would not see or what turns the direction of reading (control
// characters, direction marks, invisible blanks), and in a text that is not UTF-8 each byte above 7F, shows as a
// <mark> with its code: \x1b, \u202e, \xff. Line breaks and tabs stay.
void append_html(std::string_view bytes, std::string& to);
void append_html(const QString& text, std::string& to);
// The same with line breaks and tabs as codes, too: the text cannot pretend to be two.
void append_html_line(std::string_view bytes, std::string& to);
void append_html_line(const QString& text, std::string& to);
std::string html_line(const QString& text);

// Appends a link to a map of the place; made of numbers only. The place must be valid.
void append_map_link(const map_point& point, std::string& to);

// "1,234,567"
std::string grouped(qint64 number);
// "1 row", "1,234 rows"
std::string counted(qint64 number, const char* one, const char* many);
