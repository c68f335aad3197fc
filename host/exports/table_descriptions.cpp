// SPDX-License-Identifier: MIT
// The tables in the plugin's order, and look-ups in one of them.
#include "host/exports/table_descriptions.h"

#include "host/exports/described_tables.h"

#include <cstring>

int table_description::index_of(const char* column) const {
    for (int i = 0; i < columns.size(); ++i) {
        if (std::strcmp(columns[i].name, column) == 0) {
            return i;
        }
    }
    return -1;
}

bool table_description::has_places() const {
    return index_of("latitude") >= 0 && index_of("longitude") >= 0;
}

bool table_description::has_reminders() const {
    return index_of("title") >= 0 && index_of("completion_time") >= 0;
}

const QVector<column_description>& link_columns() {
    static const char* const by_ids = "Triggers: ReminderId, Reminders: Id";
    static const QVector<column_description> columns{
        {"reminder_link", column_kind::text, "",
         "confirmed, contradicted or undecided: whether title, text and times are those of the reminder that the ids "
         "lead to",
         by_ids},
        {"linked_title", column_kind::text, "", "title of the reminder that the ids lead to", by_ids},
        {"linked_text", column_kind::text, "", "text of the reminder that the ids lead to", by_ids},
    };
    return columns;
}

const QVector<table_description>& table_descriptions() {
    static const QVector<table_description> tables{
        described_time_reminders(),   described_place_reminders(),
        described_contact_triggers(), described_latest_audio_search(),
        described_graphed_cache(),    described_cache_files(),
        described_cookies(),          described_domstore(),
        described_searches(),
    };
    return tables;
}

const char* name_of(column_kind kind) {
    static const char* const names[] = {"key",      "text", "time", "size", "count", "coordinate",
                                        "distance", "flag", "path", "url",  "host"};
    return names[static_cast<int>(kind)];
}
