// SPDX-License-Identifier: MIT
// A plain loop over libesedb and SQLite.
#include "bench/webcache_floor.h"

#include <libesedb.h>
#include <sqlite3.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <initializer_list>

namespace {

constexpr int secure_directory = 4, file_size = 5, access_count = 8, first_time = 9, url = 17, filename = 18;
constexpr int time_columns = 5;

struct row {
    std::uint32_t secure_directory, access_count;
    std::uint64_t file_size, times[time_columns];
    char url[4096], filename[4096];
};

void read_text(libesedb_record_t* record, int index, char* text, std::size_t capacity) {
    std::size_t size = 0;
    text[0] = 0;
    if (libesedb_record_is_long_value(record, index, nullptr) != 1 &&
        libesedb_record_get_value_utf8_string_size(record, index, &size, nullptr) == 1 && size <= capacity) {
        libesedb_record_get_value_utf8_string(record, index, reinterpret_cast<std::uint8_t*>(text), size, nullptr);
    }
}

void read_row(libesedb_record_t* record, row& values) {
    libesedb_record_get_value_32bit(record, secure_directory, &values.secure_directory, nullptr);
    libesedb_record_get_value_64bit(record, file_size, &values.file_size, nullptr);
    libesedb_record_get_value_32bit(record, access_count, &values.access_count, nullptr);
    for (int time = 0; time < time_columns; ++time) {
        libesedb_record_get_value_64bit(record, first_time + time, &values.times[time], nullptr);
    }
    read_text(record, url, values.url, sizeof(values.url));
    read_text(record, filename, values.filename, sizeof(values.filename));
}

const char statement_text[] =
    "INSERT INTO "
    "cache_files(bookmark,system_user,domain_user,file_name,file_size,file_path,preview_file_path,export_file_paths,"
    "file_exists,windows_path,url,access_count,creation_timestamp,modification_timestamp,last_accessed_timestamp,"
    "sync_timestamp,expiration_timestamp,source_file, os_scheme_display,source_count_name) "
    "VALUES(0,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?)";

bool insert_row(sqlite3* result, const row& values) {
    char path[8192], windows_path[8200], size[32], count[32];
    std::snprintf(path, sizeof(path), "/Users/anna/AppData/Local/Packages/Microsoft.Windows.Cortana_x/AC/INetCache/%s",
                  values.filename);
    std::snprintf(windows_path, sizeof(windows_path), "C:%s", path);
    std::snprintf(size, sizeof(size), "%llu", static_cast<unsigned long long>(values.file_size));
    std::snprintf(count, sizeof(count), "%u", values.access_count);
    const char* texts[] = {"anna", "CORP\\anna", values.filename, size,       path, path,
                           path,   "NO",         windows_path,    values.url, count};
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(result, statement_text, -1, &statement, nullptr) != SQLITE_OK) {
        return false;
    }
    int position = 0;
    for (const char* text : texts) {
        sqlite3_bind_text(statement, ++position, text, -1, SQLITE_STATIC);
    }
    for (const std::uint64_t time : values.times) {
        sqlite3_bind_int64(statement, ++position, static_cast<sqlite3_int64>(time / 10000000));
    }
    for (const char* text :
         {"/Users/anna/AppData/Local/Microsoft/Windows/WebCache/WebCacheV01.dat", "Windows", "Source1"}) {
        sqlite3_bind_text(statement, ++position, text, -1, SQLITE_STATIC);
    }
    const bool done = sqlite3_step(statement) == SQLITE_DONE;
    sqlite3_finalize(statement);
    return done;
}

int walk(libesedb_table_t* table, sqlite3* result) {
    static row values;
    int count = 0;
    if (libesedb_table_get_number_of_records(table, &count, nullptr) != 1) {
        return -1;
    }
    for (int index = 0; index < count; ++index) {
        libesedb_record_t* record = nullptr;
        if (libesedb_table_get_record(table, index, &record, nullptr) != 1) {
            return -1;
        }
        read_row(record, values);
        libesedb_record_free(&record, nullptr);
        if (!insert_row(result, values)) {
            return -1;
        }
    }
    return count;
}

} // namespace

int run_webcache_floor(const char* database, const char* sqlite_file) {
    const char table_name[] = "Container_1";
    libesedb_file_t* file = nullptr;
    libesedb_table_t* table = nullptr;
    sqlite3* result = nullptr;
    int rows = -1;
    if (libesedb_file_initialize(&file, nullptr) == 1 &&
        libesedb_file_open(file, database, LIBESEDB_OPEN_READ, nullptr) == 1 &&
        libesedb_file_get_table_by_utf8_name(file, reinterpret_cast<const std::uint8_t*>(table_name),
                                             std::strlen(table_name), &table, nullptr) == 1 &&
        sqlite3_open(sqlite_file, &result) == SQLITE_OK) {
        sqlite3_exec(result, "BEGIN", nullptr, nullptr, nullptr);
        rows = walk(table, result);
        sqlite3_exec(result, "COMMIT", nullptr, nullptr, nullptr);
    }
    sqlite3_close(result);
    libesedb_table_free(&table, nullptr);
    libesedb_file_free(&file, nullptr);
    return rows;
}
