// SPDX-License-Identifier: MIT
// Result table place_reminders: the reminders that fire at a place.
#include "ese/place_triggers.h"
#include "extractors/reminder_procedure.h"
#include "extractors/row_values.h"
#include "extractors/step_columns.h"
#include "extractors/steps.h"

namespace {

using trigger = specific_table::struct_place_reminder_data;

// Deliberate: "Starts" in mixed case and the blank in front of the insertion message are the suite's contract; hosts
// filter on the exact texts.
const reminder_step<trigger> step{
    {
        "void cortana_winos::extract_place_reminders()",
        "[extract_place_reminders] ----- Starts ------",
        "[extract_place_reminders]Destination Db opening ---FAILED--- ",
        "[extract_place_reminders] ----- ENDS ------",
        {" --------INSERTION Query ----FAILED------", true, "Error :- ", "Query :- "},
        "INSERT INTO "
        "place_reminders(bookmark,system_user,domain_user,title,text,place,latitude,longitude,map_url,radius,"
        "creation_time,last_update_time,last_access_time,completion_time,start_date_time,source_file,"
        "os_scheme_display,source_count_name) VALUES(0,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?)",
    },
    QStringLiteral("1"),
    QStringLiteral("LocationTriggers"),
    &specific_table::list_place_reminder_data,
    {
        {"title", from_reminder},
        {"text", from_reminder},
        {"place", [](const trigger& t) -> QVariant { return t.name; }},
        {"latitude", [](const trigger& t) -> QVariant { return t.latitude; }},
        {"longitude", [](const trigger& t) -> QVariant { return t.longitude; }},
        {"map_url", [](const trigger& t) -> QVariant { return map_url(t.latitude, t.longitude); }},
        {"radius", [](const trigger& t) -> QVariant { return t.radius; }},
        {"creation_time", from_reminder},
        {"last_update_time", from_reminder},
        {"last_access_time", from_reminder},
        {"completion_time", from_reminder},
        {"start_date_time", [](const trigger& t) -> QVariant { return filetime_to_unix_seconds(t.start_date); }},
    },
};

} // namespace

void fill_place_reminders(const step_context& context, std::unique_ptr<place_triggers>& reader,
                          const QStringList& files) {
    run_reminder_step(context, step, reader, files);
}

step_columns columns_of_place_reminders() {
    return columns_of(step);
}
