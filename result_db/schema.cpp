// SPDX-License-Identifier: MIT
// The create statements, exactly as executed. Deliberate: keyword case, type case and the varying column order are
// part of the schema; hosts compare and index the columns as they stand.
#include "result_db/schema.h"

#include "contract/table_names.h"

namespace {

// clang-format off
constexpr result_table tables[] = {
    {table_name::time_reminders,
     "create table IF NOT EXISTS time_reminders(bookmark integer,INT INTEGER PRIMARY KEY,"
     "system_user varchar(100),domain_user VARCHAR(100),title varchar(1024),text varchar(1024),"
     "creation_time INTEGER,last_update_time INTEGER,last_access_time INTEGER,completion_time INTEGER,"
     "date_time INTEGER,last_trigger_time INTEGER,vantor_tag_value varchar(100),notes_icon VARCHAR(1024),"
     "tags_icon VARCHAR(1024),os_scheme_display VARCHAR(100),source_count_name VARCHAR(500),"
     "source_file varchar(500),artifacts_relation_source_file varchar(500),notes varchar(500))"},
    {table_name::place_reminders,
     "create table IF NOT EXISTS place_reminders(bookmark integer,INT INTEGER PRIMARY KEY,"
     "system_user varchar(100),domain_user VARCHAR(100),place varchar(1024),title varchar(1024),"
     "text varchar(1024),latitude varchar(1024),longitude varchar(1024),map_url varchar(1024),"
     "radius varchar(1024),creation_time INTEGER,last_update_time INTEGER,last_access_time INTEGER,"
     "completion_time INTEGER,start_date_time INTEGER,vantor_tag_value varchar(100),"
     "notes_icon VARCHAR(1024),tags_icon VARCHAR(1024),os_scheme_display VARCHAR(100),"
     "source_count_name VARCHAR(500),source_file varchar(500),artifacts_relation_source_file varchar(500),"
     "notes varchar(500))"},
    {table_name::contact_triggers,
     "create table IF NOT EXISTS contact_triggers(bookmark integer,INT INTEGER PRIMARY KEY,"
     "system_user varchar(100),domain_user VARCHAR(100),contact_name varchar(1024),title varchar(1024),"
     "text varchar(1024),creation_time INTEGER,last_update_time INTEGER,last_access_time INTEGER,"
     "completion_time INTEGER,vantor_tag_value varchar(100),notes_icon VARCHAR(1024),"
     "tags_icon VARCHAR(1024),os_scheme_display VARCHAR(100),source_count_name VARCHAR(500),"
     "source_file varchar(500),artifacts_relation_source_file varchar(500),notes varchar(500))"},
    {table_name::latest_audio_search,
     "create table IF NOT EXISTS latest_audio_search(bookmark integer,INT INTEGER PRIMARY KEY,"
     "system_user varchar(100),domain_user VARCHAR(100),file_name varchar(1024),file_size INTEGER,"
     "file_path varchar(1024),windows_path varchar(1024),creation_time INTEGER,modification_time INTEGER,"
     "last_access_time INTEGER,bookmarked_extended_attributes varchar(1000),"
     "bookmarked_exif_data varchar(100),extended_attributes_key_value varchar(200),"
     "extended_attributes_value_for_search varchar(200),preview_file_path varchar(1024),"
     "export_file_paths varchar(1024),LINKFILENAME VARCHAR(1024),vantor_tag_value varchar(100),"
     "notes_icon VARCHAR(1024),tags_icon VARCHAR(1024),os_scheme_display VARCHAR(100),"
     "source_count_name VARCHAR(500),source_file varchar(500),artifacts_relation_source_file varchar(500),"
     "notes varchar(500))"},
    {table_name::graphed_cache,
     "CREATE TABLE IF NOT EXISTS graphed_cache(bookmark integer,INT INTEGER PRIMARY KEY,"
     "system_user varchar(100),domain_user VARCHAR(100),entity_id VARCHAR(1024),search_id VARCHAR(1024),"
     "search_content VARCHAR(1024),longitude VARCHAR(1024),latitude VARCHAR(1024),map_url VARCHAR(1024),"
     "phone VARCHAR(1024),creation_timestamp INTEGER,modification_timestamp INTEGER,"
     "last_accessed_timestamp INTEGER,vantor_tag_value varchar(100),notes_icon VARCHAR(1024),"
     "tags_icon VARCHAR(1024),os_scheme_display VARCHAR(100),source_count_name VARCHAR(500),"
     "source_file varchar(500),artifacts_relation_source_file varchar(500),notes varchar(500))"},
    {table_name::cache_files,
     "CREATE TABLE IF NOT EXISTS cache_files(bookmark integer,INT INTEGER PRIMARY KEY,"
     "system_user varchar(100),domain_user VARCHAR(100),file_name varchar(2048),file_size INTEGER,"
     "file_path varchar(1024),file_exists varchar(100),windows_path varchar(1024),url varchar(1024),"
     "access_count INTEGER,creation_timestamp INTEGER,modification_timestamp INTEGER,"
     "last_accessed_timestamp INTEGER,sync_timestamp INTEGER,expiration_timestamp INTEGER,"
     "bookmarked_extended_attributes varchar(1000),bookmarked_exif_data varchar(100),"
     "extended_attributes_key_value varchar(200),extended_attributes_value_for_search varchar(200),"
     "LINKFILENAME VARCHAR(1024),preview_file_path varchar(1024),export_file_paths varchar(1024),"
     "vantor_tag_value varchar(100),notes_icon VARCHAR(1024),tags_icon VARCHAR(1024),"
     "os_scheme_display VARCHAR(100),source_count_name VARCHAR(500),source_file varchar(500),"
     "artifacts_relation_source_file varchar(500),notes varchar(500))"},
    {table_name::cookies,
     "CREATE TABLE IF NOT EXISTS cookies(bookmark integer,INT INTEGER PRIMARY KEY,"
     "system_user varchar(100),domain_user VARCHAR(100),file_name varchar(2048),file_size INTEGER,"
     "file_path varchar(1024),file_exists varchar(100),windows_path varchar(1024),url varchar(1024),"
     "access_count INTEGER,creation_timestamp INTEGER,modification_timestamp INTEGER,"
     "last_accessed_timestamp INTEGER,sync_timestamp INTEGER,expiration_timestamp INTEGER,"
     "bookmarked_extended_attributes varchar(1000),bookmarked_exif_data varchar(100),"
     "extended_attributes_key_value varchar(200),extended_attributes_value_for_search varchar(200),"
     "LINKFILENAME VARCHAR(1024),preview_file_path varchar(1024),export_file_paths varchar(1024),"
     "vantor_tag_value varchar(100),notes_icon VARCHAR(1024),tags_icon VARCHAR(1024),"
     "os_scheme_display VARCHAR(100),source_count_name VARCHAR(500),source_file varchar(500),"
     "artifacts_relation_source_file varchar(500),notes varchar(500))"},
    {table_name::domstore,
     "CREATE TABLE IF NOT EXISTS domstore(bookmark integer,INT INTEGER PRIMARY KEY,"
     "system_user varchar(100),domain_user VARCHAR(100),file_name varchar(2048),file_size INTEGER,"
     "file_path varchar(1024),file_exists varchar(100),windows_path varchar(1024),url varchar(1024),"
     "access_count INTEGER,creation_timestamp INTEGER,modification_timestamp INTEGER,"
     "last_accessed_timestamp INTEGER,sync_timestamp INTEGER,expiration_timestamp INTEGER,"
     "bookmarked_extended_attributes varchar(1000),bookmarked_exif_data varchar(100),"
     "extended_attributes_key_value varchar(200),extended_attributes_value_for_search varchar(200),"
     "preview_file_path varchar(1024),export_file_paths varchar(1024),LINKFILENAME VARCHAR(1024),"
     "vantor_tag_value varchar(100),notes_icon VARCHAR(1024),tags_icon VARCHAR(1024),"
     "os_scheme_display VARCHAR(100),source_count_name VARCHAR(500),source_file varchar(500),"
     "artifacts_relation_source_file varchar(500),notes varchar(500))"},
    {table_name::searches,
     "create table IF NOT EXISTS searches(bookmark integer,INT INTEGER PRIMARY KEY,"
     "system_user varchar(100),domain_user VARCHAR(100),search_keyword varchar(1024),"
     "search_timestamp INTEGER,vantor_tag_value varchar(100),notes_icon VARCHAR(1024),"
     "tags_icon VARCHAR(1024),os_scheme_display VARCHAR(100),source_count_name VARCHAR(500),"
     "source_file varchar(500),artifacts_relation_source_file varchar(500),notes varchar(500))"},
    {"exportfilelist",
     "CREATE TABLE IF NOT EXISTS exportfilelist(INT INTEGER PRIMARY KEY,record VARCHAR(150),"
     "table_name VARCHAR(1000),filepath VARCHAR(1000),exp_newpath VARCHAR(1000),"
     "exp_relativepath VARCHAR(1000),exp_size INTEGER,exp_hashmd5 VARCHAR(1000),"
     "exp_hashsha1 VARCHAR(1000),exp_LINKFILENAME varchar(500),exp_time INTEGER)"},
};
// clang-format on

} // namespace

const QVector<result_table>& result_tables() {
    static const QVector<result_table> list(std::begin(tables), std::end(tables));
    return list;
}
