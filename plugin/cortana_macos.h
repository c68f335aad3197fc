// SPDX-License-Identifier: MIT
// The front for macOS sources. Cortana leaves nothing there that this plugin reads.
#pragma once

#include "contract/host_records.h"
#include "plugin/empty_front.h"

class cortana_macos : public empty_front {
    Q_OBJECT

public:
    explicit cortana_macos(QWidget* parent = nullptr) : empty_front(parent) {}

    void macos_set_engine_type(int type) { set.type_engine_int = type; }
    void macos_set_plugin_name(QString name) { set.plugin_name = name.trimmed(); }
    void macos_set_essentials() { bool_cancel_extraction = false; }
    void macos_set_source_count(int count) { set.source_count_int = count; }
    void macos_set_desktop_info(struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_desktop_info) {}
    void macos_set_general_info(struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_general_info) {}
    void macos_set_source_info(struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_source_info source_info) {
        set.fs_extraction_source_path = source_info.fs_extraction_source_path;
    }
    void macos_set_essential_for_vantor_desk_extraction(QStringList tables) { set.selected_tables = tables; }
    void macos_set_destination_location(QString result_dir, QString tmp_dir, QString db_path) {
        set.plugin_result_dir_path = result_dir;
        set.plugin_tmp_dir_path = tmp_dir;
        set.destination_db_path = db_path;
    }
    void macos_cancel_extraction() { bool_cancel_extraction = true; }
    void macos_find_artifacts_source() {}
    void macos_extract_artifacts() {
        progress_timer.start();
        Q_EMIT signal_extracted_records_of_plugin_macos(records_count);
    }
    void macos_set_plugin_helper_obj(plugin_helper_functions* helper) { set.plugin_helper_obj = helper; }
    void macos_set_record_count(qint64 count) { records_count = count; }
    void macos_set_tab_processed_count(int count) { tab_count_int = count; }

Q_SIGNALS:
    void signal_extracted_records_of_plugin_macos(qint64 records);
    void signal_total_tabs_processed_macos(int count);
};
