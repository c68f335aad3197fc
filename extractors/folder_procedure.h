// SPDX-License-Identifier: MIT
// The procedure of the steps over folders of plain files: walks each found folder and hands on the regular files that
// lie in the source. A step describes itself as a folder_step and makes one call of run_folder_step.
#pragma once

#include "extractors/row_values.h"
#include "extractors/step_run.h"
#include "source/directory_walk.h"

#include <QStringList>

#include <optional>

// One step as data.
struct folder_step {
    step_texts texts;
    const char* name_ending; // of the files that are read, bytes compared exactly; "" for all
    // Writes the rows of one file. folder: the origin of rows that name the folder as their source. False when it saw
    // that the run was cancelled. The file may be gone by now.
    bool (*write_file)(step_run& run, const row_origin& folder, const walk_entry& file);
};

// Runs the whole step. folders: full paths as discovery listed them; one that is gone or leads out of the source is
// like an empty one.
void run_folder_step(const step_context& context, const folder_step& step, const QStringList& folders);

// A regular file's bytes. Nothing when it cannot be read whole, be it for its rights, its size (2 GiB and more) or its
// medium.
std::optional<QByteArray> whole_content(const QByteArray& native_path);
