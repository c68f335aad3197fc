// SPDX-License-Identifier: MIT
// A name by which Qt can reach a file whose own name is not UTF-8 (Qt would encode U+FFFD and miss it).
#pragma once

#include "source/directory_walk.h"

#include <QString>

class readable_alias {
public:
    // entry: the file. Nothing is opened for reading; the file's access time stays.
    explicit readable_alias(const walk_entry& entry);
    ~readable_alias();
    readable_alias(const readable_alias&) = delete;
    readable_alias& operator=(const readable_alias&) = delete;

    // The entry's own path when its text is faithful, else a path below /proc that leads to the same file as long as
    // this object lives; "" when there is none (the file is gone): the unfaithful text might name another file.
    const QString& path() const { return name; }
    bool is_own_path() const { return is_faithful; }

private:
    bool is_faithful;
    int handle = -1;
    QString name;
};
