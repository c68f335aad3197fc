// SPDX-License-Identifier: MIT
// Judges by its header whether a database or a hive is one that the readers can open. The plugin gives no rows for a
// file that it cannot open and says nothing about it.
#pragma once

#include <QByteArray>
#include <QString>

#include <functional>

// A file's bytes: up to size bytes from offset, fewer at the end of the file or when it cannot be read.
using byte_reader = std::function<QByteArray(qint64 offset, qint64 size)>;

struct header_verdict {
    QString problem; // why it cannot be read; empty: it looks sound
    QString note;    // what an examiner should know about it
};

// An ESE database: signature, format, checksum, the header's copy, the length.
header_verdict judge_ese_database(const byte_reader& read, qint64 file_size);
// A registry hive: signature, version, checksum, chain of blocks and cells, root key, unfinished writes.
header_verdict judge_registry_hive(const byte_reader& read, qint64 file_size);
