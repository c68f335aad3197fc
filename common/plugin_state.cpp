// SPDX-License-Identifier: MIT
// The run-wide state, its reset and its setters.
#include "common/plugin_static_function.h"

int plugin_static_function::type_engine_int = -1;
int plugin_static_function::source_count_int = -1;
bool plugin_static_function::bool_cancel_extraction = false;
bool plugin_static_function::debug_mode_status_bool = false;
bool plugin_static_function::debug_print_on_terminal_bool = false;
bool plugin_static_function::debug_print_in_file_bool = false;
bool plugin_static_function::debug_encryption_status_bool = false;
QString plugin_static_function::debug_file_path_QString;
QFile plugin_static_function::debug_file_regular_QFile;
QString plugin_static_function::source_os_version_full;
QList<struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_system_account> plugin_static_function::system_account_QList;

void plugin_static_function::set_essentials() {
    type_engine_int = -1;
    source_count_int = -1;
    bool_cancel_extraction = false;
    debug_mode_status_bool = false;
    debug_print_on_terminal_bool = false;
    debug_print_in_file_bool = false;
    debug_file_path_QString.clear();
    system_account_QList.clear();
}

void plugin_static_function::set_engine_type(int type) {
    type_engine_int = type;
}

void plugin_static_function::set_source_count(int count) {
    source_count_int = count;
}

void plugin_static_function::set_cancel_extraction(bool cancel) {
    bool_cancel_extraction = cancel;
}

void plugin_static_function::set_general_info(struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_general_info general_info) {
    debug_mode_status_bool = general_info.debug_mode_status;
    debug_print_on_terminal_bool = general_info.debug_print_on_terminal;
    debug_print_in_file_bool = general_info.debug_print_in_file;
    debug_encryption_status_bool = general_info.debug_encryption_status;
    debug_file_path_QString = general_info.debug_file_path;
    open_debug_file();
}

void plugin_static_function::set_source_info(struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_source_info source_info) {
    source_os_version_full = source_info.os_version_full;
    system_account_QList = source_info.system_account_QList;
}

void plugin_static_function::set_desktop_info(struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_desktop_info) {}

void plugin_static_function::clear_variables_vantor_and_artifact_common_source_info(
    struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_source_info& source_info) {
    source_info = {};
}

void plugin_static_function::clear_variables_vantor_and_artifact_common_desktop_info(
    struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_desktop_info& desktop_info) {
    desktop_info = {};
}

void plugin_static_function::clear_variables_vantor_and_artifact_common_general_info(
    struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_general_info& general_info) {
    // Deliberate: the encryption switch stays; cleared with the rest, a host that reuses the record would go on
    // writing a log that was enciphered so far in plain text.
    const bool encryption = general_info.debug_encryption_status;
    general_info = {};
    general_info.debug_encryption_status = encryption;
}
