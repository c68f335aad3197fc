// SPDX-License-Identifier: MIT
// Whether a transaction log of a registry hive (.LOG1, .LOG2) holds something newer than the hive. This is told by the
// numbers in the log only: whether its pages can be applied shows when they are.
#pragma once

#include <QByteArray>

#include <functional>
#include <string_view>

// A file's bytes: up to size bytes from offset, fewer at the end of the file or when it cannot be read.
using byte_reader = std::function<QByteArray(qint64 offset, qint64 size)>;

struct hive_log_state {
    bool is_sound = false;   // its first sector is that of a log and whole
    int newer_entries = 0;   // of a log of before Windows 8.1, which holds one state of the hive, 1 or 0
    quint32 first_entry = 0; // sequence numbers of the newer ones
    quint32 last_entry = 0;
};

// hive_header: the first 512 bytes of the hive. A hive that was finished needs no log and has none that is newer.
hive_log_state judge_hive_log(std::string_view hive_header, const byte_reader& log, qint64 log_size);
