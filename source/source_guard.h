// SPDX-License-Identifier: MIT
// The one gate between paths that evidence chose and the examiner's file system: a path is only looked at when its
// real location (every ".." and symbolic link resolved) lies below the source root.
#pragma once

#include <QHash>
#include <QString>

class source_guard {
public:
    // root: the source root, absolute (see source_root.h). An empty or missing root lets nothing through.
    explicit source_guard(const QString& root);
    ~source_guard();
    source_guard(const source_guard&) = delete;
    source_guard& operator=(const source_guard&) = delete;

    // True when something exists at path and its real location is the root or below it. False for relative paths,
    // embedded NULs, over-long paths and links that lead out. The answer for a folder is remembered, so that many
    // files of one folder cost one look at the file system each; a folder that was moved meanwhile is not noticed.
    bool exists(const QString& path);
    // The same for a path as the file system spells it (names that are not UTF-8 have no faithful text).
    bool exists(const QByteArray& native_path);

private:
    struct known_folder {
        bool is_inside;
        int handle; // of the folder, so that a look at one of its files need not walk the whole path; -1: none
    };
    static constexpr int most_open_handles = 32;

    bool is_inside(const QByteArray& location) const; // as real_location() gives it
    const known_folder& folder_of(const QByteArray& native_folder);

    QByteArray native_root; // real path, without a trailing "/" (but for "/" itself)
    QHash<QByteArray, known_folder> folders;
    int open_handles = 0;
};
