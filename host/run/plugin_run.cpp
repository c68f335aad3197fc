// SPDX-License-Identifier: MIT
// A signal may come at any moment: the object is a target for it only while it exists, and a signal that comes before
// the run's flags are reset is told to the object once more.
#include "host/run/plugin_run.h"

#include "host/run/cancellation.h"

#include <memory>

namespace {

struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_general_info general_record(const worker_request& request) {
    struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_general_info record;
    record.debug_mode_status = true;
    record.debug_print_on_terminal = request.log_terminal;
    record.debug_print_in_file = true;
    record.debug_encryption_status = request.encipher_log;
    record.debug_file_path = worker_log(request.folder);
    return record;
}

struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_source_info source_record(const worker_request& request) {
    struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_source_info record;
    record.fs_extraction_source_path = request.source_root;
    record.os_scheme_display = request.os_scheme;
    record.os_scheme_internal = QStringLiteral("winOS");
    record.system_account_QList = request.accounts;
    return record;
}

void prepare(host_interface& plugin, const worker_request& request) {
    plugin.pub_set_essentials();
    if (is_cancelled()) {
        plugin.pub_cancel_extraction();
    }
    plugin.pub_set_engine_type(0);
    plugin.pub_set_general_info(general_record(request));
    plugin.pub_set_desktop_info({});
    plugin.pub_set_source_info(source_record(request));
    plugin.pub_set_source_count(request.source_number);
    plugin.pub_set_essential_for_vantor_desk_extraction(request.tables, {});
    plugin.pub_set_result_directory(request.folder);
    plugin.pub_create_db_tables();
}

} // namespace

void run_plugin(const plugin_library& library, const worker_request& request, plugin_listener& listener) {
    const std::unique_ptr<host_interface> plugin(static_cast<host_interface*>(library.create()));
    QObject::connect(plugin.get(), CORTANA_RECORDS_SIGNAL, &listener, SLOT(rows_written(qint64)));
    QObject::connect(plugin.get(), CORTANA_TABLES_SIGNAL, &listener, SLOT(steps_done(int)));
    const cancel_target target(*plugin);
    prepare(*plugin, request);
    plugin->pub_find_source_file();
    plugin->pub_extract_artifacts();
    plugin->pub_remove_temporary_asthetics();
}
