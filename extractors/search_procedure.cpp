// SPDX-License-Identifier: MIT
// A hive that cannot be read, or lacks the key, gives no records and no message.
#include "extractors/search_procedure.h"

#include "extractors/row_values.h"

namespace {

struct search_row {
    const row_origin& origin; // of the hive
    QString keyword;
    QString time;
};

// Deliberate: the time is bound as text; the column's type turns digits into a number and keeps anything else.
const bindings<search_row> columns = {
    {"system_user", system_user_of},
    {"domain_user", domain_user_of},
    {"search_keyword", [](const search_row& row) { return QVariant(row.keyword); }},
    {"search_timestamp", [](const search_row& row) { return QVariant(row.time); }},
    {"source_file", source_file_of},
    {"os_scheme_display", os_scheme_of},
    {"source_count_name", source_count_of},
};

void write_records(step_run& run, const search_step& step, const registry& walker, const row_origin& origin) {
    for (const registry::my_data_inst_apps& record : walker.record_list) {
        if (run.cancelled()) {
            return;
        }
        const QByteArray bytes = step.rule.searched_bytes(record);
        const search_row row{origin, step.rule.text(bytes), step.rule.time(bytes)};
        if (!row.keyword.isEmpty() || !row.time.isEmpty()) {
            run.insert(bound_values(columns, row));
        }
    }
}

} // namespace

step_columns columns_of(const search_step& step) {
    return columns_of(step.texts, columns);
}

void walk_hives(step_run& run, const search_step& step, registry& walker, const QStringList& hives) {
    for (const QString& hive : hives) {
        if (run.cancelled()) {
            return;
        }
        walker.record_list.clear();
        walker.start_registry_parse(hive, QLatin1String(step.rule.key_path), false);
        if (run.cancelled()) {
            return;
        }
        write_records(run, step, walker, origin_of(hive, run.context));
    }
}
