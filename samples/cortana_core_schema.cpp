// SPDX-License-Identifier: MIT
// Columns of the tables: ids are short UTF-16 texts, what a user types is large text, times are date-time columns.
#include "samples/cortana_core_schema.h"

#include "samples/schema_column.h"

core_table core_triggers() {
    return {"Triggers",
            {schema_column("Id", ese_type::text), schema_column("ReminderId", ese_type::text),
             schema_column("Kind", ese_type::signed_32), schema_column("CreationTime", ese_type::date_time)}};
}

core_table core_reminders() {
    return {"Reminders",
            {schema_column("Id", ese_type::text), schema_column("Status", ese_type::signed_32),
             schema_column("SyncStatus", ese_type::signed_32), schema_column("CreationTime", ese_type::date_time),
             schema_column("LastUpdateTime", ese_type::date_time), schema_column("LastAccessTime", ese_type::date_time),
             schema_column("CompletionTime", ese_type::date_time), schema_column("Title", ese_type::large_text),
             schema_column("Text", ese_type::large_text)}};
}

core_table core_time_triggers() {
    return {"TimeTriggers",
            {schema_column("Id", ese_type::text), schema_column("DateTime", ese_type::date_time),
             schema_column("RecurrenceUnit", ese_type::signed_32), schema_column("RuleInstanceId", ese_type::text),
             schema_column("RuleStatus", ese_type::signed_32), schema_column("RuleErrorCode", ese_type::signed_32),
             schema_column("RuleErrorMessage", ese_type::large_text),
             schema_column("LastTriggerTime", ese_type::text)}};
}

core_table core_location_triggers() {
    return {"LocationTriggers",
            {schema_column("Id", ese_type::text), schema_column("Latitude", ese_type::float_64),
             schema_column("Longitude", ese_type::float_64), schema_column("Radius", ese_type::float_32),
             schema_column("StartDate", ese_type::date_time), schema_column("Name", ese_type::large_text)}};
}

core_table core_contact_triggers() {
    return {"ContactTriggers",
            {schema_column("Id", ese_type::text), schema_column("RuleInstanceId", ese_type::text),
             schema_column("RuleStatus", ese_type::signed_32), schema_column("RuleErrorCode", ese_type::signed_32),
             schema_column("AggregateId", ese_type::text), schema_column("ContactHandle", ese_type::large_text),
             schema_column("ContactName", ese_type::large_text),
             schema_column("RuleErrorMessage", ese_type::large_text)}};
}
