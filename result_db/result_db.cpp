// SPDX-License-Identifier: MIT
// Every opening has a named connection of its own.
#include "result_db/result_db.h"

#include "common/named_connection.h"
#include "common/plugin_static_function.h"
#include "contract/log_marks.h"
#include "result_db/schema.h"

#include <QFileInfo>
#include <QSqlDatabase>
#include <QSqlError>

namespace {

const QString create_tables_text = QStringLiteral("void cortana::create_db_tables()");

void log_creation(const QString& message) {
    plugin_static_function::app_debug(message, create_tables_text);
}

bool create_all_tables(QSqlDatabase& database) {
    database.transaction();
    for (const result_table& table : result_tables()) {
        const bool done = plugin_static_function::execute_db_command_by_dbreference(
            QLatin1String(table.create_statement), database, create_tables_text);
        if (!done) {
            log_creation(QLatin1String(log_mark::table_creation_failed) + QLatin1String(table.name));
        }
    }
    if (!database.commit()) {
        log_creation(database.lastError().text()); // no table is in the file: the log must say so
        return false;
    }
    return true;
}

bool create_tables_in(const QString& database_path) {
    QSqlDatabase database = replace_connection(create_tables_text, database_path);
    if (!database.open()) {
        log_creation(QStringLiteral("[create_db_tables]Destination Db opening -----FAILED----- for table creation"));
        log_creation(database.lastError().text());
        log_creation(database_path);
        return false;
    }
    const bool created = create_all_tables(database);
    database.close();
    return created;
}

} // namespace

void create_result_tables(const QString& database_path) {
    log_creation(QStringLiteral("[create_db_tables] -starts-"));
    const bool created = create_tables_in(database_path);
    QSqlDatabase::removeDatabase(create_tables_text);
    if (created) {
        log_creation(QStringLiteral("[create_db_tables] -ends-"));
    }
}

void clear_result_tables(const QString& database_path, const QStringList& tables, int engine_type) {
    const QString function = QStringLiteral("void cortana::clear_db_tables()");
    if (!QFileInfo::exists(database_path)) {
        plugin_static_function::app_debug(QStringLiteral("[clear_db_tables]DB not exists and so returning..."),
                                          function);
        return;
    }
    if (static_cast<unsigned>(engine_type) > 2) {
        return;
    }
    for (const QString& table : tables) {
        plugin_static_function::execute_db_command_by_dbpath(
            QStringLiteral("delete from '") + table + QLatin1Char('\''), database_path, function);
    }
}
