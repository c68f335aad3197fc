// SPDX-License-Identifier: MIT
// The reminder steps on real files: pairs over several profiles, odd values.
#include "samples/cortana_core_schema.h"
#include "tests/support/test_support.h"

#include <QDir>
#include <QtTest>

namespace {

constexpr std::int64_t may_first = 1556704800; // 2019-05-01 10:00:00 UTC

struct core_content {
    std::vector<ese_row> triggers;
    std::vector<ese_row> reminders;
    std::vector<ese_row> times;
    std::vector<ese_row> places;
    core_table place_table = core_location_triggers();
};

// Without reminders there is no table of them.
void write_core(const test_case_folder& folder, const char* user, const core_content& content) {
    const QString directory =
        folder.package_folder(QLatin1String(user)) + "LocalState/ESEDatabase_CortanaCoreInstance/"_q;
    QDir().mkpath(directory);
    ese_writer file(QFile::encodeName(directory + "CortanaCoreDb.dat"_q).constData(), 4096);
    const auto write = [&file](const core_table& table, const std::vector<ese_row>& rows) {
        file.begin_table(table.name, table.columns);
        for (const ese_row& row : rows) {
            file.add_row(row);
        }
        file.end_table();
    };
    write(core_triggers(), content.triggers);
    if (!content.reminders.empty()) {
        write(core_reminders(), content.reminders);
    }
    write(core_time_triggers(), content.times);
    write(content.place_table, content.places);
    file.close();
}

ese_row trigger(const ese_value& id, int kind) {
    return {id, "r", kind, filetime_of(may_first)};
}

ese_row reminder(const ese_value& title) {
    const std::int64_t made = filetime_of(may_first);
    return {"r", 1, 0, made, made + 10000000, made + 20000000, nullptr, title, "text"};
}

ese_row time_row(const ese_value& id, int seconds) {
    return {id, filetime_of(may_first + seconds), 0, "", 1, 0, "", ""};
}

} // namespace

class test_reminders : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // Keys that repeat, are cut to the same text, differ between UTF-8 and Latin-1, are empty or absent; a kind that
    // only begins like the step's; a file that cannot be read and one without reminders. The keys of earlier files
    // count for later ones, whose reminders fill the places that the second file leaves.
    void pairs_over_several_profiles() {
        const QStringList users = {"anna"_q, "bad"_q, "bernd"_q, "cora"_q};
        QList<QPair<QString, QString>> accounts;
        for (const QString& user : users) {
            accounts.append({user, QString()});
        }
        const test_case_folder folder(accounts);
        core_content first;
        first.triggers = {trigger(std::string("a\0b", 3), 2), trigger("é", 2), trigger("x", 22), trigger(nullptr, 2),
                          trigger("y", 1)};
        first.reminders = {reminder("1"), reminder("2"), reminder("3"), reminder("4"), reminder("5")};
        first.times = {time_row("é", 1), time_row("a", 2), time_row("x", 3), time_row("", 4), time_row("y", 5)};
        write_core(folder, "anna", first);
        folder.write_file(folder.package_folder("bad"_q).mid(folder.root().size()) +
                              "LocalState/ESEDatabase_CortanaCoreInstance/CortanaCoreDb.dat"_q,
                          "no database");
        core_content second;
        second.triggers = {trigger("a", 2)};
        second.times = {time_row("a", 11), time_row("é", 12)};
        write_core(folder, "bernd", second);
        core_content third;
        third.triggers = {trigger("c", 2)};
        third.reminders = {reminder("6"), reminder("7"), reminder("8")};
        third.times = {time_row("a", 21), time_row("c", 22)};
        write_core(folder, "cora", third);
        const auto front = folder.make_front();
        front->find_source_file();
        QCOMPARE(front->found_cortana_core_db_files().size(), users.size());
        front->extract_timetriggers();
        QVERIFY(matches_golden(folder.dump("time_reminders"_q, {"system_user"_q, "date_time"_q, "title"_q}),
                               GOLDEN_DIR "/time_reminders_rows.txt"_q));
    }

    void coordinates_that_are_no_numbers() {
        const test_case_folder folder;
        core_content content;
        content.triggers = {trigger("p", 1)};
        std::vector<ese_column>& columns = content.place_table.columns;
        columns[1].type = columns[2].type = columns[3].type = ese_type::text;
        content.places = {{"p", " 47°N", "'); drop table x", "1e3", nullptr, "here"}};
        write_core(folder, "anna", content);
        const auto front = folder.make_front();
        front->find_source_file();
        front->extract_place_reminders();
        // No reminder stands at the trigger's position: the row is there, with empty reminder values.
        QCOMPARE(folder.dump("place_reminders"_q,
                             {"title"_q, "creation_time"_q, "latitude"_q, "map_url"_q, "start_date_time"_q}),
                 QStringList("title=text: | creation_time=integer:0 | latitude=text: 47°N | "
                             "map_url=text:https://www.google.com/maps?q= 47°N,'); drop table x | "
                             "start_date_time=integer:0"_q));
    }
};

QTEST_MAIN(test_reminders)
#include "test_reminders.moc"
