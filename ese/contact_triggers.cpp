// SPDX-License-Identifier: MIT
// The kept columns of "ContactTriggers".
#include "ese/contact_triggers.h"

#include "ese/record_walk.h"

namespace {

using trigger = specific_table::struct_contact_trigger_data;

const kept_column<trigger, QString> trigger_texts[] = {
    {QLatin1String("Id"), &trigger::id},
    {QLatin1String("RuleInstanceId"), &trigger::rule_instance_id},
    {QLatin1String("RuleStatus"), &trigger::rule_status},
    {QLatin1String("RuleErrorCode"), &trigger::rule_error_code},
    {QLatin1String("AggregateId"), &trigger::aggregate_id},
    {QLatin1String("ContactHandle"), &trigger::contact_handle},
    {QLatin1String("ContactName"), &trigger::contact_name},
    {QLatin1String("RuleErrorMessage"), &trigger::rule_error_message},
};

} // namespace

void contact_triggers::get_column_name_and_type(libesedb_record_t* record, libesedb_error_t* error, QString key) {
    walk_values(record, error, list_contact_trigger_data, current_contact_trigger_data, key);
}

void contact_triggers::get_record_values(libesedb_record_t* record, libesedb_error_t* error, QString column_name,
                                         int value_index, unsigned int column_type, QString key) {
    current_contact_trigger_data->lookup_key = key;
    if (QString* text = field_of_column(trigger_texts, column_name, *current_contact_trigger_data)) {
        *text = utf8_until_nul(record_type_case(record, value_index, column_type, error));
    }
}
