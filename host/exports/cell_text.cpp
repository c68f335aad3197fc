// SPDX-License-Identifier: MIT
// Most values are plain ASCII; only the others are decoded.
#include "host/exports/cell_text.h"

#include <QTextCodec>

#include <algorithm>
#include <charconv>
#include <cmath>

namespace {

bool is_plain(std::string_view bytes) {
    return std::all_of(bytes.begin(), bytes.end(), [](char byte) { return byte > 0; });
}

void append_byte_code(unsigned char byte, std::string& to) {
    constexpr char digits[] = "0123456789abcdef";
    to += {'\\', 'x', digits[byte >> 4], digits[byte & 15]};
}

void append_shown_bytes(std::string_view bytes, std::string& to) {
    if (is_plain(bytes)) {
        to.append(bytes);
        return;
    }
    const bool is_text = is_valid_utf8(bytes);
    for (const char byte : bytes) {
        const auto code = static_cast<unsigned char>(byte);
        if (code == 0 || (code >= 0x80 && !is_text)) {
            append_byte_code(code, to);
        } else {
            to += byte;
        }
    }
}

template <class Number>
void append_shortest(Number number, std::string& to) {
    char digits[32]; // the longest double takes 24
    to.append(digits, std::to_chars(std::begin(digits), std::end(digits), number).ptr);
}

bool fits_xml(QChar character) {
    const ushort code = character.unicode();
    const bool is_space = code == '\t' || code == '\n' || code == '\r';
    return (code >= 0x20 || is_space) && code < 0xfffe;
}

} // namespace

bool is_valid_utf8(std::string_view bytes, QString* decoded) {
    QTextCodec::ConverterState state(QTextCodec::IgnoreHeader); // a byte order mark is text, too
    constexpr int utf8_number = 106;
    static QTextCodec* const utf8 = QTextCodec::codecForMib(utf8_number);
    const QString text = utf8->toUnicode(bytes.data(), static_cast<int>(bytes.size()), &state);
    if (decoded) {
        *decoded = text;
    }
    return state.invalidChars == 0 && state.remainingChars == 0;
}

void append_shown(const export_cell& cell, std::string& to) {
    if (cell.type == export_cell::text || cell.type == export_cell::blob) {
        append_shown_bytes(cell.bytes, to);
    } else {
        append_exact(cell, to);
    }
}

QString shown_text(const export_cell& cell) {
    std::string text;
    append_shown(cell, text);
    QString decoded;
    is_valid_utf8(text, &decoded); // unlike QString::fromUtf8 it keeps a byte order mark
    return decoded;
}

void append_exact(const export_cell& cell, std::string& to) {
    switch (cell.type) {
    case export_cell::null:
        return;
    case export_cell::integer:
        return append_number(cell.whole, to);
    case export_cell::real:
        return append_number(cell.fraction, to);
    case export_cell::text:
    case export_cell::blob:
        to.append(cell.bytes);
    }
}

void append_number(double number, std::string& to) {
    append_shortest(number, to);
}

void append_number(qint64 number, std::string& to) {
    append_shortest(number, to);
}

bool read_number(std::string_view text, double& value) {
    double read = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), read);
    if (error != std::errc() || end != text.data() + text.size() || !std::isfinite(read)) {
        return false;
    }
    value = read;
    return true;
}

QString xml_text(const QString& text) {
    if (std::all_of(text.begin(), text.end(), fits_xml)) {
        return text;
    }
    QString fit;
    for (const QChar character : text) {
        const bool narrow = character.unicode() < 0x100;
        if (fits_xml(character)) {
            fit += character;
        } else {
            fit += (narrow ? QStringLiteral("\\x") : QStringLiteral("\\u")) +
                   QStringLiteral("%1").arg(character.unicode(), narrow ? 2 : 4, 16, QLatin1Char('0'));
        }
    }
    return fit;
}
