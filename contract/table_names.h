// SPDX-License-Identifier: MIT
// The names of the result tables that the plugin fills. Hosts select, show and index by them.
#pragma once

#include <QStringList>

namespace table_name {
inline constexpr const char* time_reminders = "time_reminders";
inline constexpr const char* place_reminders = "place_reminders";
inline constexpr const char* contact_triggers = "contact_triggers";
inline constexpr const char* latest_audio_search = "latest_audio_search";
inline constexpr const char* graphed_cache = "graphed_cache";
inline constexpr const char* cache_files = "cache_files";
inline constexpr const char* cookies = "cookies";
inline constexpr const char* domstore = "domstore";
inline constexpr const char* searches = "searches";

// The nine, in the order in which the plugin fills them. The tenth table of the database, exportfilelist, is the
// host's own: the plugin creates it and writes no row.
inline constexpr const char* in_order[] = {time_reminders, place_reminders, contact_triggers, latest_audio_search,
                                           graphed_cache,  cache_files,     cookies,          domstore,
                                           searches};
} // namespace table_name

// The same as texts.
inline const QStringList& result_table_names() {
    static const QStringList names = [] {
        QStringList list;
        for (const char* const name : table_name::in_order) {
            list.append(QLatin1String(name));
        }
        return list;
    }();
    return names;
}
