// SPDX-License-Identifier: MIT
// Reads each table of each file once and writes the pairs that reminder_pairing computes.
#include "extractors/reminder_procedure.h"

#include "common/text_decoding.h"

namespace {

// Marks every row that has values, so that a row without any shows by its empty lookup_key. What is compared with the
// rows' ids are the keys that reminder_pairing holds, not this one.
const QString stamp = QStringLiteral("stamped");

QStringList keys_from(const specific_table& reader, int first_record, const QString& kind) {
    QStringList keys;
    for (int index = first_record; index < reader.list_struct_data.size(); ++index) {
        const specific_table::struct_data& record = reader.list_struct_data.at(index);
        if (record.kind == kind) {
            keys.append(latin1_until_nul(record.id));
        }
    }
    return keys;
}

// Deliberate: nothing compares a reminder's own id, the position alone decides, and earlier files' keys count again
// for this file. A database whose tables are ordered differently gives other pairs than its ids tell, and a host that
// compares results relies on them.
void read_file(const reminder_walk& walk, specific_table& reader, const QString& file, reminder_pairing& pairing) {
    const int first_record = reader.list_struct_data.size();
    reader.start_parsing(file, QStringLiteral("Triggers"));
    const QStringList keys = keys_from(reader, first_record, walk.kind);
    const int first_reminder = reader.list_remainder_data.size();
    const int first_trigger = walk.trigger_count();
    if (pairing.keys() + keys.size() > 0) { // without a key no row of the two tables is ever looked at
        reader.start_parsing(file, QStringLiteral("Reminders"), stamp, QStringList());
        reader.start_parsing(file, walk.trigger_table, stamp, 1);
    }
    QVector<reminder_pairing::trigger_row> rows;
    rows.reserve(walk.trigger_count() - first_trigger);
    for (int index = first_trigger; index < walk.trigger_count(); ++index) {
        rows.append(walk.trigger_row_at(index));
    }
    pairing.add_file(keys, reader.list_remainder_data.size() - first_reminder, rows);
}

} // namespace

bool walk_reminders(step_run& run, const reminder_walk& walk, specific_table& reader, const QStringList& files) {
    const specific_table::struct_remainder_data no_reminder;
    const auto keep_going = [&] { return !run.cancelled(); };
    reminder_pairing pairing;
    for (const QString& file : files) {
        if (run.cancelled()) {
            return false;
        }
        const row_origin origin = origin_of(file, run.context);
        read_file(walk, reader, file, pairing);
        const bool finished = pairing.for_each_pair(keep_going, [&](int trigger, int reminder) {
            const auto& paired = reminder < 0 ? no_reminder : reader.list_remainder_data.at(reminder);
            run.insert(walk.values_at(origin, paired, trigger));
        });
        if (!finished) {
            return false;
        }
    }
    return true;
}
