// SPDX-License-Identifier: MIT
// latest_audio_search: one row per recorded voice search, from the file system alone.
#include "common/plugin_static_function.h"
#include "extractors/row_values.h"
#include "extractors/step_run.h"
#include "extractors/steps.h"
#include "source/directory_walk.h"
#include "source/readable_alias.h"
#include "source/source_guard.h"

namespace {

constexpr step_texts texts = {
    "void cortana_winos::extract_audio_search_files()",
    "[extract_audio_search_files] ----- STARTS ------",
    "[extract_audio_search_files]Destination Db opening ---FAILED--- ",
    "[extract_audio_search_files] -----ENDS------",
    {" --------INSERTION Query ----FAILED------", true, "Error :- ", "Query :- "},
    "INSERT INTO "
    "latest_audio_search(bookmark,system_user,domain_user,file_name,file_size,file_path,preview_file_path,export_file_"
    "paths,windows_path,creation_time,modification_time,last_access_time,source_file, "
    "os_scheme_display,source_count_name) VALUES(0,?,?,?,?,?,?,?,?,?,?,?,?,?,?)",
};

struct audio_row {
    const row_origin& origin; // of the Speech folder
    QString file_name;
    QString file_size;
    QString display_path;
    QString windows_path;
    file_times times;
};

const bindings<audio_row> columns = {
    {"system_user", system_user_of},
    {"domain_user", domain_user_of},
    {"file_name", [](const audio_row& row) { return QVariant(row.file_name); }},
    {"file_size", [](const audio_row& row) { return QVariant(row.file_size); }},
    {"file_path", [](const audio_row& row) { return QVariant(row.display_path); }},
    {"preview_file_path", [](const audio_row& row) { return QVariant(row.display_path); }},
    {"export_file_paths", [](const audio_row& row) { return QVariant(row.display_path); }},
    {"windows_path", [](const audio_row& row) { return QVariant(row.windows_path); }},
    {"creation_time", [](const audio_row& row) { return QVariant(row.times.creation); }},
    {"modification_time", [](const audio_row& row) { return QVariant(row.times.last_modification); }},
    {"last_access_time", [](const audio_row& row) { return QVariant(row.times.last_access); }},
    {"source_file", source_file_of},
    {"os_scheme_display", os_scheme_of},
    {"source_count_name", source_count_of},
};

// path with root's text taken off its front and a "/" there in any case.
QString display_path(const QString& path, const QString& root) {
    const QString shown = path_below_root(path, root);
    return shown.startsWith(QLatin1Char('/')) ? shown : QLatin1Char('/') + shown;
}

file_times times_of(const walk_entry& entry, const readable_alias& file, const QString& root) {
    const QString relative = entry.path.mid(root.size());
    if (!relative.isEmpty() && relative.back().isSpace()) {
        return {}; // the look-up would trim the name and might find another file's times
    }
    if (!file.is_own_path()) {
        return plugin_static_function::get_posix_timestamp(file.path().mid(1), QStringLiteral("/"));
    }
    return plugin_static_function::get_posix_timestamp(relative, root);
}

audio_row row_of(const walk_entry& entry, const row_origin& origin, const QString& root) {
    const readable_alias file(entry);
    QString windows_path = entry.path;
    windows_path.replace(root, QStringLiteral("C:/"));
    return {origin,
            entry.path.mid(entry.path.lastIndexOf(QLatin1Char('/')) + 1),
            plugin_static_function::mining_size(file.path()),
            display_path(entry.path, root),
            windows_path,
            times_of(entry, file, root)};
}

row_origin origin_of_folder(const QString& folder, const step_context& context) {
    row_origin origin = origin_of(folder, context);
    origin.source_file = display_path(origin.source_file, QString());
    return origin;
}

void list_folder(const QString& folder, step_run& run, source_guard& guard) {
    if (!guard.exists(folder)) {
        return;
    }
    const row_origin origin = origin_of_folder(folder, run.context);
    walk_directory(folder, [&](const walk_entry& entry) {
        if (run.cancelled()) {
            return false;
        }
        if (leads_to_regular_file(entry, guard)) { // not asked whether it is still there: its row tells
            run.insert(bound_values(columns, row_of(entry, origin, run.context.fs_extraction_source_path)));
        }
        return true;
    });
}

} // namespace

void fill_latest_audio_search(const step_context& context, const QStringList& folders) {
    run_step(context, texts, [&](step_run& run) {
        source_guard guard(context.fs_extraction_source_path);
        for (const QString& folder : folders) {
            if (run.cancelled()) {
                return;
            }
            list_folder(folder, run, guard);
        }
    });
}
