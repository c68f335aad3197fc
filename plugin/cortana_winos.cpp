// SPDX-License-Identifier: MIT
// State, setters and discovery of the Windows front. The driver and the steps' members stand beside this file.
#include "plugin/cortana_winos.h"

#include "common/plugin_static_function.h"
#include "contract/log_marks.h"
#include "ese/contact_triggers.h"
#include "ese/place_triggers.h"
#include "ese/timetriggers.h"
#include "registry/search_from_com.h"
#include "registry/text_search_registry.h"
#include "source/discovery.h"
#include "source/source_root.h"

cortana_winos::cortana_winos(QWidget* parent) : QWidget(parent), progress_timer(std::make_unique<QElapsedTimer>()) {}

cortana_winos::~cortana_winos() = default;

void cortana_winos::winos_set_engine_type(int type) {
    type_engine_int = type;
}

void cortana_winos::winos_set_plugin_name(QString name) {
    plugin_name = name.trimmed();
}

void cortana_winos::winos_set_essentials() {
    bool_cancel_extraction = false;
}

void cortana_winos::winos_set_source_count(int count) {
    source_count_int = count;
}

void cortana_winos::winos_set_desktop_info(struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_desktop_info) {}

void cortana_winos::winos_set_general_info(struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_general_info) {}

void cortana_winos::winos_set_source_info(struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_source_info source_info) {
    fs_extraction_source_path = absolute_root(source_info.fs_extraction_source_path);
    source_path_2 = source_info.source_path_2;
    os_scheme_display = source_info.os_scheme_display;
    user_name_list.clear();
    for (const auto& account : qAsConst(source_info.system_account_QList)) {
        user_name_list << account.system_user << account.domain_user;
    }
    user_name_list.removeDuplicates();
    user_name_list.removeAll(QString());
}

void cortana_winos::winos_set_essential_for_vantor_desk_extraction(QStringList tables) {
    selected_tables = tables;
}

void cortana_winos::winos_set_destination_location(QString result_dir, QString tmp_dir, QString db_path) {
    plugin_result_dir_path = result_dir;
    plugin_tmp_dir_path = tmp_dir;
    destination_db_path = db_path;
}

void cortana_winos::winos_cancel_extraction() {
    bool_cancel_extraction = true;
}

void cortana_winos::winos_find_artifacts_source() {
    find_source_file();
}

void cortana_winos::find_source_file() {
    const QString function = QStringLiteral("void cortana_winos::find_source_file()");
    plugin_static_function::app_debug(QStringLiteral("[find_source_file]---STARTS---"), function);
    for (QStringList* list : {&indexed_db_file_list, &cortana_core_db_file_list, &webcache_file_list, &speech_dir_list,
                              &graph_dir_list, &ntuser_file_list}) {
        list->clear();
    }
    const auto add = [&](source_list list, const QString& path) {
        plugin_static_function::app_debug(QLatin1String(log_mark::found_source) + path, function);
        found_list(list).append(path);
    };
    if (find_sources(fs_extraction_source_path, user_name_list, bool_cancel_extraction, add)) {
        plugin_static_function::app_debug(QStringLiteral("[find_source_file]---ENDS---"), function);
    }
}

QStringList& cortana_winos::found_list(source_list list) {
    switch (list) {
    case source_list::webcache:
        return webcache_file_list;
    case source_list::ntuser:
        return ntuser_file_list;
    case source_list::indexed_db:
        return indexed_db_file_list;
    case source_list::cortana_core_db:
        return cortana_core_db_file_list;
    case source_list::speech:
        return speech_dir_list;
    case source_list::graph:
        break;
    }
    return graph_dir_list;
}

void cortana_winos::winos_set_plugin_helper_obj(plugin_helper_functions* helper) {
    plugin_helper_obj = helper;
}

void cortana_winos::winos_set_record_count(qint64 count) {
    records_count = count;
}

void cortana_winos::winos_set_tab_processed_count(int count) {
    tab_count_int = count;
}
