// SPDX-License-Identifier: MIT
// The tables of files: recordings, and the three kinds of WebCache entries.
#include "host/exports/described_tables.h"

#include "host/exports/common_columns.h"

namespace {

using namespace common_columns;

constexpr const char* entry_path = "made from the container's Directory and SecureDirectories and the entry's Filename";

constexpr column entry_name = from(file_name, "the entry's Filename");
constexpr column entry_size = from(file_size, "the entry's FileSize");
constexpr column entry_file_path = from(file_path, entry_path);
constexpr column entry_windows_path = from(windows_path, entry_path);
constexpr column entry_preview_path = from(preview_path, entry_path);
constexpr column entry_export_path = from(export_path, entry_path);
constexpr column file_exists{"file_exists", kind::flag, "", "YES: the file is in the source; NO: it is not",
                             "looked up at file_path"};
constexpr column access_count{"access_count", kind::count, "", "accesses", "the entry's AccessCount"};
constexpr column entry_created{"creation_timestamp", kind::time,     "s", "entry created", "the entry's CreationTime",
                               event_kind::created,  "Creation Time"};
constexpr column entry_modified{"modification_timestamp",
                                kind::time,
                                "s",
                                "content last modified",
                                "the entry's ModifiedTime",
                                event_kind::modified,
                                "Content Modification Time"};
constexpr column entry_accessed{
    "last_accessed_timestamp", kind::time,        "s", "last accessed", "the entry's AccessedTime",
    event_kind::accessed,      "Last Access Time"};
constexpr column entry_synced{
    "sync_timestamp",      kind::time, "s", "last synchronized", "the entry's SyncTime", event_kind::other,
    "Synchronization Time"};
constexpr column entry_expires{"expiration_timestamp", kind::time,       "s", "expires", "the entry's ExpiryTime",
                               event_kind::other,      "Expiration Time"};

// What the rows of the three kinds of entries begin with.
QVector<column> entry_columns(const char* meaning_of_url) {
    return {
        bookmark,           row_key,
        system_user,        domain_user,
        entry_name,         entry_size,
        entry_file_path,    file_exists,
        entry_windows_path, {"url", kind::url, "", meaning_of_url, "the entry's Url"},
        access_count,       entry_created,
        entry_modified,     entry_accessed,
        entry_synced,       entry_expires,
        attributes,         exif,
        attribute_pairs,    attribute_search,
    };
}

// And what they end with.
QVector<column> host_columns() {
    return {host_tag, notes_icon, tags_icon, os_scheme, source_name, source_file, relation_file, notes};
}

// between: where a table has the columns that the others have elsewhere.
table_description entry_table(const char* name, const char* row, const char* origin, const char* meaning_of_url,
                              const QVector<column>& between) {
    return {name, row, origin, {"url", "windows_path"}, entry_columns(meaning_of_url) + between + host_columns()};
}

} // namespace

table_description described_latest_audio_search() {
    const char* const file_itself = "the file's path";
    const char* const file_system = "the file system";
    return {
        "latest_audio_search",
        "a recorded voice search",
        "files below LocalState/LocalRecorder/Speech of the profile's Cortana package",
        {"windows_path"},
        QVector<column>{
            bookmark,
            row_key,
            system_user,
            domain_user,
            from(file_name, file_itself),
            from(file_size, file_system),
            from(file_path, file_itself),
            from(windows_path, file_itself),
            {"creation_time", kind::time, "s", "file created", file_system, event_kind::created, "File Creation Time"},
            {"modification_time", kind::time, "s", "content last modified", file_system, event_kind::modified,
             "File Modification Time"},
            {"last_access_time", kind::time, "s", "file last read", file_system, event_kind::accessed,
             "File Last Access Time"},
            attributes,
            exif,
            attribute_pairs,
            attribute_search,
            from(preview_path, file_itself),
            from(export_path, file_itself),
            link_file,
        } + host_columns(),
    };
}

table_description described_cache_files() {
    return entry_table("cache_files", "a cached file",
                       "WebCacheV01.dat: containers named \"Content\" of the Cortana package",
                       "address that the file was loaded from", {link_file, entry_preview_path, entry_export_path});
}

table_description described_cookies() {
    return entry_table(
        "cookies", "a cookie file", "WebCacheV01.dat: containers named \"Cookies\" of the Cortana package",
        "site of the cookie, without the user's name", {link_file, entry_preview_path, entry_export_path});
}

table_description described_domstore() {
    return entry_table("domstore", "a DOM storage entry",
                       "WebCacheV01.dat: containers named \"DOMStore\" of the Cortana package",
                       "site that stored the entry, without \"DOMStore:\" in front",
                       {entry_preview_path, entry_export_path, link_file});
}
