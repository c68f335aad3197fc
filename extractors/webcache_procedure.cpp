// SPDX-License-Identifier: MIT
// Reads "Containers" of each file, then the selected containers one after the other.
#include "extractors/webcache_procedure.h"

#include "extractors/webcache_paths.h"

namespace {

// Records of ordinary size stay in the processor's cache until they are written.
constexpr int most_records = 256;
constexpr int most_characters = 1 << 20;

// Any column may hold any type of value in a file made for it.
int characters_of(const specific_table::struct_ano_data& entry) {
    int characters = 0;
    for (const QString* text :
         {&entry.secure_directory, &entry.file_size, &entry.access_count, &entry.sync_time, &entry.creation_time,
          &entry.expiry_time, &entry.modified_time, &entry.accessed_time, &entry.url, &entry.filename}) {
        characters += qMin(text->size(), most_characters);
    }
    return characters;
}

} // namespace

const bindings<webcache_row>& webcache_columns() {
    using row = webcache_row;
    static const bindings<row> columns{
        {"system_user", system_user_of},
        {"domain_user", domain_user_of},
        {"file_name", [](const row& r) -> QVariant { return r.entry.filename; }},
        // Deliberate: size and count are bound as the text that was read. As numbers, a missing value would be
        // stored as 0 instead of ''.
        {"file_size", [](const row& r) -> QVariant { return r.entry.file_size; }},
        {"file_path", [](const row& r) -> QVariant { return r.relative_path; }},
        {"preview_file_path", [](const row& r) -> QVariant { return r.relative_path; }},
        {"export_file_paths", [](const row& r) -> QVariant { return r.relative_path; }},
        {"file_exists",
         [](const row& r) -> QVariant { return r.file_exists ? QStringLiteral("YES") : QStringLiteral("NO"); }},
        {"windows_path", [](const row& r) -> QVariant { return r.windows_path; }},
        {"url", [](const row& r) -> QVariant { return r.url; }},
        {"access_count", [](const row& r) -> QVariant { return r.entry.access_count; }},
        {"creation_timestamp",
         [](const row& r) -> QVariant { return filetime_to_unix_seconds(r.entry.creation_time); }},
        {"modification_timestamp",
         [](const row& r) -> QVariant { return filetime_to_unix_seconds(r.entry.modified_time); }},
        {"last_accessed_timestamp",
         [](const row& r) -> QVariant { return filetime_to_unix_seconds(r.entry.accessed_time); }},
        {"sync_timestamp", [](const row& r) -> QVariant { return filetime_to_unix_seconds(r.entry.sync_time); }},
        {"expiration_timestamp",
         [](const row& r) -> QVariant { return filetime_to_unix_seconds(r.entry.expiry_time); }},
        {"source_file", source_file_of},
        {"os_scheme_display", os_scheme_of},
        {"source_count_name", source_count_of},
    };
    return columns;
}

webcache_walk::webcache_walk(step_run& running_step, const webcache_step& described_step)
    : run(running_step), step(described_step), guard(running_step.context.fs_extraction_source_path) {}

bool webcache_walk::read_files(specific_table& reader, const QStringList& files) {
    for (const QString& file : files) {
        if (run.cancelled() || !read_file(reader, file)) {
            return false;
        }
    }
    return true;
}

bool webcache_walk::read_file(specific_table& reader, const QString& file) {
    reader.list_container_data.clear();
    origin = origin_of(file, run.context);
    reader.start_parsing(file, QStringLiteral("Containers"));
    QList<specific_table::struct_container_data> selected;
    if (!select_containers(reader, selected)) {
        return false;
    }
    for (const specific_table::struct_container_data& container : qAsConst(selected)) {
        reader.start_parsing(file, QStringLiteral("Container_") + container.container_id, container.directory,
                             container.secure_directories);
        write_records(reader);
        if (stopped) {
            return false;
        }
    }
    return true;
}

// All of them before any is read: once rows are written, a cancel counts only while containers or files are left.
bool webcache_walk::select_containers(const specific_table& reader,
                                      QList<specific_table::struct_container_data>& selected) const {
    for (const specific_table::struct_container_data& listed : reader.list_container_data) {
        if (run.cancelled()) {
            return false;
        }
        if (is_cortana_container(listed, step.container_name)) {
            selected.append(listed);
        }
    }
    return true;
}

void webcache_walk::record_read(specific_table& reader) {
    unwritten_characters += characters_of(reader.list_ano_data.constLast());
    if (reader.list_ano_data.size() >= most_records || unwritten_characters >= most_characters) {
        write_records(reader);
    }
}

void webcache_walk::write_records(specific_table& reader) {
    for (const specific_table::struct_ano_data& entry : qAsConst(reader.list_ano_data)) {
        stopped = run.cancelled();
        if (stopped) {
            break;
        }
        run.insert(bound_values(webcache_columns(), row_of(entry)));
    }
    reader.list_ano_data.clear();
    unwritten_characters = 0;
}

webcache_row webcache_walk::row_of(const specific_table::struct_ano_data& entry) {
    const QString& root = run.context.fs_extraction_source_path;
    const QString windows_path = step.windows_path(entry);
    const QString on_disk = on_disk_path(windows_path, root);
    return {origin, entry, windows_path, path_below_root(on_disk, root), guard.exists(on_disk), step.url(entry.url)};
}
