// SPDX-License-Identifier: MIT
// An explicit stack of open folders' remaining names, so that the evidence's depth does not become ours.
#include "source/directory_walk.h"

#include <QFile>
#include <QVector>

#include <algorithm>
#include <cstring>
#include <dirent.h>
#include <memory>
#include <sys/stat.h>
#include <vector>

namespace {

// The names in one folder, sorted so that the next one is at the end.
struct open_folder {
    QByteArray path; // ends in "/"
    std::vector<QByteArray> remaining;
};

open_folder list_folder(const QByteArray& path) {
    struct close_folder {
        void operator()(DIR* folder) const { ::closedir(folder); }
    };
    open_folder listed{path, {}};
    const std::unique_ptr<DIR, close_folder> folder(::opendir(path.constData()));
    if (!folder) {
        return listed;
    }
    while (const dirent* entry = ::readdir(folder.get())) {
        if (std::strcmp(entry->d_name, ".") != 0 && std::strcmp(entry->d_name, "..") != 0) {
            listed.remaining.emplace_back(entry->d_name);
        }
    }
    std::sort(listed.remaining.rbegin(), listed.remaining.rend());
    return listed;
}

bool is_regular_file(const QByteArray& path) {
    struct stat status = {};
    return ::stat(path.constData(), &status) == 0 && S_ISREG(status.st_mode);
}

bool is_real_folder(const QByteArray& path) {
    struct stat status = {};
    return ::lstat(path.constData(), &status) == 0 && S_ISDIR(status.st_mode);
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
        const QByteArray path = folders.back().path + folders.back().remaining.back();
        folders.back().remaining.pop_back();
        if (!visit({QFile::decodeName(path), path, is_regular_file(path)})) {
            return false;
        }
        if (into_folders && is_real_folder(path)) {
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
