// SPDX-License-Identifier: MIT
// One file of the evidence as it was found: where it lies, its size, digest and times, and in which state it is.
#pragma once

#include "host/health/file_health.h"

#include <QByteArray>
#include <QString>

#include <functional>

struct evidence_record {
    QByteArray location; // every link resolved; known to the process that looked, told to no other
    QString path;        // as shown; a name that is not UTF-8 has \xNN in it
    QString kind;        // "ESE database", "registry hive", "file"
    qint64 size = 0;
    QByteArray sha256; // hexadecimal; empty: it could not be read to its end
    // ISO 8601 in UTC with nanoseconds; null: the file system does not tell.
    QString modified;
    QString accessed;
    QString changed;
    QString created;
    // Of a hive whose transaction logs were applied to a copy, from which the rows come.
    QByteArray sha256_with_logs; // of that copy, hexadecimal; empty: none were applied
    qint64 log_entries = 0;      // applied
    file_health health;          // of databases and hives
};

// Hears of each file that was looked at, in the order of looking.
using record_sink = std::function<void(const evidence_record& record)>;
