// SPDX-License-Identifier: MIT
// Walk of an evidence folder. QDirIterator is not used: it skips names that are not UTF-8 without a word.
#pragma once

#include <QByteArray>
#include <QString>

#include <functional>

class source_guard;

// One entry below the walked folder. Links are entries too, but are neither entered nor looked through: the
// evidence chose where they lead. What an entry is was found out when its folder was listed; it may be gone since.
struct walk_entry {
    QString path;           // full path as text; bytes that are not UTF-8 show as U+FFFD
    QByteArray native_path; // full path as the file system has it
    bool is_regular_file;   // the entry itself, not what a link leads to
    bool is_link;
};

// Calls visit for every entry below folder (sub-folders included, hidden entries included, "." and ".." not), a folder
// before what is in it, the names of one folder in byte order so that every run gives the same rows in the same order.
// Stops at once and returns false when visit returns false. A folder that cannot be read is like an empty one. Entries
// whose full path is PATH_MAX bytes or longer cannot be looked at by it and are left out.
bool walk_directory(const QString& folder, const std::function<bool(const walk_entry&)>& visit);
// The same for the entries directly in folder.
bool walk_entries_in(const QString& folder, const std::function<bool(const walk_entry&)>& visit);

// True for a regular file, and for a link that guard lets through and that leads to one. A link that leads nowhere or
// out of the source is none, whatever the examiner's machine has at that place.
bool leads_to_regular_file(const walk_entry& entry, source_guard& guard);
