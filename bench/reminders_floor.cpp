// SPDX-License-Identifier: MIT
// A plain loop over libesedb and SQLite.
#include "bench/reminders_floor.h"

#include <libesedb.h>
#include <sqlite3.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <functional>

namespace {

constexpr int most_columns = 16;
constexpr int creation_time = 3, title = 7, text = 8; // of "Reminders"

struct value {
    std::uint64_t number;
    char text[4096];
};
using row = std::array<value, most_columns>;

void read_value(libesedb_record_t* record, int index, std::uint32_t type, value& to) {
    std::uint32_t narrow = 0;
    std::size_t size = 0;
    to.number = 0;
    to.text[0] = 0;
    switch (type) {
    case LIBESEDB_COLUMN_TYPE_INTEGER_32BIT_SIGNED:
        libesedb_record_get_value_32bit(record, index, &narrow, nullptr);
        to.number = narrow;
        break;
    case LIBESEDB_COLUMN_TYPE_INTEGER_64BIT_SIGNED:
    case LIBESEDB_COLUMN_TYPE_DATE_TIME:
        libesedb_record_get_value_64bit(record, index, &to.number, nullptr);
        break;
    default:
        if (libesedb_record_is_long_value(record, index, nullptr) != 1 &&
            libesedb_record_get_value_utf8_string_size(record, index, &size, nullptr) == 1 && size <= sizeof(to.text)) {
            libesedb_record_get_value_utf8_string(record, index, reinterpret_cast<std::uint8_t*>(to.text), size,
                                                  nullptr);
        }
    }
}

// Rows of the table, or -1. Each is read into the place that to(number) tells.
int read_table(libesedb_file_t* file, const char* name, const std::function<row&(int number)>& to,
               const std::function<bool(int number)>& done) {
    libesedb_table_t* table = nullptr;
    int count = -1;
    if (libesedb_file_get_table_by_utf8_name(file, reinterpret_cast<const std::uint8_t*>(name), std::strlen(name),
                                             &table, nullptr) != 1 ||
        libesedb_table_get_number_of_records(table, &count, nullptr) != 1) {
        return -1;
    }
    for (int number = 0; number < count; ++number) {
        libesedb_record_t* record = nullptr;
        int values = 0;
        if (libesedb_table_get_record(table, number, &record, nullptr) != 1 ||
            libesedb_record_get_number_of_values(record, &values, nullptr) != 1) {
            return -1;
        }
        for (int index = 0; index < values && index < most_columns; ++index) {
            std::uint32_t type = 0;
            libesedb_record_get_column_type(record, index, &type, nullptr);
            read_value(record, index, type, to(number)[static_cast<std::size_t>(index)]);
        }
        libesedb_record_free(&record, nullptr);
        if (!done(number)) {
            return -1;
        }
    }
    libesedb_table_free(&table, nullptr);
    return count;
}

const char statement_text[] =
    "INSERT INTO "
    "time_reminders(bookmark,system_user,domain_user,title,text,creation_time,last_update_time,last_access_time,"
    "completion_time,date_time,last_trigger_time,source_file, os_scheme_display,source_count_name) "
    "VALUES(0,?,?,?,?,?,?,?,?,?,?,?,?,?)";

bool insert_row(sqlite3* result, const row& reminder, const row& trigger) {
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(result, statement_text, -1, &statement, nullptr) != SQLITE_OK) {
        return false;
    }
    int position = 0;
    const auto bind_text = [&](const char* bound) {
        sqlite3_bind_text(statement, ++position, bound, -1, SQLITE_STATIC);
    };
    const auto bind_time = [&](const value& bound) {
        sqlite3_bind_int64(statement, ++position, static_cast<sqlite3_int64>(bound.number / 10000000));
    };
    bind_text("anna");
    bind_text("CORP\\anna");
    bind_text(reminder[title].text);
    bind_text(reminder[text].text);
    for (std::size_t time = creation_time; time < creation_time + 4; ++time) {
        bind_time(reminder[time]);
    }
    bind_time(trigger[1]);
    bind_time(trigger[1]);
    bind_text("/Users/anna/AppData/Local/Packages/Microsoft.Windows.Cortana_cw5n1h2txyewy/LocalState/"
              "ESEDatabase_CortanaCoreInstance/CortanaCoreDb.dat");
    bind_text("Windows");
    bind_text("Source1");
    const bool done = sqlite3_step(statement) == SQLITE_DONE;
    sqlite3_finalize(statement);
    return done;
}

// The texts of some reminders stand for those of all, so that memory is libesedb's alone.
int read_and_insert(libesedb_file_t* file, sqlite3* result) {
    constexpr int kept = 64;
    static std::array<row, kept> reminders;
    static row trigger;
    const auto reminder = [](int number) -> row& { return reminders[static_cast<std::size_t>(number % kept)]; };
    const auto only_row = [](int) -> row& { return trigger; };
    const auto go_on = [](int) { return true; };
    if (read_table(file, "Triggers", only_row, go_on) < 0 || read_table(file, "Reminders", reminder, go_on) < 0) {
        return -1;
    }
    return read_table(file, "TimeTriggers", only_row,
                      [&](int number) { return insert_row(result, reminder(number), trigger); });
}

} // namespace

int run_reminders_floor(const char* database, const char* sqlite_file) {
    libesedb_file_t* file = nullptr;
    sqlite3* result = nullptr;
    int rows = -1;
    if (libesedb_file_initialize(&file, nullptr) == 1 &&
        libesedb_file_open(file, database, LIBESEDB_OPEN_READ, nullptr) == 1 &&
        sqlite3_open(sqlite_file, &result) == SQLITE_OK) {
        sqlite3_exec(result, "BEGIN", nullptr, nullptr, nullptr);
        rows = read_and_insert(file, result);
        sqlite3_exec(result, "COMMIT", nullptr, nullptr, nullptr);
    }
    sqlite3_close(result);
    libesedb_file_free(&file, nullptr);
    return rows;
}
