// SPDX-License-Identifier: MIT
// Result table place_reminders: the reminders that fire at a place.
#include "ese/place_triggers.h"
#include "extractors/reminder_procedure.h"
#include "extractors/step_columns.h"
#include "extractors/steps.h"

namespace {

using trigger = specific_table::struct_place_reminder_data;
using row = reminder_row<trigger>;

// Deliberate: "Starts" in mixed case and the blank in front of the insertion message are what this step has always
// logged; hosts filter on the exact texts.
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
        {"system_user", system_user_of},
        {"domain_user", domain_user_of},
        {"title", title_of},
        {"text", text_of},
        {"place", [](const row& r) -> QVariant { return r.trigger.name; }},
        {"latitude", [](const row& r) -> QVariant { return r.trigger.latitude; }},
        {"longitude", [](const row& r) -> QVariant { return r.trigger.longitude; }},
        {"map_url", [](const row& r) -> QVariant { return map_url(r.trigger.latitude, r.trigger.longitude); }},
        {"radius", [](const row& r) -> QVariant { return r.trigger.radius; }},
        {"creation_time", creation_time_of},
        {"last_update_time", last_update_time_of},
        {"last_access_time", last_access_time_of},
        {"completion_time", completion_time_of},
        {"start_date_time", [](const row& r) -> QVariant { return filetime_to_unix_seconds(r.trigger.start_date); }},
        {"source_file", source_file_of},
        {"os_scheme_display", os_scheme_of},
        {"source_count_name", source_count_of},
    },
};

} // namespace

void fill_place_reminders(const step_context& context, std::unique_ptr<place_triggers>& reader,
                          const QStringList& files) {
    run_reminder_step(context, step, reader, files);
}

step_columns columns_of_place_reminders() {
    return columns_of(step.texts, step.columns);
}
