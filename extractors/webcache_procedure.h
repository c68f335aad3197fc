// SPDX-License-Identifier: MIT
// The procedure of the three WebCache steps: reads the Cortana containers of each WebCacheV01.dat and writes one row an
// entry. A step describes itself as a webcache_step and makes one call of run_webcache_step.
#pragma once

#include "extractors/row_values.h"
#include "extractors/step_run.h"
#include "extractors/webcache_paths.h"

#include <QStringList>

#include <memory>

// One step as data.
struct webcache_step {
    step_texts texts; // the statement takes the values of webcache_columns()
    webcache_naming naming;
    QString (*url)(const QString& url);
};

// What a result row is made of.
struct webcache_row {
    const row_origin& origin;
    const specific_table::struct_ano_data& entry;
    QString windows_path;
    QString relative_path; // of the file in the source, whether it is there or not
    bool file_exists;
    QString url;
};

// The values that all three statements bind, in order.
const bindings<webcache_row>& webcache_columns();

void walk_webcache(step_run& run, const webcache_step& step, specific_table& reader, const QStringList& files);

// Runs the whole step over files. The reader lives in the owner's member while the step runs.
template <class Reader>
void run_webcache_step(const step_context& context, const webcache_step& step, std::unique_ptr<specific_table>& reader,
                       const QStringList& files) {
    run_step(context, step.texts, [&](step_run& run) {
        reader = std::make_unique<Reader>();
        walk_webcache(run, step, *reader, files);
        reader.reset();
    });
}
