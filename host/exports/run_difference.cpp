// SPDX-License-Identifier: MIT
// One statement a table: both tables in one list, the first's rows counted up and the second's down.
#include "host/exports/run_difference.h"

#include "host/exports/sqlite_handles.h"
#include "host/exports/table_descriptions.h"

namespace {

QByteArray joined(const QVector<const char*>& names) {
    QByteArray list;
    for (const char* const name : names) {
        list += (list.isEmpty() ? "" : ",") + QByteArray(name);
    }
    return list;
}

QByteArray comparison(const table_description& table) {
    QVector<const char*> contents;
    for (const column_description& column : table.columns) {
        if (column.kind != column_kind::key) {
            contents.append(column.name);
        }
    }
    const QByteArray all = joined(contents);
    const QByteArray same = joined(table.told_by) + ",system_user,source_file";
    const QByteArray name(table.name);
    return "with only_one(" + same + ",n) as (select " + same + ",sum(n) from (select " + all + ",1 as n from main." +
           name + " union all select " + all + ",-1 from second." + name + ") group by " + all +
           " having sum(n)<>0),"
           "of_same(removed,added) as (select sum(max(n,0)),sum(max(-n,0)) from only_one group by " +
           same +
           ") select coalesce(sum(removed-min(removed,added)),0),coalesce(sum(added-min(removed,added)),0),"
           "coalesce(sum(min(removed,added)),0) from of_same";
}

// Null when it cannot be prepared.
statement_handle prepared(sqlite3* database, const QByteArray& text) {
    sqlite3_stmt* statement = nullptr;
    sqlite3_prepare_v2(database, text.constData(), -1, &statement, nullptr);
    return statement_handle(statement);
}

bool attach(sqlite3* database, const QString& file) {
    const statement_handle statement = prepared(database, "attach ? as second"); // as read-only as the first
    const QByteArray path = path_for_sqlite(file);
    return statement &&
           sqlite3_bind_text(statement.get(), 1, path.constData(), path.size(), SQLITE_STATIC) == SQLITE_OK &&
           sqlite3_step(statement.get()) == SQLITE_DONE;
}

} // namespace

QVector<table_difference> difference_of(const QString& first, const QString& second, const QStringList& tables,
                                        QString& error) {
    const database_handle database = open_for_reading(first, error);
    if (!error.isEmpty()) {
        return {};
    }
    QVector<table_difference> differences;
    bool done =
        attach(database.get(), second) && sqlite3_exec(database.get(), "begin", nullptr, nullptr, nullptr) == SQLITE_OK;
    for (const table_description& table : table_descriptions()) {
        const QString name = QLatin1String(table.name);
        if (!done || !tables.contains(name)) {
            continue;
        }
        const statement_handle statement = prepared(database.get(), comparison(table));
        done = statement && sqlite3_step(statement.get()) == SQLITE_ROW;
        if (done) {
            const auto number = [&](int column) { return qint64(sqlite3_column_int64(statement.get(), column)); };
            differences.append({name, number(0), number(1), number(2)});
        }
    }
    if (!done) {
        error = error_of(database.get());
    }
    return differences;
}
