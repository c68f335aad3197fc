// SPDX-License-Identifier: MIT
// The gate is asked for each folder and for each link in it: what else the walk meets cannot lead out.
#include "extractors/folder_procedure.h"

#include "source/quiet_open.h"
#include "source/source_guard.h"

#include <limits>
#include <new>

namespace {

void read_folder(step_run& run, const folder_step& step, source_guard& guard, const QString& folder) {
    if (!guard.exists(folder)) {
        return;
    }
    const row_origin origin = origin_of(folder, run.context);
    walk_directory(folder, [&](const walk_entry& entry) {
        if (run.cancelled()) {
            return false;
        }
        const bool is_read = entry.native_path.endsWith(step.name_ending) && leads_to_regular_file(entry, guard);
        return !is_read || step.write_file(run, origin, entry);
    });
}

void read_folders(step_run& run, const folder_step& step, const QStringList& folders) {
    source_guard guard(run.context.fs_extraction_source_path);
    for (const QString& folder : folders) {
        if (run.cancelled()) {
            return;
        }
        read_folder(run, step, guard, folder);
    }
}

} // namespace

void run_folder_step(const step_context& context, const folder_step& step, const QStringList& folders) {
    run_step(context, step.texts, [&](step_run& run) { read_folders(run, step, folders); });
}

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
