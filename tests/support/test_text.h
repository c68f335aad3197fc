// SPDX-License-Identifier: MIT
// The short form of a text in tests.
#pragma once

#include <QString>

// "text"_q: the UTF-8 literal as a QString; ""_q is empty, not null.
inline QString operator""_q(const char* text, std::size_t size) {
    return QString::fromUtf8(text, static_cast<int>(size));
}
