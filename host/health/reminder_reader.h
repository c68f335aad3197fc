// SPDX-License-Identifier: MIT
// Reads a CortanaCoreDb.dat for its ids: what each row of the trigger tables links to, for the worker only.
#pragma once

#include "host/health/reminder_links.h"

#include <functional>

// Texts and times as a result row shows them: Unix seconds, 0 where there is none.
struct reminder_content {
    QString title;
    QString text;
    qint64 created = 0;
    qint64 updated = 0;
    qint64 accessed = 0;
    qint64 completed = 0;

    QStringList values() const;
};

// One trigger table and what its rows link to.
struct trigger_table_links {
    QString table;                // the result table
    QVector<QByteArray> digests;  // of each row's own values, see digest_of
    QVector<reminder_link> links; // of each row
    QVector<int> written_order;   // see rows_by_key
};

struct core_links {
    QVector<reminder_content> reminders;
    QVector<trigger_table_links> tables; // the three in the order of the result tables
};

// The columns of a result table that come from the trigger and tell its rows apart, in the order of digest_of; empty
// for a table that holds no reminders.
QStringList trigger_columns(const QString& table);

// path as find_sources gives it. A file or table that cannot be read has no rows. cancelled is asked at each record.
core_links read_core_links(const QString& path, const std::function<bool()>& cancelled);
