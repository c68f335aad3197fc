// SPDX-License-Identifier: MIT
// Opening of a hive so that its file keeps its access time.
#pragma once

#include "registry/hive_handles.h"

#include <QByteArray>

struct opened_hive {
    hive_handle hive; // null when the file is no readable hive, no regular file, or one of 2 GiB and more
    qint64 size = 0;  // of the file, bytes
};

// path is in the local 8-bit encoding and ends at its first zero byte. The whole hive is in memory then, no handle on
// the file is kept, and nothing is ever written to it.
opened_hive open_hive(const QByteArray& path);
