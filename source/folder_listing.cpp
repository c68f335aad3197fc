// SPDX-License-Identifier: MIT
// Plain system calls: Qt's own listing leaves out names that are not UTF-8.
#include "source/folder_listing.h"

#include "source/quiet_open.h"

#include <algorithm>
#include <cstring>

namespace {

// Some file systems do not tell the type with the name.
mode_t type_of(DIR* folder, const dirent& entry) {
    if (entry.d_type != DT_UNKNOWN) {
        return static_cast<mode_t>(DTTOIF(entry.d_type));
    }
    struct stat status = {};
    return ::fstatat(::dirfd(folder), entry.d_name, &status, AT_SYMLINK_NOFOLLOW) == 0 ? status.st_mode : 0;
}

} // namespace

folder_listing list_folder(const QByteArray& native_path) {
    folder_listing listing;
    const folder_handle folder = open_folder_quietly(native_path);
    if (!folder) {
        listing.error = errno;
        return listing;
    }
    errno = 0;
    while (const dirent* const entry = ::readdir(folder.get())) {
        if (std::strcmp(entry->d_name, ".") != 0 && std::strcmp(entry->d_name, "..") != 0) {
            listing.names.push_back({entry->d_name, type_of(folder.get(), *entry)});
        }
        errno = 0;
    }
    listing.error = errno;
    std::sort(listing.names.begin(), listing.names.end(),
              [](const listed_name& left, const listed_name& right) { return left.name < right.name; });
    return listing;
}
