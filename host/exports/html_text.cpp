// SPDX-License-Identifier: MIT
// Most text is plain ASCII and goes by in runs; only the rest is decoded.
#include "host/exports/html_text.h"

#include "host/console.h"
#include "host/exports/cell_text.h"

#include <algorithm>
#include <cstdlib>

namespace {

constexpr char first_printable = ' ';
constexpr char delete_character = 0x7f;

bool is_plain(char byte) {
    return byte >= first_printable && byte != delete_character && byte != '&' && byte != '<' && byte != '>' &&
           byte != '"' && byte != '\'';
}

bool is_break(char16_t character) {
    return character == '\n' || character == '\t';
}

bool is_invisible(char16_t code) {
    return code == 0x00ad || code == 0x180e || code == 0x200b || (code >= 0x2060 && code <= 0x2064) || code == 0x3164 ||
           code == 0xfeff || (code >= 0xfff9 && code <= 0xfffb) || code >= 0xfffe;
}

void append_mark(const QString& code, std::string& to) {
    to += "<mark>" + code.toStdString() + "</mark>";
}

// Of the characters that stand for markup; false for others.
bool append_entity(char16_t character, std::string& to) {
    switch (character) {
    case '&':
        to += "&amp;";
        return true;
    case '<':
        to += "&lt;";
        return true;
    case '>':
        to += "&gt;";
        return true;
    case '"':
        to += "&quot;";
        return true;
    case '\'':
        to += "&#39;";
        return true;
    default:
        return false;
    }
}

void append_decoded(const QString& text, bool keeps_breaks, std::string& to) {
    int plain = 0; // where the characters begin that need nothing
    for (int i = 0; i < text.size(); ++i) {
        const QChar character = text[i];
        const char16_t code = character.unicode();
        const bool is_marked = (is_unfit(character) && !(keeps_breaks && is_break(code))) || is_invisible(code);
        const bool is_markup = code < delete_character && code >= first_printable && !is_plain(static_cast<char>(code));
        if (!is_marked && !is_markup) {
            continue;
        }
        to += text.mid(plain, i - plain).toStdString();
        plain = i + 1;
        if (is_marked) {
            append_mark(code_of(character), to);
        } else {
            append_entity(code, to);
        }
    }
    to += text.mid(plain).toStdString();
}

void append_bytes(std::string_view bytes, std::string& to) {
    for (const char byte : bytes) {
        const auto code = static_cast<unsigned char>(byte);
        if (is_plain(byte)) {
            to += byte;
        } else if (!append_entity(code, to)) {
            append_mark(code_of(QLatin1Char(byte)), to);
        }
    }
}

void append_text(std::string_view bytes, bool keeps_breaks, std::string& to) {
    if (std::all_of(bytes.begin(), bytes.end(), is_plain)) {
        to.append(bytes);
        return;
    }
    QString decoded;
    if (is_valid_utf8(bytes, &decoded)) {
        append_decoded(decoded, keeps_breaks, to);
    } else {
        append_bytes(bytes, to);
    }
}

} // namespace

void append_html(std::string_view bytes, std::string& to) {
    append_text(bytes, true, to);
}

void append_html(const QString& text, std::string& to) {
    append_decoded(text, true, to);
}

void append_html_line(std::string_view bytes, std::string& to) {
    append_text(bytes, false, to);
}

void append_html_line(const QString& text, std::string& to) {
    append_decoded(text, false, to);
}

std::string html_line(const QString& text) {
    std::string html;
    append_decoded(text, false, html);
    return html;
}

void append_map_link(const map_point& point, std::string& to) {
    std::string place = "mlat=";
    append_number(point.latitude, place);
    place += "&amp;mlon=";
    append_number(point.longitude, place);
    to += R"(<a class="map" rel="noreferrer noopener" href="https://www.openstreetmap.org/?)" + place + R"(">map</a>)";
}

std::string grouped(qint64 number) {
    std::string digits = std::to_string(number);
    const std::size_t sign = number < 0 ? 1 : 0;
    for (std::size_t place = digits.size(); place > sign + 3;) {
        place -= 3;
        digits.insert(place, 1, ',');
    }
    return digits;
}

std::string counted(qint64 number, const char* one, const char* many) {
    return grouped(number) + ' ' + (number == 1 ? one : many);
}
