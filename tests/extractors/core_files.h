// SPDX-License-Identifier: MIT
// CortanaCoreDb.dat files of a test case.
#pragma once

#include "evidence/cortana_core_schema.h"
#include "tests/support/test_support.h"

#include <QDir>
#include <QFile>

// Rows of the tables; a table in missing is left out.
struct core_content {
    std::vector<ese_row> triggers;
    std::vector<ese_row> reminders;
    std::vector<ese_row> times;
    std::vector<ese_row> places;
    std::vector<ese_row> contacts;
    QStringList missing;
};

inline QString core_path(const test_case_folder& test_case, const QString& user) {
    return test_case.package_folder(user) +
           QStringLiteral("LocalState/ESEDatabase_CortanaCoreInstance/CortanaCoreDb.dat");
}

inline void write_core(const QString& path, const core_content& content) {
    QDir().mkpath(QFileInfo(path).path());
    ese_writer file(QFile::encodeName(path).constData(), 4096);
    const auto write = [&](const core_table& table, const std::vector<ese_row>& rows) {
        if (content.missing.contains(QString::fromStdString(table.name))) {
            return;
        }
        file.begin_table(table.name, table.columns);
        for (const ese_row& row : rows) {
            file.add_row(row);
        }
        file.end_table();
    };
    write(core_triggers(), content.triggers);
    write(core_reminders(), content.reminders);
    write(core_time_triggers(), content.times);
    write(core_location_triggers(), content.places);
    write(core_contact_triggers(), content.contacts);
    file.close();
}

constexpr std::int64_t may_first = 1556704800; // 2019-05-01 10:00:00 UTC

inline ese_row trigger(const ese_value& id, int kind) {
    return {id, "r", kind, filetime_of(may_first)};
}

inline ese_row reminder(const ese_value& title, const ese_value& completed = filetime_of(may_first + 3)) {
    return {"r",       1,     0,     filetime_of(may_first), filetime_of(may_first + 1), filetime_of(may_first + 2),
            completed, title, "text"};
}

inline ese_row time_row(const ese_value& id, std::int64_t at = may_first) {
    return {id, filetime_of(at), 0, "", 1, 0, "", "2019-05-01T10:00:00Z"};
}
