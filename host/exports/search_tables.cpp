// SPDX-License-Identifier: MIT
// The tables of what was searched for.
#include "host/exports/described_tables.h"

#include "host/exports/common_columns.h"

namespace {

using namespace common_columns;

// Why the three times of graphed_cache hold 0 or '' in every row.
const char* const never_read = "not taken over: 0 or '' in every row";

} // namespace

table_description described_graphed_cache() {
    return {
        "graphed_cache",
        "an entity that was looked up: a place, a contact, a search result",
        "*ttl files below LocalState/Graph of the profile's Cortana package",
        {"search_content", "phone"},
        {
            bookmark,
            row_key,
            system_user,
            domain_user,
            {"entity_id", kind::text, "", "the entity's identifier", "entityId"},
            {"search_id", kind::text, "", "the search's identifier", "sid"},
            {"search_content", kind::text, "", "the entity's name", "originalName"},
            {"longitude", kind::coordinate, "degrees", "longitude, east positive", "Point: second number"},
            {"latitude", kind::coordinate, "degrees", "latitude, north positive", "Point: first number"},
            {"map_url", kind::url, "", "map link made of the coordinates", "made by the plugin"},
            {"phone", kind::text, "", "phone number", "phone"},
            {"creation_timestamp", kind::time, "s", never_read, "dateCreated", event_kind::created, "Creation Time"},
            {"modification_timestamp", kind::time, "s", never_read, "dateModified", event_kind::modified,
             "Content Modification Time"},
            {"last_accessed_timestamp", kind::time, "s", never_read, "dateAccessed", event_kind::accessed,
             "Last Access Time"},
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

table_description described_searches() {
    return {
        "searches",
        "a typed search",
        "NTUSER.DAT: RecentDocs and FileExts",
        {"search_keyword"},
        {
            bookmark,
            row_key,
            system_user,
            domain_user,
            {"search_keyword", kind::text, "", "what was searched for",
             "RecentDocs: data up to the first \"&\"; FileExts: key name from \"search?q=\" to \"&\""},
            {"search_timestamp", kind::time, "s", "searched; text that is no number stays as it was found",
             "behind \"sbts=\"", event_kind::other, "Search Time"},
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
