// SPDX-License-Identifier: MIT
// Where evidence lies, of what kind it is, and which result tables come from it: the one list of it. Discovery looks
// there, health checks and staging go by it.
#pragma once

// What a place holds.
enum class evidence_kind { ese_database, registry_hive, folder_tree };

// The lists that discovery fills, one for each kind of source.
enum class source_list { webcache, ntuser, indexed_db, cortana_core_db, speech, graph };

// A file or folder below a profile or below a Cortana package folder.
struct evidence_place {
    source_list list;
    evidence_kind kind;
    const char* below;  // begins with "/"; a folder's ends with "/"
    const char* tables; // that rows of it go to, separated by blanks; empty: none
};

namespace places {

// Profiles lie in this folder of the source root.
inline constexpr const char* users_folder = "Users/";
// The packages of a profile; a package is Cortana's when its folder's name holds the mark, in this upper and lower
// case and with any suffix.
inline constexpr const char* packages_folder = "/AppData/Local/Packages/";
inline constexpr const char* package_mark = "Microsoft.Windows.Cortana";

inline constexpr evidence_place in_profile[] = {
    {source_list::webcache, evidence_kind::ese_database, "/AppData/Local/Microsoft/Windows/WebCache/WebCacheV01.dat",
     "cache_files cookies domstore"},
    {source_list::ntuser, evidence_kind::registry_hive, "/NTUSER.DAT", "searches"},
};

inline constexpr evidence_place in_package[] = {
    {source_list::indexed_db, evidence_kind::ese_database, "/AppData/Indexed DB/IndexedDB.edb", ""},
    {source_list::cortana_core_db, evidence_kind::ese_database,
     "/LocalState/ESEDatabase_CortanaCoreInstance/CortanaCoreDb.dat",
     "time_reminders place_reminders contact_triggers"},
    {source_list::speech, evidence_kind::folder_tree, "/LocalState/LocalRecorder/Speech/", "latest_audio_search"},
    {source_list::graph, evidence_kind::folder_tree, "/LocalState/Graph/", "graphed_cache"},
};

// Calls visit for each of them.
template <class Visit>
void for_each(const Visit& visit) {
    for (const evidence_place& place : in_profile) {
        visit(place);
    }
    for (const evidence_place& place : in_package) {
        visit(place);
    }
}

} // namespace places
