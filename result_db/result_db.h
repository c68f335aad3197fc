// SPDX-License-Identifier: MIT
// The result database as a whole: how its tables come into being and how they are emptied. Failures are log lines.
#pragma once

#include <QString>
#include <QStringList>

// Creates the ten tables that are not there yet, in one transaction, and the file itself if it is missing; rows stay.
// Logs and names its connection as "void cortana::create_db_tables()".
void create_result_tables(const QString& database_path);

// Empties the tables of these names, each by a command of its own: a name that is no table is logged and passed over.
// A missing file is logged and stays missing. engine_type: other than 0 to 2 empties nothing.
// Logs as "void cortana::clear_db_tables()".
void clear_result_tables(const QString& database_path, const QStringList& tables, int engine_type);
