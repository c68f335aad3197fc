// SPDX-License-Identifier: MIT
// Qt escapes; text in which nothing is to be escaped is passed on as it is.
#include "host/exports/json_text.h"

#include "host/exports/cell_text.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>
#include <cmath>

namespace {

bool needs_no_escape(std::string_view text) {
    return std::all_of(text.begin(), text.end(),
                       [](char byte) { return byte >= ' ' && byte != 0x7f && byte != '"' && byte != '\\'; });
}

void append_name(const char* name, const char* suffix, std::string& to) {
    if (to.empty() || to.back() != '{') {
        to += ',';
    }
    to += '"';
    to += name;
    to += suffix;
    to += "\":";
}

void append_escaped(const QString& text, std::string& to) {
    const QByteArray array = QJsonDocument(QJsonArray{text}).toJson(QJsonDocument::Compact); // ["text"]
    to.append(array.constData() + 1, static_cast<std::size_t>(array.size() - 2));
}

void append_bytes(const char* name, const export_cell& cell, std::string& to) {
    QString decoded;
    const bool is_text = is_valid_utf8(cell.bytes, &decoded);
    if (is_text) {
        append_escaped(decoded, to);
    } else {
        std::string shown;
        append_shown(cell, shown);
        append_json_text(shown, to);
    }
    if (!is_text || cell.type == export_cell::blob) {
        append_name(name, "_bytes", to);
        to += '"';
        to += QByteArray::fromRawData(cell.bytes.data(), static_cast<int>(cell.bytes.size())).toHex().constData();
        to += '"';
    }
}

} // namespace

void append_json_text(std::string_view utf8, std::string& to) {
    if (needs_no_escape(utf8)) {
        to += '"';
        to.append(utf8);
        to += '"';
    } else {
        QString decoded;
        is_valid_utf8(utf8, &decoded);
        append_escaped(decoded, to);
    }
}

void append_json_field(const char* name, const export_cell& cell, std::string& to) {
    append_name(name, "", to);
    if (cell.type == export_cell::null) {
        to += "null";
    } else if (cell.type == export_cell::integer) {
        append_number(cell.whole, to);
    } else if (cell.type == export_cell::real) {
        const bool sayable = std::isfinite(cell.fraction); // JSON knows no infinity
        to.append(sayable ? "" : "\"");
        append_number(cell.fraction, to);
        to.append(sayable ? "" : "\"");
    } else if (cell.type == export_cell::text && needs_no_escape(cell.bytes)) {
        append_json_text(cell.bytes, to);
    } else {
        append_bytes(name, cell, to);
    }
}

void append_json_field(const char* name, std::string_view utf8, std::string& to) {
    append_name(name, "", to);
    append_json_text(utf8, to);
}

void append_json_field(const char* name, qint64 number, std::string& to) {
    append_name(name, "", to);
    append_number(number, to);
}

void append_json_times(const char* name, const export_time& time, bool with_zone, std::string& to) {
    const auto append = [&](const char* suffix, const time_text& text) {
        append_name(name, suffix, to);
        if (time.is_time) {
            append_json_text(text.data(), to);
        } else {
            to += "null";
        }
    };
    append("_utc", time.utc);
    if (with_zone) {
        append("_local", time.in_zone);
    }
}
