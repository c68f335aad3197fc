// SPDX-License-Identifier: MIT
// The supervisor's side of the result database: makes it, and takes the rows of workers' databases into it.
#pragma once

#include <QHash>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QVector>

#include <optional>

using added_rows = QMap<QString, QMap<QString, qint64>>; // table -> system_user -> rows

// Of staged recordings, by the file_path of their rows: Unix seconds. The file system does not let a copy have them.
using creation_times = QHash<QString, qint64>;

// What rows that were written from copies cannot know of the source.
struct source_facts {
    creation_times created; // of recordings
    QString root; // of the copies, ending in "/"; empty: no file that rows name was found since they were written
};

// What came of one profile's rows.
struct merge_outcome {
    bool done = false;
    qint64 rows = 0;
    QMap<QString, qint64> keys_before; // the highest key of each table before its rows came; emptied tables: 0
    QString trouble;                   // why the result database cannot be written
    QString damaged_worker;            // the database of a worker that cannot be read; nothing was written
    QString damage;                    // why not
};

// Makes the file and its ten tables where they are missing; rows stay. False: it cannot be used, error says why.
bool make_result_database(const QString& file, QString& error);

// These two serve a change that is to be seen whole or not at all; the database is closed. False: error says why.
// Copies it to a file that is not there; its folder is.
bool copy_database(const QString& database, const QString& copy, QString& error);
// Brings the copy safely to the disk and then, in one step, into the database's place. They share a file system.
bool put_in_place(const QString& copy, const QString& database, QString& error);

// The tables of a worker's database that it finished.
struct worker_rows {
    QString database;
    QStringList tables;
};

// Adds the rows of the workers' databases, in the given order and by their keys, in one transaction; keys follow the
// highest one of each table, as if one process had written them all. clear: tables are emptied first, in the same
// transaction. Adds to counts only what was committed. facts: the rows come from copies; creation times come from here,
// 0 where none stands here, and files that rows name are looked for again.
merge_outcome merge_workers(const QString& file, const QVector<worker_rows>& workers, const QStringList& tables,
                            bool clear, added_rows& counts, const std::optional<source_facts>& facts = {});
