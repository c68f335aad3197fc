// SPDX-License-Identifier: MIT
// The kept columns of "TimeTriggers".
#include "ese/timetriggers.h"

#include "ese/record_walk.h"

namespace {

using trigger = specific_table::struct_time_triggers_data;

const kept_column<trigger, QString> trigger_texts[] = {
    {QLatin1String("Id"), &trigger::id},
    {QLatin1String("DateTime"), &trigger::date_time},
    {QLatin1String("RecurrenceUnit"), &trigger::recurrence_unit},
    {QLatin1String("RuleInstanceId"), &trigger::rule_instance_id},
    {QLatin1String("RuleStatus"), &trigger::rule_status},
    {QLatin1String("RuleErrorCode"), &trigger::rule_error_code},
    {QLatin1String("RuleErrorMessage"), &trigger::rule_error_message},
    {QLatin1String("LastTriggerTime"), &trigger::last_trigger_time},
};

} // namespace

void timetriggers::get_column_name_and_type(libesedb_record_t* record, libesedb_error_t* error, QString key) {
    walk_values(record, error, list_time_triggers_data, current_time_triggers_data, key);
}

void timetriggers::get_record_values(libesedb_record_t* record, libesedb_error_t* error, QString column_name,
                                     int value_index, unsigned int column_type, QString key) {
    current_time_triggers_data->lookup_key = key;
    if (QString* text = field_of_column(trigger_texts, column_name, *current_time_triggers_data)) {
        *text = utf8_until_nul(record_type_case(record, value_index, column_type, error));
    }
}
