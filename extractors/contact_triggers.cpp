// SPDX-License-Identifier: MIT
// Result table contact_triggers: the reminders that fire when the user deals with a contact.
#include "ese/contact_triggers.h"
#include "extractors/reminder_procedure.h"
#include "extractors/step_columns.h"
#include "extractors/steps.h"

namespace {

using trigger = specific_table::struct_contact_trigger_data;

const reminder_step<trigger> step{
    {
        "void cortana_winos::extract_contact_triggers()",
        "[extract_contact_triggers] ----- STARTS ------",
        "[extract_contact_triggers]Destination Db opening ---FAILED--- ",
        "[extract_contact_triggers] ----- ENDS ------",
        {"--------INSERTION Query ----FAILED------", true, "Error :- ", "Query :- "},
        "INSERT INTO "
        "contact_triggers(bookmark,system_user,domain_user,contact_name,title,text,creation_time,last_update_time,"
        "last_access_time,completion_time,source_file,os_scheme_display,source_count_name) "
        "VALUES(0,?,?,?,?,?,?,?,?,?,?,?,?)",
    },
    QStringLiteral("3"),
    QStringLiteral("ContactTriggers"),
    &specific_table::list_contact_trigger_data,
    {
        {"contact_name", [](const trigger& t) -> QVariant { return t.contact_name; }},
        {"title", from_reminder},
        {"text", from_reminder},
        {"creation_time", from_reminder},
        {"last_update_time", from_reminder},
        {"last_access_time", from_reminder},
        {"completion_time", from_reminder},
    },
};

} // namespace

void fill_contact_triggers(const step_context& context, std::unique_ptr<contact_triggers>& reader,
                           const QStringList& files) {
    run_reminder_step(context, step, reader, files);
}

step_columns columns_of_contact_triggers() {
    return columns_of(step);
}
