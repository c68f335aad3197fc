// SPDX-License-Identifier: MIT
// SQLite copies the rows itself, from attached files. A worker that was killed leaves a journal: opening its file takes
// back the step that it had not finished.
#include "host/run/result_merge.h"

#include "common/named_connection.h"
#include "host/run/named_files.h"
#include "result_db/schema.h"
#include "source/native_names.h"

#include <QFile>
#include <QSqlError>
#include <QSqlField>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QVariant>

#include <cerrno>
#include <cstdio>
#include <functional>
#include <unistd.h>

namespace {

const QString connection_name = QStringLiteral("cortana_merge");

// Hands the opened file to work; the connection is gone when this returns.
bool with_database(const QString& file, QSqlError& error, const std::function<bool(QSqlDatabase&)>& work) {
    bool done = false;
    {
        QSqlDatabase database = replace_connection(connection_name, file);
        done = database.open();
        error = database.lastError();
        done = done && work(database);
    }
    QSqlDatabase::removeDatabase(connection_name);
    return done;
}

bool run_statement(QSqlDatabase& database, const QString& statement, QSqlError& error) {
    QSqlQuery query(database);
    const bool done = query.exec(statement);
    error = query.lastError();
    return done;
}

bool create_tables(QSqlDatabase& database, QSqlError& error) {
    for (const result_table& table : result_tables()) {
        if (!run_statement(database, QLatin1String(table.create_statement), error)) {
            return false;
        }
    }
    return true;
}

QString schema_name(int worker) {
    return QStringLiteral("worker%1").arg(worker);
}

bool attach(QSqlDatabase& database, const QVector<worker_rows>& workers, QSqlError& error) {
    for (int i = 0; i < workers.size(); ++i) {
        QSqlQuery query(database);
        query.prepare(QStringLiteral("attach database ? as ") + schema_name(i));
        query.addBindValue(workers[i].database);
        if (!query.exec()) {
            error = query.lastError();
            return false;
        }
    }
    return run_statement(database, QStringLiteral("pragma trusted_schema = off"), error);
}

// All but the key, which SQLite gives.
QString columns_of(const QSqlDatabase& database, const QString& table) {
    const QSqlRecord record = database.record(table);
    QStringList names;
    for (int i = 0; i < record.count(); ++i) {
        if (record.fieldName(i) != QLatin1String("INT")) {
            names.append(record.fieldName(i));
        }
    }
    return names.join(QLatin1Char(','));
}

bool count_rows(QSqlDatabase& database, const QString& schema, const QString& table, added_rows& counts,
                QSqlError& error) {
    QSqlQuery query(database);
    if (!query.exec(QStringLiteral("select system_user,count(*) from %1.%2 group by system_user").arg(schema, table))) {
        error = query.lastError();
        return false;
    }
    while (query.next()) {
        counts[table][query.value(0).toString()] += query.value(1).toLongLong();
    }
    return true;
}

bool take_table(QSqlDatabase& database, const QString& schema, const QString& table, added_rows& counts,
                QSqlError& error) {
    const QString columns = columns_of(database, table);
    return count_rows(database, schema, table, counts, error) &&
           run_statement(
               database,
               QStringLiteral("insert into main.%1(%2) select %2 from %3.%1 order by INT").arg(table, columns, schema),
               error);
}

// In the worker's own table, before its rows are taken.
bool put_creation_times(QSqlDatabase& database, const QString& schema, const creation_times& created,
                        QSqlError& error) {
    const QString table = schema + QStringLiteral(".latest_audio_search");
    if (!run_statement(database, QStringLiteral("update %1 set creation_time=0").arg(table), error)) {
        return false;
    }
    QSqlQuery rows(database);
    bool done = rows.exec(QStringLiteral("select INT,file_path from ") + table);
    QVector<std::pair<qint64, qint64>> times; // key of the row, time
    while (done && rows.next()) {
        const auto known = created.constFind(rows.value(1).toString());
        if (known != created.constEnd()) {
            times.append({rows.value(0).toLongLong(), *known});
        }
    }
    QSqlQuery update(database);
    done = done && update.prepare(QStringLiteral("update %1 set creation_time=? where INT=?").arg(table));
    for (const auto& [row, time] : qAsConst(times)) {
        update.bindValue(0, time);
        update.bindValue(1, row);
        done = done && update.exec();
    }
    error = update.lastError().isValid() ? update.lastError() : rows.lastError();
    return done;
}

void add_counts(const added_rows& more, added_rows& counts, qint64& total) {
    for (auto table = more.begin(); table != more.end(); ++table) {
        for (auto user = table->begin(); user != table->end(); ++user) {
            counts[table.key()][user.key()] += user.value();
            total += user.value();
        }
    }
}

bool is_damage(const QSqlError& error) {
    constexpr const char* damage_codes[] = {"11", "26"}; // SQLITE_CORRUPT, SQLITE_NOTADB
    return std::any_of(std::begin(damage_codes), std::end(damage_codes),
                       [&](const char* code) { return error.nativeErrorCode() == QLatin1String(code); });
}

// Everything between begin and commit.
struct transfer {
    const QVector<worker_rows>& workers;
    const QStringList& tables;
    bool clear;
    const std::optional<source_facts>& facts;
    added_rows taken;
    QMap<QString, qint64> keys_before;
    int current_worker = -1; // whose rows are being taken

