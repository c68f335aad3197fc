// SPDX-License-Identifier: MIT
// One source of a batch: extracted into a folder of the local disk, brought to the shared one whole or not at all, and
// done once only.
#pragma once

#include "host/batch/manifest.h"
#include "host/run/extract_options.h"

#include <functional>

namespace batch {

struct source_run {
    manifest_source source;
    QByteArray manifest; // all of its text, which is kept beside the results
    QString out;         // made where it is missing
    extract_options options;
    bool force = false; // does again what was done with other evidence, version or arguments
};

struct extract_answer {
    int exit_code = 0;
    QString reason; // what was said last, for an exit code that leaves no run record
};
// What "cortana extract" does.
using extract_function = std::function<extract_answer(const extract_options& options)>;

struct source_outcome {
    int exit_code = 0;
    QString message; // for the user; never empty
};

// Needs the application object. Writes below out and below TMPDIR, and nowhere else.
source_outcome run_one_source(const source_run& run, const extract_function& extract);

} // namespace batch
