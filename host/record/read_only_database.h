// SPDX-License-Identifier: MIT
// SQLite files that are only looked at.
#pragma once

#include <QSqlDatabase>
#include <QString>

#include <functional>

// Opens the file for reading, hands it to work and closes it again. Returns what work returns; false, and error says
// why, when it does not open. work must leave no query behind, and none may run inside another.
bool with_read_only_database(const QString& file, QString& error, const std::function<bool(QSqlDatabase&)>& work);

// The result database that a user names by the result folder or by the SQLite file itself.
QString database_in(const QString& result);
