// SPDX-License-Identifier: MIT
// The one gate through which staging writes: into a folder of the caller, through no link, over no file.
#pragma once

#include "host/intake/view.h"
#include "source/quiet_open.h"

namespace intake {

// Paths are plain names with "/" between; folders on the way are made. Every function gives 0 or an errno value.
class staging_folder {
public:
    explicit staging_folder(const QByteArray& native_path) : top(native_path, O_RDONLY | O_DIRECTORY | O_CLOEXEC) {}

    bool is_open() const { return top.is_open(); }
    int make_folder(const QByteArray& path) const;
    // A new empty file, open for writing.
    int create_file(const QByteArray& path, quiet_file& created) const;
    // A file that is there, for reading.
    int open_file(const QByteArray& path, quiet_file& opened) const;
    int remove_file(const QByteArray& path) const;
    // from: a file of the same folder as to; takes the place of one that stands there.
    int rename_file(const QByteArray& from, const QByteArray& to) const;
    // Modification and access time of a file or folder; 1970-01-01 where one is not told.
    int set_times(const QByteArray& path, const ntfs_times& times) const;

private:
    // Handle of the folder that the last name of the path stands in, good until the next call, made where makes says
    // so; -1 and errno on failure.
    int parent_of(const QByteArray& path, bool makes) const;

    quiet_file top;
    mutable QByteArray last_folder; // that was asked for: many files of one folder need one walk to it
    mutable quiet_file last_opened;
};

// Writes all bytes; 0 or an errno value.
int write_all(const quiet_file& file, const char* bytes, qint64 count);

} // namespace intake
