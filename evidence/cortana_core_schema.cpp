// SPDX-License-Identifier: MIT
// Columns of the tables: ids are short UTF-16 texts, what a user types is large text, times are date-time columns.
#include "evidence/cortana_core_schema.h"

namespace {

ese_column column(const char* name, ese_type type) {
    ese_column made;
    made.name = name;
    made.type = type;
    if (type == ese_type::text || type == ese_type::large_text) {
        made.code_page = ese_code_page::utf_16;
    }
    return made;
}

} // namespace

core_table core_triggers() {
    return {"Triggers",
            {column("Id", ese_type::text), column("ReminderId", ese_type::text), column("Kind", ese_type::signed_32),
             column("CreationTime", ese_type::date_time)}};
}

core_table core_reminders() {
    return {"Reminders",
            {column("Id", ese_type::text), column("Status", ese_type::signed_32),
             column("SyncStatus", ese_type::signed_32), column("CreationTime", ese_type::date_time),
             column("LastUpdateTime", ese_type::date_time), column("LastAccessTime", ese_type::date_time),
             column("CompletionTime", ese_type::date_time), column("Title", ese_type::large_text),
             column("Text", ese_type::large_text)}};
}

core_table core_time_triggers() {
    return {"TimeTriggers",
            {column("Id", ese_type::text), column("DateTime", ese_type::date_time),
             column("RecurrenceUnit", ese_type::signed_32), column("RuleInstanceId", ese_type::text),
             column("RuleStatus", ese_type::signed_32), column("RuleErrorCode", ese_type::signed_32),
             column("RuleErrorMessage", ese_type::large_text), column("LastTriggerTime", ese_type::text)}};
}

core_table core_location_triggers() {
    return {"LocationTriggers",
            {column("Id", ese_type::text), column("Latitude", ese_type::float_64),
             column("Longitude", ese_type::float_64), column("Radius", ese_type::float_32),
             column("StartDate", ese_type::date_time), column("Name", ese_type::large_text)}};
}

core_table core_contact_triggers() {
    return {"ContactTriggers",
            {column("Id", ese_type::text), column("RuleInstanceId", ese_type::text),
             column("RuleStatus", ese_type::signed_32), column("RuleErrorCode", ese_type::signed_32),
             column("AggregateId", ese_type::text), column("ContactHandle", ese_type::large_text),
             column("ContactName", ese_type::large_text), column("RuleErrorMessage", ese_type::large_text)}};
}
