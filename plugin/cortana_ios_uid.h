// SPDX-License-Identifier: MIT
// The front for iOS sources. Cortana leaves nothing there that this plugin reads.
#pragma once

#include "contract/host_records.h"
#include "plugin/empty_front.h"

class ios_uid_backup_parser;

class cortana_ios_uid : public empty_front {
    Q_OBJECT

public:
    explicit cortana_ios_uid(QWidget* parent = nullptr) : empty_front(parent) {}

    void ios_uid_set_engine_type(int type) { set.type_engine_int = type; }
    void ios_uid_set_plugin_name(QString name) { set.plugin_name = name.trimmed(); }
    void ios_uid_set_essentials() { bool_cancel_extraction = false; }
    void ios_uid_set_source_count(int count) { set.source_count_int = count; }
    void ios_uid_set_desktop_info(struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_desktop_info) {}
    void ios_uid_set_general_info(struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_general_info) {}
    void ios_uid_set_source_info(struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_source_info source_info) {
        set.fs_extraction_source_path = source_info.fs_extraction_source_path;
    }
    void ios_uid_set_essential_for_vantor_desk_extraction(QStringList tables) { set.selected_tables = tables; }
    void ios_uid_set_destination_location(QString result_dir, QString tmp_dir, QString db_path) {
        set.plugin_result_dir_path = result_dir;
        set.plugin_tmp_dir_path = tmp_dir;
        set.destination_db_path = db_path;
    }
    void ios_uid_cancel_extraction() { bool_cancel_extraction = true; }
    void ios_uid_find_artifacts_source() {}
    void ios_uid_extract_artifacts() {
        progress_timer.start();
        Q_EMIT signal_extracted_records_of_plugin_ios_uid(records_count);
    }
    void ios_uid_set_plugin_helper_obj(plugin_helper_functions* helper) { set.plugin_helper_obj = helper; }
    void ios_uid_set_record_count(qint64 count) { records_count = count; }
    void ios_uid_set_tab_processed_count(int count) { tab_count_int = count; }
    void ios_uid_set_ios_backup_pointer(ios_uid_backup_parser* parser) { backup_parser = parser; }

Q_SIGNALS:
    void signal_extracted_records_of_plugin_ios_uid(qint64 records);
    void signal_total_tabs_processed_ios_uid(int count);

private:
    ios_uid_backup_parser* backup_parser = nullptr; // the host's; stored, never used
};
