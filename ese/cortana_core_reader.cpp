// SPDX-License-Identifier: MIT
// The kept columns of "Triggers" and "Reminders".
#include "ese/cortana_core_reader.h"

#include "ese/record_walk.h"

namespace {

using plain_record = specific_table::struct_data;
using reminder = specific_table::struct_remainder_data;

// Deliberate: ids stay bytes here and are decoded as Latin-1 by who compares them, while the trigger tables' ids are
// UTF-8. Decoding them here would let ids match that never did.
const kept_column<plain_record, QByteArray> plain_ids[] = {
    {QLatin1String("Id"), &plain_record::id},
    {QLatin1String("ReminderId"), &plain_record::reminder_id},
};
const kept_column<plain_record, QString> plain_texts[] = {
    {QLatin1String("Kind"), &plain_record::kind},
    {QLatin1String("CreationTime"), &plain_record::creation_time},
};
const kept_column<reminder, QByteArray> reminder_ids[] = {
    {QLatin1String("Id"), &reminder::id},
};
const kept_column<reminder, QString> reminder_texts[] = {
    {QLatin1String("Status"), &reminder::status},
    {QLatin1String("SyncStatus"), &reminder::sync_status},
    {QLatin1String("CreationTime"), &reminder::creation_time},
    {QLatin1String("LastUpdateTime"), &reminder::last_update_time},
    {QLatin1String("LastAccessTime"), &reminder::last_access_time},
    {QLatin1String("CompletionTime"), &reminder::completion_time},
    {QLatin1String("Title"), &reminder::title},
    {QLatin1String("Text"), &reminder::text},
};

} // namespace

void cortana_core_reader::get_record_values(libesedb_record_t* record, libesedb_error_t* error, QString column_name,
                                            int value_index, unsigned int column_type) {
    if (QByteArray* bytes = field_of_column(plain_ids, column_name, *current_struct_data)) {
        *bytes = record_type_case(record, value_index, column_type, error);
    } else if (QString* text = field_of_column(plain_texts, column_name, *current_struct_data)) {
        *text = utf8_until_nul(record_type_case(record, value_index, column_type, error));
    }
}

void cortana_core_reader::get_record_values(libesedb_record_t* record, libesedb_error_t* error, QString column_name,
                                            int value_index, unsigned int column_type, QString key, QStringList) {
    current_remainder_data->lookup_key = key;
    if (QByteArray* bytes = field_of_column(reminder_ids, column_name, *current_remainder_data)) {
        *bytes = record_type_case(record, value_index, column_type, error);
    } else if (QString* text = field_of_column(reminder_texts, column_name, *current_remainder_data)) {
        *text = utf8_until_nul(record_type_case(record, value_index, column_type, error));
    }
}
