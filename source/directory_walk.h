// SPDX-License-Identifier: MIT
// Walk of an evidence folder. QDirIterator is not used: it skips names that are not UTF-8 without a word.
#pragma once

#include <QByteArray>
#include <QString>

#include <functional>

// One entry below the walked folder. Links to folders are entries too, but are never entered.
struct walk_entry {
    QString path;           // full path as text; bytes that are not UTF-8 show as U+FFFD
    QByteArray native_path; // full path as the file system has it
    bool is_regular_file;   // after following a link; false for a dangling or looping one
};

// Calls visit for every entry below folder (sub-folders included, hidden entries included, "." and ".." not), a folder
// before what is in it, the names of one folder in byte order so that every run gives the same rows in the same order.
// Stops at once and returns false when visit returns false. A folder that cannot be read is like an empty one.
bool walk_directory(const QString& folder, const std::function<bool(const walk_entry&)>& visit);
// The same for the entries directly in folder.
bool walk_entries_in(const QString& folder, const std::function<bool(const walk_entry&)>& visit);
