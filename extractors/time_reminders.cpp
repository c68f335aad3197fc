// SPDX-License-Identifier: MIT
// Result table time_reminders: the reminders that fire at a time.
#include "ese/timetriggers.h"
#include "extractors/reminder_procedure.h"
#include "extractors/step_columns.h"
#include "extractors/steps.h"

namespace {

using trigger = specific_table::struct_time_triggers_data;
using row = reminder_row<trigger>;

const reminder_step<trigger> step{
    {
        "void cortana_winos::extract_timetriggers()",
        "[extract_timetriggers] ----- STARTS ------",
        "[extract_timetriggers]Destination Db opening ---FAILED--- ",
        "[extract_timetriggers] ----- ENDS ------",
        {"--------INSERTION Query ----FAILED------ ", true, "Error :- ", "Query :- "},
        "INSERT INTO "
        "time_reminders(bookmark,system_user,domain_user,title,text,creation_time,last_update_time,last_access_time,"
        "completion_time,date_time,last_trigger_time,source_file, os_scheme_display,source_count_name) "
        "VALUES(0,?,?,?,?,?,?,?,?,?,?,?,?,?)",
    },
    QStringLiteral("2"),
    QStringLiteral("TimeTriggers"),
    &specific_table::list_time_triggers_data,
    {
        {"system_user", system_user_of},
        {"domain_user", domain_user_of},
        {"title", title_of},
        {"text", text_of},
        {"creation_time", creation_time_of},
        {"last_update_time", last_update_time_of},
        {"last_access_time", last_access_time_of},
        {"completion_time", completion_time_of},
        {"date_time", [](const row& r) -> QVariant { return filetime_to_unix_seconds(r.trigger.date_time); }},
        {"last_trigger_time",
         [](const row& r) -> QVariant { return iso_text_to_unix_seconds(r.trigger.last_trigger_time); }},
        {"source_file", source_file_of},
        {"os_scheme_display", os_scheme_of},
        {"source_count_name", source_count_of},
    },
};

} // namespace

void fill_time_reminders(const step_context& context, std::unique_ptr<timetriggers>& reader, const QStringList& files) {
    run_reminder_step(context, step, reader, files);
}

step_columns columns_of_time_reminders() {
    return columns_of(step.texts, step.columns);
}
