// SPDX-License-Identifier: MIT
// The plugin object: forwards every host call to the three fronts and to the shared static state, routes the two calls
// that do real work to the front of the source's operating system, and relays the fronts' progress signals. The host
// owns it; the fronts and the helper object are its Qt children.
#pragma once

#include "contract/host_interface.h"

class cortana_ios_uid;
class cortana_macos;
class cortana_winos;
class plugin_helper_functions;
class Ui_cortana;

class cortana : public host_interface {
    Q_OBJECT

public:
    explicit cortana(QWidget* parent = nullptr);
    ~cortana() override;

    void pub_set_engine_type(int type) override;
    QString pub_get_artifact_name() override;
    void pub_set_essentials() override;
    void pub_set_source_count(int count) override;
    void pub_set_ios_uid_backup_pointer(ios_uid_backup_parser* parser) override;
    void pub_set_desktop_info(struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_desktop_info desktop_info) override;
    void pub_set_general_info(struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_general_info general_info) override;
    void pub_set_source_info(struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_source_info source_info) override;
    void pub_set_essential_for_vantor_desk_extraction(QStringList tables, QStringList ignored) override;
    void pub_set_result_directory(QString directory) override;
    void pub_create_db_tables() override;
    void pub_set_clear_db(bool clear) override;
    void pub_cancel_extraction() override;
    void pub_find_source_file() override;
    void pub_set_extended_attributes_list(QStringList attributes) override;
    void pub_extract_artifacts() override;
    void pub_generate_chat_html_pages() override;
    void pub_remove_temporary_asthetics() override;

Q_SIGNALS:
    void signal_extracted_records_of_plugin_overall(qint64 records);
    void signal_tab_processed_of_plugin_overall(int tab_count);

public Q_SLOTS:
    void slot_m_process_finished(int status);
    void slot_extracted_records_of_plugin(qint64 records);
    void slot_total_tabs_processed(int tab_count);

private:
    // The result folder and database (plugin/cortana_result.cpp).
    void set_destination_location(QString result_dir);
    void create_destination_database();
    void create_db_tables();
    void clear_db_tables();
    // Routing (plugin/cortana_routing.cpp).
    struct route;
    const route* route_of_source() const;
    void log_unknown_scheme(const QString& function);

    Ui_cortana* ui; // deleted in the destructor
    bool bool_process_finished = false;
    int tab_count_int = 0;    // last value relayed
    qint64 records_count = 0; // last value relayed
    int type_engine_int = -1; // -1 until the host sets it
    bool bool_cancel_extraction = false;
    QString plugin_tmp_dir_path;
    QString destination_db_path;
    QString plugin_result_dir_path;
    QString os_scheme_internal;
    QStringList selected_tables;
    plugin_helper_functions* plugin_helper_obj;
    cortana_macos* macos_front;
    cortana_ios_uid* ios_front;
    cortana_winos* winos_front;
};
