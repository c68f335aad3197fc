// SPDX-License-Identifier: MIT
// How many rows a run added, asked from the result database itself.
#pragma once

#include <QMap>
#include <QString>
#include <QStringList>

using highest_keys = QMap<QString, qint64>;              // table -> highest row key before the run
using added_rows = QMap<QString, QMap<QString, qint64>>; // table -> system_user -> rows

// Both open the database for reading and close it again. False: it cannot be read; error says why.
bool read_highest_keys(const QString& database, const QStringList& tables, highest_keys& keys, QString& error);
// Adds the rows with keys above the given ones to what counts already holds. total: the rows added by this call.
bool count_rows_above(const QString& database, const highest_keys& keys, added_rows& counts, qint64& total,
                      QString& error);
