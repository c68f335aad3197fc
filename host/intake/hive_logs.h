// SPDX-License-Identifier: MIT
// Brings a copy of a registry hive that was not finished writing to the state that its transaction logs (.LOG1, .LOG2)
// tell of. Bytes in, bytes out; hive and logs may be damaged in any way.
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

struct hive_replay {
    QByteArray hive;                   // to be read: with the logs applied or, when none was, the bytes as given
    bool is_unfinished = false;        // the hive as given; no log applies to a finished one, and none is looked at
    bool base_block_recovered = false; // the hive's own was unsound, the one of a log took its place
    bool stopped_early = false;        // damage or a gap in the logs: changes behind it are missing
    int entries = 0;                   // applied; a log of the old format has one
    qint64 pages = 0;                  // written by these entries
    QStringList logs;                  // that were applied, in this order: ".LOG1", ".LOG2"
    QStringList notes;                 // on each log that is there: what an examiner should know, in English

    bool is_applied() const { return !logs.isEmpty(); }
};

// A log that is not there is empty or null. What the logs give is taken only when it is a consistent hive (chain of
// bins and cells, root key), or when the hive was not one before and has a sound base block. Time and memory are in
// proportion to the three inputs.
hive_replay apply_hive_logs(const QByteArray& hive, const QByteArray& log1, const QByteArray& log2);

// How many of a log's entries an unfinished hive does not have; 0 for a finished hive. Of the hive the first 4128 bytes
// are enough. A log of the old format counts as one entry.
int entries_newer_than_hive(const QByteArray& hive, const QByteArray& log);
