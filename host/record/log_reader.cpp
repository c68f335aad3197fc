// SPDX-License-Identifier: MIT
// A plain line begins with its time in brackets, which Base64 cannot, and ends with a line break; an enciphered record
// ends with the separator. Names from the evidence can bring either mark into a plain line.
#include "host/record/log_reader.h"

#include "common/encryptor_string.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr int chunk_size = 64 * 1024;
constexpr int longest_piece = 16 * 1024 * 1024;
constexpr int line_start_length = 23;

bool is_base64_text(const QByteArray& bytes) {
    return std::all_of(bytes.begin(), bytes.end(), [](char byte) {
        return (byte >= '0' && byte <= '9') || (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z') ||
               byte == '+' || byte == '/' || byte == '=';
    });
}

// Empty when the text is not a whole, unchanged record. No record is empty.
QByteArray deciphered_text(const QByteArray& base64) {
    const auto decoded = QByteArray::fromBase64Encoding(base64, QByteArray::AbortOnBase64DecodingErrors);
    if (!decoded) {
        return {};
    }
    encryptor_string cipher(0); // the seed matters to enciphering only
    return cipher.decryptToByteArray(decoded.decoded);
}

} // namespace

bool is_line_start(const QByteArray& bytes, int position) {
    static const char pattern[] = "[0000-aaa-00T00-00-00][";
    if (bytes.size() - position < line_start_length) {
        return false;
    }
    for (int i = 0; i < line_start_length; ++i) {
        const char byte = bytes[position + i];
        const bool fits = pattern[i] == '0'   ? byte >= '0' && byte <= '9'
                          : pattern[i] == 'a' ? (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z')
                                              : byte == pattern[i];
        if (!fits) {
            return false;
        }
    }
    return true;
}

bool log_reader::fill() {
    if (at_end) {
        return false;
    }
    buffer.remove(0, position);
    searched = std::max(0, searched - position);
    position = 0;
    const QByteArray more = source.read(chunk_size);
    buffer += more;
    at_end = more.isEmpty();
    return !at_end;
}

bool log_reader::next(log_piece& piece) {
    const int separator_length = static_cast<int>(std::strlen(enciphered_record_separator));
    while (buffer.size() - position < line_start_length && fill()) {
    }
    searched = position;
    const bool line = is_line_start(buffer, position);
    while (true) {
        const int line_break = buffer.indexOf('\n', searched);
        const int separator = line ? -1 : buffer.indexOf(enciphered_record_separator, searched);
        const bool by_separator = separator >= 0 && (line_break < 0 || separator < line_break);
        if (by_separator || line_break >= 0) {
            const int end = by_separator ? separator + separator_length : line_break + 1;
            piece = judge(end - position, !by_separator, by_separator);
            break;
        }
        searched = std::max(position, buffer.size() - separator_length + 1);
        if (buffer.size() - position > longest_piece || !fill()) {
            if (buffer.size() == position) {
                return false;
            }
            piece = judge(buffer.size() - position, false, false);
            break;
        }
    }
    piece.number = ++given;
    last = piece.what;
    return true;
}

log_piece log_reader::judge(int length, bool ended_by_line_break, bool ended_by_separator) {
    const QByteArray whole = buffer.mid(position, length);
    position += length;
    const bool nothing_yet = given == 0;
    const bool after_plain = !nothing_yet && last == log_piece::plain;
    if (is_line_start(whole) || whole == "\n" || (ended_by_line_break && (nothing_yet || after_plain))) {
        return {log_piece::plain, whole, 0};
    }
    QByteArray record = whole;
    if (ended_by_separator) {
        record.chop(static_cast<int>(std::strlen(enciphered_record_separator)));
    }
    const QByteArray text = ended_by_line_break ? QByteArray() : deciphered_text(record);
    if (!text.isEmpty()) {
        return {log_piece::deciphered, text, 0};
    }
    // The rest of a plain line whose names hold a line break or a separator is still plain. Without a separator behind
    // it, only what begins as every record does ("Aw" are the version's bits) is taken for a record that was cut off.
    const bool record_like = is_base64_text(record) && (ended_by_separator || record.startsWith("Aw"));
    const bool is_plain = (after_plain || (nothing_yet && !ended_by_separator)) && !record_like;
    return {is_plain ? log_piece::plain : log_piece::broken, is_plain ? whole : QByteArray(), 0};
}
