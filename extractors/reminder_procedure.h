// SPDX-License-Identifier: MIT
// The procedure of the three reminder steps: reads each CortanaCoreDb.dat, pairs trigger rows with reminders, writes
// one row a pair. A step describes itself as a reminder_step and makes one call of run_reminder_step.
#pragma once

#include "ese/specific_table.h"
#include "extractors/packed_rows.h"
#include "extractors/step_columns.h"
#include "extractors/step_run.h"

#include <QStringList>

#include <functional>
#include <memory>

// Stands for a value in reminder_column: the next of the reminder's title, text, and times of creation, last update,
// last access and completion. All are empty in the row of a pair without a reminder.
constexpr std::nullptr_t from_reminder = nullptr;

// One bound value of an insert: the column it goes to (for the reader, in statement order) and how a trigger gives it.
template <class Trigger>
struct reminder_column {
    const char* column;
    QVariant (*value)(const Trigger& trigger);
};

// One step as data.
template <class Trigger>
struct reminder_step {
    step_texts texts;
    QString kind;          // of the plain records that give keys, compared exactly
    QString trigger_table; // read through the keyed chain
    QList<Trigger> specific_table::*triggers;
    QVector<reminder_column<Trigger>> columns; // those between the two users and the three that tell the source
};

// The statement and what is bound to it: around a step's own columns stand the users and what tells the source.
template <class Trigger>
step_columns columns_of(const reminder_step<Trigger>& step) {
    step_columns columns{step.texts.statement, {QStringLiteral("system_user"), QStringLiteral("domain_user")}};
    for (const reminder_column<Trigger>& column : step.columns) {
        columns.labels.append(QLatin1String(column.column));
    }
    columns.labels << QStringLiteral("source_file") << QStringLiteral("os_scheme_display")
                   << QStringLiteral("source_count_name");
    return columns;
}

// The walk over the files, for any trigger record.
struct reminder_walk {
    QString kind;
    QString trigger_table;
    QVector<bool> is_from_reminder; // for each column
    // Moves what the reader's trigger list holds to two stores: of each record its id and whether the reader stamped
    // it with the key, and the values that its row takes.
    std::function<void(packed_rows& ids, packed_rows& values)> keep_triggers;
};

void walk_reminders(step_run& run, const reminder_walk& walk, specific_table& reader, const QStringList& files);

// Moves a list of triggers to the two stores of reminder_walk.
template <class Trigger>
void pack_triggers(const reminder_step<Trigger>& step, QList<Trigger>& triggers, packed_rows& ids,
                   packed_rows& values) {
    for (const Trigger& trigger : qAsConst(triggers)) {
        QVector<QVariant> kept;
        for (const reminder_column<Trigger>& column : step.columns) {
            if (column.value != from_reminder) {
                kept.append(column.value(trigger));
            }
        }
        ids.append({trigger.id, !trigger.lookup_key.isEmpty()});
        values.append(kept);
    }
    triggers.clear();
}

// Runs the whole step over files. The reader lives in the owner's member while the step runs.
template <class Reader, class Trigger>
void run_reminder_step(const step_context& context, const reminder_step<Trigger>& step, std::unique_ptr<Reader>& reader,
                       const QStringList& files) {
    run_step(context, step.texts, [&](step_run& run) {
        reader = std::make_unique<Reader>();
        reminder_walk walk{step.kind, step.trigger_table, {}, {}};
        for (const reminder_column<Trigger>& column : step.columns) {
            walk.is_from_reminder.append(column.value == from_reminder);
        }
        walk.keep_triggers = [&](packed_rows& ids, packed_rows& values) {
            pack_triggers(step, (*reader).*step.triggers, ids, values);
        };
        walk_reminders(run, walk, *reader, files);
        reader.reset();
    });
}
