// SPDX-License-Identifier: MIT
// An explicit stack of open folders' remaining names, so that the evidence's depth does not become ours.
#include "source/directory_walk.h"

#include "source/quiet_open.h"
#include "source/source_guard.h"

#include <QFile>

#include <algorithm>
#include <climits>
#include <cstring>
#include <sys/stat.h>
#include <vector>

namespace {

struct listed_name {
    QByteArray name;
    mode_t type; // as S_ISREG() and its like take it; 0 when it cannot be told
};

// The names in one folder, sorted so that the next one is at the end.
struct open_folder {
    QByteArray path; // ends in "/"
    std::vector<listed_name> remaining;
};

// Some file systems do not tell the type with the name.
mode_t type_of(DIR* folder, const dirent& entry) {
    if (entry.d_type != DT_UNKNOWN) {
        return static_cast<mode_t>(DTTOIF(entry.d_type));
    }
    struct stat status = {};
    return ::fstatat(::dirfd(folder), entry.d_name, &status, AT_SYMLINK_NOFOLLOW) == 0 ? status.st_mode : 0;
}

open_folder list_folder(const QByteArray& path) {
    open_folder listed{path, {}};
    const folder_handle folder = open_folder_quietly(path);
    if (!folder) {
        return listed;
    }
    while (const dirent* entry = ::readdir(folder.get())) {
        if (std::strcmp(entry->d_name, ".") != 0 && std::strcmp(entry->d_name, "..") != 0) {
            listed.remaining.push_back({entry->d_name, type_of(folder.get(), *entry)});
        }
    }
    std::sort(listed.remaining.begin(), listed.remaining.end(),
              [](const listed_name& left, const listed_name& right) { return right.name < left.name; });
    return listed;
}

bool walk(const QString& folder, bool into_folders, const std::function<bool(const walk_entry&)>& visit) {
    QByteArray start = QFile::encodeName(folder);
    if (start.isEmpty()) {
        return true; // an empty path would mean the current folder
    }
    if (!start.endsWith('/')) {
        start += '/';
    }
    std::vector<open_folder> folders{list_folder(start)};
    while (!folders.empty()) {
        if (folders.back().remaining.empty()) {
            folders.pop_back();
            continue;
        }
        const listed_name next = std::move(folders.back().remaining.back());
        folders.back().remaining.pop_back();
        const QByteArray path = folders.back().path + next.name;
        if (path.size() >= PATH_MAX) {
            continue;
        }
        if (!visit({QFile::decodeName(path), path, S_ISREG(next.type), S_ISLNK(next.type)})) {
            return false;
        }
        if (into_folders && S_ISDIR(next.type)) {
            folders.push_back(list_folder(path + '/'));
        }
    }
    return true;
}

} // namespace

bool walk_directory(const QString& folder, const std::function<bool(const walk_entry&)>& visit) {
    return walk(folder, true, visit);
}

bool walk_entries_in(const QString& folder, const std::function<bool(const walk_entry&)>& visit) {
    return walk(folder, false, visit);
}

bool leads_to_regular_file(const walk_entry& entry, source_guard& guard) {
    if (!entry.is_link) {
        return entry.is_regular_file;
    }
    struct stat status = {};
    return guard.exists(entry.native_path) && ::stat(entry.native_path.constData(), &status) == 0 &&
           S_ISREG(status.st_mode);
}
