// SPDX-License-Identifier: MIT
// Values as text. What is shown to people must be valid UTF-8 without zero bytes; the database promises neither.
#pragma once

#include "host/exports/export_row.h"

#include <QString>

#include <string>

// All bytes are UTF-8. decoded, if given, gets the text when they are.
bool is_valid_utf8(std::string_view bytes, QString* decoded = nullptr);

// Appends the value: nothing for NULL, numbers in decimal, text and blobs as they are; one that is not UTF-8 with its
// bytes above 7F as \xNN, and in all of them a zero byte as \x00.
void append_shown(const export_cell& cell, std::string& to);
// The same in one piece.
QString shown_text(const export_cell& cell);

// Appends a number, or the exact bytes of a text or blob.
void append_exact(const export_cell& cell, std::string& to);
void append_number(double number, std::string& to);
void append_number(qint64 number, std::string& to);

// A plain finite decimal number and nothing else; read_number leaves value alone for anything else. No leading "+".
bool read_number(std::string_view text, double& value);
inline bool is_number(std::string_view text) {
    double value = 0;
    return read_number(text, value);
}

// The text with what XML cannot hold (control characters but tab and line breaks, U+FFFE, U+FFFF) as \xNN or \uNNNN.
QString xml_text(const QString& text);
