// SPDX-License-Identifier: MIT
// Transaction logs of hives as Windows 8.1 and later write them: numbered entries, each with two hashes.
#pragma once

#include "host/intake/hive_base_block.h"

#include <QString>
#include <QVector>

// One entry whose hashes are right and whose pages lie inside the entry and inside the bins that it tells of.
struct hive_log_entry {
    qint64 offset; // in the log
    quint32 sequence;
    quint32 pages;
    qint64 bins_size;  // of the hive once the entry is applied
    qint64 page_bytes; // of all its pages
};

struct hive_entry_log {
    hive_base_block base_block;
    QVector<hive_log_entry> entries; // in order of their numbers, without gaps
    QString damage;                  // what ended them before their time; empty: nothing did
    qint64 next = 0;                 // number of the entry that is damaged or missing, if one is
};

// All entries from the start of the log, none older than its base block, to its end, to the first that does not follow,
// or to the first damaged one. A file that is no such log has none. Takes time in proportion to the log.
hive_entry_log read_entry_log(const QByteArray& log);

// Leaves the entries that a hive does not have: all if its base block is unsound, else those not older than the hive.
void keep_newer_entries(hive_entry_log& read, const hive_base_block& hive);

// Writes an entry's pages into a hive that has room for the entry's bins. log is the one that the entry was read from.
void put_entry_pages(QByteArray& hive, const QByteArray& log, const hive_log_entry& entry);
