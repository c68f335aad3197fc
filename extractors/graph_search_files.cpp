// SPDX-License-Identifier: MIT
// graphed_cache: one row per entity of the text files in the graph cache folders.
#include "extractors/graph_text.h"
#include "extractors/row_values.h"
#include "extractors/step_run.h"
#include "extractors/steps.h"
#include "source/directory_walk.h"
#include "source/quiet_open.h"
#include "source/source_guard.h"

#include <fcntl.h>
#include <limits>
#include <new>
#include <optional>

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

// Nothing when the file cannot be read whole, be it for its rights, its size or its medium.
std::optional<QByteArray> whole_content(const QByteArray& native_path) {
    constexpr qint64 largest = std::numeric_limits<int>::max() - 64; // what one byte array holds
    const quiet_file file(native_path, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    const qint64 size = file.size();
    if (size < 0 || size > largest) {
        return std::nullopt;
    }
    try {
        QByteArray content(static_cast<int>(size), Qt::Uninitialized);
        return file.read(content.data(), size, 0) == size ? std::make_optional(content) : std::nullopt;
    } catch (const std::bad_alloc&) {
        return std::nullopt;
    }
}

// Writes the entities of one file; false when cancelled.
bool write_entities(const QByteArray& content, const row_origin& origin, step_run& run) {
    graph_text_cutter cutter(content);
    graph_entity entity;
    while (!run.cancelled()) {
        if (!cutter.next(entity)) {
            return true;
        }
        run.insert(bound_values(columns, {origin, entity}));
    }
    return false;
}

void read_folder(const QString& folder, step_run& run, source_guard& guard) {
    row_origin origin = origin_of(folder, run.context); // the users are the folder's, the source file is each file
    walk_directory(folder, [&](const walk_entry& entry) {
        if (run.cancelled()) {
            return false;
        }
        if (!entry.native_path.endsWith("ttl") || !leads_to_regular_file(entry, guard)) {
            return true;
        }
        const std::optional<QByteArray> content =
            guard.exists(entry.native_path) ? whole_content(entry.native_path) : std::nullopt;
        if (!content) {
            run.log(QStringLiteral("Unable to open file in graph cache"));
            return true;
        }
        origin.source_file = origin_of(entry.path, run.context).source_file;
        return write_entities(*content, origin, run);
    });
}

} // namespace

void fill_graphed_cache(const step_context& context, const QStringList& folders) {
    run_step(context, texts, [&](step_run& run) {
        source_guard guard(context.fs_extraction_source_path);
        for (const QString& folder : folders) {
            if (run.cancelled()) {
                return;
            }
            read_folder(folder, run, guard);
        }
    });
}
