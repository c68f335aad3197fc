// SPDX-License-Identifier: MIT
// The extraction driver: one step a result table, in a fixed order, for the tables that the host selected.
#include "common/plugin_static_function.h"
#include "contract/table_names.h"
#include "plugin/cortana_winos.h"

namespace {

struct extraction_step {
    const char* table;
    void (cortana_winos::*extract)();
};

constexpr extraction_step steps[] = {
    {table_name::time_reminders, &cortana_winos::extract_timetriggers},
    {table_name::place_reminders, &cortana_winos::extract_place_reminders},
    {table_name::contact_triggers, &cortana_winos::extract_contact_triggers},
    {table_name::latest_audio_search, &cortana_winos::extract_audio_search_files},
    {table_name::graphed_cache, &cortana_winos::extract_graph_search_files},
    {table_name::cache_files, &cortana_winos::extract_cache_files},
    {table_name::cookies, &cortana_winos::extract_cookies},
    {table_name::domstore, &cortana_winos::extract_domstore},
    {table_name::searches, &cortana_winos::extract_searches},
};

constexpr unsigned highest_engine_type = 2;

} // namespace

void cortana_winos::winos_extract_artifacts() {
    progress_timer->start();
    extract_plugin_artifacts();
    Q_EMIT signal_extracted_records_of_plugin_winos(records_count);
}

void cortana_winos::extract_plugin_artifacts() {
    const QString function = QStringLiteral("void cortana_winos::extract_plugin_artifacts()");
    // Deliberate: the tag says "plugins", the function "plugin"; readers of the log search for the tag as it is.
    plugin_static_function::app_debug(QStringLiteral("[extract_plugins_artifacts] starts"), function);
    if (static_cast<unsigned>(type_engine_int) <= highest_engine_type) {
        // The cancel flag is not asked here: every extractor sees it at once, and each selected table is still told.
        for (const extraction_step& step : steps) {
            if (!selected_tables.contains(QLatin1String(step.table))) {
                continue;
            }
            (this->*step.extract)();
            Q_EMIT signal_extracted_records_of_plugin_winos(records_count);
            ++tab_count_int;
            Q_EMIT signal_total_tabs_processed_winos(tab_count_int);
        }
    }
    plugin_static_function::app_debug(QStringLiteral("[extract_plugins_artifacts] ends"), function);
}

void cortana_winos::count_inserted_record() {
    ++records_count;
    if (take_progress(*progress_timer)) {
        Q_EMIT signal_extracted_records_of_plugin_winos(records_count);
    }
}
