// SPDX-License-Identifier: MIT
// State and setters of the Windows front. What it does lives elsewhere: discovery in source/, the driver beside this
// file, the extractors in extractors/.
#include "plugin/cortana_winos.h"

#include "ese/contact_triggers.h"
#include "ese/place_triggers.h"
#include "ese/timetriggers.h"
#include "registry/search_from_com.h"
#include "registry/text_search_registry.h"

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

void cortana_winos::winos_set_plugin_helper_obj(plugin_helper_functions* helper) {
    plugin_helper_obj = helper;
}

void cortana_winos::winos_set_record_count(qint64 count) {
    records_count = count;
}

void cortana_winos::winos_set_tab_processed_count(int count) {
    tab_count_int = count;
}

step_context cortana_winos::context_for_step() {
    return {fs_extraction_source_path, os_scheme_display,
            destination_db_path,       location_kind,
            bool_cancel_extraction,    [this] { count_inserted_record(); }};
}
