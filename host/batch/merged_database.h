// SPDX-License-Identifier: MIT
// The result database of many sources, and the links database beside it: SQLite copies the rows itself, from attached
// files. Keys are moved, nothing else of a row changes.
#pragma once

#include "host/exports/sqlite_handles.h"

#include <QByteArray>
#include <QMap>
#include <QString>

namespace batch {

// A row of the table "sources".
struct source_row {
    int number = 0; // rows of the source carry it as SourceN
    QString id;
    QString path;
    QString type;
    QString sha256;        // of the evidence; empty: not known
    QString outcome;       // "complete", "finished with failures", "nothing found", "failed" or "missing"
    QString reason;        // of another outcome than complete
    QString version;       // of the program that made the result; empty: there is none
    QString result_sha256; // of the source's own result database; empty: there is none
    qint64 rows = 0;
};

// The same calls in the same order give the same bytes, with the same version of SQLite. A file of a machine that dies
// meanwhile is of no use: write to a folder that is removed then.
class merged_database {
public:
    // file: not there yet. False, as of all below: error() says why, and the files are of no use.
    bool create(const QString& file);
    // Adds all rows of a result database; links: the links database beside it, empty for none. Neither changes while it
    // is read. What differs from this program's schema is refused.
    bool add_rows(const QString& database, const QString& links, const QString& source, qint64& rows);
    bool add_source(const source_row& row);
    bool finish();

    const QString& error() const { return trouble; }

private:
    bool fail();
    bool run(const char* statement);
    bool make_links();
    bool attach(const QString& file, const char* name, const QByteArray& query);
    bool has_same_tables(const char* schema, const char* attached, int wanted);
    bool copy_tables(qint64& rows);
    bool copy_links(const QMap<QByteArray, qint64>& keys_before, const QString& source);

    QString file;
    QString trouble;
    database_handle database;
    QMap<QByteArray, QByteArray> columns; // table -> all but the key
    QMap<QByteArray, qint64> last_keys;   // table -> highest key so far
    bool has_links = false;
};

} // namespace batch
