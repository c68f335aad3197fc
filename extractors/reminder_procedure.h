// SPDX-License-Identifier: MIT
// The procedure of the three reminder steps: reads each CortanaCoreDb.dat, pairs trigger rows with reminders, writes
// one row a pair. A step describes itself as a reminder_step and makes one call of run_reminder_step.
#pragma once

#include "ese/specific_table.h"
#include "extractors/reminder_pairing.h"
#include "extractors/row_values.h"
#include "extractors/step_run.h"

#include <functional>
#include <memory>

// What a result row is made of. A pair without a reminder has one whose fields are all empty.
template <class Trigger>
struct reminder_row {
    const row_origin& origin;
    const specific_table::struct_remainder_data& reminder;
    const Trigger& trigger;
};

// One step as data.
template <class Trigger>
struct reminder_step {
    step_texts texts;
    QString kind;          // of the plain records that give keys, compared exactly
    QString trigger_table; // read through the keyed chain
    QList<Trigger> specific_table::*triggers;
    bindings<reminder_row<Trigger>> columns;
};

// Values that the steps share.
template <class Row>
QVariant title_of(const Row& row) {
    return row.reminder.title;
}
template <class Row>
QVariant text_of(const Row& row) {
    return row.reminder.text;
}
template <class Row>
QVariant creation_time_of(const Row& row) {
    return filetime_to_unix_seconds(row.reminder.creation_time);
}
template <class Row>
QVariant last_update_time_of(const Row& row) {
    return filetime_to_unix_seconds(row.reminder.last_update_time);
}
template <class Row>
QVariant last_access_time_of(const Row& row) {
    return filetime_to_unix_seconds(row.reminder.last_access_time);
}
template <class Row>
QVariant completion_time_of(const Row& row) {
    return filetime_to_unix_seconds(row.reminder.completion_time);
}

// The walk over the files, for any trigger record. trigger_row_at and values_at take indexes into the reader's trigger
// list; trigger_count tells its length.
struct reminder_walk {
    QString kind;
    QString trigger_table;
    std::function<int()> trigger_count;
    std::function<reminder_pairing::trigger_row(int trigger)> trigger_row_at;
    std::function<QVector<QVariant>(const row_origin&, const specific_table::struct_remainder_data&, int trigger)>
        values_at;
};

// False when the run was cancelled.
bool walk_reminders(step_run& run, const reminder_walk& walk, specific_table& reader, const QStringList& files);

// Runs the whole step over files. The reader lives in the owner's member while the step runs.
template <class Reader, class Trigger>
void run_reminder_step(const step_context& context, const reminder_step<Trigger>& step, std::unique_ptr<Reader>& reader,
                       const QStringList& files) {
    run_step(context, step.texts, [&](step_run& run) {
        reader = std::make_unique<Reader>();
        const QList<Trigger>& triggers = (*reader).*step.triggers;
        const reminder_walk walk{
            step.kind, step.trigger_table, [&] { return triggers.size(); },
            [&](int trigger) {
                const Trigger& row = triggers.at(trigger);
                return reminder_pairing::trigger_row{row.id, !row.lookup_key.isEmpty()};
            },
            [&](const row_origin& origin, const specific_table::struct_remainder_data& reminder, int trigger) {
                return bound_values(step.columns, reminder_row<Trigger>{origin, reminder, triggers.at(trigger)});
            }};
        const bool finished = walk_reminders(run, walk, *reader, files);
        reader.reset();
        return finished;
    });
}
