// SPDX-License-Identifier: MIT
// UTF-8 to the code pages of ESE text columns.
#include "samples/ese_text.h"

#include "samples/ese_bytes.h"

#include <algorithm>
#include <iterator>

namespace {

// Windows-1252 from 0x80 to 0x9F; its five unused places stand for the control characters of the same number.
constexpr char32_t upper_1252[32] = {0x20AC, 0x81,   0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                     0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x8D,   0x017D, 0x8F,
                                     0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                     0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x9D,   0x017E, 0x0178};

// How many bytes the character with this first byte has; 0: none begins so.
std::size_t length_of(unsigned char first) {
    if (first < 0x80) {
        return 1;
    }
    if (first >= 0xC2 && first < 0xE0) {
        return 2;
    }
    if (first >= 0xE0 && first < 0xF0) {
        return 3;
    }
    return first >= 0xF0 && first < 0xF5 ? 4 : 0;
}

// The character at `at`, which moves behind it.
char32_t next_character(const std::string& utf8, std::size_t& at) {
    constexpr char32_t smallest[5] = {0, 0, 0x80, 0x800, 0x10000};
    const auto first = static_cast<unsigned char>(utf8[at]);
    const std::size_t length = length_of(first);
    if (length == 0 || utf8.size() - at < length) {
        throw ese_error("ESE writer: text is not UTF-8");
    }
    char32_t character = length == 1 ? first : first & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i) {
        const auto byte = static_cast<unsigned char>(utf8[at + i]);
        if ((byte & 0xC0) != 0x80) {
            throw ese_error("ESE writer: text is not UTF-8");
        }
        character = character << 6 | (byte & 0x3F);
    }
    if (character < smallest[length] || character > 0x10FFFF || (character >= 0xD800 && character < 0xE000)) {
        throw ese_error("ESE writer: text is not UTF-8");
    }
    at += length;
    return character;
}

void append_utf_16(std::string& out, char32_t character) {
    if (character < 0x10000) {
        append_le(out, static_cast<std::uint16_t>(character));
        return;
    }
    append_le(out, static_cast<std::uint16_t>(0xD7C0 + (character >> 10)));
    append_le(out, static_cast<std::uint16_t>(0xDC00 + (character & 0x3FF)));
}

char in_1252(char32_t character) {
    if (character < 0x80 || (character >= 0xA0 && character < 0x100)) {
        return static_cast<char>(character);
    }
    const auto* const found = std::find(std::begin(upper_1252), std::end(upper_1252), character);
    if (found == std::end(upper_1252)) {
        throw ese_error("ESE writer: character is not in Windows-1252");
    }
    return static_cast<char>(0x80 + (found - std::begin(upper_1252)));
}

char in_ascii(char32_t character) {
    if (character > 0x7F) {
        throw ese_error("ESE writer: character is not in ASCII");
    }
    return static_cast<char>(character);
}

} // namespace

void ese_append_text(std::string& out, const std::string& utf8, ese_code_page code_page) {
    for (std::size_t at = 0; at < utf8.size();) {
        const char32_t character = next_character(utf8, at);
        if (code_page == ese_code_page::utf_16) {
            append_utf_16(out, character);
        } else {
            out.push_back(code_page == ese_code_page::ascii ? in_ascii(character) : in_1252(character));
        }
    }
}
