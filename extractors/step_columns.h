// SPDX-License-Identifier: MIT
// What each step's statement names and what it binds, side by side, so that the two can be held against each other:
// values are bound by their order, and nothing at run time would notice a pair that changed places.
#pragma once

#include "extractors/step_run.h"

#include <QStringList>
#include <QVector>

struct step_columns {
    const char* statement; // as prepared
    QStringList labels;    // of the bindings, in the order in which they are bound
};

template <class Row>
step_columns columns_of(const step_texts& texts, const bindings<Row>& bound) {
    step_columns columns{texts.statement, {}};
    for (const binding<Row>& one : bound) {
        columns.labels.append(QLatin1String(one.column));
    }
    return columns;
}

// One a step, told by the step's own file.
step_columns columns_of_time_reminders();
step_columns columns_of_place_reminders();
step_columns columns_of_contact_triggers();
step_columns columns_of_latest_audio_search();
step_columns columns_of_graphed_cache();
step_columns columns_of_cache_files();
step_columns columns_of_cookies();
step_columns columns_of_domstore();
step_columns columns_of_searches_from_recents();
step_columns columns_of_searches_from_com();

// All of them, in the order in which the steps run.
QVector<step_columns> all_step_columns();
