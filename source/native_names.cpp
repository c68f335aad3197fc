// SPDX-License-Identifier: MIT
// Bytes in, text out; nothing is opened.
#include "source/native_names.h"

#include <cstring>

bool is_utf8(const QByteArray& bytes) {
    const QByteArray guarded = '/' + bytes; // a byte order mark counts only where a text begins
    return QString::fromUtf8(guarded).toUtf8() == guarded;
}

QString shown_path(const QByteArray& native_path) {
    if (is_utf8(native_path)) {
        return QString::fromUtf8(native_path);
    }
    QString text;
    for (const char byte : native_path) {
        const auto code = static_cast<unsigned char>(byte);
        text += code < 0x80 ? QString(QLatin1Char(byte)) : QStringLiteral("\\x%1").arg(code, 2, 16, QLatin1Char('0'));
    }
    return text;
}

QString error_words(int error) {
    return QString::fromLocal8Bit(std::strerror(error));
}
