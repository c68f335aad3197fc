// SPDX-License-Identifier: MIT
// The life of the result database: where it lies, how its tables come into being, how they are emptied. Members of the
// plugin object.
#include "common/named_connection.h"
#include "common/plugin_helper_functions.h"
#include "common/plugin_static_function.h"
#include "plugin/cortana.h"
#include "plugin/cortana_ios_uid.h"
#include "plugin/cortana_macos.h"
#include "plugin/cortana_winos.h"
#include "result_db/schema.h"

#include <QDir>
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
            log_creation(QStringLiteral(" table creation -----FAILED---- ") + QLatin1String(table.name));
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

void cortana::set_destination_location(QString result_dir) {
    const QString function = QStringLiteral("void cortana::set_destination_location(QString)");
    plugin_static_function::app_debug(QStringLiteral("[set_destination_location] starts"), function);
    if (!result_dir.endsWith(QLatin1Char('/'))) {
        result_dir += QLatin1Char('/');
    }
    const QString name = pub_get_artifact_name().replace(QLatin1Char(' '), QLatin1Char('_'));
    plugin_result_dir_path = result_dir + QStringLiteral("Artifacts_Result/") + name + QLatin1Char('/');
    QDir().mkpath(plugin_result_dir_path);
    plugin_tmp_dir_path = plugin_result_dir_path + QStringLiteral("tmp/");
    QDir().mkpath(plugin_tmp_dir_path);
    plugin_helper_obj->set_adhoc_parent_path(plugin_tmp_dir_path);
    destination_db_path = plugin_result_dir_path + name + QStringLiteral(".sqlite");
    macos_front->macos_set_destination_location(plugin_result_dir_path, plugin_tmp_dir_path, destination_db_path);
    ios_front->ios_uid_set_destination_location(plugin_result_dir_path, plugin_tmp_dir_path, destination_db_path);
    winos_front->winos_set_destination_location(plugin_result_dir_path, plugin_tmp_dir_path, destination_db_path);
    plugin_static_function::app_debug(QStringLiteral("[set_destination_location] ends"), function);
}

void cortana::create_destination_database() {
    const QString function = QStringLiteral("void cortana::create_destination_database()");
    plugin_static_function::app_debug(QStringLiteral("[create_destination_database] starts"), function);
    create_db_tables();
    plugin_static_function::app_debug(QStringLiteral("[create_destination_database] ends"), function);
}

void cortana::create_db_tables() {
    log_creation(QStringLiteral("[create_db_tables] -starts-"));
    const bool created = create_tables_in(destination_db_path);
    QSqlDatabase::removeDatabase(create_tables_text);
    if (created) {
        log_creation(QStringLiteral("[create_db_tables] -ends-"));
    }
}

void cortana::clear_db_tables() {
    const QString function = QStringLiteral("void cortana::clear_db_tables()");
    if (!QFileInfo::exists(destination_db_path)) {
        plugin_static_function::app_debug(QStringLiteral("[clear_db_tables]DB not exists and so returning..."),
                                          function);
        return;
    }
    if (static_cast<unsigned>(type_engine_int) > 2) {
        return;
    }
    for (const QString& table : qAsConst(selected_tables)) {
        plugin_static_function::execute_db_command_by_dbpath(
            QStringLiteral("delete from '") + table + QLatin1Char('\''), destination_db_path, function);
    }
}
