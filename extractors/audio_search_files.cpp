// SPDX-License-Identifier: MIT
// latest_audio_search: one row per recorded voice search, from the file system alone.
#include "common/plugin_static_function.h"
#include "extractors/folder_procedure.h"
#include "extractors/step_columns.h"
#include "extractors/steps.h"
#include "source/readable_alias.h"

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

bool write_recording(step_run& run, const row_origin& folder, const walk_entry& entry) {
    const QString& root = run.context.fs_extraction_source_path;
    const readable_alias file(entry);
    QString windows_path = entry.path;
    windows_path.replace(root, QStringLiteral("C:/"));
    // Not asked whether it is still there: its row tells.
    run.insert(bound_values(columns, {folder, entry.path.mid(entry.path.lastIndexOf(QLatin1Char('/')) + 1),
                                      plugin_static_function::mining_size(file.path()),
                                      path_below_root(entry.path, root), windows_path, times_of(entry, file, root)}));
    return true;
}

const folder_step step{texts, "", write_recording};

} // namespace

void fill_latest_audio_search(const step_context& context, const QStringList& folders) {
    run_folder_step(context, step, folders);
}

step_columns columns_of_latest_audio_search() {
    return columns_of(texts, columns);
}
