// SPDX-License-Identifier: MIT
// An explicit stack of open folders' remaining names, so that the evidence's depth does not become ours.
#include "source/directory_walk.h"

#include "source/folder_listing.h"
#include "source/source_guard.h"

#include <QFile>

#include <climits>
#include <sys/stat.h>
#include <vector>

namespace {

// The names in one folder that are still to be visited.
struct open_folder {
    QByteArray path; // ends in "/"
    std::vector<listed_name> names;
    std::size_t next = 0;
};

open_folder enter(const QByteArray& path) {
    return {path, list_folder(path).names};
}

bool walk(const QString& folder, bool into_folders, const std::function<bool(const walk_entry&)>& visit) {
    QByteArray start = QFile::encodeName(folder);
    if (start.isEmpty()) {
        return true; // an empty path would mean the current folder
    }
    if (!start.endsWith('/')) {
        start += '/';
    }
    std::vector<open_folder> folders{enter(start)};
    while (!folders.empty()) {
        open_folder& current = folders.back();
        if (current.next == current.names.size()) {
            folders.pop_back();
            continue;
        }
        const listed_name next = std::move(current.names[current.next++]);
        const QByteArray path = current.path + next.name;
        if (path.size() >= PATH_MAX) {
            continue;
        }
        if (!visit({QFile::decodeName(path), path, S_ISREG(next.type), S_ISLNK(next.type)})) {
            return false;
        }
        if (into_folders && S_ISDIR(next.type)) {
            folders.push_back(enter(path + '/'));
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
