// SPDX-License-Identifier: MIT
// A signal may come at any moment: the object is a target for it only while it exists, and a signal that comes before
// the run's flags are reset is told to the object once more.
#include "host/run/plugin_run.h"

#include "host/run/cancellation.h"

#include <memory>

namespace {

struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_general_info general_record(const extract_options& options,
                                                                     const output_location& output) {
    struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_general_info record;
    record.debug_mode_status = true;
    record.debug_print_on_terminal = options.log_terminal;
    record.debug_print_in_file = true;
    record.debug_encryption_status = options.encipher_log;
    record.debug_file_path = output.log;
    return record;
}

struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_source_info source_record(const extract_options& options,
                                                                   const run_request& request) {
    struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_source_info record;
    record.fs_extraction_source_path = request.source_root;
    record.os_scheme_display = options.os_scheme;
    record.os_scheme_internal = QStringLiteral("winOS");
    record.system_account_QList = request.accounts;
    return record;
}

void prepare(host_interface& plugin, const extract_options& options, const output_location& output,
             const run_request& request) {
    plugin.pub_set_essentials();
    if (is_cancelled()) {
        plugin.pub_cancel_extraction();
    }
    plugin.pub_set_engine_type(0);
    plugin.pub_set_general_info(general_record(options, output));
    plugin.pub_set_desktop_info({});
    plugin.pub_set_source_info(source_record(options, request));
    plugin.pub_set_source_count(options.source_number);
    plugin.pub_set_essential_for_vantor_desk_extraction(options.tables, {});
    plugin.pub_set_result_directory(output.result);
    plugin.pub_create_db_tables();
    if (request.clear) {
        plugin.pub_set_clear_db(true);
    }
}

} // namespace

run_outcome run_plugin(const plugin_library& library, const extract_options& options, const output_location& output,
                       const run_request& request, progress_line& progress, added_rows& counts) {
    run_outcome outcome;
    const std::unique_ptr<host_interface> plugin(static_cast<host_interface*>(library.create()));
    QObject::connect(plugin.get(), CORTANA_RECORDS_SIGNAL, &progress, SLOT(records_changed(qint64)));
    QObject::connect(plugin.get(), CORTANA_TABLES_SIGNAL, &progress, SLOT(tables_changed(int)));
    const cancel_target target(*plugin);
    prepare(*plugin, options, output, request);

    highest_keys before;
    outcome.extracted = read_highest_keys(output.database, options.tables, before, outcome.trouble);
    if (outcome.extracted) {
        plugin->pub_find_source_file();
        plugin->pub_extract_artifacts();
    }
    plugin->pub_remove_temporary_asthetics();
    outcome.rows_told = progress.records();
    if (outcome.extracted) {
        count_rows_above(output.database, before, counts, outcome.rows_found, outcome.trouble);
    }
    return outcome;
}
