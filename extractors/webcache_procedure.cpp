// SPDX-License-Identifier: MIT
// Reads "Containers" of each file, then the selected containers one after the other.
#include "extractors/webcache_procedure.h"

#include "source/source_guard.h"

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

namespace {

// Each record is written as soon as it is read: any number of them may share one long value, so a list of all would
// take memory that the file chooses.
class webcache_walk {
public:
    webcache_walk(step_run& running_step, const webcache_step& described_step, specific_table& container_reader)
        : run(running_step), step(described_step), reader(container_reader),
          guard(running_step.context.fs_extraction_source_path) {
        reader.set_record_sink([this] { return write_records(); });
    }

    void read_file(const QString& file) {
        reader.list_container_data.clear();
        origin = origin_of(file, run.context);
        reader.start_parsing(file, QStringLiteral("Containers"));
        if (run.cancelled()) {
            return;
        }
        for (const specific_table::struct_container_data& container : qAsConst(reader.list_container_data)) {
            if (is_cortana_container(container, QLatin1String(step.naming.container_name)) &&
                !read_container(file, container)) {
                return;
            }
        }
    }

private:
    // False when cancelled.
    bool read_container(const QString& file, const specific_table::struct_container_data& container) {
        if (run.cancelled()) {
            return false;
        }
        reader.start_parsing(file, QStringLiteral("Container_") + container.container_id, container.directory,
                             container.secure_directories);
        return !run.cancelled();
    }

    // False when cancelled.
    bool write_records() {
        for (const specific_table::struct_ano_data& entry : qAsConst(reader.list_ano_data)) {
            if (run.cancelled()) {
                break;
            }
            run.insert(bound_values(webcache_columns(), row_of(entry)));
        }
        reader.list_ano_data.clear();
        return !run.has_seen_cancel();
    }

    webcache_row row_of(const specific_table::struct_ano_data& entry) {
        const QString& root = run.context.fs_extraction_source_path;
        const QString windows_path = step.naming.windows_path(entry);
        const QString on_disk = on_disk_path(windows_path, root);
        return {
            origin, entry, windows_path, path_below_root(on_disk, root), guard.exists(on_disk), step.url(entry.url)};
    }

    step_run& run;
    const webcache_step& step;
    specific_table& reader;
    source_guard guard; // nothing that an entry names is looked at outside the source
    row_origin origin;  // of the file being read
};

} // namespace

void walk_webcache(step_run& run, const webcache_step& step, specific_table& reader, const QStringList& files) {
    webcache_walk walk(run, step, reader);
    for (const QString& file : files) {
        if (run.cancelled()) {
            return;
        }
        walk.read_file(file);
    }
}
