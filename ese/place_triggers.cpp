// SPDX-License-Identifier: MIT
// The kept columns of "LocationTriggers".
#include "ese/place_triggers.h"

#include "ese/record_walk.h"

namespace {

using trigger = specific_table::struct_place_reminder_data;

const kept_column<trigger, QString> trigger_texts[] = {
    {QLatin1String("Id"), &trigger::id},
    {QLatin1String("Latitude"), &trigger::latitude},
    {QLatin1String("Longitude"), &trigger::longitude},
    {QLatin1String("Radius"), &trigger::radius},
    {QLatin1String("StartDate"), &trigger::start_date},
    {QLatin1String("Name"), &trigger::name},
};

} // namespace

void place_triggers::get_column_name_and_type(libesedb_record_t* record, libesedb_error_t* error, QString key) {
    walk_values(record, error, list_place_reminder_data, current_place_reminder_data, key);
}

void place_triggers::get_record_values(libesedb_record_t* record, libesedb_error_t* error, QString column_name,
                                       int value_index, unsigned int column_type, QString key) {
    current_place_reminder_data->lookup_key = key;
    if (QString* text = field_of_column(trigger_texts, column_name, *current_place_reminder_data)) {
        *text = utf8_until_nul(record_type_case(record, value_index, column_type, error));
    }
}
