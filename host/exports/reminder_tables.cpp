// SPDX-License-Identifier: MIT
// The three tables of reminders.
#include "host/exports/described_tables.h"

#include "host/exports/common_columns.h"

namespace {

using namespace common_columns;

const char* const core_database = "CortanaCoreDb.dat, in the profile's Cortana package";

} // namespace

table_description described_time_reminders() {
    return {
        "time_reminders",
        "a reminder that fires at a time",
        core_database,
        {"title", "text"},
        {
            bookmark,
            row_key,
            system_user,
            domain_user,
            title,
            text,
            created,
            updated,
            accessed,
            completed,
            {"date_time", kind::time, "s", "the time at which it fires", "TimeTriggers: DateTime", event_kind::other,
             "Reminder Time"},
            {"last_trigger_time", kind::time, "s",
             "fired last; the evidence's text is read as local time of the examining machine",
             "TimeTriggers: LastTriggerTime", event_kind::other, "Reminder Last Trigger Time"},
            host_tag,
            notes_icon,
            tags_icon,
            os_scheme,
            source_name,
            source_file,
            relation_file,
            notes,
        },
    };
}

table_description described_place_reminders() {
    return {
        "place_reminders",
        "a reminder that fires at a place",
        core_database,
        {"title", "text", "place"},
        {
            bookmark,
            row_key,
            system_user,
            domain_user,
            {"place", kind::text, "", "the place's name", "LocationTriggers: Name"},
            title,
            text,
            {"latitude", kind::coordinate, "degrees", "latitude, north positive", "LocationTriggers: Latitude"},
            {"longitude", kind::coordinate, "degrees", "longitude, east positive", "LocationTriggers: Longitude"},
            {"map_url", kind::url, "", "map link made of the coordinates", "made by the plugin"},
            {"radius", kind::distance, "m", "distance from the place within which it fires, taken as metres",
             "LocationTriggers: Radius"},
            created,
            updated,
            accessed,
            completed,
            {"start_date_time", kind::time, "s", "not fired before this time", "LocationTriggers: StartDate",
             event_kind::other, "Reminder Start Time"},
            host_tag,
            notes_icon,
            tags_icon,
            os_scheme,
            source_name,
            source_file,
            relation_file,
            notes,
        },
    };
}

table_description described_contact_triggers() {
    return {
        "contact_triggers",
        "a reminder that fires when the user deals with a contact",
        core_database,
        {"title", "text", "contact_name"},
        {
            bookmark,
            row_key,
            system_user,
            domain_user,
            {"contact_name", kind::text, "", "the contact's name", "ContactTriggers: ContactName"},
            title,
            text,
            created,
            updated,
            accessed,
            completed,
            host_tag,
            notes_icon,
            tags_icon,
            os_scheme,
            source_name,
            source_file,
            relation_file,
            notes,
        },
    };
}
