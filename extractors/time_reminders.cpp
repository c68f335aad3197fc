// SPDX-License-Identifier: MIT
// Result table time_reminders: the reminders that fire at a time.
#include "ese/timetriggers.h"
#include "extractors/reminder_procedure.h"
#include "extractors/row_values.h"
#include "extractors/step_columns.h"
#include "extractors/steps.h"

namespace {

using trigger = specific_table::struct_time_triggers_data;

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
        {"title", from_reminder},
        {"text", from_reminder},
        {"creation_time", from_reminder},
        {"last_update_time", from_reminder},
        {"last_access_time", from_reminder},
        {"completion_time", from_reminder},
        {"date_time", [](const trigger& t) -> QVariant { return filetime_to_unix_seconds(t.date_time); }},
        {"last_trigger_time",
         [](const trigger& t) -> QVariant { return iso_text_to_unix_seconds(t.last_trigger_time); }},
    },
};

} // namespace

void fill_time_reminders(const step_context& context, std::unique_ptr<timetriggers>& reader, const QStringList& files) {
    run_reminder_step(context, step, reader, files);
}

step_columns columns_of_time_reminders() {
    return columns_of(step);
}
