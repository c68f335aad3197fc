// SPDX-License-Identifier: MIT
// Where the plugin object's results go: the folders that it makes, and its way to the result database.
#include "common/plugin_helper_functions.h"
#include "common/plugin_static_function.h"
#include "contract/result_layout.h"
#include "plugin/cortana.h"
#include "plugin/cortana_ios_uid.h"
#include "plugin/cortana_macos.h"
#include "plugin/cortana_winos.h"
#include "result_db/result_db.h"

#include <QDir>

void cortana::set_destination_location(QString result_dir) {
    const QString function = QStringLiteral("void cortana::set_destination_location(QString)");
    plugin_static_function::app_debug(QStringLiteral("[set_destination_location] starts"), function);
    const QString name = pub_get_artifact_name();
    plugin_result_dir_path = result_layout::plugin_folder(result_dir, name);
    QDir().mkpath(plugin_result_dir_path);
    plugin_tmp_dir_path = result_layout::temporary_folder(plugin_result_dir_path);
    QDir().mkpath(plugin_tmp_dir_path);
    plugin_helper_obj->set_adhoc_parent_path(plugin_tmp_dir_path);
    destination_db_path = result_layout::database_file(plugin_result_dir_path, name);
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
    create_result_tables(destination_db_path);
}

void cortana::clear_db_tables() {
    clear_result_tables(destination_db_path, selected_tables, type_engine_int);
}
