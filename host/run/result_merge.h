// SPDX-License-Identifier: MIT
// The supervisor's side of the result database: makes it, and takes the rows of workers' databases into it.
#pragma once

#include <QHash>
#include <QMap>
#include <QString>
#include <QStringList>

#include <optional>

using added_rows = QMap<QString, QMap<QString, qint64>>; // table -> system_user -> rows

// Of staged recordings, by the file_path of their rows: Unix seconds. The file system does not let a copy have them.
using creation_times = QHash<QString, qint64>;

// What came of one profile's rows.
struct merge_outcome {
    bool done = false;
    qint64 rows = 0;
    QString trouble;        // why the result database cannot be written
    QString damaged_worker; // the database of a worker that cannot be read; nothing was written
    QString damage;         // why not
};

// Makes the file and its ten tables where they are missing; rows stay. False: it cannot be used, error says why.
bool make_result_database(const QString& file, QString& error);

// Adds the rows of the workers' databases, in the given order and by their keys, in one transaction; keys follow the
// highest one of each table, as if one process had written them all. tables: the ones to take rows from. clear: these
// are emptied first, in the same transaction. Adds to counts only what was committed. created: the rows come from
// copies, and their creation times from here, 0 where none stands here.
merge_outcome merge_workers(const QString& file, const QStringList& workers, const QStringList& tables, bool clear,
                            added_rows& counts, const std::optional<creation_times>& created = {});
