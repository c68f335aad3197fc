// SPDX-License-Identifier: MIT
// The names in a folder as the file system has them.
#pragma once

#include <QByteArray>

#include <sys/types.h>
#include <vector>

struct listed_name {
    QByteArray name; // native encoding, which need not be UTF-8
    mode_t type;     // of the entry itself, as S_ISREG() and its like take it; 0 when it cannot be told
};

// In byte order, "." and ".." left out, hidden ones included. error: errno, 0 when all of the folder was read.
struct folder_listing {
    std::vector<listed_name> names;
    int error = 0;
};

// Leaves the folder's access time alone where the system allows that.
folder_listing list_folder(const QByteArray& native_path);
