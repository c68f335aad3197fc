// SPDX-License-Identifier: MIT
// Cortana_links.sqlite: whether the parts of each reminder row belong together by the ids of the evidence. Written by
// the supervisor, each profile's part in one transaction.
#pragma once

#include <QMap>
#include <QString>
#include <QStringList>
#include <QVector>

// The statements that create its tables where they are missing.
QVector<const char*> links_schema();

// Of one run.
struct link_counts {
    qint64 confirmed = 0;    // title, text and times are those of the reminder that the trigger's ids lead to
    qint64 contradicted = 0; // they are another reminder's
    qint64 undecided = 0;    // the ids do not tell, or the row's trigger is not certain
    qint64 not_shown = 0;    // reminders that no row of the run shows

    void add(const link_counts& other);
    qint64 rows() const { return confirmed + contradicted + undecided; }
};

// The rows of one profile that were just added to the result database.
struct linked_rows {
    QString database;                  // the result database
    QString worker;                    // the worker's account, may be missing or damaged; empty: there is none
    QStringList tables;                // selected ones
    QMap<QString, qint64> keys_before; // the highest key of each table before these rows
};

// Writes what belongs to these rows, and forgets what stands there under their keys. False: error says why, and what
// the file held stays. Adds to counts only what was committed.
bool add_links(const linked_rows& rows, link_counts& counts, QString& error);

// Forgets the links of the tables; call it before their rows are removed, so that no link is left over for a new row.
// True as well when there are none.
bool clear_links(const QString& database, const QStringList& tables, QString& error);
