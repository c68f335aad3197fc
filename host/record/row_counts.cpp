// SPDX-License-Identifier: MIT
// Rows are never taken away during a run, and SQLite gives each new one the highest key so far plus one.
#include "host/record/row_counts.h"

#include "host/record/read_only_database.h"

#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

bool read_highest_keys(const QString& file, const QStringList& tables, highest_keys& keys, QString& error) {
    return with_read_only_database(file, error, [&](QSqlDatabase& database) {
        QSqlQuery query(database);
        for (const QString& table : tables) {
            if (!query.exec(QStringLiteral("select max(INT) from ") + table) || !query.next()) {
                error = query.lastError().text();
                return false;
            }
            keys.insert(table, query.value(0).toLongLong());
        }
        return true;
    });
}

bool count_rows_above(const QString& file, const highest_keys& keys, added_rows& counts, qint64& total,
                      QString& error) {
    return with_read_only_database(file, error, [&](QSqlDatabase& database) {
        QSqlQuery query(database);
        for (auto key = keys.begin(); key != keys.end(); ++key) {
            query.prepare(QStringLiteral("select system_user,count(*) from %1 where INT > ? group by system_user")
                              .arg(key.key()));
            query.addBindValue(key.value());
            if (!query.exec()) {
                error = query.lastError().text();
                return false;
            }
            while (query.next()) {
                const qint64 rows = query.value(1).toLongLong();
                counts[key.key()][query.value(0).toString()] += rows;
                total += rows;
            }
        }
        return true;
    });
}
