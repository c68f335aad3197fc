// SPDX-License-Identifier: MIT
// Rows come from evidence by way of a worker, so their number and their texts are bounded here.
#include "host/run/named_files.h"

#include "common/named_connection.h"
#include "extractors/webcache_paths.h"
#include "host/intake/asked_names.h"
#include "source/source_guard.h"

#include <QFile>
#include <QSet>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

#include <algorithm>
#include <iterator>

namespace {

const QString connection_name = QStringLiteral("cortana_named_files");

bool names_files(const QString& table) {
    const webcache_naming* const namings[] = {&cache_files_naming, &cookies_naming, &domstore_naming};
    return std::any_of(std::begin(namings), std::end(namings),
                       [&](const webcache_naming* one) { return table == QLatin1String(one->table); });
}

bool select_missing(QSqlQuery& query, const QString& schema, const QString& table) {
    query.setForwardOnly(true);
    return query.exec(QStringLiteral("select INT,windows_path from %1.%2 where file_exists='NO'").arg(schema, table));
}

// Each path once, up to a bound.
class path_collector {
public:
    explicit path_collector(named_files& into) : named(into) {}

    void add(const QString& windows_path) {
        const QByteArray on_disk = QFile::encodeName(on_disk_path(windows_path, QStringLiteral("/")));
        for (const QByteArray& path : on_disk.startsWith('/') ? intake::asked_paths(on_disk) : QVector<QByteArray>()) {
            add_path(path);
        }
    }

private:
    void add_path(const QByteArray& path) {
        constexpr qint64 most_bytes = qint64{32} << 20; // about 200,000 names of usual length
        constexpr qint64 bytes_of_a_node = 48;
        if (known.contains(path)) {
            return;
        }
        if (bytes > most_bytes) {
            named.missing = QStringLiteral("they are very many");
        } else {
            known.insert(path);
            named.paths.append(path);
            bytes += path.size() + bytes_of_a_node;
        }
    }

    named_files& named;
    QSet<QByteArray> known;
    qint64 bytes = 0;
};

// Why not all could be read; not valid: they were.
QSqlError collect(QSqlDatabase& database, const QStringList& tables, path_collector& collector) {
    if (!database.open()) {
        return database.lastError();
    }
    QSqlQuery query(database);
    bool done = query.exec(QStringLiteral("pragma trusted_schema = off"));
    for (const QString& table : tables) {
        done = done && (!names_files(table) || select_missing(query, QStringLiteral("main"), table));
        while (done && names_files(table) && query.next()) {
            collector.add(query.value(1).toString());
        }
        done = done && !query.lastError().isValid();
    }
    return query.lastError();
}

} // namespace

named_files files_named_by(const QVector<worker_rows>& workers) {
    named_files named;
    path_collector collector(named);
    for (const worker_rows& rows : workers) {
        {
            QSqlDatabase database = replace_connection(connection_name, rows.database);
            const QSqlError error = collect(database, rows.tables, collector);
            named.missing = error.isValid() ? error.text() : named.missing;
        }
        QSqlDatabase::removeDatabase(connection_name);
    }
    return named;
}

bool put_file_exists(QSqlDatabase& database, const QString& schema, const QString& table, const QString& root,
                     QSqlError& error) {
    if (!names_files(table)) {
        return true;
    }
    source_guard guard(root);
    QVector<qint64> found;
    QSqlQuery rows(database);
    bool done = select_missing(rows, schema, table);
    while (done && rows.next()) {
        if (guard.exists(on_disk_path(rows.value(1).toString(), root))) {
            found.append(rows.value(0).toLongLong());
        }
    }
    error = rows.lastError();
    done = done && !error.isValid();
    rows.finish();
    QSqlQuery update(database);
    done = done && update.prepare(QStringLiteral("update %1.%2 set file_exists='YES' where INT=?").arg(schema, table));
    for (const qint64 row : qAsConst(found)) {
        update.bindValue(0, row);
        done = done && update.exec();
    }
    error = update.lastError().isValid() ? update.lastError() : error;
    return done;
}
