// SPDX-License-Identifier: MIT
// The columns that several tables share, described once.
#pragma once

#include "host/exports/table_descriptions.h"

namespace common_columns {

using column = column_description;
using kind = column_kind;

constexpr column bookmark{"bookmark", kind::host, "", "0; a host sets its bookmark here", "the host"};
constexpr column row_key{"INT", kind::key, "", "row key, unique within the table", "counted by the database"};
constexpr column system_user{"system_user", kind::text, "", "account that the source file belongs to",
                             "the profile folder in the source file's path"};
constexpr column domain_user{"domain_user", kind::text, "", "the account's name with its domain",
                             "the examiner's list of accounts"};

// --- what a host adds; NULL as the plugin leaves it
constexpr column host_tag{"vantor_tag_value", kind::host, "", "tag", "the host"};
constexpr column notes_icon{"notes_icon", kind::host, "", "mark of a note", "the host"};
constexpr column tags_icon{"tags_icon", kind::host, "", "mark of a tag", "the host"};
constexpr column relation_file{"artifacts_relation_source_file", kind::host, "", "related source file", "the host"};
constexpr column notes{"notes", kind::host, "", "note", "the host"};
constexpr column link_file{"LINKFILENAME", kind::host, "", "name of a link to the file", "the host"};
constexpr column attributes{"bookmarked_extended_attributes", kind::host, "", "extended attributes kept by a bookmark",
                            "the host"};
constexpr column exif{"bookmarked_exif_data", kind::host, "", "EXIF data kept by a bookmark", "the host"};
constexpr column attribute_pairs{"extended_attributes_key_value", kind::host, "", "extended attributes, key and value",
                                 "the host"};
constexpr column attribute_search{"extended_attributes_value_for_search", kind::host, "",
                                  "extended attributes, for searching", "the host"};

// --- where the row is from
constexpr column os_scheme{"os_scheme_display", kind::text, "", "operating system of the source",
                           "the examiner's choice"};
constexpr column source_name{"source_count_name", kind::text, "", "the source: \"Source\" and its number",
                             "the examiner's choice"};
constexpr column source_file{"source_file", kind::path, "", "file (of recordings: folder) that the row was read from",
                             "its path below the source's root"};

// --- a reminder
constexpr column title{"title", kind::text, "", "the reminder's title", "Reminders: Title"};
constexpr column text{"text", kind::text, "", "the reminder's text", "Reminders: Text"};
constexpr column created{
    "creation_time",         kind::time, "s", "reminder created", "Reminders: CreationTime", event_kind::created,
    "Reminder Creation Time"};
constexpr column updated{"last_update_time",
                         kind::time,
                         "s",
                         "reminder last changed",
                         "Reminders: LastUpdateTime",
                         event_kind::modified,
                         "Reminder Last Update Time"};
constexpr column accessed{"last_access_time",
                          kind::time,
                          "s",
                          "reminder last accessed",
                          "Reminders: LastAccessTime",
                          event_kind::accessed,
                          "Reminder Last Access Time"};
constexpr column completed{
    "completion_time",         kind::time, "s", "reminder completed", "Reminders: CompletionTime", event_kind::other,
    "Reminder Completion Time"};

// --- a file
constexpr column file_name{"file_name", kind::text, "", "the file's name", ""};
constexpr column file_size{"file_size", kind::size, "bytes", "the file's size", ""};
constexpr column file_path{"file_path", kind::path, "", "path below the source's root", ""};
constexpr column preview_path{"preview_file_path", kind::path, "", "the same as file_path", ""};
constexpr column export_path{"export_file_paths", kind::path, "", "the same as file_path", ""};
constexpr column windows_path{"windows_path", kind::path, "", "path as Windows had it, with forward slashes", ""};

// The same column, but from elsewhere.
constexpr column from(column described, const char* origin) {
    described.origin = origin;
    return described;
}

} // namespace common_columns
