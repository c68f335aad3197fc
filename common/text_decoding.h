// SPDX-License-Identifier: MIT
// The three ways in which bytes of evidence become text. Each stops at the first zero byte and never returns a null
// text (a null text would be stored as SQL NULL): no bytes give "".
#pragma once

#include <QByteArray>
#include <QString>

#include <cstring>

inline int length_until_nul(const QByteArray& bytes) {
    return static_cast<int>(qstrnlen(bytes.constData(), static_cast<uint>(bytes.size())));
}

// UTF-8; what is not UTF-8 becomes U+FFFD.
inline QString utf8_until_nul(const QByteArray& bytes) {
    return QString::fromUtf8(bytes.constData(), length_until_nul(bytes));
}

// Latin-1: every byte is one character.
inline QString latin1_until_nul(const QByteArray& bytes) {
    return QString::fromLatin1(bytes.constData(), length_until_nul(bytes));
}

// The examiner's machine's own 8-bit encoding.
inline QString local_8bit_until_nul(const QByteArray& bytes) {
    return QString::fromLocal8Bit(bytes.constData(), length_until_nul(bytes));
}
