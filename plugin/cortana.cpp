// SPDX-License-Identifier: MIT
// Construction, setters fanned out to the fronts, cancel and relays. The fronts are served in the order macOS, iOS,
// Windows.
#include "plugin/cortana.h"

#include "common/plugin_helper_functions.h"
#include "common/plugin_static_function.h"
#include "plugin/cortana_ios_uid.h"
#include "plugin/cortana_macos.h"
#include "plugin/cortana_winos.h"
#include "ui_cortana.h"

cortana::cortana(QWidget* parent) : host_interface(parent), ui(new Ui_cortana) {
    ui->setupUi(this);
    macos_front = new cortana_macos(this);
    connect(macos_front, SIGNAL(signal_extracted_records_of_plugin_macos(qint64)), this,
            SLOT(slot_extracted_records_of_plugin(qint64)));
    connect(macos_front, SIGNAL(signal_total_tabs_processed_macos(int)), this, SLOT(slot_total_tabs_processed(int)));
    ios_front = new cortana_ios_uid(this);
    connect(ios_front, SIGNAL(signal_extracted_records_of_plugin_ios_uid(qint64)), this,
            SLOT(slot_extracted_records_of_plugin(qint64)));
    connect(ios_front, SIGNAL(signal_total_tabs_processed_ios_uid(int)), this, SLOT(slot_total_tabs_processed(int)));
    winos_front = new cortana_winos(this);
    connect(winos_front, SIGNAL(signal_extracted_records_of_plugin_winos(qint64)), this,
            SLOT(slot_extracted_records_of_plugin(qint64)));
    connect(winos_front, SIGNAL(signal_total_tabs_processed_winos(int)), this, SLOT(slot_total_tabs_processed(int)));
    plugin_helper_obj = new plugin_helper_functions(this);
}

cortana::~cortana() {
    delete ui;
}

void cortana::pub_set_engine_type(int type) {
    type_engine_int = type;
    plugin_static_function::set_engine_type(type);
    macos_front->macos_set_engine_type(type);
    ios_front->ios_uid_set_engine_type(type);
    winos_front->winos_set_engine_type(type);
    const QString name = pub_get_artifact_name();
    macos_front->macos_set_plugin_name(name);
    ios_front->ios_uid_set_plugin_name(name);
    winos_front->winos_set_plugin_name(name);
}

QString cortana::pub_get_artifact_name() {
    return QObject::tr("Cortana");
}

void cortana::pub_set_essentials() {
    bool_cancel_extraction = false;
    tab_count_int = 0;
    records_count = 0;
    plugin_static_function::set_essentials();
    plugin_helper_obj->set_essentials();
    macos_front->macos_set_essentials();
    ios_front->ios_uid_set_essentials();
    winos_front->winos_set_essentials();
}

void cortana::pub_set_source_count(int count) {
    macos_front->macos_set_source_count(count);
    ios_front->ios_uid_set_source_count(count);
    winos_front->winos_set_source_count(count);
    plugin_static_function::set_source_count(count);
}

void cortana::pub_set_ios_uid_backup_pointer(ios_uid_backup_parser* parser) {
    ios_front->ios_uid_set_ios_backup_pointer(parser);
}

void cortana::pub_set_desktop_info(struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_desktop_info desktop_info) {
    plugin_static_function::set_desktop_info(desktop_info);
    macos_front->macos_set_desktop_info(desktop_info);
    ios_front->ios_uid_set_desktop_info(desktop_info);
    winos_front->winos_set_desktop_info(desktop_info);
}

void cortana::pub_set_general_info(struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_general_info general_info) {
    plugin_static_function::set_general_info(general_info);
    macos_front->macos_set_general_info(general_info);
    ios_front->ios_uid_set_general_info(general_info);
    winos_front->winos_set_general_info(general_info);
}

void cortana::pub_set_source_info(struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_source_info source_info) {
    os_scheme_internal = source_info.os_scheme_internal;
    plugin_static_function::set_source_info(source_info);
    macos_front->macos_set_source_info(source_info);
    ios_front->ios_uid_set_source_info(source_info);
    winos_front->winos_set_source_info(source_info);
}

void cortana::pub_set_essential_for_vantor_desk_extraction(QStringList tables, QStringList /*ignored*/) {
    selected_tables = tables;
    macos_front->macos_set_essential_for_vantor_desk_extraction(tables);
    ios_front->ios_uid_set_essential_for_vantor_desk_extraction(tables);
    winos_front->winos_set_essential_for_vantor_desk_extraction(tables);
}

void cortana::pub_set_result_directory(QString directory) {
    set_destination_location(directory);
}

void cortana::pub_create_db_tables() {
    create_destination_database();
}

void cortana::pub_set_clear_db(bool clear) {
    if (clear) {
        clear_db_tables();
    }
}

void cortana::pub_cancel_extraction() {
    bool_cancel_extraction = true;
    plugin_static_function::set_cancel_extraction(true);
    plugin_helper_obj->set_cancel_extraction(true);
    macos_front->macos_cancel_extraction();
    ios_front->ios_uid_cancel_extraction();
    winos_front->winos_cancel_extraction();
}

void cortana::pub_set_extended_attributes_list(QStringList /*attributes*/) {}

void cortana::pub_generate_chat_html_pages() {}

void cortana::pub_remove_temporary_asthetics() {
    plugin_static_function::remove_directory(plugin_tmp_dir_path);
    plugin_static_function::close_debug_file();
}

void cortana::slot_m_process_finished(int /*status*/) {
    bool_process_finished = true;
}

void cortana::slot_extracted_records_of_plugin(qint64 records) {
    records_count = records;
    Q_EMIT signal_extracted_records_of_plugin_overall(records);
}

void cortana::slot_total_tabs_processed(int tab_count) {
    tab_count_int = tab_count;
    Q_EMIT signal_tab_processed_of_plugin_overall(tab_count);
}
