// SPDX-License-Identifier: MIT
// Plain system calls; nothing here ever opens a file, but folders for their names.
#include "host/native_files.h"

#include "source/quiet_open.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

bool is_utf8(const QByteArray& bytes) {
    const QByteArray guarded = '/' + bytes; // a byte order mark counts only where a text begins
    return QString::fromUtf8(guarded).toUtf8() == guarded;
}

QString text_of(const QByteArray& native_path) {
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

folder_listing list_folder(const QByteArray& folder) {
    folder_listing listing;
    const folder_handle opened = open_folder_quietly(folder);
    if (!opened) {
        listing.error = errno;
        return listing;
    }
    errno = 0;
    while (const dirent* const entry = ::readdir(opened.get())) {
        if (std::strcmp(entry->d_name, ".") != 0 && std::strcmp(entry->d_name, "..") != 0) {
            listing.names.append(QByteArray(entry->d_name));
        }
        errno = 0;
    }
    listing.error = errno;
    std::sort(listing.names.begin(), listing.names.end());
    return listing;
}
