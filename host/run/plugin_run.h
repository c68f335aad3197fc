// SPDX-License-Identifier: MIT
// One run of the plugin: one object from create_object to delete, its operations in the documented order.
#pragma once

#include "host/record/row_counts.h"
#include "host/run/extract_options.h"
#include "host/run/output_location.h"
#include "host/run/plugin_library.h"
#include "host/run/progress_line.h"

struct run_request {
    QString source_root; // ending in "/"
    QList<system_account> accounts;
    bool clear = false;
};

struct run_outcome {
    qint64 rows_told = 0; // by the plugin's last signal
    qint64 rows_found = 0;
    bool extracted = false; // false: the result database cannot be used, nothing was read
    QString trouble;        // why the database cannot be written or read; empty: it can
};

// Adds the rows of the run to counts.
run_outcome run_plugin(const plugin_library& library, const extract_options& options, const output_location& output,
                       const run_request& request, progress_line& progress, added_rows& counts);