    bool run(QSqlDatabase& database, QSqlError& error) {
        for (const QString& table : tables) {
            if (clear && !run_statement(database, QStringLiteral("delete from ") + table, error)) {
                return false;
            }
            QSqlQuery query(database);
            if (!query.exec(QStringLiteral("select coalesce(max(INT),0) from main.") + table) || !query.next()) {
                error = query.lastError();
                return false;
            }
            keys_before.insert(table, query.value(0).toLongLong());
        }
        for (current_worker = 0; current_worker < workers.size(); ++current_worker) {
            const QString schema = schema_name(current_worker);
            if (facts && !put_creation_times(database, schema, facts->created, error)) {
                return false;
            }
            for (const QString& table : workers[current_worker].tables) {
                const bool looks_again = facts && !facts->root.isEmpty();
                if ((looks_again && !put_file_exists(database, schema, table, facts->root, error)) ||
                    !take_table(database, schema, table, taken, error)) {
                    return false;
                }
            }
        }
        current_worker = -1;
        return true;
    }
};

} // namespace

bool make_result_database(const QString& file, QString& error) {
    QSqlError sql_error;
    const bool was_there = QFile::exists(file);
    const bool made = with_database(file, sql_error, [&](QSqlDatabase& database) {
        const bool done = database.transaction() && create_tables(database, sql_error) && database.commit();
        sql_error = done || sql_error.isValid() ? sql_error : database.lastError();
        return done;
    });
    error = sql_error.text();
    if (!made && !was_there) {
        QFile::remove(file); // half a database must not look like one without rows
    }
    return made;
}

bool copy_database(const QString& database, const QString& copy, QString& error) {
    QFile file(database);
    const bool done = file.copy(copy);
    error = file.errorString();
    return done;
}

bool put_in_place(const QString& copy, const QString& database, QString& error) {
    QFile file(copy);
    const bool done = file.open(QIODevice::ReadOnly) && ::fsync(file.handle()) == 0 &&
                      ::rename(QFile::encodeName(copy).constData(), QFile::encodeName(database).constData()) == 0;
    error = file.error() != QFileDevice::NoError ? file.errorString() : error_words(errno);
    return done;
}

merge_outcome merge_workers(const QString& file, const QVector<worker_rows>& workers, const QStringList& tables,
                            bool clear, added_rows& counts, const std::optional<source_facts>& facts) {
    merge_outcome outcome;
    QSqlError error;
    transfer rows{workers, tables, clear, facts, {}, {}, -1};
    outcome.done = with_database(file, error, [&](QSqlDatabase& database) {
        if (!attach(database, workers, error) || !database.transaction() || !rows.run(database, error)) {
            return false; // the end of the connection takes back what was begun
        }
        const bool committed = database.commit();
        error = committed ? error : database.lastError();
        return committed;
    });
    if (outcome.done) {
        add_counts(rows.taken, counts, outcome.rows);
        outcome.keys_before = rows.keys_before;
    } else if (is_damage(error) && rows.current_worker >= 0) {
        outcome.damaged_worker = workers[rows.current_worker].database;
        outcome.damage = error.text();
    } else {
        outcome.trouble = error.text();
    }
    return outcome;
}
