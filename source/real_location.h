// SPDX-License-Identifier: MIT
// Where a path really leads. Header only: the command-line host asks the same and links nothing of the plugin.
#pragma once

#include <QByteArray>

#include <cstdlib>
#include <memory>

// The path with every link and ".." resolved by the kernel's own rules; empty (and errno set) when that leads nowhere.
inline QByteArray real_location(const QByteArray& native_path) {
    struct free_text {
        void operator()(char* text) const { std::free(text); }
    };
    const std::unique_ptr<char, free_text> resolved(::realpath(native_path.constData(), nullptr));
    return QByteArray(resolved.get());
}

// Both as real_location() gives them, neither empty.
inline bool is_at_or_below(const QByteArray& location, const QByteArray& folder) {
    return folder == "/" || location == folder || location.startsWith(folder + '/');
}
