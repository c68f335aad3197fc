// SPDX-License-Identifier: MIT
// MD5|name|inode|mode|UID|GID|size|atime|mtime|ctime|crtime. A line holds one time; the three others are 0, the
// format's word for none.
#include "host/exports/bodyfile_writer.h"

#include "host/exports/cell_text.h"

namespace {

// mactime parts lines at "|" and reads "%" with two digits as a byte; there is no other escape.
std::string escaped(const std::string& name) {
    std::string safe;
    for (const char byte : name) {
        if (byte == '|') {
            safe += "%7C";
        } else if (byte == '%') {
            safe += "%25";
        } else {
            safe += byte;
        }
    }
    return safe;
}

// Where the four times stand. What is neither access, change of content nor creation takes ctime, which nothing else
// of ours uses; the name tells what it is.
int slot_of(event_kind event) {
    switch (event) {
    case event_kind::accessed:
        return 0;
    case event_kind::modified:
        return 1;
    case event_kind::created:
        return 3;
    default:
        return 2;
    }
}

} // namespace

bodyfile_writer::bodyfile_writer(export_folder& folder) : timeline_writer(folder, "bodyfile.txt", {}) {}

bool bodyfile_writer::append_event(const timeline_event& event, std::string& to) {
    if (event.time.seconds < 0) {
        return false; // readers pass over times before 1970
    }
    to += "0|[" + std::string(event.column.event_name) + "] " + escaped(in_one_line(event.message)) + '|';
    append_number(key_of(event.row), to);
    to += "||0|0|";
    const int size = event.row.table.index_of("file_size");
    const export_cell* const file_size = size < 0 ? nullptr : &event.row.cells[static_cast<std::size_t>(size)];
    append_number(file_size && file_size->type == export_cell::integer ? file_size->whole : qint64(0), to);
    for (int slot = 0; slot < 4; ++slot) {
        to += '|';
        append_number(slot == slot_of(event.column.event) ? event.time.seconds : qint64(0), to);
    }
    to += '\n';
    return true;
}
