// SPDX-License-Identifier: MIT
// The sample's CortanaCoreDb.dat: seven reminders, of which three fire at a time, two at a place and two on a contact.
//
// A trigger row is paired by list position with a reminder, not by id. The order of the rows below, and the triggers
// whose rows are gone (as after the deletion of a reminder), are chosen so that each pair is the one that was meant.
#include "samples/cortana_core_schema.h"
#include "samples/sample_source.h"

#include <QDir>
#include <QFile>

#include <cstdio>

namespace {

constexpr std::int64_t hour = 3600;
constexpr std::int64_t day = 24 * hour;
constexpr std::int64_t first_reminder_made = 1556704800; // 2019-05-01 10:00:00 UTC

std::int64_t made_at(int profile, int reminder) {
    return first_reminder_made + profile * day + reminder * hour;
}

std::string id_of(const char* kind, int profile, int number) {
    char text[64];
    std::snprintf(text, sizeof(text), "%s-%04d-4c1f-9d35-%012d", kind, profile, number);
    return text;
}

void write_rows(ese_writer& file, const core_table& table, const std::vector<ese_row>& rows) {
    file.begin_table(table.name, table.columns);
    for (const ese_row& row : rows) {
        file.add_row(row);
    }
    file.end_table();
}

// More than a page of the database holds, so it is kept as a long value.
std::string shopping_list() {
    std::string text = "Für das Fest am Samstag:";
    for (int item = 1; item <= 1500; ++item) {
        text += "\n" + std::to_string(item) + " × Brezel 🥨";
    }
    return text;
}

void write_reminders(ese_writer& file, int profile) {
    struct reminder {
        std::string title;
        ese_value text;
        bool completed;
    };
    const std::vector<reminder> reminders = {
        {"Müll rausbringen", "Gelbe Tonne, jeden zweiten Mittwoch", true},
        {"Zahnarzt anrufen", nullptr, false},
        {"Einkaufen", shopping_list(), false},
        {"Congratulate Zoë 🎂", "Birthday call", true},
        {"Submit the tax return", "Form and receipts are in the blue folder", false},
        {"書類を返す", "図書館へ", false},
        {"Ask Bob about the keys", "", false},
    };
    std::vector<ese_row> rows;
    for (const reminder& one : reminders) {
        const int number = static_cast<int>(rows.size());
        const std::int64_t made = made_at(profile, number);
        ese_row row = {id_of("5b0e6a7c", profile, number),
                       one.completed ? 2 : 1,
                       0,
                       filetime_of(made),
                       filetime_of(made + hour),
                       filetime_of(made + day),
                       nullptr,
                       one.title,
                       one.text};
        if (one.completed) {
            row[6] = filetime_of(made + 2 * day);
        }
        rows.push_back(row);
    }
    write_rows(file, core_reminders(), rows);
}

void write_triggers(ese_writer& file, int profile) {
    struct trigger {
        const char* kind_prefix;
        int number;
        int kind;
        int reminder;
    };
    // Numbers from 90 on belong to triggers whose rows are gone.
    const trigger triggers[] = {
        {"71a3c0d2", 0, 2, 0},   {"71a3c0d2", 1, 2, 4}, {"71a3c0d2", 2, 2, 1},   {"8cf4e911", 90, 1, 90},
        {"8cf4e911", 0, 1, 2},   {"8cf4e911", 1, 1, 5}, {"d20b57e8", 91, 3, 91}, {"d20b57e8", 0, 3, 3},
        {"d20b57e8", 92, 3, 92}, {"d20b57e8", 1, 3, 6},
    };
    std::vector<ese_row> rows;
    for (const trigger& one : triggers) {
        rows.push_back({id_of(one.kind_prefix, profile, one.number), id_of("5b0e6a7c", profile, one.reminder), one.kind,
                        filetime_of(made_at(profile, one.reminder % 10))});
    }
    write_rows(file, core_triggers(), rows);
}

void write_trigger_tables(ese_writer& file, int profile) {
    const std::int64_t evening = made_at(profile, 9);
    write_rows(file, core_time_triggers(),
               {{id_of("71a3c0d2", profile, 0), filetime_of(evening), 2, "rule-0", 1, 0, "", "2019-05-01T17:00:00Z"},
                {id_of("71a3c0d2", profile, 1), filetime_of(evening + day), 0, "rule-1", 1, 0, nullptr, nullptr},
                {id_of("71a3c0d2", profile, 2), filetime_of(evening + 2 * day), 0, "rule-2", 2, 5, "no network",
                 "2019-05-04T08:30:15Z"}});
    write_rows(file, core_location_triggers(),
               {{id_of("8cf4e911", profile, 0), 48.1351, 11.582, 250.0, filetime_of(evening), "Viktualienmarkt"},
                {id_of("8cf4e911", profile, 1), 35.6762 + profile, 139.65, 100.5, nullptr, "国立国会図書館"}});
    write_rows(file, core_contact_triggers(),
               {{id_of("d20b57e8", profile, 1), "rule-8", 1, 0, "aggregate-2", "mailto:bob@example.org", "Bob", ""},
                {id_of("d20b57e8", profile, 0), "rule-7", 1, 0, "aggregate-1", "tel:+4989123456", "Zoë Müller", ""}});
}

} // namespace

bool write_sample_reminders(const sample_profile& profile) {
    const QString folder = profile.package_folder() + QStringLiteral("LocalState/ESEDatabase_CortanaCoreInstance/");
    const QString path = folder + QStringLiteral("CortanaCoreDb.dat");
    try {
        if (!QDir().mkpath(folder)) {
            throw ese_error("cannot make the folder");
        }
        ese_writer file(QFile::encodeName(path).constData());
        write_triggers(file, profile.number);
        write_reminders(file, profile.number);
        write_trigger_tables(file, profile.number);
        file.close();
        return true;
    } catch (const ese_error& error) {
        std::fprintf(stderr, "%s: %s\n", QFile::encodeName(path).constData(), error.what());
        return false;
    }
}
