// SPDX-License-Identifier: MIT
// The procedure of the two search extractors: walks one key of each user's hive and writes a row for every record in
// which a search text or a search time is found. An extractor describes itself as a search_step and makes one call.
#pragma once

#include "extractors/search_rules.h"
#include "extractors/step_columns.h"
#include "extractors/step_run.h"

#include <QStringList>

#include <memory>

// One extractor as data.
struct search_step {
    step_texts texts;
    const search_rule& rule;
};

// The statement and what both extractors bind to it.
step_columns columns_of(const search_step& step);

void walk_hives(step_run& run, const search_step& step, registry& walker, const QStringList& hives);

// Runs the whole step over hives. The walker lives in the owner's member while the step runs.
template <class Walker>
void run_search_step(const step_context& context, const search_step& step, std::unique_ptr<Walker>& walker,
                     const QStringList& hives) {
    run_step(context, step.texts, [&](step_run& run) {
        walker = std::make_unique<Walker>();
        walk_hives(run, step, *walker, hives);
        walker.reset();
    });
}
