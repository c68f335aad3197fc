// SPDX-License-Identifier: MIT
// Windows compares names by single UTF-16 units, so nothing here folds into two characters.
#include "host/intake/names.h"

#include "source/native_names.h"

#include <QString>

#include <algorithm>

namespace intake {
namespace {

int value_of_hex_digit(char digit) {
    const int lower = digit | 0x20;
    return digit >= '0' && digit <= '9' ? digit - '0' : lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

} // namespace

bool is_plain_name(const QByteArray& name) {
    return !name.isEmpty() && name != "." && name != ".." && !name.contains('/') && !name.contains('\0');
}

QByteArray folded(const QByteArray& name) {
    const bool is_ascii = std::none_of(name.begin(), name.end(), [](char byte) { return (byte & 0x80) != 0; });
    if (is_ascii || !is_utf8(name)) {
        QByteArray letters = name; // QByteArray::toLower() takes the other bytes for Latin-1
        for (char& byte : letters) {
            byte = byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte | 0x20) : byte;
        }
        return letters;
    }
    QString text = QString::fromUtf8(name);
    for (QChar& unit : text) {
        unit = unit.toCaseFolded();
    }
    return text.toUtf8();
}

QByteArray without_percents(const QByteArray& name) {
    QByteArray decoded;
    for (int i = 0; i < name.size(); ++i) {
        const bool begins = name[i] == '%' && name.size() - i > 2;
        const int high = begins ? value_of_hex_digit(name[i + 1]) : -1;
        const int low = begins ? value_of_hex_digit(name[i + 2]) : -1;
        const bool is_code = high >= 0 && low >= 0;
        decoded += is_code ? static_cast<char>(high * 16 + low) : name[i];
        i += is_code ? 2 : 0;
    }
    return decoded;
}

} // namespace intake
