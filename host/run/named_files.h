// SPDX-License-Identifier: MIT
// Files that rows of web cache entries name and that are no evidence themselves: among copies they are missing although
// the source may have them. They are asked for when the rows are written, and file_exists is put right then.
#pragma once

#include "host/run/result_merge.h"

#include <QByteArray>
#include <QVector>

class QSqlDatabase;
class QSqlError;

struct named_files {
    QVector<QByteArray> paths; // below the Windows root, plain, each once
    QString missing;           // why there may be more of them; empty: these are all
};

// Of the finished tables' rows whose file was not there.
named_files files_named_by(const QVector<worker_rows>& workers);

// Looks again, by the plugin's own rule, for the file of each row of the table that was not there, below root, which
// ends in "/" and is the one that the rows were written from. schema: of the attached database. Does nothing for tables
// that name no files. False: error says why not.
bool put_file_exists(QSqlDatabase& database, const QString& schema, const QString& table, const QString& root,
                     QSqlError& error);
