// SPDX-License-Identifier: MIT
// graphed_cache: one row per entity of the text files in the graph cache folders.
#include "extractors/folder_procedure.h"
#include "extractors/graph_text.h"
#include "extractors/step_columns.h"
#include "extractors/steps.h"

namespace {

// Deliberate: "In sert" is two words; log readers know the line by them.
constexpr step_texts texts = {
    "void cortana_winos::extract_graph_search_files()",
    "[extract_graph_search_files] ----- STARTS ------",
    "[extract_graph_search_files]Destination Db opening -----FAILED----- ",
    "[extract_graph_search_files] ----- ENDS ------",
    {"In sert query -----FAILED----- in graphed_cache ", false, "", ""},
    "insert into graphed_cache "
    "(bookmark,system_user,domain_user,entity_id,search_id,search_content,longitude,latitude,map_url,phone,creation_"
    "timestamp,modification_timestamp,last_accessed_timestamp,source_file ,os_scheme_display,source_count_name) "
    "values(0,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?)",
};

struct graph_row {
    const row_origin& origin;
    const graph_entity& entity;
};

const bindings<graph_row> columns = {
    {"system_user", system_user_of},
    {"domain_user", domain_user_of},
    {"entity_id", [](const graph_row& row) { return QVariant(row.entity.entity_id); }},
    {"search_id", [](const graph_row& row) { return QVariant(row.entity.search_id); }},
    {"search_content", [](const graph_row& row) { return QVariant(row.entity.search_content); }},
    {"longitude", [](const graph_row& row) { return QVariant(row.entity.longitude); }},
    {"latitude", [](const graph_row& row) { return QVariant(row.entity.latitude); }},
    {"map_url",
     [](const graph_row& row) {
         return QVariant(map_url(row.entity.latitude.trimmed(), row.entity.longitude.trimmed()));
     }},
    {"phone", [](const graph_row& row) { return QVariant(row.entity.phone); }},
    {"creation_timestamp", [](const graph_row& row) { return QVariant(row.entity.creation_time); }},
    {"modification_timestamp", [](const graph_row& row) { return QVariant(row.entity.modification_time); }},
    {"last_accessed_timestamp", [](const graph_row& row) { return QVariant(row.entity.last_access_time); }},
    {"source_file", source_file_of},
    {"os_scheme_display", os_scheme_of},
    {"source_count_name", source_count_of},
};

// The users are the folder's, the source file is the file itself.
bool write_entities(step_run& run, const row_origin& folder, const walk_entry& file) {
    const std::optional<QByteArray> content = whole_content(file.native_path);
    if (!content) {
        run.log(QStringLiteral("Unable to open file in graph cache"));
        return true;
    }
    row_origin origin = folder;
    origin.source_file = origin_of(file.path, run.context).source_file;
    graph_text_cutter cutter(*content);
    graph_entity entity;
    while (!run.cancelled()) {
        if (!cutter.next(entity)) {
            return true;
        }
        run.insert(bound_values(columns, {origin, entity}));
    }
    return false;
}

const folder_step step{texts, "ttl", write_entities};

} // namespace

void fill_graphed_cache(const step_context& context, const QStringList& folders) {
    run_folder_step(context, step, folders);
}

step_columns columns_of_graphed_cache() {
    return columns_of(texts, columns);
}
