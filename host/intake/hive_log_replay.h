// SPDX-License-Identifier: MIT
// The two halves of a replay, one for each format of the logs, and what they share.
#pragma once

#include "host/intake/hive_base_block.h"
#include "host/intake/hive_logs.h"

#include <QVector>

struct named_log {
    QString name;
    QByteArray bytes;
};

// Both take an unfinished hive of at least 4096 bytes with its base block, and leave it as it is when no log applies.
void apply_entry_logs(hive_replay& replay, const QVector<named_log>& logs, const hive_base_block& hive);
void apply_dirty_logs(hive_replay& replay, const QVector<named_log>& logs, const hive_base_block& hive);

void add_note(hive_replay& replay, const named_log& log, const QString& text);
// Bins may grow by no more than what the logs' pages fill.
bool is_possible_growth(const QByteArray& hive, qint64 bins_size, qint64 page_bytes);
// Lengthens a hive with zeros until it holds bins of this size; never shortens it.
void make_room(QByteArray& hive, qint64 bins_size);
// Puts the first sector of a log, whose base block is given, in place of the hive's.
void put_base_block(QByteArray& hive, const QByteArray& log, const hive_base_block& block);
