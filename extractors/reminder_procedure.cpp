// SPDX-License-Identifier: MIT
// Reads each table of each file once and writes the pairs that reminder_pairing computes.
#include "extractors/reminder_procedure.h"

#include "common/text_decoding.h"
#include "extractors/reminder_pairing.h"
#include "extractors/row_values.h"

namespace {

using reminder_record = specific_table::struct_remainder_data;

// Marks every row that has values, so that a row without any shows by its empty lookup_key. What is compared with the
// rows' ids are the keys that reminder_pairing holds, not this one.
const QString stamp = QStringLiteral("stamped");

QVector<QVariant> values_of(const reminder_record& reminder) {
    return {reminder.title,
            reminder.text,
            filetime_to_unix_seconds(reminder.creation_time),
            filetime_to_unix_seconds(reminder.last_update_time),
            filetime_to_unix_seconds(reminder.last_access_time),
            filetime_to_unix_seconds(reminder.completion_time)};
}

// Each record is packed as soon as it is read: nothing else is kept while libesedb works.
class reminder_walker {
public:
    reminder_walker(step_run& running_step, const reminder_walk& described_walk, specific_table& core_reader)
        : run(running_step), walk(described_walk), reader(core_reader) {}

    // Deliberate: nothing compares a reminder's own id, the position alone decides, and earlier files' keys count again
    // for this file. A database whose tables are ordered differently gives other pairs than its ids tell, and a host
    // that compares results relies on them.
    void read_file(const QString& file) {
        packed_rows keys;
        packed_rows trigger_ids;
        const int known_reminders = reminders.count();
        keep_with([&] { keep_keys(keys); });
        reader.start_parsing(file, QStringLiteral("Triggers"));
        if (run.cancelled()) {
            return;
        }
        if (pairing.keys() + keys.count() > 0) { // without a key no row of the two tables is ever looked at
            keep_with([&] { keep_reminders(); });
            reader.start_parsing(file, QStringLiteral("Reminders"), stamp, QStringList());
            if (run.cancelled()) {
                return;
            }
            keep_with([&] { walk.keep_triggers(trigger_ids, triggers); });
            reader.start_parsing(file, walk.trigger_table, stamp, 1);
        }
        pair(keys, reminders.count() - known_reminders, trigger_ids);
    }

    void write_pairs(const row_origin& origin) {
        pairing.for_each_pair([&] { return !run.cancelled(); },
                              [&](int trigger, int reminder) { run.insert(row_of(origin, trigger, reminder)); });
    }

private:
    void keep_with(const std::function<void()>& keep) {
        reader.set_record_sink([this, keep] {
            keep();
            return !run.cancelled();
        });
    }

    void keep_keys(packed_rows& keys) const {
        for (const specific_table::struct_data& record : qAsConst(reader.list_struct_data)) {
            if (record.kind == walk.kind) {
                keys.append({latin1_until_nul(record.id)});
            }
        }
        reader.list_struct_data.clear();
    }

    void keep_reminders() {
        for (const reminder_record& reminder : qAsConst(reader.list_remainder_data)) {
            reminders.append(values_of(reminder));
        }
        reader.list_remainder_data.clear();
    }

    void pair(const packed_rows& keys, int new_reminders, const packed_rows& trigger_ids) {
        QStringList new_keys;
        for (int row = 0; row < keys.count(); ++row) {
            new_keys.append(keys.at(row).at(0).toString());
        }
        QVector<reminder_pairing::trigger_row> rows;
        rows.reserve(trigger_ids.count());
        for (int row = 0; row < trigger_ids.count(); ++row) {
            const QVector<QVariant> id_and_stamp = trigger_ids.at(row);
            rows.append({id_and_stamp.at(0).toString(), id_and_stamp.at(1).toBool()});
        }
        pairing.add_file(new_keys, new_reminders, rows);
    }

    QVector<QVariant> row_of(const row_origin& origin, int trigger, int reminder) const {
        const QVector<QVariant> of_trigger = triggers.at(trigger);
        const QVector<QVariant> of_reminder = reminder < 0 ? no_reminder : reminders.at(reminder);
        auto next_of_trigger = of_trigger.cbegin();
        auto next_of_reminder = of_reminder.cbegin();
        QVector<QVariant> values{origin.system_user, origin.domain_user};
        for (const bool is_from_reminder : walk.is_from_reminder) {
            values.append(is_from_reminder ? *next_of_reminder++ : *next_of_trigger++);
        }
        return values << origin.source_file << origin.os_scheme_display << origin.source_count_name;
    }

    step_run& run;
    const reminder_walk& walk;
    specific_table& reader;
    packed_rows reminders; // of all files, as the triggers
    packed_rows triggers;
    reminder_pairing pairing;
    const QVector<QVariant> no_reminder = values_of({});
};

} // namespace

void walk_reminders(step_run& run, const reminder_walk& walk, specific_table& reader, const QStringList& files) {
    reminder_walker walker(run, walk, reader);
    for (const QString& file : files) {
        if (run.cancelled()) {
            return;
        }
        walker.read_file(file);
        if (run.cancelled()) {
            return;
        }
        walker.write_pairs(origin_of(file, run.context));
    }
}
